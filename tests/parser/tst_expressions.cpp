// SPDX-License-Identifier: MIT
#include "parser/ORVQDExpressions.h"

#include <QTest>

using namespace orv;

namespace {

TokenRun runOf(const QString& text, const SqlTokens& tokens) {
    return {text, tokens.data(), tokens.data() + tokens.size()};
}

}  // namespace

class TestExpressions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void joinsNames();
    void splitsAliases_data();
    void splitsAliases();
    void tellsExpressions_data();
    void tellsExpressions();
    void tellsStars();
    void namesFields_data();
    void namesFields();
    void equalCounts_data();
    void equalCounts();
    void tellsSubQueries_data();
    void tellsSubQueries();
    void countsEveryToken();
    void tokenKeys_data();
    void tokenKeys();
};

void TestExpressions::splitsAliases_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("between");
    QTest::addColumn<QString>("alias");
    const auto row = [](const char* expression, const char* between, const char* alias) {
        QTest::addRow("%s%s%s", expression, between, alias)
            << QString::fromLatin1(expression) << QString::fromLatin1(between)
            << QString::fromLatin1(alias);
    };
    row("A", " as ", "X");
    row("A", "  AS  ", "X");
    row("A", " as ", "\"my x\"");
    row("A", " as ", "'x'");
    row("A", " ", "X");
    row("A", "   ", "X");
    row("A", " ", "\"my x\"");
    row("5", " ", "X");
    row("'a'", " ", "X");
    row("(A)", " ", "X");
    row("COUNT(*)", " ", "N");
    row("SUM(A*B)", " ", "S");
    row("A + B", " ", "X");
    row("NULL", " ", "X");
    row("LOWER(D)", " AS ", "L");
    row("CASE WHEN E = 1 THEN 2 ELSE 3 END", " ", "K");
    row("A COLLATE NOCASE", " ", "X");
    row("D + INTERVAL '1' DAY", " ", "X");
    row("INTERVAL '1' DAY", " AS ", "X");
    row("A IS NULL", " ", "X");
    row("A AT TIME ZONE 'UTC'", " ", "X");
    row("SUM(A) OVER (PARTITION BY B)", " ", "X");
    row("A", "", "");
    row("A + B", "", "");
    row("A.B", "", "");
    row("A * B", "", "");
    row("T.*", "", "");
    row("A 'x'", "", "");
    row("A T.B", "", "");
    row("CASE WHEN E = 1 THEN 2 END", "", "");
    row("CASE A WHEN B THEN C ELSE D END", "", "");
    row("A IS NULL", "", "");
    row("A IS NOT NULL", "", "");
    row("A IS TRUE", "", "");
    row("A IS FALSE", "", "");
    row("A COLLATE NOCASE", "", "");
    row("A COLLATE \"de_DE\"", "", "");
    row("INTERVAL '1' DAY", "", "");
    row("D + INTERVAL '1' MONTH", "", "");
    row("INTERVAL '1-2' YEAR TO MONTH", "", "");
    row("A OR B", "", "");
    row("NOT A", "", "");
    row("A LIKE B", "", "");
    row("A BETWEEN B AND C", "", "");
    row("A AT TIME ZONE UTC", "", "");
    row("F(A B)", "", "");
}

void TestExpressions::splitsAliases() {
    QFETCH(QString, expression);
    QFETCH(QString, between);
    QFETCH(QString, alias);
    const QString text = expression + between + alias;
    const SqlTokens tokens = tokenise(text);
    const AliasedRun parts = splitAlias(runOf(text, tokens));
    QCOMPARE(text.mid(parts.expression.start(),
                      parts.expression.endPosition() - parts.expression.start()),
             expression);
    QCOMPARE(text.mid(parts.alias.start(), parts.alias.endPosition() - parts.alias.start()), alias);
    QCOMPARE(parts.alias.size(), alias.isEmpty() ? 0 : 1);
    QCOMPARE(parts.whole.endPosition(), int(text.size()));
}

void TestExpressions::tellsExpressions_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expression");
    const auto rows = [](bool expression, std::initializer_list<const char*> texts) {
        for (const char* text : texts) {
            QTest::newRow(text) << QString::fromLatin1(text) << expression;
        }
    };
    rows(true, {"A",
                "5",
                "'x'",
                "T.A",
                "A + B",
                "-A",
                "A || 'x' || B",
                "COUNT(*)",
                "SUM(A * B) + 1",
                "COUNT(DISTINCT A)",
                "(A)",
                "(SELECT B FROM C)",
                "NOT A",
                "A AND B OR C",
                "A IS NULL",
                "A BETWEEN B AND C",
                "A IN (1, 2)",
                "A LIKE 'x%' ESCAPE '!'",
                "A COLLATE NOCASE",
                "EXISTS (SELECT B FROM C)",
                "CASE WHEN A = 1 THEN 2 ELSE 3 END",
                "CASE A WHEN 1 THEN B END",
                "DATE '1995-01-01'",
                "DATE '1995-01-01' + INTERVAL '1' DAY",
                "INTERVAL '1-2' YEAR TO MONTH",
                "A AT TIME ZONE 'UTC'",
                "SUM(A) OVER (PARTITION BY B ORDER BY C)",
                "CAST(A AS INTEGER)"});
    rows(false,
         {"", "A B", "A 5", "TOP 5 A", "FIRST 5 A", "SKIP 5 A", "DISTINCT A", "DISTINCT ON (A) B",
          "ALL A", "A FROM B", "A AND", "A IS", "(A", "A)", "5 (A)", "*", ","});
}

