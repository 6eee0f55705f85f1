// SPDX-License-Identifier: MIT
#include "database/QueryThread.h"

#include "core/Error.h"
#include "database/Problem.h"

#include <QDeadlineTimer>
#include <QScopeGuard>
#include <QThread>

#include <algorithm>
#include <condition_variable>

namespace orvquery {

namespace {

// A query that was about to begin would miss a single call.
constexpr std::chrono::milliseconds stopAgain(50);

// A server that is there answers sooner.
constexpr std::chrono::milliseconds usualPatience(5000);

// Whoever closes the window waits for this.
constexpr std::chrono::milliseconds mostPatienceAtEnd(2000);

std::atomic<int> runningThreads = 0;
std::atomic<bool> isAnyAbandoned = false;

// A server would send all the rest before a connection can be closed; so it is stopped at the last
// row that is wanted.
class EndingSink : public RowSink {
public:
    EndingSink(RowSink& sink, StopPoint& stop) : m_sink(sink), m_stop(stop) {}

    void begin(const QStringList& columns) override { m_sink.begin(columns); }
    bool row(const Row& values) override {
        try {
            if (m_sink.row(values)) return true;
        } catch (...) {
            m_stop.stop();
            throw;
        }
        m_stop.stop();
        return false;
    }

private:
    RowSink& m_sink;
    StopPoint& m_stop;
};

}  // namespace

void StopPoint::setCall(StopCall call) {
    const std::lock_guard lock(m_mutex);
    m_call = std::move(call);
}

void StopPoint::stop() {
    m_isStopped = true;
    const std::lock_guard lock(m_mutex);
    if (m_call) m_call();
}

RowSource rowsOfQuery(const ConnectionSettings& settings, const QString& statement,
                      const PlaceholderValues& values) {
    return [=](RowSink& sink, StopPoint& stop) {
        Connection connection(settings);
        connection.openOrRaise();
        stop.setCall(connection.letStop(stop.isStopped()));
        const auto forgetCall = qScopeGuard([&stop] { stop.setCall({}); });
        EndingSink ending(sink, stop);
        runQuery(connection.database(), statement, ending, values);
    };
}

/// What the threads share.
struct QueryThread::Job : public RowSink {
    RowSource source;
    std::shared_ptr<RowSink> sink;
    StopPoint stop;
    QueryEnd end;  ///< belongs to the source's thread until that has ended

    void run();
    void keepStopping();
    void begin(const QStringList& columns) override { sink->begin(columns); }
    bool row(const Row& values) override;

private:
    bool m_isRefused = false;  ///< a row came after the stop
    std::mutex m_mutex;
    std::condition_variable m_change;
    bool m_hasEnded = false;
};

bool QueryThread::Job::row(const Row& values) {
    if (!stop.isWanted() && sink->row(values)) return true;
    m_isRefused = stop.isWanted();
    return false;
}

void QueryThread::Job::run() {
    QElapsedTimer timer;
    timer.start();
    end.error = problemOf([this] { source(*this, stop); });
    stop.setCall({});
    // What had ended by itself when it was stopped has its result.
    end.isStopped = stop.isWanted() && (m_isRefused || !end.error.isEmpty());
    if (end.isStopped) end.error.clear();
    end.milliseconds = timer.elapsed();
    const std::lock_guard lock(m_mutex);
    m_hasEnded = true;
    m_change.notify_all();
}

// The call may wait for a server that is no longer there.
void QueryThread::Job::keepStopping() {
    std::unique_lock lock(m_mutex);
    while (!m_hasEnded) {
        lock.unlock();
        try {
            stop.stop();
        } catch (...) {
            // It is called again soon.
        }
        lock.lock();
        m_change.wait_for(lock, stopAgain, [this] { return m_hasEnded; });
    }
}

QueryThread::QueryThread(QObject* parent) : QObject(parent) {
    m_patience.setSingleShot(true);
    setPatience(usualPatience);
    connect(&m_patience, &QTimer::timeout, this, &QueryThread::abandon);
}

QueryThread::~QueryThread() {
    if (!m_job) return;
    stop();
    const QDeadlineTimer deadline(std::min(mostPatienceAtEnd, m_patience.intervalAsDuration()));
    const bool haveEnded = std::all_of(m_threads.begin(), m_threads.end(),
                                       [&](QThread* thread) { return thread->wait(deadline); });
    if (haveEnded) {
        qDeleteAll(m_threads);
    } else {
        letThreadsGo();
    }
}

int QueryThread::threadsAtLarge() {
    return runningThreads;
}

bool QueryThread::hasAbandoned() {
    return isAnyAbandoned;
}

void QueryThread::setPatience(std::chrono::milliseconds patience) {
    m_patience.setInterval(patience);
}

QThread* QueryThread::makeThread(const std::function<void()>& work) {
    ++runningThreads;
    m_threads.push_back(QThread::create([work] {
        work();
        --runningThreads;
    }));
    return m_threads.back();
}

void QueryThread::start(RowSource source, std::shared_ptr<RowSink> sink) {
    if (m_job) return;
    m_job = std::make_shared<Job>();
    m_job->source = std::move(source);
    m_job->sink = std::move(sink);
    m_timer.start();
    QThread* thread = makeThread([job = m_job] { job->run(); });
    // What an abandoned thread told before is on its way nevertheless.
    connect(thread, &QThread::finished, this, [this, job = m_job] {
        if (m_job == job) end();
    });
    thread->start();
}

void QueryThread::stop() {
    if (!m_job || !m_job->stop.want()) return;
    // Only now: a row that the sink refuses before would count as the last one that it needs.
    m_job->sink->stop();
    makeThread([job = m_job] { job->keepStopping(); })->start();
    m_patience.start();
}

void QueryThread::end() {
    m_patience.stop();
    for (QThread* thread : m_threads) thread->wait();
    qDeleteAll(m_threads);
    m_threads.clear();
    const QueryEnd end = m_job->end;
    m_job.reset();
    Q_EMIT ended(end);
}

void QueryThread::abandon() {
    if (!m_job) return;
    if (m_threads.front()->isFinished()) return end();
    letThreadsGo();
    m_job.reset();
    Q_EMIT ended({QStringLiteral("Stopped; the database did not answer, so its connection was "
                                 "given up."),
                  true, true, m_timer.elapsed()});
}

// Each goes when it has ended.
void QueryThread::letThreadsGo() {
    isAnyAbandoned = true;
    for (QThread* thread : m_threads) {
        disconnect(thread, nullptr, this, nullptr);
        connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        if (thread->isFinished()) thread->deleteLater();
    }
    m_threads.clear();
}

}  // namespace orvquery
