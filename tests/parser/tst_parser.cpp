// SPDX-License-Identifier: MIT
#include "TreeText.h"
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDParser.h"

#include <QFile>
#include <QLocale>
#include <QTest>

namespace {

using Node = TorvQDParser::Node;

QString unescaped(const QString& line) {
    QString text;
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (line[at] != u'\\') {
            text += line[at];
            continue;
        }
        switch (line[++at].unicode()) {
        case u'n': text += u'\n'; break;
        case u'r': text += u'\r'; break;
        case u't': text += u'\t'; break;
        case u'0': text += QChar(0); break;
        case u'u':
            text += QChar(line.mid(at + 1, 4).toUShort(nullptr, 16));
            at += 4;
            break;
        default: qFatal("Unknown escape in %s", qPrintable(line));
        }
    }
    return text;
}

Node leaf(TTypeOfTie kind, const char* text) {
    return std::make_unique<TorvQDParser>(kind, inItem, QString::fromLatin1(text));
}

QString errorOf(const QString& statement) {
    try {
        TorvQDParser parser(statement);
    } catch (const orv::Error& error) {
        return error.Message();
    }
    return QStringLiteral("(no error)");
}

// The first node of that text, in the order of the text.
const TorvQDParser* nodeOf(const TorvQDParser& node, const QString& text) {
    for (const Node& child : node.Children()) {
        if (child->Text() == text) return child.get();
        if (const TorvQDParser* found = nodeOf(*child, text)) return found;
    }
    return nullptr;
}

QString textAt(const TorvQDParser& root, const TorvQDParser& node) {
    return root.Source().mid(node.Start(), node.End() - node.Start());
}

}  // namespace

class TestParser : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kindOrdinals_data();
    void kindOrdinals();
    void locationOrdinals_data();
    void locationOrdinals();

    void trees_data();
    void trees();
    void rootIsTheSelectClause();
    void keywordsAreFoundInATurkishLocale();
    void otherStatementsRaise_data();
    void otherStatementsRaise();

    void nextWord_data();
    void nextWord();
    void nextWordKeepsItsCase();
    void textInBraces_data();
    void textInBraces();
    void posEx_data();
    void posEx();

    void createNodeForAStatement();
    void createNodeForAnotherStatementRaises();
    void createNodeForArguments_data();
    void createNodeForArguments();
    void createNodeElsewhereKeepsItsText();
    void doParseReadsByLocation_data();
    void doParseReadsByLocation();

    void spansAreTheNodesOwnText_data();
    void spansAreTheNodesOwnText();
    void clausesReachToWhereTheirReadingEnded();
    void sourceHasItsLineBreaksAsBlanks();
    void clauseFindsTheFirstOfItsLocation();
    void handMadeNodesKeepWhatTheyAreGiven();

    void aliasNames_data();
    void aliasNames();
    void aliasIsTheLastChild();
    void aliasNameNeedsItsLocation_data();
    void aliasNameNeedsItsLocation();
    void fillArguments_data();
    void fillArguments();
    void fillArgumentsOfAnAliasIsEmpty();
};

void TestParser::kindOrdinals_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("ordinal");
    QTest::newRow("otCompound") << int(otCompound) << 0;
    QTest::newRow("otBrakets") << int(otBrakets) << 1;
    QTest::newRow("otMatchingType") << int(otMatchingType) << 2;
    QTest::newRow("otConst") << int(otConst) << 3;
    QTest::newRow("otField") << int(otField) << 4;
    QTest::newRow("otTable") << int(otTable) << 5;
    QTest::newRow("otCondition") << int(otCondition) << 6;
    QTest::newRow("otJoin") << int(otJoin) << 7;
    QTest::newRow("otFunc") << int(otFunc) << 8;
    QTest::newRow("otOperator") << int(otOperator) << 9;
    QTest::newRow("otLogical") << int(otLogical) << 10;
    QTest::newRow("otAlias") << int(otAlias) << 11;
}

