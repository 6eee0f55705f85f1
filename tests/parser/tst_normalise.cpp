// SPDX-License-Identifier: MIT
#include "parser/ORVQDNormalise.h"

#include <QTest>

using namespace orv;

class TestNormalise : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void texts_data();
    void texts();
    void squareBracketsMayBeSigns();
    void positionsLeadBack_data();
    void positionsLeadBack();
    void aSpanEndsBehindItsLastCharacter();
    void aSecondTimeChangesNothing_data();
    void aSecondTimeChangesNothing();

    void tails_data();
    void tails();
    void columnsOfTheseNamesStayColumns_data();
    void columnsOfTheseNamesStayColumns();
    void textBehindASemicolonIsTheRest_data();
    void textBehindASemicolonIsTheRest();
    void operandsEnd_data();
    void operandsEnd();
};

void TestNormalise::texts_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* tag, const char* given, const char* text) {
        QTest::newRow(tag) << QString::fromUtf8(given) << QString::fromUtf8(text);
    };
    row("empty", "", "");
    row("nothing to do", "select A, 'b' from \"t\"", "select A, 'b' from \"t\"");
    row("line comment", "a -- b\nc", "a   c");
    row("line comment to a carriage return", "a --b\rc", "a   c");
    row("line comment at the end", "a --b", "a  ");
    row("line comment without a blank", "a--b", "a ");
    row("block comment", "a /* b\n ' */ c", "a   c");
    row("block comment between letters", "a/**/b", "a b");
    row("block comment not closed", "a /* b", "a  ");
    row("star of the opening does not close", "a /*/ b */ c", "a   c");
    row("comments are not nested", "/* /* */ a */", "  a */");
    row("dashes in a block comment", "/* -- */ a", "  a");
    row("block comment in a line comment", "-- /*\na", "  a");
    row("one dash is a sign", "a - b", "a - b");
    row("one slash is a sign", "a / b", "a / b");
    row("comment in apostrophes", "'a -- /* b' c", "'a -- /* b' c");
    row("comment in double quotes", "\"a -- b\" c", "\"a -- b\" c");
    row("quote in a comment", "a --'\nb 'c'", "a   b 'c'");
    row("tab", "a\tb", "a b");
    row("line breaks", "a\r\nb", "a  b");
    row("form feed and vertical tab", "a\f\vb", "a  b");
    row("tab in apostrophes", "'a\tb'", "'a\tb'");
    row("line break in double quotes", "\"a\nb\"", "\"a\nb\"");
    row("final semicolon", "a;", "a");
    row("final semicolon and blanks", "a ; \n", "a ");
    row("final semicolon and a comment", "a; -- b", "a");
    row("final semicolons", "a;;", "a");
    row("semicolon inside", "a; b", "a; b");
    row("semicolon in quotes", "';'", "';'");
    row("semicolon in a quote that nothing closes", "'a;", "'a;");
    row("backticks", "select `my name` from `t`", "select \"my name\" from \"t\"");
    row("backticks with a qualifier", "`a b`.`c d`", "\"a b\".\"c d\"");
    row("doubled backtick", "`a``b`", "\"a`b\"");
    row("double quote in backticks", "`a\"b`", "\"a\"\"b\"");
    row("apostrophe in backticks", "`it's`, b", "\"it's\", b");
    row("comment in backticks", "`a -- b` c", "\"a -- b\" c");
    row("backtick in apostrophes", "'a`b`'", "'a`b`'");
    row("backtick not closed", "a `b", "a `b");
    row("odd row of backticks", "a```````b", "a```````b");
    row("odd row of backticks, closed", "a```b`", "a\"`b\"");
    row("square brackets", "select [my name] from [t]", "select \"my name\" from \"t\"");
    row("square brackets at the start", "[a b]", "\"a b\"");
    row("square brackets behind a full stop", "t.[a b].[c]", "t.\"a b\".\"c\"");
    row("square brackets behind a bracket", "sum([a b])", "sum(\"a b\")");
    row("square brackets behind a comma", "a,[b c]", "a,\"b c\"");
    row("square brackets behind a sign", "a=[b c]", "a=\"b c\"");
    row("square brackets behind a comment", "a/**/[b c]", "a \"b c\"");
    row("doubled square bracket", "[a]]b]", "\"a]b\"");
    row("double quote in square brackets", "[a\"b]", "\"a\"\"b\"");
    row("square brackets glued to a keyword", "select[a b]from[t]where not[c]in[d]",
        "select \"a b\"from \"t\"where not \"c\"in \"d\"");
    row("clauses glued to numbers", "select 1from t where a=.5group by b having c>2.order by 1",
        "select 1 from t where a=.5 group by b having c>2. order by 1");
    row("a name that begins with a number", "1order, t1from, 'x1from', 1.5groups by",
        "1order, t1from, 'x1from', 1.5groups by");
    row("an index behind a name", "a[1]", "a[1]");
    row("an index behind the end of a name", "my_and[1], \u00e9and[1], 1and[1], t.and[1]",
        "my_and[1], \u00e9and[1], 1and[1], t.and[1]");
    row("an index behind a bracket", "f(a)[1]", "f(a)[1]");
    row("an index behind a quoted name", "\"a\"[1]", "\"a\"[1]");
    row("an index behind an index", "a[1][2]", "a[1][2]");
    row("square bracket not closed", "a, [b", "a, [b");
    row("square brackets in apostrophes", "'[a]'", "'[a]'");
}

