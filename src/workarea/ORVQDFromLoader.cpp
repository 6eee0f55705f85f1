// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFromLoader.h"

#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDExpressions.h"
#include "toolkit/Services.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int topLevel = 0;  // bracket depth of a statement's own clauses

QStringList splitAtFullStops(const QString& name) {
    QStringList parts;
    QString rest = name;
    for (qsizetype stop = orv::firstFullStop(rest); stop >= 0; stop = orv::firstFullStop(rest)) {
        parts << rest.left(stop);
        rest = rest.mid(stop + 1);
    }
    return parts << rest;
}

bool isName(const QString& text) {
    const orv::SqlTokens tokens = orv::tokenise(text);
    return tokens.size() == 1 &&
           (tokens.front().kind == orv::SqlToken::Word || text.startsWith(u'\''));
}

TKindOfJoin kindOf(const QString& text) {
    if (text.contains(QStringLiteral("LEFT"))) return klLOuterJoin;
    if (text.contains(QStringLiteral("RIGHT"))) return klROuterJoin;
    if (text.contains(QStringLiteral("FULL"))) return klFOuterJoin;
    return klInnerJoin;
}

const TorvQDParser* onOf(const TorvQDParser& join) {
    for (const TorvQDParser::Node& child : join.Children()) {
        if (child->Location() == inWhere && child->Kind() == otCompound) return child.get();
    }
    return nullptr;
}

}  // namespace

FromLoader::FromLoader(TorvQDWorkArea& area, const TorvQDParser& node)
    : m_area(area),
      m_guard(&area),
      m_node(node),
      m_ledger(area.m_owner->ledger()),
      m_keepsMeaning(area.m_owner->KeepMeaning()) {}

void FromLoader::load() {
    loadItems();
    if (!m_guard) return;
    placeClauseWords();
    reportOrder();
    reportPlaces();
}

void FromLoader::loadItems() {
    for (int index = 0; index < m_node.Count() && m_guard; ++index) {
        const TorvQDParser& child = *m_node.Child(index);
        if (child.Start() < m_readUpTo) continue;  // an alias that was read already
        if (child.Kind() == otTable) {
            TorvQDTable* table = loadTable(child);
            ++m_item;
            m_itemIsCross = isBehindCrossJoin(child);
            if (table) m_itemOf.insert(table, m_item);
            if (table) m_unlinked.push_back(table);
        } else if (child.Kind() == otJoin) {
            const TorvQDParser* before = index > 0 ? m_node.Child(index - 1) : nullptr;
            const bool isNatural = before && before->Text() == u"NATURAL";
            loadJoin(child, isNatural ? before->Start() : child.Start());
        } else if (child.Kind() == otBrakets) {
            loseDerivedTable(child);
        }
    }
}

// CROSS JOIN is read as a comma.
bool FromLoader::isBehindCrossJoin(const TorvQDParser& table) const {
    if (!m_ledger) return false;
    const orv::TokenRun before = m_ledger->tokensIn(m_node.Start(), table.Start());
    return before.size() > 1 && before.is(before.size() - 2, u"CROSS");
}

// --- tables
// ---------------------------------------------------------------------------------------

TorvQDTable* FromLoader::loadTable(const TorvQDParser& node) {
    NamedTable table = named(node);
    if (!hasAlias(node)) readDetachedAlias(table);
    m_readUpTo = table.end;
    std::unique_ptr<TDataSet> dataSet;
    std::unique_ptr<TParams> params;
    m_area.m_owner->getTableFields(table.lookup, dataSet, params);
    if (!m_guard) return nullptr;
    if (!dataSet) {
        report(table.start, table.end,
               QStringLiteral("This table is not known and is not loaded."));
        return nullptr;
    }
    if (params || node.Location() == inFunction) {
        report(table.start, table.end,
               QStringLiteral("Procedures are not held yet: it is not loaded."));
        return nullptr;
    }
    if (TorvQDTable* box = boxToReuse(table)) {
        report(table.start, table.end,
               QStringLiteral("This table is on the diagram already: it is not loaded a second "
                              "time."));
        return box;
    }
    return addBox(table, *dataSet);
}

