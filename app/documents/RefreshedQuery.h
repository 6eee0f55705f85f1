// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QStringList>

namespace orvquery {

class TableSource;

/// A query with the columns that its tables have now. A plain value.
struct RefreshedQuery {
    QJsonObject query;
    QStringList missingTables;  ///< the source does not have; they stay as the query knows them
    QStringList
        missingColumns;    ///< "TABLE.COLUMN" of the others; these stay as the query uses them
    QStringList problems;  ///< sentences: columns of tables that cannot be read
};

/// The query, as documents have it, on the tables of the source. Nothing of it is lost: a column
/// that a table no longer has goes only when nothing of the query needs it.
[[nodiscard]] RefreshedQuery refreshed(const QJsonObject& query, const TableSource& tables);

}  // namespace orvquery
