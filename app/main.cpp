// SPDX-License-Identifier: MIT
// The program: a window, or one of the outputs of the command line.
#include "batch/Batch.h"
#include "batch/Options.h"
#include "database/QueryThread.h"
#include "database/WorkerThread.h"
#include "toolkit/Services.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>

#ifdef Q_OS_UNIX
#include "window/DocumentController.h"
#include "window/EndSignals.h"
#endif

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#endif

using namespace orvquery;

namespace {

constexpr int usageStatus = 2;

// Qt decodes them as the platform has them; this comes before it is known which application object
// is needed.
QStringList argumentsOf(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return QCoreApplication::arguments().mid(1);
}

int printOut(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

void setNames() {
    QCoreApplication::setApplicationName(QStringLiteral("orvquery"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVQUERY_VERSION));
}

// Places on the diagram follow from how wide texts are; what is written does not.
bool needsFonts(Output output) {
    switch (output) {
    case Output::Print:
    case Output::Explain:
    case Output::Compare:
    case Output::Run: return false;
    case Output::State:
    case Output::StateOfEach:
    case Output::Render:
    case Output::Window:
    case Output::Help:
    case Output::Version: break;
    }
    return true;
}

int runBatch(const Options& options, int argc, char** argv) {
    // The diagram is laid out and drawn by widgets; these need a platform, but no display. One
    // without fonts starts in half the time; where it is missing, the other one serves.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", needsFonts(options.output) ? "offscreen" : "minimal;offscreen");
    }
    // What the toolkit thinks of its surroundings is not for those who read our lines;
    // QT_LOGGING_RULES brings it back.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const QApplication application(argc, argv);
#ifdef Q_OS_WIN
    // The control chooses the line breaks.
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    QFile output;
    QFile errors;
    if (!output.open(stdout, QIODevice::WriteOnly) ||
        !errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return 1;
    }
    return Batch(options, output, errors).run();
}

int runWindow(const Options& options, int argc, char** argv) {
    const QApplication application(argc, argv);
    int status = 0;
    {
        MainWindow window;
#ifdef Q_OS_UNIX
        const EndSignals ending([&] { window.documents().endAtOnce(); });
#endif
        window.show();
        // Within the loop: a window that is closed while its database is opened ends the program.
        QMetaObject::invokeMethod(
            &window, [&] { orv::guarded([&] { window.begin(options); }); }, Qt::QueuedConnection);
        status = QApplication::exec();
    }
    // A thread that waits for a database which does not answer still uses what would be cleaned up,
    // and so may one that is about to end; everything was saved by now.
    if (QueryThread::hasAbandoned() || WorkerThread::hasAbandoned()) std::_Exit(status);
    return status;
}

int run(int argc, char** argv) {
    setNames();
    const Options options = parseOptions(argumentsOf(argc, argv));
    switch (options.output) {
    case Output::Help: return printOut(helpText());
    case Output::Version:
        return printOut(QStringLiteral("orvquery %1\n").arg(QStringLiteral(ORVQUERY_VERSION)));
    case Output::Window: return runWindow(options, argc, argv);
    case Output::Print:
    case Output::Explain:
    case Output::State:
    case Output::StateOfEach:
    case Output::Compare:
    case Output::Run:
    case Output::Render: return runBatch(options, argc, argv);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "orvquery: %s; see orvquery --help\n", error.what());
        return usageStatus;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvquery: %s\n", error.what());
        return 1;
    }
}
