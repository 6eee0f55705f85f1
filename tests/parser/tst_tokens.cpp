// SPDX-License-Identifier: MIT
#include "parser/ORVQDTokens.h"

#include <QTest>

using namespace orv;

namespace {

TokenRun runOf(const QString& text, const SqlTokens& tokens) {
    return {text, tokens.data(), tokens.data() + tokens.size()};
}

// Tokens as "kind:text", separated by blanks; texts keep theirs.
QString tokensText(const QString& text) {
    static const QStringList kinds = {"w", "n", "t", "s", "o", "c", "k"};
    const SqlTokens tokens = tokenise(text);
    const TokenRun run = runOf(text, tokens);
    QStringList texts;
    for (int index = 0; index < run.size(); ++index) {
        texts << kinds[run[index].kind] + u':' + run.textOf(index).toString();
    }
    return texts.join(u' ');
}

}  // namespace

class TestTokens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kinds_data();
    void kinds();
    void depthsCountBrackets_data();
    void depthsCountBrackets();
    void spansAreThoseOfTheText();
    void keywordsAreComparedWithoutCase();
    void sourceTextIsTrimmedAndUpperOutsideQuotes();
    void splitsAtCommasOfItsOwnLevel_data();
    void splitsAtCommasOfItsOwnLevel();
    void behindBracket_data();
    void behindBracket();
    void tokensBetweenBeginInTheSpan_data();
    void tokensBetweenBeginInTheSpan();
};

void TestTokens::kinds_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tokens");
    const auto row = [](const char* text, const char* tokens) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(tokens);
    };
    row("", "");
    row("  ", "");
    row("select a,b", "w:select w:a k:, w:b");
    row("t.\"my field\" x", "w:t.\"my field\" w:x");
    row("\"a b\".\"c\"", "w:\"a b\".\"c\"");
    row("5 1.5 .5 1e3", "n:5 n:1.5 n:.5 n:1e3");
    row("'a b' 'it''s' N'x'", "t:'a b' t:'it''s' t:N'x'");
    row("'never closed, a", "t:'never closed, a");
    row("a<>b", "w:a s:<> w:b");
    row("a @> b <@ c #>> d", "w:a s:@> w:b s:<@ w:c s:#>> w:d");
    row("a<@p a=#t a#", "w:a s:< w:@p w:a s:= w:#t w:a#");
    row("a >=-5", "w:a s:>=- n:5");
    row("a||b%c", "w:a s:|| w:b s:% w:c");
    row("f(a)", "w:f o:( w:a c:)");
    row("count(*)", "w:count o:( s:* c:)");
    row("t.*", "w:t. s:*");
    row(":p @q ?1 #t $x a_b", "w::p w:@q w:?1 w:#t w:$x w:a_b");
    row("a::text ::b", "w:a s::: w:text s::: w:b");
    row("a[1];", "w:a s:[ n:1 s:] s:;");
    row("\xc3\xa4\xc3\xb6 \xf0\x9f\x90\x98", "w:\xc3\xa4\xc3\xb6 w:\xf0\x9f\x90\x98");
    row("\xef\xbf\xbdlike a\xef\xbf\xbd", "w:\xef\xbf\xbdlike w:a\xef\xbf\xbd");
    row("3\xef\xbf\xbd"
        "and 3and",
        "n:3\xef\xbf\xbd"
        "and n:3 w:and");
}

void TestTokens::kinds() {
    QFETCH(QString, text);
    QFETCH(QString, tokens);
    QCOMPARE(tokensText(text), tokens);
}

void TestTokens::depthsCountBrackets_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("depths");
    QTest::newRow("no bracket") << "a b"
                                << "00";
    QTest::newRow("a bracket has the depth around it") << "a(b)c"
                                                       << "00100";
    QTest::newRow("nested") << "((a))b"
                            << "012100";
    QTest::newRow("closed too often") << "a))b(c"
                                      << "000001";
    QTest::newRow("in quotes") << "'(' a"
                               << "00";
}

void TestTokens::depthsCountBrackets() {
    QFETCH(QString, text);
    QFETCH(QString, depths);
    QString found;
    for (const SqlToken& token : tokenise(text)) found += QString::number(token.depth);
    QCOMPARE(found, depths);
}

