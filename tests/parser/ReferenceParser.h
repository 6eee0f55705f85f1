// SPDX-License-Identifier: MIT
#pragma once

#include "TreeText.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// The rules of the parser written down a second time in the plainest way: it recurses, cuts the
// front off the rest of the statement and puts words back in front of it. It is slow and overflows
// on deep nesting, but each rule can be read by itself. The parser must give the same trees.
namespace reference {

struct Node {
    TTypeOfTie kind = otCompound;
    TLocationKinds location = inUnknown;
    QString text;
    std::vector<Node> children = {};
};

// Stands in front of a FROM that compares, so that it is no clause word. No statement has it.
constexpr QChar comparing(0xE000);

inline QString treeText(const Node& node) {
    const QString text = QString(node.text).remove(comparing);
    QString head = treetext::headText(node.kind, node.location, text);
    if (node.children.empty()) return head;
    QStringList texts;
    for (const Node& child : node.children) texts << treeText(child);
    return head + u'[' + texts.join(u' ') + u']';
}

inline bool isOneOf(const QString& word, const QStringList& list) {
    return list.contains(word);
}

inline bool isJoinWord(const QString& word) {
    return isOneOf(word, {"JOIN", "INNER", "LEFT", "RIGHT", "FULL", "OUTER"});
}

inline bool isConditionWord(const QString& word) {
    return isOneOf(word, {"BETWEEN", "LIKE", "IN", "IS NULL", "IS NOT NULL", "EXIST", "SINGULAR",
                          "CONTAINING", "STARTING"});
}

inline bool isMatchingWord(const QString& word) {
    return isOneOf(word, {"DISTINCT", "ALL", "SOME", "ANY", "WITH", "ESCAPE"});
}

inline bool isFunctionName(const QString& word) {
    return isOneOf(word, {"COUNT", "MAX", "MIN", "SUM", "AVG", "CAST", "UPPER", "GEN_ID"});
}

inline bool isNeverAlias(const QString& word) {
    return isOneOf(word, {"UNION", "INTERSECT", "EXCEPT", "LIMIT", "OFFSET", "FETCH", "FOR",
                          "WINDOW", "CROSS", "NATURAL", "USING"});
}

inline std::optional<TLocationKinds> clauseOf(const QString& word) {
    static const QStringList words = {"SELECT", "FROM", "WHERE", "GROUP BY", "HAVING", "ORDER BY"};
    const qsizetype index = words.indexOf(word);
    if (index < 0) return std::nullopt;
    return TLocationKinds(inSelect + index);
}

inline QString trimmedStart(QString text) {
    while (!text.isEmpty() && text.front() <= u' ') text.remove(0, 1);
    return text;
}

inline QString trimmed(QString text) {
    text = trimmedStart(text);
    while (!text.isEmpty() && text.back() <= u' ') text.chop(1);
    return text;
}

// Position from 1 outside quotes; 0 when absent.
inline qsizetype posEx(const QString& sub, QString rest) {
    qsizetype offset = 0;
    while (!rest.isEmpty()) {
        qsizetype quote = 0;
        while (quote < rest.size() && rest[quote] != u'"' && rest[quote] != u'\'') ++quote;
        const qsizetype found = rest.left(quote).indexOf(sub);
        if (found >= 0) return offset + found + 1;
        if (quote == rest.size()) break;
        const QChar sign = rest[quote];
        rest.remove(0, quote + 1);
        offset += quote + 1;
        const qsizetype close = rest.indexOf(sign);
        const qsizetype cut = close < 0 ? rest.size() : close + 1;
        rest.remove(0, cut);
        offset += cut;
    }
    return 0;
}

inline QString nextWord(QString& rest) {
    qsizetype boundary = rest.size();
    for (const QChar sign : QStringLiteral(" ,()=<>!+-*/|")) {
        const qsizetype position = posEx(QString(sign), rest);
        if (position > 0) boundary = std::min(boundary, position);
    }
    const qsizetype length = boundary == rest.size() ? boundary : boundary - 1;
    QString word = rest.left(length);
    rest.remove(0, length);
    if (word == "GROUP" || word == "ORDER") {
        const QString follower = trimmedStart(rest);
        if (follower.startsWith("BY")) {
            word += " BY";
            rest = trimmedStart(follower.mid(2));
        }
    } else if (word == "IS") {
        QString copy = trimmedStart(rest);
        QString follower = nextWord(copy);
        const bool negated = follower == "NOT";
        if (negated) {
            copy = trimmedStart(copy);
            follower = nextWord(copy);
        }
        if (trimmed(follower) == "NULL") {
            word = negated ? "IS NOT NULL" : "IS NULL";
            rest = copy;
        }
    }
    return word;
}

// The bracketed group with which the rest begins, without its brackets. Brackets in quotes do not
// count; without a matching bracket all of the rest is the group.
inline QString groupContent(QString& rest) {
    int depth = 0;
    qsizetype at = 1;
    for (; at < rest.size(); ++at) {
        if (rest[at] == u'"' || rest[at] == u'\'') {
            const qsizetype close = rest.indexOf(rest[at], at + 1);
            at = close < 0 ? rest.size() : close;
        } else if (rest[at] == u'(') {
            ++depth;
        } else if (rest[at] == u')' && --depth < 0) {
            break;
        }
    }
    QString group = rest.left(at + 1);
    rest.remove(0, at + 1);
    group.remove(0, 1);
    if (group.endsWith(u')')) group.chop(1);
    return group;
}

inline bool beginsWithBracket(const QString& rest) {
    return trimmedStart(rest).startsWith(u'(');
}

inline QString followingWord(const QString& rest) {
    QString copy = trimmedStart(rest);
    return nextWord(copy);
}

// IS DISTINCT FROM and IS NOT DISTINCT FROM.
inline void markComparisons(QString& statement) {
    static const QRegularExpression words(
        QStringLiteral("(?<![^ ,()])(IS +(?:NOT +)?DISTINCT +)(?=FROM(?![^ ,()=<>!+*/|-]))"));
    statement.replace(words, QStringLiteral("\\1") + comparing);
}

class Parser {
public:
    static Node parse(const QString& statement) {
        QString rest = upper(trimmed(statement));
        rest.replace(u'\r', u' ').replace(u'\n', u' ');
        markComparisons(rest);
        Node root{otCompound, inSelect, nextWord(rest)};
        if (root.text != "SELECT") return {};
        doParse(root, rest, false);
        return root;
    }

private:
    static QString upper(QString text) {
        QString result;
        while (!text.isEmpty()) {
            qsizetype quote = 0;
            while (quote < text.size() && text[quote] != u'"' && text[quote] != u'\'') ++quote;
            result += text.left(quote).toUpper();
            if (quote == text.size()) break;
            const qsizetype close = text.indexOf(text[quote], quote + 1);
            const qsizetype end = close < 0 ? text.size() : close + 1;
            result += text.mid(quote, end - quote);
            text.remove(0, end);
        }
        return result;
    }

