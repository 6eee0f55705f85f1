// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDWhereRows.h"

#include <QSize>

#include <vector>

namespace orv {

/// Which rows of a panel are shown, in which order, and where: one below the other, each as high as
/// the context says. Brings up to date only what changed: rows() and what follows from them count
/// from the last ensure(). All coordinates are pixels of the content. Owned by the panel; works
/// without a window.
class ORV_EXPORT ConditionLayout {
public:
    /// Both are borrowed; `root` holds the root row.
    ConditionLayout(const ConditionContext& context, const TorvQDWhereRows& root)
        : m_context(context), m_root(root) {}

    /// Rows came, went, moved or opened.
    void rowsChanged() { m_areRowsStale = true; }
    /// The content of one row changed.
    void rowChanged(TorvQDWhereRow& row);
    /// Every text has another width.
    void textsChanged();

    /// Whether ensure() has something to do.
    [[nodiscard]] bool isStale() const { return m_areRowsStale || !m_stale.empty(); }
    /// Lays out what changed. The result is whether anything had.
    bool ensure();

    /// The rows that are shown, from the top.
    [[nodiscard]] const std::vector<TorvQDWhereRow*>& rows() const { return m_rows; }
    /// The position of a row among them; -1 when it is not shown.
    [[nodiscard]] static int positionOf(const TorvQDWhereRow& row) { return row.m_shownAt; }
    /// The row whose band contains y, and the element of a row that contains x; none beside them.
    [[nodiscard]] TorvQDWhereRow* rowAt(int y) const;
    [[nodiscard]] static TorvQDControl* controlAt(const TorvQDWhereRow& row, int x);
    [[nodiscard]] QSize extent() const;
    /// Height and width with the rows of collapsed groups; lays these out, too.
    [[nodiscard]] QSize fullExtent();

    /// How many rows were measured so far.
    [[nodiscard]] int measuredRows() const { return m_measuredRows; }

private:
    template <typename Visit>
    void walk(bool intoCollapsed, const Visit& visit) const;
    void collect();
    [[nodiscard]] static bool isInPlace(const TorvQDWhereRow& row, int depth,
                                        const QString& number);
    void place(TorvQDWhereRow& row, int depth, const QString& number);
    void widen(int right) { m_width = std::max(m_width, right); }

    const ConditionContext& m_context;
    const TorvQDWhereRows& m_root;
    std::vector<TorvQDWhereRow*> m_rows;
    std::vector<ElementRef> m_stale;  // rows whose content changed, while the rows are the same
    bool m_areRowsStale = true;
    bool m_areTextsStale = false;
    int m_width = 0;
    int m_measuredRows = 0;
};

}  // namespace orv
