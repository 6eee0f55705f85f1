// SPDX-License-Identifier: MIT
#pragma once

#include "differences/ComparedQuery.h"
#include "differences/Differences.h"
#include "differences/Pairing.h"

#include <QHash>

namespace orvquery {

/// Compares two trees of conditions. A condition that moved within a group has not changed; one
/// that moved to another group is told as moved.
class ConditionDifferences {
public:
    using Row = orv::QueryState::Row;

    ConditionDifferences(Difference::Part part, const ComparedQuery& before,
                         const ComparedQuery& after)
        : m_part(part), m_before(before), m_after(after) {}

    [[nodiscard]] std::vector<Difference> compare(const Row& rootBefore, const Row& rootAfter);

private:
    /// A row that its group has and that group's partner has not.
    struct Place {
        const Row* row = nullptr;
        const Row* group = nullptr;
        bool isInRoot = false;
    };
    /// The rows of one side that have moved, with where their partners are.
    using Moves = QHash<const Row*, Place>;

    void findMoves(const Row& before, const Row& after);
    void pairTrees(const Row& before, const Row& after,
                   QHash<const Row*, const Row*>& partners) const;
    void pairMoves(const std::vector<Place>& before, const std::vector<Place>& after);
    void tellMove(const Place& before, const Place& after);
    void tellAlone(Difference::Kind kind, const ComparedQuery& query, const Moves& moves,
                   const Row& group, const Row& row, bool isRoot);
    void compareGroups(const Row& before, const Row& after, bool isRoot);
    [[nodiscard]] Pairing pairRows(const Row& before, const Row& after) const;
    [[nodiscard]] Pairing pairAlike(const Row& before, const Row& after) const;
    void pairConditions(const Row& before, const Row& after, Pairing& pairing) const;
    void pairGroups(const Row& before, const Row& after, Pairing& pairing) const;
    void tellRow(Difference::Kind kind, const ComparedQuery& query, const Row& group,
                 const Row& row, bool isRoot);

    Difference::Part m_part;
    const ComparedQuery& m_before;
    const ComparedQuery& m_after;
    Moves m_movedBefore;
    Moves m_movedAfter;
    std::vector<Difference> m_found;
};

/// A change of something that both queries call by the words given; where these differ, each goes
/// to its own side.
[[nodiscard]] Difference changeOf(Difference::Part part, const QString& whatBefore,
                                  const QString& whatAfter, const QString& before,
                                  const QString& after);

/// The same of something that is muted now, or no longer.
[[nodiscard]] Difference mutingOf(Difference::Part part, const QString& whatBefore,
                                  const QString& whatAfter, const QString& before,
                                  const QString& after, bool isMuted);

}  // namespace orvquery
