// SPDX-License-Identifier: MIT
#include "meaning/OpenDatabase.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>

namespace orvtest {

namespace {

constexpr std::size_t shownRows = 12;
const QString driver = QStringLiteral("QSQLITE");
const QString connectionName = QStringLiteral("orvtest");

QString cellText(const QVariant& value) {
    if (value.isNull()) return QStringLiteral("NULL");
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong: return value.toString();
    case QMetaType::Double: return u'~' + QString::number(value.toDouble(), 'g', 12);
    default: return u'\'' + value.toString() + u'\'';
    }
}

}  // namespace

QString Answer::text() const {
    if (!isGiven()) return u'(' + error + u')';
    QStringList lines = {QStringLiteral("%1 rows of %2").arg(rows.size()).arg(columns)};
    for (std::size_t row = 0; row < std::min(rows.size(), shownRows); ++row) {
        lines << rows[row].join(QStringLiteral(" | "));
    }
    return lines.join(QStringLiteral("\n    "));
}

std::vector<Row> sorted(std::vector<Row> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

OpenDatabase::OpenDatabase(const QStringList& statements)
    : m_database(QSqlDatabase::addDatabase(driver, connectionName)) {
    m_database.setDatabaseName(QStringLiteral(":memory:"));
    isOpen = m_database.open();
    for (const QString& statement : statements) {
        isOpen = isOpen && QSqlQuery(m_database).exec(statement);
    }
}

OpenDatabase::~OpenDatabase() {
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName);
}

QString OpenDatabase::whatIsMissing() {
    if (!QSqlDatabase::isDriverAvailable(driver)) {
        return QStringLiteral("Qt has no driver for SQLite here");
    }
    const OpenDatabase database({});
    const Answer joins = database.ask(
        QStringLiteral("SELECT 1 FROM (SELECT 1 A) X FULL JOIN (SELECT 2 A) Y ON X.A = Y.A"));
    return joins.isGiven() ? QString() : QStringLiteral("SQLite has no right and full joins here");
}

Answer OpenDatabase::ask(const QString& statement) const {
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    Answer answer;
    if (!query.exec(statement)) {
        answer.error = query.lastError().text();
        return answer;
    }
    answer.columns = query.record().count();
    while (query.next()) {
        Row row;
        for (int column = 0; column < answer.columns; ++column) {
            row << cellText(query.value(column));
        }
        answer.rows.push_back(std::move(row));
    }
    if (query.lastError().isValid()) answer.error = query.lastError().text();
    return answer;
}

}  // namespace orvtest
