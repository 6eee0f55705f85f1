// SPDX-License-Identifier: MIT
// Loaded in front of the library, this makes it one of another version.
#include "core/Version.h"

QString orv::version() {
    return QStringLiteral("0.99.5");
}
