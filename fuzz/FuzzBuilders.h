// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "support/TestTools.h"

namespace orvfuzz {

/// Three controls in one mode over the tables of the SQL cases, made once and emptied for each run:
/// making them takes longer than a run does.
class FuzzBuilders {
public:
    /// Those of the mode, without contents, and nothing told so far.
    static FuzzBuilders& emptied(bool keepMeaning);

    /// Ends a run: what was put off is done, and nothing may have been reported on the way. Raises
    /// Broken with what was.
    void settle();

    orvtest::HostedBuilder first;
    orvtest::HostedBuilder second;
    orvtest::HostedBuilder third;
    orvtest::RecordedServices& services;

private:
    FuzzBuilders(bool keepMeaning, orvtest::RecordedServices& recorded);
};

}  // namespace orvfuzz
