// SPDX-License-Identifier: MIT
#include "database/Database.h"

#include "core/Text.h"
#include "database/SqlErrorText.h"
#include "names/KeptCase.h"

#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

namespace orvquery {

namespace {

// Often enough for a person to see that it goes on.
constexpr int entriesBetweenReports = 100;

// The catalog is looked at now and then; a transaction would show it as it was at the first look.
ConnectionSettings catalogSettings(ConnectionSettings settings) {
    settings.isTakenBack = false;
    return settings;
}

}  // namespace

Database::Database(ConnectionSettings settings, NameFolding folding)
    : m_settings(std::move(settings)),
      m_catalog(catalogSettings(m_settings)),
      m_folding(std::move(folding)) {}

StopCall Database::setWatch(std::shared_ptr<const CatalogWatch> watch) {
    m_watch = std::move(watch);
    return m_catalog.letStop(m_watch->isStopped);
}

QSqlQuery Database::ask(const QString& statement, const QVariantList& values) const {
    const auto run = [&](QSqlQuery& query) {
        query.setForwardOnly(true);
        bool isDone = query.prepare(statement);
        for (const QVariant& value : values) query.addBindValue(value);
        return isDone && query.exec();
    };
    if (catalog().isOpen()) {
        QSqlQuery query(catalog());
        if (run(query)) return query;
        // Whoever watches the connection may stop it, and has the old one in the hand.
        if (m_watch || !isConnectionLost(query.lastError())) failToRead(query.lastError());
    }
    m_catalog.openOrRaise();
    QSqlQuery query(catalog());
    if (!run(query)) failToRead(query.lastError());
    return query;
}

void Database::failToRead(const QSqlError& error) const {
    throw orv::Error(QStringLiteral("The tables of \"%1\" cannot be read: %2")
                         .arg(title(), sqlErrorText(error)));
}

bool Database::next(QSqlQuery& query) const {
    if (!nextUncounted(query)) return false;
    countEntry();
    return true;
}

// Behind the last row and at one that cannot be read a query says the same.
bool Database::nextUncounted(QSqlQuery& query) const {
    const bool isThere = query.next();
    requireWanted();
    if (isThere) return true;
    if (query.lastError().isValid()) failToRead(query.lastError());
    return false;
}

void Database::countEntry() const {
    requireWanted();
    if (!m_isListing || ++m_counted % entriesBetweenReports != 0) return;
    if (m_watch && m_watch->progress) m_watch->progress(m_counted);
}

void Database::requireWanted() const {
    if (m_watch && m_watch->isStopped) {
        throw orv::Error(QStringLiteral("Reading the tables of \"%1\" was stopped.").arg(title()));
    }
}

// ------------------------------------------------------------------------------------- the list

std::vector<TableEntry> Database::tables() const {
    m_unknown.clear();
    list();
    return m_entries;
}

void Database::list() const {
    const QScopedValueRollback<bool> listing(m_isListing, true);
    m_counted = 0;
    m_entries = readEntries();
    sortByName(m_entries);
    m_byName.clear();
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        m_byName.insert(m_entries[index].name.toCaseFolded(), index);
    }
    m_isListed = true;
}

std::vector<ForeignKey> Database::foreignKeys() const {
    std::vector<ForeignKey> keys = readForeignKeys();
    std::sort(keys.begin(), keys.end(), [](const ForeignKey& left, const ForeignKey& right) {
        const auto order = [](const ForeignKey& key) {
            return std::tie(key.table.schema, key.table.name, key.columns, key.referenced.schema,
                            key.referenced.name, key.referencedColumns);
        };
        return order(left) < order(right);
    });
    return keys;
}

bool Database::isDefaultSchema(const QString& schema) const {
    return schema.isEmpty() || defaultSchemas().contains(schema);
}

// A name without a schema means the table in the first schema that has one.
const TableEntry* Database::listed(const QString& nameInStatement) const {
    const QList<NamePart> parts = nameParts(nameInStatement);
    if (parts.size() > 2) return nullptr;
    const NamePart& name = parts.back();
    const QStringList schemas = defaultSchemas();
    const TableEntry* found = nullptr;
    qsizetype foundAt = schemas.size();
    const auto places = m_byName.equal_range(name.text.toCaseFolded());
    for (auto place = places.first; place != places.second; ++place) {
        const TableEntry& entry = m_entries[*place];
        if (!m_folding.isMeant(name, entry.name, NameFolding::Of::Table)) continue;
        if (parts.size() == 1) {
            const qsizetype at = entry.schema.isEmpty() ? -1 : schemas.indexOf(entry.schema);
            if (!entry.schema.isEmpty() && (at < 0 || at >= foundAt)) continue;
            found = &entry;
            foundAt = at;
            continue;
        }
        const QStringList own = entry.schema.isEmpty() ? schemas : QStringList{entry.schema};
        for (const QString& schema : own) {
            if (m_folding.isMeant(parts.front(), schema, NameFolding::Of::Table)) return &entry;
        }
    }
    return found;
}

