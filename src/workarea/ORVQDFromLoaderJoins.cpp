// SPDX-License-Identifier: MIT
// The joins of a FROM clause: their ON conditions, read into links and text.
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFromLoader.h"

#include <QStringList>

#include <algorithm>

namespace {

TKindOfJoin kindOf(const QString& text) {
    if (text.contains(QStringLiteral("LEFT"))) return klLOuterJoin;
    if (text.contains(QStringLiteral("RIGHT"))) return klROuterJoin;
    if (text.contains(QStringLiteral("FULL"))) return klFOuterJoin;
    return klInnerJoin;
}

// Signs of arithmetic and of other expressions: what has one of them compares nothing.
bool compares(QStringView operation) {
    return std::none_of(operation.begin(), operation.end(), [](QChar character) {
        return QStringView(u"+-*/%|&").contains(character);
    });
}

// Words that end a condition or bind weaker than AND do: the parts around them are none.
bool isOneCondition(const orv::TokenRun& part) {
    if (part.isEmpty() || orv::endOfCondition(part) < part.size()) return false;
    for (int index = 0; index < part.size(); ++index) {
        const bool isWord = part[index].kind == orv::SqlToken::Word;
        if (part[index].depth != part[0].depth || !isWord) continue;
        if (part.is(index, u"ON") || part.is(index, u"XOR")) return false;
    }
    return true;
}

// A bracket that is the whole run; a second one around it says no more.
orv::TokenRun withoutDoubledBracket(orv::TokenRun run) {
    const auto isBracket = [](const orv::TokenRun& candidate) {
        return candidate.size() > 2 && candidate[0].kind == orv::SqlToken::Open &&
               candidate.behindBracket(0) == candidate.size();
    };
    while (isBracket(run) && isBracket(run.mid(1, run.size() - 2)))
        run = run.mid(1, run.size() - 2);
    return run;
}

const TorvQDParser* onOf(const TorvQDParser& join) {
    for (const TorvQDParser::Node& child : join.Children()) {
        if (child->Location() == inWhere && child->Kind() == otCompound) return child.get();
    }
    return nullptr;
}

}  // namespace

// --- joins ---

bool FromLoader::isBehindCross(const TorvQDParser& table) const {
    if (!m_ledger) return false;
    const orv::TokenRun before = m_ledger->tokensIn(m_node.Start(), table.Start());
    const int last = before.size() - 1;
    return last > 0 && before.is(last, u"JOIN") && before.is(last - 1, u"CROSS");
}

void FromLoader::loadJoin(const TorvQDParser& node, int start) {
    if (node.Count() == 0 || node.Child(0)->Kind() != otTable) {
        throw orv::Error(QStringLiteral("There is no Table for join"));
    }
    LoadedJoin join{&node, kindOf(node.Text()), start, node.Child(0)->Start(), m_isCrossItem};
    join.table = loadTable(*node.Child(0));
    if (!m_guard) return;
    const TorvQDParser* on = onOf(node);
    if (!join.table) {
        loseJoin(std::move(join), on);
        return;
    }
    if (start < node.Start() || !on) {
        report(start, node.End(),
               QStringLiteral("This join has no ON condition: its table is loaded without it."));
        m_unlinked.push_back(join.table);
        return;
    }
    if (m_ledger) m_ledger->place(start, join.keywordsEnd);
    m_itemOf.insert(join.table, m_item);
    loadOn(join, *on);
    if (!m_guard) return;
    if (join.partners.empty()) m_unlinked.push_back(join.table);
    m_joins.push_back(std::move(join));
}

// Without its table. The specified rules read its ON nevertheless: they tell of each side that is
// not there, and a comparison of two other tables becomes a link.
void FromLoader::loseJoin(LoadedJoin join, const TorvQDParser* on) {
    if (on && !m_keepsMeaning) loadOnAsWritten(join, *on, nullptr);
    if (!m_guard) return;
    report(
        join.start, join.node->End(),
        join.firstLink
            ? QStringLiteral("The table of this join is not loaded; of its ON only what compares "
                             "other tables is.")
            : QStringLiteral("The table of this join is not loaded, and neither is the join."));
    if (join.firstLink) m_joins.push_back(std::move(join));
}

void FromLoader::loadOn(LoadedJoin& join, const TorvQDParser& on) {
    if (!m_ledger) {
        loadOnAsWritten(join, on, nullptr);
        return;
    }
    const orv::TokenRun run = m_ledger->tokensIn(on.Start(), on.End());
    std::vector<orv::TokenRun> parts;
    const bool isConjunction = orv::splitConjunction(run.mid(1), parts) &&
                               std::all_of(parts.begin(), parts.end(), isOneCondition);
    m_ledger->place(run);
    const std::vector<bool> inSubQuery = orv::insideSubQueries(run);
    for (int index = 1; index < run.size(); ++index) {
        const TorvQDTable* table = tableNamedBy(run, index, inSubQuery[std::size_t(index)]);
        if (table && isOfAnotherItem(table)) join.reachesAcross = true;
    }
    if (!isConjunction) {
        report(on.Start(), on.End(),
               m_keepsMeaning
                   ? QStringLiteral("An ON that is not one list of conditions joined by AND cannot "
                                    "be drawn: the table is loaded without its join.")
                   : QStringLiteral("Only comparisons joined by AND are held in an ON: this "
                                    "condition changes."));
    }
    if (isConjunction) reportLooseAnds(run.mid(1));
    if (!m_keepsMeaning) {
        loadOnAsWritten(join, on, isConjunction ? &parts : nullptr);
    } else if (isConjunction) {
        loadOnKeepingMeaning(join, on, parts);
    }
}

