// SPDX-License-Identifier: MIT
#include "window/SchemaModel.h"

#include <QDataStream>
#include <QFont>
#include <QIODevice>
#include <QMimeData>

#include <algorithm>
#include <set>

namespace orvquery {

namespace {

enum Icon { SchemaIcon, TableIcon, ViewIcon, ProcedureIcon, ColumnIcon, KeyIcon };

QIcon load(const char* name) {
    return QIcon(QStringLiteral(":/orvquery/icons/%1.svg").arg(QLatin1String(name)));
}

// One with hundreds of parameters is still to fit on the screen.
constexpr qsizetype mostShownParameters = 12;

QString callText(const TableEntry& entry) {
    QStringList shown = entry.parameters.mid(0, mostShownParameters);
    if (entry.parameters.size() > mostShownParameters) shown += QStringLiteral("...");
    return entry.name + u'(' + shown.join(QStringLiteral(", ")) + u')';
}

QString toolTipOf(const TableEntry& entry) {
    switch (entry.kind) {
    case TableKind::Table: return QObject::tr("Table");
    case TableKind::View: return QObject::tr("View");
    case TableKind::Procedure: return QObject::tr("Procedure or function %1").arg(callText(entry));
    case TableKind::Function: return QObject::tr("System function %1").arg(callText(entry));
    }
    return {};
}

QString detailOf(const ColumnEntry& column) {
    QStringList parts;
    if (!column.declaredType.isEmpty()) parts += column.declaredType;
    if (column.isRequired) parts += QObject::tr("not null");
    return parts.join(QStringLiteral(", "));
}

}  // namespace

struct SchemaModel::Node {
    Kind kind = Kind::Schema;
    Node* parent = nullptr;
    int row = 0;               ///< among those that are shown
    QString text = {};         ///< of all but tables and columns
    Table* table = nullptr;    ///< of a table, and of what is below one
    std::size_t column = 0;    ///< of a column
    TableKind groupKind = {};  ///< of a group
    bool isDefault = false;    ///< of a schema
    int total = 0;             ///< of a group: its tables, shown or not
    std::vector<Node*> shown = {};
};

struct SchemaModel::Table {
    enum class State { Unread, Reading, Read, Failed };

