// SPDX-License-Identifier: MIT
#include "database/SqliteDatabase.h"

#include "core/Error.h"
#include "database/AddressSettings.h"
#include "database/ColumnTypes.h"
#include "database/DatabaseFile.h"
#include "database/ForeignKeyRows.h"
#include "database/SqlErrorText.h"
#include "database/SqliteFunctions.h"

#include <QFileInfo>
#include <QSqlQuery>

#include <algorithm>

namespace orvquery {

namespace {

constexpr char fileHeader[] = "SQLite format 3";

// Another program's write is over within moments, or lasts: then it is said rather than waited for.
constexpr char readOnlyOptions[] = "QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=1000";

// SQLite itself would create a missing file, take an empty one for a database, block on a pipe and
// call most other trouble "unable to open database file".
void requireDatabaseFile(const QString& path) {
    const QByteArray expected(fileHeader, sizeof fileHeader);
    if (beginningOfFile(path, expected.size()) != expected) {
        failWithFile(path, QStringLiteral("is not an SQLite database"));
    }
}

[[noreturn]] void failToReadFile(const QString& path, const QSqlError& error) {
    switch (sqliteErrorCode(error)) {
    case SqliteError::Busy: failWithFile(path, QStringLiteral("is locked by another program"));
    case SqliteError::NotADatabase: failWithFile(path, QStringLiteral("is not an SQLite database"));
    case SqliteError::Corrupt: failWithFile(path, QStringLiteral("is damaged"));
    case SqliteError::Other: break;
    }
    failWithFile(path, QStringLiteral("cannot be read: ") + sqlErrorText(error));
}

ConnectionSettings settingsFor(const QString& path) {
    requireDatabaseFile(path);
    ConnectionSettings settings;
    settings.driver = QStringLiteral("QSQLITE");
    settings.databaseName = QFileInfo(path).absoluteFilePath();
    settings.options = QLatin1String(readOnlyOptions);
    settings.makeStopSwitch = sqliteStopSwitch;
    settings.raiseWhyClosed = [path](const QSqlError& error) {
        requireDatabaseFile(path);
        failToReadFile(path, error);
    };
    return settings;
}

}  // namespace

Engine sqliteEngine() {
    return {QStringLiteral("sqlite"),
            {QStringLiteral("file")},
            QStringLiteral("SQLite"),
            QStringLiteral("QSQLITE"),
            Engine::Place::File,
            -1,
            [](const DatabaseAddress& address) -> std::unique_ptr<Database> {
                (void)driverOptions(address, {});
                return std::make_unique<SqliteDatabase>(address.database);
            }};
}

SqliteDatabase::SqliteDatabase(const QString& path)
    : Database(settingsFor(path), NameFolding::sqlite()), m_path(path) {
    openCatalog();
    requireReadable();
    m_functions = sqliteFunctions(catalog());
}

QString SqliteDatabase::title() const {
    return QFileInfo(m_path).fileName();
}

// Opening does not touch the file yet; the first look into it does.
void SqliteDatabase::requireReadable() const {
    QSqlQuery query(catalog());
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) fail(query.lastError());
}

std::vector<TableEntry> SqliteDatabase::readEntries() const {
    QSqlQuery query(catalog());
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT name, type FROM sqlite_master "
                                   "WHERE type IN ('table', 'view') "
                                   "AND substr(name, 1, 7) <> 'sqlite_'"))) {
        fail(query.lastError());
    }
    std::vector<TableEntry> entries;
    while (next(query)) {
        const bool isView = query.value(1).toString() == QLatin1String("view");
        entries.push_back({query.value(0).toString(), isView ? TableKind::View : TableKind::Table});
    }
    // A table of the same name is found first, by SQLite and here.
    const auto isHidden = [&](const TableEntry& function) {
        return std::any_of(entries.begin(), entries.end(), [&](const TableEntry& entry) {
            return folding().isSameName(entry.name, function.name, NameFolding::Of::Table);
        });
    };
    std::vector<TableEntry> functions;
    std::remove_copy_if(m_functions.begin(), m_functions.end(), std::back_inserter(functions),
                        isHidden);
    entries.insert(entries.end(), functions.begin(), functions.end());
    return entries;
}

std::vector<ColumnEntry> SqliteDatabase::readColumns(const TableEntry& entry) const {
    QSqlQuery query(catalog());
    query.setForwardOnly(true);
    // Hidden is 1 for the internal columns of virtual tables and the parameters of functions;
    // generated columns have 2 and 3.
    query.prepare(
        QStringLiteral("SELECT name, type, pk, \"notnull\" FROM pragma_table_xinfo(?) "
                       "WHERE hidden <> 1 ORDER BY cid"));
    query.addBindValue(entry.name);
    if (!query.exec()) {
        throw orv::Error(QStringLiteral("The columns of \"%1\" cannot be read: %2")
                             .arg(entry.name, sqlErrorText(query.lastError())));
    }
    std::vector<ColumnEntry> columns;
    while (next(query)) {
        const QString type = query.value(1).toString();
        columns.push_back({query.value(0).toString(), fieldTypeOfDeclaration(type), type,
                           query.value(2).toInt() > 0, query.value(3).toBool()});
    }
    return columns;
}

// A key that names no columns refers to the primary key; its columns are in the order of the key.
std::vector<ForeignKey> SqliteDatabase::readForeignKeys() const {
    QSqlQuery query = ask(QStringLiteral(
        "SELECT t.name, k.id, k.\"table\", k.\"from\", "
        "coalesce(k.\"to\", (SELECT p.name FROM pragma_table_xinfo(k.\"table\") p "
        "WHERE p.pk = k.seq + 1)) "
        "FROM sqlite_master t, pragma_foreign_key_list(t.name) k WHERE t.type = 'table' "
        "ORDER BY t.name, k.id, k.seq"));
    ForeignKeyRows rows;
    while (next(query)) {
        rows.add(query.value(1).toString(), query.value(0).toString(), query.value(3).toString(),
                 query.value(2).toString(), query.value(4).toString());
    }
    return rows.keys();
}

std::vector<TParam> SqliteDatabase::readParameters(const TableEntry& entry) const {
    return sqliteFunctionParameters(entry);
}

void SqliteDatabase::fail(const QSqlError& error) const {
    failToReadFile(m_path, error);
}

}  // namespace orvquery