void TestParser::kindOrdinals() {
    QFETCH(int, kind);
    QFETCH(int, ordinal);
    QCOMPARE(kind, ordinal);
    QCOMPARE(sizeof(TTypeOfTie), std::size_t(1));
}

void TestParser::locationOrdinals_data() {
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("ordinal");
    QTest::newRow("inUnknown") << int(inUnknown) << 0;
    QTest::newRow("inFunction") << int(inFunction) << 1;
    QTest::newRow("inItem") << int(inItem) << 2;
    QTest::newRow("inSelect") << int(inSelect) << 3;
    QTest::newRow("inFrom") << int(inFrom) << 4;
    QTest::newRow("inWhere") << int(inWhere) << 5;
    QTest::newRow("inGroupBy") << int(inGroupBy) << 6;
    QTest::newRow("inHaving") << int(inHaving) << 7;
    QTest::newRow("inOrderBy") << int(inOrderBy) << 8;
}

void TestParser::locationOrdinals() {
    QFETCH(int, location);
    QFETCH(int, ordinal);
    QCOMPARE(location, ordinal);
    QCOMPARE(sizeof(TLocationKinds), std::size_t(1));
}

// The rows are those of trees.txt.
void TestParser::trees_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("tree");
    QFile file(QFINDTESTDATA("trees.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString name;
    QString statement;
    QStringList tree;
    const auto addRow = [&] {
        if (name.isEmpty()) return;
        QTest::newRow(qPrintable(name)) << unescaped(statement) << unescaped(tree.join(u' '));
        name.clear();
        tree.clear();
    };
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith(u'#')) continue;
        if (line.startsWith(QStringLiteral("  = "))) {
            tree << line.mid(4);
        } else if (line.startsWith(QStringLiteral("  "))) {
            statement = line.mid(2);
        } else {
            addRow();
            name = line;
        }
    }
    addRow();
}

void TestParser::trees() {
    QFETCH(QString, statement);
    QFETCH(QString, tree);
    QCOMPARE(treetext::childrenText(TorvQDParser(statement)), tree);
}

void TestParser::rootIsTheSelectClause() {
    const TorvQDParser root(QStringLiteral(" select a"));
    QCOMPARE(root.Kind(), otCompound);
    QCOMPARE(root.Location(), inSelect);
    QCOMPARE(root.Text(), QStringLiteral("SELECT"));
}

void TestParser::keywordsAreFoundInATurkishLocale() {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Turkish));
    const QString tree = treetext::childrenText(
        TorvQDParser(QStringLiteral("select distinct i from t having i is null")));
    QLocale::setDefault(before);
    QCOMPARE(tree, QStringLiteral("word:DISTINCT f:I clause:FROM@from[table:T] "
                                  "clause:HAVING@having[f:I cond:`IS NULL`@having]"));
}

void TestParser::otherStatementsRaise_data() {
    QTest::addColumn<QString>("statement");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << " \r\n\t ";
    QTest::newRow("INSERT") << "insert into t values (1)";
    QTest::newRow("WITH") << "with x as (select 1) select a from x";
    QTest::newRow("bracket first") << "(select a from t)";
    QTest::newRow("longer word") << "selected a from t";
    QTest::newRow("quoted") << "\"SELECT\" a";
    QTest::newRow("tab behind SELECT") << "SELECT\tA FROM T";
    QTest::newRow("NUL inside") << (QStringLiteral("SEL") + QChar(0) + QStringLiteral("ECT a"));
}

void TestParser::otherStatementsRaise() {
    QFETCH(QString, statement);
    QCOMPARE(errorOf(statement), QStringLiteral("Given statement is not SELECT clause"));
}

