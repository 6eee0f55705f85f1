// SPDX-License-Identifier: MIT
#include "core/Error.h"
#include <orvquerybuilder/Error.h>
#include <orvquerybuilder/ORVQDFloatTable.h>
#include <orvquerybuilder/ORVQDWindow.h>

#include <QApplication>
#include <QTextStream>

namespace {

QTextStream out(stdout);

// What a program takes from the library beside plain calls: events with its classes, signals,
// exceptions, resources.
bool works() {
    TorvQueryBuilder builder;
    builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& ADataSet,
                                  std::unique_ptr<TParams>&) {
        ADataSet = std::make_unique<TDataSet>(TDataSet{{{"CUSTNO", ftInteger}}});
    };
    QStringList asked;
    builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* Table, TAddRemove, bool& CanDo) {
        asked << Table->TableName;
        CanDo = true;
    };
    int changes = 0;
    QObject::connect(&builder, &TorvQueryBuilder::StatementChanged, [&] { ++changes; });

    builder.LoadSQL("select custno from orders");
    const QString statement = builder.GetSQLStatment();
    out << statement << '\n';

    QString raised;
    try {
        builder.LoadSQL("delete from orders");
    } catch (const orv::Error& error) {
        raised = error.Message();
    }
    out << "Refused: " << raised << '\n';

    const bool hasPictures =
        builder.ImageList.size() == 2 && !builder.ImageList[0].pixmap(16, 16).isNull();
    return statement.contains("FROM ORDERS") && asked == QStringList{"ORDERS"} && changes == 1 &&
           !raised.isEmpty() && hasPictures;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    return works() ? 0 : hostStatus;
}
