// SPDX-License-Identifier: MIT
#include "meaning/ExpressionMaker.h"

#include "core/Text.h"

#include <algorithm>
#include <utility>

namespace orvtest {

namespace {

const QStringList& wordsOfSql() {
    static const QStringList list = {"GROUP"};
    return list;
}

bool needsQuotes(const QString& name) {
    return wordsOfSql().contains(name) || !orv::isPlainIdentifier(name);
}

}  // namespace

QString ExpressionMaker::spelled(const QString& name) {
    if (!needsQuotes(name) && !m_dice.chance(5)) return name;
    switch (m_dice.below(6)) {
    case 0: return QStringLiteral("`%1`").arg(name);
    case 1: return QStringLiteral("[%1]").arg(name);
    case 2: return orv::quotedName(m_dice.chance(50) ? name.toLower() : name);
    default: return orv::quotedName(name);
    }
}

bool ExpressionMaker::isClear(const QString& column) const {
    return std::count_if(mentions.begin(), mentions.end(),
                         [&](const Mention& mention) { return mention.table->has(column); }) == 1;
}

const RandomColumn& ExpressionMaker::column(ColumnRef ref) const {
    return mentions[std::size_t(ref.mention)].table->columns[std::size_t(ref.column)];
}

QString ExpressionMaker::text(ColumnRef ref) {
    const QString& name = column(ref).name;
    const bool bare = isClear(name) && m_dice.chance(bareNames);
    const QString own = spelled(name);
    return bare ? own : mentions[std::size_t(ref.mention)].qualifier + u'.' + own;
}

ColumnRef ExpressionMaker::anyColumn() {
    const int mention = m_dice.below(int(mentions.size()));
    return {mention, m_dice.below(int(mentions[std::size_t(mention)].table->columns.size()))};
}

ColumnRef ExpressionMaker::columnOf(int mention, bool isText) {
    const std::vector<RandomColumn>& columns = mentions[std::size_t(mention)].table->columns;
    int index = m_dice.below(int(columns.size()));
    while (columns[std::size_t(index)].isText != isText) index = (index + 1) % int(columns.size());
    return {mention, index};
}

// --- values

QString ExpressionMaker::numberConstant() {
    static const QStringList values = {"0",  "0",   "1", "1", "1",  "1",   "2",
                                       "2",  "2",   "3", "3", "-1", "-1",  "- 1",
                                       "-2", "1.5", "4", "4", ".5", "1e1", "NULL"};
    return m_dice.pick(values);
}

QString ExpressionMaker::textConstant() {
    static const QStringList values = {
        "'a'",       "'a'",  "'a'",     "'b'",    "'b'",       "'ab'",    "'x y'",
        "'it''s'",   "'a)'", "'(b, c'", "''",     "'x and y'", "'--'",    "'FROM t'",
        "'a \"q\"'", "'?'",  "'A;'",    "'a\tb'", "x'61'",     "'größe'", "'/* a'"};
    return m_dice.chance(1) ? QStringLiteral("'a\nb'") : m_dice.pick(values);
}

QString ExpressionMaker::numberColumn() {
    return text(columnOf(m_dice.below(int(mentions.size())), false));
}

QString ExpressionMaker::textColumn() {
    return text(columnOf(m_dice.below(int(mentions.size())), true));
}

QString ExpressionMaker::caseOf(const QString& first, const QString& second) {
    const QString otherwise = m_dice.chance(70) ? words({"ELSE", second}) : QString();
    if (m_dice.chance(30)) {
        return words(
            {"CASE", numberColumn(), "WHEN", numberConstant(), "THEN", first, otherwise, "END"});
    }
    const QString more =
        m_dice.chance(25) ? words({"WHEN", predicate(0), "THEN", second}) : QString();
    return words({"CASE WHEN", m_dice.chance(60) ? predicate(0) : condition(0), "THEN", first, more,
                  otherwise, "END"});
}

QString ExpressionMaker::number(int depth) {
    if (depth <= 0 || m_dice.chance(35)) {
        return m_dice.chance(80) ? numberColumn() : numberConstant();
    }
    switch (m_dice.below(17)) {
    case 0: return words({"ABS (", number(depth - 1), ")"});
    case 1: return words({"COALESCE (", number(depth - 1), ",", numberConstant(), ")"});
    case 2: return words({"LENGTH (", characters(depth - 1), ")"});
    case 3: {
        const QString first = number(depth - 1);
        return caseOf(first, numberConstant());
    }
    case 4: return words({"CAST (", value(depth - 1), "AS INTEGER )"});
    case 5: return scalar();
    case 6: return words({"-", numberColumn()});
    case 7: return words({"NULLIF (", number(depth - 1), ",", numberConstant(), ")"});
    case 8: return words({numberColumn(), m_dice.pick({"&", "|", "<<", "%", "/"}), "2"});
    case 9: return words({"~", numberColumn()});
    case 10: return words({"INSTR (", textColumn(), ",", textConstant(), ")"});
    default: break;
    }
    const QString sum = words({number(depth - 1), m_dice.pick({"+", "-", "*"}), number(depth - 1)});
    return m_dice.chance(35) ? inBrackets(sum) : sum;
}

QString ExpressionMaker::numberOf(int mention) {
    return words({text(columnOf(mention, false)), m_dice.pick({"+", "-", "*"}), numberConstant()});
}

QString ExpressionMaker::characters(int depth) {
    if (depth <= 0 || m_dice.chance(35)) {
        return m_dice.chance(80) ? textColumn() : textConstant();
    }
    switch (m_dice.below(8)) {
    case 0: return words({"UPPER (", characters(depth - 1), ")"});
    case 1: return words({"LOWER (", characters(depth - 1), ")"});
    case 2: return words({"SUBSTR (", characters(depth - 1), ", 1 , 1 )"});
    case 3: return words({"REPLACE (", textColumn(), ", 'a' , ',' )"});
    case 4: {
        const QString first = characters(depth - 1);
        return caseOf(first, textConstant());
    }
    case 5: return words({"CAST (", number(depth - 1), "AS TEXT )"});
    case 6: return words({"COALESCE (", characters(depth - 1), ",", textConstant(), ")"});
    default: break;
    }
    return words({characters(depth - 1), "||", characters(0)});
}

QString ExpressionMaker::value(int depth) {
    return m_dice.chance(60) ? number(depth) : characters(depth);
}

// --- conditions

QString ExpressionMaker::comparisonSign() {
    static const QStringList signs = {"=", "=", "=", "=", "<>", "!=", "<", ">", "<=", ">="};
    return m_dice.pick(signs);
}

QString ExpressionMaker::condition(int depth) {
    const int count = m_dice.below(4) + (depth > 0 ? 1 : 0);
    const int style = m_dice.below(100);
    QStringList parts = {term(depth)};
    for (int index = 1; index < count; ++index) {
        const bool isAnd = style < 45 || (style >= 65 && m_dice.chance(50));
        parts << (isAnd ? QStringLiteral("AND") : QStringLiteral("OR")) << term(depth);
    }
    return parts.join(u' ');
}

QString ExpressionMaker::term(int depth) {
    QString text;
    if (m_dice.chance(14)) text = QStringLiteral("NOT ");
    if (!text.isEmpty() && m_dice.chance(8)) text += QStringLiteral("NOT ");
    if (depth > 0 && m_dice.chance(30)) {
        const QString inside = inBrackets(condition(depth - 1));
        return text + (m_dice.chance(10) ? inBrackets(inside) : inside);
    }
    return text + predicate(depth);
}

QString ExpressionMaker::predicate(int depth) {
    const int expressions = depth > 0 ? 1 : 0;
    switch (m_dice.below(20)) {
    case 0:
    case 1: return words({value(0), m_dice.pick({"IS NULL", "IS NOT NULL"})});
    case 2:
    case 3: return membership(depth);
    case 4:
    case 5:
        return words({number(expressions), m_dice.chance(30) ? "NOT" : "", "BETWEEN",
                      m_dice.chance(50) ? numberConstant() : number(expressions), "AND",
                      m_dice.chance(50) ? numberConstant() : number(expressions)});
    case 6: return pattern();
    case 7: return depth > 0 ? exists() : oddPredicate(depth);
    case 8: return oddPredicate(depth);
    case 9: return words({characters(1), comparisonSign(), characters(1)});
    case 10: return words({characters(0), comparisonSign(), textConstant()});
    case 11: return words({numberConstant(), comparisonSign(), number(expressions)});
    case 12: return words({number(2), comparisonSign(), number(expressions)});
    default: break;
    }
    return words({number(0), comparisonSign(), m_dice.chance(60) ? numberConstant() : number(1)});
}

QString ExpressionMaker::membership(int depth) {
    const bool isText = m_dice.chance(40);
    const QString side = isText ? characters(0) : number(depth > 0 ? 1 : 0);
    const QString in = m_dice.chance(35) ? QStringLiteral("NOT IN (") : QStringLiteral("IN (");
    if (depth > 0 && m_dice.chance(40)) {
        return words({side, in, subSelect({}, m_dice.chance(50), isText), ")"});
    }
    QStringList list;
    for (int count = m_dice.between(1, 3); count > 0; --count) {
        list << (isText ? textConstant() : m_dice.chance(80) ? numberConstant() : number(1));
    }
    return words({side, in, list.join(QStringLiteral(" , ")), ")"});
}

QString ExpressionMaker::pattern() {
    const QString side = characters(0);
    const QString like = m_dice.pick({"LIKE", "LIKE", "LIKE", "NOT LIKE", "GLOB"});
    if (like == u"GLOB") return words({side, like, "'a*'"});
    if (m_dice.chance(25)) return words({side, like, "'!%%' ESCAPE '!'"});
    return words({side, like, m_dice.pick({"'a%'", "'_b'", "'%'", "'%)%'", "'a' || '%'"})});
}

// What databases take and few people write.
QString ExpressionMaker::oddPredicate(int depth) {
    switch (m_dice.below(12)) {
    case 0: return number(0);  // true where it is not zero
    case 1: return words({value(0), m_dice.pick({"ISNULL", "NOTNULL", "NOT NULL"})});
    case 2: return words({number(0), m_dice.pick({"IS", "IS NOT"}), number(0)});
    case 3: return words({textColumn(), "COLLATE NOCASE", comparisonSign(), textConstant()});
    case 4: return words({"(", numberColumn(), ",", numberColumn(), ") = ( 1 , 2 )"});
    case 5: return words({numberColumn(), "= ", numberColumn(), "=", numberColumn()});
    case 6:
        return words({inBrackets(predicate(0)), "IS", m_dice.pick({"TRUE", "NULL", "NOT TRUE"})});
    case 7: return words({inBrackets(number(1)), comparisonSign(), inBrackets(number(1))});
    case 8: return words({numberColumn(), "==", numberConstant()});
    case 9: return words({caseOf("1", "0"), "=", "1"});
    case 10:
        return words({inBrackets(words({number(0), "+", number(0)})), "* 2 >", numberConstant()});
    default: break;
    }
    return depth > 0 ? words({scalar(), comparisonSign(), number(0)})
                     : words({numberColumn(), "IS NOT DISTINCT FROM", numberConstant()});
}

// --- sub-queries

// SELECT of one column of a table that stands for itself; correlated with the outer tables.
QString ExpressionMaker::subSelect(const QString& column, bool correlated, bool isText) {
    const RandomTable& table =
        m_data.tables()[std::size_t(m_dice.below(int(m_data.tables().size())))];
    const bool isAliased = m_dice.chance(60);
    ExpressionMaker inner(m_dice, m_data);
    const QString name = spelled(table.name);
    const QString qualifier = isAliased ? m_dice.pick({"S1", "Q", "EMP", "\"s 2\""}) : name;
    inner.mentions = {{&table, qualifier}};
    inner.bareNames = 30;
    const QString selected = column.isEmpty() ? inner.text(inner.columnOf(0, isText)) : column;
    QString text = words({"SELECT", m_dice.chance(10) ? "DISTINCT" : "", selected, "FROM", name,
                          isAliased ? (m_dice.chance(30) ? "AS " : "") + qualifier : QString()});
    QStringList conditions;
    // The inner name hides an equal outer one.
    const bool isHidden =
        std::any_of(mentions.begin(), mentions.end(), [&](const Mention& mention) {
            return orv::unquotedName(mention.qualifier).toUpper() ==
                   orv::unquotedName(qualifier).toUpper();
        });
    if (correlated && !isHidden) {
        const int bare = std::exchange(bareNames, 0);
        conditions << words({inner.text(inner.columnOf(0, false)), "=", numberColumn()});
        bareNames = bare;
    }
    if (m_dice.chance(40)) conditions << inner.condition(0);
    if (conditions.size() > 1) conditions.back() = inBrackets(conditions.back());
    if (!conditions.isEmpty()) {
        text = words({text, "WHERE", conditions.join(QStringLiteral(" AND "))});
    }
    return text;
}

QString ExpressionMaker::exists() {
    const QString selected = m_dice.pick({"1", "*", "NULL"});
    return words({"EXISTS (", subSelect(selected, m_dice.chance(80), false), ")"});
}

QString ExpressionMaker::scalar() {
    if (m_dice.chance(60)) {
        return words({"(", subSelect("COUNT ( * )", m_dice.chance(60), false), ")"});
    }
    const RandomTable& table =
        m_data.tables()[std::size_t(m_dice.below(int(m_data.tables().size())))];
    ExpressionMaker inner(m_dice, m_data);
    inner.mentions = {{&table, QStringLiteral("S3")}};
    const QString selected = inner.text(inner.columnOf(0, false));
    const QString from = words({"FROM", spelled(table.name), "S3"});
    if (m_dice.chance(50)) {
        return words(
            {"( SELECT", m_dice.pick({"MAX (", "MIN (", "SUM ("}), selected, ")", from, ")"});
    }
    return words({"( SELECT", selected, from, "ORDER BY", selected, "LIMIT 1 )"});
}

}  // namespace orvtest
