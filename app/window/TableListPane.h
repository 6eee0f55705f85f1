// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QWidget>

class QLineEdit;
class QListView;
class QModelIndex;
class QSortFilterProxyModel;
class QStandardItemModel;

namespace orvquery {

/// The tables and views of the open database, with a line that filters them by name. A double click
/// or Enter chooses one.
class TableListPane : public QWidget {
    Q_OBJECT

public:
    explicit TableListPane(QWidget* parent = nullptr);

    void setTables(const std::vector<TableEntry>& entries);

Q_SIGNALS:
    void tableChosen(const QString& name);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void chooseCurrent();
    void selectFirst();
    [[nodiscard]] bool handleKey(QObject* watched, int key);

    QLineEdit* m_filter;
    QListView* m_list;
    QStandardItemModel* m_model;
    QSortFilterProxyModel* m_filtered;
};

}  // namespace orvquery