void TestNormalise::texts() {
    QFETCH(QString, given);
    QFETCH(QString, text);
    const NormalisedSQL normalised = NormaliseSQL(given);
    QCOMPARE(normalised.text, text);
    QCOMPARE(qsizetype(normalised.positions.size()), normalised.text.size() + 1);
}

void TestNormalise::squareBracketsMayBeSigns() {
    const QString given = QStringLiteral("a [x] b `c d`");
    QCOMPARE(NormaliseSQL(given, SquareBrackets::AreSigns).text, QStringLiteral("a [x] b \"c d\""));
}

// Positions as digits and letters, for each character of the text: 0 to 9, a for 10 ...
void TestNormalise::positionsLeadBack_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("positions");
    QTest::newRow("unchanged") << "a, 'b'"
                               << "a, 'b'"
                               << "012345";
    QTest::newRow("comment") << "a/* */b--c\nd"
                             << "a b  d"
                             << "0167ab";
    QTest::newRow("final semicolon") << "a; "
                                     << "a"
                                     << "0";
    QTest::newRow("backticks") << "`a b`.c"
                               << "\"a b\".c"
                               << "0123456";
    QTest::newRow("doubled backtick") << "`a``b`c"
                                      << "\"a`b\"c"
                                      << "012456";
    QTest::newRow("quote in square brackets") << "[a\"b]c"
                                              << "\"a\"\"b\"c"
                                              << "0122345";
    QTest::newRow("tab and line break") << "a\t\nb"
                                        << "a  b"
                                        << "0123";
}

void TestNormalise::positionsLeadBack() {
    QFETCH(QString, given);
    QFETCH(QString, text);
    QFETCH(QString, positions);
    const NormalisedSQL normalised = NormaliseSQL(given);
    QCOMPARE(normalised.text, text);
    QString found;
    for (int at = 0; at < normalised.text.size(); ++at) {
        found += QString::number(normalised.givenPosition(at), 16);
    }
    QCOMPARE(found, positions);
}

void TestNormalise::aSpanEndsBehindItsLastCharacter() {
    const NormalisedSQL normalised = NormaliseSQL(QStringLiteral("a/* */b `c``d`;"));
    QCOMPARE(normalised.text, QStringLiteral("a b \"c`d\""));
    QCOMPARE(normalised.givenEnd(1), 1);
    QCOMPARE(normalised.givenEnd(3), 7);
    QCOMPARE(normalised.givenEnd(int(normalised.text.size())), 14);
    QCOMPARE(normalised.givenPosition(int(normalised.text.size())), 14);
    QCOMPARE(normalised.givenEnd(0), 0);
}

void TestNormalise::aSecondTimeChangesNothing_data() {
    texts_data();
}

void TestNormalise::aSecondTimeChangesNothing() {
    QFETCH(QString, text);
    QCOMPARE(NormaliseSQL(text).text, text);
}

void TestNormalise::tails_data() {
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("tail");
    const auto row = [](const char* body, const char* tail) {
        QTest::addRow("%s| %s", body, tail)
            << QString::fromLatin1(body) << QString::fromLatin1(tail);
    };
    row("select a from t", "");
    row("select a from t ", "union select b from u");
    row("select a from t ", "UNION ALL select b from u order by 1");
    row("select a from t ", "union (select b from u)");
    row("select a from t ", "intersect select b from u");
    row("select a from t ", "except all select b from u");
    row("select a from t ", "except (select b from u)");
    row("select a from t ", "limit 10");
    row("select a from t ", "Limit 10 offset 5");
    row("select a from t ", "offset 5 rows fetch next 5 rows only");
    row("select a from t ", "fetch first 5 rows only");
    row("select a from t ", "fetch next 5 rows only");
    row("select a from t ", "for update");
    row("select a from t ", "for share");
    row("select a from t ", "window w as (order by a)");
    row("select a from t x ", "limit 10");
    row("select a from t as x ", "limit 10");
    row("select a from \"my t\" ", "limit 10");
    row("select a from p(1) ", "limit 10");
    row("select a from t where b = 1 ", "limit 10");
    row("select a from t where b = 'x' ", "limit 10");
    row("select a from t where b = :p ", "limit 10");
    row("select a from t where b is null ", "limit 10");
    row("select a from t where b in (1) ", "limit 10");
    row("select a from t group by b ", "limit 10");
    row("select a from t order by b desc ", "limit 10");
    row("select a from t order by 1 ", "for update");
    row("select a from t limit_ ", "limit 10");
    row("select a from t ", "limit 10 union select b from u");
    row("select (select b from u limit 1) from t ", "limit 2");
    row("select a from t where b in (select c from d union select e from f)", "");
    row("select 'x limit 1' from t", "");
    row("select a from t)", "");
}

