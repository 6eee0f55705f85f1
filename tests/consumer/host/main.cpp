// SPDX-License-Identifier: MIT
#include <orvquerybuilder/ORVQDWindow.h>

#include <QApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    TorvQueryBuilder builder;
    builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& ADataSet,
                                  std::unique_ptr<TParams>&) {
        ADataSet = std::make_unique<TDataSet>(TDataSet{{{"CUSTNO", ftInteger}}});
    };
    builder.LoadSQL("select custno from orders");
    const QString statement = builder.GetSQLStatment();
    QTextStream(stdout) << statement << '\n';
    return statement.contains("FROM ORDERS") ? 0 : 1;
}
