// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/LifetimeScene.h"

#include <span>

class QUndoStack;

namespace orvtest {

/// What a handler of the host does that it may not have been expected to do.
struct Fault {
    enum class Kind { Raises, Refuses, Enters };

    const char* name;
    Kind kind;
    /// Does it; none for a refusal.
    void (*happen)(Scene& on, QUndoStack& undo);
    const char* error = "";             ///< the text that is told of what is raised
    bool endsBuilder = false;           ///< it is gone then
    bool isState = true;                ///< undoing brings all back; false where options changed
    void (*handler)(Scene&) = nullptr;  ///< what the error handler does besides
};

[[nodiscard]] std::span<const Fault> allFaults();

}  // namespace orvtest