void TestNormalise::tails() {
    QFETCH(QString, body);
    QFETCH(QString, tail);
    const QString text = body + tail;
    const StatementParts parts = splitStatement(text, tokenise(text));
    QCOMPARE(text.left(parts.bodyEnd), body);
    QCOMPARE(text.mid(parts.tailStart, parts.tailEnd - parts.tailStart), tail);
    QCOMPARE(parts.restStart, int(text.size()));
}

void TestNormalise::columnsOfTheseNamesStayColumns_data() {
    QTest::addColumn<QString>("text");
    for (const char* text : {"select limit from t",
                             "select a, limit, offset from t",
                             "select distinct limit from t",
                             "select all window from t",
                             "select t.limit from t",
                             "select \"limit\" from t",
                             "select a as limit from t",
                             "select a from limit",
                             "select a from t, offset",
                             "select a from t join window on a = b",
                             "select a from t where limit = 5",
                             "select a from t where a = limit",
                             "select a from t where a = 1 and offset > 1",
                             "select a from t where a = 1 or limit > 1",
                             "select a from t where not limit",
                             "select a from t where a between limit and offset",
                             "select a from t where a like limit",
                             "select a from t where a in (limit)",
                             "select a from t where a like 'x' escape limit",
                             "select a from t join u on limit = offset",
                             "select a from t group by limit",
                             "select a from t group by a having limit > 1",
                             "select a from t order by limit desc",
                             "select a from t order by a, offset",
                             "select case limit when limit then limit else limit end from t",
                             "select a + limit from t",
                             "select a * limit from t",
                             "select sum(a limit) from t",
                             "select a from t union",
                             "select a from t except b",
                             "select a from t fetch",
                             "select a from t fetch last",
                             "select a from t for b",
                             "union select a from t"}) {
        QTest::newRow(text) << QString::fromLatin1(text);
    }
}

void TestNormalise::columnsOfTheseNamesStayColumns() {
    QFETCH(QString, text);
    const StatementParts parts = splitStatement(text, tokenise(text));
    QCOMPARE(parts.bodyEnd, int(text.size()));
    QCOMPARE(parts.tailStart, parts.tailEnd);
}

void TestNormalise::textBehindASemicolonIsTheRest_data() {
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("tail");
    QTest::addColumn<QString>("rest");
    QTest::newRow("second statement") << "select a from t" << QString() << "; select b from u";
    QTest::newRow("behind a tail") << "select a from t "
                                   << "limit 1"
                                   << "; select b from u limit 2";
    QTest::newRow("in a bracket") << "select (a; b) from t" << QString() << QString();
    QTest::newRow("in quotes") << "select 'a; b' from t" << QString() << QString();
    QTest::newRow("tail keyword behind it only") << "select a from t" << QString() << "; x limit 1";
}

void TestNormalise::textBehindASemicolonIsTheRest() {
    QFETCH(QString, body);
    QFETCH(QString, tail);
    QFETCH(QString, rest);
    const QString text = body + tail + rest;
    const StatementParts parts = splitStatement(text, tokenise(text));
    QCOMPARE(text.left(parts.bodyEnd), body);
    QCOMPARE(text.mid(parts.tailStart, parts.tailEnd - parts.tailStart), tail);
    QCOMPARE(text.mid(parts.restStart), rest);
}

void TestNormalise::operandsEnd_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ends");
    const auto rows = [](bool ends, std::initializer_list<const char*> texts) {
        for (const char* text : texts) QTest::newRow(text) << QString::fromLatin1(text) << ends;
    };
    rows(true, {"a", "t.a", "5", "'x'", "f(a)", "a[1]", ":p", "null", "end", "desc", "\"select\"",
                "\"a b\"", "limit"});
    rows(false,
         {"select", "FROM", "a,",   "a =",  "a +",  "f(",   "as", "and", "not", "between", "like",
          "in",     "is",   "case", "when", "then", "else", "t.", "by",  "on",  "join"});
}

void TestNormalise::operandsEnd() {
    QFETCH(QString, text);
    QFETCH(bool, ends);
    const SqlTokens tokens = tokenise(text);
    const TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    QCOMPARE(endsOperand(run, run.size() - 1), ends);
}

QTEST_GUILESS_MAIN(TestNormalise)
#include "tst_normalise.moc"
