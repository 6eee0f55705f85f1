// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvquery {

/// The name under which readTextFile reads standard input.
inline constexpr char16_t standardInputName[] = u"-";

/// The content of a UTF-8 file, without its byte order mark; "-" means standard input. Line breaks
/// and NUL characters stay. Raises orv::Error with one sentence when the file cannot be read or is
/// not valid UTF-8.
[[nodiscard]] QString readTextFile(const QString& path);

/// The text of UTF-8 bytes; `name` is what errors call their source. Raises orv::Error like
/// readTextFile.
[[nodiscard]] QString decodeUtf8(const QByteArray& bytes, const QString& name);

}  // namespace orvquery
