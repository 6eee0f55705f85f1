// SPDX-License-Identifier: MIT
#include "support/RandomState.h"

#include "catalogue/ORVQDOperators.h"
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/ProcessName.h"
#include "parser/ORVQDParser.h"

#include <QListWidget>
#include <QRegularExpression>
#include <QTreeWidget>

#include <optional>

namespace orvtest {

namespace {

// --- the host
// -------------------------------------------------------------------------------------

// Words that the host wants quoted; names of a table and of fields are among them.
const QStringList reservedWords = {"ORDER", "GROUP", "SELECT"};

// Names that SQL takes as they are, and names in need of quotes. The last one is a qualified name,
// which a host hands over in quotes and which then needs an alias.
const QStringList plainTables = {"T", "U", "EMPLOYEE", "DEPT", "ORDERS"};
const QStringList quotedTables = {"my table", "S.T",    "lower", "q\"q",
                                  "a'b",      "x; (z)", "ORDER", "\"S\".\"T\""};
const QString qualifiedTable = quotedTables.back();

// What a user types over a caption: plain, in need of quotes, in quotes, with a full stop,
// keywords.
const QStringList typedAliases = {"X1", "Y2",      "my z",      "W$",    "e",  "\u00c4",  "x.y",
                                  "T1", "union",   "a\"b",      "U9",    "ON", "\"q r\"", "1ST",
                                  "O",  "LIMIT",   "O'CLOCK",   "DEPT2", "_N", "q(r",     "a, b",
                                  "AB", "\"u v\"", "Employee7", "EE"};

struct OperatorTexts {
    const char* name;
    const char* prefix;
    const char* relate;
    const char* postfix;
    int count;
};

const OperatorTexts ownOperators[] = {
    {"CONTAINING", "", "", "", 1},
    {"STARTING WITH", "", "", "", 1},
    {"NOT STARTING WITH", "", "", "", 1},
    {"IS DISTINCT FROM", "", "", "", 1},
    {"SOUNDS LIKE", "", "", "", 1},
    {"IS TRUE", "", "", "", 0},
    {"IS NOT EMPTY", "", "", "", 0},
    {"~", "", "", "", 1},
    {"!~*", "", "", "", 1},
    {"==", "", "", "", 1},
    {"@>", "", "", "", 1},
    {"!=", "", "", "", 1},
    {"<=>", "", "", "", 1},
    {"MATCHES", "", "", " ESCAPE '!'", 1},
    {"IN LIST", "LIST (", "", ")", 1},
    {"IN SET", "{", "", "}", 1},
    {"HAS ANY", "(SELECT ", "", ")", 1},
    {"OVERLAPS", "(", ", ", ")", 2},
    {"NEAR", "", " to ", "", 2},
    {"BETWEEN SYMMETRIC", "", " and ", "", 2},
    {"NOT BETWEEN SYMMETRIC", "", " and ", "", 2},
    {"BETWEEN ALL", "", " and ", "", 3},
    {"WITHIN", "ANY ", " OF ", " ROWS", 3},
    {"OUTSIDE", "", " AND ", "", 2},
    {"[=]", "", "", "", 1},
    {"->>", "", "", "", 1},
    {"DURING", "PERIOD (", ", ", ")", 2},
    {"SIMILAR", "TO ", " ESCAPE ", "", 2},
    {"RANGE", "", " .. ", "", 2},
    {"IS BETWEEN", "", " and ", " INCLUSIVE", 2},
    {"EXCLUDES", "", " ; ", "", 2},
};

// --- texts of operands
// ----------------------------------------------------------------------------

const QString caseText = "CASE WHEN {1,0} = 1 AND B > 2 OR C IN (1, 2) THEN 'x, y' ELSE 'z' END";

// What may stand on the left: no operator of a catalogue at its own level.
const QStringList leftSides = {"{0,0} + 1",
                               "({0,0} + {1,1}) * 2",
                               "LOWER({0,1})",
                               "LEFT({0,0}, 1)",
                               "UPPER({0,0})",
                               "UPPER( {0,0} )",
                               "COALESCE({0,0}, {1,1}, -1)",
                               "CAST({0,0} AS VARCHAR(10))",
                               "EXTRACT(YEAR FROM {0,0})",
                               caseText,
                               "'x'",
                               "'it''s (not) [x], ok'",
                               "5",
                               "-5",
                               "- {0,0}",
                               "(SELECT MAX(A) FROM U WHERE X = 1 AND Y = 2)",
                               "{0,0} || ', '",
                               "DATE '1995-01-01'",
                               "({0,0}, {1,1})",
                               "({0,0})",
                               "{0,0} COLLATE NOCASE",
                               "{0,0} AT TIME ZONE 'UTC'",
                               "{0,0}::TEXT",
                               ":p1",
                               "{0,0} << 2",
                               "SUM({0,0})",
                               "COUNT(*)",
                               "A",
                               "EXTRACT(DAY FROM {0,0})",
                               "TRIM(BOTH ' ' FROM {0,0})",
                               "POSITION('a' IN {0,0})",
                               "SUBSTRING({0,0} FROM 1 FOR 2)",
                               "CASE {0,0} WHEN 1 THEN 'END' ELSE CASE WHEN B THEN 1 END END",
                               "''",
                               "'\u00dcn\u00efc\u00f6de \U0001F600'",
                               "(SELECT A FROM U UNION SELECT B FROM T LIMIT 1)",
                               "{0,0} MOD 2",
                               "(({0,0}))",
                               "(('x') || {0,0})",
                               "LOWER (  {0,0} )",
                               "\"f(x)\"(1, 2)",
                               "SUM({0,0}) OVER (PARTITION BY {1,1} ORDER BY {0,0} DESC)",
                               "COUNT(DISTINCT {0,0})",
                               "ROW({0,0}, 1)",
                               "TIMESTAMP '2000-01-01 00:00:00'"};

// What may stand on the right of an operator with one operand. The first ones say the same to any
// operator; the last ones begin with words that some operator of a catalogue ends with.
const QStringList rightSides = {"5",
                                "-5",
                                "+5",
                                "1.5",
                                "-0.5E-3",
                                "NULL",
                                "'x'",
                                "'it''s'",
                                "'a)'",
                                "'(b'",
                                "'a, b'",
                                "' AND '",
                                "' or '",
                                "'--'",
                                "'/* */'",
                                "'[x]'",
                                "'`'",
                                "'\"'",
                                "';'",
                                "' UNION SELECT '",
                                "'a' || 'b'",
                                "N'x'",
                                "X'FF'",
                                "\"q(\"",
                                "\"a, b\".\"it's\"",
                                "DATE '1995-01-01' + INTERVAL '1' DAY",
                                "{1,0} + 1",
                                "({1,0} + 1) * 2",
                                "- ({1,0} + 1)",
                                "-{1,0}",
                                "(5)",
                                "((5))",
                                "(-5)",
                                "('x')",
                                "({1,0})",
                                "(SELECT MAX(A) FROM U WHERE X = 1 AND Y = 2)",
                                "(select max(a) from u where x = 'lower')",
                                "UPPER({1,0})",
                                "UPPER( {1,0} )",
                                "LOWER('x')",
                                "COALESCE({1,0}, 0, -1)",
                                "COALESCE({1,0},0)",
                                "CAST({1,0} AS INTEGER)",
                                "MAX({1,0})",
                                "GEN_ID(G, 1)",
                                caseText,
                                ":p1",
                                "@P",
                                "?",
                                "lower_case",
                                "LEFT({1,0}, 1)",
                                "RIGHT({1,0}, 1) || 'x'",
                                "{1,0} || ' '",
                                "CURRENT_DATE",
                                "A.B.C",
                                "'x' COLLATE NOCASE",
                                "{1,0}::TEXT",
                                "NOT_A",
                                "$1",
                                "''",
                                "''''",
                                "' '",
                                "'\u00dcn\u00efc\u00f6de \U0001F600'",
                                "'a' 'b'",
                                "DATE'1995-01-01'",
                                "EXTRACT(DAY FROM {1,0})",
                                "TRIM(BOTH ' ' FROM {1,0})",
                                "SUBSTRING({1,0} FROM 1 FOR 2)",
                                "CAST({1,0} AS NUMERIC(10, 2))",
                                "ARRAY[1]",
                                "{1,0}[1]",
                                "CASE {1,0} WHEN 1 THEN 'END' ELSE CASE WHEN B THEN 1 END END",
                                "(SELECT A FROM U UNION SELECT B FROM T LIMIT 1)",
                                "(WITH X AS (SELECT 1) SELECT * FROM X WHERE A = 1 OR B = 2)",
                                "5 % 3",
                                "A ^ 2",
                                "A & 1",
                                "A | 1",
                                "1e5",
                                "1E+5",
                                ".5",
                                "0x1F",
                                "*",
                                "U.*",
                                "ROW(1, 2)",
                                "(1, 2)",
                                "((1, 2), (3))",
                                "F()",
                                "F(G(H(')')), \"(\")",
                                "UPPER(LOWER( {1,0} ), 'x,y')",
                                "MAX(DISTINCT {1,0})",
                                "{1,0} AT TIME ZONE 'UTC'",
                                "TRUE",
                                "UNKNOWN",
                                ":a.b",
                                "#TEMP",
                                "\"\"\"\"",
                                "LEFT",
                                "UPPER"};
const QStringList rightOfSigns = {"ALL (SELECT B FROM T)",
                                  "ANY (SELECT B FROM T WHERE A = 1)",
                                  "{1,0} = {0,1}",
                                  "{1,0} IS NULL",
                                  "SOME (SELECT 1 FROM U)",
                                  "NOT {1,0}",
                                  "{1,0} IN (1, 2)",
                                  "EXISTS (SELECT 1 FROM U)",
                                  "{1,0} >= 5",
                                  "{1,0} LIKE 'x'",
                                  "{1,0} -> 'x'"};
const QStringList likeTexts = {
    "'x%' ESCAPE '!'", "'%''%'", ":p",          "'a%'",
    "{1,0} || '%'",    "'%(%'",  "UPPER('x%')", "'x' COLLATE NOCASE ESCAPE '\\'"};
const QStringList lists = {"1, 2",
                           "1,2",
                           "'a)', 'b('",
                           "'it''s, ok', 'x'",
                           "-1, +2",
                           "SELECT Y FROM U WHERE W = 1",
                           "SELECT Y FROM U WHERE A = 1 AND B = 2 OR C IN (1, 2) ORDER BY 1",
                           "(1, 2), (3, 4)",
                           "{1,0}",
                           ":P",
                           "UPPER('a'), 'B'",
                           "(5)",
                           "{1,0} + 1, LOWER('x')",
                           "(SELECT MAX(A) FROM U)",
                           "''",
                           "NULL",
                           "SELECT 1",
                           "SELECT A FROM U UNION ALL SELECT (B) FROM T",
                           "VALUES (1), (2)",
                           "WITH X AS (SELECT 1) SELECT * FROM X",
                           "(1), (2)",
                           "((1))",
                           "'x' , 'y'",
                           "CASE WHEN A = 1 AND B = 2 THEN 1 ELSE 2 END, 3",
                           "CAST({1,0} AS NUMERIC(10, 2)), 1",
                           "A = 1"};

// Conditions in which no operator of the default catalogue fits.
const QStringList wholeTexts = {"EXISTS (SELECT A FROM U WHERE X = 1 AND Y = {0,0})",
                                "{0,0}",
                                "UNIQUE (SELECT A FROM U)",
                                "{0,0} SIMILAR TO 'a(b|c)'",
                                "TRUE",
                                "CONTAINS({0,0}, 'x, y')",
                                "{0,0} IN X",
                                "{0,0} BETWEEN 5",
                                "{0,0} IS OF (INTEGER)",
                                "EXISTS (select a from u where \"x\" = 'y')"};
const QStringList wholeTextsOfDefaults = {"{0,0} CONTAINING 'x'",         "{0,0} STARTING WITH 'x'",
                                          "({0,0} = 1 OR B = 2) IS TRUE", "{0,0} ~ 'a|b'",
                                          "A IS DISTINCT FROM B",         "{0,0} OVERLAPS (1, 2)"};

// --- columns
// --------------------------------------------------------------------------------------

const QStringList expressions = {"LOWER({0,0})",
                                 "{0,0} + 1",
                                 "{0,0} * 2 + 1",
                                 "{0,0} + {1,1}",
                                 "({0,0} + 1) * 2",
                                 caseText,
                                 "{0,0} || ' '",
                                 "'text'",
                                 "'it''s, ok'",
                                 "(SELECT MAX(A) FROM U WHERE X = 1 AND Y = 2)",
                                 "UPPER({0,0})",
                                 "CAST({0,0} AS INTEGER)",
                                 "COALESCE({0,0}, -1)",
                                 "- {0,0}",
                                 "{0,0} IS NULL",
                                 "DATE '1995-01-01'",
                                 ":p",
                                 "LEFT({0,0}, 1)"};
const QStringList moreExpressions = {"SALARY",
                                     "BUDGET",
                                     "X",
                                     "PLAIN",
                                     "COUNT(*) OVER ()",
                                     "SUM({0,0}) OVER (PARTITION BY {1,1} ORDER BY {0,0} DESC)",
                                     "ROW_NUMBER() OVER (ORDER BY {0,0})",
                                     "EXTRACT(YEAR FROM {0,0})",
                                     "TRIM(BOTH ' ' FROM {0,0})",
                                     "{0,0} IN (1, 2)",
                                     "{0,0} BETWEEN 1 AND 2",
                                     "{0,0} = 1 AND {1,1} = 2",
                                     "EXISTS (SELECT 1 FROM U)",
                                     "NOT {0,0}",
                                     "{0,0} / {1,1} - {0,0}",
                                     "{0,0}::TEXT",
                                     "({0,0})",
                                     "(({0,0}))",
                                     "('x')",
                                     "''",
                                     "NULL",
                                     "CURRENT_DATE",
                                     "INTERVAL '1' DAY",
                                     "CASE {0,0} WHEN 1 THEN 'END' END",
                                     "F(G(')'), \"(\")",
                                     "UPPER( LOWER({0,0}) )",
                                     "CAST( {0,0} AS NUMERIC(10,2) )",
                                     "GEN_ID(G, 1)",
                                     "{0,0} COLLATE NOCASE",
                                     "{0,0} AT TIME ZONE 'UTC'",
                                     "{0,0} % 2",
                                     "1 + 1",
                                     "(SELECT COUNT(*) FROM U)",
                                     "COALESCE((SELECT MAX(A) FROM U), 0)",
                                     "'a' || {0,0} || ', b'",
                                     "{0,0} IS NOT NULL",
                                     "~ {0,0}",
                                     "LOWER ({0,0})"};
const QStringList numbers = {"-5", "1", "1.5", "+1", "1e5", "0"};
const QStringList aggregates = {"SUM({0,0})",
                                "COUNT(*)",
                                "COUNT( DISTINCT {0,0} )",
                                "MIN({0,0} * 2)",
                                "AVG({0,0} + {1,1})",
                                "SUM({0,0}) + 1",
                                "MAX(UPPER({0,0}))",
                                "MAX('it''s')",
                                "SUM({0,0}) FILTER (WHERE {1,1} = 1)",
                                "SUM( {0,0} ) / COUNT( * )",
                                "COUNT({0,0}, {1,1})",
                                "MAX(COALESCE({0,0}, 0))",
                                "MIN((SELECT 1 FROM U))",
                                "COALESCE(SUM({0,0}), 0)",
                                "CASE WHEN MAX({0,0}) = 1 THEN 1 END",
                                "MAX(({0,0}))",
                                "AVG(ALL {0,0})",
                                "SUM(-{0,0})",
                                "COUNT(1)",
                                "MAX({0,0}::TEXT)",
                                "SUM(CASE WHEN {0,0} = 1 THEN 1 ELSE 0 END)"};
const QStringList tails = {"LIMIT 10",
                           "FOR UPDATE",
                           "UNION ALL SELECT 'a' FROM U",
                           "limit 5 offset 2",
                           "UNION (SELECT A FROM U)",
                           "FETCH FIRST 5 ROWS ONLY",
                           "EXCEPT SELECT 'x;y' FROM T WHERE A IN (1, 2)",
                           "WINDOW W AS (PARTITION BY A)",
                           "INTERSECT ALL SELECT A FROM U ORDER BY 1",
                           "LIMIT 10\r\nOFFSET 5",
                           "OFFSET 5 ROWS FETCH NEXT 5 ROWS ONLY",
                           "FOR UPDATE OF T NOWAIT",
                           "UNION ALL\r\nSELECT 'a--b;' FROM U WHERE X = ')'",
                           "UNION DISTINCT SELECT \"LIMIT\" FROM U",
                           "for share",
                           "LIMIT (5 + 5)",
                           "LIMIT ALL"};
const QStringList joinTexts = {"{0,2} > 5",
                               "{0,2} IS NULL AND {1,2} <> 'it''s'",
                               "{1,2} BETWEEN 1 AND 5",
                               "({0,2} = 1 OR {1,2} = 2)",
                               "{0,2} = 5 AND ({0,2} = 1 OR {1,2} = 2)",
                               "EXISTS (SELECT A FROM U WHERE X = {1,2})"};

const QStringList aggregateNames = {"SUM", "MIN", "MAX", "AVG", "COUNT"};

// The same name for SQL, whatever its quotes and its case.
QString nameKey(const QString& name) {
    return orv::unquotedName(name).toUpper();
}

}  // namespace

void prepareForRandomStates(HostedBuilder& on, StateSetting setting) {
    on.host.add("lower", {"a", "B", "c d"});
    on.host.add("q\"q", {"x\"y", "Z"});
    on.host.add("a'b", {"it's", "[x]", "--"});
    on.host.add("x; (z)", {"a, b", "1", "\u00e4 \u20ac"});
    on.host.add("ORDER", {"GROUP", "SELECT", "NO"});
    on.host.add(qualifiedTable, {"A", "Z"});
    lReservedWords() = reservedWords;
    on.builder.setKeepMeaning(setting.keepMeaning);
    if (!setting.ownOperators) return;
    for (const OperatorTexts& texts : ownOperators) {
        TorvQDOperator entry;
        entry.Name = QString::fromLatin1(texts.name);
        entry.Caption = entry.Name.toLower();
        entry.Prefix = QString::fromLatin1(texts.prefix);
        entry.Relate = QString::fromLatin1(texts.relate);
        entry.Postfix = QString::fromLatin1(texts.postfix);
        entry.Count = texts.count;
        on.builder.Operators->Add(entry);
    }
}

// --- making
// ---------------------------------------------------------------------------------------

RandomState::RandomState(unsigned seed, StateSetting setting) : m_setting(setting), m_random(seed) {
    makeTables();
    makeLinks();
    makeColumns();
    makeRows();
    makeRest();
}

void RandomState::makeTables() {
    const int count = 1 + below(oneIn(3) ? 6 : 3);
    for (int index = 0; index < count; ++index) {
        Table table{newPiece(), oneOf(oneIn(4) ? quotedTables : plainTables), {}, oneIn(12), {}};
        const bool isTwice = std::any_of(m_tables.begin(), m_tables.end(), [&](const auto& other) {
            return other.name == table.name;
        });
        // As specified, a second box of a table may be taken for the first: seldom made then.
        if (isTwice && !m_setting.keepMeaning && !oneIn(6)) {
            table.name = plainTables[index % int(plainTables.size())];
        }
        const bool needsAlias = table.name == qualifiedTable;
        if (needsAlias || oneIn(3)) table.alias = oneOf(typedAliases);
        if (needsAlias) table.alias = QStringLiteral("Q%1").arg(index);
        if (oneIn(6)) table.newAlias = oneOf(typedAliases);
        m_tables.push_back(table);
    }
}

// A tree over some of the tables, and now and then links that close circles.
void RandomState::makeLinks() {
    const int count = int(m_tables.size());
    for (int table = 1; table < count; ++table) {
        if (!oneIn(4)) addLink(below(table), table);
    }
    // A circle that a text of a join belongs to is closed by its last link: no load gives a text to
    // a join that others make superfluous.
    const bool hasText = std::any_of(m_links.begin(), m_links.end(),
                                     [](const Link& link) { return !link.text.isEmpty(); });
    if (hasText) std::shuffle(m_links.begin(), m_links.end(), m_random);
    if (count > 2 && oneIn(m_setting.keepMeaning ? 3 : 12)) {
        const int table1 = below(count);
        addLink(table1, (table1 + 1 + below(count - 1)) % count);
        m_links.back().text.clear();
    }
    if (!hasText) std::shuffle(m_links.begin(), m_links.end(), m_random);
    const int more = m_links.empty() ? 0 : below(3);
    for (int index = 0; index < more; ++index) {
        const Link first = m_links[std::size_t(below(int(m_links.size())))];
        addLink(first.table1, first.table2);
        m_links.back().kind = first.kind;
        m_links.back().text = first.text;
    }
}

void RandomState::addLink(int table1, int table2) {
    if (oneIn(2)) std::swap(table1, table2);
    Link link{newPiece(), table1, below(10), table2, below(10), {}, klInnerJoin, {}, oneIn(6)};
    const bool asymmetric = oneIn(m_setting.keepMeaning ? 2 : 8);
    link.operation = asymmetric ? oneOf({"<", ">", "<=", ">="}) : oneOf({"=", "=", "<>"});
    if (oneIn(3)) link.kind = TKindOfJoin(below(4));
    if (m_setting.keepMeaning && oneIn(8)) {
        link.text = oneOf(joinTexts);
        link.text.replace("{0,", QStringLiteral("{%1,").arg(table1));
        link.text.replace("{1,", QStringLiteral("{%1,").arg(table2));
    }
    m_links.push_back(link);
}

QString RandomState::anyField() {
    return QStringLiteral("{%1,%2}").arg(below(int(m_tables.size()))).arg(below(10));
}

// Each field of a pattern becomes a field of the state.
QString RandomState::withFields(QString text) {
    const QString first = anyField();
    const QString second = anyField();
    text.replace("{0,0}", first).replace("{0,1}", first);
    return text.replace("{1,0}", second).replace("{1,1}", second);
}

QString RandomState::aliasOfColumn() {
    switch (below(8)) {
    case 0: return QStringLiteral("N%1").arg(below(3));
    case 1:
        return oneOf({"\"full name\"", "\"a\"\"b\"", "\"it's\"", "\"x, y\"", "\"FROM\"", "\"1ST\"",
                      "\"a.b\"", "\"(\"", "\"plain\"", "\"PLAIN\"", "\" \"", "\"N1\"", "\"--\"",
                      "\"\u00e4\"", "'in text'", "\"\"\"\""});
    case 2: return QStringLiteral("Total%1").arg(m_pieces);
    case 3: return oneOf({"", "A", "X", "SALARY", "PRICE"});
    default: return QStringLiteral("N%1").arg(m_pieces);
    }
}

RandomState::Column RandomState::makeColumn(bool aggregates) {
    Column column{newPiece(), anyField(), {}, false, false};
    if (aggregates) {
        column.expression = withFields(oneOf(orvtest::aggregates));
        column.aggregates = true;
        // As specified, the name that is made from a quoted field or "*" is none in SQL.
        const bool named = m_setting.keepMeaning ? oneIn(2) : !oneIn(10);
        if (named) column.alias = aliasOfColumn();
        if (!m_setting.keepMeaning && !oneIn(10) && column.alias.isEmpty()) {
            column.alias = QStringLiteral("N%1").arg(m_pieces);
        }
        return column;
    }
    if (oneIn(3)) column.expression = withFields(oneOf(oneIn(2) ? expressions : moreExpressions));
    if (oneIn(12)) {
        column.expression = oneOf(numbers);
        column.isNumber = true;
    }
    if (oneIn(2)) column.alias = aliasOfColumn();
    return column;
}

void RandomState::makeColumns() {
    const bool aggregated = oneIn(2);
    const int count = below(4);
    for (int index = 0; index < count; ++index) {
        Column column = makeColumn(false);
        // Nothing groups by a number: it would be taken for a column's position.
        if (!(aggregated && column.isNumber)) m_columns.push_back(column);
    }
    const int calls = aggregated ? 1 + below(2) : 0;
    for (int index = 0; index < calls; ++index) m_columns.push_back(makeColumn(true));
    const int ticks = below(4) + (m_columns.empty() ? 1 : 0);
    for (int index = 0; index < ticks; ++index) {
        m_ticks.push_back({newPiece(), below(int(m_tables.size())), below(10)});
    }
}

void RandomState::makeRows() {
    if (!oneIn(4)) m_where.push_back(makeGroup(1, false));
    const bool grouped = std::any_of(m_columns.begin(), m_columns.end(),
                                     [](const Column& column) { return column.aggregates; });
    if (oneIn(grouped ? 2 : 20)) m_having.push_back(makeGroup(2, true));
}

RandomState::Row RandomState::makeGroup(int depth, bool having) {
    Row group;
    group.piece = newPiece();
    group.group = oneOf({"All", "Any", "None", "Not all"});
    const int count = oneIn(8) ? 1 : 2 + below(2);
    for (int index = 0; index < count; ++index) {
        const bool nests = depth < 5 && oneIn(3 + depth);
        group.rows.push_back(nests ? makeGroup(depth + 1, having) : makeCondition(having));
    }
    return group;
}

RandomState::Row RandomState::makeExpression(bool having) {
    Row row;
    row.piece = newPiece();
    const bool ofDefaults = !m_setting.ownOperators && oneIn(3);
    row.field = withFields(oneOf(ofDefaults ? wholeTextsOfDefaults : wholeTexts));
    if (having && oneIn(2)) row.field = QStringLiteral("SUM(%1) IS OF (INTEGER)").arg(anyField());
    return row;
}

RandomState::Row RandomState::makeCondition(bool having) {
    if (oneIn(8)) return makeExpression(having);
    Row row;
    row.piece = newPiece();
    row.field = oneIn(2) ? anyField() : withFields(oneOf(leftSides));
    if (having && oneIn(2)) {
        row.fieldFunc = oneOf(aggregateNames);
        row.field = oneOf({anyField(), anyField() + " * 2", "DISTINCT " + anyField(), "*"});
    }
    TOperatorList defaults;
    orv::fillOperators(defaults);
    const int own = m_setting.ownOperators ? int(std::size(ownOperators)) : 0;
    const int index = below(defaults.Count() + own);
    row.operation = index < defaults.Count()
                        ? defaults.Items(index)->Name
                        : QString::fromLatin1(ownOperators[index - defaults.Count()].name);
    fillOperands(row, having);
    return row;
}

void RandomState::fillOperands(Row& row, bool having) {
    TorvQDOperator operation;
    TOperatorList defaults;
    orv::fillOperators(defaults);
    if (const TOperatorList::Entry entry = defaults.FindName(row.operation)) operation = *entry;
    for (const OperatorTexts& texts : ownOperators) {
        if (row.operation != QString::fromLatin1(texts.name)) continue;
        operation.Prefix = QString::fromLatin1(texts.prefix);
        operation.Count = texts.count;
        operation.Postfix = QString::fromLatin1(texts.postfix);
    }
    const bool isBare = operation.Prefix.isEmpty() && operation.Postfix.isEmpty();
    for (int index = 0; index < operation.Count; ++index) {
        row.arguments << withFields(oneOf(rightSides));
    }
    if (operation.Count != 1) return;
    if (row.operation == "HAS ANY") {
        row.arguments = {QStringLiteral("A FROM U WHERE X = 1 AND Y IN (1, 2)")};
    } else if (operation.Postfix == ")") {
        row.arguments = {withFields(oneOf(lists))};
    } else if (row.operation.endsWith("LIKE") && oneIn(2)) {
        row.arguments = {withFields(oneOf(likeTexts))};
    } else if (row.operation == "=" && oneIn(4)) {
        row.arguments = {withFields(oneOf(rightOfSigns))};
    } else if (having && isBare && oneIn(4)) {
        // With a prefix and a postfix the written brackets do not match.
        row.argFunc = oneOf(aggregateNames);
        row.arguments = {oneOf({anyField(), anyField() + " + 1", "*"})};
    }
}

void RandomState::makeRest() {
    const int sorts = below(4);
    for (int index = 0; index < sorts; ++index) {
        m_sorts.push_back({newPiece(), below(10), oneIn(2)});
    }
    if (oneIn(4)) m_distinct = newPiece();
    if (oneIn(4)) {
        m_tail = newPiece();
        m_tailText = oneOf(tails);
    }
    if (oneIn(2)) m_front = newPiece();
    m_frontTable = below(int(m_tables.size()));
}

// --- building
// -------------------------------------------------------------------------------------

class RandomState::Target {
public:
    explicit Target(HostedBuilder& on) : hosted(on), builder(on.builder) {}

