// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IPagesHost.h"
#include "core/Export.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <vector>

namespace orv {

/// The tables of the diagram and below them their fields, both in the order of the user's language.
/// A filter leaves the fields in whose table, name or qualified name it stands, ignoring case. The
/// model holds values as they were when it was filled: the diagram may change meanwhile. Lists of
/// many thousand fields cost little: a table's fields are put in order when one of them is shown.
class ORV_EXPORT FieldModel : public QAbstractItemModel {
    Q_OBJECT

public:
    explicit FieldModel(QObject* parent = nullptr);

    /// Takes the tables and fields as they are now, all of them.
    void fill(const IPagesHost& host);
    void clear();
    void setFilter(const QString& filter);

    /// The qualified name of a field; empty for a table.
    [[nodiscard]] QString qualifiedName(const QModelIndex& index) const;
    [[nodiscard]] bool isTable(const QModelIndex& index) const;
    /// The first field that is shown, in the order of the rows; invalid when there is none.
    [[nodiscard]] QModelIndex firstField() const;
    /// How many tables and fields the filter leaves.
    [[nodiscard]] int shownCount() const;

    /// What a field's type is called; empty when it has none or the index is a table's.
    static constexpr int TypeRole = Qt::UserRole;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Table {
        QString alias;
        std::vector<PageField> fields;
    };
    // What the filter leaves of a table: positions of its fields.
    struct ShownTable {
        int table = 0;
        std::vector<int> fields;
        bool isSorted = false;
    };

    void applyFilter();
    [[nodiscard]] const PageField& field(const QModelIndex& index) const;
    [[nodiscard]] QVariant tableData(const Table& table, int role) const;
    [[nodiscard]] QVariant fieldData(const PageField& field, int role) const;

    std::vector<Table> m_tables;
    mutable std::vector<ShownTable> m_shown;  // sorted on demand
    QString m_filter;
    QList<QIcon> m_images;
};

}  // namespace orv
