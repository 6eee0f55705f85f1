// SPDX-License-Identifier: MIT
#include "database/FirebirdDatabase.h"

#include "core/Error.h"
#include "database/AddressSettings.h"
#include "database/DatabaseFile.h"
#include "database/FirebirdTypes.h"
#include "database/ForeignKeyRows.h"
#include "database/ServerErrors.h"
#include "database/SqlErrorText.h"

#include <QFileInfo>
#include <QHash>
#include <QSqlQuery>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace orvquery {

namespace {

constexpr char driver[] = "QIBASE";
constexpr int defaultPort = 3050;

// An engine within the program asks for no password; of itself it knows this one person.
constexpr char embeddedUser[] = "SYSDBA";

QString filePath(const DatabaseAddress& address) {
    QString path = address.database;
#ifdef Q_OS_WIN
    // firebird:///C:/data.fdb
    if (path.startsWith(u'/') && path.mid(2, 1) == u":") path.remove(0, 1);
#endif
    return path;
}

void requireDatabaseFile(const QString& path) {
    const QByteArray bytes = beginningOfFile(path, FirebirdDatabase::beginningSize);
    if (!FirebirdDatabase::isBeginning(bytes)) {
        failWithFile(path, QStringLiteral("is not a Firebird database"));
    }
    if (!QFileInfo(path).isWritable()) {
        failWithFile(path, QStringLiteral("cannot be opened: Firebird needs the permission to "
                                          "write it, also to read"));
    }
}

ConnectionSettings settingsFor(const DatabaseAddress& address) {
    // The texts come as the program reads them in any case.
    const QStringList options = driverOptions(address, {QStringLiteral("ISC_DPB_SQL_ROLE_NAME")}) +
                                QStringList{QStringLiteral("ISC_DPB_LC_CTYPE=UTF8")};
    ConnectionSettings settings = settingsOnServer(driver, address);
    settings.databaseName = filePath(address);
    settings.options = options.join(u';');
    // A procedure that gives rows may write as well.
    settings.isTakenBack = true;
    settings.makeStopSwitch = firebirdStopSwitch;
    settings.raiseWhyClosed = [address](const QSqlError& error) {
        if (!address.host.isEmpty()) failToOpen(error, address, defaultPort);
        const QString path = filePath(address);
        requireDatabaseFile(path);
        throw orv::Error(QStringLiteral("The database \"%1\" cannot be opened: %2")
                             .arg(QFileInfo(path).fileName(), sqlErrorText(error)));
    };
    if (settings.host.isEmpty()) {
        requireDatabaseFile(settings.databaseName);
        settings.databaseName = QFileInfo(settings.databaseName).absoluteFilePath();
        if (settings.user.isEmpty()) settings.user = QLatin1String(embeddedUser);
    }
    return settings;
}

#ifdef Q_OS_UNIX
// The engine takes over the signals that end a program, which would then have to be killed.
class KeptSignals {
public:
    KeptSignals() {
        sigaction(SIGINT, nullptr, &m_interrupt);
        sigaction(SIGTERM, nullptr, &m_terminate);
    }
    ~KeptSignals() {
        sigaction(SIGINT, &m_interrupt, nullptr);
        sigaction(SIGTERM, &m_terminate, nullptr);
    }
    KeptSignals(const KeptSignals&) = delete;
    KeptSignals& operator=(const KeptSignals&) = delete;

private:
    struct sigaction m_interrupt = {};
    struct sigaction m_terminate = {};
};
#endif

// The catalog fills names up with blanks.
QString nameOf(const QVariant& value) {
    QString name = value.toString();
    while (name.endsWith(u' ')) name.chop(1);
    return name;
}

// Other servers make a name of the user's; the client's library takes one from its surroundings.
QString missingPartOf(const DatabaseAddress& address) {
    if (address.database.isEmpty()) {
        return QStringLiteral(
            "The database is not named yet: by its alias or its path on the server.");
    }
    if (address.user.isEmpty() && !qEnvironmentVariableIsSet("ISC_USER")) {
        return QStringLiteral("The user is not named yet: Firebird's servers ask for one.");
    }
    return {};
}

}  // namespace

