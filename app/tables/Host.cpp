// SPDX-License-Identifier: MIT
#include "tables/Host.h"

#include "data/ProcessName.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFloatPanel.h"

namespace orvquery {

namespace {

constexpr int roomForLinksPx = 60;

// Boxes are called by their own name, with a number behind it when that is taken.
QString freeAlias(const TorvQDWorkArea& diagram, const QString& wanted) {
    QString alias = wanted;
    for (int number = 1; diagram.findTable(alias) != nullptr; ++number) {
        alias = wanted + QString::number(number);
    }
    return alias;
}

}  // namespace

void connectTables(TorvQueryBuilder& builder, const TableSource& source) {
    lReservedWords() = source.reservedWords();
    builder.OnGetTableFields = [&source, &builder](const QString& /*nameOfTable*/,
                                                   std::unique_ptr<TDataSet>& dataSet,
                                                   std::unique_ptr<TParams>& params) {
        answerTableFields(source, builder.TableAsWritten(), dataSet, params);
    };
}

bool addTable(TorvQueryBuilder& builder, const TableSource& source, const TableName& name) {
    const std::optional<TableDescription> table = source.describe(name);
    if (!table) throw GoneTableError(name);
    TorvQDListOfTables& tables = *builder.ListOfTables;
    TorvQDTable* box = table->parameters
                           ? tables.AddProc(table->name, table->columns, *table->parameters)
                           : tables.AddTable(table->name, table->columns);
    if (!box) return false;
    if (!table->alias.isEmpty()) {
        builder.WorkArea->renameTable(box, freeAlias(*builder.WorkArea, table->alias));
    }
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
