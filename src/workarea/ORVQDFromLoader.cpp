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

bool isOuter(TKindOfJoin kind) {
    return kind != klInnerJoin;
}

// Signs of arithmetic and of other expressions: what has one of them compares nothing.
bool compares(QStringView operation) {
    return std::none_of(operation.begin(), operation.end(), [](QChar character) {
        return QStringView(u"+-*/%|&").contains(character);
    });
}

// Words that end a condition or bind weaker than AND do: the parts around them are none.
bool isOneCondition(const orv::TokenRun& part) {
    if (part.isEmpty()) return false;
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

// More than one full stop: the schema in front of the table.
bool namesSchema(const orv::TokenRun& run, int index) {
    return run[index].kind == orv::SqlToken::Word &&
           splitAtFullStops(run.textOf(index).toString()).size() > 2;
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
            m_isCrossItem = isBehindCross(child);
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
               QStringLiteral("Another table has this alias, too: a statement with both is "
                              "not valid."));
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
    if (bracket.hasOwnAlias) readColumnNames(bracket);
    m_readUpTo = bracket.end;
    report(bracket.start, bracket.end,
           QStringLiteral("A bracket in FROM cannot be shown as a table: it is not loaded."));
}

// Behind the alias of a derived table names for its columns may stand in brackets.
void FromLoader::readColumnNames(NamedTable& table) const {
    if (!m_ledger) return;
    const orv::TokenRun behind = m_ledger->tokensIn(table.end, m_node.End());
    if (behind.isEmpty() || behind[0].kind != orv::SqlToken::Open) return;
    table.end = behind[behind.behindBracket(0) - 1].end;
}

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
        report(start, node.End(),
               QStringLiteral("The table of this join is not loaded, and neither is the join."));
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
    if (!m_keepsMeaning) {
        loadOnAsWritten(join, on, isConjunction ? &parts : nullptr);
    } else if (isConjunction) {
        loadOnKeepingMeaning(join, on, parts);
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
    if (!join.holder) {
        report(on.Start(), on.End(),
               QStringLiteral("The program did not allow the links of this ON: it is not held."));
        return;
    }
    QStringList texts;
    if (!join.holder->Text.isEmpty()) texts << join.holder->Text;
    for (const orv::TokenRun& text : join.texts) texts << text.sourceText();
    join.holder->Text = texts.join(QStringLiteral(" AND "));
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
    if (!join.holder) join.holder = link->Join;
    if (!orv::isMirrorableOperator(operation)) join.takesNulls = true;
    if (left.table == join.table || right.table == join.table) {
        join.partners.push_back(left.table == join.table ? right.table : left.table);
    } else {
        join.reachesAround = true;
    }
    return true;
}

// --- what the text makes of it ---

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
        if (!m_area.m_linkNumbers.contains(loaded.link)) continue;  // a handler removed it
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
        const int line =
            join.holder ? places.joins[std::size_t(indexOf.value(join.holder))].line : -1;
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
