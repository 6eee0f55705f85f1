// SPDX-License-Identifier: MIT
#pragma once

#include "core/Text.h"
#include "criteria/ORVQDWhereRows.h"

#include <QString>
#include <QStringList>

// What tests of condition rows share.
namespace orvtest {

inline QString shown(const QString& text) {
    return orv::isBlank(text) ? QString() : text;
}

/// A row and what is below it as one line: "All(A = 5; Any(B IN 1, 2; EXISTS ...))", arguments in
/// square brackets: "A =[5]". Functions stand in front of their text: "SUM:A >[10]". The operator
/// of a whole text is left out: "A CONTAINING 'x'".
inline QString rowText(const TorvQDWhereRow& row) {
    if (row.isGroup()) {
        QStringList rows;
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            rows << rowText(*row.SubRows->Row(index));
        }
        return row.GroupOper + u'(' + rows.join("; ") + u')';
    }
    const auto side = [](const QString& function, const QString& text) {
        return orv::isBlank(function) ? shown(text) : function + u':' + shown(text);
    };
    if (row.isExpression()) return side(row.FieldFunc, row.FieldName);
    QStringList arguments;
    for (const QString& argument : row.Arguments) arguments << side(row.ArgFunc, argument);
    return side(row.FieldFunc, row.FieldName) + u' ' + (row.Operator ? row.Operator->Name : "?") +
           u'[' + arguments.join("][") + u']';
}

/// What a row says when its conditions are about A, B, ... and hold by the bits of `values`.
inline bool holds(const TorvQDWhereRow& row, int values) {
    if (!row.isGroup()) return (values >> (row.FieldName.back().unicode() - u'A') & 1) != 0;
    const bool isAnd = row.GroupOper == "All" || row.GroupOper == "None";
    const bool negates = row.GroupOper == "None" || row.GroupOper == "Not all";
    bool result = isAnd;
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        const bool next = holds(*row.SubRows->Row(index), values);
        result = isAnd ? result && next : result || next;
    }
    return result != negates;
}

}  // namespace orvtest