TorvQDTable* FromLoader::addBox(const NamedTable& table, const TDataSet& dataSet) {
    const bool aliasTaken = !table.alias.isEmpty() && m_area.GetTable(table.alias);
    const bool isQualified = splitAtFullStops(table.written).size() > 1;
    TorvQDTable* box = m_area.addTable(table.written, &dataSet,
                                       isQualified ? table.written : QString(), table.alias);
    if (!m_guard) return nullptr;
    if (!box) {
        report(table.start, table.end,
               QStringLiteral("The program did not allow this table: it is not loaded."));
    } else if (aliasTaken) {
        report(table.start, table.end,
               QStringLiteral(
                   "Another table has this alias, too: a statement with both is not valid."));
    } else if (m_ledger) {
        m_ledger->place(table.start, table.end);
    }
    return box;
}

// A table that is mentioned again reuses its box; with meaning kept, only when the second mention
// has no alias of its own.
TorvQDTable* FromLoader::boxToReuse(const NamedTable& table) const {
    if (m_keepsMeaning && table.hasOwnAlias) return nullptr;
    if (!table.alias.isEmpty() && !table.hasOwnAlias) {
        TorvQDTable* box = m_area.GetTable(table.alias);
        return box && box->TableName == table.written ? box : nullptr;
    }
    if (TorvQDTable* box = m_area.GetTable(table.lookup)) return box;
    return m_area.GetTable(orv::quotedName(table.lookup));
}

FromLoader::NamedTable FromLoader::named(const TorvQDParser& node) {
    NamedTable table{node.Text(), {}, {}, false, node.Start(), node.End()};
    const QStringList parts = splitAtFullStops(node.Text());
    QStringList written;
    QStringList lookup;
    for (const QString& part : parts) {
        if (part.isEmpty()) continue;
        written << (parts.size() > 1 ? ProcessName(part) : part);
        lookup << orv::withoutQuotes(part);
    }
    if (parts.size() > 1) {
        table.written = written.join(u'.');
        table.alias = written.value(written.size() - 1);
    }
    table.lookup = lookup.join(u'.');
    for (const TorvQDParser::Node& child : node.Children()) {
        if (child->Kind() == otAlias && isName(child->Text())) {
            useAlias(table, child->Text(), child->End());
        }
    }
    return table;
}

bool FromLoader::hasAlias(const TorvQDParser& node) {
    return node.Count() > 0 && node.Children().back()->Kind() == otAlias;
}

void FromLoader::useAlias(NamedTable& table, const QString& text, int end) {
    table.alias = text.startsWith(u'\'') ? orv::quotedName(orv::withoutQuotes(text)) : text;
    table.hasOwnAlias = true;
    table.end = end;
}

// Behind AS, a procedure or a bracket the tree knows an alias behind one blank only; here it may
// stand behind any number of them.
void FromLoader::readDetachedAlias(NamedTable& table) const {
    if (!m_ledger) return;
    const orv::TokenRun behind = m_ledger->tokensIn(table.end, m_node.End());
    const int index = !behind.isEmpty() && behind.is(0, u"AS") ? 1 : 0;
    if (index >= behind.size() || behind[index].depth != topLevel) return;
    const QString text = orv::upperOutsideQuotes(behind.textOf(index));
    const orv::WordInfo info = orv::wordInfo(text);
    const bool continues = info.is(orv::wordJoin) || info.is(orv::wordNeverAlias) ||
                           info.is(orv::wordOn) || info.is(orv::wordClause);
    if (isName(text) && !continues) useAlias(table, text, behind[index].end);
}

