// SPDX-License-Identifier: MIT
// Random sessions at the diagram: whatever a user and a host do one after the other, all that the
// control shows agrees. ORV_SESSION_EVENTS and ORV_SESSION_SEED change how much and what happens.
#include "support/RandomSession.h"

#include <QApplication>

#include <algorithm>

namespace {

/// Looks out for what no program outlives: an error that leaves an event.
class WatchingApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        bool isHandled = true;
        const QString error =
            orvtest::anyErrorOf([&] { isHandled = QApplication::notify(receiver, event); });
        if (error != "(no error)") {
            escaped = QStringLiteral("an error leaves event %1 of %2: %3")
                          .arg(int(event->type()))
                          .arg(QLatin1String(receiver->metaObject()->className()), error);
        }
        return isHandled;
    }

    QString escaped;
};

constexpr int sessions = 8;
constexpr int usualEvents = 2000;
constexpr int eventsPerState = 100;

QString escapedError() {
    return static_cast<WatchingApplication*>(qApp)->escaped;
}

int numberFrom(const char* variable, int otherwise) {
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? number : otherwise;
}

}  // namespace

class SessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void rulesHoldAfterEveryEvent_data() {
        QTest::addColumn<int>("seed");
        const int first = numberFrom("ORV_SESSION_SEED", 1);
        for (int seed = first; seed < first + sessions; ++seed) {
            QTest::addRow("seed %d", seed) << seed;
        }
    }
    void rulesHoldAfterEveryEvent() {
        QFETCH(int, seed);
        const int events = std::max(1, numberFrom("ORV_SESSION_EVENTS", usualEvents) / sessions);
        orvtest::RandomSession session{quint32(seed)};
        for (int event = 1; event <= events; ++event) {
            QString broken = session.step();
            if (broken.isEmpty()) broken = escapedError();
            if (broken.isEmpty() && event % eventsPerState == 0) broken = session.brokenState();
            if (broken.isEmpty() && !QTest::currentTestFailed()) continue;
            QFAIL(qPrintable(QStringLiteral("%1\nseed %2, event %3; the last events:\n%4")
                                 .arg(broken)
                                 .arg(seed)
                                 .arg(event)
                                 .arg(session.lastEvents())));
        }
    }
};

int main(int argc, char* argv[]) {
    WatchingApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    SessionTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_session.moc"
