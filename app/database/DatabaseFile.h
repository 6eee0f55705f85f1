// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace orvquery {

/// Raises orv::Error: 'The database file "PATH" WHAT.'
[[noreturn]] void failWithFile(const QString& path, const QString& what);

/// The first bytes of a database file. Raises orv::Error when it is missing, no regular file, empty
/// or unreadable, which drivers tell with worse words, or not at all.
[[nodiscard]] QByteArray beginningOfFile(const QString& path, qsizetype size);

}  // namespace orvquery