    TableEntry entry;
    QString key;  ///< by which it is looked for
    State state = State::Unread;
    bool isThereForColumn = false;
    Node node;
    Node note;
    std::vector<ColumnEntry> columns;
    std::vector<QString> columnKeys;
    std::vector<std::unique_ptr<Node>> columnNodes;
};

SchemaModel::SchemaModel(QObject* parent)
    : QAbstractItemModel(parent), m_root(std::make_unique<Node>()), m_icons{load("schema"),
                                                                            load("table"),
                                                                            load("view"),
                                                                            load("procedure"),
                                                                            load("column"),
                                                                            load("key")} {}

SchemaModel::~SchemaModel() = default;

// ------------------------------------------------------------------------------------ the tree

void SchemaModel::setTables(const std::vector<TableEntry>& entries,
                            const QStringList& defaultSchemas) {
    beginResetModel();
    m_defaultSchemas = defaultSchemas;
    std::set<QString> schemas;
    for (const TableEntry& entry : entries) {
        if (entry.kind != TableKind::Function) schemas.insert(entry.schema);
    }
    m_hasSchemas = schemas.size() > 1;
    m_root->shown.clear();
    m_containers.clear();
    m_tables.clear();
    m_byName.clear();
    m_filter.clear();
    for (const TableEntry& entry : entries) {
        auto table = std::make_unique<Table>();
        table->entry = entry;
        const bool isInSchema = m_hasSchemas && !entry.schema.isEmpty();
        table->key = (isInSchema ? entry.schema + u'.' + entry.name : entry.name).toCaseFolded();
        table->node = {Kind::Table, placeOf(entry)};
        table->node.table = table.get();
        table->note = {Kind::Note, &table->node};
        table->note.table = table.get();
        if (table->node.parent->kind == Kind::Group) ++table->node.parent->total;
        m_byName.insert(entry.tableName(), table.get());
        m_tables.push_back(std::move(table));
    }
    // Default schemas first, in the order in which they are searched; the source's functions last.
    std::stable_sort(m_containers.begin(), m_containers.end(),
                     [this](const auto& a, const auto& b) {
                         const auto order = [](const Node& node) {
                             if (node.kind == Kind::Group)
                                 return node.groupKind == TableKind::Function ? 3 : 2;
                             return node.isDefault ? 0 : 1;
                         };
                         const auto place = [&](const Node& node) {
                             return node.isDefault ? m_defaultSchemas.indexOf(node.text) : 0;
                         };
                         return std::pair(order(*a), place(*a)) < std::pair(order(*b), place(*b));
                     });
    showAll();
    endResetModel();
}

SchemaModel::Node* SchemaModel::container(Kind kind, const QString& title, Node* parent) {
    // The entries are sorted: what is looked for is mostly the last.
    for (auto place = m_containers.rbegin(); place != m_containers.rend(); ++place) {
        Node& node = **place;
        if (node.kind == kind && node.text == title && node.parent == parent) return &node;
    }
    m_containers.push_back(std::make_unique<Node>(Node{kind, parent}));
    m_containers.back()->text = title;
    return m_containers.back().get();
}

SchemaModel::Node* SchemaModel::placeOf(const TableEntry& entry) {
    Node* place = m_root.get();
    if (m_hasSchemas && entry.kind != TableKind::Function) {
        place = container(Kind::Schema, entry.schema, place);
        place->isDefault = entry.schema.isEmpty() || m_defaultSchemas.contains(entry.schema);
    }
    if (!isCalled(entry.kind)) return place;
    const bool isFunction = entry.kind == TableKind::Function;
    place = container(Kind::Group,
                      isFunction ? tr("System functions") : tr("Procedures and functions"), place);
    place->groupKind = entry.kind;
    return place;
}

bool SchemaModel::matches(const Table& table, bool* isByColumn) const {
    *isByColumn = false;
    if (m_filter.isEmpty() || table.key.contains(m_filter)) return true;
    *isByColumn = std::any_of(table.columnKeys.begin(), table.columnKeys.end(),
                              [this](const QString& key) { return key.contains(m_filter); });
    return *isByColumn;
}

// Tables stand before the groups of what has them for a parent, as containers are added last.
void SchemaModel::showAll() {
    m_root->shown.clear();
    for (const auto& node : m_containers) node->shown.clear();
    const auto show = [](Node& node) {
        node.row = int(node.parent->shown.size());
        node.parent->shown.push_back(&node);
    };
    for (const auto& table : m_tables) {
        if (!matches(*table, &table->isThereForColumn)) continue;
        show(table->node);
        if (table->state == Table::State::Read) {
            table->node.shown = columnsShown(*table);
            for (std::size_t row = 0; row < table->node.shown.size(); ++row) {
                table->node.shown[row]->row = int(row);
            }
        }
    }
    // Inner ones first, so that those which they leave empty are seen to be so.
    for (const bool isInner : {true, false}) {
        for (const auto& node : m_containers) {
            const bool isOfTurn = (node->parent != m_root.get()) == isInner;
            if (isOfTurn && !node->shown.empty()) show(*node);
        }
    }
}

void SchemaModel::setFilter(const QString& text) {
    beginResetModel();
    m_filter = text.toCaseFolded();
    showAll();
    endResetModel();
}

QModelIndex SchemaModel::exactHit() const {
    const Node* hit = exactHitBelow(*m_root);
    return hit == nullptr ? QModelIndex() : indexOf(hit);
}

// As they are shown: those of default schemas first.
const SchemaModel::Node* SchemaModel::exactHitBelow(const Node& parent) const {
    for (const Node* node : parent.shown) {
        if (node->kind != Kind::Table) {
            if (const Node* hit = exactHitBelow(*node)) return hit;
            continue;
        }
        const Table& table = *node->table;
        if (table.key == m_filter || table.entry.name.toCaseFolded() == m_filter) return node;
    }
    return nullptr;
}

void SchemaModel::setForeignKeys(const std::vector<ForeignKey>& keys) {
    m_keys.clear();
    for (const ForeignKey& key : keys) m_keys[key.table].push_back(key);
}

// ------------------------------------------------------------------------------------- columns

std::vector<SchemaModel::Node*> SchemaModel::columnsShown(const Table& table) const {
    std::vector<Node*> shown;
    for (const auto& node : table.columnNodes) {
        if (table.isThereForColumn && !table.columnKeys[node->column].contains(m_filter)) continue;
        shown.push_back(node.get());
    }
    return shown;
}

// The new ones come before the old ones go: a view would fold what has nothing below it.
void SchemaModel::replaceBelow(Table& table, const std::vector<Node*>& wanted) {
    std::vector<Node*>& shown = table.node.shown;
    const QModelIndex index = indexOf(table.entry.tableName());
    const int before = int(shown.size());
    const auto number = [&] {
        for (std::size_t row = 0; row < shown.size(); ++row) shown[row]->row = int(row);
    };
    if (!index.isValid()) {
        shown = wanted;
        return number();
    }
    if (!wanted.empty()) {
        beginInsertRows(index, before, before + int(wanted.size()) - 1);
        shown.insert(shown.end(), wanted.begin(), wanted.end());
        number();
        endInsertRows();
    }
    if (before > 0) {
        beginRemoveRows(index, 0, before - 1);
        shown.erase(shown.begin(), shown.begin() + before);
        number();
        endRemoveRows();
    }
    Q_EMIT dataChanged(index, index);
}

void SchemaModel::note(Table& table, const QString& text) {
    table.note.text = text;
    replaceBelow(table, {&table.note});
}

void SchemaModel::setColumns(const TableName& name, const std::vector<ColumnEntry>& columns) {
    Table* table = m_byName.value(name);
    if (table == nullptr) return;
    // Those of before go only when they are shown no more.
    if (table->state == Table::State::Read) replaceBelow(*table, {});
    table->state = Table::State::Read;
    table->columns = columns;
    table->columnKeys.clear();
    table->columnNodes.clear();
    for (std::size_t column = 0; column < columns.size(); ++column) {
        table->columnKeys.push_back(columns[column].name.toCaseFolded());
        table->columnNodes.push_back(std::make_unique<Node>(Node{Kind::Column, &table->node}));
        table->columnNodes.back()->table = table;
        table->columnNodes.back()->column = column;
    }
    replaceBelow(*table, columnsShown(*table));
}

void SchemaModel::setProblem(const TableName& name, const QString& sentence) {
    Table* table = m_byName.value(name);
    if (table == nullptr || table->state == Table::State::Read) return;
    table->state = Table::State::Failed;
    note(*table, sentence);
}

void SchemaModel::forgetProblem(const QModelIndex& index) {
    Table* table = tableOf(nodeOf(index));
    if (table == nullptr || table->state != Table::State::Failed) return;
    table->state = Table::State::Unread;
    replaceBelow(*table, {});
}

bool SchemaModel::canFetchMore(const QModelIndex& parent) const {
    const Node* node = nodeOf(parent);
    return node->kind == Kind::Table && node->table->state == Table::State::Unread;
}

// The answer may be there at once, but not amid the work of the view that asks.
void SchemaModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    Table& table = *tableOf(nodeOf(parent));
    table.state = Table::State::Reading;
    note(table, tr("reading ..."));
    const TableName name = table.entry.tableName();
    QMetaObject::invokeMethod(
        this, [this, name] { Q_EMIT columnsWanted(name); }, Qt::QueuedConnection);
}

