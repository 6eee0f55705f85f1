// SPDX-License-Identifier: MIT
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"
#include "support/Sanitizers.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr int huge = orvtest::fewerIfSanitized(1000000, 10);
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
    QTest::newRow("brackets") << where + repeated("(", huge) + u'A' + repeated(")", huge);
    QTest::newRow("brackets never closed") << where + repeated("(", huge);
    QTest::newRow("brackets never opened") << where + repeated(")", huge);
    QTest::newRow("half of the brackets closed")
        << where + repeated("(", huge) + u'A' + repeated(")", huge / 2);
    QTest::newRow("brackets of the select list")
        << QStringLiteral("SELECT ") + repeated("(", huge) + repeated(") X", huge);
    QTest::newRow("calls") << QStringLiteral("SELECT ") + repeated("SUM(", huge) + u'A';
    QTest::newRow("procedures") << from + repeated("P(", huge) + repeated(")", huge);
    QTest::newRow("LIKEs") << where + repeated("LIKE ", huge);
    QTest::newRow("LIKEs in ON") << from + QStringLiteral("JOIN U ON ") + repeated("LIKE ", huge) +
                                        QStringLiteral(", V");
    QTest::newRow("BETWEENs") << where + repeated("BETWEEN 1 AND ", huge);
    QTest::newRow("NOTs") << where + repeated("NOT ", huge);
    QTest::newRow("SELECTs") << repeated("SELECT ", huge);
    QTest::newRow("selects in brackets") << repeated("SELECT A FROM (", huge);
    QTest::newRow("ONs") << from + QStringLiteral("JOIN U ") + repeated("ON ", huge);
    QTest::newRow("JOINs") << from + repeated("JOIN ", huge);
    QTest::newRow("LEFTs without JOIN") << from + repeated("LEFT ", huge);
    QTest::newRow("LEFTs before one JOIN")
        << from + repeated("LEFT ", huge) + QStringLiteral("JOIN U");
    QTest::newRow("joins") << from + repeated("LEFT JOIN U ON A = B ", huge);
    QTest::newRow("CROSSes") << from + repeated("CROSS ", huge);
    QTest::newRow("NATURALs") << from + repeated("NATURAL ", huge);
    QTest::newRow("ISs") << where + repeated("IS ", huge);
    QTest::newRow("IS NOTs") << where + repeated("IS NOT ", huge);
    QTest::newRow("GROUPs") << from + repeated("GROUP ", huge);
    QTest::newRow("function names") << where + repeated("MAX ", huge);
    QTest::newRow("aliases") << QStringLiteral("SELECT ") + repeated("A AS B,", huge);
    QTest::newRow("ASs") << QStringLiteral("SELECT ") + repeated("AS ", huge);
    QTest::newRow("quote never closed at the start")
        << QStringLiteral("SELECT '") + repeated("a, (b) ", 5 * huge / 7);
    QTest::newRow("quotes in a row") << QStringLiteral("SELECT ") + repeated("' \" ", huge);
    QTest::newRow("one word") << QStringLiteral("SELECT ") + repeated("a", 5 * huge);
    QTest::newRow("blanks") << QStringLiteral("SELECT A") + repeated(" ", 5 * huge) + u'B';
    QTest::newRow("signs") << QStringLiteral("SELECT ") + repeated("+", 5 * huge);
    QTest::newRow("commas") << QStringLiteral("SELECT ") + repeated(",", 5 * huge);
}

void TestParserLimits::hugeStatementsAreRead() {
    QFETCH(QString, statement);
    const TorvQDParser root(statement);
    QCOMPARE(root.Text(), QStringLiteral("SELECT"));
    QVERIFY(root.End() <= statement.size());
}

void TestParserLimits::deepNestingIsDeep() {
    const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE ") + repeated("(", huge) + u'B' +
                            repeated(")", huge));
    const TorvQDParser* node = root.Clause(inWhere);
    int depth = 0;
    while (node->Count() == 1) {
        node = node->Child(0);
        ++depth;
    }
    QCOMPARE(depth, huge + 1);
    QCOMPARE(node->Text(), QStringLiteral("B"));
}

void TestParserLimits::longListsAreWhole() {
    const TorvQDParser root(QStringLiteral("SELECT A FROM T") + repeated(", U X", huge));
    QCOMPARE(root.Clause(inFrom)->Count(), huge + 1);
    QCOMPARE(root.Clause(inFrom)->Child(huge)->GetAliasName(), QStringLiteral("X"));
}

void TestParserLimits::argumentsOfDeepNestingAreWritten() {
    const QString arguments = repeated("(", huge) + QStringLiteral("A, B") + repeated(")", huge);
    const TorvQDParser root(QStringLiteral("SELECT A FROM T WHERE ") + arguments);
    QVERIFY(root.Clause(inWhere)->Child(0)->FillArguments(false) == arguments);
}

void TestParserLimits::randomTextIsRead() {
    constexpr int size = 10 * huge;
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
    QTest::newRow("apostrophe never closed") << u'\'' + repeated("a -- ", huge);
    QTest::newRow("backtick never closed") << u'`' + repeated("a, ", huge);
    QTest::newRow("backticks in pairs") << repeated("`` ", huge);
    QTest::newRow("odd number of backticks") << repeated("`", 3 * huge + 1);
    QTest::newRow("comment never closed") << repeated("/* ", huge);
    QTest::newRow("comments in a row") << repeated("/**/--\n", huge);
    QTest::newRow("semicolons") << repeated("; ", huge);
    QTest::newRow("indices") << u'a' + repeated("[1]", huge);
    QTest::newRow("square brackets never closed") << repeated(",[", 2 * huge);
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