void TestParser::nextWord_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("rest");
    const auto row = [](const char* tag, const char* text, const char* word, const char* rest) {
        QTest::newRow(tag) << QString::fromLatin1(text) << QString::fromLatin1(word)
                           << QString::fromLatin1(rest);
    };
    row("empty text", "", "", "");
    row("one word", "ABC", "ABC", "");
    row("blank stays in the rest", "A B", "A", " B");
    row("comma stays in the rest", "A,B", "A", ",B");
    row("opening bracket stays in the rest", "A(B", "A", "(B");
    row("closing bracket stays in the rest", "A)B", "A", ")B");
    for (const char sign : {'=', '<', '>', '!', '+', '-', '*', '/', '|'}) {
        const QByteArray tag = QByteArray("sign ") + sign;
        const QByteArray text = QByteArray("A") + sign + "B";
        const QByteArray rest = QByteArray(1, sign) + "B";
        row(tag.constData(), text.constData(), "A", rest.constData());
    }
    row("the first of several separators", "A+B,C D", "A", "+B,C D");
    row("separator first", " A", "", " A");
    row("sign first", "=A", "", "=A");
    row("closing bracket first", ")A", "", ")A");
    row("separator last", "ABC,", "ABC,", "");
    row("blank last", "ABC ", "ABC ", "");
    row("sign last", "ABC=", "ABC=", "");
    row("nothing but a separator", ")", ")", "");
    row("separators in apostrophes", "'A, B'C D", "'A, B'C", " D");
    row("separators in double quotes", "\"A (B\", C", "\"A (B\"", ", C");
    row("separator as last character in quotes", "A,'B ", "A", ",'B ");
    row("quote that nothing closes", "'A, B", "'A, B", "");
    row("the other quote inside", "\"A'\" B", "\"A'\"", " B");
    row("other characters separate nothing", "A.B:C\t%D E", "A.B:C\t%D", " E");
    row("GROUP BY", "GROUP BY A", "GROUP BY", "A");
    row("GROUP BY with blanks", "GROUP   BY  A", "GROUP BY", "A");
    row("ORDER BY", "ORDER BY A", "ORDER BY", "A");
    row("ORDER without BY", "ORDER A", "ORDER", " A");
    row("BY in a longer word", "GROUP BYX", "GROUP BY", "X");
    row("GROUP at the end", "GROUP", "GROUP", "");
    row("IS NULL", "IS NULL AND", "IS NULL", " AND");
    row("IS NULL at the end", "IS NULL", "IS NULL", "");
    row("IS NULL with blanks", "IS   NULL AND", "IS NULL", " AND");
    row("IS NULL and a blank at the end", "IS NULL ", "IS NULL", "");
    row("IS NOT NULL", "IS NOT NULL,A", "IS NOT NULL", ",A");
    row("IS NOT NULL with blanks", "IS  NOT  NULL)A", "IS NOT NULL", ")A");
    row("IS and another word", "IS DISTINCT FROM", "IS", " DISTINCT FROM");
    row("IS NOT and another word", "IS NOT TRUE", "IS", " NOT TRUE");
    row("IS and a longer word", "IS NULLS", "IS", " NULLS");
    row("IS at the end", "IS", "IS", "");
}

void TestParser::nextWord() {
    QFETCH(QString, text);
    QFETCH(QString, word);
    QFETCH(QString, rest);
    QString found;
    TorvQDParser::GetNextWord(text, found);
    QCOMPARE(found, word);
    QCOMPARE(text, rest);
}

void TestParser::nextWordKeepsItsCase() {
    QString rest = QStringLiteral("Abc d");
    QString word;
    TorvQDParser::GetNextWord(rest, word);
    QCOMPARE(word, QStringLiteral("Abc"));
    QCOMPARE(rest, QStringLiteral(" d"));
}

void TestParser::textInBraces_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("rest");
    QTest::newRow("group") << "(A) B"
                           << "(A)"
                           << " B";
    QTest::newRow("nested") << "(A (B) C) D"
                            << "(A (B) C)"
                            << " D";
    QTest::newRow("empty group") << "()A"
                                 << "()"
                                 << "A";
    QTest::newRow("not closed") << "(A (B)"
                                << "(A (B)" << QString();
    QTest::newRow("quotes do not count") << "('A)' B) C"
                                         << "('A)"
                                         << "' B) C";
    QTest::newRow("one character") << "("
                                   << "(" << QString();
    QTest::newRow("empty text") << QString() << QString() << QString();
    QTest::newRow("ends the text") << "(A)"
                                   << "(A)" << QString();
}

