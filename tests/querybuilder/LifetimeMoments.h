// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/LifetimeScene.h"

#include <span>

class TdlgLnkProp;

namespace orvtest {

/// What the user is doing. It gets to the moment, lets the end come there, and goes on with what
/// there is no stopping of: the button is still down, the dialog still open.
struct Moment {
    const char* name;
    void (*live)(Scene& on, RecordedServices& services);
};

[[nodiscard]] std::span<const Moment> allMoments();

/// Those of them that are on the pages.
[[nodiscard]] std::span<const Moment> pageMoments();

/// Makes the join a left outer one and the operator another, and accepts.
void answerDialog(const QPointer<TdlgLnkProp>& dialog);

}  // namespace orvtest
