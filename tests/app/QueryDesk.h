// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "database/SqliteDatabase.h"
#include "window/QueryRunner.h"

#include <QSemaphore>
#include <QTemporaryDir>

#include <optional>

// What the tests of queries in their own threads share.
namespace apptest {

inline constexpr int timeoutMs = 60000;

/// What a runner tells, in its order.
struct Record {
    explicit Record(orvquery::QueryRunner& runner) {
        QObject::connect(&runner, &orvquery::QueryRunner::begun, &runner,
                         [this](const QStringList& names) {
                             columns = names;
                             ++begins;
                         });
        QObject::connect(&runner, &orvquery::QueryRunner::rowsCame, &runner,
                         [this](const std::vector<orvquery::Row>& batch) {
                             rows.insert(rows.end(), batch.begin(), batch.end());
                             largestBatch = std::max(largestBatch, batch.size());
                         });
        QObject::connect(&runner, &orvquery::QueryRunner::finished, &runner,
                         [this](const orvquery::QueryOutcome& end) { outcome = end; });
    }

    [[nodiscard]] bool waitForEnd() const {
        return QTest::qWaitFor([this] { return outcome.has_value(); }, timeoutMs);
    }
    [[nodiscard]] bool waitForRows(std::size_t count) const {
        return QTest::qWaitFor([&] { return rows.size() >= count; }, timeoutMs);
    }

    QStringList columns;
    int begins = 0;
    std::vector<orvquery::Row> rows;
    std::size_t largestBatch = 0;
    std::optional<orvquery::QueryOutcome> outcome;
};

/// A database that does not answer until the test lets it.
struct SilentDatabase {
    QSemaphore released;
    QSemaphore hasBegun;

    [[nodiscard]] orvquery::RowSource source(const std::vector<orvquery::Row>& rowsBefore = {}) {
        return [this, rowsBefore](orvquery::RowSink& sink, orvquery::StopPoint&) {
            sink.begin({"a"});
            for (const orvquery::Row& row : rowsBefore) sink.row(row);
            hasBegun.release();
            released.acquire();
            sink.row({"too late"});
            released.release();
        };
    }
};

inline bool waitForThreads() {
    return QTest::qWaitFor([] { return orvquery::QueryThread::threadsAtLarge() == 0; }, timeoutMs);
}

inline orvquery::RowSource numbers(int count) {
    return [count](orvquery::RowSink& sink, orvquery::StopPoint&) {
        sink.begin({"n"});
        for (int number = 0; number < count; ++number) {
            if (!sink.row({number})) return;
        }
    };
}

/// A database that answers. A base of test classes.
class QueryDesk {
protected:
    // For the slots of the same purpose.
    void setUp();
    void end();

    [[nodiscard]] orvquery::RowSource query(const QString& statement) const;

    QTemporaryDir m_folder;
    std::unique_ptr<orvquery::SqliteDatabase> m_database;
};

inline void QueryDesk::setUp() {
    const QString path = m_folder.filePath(QStringLiteral("a.db"));
    QVERIFY(runStatements(path, {"CREATE TABLE t (x)"}));
    m_database = std::make_unique<orvquery::SqliteDatabase>(path);
}

inline void QueryDesk::end() {
    QVERIFY(waitForThreads());
    QCOMPARE(QSqlDatabase::connectionNames().size(), 1);
}

inline orvquery::RowSource QueryDesk::query(const QString& statement) const {
    return orvquery::rowsOfQuery(m_database->settings(), statement, {});
}

}  // namespace apptest