void TestParser::textInBraces() {
    QFETCH(QString, text);
    QFETCH(QString, group);
    QFETCH(QString, rest);
    QString found;
    TorvQDParser::GetTextInBraces(text, found);
    QCOMPARE(found, group);
    QCOMPARE(text, rest);
}

void TestParser::posEx_data() {
    QTest::addColumn<QString>("sub");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("position");
    QTest::newRow("at the start") << "A"
                                  << "ABC" << 1;
    QTest::newRow("further on") << ","
                                << "AB,C" << 3;
    QTest::newRow("absent") << "X"
                            << "ABC" << 0;
    QTest::newRow("empty text") << "X" << QString() << 0;
    QTest::newRow("case counts") << "b"
                                 << "ABC" << 0;
    QTest::newRow("behind apostrophes") << ","
                                        << "'A,B',C" << 6;
    QTest::newRow("behind double quotes") << ","
                                          << "A\",\"B,C" << 6;
    QTest::newRow("behind two quoted parts") << ","
                                             << "',' \",\" ,A" << 9;
    QTest::newRow("the other quote inside") << ","
                                            << "\"',\",A" << 5;
    QTest::newRow("only in quotes") << ","
                                    << "A',' B" << 0;
    QTest::newRow("behind a quote that nothing closes") << ","
                                                        << "A 'B, C" << 0;
    QTest::newRow("quote at the end") << ","
                                      << "AB'" << 0;
    QTest::newRow("longer text") << "JOIN"
                                 << "LEFT 'JOIN' JOIN" << 13;
    QTest::newRow("not across a quoted part") << "AB"
                                              << "A''B" << 0;
}

void TestParser::posEx() {
    QFETCH(QString, sub);
    QFETCH(QString, text);
    QFETCH(int, position);
    QCOMPARE(PosEx(sub, text), position);
}

void TestParser::createNodeForAStatement() {
    QString text = QStringLiteral("SELECT A");
    const Node node = TorvQDParser::CreateNode(text, inUnknown, QString());
    QCOMPARE(treetext::treeText(*node), QStringLiteral("clause:SELECT@select"));
    QCOMPARE(text, QStringLiteral(" A"));
}

void TestParser::createNodeForAnotherStatementRaises() {
    QString text = QStringLiteral("UPDATE T");
    QVERIFY_THROWS_EXCEPTION(orv::Error, TorvQDParser::CreateNode(text, inUnknown, QString()));
}

void TestParser::createNodeForArguments_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("arguments");
    QTest::newRow("brackets come off") << "(A, B)"
                                       << "A, B";
    QTest::newRow("only one pair comes off") << "((A))"
                                             << "(A)";
    QTest::newRow("without an end only the first comes off") << "(A, B"
                                                             << "A, B";
    QTest::newRow("text without brackets stays") << "A, B)"
                                                 << "A, B)";
    QTest::newRow("nothing but a bracket") << "(" << QString();
}

void TestParser::createNodeForArguments() {
    QFETCH(QString, text);
    QFETCH(QString, arguments);
    const Node node = TorvQDParser::CreateNode(text, inFunction, QStringLiteral("SUM"));
    QCOMPARE(text, arguments);
    QCOMPARE(node->Location(), inFunction);
    QCOMPARE(node->Text(), QStringLiteral("SUM"));
    QCOMPARE(node->Count(), 0);
}

void TestParser::createNodeElsewhereKeepsItsText() {
    QString text = QStringLiteral("(A)");
    const Node node = TorvQDParser::CreateNode(text, inWhere, QStringLiteral("X"));
    QCOMPARE(text, QStringLiteral("(A)"));
    QCOMPARE(node->Location(), inWhere);
    QCOMPARE(node->Text(), QStringLiteral("X"));
}

