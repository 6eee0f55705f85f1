// SPDX-License-Identifier: MIT
#pragma once

#include "words/ConditionWords.h"
#include "words/JoinWords.h"
#include "words/QueryNames.h"
#include "words/ResultWords.h"

#include <QStringList>

namespace orvquery {

/// The key of what is muted, or not, by its key without that.
[[nodiscard]] QString mutedKey(const QString& key, bool isMuted);

/// One of two queries that are compared: its words, and keys that are equal where both say the
/// same, whatever their aliases are. Refers to the state, which must outlive it.
class ComparedQuery {
public:
    /// `tableKeys` name each table; those of one pair have the same.
    ComparedQuery(const orv::QueryState& state, QStringList tableKeys, bool namesTables,
                  bool keepMeaning)
        : state(state),
          names(state, namesTables),
          conditions(names),
          joins(names, keepMeaning),
          result(names),
          tableKeys(std::move(tableKeys)) {}
    ComparedQuery(const ComparedQuery&) = delete;
    ComparedQuery& operator=(const ComparedQuery&) = delete;

    const orv::QueryState& state;
    const QueryNames names;
    const ConditionWords conditions;
    const JoinWords joins;
    const ResultWords result;
    const QStringList tableKeys;

    /// Of a text of SQL: spacing, letters outside quotes and aliases do not count.
    [[nodiscard]] QString textKey(const QString& sql) const;
    [[nodiscard]] QString fieldKey(int table, const QString& name) const;
    /// Of a condition, or of a group with all that is in it; what is muted says something else.
    [[nodiscard]] QString rowKey(const orv::QueryState::Row& row) const;
    /// The same whether the row itself is muted or not.
    [[nodiscard]] QString contentKey(const orv::QueryState::Row& row) const;
};

}  // namespace orvquery