// An AND without a condition before or behind it joins nothing and is not written again.
void FromLoader::reportLooseAnds(const orv::TokenRun& run) const {
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].kind != orv::SqlToken::Word || !run.is(index, u"AND")) continue;
        const int next = index + 1;
        if (index == 0 || run[index - 1].kind == orv::SqlToken::Open || run.is(index - 1, u"AND")) {
            m_ledger->report(run.mid(index, 1),
                             QStringLiteral("A condition is missing in front of this."));
        } else if (next == run.size() || run[next].kind == orv::SqlToken::Close) {
            m_ledger->report(run.mid(index, 1),
                             QStringLiteral("A condition is missing behind this."));
        }
    }
}

// Comparisons with the table of the join become links; all else stays with the join as text,
// provided that there is a link.
void FromLoader::loadOnKeepingMeaning(LoadedJoin& join, const TorvQDParser& on,
                                      const std::vector<orv::TokenRun>& parts) {
    std::vector<Comparison> comparisons;
    for (const orv::TokenRun& part : parts) {
        const std::optional<Comparison> comparison = comparisonOf(part);
        const bool isLink =
            comparison && comparison->first.table != comparison->second.table &&
            (comparison->first.table == join.table || comparison->second.table == join.table);
        // The earlier table will stand on the left.
        const bool swaps =
            isLink && m_area.createdBefore(comparison->second.table, comparison->first.table);
        if (isLink && (!swaps || orv::isMirrorableOperator(comparison->operation))) {
            comparisons.push_back(*comparison);
        } else {
            join.texts.push_back(withoutDoubledBracket(part));
        }
    }
    if (comparisons.empty()) {
        report(on.Start(), on.End(),
               QStringLiteral("This ON compares its table with no other one: it is not held."));
        return;
    }
    for (const Comparison& comparison : comparisons) {
        const bool added = addLink(join, comparison);
        if (!m_guard) return;
        if (!added) {
            report(comparison.start, comparison.end,
                   QStringLiteral("The program did not allow this link: it is not loaded."));
        }
    }
    if (join.texts.empty()) return;
    if (!join.firstLink) {
        report(on.Start(), on.End(),
               QStringLiteral("The program did not allow the links of this ON: it is not held."));
        return;
    }
    QStringList texts;
    TorvQDJoin& holder = *join.firstLink->Join;
    if (!holder.Text.isEmpty()) texts << holder.Text;
    for (const orv::TokenRun& text : join.texts) texts << text.sourceText();
    holder.Text = texts.join(QStringLiteral(" AND "));
}

// The nodes of the condition in their order: a field, an operator, a field make a link. Brackets
// are read the same way; what names no table or field is told to the user and left out. Of `parts`,
// when they are known, each is loaded as a whole or not at all.
void FromLoader::loadOnAsWritten(LoadedJoin& join, const TorvQDParser& on,
                                 const std::vector<orv::TokenRun>* parts) {
    QHash<int, int> comparisons;  // start to end
    for (const orv::TokenRun& part : parts ? *parts : std::vector<orv::TokenRun>()) {
        if (comparisonOf(part)) {
            comparisons.insert(part.start(), part.endPosition());
        } else {
            m_ledger->report(part, QStringLiteral("This is no comparison of two fields: it is not "
                                                  "loaded."));
        }
    }
    struct Level {
        const TorvQDParser* node;
        int next = 0;
        int position = 0;
        Side last;
        int lastStart = 0;
        QString operation;
    };
    std::vector<Level> levels;
    levels.push_back({&on, 0, 0, {}, 0, {}});
    while (!levels.empty() && m_guard) {
        Level& level = levels.back();
        if (level.next == level.node->Count()) {
            levels.pop_back();
            continue;
        }
        const TorvQDParser& child = *level.node->Child(level.next++);
        if (child.Kind() == otField || child.Kind() == otConst) {
            const std::optional<Side> side = findSideOrComplain(orv::orvTrim(child.Text()));
            if (!m_guard) return;
            if (!side) {
                level.position = 0;
                continue;
            }
            if (level.position == 2) {
                const Comparison comparison{level.last, *side, level.operation, level.lastStart,
                                            child.End()};
                const bool isWhole =
                    !parts || comparisons.value(comparison.start, -1) == endOfTokens(comparison);
                if (isWhole && !addLink(join, comparison)) {
                    report(comparison.start, comparison.end,
                           QStringLiteral("The program did not allow this link: it is not "
                                          "loaded."));
                }
                level.operation.clear();
                level.position = -1;
            }
            level.last = *side;
            level.lastStart = child.Start();
            ++level.position;
        } else if (child.Kind() == otOperator) {
            if (level.position == 1) level.operation = child.Text();
            ++level.position;
        } else {
            level.position = 0;
            levels.push_back({&child, 0, 0, {}, 0, {}});
        }
    }
}

