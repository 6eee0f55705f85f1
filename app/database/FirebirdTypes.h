// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QVariant>

namespace orvquery {

/// The field type for what Firebird's RDB$FIELDS says: RDB$FIELD_TYPE, RDB$FIELD_SUB_TYPE and
/// RDB$FIELD_SCALE.
[[nodiscard]] TFieldType fieldTypeOfFirebird(int type, int subType, int scale);

/// What RDB$FIELDS says of a column; lengths are 0 where it says nothing.
struct FirebirdField {
    int type = 0;
    int subType = 0;
    int scale = 0;
    int precision = 0;
    int characters = 0;
};

/// The type as a person declares it: "NUMERIC(9,2)".
[[nodiscard]] QString firebirdDeclaration(const FirebirdField& field);

/// The value of a default as its source stands in the catalog ("DEFAULT 5", "= 'x'"): a number, a
/// text, NULL, or an orv::SqlText for an expression. An invalid variant when there is none that can
/// stand in a call.
[[nodiscard]] QVariant firebirdDefault(const QString& source);

}  // namespace orvquery
