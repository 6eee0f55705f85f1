// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"
#include "database/RunQuery.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class QThread;

namespace orvquery {

/// What ends a query that runs in another thread. Shared by the threads.
class StopPoint {
public:
    /// Whether somebody wants the query to end.
    [[nodiscard]] bool isWanted() const { return m_isWanted; }
    /// Whoever wants it calls stop, too. False when it was wanted before.
    bool want() { return !m_isWanted.exchange(true); }

    /// What the database looks at: becomes true when the query is to end, also because no more of
    /// its rows are needed.
    [[nodiscard]] const std::atomic<bool>& isStopped() const { return m_isStopped; }

    /// What is to be called then; none before the connection goes, which waits for a call that is
    /// under way.
    void setCall(StopCall call);

    /// Ends the query; may take as long as the database does.
    void stop();

private:
    std::atomic<bool> m_isWanted = false;
    std::atomic<bool> m_isStopped = false;
    std::mutex m_mutex;
    StopCall m_call;
};

/// Hands rows to a sink, in whatever thread it is called, until there are no more, the sink takes
/// no more or it is stopped. Raises orv::Error.
using RowSource = std::function<void(RowSink& sink, StopPoint& stop)>;

/// The rows of a query on a connection of its own.
[[nodiscard]] RowSource rowsOfQuery(const ConnectionSettings& settings, const QString& statement,
                                    const PlaceholderValues& values);

/// How the work of a QueryThread ended. A plain value.
struct QueryEnd {
    QString error = {};  ///< one sentence; empty when all went well or it was stopped
    bool isStopped = false;
    bool isAbandoned = false;  ///< it was stopped, but did not end
    qint64 milliseconds = 0;
};

/// Runs one row source at a time in a thread of its own. When a source does not end within some
/// time after it was stopped, its thread is abandoned: that goes on by itself, with what it shares,
/// and whatever it does is of no interest any more.
class QueryThread : public QObject {
    Q_OBJECT

public:
    explicit QueryThread(QObject* parent = nullptr);
    /// Stops what runs, waits for some time for its end and abandons it otherwise. Tells nothing.
    ~QueryThread() override;

    [[nodiscard]] bool isRunning() const { return m_job != nullptr; }
    /// Since the start; of the thread's own time.
    [[nodiscard]] qint64 milliseconds() const { return m_timer.elapsed(); }

    /// Starts the source, which hands its rows to the sink; nothing when one runs.
    void start(RowSource source, std::shared_ptr<RowSink> sink);

    /// Ends the source early; ended comes nevertheless.
    void stop();

    /// How long a stopped source may take until its thread is abandoned.
    void setPatience(std::chrono::milliseconds patience);

    /// The threads of all objects of this class whose work has not ended, the abandoned ones
    /// included.
    [[nodiscard]] static int threadsAtLarge();

    /// Whether a thread was ever abandoned. Nobody knows when that is over, even after its work;
    /// so the program cannot clean up and return from main any more.
    [[nodiscard]] static bool hasAbandoned();

Q_SIGNALS:
    void ended(const orvquery::QueryEnd& end);

private:
    struct Job;

    QThread* makeThread(const std::function<void()>& work);
    void end();
    void abandon();
    void letThreadsGo();

    std::shared_ptr<Job> m_job;
    std::vector<QThread*> m_threads;  ///< the source's, and then the one that stops it
    QElapsedTimer m_timer;
    QTimer m_patience;
};

}  // namespace orvquery