const TableEntry* Database::listed(const TableName& name) const {
    const auto places = m_byName.equal_range(name.name.toCaseFolded());
    const TableEntry* found = nullptr;
    for (auto place = places.first; place != places.second; ++place) {
        const TableEntry& entry = m_entries[*place];
        if (entry.tableName() == name) return &entry;
        // Whoever asks without a schema means one of those that need none.
        const bool isSame = m_folding.isSameName(entry.name, name.name, NameFolding::Of::Table);
        if (isSame && name.schema.isEmpty() && isDefaultSchema(entry.schema)) found = &entry;
    }
    return found;
}

// ------------------------------------------------------------------------------- one table of it

// What is not in the list may have come since. Asking each time would read a large list for every
// name of a WITH clause and every slip of the pen, again and again.
std::optional<TableDescription> Database::find(const QString& nameInStatement) const {
    const bool wasListed = m_isListed;
    if (!wasListed) list();
    const TableEntry* entry = listed(nameInStatement);
    if (entry == nullptr && wasListed && !m_unknown.contains(nameInStatement)) {
        list();
        entry = listed(nameInStatement);
    }
    if (entry == nullptr) m_unknown.insert(nameInStatement);
    return described(entry);
}

std::optional<TableDescription> Database::describe(const TableName& name) const {
    if (!m_isListed) list();
    return described(listed(name));
}

std::optional<TableDescription> Database::described(const TableEntry* entry) const {
    if (entry == nullptr) return std::nullopt;
    TableDescription table;
    table.name = writtenName(*entry);
    table.alias = aliasOf(*entry);
    table.source = entry->tableName();
    table.entries = readColumns(*entry);
    if (table.entries.empty()) return std::nullopt;
    for (const ColumnEntry& column : table.entries) {
        table.columns.FieldDefs.push_back({m_folding.handedOver(column.name), column.fieldType});
    }
    if (!isCalled(entry->kind)) return table;
    TParams parameters(readParameters(*entry));
    if (parameters.Items.empty() && !takesEmptyBrackets()) return table;
    table.parameters = std::move(parameters);
    for (TParam& parameter : table.parameters->Items) {
        parameter.Name = m_folding.handedOver(parameter.Name);
    }
    return table;
}

QString Database::forLoading(const QString& statement) const {
    if (!m_folding.keepsCaseOfTables()) return statement;
    if (!m_isListed) list();
    return orvquery::forLoading(statement, m_folding, m_entries);
}

QString forLoading(const QString& statement, const NameFolding& folding,
                   const std::vector<TableEntry>& entries) {
    if (!folding.keepsCaseOfTables()) return statement;
    QSet<QString> tables;
    QSet<QString> schemas;
    for (const TableEntry& entry : entries) {
        tables += entry.name;
        schemas += entry.schema;
    }
    return withNamesInQuotes(statement, tables, schemas);
}

// One of the same name in an earlier schema would be found in its place.
bool Database::isFoundByNameAlone(const TableEntry& entry) const {
    const QStringList schemas = defaultSchemas();
    const auto places = m_byName.equal_range(entry.name.toCaseFolded());
    return isDefaultSchema(entry.schema) &&
           std::none_of(places.first, places.second, [&](std::size_t index) {
               const TableEntry& other = m_entries[index];
               const qsizetype at = schemas.indexOf(other.schema);
               return at >= 0 && at < schemas.indexOf(entry.schema) &&
                      m_folding.isSameName(other.name, entry.name, NameFolding::Of::Table);
           });
}

QString Database::inStatement(const TableName& name) const {
    return orvquery::inStatement(name, m_folding, defaultSchemas());
}

QString inStatement(const TableName& name, const NameFolding& folding,
                    const QStringList& defaultSchemas) {
    QString table = folding.inStatement(name.name, NameFolding::Of::Table);
    if (name.schema.isEmpty() || defaultSchemas.contains(name.schema)) return table;
    return folding.inStatement(name.schema, NameFolding::Of::Table) + u'.' + table;
}

// With a schema in front it is a name of two parts, which the control takes as it stands.
QString Database::writtenName(const TableEntry& entry) const {
    if (isFoundByNameAlone(entry)) {
        return m_folding.handedOver(entry.name, NameFolding::Of::Table);
    }
    return orv::quotedName(entry.schema) + u'.' + orv::quotedName(entry.name);
}

// Conditions that a person types call a table by its name without quotes where that is possible.
// Behind a schema it needs an alias in any case: fields are written with one name in front.
QString Database::aliasOf(const TableEntry& entry) const {
    const bool isAlone = isFoundByNameAlone(entry);
    if (isAlone && !m_folding.keepsCaseOfTables()) return {};
    const QString alias = m_folding.plainAlias(entry.name);
    return isAlone || !alias.isEmpty() ? alias : QStringLiteral("T");
}

}  // namespace orvquery
