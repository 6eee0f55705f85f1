// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDStateReader.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace orvquery {

/// A condition that has no operator of its own but a text, where that is one of these.
struct ReadExpression {
    enum class Kind {
        Exists,    ///< EXISTS (...); `left` is the sub-query
        Truth,     ///< ... IS TRUE; `right` is TRUE, FALSE or UNKNOWN
        Starting,  ///< ... STARTING WITH ...
        Containing
    };

    Kind kind = Kind::Exists;
    bool isNegated = false;
    QString left;
    QString right;
};

[[nodiscard]] std::optional<ReadExpression> readExpression(const QString& sql);

/// A condition in a text.
struct TextCondition {
    orv::QueryState::Row row;  ///< its text alone where no operator fits
    QString text;
};

/// The conditions that AND joins in a text.
[[nodiscard]] std::vector<TextCondition> conditionsOfText(const QString& sql);

/// Whether a condition is true or false for each row, whatever is given.
[[nodiscard]] bool isNeverUnknown(const orv::QueryState::Row& row);

/// The condition that is true where such a one is false.
[[nodiscard]] std::optional<orv::QueryState::Row> opposite(const orv::QueryState::Row& row);

}  // namespace orvquery
