// SPDX-License-Identifier: MIT
#include "norows/Inquiry.h"

#include <algorithm>

namespace orvquery {

Inquiry::Inquiry(std::unique_ptr<TrialQuery> query)
    : m_query(std::move(query)), m_without(parts().size()), m_steps(parts().size()) {
    m_trials.push_back({-1, m_query->whole()});
}

std::optional<QString> Inquiry::next() {
    while (true) {
        if (m_trials.empty() && m_stage != Stage::Ended) plan();
        if (m_stage == Stage::Ended) return std::nullopt;
        if (m_trials.empty()) continue;
        const auto known = m_counted.constFind(m_trials.front().statement);
        if (known == m_counted.constEnd()) return m_trials.front().statement;
        record(*known);
    }
}

void Inquiry::take(const RowCount& count) {
    if (m_trials.empty()) return;
    m_counted.insert(m_trials.front().statement, count);
    record(count);
}

void Inquiry::stop() {
    if (m_stage == Stage::Ended) return;
    m_isStopped = true;
    m_stage = Stage::Ended;
    m_trials.clear();
}

int Inquiry::presentPart() const {
    return m_trials.empty() ? -1 : m_trials.front().part;
}

void Inquiry::record(const RowCount& count) {
    const Trial trial = m_trials.front();
    m_trials.pop_front();
    ++m_ended;
    switch (m_stage) {
    case Stage::Whole: m_whole = count; break;
    case Stage::Bare: m_bare = count; break;
    case Stage::Singles: m_without[std::size_t(trial.part)] = count; break;
    case Stage::Conditions:
        m_steps[std::size_t(trial.part)] = count;
        stepCondition(count);
        break;
    case Stage::Joins:
        (trial.part < 0 ? m_firstTables : m_steps[std::size_t(trial.part)]) = count;
        stepJoin(count);
        break;
    case Stage::Ended: break;
    }
}

// The next stage, once the present one has no trials any more.
void Inquiry::plan() {
    switch (m_stage) {
    case Stage::Whole: return planBare();
    case Stage::Bare: return planSingles();
    case Stage::Singles: return planConditions();
    case Stage::Conditions:
    case Stage::Joins:
    case Stage::Ended: m_stage = Stage::Ended;
    }
}

void Inquiry::planBare() {
    if (m_whole->hasRows()) {
        m_stage = Stage::Ended;
        return;
    }
    m_stage = Stage::Bare;
    m_trials.push_back({-1, m_query->without({}, TrialQuery::Conditions::Dropped)});
    // What failed with the order of the rows has not been tried without it.
    if (m_whole->isKnown()) m_counted.insert(m_query->without({}), *m_whole);
}

void Inquiry::planSingles() {
    if (m_bare->hasNone()) return planJoins();
    m_stage = Stage::Singles;
    for (std::size_t index = 0; index < parts().size(); ++index) {
        const QueryPart& part = parts()[index];
        if (part.kind == QueryPart::Kind::Join && !part.isInner) continue;
        m_trials.push_back({int(index), m_query->without({int(index)})});
    }
}

void Inquiry::planConditions() {
    m_stage = Stage::Ended;
    for (std::size_t index = 0; index < parts().size(); ++index) {
        const QueryPart& part = parts()[index];
        if (part.isTop() || part.kind == QueryPart::Kind::End) m_units.push_back(int(index));
    }
    const bool isAnySingle =
        std::any_of(m_without.begin(), m_without.end(),
                    [](const std::optional<RowCount>& count) { return count && count->hasRows(); });
    if (isAnySingle || !m_whole->isKnown() || !m_bare->hasRows() || m_units.size() < 2) return;
    m_stage = Stage::Conditions;
    m_withoutThem = m_bare;
    m_trials.push_back({m_units.front(), m_query->without(awayFor(m_units.front()))});
}

// While conditions come back: those that leave no row, and those that have not come back yet.
std::vector<int> Inquiry::awayFor(int part) const {
    std::vector<int> away = m_together;
    std::copy_if(m_units.begin(), m_units.end(), std::back_inserter(away),
                 [part](int unit) { return unit > part; });
    return away;
}

void Inquiry::stepCondition(const RowCount& count) {
    const auto present = std::find_if(m_units.rbegin(), m_units.rend(), [this](int unit) {
        return m_steps[std::size_t(unit)].has_value();
    });
    if (count.hasRows()) {
        m_withoutThem = count;
    } else {
        m_together.push_back(*present);
    }
    if (present == m_units.rbegin()) return;
    const int following = *std::prev(present);
    m_trials.push_back({following, m_query->without(awayFor(following))});
}

// The units are the inner joins now: from one on all of them keep rows without a match.
void Inquiry::planJoins() {
    m_stage = Stage::Joins;
    for (std::size_t index = 0; index < parts().size(); ++index) {
        const QueryPart& part = parts()[index];
        if (part.kind == QueryPart::Kind::Join && part.isInner) m_units.push_back(int(index));
    }
    m_trials.push_back({-1, m_query->without(m_units, TrialQuery::Conditions::Dropped)});
}

void Inquiry::stepJoin(const RowCount& count) {
    const std::size_t back =
        std::size_t(std::count_if(m_units.begin(), m_units.end(), [this](int unit) {
            return m_steps[std::size_t(unit)].has_value();
        }));
    if (!count.hasRows()) {
        if (count.isKnown() && back > 0) m_losingJoin = m_units[back - 1];
        return;
    }
    if (back == m_units.size()) return;
    const std::vector<int> away(m_units.begin() + std::ptrdiff_t(back) + 1, m_units.end());
    m_trials.push_back({m_units[back], m_query->without(away, TrialQuery::Conditions::Dropped)});
}

std::vector<int> Inquiry::culprits() const {
    std::vector<int> found;
    const auto brings = [this](int part) {
        return m_without[std::size_t(part)] && m_without[std::size_t(part)]->hasRows();
    };
    for (std::size_t index = 0; index < parts().size(); ++index) {
        const std::vector<int>& covered = parts()[index].covered;
        if (brings(int(index)) && std::none_of(covered.begin(), covered.end(), brings)) {
            found.push_back(int(index));
        }
    }
    return found;
}

int Inquiry::failures() const {
    return int(std::count_if(m_counted.begin(), m_counted.end(),
                             [](const RowCount& count) { return !count.isKnown(); }));
}

}  // namespace orvquery
