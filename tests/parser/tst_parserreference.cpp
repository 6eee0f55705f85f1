// SPDX-License-Identifier: MIT
#include "ReferenceParser.h"
#include "TreeText.h"
#include "core/Text.h"
#include "support/Sanitizers.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr quint32 seed = 20240517;
constexpr int textCount = orvtest::fewerIfSanitized(20000, 10);
constexpr int shownCount = 10;  // of those that fail

QString oneOf(QRandomGenerator& random, const QStringList& list) {
    return list[random.bounded(int(list.size()))];
}

// Words of every list of the parser, names, constants, signs, brackets and quotes, matched or not.
QString randomPiece(QRandomGenerator& random) {
    static const QStringList clauses = {"SELECT", "FROM",  "WHERE",    "GROUP BY", "HAVING",
                                        "ORDER",  "GROUP", "ORDER BY", "BY",       "from"};
    static const QStringList joins = {"JOIN", "INNER", "LEFT",    "RIGHT", "FULL",      "OUTER",
                                      "ON",   "CROSS", "NATURAL", "USING", "LEFT JOIN", "join"};
    static const QStringList conditions = {
        "AND",     "OR",          "NOT",   "BETWEEN",  "LIKE",       "IN",       "IS",     "NULL",
        "IS NULL", "IS NOT NULL", "EXIST", "SINGULAR", "CONTAINING", "STARTING", "ESCAPE", "and"};
    static const QStringList comparisons = {"IS DISTINCT FROM", "IS NOT DISTINCT", "is  distinct"};
    static const QStringList others = {"DISTINCT", "ALL",   "SOME", "ANY",        "WITH",
                                       "AS",       "ASC",   "DESC", "DESCENDING", "ASCENDING",
                                       "LIMIT",    "UNION", "FOR",  "USER",       "as"};
    static const QStringList functions = {"COUNT", "MAX",    "SUM", "UPPER",
                                          "CAST",  "GEN_ID", "F",   "sum"};
    static const QStringList names = {"A",    "B",    "T",   "T.A",          "x",
                                      "e.d",  "12",   "1.5", "'x y'",        "\"x,(y\"",
                                      "'a)'", "\"\"", "''",  "\"T\".\"a b\""};
    static const QStringList signs = {"=", "<>", "*", "+", "-", "||", ">=", "!", "/"};
    static const QStringList marks = {",", ",", "(", "(", ")", ")", "'", "\"", ".", ":P", "()"};
    static const QList<QStringList> groups = {
        clauses,   joins, joins, conditions, conditions, comparisons, others,
        functions, names, names, names,      signs,      marks,       marks};
    return oneOf(random, groups[random.bounded(int(groups.size()))]);
}

QString randomText(QRandomGenerator& random) {
    static const QStringList blanks = {" ", " ", " ", " ", "", "  ", "\n", ", "};
    static const QStringList starts = {"SELECT ",
                                       "SELECT ",
                                       "SELECT A FROM ",
                                       "SELECT A FROM T ",
                                       "SELECT A FROM T WHERE ",
                                       "SELECT A FROM T JOIN U ON ",
                                       "SELECT A FROM T ORDER BY "};
    QString text = oneOf(random, starts);
    const int pieces = random.bounded(1, 14);
    for (int piece = 0; piece < pieces; ++piece) {
        text += randomPiece(random) + oneOf(random, blanks);
    }
    return text;
}

// The words of the statement at the node's place, blanks inside "GROUP BY" and the like aside.
QString wordsAt(const TorvQDParser& root, const TorvQDParser& node) {
    const QString text =
        orv::upperOutsideQuotes(root.Source().mid(node.Start(), node.End() - node.Start()));
    static const QStringList pairs = {"GROUP BY", "ORDER BY", "IS NULL", "IS NOT NULL"};
    return pairs.contains(node.Text()) ? text.simplified() : text;
}

bool isGroup(const TorvQDParser& node) {
    return node.Kind() == otBrakets || node.Location() == inFunction;
}

// Whether the node and all below it stand where their texts are, in order, and inside of what
// holds them; an alias and a direction stand behind their node.
bool hasTrueSpans(const TorvQDParser& root, const TorvQDParser& node) {
    int position = node.Start();
    for (const TorvQDParser::Node& child : node.Children()) {
        const bool isBehind = node.Location() == inItem || child->Kind() == otAlias;
        if (child->Start() < position || child->End() < child->Start()) return false;
        if (!isBehind && child->End() > node.End()) return false;
        position = child->Start();
        if (!hasTrueSpans(root, *child)) return false;
    }
    if (node.Kind() == otJoin) return true;
    const QString words = wordsAt(root, node);
    if (node.Kind() == otBrakets) return words.startsWith(u'(');
    if (isGroup(node) || node.Location() != inItem) return words.startsWith(node.Text());
    return words == node.Text();
}

}  // namespace

class TestParserReference : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameTreesAsTheReference();
    void spansAreTrue();
};

void TestParserReference::sameTreesAsTheReference() {
    QRandomGenerator random(seed);
    int different = 0;
    for (int round = 0; round < textCount; ++round) {
        const QString text = randomText(random);
        const QString expected = reference::treeText(reference::Parser::parse(text));
        const QString actual = treetext::treeText(TorvQDParser(text));
        if (actual == expected) continue;
        ++different;
        if (different <= shownCount) {
            qWarning("%s\n  expected %s\n  actual   %s", qPrintable(text), qPrintable(expected),
                     qPrintable(actual));
        }
    }
    QCOMPARE(different, 0);
}

void TestParserReference::spansAreTrue() {
    QRandomGenerator random(seed);
    int wrong = 0;
    for (int round = 0; round < textCount; ++round) {
        const QString text = randomText(random);
        const TorvQDParser root(text);
        if (hasTrueSpans(root, root)) continue;
        if (++wrong <= shownCount) qWarning("%s", qPrintable(text));
    }
    QCOMPARE(wrong, 0);
}

QTEST_GUILESS_MAIN(TestParserReference)
#include "tst_parserreference.moc"
