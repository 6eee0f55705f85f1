// SPDX-License-Identifier: MIT
#include "QueryForm.h"

#include <QApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QueryForm form;
    form.show();
    if (app.arguments().contains("--print")) {
        QTextStream(stdout) << form.statement() << '\n';
        return 0;
    }
    return app.exec();
}