// The host is not asked for the alias of a derived table.
void FromLoader::loseDerivedTable(const TorvQDParser& node) {
    NamedTable bracket{{}, {}, {}, false, node.Start(), node.End()};
    readDetachedAlias(bracket);
    m_readUpTo = bracket.end;
    report(bracket.start, bracket.end,
           QStringLiteral("A bracket in FROM cannot be shown as a table: it is not loaded."));
}

// --- joins
// ----------------------------------------------------------------------------------------

void FromLoader::loadJoin(const TorvQDParser& node, int start) {
    if (node.Count() == 0 || node.Child(0)->Kind() != otTable) {
        throw orv::Error(QStringLiteral("There is no Table for join"));
    }
    LoadedJoin join{&node, kindOf(node.Text()), start, node.Child(0)->Start()};
    join.table = loadTable(*node.Child(0));
    if (!m_guard) return;
    const TorvQDParser* on = onOf(node);
    if (!join.table) {
        report(start, node.End(),
               QStringLiteral("The table of this join is not loaded, and so is "
                              "the join."));
        return;
    }
    if (start < node.Start() || !on) {
        report(start, node.End(),
               QStringLiteral("This join has no ON condition: its table is loaded "
                              "without it."));
        m_unlinked.push_back(join.table);
        return;
    }
    if (m_ledger) m_ledger->place(start, join.keywordsEnd);
    m_itemOf.insert(join.table, m_item);
    join.followsCross = m_itemIsCross;
    loadOn(join, *on);
    if (m_guard) m_joins.push_back(join);
}

void FromLoader::loadOn(LoadedJoin& join, const TorvQDParser& on) {
    std::vector<orv::TokenRun> parts;
    bool isConjunction = false;
    if (m_ledger) {
        const orv::TokenRun run = m_ledger->tokensIn(on.Start(), on.End());
        isConjunction = orv::splitConjunction(run.mid(1), parts);
        m_ledger->place(run);
    }
    if (m_keepsMeaning) {
        if (isConjunction) {
            loadOnKeepingMeaning(join, on, parts);
        } else {
            report(on.Start(), on.End(),
                   QStringLiteral("An ON with OR or NOT cannot be drawn: the "
                                  "table is loaded without its join."));
        }
        return;
    }
    loadOnAsWritten(join, on);
    if (!m_guard || !m_ledger) return;
    if (!isConjunction) {
        report(on.Start(), on.End(),
               QStringLiteral("Only comparisons joined by AND are held in an "
                              "ON: this condition changes."));
        return;
    }
    for (const orv::TokenRun& part : parts) {
        if (!isComparison(part)) {
            m_ledger->report(part, QStringLiteral("This is no comparison of two fields: it is not "
                                                  "loaded."));
        }
    }
}

// Comparisons become links; all else stays with the join as text, provided that there is a link.
void FromLoader::loadOnKeepingMeaning(LoadedJoin& join, const TorvQDParser& on,
                                      const std::vector<orv::TokenRun>& parts) {
    QStringList texts;
    std::size_t linksBefore = m_area.m_links.size();
    for (const orv::TokenRun& part : parts) {
        std::optional<Side> first;
        std::optional<Side> second;
        if (part.size() == 3 && part[1].kind == orv::SqlToken::Sign) {
            first = findSide(part.mid(0, 1).sourceText(), false);
            second = findSide(part.mid(2, 1).sourceText(), false);
        }
        if (first && second && first->table != second->table) {
            addLink(join, *first, *second, part.textOf(1).toString());
            if (!m_guard) return;
        } else {
            texts << part.sourceText();
        }
    }
    const bool hasLink = m_area.m_links.size() > linksBefore && !join.partners.empty();
    if (!hasLink) {
        report(on.Start(), on.End(),
               QStringLiteral("This ON compares its table with no other one: "
                              "it is not held."));
    } else if (!texts.isEmpty()) {
        bool reversed = false;
        TorvQDJoin* held = m_area.FindJoin(join.table, join.partners.front(), reversed);
        if (held) held->Text = texts.join(QStringLiteral(" AND "));
    }
}

