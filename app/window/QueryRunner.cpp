// SPDX-License-Identifier: MIT
#include "window/QueryRunner.h"

#include "core/Error.h"
#include "database/SqlErrorText.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QThread>

#include <atomic>
#include <chrono>
#include <mutex>

namespace orvquery {

namespace {

// A query that was about to begin would miss a single call.
constexpr std::chrono::milliseconds stopAgain(50);

// Collects rows until the query is to end.
class StoppableCollector : public RowCollector {
public:
    StoppableCollector(std::size_t mostRows, const std::atomic<bool>& isStopped)
        : RowCollector(mostRows), m_isStopped(isStopped) {}

    bool row(const Row& values) override { return !m_isStopped && RowCollector::row(values); }

private:
    const std::atomic<bool>& m_isStopped;
};

}  // namespace

/// What the two threads share. The outcome belongs to the query's thread until that has ended.
struct QueryRunner::Job {
    ConnectionSettings settings;
    QString statement;
    PlaceholderValues values;
    std::size_t mostRows = 0;
    std::atomic<bool> isStopped = false;
    std::shared_ptr<QueryOutcome> outcome = std::make_shared<QueryOutcome>();

    void run();
    void stop();

private:
    void setStopCall(StopCall call);
    void runOn(const QSqlDatabase& database);

    std::mutex m_stopMutex;
    StopCall m_stopCall;  ///< as long as the connection is open
};

void QueryRunner::Job::run() {
    QElapsedTimer timer;
    timer.start();
    try {
        Connection connection(settings);
        const QSqlError error = connection.open();
        if (error.isValid()) throw orv::Error(sqlErrorText(error));
        setStopCall(connection.letStop(isStopped));
        const auto forgetCall = qScopeGuard([this] { setStopCall({}); });
        runOn(connection.database());
    } catch (const orv::Error& error) {
        outcome->error = error.Message();
    } catch (const std::exception& error) {
        outcome->error = QString::fromUtf8(error.what());
    }
    outcome->isStopped = isStopped;
    outcome->milliseconds = timer.elapsed();
}

void QueryRunner::Job::setStopCall(StopCall call) {
    const std::lock_guard lock(m_stopMutex);
    m_stopCall = std::move(call);
}

void QueryRunner::Job::stop() {
    isStopped = true;
    const std::lock_guard lock(m_stopMutex);
    if (m_stopCall) m_stopCall();
}

void QueryRunner::Job::runOn(const QSqlDatabase& database) {
    StoppableCollector rows(mostRows, isStopped);
    runQuery(database, statement, rows, values);
    outcome->isCut = rows.isCut();
    outcome->columns = rows.columns();
    outcome->rows = rows.takeRows();
}

QueryRunner::QueryRunner(QObject* parent) : QObject(parent) {
    m_stopAgain.setInterval(stopAgain);
    connect(&m_stopAgain, &QTimer::timeout, this, &QueryRunner::stop);
}

QueryRunner::~QueryRunner() {
    if (!m_thread) return;
    do {
        stop();
    } while (!m_thread->wait(QDeadlineTimer(stopAgain)));
}

void QueryRunner::start(const ConnectionSettings& settings, const QString& statement,
                        const PlaceholderValues& values, std::size_t mostRows) {
    if (m_thread) return;
    m_job = std::make_shared<Job>();
    m_job->settings = settings;
    m_job->statement = statement;
    m_job->values = values;
    m_job->mostRows = mostRows;
    m_thread.reset(QThread::create([job = m_job] { job->run(); }));
    connect(m_thread.get(), &QThread::finished, this, &QueryRunner::end);
    m_thread->start();
}

void QueryRunner::stop() {
    if (!m_job) return;
    m_job->stop();
    m_stopAgain.start();
}

void QueryRunner::end() {
    m_stopAgain.stop();
    m_thread->wait();
    m_thread.reset();
    const std::shared_ptr<QueryOutcome> outcome = m_job->outcome;
    m_job.reset();
    Q_EMIT finished(outcome);
}

}  // namespace orvquery
