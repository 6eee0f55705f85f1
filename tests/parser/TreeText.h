// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDParser.h"

#include <QString>

// A parse tree as one line of text, to be compared: "kind:text@location[children]". The location of
// items is left out, and so are brackets without children. A text with other characters than those
// of names, numbers, signs and quotes stands between "`" signs.
namespace treetext {

inline QString kindName(TTypeOfTie kind) {
    switch (kind) {
    case otCompound: return QStringLiteral("clause");
    case otBrakets: return QStringLiteral("br");
    case otMatchingType: return QStringLiteral("word");
    case otConst: return QStringLiteral("c");
    case otField: return QStringLiteral("f");
    case otTable: return QStringLiteral("table");
    case otCondition: return QStringLiteral("cond");
    case otJoin: return QStringLiteral("join");
    case otFunc: return QStringLiteral("func");
    case otOperator: return QStringLiteral("op");
    case otLogical: return QStringLiteral("log");
    case otAlias: return QStringLiteral("as");
    }
    return QStringLiteral("?");
}

inline QString locationName(TLocationKinds location) {
    switch (location) {
    case inUnknown: return QStringLiteral("@unknown");
    case inFunction: return QStringLiteral("@call");
    case inItem: return {};
    case inSelect: return QStringLiteral("@select");
    case inFrom: return QStringLiteral("@from");
    case inWhere: return QStringLiteral("@where");
    case inGroupBy: return QStringLiteral("@group");
    case inHaving: return QStringLiteral("@having");
    case inOrderBy: return QStringLiteral("@order");
    }
    return QStringLiteral("@?");
}

inline QString plainOrMarked(const QString& text) {
    bool plain = !text.isEmpty();
    for (const QChar character : text) {
        plain = plain && (character.isLetterOrNumber() ||
                          QStringLiteral("_.$'\"=<>!+-*/|").contains(character));
    }
    return plain ? text : u'`' + text + u'`';
}

/// What comes in front of a node's children.
inline QString headText(TTypeOfTie kind, TLocationKinds location, const QString& text) {
    const QString shown = kind == otBrakets && text == QStringLiteral("(...)")
                              ? QString()
                              : u':' + plainOrMarked(text);
    return kindName(kind) + shown + locationName(location);
}

inline QString treeText(const TorvQDParser& node);

inline QString childrenText(const TorvQDParser& node) {
    QStringList texts;
    for (const TorvQDParser::Node& child : node.Children()) texts << treeText(*child);
    return texts.join(u' ');
}

inline QString treeText(const TorvQDParser& node) {
    const QString head = headText(node.Kind(), node.Location(), node.Text());
    return node.Count() == 0 ? head : head + u'[' + childrenText(node) + u']';
}

}  // namespace treetext
