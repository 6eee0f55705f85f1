// SPDX-License-Identifier: MIT
#include "database/PostgresqlDatabase.h"

#include "database/AddressSettings.h"
#include "database/ForeignKeyRows.h"
#include "database/PostgresqlTypes.h"
#include "database/ServerErrors.h"

#include <QRegularExpression>
#include <QSqlQuery>

namespace orvquery {

namespace {

constexpr char driver[] = "QPSQL";
constexpr int defaultPort = 5432;
constexpr int secondsToConnect = 10;

const QString& nameOfSeries() {
    static const QString name = QStringLiteral("generate_series");
    return name;
}

// Relations that somebody made: schemas whose names begin with "pg_" are the server's own. The
// partitions of a table are its inner matter.
constexpr char somebodysRelation[] =
    "c.relkind IN ('r', 'v', 'm', 'f', 'p') AND NOT c.relispartition "
    "AND n.nspname !~ '^pg_' AND n.nspname <> 'information_schema'";

// Functions that give rows whose columns are known before they are called.
constexpr char usableFunction[] =
    "p.proretset AND n.nspname !~ '^pg_' AND n.nspname <> 'information_schema' "
    "AND (t.typtype <> 'p' OR p.proargmodes && cast('{o,b,t}' AS \"char\"[]))";

// One such function of a name; the first that was made.
constexpr char functionOfName[] =
    "SELECT p.* FROM pg_catalog.pg_proc p "
    "JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace "
    "JOIN pg_catalog.pg_type t ON t.oid = p.prorettype "
    "WHERE n.nspname = ? AND p.proname = ? AND ";

// All arguments of the function p, in the order of its declaration; results have modes of their
// own.
constexpr char argumentsOfFunction[] =
    "unnest(coalesce(p.proallargtypes, cast(p.proargtypes AS oid[])), p.proargmodes, "
    "p.proargnames) WITH ORDINALITY a(type, mode, name, pos)";

QString functionStatement(const QString& rest) {
    return QStringLiteral("WITH p AS (") + QLatin1String(functionOfName) +
           QLatin1String(usableFunction) + QStringLiteral(" ORDER BY p.oid LIMIT 1) ") + rest;
}

// A domain is of the type below it.
constexpr char typeTables[] =
    "JOIN pg_catalog.pg_type t ON t.oid = x.type "
    "LEFT JOIN pg_catalog.pg_type b ON b.oid = nullif(t.typbasetype, 0) AND t.typtype = 'd'";
constexpr char typeColumns[] =
    "pg_catalog.format_type(x.type, x.typmod), coalesce(b.typname, t.typname), "
    "cast(t.typcategory AS text)";

// libpq's own way of quoting in a list of options.
QString optionValue(QString value) {
    value.replace(u'\\', QLatin1String("\\\\")).replace(u'\'', QLatin1String("\\'"));
    return u'\'' + value + u'\'';
}

// Written as the library has them; one cannot bring further options along.
bool isPlainOption(const QString& name) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z][A-Za-z0-9_]*$"));
    return plain.match(name).hasMatch();
}

// Qt takes the options apart at semicolons, within quotes as well.
QString optionsOf(const DatabaseAddress& address) {
    QStringList options;
    bool hasTimeout = false;
    for (const auto& [name, value] : address.options.queryItems(QUrl::FullyDecoded)) {
        if (!isPlainOption(name) || value.contains(u';')) refuseOption(name);
        hasTimeout = hasTimeout || name == u"connect_timeout";
        options += name + u'=' + optionValue(value);
    }
    if (!hasTimeout) options += QStringLiteral("connect_timeout=%1").arg(secondsToConnect);
    return options.join(u' ');
}

ConnectionSettings settingsFor(const DatabaseAddress& address) {
    ConnectionSettings settings = settingsOnServer(driver, address);
    settings.options = optionsOf(address);
    // The client's library would print what functions say besides.
    settings.afterOpening = {
        QStringLiteral("SET client_min_messages = error"),
        QStringLiteral("SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY")};
    settings.makeStopSwitch = postgresqlStopSwitch;
    settings.raiseWhyClosed = [address](const QSqlError& error) {
        failToOpen(error, address, defaultPort);
    };
    return settings;
}

}  // namespace

Engine postgresqlEngine() {
    return {QStringLiteral("postgresql"),
            {QStringLiteral("postgres")},
            QStringLiteral("PostgreSQL"),
            QLatin1String(driver),
            Engine::Place::Server,
            defaultPort,
            [](const DatabaseAddress& address) -> std::unique_ptr<Database> {
                return std::make_unique<PostgresqlDatabase>(address);
            }};
}

