// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QAccessible>

#include <functional>

namespace orv {

using AccessibleListener = std::function<void(QAccessibleEvent& event)>;

/// Replaces the listener, to whom events for screen readers go (a platform without screen readers
/// drops them, and a test must see them); an empty function brings Qt's own way back. Returns the
/// listener that was there.
ORV_EXPORT AccessibleListener setAccessibleListener(AccessibleListener present);

namespace accessible {

/// Whether somebody listens, without whom nothing needs to be looked up.
[[nodiscard]] bool isHeard();

/// Tells the listener; nothing without an interface.
void tell(QAccessibleInterface* about, QAccessible::Event what);
void tell(QAccessibleInterface* about, QAccessible::State changed);

}  // namespace accessible

}  // namespace orv
