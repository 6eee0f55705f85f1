// SPDX-License-Identifier: MIT
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr int million = 1000000;
constexpr quint32 seed = 20240518;

QString repeated(const char* text, int count) {
    return QString::fromLatin1(text).repeated(count);
}

}  // namespace

// Texts that would overflow a stack or take hours if reading them recursed or started over for each
// word. What is tested is that they are read and freed at all.
class TestParserLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hugeStatementsAreRead_data();
    void hugeStatementsAreRead();
    void deepNestingIsDeep();
    void longListsAreWhole();
    void argumentsOfDeepNestingAreWritten();
    void randomTextIsRead();
    void hugeTextsAreNormalised_data();
    void hugeTextsAreNormalised();
    void quotesThatReachOverJoinAreRead_data();
    void quotesThatReachOverJoinAreRead();
};

void TestParserLimits::hugeStatementsAreRead_data() {
    QTest::addColumn<QString>("statement");
    const QString where = QStringLiteral("SELECT A FROM T WHERE ");
    const QString from = QStringLiteral("SELECT A FROM T ");
    QTest::newRow("brackets") << where + repeated("(", million) + u'A' + repeated(")", million);
    QTest::newRow("brackets never closed") << where + repeated("(", million);
    QTest::newRow("brackets never opened") << where + repeated(")", million);
    QTest::newRow("half of the brackets closed")
        << where + repeated("(", million) + u'A' + repeated(")", million / 2);
    QTest::newRow("brackets of the select list")
        << QStringLiteral("SELECT ") + repeated("(", million) + repeated(") X", million);
    QTest::newRow("calls") << QStringLiteral("SELECT ") + repeated("SUM(", million) + u'A';
    QTest::newRow("procedures") << from + repeated("P(", million) + repeated(")", million);
    QTest::newRow("LIKEs") << where + repeated("LIKE ", million);
    QTest::newRow("LIKEs in ON") << from + QStringLiteral("JOIN U ON ") +
                                        repeated("LIKE ", million) + QStringLiteral(", V");
    QTest::newRow("BETWEENs") << where + repeated("BETWEEN 1 AND ", million);
    QTest::newRow("NOTs") << where + repeated("NOT ", million);
    QTest::newRow("SELECTs") << repeated("SELECT ", million);
    QTest::newRow("selects in brackets") << repeated("SELECT A FROM (", million);
    QTest::newRow("ONs") << from + QStringLiteral("JOIN U ") + repeated("ON ", million);
    QTest::newRow("JOINs") << from + repeated("JOIN ", million);
    QTest::newRow("LEFTs without JOIN") << from + repeated("LEFT ", million);
    QTest::newRow("LEFTs before one JOIN")
        << from + repeated("LEFT ", million) + QStringLiteral("JOIN U");
    QTest::newRow("joins") << from + repeated("LEFT JOIN U ON A = B ", million);
    QTest::newRow("CROSSes") << from + repeated("CROSS ", million);
    QTest::newRow("NATURALs") << from + repeated("NATURAL ", million);
    QTest::newRow("ISs") << where + repeated("IS ", million);
    QTest::newRow("IS NOTs") << where + repeated("IS NOT ", million);
    QTest::newRow("GROUPs") << from + repeated("GROUP ", million);
    QTest::newRow("function names") << where + repeated("MAX ", million);
    QTest::newRow("aliases") << QStringLiteral("SELECT ") + repeated("A AS B,", million);
    QTest::newRow("ASs") << QStringLiteral("SELECT ") + repeated("AS ", million);
    QTest::newRow("quote never closed at the start")
        << QStringLiteral("SELECT '") + repeated("a, (b) ", 5 * million / 7);
    QTest::newRow("quotes in a row") << QStringLiteral("SELECT ") + repeated("' \" ", million);
    QTest::newRow("one word") << QStringLiteral("SELECT ") + repeated("a", 5 * million);
    QTest::newRow("blanks") << QStringLiteral("SELECT A") + repeated(" ", 5 * million) + u'B';
    QTest::newRow("signs") << QStringLiteral("SELECT ") + repeated("+", 5 * million);
    QTest::newRow("commas") << QStringLiteral("SELECT ") + repeated(",", 5 * million);
}