    [[nodiscard]] TorvQDTable* box(int table) const {
        return table < int(boxes.size()) ? boxes[std::size_t(table)] : nullptr;
    }
    [[nodiscard]] TorvQDListItem* item(int table, int field) const {
        TorvQDTable* found = box(table);
        return found ? found->Items[std::size_t(field) % found->Items.size()].get() : nullptr;
    }
    /// The text with the names of its fields; none when one of its tables is left out.
    [[nodiscard]] std::optional<QString> text(const QString& pattern) const {
        static const QRegularExpression field("\\{(\\d+),(\\d+)\\}");
        QString result;
        qsizetype copied = 0;
        auto matches = field.globalMatch(pattern);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            // Patterns name a first and a second table; a state may have one only.
            const TorvQDListItem* found =
                item(match.captured(1).toInt(), match.captured(2).toInt());
            if (!found) return std::nullopt;
            result += QStringView(pattern).mid(copied, match.capturedStart() - copied);
            result += found->Table->GetAlias() + u'.' + found->Name;
            copied = match.capturedEnd();
        }
        return result + pattern.mid(copied);
    }

    HostedBuilder& hosted;
    TorvQueryBuilder& builder;
    std::vector<TorvQDTable*> boxes;  // by the number of the table; none where it is left out
};