void TestParser::doParseReadsByLocation_data() {
    QTest::addColumn<int>("location");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("rest");
    const auto row = [](TLocationKinds location, const char* text, const char* tree,
                        const char* rest = "") {
        QTest::addRow("%d: %s", int(location), text)
            << int(location) << QString::fromLatin1(text) << QString::fromLatin1(tree)
            << QString::fromLatin1(rest);
    };
    row(inSelect, "A B, C", "f:A[as:B] f:C");
    row(inFunction, "A B, 1", "f:A f:B c:1");
    row(inFrom, "A B, C", "table:A[as:B] table:C");
    row(inWhere, "A = 1 AND B", "f:A op:= c:1 log:AND f:B");
    row(inHaving, "A IN (1)", "f:A cond:IN@having[br@having[c:1]]");
    row(inGroupBy, "A, B", "f:A f:B");
    row(inOrderBy, "A DESC, B", "f:A[word:DESC] f:B");
    row(inItem, "A, 'B' 1 AND *", "c:A c:'B' c:1 c:AND op:*");
    row(inUnknown, "A * NULL", "c:A op:* c:NULL");
    row(inItem, "A MAX (B) ALL", "c:A func:MAX@call[f:B] word:ALL");
    row(inWhere, "A GROUP BY B", "f:A", "GROUP BYB");
    row(inWhere, "A = 1 LEFT JOIN B", "f:A op:= c:1", "LEFT JOIN B");
    row(inGroupBy, "A HAVING B", "f:A", "HAVING B");
}

// A clause word that is put back may have lost blanks: "GROUP BY" takes them.
void TestParser::doParseReadsByLocation() {
    QFETCH(int, location);
    QFETCH(QString, text);
    QFETCH(QString, tree);
    QFETCH(QString, rest);
    TorvQDParser node(otCompound, TLocationKinds(location), QStringLiteral("X"));
    node.DoParse(text);
    QCOMPARE(treetext::childrenText(node), tree);
    QCOMPARE(text.remove(u' '), rest.remove(u' '));
}

void TestParser::spansAreTheNodesOwnText_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("nodeText");
    QTest::addColumn<QString>("span");
    const auto row = [](const char* tag, const char* statement, const char* nodeText,
                        const char* span) {
        QTest::newRow(tag) << QString::fromUtf8(statement) << QString::fromUtf8(nodeText)
                           << QString::fromUtf8(span);
    };
    row("field", "  select  abc, d", "ABC", "abc");
    row("field with an alias", "select abc d from t", "ABC", "abc");
    row("alias", "select abc d from t", "D", "d");
    row("alias behind AS", "select abc as d from t", "D", "d");
    row("constant", "select 'it, s' from t", "'it, s'", "'it, s'");
    row("letter that grows",
        "select stra\xc3\x9f"
        "e, b",
        "STRASSE",
        "stra\xc3\x9f"
        "e");
    row("behind a letter that grows",
        "select stra\xc3\x9f"
        "e, b",
        "B", "b");
    row("operator", "select a >= b", ">=", ">=");
    row("matching word", "select distinct a", "DISTINCT", "distinct");
    row("call", "select a, sum ( b ) c", "SUM", "sum ( b )");
    row("call that nothing closes", "select sum(a from t", "SUM", "sum(a from t");
    row("argument", "select sum(b, c) d", "C", "c");
    row("bracket", "select a + (b , c ) d", "(...)", "(b , c )");
    row("bracket that nothing closes", "select (a, b", "(...)", "(a, b");
    row("table", "select a from tab x", "TAB", "tab");
    row("table alias", "select a from tab   x", "X", "x");
    row("procedure", "select a from p (1, 2) x", "P", "p (1, 2)");
    row("argument of a procedure", "select a from p (1, 2) x", "2", "2");
    row("logical word", "select a from t where b and c", "AND", "and");
    row("test for NULL", "select a from t where b is  null", "IS NULL", "is  null");
    row("direction", "select a from t order by b  desc", "DESC", "desc");
    row("behind line breaks", "select\r\na,\r\nbc", "BC", "bc");
}

