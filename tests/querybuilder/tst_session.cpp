// SPDX-License-Identifier: MIT
// Random sessions at the diagram: whatever a user and a host do one after the other, all that the
// control shows agrees. ORV_SESSION_EVENTS and ORV_SESSION_SEED change how much and what happens.
#include "support/RandomSession.h"

#include <algorithm>

namespace {

constexpr int sessions = 8;
constexpr int usualEvents = 2000;
constexpr int eventsPerState = 100;

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

QTEST_MAIN(SessionTest)
#include "tst_session.moc"
