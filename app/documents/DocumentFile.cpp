// SPDX-License-Identifier: MIT
#include "documents/DocumentFile.h"

#include "core/Error.h"
#include "text/CodeQuote.h"
#include "text/SavedFile.h"
#include "text/TextFile.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace orvquery {

namespace {

#ifdef Q_OS_WIN
constexpr char16_t platformLineBreak[] = u"\r\n";
#else
constexpr char16_t platformLineBreak[] = u"\n";
#endif

// Of the content: the time of a file changes also when it is only copied.
QByteArray markOf(const QString& text) {
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex();
}

}  // namespace

DocumentKind documentKind(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"orvq") return DocumentKind::Query;
    if (suffix == u"sql") return DocumentKind::Statement;
    return DocumentKind::None;
}

OpenedFile openFile(const QString& path) {
    const QString text = readTextFile(path);
    OpenedFile opened;
    opened.mark = markOf(text);
    if (documentKind(path) == DocumentKind::Statement) {
        opened.document.statement = text;
        const bool isSingle = withPlainBreaks(text, SqlRules::Postgresql) == text;
        if (text.contains(u'\n'))
            opened.lineBreak = isSingle ? QStringLiteral("\n") : QStringLiteral("\r\n");
        return opened;
    }
    opened.document = readDocument(text.toUtf8(), QStringLiteral("The file \"%1\"").arg(path));
    const QString folder = QFileInfo(path).absolutePath();
    opened.document.database = opened.document.database.absoluteIn(folder);
    return opened;
}

QByteArray markOfFile(const QString& path) {
    try {
        return markOf(readTextFile(path));
    } catch (const orv::Error&) {
        return {};
    }
}

QByteArray saveFile(const QString& path, const QByteArray& content) {
    SavedFile file(path);
    file.open();
    file.device().write(content);
    file.requireWritten();
    file.save();
    return markOf(QString::fromUtf8(content));
}

QByteArray statementText(const QString& statement, const QString& lineBreak, bool isTyped) {
    QString text = statement;
    if (isTyped) text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (!text.isEmpty() && !text.endsWith(u'\n')) text += u'\n';
    const QString wanted = lineBreak.isEmpty() ? QString::fromUtf16(platformLineBreak) : lineBreak;
    if (isTyped) return text.replace(QStringLiteral("\n"), wanted).toUtf8();
    QString result;
    const QString plain = withPlainBreaks(text, SqlRules::Postgresql);
    SqlPieces pieces(plain, SqlRules::Postgresql);
    while (pieces.next()) {
        const bool isQuoted = pieces.kind() == SqlPieces::Kind::Quoted;
        QString piece = pieces.text().toString();
        result += isQuoted ? piece : piece.replace(QStringLiteral("\n"), wanted);
    }
    return result.toUtf8();
}

}  // namespace orvquery
