// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionLayout.h"

#include <algorithm>

namespace orv {

namespace {

// Numbers of deeply nested rows are cut where they are shown; more than that is not needed.
constexpr int longestNumber = 64;

QString numberBelow(const QString& number, int index) {
    if (number.size() > longestNumber) return number;
    return number + QString::number(index + 1) + u'.';
}

}  // namespace

void ConditionLayout::rowChanged(TorvQDWhereRow& row) {
    row.m_isPlaced = false;
    if (m_areRowsStale) return;
    m_stale.emplace_back(row, ekButton);
    // A collapsed group shows what is in it.
    for (TorvQDWhereRow* group = row.parentRow(); group; group = group->parentRow()) {
        if (group->Expanded) continue;
        group->m_isPlaced = false;
        m_stale.emplace_back(*group, ekButton);
    }
}

void ConditionLayout::textsChanged() {
    m_areRowsStale = true;
    m_areTextsStale = true;
}

// Depth first without recursion: groups may nest deeply. `visit` gets row, depth and number.
template <typename Visit>
void ConditionLayout::walk(bool intoCollapsed, const Visit& visit) const {
    struct Level {
        const TorvQDWhereRows* rows;
        QString number;
        int next = 0;
    };
    std::vector<Level> levels{{&m_root, QString()}};
    while (!levels.empty()) {
        Level& level = levels.back();
        TorvQDWhereRow* row = level.rows->Row(level.next);
        if (!row) {
            levels.pop_back();
            continue;
        }
        const int depth = int(levels.size());
        const QString number = depth == 1 ? QString() : numberBelow(level.number, level.next);
        ++level.next;
        visit(*row, depth, depth == 1 ? QStringLiteral(" ") : number);
        if (row->Expanded || intoCollapsed) levels.push_back({row->SubRows.get(), number});
    }
}

// A collapsed group shows what is in it, which may have changed with its rows.
bool ConditionLayout::isInPlace(const TorvQDWhereRow& row, int depth, const QString& number) {
    if (!row.m_isPlaced || (row.isGroup() && !row.Expanded)) return false;
    TorvQDControl shownNumber(nullptr, ekButton);
    shownNumber.SetText(number);
    return row.GetLeftBound() == depth * levelIndentPx &&
           row.Controls.front()->GetText() == shownNumber.GetText();
}

void ConditionLayout::place(TorvQDWhereRow& row, int depth, const QString& number) {
    row.placeControls(depth * levelIndentPx, number);
    ++m_measuredRows;
}

void ConditionLayout::collect() {
    // Those that are gone have died; the others may be hidden now.
    m_rows.clear();
    m_width = 0;
    walk(true, [this](TorvQDWhereRow& row, int, const QString&) {
        row.m_shownAt = -1;
        // Rows that are hidden now are measured when they are shown again.
        if (m_areTextsStale) row.m_isPlaced = false;
    });
    walk(false, [&](TorvQDWhereRow& row, int depth, const QString& number) {
        row.m_shownAt = int(m_rows.size());
        m_rows.push_back(&row);
        if (!isInPlace(row, depth, number)) place(row, depth, number);
        widen(row.rightBound());
    });
    m_areRowsStale = false;
    m_areTextsStale = false;
    m_stale.clear();
}

bool ConditionLayout::ensure() {
    if (!isStale()) return false;
    if (m_areRowsStale) {
        collect();
        return true;
    }
    for (const ElementRef& stale : std::exchange(m_stale, {})) {
        TorvQDWhereRow* row = stale.row();
        if (!row || row->m_shownAt < 0 || row->m_isPlaced) continue;
        // Its widest element may be gone by now.
        const bool wasWidest = row->m_placedRight >= m_width;
        place(*row, row->depth(), row->GetFullIndex());
        if (wasWidest) {
            m_width = 0;
            for (const TorvQDWhereRow* shown : m_rows) widen(shown->rightBound());
        }
        widen(row->rightBound());
    }
    return true;
}

TorvQDWhereRow* ConditionLayout::rowAt(int y) const {
    const int position = y < 0 ? -1 : y / m_context.rowHeight;
    return position >= 0 && position < int(m_rows.size()) ? m_rows[std::size_t(position)] : nullptr;
}

TorvQDControl* ConditionLayout::controlAt(const TorvQDWhereRow& row, int x) {
    for (const auto& control : row.Controls) {
        if (x >= control->Left && x < control->Left + control->Width) return control.get();
    }
    return nullptr;
}

QSize ConditionLayout::extent() const {
    return {m_width, int(m_rows.size()) * m_context.rowHeight};
}

QSize ConditionLayout::fullExtent() {
    ensure();
    int rows = 0;
    int width = 0;
    walk(true, [&](TorvQDWhereRow& row, int depth, const QString& number) {
        ++rows;
        if (!isInPlace(row, depth, number)) place(row, depth, number);
        width = std::max(width, row.rightBound());
    });
    return {width, rows * m_context.rowHeight};
}

}  // namespace orv
