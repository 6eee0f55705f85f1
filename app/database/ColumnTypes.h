// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>

namespace orvquery {

/// The field type for the type with which SQLite's table declares a column. SQLite takes any text
/// there, or none; what no name of a type is found in counts as a string, which compares with
/// every value.
[[nodiscard]] TFieldType fieldTypeOfDeclaration(const QString& declaredType);

}  // namespace orvquery
