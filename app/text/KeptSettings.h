// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>

namespace orvquery {

/// What the program remembers of its user from one start to the next: sizes, folders, connections.
/// Each caller has keys of its own.
[[nodiscard]] inline QSettings keptSettings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

}  // namespace orvquery
