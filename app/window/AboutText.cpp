// SPDX-License-Identifier: MIT
#include "window/AboutText.h"

#include <QCoreApplication>
#include <QSqlDatabase>

#ifdef ORVQUERY_HAS_SQLITE3
#include <sqlite3.h>
#endif

namespace orvquery {

namespace {

QString line(const QString& name, const QString& value) {
    return QStringLiteral("<tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr>")
        .arg(name, value.toHtmlEscaped());
}

QString sqliteVersion() {
#ifdef ORVQUERY_HAS_SQLITE3
    return QString::fromLatin1(sqlite3_libversion());
#else
    return QStringLiteral("that of Qt's driver");
#endif
}

}  // namespace

QString aboutText() {
    const QString drivers = QSqlDatabase::drivers().join(QStringLiteral(", "));
    return QStringLiteral(
               "<p><b>orvquery %1</b></p><p>Puts a SQL query together by mouse, and "
               "runs it.</p><table>")
               .arg(QCoreApplication::applicationVersion().toHtmlEscaped()) +
           line(QStringLiteral("OrvQueryBuilder"), QStringLiteral(ORVQUERY_LIBRARY_VERSION)) +
           line(QStringLiteral("Qt"), QString::fromLatin1(qVersion())) +
           line(QStringLiteral("SQLite"), sqliteVersion()) +
           line(QStringLiteral("Drivers"), drivers) +
           line(QStringLiteral("Licence"), QStringLiteral("MIT")) + QStringLiteral("</table>");
}

}  // namespace orvquery
