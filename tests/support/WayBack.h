// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "support/StateText.h"
#include "support/TestTools.h"

#include <QString>

namespace orvtest {

/// What is wrong when a control loads the text of another one, as promiseOf() has it; empty when
/// nothing is. `services` are those that take the messages of both.
[[nodiscard]] QString faultOfLoading(HostedBuilder& written, HostedBuilder& loaded, StateForm form,
                                     RecordedServices& services);

/// The same of the way from a control to a second one and, where the state comes back, from there
/// to a third, which changes nothing more. All are in one mode; the second and the third are empty.
[[nodiscard]] QString faultOfWayBack(HostedBuilder& first, HostedBuilder& second,
                                     HostedBuilder& third, RecordedServices& services);

}  // namespace orvtest
