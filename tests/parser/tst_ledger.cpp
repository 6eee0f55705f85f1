// SPDX-License-Identifier: MIT
#include "parser/ORVQDLedger.h"

#include <QTest>

using namespace orv;

namespace {

LoadLedger ledgerOf(const char* given) {
    const QString text = QString::fromLatin1(given);
    return {text, NormaliseSQL(text)};
}

void placeText(LoadLedger& ledger, const char* text) {
    const QString words = QString::fromLatin1(text);
    const int start = int(ledger.text().indexOf(words));
    ledger.place(start, start + int(words.size()));
}

QStringList textsOf(const Findings& findings) {
    QStringList texts;
    for (const Finding& finding : findings) texts << finding.text;
    return texts;
}

}  // namespace

class TestLedger : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingPlacedIsNoFinding();
    void untakenTokensAreFindings();
    void adjacentUntakenTokensAreOneFinding();
    void nothingTakenIsOneFinding();
    void emptyStatementHasNoFindings();
    void findingsStandInTheGivenText();
    void aFindingAcrossACommentHoldsIt();
    void reportedTokensAreTaken();
    void reportIsCutToItsTokens();
    void findingsAreInTheOrderOfTheText();
    void lineBreaksInQuotesAreFindings_data();
    void lineBreaksInQuotesAreFindings();
    void textHasItsLineBreaksAsBlanks();
    void onePlaceIsToldOnce();
    void hasFindingSeesOverlaps();
    void givenTextComesFromTheStatement();
    void tokensInAreThoseOfTheSpan();
};

void TestLedger::everythingPlacedIsNoFinding() {
    LoadLedger ledger = ledgerOf("select a from t");
    ledger.place(0, int(ledger.text().size()));
    QVERIFY(ledger.findings().empty());
}

void TestLedger::untakenTokensAreFindings() {
    LoadLedger ledger = ledgerOf("select a b from t x");
    placeText(ledger, "select a");
    placeText(ledger, "from t");
    const Findings findings = ledger.findings();
    QCOMPARE(textsOf(findings), QStringList({"b", "x"}));
    QCOMPARE(findings[0].start, 9);
    QCOMPARE(findings[0].length, 1);
    QCOMPARE(findings[1].start, 18);
    QCOMPARE(findings[1].length, 1);
    QVERIFY(!findings[0].what.isEmpty());
}

void TestLedger::adjacentUntakenTokensAreOneFinding() {
    LoadLedger ledger = ledgerOf("select a  +  ( b ) from t");
    placeText(ledger, "select");
    placeText(ledger, "from t");
    QCOMPARE(textsOf(ledger.findings()), QStringList({"a  +  ( b )"}));
}

void TestLedger::nothingTakenIsOneFinding() {
    QCOMPARE(textsOf(ledgerOf(" select a ").findings()), QStringList({"select a"}));
}

void TestLedger::emptyStatementHasNoFindings() {
    QVERIFY(ledgerOf("").findings().empty());
    QVERIFY(ledgerOf(" -- nothing").findings().empty());
}

void TestLedger::findingsStandInTheGivenText() {
    LoadLedger ledger = ledgerOf("select/* list */a, `b c` from t");
    placeText(ledger, "select a,");
    placeText(ledger, "from t");
    const Findings findings = ledger.findings();
    QCOMPARE(textsOf(findings), QStringList({"`b c`"}));
    QCOMPARE(findings[0].start, 19);
    QCOMPARE(findings[0].length, 5);
}

void TestLedger::aFindingAcrossACommentHoldsIt() {
    LoadLedger ledger = ledgerOf("select a/* x */b from t");
    placeText(ledger, "select");
    placeText(ledger, "from t");
    const Findings findings = ledger.findings();
    QCOMPARE(textsOf(findings), QStringList({"a/* x */b"}));
    QCOMPARE(findings[0].start, 7);
    QCOMPARE(findings[0].length, 9);
}

void TestLedger::reportedTokensAreTaken() {
    LoadLedger ledger = ledgerOf("select a b");
    placeText(ledger, "select a");
    ledger.report(9, 10, QStringLiteral("Lost."));
    const Findings findings = ledger.findings();
    QCOMPARE(findings.size(), std::size_t(1));
    QCOMPARE(findings[0], (Finding{9, 1, QStringLiteral("b"), QStringLiteral("Lost.")}));
}

