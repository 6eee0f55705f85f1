// SPDX-License-Identifier: MIT
#include "data/NameList.h"

namespace orv {

void NameList::append(const QString& name) {
    m_names.append(name);
    ++m_count[name];
}

bool NameList::appendNew(const QString& name) {
    if (contains(name)) return false;
    append(name);
    return true;
}

void NameList::remove(const QSet<QString>& names) {
    removeIf([&](const QString& name) { return names.contains(name); });
}

void NameList::removeWithPrefix(const QString& prefix) {
    removeIf([&](const QString& name) { return name.startsWith(prefix); });
}

void NameList::removeIf(const std::function<bool(const QString&)>& goes) {
    m_names.removeIf([&](const QString& name) {
        if (!goes(name)) return false;
        if (--m_count[name] == 0) m_count.remove(name);
        return true;
    });
}

void NameList::transform(const std::function<QString(const QString&)>& replace) {
    for (QString& name : m_names) name = replace(name);
    recount();
}

void NameList::clear() {
    m_names.clear();
    m_count.clear();
}

void NameList::recount() {
    m_count.clear();
    for (const QString& name : std::as_const(m_names)) ++m_count[name];
}

}  // namespace orv
