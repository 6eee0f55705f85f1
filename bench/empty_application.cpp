// SPDX-License-Identifier: MIT
// An application of Qt that does nothing: the measure of starting, and of memory.
#include <QApplication>

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return 0;
}