void RandomState::build(HostedBuilder& on) const {
    Target target(on);
    on.builder.Clear();
    on.builder.beginChange();
    buildTables(target);
    buildLinks(target);
    buildColumns(target);
    on.builder.endChange();
    on.builder.beginChange();
    for (const Row& root : m_where) buildPanel(target, *on.builder.WherePanel, root);
    for (const Row& root : m_having) buildPanel(target, *on.builder.HavingPanel, root);
    on.builder.endChange();
    buildOrder(target);
    renameLate(target);
    on.builder.SelectPanel->SetDistinct(m_distinct >= 0 && has(m_distinct) ? -1 : 0);
    if (m_tail >= 0 && has(m_tail)) on.builder.setTailText(m_tailText);
    if (m_front < 0 || !has(m_front) || !target.box(m_frontTable)) return;
    on.builder.WorkArea->TableToFront(target.box(m_frontTable));
}

// An alias that is another box's but for quotes or case would make no valid statement. By design a
// rename also takes names of boxes whose alias only begins with the old one: it is not done then.
bool RandomState::mayRename(const Target& target, const TorvQDTable& box, const QString& alias) {
    const std::vector<TorvQDTable*>& boxes = target.builder.WorkArea->tablesByCreation();
    return std::none_of(boxes.begin(), boxes.end(), [&](const TorvQDTable* other) {
        return other != &box && (nameKey(other->GetAlias()) == nameKey(alias) ||
                                 other->GetAlias().startsWith(box.GetAlias()));
    });
}