void TestExpressions::tellsExpressions() {
    QFETCH(QString, text);
    QFETCH(bool, expression);
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(isExpression(runOf(text, tokens)), expression);
}

void TestExpressions::tellsStars() {
    const auto is = [](const QString& text) {
        const SqlTokens tokens = tokenise(text);
        return isStar(runOf(text, tokens));
    };
    for (const char* text : {"*", " * ", "T.*", "\"my table\".*", "S.T.*", "T. *"}) {
        QVERIFY2(is(QString::fromLatin1(text)), text);
    }
    for (const char* text : {"", " ", "T", "T *", "* T", "T.A", "*.*", "T.* AS A", "'*'", "(*)"}) {
        QVERIFY2(!is(QString::fromLatin1(text)), text);
    }
}

void TestExpressions::namesFields_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("field");
    const auto rows = [](bool field, std::initializer_list<const char*> texts) {
        for (const char* text : texts) QTest::newRow(text) << QString::fromLatin1(text) << field;
    };
    rows(true, {"A", "t.a", "\"my field\"", "T.\"x\"", "\"NULL\"", "NULLS"});
    rows(false, {"5", "'x'", "NULL", "null", "USER", "TRUE", "False", "CURRENT_DATE",
                 "CURRENT_TIMESTAMP", ":p", "@p", "?", "?1", "*", "("});
}

void TestExpressions::namesFields() {
    QFETCH(QString, text);
    QFETCH(bool, field);
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(namesField(runOf(text, tokens), 0), field);
}

void TestExpressions::equalCounts_data() {
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char* tag, const char* left, const char* right, bool equal) {
        QTest::newRow(tag) << QString::fromLatin1(left) << QString::fromLatin1(right) << equal;
    };
    row("spacing", "a+b", "a  +  b", true);
    row("case of words", "Sum(a)", "SUM(A)", true);
    row("brackets", "((a = 1))", "a = 1", true);
    row("commas", "a, b", "a b", true);
    row("order", "a = b", "b = a", true);
    row("qualifiers", "t.a", "a", true);
    row("several qualifiers", "s.t.a", "a", true);
    row("quotes around names", "\"A\"", "a", true);
    row("quotes around a qualified name", "t.\"A\"", "a", true);
    row("AS", "a as b", "a b", true);
    row("ASC", "a asc", "a", true);
    row("ASCENDING", "a ascending", "a", true);
    row("INNER", "inner join", "join", true);
    row("OUTER", "left outer join", "left join", true);
    row("another word", "a", "b", false);
    row("one word more often", "a a", "a", false);
    row("another sign", "a < b", "a <= b", false);
    row("another number", "1", "2", false);
    row("case of a text", "'a'", "'A'", false);
    row("text and name", "'A'", "a", false);
    row("DESC", "a desc", "a", false);
    row("full stop inside quotes", "\"a.b\"", "b", false);
}

void TestExpressions::equalCounts() {
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(bool, equal);
    QCOMPARE(countTokens(left) == countTokens(right), equal);
}

void TestExpressions::tellsSubQueries_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("inside");
    const auto row = [](const char* text, const char* inside) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(inside);
    };
    row("A = B", "...");
    row("A IN (1, 2)", ".......");
    row("A = (SELECT B) AND C", "..xxxx..");
    row("(SELECT B) = (C)", "xxxx....");
    row("SELECT (B) C", ".....");
    row("F((SELECT (B) FROM T), C)", "..xxxxxxxx...");
    row("(SELECT B", "xxx");
    row("A (", "..");
}

// One sign for each token.
void TestExpressions::tellsSubQueries() {
    QFETCH(QString, text);
    const SqlTokens tokens = tokenise(text);
    QString inside;
    for (const bool is : insideSubQueries(runOf(text, tokens))) inside += is ? u'x' : u'.';
    QTEST(inside, "inside");
}

void TestExpressions::countsEveryToken() {
    const TokenCounts counts = countTokens(QStringLiteral("(t.a + a) = 5, 'x'"));
    QCOMPARE(counts, TokenCounts({{"A", 2}, {"+", 1}, {"=", 1}, {"5", 1}, {"'x'", 1}}));
}

void TestExpressions::tokenKeys_data() {
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char* tag, const char* left, const char* right, bool equal) {
        QTest::newRow(tag) << QString::fromLatin1(left) << QString::fromLatin1(right) << equal;
    };
    row("spacing", "a+b", " a  +  b ", true);
    row("case outside quotes", "sum(a)", "SUM(A)", true);
    row("case in apostrophes", "'a'", "'A'", false);
    row("case in double quotes", "\"a\"", "\"A\"", false);
    row("order", "a b", "b a", false);
    row("brackets", "(a)", "a", false);
    row("words grown together", "a b", "ab", false);
    row("signs grown together", "a < = b", "a <= b", false);
    row("empty", "", " ", true);
}

void TestExpressions::tokenKeys() {
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(bool, equal);
    QCOMPARE(tokenKey(left) == tokenKey(right), equal);
}

void TestExpressions::joinsNames() {
    QCOMPARE(orv::withJoinedNames("T . A + U. \"b . c\" * V .D"),
             QString("T.A + U.\"b . c\" * V.D"));
    for (const char* text : {"T.A + 1", "'a . b'", "1. + 2", "A + .5", "A .5"}) {
        QCOMPARE(orv::withJoinedNames(text), QString(text));
    }
}

QTEST_GUILESS_MAIN(TestExpressions)
#include "tst_expressions.moc"
