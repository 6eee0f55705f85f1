// SPDX-License-Identifier: MIT
#pragma once

#include "norows/Inquiry.h"

#include <QString>
#include <QStringList>

namespace orvquery {

/// What an inquiry has found out, in plain sentences; the first one says the most. Nothing before
/// its first trial has ended.
[[nodiscard]] QStringList verdict(const Inquiry& inquiry);

/// What the trials of one part tell, in a few words; empty when that is nothing.
[[nodiscard]] QString remark(const Inquiry& inquiry, int part);

/// "0", "37", "1,000+"; nothing when the trial could not be run.
[[nodiscard]] QString countText(const RowCount& count);
/// "no rows", "1 row", "37 rows", "1,000 rows or more".
[[nodiscard]] QString countWords(const RowCount& count);

/// How a part is called in sentences: what it is, and its text in quotes.
[[nodiscard]] QString partWords(const QueryPart& part);

}  // namespace orvquery
