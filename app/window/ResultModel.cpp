// SPDX-License-Identifier: MIT
#include "window/ResultModel.h"

#include "values/ShortenedValue.h"
#include "values/ValueText.h"
#include "window/DrawableText.h"
#include "window/ValueOrder.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>

#include <algorithm>
#include <numeric>

namespace orvquery {

namespace {

// Laying out a text of megabytes in a cell takes seconds.
constexpr qsizetype longestCellText = 500;

QString sizeText(const ShortenedValue& value) {
    const QString size = QLocale().toString(value.size);
    return value.beginning.metaType().id() == QMetaType::QByteArray
               ? ResultModel::tr("%1 bytes").arg(size)
               : ResultModel::tr("%1 characters").arg(size);
}

QString cellText(const QVariant& value) {
    const QChar ellipsis(0x2026);
    QString text = shownText(value);
    if (text.size() > longestCellText) text = text.left(longestCellText) + ellipsis;
    if (!isShortened(value) || text.startsWith(u'(')) return text;
    return text + QStringLiteral(" (%1)").arg(sizeText(value.value<ShortenedValue>()));
}

QString tipText(const QVariant& value) {
    if (isShortened(value)) {
        return ResultModel::tr(
                   "Only the beginning of this value is kept: it has %1.\n"
                   "Exporting the rows writes all of it.")
            .arg(sizeText(value.value<ShortenedValue>()));
    }
    const bool isText = value.metaType().id() == QMetaType::QString;
    const qsizetype size = isText ? value.toString().size() : 0;
    if (size <= longestCellText) return {};
    return ResultModel::tr("%1 characters; copying takes all of them.")
        .arg(QLocale().toString(size));
}

bool isInFont(QChar character) {
    return QFontMetrics(QGuiApplication::font()).inFont(character);
}

QVariant nullFont() {
    QFont font;
    font.setItalic(true);
    return font;
}

}  // namespace

ResultModel::ResultModel(QObject* parent) : QAbstractTableModel(parent) {}

void ResultModel::begin(const QStringList& columns) {
    beginResetModel();
    m_columns = columns;
    m_rows = {};
    m_order = {};
    m_sortColumn = -1;
    m_isComing = true;
    m_hasShortened = false;
    endResetModel();
}

void ResultModel::append(const std::vector<Row>& rows) {
    if (rows.empty()) return;
    const int first = rowCount();
    beginInsertRows({}, first, first + int(rows.size()) - 1);
    m_rows.insert(m_rows.end(), rows.begin(), rows.end());
    endInsertRows();
    const auto hasShortened = [](const Row& row) {
        return std::any_of(row.begin(), row.end(), isShortened);
    };
    m_hasShortened = m_hasShortened || std::any_of(rows.begin(), rows.end(), hasShortened);
}

void ResultModel::finish() {
    m_isComing = false;
    if (isSorted()) applyOrder();
}

int ResultModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ResultModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_columns.size());
}

const Row& ResultModel::rowAt(int row) const {
    const auto index = static_cast<std::size_t>(row);
    return m_rows[m_order.empty() ? index : static_cast<std::size_t>(m_order[index])];
}

const QVariant& ResultModel::value(int row, int column) const {
    return rowAt(row)[column];
}

std::vector<Row> ResultModel::rows() const {
    std::vector<Row> rows;
    rows.reserve(m_rows.size());
    for (int row = 0; row < rowCount(); ++row) rows.push_back(rowAt(row));
    return rows;
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const QVariant& cell = value(index.row(), index.column());
    switch (role) {
    case Qt::DisplayRole: return drawableText(cellText(cell), isInFont);
    case Qt::ToolTipRole: return tipText(cell);
    case Qt::FontRole: return cell.isNull() ? nullFont() : QVariant();
    case Qt::ForegroundRole:
        if (!cell.isNull()) return {};
        return QGuiApplication::palette().color(QPalette::PlaceholderText);
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignVCenter | (isNumber(cell) ? Qt::AlignRight : Qt::AlignLeft));
    default: return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    return m_columns.value(section);
}

void ResultModel::sort(int column, Qt::SortOrder order) {
    m_sortColumn = column < columnCount() ? column : -1;
    m_sortOrder = order;
    if (!m_isComing) applyOrder();
}

std::vector<int> ResultModel::sortedOrder() const {
    if (!isSorted()) return {};
    std::vector<SortKey> keys;
    keys.reserve(m_rows.size());
    for (const Row& row : m_rows) keys.emplace_back(row[m_sortColumn]);
    std::vector<int> order(m_rows.size());
    std::iota(order.begin(), order.end(), 0);
    const auto key = [&keys](int row) -> const SortKey& {
        return keys[static_cast<std::size_t>(row)];
    };
    const bool isDescending = m_sortOrder == Qt::DescendingOrder;
    std::stable_sort(order.begin(), order.end(), [&](int left, int right) {
        return isDescending ? key(right) < key(left) : key(left) < key(right);
    });
    return order;
}

void ResultModel::applyOrder() {
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<int> came;
    came.reserve(std::size_t(before.size()));
    for (const QModelIndex& index : before) {
        const auto row = static_cast<std::size_t>(index.row());
        came.push_back(m_order.empty() ? index.row() : m_order[row]);
    }
    m_order = sortedOrder();
    std::vector<int> shownAt(m_rows.size());
    for (std::size_t row = 0; row < shownAt.size(); ++row) {
        const std::size_t origin = m_order.empty() ? row : static_cast<std::size_t>(m_order[row]);
        shownAt[origin] = int(row);
    }
    QModelIndexList after;
    for (qsizetype index = 0; index < before.size(); ++index) {
        const auto origin = static_cast<std::size_t>(came[std::size_t(index)]);
        after += createIndex(shownAt[origin], before[index].column());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

}  // namespace orvquery
