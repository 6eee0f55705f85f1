// SPDX-License-Identifier: MIT
#include "criteria/ORVQDNodeText.h"

#include "parser/ORVQDParser.h"

#include <vector>

namespace orv {

namespace {

bool isOperand(const TorvQDParser& node) {
    switch (node.Kind()) {
    case otConst:
    case otField:
    case otFunc:
    case otBrakets:
    case otTable: return true;
    default: return false;
    }
}

// A field in front of a bracket is a function that the parser does not know.
bool needsComma(const TorvQDParser& before, const TorvQDParser& node) {
    if (!isOperand(before) || !isOperand(node)) return false;
    return before.Kind() != otField || node.Kind() != otBrakets;
}

/// A node whose children are being written.
struct OpenNode {
    const TorvQDParser* node;
    int next;  // child
};

}  // namespace

QString nodeText(const TorvQDParser& clause) {
    QString text;
    std::vector<OpenNode> open = {{&clause, 0}};
    while (!open.empty()) {
        const TorvQDParser& node = *open.back().node;
        const int index = open.back().next++;
        if (index == node.Count()) {
            const bool hasBrackets = node.Kind() == otBrakets || node.Location() == inFunction;
            if (hasBrackets) text += u')';
            open.pop_back();
            continue;
        }
        const TorvQDParser& child = *node.Child(index);
        if (index > 0 && needsComma(*node.Child(index - 1), child)) text += u',';
        if (!text.isEmpty() && !text.endsWith(u'(')) text += u' ';
        if (child.Kind() != otBrakets) text += child.Text();
        if (child.Kind() == otBrakets || child.Location() == inFunction) text += u'(';
        open.push_back({&child, 0});
    }
    return text;
}

}  // namespace orv
