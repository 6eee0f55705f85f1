// SPDX-License-Identifier: MIT
#include "QueryDesk.h"
#include "database/WorkerThread.h"

#include <QThread>

using namespace orvquery;
using namespace apptest;
using namespace std::chrono_literals;

// Queries that are stopped, and those that do not listen to that.
class TestQueryStop : public QObject, protected QueryDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void cleanup() { end(); }

    void onlyAbandonedThreadsCountAsSuch();
    void stopEndsQuery();
    void stopEndsQueryThatWaitsForReader();
    void rowThatIsRefusedByStopCountsAsStopped();
    void stopAfterTheEndChangesNothing();
    void stopIsCalledElsewhereAndAgain();
    void stopCallThatBlocksDoesNotBlockTheWindow();
    void silentDatabaseIsAbandoned();
    void abandonedQueryKeepsRowsThatCame();
    void runnerIsFreeAfterAbandoning();
    void abandonedQueryOutlivesItsRunner();
    void runnerGoesWhileQueryRuns();
    void stopCallMayRaiseAnything();
};

// The first test, because there is no way back.
void TestQueryStop::onlyAbandonedThreadsCountAsSuch() {
    {
        QueryRunner runner;
        const Record record(runner);
        runner.start(numbers(1));
        QVERIFY(record.waitForEnd());
        WorkerThread worker([] {});
        QVERIFY(worker.end(std::chrono::milliseconds(timeoutMs)));
    }
    QVERIFY(!QueryThread::hasAbandoned());
    QVERIFY(!WorkerThread::hasAbandoned());
    SilentDatabase database;
    {
        QueryRunner runner;
        runner.setPatience(0ms);
        runner.start(database.source());
        database.hasBegun.acquire();
    }
    QVERIFY(QueryThread::hasAbandoned());
    database.released.release();
    QVERIFY(waitForThreads());
    // What a thread does behind its work is not over yet.
    QVERIFY(QueryThread::hasAbandoned());
    QVERIFY(!WorkerThread::hasAbandoned());
    QSemaphore released;
    {
        WorkerThread worker([&released] { released.acquire(); });
        QVERIFY(!worker.end(0ms));
    }
    released.release();
    QVERIFY(QTest::qWaitFor([] { return WorkerThread::threadsAtLarge() == 0; }, timeoutMs));
    QVERIFY(WorkerThread::hasAbandoned());
}

void TestQueryStop::stopEndsQuery() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(
        query("WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n) "
              "SELECT max(x) FROM n"));
    runner.stop();
    runner.stop();
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->end.isStopped);
    QVERIFY(!record.outcome->end.isAbandoned);
    QCOMPARE(record.outcome->end.error, QString());
}

void TestQueryStop::stopEndsQueryThatWaitsForReader() {
    QueryRunner runner;
    const Record record(runner);
    std::atomic<int> produced = 0;
    runner.start([&](RowSink& sink, StopPoint&) {
        sink.begin({"n"});
        while (sink.row({produced.load()})) ++produced;
    });
    // Nothing is read meanwhile, because no event is handled.
    while (produced < int(RowFeed::batchRows)) QThread::yieldCurrentThread();
    runner.stop();
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->end.isStopped);
    QVERIFY(!record.outcome->end.isAbandoned);
    QVERIFY(!record.outcome->isCut);
    QCOMPARE(record.rows.size(), RowFeed::batchRows);
}

// The query ends while the sink is being told, which is as soon as it can.
void TestQueryStop::rowThatIsRefusedByStopCountsAsStopped() {
    class WaitingSink : public RowSink {
    public:
        void begin(const QStringList&) override {}
        bool row(const Row&) override {
            isWaiting.release();
            isStopped.acquire();
            return false;
        }
        void stop() override {
            isStopped.release();
            hasEnded.acquire();
        }
        QSemaphore isWaiting;
        QSemaphore isStopped;
        QSemaphore hasEnded;
    };
    const auto waiting = std::make_shared<WaitingSink>();
    std::optional<QueryEnd> end;
    QueryThread thread;
    connect(&thread, &QueryThread::ended, this, [&](const QueryEnd& told) { end = told; });
    thread.start(
        [waiting](RowSink& sink, StopPoint&) {
            sink.begin({"n"});
            sink.row({1});
            waiting->hasEnded.release();
        },
        waiting);
    waiting->isWaiting.acquire();
    thread.stop();
    QVERIFY(QTest::qWaitFor([&] { return end.has_value(); }, timeoutMs));
    QVERIFY(end->isStopped);
    QVERIFY(!end->isAbandoned);
    QCOMPARE(end->error, QString());
}

// Its rows are all there, so nothing may be said against them.
void TestQueryStop::stopAfterTheEndChangesNothing() {
    QueryRunner runner;
    const Record record(runner);
    QSemaphore isStopped;
    QSemaphore hasBegun;
    runner.start([&](RowSink& sink, StopPoint&) {
        sink.begin({"n"});
        sink.row({1});
        hasBegun.release();
        isStopped.acquire();
    });
    hasBegun.acquire();
    runner.stop();
    isStopped.release();
    QVERIFY(record.waitForEnd());
    QVERIFY(!record.outcome->end.isStopped);
    QCOMPARE(record.rows.size(), std::size_t(1));
}

