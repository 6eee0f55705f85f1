// SPDX-License-Identifier: MIT
#include "database/WorkerThread.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace orvquery {

namespace {

std::atomic<int> runningThreads = 0;
std::atomic<bool> isAnyAbandoned = false;

}  // namespace

struct WorkerThread::Shared {
    std::mutex mutex;
    std::condition_variable change;
    std::deque<Job> jobs;
    Job last;
    bool isEnding = false;
    bool hasEnded = false;

    void runAll();
    [[nodiscard]] Job takeJob();
};

// None when there are to be no more.
WorkerThread::Job WorkerThread::Shared::takeJob() {
    std::unique_lock lock(mutex);
    change.wait(lock, [this] { return isEnding || !jobs.empty(); });
    if (isEnding) return {};
    Job job = std::move(jobs.front());
    jobs.pop_front();
    return job;
}

void WorkerThread::Shared::runAll() {
    while (const Job job = takeJob()) job();
    last();
    // What they hold goes with the thread.
    last = {};
    const std::lock_guard lock(mutex);
    jobs.clear();
    hasEnded = true;
    change.notify_all();
}

WorkerThread::WorkerThread(Job last) : m_shared(std::make_shared<Shared>()) {
    m_shared->last = std::move(last);
    ++runningThreads;
    m_thread = std::thread([shared = m_shared] {
        shared->runAll();
        --runningThreads;
    });
}

WorkerThread::~WorkerThread() {
    end(std::chrono::milliseconds(0));
}

void WorkerThread::run(Job job) {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->jobs.push_back(std::move(job));
    m_shared->change.notify_all();
}

bool WorkerThread::end(std::chrono::milliseconds patience) {
    if (!m_thread.joinable()) return true;
    std::unique_lock lock(m_shared->mutex);
    m_shared->isEnding = true;
    m_shared->change.notify_all();
    const bool hasEnded =
        m_shared->change.wait_for(lock, patience, [this] { return m_shared->hasEnded; });
    lock.unlock();
    if (hasEnded) {
        m_thread.join();
    } else {
        isAnyAbandoned = true;
        m_thread.detach();
    }
    return hasEnded;
}

int WorkerThread::threadsAtLarge() {
    return runningThreads;
}

bool WorkerThread::hasAbandoned() {
    return isAnyAbandoned;
}

}  // namespace orvquery
