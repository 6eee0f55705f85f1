// SPDX-License-Identifier: MIT
#include "documents/RecentDocuments.h"

#include <QFileInfo>
#include <QSettings>

namespace orvquery {

namespace {

const QString recentKey = QStringLiteral("recentQueries");

QSettings settings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

}  // namespace

QStringList RecentDocuments::paths() const {
    QStringList paths = settings().value(recentKey).toStringList();
    paths.removeDuplicates();
    return paths.mid(0, mostRecent);
}

void RecentDocuments::use(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList known = paths();
    known.removeAll(absolute);
    known.prepend(absolute);
    settings().setValue(recentKey, known.mid(0, mostRecent));
}

void RecentDocuments::forgetMissing() {
    QStringList known = paths();
    known.removeIf([](const QString& path) { return !QFileInfo::exists(path); });
    settings().setValue(recentKey, known);
}

void RecentDocuments::forgetAll() {
    settings().remove(recentKey);
}

}  // namespace orvquery
