// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "support/TestTools.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTest>

// What the tests of the program share. QVERIFY returns from the function that it stands in, so
// these report through their results.
namespace apptest {

using orvtest::errorOf;

inline bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// Runs statements on a database; false, with a warning, when one fails.
inline bool runStatements(const orvquery::ConnectionSettings& settings,
                          const QStringList& statements) {
    orvquery::Connection connection(settings);
    const QSqlError error = connection.open();
    if (error.isValid()) {
        qWarning("%s", qPrintable(error.text()));
        return false;
    }
    QSqlQuery query(connection.database());
    for (const QString& statement : statements) {
        if (!query.exec(statement)) {
            qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
            return false;
        }
    }
    return true;
}

/// Runs statements on a database file, which is made when it is missing.
inline bool runStatements(const QString& path, const QStringList& statements) {
    return runStatements({QStringLiteral("QSQLITE"), path, QString()}, statements);
}

/// The first value of a query; an invalid variant when it fails.
inline QVariant valueOf(const orvquery::ConnectionSettings& settings, const QString& statement) {
    orvquery::Connection connection(settings);
    if (connection.open().isValid()) return {};
    QSqlQuery query(connection.database());
    return query.exec(statement) && query.next() ? query.value(0) : QVariant();
}

/// The same on a database file.
inline QVariant valueOf(const QString& path, const QString& statement) {
    return valueOf({QStringLiteral("QSQLITE"), path, QString()}, statement);
}

}  // namespace apptest
