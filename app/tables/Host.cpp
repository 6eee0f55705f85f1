// SPDX-License-Identifier: MIT
#include "tables/Host.h"

#include "data/ProcessName.h"
#include "querybuilder/ORVQDWindow.h"

namespace orvquery {

void connectTables(TorvQueryBuilder& builder, const TableSource& source) {
    lReservedWords() = source.reservedWords();
    builder.OnGetTableFields = [&source](const QString& nameOfTable,
                                         std::unique_ptr<TDataSet>& dataSet,
                                         std::unique_ptr<TParams>& params) {
        answerTableFields(source, nameOfTable, dataSet, params);
    };
}

bool addTable(TorvQueryBuilder& builder, const TableSource& source, const QString& name) {
    const std::optional<TableDescription> table = source.describe(name);
    if (!table) return false;
    return builder.ListOfTables->AddTable(table->name, table->columns) != nullptr;
}

}  // namespace orvquery
