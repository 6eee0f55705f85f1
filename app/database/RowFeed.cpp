// SPDX-License-Identifier: MIT
#include "database/RowFeed.h"

#include "values/ShortenedValue.h"

#include <algorithm>

namespace orvquery {

namespace {

// A list takes this beside its values.
constexpr qsizetype rowBytes = sizeof(Row) + 32;

}  // namespace

RowFeed::RowFeed(RowLimits limits, Notice notice) : m_limits(limits), m_notice(std::move(notice)) {}

void RowFeed::begin(const QStringList& columns) {
    const std::lock_guard lock(m_mutex);
    // A single row must not break the limit either.
    m_mostValueBytes = std::min(m_limits.mostValueBytes,
                                m_limits.mostBytes / std::max<qsizetype>(columns.size(), 1));
    m_batch.columns = columns;
    tell(Arrival::First);
}

bool RowFeed::row(const Row& values) {
    Row kept;
    kept.reserve(values.size());
    qsizetype bytes = rowBytes;
    for (const QVariant& value : values) {
        kept += shortened(value, m_mostValueBytes);
        bytes += bytesOf(kept.back());
    }
    std::unique_lock lock(m_mutex);
    m_hasRoom.wait(lock, [this] { return m_isClosed || !isFull(); });
    if (m_isClosed) return false;
    const bool isTooMuch = m_bytes + bytes > m_limits.mostBytes && m_rows > 0;
    if (m_rows >= m_limits.mostRows || isTooMuch) {
        m_isCut = true;
        return false;
    }
    ++m_rows;
    m_bytes += bytes;
    m_batchBytes += bytes;
    m_batch.rows.push_back(std::move(kept));
    tell(Arrival::First);
    if (isFull()) tell(Arrival::FullBatch);
    return true;
}

bool RowFeed::isFull() const {
    return m_batch.rows.size() >= batchRows || m_batchBytes >= batchBytes;
}

// The lock is held: whoever has closed the feed may die.
void RowFeed::tell(Arrival arrival) {
    const bool isOld = arrival == Arrival::First && std::exchange(m_isTold, true);
    if (m_notice && !isOld) m_notice(arrival);
}

RowFeed::Batch RowFeed::take() {
    const std::lock_guard lock(m_mutex);
    m_isTold = false;
    m_batchBytes = 0;
    m_hasRoom.notify_all();
    return std::exchange(m_batch, Batch());
}

void RowFeed::close() {
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_notice = nullptr;
    m_hasRoom.notify_all();
}

bool RowFeed::isCut() const {
    const std::lock_guard lock(m_mutex);
    return m_isCut;
}

}  // namespace orvquery
