// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldModel.h"

#include "toolkit/TipText.h"

#include <QCollator>

#include <algorithm>
#include <utility>

namespace orv {

namespace {

// The internal id of a table's index; that of a field is the row of its table and one.
constexpr quintptr tableId = 0;

bool contains(const QString& text, const QString& filter) {
    return text.contains(filter, Qt::CaseInsensitive);
}

bool leaves(const QString& filter, const PageField& field) {
    return contains(field.name, filter) ||
           (filter.contains(u'.') && contains(field.qualifiedName(), filter));
}

template <typename Name>
auto byName(const QCollator& collator, const Name& name) {
    return [&collator, &name](const auto& left, const auto& right) {
        return collator.compare(name(left), name(right)) < 0;
    };
}

QCollator collatorOfNames() {
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

}  // namespace

FieldModel::FieldModel(QObject* parent) : QAbstractItemModel(parent) {}

void FieldModel::fill(const IPagesHost& host) {
    beginResetModel();
    m_tables.clear();
    m_filter.clear();
    m_images = host.fieldImages();
    for (const QString& alias : host.tableAliases()) {
        m_tables.push_back({alias, host.fieldsOf(alias)});
    }
    const QCollator collator = collatorOfNames();
    const auto alias = [](const Table& table) -> const QString& { return table.alias; };
    std::stable_sort(m_tables.begin(), m_tables.end(), byName(collator, alias));
    applyFilter();
    endResetModel();
}

void FieldModel::clear() {
    beginResetModel();
    m_tables.clear();
    m_shown.clear();
    m_filter.clear();
    endResetModel();
}

void FieldModel::setFilter(const QString& filter) {
    if (filter == m_filter) return;
    beginResetModel();
    m_filter = filter;
    applyFilter();
    endResetModel();
}

void FieldModel::applyFilter() {
    m_shown.clear();
    for (int index = 0; index < int(m_tables.size()); ++index) {
        const Table& table = m_tables[std::size_t(index)];
        const bool isWhole = m_filter.isEmpty() || contains(table.alias, m_filter);
        ShownTable shown;
        shown.table = index;
        for (int field = 0; field < int(table.fields.size()); ++field) {
            if (isWhole || leaves(m_filter, table.fields[std::size_t(field)])) {
                shown.fields.push_back(field);
            }
        }
        if (isWhole || !shown.fields.empty()) m_shown.push_back(std::move(shown));
    }
}

QString FieldModel::qualifiedName(const QModelIndex& index) const {
    return index.isValid() && !isTable(index) ? field(index).qualifiedName() : QString();
}

bool FieldModel::isTable(const QModelIndex& index) const {
    return index.isValid() && index.internalId() == tableId;
}

QModelIndex FieldModel::firstField() const {
    for (int row = 0; row < int(m_shown.size()); ++row) {
        if (!m_shown[std::size_t(row)].fields.empty()) return index(0, 0, index(row, 0));
    }
    return {};
}

int FieldModel::shownCount() const {
    int count = 0;
    for (const ShownTable& shown : m_shown) count += 1 + int(shown.fields.size());
    return count;
}

QModelIndex FieldModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : tableId);
}

QModelIndex FieldModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || isTable(child)) return {};
    return createIndex(int(child.internalId()) - 1, 0, tableId);
}

int FieldModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return int(m_shown.size());
    return isTable(parent) ? int(m_shown[std::size_t(parent.row())].fields.size()) : 0;
}

int FieldModel::columnCount(const QModelIndex&) const {
    return 1;
}

const PageField& FieldModel::field(const QModelIndex& index) const {
    ShownTable& shown = m_shown[std::size_t(index.internalId()) - 1];
    const std::vector<PageField>& fields = m_tables[std::size_t(shown.table)].fields;
    if (!shown.isSorted) {
        const QCollator collator = collatorOfNames();
        const auto name = [&](int position) -> const QString& {
            return fields[std::size_t(position)].name;
        };
        std::stable_sort(shown.fields.begin(), shown.fields.end(), byName(collator, name));
        shown.isSorted = true;
    }
    return fields[std::size_t(shown.fields[std::size_t(index.row())])];
}

QVariant FieldModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (!isTable(index)) return fieldData(field(index), role);
    const ShownTable& shown = m_shown[std::size_t(index.row())];
    return tableData(m_tables[std::size_t(shown.table)], role);
}

QVariant FieldModel::tableData(const Table& table, int role) const {
    switch (role) {
    case Qt::DisplayRole: return table.alias;
    case Qt::ToolTipRole: return plainTip(table.alias);
    case Qt::DecorationRole: return m_images.value(0);
    default: return {};
    }
}

QVariant FieldModel::fieldData(const PageField& field, int role) const {
    // The doubled ampersand of a type's name is one for a menu.
    const auto type = [&] {
        return fieldTypeDisplayName(field.type).replace(QStringLiteral("&&"), QStringLiteral("&"));
    };
    switch (role) {
    case Qt::DisplayRole: return field.name;
    case Qt::DecorationRole: return m_images.value(1);
    case Qt::AccessibleDescriptionRole:
    case TypeRole: return type();
    case Qt::ToolTipRole:
        return plainTip(type().isEmpty() ? field.qualifiedName()
                                         : field.qualifiedName() + QStringLiteral(": ") + type());
    default: return {};
    }
}

}  // namespace orv
