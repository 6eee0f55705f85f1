// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"
#include "database/Connection.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTest>

// What the tests of the program share. QVERIFY returns from the function that it stands in, so
// these report through their results.
namespace apptest {

/// The text of the orv::Error that the body raises; a text that no error has when it raises none.
template <typename Body>
QString errorOf(Body&& body) {
    try {
        body();
    } catch (const orv::Error& error) {
        return error.Message();
    }
    return QStringLiteral("(no error)");
}

inline bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// Runs statements on a database file, which is made when it is missing.
inline bool runStatements(const QString& path, const QStringList& statements) {
    orvquery::Connection connection({QStringLiteral("QSQLITE"), path, QString()});
    if (connection.open().isValid()) return false;
    QSqlQuery query(connection.database());
    for (const QString& statement : statements) {
        if (!query.exec(statement)) {
            qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
            return false;
        }
    }
    return true;
}

/// The first value of a query on a database file; an invalid variant when it fails.
inline QVariant valueOf(const QString& path, const QString& statement) {
    orvquery::Connection connection({QStringLiteral("QSQLITE"), path, QString()});
    if (connection.open().isValid()) return {};
    QSqlQuery query(connection.database());
    return query.exec(statement) && query.next() ? query.value(0) : QVariant();
}

}  // namespace apptest
