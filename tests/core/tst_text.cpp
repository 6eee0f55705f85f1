// SPDX-License-Identifier: MIT
#include "core/Text.h"

#include <QLocale>
#include <QTest>

using namespace orv;

class TestText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trimStripsBlanksAndControlCharacters_data();
    void trimStripsBlanksAndControlCharacters();
    void upperLeavesQuotedTextAlone_data();
    void upperLeavesQuotedTextAlone();
    void upperIsAppendedToWhatIsThere();
    void upperIsTheSameInATurkishLocale();
    void qualifiedNamesSplitAtTheFirstFullStopOutsideQuotes_data();
    void qualifiedNamesSplitAtTheFirstFullStopOutsideQuotes();
    void quotedNames_data();
    void quotedNames();
    void quotingDoublesInnerQuotes();
    void plainIdentifiers_data();
    void plainIdentifiers();
};

void TestText::trimStripsBlanksAndControlCharacters_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmed");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("nothing to strip") << "a b"
                                      << "a b";
    QTest::newRow("blanks") << "  a  "
                            << "a";
    QTest::newRow("tabs and line breaks") << "\t\r\n a\n"
                                          << "a";
    QTest::newRow("NUL and unit separator") << (QChar(0) + QStringLiteral("a\u001f")) << "a";
    QTest::newRow("nothing but blanks") << "\r\n \t" << QString();
    QTest::newRow("no-break space stays")
        << QStringLiteral("\u00a0a\u00a0") << QStringLiteral("\u00a0a\u00a0");
}

void TestText::trimStripsBlanksAndControlCharacters() {
    QFETCH(QString, text);
    QFETCH(QString, trimmed);
    QCOMPARE(orvTrim(text), trimmed);
    QCOMPARE(orvTrim(QStringView(text)).toString(), trimmed);
}

void TestText::upperLeavesQuotedTextAlone_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("upper");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("no quotes") << "select a"
                               << "SELECT A";
    QTest::newRow("apostrophes") << "a = 'b c' or d"
                                 << "A = 'b c' OR D";
    QTest::newRow("double quotes") << "a.\"b c\".d"
                                   << "A.\"b c\".D";
    QTest::newRow("other quote inside") << "a \"it's\" b 'x\"y' c"
                                        << "A \"it's\" B 'x\"y' C";
    QTest::newRow("doubled quote") << "a 'b''c' d"
                                   << "A 'b''c' D";
    QTest::newRow("quote never closed") << "a 'b c"
                                        << "A 'b c";
    QTest::newRow("quote at the end") << "a'"
                                      << "A'";
    QTest::newRow("letter that grows") << QStringLiteral("stra\u00dfe") << "STRASSE";
}

void TestText::upperLeavesQuotedTextAlone() {
    QFETCH(QString, text);
    QFETCH(QString, upper);
    QCOMPARE(upperOutsideQuotes(text), upper);
}

void TestText::upperIsAppendedToWhatIsThere() {
    QString text = QStringLiteral("kept ");
    orv::appendUpperOutsideQuotes(text, QStringLiteral("\u00e9a'\u00e9b'stra\u00dfe\"c\"d"));
    QCOMPARE(text, QStringLiteral("kept \u00c9A'\u00e9b'STRASSE\"c\"D"));
}

void TestText::upperIsTheSameInATurkishLocale() {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Turkish));
    const QString upper = upperOutsideQuotes(u"distinct having");
    QLocale::setDefault(before);
    QCOMPARE(upper, QStringLiteral("DISTINCT HAVING"));
}

void TestText::qualifiedNamesSplitAtTheFirstFullStopOutsideQuotes_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("fullStop");
    QTest::addColumn<QString>("alias");
    QTest::addColumn<QString>("field");
    QTest::newRow("plain") << "T.A" << 1 << "T"
                           << "A";
    QTest::newRow("none") << "A" << -1 << QString() << "A";
    QTest::newRow("empty") << QString() << -1 << QString() << QString();
    QTest::newRow("first of two") << "S.T.A" << 1 << "S"
                                  << "T.A";
    QTest::newRow("inside double quotes") << "\"a.b\".C" << 5 << "\"a.b\""
                                          << "C";
    QTest::newRow("inside apostrophes") << "'1.5'" << -1 << QString() << "'1.5'";
    QTest::newRow("other quote inside") << "\"a'.b\".C" << 6 << "\"a'.b\""
                                        << "C";
    QTest::newRow("quote never closed") << "\"a.b" << -1 << QString() << "\"a.b";
    QTest::newRow("at the start") << ".A" << 0 << QString() << "A";
    QTest::newRow("at the end") << "T." << 1 << "T" << QString();
}

void TestText::qualifiedNamesSplitAtTheFirstFullStopOutsideQuotes() {
    QFETCH(QString, text);
    QFETCH(int, fullStop);
    QFETCH(QString, alias);
    QFETCH(QString, field);
    QCOMPARE(firstFullStop(text), fullStop);
    const QualifiedName name = splitQualifiedName(text);
    QCOMPARE(name.alias, alias);
    QCOMPARE(name.field, field);
}

void TestText::quotedNames_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("quoted");
    QTest::addColumn<QString>("unquoted");
    QTest::newRow("plain") << "A" << false << "A";
    QTest::newRow("quoted") << "\"a b\"" << true << "a b";
    QTest::newRow("empty name") << "\"\"" << true << QString();
    QTest::newRow("doubled quote inside") << "\"a\"\"b\"" << true << "a\"b";
    QTest::newRow("nothing but a doubled quote") << "\"\"\"\"" << true << "\"";
    QTest::newRow("single quote sign") << "\"" << false << "\"";
    QTest::newRow("three quote signs") << "\"\"\"" << false << "\"\"\"";
    QTest::newRow("two names") << "\"a\".\"b\"" << false << "\"a\".\"b\"";
    QTest::newRow("apostrophes") << "'a'" << false << "'a'";
    QTest::newRow("empty text") << QString() << false << QString();
}

void TestText::quotedNames() {
    QFETCH(QString, text);
    QFETCH(bool, quoted);
    QFETCH(QString, unquoted);
    QCOMPARE(isQuotedName(text), quoted);
    QCOMPARE(unquotedName(text), unquoted);
}

void TestText::quotingDoublesInnerQuotes() {
    QCOMPARE(quotedName(QStringLiteral("a\"b")), QStringLiteral("\"a\"\"b\""));
    QCOMPARE(quotedName(QString()), QStringLiteral("\"\""));
    QCOMPARE(unquotedName(quotedName(QStringLiteral("\"x\"\""))), QStringLiteral("\"x\"\""));
}

void TestText::plainIdentifiers_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("plain");
    QTest::newRow("upper case") << "NAME" << true;
    QTest::newRow("lower case") << "name" << true;
    QTest::newRow("underscore first") << "_a" << true;
    QTest::newRow("digits and dollar behind") << "A1$_z" << true;
    QTest::newRow("digit first") << "1A" << false;
    QTest::newRow("dollar first") << "$A" << false;
    QTest::newRow("blank") << "A B" << false;
    QTest::newRow("full stop") << "T.A" << false;
    QTest::newRow("other letter") << QStringLiteral("\u00c4") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestText::plainIdentifiers() {
    QFETCH(QString, text);
    QFETCH(bool, plain);
    QCOMPARE(isPlainIdentifier(text), plain);
}

QTEST_GUILESS_MAIN(TestText)
#include "tst_text.moc"
