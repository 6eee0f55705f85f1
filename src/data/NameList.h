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
    /// How many names there are.
    [[nodiscard]] int size() const { return int(m_names.size()); }
    [[nodiscard]] bool isEmpty() const { return m_names.isEmpty(); }
    /// The name at an index from 0 on, which must be there.
    [[nodiscard]] const QString& at(int index) const { return m_names.at(index); }
    /// The names in their order.
    [[nodiscard]] const QStringList& names() const { return m_names; }
    /// Whether the name is there; case counts.
    [[nodiscard]] bool contains(const QString& name) const { return m_count.contains(name); }

    /// Appends the name, also when it is there already.
    void append(const QString& name);
    /// Appends the name unless it is there; tells whether it did.
    bool appendNew(const QString& name);
    /// Removes all entries that are in the set, in one walk.
    void remove(const QSet<QString>& names);
    /// Removes all entries that begin with the prefix.
    void removeWithPrefix(const QString& prefix);
    /// Replaces each entry by what the function makes of it, in place.
    void transform(const std::function<QString(const QString&)>& replace);
    /// Removes all names.
    void clear();

private:
    void removeIf(const std::function<bool(const QString&)>& goes);
    void recount();

    QStringList m_names;
    QHash<QString, int> m_count;
};

}  // namespace orv