Engine firebirdEngine() {
    return {QStringLiteral("firebird"),
            {},
            QStringLiteral("Firebird"),
            QLatin1String(driver),
            Engine::Place::FileOrServer,
            defaultPort,
            [](const DatabaseAddress& address) -> std::unique_ptr<Database> {
                return std::make_unique<FirebirdDatabase>(address);
            },
            missingPartOf};
}

FirebirdDatabase::FirebirdDatabase(const DatabaseAddress& address)
    : Database(settingsFor(address), NameFolding::firebird()) {
#ifdef Q_OS_UNIX
    const KeptSignals signals;
#endif
    openCatalog();
}

// A header page is of type 1, has no flags and tells its size, a power of two, at byte 16; the
// version of the layout behind it has its highest bit set (Firebird's ods.h).
bool FirebirdDatabase::isBeginning(const QByteArray& bytes) {
    if (bytes.size() < beginningSize || bytes[0] != 1) return false;
    const auto byte = [&](qsizetype index) { return unsigned(quint8(bytes[index])); };
    const unsigned pageSize = byte(16) | (byte(17) << 8);
    const bool isPageSize = pageSize >= 1024 && (pageSize & (pageSize - 1)) == 0;
    return isPageSize && (byte(19) & 0x80) != 0;
}

QString FirebirdDatabase::title() const {
    return QFileInfo(settings().databaseName).fileName();
}

// The procedures of packages, and those that give no rows, are not for a FROM clause.
std::vector<TableEntry> FirebirdDatabase::readEntries() const {
    std::vector<TableEntry> entries;
    QSqlQuery relations =
        ask(QStringLiteral("SELECT RDB$RELATION_NAME, IIF(RDB$VIEW_BLR IS NULL, 0, 1) "
                           "FROM RDB$RELATIONS WHERE COALESCE(RDB$SYSTEM_FLAG, 0) = 0"));
    while (next(relations)) {
        entries.push_back({nameOf(relations.value(0)),
                           relations.value(1).toInt() == 1 ? TableKind::View : TableKind::Table});
    }
    const QHash<QString, QStringList> parameters = inputNames();
    QSqlQuery procedures =
        ask(QStringLiteral("SELECT RDB$PROCEDURE_NAME FROM RDB$PROCEDURES "
                           "WHERE RDB$PROCEDURE_TYPE = 1 AND RDB$PACKAGE_NAME IS NULL "
                           "AND COALESCE(RDB$SYSTEM_FLAG, 0) = 0"));
    while (next(procedures)) {
        const QString name = nameOf(procedures.value(0));
        entries.push_back({name, TableKind::Procedure, parameters.value(name)});
    }
    return entries;
}

QHash<QString, QStringList> FirebirdDatabase::inputNames() const {
    QHash<QString, QStringList> names;
    QSqlQuery query =
        ask(QStringLiteral("SELECT RDB$PROCEDURE_NAME, RDB$PARAMETER_NAME "
                           "FROM RDB$PROCEDURE_PARAMETERS "
                           "WHERE RDB$PARAMETER_TYPE = 0 AND RDB$PACKAGE_NAME IS NULL "
                           "ORDER BY RDB$PROCEDURE_NAME, RDB$PARAMETER_NUMBER"));
    while (nextUncounted(query)) names[nameOf(query.value(0))] += nameOf(query.value(1));
    return names;
}

