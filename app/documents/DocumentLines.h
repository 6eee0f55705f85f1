// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace orvquery {

/// JSON as query files have it: one fact on each line, so that comparing two files line by line
/// shows what has changed. Known keys come in a fixed order, others behind them by their names.
/// A box has a line for each of its facts; a field, a link, a condition or a column is one line.
[[nodiscard]] QByteArray documentLines(const QJsonObject& object);

}  // namespace orvquery