// The nodes of the condition in their order: a field, an operator, a field make a link. Brackets
// are read the same way; what names no table or field is told to the user and left out.
void FromLoader::loadOnAsWritten(LoadedJoin& join, const TorvQDParser& on) {
    struct Level {
        const TorvQDParser* node;
        int next = 0;
        int position = 0;
        Side first;
        Side last;
        QString operation;
    };
    std::vector<Level> levels;
    levels.push_back({&on, 0, 0, {}, {}, {}});
    while (!levels.empty() && m_guard) {
        Level& level = levels.back();
        if (level.next == level.node->Count()) {
            levels.pop_back();
            continue;
        }
        const TorvQDParser& child = *level.node->Child(level.next++);
        if (child.Kind() == otField || child.Kind() == otConst) {
            if (level.position == 2) level.first = level.last;
            const std::optional<Side> side = findSide(orv::orvTrim(child.Text()), true);
            if (!m_guard) return;
            if (!side) {
                level.position = 0;
                continue;
            }
            level.last = *side;
            if (level.position == 2) {
                addLink(join, level.first, level.last, level.operation);
                level.operation.clear();
                level.position = -1;
            }
            ++level.position;
        } else if (child.Kind() == otOperator) {
            if (level.position == 1) level.operation = child.Text();
            ++level.position;
        } else {
            level.position = 0;
            levels.push_back({&child, 0, 0, {}, {}, {}});
        }
    }
}

bool FromLoader::isComparison(const orv::TokenRun& part) const {
    if (part.size() != 3 || part[1].kind != orv::SqlToken::Sign) return false;
    const auto isField = [&](int index) {
        const orv::QualifiedName name = orv::splitQualifiedName(part.mid(index, 1).sourceText());
        const TorvQDTable* table = m_area.findTable(name.alias);
        return table && table->findItem(name.field);
    };
    return isField(0) && isField(2);
}

// "ALIAS.FIELD", or a bare name that one box alone has.
std::optional<FromLoader::Side> FromLoader::findSide(const QString& text, bool complains) {
    const orv::QualifiedName name = orv::splitQualifiedName(text);
    TorvQDTable* table = m_area.findTable(name.alias);
    if (!table && !complains && name.alias.isEmpty()) {
        Side found;
        for (TorvQDTable* box : m_area.m_creation) {
            TorvQDListItem* item = box->findItem(name.field);
            if (!item) continue;
            if (found.item) return std::nullopt;
            found = {box, item};
        }
        return found.item ? std::optional(found) : std::nullopt;
    }
    TorvQDListItem* item = table ? table->findItem(name.field) : nullptr;
    if (item) return Side{table, item};
    if (complains && !table) complain(QStringLiteral("Could not find table: ") + name.alias);
    if (complains && table) {
        complain(QStringLiteral("Could not find field: ") + name.field + QStringLiteral(" in ") +
                 name.alias);
    }
    return std::nullopt;
}

void FromLoader::complain(const QString& text) {
    orv::showMessage({&m_area, text, QStringLiteral("Error!"), orv::MessageIcon::Exclamation,
                      orv::MessageButtons::Ok});
}

