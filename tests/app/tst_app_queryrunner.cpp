// SPDX-License-Identifier: MIT
#include "QueryDesk.h"
#include "values/ShortenedValue.h"

#include <QThread>

using namespace orvquery;
using namespace apptest;

// Rows of a query as they come, and where they are cut.
class TestQueryRunner : public QObject, protected QueryDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void cleanup() { end(); }

    void rowsComeInTheirOrder();
    void rowsShowBeforeTheQueryEnds();
    void queryWithoutRowsHasColumns();
    void queryWaitsForSlowReader();
    void rowsAreCutAtTheirLimit();
    void exactlyTheLimitIsNotCut();
    void rowsAreCutAtTheLimitOfBytes();
    void firstRowComesHoweverLarge();
    void manyLargeValuesInOneRowAreBounded();
    void tenMillionRowsEndAtTheLimit();
    void hugeValuesAreShortened();
    void shortenedTextEndsWithWholeCharacter();
    void errorInTheMidstKeepsRows();
    void lostConnectionIsOneSentence();
    void cutQueryIsStoppedAtTheDatabase();
    void secondStartIsIgnored();
    void exceptionOfAnyKindIsToldAsError();
};

void TestQueryRunner::rowsComeInTheirOrder() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(numbers(25000));
    QVERIFY(runner.isRunning());
    QVERIFY(record.waitForEnd());
    QVERIFY(!runner.isRunning());
    QCOMPARE(record.columns, QStringList{"n"});
    QCOMPARE(record.begins, 1);
    QCOMPARE(record.rows.size(), std::size_t(25000));
    for (int number = 0; number < 25000; ++number) {
        QCOMPARE(record.rows[std::size_t(number)][0].toInt(), number);
    }
    QVERIFY(!record.outcome->isCut);
    QVERIFY(!record.outcome->end.isStopped);
    QCOMPARE(record.outcome->end.error, QString());
}

void TestQueryRunner::rowsShowBeforeTheQueryEnds() {
    QueryRunner runner;
    const Record record(runner);
    SilentDatabase database;
    runner.start(database.source({{1}, {2}}));
    QVERIFY(record.waitForRows(2));
    QVERIFY(runner.isRunning());
    QVERIFY(!record.outcome);
    database.released.release();
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(3));
}

void TestQueryRunner::queryWithoutRowsHasColumns() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(query("SELECT x, 1 AS y FROM t"));
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.columns, QStringList({"x", "y"}));
    QVERIFY(record.rows.empty());
    QCOMPARE(record.outcome->end.error, QString());
}

// The reader comes only after the query has been given all the time it wants.
void TestQueryRunner::queryWaitsForSlowReader() {
    RowFeed feed({}, nullptr);
    std::atomic<int> produced = 0;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        feed.begin({"n"});
        while (feed.row({produced.load()})) ++produced;
    }));
    thread->start();
    const auto most = int(RowFeed::batchRows);
    QVERIFY(QTest::qWaitFor([&] { return produced == most; }, timeoutMs));
    QCOMPARE(feed.take().rows.size(), RowFeed::batchRows);
    QVERIFY(QTest::qWaitFor([&] { return produced == 2 * most; }, timeoutMs));
    QCOMPARE(feed.take().rows.size(), RowFeed::batchRows);
    feed.close();
    QVERIFY(thread->wait());
    QVERIFY(produced <= 3 * most);
}

void TestQueryRunner::rowsAreCutAtTheirLimit() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(numbers(1001), {.mostRows = 1000});
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1000));
    QVERIFY(record.outcome->isCut);
    QVERIFY(!record.outcome->end.isStopped);
}

void TestQueryRunner::exactlyTheLimitIsNotCut() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(numbers(1000), {.mostRows = 1000});
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1000));
    QVERIFY(!record.outcome->isCut);
}

void TestQueryRunner::rowsAreCutAtTheLimitOfBytes() {
    QueryRunner runner;
    const Record record(runner);
    constexpr qsizetype mostBytes = 1000000;
    runner.start(
        [](RowSink& sink, StopPoint&) {
            sink.begin({"text"});
            // A text of 5000 characters has 10000 bytes.
            while (sink.row({QString(5000, u'x')})) {
            }
        },
        {.mostRows = 1000, .mostBytes = mostBytes});
    QVERIFY(record.waitForEnd());
    QVERIFY(record.outcome->isCut);
    QVERIFY(record.rows.size() > 90);
    QVERIFY(record.rows.size() < 100);
}

void TestQueryRunner::firstRowComesHoweverLarge() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(numbers(2), {.mostBytes = 1});
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1));
    QVERIFY(record.outcome->isCut);
}

void TestQueryRunner::manyLargeValuesInOneRowAreBounded() {
    QueryRunner runner;
    const Record record(runner);
    constexpr qsizetype mostBytes = 1000000;
    runner.start(
        [](RowSink& sink, StopPoint&) {
            QStringList columns;
            Row row;
            for (int column = 0; column < 200; ++column) {
                columns += QString::number(column);
                row += QByteArray(900000, 'x');
            }
            sink.begin(columns);
            sink.row(row);
        },
        {.mostBytes = mostBytes, .mostValueBytes = mostBytes});
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1));
    qsizetype bytes = 0;
    for (const QVariant& value : record.rows[0]) bytes += bytesOf(value);
    QVERIFY(bytes <= 2 * mostBytes);
}