void TestParser::spansAreTheNodesOwnText() {
    QFETCH(QString, statement);
    QFETCH(QString, nodeText);
    QFETCH(QString, span);
    const TorvQDParser root(statement);
    const TorvQDParser* node = nodeOf(root, nodeText);
    QVERIFY(node);
    QCOMPARE(textAt(root, *node), span);
    QCOMPARE(statement.mid(node->Start(), node->End() - node->Start()), span);
}

void TestParser::clausesReachToWhereTheirReadingEnded() {
    const TorvQDParser root(QStringLiteral(" select a from t join u on b = c  where d like 'e'"));
    QCOMPARE(textAt(root, root),
             QStringLiteral("select a from t join u on b = c  where d like 'e'"));
    QCOMPARE(textAt(root, *root.Clause(inFrom)), QStringLiteral("from t join u on b = c  "));
    QCOMPARE(textAt(root, *root.Clause(inWhere)), QStringLiteral("where d like 'e'"));
    QCOMPARE(textAt(root, *nodeOf(root, QStringLiteral("INNER JOIN"))),
             QStringLiteral("join u on b = c  "));
    QCOMPARE(textAt(root, *nodeOf(root, QStringLiteral("ON"))), QStringLiteral("on b = c  "));
    QCOMPARE(textAt(root, *nodeOf(root, QStringLiteral("LIKE"))), QStringLiteral("like 'e'"));
}

void TestParser::sourceHasItsLineBreaksAsBlanks() {
    const TorvQDParser root(QStringLiteral(" select\r\n'a\nb'\n"));
    QCOMPARE(root.Source(), QStringLiteral(" select  'a b' "));
}

void TestParser::clauseFindsTheFirstOfItsLocation() {
    const TorvQDParser root(QStringLiteral("select (b) from t where c"));
    QCOMPARE(root.Clause(inFrom)->Text(), QStringLiteral("FROM"));
    QCOMPARE(root.Clause(inWhere)->Text(), QStringLiteral("WHERE"));
    QVERIFY(!root.Clause(inSelect));
    QVERIFY(!root.Clause(inOrderBy));
}

void TestParser::handMadeNodesKeepWhatTheyAreGiven() {
    TorvQDParser node(otJoin, inFrom, QStringLiteral("INNER JOIN"));
    const TorvQDParser* child = node.Append(leaf(otTable, "T"));
    QCOMPARE(node.Count(), 1);
    QCOMPARE(node.Child(0), child);
    QCOMPARE(treetext::treeText(node), QStringLiteral("join:`INNER JOIN`@from[table:T]"));
}

void TestParser::aliasNames_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("alias");
    QTest::newRow("field") << "select a b"
                           << "A"
                           << "B";
    QTest::newRow("field without one") << "select a, b"
                                       << "A" << QString();
    QTest::newRow("constant") << "select 1 b"
                              << "1"
                              << "B";
    QTest::newRow("call") << "select max(a) b"
                          << "MAX"
                          << "B";
    QTest::newRow("call without one") << "select max(a), b"
                                      << "MAX" << QString();
    QTest::newRow("bracket of the select list") << "select (a) b"
                                                << "(...)"
                                                << "B";
    QTest::newRow("bracket without one") << "select (a), b"
                                         << "(...)" << QString();
    QTest::newRow("table") << "select a from t b"
                           << "T"
                           << "B";
    QTest::newRow("procedure") << "select a from p(1) as b"
                               << "P"
                               << "B";
    QTest::newRow("sorted column") << "select a from t order by b desc"
                                   << "B" << QString();
    QTest::newRow("clause") << "select a from t b"
                            << "FROM" << QString();
}

void TestParser::aliasNames() {
    QFETCH(QString, statement);
    QFETCH(QString, node);
    QFETCH(QString, alias);
    const TorvQDParser root(statement);
    QCOMPARE(nodeOf(root, node)->GetAliasName(), alias);
}

