// SPDX-License-Identifier: MIT
#include "window/EndSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>

namespace orvquery {

namespace {

volatile std::sig_atomic_t writeEnd = -1;

// Hardly anything is allowed here; the event loop does the rest.
void tellLoop(int signal) {
    const int errorBefore = errno;
    const auto byte = static_cast<unsigned char>(signal);
    const ssize_t written = ::write(int(writeEnd), &byte, 1);
    static_cast<void>(written);  // a full pipe has told it before
    errno = errorBefore;
}

// One that is ignored, as for a program that is to outlive its terminal, stays so.
void take(int signal, struct sigaction& before) {
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN) return;
    struct sigaction action = {};
    action.sa_handler = tellLoop;
    // Who asks a second time does not want to wait.
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

EndSignals::EndSignals(std::function<void()> save) : m_save(std::move(save)) {
    if (::pipe(m_pipe) != 0) return;  // it ends as it did without this
    for (const int end : m_pipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { end(); });
    writeEnd = m_pipe[1];
    take(SIGHUP, m_hangup);
    take(SIGTERM, m_terminate);
}

EndSignals::~EndSignals() {
    if (!m_notifier) return;
    ::sigaction(SIGHUP, &m_hangup, nullptr);
    ::sigaction(SIGTERM, &m_terminate, nullptr);
    writeEnd = -1;
    m_notifier.reset();
    for (const int end : m_pipe) ::close(end);
}

void EndSignals::end() {
    unsigned char signal = 0;
    if (::read(m_pipe[0], &signal, 1) != 1) return;
    try {
        m_save();
    } catch (const std::exception&) {
        // Nobody is there any more to be told.
    }
    // Whoever has sent it sees that it was heeded.
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    std::_Exit(EXIT_FAILURE);  // where it is blocked
}

}  // namespace orvquery