// The node of a field may end with blanks in front of a bracket.
int FromLoader::endOfTokens(const Comparison& comparison) const {
    return m_ledger ? m_ledger->tokensIn(comparison.start, comparison.end).endPosition()
                    : comparison.end;
}

// --- names in ON ---

std::optional<FromLoader::Comparison> FromLoader::comparisonOf(const orv::TokenRun& part) const {
    if (part.size() != 3 || part[1].kind != orv::SqlToken::Sign) return std::nullopt;
    if (!orv::namesField(part, 0) || !orv::namesField(part, 2)) return std::nullopt;
    if (!compares(part.textOf(1))) return std::nullopt;
    const std::optional<Side> first = findSide(part.mid(0, 1).sourceText());
    const std::optional<Side> second = findSide(part.mid(2, 1).sourceText());
    if (!first || !second) return std::nullopt;
    return Comparison{*first, *second, part.textOf(1).toString(), part.start(), part.endPosition()};
}

TorvQDTable* FromLoader::onlyTableWith(const QString& field) const {
    const std::vector<TorvQDTable*>* tables = m_area.tablesByField(field);
    return tables && tables->size() == 1 ? tables->front() : nullptr;
}

// "ALIAS.FIELD", or a bare name: with the meaning kept, of the one box that has such a field; else
// of the only box.
std::optional<FromLoader::Side> FromLoader::findSide(const QString& text) const {
    const orv::QualifiedName name = orv::splitQualifiedName(text);
    TorvQDTable* table = m_area.findTable(name.alias);
    if (!table && m_keepsMeaning && name.alias.isEmpty()) table = onlyTableWith(name.field);
    TorvQDListItem* item = table ? table->findItem(name.field) : nullptr;
    return item ? std::optional(Side{table, item}) : std::nullopt;
}

std::optional<FromLoader::Side> FromLoader::findSideOrComplain(const QString& text) {
    const orv::QualifiedName name = orv::splitQualifiedName(text);
    TorvQDTable* table = m_area.findTable(name.alias);
    if (!table) {
        complain(QStringLiteral("Could not find table: ") + name.alias);
        return std::nullopt;
    }
    if (TorvQDListItem* item = table->findItem(name.field)) return Side{table, item};
    complain(QStringLiteral("Could not find field: ") + name.field + QStringLiteral(" in ") +
             name.alias);
    return std::nullopt;
}

void FromLoader::complain(const QString& text) {
    orv::showMessage({&m_area, text, QStringLiteral("Error!"), orv::MessageIcon::Exclamation,
                      orv::MessageButtons::Ok});
}

// The box that a word of a condition means, as far as can be seen. What a sub-query names without
// a table is taken for a field of its own tables.
TorvQDTable* FromLoader::tableNamedBy(const orv::TokenRun& run, int index, bool inSubQuery) const {
    if (!orv::namesField(run, index)) return nullptr;
    const orv::QualifiedName name = orv::splitQualifiedName(run.mid(index, 1).sourceText());
    if (!name.alias.isEmpty()) return m_area.findTable(name.alias);
    return inSubQuery ? nullptr : onlyTableWith(name.field);
}

bool FromLoader::isOfAnotherItem(const TorvQDTable* table) const {
    return m_itemOf.value(table, m_item) != m_item;
}

// --- links ---

// The kind is about the table that the JOIN brings in: where that is the first table of the join
// the kind is stored mirrored, so that the same rows are preserved. The operator is stored as it
// stands, unless the meaning is kept: then the earlier table comes first, whoever stands left.
bool FromLoader::addLink(LoadedJoin& join, const Comparison& comparison) {
    Side left = comparison.first;
    Side right = comparison.second;
    QString operation = comparison.operation;
    if (m_keepsMeaning && m_area.createdBefore(right.table, left.table)) {
        std::swap(left, right);
        operation = orv::mirroredOperator(operation);
    }
    TorvQDLink* link = m_area.AddLink(left.table, right.table, left.item, right.item);
    if (!link) return !m_guard;
    link->setOperatorText(operation);
    link->Join->KindOfJoin =
        link->Join->Table1 == join.table ? orv::mirrored(join.kind) : join.kind;
    m_links.push_back({link, left.table, comparison.start, comparison.end});
    if (!m_madeBy.contains(link->Join)) m_madeBy.insert(link->Join, m_joins.size());
    if (!join.firstLink) join.firstLink = link;
    if (!orv::isMirrorableOperator(operation)) join.takesNulls = true;
    if (left.table == join.table || right.table == join.table) {
        join.partners.push_back(left.table == join.table ? right.table : left.table);
    } else {
        join.reachesAround = true;
    }
    return true;
}
