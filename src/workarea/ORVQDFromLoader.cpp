// SPDX-License-Identifier: MIT
// The tables of a FROM clause, read into boxes.
#include "workarea/ORVQDFromLoader.h"

#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDExpressions.h"

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

// Words of SQL itself are none; in quotes each of them is a name. A full stop ends an alias.
bool mayBeAlias(const QString& text) {
    if (orv::firstFullStop(text) >= 0) return false;
    const orv::WordInfo info = orv::wordInfo(text);
    return !(info.is(orv::wordJoin) || info.is(orv::wordNeverAlias) || info.is(orv::wordOn) ||
             info.is(orv::wordClause) || info.is(orv::wordLogical) || info.is(orv::wordMatching));
}

// Whether the next table, or what a join says of this one, begins with the token.
bool continuesFrom(const orv::TokenRun& run, int index) {
    if (run[index].depth != topLevel) return false;
    if (run[index].kind == orv::SqlToken::Comma) return true;
    const orv::WordInfo info = orv::wordInfo(orv::upperOutsideQuotes(run.textOf(index)));
    return info.is(orv::wordJoin) || info.is(orv::wordNeverAlias) || info.is(orv::wordOn) ||
           info.is(orv::wordClause);
}

// Why no box can be made of what the program answered; empty when one can.
QString answerProblem(const TDataSet& dataSet, const TParams* params) {
    const auto isNameless = [](const auto& item) { return item.Name.isEmpty(); };
    if (std::any_of(dataSet.FieldDefs.begin(), dataSet.FieldDefs.end(), isNameless)) {
        return QStringLiteral(
            "The program gives this table a field without a name: it is not loaded.");
    }
    if (params && std::any_of(params->Items.begin(), params->Items.end(), isNameless)) {
        return QStringLiteral(
            "The program gives this procedure a parameter without a name: it is not loaded.");
    }
    return {};
}

bool isName(const QString& text) {
    const orv::SqlTokens tokens = orv::tokenise(text);
    return tokens.size() == 1 &&
           (tokens.front().kind == orv::SqlToken::Word || text.startsWith(u'\''));
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
    reportClosedBoxes();
    reportOrder();
    reportPlaces();
    reportArguments();
}

void FromLoader::loadItems() {
    for (int index = 0; index < m_node.Count() && m_guard; ++index) {
        const TorvQDParser& child = *m_node.Child(index);
        if (child.Start() < m_readUpTo) continue;  // an alias that was read already
        if (child.Kind() == otTable) {
            TorvQDTable* table = loadTable(child);
            if (!m_guard) return;
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

// --- tables ---

TorvQDTable* FromLoader::loadTable(const TorvQDParser& node) {
    NamedTable table = named(node);
    if (!hasAlias(node)) readDetachedAlias(table);
    m_readUpTo = std::max(table.end, loseAddition(table));
    reportNames(table);
    std::unique_ptr<TDataSet> dataSet;
    std::unique_ptr<TParams> params;
    m_area.m_owner->getTableFields(table.lookup, node.Text(), dataSet, params);
    if (!m_guard) return nullptr;
    if (!dataSet) {
        report(table.start, table.end,
               QStringLiteral("This table is not known and is not loaded."));
        return nullptr;
    }
    if (TorvQDTable* box = boxToReuse(table)) {
        report(table.start, table.end,
               QStringLiteral("This table is on the diagram already: it is not loaded a second "
                              "time."));
        return box;
    }
    if (const QString problem = answerProblem(*dataSet, params.get()); !problem.isEmpty()) {
        report(table.start, table.end, problem);
        return nullptr;
    }
    if (!params) {
        if (table.hasBrackets) loseArguments(node);
        return addBox(table, *dataSet, nullptr);
    }
    const std::vector<Argument> arguments = argumentsOf(node);
    fillParameters(arguments, node, int(dataSet->FieldDefs.size()), *params);
    TorvQDTable* box = addBox(table, *dataSet, params.get());
    if (m_guard) rememberArguments(box, arguments);
    return box;
}

TorvQDTable* FromLoader::addBox(const NamedTable& table, const TDataSet& dataSet,
                                const TParams* params) {
    const bool aliasTaken = !table.alias.isEmpty() && m_area.GetTable(table.alias);
    const bool isQualified = splitAtFullStops(table.written).size() > 1;
    TorvQDTable* box = m_area.addTable({table.written, &dataSet, params != nullptr, params,
                                        params && m_keepsMeaning && !table.hasBrackets,
                                        isQualified ? table.written : QString(), table.alias});
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
    if (box) m_boxes.push_back({box, table.start, table.end});
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
    NamedTable table{node.Text(),  {},        {}, false, node.Location() == inFunction,
                     node.Start(), node.End()};
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
        if (child->Kind() == otAlias && isName(child->Text()) && mayBeAlias(child->Text())) {
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
    if (isName(text) && mayBeAlias(text)) useAlias(table, text, behind[index].end);
}

// What a dialect adds to a table (WITH ORDINALITY) is no alias and no table: it is lost up to the
// next table. Tells where that is.
int FromLoader::loseAddition(const NamedTable& table) {
    if (!m_ledger || table.hasOwnAlias) return table.end;
    const orv::TokenRun behind = m_ledger->tokensIn(table.end, m_node.End());
    if (behind.isEmpty() || continuesFrom(behind, 0)) return table.end;
    const int name = behind.is(0, u"AS") && behind.size() > 1 ? 1 : 0;
    if (mayBeAlias(orv::upperOutsideQuotes(behind.textOf(name)))) return table.end;
    int last = 0;
    while (last + 1 < behind.size() && !continuesFrom(behind, last + 1)) ++last;
    const int end = behind[last].end;
    report(behind.start(), end,
           QStringLiteral("This is no alias, and nothing else that a table can have here: it is "
                          "not loaded."));
    return end;
}

// Names of tables and aliases are written in upper case also where they look like parameters.
void FromLoader::reportNames(const NamedTable& table) {
    if (!m_ledger) return;
    const orv::TokenRun run = m_ledger->tokensIn(table.start, table.end);
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].depth != topLevel || !orv::isParameter(run.textOf(index))) continue;
        m_ledger->reportUpperCase(run[index]);
    }
}

// The host is not asked for the alias of a derived table.
void FromLoader::loseDerivedTable(const TorvQDParser& node) {
    NamedTable bracket{{}, {}, {}, false, false, node.Start(), node.End()};
    readDetachedAlias(bracket);
    if (bracket.hasOwnAlias) readColumnNames(bracket);
    report(bracket.start, bracket.end,
           QStringLiteral("A bracket in FROM cannot be shown as a table: it is not loaded."));
    m_readUpTo = std::max(bracket.end, loseAddition(bracket));
}

// Behind the alias of a derived table names for its columns may stand in brackets.
void FromLoader::readColumnNames(NamedTable& table) const {
    if (!m_ledger) return;
    const orv::TokenRun behind = m_ledger->tokensIn(table.end, m_node.End());
    if (behind.isEmpty() || behind[0].kind != orv::SqlToken::Open) return;
    table.end = behind[behind.behindBracket(0) - 1].end;
}

// --- the report ---

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
