// SPDX-License-Identifier: MIT
#include "tables/TableSource.h"

#include <algorithm>

namespace orvquery {

TableSource::~TableSource() = default;

void sortByName(std::vector<TableEntry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const TableEntry& left, const TableEntry& right) {
        const int order = left.name.compare(right.name, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : left.name < right.name;
    });
}

void answerTableFields(const TableSource& source, const QString& nameOfTable,
                       std::unique_ptr<TDataSet>& dataSet, std::unique_ptr<TParams>& params) {
    std::optional<TableDescription> table = source.find(nameOfTable);
    if (!table) return;
    dataSet = std::make_unique<TDataSet>(std::move(table->columns));
    if (table->parameters) params = std::make_unique<TParams>(std::move(*table->parameters));
}

}  // namespace orvquery