std::vector<ColumnEntry> FirebirdDatabase::readColumns(const TableEntry& entry) const {
    const QString ofTable = QStringLiteral(
        "SELECT C.RDB$FIELD_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, F.RDB$FIELD_SCALE, "
        "COALESCE(C.RDB$NULL_FLAG, F.RDB$NULL_FLAG, 0), F.RDB$FIELD_PRECISION, "
        "F.RDB$CHARACTER_LENGTH, "
        "(SELECT COUNT(*) FROM RDB$RELATION_CONSTRAINTS K "
        "JOIN RDB$INDEX_SEGMENTS S ON S.RDB$INDEX_NAME = K.RDB$INDEX_NAME "
        "WHERE K.RDB$CONSTRAINT_TYPE = 'PRIMARY KEY' "
        "AND K.RDB$RELATION_NAME = C.RDB$RELATION_NAME AND S.RDB$FIELD_NAME = C.RDB$FIELD_NAME) "
        "FROM RDB$RELATION_FIELDS C JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = C.RDB$FIELD_SOURCE "
        "WHERE C.RDB$RELATION_NAME = ? ORDER BY C.RDB$FIELD_POSITION");
    const QString ofProcedure = QStringLiteral(
        "SELECT P.RDB$PARAMETER_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, F.RDB$FIELD_SCALE, "
        "COALESCE(P.RDB$NULL_FLAG, F.RDB$NULL_FLAG, 0), F.RDB$FIELD_PRECISION, "
        "F.RDB$CHARACTER_LENGTH, 0 "
        "FROM RDB$PROCEDURE_PARAMETERS P "
        "JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = P.RDB$FIELD_SOURCE "
        "WHERE P.RDB$PROCEDURE_NAME = ? AND P.RDB$PARAMETER_TYPE = 1 "
        "AND P.RDB$PACKAGE_NAME IS NULL ORDER BY P.RDB$PARAMETER_NUMBER");
    QSqlQuery query = ask(isCalled(entry.kind) ? ofProcedure : ofTable, {entry.name});
    std::vector<ColumnEntry> columns;
    while (next(query)) {
        const FirebirdField field = {query.value(1).toInt(), query.value(2).toInt(),
                                     query.value(3).toInt(), query.value(5).toInt(),
                                     query.value(6).toInt()};
        columns.push_back(
            {nameOf(query.value(0)), fieldTypeOfFirebird(field.type, field.subType, field.scale),
             firebirdDeclaration(field), query.value(7).toInt() > 0, query.value(4).toInt() != 0});
    }
    return columns;
}

std::vector<ForeignKey> FirebirdDatabase::readForeignKeys() const {
    QSqlQuery query = ask(QStringLiteral(
        "SELECT K.RDB$CONSTRAINT_NAME, K.RDB$RELATION_NAME, S.RDB$FIELD_NAME, "
        "U.RDB$RELATION_NAME, T.RDB$FIELD_NAME "
        "FROM RDB$RELATION_CONSTRAINTS K "
        "JOIN RDB$REF_CONSTRAINTS R ON R.RDB$CONSTRAINT_NAME = K.RDB$CONSTRAINT_NAME "
        "JOIN RDB$RELATION_CONSTRAINTS U ON U.RDB$CONSTRAINT_NAME = R.RDB$CONST_NAME_UQ "
        "JOIN RDB$INDEX_SEGMENTS S ON S.RDB$INDEX_NAME = K.RDB$INDEX_NAME "
        "JOIN RDB$INDEX_SEGMENTS T ON T.RDB$INDEX_NAME = U.RDB$INDEX_NAME "
        "AND T.RDB$FIELD_POSITION = S.RDB$FIELD_POSITION "
        "WHERE K.RDB$CONSTRAINT_TYPE = 'FOREIGN KEY' "
        "ORDER BY K.RDB$CONSTRAINT_NAME, S.RDB$FIELD_POSITION"));
    ForeignKeyRows rows;
    while (next(query)) {
        rows.add(nameOf(query.value(0)), nameOf(query.value(1)), nameOf(query.value(2)),
                 nameOf(query.value(3)), nameOf(query.value(4)));
    }
    return rows.keys();
}

std::vector<TParam> FirebirdDatabase::readParameters(const TableEntry& entry) const {
    QSqlQuery query = ask(
        QStringLiteral("SELECT P.RDB$PARAMETER_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, "
                       "F.RDB$FIELD_SCALE, COALESCE(P.RDB$DEFAULT_SOURCE, F.RDB$DEFAULT_SOURCE) "
                       "FROM RDB$PROCEDURE_PARAMETERS P "
                       "JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = P.RDB$FIELD_SOURCE "
                       "WHERE P.RDB$PROCEDURE_NAME = ? AND P.RDB$PARAMETER_TYPE = 0 "
                       "AND P.RDB$PACKAGE_NAME IS NULL ORDER BY P.RDB$PARAMETER_NUMBER"),
        {entry.name});
    std::vector<TParam> parameters;
    while (next(query)) {
        TParam parameter{nameOf(query.value(0)),
                         fieldTypeOfFirebird(query.value(1).toInt(), query.value(2).toInt(),
                                             query.value(3).toInt()),
                         ptInput};
        const QString source = query.value(4).toString();
        if (!source.isEmpty()) parameter.Value = firebirdDefault(source);
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

}  // namespace orvquery
