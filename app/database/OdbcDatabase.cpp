// SPDX-License-Identifier: MIT
#include "database/OdbcDatabase.h"

#include "core/Error.h"
#include "database/AddressSettings.h"
#include "database/SqlErrorText.h"

#include <QSqlField>
#include <QSqlIndex>
#include <QSqlRecord>

namespace orvquery {

namespace {

constexpr char driver[] = "QODBC";

// "odbc://name", "odbc:///name", or "odbc:///?Driver=...;Database=..." without a name. What follows
// a name is for its driver.
QString sourceOf(const DatabaseAddress& address) {
    QStringList parts;
    const QString name = address.host.isEmpty() ? nameOnServer(address) : address.host;
    if (!name.isEmpty()) parts += name;
    for (const auto& [key, value] : address.options.queryItems(QUrl::FullyDecoded)) {
        parts += key + u'=' + value;
    }
    return parts.join(u';');
}

QString missingPartOf(const DatabaseAddress& address) {
    return sourceOf(address).isEmpty() ? QStringLiteral("The address names no data source.")
                                       : QString();
}

QString titleOf(const DatabaseAddress& address) {
    const QString name = address.host.isEmpty() ? nameOnServer(address) : address.host;
    return name.isEmpty() ? QStringLiteral("ODBC") : name;
}

TFieldType fieldTypeOf(int type) {
    switch (type) {
    case QMetaType::Bool: return ftBoolean;
    case QMetaType::Short:
    case QMetaType::UShort: return ftSmallint;
    case QMetaType::Int:
    case QMetaType::UInt: return ftInteger;
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return ftLargeint;
    case QMetaType::Float:
    case QMetaType::Double: return ftFloat;
    case QMetaType::QDate: return ftDate;
    case QMetaType::QTime: return ftTime;
    case QMetaType::QDateTime: return ftDateTime;
    case QMetaType::QByteArray: return ftBlob;
    default: return ftString;
    }
}

std::vector<TableEntry> entriesOf(const QSqlDatabase& database) {
    std::vector<TableEntry> entries;
    for (const QString& name : database.tables(QSql::Tables)) entries.push_back({name});
    for (const QString& name : database.tables(QSql::Views)) {
        entries.push_back({name, TableKind::View});
    }
    return entries;
}

[[noreturn]] void failToOpenSource(const QSqlError& error, const QString& title) {
    // The classes of SQLSTATE are the same for all drivers.
    if (error.nativeErrorCode().startsWith(QLatin1String("28")) ||
        error.databaseText().contains(QLatin1String("28000"))) {
        throw LoginError(
            QStringLiteral("The data source \"%1\" refuses this user and password.").arg(title));
    }
    throw orv::Error(QStringLiteral("The data source \"%1\" cannot be opened: %2")
                         .arg(title, sqlErrorText(error)));
}

ConnectionSettings settingsFor(const DatabaseAddress& address) {
    ConnectionSettings settings;
    settings.driver = QLatin1String(driver);
    settings.databaseName = sourceOf(address);
    settings.options =
        QStringLiteral("SQL_ATTR_ACCESS_MODE=SQL_MODE_READ_ONLY;SQL_ATTR_LOGIN_TIMEOUT=10");
    settings.user = address.user;
    settings.password = address.password;
    // Not every driver heeds the access mode.
    settings.isTakenBack = true;
    settings.raiseWhyClosed = [title = titleOf(address)](const QSqlError& error) {
        failToOpenSource(error, title);
    };
    return settings;
}

}  // namespace

Engine odbcEngine() {
    return {QStringLiteral("odbc"),
            {},
            QStringLiteral("ODBC"),
            QLatin1String(driver),
            Engine::Place::DataSource,
            -1,
            [](const DatabaseAddress& address) -> std::unique_ptr<Database> {
                return std::make_unique<OdbcDatabase>(address);
            },
            missingPartOf};
}

OdbcDatabase::OdbcDatabase(const DatabaseAddress& address)
    : Database(settingsFor(address), NameFolding::odbc()), m_title(titleOf(address)) {
    const QString missing = missingPartOf(address);
    if (!missing.isEmpty()) throw orv::Error(missing);
    openCatalog();
}

QString OdbcDatabase::title() const {
    return m_title;
}

std::vector<TableEntry> OdbcDatabase::readEntries() const {
    std::vector<TableEntry> entries = entriesOf(catalog());
    if (!entries.empty()) return entries;
    // The driver is silent about connections that are lost.
    Connection connection(settings());
    connection.openOrRaise();
    return entriesOf(connection.database());
}

std::vector<ColumnEntry> OdbcDatabase::readColumns(const TableEntry& entry) const {
    QSqlRecord record = catalog().record(entry.name);
    QSqlIndex key = catalog().primaryIndex(entry.name);
    if (record.isEmpty()) {
        Connection connection(settings());
        connection.openOrRaise();
        record = connection.database().record(entry.name);
        key = connection.database().primaryIndex(entry.name);
    }
    std::vector<ColumnEntry> columns;
    for (int index = 0; index < record.count(); ++index) {
        const QSqlField field = record.field(index);
        columns.push_back({field.name(),
                           fieldTypeOf(field.metaType().id()),
                           {},
                           key.contains(field.name()),
                           field.requiredStatus() == QSqlField::Required});
    }
    return columns;
}

std::vector<TParam> OdbcDatabase::readParameters(const TableEntry& /*entry*/) const {
    return {};
}

std::vector<ForeignKey> OdbcDatabase::readForeignKeys() const {
    return {};
}

}  // namespace orvquery
