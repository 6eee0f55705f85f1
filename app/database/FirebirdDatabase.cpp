// SPDX-License-Identifier: MIT
#include "database/FirebirdDatabase.h"

#include "core/Error.h"
#include "database/DatabaseFile.h"
#include "database/FirebirdTypes.h"
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

// An engine within the program asks for no password; of itself it knows this one person.
constexpr char embeddedUser[] = "SYSDBA";

QString filePath(const QUrl& address) {
    QString path = address.path(QUrl::FullyDecoded);
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

ConnectionSettings settingsFor(const QUrl& address) {
    if (!QSqlDatabase::isDriverAvailable(QLatin1String(driver))) {
        throw orv::Error(
            QStringLiteral("Firebird databases cannot be opened: Qt's driver %1 is not installed.")
                .arg(QLatin1String(driver)));
    }
    ConnectionSettings settings;
    settings.driver = QLatin1String(driver);
    settings.databaseName = filePath(address);
    settings.options = QStringLiteral("ISC_DPB_LC_CTYPE=UTF8");
    settings.host = address.host(QUrl::FullyDecoded);
    settings.port = address.port();
    settings.user = address.userName(QUrl::FullyDecoded);
    settings.password = address.password(QUrl::FullyDecoded);
    // A procedure that gives rows may write as well.
    settings.isTakenBack = true;
    settings.makeStopSwitch = firebirdStopSwitch;
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

}  // namespace

FirebirdDatabase::FirebirdDatabase(const QUrl& address)
    : Database(settingsFor(address), NameFolding::firebird()) {
#ifdef Q_OS_UNIX
    const KeptSignals signals;
#endif
    const QSqlError error = openCatalog();
    if (error.isValid()) {
        throw orv::Error(QStringLiteral("The database \"%1\" cannot be opened: %2")
                             .arg(title(), sqlErrorText(error)));
    }
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

QSqlQuery FirebirdDatabase::run(const QString& statement, const QStringList& values) const {
    QSqlQuery query(catalog());
    query.setForwardOnly(true);
    bool isDone = query.prepare(statement);
    for (const QString& value : values) query.addBindValue(value);
    isDone = isDone && query.exec();
    if (!isDone) {
        throw orv::Error(QStringLiteral("The tables of \"%1\" cannot be read: %2")
                             .arg(title(), sqlErrorText(query.lastError())));
    }
    return query;
}

// The procedures of packages, and those that give no rows, are not for a FROM clause.
std::vector<TableEntry> FirebirdDatabase::readEntries() const {
    std::vector<TableEntry> entries;
    QSqlQuery relations =
        run(QStringLiteral("SELECT RDB$RELATION_NAME, IIF(RDB$VIEW_BLR IS NULL, 0, 1) "
                           "FROM RDB$RELATIONS WHERE COALESCE(RDB$SYSTEM_FLAG, 0) = 0"));
    while (relations.next()) {
        entries.push_back({nameOf(relations.value(0)),
                           relations.value(1).toInt() == 1 ? TableKind::View : TableKind::Table});
    }
    const QHash<QString, QStringList> parameters = inputNames();
    QSqlQuery procedures =
        run(QStringLiteral("SELECT RDB$PROCEDURE_NAME FROM RDB$PROCEDURES "
                           "WHERE RDB$PROCEDURE_TYPE = 1 AND RDB$PACKAGE_NAME IS NULL "
                           "AND COALESCE(RDB$SYSTEM_FLAG, 0) = 0"));
    while (procedures.next()) {
        const QString name = nameOf(procedures.value(0));
        entries.push_back({name, TableKind::Procedure, parameters.value(name)});
    }
    return entries;
}

QHash<QString, QStringList> FirebirdDatabase::inputNames() const {
    QHash<QString, QStringList> names;
    QSqlQuery query =
        run(QStringLiteral("SELECT RDB$PROCEDURE_NAME, RDB$PARAMETER_NAME "
                           "FROM RDB$PROCEDURE_PARAMETERS "
                           "WHERE RDB$PARAMETER_TYPE = 0 AND RDB$PACKAGE_NAME IS NULL "
                           "ORDER BY RDB$PROCEDURE_NAME, RDB$PARAMETER_NUMBER"));
    while (query.next()) names[nameOf(query.value(0))] += nameOf(query.value(1));
    return names;
}

TFieldDefs FirebirdDatabase::readColumns(const TableEntry& entry) const {
    const QString ofTable = QStringLiteral(
        "SELECT C.RDB$FIELD_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, F.RDB$FIELD_SCALE "
        "FROM RDB$RELATION_FIELDS C JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = C.RDB$FIELD_SOURCE "
        "WHERE C.RDB$RELATION_NAME = ? ORDER BY C.RDB$FIELD_POSITION");
    const QString ofProcedure = QStringLiteral(
        "SELECT P.RDB$PARAMETER_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, F.RDB$FIELD_SCALE "
        "FROM RDB$PROCEDURE_PARAMETERS P "
        "JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = P.RDB$FIELD_SOURCE "
        "WHERE P.RDB$PROCEDURE_NAME = ? AND P.RDB$PARAMETER_TYPE = 1 "
        "AND P.RDB$PACKAGE_NAME IS NULL ORDER BY P.RDB$PARAMETER_NUMBER");
    QSqlQuery query = run(isCalled(entry.kind) ? ofProcedure : ofTable, {entry.name});
    TFieldDefs columns;
    while (query.next()) {
        columns.push_back({nameOf(query.value(0)),
                           fieldTypeOfFirebird(query.value(1).toInt(), query.value(2).toInt(),
                                               query.value(3).toInt())});
    }
    return columns;
}

std::vector<TParam> FirebirdDatabase::readParameters(const TableEntry& entry) const {
    QSqlQuery query = run(
        QStringLiteral("SELECT P.RDB$PARAMETER_NAME, F.RDB$FIELD_TYPE, F.RDB$FIELD_SUB_TYPE, "
                       "F.RDB$FIELD_SCALE, COALESCE(P.RDB$DEFAULT_SOURCE, F.RDB$DEFAULT_SOURCE) "
                       "FROM RDB$PROCEDURE_PARAMETERS P "
                       "JOIN RDB$FIELDS F ON F.RDB$FIELD_NAME = P.RDB$FIELD_SOURCE "
                       "WHERE P.RDB$PROCEDURE_NAME = ? AND P.RDB$PARAMETER_TYPE = 0 "
                       "AND P.RDB$PACKAGE_NAME IS NULL ORDER BY P.RDB$PARAMETER_NUMBER"),
        {entry.name});
    std::vector<TParam> parameters;
    while (query.next()) {
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
