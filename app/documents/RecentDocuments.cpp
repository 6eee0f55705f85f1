// SPDX-License-Identifier: MIT
#include "documents/RecentDocuments.h"

#include "text/KeptSettings.h"

#include <QFileInfo>

namespace orvquery {

namespace {

const QString recentKey = QStringLiteral("recentQueries");

}  // namespace

QStringList RecentDocuments::paths() const {
    QStringList paths = keptSettings().value(recentKey).toStringList();
    paths.removeDuplicates();
    return paths.mid(0, mostRecent);
}

void RecentDocuments::use(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList known = paths();
    known.removeAll(absolute);
    known.prepend(absolute);
    keptSettings().setValue(recentKey, known.mid(0, mostRecent));
}

void RecentDocuments::forgetMissing() {
    QStringList known = paths();
    known.removeIf([](const QString& path) { return !QFileInfo::exists(path); });
    keptSettings().setValue(recentKey, known);
}

void RecentDocuments::forgetAll() {
    keptSettings().remove(recentKey);
}

}  // namespace orvquery