void RandomState::buildTables(Target& target) const {
    for (const Table& table : m_tables) {
        TorvQDTable* box = nullptr;
        if (has(table.piece)) box = target.hosted.addTable(table.name);
        target.boxes.push_back(box);
        if (!box || table.alias.isEmpty()) continue;
        QString alias = table.alias;
        alias.remove(u'.');
        if (mayRename(target, *box, alias)) target.builder.WorkArea->renameTable(box, table.alias);
    }
}

TorvQDLink* RandomState::drawLink(Target& target, const Link& link) {
    TorvQDWorkArea& area = *target.builder.WorkArea;
    TorvQDTable* table1 = target.box(link.table1);
    TorvQDTable* table2 = target.box(link.table2);
    if (!table1 || !table2) return nullptr;
    TorvQDListItem* item1 = target.item(link.table1, link.field1);
    TorvQDListItem* item2 = target.item(link.table2, link.field2);
    if (area.FindLink(table1, table2, item1, item2)) return nullptr;
    TorvQDLink* added = area.AddLink(table1, table2, item1, item2);
    added->setOperatorText(link.operation);
    added->Join->KindOfJoin = link.kind;
    if (!link.text.isEmpty()) added->Join->Text = *target.text(link.text);
    return added;
}

void RandomState::buildLinks(Target& target) const {
    TorvQDWorkArea& area = *target.builder.WorkArea;
    std::vector<std::pair<const Link*, TorvQDLink*>> drawn;
    for (const Link& link : m_links) {
        if (!has(link.piece)) continue;
        if (TorvQDLink* added = drawLink(target, link)) drawn.emplace_back(&link, added);
    }
    for (const auto& [link, added] : drawn) {
        if (!link->goes) continue;
        area.RemoveLink(added, true);
        Link again = *link;
        again.text.clear();  // it goes with its join
        (void)drawLink(target, again);
    }
    for (std::size_t table = 0; table < m_tables.size(); ++table) {
        if (!m_tables[table].closes || !target.boxes[table]) continue;
        if (target.builder.ListOfTables->TablesCount() == 1) continue;
        target.builder.ListOfTables->DeleteTable(target.boxes[table]);
        target.boxes[table] = nullptr;
    }
}

