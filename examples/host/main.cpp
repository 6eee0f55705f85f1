// SPDX-License-Identifier: MIT
#include "HostWindow.h"
#include "Lending.h"

#include <QApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    HostWindow window;
    window.show();
    window.load(lending::firstStatement());
    if (app.arguments().contains("--print")) {
        QTextStream(stdout) << window.statement() << '\n';
        return 0;
    }
    return app.exec();
}
