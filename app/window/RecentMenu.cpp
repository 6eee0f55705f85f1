// SPDX-License-Identifier: MIT
#include "window/RecentMenu.h"

#include "toolkit/Services.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace orvquery {

namespace {

bool isMissing(const DatabaseAddress& address) {
    return address.isFile() && !QFileInfo::exists(address.database);
}

// Files of one name are told apart by their folders.
QString recentText(const DatabaseAddress& address) {
    if (!address.isFile()) return address.title();
    const QString folder = QFileInfo(address.database).absolutePath();
    return RecentMenu::tr("%1 in %2").arg(address.title(), QDir::toNativeSeparators(folder));
}

}  // namespace

RecentMenu::RecentMenu(const QString& title, QWidget* parent) : QMenu(title, parent) {
    setObjectName(QStringLiteral("recent"));
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, [this] { orv::guarded([&] { build(); }); });
}

void RecentMenu::build() {
    clear();
    const std::vector<SavedConnection> named = m_connections.named();
    const std::vector<DatabaseAddress> recent = m_connections.recent();
    for (const SavedConnection& each : named) addDatabase(each.name, each.address);
    if (!named.empty() && !recent.empty()) addSeparator();
    bool hasMissing = false;
    for (const DatabaseAddress& address : recent) {
        if (!addDatabase(recentText(address), address)) hasMissing = true;
    }
    if (actions().isEmpty()) addAction(tr("Nothing was opened yet"))->setEnabled(false);
    if (recent.empty()) return;
    addSeparator();
    if (hasMissing) {
        addAction(tr("Forget those &not found"), this,
                  [this] { orv::guarded([&] { forgetMissing(); }); });
    }
    addAction(tr("&Forget all opened"), this,
              [this] { orv::guarded([&] { m_connections.forgetAllRecent(); }); });
}

bool RecentMenu::addDatabase(const QString& text, const DatabaseAddress& address) {
    const bool isThere = !isMissing(address);
    const QString shown = isThere ? text : tr("%1 (not found)").arg(text);
    QAction* action = addAction(QString(shown).replace(u'&', QStringLiteral("&&")), this,
                                [this, address] { Q_EMIT chosen(address); });
    action->setToolTip(address.toUrl());
    action->setEnabled(isThere);
    return isThere;
}

void RecentMenu::forgetMissing() {
    for (const DatabaseAddress& address : m_connections.recent()) {
        if (isMissing(address)) m_connections.forgetRecent(address);
    }
}

}  // namespace orvquery