    static Node& append(Node& parent, TTypeOfTie kind, TLocationKinds location,
                        const QString& text) {
        parent.children.push_back({kind, location, text});
        return parent.children.back();
    }

    // `inOn`: the rest is shared with an ON condition, which a comma ends together with its join.
    static void doParse(Node& node, QString& rest, bool inOn) {
        while (!rest.isEmpty()) {
            if (rest.front() == u',' && (inOn || (node.kind == otJoin && !node.children.empty()))) {
                return;
            }
            if (rest.front() == u' ' || rest.front() == u',') {
                rest.remove(0, 1);
                while (rest.startsWith(u' ')) rest.remove(0, 1);
                continue;
            }
            QString signs;
            while (!rest.isEmpty() && QStringLiteral("=<>!+-*/|").contains(rest.front())) {
                signs += rest.front();
                rest.remove(0, 1);
            }
            if (!signs.isEmpty()) {
                readOperator(node, rest, signs);
            } else if (rest.front() == u'(') {
                Node group{otBrakets, node.location, "(...)"};
                QString content = groupContent(rest);
                doParse(group, content, false);
                if (node.location == inSelect) getAlias(rest, group);
                node.children.push_back(std::move(group));
            } else if (!readWord(node, rest, inOn)) {
                return;
            }
        }
    }

    static void readOperator(Node& node, QString& rest, const QString& signs) {
        if (signs == "*" &&
            (node.children.empty() || node.children.back().kind == otMatchingType)) {
            parseOfValue(node, rest, signs);
        } else {
            append(node, otOperator, inItem, signs);
        }
    }

    static bool readWord(Node& node, QString& rest, bool inOn) {
        const QString word = nextWord(rest);
        if (word.isEmpty()) {
            rest.remove(0, 1);
            return true;
        }
        if (isMatchingWord(word)) {
            append(node, otMatchingType, inItem, word);
            return true;
        }
        if (const auto clause = clauseOf(word)) return readClause(node, rest, word, *clause);
        if (isFunctionName(word) && beginsWithBracket(rest)) {
            rest = trimmedStart(rest);
            Node call{otFunc, inFunction, word};
            QString arguments = groupContent(rest);
            doParse(call, arguments, false);
            if (node.location == inSelect) getAlias(rest, call);
            node.children.push_back(std::move(call));
            return true;
        }
        switch (node.location) {
        case inFunction:
        case inSelect: parseOfValue(node, rest, word); return true;
        case inFrom: return parseOfTable(node, rest, word);
        case inWhere:
        case inHaving: return parseOfCondition(node, rest, word, inOn);
        case inGroupBy:
        case inOrderBy: parseOfOrderList(node, rest, word); return true;
        case inUnknown:
        case inItem: break;
        }
        append(node, otConst, inItem, word);
        return true;
    }

    static bool putBack(QString& rest, const QString& word) {
        rest = word + rest;
        return false;
    }

    static bool readClause(Node& node, QString& rest, const QString& word, TLocationKinds clause) {
        if (node.location != inSelect && clause != inSelect) return putBack(rest, word);
        if (!node.children.empty() && node.children.back().location >= clause) {
            return putBack(rest, word);
        }
        Node child{otCompound, clause, word};
        doParse(child, rest, false);
        node.children.push_back(std::move(child));
        return true;
    }

