// SPDX-License-Identifier: MIT
#pragma once

class TorvQueryBuilder;

namespace orvquery {

/// Gives the control the operators that were kept in the user's settings. Those that are damaged
/// are left aside, which the error handler is told; the default ones stay then.
void restoreOperators(TorvQueryBuilder& builder);

/// Keeps the operators of the control in the user's settings.
void keepOperators(const TorvQueryBuilder& builder);

/// Gives the default operators their default texts and adds those that are missing. Others stay.
void restoreDefaultOperators(TorvQueryBuilder& builder);

}  // namespace orvquery
