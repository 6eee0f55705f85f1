// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

namespace orv {

/// An ordered list of names with a hashed look-up. A plain value. Renaming may make two entries
/// equal; the look-up then finds either.
class ORV_EXPORT NameList {
public:
    [[nodiscard]] int size() const { return int(m_names.size()); }
    [[nodiscard]] bool isEmpty() const { return m_names.isEmpty(); }
    [[nodiscard]] const QString& at(int index) const { return m_names.at(index); }
    [[nodiscard]] const QStringList& names() const { return m_names; }
    [[nodiscard]] bool contains(const QString& name) const { return m_count.contains(name); }

    void append(const QString& name);
    /// Appends the name unless it is there; tells whether it did.
    bool appendNew(const QString& name);
    /// Removes all entries that are in the set, in one walk.
    void remove(const QSet<QString>& names);
    /// Removes all entries that begin with the prefix.
    void removeWithPrefix(const QString& prefix);
    /// Replaces each entry by what the function makes of it, in place.
    void transform(const std::function<QString(const QString&)>& replace);
    void clear();

private:
    void removeIf(const std::function<bool(const QString&)>& goes);
    void recount();

    QStringList m_names;
    QHash<QString, int> m_count;
};

}  // namespace orv
