// SPDX-License-Identifier: MIT
#pragma once

#include "database/RunQuery.h"

#include <QAbstractTableModel>

namespace orvquery {

/// The rows of a query for a table view, as they come. Owns them.
class ResultModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit ResultModel(QObject* parent = nullptr);

    /// Rows with these columns are coming; those that were there are gone, and so is their order.
    void begin(const QStringList& columns);
    void append(const std::vector<Row>& rows);
    /// All rows have come. Only now are they sorted, if that was asked for meanwhile.
    void finish();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    /// Sorts by a column: NULL first, then numbers, moments, texts by their code units and bytes;
    /// rows with equal values stay as they came. A column of -1 brings back the order in which the
    /// rows came.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    [[nodiscard]] const QStringList& columns() const { return m_columns; }
    /// The value of a cell, NULL included.
    [[nodiscard]] const QVariant& value(int row, int column) const;
    /// The rows in the order in which they are shown.
    [[nodiscard]] std::vector<Row> rows() const;
    [[nodiscard]] bool hasShortened() const { return m_hasShortened; }
    [[nodiscard]] bool isSorted() const { return m_sortColumn >= 0; }

private:
    [[nodiscard]] const Row& rowAt(int row) const;
    [[nodiscard]] std::vector<int> sortedOrder() const;
    void applyOrder();

    QStringList m_columns;
    std::vector<Row> m_rows;   ///< as they came
    std::vector<int> m_order;  ///< indexes of rows as they are shown; empty when as they came
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_isComing = false;
    bool m_hasShortened = false;
};

}  // namespace orvquery
