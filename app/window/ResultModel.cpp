// SPDX-License-Identifier: MIT
#include "window/ResultModel.h"

#include "database/ValueText.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

namespace orvquery {

namespace {

// Laying out a text of megabytes in a cell takes seconds.
constexpr qsizetype longestCellText = 500;

QString cellText(const QVariant& value) {
    QString text = shownText(value);
    if (text.size() <= longestCellText) return text;
    return text.left(longestCellText) + QChar(0x2026);
}

QVariant nullFont() {
    QFont font;
    font.setItalic(true);
    return font;
}

}  // namespace

ResultModel::ResultModel(QObject* parent) : QAbstractTableModel(parent) {}

void ResultModel::setRows(QStringList columns, std::vector<Row> rows) {
    beginResetModel();
    m_columns = std::move(columns);
    m_rows = std::move(rows);
    endResetModel();
}

int ResultModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ResultModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_columns.size());
}

const QVariant& ResultModel::value(const QModelIndex& index) const {
    return m_rows[static_cast<std::size_t>(index.row())][index.column()];
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const QVariant& cell = value(index);
    switch (role) {
    case Qt::DisplayRole: return cellText(cell);
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

}  // namespace orvquery
