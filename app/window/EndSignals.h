// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <memory>

namespace orvquery {

/// Lets the program save what it must when the system ends it: when a person logs out (SIGTERM) or
/// its terminal goes (SIGHUP). It ends by that signal then, without a question. Unix only; one at a
/// time, in the thread of the user interface, whose events it needs.
class EndSignals {
public:
    explicit EndSignals(std::function<void()> save);
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

private:
    void end();

    std::function<void()> m_save;
    int m_pipe[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
    struct sigaction m_hangup = {};  ///< as it was before
    struct sigaction m_terminate = {};
};

}  // namespace orvquery
