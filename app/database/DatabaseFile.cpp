// SPDX-License-Identifier: MIT
#include "database/DatabaseFile.h"

#include "core/Error.h"

#include <QFile>
#include <QFileInfo>

namespace orvquery {

void failWithFile(const QString& path, const QString& what) {
    throw orv::Error(QStringLiteral("The database file \"%1\" %2.").arg(path, what));
}

QByteArray beginningOfFile(const QString& path, qsizetype size) {
    if (path.isEmpty()) throw orv::Error(QStringLiteral("The name of the database file is empty."));
    const QFileInfo info(path);
    if (!info.exists()) failWithFile(path, QStringLiteral("does not exist"));
    if (info.isDir()) failWithFile(path, QStringLiteral("is a folder"));
    if (!info.isFile()) failWithFile(path, QStringLiteral("is not a regular file"));
    QFile file(path);
    if (!info.isReadable()) failWithFile(path, QStringLiteral("cannot be read: permission denied"));
    if (!file.open(QIODevice::ReadOnly)) {
        failWithFile(path, QStringLiteral("cannot be read: ") + file.errorString());
    }
    if (file.size() == 0) failWithFile(path, QStringLiteral("is empty"));
    return file.read(size);
}

}  // namespace orvquery
