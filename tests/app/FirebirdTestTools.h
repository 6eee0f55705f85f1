// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QStandardPaths>
#include <QTest>

// Databases of Firebird's embedded engine, which needs no server.
namespace firebirdtest {

/// Lets the engine keep its locks in the folder. Comes before the engine is used first.
inline void setLockFolder(const QString& folder) {
    qputenv("FIREBIRD_LOCK", QFile::encodeName(folder));
}

/// What is missing to make and open such databases; empty when nothing is.
inline QString whatIsMissing() {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QIBASE"))) {
        return QStringLiteral("Qt's driver QIBASE is not installed (libqt6sql6-ibase)");
    }
    if (QStandardPaths::findExecutable(QStringLiteral("isql-fb")).isEmpty()) {
        return QStringLiteral("isql-fb is not installed (firebird3.0-utils)");
    }
    return {};
}

/// Makes a database from a script, whose statements end with "^".
inline bool makeDatabase(const QString& path, const QString& script) {
    QProcess isql;
    isql.start(QStringLiteral("isql-fb"), {"-q", "-bail", "-ch", "UTF8"});
    isql.write(QStringLiteral("CREATE DATABASE '%1' USER 'SYSDBA' DEFAULT CHARACTER SET UTF8;\n"
                              "SET TERM ^;\n%2\nCOMMIT^\n")
                   .arg(path, script)
                   .toUtf8());
    isql.closeWriteChannel();
    if (!isql.waitForFinished(60000)) return false;
    const QByteArray errors = isql.readAllStandardError();
    if (!errors.isEmpty()) qWarning("isql-fb: %s", errors.constData());
    return isql.exitStatus() == QProcess::NormalExit && isql.exitCode() == 0 && errors.isEmpty();
}

}  // namespace firebirdtest