    static void parseOfValue(Node& node, QString& rest, const QString& word) {
        if (trimmed(word).isEmpty()) return;
        const QChar first = word.front();
        const bool isQuote = first == u'"' || first == u'\'';
        const bool isDigit = first >= u'0' && first <= u'9';
        TTypeOfTie kind = otField;
        if (word == "*" || word == "NULL" || word == "USER") {
            kind = otConst;
        } else if (isDigit || (isQuote && word.size() > 1 && word.back() == first)) {
            kind = otConst;
        }
        Node leaf{kind, inItem, word};
        if (node.location == inSelect) getAlias(rest, leaf);
        node.children.push_back(std::move(leaf));
    }

    static bool parseOfTable(Node& node, QString& rest, const QString& word) {
        if (trimmed(word).isEmpty()) return true;
        const bool inJoin = node.kind == otJoin;
        if (word == "CROSS" && followingWord(rest) == "JOIN") {  // a comma
            if (inJoin) return putBack(rest, word);
            rest = trimmedStart(rest);
            nextWord(rest);
            return true;
        }
        if (word == "NATURAL" && isJoinWord(followingWord(rest))) {
            if (inJoin) return putBack(rest, word);
            append(node, otMatchingType, inItem, word);
            return true;
        }
        if (word == "USING" && inJoin && !node.children.empty() && beginsWithBracket(rest)) {
            append(node, otMatchingType, inItem, word);
            return true;
        }
        if (word == "ON") {
            Node condition{otCompound, inWhere, word};
            doParse(condition, rest, true);
            node.children.push_back(std::move(condition));
            return true;
        }
        if (!isJoinWord(word)) {
            readTable(node, rest, word);
            return true;
        }
        if (node.kind != otCompound) return putBack(rest, word);
        readJoin(node, rest, word);
        return true;
    }

    static void readTable(Node& node, QString& rest, const QString& word) {
        rest = trimmedStart(rest);
        Node table{otTable, inItem, word};
        if (rest.startsWith(u'(')) {
            table.location = inFunction;
            QString arguments = groupContent(rest);
            doParse(table, arguments, false);
        } else {
            rest = u' ' + rest;
        }
        getAlias(rest, table);
        node.children.push_back(std::move(table));
    }

    static void readJoin(Node& node, QString& rest, const QString& word) {
        QString text = "FULL OUTER JOIN";
        if (word == "JOIN" || word == "INNER") text = "INNER JOIN";
        if (word == "LEFT") text = "LEFT OUTER JOIN";
        if (word == "RIGHT") text = "RIGHT OUTER JOIN";
        if (word != "JOIN") {
            const qsizetype found = posEx("JOIN", rest);
            if (found > 0) rest.remove(0, found - 1 + 4);
        }
        Node join{otJoin, node.location, text};
        doParse(join, rest, false);
        node.children.push_back(std::move(join));
    }

    static bool parseOfCondition(Node& node, QString& rest, const QString& word, bool inOn) {
        const bool isCall = (word == "LEFT" || word == "RIGHT") && beginsWithBracket(rest);
        if (isJoinWord(word) && !isCall) return putBack(rest, word);
        const bool opensJoin = (word == "CROSS" && followingWord(rest) == "JOIN") ||
                               (word == "NATURAL" && isJoinWord(followingWord(rest)));
        if (inOn && opensJoin) return putBack(rest, word);
        if (isOneOf(word, {"NOT", "AND", "OR"})) {
            const bool ownAnd = node.text == "BETWEEN" && node.children.size() < 2;
            if (node.kind == otCondition && !ownAnd) return putBack(rest, word);
            append(node, otLogical, inItem, word);
            return true;
        }
        if (isConditionWord(word)) {
            Node condition{otCondition, node.location, word};
            doParse(condition, rest, inOn);
            node.children.push_back(std::move(condition));
            return true;
        }
        parseOfValue(node, rest, word);
        return true;
    }

    static void parseOfOrderList(Node& node, QString& rest, const QString& word) {
        if (!isOneOf(word, {"ASC", "ASCENDING", "DESC", "DESCENDING"})) {
            parseOfValue(node, rest, word);
            return;
        }
        if (node.children.empty()) return;
        Node& last = node.children.back();
        if (last.kind == otField || last.kind == otConst) {
            append(last, otMatchingType, inItem, word);
        }
    }

    // An alias stands behind exactly one blank, with or without AS.
    static void getAlias(QString& rest, Node& node) {
        if (rest.size() < 2 || rest.front() != u' ') return;
        rest.remove(0, 1);
        QString word = nextWord(rest);
        const auto clause = clauseOf(word);
        const bool belongsAround = isJoinWord(word) || word == "ON" || trimmed(word).isEmpty() ||
                                   (clause && *clause != inSelect) || isNeverAlias(word);
        if (belongsAround) {
            putBack(rest, word);
            return;
        }
        if (word == "AS") {
            rest.remove(0, 1);
            word = nextWord(rest);
        }
        if (!trimmed(word).isEmpty()) append(node, otAlias, inItem, word);
    }
};

}  // namespace reference
