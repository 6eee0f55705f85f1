// SPDX-License-Identifier: MIT
#pragma once

#include "connections/SavedConnections.h"

#include <QMenu>

namespace orvquery {

/// The databases that have a name and those that were opened last, as they are known each time
/// when the menu is opened. Files that are gone are there, but cannot be chosen.
class RecentMenu : public QMenu {
    Q_OBJECT

public:
    explicit RecentMenu(const QString& title, QWidget* parent = nullptr);

Q_SIGNALS:
    void chosen(const orvquery::DatabaseAddress& address);

private:
    void build();
    bool addDatabase(const QString& text, const DatabaseAddress& address);
    void forgetMissing();

    SavedConnections m_connections;
};

}  // namespace orvquery
