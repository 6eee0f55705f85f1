// SPDX-License-Identifier: MIT
#pragma once

#include "window/SaveDialog.h"

namespace orvquery {

/// Asks for the file into which rows are written, in the folder where that was done last.
class ExportDialog : public SaveDialog {
    Q_OBJECT

public:
    /// `name` is what the file may be called, without its end.
    ExportDialog(const QString& title, const QString& name, QWidget* parent);

    /// The chosen file, whose folder is proposed from now on; empty when there is none.
    [[nodiscard]] QString takeFile() const;
};

/// What a file with the rows of a table may be called on every system. The name is that of a
/// statement.
[[nodiscard]] QString exportName(const QString& tableInStatement);

}  // namespace orvquery