// --------------------------------------------------------------------------------- what is asked

const SchemaModel::Node* SchemaModel::nodeOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<const Node*>(index.internalPointer()) : m_root.get();
}

SchemaModel::Table* SchemaModel::tableOf(const Node* node) const {
    return node->kind == Kind::Table || node->kind == Kind::Column ? node->table : nullptr;
}

QModelIndex SchemaModel::indexOf(const Node* node) const {
    return node == m_root.get() ? QModelIndex() : createIndex(node->row, 0, node);
}

QModelIndex SchemaModel::indexOf(const TableName& name) const {
    const Table* table = m_byName.value(name);
    if (table == nullptr) return {};
    const std::vector<Node*>& shown = table->node.parent->shown;
    const auto row = std::size_t(table->node.row);
    const bool isShown = row < shown.size() && shown[row] == &table->node;
    return isShown ? indexOf(&table->node) : QModelIndex();
}

SchemaModel::Kind SchemaModel::kindOf(const QModelIndex& index) const {
    return nodeOf(index)->kind;
}

const TableEntry* SchemaModel::tableAt(const QModelIndex& index) const {
    const Table* table = tableOf(nodeOf(index));
    return table == nullptr ? nullptr : &table->entry;
}

// Procedures are somebody's own work like the tables; what every database has stays folded.
bool SchemaModel::beginsUnfolded(const QModelIndex& index) const {
    const Node& node = *nodeOf(index);
    if (node.kind == Kind::Group) return node.groupKind != TableKind::Function;
    return node.kind == Kind::Schema && node.isDefault;
}

bool SchemaModel::isThereForColumn(const QModelIndex& index) const {
    const Node& node = *nodeOf(index);
    return node.kind == Kind::Table && node.table->isThereForColumn;
}

QModelIndex SchemaModel::index(int row, int column, const QModelIndex& parent) const {
    const std::vector<Node*>& shown = nodeOf(parent)->shown;
    const bool isThere = row >= 0 && std::size_t(row) < shown.size() && column == 0;
    return isThere ? createIndex(row, column, shown[std::size_t(row)]) : QModelIndex();
}

