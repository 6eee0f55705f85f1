// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"
#include "querybuilder/ORVQDStateReader.h"
#include "words/Explanation.h"

#include <QString>

#include <functional>
#include <vector>

namespace orvquery {

/// One thing in which two queries differ. A plain value.
struct Difference {
    enum class Part {
        Columns,
        Tables,
        Joins,
        Conditions,
        GroupConditions,
        Order,
        FurtherText,
        NotHeld  ///< a place of a statement of which the diagram says nothing, or another thing
    };
    enum class Kind { Added, Removed, Changed, Muted, Unmuted, Moved };

    Part part = Part::Columns;
    Kind kind = Kind::Changed;
    QString what;  ///< where that is, "in the join of A with B"; empty where there is no need
    /// In words; empty for what was added. For what has moved, the place where it was.
    QString before;
    QString after;  ///< the same for what was removed, and the place where it is
    /// The boxes that it is about, as indices of the tables; -1 for none. So are the joins and the
    /// output columns below.
    int tableBefore = -1;
    int tableAfter = -1;
    int joinBefore = -1;
    int joinAfter = -1;
    int columnBefore = -1;
    int columnAfter = -1;

    friend bool operator==(const Difference&, const Difference&) = default;
};

/// What names one table as two statements may, by a name as it stands in FROM.
using TableKey = std::function<QString(const QString& nameInStatement)>;

/// In what a query differs from another one, part by part. Places on the diagram do not count, nor
/// do the order of tables and links, and of conditions within a group. `keepMeaning` is how the
/// statements are written. Without `tableKey` tables are told apart by their names alone.
[[nodiscard]] std::vector<Difference> differences(const orv::QueryState& before,
                                                  const orv::QueryState& after,
                                                  bool keepMeaning = true,
                                                  const TableKey& tableKey = {});

/// The places that were found when one statement was loaded and not when the other one was: the
/// states say nothing of them. Where in the statement they stand does not count.
[[nodiscard]] std::vector<Difference> differencesNotHeld(const orv::Findings& before,
                                                         const orv::Findings& after);

/// Why the state of a statement that was loaded says nothing that could be compared; empty when it
/// does.
[[nodiscard]] QString whyNotComparable(const orv::QueryState& state, const orv::Findings& findings);

/// What is said of a part: "Conditions".
[[nodiscard]] QString partTitle(Difference::Part part);

/// One difference as a line without its part: "Added: ...".
[[nodiscard]] QString sentence(const Difference& difference);

/// All of them under the titles of their parts; a sentence that there are none otherwise.
[[nodiscard]] Explanation inWords(const std::vector<Difference>& differences);

}  // namespace orvquery
