// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QVariant>

namespace orvquery {

/// The type of a column by the name of its type in the catalog ("int4"), or where that is
/// somebody's own by the category that PostgreSQL gives it ("N" for numbers).
[[nodiscard]] TFieldType fieldTypeOfPostgresql(const QString& typeName, const QString& category);

/// The value of a parameter's default from its source as the catalog prints it: "'nobody'::text"
/// gives the text, "CURRENT_DATE" stays an expression; an invalid variant when it is neither.
[[nodiscard]] QVariant postgresqlDefault(const QString& source);

}  // namespace orvquery
