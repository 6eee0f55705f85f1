// SPDX-License-Identifier: MIT
#include "toolkit/AccessibleEvents.h"

#include <utility>

namespace orv {

namespace accessible {

namespace {

AccessibleListener& listener() {
    static AccessibleListener present;
    return present;
}

void send(QAccessibleEvent& event) {
    if (const AccessibleListener present = listener()) {
        present(event);
    } else {
        QAccessible::updateAccessibility(&event);
    }
}

}  // namespace

bool isHeard() {
    return listener() || QAccessible::isActive();
}

void tell(QAccessibleInterface* about, QAccessible::Event what) {
    if (!about) return;
    QAccessibleEvent event(about, what);
    send(event);
}

void tell(QAccessibleInterface* about, QAccessible::State changed) {
    if (!about) return;
    QAccessibleStateChangeEvent event(about, changed);
    send(event);
}

}  // namespace accessible

AccessibleListener setAccessibleListener(AccessibleListener present) {
    return std::exchange(accessible::listener(), std::move(present));
}

}  // namespace orv
