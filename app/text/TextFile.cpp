// SPDX-License-Identifier: MIT
#include "text/TextFile.h"

#include "core/Error.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <cstdio>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#endif

namespace orvquery {

namespace {

[[noreturn]] void failToRead(const QString& path, const QString& reason) {
    throw orv::Error(QStringLiteral("The file \"%1\" cannot be read: %2.").arg(path, reason));
}

QByteArray readStandardInput() {
#ifdef Q_OS_WIN
    _setmode(_fileno(stdin), _O_BINARY);
#endif
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        throw orv::Error(QStringLiteral("Standard input cannot be read."));
    }
    return input.readAll();
}

// Also reads what is no regular file, such as the end of a pipe.
QByteArray readBytes(const QString& path) {
    const QFileInfo info(path);
    if (path.isEmpty()) throw orv::Error(QStringLiteral("The name of the file is empty."));
    if (!info.exists()) failToRead(path, QStringLiteral("it does not exist"));
    if (info.isDir()) failToRead(path, QStringLiteral("it is a folder"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) failToRead(path, file.errorString());
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) failToRead(path, file.errorString());
    return bytes;
}

bool isValidUtf8(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    Q_UNUSED(text);
    return !decoder.hasError();
}

// No byte of a longer character equals a line feed, so lines can be judged one by one.
int firstInvalidLine(const QByteArray& bytes) {
    int line = 1;
    qsizetype start = 0;
    while (true) {
        const qsizetype end = bytes.indexOf('\n', start);
        const qsizetype length = (end < 0 ? bytes.size() : end) - start;
        if (end < 0 || !isValidUtf8(QByteArrayView(bytes).sliced(start, length))) return line;
        start = end + 1;
        ++line;
    }
}

}  // namespace

QString decodeUtf8(const QByteArray& bytes, const QString& name) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        throw orv::Error(QStringLiteral("%1 is not valid UTF-8 text (line %2).")
                             .arg(name)
                             .arg(firstInvalidLine(bytes)));
    }
    return text;
}

QString readTextFile(const QString& path) {
    if (path == QStringView(standardInputName)) {
        return decodeUtf8(readStandardInput(), QStringLiteral("Standard input"));
    }
    return decodeUtf8(readBytes(path), QStringLiteral("The file \"%1\"").arg(path));
}

}  // namespace orvquery
