// SPDX-License-Identifier: MIT
#include "tables/Host.h"

#include "data/ProcessName.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFloatPanel.h"

namespace orvquery {

namespace {

constexpr int roomForLinksPx = 60;

}  // namespace

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
    TorvQDListOfTables& tables = *builder.ListOfTables;
    TorvQDTable* box = table->parameters
                           ? tables.AddProc(table->name, table->columns, *table->parameters)
                           : tables.AddTable(table->name, table->columns);
    if (!box) return false;
    builder.WorkArea->fitWidth(*box);
    builder.WorkArea->placeAgain({box}, roomForLinksPx);
    builder.WorkArea->ensureVisible(box->GetBoundsRect());
    return true;
}

void layOut(TorvQDWorkArea& diagram) {
    for (TorvQDTable* box : diagram.tablesByCreation()) diagram.fitWidth(*box);
    diagram.arrange();
}

}  // namespace orvquery
