// SPDX-License-Identifier: MIT
// The smallest host: two tables, and below the control the statement of what is drawn and ticked.
#include <orvquerybuilder/ORVQDWindow.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QTextStream>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QSplitter window(Qt::Vertical);
    auto* builder = new TorvQueryBuilder(&window);
    auto* statement = new QPlainTextEdit(&window);

    QObject::connect(builder, &TorvQueryBuilder::StatementChanged, statement, [=] {
        try {
            statement->setPlainText(builder->GetSQLStatment());
        } catch (const std::exception& error) {  // neither grouped nor aggregated, say
            statement->setPlainText(QString::fromUtf8(error.what()));
        }
    });
    builder->OnGetTableFields = [](const QString& name, auto& columns, auto&) {
        TDataSet orders{{{"CUSTNO", ftInteger}, {"PRICE", ftFloat}}};
        TDataSet customers{{{"CUSTNO", ftInteger}, {"NAME", ftString}}};
        columns = std::make_unique<TDataSet>(name == "ORDERS" ? orders : customers);
    };
    builder->LoadSQL("SELECT C.NAME, O.PRICE FROM CUSTOMERS C, ORDERS O");

    if (app.arguments().contains("--print")) {
        QTextStream(stdout) << statement->toPlainText() << '\n';
        return 0;
    }
    window.resize(700, 600);
    window.setSizes({450, 150});
    window.show();
    return app.exec();
}