void TestParserLimits::hugeStatementsAreRead() {
    QFETCH(QString, statement);
    const TorvQDParser root(statement);
    QCOMPARE(root.Text(), QStringLiteral("SELECT"));
    QVERIFY(root.End() <= statement.size());
}

void TestParserLimits::deepNestingIsDeep() {
    const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE ") + repeated("(", million) +
                            u'B' + repeated(")", million));
    const TorvQDParser* node = root.Clause(inWhere);
    int depth = 0;
    while (node->Count() == 1) {
        node = node->Child(0);
        ++depth;
    }
    QCOMPARE(depth, million + 1);
    QCOMPARE(node->Text(), QStringLiteral("B"));
}

void TestParserLimits::longListsAreWhole() {
    const TorvQDParser root(QStringLiteral("SELECT A FROM T") + repeated(", U X", million));
    QCOMPARE(root.Clause(inFrom)->Count(), million + 1);
    QCOMPARE(root.Clause(inFrom)->Child(million)->GetAliasName(), QStringLiteral("X"));
}

void TestParserLimits::argumentsOfDeepNestingAreWritten() {
    const QString arguments =
        repeated("(", million) + QStringLiteral("A, B") + repeated(")", million);
    const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE ") + arguments);
    QVERIFY(root.Clause(inWhere)->Child(0)->FillArguments(false) == arguments);
}

void TestParserLimits::randomTextIsRead() {
    constexpr int size = 10 * million;
    QRandomGenerator random(seed);
    QString statement = QStringLiteral("SELECT ");
    statement.reserve(size);
    while (statement.size() < size) statement += QChar(random.bounded(256));
    const TorvQDParser root(statement);
    QVERIFY(root.End() <= statement.size());
    const orv::NormalisedSQL normalised = orv::NormaliseSQL(statement);
    QCOMPARE(qsizetype(normalised.positions.size()), normalised.text.size() + 1);
    const orv::SqlTokens tokens = orv::tokenise(normalised.text);
    QVERIFY(!tokens.empty());
    QVERIFY(orv::splitStatement(normalised.text, tokens).bodyEnd <= normalised.text.size());
    const orv::LoadLedger ledger(statement, normalised);
    QVERIFY(!ledger.findings().empty());
}

void TestParserLimits::hugeTextsAreNormalised_data() {
    QTest::addColumn<QString>("given");
    QTest::newRow("apostrophe never closed") << u'\'' + repeated("a -- ", million);
    QTest::newRow("backtick never closed") << u'`' + repeated("a, ", million);
    QTest::newRow("backticks in pairs") << repeated("`` ", million);
    QTest::newRow("odd number of backticks") << repeated("`", 3 * million + 1);
    QTest::newRow("comment never closed") << repeated("/* ", million);
    QTest::newRow("comments in a row") << repeated("/**/--\n", million);
    QTest::newRow("semicolons") << repeated("; ", million);
    QTest::newRow("indices") << u'a' + repeated("[1]", million);
    QTest::newRow("square brackets never closed") << repeated(",[", 2 * million);
}

void TestParserLimits::hugeTextsAreNormalised() {
    QFETCH(QString, given);
    const orv::NormalisedSQL normalised = orv::NormaliseSQL(given);
    QCOMPARE(qsizetype(normalised.positions.size()), normalised.text.size() + 1);
    QVERIFY(normalised.text.size() <= given.size());
}

void TestParserLimits::quotesThatReachOverJoinAreRead_data() {
    QTest::addColumn<QString>("join");
    QTest::newRow("name in double quotes") << "LEFT \"a JOIN (b\"";
    QTest::newRow("apostrophe never closed") << "RIGHT ' JOIN (";
    QTest::newRow("behind other brackets") << "(A) FULL \"(JOIN (\" (B)";
}

// A bracket behind such a JOIN is none for whoever looks for brackets outside quotes.
void TestParserLimits::quotesThatReachOverJoinAreRead() {
    QFETCH(QString, join);
    const TorvQDParser root(QStringLiteral("SELECT A FROM T ") + join);
    const TorvQDParser* last = root.Clause(inFrom)->Children().back().get();
    QCOMPARE(last->Kind(), otJoin);
    QCOMPARE(last->Child(0)->Kind(), otTable);
}

QTEST_GUILESS_MAIN(TestParserLimits)
#include "tst_parserlimits.moc"
