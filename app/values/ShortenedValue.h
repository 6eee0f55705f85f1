// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QVariant>

namespace orvquery {

/// What is kept of a text, or of bytes, that take more memory than there is for one value. Stands
/// in a variant in the place of the value. A plain value.
struct ShortenedValue {
    QVariant beginning;  ///< a text or bytes
    qsizetype size = 0;  ///< of the whole, in characters or bytes
};

/// The value, or what is kept of it when it takes more than so many bytes.
[[nodiscard]] QVariant shortened(const QVariant& value, qsizetype mostBytes);

[[nodiscard]] bool isShortened(const QVariant& value);

/// The memory that a value takes, nearly.
[[nodiscard]] qsizetype bytesOf(const QVariant& value);

}  // namespace orvquery

Q_DECLARE_METATYPE(orvquery::ShortenedValue)