QModelIndex SchemaModel::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOf(nodeOf(index)->parent) : QModelIndex();
}

int SchemaModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > 0 ? 0 : int(nodeOf(parent)->shown.size());
}

int SchemaModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool SchemaModel::hasChildren(const QModelIndex& parent) const {
    return rowCount(parent) > 0 || canFetchMore(parent);
}

QIcon SchemaModel::iconOf(const Node& node) const {
    switch (node.kind) {
    case Kind::Schema: return m_icons[SchemaIcon];
    case Kind::Group: return m_icons[ProcedureIcon];
    case Kind::Table: break;
    case Kind::Column:
        return m_icons[node.table->columns[node.column].isKey ? KeyIcon : ColumnIcon];
    case Kind::Note: return {};
    }
    switch (node.table->entry.kind) {
    case TableKind::Table: return m_icons[TableIcon];
    case TableKind::View: return m_icons[ViewIcon];
    case TableKind::Procedure:
    case TableKind::Function: return m_icons[ProcedureIcon];
    }
    return {};
}

QString SchemaModel::columnToolTip(const Table& table, const ColumnEntry& column) const {
    QStringList lines = {column.name + u' ' + detailOf(column)};
    if (column.isKey) lines += tr("Primary key");
    for (const ForeignKey& key : m_keys.value(table.entry.tableName())) {
        const qsizetype place = key.columns.indexOf(column.name);
        if (place < 0) continue;
        const QString& schema = key.referenced.schema;
        const bool isQualified = m_hasSchemas && !schema.isEmpty();
        lines += tr("Refers to %1 (%2)")
                     .arg(isQualified ? schema + u'.' + key.referenced.name : key.referenced.name,
                          key.referencedColumns.value(place));
    }
    return lines.join(u'\n');
}

QVariant SchemaModel::columnData(const Node& node, int role) const {
    const ColumnEntry& column = node.table->columns[node.column];
    switch (role) {
    case Qt::DisplayRole: return column.name;
    case detailRole: return detailOf(column);
    case Qt::ToolTipRole: return columnToolTip(*node.table, column);
    case Qt::AccessibleTextRole: {
        QStringList parts = {column.name, detailOf(column)};
        if (column.isKey) parts += tr("primary key");
        parts.removeAll(QString());
        return parts.join(QStringLiteral(", "));
    }
    default: return {};
    }
}

QVariant SchemaModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Node& node = *nodeOf(index);
    if (role == Qt::DecorationRole) return iconOf(node);
    if (node.kind == Kind::Column) return columnData(node, role);
    if (role == Qt::ToolTipRole) {
        if (node.kind == Kind::Table) return toolTipOf(node.table->entry);
        return node.kind == Kind::Schema ? tr("Schema") : node.text;
    }
    if (role == Qt::FontRole && node.kind == Kind::Note) {
        QFont font;
        font.setItalic(true);
        return font;
    }
    if (role != Qt::DisplayRole) return {};
    switch (node.kind) {
    case Kind::Table: return node.table->entry.name;
    case Kind::Group: return tr("%1 (%2)").arg(node.text).arg(node.total);
    // Some engines have tables that are in no schema.
    case Kind::Schema: return node.text.isEmpty() ? tr("(no schema)") : node.text;
    case Kind::Column:
    case Kind::Note: break;
    }
    return node.text;
}

Qt::ItemFlags SchemaModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    switch (nodeOf(index)->kind) {
    case Kind::Note: return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    case Kind::Column: return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    case Kind::Table: return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    case Kind::Schema:
    case Kind::Group: break;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

// ---------------------------------------------------------------------------------------- drags

QStringList SchemaModel::mimeTypes() const {
    return {QLatin1String(mimeType)};
}

QMimeData* SchemaModel::mimeData(const QModelIndexList& indexes) const {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const QModelIndex& index : indexes) {
        if (kindOf(index) != Kind::Table) continue;
        const TableName name = tableAt(index)->tableName();
        stream << name.schema << name.name;
    }
    if (bytes.isEmpty()) return nullptr;
    auto data = std::make_unique<QMimeData>();
    data->setData(QLatin1String(mimeType), bytes);
    return data.release();
}

QList<TableName> SchemaModel::tablesOf(const QMimeData& data) {
    const QByteArray bytes = data.data(QLatin1String(mimeType));
    QDataStream stream(bytes);
    QList<TableName> tables;
    while (!stream.atEnd()) {
        TableName table;
        stream >> table.schema >> table.name;
        if (stream.status() != QDataStream::Ok) return {};
        tables += table;
    }
    return tables;
}

}  // namespace orvquery
