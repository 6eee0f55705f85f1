// SPDX-License-Identifier: MIT
#include "database/SqliteDatabase.h"

#include "core/Error.h"
#include "database/ColumnTypes.h"
#include "database/SqlErrorText.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>

#include <algorithm>

namespace orvquery {

namespace {

constexpr char fileHeader[] = "SQLite format 3";

// Another program's write is over within moments, or lasts: then it is said rather than waited for.
constexpr char readOnlyOptions[] = "QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=1000";

[[noreturn]] void failWith(const QString& path, const QString& what) {
    throw orv::Error(QStringLiteral("The database file \"%1\" %2.").arg(path, what));
}

// SQLite itself would create a missing file, take an empty one for a database, block on a pipe and
// call most other trouble "unable to open database file".
void requireDatabaseFile(const QString& path) {
    if (path.isEmpty()) throw orv::Error(QStringLiteral("The name of the database file is empty."));
    const QFileInfo info(path);
    if (!info.exists()) failWith(path, QStringLiteral("does not exist"));
    if (info.isDir()) failWith(path, QStringLiteral("is a folder"));
    if (!info.isFile()) failWith(path, QStringLiteral("is not a regular file"));
    QFile file(path);
    if (!info.isReadable()) failWith(path, QStringLiteral("cannot be read: permission denied"));
    if (!file.open(QIODevice::ReadOnly)) {
        failWith(path, QStringLiteral("cannot be read: ") + file.errorString());
    }
    if (file.size() == 0) failWith(path, QStringLiteral("is empty"));
    const QByteArray expected(fileHeader, sizeof fileHeader);
    if (file.read(expected.size()) != expected) {
        failWith(path, QStringLiteral("is not an SQLite database"));
    }
}

ConnectionSettings settingsFor(const QString& path) {
    requireDatabaseFile(path);
    return {QStringLiteral("QSQLITE"), QFileInfo(path).absoluteFilePath(),
            QLatin1String(readOnlyOptions)};
}

// "main" is the only schema of a file that is opened alone.
QString tableNameIn(const QString& nameInStatement) {
    const QStringList parts = nameParts(nameInStatement);
    if (parts.size() == 1) return parts.front();
    if (parts.size() == 2 && parts.front().compare(u"main", Qt::CaseInsensitive) == 0) {
        return parts.back();
    }
    return {};
}

}  // namespace

SqliteDatabase::SqliteDatabase(const QString& path)
    : m_path(path), m_settings(settingsFor(path)), m_connection(m_settings) {
    const QSqlError error = m_connection.open();
    if (error.isValid()) fail(error);
    requireReadable();
}

QString SqliteDatabase::title() const {
    return QFileInfo(m_path).fileName();
}

QStringList SqliteDatabase::reservedWords() const {
    return m_folding.reservedWords();
}

// Opening does not touch the file yet; the first look into it does.
void SqliteDatabase::requireReadable() const {
    QSqlQuery query(m_connection.database());
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) fail(query.lastError());
}

std::vector<TableEntry> SqliteDatabase::tables() const {
    QSqlQuery query(m_connection.database());
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
    sortByName(entries);
    return entries;
}

std::optional<TableDescription> SqliteDatabase::find(const QString& nameInStatement) const {
    return describe(tableNameIn(nameInStatement));
}

std::optional<TableDescription> SqliteDatabase::describe(const QString& name) const {
    const std::vector<TableEntry> entries = tables();
    const auto entry = std::find_if(
        entries.begin(), entries.end(),
        [&](const TableEntry& candidate) { return m_folding.isSameName(candidate.name, name); });
    if (entry == entries.end()) return std::nullopt;
    return TableDescription{m_folding.handedOver(entry->name), columnsOf(entry->name),
                            std::nullopt};
}

TDataSet SqliteDatabase::columnsOf(const QString& table) const {
    QSqlQuery query(m_connection.database());
    query.setForwardOnly(true);
    // Hidden is 1 for the internal columns of virtual tables; generated columns have 2 and 3.
    query.prepare(
        QStringLiteral("SELECT name, type FROM pragma_table_xinfo(?) "
                       "WHERE hidden <> 1 ORDER BY cid"));
    query.addBindValue(table);
    if (!query.exec()) {
        throw orv::Error(QStringLiteral("The columns of \"%1\" cannot be read: %2")
                             .arg(table, sqlErrorText(query.lastError())));
    }
    TDataSet columns;
    while (query.next()) {
        columns.FieldDefs.push_back({m_folding.handedOver(query.value(0).toString()),
                                     fieldTypeOfDeclaration(query.value(1).toString())});
    }
    return columns;
}

void SqliteDatabase::fail(const QSqlError& error) const {
    switch (sqliteErrorCode(error)) {
    case SqliteError::Busy: failWith(m_path, QStringLiteral("is locked by another program"));
    case SqliteError::NotADatabase: failWith(m_path, QStringLiteral("is not an SQLite database"));
    case SqliteError::Corrupt: failWith(m_path, QStringLiteral("is damaged"));
    case SqliteError::Other: break;
    }
    failWith(m_path, QStringLiteral("cannot be read: ") + sqlErrorText(error));
}

}  // namespace orvquery
