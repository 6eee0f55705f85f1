// SPDX-License-Identifier: MIT
#pragma once

#include "database/RunQuery.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

namespace orvquery {

/// How much of a result is kept. A plain value.
struct RowLimits {
    std::size_t mostRows = 100000;
    qsizetype mostBytes = 64 * 1024 * 1024;
    /// A larger value is shortened.
    qsizetype mostValueBytes = 1024 * 1024;
};

/// Hands rows from the thread of a query to another thread, within limits. The query waits while
/// the other thread has a full batch before it, so that it can neither flood that thread nor fill
/// the memory. Shared by the two threads.
class RowFeed : public RowSink {
public:
    enum class Arrival { First, FullBatch };
    /// Told by the query's thread that there is something to take: once when rows, or the columns,
    /// have begun to come, and once when a batch is full.
    using Notice = std::function<void(Arrival)>;

    /// What has come since the last time.
    struct Batch {
        std::optional<QStringList> columns;
        std::vector<Row> rows;
    };

    RowFeed(RowLimits limits, Notice notice);

    void begin(const QStringList& columns) override;
    /// False when the limits are reached or no more rows are wanted.
    bool row(const Row& values) override;
    void stop() override { close(); }

    [[nodiscard]] Batch take();
    /// No more rows are wanted; those that have come can still be taken. There are no notices from
    /// now on.
    void close();
    /// Whether there were more rows than the limits allow.
    [[nodiscard]] bool isCut() const;

    static constexpr std::size_t batchRows = 1000;
    static constexpr qsizetype batchBytes = 4 * 1024 * 1024;

private:
    [[nodiscard]] bool isFull() const;
    void tell(Arrival arrival);

    const RowLimits m_limits;
    mutable std::mutex m_mutex;
    std::condition_variable m_hasRoom;
    Notice m_notice;  ///< none once it is closed
    Batch m_batch;
    qsizetype m_batchBytes = 0;
    qsizetype m_mostValueBytes = 0;
    std::size_t m_rows = 0;  ///< of all batches
    qsizetype m_bytes = 0;   ///< of all batches
    bool m_isTold = false;   ///< the first notice of this batch was given
    bool m_isClosed = false;
    bool m_isCut = false;
};

}  // namespace orvquery