// Named and computed columns come from a select list, others from ticks.
void RandomState::buildColumns(Target& target) const {
    QStringList list;
    QStringList grouped;
    for (const Column& column : m_columns) {
        const std::optional<QString> expression = target.text(column.expression);
        if (!has(column.piece) || !expression) continue;
        list << *expression + (column.alias.isEmpty() ? QString() : " AS " + column.alias);
        if (!column.aggregates) grouped << *expression;
    }
    const bool isGrouped = grouped.size() < list.size() && !grouped.isEmpty();
    QString text = "SELECT " + list.join(", ") + " FROM ANY_TABLE";
    if (isGrouped) text += " GROUP BY " + grouped.join(", ");
    if (!list.isEmpty()) target.builder.SelectPanel->grid()->LoadSQL(TorvQDParser(text));
    for (const Tick& tick : m_ticks) {
        TorvQDListItem* item = target.item(tick.table, tick.field);
        if (!has(tick.piece) || !item || item->Checked) continue;
        item->SetCheck(true);
        item->UpdateCheck(-1);
    }
}

void RandomState::buildPanel(Target& target, TorvQDWherePanel& panel, const Row& root) const {
    buildGroup(target, *panel.rootRow(), root);
    if (panel.rootRow()->SubRows->GetCount() == 0) panel.ClearContents();
}

