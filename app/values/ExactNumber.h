// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

namespace orvquery {

/// A decimal number with more digits than one of double precision holds, as its digits. Stands in
/// a variant that turns into a text or, nearly, a number. A plain value.
struct ExactNumber {
    QString digits;

    bool operator==(const ExactNumber&) const = default;
};

/// What a decimal number is kept as: a number of double precision where that holds all its digits,
/// else an ExactNumber; the text itself where it is no number.
[[nodiscard]] QVariant decimalValue(const QString& text);

[[nodiscard]] bool isExactNumber(const QVariant& value);

}  // namespace orvquery

Q_DECLARE_METATYPE(orvquery::ExactNumber)
