// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "parameters/Placeholders.h"

#include <QRegularExpression>

using namespace orvquery;

class TestPlaceholders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void names_data();
    void names();
    void places();
    void boundText_data();
    void boundText();
    void valuesFollowTheText();
    void missingValue();
    void questionMarks_data();
    void questionMarks();
    void longStatement();
};

void TestPlaceholders::names_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* statement, const QStringList& expected) {
        QTest::newRow(statement) << QString::fromUtf8(statement) << expected;
    };
    row("", {});
    row("SELECT 1", {});
    row("SELECT :X", {"X"});
    row(":x", {"X"});
    row("SELECT a=:x AND b IN(:y,:z)", {"X", "Y", "Z"});
    row("SELECT :X, :Y, :x", {"X", "Y"});
    row("P(:2ND_PARAM, :$A, :_b, :Par3)", {"2ND_PARAM", "$A", "_B", "PAR3"});
    row("WHERE A=1 AND:X", {"X"});
    row("WHERE A=1or:X", {"X"});
    row("SELECT '2':X", {"X"});
    row("SELECT \xc3\xa4 = :gr\xc3\xb6\xc3\x9f"
        "e1",
        {QString::fromUtf8("GR\xc3\x96SSE1")});
    // In quotes of any kind.
    row("SELECT ':X', \":Y\", `:Z`", {});
    row("SELECT 'it''s :X', :Y", {"Y"});
    row("SELECT 'a' ':X' :Y", {"Y"});
    row("SELECT [my :X], t.[:Y]", {});
    row("SELECT ':X", {});
    // In comments.
    row("SELECT 1 -- don't :X\n, :Y", {"Y"});
    row("SELECT /* :X ' */ :Y", {"Y"});
    row("SELECT 1 -- :X", {});
    row("SELECT 1 /* :X", {});
    row("SELECT '--', :X", {"X"});
    row("SELECT 4-:X", {"X"});
    row("SELECT 4/:X", {"X"});
    row("SELECT /*/ :X */ :Y", {"Y"});
    // Casts and elements.
    row("SELECT a::text", {});
    row("SELECT :X::text", {"X"});
    row("SELECT a :: text", {});
    row("SELECT a[1:2], b[i:3]", {});
    row("SELECT a[:X]", {"X"});
    row("SELECT :", {});
    row("SELECT : X", {});
    row("SELECT a := 1", {});
    row("SELECT ':' || :X || ':'", {"X"});
}

void TestPlaceholders::names() {
    QFETCH(QString, statement);
    QFETCH(QStringList, expected);
    QCOMPARE(placeholderNames(statement), expected);
}

void TestPlaceholders::places() {
    const std::vector<Placeholder> expected = {{7, 2, "X"}, {11, 4, "ABC"}, {17, 2, "X"}};
    QCOMPARE(placeholders(QStringLiteral("select :x, :abc, :X")), expected);
}

void TestPlaceholders::boundText_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "SELECT :X, ':X'"
                           << "SELECT ?, ':X'";
    QTest::newRow("comment") << "SELECT 1 -- a ' ?\n, :X"
                             << "SELECT 1         \n, ?";
    QTest::newRow("comment of two lines") << "A /* b\nc */ :X"
                                          << "A     \n     ?";
    QTest::newRow("cast") << "SELECT :X::int"
                          << "SELECT ?::int";
}

void TestPlaceholders::boundText() {
    QFETCH(QString, statement);
    QFETCH(QString, expected);
    const BoundStatement bound = boundStatement(statement, {{"X", 1}});
    QCOMPARE(bound.text, expected);
    QCOMPARE(bound.values, QVariantList{1});
}

void TestPlaceholders::valuesFollowTheText() {
    const BoundStatement bound = boundStatement("SELECT :b, :A, :B", {{"A", 1}, {"B", "two"}});
    QCOMPARE(bound.text, QStringLiteral("SELECT ?, ?, ?"));
    QCOMPARE(bound.values, (QVariantList{"two", 1, "two"}));
}

void TestPlaceholders::missingValue() {
    QCOMPARE(apptest::errorOf([] {
                 (void)boundStatement("SELECT :A, :b", {{"A", 1}});
             }),
             QStringLiteral("The parameter :b has no value."));
}

void TestPlaceholders::questionMarks_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<bool>("isRefused");
    const auto row = [](const char* statement, bool isRefused) {
        QTest::newRow(statement) << QString::fromUtf8(statement) << isRefused;
    };
    row("SELECT ?", true);
    row("SELECT R FROM P(?)", true);
    row("SELECT A FROM T WHERE A=? OR A=:X", true);
    row("SELECT ?1, :X", true);
    row("SELECT A[?]", true);
    row("SELECT :X?", true);
    row("SELECT 'it''s', ?", true);
    row("SELECT `a`, ?, `b`", true);
    row("SELECT /* ? */ ?", true);
    row("SELECT :X", false);
    row("SELECT '?', 'it''s ?'", false);
    row("SELECT \"a?\"\"b\", `?`, [it's ?]", false);
    row("SELECT 1 -- ?\n, 2 /* ? */", false);
}

void TestPlaceholders::questionMarks() {
    QFETCH(QString, statement);
    QFETCH(bool, isRefused);
    const QString expected = QStringLiteral(
        "The statement has a parameter \"?\", which has no name by which it could get a value; "
        "please write it as :NAME.");
    QCOMPARE(questionMarkProblem(statement), isRefused ? expected : QString());
    QCOMPARE(apptest::errorOf([&] {
                 (void)boundStatement(statement, {{"X", 1}});
             }),
             isRefused ? expected : QStringLiteral("(no error)"));
}

// A walk that looked at the rest of the text for each character would take minutes.
void TestPlaceholders::longStatement() {
    QString statement = QStringLiteral("SELECT ");
    for (int number = 0; number < 200000; ++number) statement += QStringLiteral("'a''b', :X, ");
    QCOMPARE(placeholders(statement).size(), 200000U);
    QCOMPARE(placeholderNames(statement), QStringList{"X"});
}

QTEST_GUILESS_MAIN(TestPlaceholders)
#include "tst_app_placeholders.moc"
