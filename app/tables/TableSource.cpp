// SPDX-License-Identifier: MIT
#include "tables/TableSource.h"

#include "core/Text.h"

#include <algorithm>
#include <tuple>

namespace orvquery {

GoneTableError::GoneTableError(const TableName& name)
    : orv::Error(QStringLiteral("The table \"%1\" is not there any more.").arg(name.name)) {}

TableSource::~TableSource() = default;

// Within quotes every name is what it is.
QString TableSource::inStatement(const TableName& name) const {
    const bool isPlain = orv::isPlainIdentifier(name.name) && name.name == name.name.toUpper() &&
                         !reservedWords().contains(name.name);
    const QString table = isPlain ? name.name : orv::quotedName(name.name);
    return name.schema.isEmpty() ? table : orv::quotedName(name.schema) + u'.' + table;
}

void sortByName(std::vector<TableEntry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const TableEntry& left, const TableEntry& right) {
        const int schemas = left.schema.compare(right.schema, Qt::CaseInsensitive);
        if (schemas != 0) return schemas < 0;
        const int names = left.name.compare(right.name, Qt::CaseInsensitive);
        if (names != 0) return names < 0;
        return std::tie(left.schema, left.name) < std::tie(right.schema, right.name);
    });
}

void answerTableFields(const TableSource& source, const QString& nameInStatement,
                       std::unique_ptr<TDataSet>& dataSet, std::unique_ptr<TParams>& params) {
    std::optional<TableDescription> table = source.find(nameInStatement);
    if (!table) return;
    dataSet = std::make_unique<TDataSet>(std::move(table->columns));
    if (table->parameters) params = std::make_unique<TParams>(std::move(*table->parameters));
}

}  // namespace orvquery
