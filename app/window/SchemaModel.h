// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QStringList>

#include <array>
#include <memory>
#include <vector>

namespace orvquery {

/// The tables of a source as a tree: schemas where there are several, in each its tables and views
/// and in a group its procedures, behind all the source's own functions; below each of them its
/// columns, which are asked for when they are wanted. A filter leaves what has a text in its name,
/// or in that of a known column.
class SchemaModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum class Kind { Schema, Group, Table, Column, Note };

    /// What a person reads behind the name: the type of a column.
    static constexpr int detailRole = Qt::UserRole;
    /// The type of the tables that are dragged from here.
    static constexpr char mimeType[] = "application/x-orvquery-tables";

    explicit SchemaModel(QObject* parent = nullptr);
    ~SchemaModel() override;

    /// Replaces all; the entries are sorted. Tables of the default schemas come first.
    void setTables(const std::vector<TableEntry>& entries, const QStringList& defaultSchemas);
    void setForeignKeys(const std::vector<ForeignKey>& keys);
    /// Leaves what has that text, in any case, in its name or a column's; all when it is empty.
    void setFilter(const QString& text);
    /// What columnsWanted asked for.
    void setColumns(const TableName& name, const std::vector<ColumnEntry>& columns);
    /// Why there are none; they are asked for again after forgetProblem().
    void setProblem(const TableName& name, const QString& sentence);
    void forgetProblem(const QModelIndex& table);

    [[nodiscard]] Kind kindOf(const QModelIndex& index) const;
    /// The table that is there, or whose column is; none elsewhere.
    [[nodiscard]] const TableEntry* tableAt(const QModelIndex& index) const;
    /// Where a table is; invalid when it is not there or filtered out.
    [[nodiscard]] QModelIndex indexOf(const TableName& name) const;
    /// The first table whose whole name is the filter's text, in any case; invalid when none is.
    [[nodiscard]] QModelIndex exactHit() const;
    /// Whether it is of those that begin unfolded.
    [[nodiscard]] bool beginsUnfolded(const QModelIndex& index) const;
    /// Whether it is a table that is there for the sake of a column alone.
    [[nodiscard]] bool isThereForColumn(const QModelIndex& index) const;

    /// The tables of a drag; none when it is another's.
    [[nodiscard]] static QList<TableName> tablesOf(const QMimeData& data);

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    using QObject::parent;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;

Q_SIGNALS:
    /// Comes a moment after somebody looked below the table.
    void columnsWanted(const orvquery::TableName& name);

private:
    struct Node;
    struct Table;

    [[nodiscard]] const Node* nodeOf(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(const Node* node) const;
    [[nodiscard]] Table* tableOf(const Node* node) const;
    Node* container(Kind kind, const QString& title, Node* parent);
    Node* placeOf(const TableEntry& entry);
    [[nodiscard]] const Node* exactHitBelow(const Node& parent) const;
    void showAll();
    [[nodiscard]] bool matches(const Table& table, bool* isByColumn) const;
    void replaceBelow(Table& table, const std::vector<Node*>& wanted);
    [[nodiscard]] std::vector<Node*> columnsShown(const Table& table) const;
    void note(Table& table, const QString& text);
    [[nodiscard]] QVariant columnData(const Node& node, int role) const;
    [[nodiscard]] QString columnToolTip(const Table& table, const ColumnEntry& column) const;
    [[nodiscard]] QIcon iconOf(const Node& node) const;

    std::unique_ptr<Node> m_root;
    std::vector<std::unique_ptr<Node>> m_containers;  ///< in the order in which they are shown
    std::vector<std::unique_ptr<Table>> m_tables;
    QHash<TableName, Table*> m_byName;
    QStringList m_defaultSchemas;
    bool m_hasSchemas = false;
    QString m_filter;  ///< in a form in which case does not count
    QHash<TableName, std::vector<ForeignKey>> m_keys;
    std::array<QIcon, 6> m_icons;
};

}  // namespace orvquery
