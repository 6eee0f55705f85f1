// SPDX-License-Identifier: MIT
#include "data/ProcessName.h"

#include "core/Text.h"

#include <algorithm>

QStringList& lReservedWords() {
    static QStringList words;
    return words;
}

QString ProcessName(const QString& Name) {
    Q_ASSERT(!Name.isEmpty());
    const QChar first = Name.front();
    if (Name.size() > 1 && first == Name.back() && (first == u'"' || first == u'\'')) return Name;
    const bool plain = std::all_of(Name.begin(), Name.end(), [](QChar character) {
        return (character >= u'A' && character <= u'Z') ||
               (character >= u'0' && character <= u'9') || character == u'$' || character == u'_';
    });
    if (plain && !lReservedWords().contains(Name)) return Name;
    return orv::quotedName(Name);
}
