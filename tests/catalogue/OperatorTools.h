// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"

namespace orvtest {

inline TorvQDOperator operatorOf(const char* name, const char* caption, const char* relate,
                                 const char* prefix, const char* postfix, int count) {
    TorvQDOperator result;
    result.Name = QString::fromLatin1(name);
    result.Caption = QString::fromLatin1(caption);
    result.Relate = QString::fromLatin1(relate);
    result.Prefix = QString::fromLatin1(prefix);
    result.Postfix = QString::fromLatin1(postfix);
    result.Count = count;
    return result;
}

// Two entries in which every text differs from every other.
inline void fillDistinct(TOperatorList& list) {
    list.Add(operatorOf("N1", "C1", "R1", "PRE1", "POST1", 2));
    list.Add(operatorOf("N2", "C2", "R2", "PRE2", "POST2", 0));
}

inline QStringList namesOf(const TOperatorList& list) {
    QStringList names;
    for (int index = 0; index < list.Count(); ++index) names << list.Items(index)->Name;
    return names;
}

}  // namespace orvtest