// The kind is about the table that the JOIN brings in: where that is the first table of the join
// the kind is stored mirrored, so that the same rows are preserved.
void FromLoader::addLink(LoadedJoin& join, const Side& first, const Side& second,
                         const QString& operation) {
    Side left = first;
    Side right = second;
    QString text = operation;
    if (m_keepsMeaning && m_area.createdBefore(right.table, left.table)) {
        std::swap(left, right);
        text = orv::mirroredOperator(text);
    }
    TorvQDLink* link = m_area.AddLink(left.table, right.table, left.item, right.item);
    if (!m_guard) return;
    if (!link) {
        report(join.start, join.node->End(),
               QStringLiteral("The program did not allow this link: it is not loaded."));
        return;
    }
    const bool swapped = link->Join->Table1 != left.table;
    link->setOperatorText(swapped ? orv::mirroredOperator(text) : text);
    const bool touches = left.table == join.table || right.table == join.table;
    const bool isNew = m_area.linksOf(link->Join).size() == 1;
    if (touches || isNew) {  // the kind of a join between two other tables is told by its own line
        link->Join->KindOfJoin =
            link->Join->Table1 == join.table ? orv::mirrored(join.kind) : join.kind;
    }
    join.drawn.push_back(link->Join);
    for (const TorvQDTable* table : {left.table, right.table}) {
        if (m_itemOf.value(table) != m_item) join.reachesAcross = true;
    }
    if (touches) {
        join.partners.push_back(left.table == join.table ? right.table : left.table);
    } else {
        join.reachesAround = true;
    }
}

// --- what the text makes of it
// --------------------------------------------------------------------

namespace {

bool isOuter(TKindOfJoin kind) {
    return kind != klInnerJoin;
}

}  // namespace

// Where outer joins are written in another order than they were loaded, other rows may come.
void FromLoader::reportOrder() {
    const bool anyOuter = std::any_of(m_joins.begin(), m_joins.end(),
                                      [](const LoadedJoin& join) { return isOuter(join.kind); });
    if (!m_ledger || !anyOuter) return;
    const bool turnsRound = !m_keepsMeaning && orderMatters();
    for (const LoadedJoin& join : m_joins) {
        const bool preservesNew = join.kind == klROuterJoin || join.kind == klFOuterJoin;
        const bool behindComma = !m_keepsMeaning && m_unlinked.size() > 1 && preservesNew;
        if (join.reachesAcross) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("This ON reaches across a comma beside an outer join, which can "
                                  "change the rows."));
        } else if (behindComma || (turnsRound && isOuter(join.kind))) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("The joins are written in another order, which can change the "
                                  "rows."));
        } else if (join.followsCross && preservesNew) {
            report(join.start, join.keywordsEnd,
                   QStringLiteral("CROSS JOIN is written as a comma, behind which this join can "
                                  "give other rows."));
        }
    }
}

// Turning a chain of joins round keeps its rows only while each ON compares two tables, no table
// that may stay empty is used by another join but as its preserved side, and full joins stand
// alone.
bool FromLoader::orderMatters() const {
    const auto isFull = [](const LoadedJoin& join) { return join.kind == klFOuterJoin; };
    const bool anyFull = std::any_of(m_joins.begin(), m_joins.end(), isFull);
    if (anyFull && m_joins.size() > 1 && !std::all_of(m_joins.begin(), m_joins.end(), isFull)) {
        return true;
    }
    for (const LoadedJoin& join : m_joins) {
        if (join.partners.empty() || join.reachesAround) return true;
        const TorvQDTable* partner = join.partners.front();
        for (const TorvQDTable* other : join.partners) {
            if (other != partner) return true;
        }
        const TorvQDTable* mayBeEmpty = join.kind == klLOuterJoin   ? join.table
                                        : join.kind == klROuterJoin ? partner
                                                                    : nullptr;
        for (const LoadedJoin& second : m_joins) {
            if (&second == &join || !mayBeEmpty || second.partners.empty()) continue;
            const TorvQDTable* preserved = second.kind == klLOuterJoin   ? second.partners.front()
                                           : second.kind == klROuterJoin ? second.table
                                                                         : nullptr;
            const bool takesPart =
                second.table == mayBeEmpty || second.partners.front() == mayBeEmpty;
            if (takesPart && preserved != mayBeEmpty) return true;
        }
    }
    return m_unlinked.size() > 1;
}

