// SPDX-License-Identifier: MIT
#pragma once

#include "database/QueryThread.h"
#include "database/RowFeed.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace orvquery {

/// What became of a query. A plain value.
struct QueryOutcome {
    QueryEnd end = {};
    bool isCut = false;  ///< there were more rows
};

/// Runs one query at a time in a thread of its own, so that the window stays alive, and hands its
/// rows over as they come, up to a limit.
class QueryRunner : public QObject {
    Q_OBJECT

public:
    explicit QueryRunner(QObject* parent = nullptr);
    ~QueryRunner() override;

    [[nodiscard]] bool isRunning() const { return m_feed != nullptr; }
    /// Since the start.
    [[nodiscard]] qint64 milliseconds() const { return m_thread.milliseconds(); }

    /// Starts the query whose rows these are; nothing when one runs.
    void start(RowSource source, RowLimits limits = {});

    /// Ends the query early; finished comes nevertheless, soon or after some seconds.
    void stop();

    /// How long a stopped query may take until its thread is abandoned.
    void setPatience(std::chrono::milliseconds patience) { m_thread.setPatience(patience); }

Q_SIGNALS:
    /// The query gives rows with these columns.
    void begun(const QStringList& columns);
    void rowsCame(const std::vector<orvquery::Row>& rows);
    void finished(const orvquery::QueryOutcome& outcome);

private:
    void rowsArrived(RowFeed::Arrival arrival);
    void takeRows();
    void end(const QueryEnd& end);

    QueryThread m_thread;
    std::shared_ptr<RowFeed> m_feed;  ///< while a query runs
    QTimer m_pace;
};

}  // namespace orvquery
