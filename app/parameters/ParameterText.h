// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QLocale>
#include <QString>
#include <QVariant>

namespace orvquery {

/// What a typed text is as the value of a parameter.
struct ParameterReading {
    QVariant value;   ///< valid when the text is a value of the type
    QString problem;  ///< else one sentence that says what is expected
};

/// Reads a text that a person typed for a parameter of the type. Numbers have a full stop or a
/// comma before their fraction, dates stand as in ISO 8601 or as the locale has them. With
/// ftUnknown, what is written like a number is one, and all else is a text.
[[nodiscard]] ParameterReading readParameter(const QString& text, TFieldType type,
                                             const QLocale& locale = QLocale());

/// The text for which readParameter gives the value.
[[nodiscard]] QString parameterText(const QVariant& value);

/// What is to be typed for the type, as a hint in an empty field; empty for texts.
[[nodiscard]] QString parameterHint(TFieldType type);

}  // namespace orvquery