// In the order of stacking a cycle names a table twice, and operators are not mirrored; with the
// meaning kept the conditions of a cycle move to another line.
void FromLoader::reportPlaces() {
    if (!m_ledger) return;
    if (m_keepsMeaning) {
        reportMovedConditions();
        return;
    }
    const std::vector<orv::JoinPlace> places = m_area.joinPlaces();
    QHash<const TorvQDJoin*, orv::JoinPlace> placeOf;
    for (std::size_t index = 0; index < places.size(); ++index) {
        placeOf.insert(m_area.m_joins[index].get(), places[index]);
    }
    for (const LoadedJoin& loaded : m_joins) {
        const bool closes =
            std::any_of(loaded.drawn.begin(), loaded.drawn.end(),
                        [&](const TorvQDJoin* drawn) { return placeOf.value(drawn).closesCycle; });
        if (closes) reportCircle(loaded);
        const bool turns =
            std::any_of(loaded.drawn.begin(), loaded.drawn.end(), [&](const TorvQDJoin* drawn) {
                return placeOf.value(drawn).swapped && hasDirectedLink(drawn);
            });
        if (!turns) continue;
        report(loaded.start, loaded.node->End(),
               QStringLiteral("The sides of this comparison change places, its operator does "
                              "not."));
    }
}

// An operator that means something else when its sides change places.
bool FromLoader::hasDirectedLink(const TorvQDJoin* join) const {
    const std::vector<TorvQDLink*>& links = m_area.linksOf(join);
    return std::any_of(links.begin(), links.end(), [](const TorvQDLink* link) {
        return orv::mirroredOperator(link->operatorText()) != link->operatorText();
    });
}

void FromLoader::reportCircle(const LoadedJoin& join) {
    report(join.start, join.keywordsEnd,
           QStringLiteral("This join closes a circle, which is written differently."));
}

// A comparison with more than one earlier table, or of earlier tables only, may be written in the
// line of another join.
void FromLoader::reportMovedConditions() {
    const bool anyOuter = std::any_of(m_joins.begin(), m_joins.end(),
                                      [](const LoadedJoin& join) { return isOuter(join.kind); });
    if (!anyOuter) return;
    for (std::size_t index = 0; index < m_joins.size(); ++index) {
        const LoadedJoin& loaded = m_joins[index];
        const TorvQDJoin* own = nullptr;  // the one that brings its table in
        bool keeps = true;
        for (const TorvQDJoin* held : loaded.drawn) {
            const bool isSecondLater = m_area.createdBefore(held->Table1, held->Table2);
            const TorvQDTable* later = isSecondLater ? held->Table2 : held->Table1;
            if (!own && later == loaded.table) own = held;
            if (held != own) keeps = keeps && keepsRowsOnLineOf(later, index);
        }
        if (!keeps) reportCircle(loaded);
    }
}

// Whether a condition of an ON may as well stand in the line that brings in an earlier table, or
// the same one by another join: both inner, and nothing preserves rows in between.
bool FromLoader::keepsRowsOnLineOf(const TorvQDTable* table, std::size_t from) const {
    for (std::size_t index = from + 1; index-- > 0;) {
        const LoadedJoin& join = m_joins[index];
        if (join.table == table) return !isOuter(join.kind) && !isOuter(m_joins[from].kind);
        if (join.kind != klInnerJoin && join.kind != klLOuterJoin) return false;
    }
    return false;
}

// Commas and CROSS JOIN are written again as commas.
void FromLoader::placeClauseWords() {
    if (!m_ledger) return;
    const orv::TokenRun run = m_ledger->tokensIn(m_node.Start(), m_node.End());
    for (int index = 0; index < run.size(); ++index) {
        const bool isCross =
            run.is(index, u"CROSS") && index + 1 < run.size() && run.is(index + 1, u"JOIN");
        const bool isComma =
            run[index].kind == orv::SqlToken::Comma && run[index].depth == topLevel;
        if (index == 0 || isComma) m_ledger->place(run.mid(index, 1));
        if (isCross) m_ledger->place(run.mid(index, 2));
    }
}

void FromLoader::report(int start, int end, const QString& what) {
    if (m_ledger) m_ledger->report(start, end, what);
}
