// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDConditionReader.h"
#include "criteria/ORVQDWhereRows.h"

#include <QString>

#include <memory>

class QMimeData;

namespace orv {

/// Condition rows outside any panel: those that a text says. The text may come from anywhere; a
/// WHERE, HAVING or ON in front of it is dropped.
class ORV_EXPORT LooseConditions {
public:
    /// Raises orv::Error with a sentence to the user when the text is not a condition as a whole:
    /// something is missing in it, stands behind it or is not closed, or it nests too deeply.
    LooseConditions(const QString& text, const ConditionRules& rules,
                    const TGroupOperators* groups);
    /// The same of what the clipboard holds: rows as they were copied, else its text.
    LooseConditions(const QMimeData& copied, const ConditionRules& rules,
                    const TGroupOperators* groups);
    ~LooseConditions();
    LooseConditions(const LooseConditions&) = delete;
    LooseConditions& operator=(const LooseConditions&) = delete;

    /// The group that holds all of it.
    [[nodiscard]] const TorvQDWhereRow& root() const;
    /// Whether brackets stand around all of it, or NOT in front of them: then the root is meant as
    /// a group, and not as what its conditions are joined by.
    [[nodiscard]] bool isOneGroup() const { return m_isOneGroup; }
    /// How many groups stand one inside the other below the root.
    [[nodiscard]] int groupsBelow() const { return m_groupsBelow; }

private:
    void read(const QString& text, const ConditionRules& rules);
    bool takeRows(const QByteArray& rows);

    ConditionContext m_context;
    std::unique_ptr<TorvQDWhereRows> m_rows;
    bool m_isOneGroup = false;
    int m_groupsBelow = 0;
};

/// The text of a row with all below it that is read as the same rows again: a condition on one
/// line, without its brackets where it can be told without them, a group over several lines. Rows
/// that are not filled in are written as they are, and are not read again. Raises orv::Error for a
/// group without conditions. Of a group muted rows are left out, unless all of them are.
[[nodiscard]] ORV_EXPORT QString conditionText(const TorvQDWhereRow& row,
                                               const ConditionRules& rules,
                                               const TGroupOperators* groups);

/// What the clipboard takes of a row with all below it: its text, and beside it the rows where
/// some of them are muted.
[[nodiscard]] ORV_EXPORT std::unique_ptr<QMimeData> copiedCondition(const TorvQDWhereRow& row,
                                                                    const ConditionRules& rules,
                                                                    const TGroupOperators* groups);

/// Puts a copy of the row with all below it into a collection, at an index.
ORV_EXPORT TorvQDWhereRow* copyRow(const TorvQDWhereRow& row, TorvQDWhereRows& into, int index);

}  // namespace orv
