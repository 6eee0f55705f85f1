// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/LifetimeScene.h"

#include <span>

namespace orvtest {

/// What goes, and how.
struct End {
    const char* name;
    enum What { Box, Link, Builder } what;
    bool comesByTimer;  // the user or a handler does the others
    void (*happen)(Scene& on);
};

[[nodiscard]] std::span<const End> allEnds();

}  // namespace orvtest
