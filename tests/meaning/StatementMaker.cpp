// SPDX-License-Identifier: MIT
#include "meaning/StatementMaker.h"

#include "core/Text.h"

#include <algorithm>

namespace orvtest {

namespace {

const QStringList& columnNames() {
    static const QStringList names = {"ID", "X", "Y", "NAME", "C"};
    return names;
}

// GROUP BY finds a column of this name before an output column.
bool isColumnName(const QString& name) {
    return columnNames().contains(name);
}

// An apostrophe makes a constant of it where it is no alias.
bool isSortName(const QString& name) {
    return !name.isEmpty() && !name.startsWith(u'\'');
}

}  // namespace

RandomStatement StatementMaker::make() {
    m_subject = Subject(m_dice.below(5));
    m_expressions.bareNames = m_dice.pick({"0", "0", "50", "100"}).toInt();
    m_joins = Joins(m_dice.below(isAbout(Subject::Joins) ? 3 : 2));
    m_linksOnly = m_dice.chance(50) || !isAbout(Subject::Joins);
    m_isGrouped =
        m_subject == Subject::Groups || (m_subject == Subject::Everything && m_dice.chance(30));
    mentionTables();
    const bool isOdd = m_subject == Subject::Everything && m_dice.chance(10);
    const QString from = isOdd ? oddFrom() : fromText();
    m_isDistinct = !m_isGrouped && m_dice.chance(12);
    if (m_isGrouped) {
        makeGroupedColumns();
    } else {
        makeColumns();
    }
    const bool saysAll = !m_isDistinct && m_dice.chance(2);
    QString text = words({"SELECT", m_isDistinct ? "DISTINCT" : "", saysAll ? "ALL" : "",
                          m_selected.join(QStringLiteral(" , ")), "FROM", from});
    text = words({text, whereText()});
    if (m_isGrouped) text = words({text, groupByText()});
    text = words({text, m_dice.chance(12) ? tailText() : orderText()});
    m_statement.text = text;
    return m_statement;
}

QString StatementMaker::whereText() {
    const bool isSimple = !isAbout(Subject::Conditions);
    if (m_dice.chance(isSimple ? 75 : 20)) return {};
    if (!isSimple) return words({"WHERE", m_expressions.condition(m_dice.below(3))});
    return words({"WHERE", m_expressions.text(m_expressions.anyColumn()), "IS NOT NULL"});
}

// --- FROM

const RandomTable& StatementMaker::newTable() {
    const auto& tables = m_data.tables();
    const auto any = [&]() -> const RandomTable& {
        return tables[std::size_t(m_dice.below(int(tables.size())))];
    };
    if (m_dice.chance(25)) return any();
    const RandomTable* table = &any();
    for (int tries = 0; tries < 5 && isMentioned(*table); ++tries) table = &any();
    return *table;
}

bool StatementMaker::isMentioned(const RandomTable& table) const {
    const auto& mentions = m_expressions.mentions;
    return std::any_of(mentions.begin(), mentions.end(),
                       [&](const Mention& mention) { return mention.table == &table; });
}

void StatementMaker::mentionTables() {
    static const int many[] = {2, 3, 3, 3, 4, 4, 5};
    static const int few[] = {1, 1, 1, 2, 2, 3};
    const int count = isAbout(Subject::Joins) ? many[m_dice.below(int(std::size(many)))]
                                              : few[m_dice.below(int(std::size(few)))];
    const int commas = m_dice.pick({"0", "0", "20", "30"}).toInt();
    int item = 0;
    for (int index = 0; index < count; ++index) {
        const RandomTable& table = newTable();
        const QString qualifier = newQualifier(table, isMentioned(table));
        if (index > 0 && m_dice.chance(commas)) ++item;
        m_expressions.mentions.push_back({&table, qualifier, item});
    }
}

bool StatementMaker::isTaken(const QString& qualifier) const {
    return std::any_of(m_expressions.mentions.begin(), m_expressions.mentions.end(),
                       [&](const Mention& mention) {
                           return orv::unquotedName(mention.qualifier).toUpper() ==
                                  orv::unquotedName(qualifier).toUpper();
                       });
}

// Writes the mention, too: "NAME", "NAME ALIAS" or "NAME AS ALIAS".
QString StatementMaker::newQualifier(const RandomTable& table, bool isNeeded) {
    const QString schema = m_dice.chance(2) ? QStringLiteral("main.") : QString();
    QString name = m_expressions.spelled(table.name);
    if (!isNeeded && !isTaken(name) && m_dice.chance(50)) {
        m_tableTexts.push_back(schema + name);
        return name;
    }
    QStringList aliases = {"A1", "B", "B2", "E", "\"e 1\"", "[Z]", "Q1", "LEFTMOST"};
    if (m_dice.chance(6)) aliases = {"EMP", "DEPT", "ORD", "PARTS", "T1"};
    QString alias = m_dice.pick(aliases);
    while (isTaken(alias)) alias = m_dice.pick({"A1", "B", "C1", "D", "E", "F", "G"});
    m_tableTexts.push_back(words({schema + name, m_dice.chance(35) ? "AS" : "", alias}));
    return alias;
}

QString StatementMaker::fromText() {
    QString text = m_tableTexts.front();
    for (int index = 1; index < int(m_tableTexts.size()); ++index) {
        const auto& mentions = m_expressions.mentions;
        const bool startsItem =
            mentions[std::size_t(index)].item != mentions[std::size_t(index - 1)].item;
        if (startsItem) {
            text = words({text, m_dice.chance(80) ? "," : "CROSS JOIN", tableText(index)});
        } else {
            text = words({text, joinWords(), tableText(index), "ON", onText(index)});
        }
    }
    return text;
}

QString StatementMaker::tableText(int mention) {
    return m_tableTexts[std::size_t(mention)];
}

QString StatementMaker::joinWords() {
    const int kind = m_joins == Joins::Inner          ? 0
                     : m_joins == Joins::InnerAndLeft ? m_dice.below(2)
                                                      : m_dice.below(4);
    const QString outer = m_dice.chance(40) ? QStringLiteral("OUTER JOIN") : QStringLiteral("JOIN");
    switch (kind) {
    case 0: return m_dice.pick({"JOIN", "INNER JOIN"});
    case 1: return words({"LEFT", outer});
    case 2: return words({"RIGHT", outer});
    default: break;
    }
    return words({"FULL", outer});
}

// Mostly a table of the same item of the comma list.
int StatementMaker::partnerOf(int mention) {
    const auto& mentions = m_expressions.mentions;
    if (m_dice.chance(6)) return m_dice.below(mention);
    int first = mention;
    while (first > 0 &&
           mentions[std::size_t(first - 1)].item == mentions[std::size_t(mention)].item) {
        --first;
    }
    return first + m_dice.below(mention - first);
}

QString StatementMaker::link(int first, int second) {
    const bool isText = m_dice.chance(30);
    const QString sign = m_dice.chance(80) ? QStringLiteral("=") : m_expressions.comparisonSign();
    return words(
        {m_expressions.text(m_expressions.columnOf(first, isText)), sign,
         m_expressions.text(m_expressions.columnOf(second, m_dice.chance(5) ? !isText : isText))});
}

QString StatementMaker::onText(int mention) {
    const int partner = partnerOf(mention);
    QStringList parts = {m_dice.chance(50) ? link(partner, mention) : link(mention, partner)};
    while (m_dice.chance(m_joins == Joins::Inner ? 30 : 20)) parts << onPart(mention, partner);
    if (m_dice.chance(10)) std::swap(parts.front(), parts.back());
    if (!m_linksOnly && m_dice.chance(3)) {
        return words({m_dice.chance(50) ? "NOT" : "", parts.join(QStringLiteral(" OR "))});
    }
    if (m_dice.chance(15)) {
        for (QString& part : parts) part = m_expressions.inBrackets(part);
    }
    const QString text = parts.join(QStringLiteral(" AND "));
    return m_dice.chance(20) ? m_expressions.inBrackets(text) : text;
}

// What else stands in an ON: another comparison, another table, a filter.
QString StatementMaker::onPart(int mention, int partner) {
    const int other = m_dice.below(mention);
    switch (m_dice.below(m_linksOnly ? 6 : 16)) {
    case 0:
    case 1:
    case 2: return link(mention, partner);
    case 3: return link(mention, partnerOf(mention));
    case 4: return link(partner, partnerOf(mention));
    case 5: return link(other, mention);
    case 12:
    case 13:
        return words({m_expressions.text(m_expressions.columnOf(mention, false)),
                      m_expressions.comparisonSign(), m_expressions.numberConstant()});
    case 6:
        return words({m_expressions.text(m_expressions.columnOf(partner, true)),
                      m_expressions.comparisonSign(), m_expressions.textConstant()});
    case 7:
        return words({m_expressions.numberOf(mention), "=",
                      m_expressions.text(m_expressions.columnOf(partner, false))});
    case 8:
        return words({m_expressions.text(m_expressions.columnOf(mention, m_dice.chance(50))),
                      m_dice.pick({"IS NULL", "IS NOT NULL", "IN ( 1 , 2 )", "BETWEEN 0 AND 2"})});
    case 9:
        return m_expressions.inBrackets(
            words({link(mention, partner), "OR", link(mention, other)}));
    case 10:
        return words({m_expressions.numberOf(other), "=",
                      m_expressions.text(m_expressions.columnOf(mention, false))});
    case 11: return link(mention, mention);
    default: break;
    }
    return words({"NOT", m_expressions.text(m_expressions.columnOf(mention, false)), "= 2"});
}

// What a diagram cannot show.
QString StatementMaker::oddFrom() {
    const auto& mentions = m_expressions.mentions;
    if (mentions.size() == 1) {
        const Mention& only = mentions.front();
        return words({"( SELECT * FROM", m_expressions.spelled(only.table->name), ")",
                      m_dice.chance(50) ? "AS" : "", only.qualifier});
    }
    QString text = m_tableTexts.front();
    const int kind = m_dice.below(3);
    for (int index = 1; index < int(m_tableTexts.size()); ++index) {
        if (kind == 0) {
            text = words({text, joinWords(), tableText(index)});
            continue;
        }
        const RandomTable& table = *mentions[std::size_t(index)].table;
        QString shared;
        for (const RandomColumn& column : table.columns) {
            if (mentions.front().table->has(column.name)) shared = column.name;
        }
        if (shared.isEmpty()) {
            text = words({text, ",", tableText(index)});
        } else if (kind == 1) {
            text = words({text, joinWords(), tableText(index), "USING (",
                          m_expressions.spelled(shared), ")"});
        } else {
            text = words({text, "NATURAL", joinWords(), tableText(index)});
        }
    }
    return text;
}

// --- columns

void StatementMaker::addOutput(const QString& text, bool isColumn) {
    const QString name = m_dice.chance(45) ? outputName() : QString();
    m_outputs.push_back({text, name, isColumn});
    const bool needsAs = name.startsWith(u'\'') || name.startsWith(u'[');
    const bool hasAs = !name.isEmpty() && (m_dice.chance(65) || needsAs);
    m_selected << words({text, hasAs ? "AS" : "", name});
}

// Without two alike.
QString StatementMaker::outputName() {
    static const QStringList names = {"K1",      "K2",    "TOTAL",      "\"Sum of X\"",
                                      "\"a.b\"", "K_3",   "\"FROM\"",   "[k 4]",
                                      "R",       "VALUE", "\"q\"\"q\"", "'K6'"};
    QString name = m_dice.chance(12) ? m_dice.pick(columnNames()) : m_dice.pick(names);
    if (m_dice.chance(1)) name = QStringLiteral("größe");
    for (int number = 1; std::any_of(m_outputs.begin(), m_outputs.end(),
                                     [&](const Output& output) { return output.name == name; });
         ++number) {
        name = QStringLiteral("N%1").arg(number);
    }
    return name;
}

void StatementMaker::addStar(int mention) {
    const auto& mentions = m_expressions.mentions;
    const bool all = mention < 0;
    m_selected << (all ? QStringLiteral("*") : mentions[std::size_t(mention)].qualifier + ".*");
    for (int index = all ? 0 : mention; index < (all ? int(mentions.size()) : mention + 1);
         ++index) {
        for (std::size_t column = 0; column < mentions[std::size_t(index)].table->columns.size();
             ++column) {
            m_outputs.push_back({});
        }
    }
}

void StatementMaker::makeColumns() {
    if (m_dice.chance(m_subject == Subject::Joins ? 50 : 12)) {
        addStar(-1);
        if (m_dice.chance(80)) return;
    }
    for (int count = m_dice.between(1, 4); count > 0; --count) addColumn();
}

void StatementMaker::addColumn() {
    const bool isSimple = !isAbout(Subject::Columns);
    switch (isSimple ? 23 : m_dice.below(24)) {
    case 0: addStar(m_dice.below(int(m_expressions.mentions.size()))); return;
    case 1: addOutput(m_expressions.numberConstant(), false); return;
    case 2: addOutput(m_expressions.textConstant(), false); return;
    case 3: addOutput(m_expressions.predicate(0), false); return;
    case 4: addOutput(m_expressions.inBrackets(m_expressions.number(2)), false); return;
    case 5:
        addOutput(words({m_dice.pick({"SUM (", "COUNT (", "MAX ("}), m_expressions.number(1),
                         ") OVER ( PARTITION BY", m_expressions.value(0), ")"}),
                  false);
        return;
    case 6:
    case 7:
    case 8: addOutput(m_expressions.number(2), false); return;
    case 9:
    case 10: addOutput(m_expressions.characters(2), false); return;
    default: addOutput(m_expressions.text(m_expressions.anyColumn()), true);
    }
}

// --- groups

QString StatementMaker::aggregateCall() {
    switch (m_dice.below(14)) {
    case 0:
    case 1:
    case 2: return QStringLiteral("COUNT ( * )");
    case 3: return words({"COUNT ( DISTINCT", m_expressions.value(0), ")"});
    case 4: return words({"COUNT (", m_expressions.value(0), ")"});
    case 5: return words({"SUM (", m_expressions.number(2), ")"});
    case 6: return words({"AVG (", m_expressions.number(0), ")"});
    case 7: return words({m_dice.pick({"MIN (", "MAX ("}), m_expressions.characters(1), ")"});
    case 8: return words({"TOTAL (", m_expressions.number(0), ")"});
    case 9: return words({"SUM ( DISTINCT", m_expressions.number(0), ")"});
    default: break;
    }
    return words({m_dice.pick({"SUM (", "MIN (", "MAX ("}), m_expressions.number(0), ")"});
}

QString StatementMaker::aggregate() {
    switch (m_dice.below(10)) {
    case 0: return words({aggregateCall(), m_dice.pick({"+ 1", "- 1", "* 2"})});
    case 1: return words({aggregateCall(), m_dice.pick({"+", "||"}), aggregateCall()});
    case 2: return words({"COALESCE (", aggregateCall(), ", 0 )"});
    case 3: return words({"CASE WHEN", aggregateCall(), "> 1 THEN 'm' ELSE 'f' END"});
    case 4:
        return m_dice.chance(60)
                   ? aggregateCall()
                   : words({aggregateCall(), "FILTER ( WHERE", m_expressions.predicate(0), ")"});
    default: break;
    }
    return aggregateCall();
}

void StatementMaker::addKey() {
    const bool isColumn = m_dice.chance(75);
    const QString text =
        isColumn ? m_expressions.text(m_expressions.anyColumn()) : m_expressions.value(1);
    if (m_dice.chance(12)) {
        m_unselectedKeys << text;
        return;
    }
    m_keys.push_back(int(m_outputs.size()));
    addOutput(text, isColumn);
}

void StatementMaker::makeGroupedColumns() {
    const int keys = m_dice.below(3);
    const bool aggregatesFirst = m_dice.chance(25);
    if (aggregatesFirst) addOutput(aggregate(), false);
    for (int count = keys; count > 0; --count) addKey();
    for (int count = m_dice.between(m_selected.isEmpty() ? 1 : 0, 2); count > 0; --count) {
        addOutput(aggregate(), false);
    }
    if (m_dice.chance(4)) addOutput(m_expressions.numberConstant(), false);
}

QString StatementMaker::groupByText() {
    QStringList items;
    for (const int key : m_keys) {
        const Output& output = m_outputs[std::size_t(key)];
        const int kind = m_dice.below(10);
        if (kind < 2) {
            items << QString::number(key + 1);
        } else if (kind < 4 && isSortName(output.name) && !isColumnName(output.name)) {
            items << output.name;
        } else {
            items << output.text;
        }
    }
    items << m_unselectedKeys;
    if (items.size() > 1 && m_dice.chance(30)) items.move(0, items.size() - 1);
    const QString having = m_dice.chance(35) ? havingText() : QString();
    if (items.isEmpty()) return m_dice.chance(20) ? having : QString();
    return words({"GROUP BY", items.join(QStringLiteral(" , ")), having});
}

QString StatementMaker::havingText() {
    QStringList parts = {"HAVING", havingPart()};
    while (m_dice.chance(35)) parts << m_dice.pick({"AND", "AND", "OR"}) << havingPart();
    return parts.join(u' ');
}

QString StatementMaker::havingPart() {
    const QString sign = m_expressions.comparisonSign();
    switch (m_dice.below(9)) {
    case 0: return words({aggregateCall(), sign, aggregateCall()});
    case 1: return words({m_expressions.numberConstant(), sign, aggregateCall()});
    case 2: return words({aggregate(), sign, m_expressions.numberConstant()});
    case 3: return words({aggregateCall(), "IS NOT NULL"});
    case 4:
        return words(
            {aggregateCall(), m_dice.pick({"BETWEEN 0 AND 3", "IN ( 1 , 2 )", "NOT IN ( 1 )"})});
    case 5: return words({"NOT (", aggregateCall(), sign, "2 )"});
    case 6:
        if (!m_keys.empty()) {
            return words({m_outputs[std::size_t(m_keys.front())].text, sign,
                          m_expressions.numberConstant()});
        }
        break;
    case 7: return words({"(", aggregateCall(), sign, "1 OR", aggregateCall(), "IS NULL )"});
    default: break;
    }
    return words({aggregateCall(), sign, m_expressions.numberConstant()});
}

// --- the end

// An item that sorts by an output column, or by something that is not selected.
QString StatementMaker::sortItem() {
    const int index = m_dice.below(int(m_outputs.size()));
    const Output& output = m_outputs[std::size_t(index)];
    const bool isFree = !m_isGrouped && !m_isDistinct && m_dice.chance(10);
    m_statement.sortColumns.push_back(isFree ? -1 : index);
    if (isFree) return m_expressions.value(m_dice.below(2));
    if (isSortName(output.name) && m_dice.chance(55)) return output.name;
    const bool isValue = output.text.isEmpty() || output.text.front().isDigit() ||
                         output.text.startsWith(u'-') || output.text.startsWith(u'\'');
    // A bare name would rather be that of another output column.
    const bool isClear = output.text.contains(u'.') ||
                         std::none_of(m_outputs.begin(), m_outputs.end(), [&](const Output& other) {
                             return isColumnName(other.name);
                         });
    if (!isValue && m_dice.chance(65) && isClear) return output.text;
    return QString::number(index + 1);
}

QString StatementMaker::orderText() {
    if (!m_dice.chance(m_subject == Subject::Joins ? 10 : 40))
        return m_dice.chance(4) ? QStringLiteral("LIMIT 100000") : QString();
    QStringList items;
    for (int count = m_dice.between(1, 3); count > 0; --count) {
        items << words({sortItem(), m_dice.pick({"", "", "", "", "ASC", "DESC", "DESC", "DESC"}),
                        m_dice.chance(2) ? "NULLS LAST" : ""});
    }
    m_statement.isSorted = true;
    const auto& columns = m_statement.sortColumns;
    const bool sortsFreely = std::find(columns.begin(), columns.end(), -1) != columns.end();
    m_statement.sortsTotally = sortsFreely || m_dice.chance(40);
    if (m_statement.sortsTotally) {
        for (int index = 1; index <= int(m_outputs.size()); ++index)
            items << QString::number(index);
    }
    const bool limits = m_statement.sortsTotally && m_dice.chance(40);
    return words({"ORDER BY", items.join(QStringLiteral(" , ")), limits ? limitText() : QString()});
}

QString StatementMaker::limitText() {
    return m_dice.pick({"LIMIT 3", "LIMIT 5 OFFSET 1", "LIMIT 1 , 4", "LIMIT 0", "LIMIT 2 + 1"});
}

QString StatementMaker::tailText() {
    const auto& tables = m_data.tables();
    const RandomTable& table = tables[std::size_t(m_dice.below(int(tables.size())))];
    QStringList columns;
    for (std::size_t index = 0; index < m_outputs.size(); ++index) {
        columns << m_expressions.spelled(
            table.columns[std::size_t(m_dice.below(int(table.columns.size())))].name);
    }
    QString select =
        words({m_dice.pick({"UNION", "UNION ALL", "EXCEPT", "INTERSECT"}), "SELECT",
               columns.join(QStringLiteral(" , ")), "FROM", m_expressions.spelled(table.name)});
    if (m_dice.chance(60)) return select;
    QStringList items;
    for (int index = 1; index <= int(m_outputs.size()); ++index) items << QString::number(index);
    m_statement.isSorted = true;
    m_statement.sortsTotally = true;
    return words({select, "ORDER BY", items.join(QStringLiteral(" , "))});
}

}  // namespace orvtest