PostgresqlDatabase::PostgresqlDatabase(const DatabaseAddress& address)
    : Database(settingsFor(address), NameFolding::postgresql()), m_title(titleOnServer(address)) {
    openCatalog();
    m_searchPath = readSearchPath();
}

QString PostgresqlDatabase::title() const {
    return m_title;
}

QStringList PostgresqlDatabase::readSearchPath() const {
    QSqlQuery query =
        ask(QStringLiteral("SELECT s.name FROM unnest(current_schemas(false)) WITH ORDINALITY "
                           "s(name, pos) ORDER BY s.pos"));
    QStringList schemas;
    while (next(query)) schemas += query.value(0).toString();
    return schemas;
}

// ------------------------------------------------------------------------------------- the list

std::vector<TableEntry> PostgresqlDatabase::readEntries() const {
    std::vector<TableEntry> entries = readFunctions();
    QSqlQuery query = ask(QStringLiteral("SELECT n.nspname, c.relname, c.relkind IN ('v', 'm') "
                                         "FROM pg_catalog.pg_class c "
                                         "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
                                         "WHERE ") +
                          QLatin1String(somebodysRelation));
    while (next(query)) {
        const TableKind kind = query.value(2).toBool() ? TableKind::View : TableKind::Table;
        entries.push_back({query.value(1).toString(), kind, {}, query.value(0).toString()});
    }
    return entries;
}

// Of several functions of one name the first that was made; one with the name of a table stays
// behind that.
std::vector<TableEntry> PostgresqlDatabase::readFunctions() const {
    std::vector<TableEntry> functions;
    functions.push_back({nameOfSeries(), TableKind::Function, {"start", "stop", "step"}, {}});
    QSqlQuery query =
        ask(QStringLiteral(
                "SELECT n.nspname, p.proname, cast(p.oid AS bigint), "
                "coalesce(nullif(a.name, ''), 'arg' || a.pos), "
                "EXISTS (SELECT FROM pg_catalog.pg_depend d WHERE d.objid = p.oid "
                "AND d.classid = cast('pg_catalog.pg_proc' AS regclass) AND d.deptype = 'e') "
                "FROM pg_catalog.pg_proc p "
                "JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace "
                "JOIN pg_catalog.pg_type t ON t.oid = p.prorettype LEFT JOIN ") +
            QLatin1String(argumentsOfFunction) +
            QStringLiteral(" ON a.type IS NOT NULL AND coalesce(a.mode, 'i') IN ('i', 'b', 'v') "
                           "WHERE ") +
            QLatin1String(usableFunction) +
            QStringLiteral(" AND NOT EXISTS (SELECT FROM pg_catalog.pg_class c "
                           "WHERE c.relnamespace = n.oid AND c.relname = p.proname) "
                           "ORDER BY n.nspname, p.proname, p.oid, a.pos"));
    qlonglong lastId = 0;
    while (next(query)) {
        const TableEntry& last = functions.back();
        const QString schema = query.value(0).toString();
        const QString name = query.value(1).toString();
        const qlonglong id = query.value(2).toLongLong();
        const bool isSameName = last.schema == schema && last.name == name;
        if (isSameName && id != lastId) continue;
        lastId = id;
        if (!isSameName) {
            const bool isOfExtension = query.value(4).toBool();
            functions.push_back(
                {name, isOfExtension ? TableKind::Function : TableKind::Procedure, {}, schema});
        }
        if (!query.isNull(3)) functions.back().parameters += query.value(3).toString();
    }
    return functions;
}

// ------------------------------------------------------------------------------- one table of it

