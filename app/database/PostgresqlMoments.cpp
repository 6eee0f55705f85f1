// SPDX-License-Identifier: MIT
#include "database/PostgresqlMoments.h"

#include <QDateTime>
#include <QLibrary>
#include <QSqlQuery>
#include <QSqlResult>

namespace orvquery {

namespace {

using ValueFunction = char* (*)(const void* result, int row, int column);

constexpr qsizetype wholeSecondsLength = 8;

// PostgreSQL leaves out noughts at the end of a fraction, Qt writes all or none of three.
QString written(const QTime& time) {
    if (time.msec() == 0) return time.toString(Qt::ISODate);
    QString text = time.toString(Qt::ISODateWithMs);
    while (text.endsWith(u'0')) text.chop(1);
    return text;
}

// With more places than milliseconds have, and with an offset, the text stays one.
QTime plainTime(const QString& text) {
    const bool hasFraction = text.size() > wholeSecondsLength;
    const QTime time = QTime::fromString(text, hasFraction ? Qt::ISODateWithMs : Qt::ISODate);
    return time.isValid() && written(time) == text ? time : QTime();
}

QDate plainDate(const QString& text) {
    const QDate date = QDate::fromString(text, Qt::ISODate);
    return date.isValid() && date.toString(Qt::ISODate) == text ? date : QDate();
}

}  // namespace

QString postgresqlText(const QSqlQuery& query, int column) {
    static const auto valueOf = [] {
        QLibrary library(QStringLiteral("pq"), 5);
        return reinterpret_cast<ValueFunction>(library.resolve("PQgetvalue"));
    }();
    const QVariant handle = query.result()->handle();
    if (valueOf == nullptr || qstrcmp(handle.typeName(), "pg_result*") != 0) return {};
    const void* const result = *static_cast<void* const*>(handle.constData());
    if (result == nullptr) return {};
    // Rows that come one by one are each the first of a result.
    return QString::fromUtf8(valueOf(result, query.isForwardOnly() ? 0 : query.at(), column));
}

QVariant postgresqlMoment(const QString& text, int type) {
    if (type == QMetaType::QDate) {
        const QDate date = plainDate(text);
        return date.isValid() ? QVariant(date) : QVariant(text);
    }
    if (type == QMetaType::QTime) {
        const QTime time = plainTime(text);
        return time.isValid() ? QVariant(time) : QVariant(text);
    }
    const QDate date = plainDate(text.section(u' ', 0, 0));
    const QTime time = plainTime(text.section(u' ', 1));
    const QDateTime moment(date, time);
    // Where clocks are put forward, an hour is missing from the day of this computer.
    const bool isSame = moment.isValid() && moment.date() == date && moment.time() == time;
    return isSame ? QVariant(moment) : QVariant(text);
}

}  // namespace orvquery
