// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QVariant>

namespace orvquery {

/// The field type for what Firebird's RDB$FIELDS says: RDB$FIELD_TYPE, RDB$FIELD_SUB_TYPE and
/// RDB$FIELD_SCALE.
[[nodiscard]] TFieldType fieldTypeOfFirebird(int type, int subType, int scale);

/// The value of a default as its source stands in the catalog ("DEFAULT 5", "= 'x'"): a number, a
/// text, NULL, or an orv::SqlText for an expression. An invalid variant when there is none that can
/// stand in a call.
[[nodiscard]] QVariant firebirdDefault(const QString& source);

}  // namespace orvquery