std::vector<ColumnEntry> PostgresqlDatabase::readColumns(const TableEntry& entry) const {
    if (entry.schema.isEmpty()) {
        return {{nameOfSeries(), ftLargeint, QStringLiteral("bigint")}};
    }
    const QString ofRelation =
        QStringLiteral("SELECT x.name, ") + QLatin1String(typeColumns) +
        QStringLiteral(
            ", x.isRequired, x.isKey FROM (SELECT a.attname AS name, a.atttypid AS type, "
            "a.atttypmod AS typmod, a.attnotnull AS isRequired, a.attnum AS pos, "
            "coalesce(a.attnum = ANY (i.indkey), false) AS isKey "
            "FROM pg_catalog.pg_class c "
            "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
            "JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid "
            "LEFT JOIN pg_catalog.pg_index i ON i.indrelid = c.oid AND i.indisprimary "
            "WHERE n.nspname = ? AND c.relname = ? AND a.attnum > 0 AND NOT a.attisdropped) x ") +
        QLatin1String(typeTables) + QStringLiteral(" ORDER BY x.pos");
    // A function's results are named as such, are those of a row's type, or are one value.
    const QString ofFunction = functionStatement(
        QStringLiteral("SELECT x.name, ") + QLatin1String(typeColumns) +
        QStringLiteral(", false, false FROM ("
                       "SELECT coalesce(nullif(a.name, ''), 'column' || row_number() OVER (ORDER "
                       "BY a.pos)) AS name, a.type, -1 AS typmod, a.pos FROM p, ") +
        QLatin1String(argumentsOfFunction) +
        QStringLiteral(
            " WHERE a.mode IN ('o', 'b', 't') UNION ALL "
            "SELECT a.attname, a.atttypid, a.atttypmod, a.attnum "
            "FROM p JOIN pg_catalog.pg_type r ON r.oid = p.prorettype "
            "JOIN pg_catalog.pg_attribute a ON a.attrelid = r.typrelid "
            "WHERE r.typtype = 'c' AND a.attnum > 0 AND NOT a.attisdropped UNION ALL "
            "SELECT p.proname, p.prorettype, -1, 1 "
            "FROM p JOIN pg_catalog.pg_type r ON r.oid = p.prorettype "
            "WHERE r.typtype NOT IN ('c', 'p') "
            "AND NOT coalesce(p.proargmodes && cast('{o,b,t}' AS \"char\"[]), false)) x ") +
        QLatin1String(typeTables) + QStringLiteral(" ORDER BY x.pos"));
    QSqlQuery query =
        ask(isCalled(entry.kind) ? ofFunction : ofRelation, {entry.schema, entry.name});
    std::vector<ColumnEntry> columns;
    while (next(query)) {
        columns.push_back(
            {query.value(0).toString(),
             fieldTypeOfPostgresql(query.value(2).toString(), query.value(3).toString()),
             query.value(1).toString(), query.value(5).toBool(), query.value(4).toBool()});
    }
    return columns;
}

std::vector<TParam> PostgresqlDatabase::readParameters(const TableEntry& entry) const {
    if (entry.schema.isEmpty()) {
        std::vector<TParam> parameters;
        for (const QString& name : entry.parameters) {
            parameters.push_back({name, ftLargeint, ptInput});
        }
        parameters.back().Value = 1;
        return parameters;
    }
    QSqlQuery query =
        ask(functionStatement(
                QStringLiteral("SELECT x.name, coalesce(b.typname, t.typname), "
                               "cast(t.typcategory AS text), x.value FROM ("
                               "SELECT coalesce(nullif(a.name, ''), 'arg' || a.pos) AS name, "
                               "a.type, a.pos, pg_catalog.pg_get_function_arg_default(p.oid, "
                               "cast(a.pos AS integer)) AS value FROM p, ") +
                QLatin1String(argumentsOfFunction) +
                QStringLiteral(" WHERE coalesce(a.mode, 'i') IN ('i', 'b', 'v')) x ") +
                QLatin1String(typeTables) + QStringLiteral(" ORDER BY x.pos")),
            {entry.schema, entry.name});
    std::vector<TParam> parameters;
    while (next(query)) {
        TParam parameter{
            query.value(0).toString(),
            fieldTypeOfPostgresql(query.value(1).toString(), query.value(2).toString()), ptInput};
        if (!query.isNull(3)) parameter.Value = postgresqlDefault(query.value(3).toString());
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

// Keys that refer to a partitioned table are there once more for each of its partitions.
std::vector<ForeignKey> PostgresqlDatabase::readForeignKeys() const {
    QSqlQuery query = ask(
        QStringLiteral("SELECT cast(k.oid AS bigint), n.nspname, c.relname, a.attname, "
                       "m.nspname, r.relname, b.attname "
                       "FROM pg_catalog.pg_constraint k "
                       "JOIN pg_catalog.pg_class c ON c.oid = k.conrelid "
                       "JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
                       "JOIN pg_catalog.pg_class r ON r.oid = k.confrelid "
                       "JOIN pg_catalog.pg_namespace m ON m.oid = r.relnamespace "
                       "CROSS JOIN unnest(k.conkey, k.confkey) WITH ORDINALITY p(col, ref, pos) "
                       "JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid AND a.attnum = p.col "
                       "JOIN pg_catalog.pg_attribute b ON b.attrelid = r.oid AND b.attnum = p.ref "
                       "WHERE k.contype = 'f' AND NOT c.relispartition AND NOT r.relispartition "
                       "ORDER BY k.oid, p.pos"));
    ForeignKeyRows rows;
    while (next(query)) {
        rows.add(query.value(0).toString(), {query.value(2).toString(), query.value(1).toString()},
                 query.value(3).toString(), {query.value(5).toString(), query.value(4).toString()},
                 query.value(6).toString());
    }
    return rows.keys();
}

}  // namespace orvquery
