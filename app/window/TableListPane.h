// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QWidget>

class QLineEdit;
class QModelIndex;
class QSortFilterProxyModel;
class QStandardItem;
class QStandardItemModel;
class QTreeView;

namespace orvquery {

/// The tables and views of the open database and behind them, in groups that fold, its procedures
/// and its own functions that give rows; with a line that filters them by name. A double click or
/// Enter chooses one.
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
    void addGroup(const std::vector<TableEntry>& entries, TableKind kind, const QString& title);
    void filter(const QString& text);
    void choose(const QModelIndex& index);
    void foldCurrent();
    void selectFirst();
    [[nodiscard]] bool handleKey(QObject* watched, int key);

    QLineEdit* m_filter;
    QTreeView* m_list;
    QStandardItemModel* m_model;
    QSortFilterProxyModel* m_filtered;
};

}  // namespace orvquery
