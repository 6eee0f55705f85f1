// SPDX-License-Identifier: MIT
#pragma once

#include "database/RunQuery.h"

#include <atomic>

namespace orvquery {

/// Counts rows while they are read, up to a number from which on nobody needs to know more. Other
/// threads may ask for the number.
class RowCounter : public RowSink {
public:
    explicit RowCounter(qint64 most) : m_most(most) {}

    void begin(const QStringList& /*columns*/) override {}
    bool row(const Row& /*values*/) override;

    [[nodiscard]] qint64 rows() const { return m_rows; }
    /// Whether it was stopped by the number.
    [[nodiscard]] bool isFull() const { return m_rows >= m_most; }

private:
    const qint64 m_most;
    std::atomic<qint64> m_rows = 0;
};

}  // namespace orvquery