void TestQueryRunner::tenMillionRowsEndAtTheLimit() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(
        query("WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n LIMIT 10000000) "
              "SELECT x, 'row ' || x FROM n"));
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.outcome->end.error, QString());
    QVERIFY(record.outcome->isCut);
    QVERIFY(!record.outcome->end.isStopped);
    QCOMPARE(record.rows.size(), RowLimits().mostRows);
    QCOMPARE(record.rows.back()[0].toInt(), 100000);
    QVERIFY(record.largestBatch <= RowFeed::batchRows);
    qsizetype bytes = 0;
    for (const Row& row : record.rows) {
        for (const QVariant& value : row) bytes += bytesOf(value);
    }
    QVERIFY(bytes <= RowLimits().mostBytes);
}

void TestQueryRunner::hugeValuesAreShortened() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(
        query("SELECT zeroblob(100000000) UNION ALL "
              "SELECT replace(hex(zeroblob(1000000)), '0', 'a') UNION ALL "
              "SELECT zeroblob(1048576) UNION ALL SELECT 'small'"));
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.outcome->end.error, QString());
    QCOMPARE(record.rows.size(), std::size_t(4));
    const auto bytes = record.rows[0][0].value<ShortenedValue>();
    QCOMPARE(bytes.size, qsizetype(100000000));
    QCOMPARE(bytes.beginning, QVariant(QByteArray(4096, '\0')));
    const auto text = record.rows[1][0].value<ShortenedValue>();
    QCOMPARE(text.size, qsizetype(2000000));
    QCOMPARE(text.beginning, QVariant(QString(2048, u'a')));
    // A megabyte to the byte stays as it is.
    QVERIFY(!isShortened(record.rows[2][0]));
    QCOMPARE(record.rows[3][0], QVariant("small"));
}

void TestQueryRunner::shortenedTextEndsWithWholeCharacter() {
    const QString bicycle = QString::fromUtf8("\xf0\x9f\x9a\xb2");
    const QVariant value = shortened(QString(2047, u'a') + bicycle, 4096);
    QVERIFY(isShortened(value));
    const auto part = value.value<ShortenedValue>();
    QCOMPARE(part.beginning, QVariant(QString(2047, u'a')));
    QCOMPARE(part.size, qsizetype(2049));
}

// The sum of the second row is too large for a number.
void TestQueryRunner::errorInTheMidstKeepsRows() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(query("SELECT abs(column1) FROM (VALUES (1), (-9223372036854775807 - 1))"));
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.outcome->end.error, QStringLiteral("The database says: integer overflow"));
    QVERIFY(!record.outcome->end.isStopped);
    QCOMPARE(record.rows, std::vector<Row>{Row{1}});
}

void TestQueryRunner::lostConnectionIsOneSentence() {
    QueryRunner runner;
    const Record record(runner);
    runner.start([](RowSink& sink, StopPoint&) {
        sink.begin({"a"});
        sink.row({1});
        throw orv::Error(QStringLiteral("The database says: server has gone away"));
    });
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1));
    QCOMPARE(record.outcome->end.error, QStringLiteral("The database says: server has gone away"));
    runner.start(numbers(1));
    QVERIFY(runner.isRunning());
    QVERIFY(QTest::qWaitFor([&] { return !runner.isRunning(); }, timeoutMs));
}

// A server would send all the other rows before the connection could be closed.
void TestQueryRunner::cutQueryIsStoppedAtTheDatabase() {
    static std::atomic<int> calls;
    calls = 0;
    ConnectionSettings settings = m_database->settings();
    settings.makeStopSwitch = [](const QSqlDatabase&, const std::atomic<bool>&) {
        return StopCall([] { ++calls; });
    };
    const QString statement = QStringLiteral("VALUES (1), (2), (3)");
    QueryRunner runner;
    const Record whole(runner);
    runner.start(rowsOfQuery(settings, statement, {}), {.mostRows = 3});
    QVERIFY(whole.waitForEnd());
    QCOMPARE(int(calls), 0);
    const Record cut(runner);
    runner.start(rowsOfQuery(settings, statement, {}), {.mostRows = 2});
    QVERIFY(cut.waitForEnd());
    QCOMPARE(int(calls), 1);
    QVERIFY(cut.outcome->isCut);
    QVERIFY(!cut.outcome->end.isStopped);
}

void TestQueryRunner::secondStartIsIgnored() {
    QueryRunner runner;
    const Record record(runner);
    runner.start(numbers(1));
    runner.start(numbers(2));
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.rows.size(), std::size_t(1));
    QCOMPARE(record.begins, 1);
}

void TestQueryRunner::exceptionOfAnyKindIsToldAsError() {
    QueryRunner runner;
    const Record record(runner);
    runner.start([](RowSink&, StopPoint&) { throw std::runtime_error("no memory"); });
    QVERIFY(record.waitForEnd());
    QCOMPARE(record.outcome->end.error, QStringLiteral("no memory"));
    QCOMPARE(record.begins, 0);
    const Record other(runner);
    runner.start([](RowSink&, StopPoint&) { throw 5; });
    QVERIFY(other.waitForEnd());
    QCOMPARE(other.outcome->end.error, QStringLiteral("It failed for an unknown reason."));
}

QTEST_GUILESS_MAIN(TestQueryRunner)
#include "tst_app_queryrunner.moc"
