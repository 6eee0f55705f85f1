// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>

namespace orvquery {

/// Lets another thread follow how a catalog is read, and end that. Shared by the threads.
struct CatalogWatch {
    /// Becomes true when the reading is to end; it is never read again then.
    std::atomic<bool> isStopped = false;
    /// Told by the thread that reads, now and then, how many tables have come so far. Set before
    /// the reading begins; may be empty.
    std::function<void(int tables)> progress;
};

}  // namespace orvquery
