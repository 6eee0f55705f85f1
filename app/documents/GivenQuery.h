// SPDX-License-Identifier: MIT
#pragma once

#include "documents/QueryDocument.h"

#include <QString>

#include <optional>

namespace orvquery {

/// A query that was named by its file: a statement, a query file, or a state as SaveState() writes
/// it. A plain value.
struct GivenQuery {
    QString statement;  ///< also of a query file that holds nothing but that; to be loaded
    /// The query file, with its database named from anywhere; of a state, the query alone.
    std::optional<QueryDocument> document;
    bool isState = false;

    /// Whether there is a diagram to restore, and not a statement to load.
    [[nodiscard]] bool hasDiagram() const { return document && !document->query.isEmpty(); }
    [[nodiscard]] bool isEmpty() const { return document && !hasDiagram() && statement.isEmpty(); }
};

/// Reads it; "-" is standard input. What it is, its name says, or its beginning: the others are
/// objects of JSON, as which no statement begins. Raises orv::Error with one sentence.
[[nodiscard]] GivenQuery readGivenQuery(const QString& path);

}  // namespace orvquery
