// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/Services.h"

#include <QObject>
#include <QPointer>

#include <utility>

/// Makes one change of what happens while it lives: beginChange() now, endChange() when it finishes
/// or dies, also when something raises in between. `guard` is the object whose death ends it all.
template <typename Host>
class ChangeScope {
public:
    ChangeScope(Host* host, QObject* guard) : m_host(host), m_guard(guard) {
        if (m_host) m_host->beginChange();
    }
    // Something was raised: what the host's slots raise now must not hide it.
    ~ChangeScope() {
        orv::guarded([this] { finish(); });
    }
    ChangeScope(const ChangeScope&) = delete;
    ChangeScope& operator=(const ChangeScope&) = delete;

    /// Ends the change; what a slot of the host raises passes through.
    void finish() {
        Host* host = std::exchange(m_host, nullptr);
        if (host && m_guard) host->endChange();
    }

private:
    Host* m_host;
    QPointer<QObject> m_guard;
};
