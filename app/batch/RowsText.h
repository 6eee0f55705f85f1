// SPDX-License-Identifier: MIT
#pragma once

#include "database/RunQuery.h"

#include <memory>

class QIODevice;

namespace orvquery {

enum class RowFormat { Table, Csv, Tsv, Json };

/// Writes rows as text while they come, or at the end where all must be known first.
class RowWriter : public RowSink {
public:
    /// Writes what is left once all rows have come.
    virtual void finish() = 0;
};

/// A writer of that format to an open device, which must outlive it.
///
/// Table: columns in line, numbers to the right, NULL as that word, at most as many rows as a
/// person can look at, and their count. CSV: RFC 4180 with a line of names; NULL is nothing, an
/// empty text is a pair of quotes, bytes are hexadecimal. TSV: the same with tabs in the place of
/// commas and LF alone at the end of lines. JSON: a list with one object a row, keys
/// in the order of the columns, a second one of a name with "_2".
[[nodiscard]] std::unique_ptr<RowWriter> makeRowWriter(RowFormat format, QIODevice& device);

/// The columns that a text takes up in a terminal.
[[nodiscard]] int displayWidth(const QString& text);

}  // namespace orvquery
