// SPDX-License-Identifier: MIT
#include "database/MariadbDatabase.h"

#include "database/AddressSettings.h"
#include "database/ForeignKeyRows.h"
#include "database/ServerErrors.h"

#include <QHash>
#include <QSqlQuery>

namespace orvquery {

namespace {

constexpr char driver[] = "QMYSQL";
constexpr int defaultPort = 3306;

constexpr char somebodysSchema[] =
    "NOT IN ('information_schema', 'performance_schema', 'mysql', 'sys')";

// The driver's own; another one it would ignore.
const QStringList& knownOptions() {
    static const QStringList options = {QStringLiteral("SSL_KEY"),
                                        QStringLiteral("SSL_CERT"),
                                        QStringLiteral("SSL_CA"),
                                        QStringLiteral("SSL_CAPATH"),
                                        QStringLiteral("SSL_CIPHER"),
                                        QStringLiteral("MYSQL_OPT_SSL_KEY"),
                                        QStringLiteral("MYSQL_OPT_SSL_CERT"),
                                        QStringLiteral("MYSQL_OPT_SSL_CA"),
                                        QStringLiteral("MYSQL_OPT_SSL_CAPATH"),
                                        QStringLiteral("MYSQL_OPT_SSL_CIPHER"),
                                        QStringLiteral("MYSQL_OPT_SSL_CRL"),
                                        QStringLiteral("MYSQL_OPT_SSL_CRLPATH"),
                                        QStringLiteral("MYSQL_OPT_CONNECT_TIMEOUT"),
                                        QStringLiteral("MYSQL_OPT_READ_TIMEOUT"),
                                        QStringLiteral("UNIX_SOCKET")};
    return options;
}

QString optionsOf(const DatabaseAddress& address) {
    // The last of a name counts.
    const QStringList options = QStringList{QStringLiteral("MYSQL_OPT_CONNECT_TIMEOUT=10")} +
                                driverOptions(address, knownOptions());
    return options.join(u';');
}

ConnectionSettings settingsFor(const DatabaseAddress& address) {
    ConnectionSettings settings = settingsOnServer(driver, address);
    settings.options = optionsOf(address);
    settings.afterOpening = {
        QStringLiteral("SET SESSION sql_mode = CONCAT_WS(',', NULLIF(@@sql_mode, ''), "
                       "'ANSI_QUOTES', 'NO_BACKSLASH_ESCAPES')"),
        QStringLiteral("SET SESSION TRANSACTION READ ONLY"),
        // Rows wait in the server while the reader of a pipe pauses.
        QStringLiteral("SET SESSION net_write_timeout = 86400")};
    settings.makeStopSwitch = mariadbStopSwitch;
    settings.raiseWhyClosed = [address](const QSqlError& error) {
        failToOpen(error, address, defaultPort);
    };
    return settings;
}

TFieldType fieldTypeOf(const QString& type, const QString& declaration) {
    static const QHash<QString, TFieldType> types = {
        {QStringLiteral("tinyint"), ftSmallint},  {QStringLiteral("smallint"), ftSmallint},
        {QStringLiteral("mediumint"), ftInteger}, {QStringLiteral("int"), ftInteger},
        {QStringLiteral("bigint"), ftLargeint},   {QStringLiteral("bit"), ftLargeint},
        {QStringLiteral("year"), ftSmallint},     {QStringLiteral("decimal"), ftFloat},
        {QStringLiteral("float"), ftFloat},       {QStringLiteral("double"), ftFloat},
        {QStringLiteral("date"), ftDate},         {QStringLiteral("time"), ftTime},
        {QStringLiteral("datetime"), ftDateTime}, {QStringLiteral("timestamp"), ftDateTime},
        {QStringLiteral("char"), ftFixedChar},    {QStringLiteral("tinytext"), ftMemo},
        {QStringLiteral("text"), ftMemo},         {QStringLiteral("mediumtext"), ftMemo},
        {QStringLiteral("longtext"), ftMemo},     {QStringLiteral("json"), ftMemo},
        {QStringLiteral("binary"), ftBytes},      {QStringLiteral("varbinary"), ftVarBytes},
        {QStringLiteral("tinyblob"), ftBlob},     {QStringLiteral("blob"), ftBlob},
        {QStringLiteral("mediumblob"), ftBlob},   {QStringLiteral("longblob"), ftBlob},
    };
    const TFieldType known = types.value(type.toLower(), ftString);
    if (!declaration.contains(QLatin1String("unsigned"), Qt::CaseInsensitive)) return known;
    return known == ftSmallint ? ftInteger : known == ftInteger ? ftLargeint : known;
}

}  // namespace

Engine mariadbEngine() {
    return {QStringLiteral("mariadb"),
            {QStringLiteral("mysql")},
            QStringLiteral("MariaDB"),
            QLatin1String(driver),
            Engine::Place::Server,
            defaultPort,
            [](const DatabaseAddress& address) -> std::unique_ptr<Database> {
                return std::make_unique<MariadbDatabase>(address);
            }};
}

MariadbDatabase::MariadbDatabase(const DatabaseAddress& address)
    : Database(settingsFor(address), NameFolding::mariadb(true)), m_title(titleOnServer(address)) {
    openCatalog();
    QSqlQuery query = ask(QStringLiteral("SELECT DATABASE(), @@lower_case_table_names"));
    if (!query.next()) return;
    if (!query.isNull(0)) m_defaultSchemas = QStringList{query.value(0).toString()};
    // The names of tables are those of files, with the case of the server's file system.
    setFolding(NameFolding::mariadb(query.value(1).toInt() == 0));
}

QString MariadbDatabase::title() const {
    return m_title;
}

std::vector<TableEntry> MariadbDatabase::readEntries() const {
    QSqlQuery query = ask(QStringLiteral("SELECT table_schema, table_name, table_type "
                                         "FROM information_schema.tables WHERE table_schema ") +
                          QLatin1String(somebodysSchema));
    std::vector<TableEntry> entries;
    while (next(query)) {
        const QString type = query.value(2).toString();
        if (type == u"SEQUENCE") continue;
        const TableKind kind =
            type.endsWith(QLatin1String("VIEW")) ? TableKind::View : TableKind::Table;
        entries.push_back({query.value(1).toString(), kind, {}, query.value(0).toString()});
    }
    return entries;
}

// The catalog compares names ignoring their case.
std::vector<ColumnEntry> MariadbDatabase::readColumns(const TableEntry& entry) const {
    QSqlQuery query = ask(QStringLiteral("SELECT table_schema, table_name, column_name, data_type, "
                                         "column_type, column_key, is_nullable "
                                         "FROM information_schema.columns "
                                         "WHERE table_schema = ? AND table_name = ? "
                                         "ORDER BY ordinal_position"),
                          {entry.schema, entry.name});
    std::vector<ColumnEntry> columns;
    while (next(query)) {
        const TableName table(query.value(1).toString(), query.value(0).toString());
        if (table != entry.tableName()) continue;
        const QString declaration = query.value(4).toString();
        columns.push_back(
            {query.value(2).toString(), fieldTypeOf(query.value(3).toString(), declaration),
             declaration, query.value(5).toString() == u"PRI", query.value(6).toString() == u"NO"});
    }
    return columns;
}

std::vector<TParam> MariadbDatabase::readParameters(const TableEntry& /*entry*/) const {
    return {};
}

std::vector<ForeignKey> MariadbDatabase::readForeignKeys() const {
    QSqlQuery query =
        ask(QStringLiteral("SELECT constraint_name, table_schema, table_name, column_name, "
                           "referenced_table_schema, referenced_table_name, "
                           "referenced_column_name FROM information_schema.key_column_usage "
                           "WHERE referenced_table_name IS NOT NULL AND table_schema ") +
            QLatin1String(somebodysSchema) +
            QStringLiteral(" ORDER BY table_schema, table_name, constraint_name, "
                           "ordinal_position"));
    ForeignKeyRows rows;
    while (next(query)) {
        rows.add(query.value(0).toString(), {query.value(2).toString(), query.value(1).toString()},
                 query.value(3).toString(), {query.value(5).toString(), query.value(4).toString()},
                 query.value(6).toString());
    }
    return rows.keys();
}

}  // namespace orvquery
