// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orvquery {

/// The path of the sample database in the user's data folder; makes it there when it is missing or
/// of another version of the program. Raises orv::Error when it cannot be made.
[[nodiscard]] QString sampleDatabasePath();

/// Where it is, or would be.
[[nodiscard]] QString sampleDatabasePlace();

/// Makes the sample database as a new file. A half-made file never stays under that name. Raises
/// orv::Error.
void makeSampleDatabase(const QString& path);

/// Whether the file is the sample database that this program would make.
[[nodiscard]] bool isPresentSample(const QString& path);

/// A query on the sample database, to begin with.
[[nodiscard]] QString sampleQuery();

}  // namespace orvquery
