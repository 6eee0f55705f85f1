// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace orvquery {

/// Runs jobs one after the other in a thread of its own. When a job does not come to an end, the
/// thread can be abandoned: it goes on by itself with what its jobs share. Jobs raise nothing.
class WorkerThread {
public:
    using Job = std::function<void()>;

    /// `last` is the last job of the thread, however it ends.
    explicit WorkerThread(Job last);
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    /// Abandons it, when end() was not called.
    ~WorkerThread();

    /// Appends a job.
    void run(Job job);

    /// Drops the jobs that have not begun and waits so long for the end of the thread; when that
    /// does not come, it is abandoned. False then.
    bool end(std::chrono::milliseconds patience);

    /// The threads of all objects of this class whose jobs have not ended, the abandoned ones
    /// included.
    [[nodiscard]] static int threadsAtLarge();

    /// Whether a thread was ever abandoned. Nobody knows when that is over, even after its jobs;
    /// so the program cannot clean up and return from main any more.
    [[nodiscard]] static bool hasAbandoned();

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared;
    std::thread m_thread;
};

}  // namespace orvquery
