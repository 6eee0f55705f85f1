// SPDX-License-Identifier: MIT
#pragma once

#include "selection/ORVQDSelectOrder.h"

#include <QAbstractTableModel>

#include <optional>

namespace orv {

inline constexpr int nameColumn = 0;
inline constexpr int aggregateColumn = 1;
inline constexpr int sourceColumn = 2;
inline constexpr int gridColumns = 3;

/// The caption of a column of the selection grid.
[[nodiscard]] QString gridHeader(int column);

}  // namespace orv

/// The grid's rows as the view sees them: data rows and the empty one, without the header. Between
/// two refreshes the rows stay as they were shown last. Owned by the grid.
class TorvQDSelectGrid::Model : public QAbstractTableModel {
public:
    explicit Model(TorvQDSelectGrid* grid) : QAbstractTableModel(grid), m_grid(grid) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    /// Shows these columns; the view hears of no more than what differs.
    void show(const orv::OutputColumns& columns);
    /// Asks anew for what is wrong with the rows from `first` to `last`, which are on the screen;
    /// the others are asked about when they come there.
    void refreshProblems(int first, int last);

private:
    struct Row {
        orv::OutputColumn column;
        mutable std::optional<QString> problem;  // once it was asked for
    };
    struct Run {
        int first;
        int last;
    };

    [[nodiscard]] QString text(const QModelIndex& index) const;
    [[nodiscard]] QString accessibleText(const QModelIndex& index) const;
    [[nodiscard]] QString toolTip(const QModelIndex& index) const;
    [[nodiscard]] QString askProblem(const orv::OutputColumn& column) const;
    [[nodiscard]] bool isMuted(const QModelIndex& index) const;
    [[nodiscard]] QString problem(const QModelIndex& index) const;
    [[nodiscard]] std::optional<std::vector<Run>> removedRuns(
        const orv::OutputColumns& columns) const;
    void remove(const Run& run);
    void reset(const orv::OutputColumns& columns);

    TorvQDSelectGrid* m_grid;
    std::vector<Row> m_rows;
    bool m_isAggregated = false;  // the selection as a whole, at the last refresh
};
