// SPDX-License-Identifier: MIT
#include "database/OpenDatabase.h"

#include "database/DatabaseFile.h"
#include "database/FirebirdDatabase.h"
#include "database/SqliteDatabase.h"

#include <QFileInfo>

namespace orvquery {

namespace {

QUrl firebirdAddress(const QString& path) {
    QUrl address = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    address.setScheme(QStringLiteral("firebird"));
    return address;
}

bool hasFirebirdSuffix(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == u"fdb" || suffix == u"gdb";
}

}  // namespace

// What a file holds counts; by its name is told only what is wrong with it.
std::unique_ptr<Database> openDatabase(const QString& address) {
    if (address.startsWith(QLatin1String("firebird://"), Qt::CaseInsensitive)) {
        return std::make_unique<FirebirdDatabase>(QUrl(address));
    }
    const QByteArray bytes = beginningOfFile(address, FirebirdDatabase::beginningSize);
    if (FirebirdDatabase::isBeginning(bytes) ||
        (hasFirebirdSuffix(address) && !bytes.startsWith("SQLite format 3"))) {
        return std::make_unique<FirebirdDatabase>(firebirdAddress(address));
    }
    return std::make_unique<SqliteDatabase>(address);
}

}  // namespace orvquery
