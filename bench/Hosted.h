// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDWindow.h"

#include <QString>

namespace bench {

/// So many integer columns, called by `stem` and their number.
TDataSet fields(int count, const QString& stem = QStringLiteral("F"));

/// A builder whose host knows "T" with as many fields as are asked for, and any other table with
/// the columns that the statements use.
class Hosted {
public:
    explicit Hosted(int fieldCount);

    /// Whether all of the text came in.
    [[nodiscard]] bool load(const QString& text);

    TorvQueryBuilder builder;
};

}  // namespace bench
