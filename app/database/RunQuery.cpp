// SPDX-License-Identifier: MIT
#include "database/RunQuery.h"

#include "core/Error.h"
#include "database/MariadbRows.h"
#include "database/ServerQuery.h"
#include "database/SqlErrorText.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace orvquery {

namespace {

[[noreturn]] void failToRun(const QSqlError& error) {
    // Two errors come from the driver, not from the database, and read like a programmer's own.
    const QString driverText = error.driverText();
    if (driverText.contains(QLatin1String("Parameter count mismatch"))) {
        throw orv::Error(
            QStringLiteral("The statement has parameters that are not written as :NAME; it cannot "
                           "be run without their values."));
    }
    if (driverText.contains(QLatin1String("multiple statements"))) {
        throw orv::Error(QStringLiteral("Only one statement can be run at a time."));
    }
    throw orv::Error(QStringLiteral("The database says: ") + sqlErrorText(error));
}

// The position behind the blank, opening bracket or comment at `position`; the same one when there
// is none.
qsizetype behindFiller(QStringView text, qsizetype position) {
    const auto endBehind = [&](QStringView mark, qsizetype from) {
        const qsizetype found = text.indexOf(mark, from);
        return found < 0 ? text.size() : found + mark.size();
    };
    const QStringView rest = text.sliced(position);
    if (rest.startsWith(u"--")) return endBehind(u"\n", position);
    if (rest.startsWith(u"/*")) return endBehind(u"*/", position + 2);
    if (rest.isEmpty()) return position;
    const QChar first = rest.front();
    return first.isSpace() || first == u'(' ? position + 1 : position;
}

// The first word of a statement in upper case.
QString firstWord(QStringView statement) {
    qsizetype start = 0;
    for (qsizetype next = behindFiller(statement, start); next != start;
         next = behindFiller(statement, start)) {
        start = next;
    }
    qsizetype end = start;
    while (end < statement.size() && statement[end].isLetter()) ++end;
    return statement.sliced(start, end - start).toString().toUpper();
}

// The file is open for reading only, yet some statements write other files (VACUUM INTO, ATTACH).
void requireQuery(const QString& statement) {
    static const QStringList allowed = {QStringLiteral("SELECT"), QStringLiteral("WITH"),
                                        QStringLiteral("VALUES"), QStringLiteral("EXPLAIN")};
    const QString word = firstWord(statement);
    if (allowed.contains(word)) return;
    if (statement.trimmed().isEmpty()) {
        throw orv::Error(QStringLiteral("There is no statement to run."));
    }
    throw orv::Error(
        QStringLiteral("Only queries can be run here: statements that begin with "
                       "SELECT, WITH, VALUES or EXPLAIN."));
}

QStringList columnNames(const QSqlRecord& record) {
    QStringList names;
    for (int column = 0; column < record.count(); ++column) names += record.fieldName(column);
    return names;
}

void runOnMariadb(const QSqlDatabase& database, const QString& statement, RowSink& sink) {
    MariadbRows rows(database);
    if (!rows.start(statement)) failToRun(rows.lastError());
    sink.begin(rows.columns());
    while (rows.next()) {
        if (!sink.row(rows.row())) return;
    }
    if (rows.lastError().isValid()) failToRun(rows.lastError());
}

}  // namespace

RowSink::~RowSink() = default;

bool RowCollector::row(const Row& values) {
    if (m_rows.size() == m_mostRows) {
        m_isCut = true;
        return false;
    }
    m_rows.push_back(values);
    return true;
}

void runQuery(const QSqlDatabase& database, const QString& statement, RowSink& sink,
              const PlaceholderValues& values) {
    requireQuery(statement);
    if (MariadbRows::canRead(database)) {
        return runOnMariadb(database, mariadbStatement(statement, values), sink);
    }
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!startQuery(query, statement, values)) failToRun(query.lastError());

    const QStringList columns = columnNames(query.record());
    sink.begin(columns);
    const RowReader reader(query);
    while (query.next()) {
        // A row of its own each time: large values must be gone before the next ones come.
        Row row;
        row.reserve(columns.size());
        for (int column = 0; column < columns.size(); ++column) row += reader.value(column);
        if (!sink.row(row)) return;
    }
    if (query.lastError().isValid()) failToRun(query.lastError());
}

}  // namespace orvquery
