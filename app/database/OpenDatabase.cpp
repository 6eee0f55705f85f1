// SPDX-License-Identifier: MIT
#include "database/OpenDatabase.h"

#include "core/Error.h"
#include "database/DatabaseFile.h"
#include "database/Engine.h"
#include "database/FirebirdDatabase.h"
#include "database/MariadbDatabase.h"
#include "database/OdbcDatabase.h"
#include "database/PostgresqlDatabase.h"
#include "database/SqliteDatabase.h"

#include <QFileInfo>
#include <QSqlDatabase>

#include <algorithm>

namespace orvquery {

namespace {

bool hasFirebirdSuffix(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == u"fdb" || suffix == u"gdb";
}

QStringList schemes() {
    QStringList all;
    for (const Engine& engine : engines()) all += engine.scheme + QStringLiteral("://");
    return all;
}

std::vector<Engine>& replacedEngines() {
    static std::vector<Engine> engines;
    return engines;
}

// Debian's packages; other systems call them much the same.
QString packageOf(const QString& driver) {
    if (driver == u"QSQLITE") return QStringLiteral("libqt6sql6-sqlite");
    if (driver == u"QPSQL") return QStringLiteral("libqt6sql6-psql");
    if (driver == u"QMYSQL" || driver == u"QMARIADB") return QStringLiteral("libqt6sql6-mysql");
    if (driver == u"QODBC") return QStringLiteral("libqt6sql6-odbc");
    if (driver == u"QIBASE") return QStringLiteral("libqt6sql6-ibase");
    return {};
}

// Asked for where nobody can be asked.
DatabaseAddress withPasswordOfEnvironment(DatabaseAddress address) {
    if (address.password.isEmpty() && !address.isFile()) {
        address.password = qEnvironmentVariable("ORVQUERY_PASSWORD");
    }
    return address;
}

}  // namespace

const std::vector<Engine>& engines() {
    static const std::vector<Engine> all = {sqliteEngine(), postgresqlEngine(), mariadbEngine(),
                                            firebirdEngine(), odbcEngine()};
    return replacedEngines().empty() ? all : replacedEngines();
}

void setEngines(std::vector<Engine> engines) {
    replacedEngines() = std::move(engines);
}

const Engine* engineOf(const QString& scheme) {
    const std::vector<Engine>& all = engines();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Engine& engine) {
        return engine.scheme == scheme || engine.otherSchemes.contains(scheme);
    });
    return found == all.end() ? nullptr : &*found;
}

QString driverProblem(const Engine& engine) {
    if (QSqlDatabase::isDriverAvailable(engine.driver)) return {};
    const QString package = packageOf(engine.driver);
    const QString where =
        package.isEmpty() ? QString() : QStringLiteral(" (package %1)").arg(package);
    return QStringLiteral("%1 databases cannot be opened: Qt's driver %2%3 is not installed.")
        .arg(engine.title, engine.driver, where);
}

QString missingPart(const DatabaseAddress& address) {
    if (address.isFile()) {
        return address.database.isEmpty() ? QStringLiteral("The database file is not named yet.")
                                          : QString();
    }
    const Engine* engine = engineOf(address.scheme);
    return engine == nullptr || engine->missingPart == nullptr ? QString()
                                                               : engine->missingPart(address);
}

const Engine& requireEngine(const DatabaseAddress& address) {
    const Engine* engine = engineOf(address.scheme);
    if (engine == nullptr) {
        throw orv::Error(QStringLiteral("There is no kind of database called \"%1\"; addresses "
                                        "begin with %2.")
                             .arg(address.scheme, schemes().join(QStringLiteral(", "))));
    }
    const QString problem = driverProblem(*engine);
    if (!problem.isEmpty()) throw orv::Error(problem);
    return *engine;
}

// What a file holds counts; by its name is told only what is wrong with it.
DatabaseAddress databaseAddress(const QString& fileOrAddress) {
    const bool isUrl = DatabaseAddress::isUrl(fileOrAddress);
    DatabaseAddress address = isUrl ? DatabaseAddress::fromUrl(fileOrAddress) : DatabaseAddress();
    if (isUrl && address.scheme != u"file") return address;
    const QString path = isUrl ? address.database : DatabaseAddress::pathFromHome(fileOrAddress);
    const QByteArray bytes = beginningOfFile(path, FirebirdDatabase::beginningSize);
    const bool isFirebird = FirebirdDatabase::isBeginning(bytes) ||
                            (hasFirebirdSuffix(path) && !bytes.startsWith("SQLite format 3"));
    address.scheme = isFirebird ? firebirdEngine().scheme : sqliteEngine().scheme;
    address.database = path;
    return address;
}

std::unique_ptr<Database> openDatabase(const DatabaseAddress& address) {
    return requireEngine(address).open(withPasswordOfEnvironment(address));
}

std::unique_ptr<Database> openDatabase(const QString& fileOrAddress) {
    return openDatabase(databaseAddress(fileOrAddress));
}

}  // namespace orvquery
