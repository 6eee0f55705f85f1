// SPDX-License-Identifier: MIT
#pragma once

#include "norows/TrialQuery.h"

#include <QHash>

#include <deque>
#include <memory>
#include <optional>

namespace orvquery {

/// How many rows a trial has. A plain value.
struct RowCount {
    qint64 rows = 0;
    bool isAtLeast = false;  ///< nobody counted on
    QString problem = {};    ///< one sentence, when it could not be run

    [[nodiscard]] bool isKnown() const { return problem.isEmpty(); }
    [[nodiscard]] bool hasRows() const { return isKnown() && rows > 0; }
    [[nodiscard]] bool hasNone() const { return isKnown() && rows == 0; }

    friend bool operator==(const RowCount&, const RowCount&) = default;
};

/// Finds out which parts of a query keep its rows away, by the numbers of rows that trials have.
/// Somebody else runs them:
///
///     while (const std::optional<QString> statement = inquiry.next())
///     inquiry.take(run(*statement));
///
/// First the query itself, then without all conditions. If that brings rows, it is tried without
/// each part in turn; if no single one does it, the conditions come back one by one, and those that
/// leave no row stay away. If the tables have no rows by themselves, their joins come back.
class Inquiry {
public:
    explicit Inquiry(std::unique_ptr<TrialQuery> query);

    /// The statement of the trial to run now; none when there is nothing more to find out. The same
    /// one until its result is taken.
    [[nodiscard]] std::optional<QString> next();
    void take(const RowCount& count);
    /// There will be no further trials.
    void stop();

    enum class Stage { Whole, Bare, Singles, Conditions, Joins, Ended };
    [[nodiscard]] Stage stage() const { return m_stage; }
    [[nodiscard]] bool isStopped() const { return m_isStopped; }
    /// The part that the present trial is about; -1 for the query as a whole.
    [[nodiscard]] int presentPart() const;

    [[nodiscard]] const TrialQuery& query() const { return *m_query; }
    [[nodiscard]] const std::vector<QueryPart>& parts() const { return m_query->parts(); }

    // What is known so far.
    [[nodiscard]] const std::optional<RowCount>& whole() const { return m_whole; }
    /// Without any condition, and without the end.
    [[nodiscard]] const std::optional<RowCount>& bare() const { return m_bare; }
    [[nodiscard]] const std::optional<RowCount>& without(int part) const {
        return m_without[std::size_t(part)];
    }
    /// With the part, those before that came back, and no other ones.
    [[nodiscard]] const std::optional<RowCount>& step(int part) const {
        return m_steps[std::size_t(part)];
    }
    /// The tables with all joins keeping rows without a match.
    [[nodiscard]] const std::optional<RowCount>& firstTables() const { return m_firstTables; }

    /// The parts without each of which there are rows; of several around each other the innermost.
    [[nodiscard]] std::vector<int> culprits() const;
    /// The parts without all of which there are rows, when no single one does it.
    [[nodiscard]] const std::vector<int>& culpritsTogether() const { return m_together; }
    /// The rows without them.
    [[nodiscard]] const std::optional<RowCount>& withoutTogether() const { return m_withoutThem; }
    /// The join at which the rows of the tables vanish; -1 when it is none.
    [[nodiscard]] int losingJoin() const { return m_losingJoin; }
    /// Trials that could not be run.
    [[nodiscard]] int failures() const;

    /// Trials that have ended, and all that are known to be needed.
    [[nodiscard]] int ended() const { return m_ended; }
    [[nodiscard]] int needed() const { return m_ended + int(m_trials.size()); }

private:
    struct Trial {
        int part = -1;  ///< none: the query as a whole
        QString statement;
    };

    void record(const RowCount& count);
    void plan();
    void planBare();
    void planSingles();
    void planConditions();
    void planJoins();
    void stepCondition(const RowCount& count);
    void stepJoin(const RowCount& count);
    [[nodiscard]] std::vector<int> awayFor(int part) const;

    std::unique_ptr<TrialQuery> m_query;
    Stage m_stage = Stage::Whole;
    std::deque<Trial> m_trials;          ///< of the stage, the present one first
    QHash<QString, RowCount> m_counted;  ///< by statement
    std::optional<RowCount> m_whole;
    std::optional<RowCount> m_bare;
    std::optional<RowCount> m_firstTables;
    std::vector<std::optional<RowCount>> m_without;
    std::vector<std::optional<RowCount>> m_steps;
    std::vector<int> m_units;  ///< parts that come back one by one
    std::vector<int> m_together;
    std::optional<RowCount> m_withoutThem;
    int m_losingJoin = -1;
    int m_ended = 0;
    bool m_isStopped = false;
};

}  // namespace orvquery