void RandomState::buildGroup(Target& target, TorvQDWhereRow& group, const Row& from) const {
    group.SetGroupOper(from.group);
    for (const Row& row : from.rows) {
        if (!has(row.piece)) continue;
        TorvQDWhereRow* added = group.SubRows->AddRow();
        if (!buildRow(target, *added, row)) group.SubRows->Delete(added->GetIndex());
    }
}

bool RandomState::buildRow(Target& target, TorvQDWhereRow& row, const Row& from) const {
    if (!from.group.isEmpty()) {
        buildGroup(target, row, from);
        return row.SubRows->GetCount() > 0;
    }
    const std::optional<QString> field = target.text(from.field);
    if (!field) return false;
    row.FieldName = *field;
    if (!from.fieldFunc.isEmpty()) row.FieldFunc = from.fieldFunc;
    row.setOperator(from.operation.isEmpty() ? orv::expressionOperator()
                                             : target.builder.Operators->FindName(from.operation));
    if (!from.argFunc.isEmpty()) row.ArgFunc = from.argFunc;
    for (qsizetype index = 0; index < row.Arguments.size(); ++index) {
        const std::optional<QString> argument = target.text(from.arguments.value(index));
        if (!argument) return false;
        row.Arguments[index] = *argument;
    }
    return true;
}