void TestQueryStop::stopIsCalledElsewhereAndAgain() {
    QueryRunner runner;
    const Record record(runner);
    QSemaphore calls;
    std::atomic<bool> isByWindow = false;
    QThread* const window = QThread::currentThread();
    runner.start([&](RowSink& sink, StopPoint& stop) {
        stop.setCall([&] {
            isByWindow = isByWindow || QThread::currentThread() == window;
            calls.release();
        });
        sink.begin({"n"});
        calls.acquire(3);
        throw orv::Error(QStringLiteral("interrupted"));
    });
    runner.stop();
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->end.isStopped);
    QVERIFY(!isByWindow);
}

void TestQueryStop::stopCallThatBlocksDoesNotBlockTheWindow() {
    QSemaphore released;
    {
        QueryRunner runner;
        const Record record(runner);
        QSemaphore isCalled;
        runner.setPatience(0ms);
        runner.start([&](RowSink& sink, StopPoint& stop) {
            stop.setCall([&] {
                isCalled.release();
                released.acquire();
                released.release();
            });
            sink.begin({"n"});
            released.acquire();
            released.release();
        });
        runner.stop();
        QVERIFY(record.waitForEnd());
        QVERIFY(record.outcome->end.isAbandoned);
        isCalled.acquire();
        QVERIFY(QueryThread::threadsAtLarge() > 0);
        released.release();
        QVERIFY(waitForThreads());
    }
}

void TestQueryStop::silentDatabaseIsAbandoned() {
    QueryRunner runner;
    const Record record(runner);
    SilentDatabase database;
    runner.setPatience(0ms);
    runner.start(database.source());
    database.hasBegun.acquire();
    runner.stop();
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->end.isStopped);
    QVERIFY(record.outcome->end.isAbandoned);
    QCOMPARE(record.outcome->end.error,
             QStringLiteral("Stopped; the database did not answer, so its connection was given "
                            "up."));
    QVERIFY(!runner.isRunning());
    QVERIFY(QueryThread::threadsAtLarge() > 0);
    database.released.release();
    QVERIFY(waitForThreads());
    QCoreApplication::processEvents();
    QCOMPARE(record.rows.size(), std::size_t(0));
}

void TestQueryStop::abandonedQueryKeepsRowsThatCame() {
    QueryRunner runner;
    const Record record(runner);
    SilentDatabase database;
    runner.setPatience(0ms);
    runner.start(database.source({{1}, {2}, {3}}));
    database.hasBegun.acquire();
    runner.stop();
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows, (std::vector<Row>{{1}, {2}, {3}}));
    database.released.release();
    QVERIFY(waitForThreads());
}

void TestQueryStop::runnerIsFreeAfterAbandoning() {
    QueryRunner runner;
    SilentDatabase database;
    runner.setPatience(0ms);
    {
        const Record record(runner);
        runner.start(database.source());
        database.hasBegun.acquire();
        runner.stop();
        QVERIFY(record.waitForEnd());
        runner.disconnect();
    }
    // The old one ends while the new one runs: that must not end the new one.
    SilentDatabase next;
    const Record record(runner);
    runner.start(next.source({{7}}));
    next.hasBegun.acquire();
    database.released.release();
    QVERIFY(QTest::qWaitFor([] { return QueryThread::threadsAtLarge() == 1; }, timeoutMs));
    QCoreApplication::processEvents();
    QVERIFY(runner.isRunning());
    QVERIFY(!record.outcome);
    next.released.release();
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows, (std::vector<Row>{{7}, {"too late"}}));
    QVERIFY(!record.outcome->end.isStopped);
}

void TestQueryStop::abandonedQueryOutlivesItsRunner() {
    SilentDatabase database;
    {
        QueryRunner runner;
        runner.setPatience(0ms);
        runner.start(database.source({{1}}));
        database.hasBegun.acquire();
    }
    QVERIFY(QueryThread::threadsAtLarge() > 0);
    database.released.release();
    QVERIFY(waitForThreads());
    QCoreApplication::processEvents();
}

void TestQueryStop::runnerGoesWhileQueryRuns() {
    {
        QueryRunner runner;
        runner.start(
            query("WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n) "
                  "SELECT max(x) FROM n"));
    }
    QCOMPARE(QueryThread::threadsAtLarge(), 0);
    {
        QueryRunner runner;
        runner.start(
            query("WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n) "
                  "SELECT x FROM n"));
    }
    QCOMPARE(QueryThread::threadsAtLarge(), 0);
}

void TestQueryStop::stopCallMayRaiseAnything() {
    QueryRunner runner;
    const Record record(runner);
    QSemaphore calls;
    runner.start([&](RowSink& sink, StopPoint& stop) {
        stop.setCall([&calls] {
            calls.release();
            throw 5;
        });
        sink.begin({"n"});
        calls.acquire(2);
        throw orv::Error(QStringLiteral("interrupted"));
    });
    runner.stop();
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->end.isStopped);
    QVERIFY(!record.outcome->end.isAbandoned);
}

QTEST_GUILESS_MAIN(TestQueryStop)
#include "tst_app_querystop.moc"
