// SPDX-License-Identifier: MIT
#include "database/SqlErrorText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace orvquery {

namespace {

// PostgreSQL adds details and hints, of use where they are one sentence, and below them which
// functions were running.
QString withoutAppendix(const QString& text) {
    static const QRegularExpression part(
        QStringLiteral("\\n(DETAIL|HINT|QUERY|CONTEXT): +([^\\n]*)"));
    static const QRegularExpression sentence(QStringLiteral("^[^a-z\\W].*[.?!]$"));
    auto parts = part.globalMatch(text);
    if (!parts.hasNext()) return text;
    QString result = text.left(parts.peekNext().capturedStart()).trimmed();
    while (parts.hasNext()) {
        const QRegularExpressionMatch found = parts.next();
        const QString label = found.captured(1);
        if (label == u"QUERY" || label == u"CONTEXT") break;
        const qsizetype end = found.capturedEnd();
        const bool isOneLine = end == text.size() || part.match(text, end).capturedStart() == end;
        if (!isOneLine || !sentence.match(found.captured(2)).hasMatch()) continue;
        if (!result.endsWith(u'.')) result += u'.';
        result += u' ' + found.captured(2);
    }
    return result;
}

// PostgreSQL shows the place in the statement in two lines of their own, which only a screen with
// letters of one width can show; the driver puts the code behind it all.
QString withoutDecoration(QString text) {
    static const QRegularExpression severity(QStringLiteral("^(ERROR|FATAL|PANIC): +"));
    static const QRegularExpression place(QStringLiteral("\\nLINE \\d+: [^\\n]*\\n *\\^"));
    static const QRegularExpression code(QStringLiteral("\\n\\([0-9A-Z]{5}\\)$"));
    if (!text.contains(severity)) return text;
    return withoutAppendix(text.remove(severity).remove(place).remove(code).trimmed());
}

// Drivers of ODBC put their own names in brackets before what they say.
QString withoutBrackets(QString text) {
    while (text.startsWith(u'[') && text.contains(u']')) {
        text = text.mid(text.indexOf(u']') + 1).trimmed();
    }
    return text;
}

}  // namespace

QString sqlErrorText(const QSqlError& error) {
    if (isConnectionLost(error)) return QStringLiteral("the server has closed the connection");
    QString text = withoutDecoration(error.databaseText()).simplified();
    if (error.driverText().startsWith(QLatin1String("QODBC"))) text = withoutBrackets(text);
    if (!text.isEmpty()) return text;
    const QString driverText = error.driverText().simplified();
    return driverText.isEmpty() ? QStringLiteral("unknown error") : driverText;
}

// PostgreSQL's library has no codes for this. MariaDB's are "server has gone away" and "lost
// connection during the query".
bool isConnectionLost(const QSqlError& error) {
    static const QStringList codes = {QStringLiteral("57P01"), QStringLiteral("2006"),
                                      QStringLiteral("2013")};
    static const QStringList texts = {QStringLiteral("server closed the connection"),
                                      QStringLiteral("no connection to the server"),
                                      QStringLiteral("terminating connection"),
                                      QStringLiteral("could not receive data from server"),
                                      QStringLiteral("could not send data to server")};
    const QString text = error.databaseText();
    return codes.contains(error.nativeErrorCode()) ||
           std::any_of(texts.begin(), texts.end(),
                       [&](const QString& sign) { return text.contains(sign); });
}

SqliteError sqliteErrorCode(const QSqlError& error) {
    // The primary result codes of sqlite.org/rescode.html; higher bits tell the variant.
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 5:
    case 6: return SqliteError::Busy;
    case 11: return SqliteError::Corrupt;
    case 26: return SqliteError::NotADatabase;
    default: return SqliteError::Other;
    }
}

}  // namespace orvquery
