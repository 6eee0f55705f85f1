// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>

class QSqlQuery;

namespace orvquery {

/// The columns of a query, from 0, whose blobs are declared as texts. The driver does not tell
/// them, so Firebird's own library is asked. None where that is missing, or when the query, which
/// has to be one that runs, is of another engine.
[[nodiscard]] QSet<int> firebirdTextBlobs(const QSqlQuery& query);

}  // namespace orvquery
