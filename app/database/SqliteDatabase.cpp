// SPDX-License-Identifier: MIT
#include "database/SqliteDatabase.h"

#include "core/Error.h"
#include "database/ColumnTypes.h"
#include "database/DatabaseFile.h"
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

ConnectionSettings settingsFor(const QString& path) {
    requireDatabaseFile(path);
    ConnectionSettings settings;
    settings.driver = QStringLiteral("QSQLITE");
    settings.databaseName = QFileInfo(path).absoluteFilePath();
    settings.options = QLatin1String(readOnlyOptions);
    settings.makeStopSwitch = sqliteStopSwitch;
    return settings;
}

}  // namespace

SqliteDatabase::SqliteDatabase(const QString& path)
    : Database(settingsFor(path), NameFolding::sqlite()), m_path(path) {
    const QSqlError error = openCatalog();
    if (error.isValid()) fail(error);
    requireReadable();
    m_functions = sqliteFunctions(catalog());
}

QString SqliteDatabase::title() const {
    return QFileInfo(m_path).fileName();
}

// "main" is the only schema of a file that is opened alone.
bool SqliteDatabase::isDefaultSchema(const QString& schema) const {
    return schema.compare(u"main", Qt::CaseInsensitive) == 0;
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
    while (query.next()) {
        const bool isView = query.value(1).toString() == QLatin1String("view");
        entries.push_back({query.value(0).toString(), isView ? TableKind::View : TableKind::Table});
    }
    // A table of the same name is found first, by SQLite and here.
    const auto isHidden = [&](const TableEntry& function) {
        return std::any_of(entries.begin(), entries.end(), [&](const TableEntry& entry) {
            return folding().isSameName(entry.name, function.name);
        });
    };
    std::vector<TableEntry> functions;
    std::remove_copy_if(m_functions.begin(), m_functions.end(), std::back_inserter(functions),
                        isHidden);
    entries.insert(entries.end(), functions.begin(), functions.end());
    return entries;
}

TFieldDefs SqliteDatabase::readColumns(const TableEntry& entry) const {
    QSqlQuery query(catalog());
    query.setForwardOnly(true);
    // Hidden is 1 for the internal columns of virtual tables and the parameters of functions;
    // generated columns have 2 and 3.
    query.prepare(
        QStringLiteral("SELECT name, type FROM pragma_table_xinfo(?) "
                       "WHERE hidden <> 1 ORDER BY cid"));
    query.addBindValue(entry.name);
    if (!query.exec()) {
        throw orv::Error(QStringLiteral("The columns of \"%1\" cannot be read: %2")
                             .arg(entry.name, sqlErrorText(query.lastError())));
    }
    TFieldDefs columns;
    while (query.next()) {
        columns.push_back(
            {query.value(0).toString(), fieldTypeOfDeclaration(query.value(1).toString())});
    }
    return columns;
}

std::vector<TParam> SqliteDatabase::readParameters(const TableEntry& entry) const {
    return sqliteFunctionParameters(entry);
}

void SqliteDatabase::fail(const QSqlError& error) const {
    switch (sqliteErrorCode(error)) {
    case SqliteError::Busy: failWithFile(m_path, QStringLiteral("is locked by another program"));
    case SqliteError::NotADatabase:
        failWithFile(m_path, QStringLiteral("is not an SQLite database"));
    case SqliteError::Corrupt: failWithFile(m_path, QStringLiteral("is damaged"));
    case SqliteError::Other: break;
    }
    failWithFile(m_path, QStringLiteral("cannot be read: ") + sqlErrorText(error));
}

}  // namespace orvquery
