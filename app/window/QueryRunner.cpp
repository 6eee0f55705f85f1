// SPDX-License-Identifier: MIT
#include "window/QueryRunner.h"

namespace orvquery {

namespace {

// Rows that trickle in are shown in groups; a person does not see the difference.
constexpr std::chrono::milliseconds timeBetweenRows(100);

}  // namespace

QueryRunner::QueryRunner(QObject* parent) : QObject(parent) {
    m_pace.setSingleShot(true);
    m_pace.setInterval(timeBetweenRows);
    connect(&m_pace, &QTimer::timeout, this, &QueryRunner::takeRows);
    connect(&m_thread, &QueryThread::ended, this, &QueryRunner::end);
}

QueryRunner::~QueryRunner() {
    if (m_feed) m_feed->close();
}

void QueryRunner::start(RowSource source, RowLimits limits) {
    if (m_feed) return;
    const auto notice = [this](RowFeed::Arrival arrival) {
        QMetaObject::invokeMethod(
            this, [this, arrival] { rowsArrived(arrival); }, Qt::QueuedConnection);
    };
    m_feed = std::make_shared<RowFeed>(limits, notice);
    m_thread.start(std::move(source), m_feed);
}

void QueryRunner::stop() {
    m_thread.stop();
}

// The first rows show at once, and so does what the query waits for.
void QueryRunner::rowsArrived(RowFeed::Arrival arrival) {
    if (arrival == RowFeed::Arrival::FullBatch || !m_pace.isActive()) takeRows();
}

void QueryRunner::takeRows() {
    if (!m_feed) return;
    const RowFeed::Batch batch = m_feed->take();
    if (!batch.columns && batch.rows.empty()) return;
    m_pace.start();
    if (batch.columns) Q_EMIT begun(*batch.columns);
    if (!batch.rows.empty()) Q_EMIT rowsCame(batch.rows);
}

void QueryRunner::end(const QueryEnd& end) {
    m_feed->close();
    takeRows();
    m_pace.stop();
    const bool isCut = m_feed->isCut();
    m_feed.reset();
    Q_EMIT finished({end, isCut});
}

}  // namespace orvquery
