// SPDX-License-Identifier: MIT
#include "text/Completeness.h"

#include <QStringList>

namespace orvquery {

QString whatIsMissing(const QString& writtenStatement) {
    QString noTables = QStringLiteral("There are no tables in the diagram yet.");
    if (writtenStatement.isEmpty()) return noTables;
    const QStringList lines = writtenStatement.split(QStringLiteral("\r\n"));
    const QString columns = lines.front().trimmed();
    if (columns != u"SELECT" && columns != u"SELECT DISTINCT") return {};
    if (lines.value(1).trimmed() == u"FROM") return noTables;
    return QStringLiteral("No columns are ticked yet.");
}

}  // namespace orvquery
