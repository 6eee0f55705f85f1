// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QByteArray>
#include <QString>

namespace orv {

/// What has been done between two states, as editedState() gives them, in a few words that go on
/// from "Undo": "adding ORDERS", "changing the conditions".
[[nodiscard]] ORV_EXPORT QString changeText(const QByteArray& before, const QByteArray& after);

}  // namespace orv
