// SPDX-License-Identifier: MIT
#include "sample/SampleQueries.h"

#include <QFile>

namespace orvquery {

namespace {

SampleQuery query(const QString& title, const char* name) {
    QFile file(QStringLiteral(":/orvquery/sample/%1.sql").arg(QLatin1String(name)));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isOpen);
    Q_UNUSED(isOpen);
    return {title, QString::fromUtf8(file.readAll())};
}

}  // namespace

std::vector<SampleQuery> sampleQueries() {
    return {query(QStringLiteral("Which orders are open?"), "open-orders"),
            query(QStringLiteral("Which categories have dear parts?"), "dear-parts"),
            query(QStringLiteral("Which suppliers deliver nothing?"), "idle-suppliers")};
}

}  // namespace orvquery