void TestLedger::reportIsCutToItsTokens() {
    LoadLedger ledger = ledgerOf("select  a  ");
    ledger.place(0, int(ledger.text().size()));
    ledger.report(6, 11, QStringLiteral("Lost."));
    QCOMPARE(ledger.findings()[0], (Finding{8, 1, QStringLiteral("a"), QStringLiteral("Lost.")}));
}

void TestLedger::findingsAreInTheOrderOfTheText() {
    LoadLedger ledger = ledgerOf("a b c d");
    ledger.report(6, 7, QStringLiteral("Last."));
    ledger.report(2, 3, QStringLiteral("Second."));
    placeText(ledger, "c");
    QCOMPARE(textsOf(ledger.findings()), QStringList({"a", "b", "d"}));
}

void TestLedger::lineBreaksInQuotesAreFindings_data() {
    QTest::addColumn<QString>("quoted");
    QTest::addColumn<bool>("found");
    QTest::newRow("line feed in apostrophes") << "'a\nb'" << true;
    QTest::newRow("carriage return in apostrophes") << "'a\rb'" << true;
    QTest::newRow("line feed in double quotes") << "t.\"a\nb\"" << true;
    QTest::newRow("tab in apostrophes") << "'a\tb'" << false;
    QTest::newRow("line break outside") << "a\nb" << false;
}

void TestLedger::lineBreaksInQuotesAreFindings() {
    QFETCH(QString, quoted);
    QFETCH(bool, found);
    const QString given = QStringLiteral("select ") + quoted;
    LoadLedger ledger(given, NormaliseSQL(given));
    ledger.reportChangedTexts(int(ledger.text().size()));
    ledger.place(0, int(ledger.text().size()));
    const Findings findings = ledger.findings();
    QCOMPARE(findings.size(), std::size_t(found ? 1 : 0));
    if (!found) return;
    QCOMPARE(findings[0].start, 7);
    QCOMPARE(findings[0].text, quoted);
}

void TestLedger::textHasItsLineBreaksAsBlanks() {
    const LoadLedger ledger = ledgerOf("a\n'b\r\nc'");
    QCOMPARE(ledger.text(), QStringLiteral("a 'b  c'"));
    QCOMPARE(ledger.givenText(2, 8), QStringLiteral("'b\r\nc'"));
}

void TestLedger::onePlaceIsToldOnce() {
    LoadLedger ledger = ledgerOf("a b");
    placeText(ledger, "a");
    ledger.report(2, 3, QStringLiteral("Lost."));
    ledger.report(2, 3, QStringLiteral("Lost."));
    QCOMPARE(textsOf(ledger.findings()), QStringList({"b"}));
}

void TestLedger::hasFindingSeesOverlaps() {
    LoadLedger ledger = ledgerOf("a bb c");
    QVERIFY(!ledger.hasFinding(0, 6));
    ledger.report(2, 4, QStringLiteral("Lost."));
    QVERIFY(ledger.hasFinding(0, 6));
    QVERIFY(ledger.hasFinding(3, 4));
    QVERIFY(!ledger.hasFinding(0, 2));
    QVERIFY(!ledger.hasFinding(4, 6));
}

void TestLedger::givenTextComesFromTheStatement() {
    const LoadLedger ledger = ledgerOf("a/* x */+[b c], d");
    QCOMPARE(ledger.text(), QStringLiteral("a +\"b c\", d"));
    QCOMPARE(ledger.givenText(0, 8), QStringLiteral("a/* x */+[b c]"));
    QCOMPARE(ledger.givenText(3, 8), QStringLiteral("[b c]"));
}

void TestLedger::tokensInAreThoseOfTheSpan() {
    const LoadLedger ledger = ledgerOf("select a, b");
    QCOMPARE(ledger.tokens().size(), std::size_t(4));
    QCOMPARE(ledger.tokensIn(7, 9).sourceText(), QStringLiteral("A,"));
}

QTEST_GUILESS_MAIN(TestLedger)
#include "tst_ledger.moc"
