// SPDX-License-Identifier: MIT
// What the view of the selection grid is told: texts, marks, and what changed since the last time.
#include "contract/IPagesHost.h"
#include "core/Text.h"
#include "selection/ORVQDSelectModel_p.h"
#include "toolkit/TipText.h"

#include <QStyle>

#include <algorithm>

namespace orv {

QString gridHeader(int column) {
    switch (column) {
    case nameColumn: return QStringLiteral("Name of output field");
    case aggregateColumn: return QStringLiteral("Agregate");
    default: return QStringLiteral("Name source field");
    }
}

}  // namespace orv

namespace {

// Beyond this many pieces a new view is cheaper than telling it of each.
constexpr std::size_t mostRuns = 64;

bool looksEqual(const orv::OutputColumn& one, const orv::OutputColumn& other) {
    return one.source == other.source && one.name == other.name &&
           one.aggregate == other.aggregate && one.muted == other.muted;
}

// Red on the background of the cells, be it light or dark.
QColor problemColor(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(255, 120, 110)
                                                           : QColor(176, 0, 0);
}

QFont struckOut(QFont font) {
    font.setStrikeOut(true);
    return font;
}

}  // namespace

bool TorvQDSelectGrid::Model::isMuted(const QModelIndex& index) const {
    return index.row() < int(m_rows.size()) && m_rows[std::size_t(index.row())].column.muted;
}

int TorvQDSelectGrid::Model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size()) + 1;
}

int TorvQDSelectGrid::Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : orv::gridColumns;
}

QVariant TorvQDSelectGrid::Model::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
    case Qt::DisplayRole: return text(index);
    case Qt::ToolTipRole: return toolTip(index);
    case Qt::AccessibleTextRole: return accessibleText(index);
    case Qt::AccessibleDescriptionRole: return problem(index);
    case Qt::FontRole: return isMuted(index) ? QVariant(struckOut(m_grid->font())) : QVariant();
    case Qt::ForegroundRole:
        if (isMuted(index)) return m_grid->palette().brush(QPalette::Disabled, QPalette::Text);
        return problem(index).isEmpty() ? QVariant() : QBrush(problemColor(m_grid->palette()));
    case Qt::DecorationRole:
        if (index.column() != orv::sourceColumn || problem(index).isEmpty()) return {};
        return m_grid->style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, m_grid);
    default: return {};
    }
}

QVariant TorvQDSelectGrid::Model::headerData(int section, Qt::Orientation orientation,
                                             int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return orv::gridHeader(section);
}

QString TorvQDSelectGrid::Model::text(const QModelIndex& index) const {
    if (index.row() >= int(m_rows.size())) return {};
    const orv::OutputColumn& column = m_rows[std::size_t(index.row())].column;
    switch (index.column()) {
    case orv::nameColumn: return column.name;
    case orv::aggregateColumn: return column.aggregate;
    default: return column.source;
    }
}

QString TorvQDSelectGrid::Model::accessibleText(const QModelIndex& index) const {
    const QString shown = text(index);
    const bool isBlank = orv::isBlank(shown);
    if (index.row() >= int(m_rows.size())) {
        return index.column() == orv::sourceColumn ? tr("Source of a new column")
                                                   : tr("Empty row for a new column");
    }
    const QString mark = isMuted(index) ? tr(", muted") : QString();
    switch (index.column()) {
    case orv::nameColumn:
        return (isBlank ? tr("No output name") : tr("Output name %1").arg(shown)) + mark;
    case orv::aggregateColumn:
        return (isBlank ? tr("No aggregate") : tr("Aggregate %1").arg(shown)) + mark;
    default: return (isBlank ? tr("No source") : tr("Source %1").arg(shown)) + mark;
    }
}

// Only what cannot be read in the cell: names may look like markup.
QString TorvQDSelectGrid::Model::toolTip(const QModelIndex& index) const {
    QStringList lines;
    const bool isCut = m_grid->sizeHintForIndex(index).width() >
                       m_grid->columnWidth(index.column()) - int(m_grid->showGrid());
    if (isCut) lines << text(index);
    const QString what = problem(index);
    if (!what.isEmpty()) lines << what;
    if (isMuted(index)) lines << tr("Muted: the statement does not have this column.");
    return orv::plainTip(lines.join(u'\n'));
}

