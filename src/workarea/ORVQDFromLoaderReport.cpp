// SPDX-License-Identifier: MIT
// What becomes of the meaning of a loaded FROM clause when it is written again.
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "workarea/ORVQDFromLoader.h"

#include <algorithm>

namespace {

bool isOuter(TKindOfJoin kind) {
    return kind != klInnerJoin;
}

// More than one full stop: the schema in front of the table.
bool namesSchema(const orv::TokenRun& run, int index) {
    if (run[index].kind != orv::SqlToken::Word) return false;
    const QString field = orv::splitQualifiedName(run.textOf(index).toString()).field;
    return orv::firstFullStop(run.textOf(index)) >= 0 && orv::firstFullStop(field) >= 0;
}

}  // namespace

// A handler of the program may have closed a box while others were loaded.
void FromLoader::reportClosedBoxes() {
    for (const LoadedBox& loaded : m_boxes) {
        if (loaded.box && m_area.indexOf(loaded.box) >= 0) continue;
        report(loaded.start, loaded.end,
               QStringLiteral("The program closed this table while the statement was loaded."));
    }
}

// Where outer joins are written in another order than they were loaded, other rows may come.
void FromLoader::reportOrder() {
    const bool anyOuter = std::any_of(m_joins.begin(), m_joins.end(),
                                      [](const LoadedJoin& join) { return isOuter(join.kind); });
    if (!m_ledger || !anyOuter) return;
    const bool turnsRound = !m_keepsMeaning && orderMatters();
    for (const LoadedJoin& join : m_joins) {
        const bool preservesItself = join.kind == klROuterJoin || join.kind == klFOuterJoin;
        if (join.reachesAcross) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("This ON reaches across a comma beside an outer join, which can "
                                  "change the rows."));
        } else if (turnsRound && isOuter(join.kind)) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("The joins are written in another order, which can change the "
                                  "rows."));
        } else if (join.behindCross && preservesItself) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("CROSS JOIN is written as a comma, which binds weaker: this join "
                                  "can get other rows."));
        }
    }
}

// Turning a chain of joins round keeps its rows only while each ON compares two tables, no table
// that may stay empty is used by another join but as its preserved side, full joins stand alone,
// and all tables are linked.
bool FromLoader::orderMatters() const {
    const auto isFull = [](const LoadedJoin& join) { return join.kind == klFOuterJoin; };
    const bool anyFull = std::any_of(m_joins.begin(), m_joins.end(), isFull);
    const bool allFull = std::all_of(m_joins.begin(), m_joins.end(), isFull);
    if (m_unlinked.size() > 1 || (anyFull && !allFull)) return true;
    QHash<const TorvQDTable*, int> notPreserved;  // in how many joins
    for (const LoadedJoin& join : m_joins) {
        if (join.partners.empty() || join.reachesAround || join.takesNulls) return true;
        const TorvQDTable* partner = join.partners.front();
        const bool hasOnePartner =
            std::all_of(join.partners.begin(), join.partners.end(),
                        [&](const TorvQDTable* other) { return other == partner; });
        if (!hasOnePartner) return true;
        if (join.kind != klROuterJoin) ++notPreserved[join.table];
        if (join.kind != klLOuterJoin) ++notPreserved[partner];
    }
    return std::any_of(m_joins.begin(), m_joins.end(), [&](const LoadedJoin& join) {
        if (join.kind == klLOuterJoin) return notPreserved[join.table] > 1;
        return join.kind == klROuterJoin && notPreserved[join.partners.front()] > 1;
    });
}

// In the order of stacking a cycle names a table twice, and operators are not mirrored; with the
// meaning kept the conditions of a cycle are written on one line, which suits inner joins only.
void FromLoader::reportPlaces() {
    if (!m_ledger) return;
    orv::FromPlaces places;
    (void)m_area.writeFrom(&places);
    const std::vector<TorvQDJoin*> held = m_area.Joins();
    QHash<const TorvQDJoin*, int> indexOf;
    for (std::size_t index = 0; index < held.size(); ++index)
        indexOf.insert(held[index], int(index));
    for (const TorvQDJoin* join : m_area.brokenCircles()) {
        const auto maker = m_madeBy.constFind(join);
        if (maker == m_madeBy.constEnd()) continue;
        const LoadedJoin& loaded = m_joins[*maker];
        report(loaded.start, loaded.keywordsEnd,
               m_keepsMeaning
                   ? QStringLiteral("An outer join that is compared with several tables closes a "
                                    "circle, which can change the rows.")
                   : QStringLiteral("This join closes a circle, which names a table a second "
                                    "time."));
    }
    reportOperators(places, indexOf);
    if (m_keepsMeaning) reportTexts(places, indexOf);
}

void FromLoader::reportOperators(const orv::FromPlaces& places,
                                 const QHash<const TorvQDJoin*, int>& indexOf) {
    for (const LoadedLink& loaded : m_links) {
        if (!loaded.link || !m_area.m_linkNumbers.contains(loaded.link.data())) continue;
        const TorvQDJoin& join = *loaded.link->Join;
        const bool swapped = places.joins[std::size_t(indexOf.value(&join))].swapped;
        const TorvQDTable* left = swapped ? join.Table2 : join.Table1;
        const QString operation = loaded.link->operatorText();
        const bool keepsMeaning = m_keepsMeaning ? orv::isMirrorableOperator(operation)
                                                 : orv::isSymmetricOperator(operation);
        if (left == loaded.left || keepsMeaning) continue;
        report(loaded.start, loaded.end,
               QStringLiteral("The sides of this comparison change places, its operator does "
                              "not."));
    }
}

// The text of a join must not stand in front of a table that it names, nor lose sight of one.
void FromLoader::reportTexts(const orv::FromPlaces& places,
                             const QHash<const TorvQDJoin*, int>& indexOf) {
    QHash<const TorvQDTable*, int> placeOf;
    for (std::size_t index = 0; index < m_area.m_creation.size(); ++index) {
        placeOf.insert(m_area.m_creation[index], places.tables[index]);
    }
    const std::vector<TorvQDJoin*> held = m_area.Joins();
    for (const LoadedJoin& join : m_joins) {
        const int number = join.firstLink ? indexOf.value(join.firstLink->Join, -1) : -1;
        const int line = number < 0 ? -1 : places.joins[std::size_t(number)].line;
        if (line < 0) continue;
        const TorvQDJoin& lineJoin = *held[std::size_t(line)];
        const int last = std::max(placeOf.value(lineJoin.Table1), placeOf.value(lineJoin.Table2));
        for (const orv::TokenRun& text : join.texts) {
            bool isEarly = false;
            bool isHidden = false;
            const std::vector<bool> inSubQuery = orv::insideSubQueries(text);
            for (int index = 0; index < text.size(); ++index) {
                const TorvQDTable* table =
                    tableNamedBy(text, index, inSubQuery[std::size_t(index)]);
                isEarly = isEarly || (table && placeOf.value(table) > last);
                isHidden = isHidden || namesSchema(text, index) ||
                           (table && join.behindCross &&
                            m_itemOf.value(table) != m_itemOf.value(join.table));
            }
            if (isEarly) {
                m_ledger->report(text, QStringLiteral("This condition is written in front of one "
                                                      "of its tables."));
            } else if (isHidden) {
                m_ledger->report(text, QStringLiteral("This condition names a table that it cannot "
                                                      "see where it is written."));
            }
        }
    }
}
