// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QItemSelection;

namespace orvquery {

class ResultModel;

enum class CopiedHeader { None, Names };

/// The selected cells as spreadsheets take them: cells by tabs, rows by line breaks. What is not
/// selected, of a column or row that has something selected, is empty. Where there are several
/// cells, one with a tab or a line break stands in quotes.
[[nodiscard]] QString copiedCells(const ResultModel& model, const QItemSelection& selection,
                                  CopiedHeader header);

}  // namespace orvquery
