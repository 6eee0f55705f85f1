// SPDX-License-Identifier: MIT
#pragma once

#include "database/RunQuery.h"

#include <QAbstractTableModel>

namespace orvquery {

/// The rows of a query for a table view. Owns them.
class ResultModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit ResultModel(QObject* parent = nullptr);

    void setRows(QStringList columns, std::vector<Row> rows);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    /// The value of a cell, NULL included.
    [[nodiscard]] const QVariant& value(const QModelIndex& index) const;

private:
    QStringList m_columns;
    std::vector<Row> m_rows;
};

}  // namespace orvquery
