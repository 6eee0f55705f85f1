// SPDX-License-Identifier: MIT
#include "core/Version.h"

namespace orv {

QString version() {
    return QStringLiteral(ORV_VERSION);
}

}  // namespace orv