void TestTokens::spansAreThoseOfTheText() {
    const QString text = QStringLiteral(" ab  (c)");
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(tokens.size(), std::size_t(4));
    QCOMPARE(tokens[0], (SqlToken{1, 3, SqlToken::Word, 0}));
    QCOMPARE(tokens[1], (SqlToken{5, 6, SqlToken::Open, 0, 2}));  // closed two tokens further on
    QCOMPARE(tokens[2], (SqlToken{6, 7, SqlToken::Word, 1}));
    QCOMPARE(tokens[3], (SqlToken{7, 8, SqlToken::Close, 0}));
    const TokenRun run = runOf(text, tokens);
    QCOMPARE(run.start(), 1);
    QCOMPARE(run.endPosition(), 8);
    QCOMPARE(run.mid(1, 2).start(), 5);
    QCOMPARE(run.mid(1, 2).endPosition(), 7);
    QCOMPARE(run.mid(2).size(), 2);
    QVERIFY(run.mid(4).isEmpty());
}

void TestTokens::keywordsAreComparedWithoutCase() {
    const QString text = QStringLiteral("Select \"select\"");
    const SqlTokens tokens = tokenise(text);
    const TokenRun run = runOf(text, tokens);
    QVERIFY(run.is(0, u"SELECT"));
    QVERIFY(!run.is(0, u"SELEC"));
    QVERIFY(!run.is(1, u"SELECT"));
}

void TestTokens::sourceTextIsTrimmedAndUpperOutsideQuotes() {
    const QString text = QStringLiteral("  a + 'b c'  , d ");
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(runOf(text, tokens).mid(0, 3).sourceText(), QStringLiteral("A + 'b c'"));
    QCOMPARE(TokenRun().sourceText(), QString());
}

void TestTokens::splitsAtCommasOfItsOwnLevel_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("parts");
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("one") << "a b" << QStringList({"A B"});
    QTest::newRow("two") << "a, b c" << QStringList({"A", "B C"});
    QTest::newRow("comma in a bracket") << "f(a, b), c" << QStringList({"F(A, B)", "C"});
    QTest::newRow("comma in square brackets") << "a[1, 2], b" << QStringList({"A[1, 2]", "B"});
    QTest::newRow("square bracket that nothing opened") << "a], b" << QStringList({"A]", "B"});
    QTest::newRow("comma in quotes") << "'a, b', c" << QStringList({"'a, b'", "C"});
    QTest::newRow("nothing between") << "a,,b" << QStringList({"A", "", "B"});
    QTest::newRow("nothing behind") << "a," << QStringList({"A", ""});
}

void TestTokens::splitsAtCommasOfItsOwnLevel() {
    QFETCH(QString, text);
    QFETCH(QStringList, parts);
    const SqlTokens tokens = tokenise(text);
    QStringList found;
    for (const TokenRun& run : runOf(text, tokens).splitAtCommas()) found << run.sourceText();
    QCOMPARE(found, parts);
}

void TestTokens::behindBracket_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("behind");
    QTest::newRow("group") << "(a) b" << 0 << 3;
    QTest::newRow("nested") << "((a) b) c" << 0 << 6;
    QTest::newRow("inner one") << "((a) b) c" << 1 << 4;
    QTest::newRow("not closed") << "(a b" << 0 << 3;
}

void TestTokens::behindBracket() {
    QFETCH(QString, text);
    QFETCH(int, index);
    QFETCH(int, behind);
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(runOf(text, tokens).behindBracket(index), behind);
}

void TestTokens::tokensBetweenBeginInTheSpan_data() {
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("words");
    QTest::newRow("all") << 0 << 10 << "AB CD EF";
    QTest::newRow("the start counts") << 3 << 6 << "CD";
    QTest::newRow("inside a token") << 1 << 4 << "CD";
    QTest::newRow("the end is exclusive") << 0 << 3 << "AB";
    QTest::newRow("nothing") << 4 << 6 << "";
    QTest::newRow("empty span") << 3 << 3 << "";
}

void TestTokens::tokensBetweenBeginInTheSpan() {
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(QString, words);
    const QString text = QStringLiteral("ab cd ef  ");
    const SqlTokens tokens = tokenise(text);
    QCOMPARE(tokensBetween(text, tokens, start, end).sourceText(), words);
}

QTEST_GUILESS_MAIN(TestTokens)
#include "tst_tokens.moc"
