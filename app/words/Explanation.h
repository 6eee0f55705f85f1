// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDStateReader.h"

#include <QString>

#include <vector>

namespace orvquery {

/// A sentence, or an item of a list that an earlier line begins.
struct WordsLine {
    int depth = 0;  ///< 0: a sentence; an item of a list is one deeper than the line it belongs to
    QString text;

    friend bool operator==(const WordsLine&, const WordsLine&) = default;
};

/// What one part of a query does.
struct WordsSection {
    QString title;
    std::vector<WordsLine> lines;

    friend bool operator==(const WordsSection&, const WordsSection&) = default;
};

/// A query in plain English, part by part. A plain value.
struct Explanation {
    std::vector<WordsSection> sections;
};

/// Says what a query asks for, and no more than that. `keepMeaning` is how its statement is
/// written, which decides the order in which tables are joined.
[[nodiscard]] Explanation explain(const orv::QueryState& state, bool keepMeaning = true);

/// As lines of at most `width` characters (longer words stand alone), each part under its title.
[[nodiscard]] QString plainText(const Explanation& explanation, int width = 80);

/// As rich text.
[[nodiscard]] QString richText(const Explanation& explanation);

}  // namespace orvquery
