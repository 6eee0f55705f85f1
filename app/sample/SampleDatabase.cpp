// SPDX-License-Identifier: MIT
#include "sample/SampleDatabase.h"

#include "core/Error.h"
#include "database/Connection.h"
#include "database/SqlErrorText.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

#include <filesystem>
#include <system_error>

namespace orvquery {

namespace {

QByteArray resource(const QString& name) {
    QFile file(QStringLiteral(":/orvquery/sample/") + name);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isOpen);
    Q_UNUSED(isOpen);
    return file.readAll();
}

QString script() {
    return QString::fromUtf8(resource(QStringLiteral("sample.sql")));
}

// Follows from the script, so that no change of it can be forgotten. SQLite keeps 32 bits, signed.
qint32 scriptVersion() {
    const QByteArray hash = QCryptographicHash::hash(script().toUtf8(), QCryptographicHash::Sha256);
    return qFromBigEndian<qint32>(hash.constData()) & 0x7fffffff;
}

[[noreturn]] void failToMake(const QString& path, const QString& reason) {
    throw orv::Error(
        QStringLiteral("The sample database \"%1\" cannot be made: %2.").arg(path, reason));
}

void execute(QSqlQuery& query, const QString& statement, const QString& path) {
    if (!query.exec(statement)) failToMake(path, sqlErrorText(query.lastError()));
}

// Nobody else sees the file yet: without journal and waiting for the disk it takes a fraction.
void runScript(const QString& path) {
    Connection connection({QStringLiteral("QSQLITE"), path, QString()});
    const QSqlError error = connection.open();
    if (error.isValid()) failToMake(path, sqlErrorText(error));
    QSqlQuery query(connection.database());
    for (const char* pragma : {"PRAGMA journal_mode = OFF", "PRAGMA synchronous = OFF",
                               "PRAGMA temp_store = MEMORY", "BEGIN"}) {
        execute(query, QLatin1String(pragma), path);
    }
    const QStringList statements = script().split(QStringLiteral(";\n"), Qt::SkipEmptyParts);
    for (const QString& statement : statements) execute(query, statement, path);
    execute(query, QStringLiteral("PRAGMA user_version = %1").arg(scriptVersion()), path);
    execute(query, QStringLiteral("COMMIT"), path);
}

// QFile::rename does not replace a file, and two steps would leave a moment without one.
void replaceFile(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(),
                            QFileInfo(to).filesystemFilePath(), error);
    if (error) failToMake(to, QString::fromStdString(error.message()));
}

}  // namespace

void makeSampleDatabase(const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) failToMake(path, QStringLiteral("its folder cannot be made"));
    // Beside the target: renaming works within one file system only. The folder goes in any case.
    const QTemporaryDir scratch(folder + QStringLiteral("/new-XXXXXX"));
    if (!scratch.isValid()) failToMake(path, scratch.errorString());
    const QString newFile = scratch.filePath(QFileInfo(path).fileName());
    runScript(newFile);
    replaceFile(newFile, path);
}

bool isPresentSample(const QString& path) {
    if (!QFileInfo(path).isFile()) return false;
    Connection connection({QStringLiteral("QSQLITE"), path,
                           QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=1000")});
    if (connection.open().isValid()) return false;
    QSqlQuery query(connection.database());
    return query.exec(QStringLiteral("PRAGMA user_version")) && query.next() &&
           query.value(0).toInt() == scriptVersion();
}

QString sampleDatabasePlace() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/sample.db");
}

QString sampleDatabasePath() {
    QString path = sampleDatabasePlace();
    if (!isPresentSample(path)) makeSampleDatabase(path);
    return path;
}

QString sampleQuery() {
    return QString::fromUtf8(resource(QStringLiteral("sample-query.sql")));
}

}  // namespace orvquery