// Columns follow by plain text: an alias that others end with is not renamed.
void RandomState::renameLate(Target& target) const {
    for (std::size_t table = 0; table < m_tables.size(); ++table) {
        TorvQDTable* box = target.boxes[table];
        QString alias = m_tables[table].newAlias;
        alias.remove(u'.');
        if (!box || alias.isEmpty() || !mayRename(target, *box, alias)) continue;
        const std::vector<TorvQDTable*>& boxes = target.builder.WorkArea->tablesByCreation();
        const bool endsAnother = std::any_of(boxes.begin(), boxes.end(), [&](const auto* other) {
            return other != box && other->GetAlias().endsWith(box->GetAlias());
        });
        if (!endsAnother) target.builder.WorkArea->renameTable(box, m_tables[table].newAlias);
    }
}

// As the user does it: on the lists and buttons of the page.
void RandomState::buildOrder(Target& target) const {
    TorvQDOrderPanel& panel = *target.builder.OrderPanel;
    auto* unsorted = panel.findChild<QListWidget*>();
    auto* sorted = panel.findChild<QTreeWidget*>();
    for (const Sort& sort : m_sorts) {
        if (!has(sort.piece) || unsorted->count() == 0) continue;
        unsorted->setCurrentRow(sort.column % unsorted->count());
        panel._AddClick();
        if (!sort.descends) continue;
        sorted->setCurrentItem(sorted->topLevelItem(sorted->topLevelItemCount() - 1));
        panel._ChangeOrder();
    }
}

}  // namespace orvtest
