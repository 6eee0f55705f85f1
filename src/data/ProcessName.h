// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>
#include <QStringList>

/// Words that must always be quoted as identifiers, compared exactly. Empty at start; a host adds
/// the words of its database, in upper case, before it adds tables.
ORV_EXPORT QStringList& lReservedWords();

/// A table or field name as it is written in SQL. A name in a pair of double quotes or apostrophes
/// is returned as it is. A name in lReservedWords, and any name with a character other than "$",
/// "_", digits and upper-case letters A to Z, is returned in double quotes, inner ones doubled.
/// `Name` is not empty.
[[nodiscard]] ORV_EXPORT QString ProcessName(const QString& Name);
