// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/resource.h>

#include <csignal>

namespace apptest {

/// A file that this process writes cannot become larger; like a full disk, but without one.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small = {bytes, m_before.rlim_max};
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int) = nullptr;
};

}  // namespace apptest
#endif