void TestParser::aliasIsTheLastChild() {
    TorvQDParser node(otField, inItem, QStringLiteral("A"));
    node.Append(leaf(otAlias, "B"));
    node.Append(leaf(otMatchingType, "DESC"));
    QCOMPARE(node.GetAliasName(), QString());
    node.Append(leaf(otAlias, "C"));
    QCOMPARE(node.GetAliasName(), QStringLiteral("C"));
}

void TestParser::aliasNameNeedsItsLocation_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("location");
    QTest::addColumn<QString>("alias");
    for (int location = inUnknown; location <= inOrderBy; ++location) {
        const bool isItem = location == inFunction || location == inItem;
        QTest::addRow("clause at %d", location)
            << int(otCompound) << location << (isItem ? "X" : "");
        QTest::addRow("bracket at %d", location)
            << int(otBrakets) << location << (isItem || location == inSelect ? "X" : "");
    }
}

void TestParser::aliasNameNeedsItsLocation() {
    QFETCH(int, kind);
    QFETCH(int, location);
    QFETCH(QString, alias);
    TorvQDParser node(TTypeOfTie(kind), TLocationKinds(location), QStringLiteral("N"));
    node.Append(leaf(otAlias, "X"));
    QCOMPARE(node.GetAliasName(), alias);
}

void TestParser::fillArguments_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("inside");
    QTest::addColumn<QString>("whole");
    const auto row = [](const char* statement, const char* node, const char* inside,
                        const char* whole) {
        QTest::newRow(statement) << QString::fromLatin1(statement) << QString::fromLatin1(node)
                                 << QString::fromLatin1(inside) << QString::fromLatin1(whole);
    };
    row("select a", "A", "A", "A");
    row("select a b", "A", "A", "A B");
    row("select sum(a)", "SUM", "A", "SUM(A)");
    row("select sum(a) s", "SUM", "A", "SUM(A) S");
    row("select sum(a, b) s", "SUM", "A, B", "SUM(A, B) S");
    row("select count(*)", "COUNT", "*", "COUNT(*)");
    row("select count()", "COUNT", "", "COUNT()");
    row("select sum(a*b)", "SUM", "A, *, B", "SUM(A, *, B)");
    row("select count(distinct a)", "COUNT", "DISTINCT, A", "COUNT(DISTINCT, A)");
    row("select max(upper(a), b)", "MAX", "UPPER(A), B", "MAX(UPPER(A), B)");
    row("select (a, b) c", "(...)", "(A, B)", "(A, B) C");
    row("select (a + 1)", "(...)", "(A, +, 1)", "(A, +, 1)");
    row("select (a x, b y)", "(...)", "(A X, B Y)", "(A X, B Y)");
    row("select ((a), b)", "(...)", "((A), B)", "((A), B)");
    row("select ()", "(...)", "()", "()");
    row("select a from t where b in (1, 'c')", "(...)", "(1, 'c')", "(1, 'c')");
    row("select a from p(1, 'X') y", "P", "1, 'X'", "P(1, 'X') Y");
    row("select a from t where b in (select x from y where z = 1)", "(...)",
        "(SELECTX, FROMY, WHEREZ, =, 1)", "(SELECTX, FROMY, WHEREZ, =, 1)");
    row("select sum((a))", "SUM", "(...)(A))", "SUM((...)(A)))");
}

void TestParser::fillArguments() {
    QFETCH(QString, statement);
    QFETCH(QString, node);
    QFETCH(QString, inside);
    QFETCH(QString, whole);
    const TorvQDParser root(statement);
    const TorvQDParser* found = nodeOf(root, node);
    QCOMPARE(found->FillArguments(false), inside);
    QCOMPARE(found->FillArguments(true), whole);
}

void TestParser::fillArgumentsOfAnAliasIsEmpty() {
    const TorvQDParser root(QStringLiteral("select a b"));
    const TorvQDParser* alias = nodeOf(root, QStringLiteral("B"));
    QCOMPARE(alias->Kind(), otAlias);
    QCOMPARE(alias->FillArguments(true), QString());
    QCOMPARE(alias->FillArguments(false), QString());
}

QTEST_GUILESS_MAIN(TestParser)
#include "tst_parser.moc"
