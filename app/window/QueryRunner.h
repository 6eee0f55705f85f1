// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "database/RunQuery.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QThread;

namespace orvquery {

/// What became of a query. A plain value.
struct QueryOutcome {
    QString error;  ///< empty when the rows are there
    bool isStopped = false;
    bool isCut = false;  ///< there were more rows
    qint64 milliseconds = 0;
    QStringList columns;
    std::vector<Row> rows;
};

/// Runs one query at a time in a thread of its own, so that the window stays alive, on a connection
/// of its own.
class QueryRunner : public QObject {
    Q_OBJECT

public:
    explicit QueryRunner(QObject* parent = nullptr);
    /// Stops the query that runs and waits for its end.
    ~QueryRunner() override;

    [[nodiscard]] bool isRunning() const { return m_thread != nullptr; }

    /// Starts a query with the values for its placeholders; nothing when one runs.
    void start(const ConnectionSettings& settings, const QString& statement,
               const PlaceholderValues& values, std::size_t mostRows);

    /// Ends the query early; finished comes nevertheless.
    void stop();

Q_SIGNALS:
    void finished(const std::shared_ptr<orvquery::QueryOutcome>& outcome);

private:
    struct Job;

    void end();

    QTimer m_stopAgain;
    std::unique_ptr<QThread> m_thread;
    std::shared_ptr<Job> m_job;
};

}  // namespace orvquery