QString TorvQDSelectGrid::Model::askProblem(const orv::OutputColumn& column) const {
    const IPagesHost* host = m_grid->host();
    if (!host || orv::isBlank(column.source) || column.muted) return {};
    QString gone = host->nameProblem(column.source);
    if (!gone.isEmpty()) return gone;
    const orv::SelectTextRules rules = m_grid->textRules();
    const QString badName = orv::outputNameProblem(column, rules);
    if (!badName.isEmpty()) return column.name + QStringLiteral(": ") + badName;
    if (!m_isAggregated || orv::fitsAggregation(column, rules)) return {};
    return QStringLiteral(
        "This column has no aggregate and cannot be grouped: no statement can be "
        "written.");
}

QString TorvQDSelectGrid::Model::problem(const QModelIndex& index) const {
    if (index.row() >= int(m_rows.size())) return {};
    const Row& row = m_rows[std::size_t(index.row())];
    if (!row.problem) row.problem = askProblem(row.column);
    return *row.problem;
}

// --- what changed ---

void TorvQDSelectGrid::Model::refreshProblems(int first, int last) {
    m_isAggregated = orv::isAggregated(m_grid->columns(), m_grid->textRules());
    for (int row = 0; row < int(m_rows.size()); ++row) {
        Row& shown = m_rows[std::size_t(row)];
        const std::optional<QString> before = std::exchange(shown.problem, std::nullopt);
        if (!before || row < first || row > last) continue;
        shown.problem = askProblem(shown.column);
        if (shown.problem == before) continue;
        Q_EMIT dataChanged(index(row, 0), index(row, orv::gridColumns - 1));
    }
}

// The rows that went, when nothing but that happened.
std::optional<std::vector<TorvQDSelectGrid::Model::Run>> TorvQDSelectGrid::Model::removedRuns(
    const orv::OutputColumns& columns) const {
    if (columns.size() >= m_rows.size()) return std::nullopt;
    std::vector<Run> runs;
    std::size_t kept = 0;
    for (int row = 0; row < int(m_rows.size()); ++row) {
        const bool isKept =
            kept < columns.size() && looksEqual(m_rows[std::size_t(row)].column, columns[kept]);
        if (isKept) {
            ++kept;
        } else if (!runs.empty() && runs.back().last == row - 1) {
            runs.back().last = row;
        } else {
            runs.push_back({row, row});
        }
    }
    return kept == columns.size() ? std::optional(std::move(runs)) : std::nullopt;
}

void TorvQDSelectGrid::Model::remove(const Run& run) {
    beginRemoveRows({}, run.first, run.last);
    m_rows.erase(m_rows.begin() + run.first, m_rows.begin() + run.last + 1);
    endRemoveRows();
}

void TorvQDSelectGrid::Model::reset(const orv::OutputColumns& columns) {
    beginResetModel();
    m_rows.clear();
    for (const orv::OutputColumn& column : columns) m_rows.push_back({column, std::nullopt});
    endResetModel();
}

void TorvQDSelectGrid::Model::show(const orv::OutputColumns& columns) {
    if (const auto runs = removedRuns(columns)) {
        if (runs->size() > mostRuns) return reset(columns);
        for (auto run = runs->rbegin(); run != runs->rend(); ++run) remove(*run);
        return;
    }
    const int before = int(m_rows.size());
    const int after = int(columns.size());
    const int shared = std::min(before, after);
    const auto isSame = [&](int shown, int now) {
        return looksEqual(m_rows[std::size_t(shown)].column, columns[std::size_t(now)]);
    };
    int head = 0;
    while (head < shared && isSame(head, head)) ++head;
    int tail = 0;
    while (tail < shared - head && isSame(before - 1 - tail, after - 1 - tail)) ++tail;
    const int replaced = shared - head - tail;
    for (int row = head; row < head + replaced; ++row) {
        m_rows[std::size_t(row)] = {columns[std::size_t(row)], std::nullopt};
    }
    if (replaced > 0) {
        Q_EMIT dataChanged(index(head, 0), index(head + replaced - 1, orv::gridColumns - 1));
    }
    const int end = head + replaced;
    if (after > before) {
        beginInsertRows({}, end, end + after - before - 1);
        std::vector<Row> added;
        for (int row = end; row < end + after - before; ++row) {
            added.push_back({columns[std::size_t(row)], std::nullopt});
        }
        m_rows.insert(m_rows.begin() + end, std::make_move_iterator(added.begin()),
                      std::make_move_iterator(added.end()));
        endInsertRows();
    } else if (before > after) {
        remove({end, end + before - after - 1});
    }
}
