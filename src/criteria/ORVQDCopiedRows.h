// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDWhereRows.h"

#include <QByteArray>
#include <QString>

namespace orv {

/// Under what the clipboard keeps rows beside their text.
[[nodiscard]] ORV_EXPORT QString copiedRowsFormat();

/// Whether the row or one below it is muted, which its text does not say.
[[nodiscard]] ORV_EXPORT bool hasMutedRow(const TorvQDWhereRow& row);

/// The row with all below it as it stands, muted or not.
[[nodiscard]] ORV_EXPORT QByteArray copiedRows(const TorvQDWhereRow& row);

/// Makes `row`, which is new, what copiedRows() has told. False, with `row` as it was, when the
/// bytes tell nothing, or what the catalogues do not have.
[[nodiscard]] ORV_EXPORT bool pasteRows(const QByteArray& bytes, TorvQDWhereRow& row);

}  // namespace orv
