// SPDX-License-Identifier: MIT
#include "differences/ConditionDifferences.h"

#include <algorithm>
#include <tuple>

namespace orvquery {

namespace {

using Row = orv::QueryState::Row;
using Kind = Difference::Kind;

bool isGroup(const Row& row) {
    return !row.group.isEmpty();
}

// What the conditions at whatever depth say, and what they are about.
struct Contents {
    QStringList conditions;
    QStringList subjects;
};

void collect(const ComparedQuery& query, const Row& row, Contents& contents) {
    if (!isGroup(row)) {
        contents.conditions += query.contentKey(row);
        contents.subjects += query.textKey(row.func) + u'(' + query.textKey(row.field);
    }
    for (const Row& inner : row.rows) collect(query, inner, contents);
}

int countCommon(const QStringList& before, QStringList after) {
    int common = 0;
    for (const QString& key : before) common += after.removeOne(key) ? 1 : 0;
    return common;
}

// How much two groups have in common.
int likeness(const Contents& before, const Contents& after) {
    return 2 * countCommon(before.conditions, after.conditions) +
           countCommon(before.subjects, after.subjects);
}

// What a group of one says does not depend on its word, unless that negates.
bool saysTheSame(const Row& before, const Row& after) {
    const auto meaning = [](const Row& row) {
        const GroupKind kind = groupKind(row.group);
        if (row.rows.size() > 1) return kind;
        if (kind == GroupKind::Any) return GroupKind::All;
        return kind == GroupKind::NotAny ? GroupKind::NotAll : kind;
    };
    const bool isSameWord = before.group.compare(after.group, Qt::CaseInsensitive) == 0;
    const bool isOther =
        groupKind(before.group) == GroupKind::Other || groupKind(after.group) == GroupKind::Other;
    return isSameWord || (!isOther && meaning(before) == meaning(after));
}

// A root that negates one condition is all of the conditions as much as one that has it negated.
Row asConjunction(const Row& root) {
    const GroupKind kind = groupKind(root.group);
    const bool negatesOne =
        (kind == GroupKind::NotAll || kind == GroupKind::NotAny) && root.rows.size() == 1;
    if (!negatesOne) return root;
    Row conjunction;
    conjunction.group = QStringLiteral("All");
    conjunction.rows.push_back(plainNegation(root).value_or(root));
    return conjunction;
}

QString contextOf(const Row& group, bool isRoot) {
    const bool isPlain = isRoot && groupKind(group.group) == GroupKind::All;
    return isPlain ? QString() : QStringLiteral("where ") + groupWords(group.group);
}

}  // namespace

Difference changeOf(Difference::Part part, const QString& whatBefore, const QString& whatAfter,
                    const QString& before, const QString& after) {
    Difference difference;
    difference.part = part;
    difference.kind = Kind::Changed;
    const bool isShared = whatBefore == whatAfter;
    const auto with = [](const QString& what, const QString& text) {
        return what.isEmpty() ? text : what + QStringLiteral(": ") + text;
    };
    difference.what = isShared ? whatBefore : QString();
    difference.before = isShared ? before : with(whatBefore, before);
    difference.after = isShared ? after : with(whatAfter, after);
    return difference;
}

Difference mutingOf(Difference::Part part, const QString& whatBefore, const QString& whatAfter,
                    const QString& before, const QString& after, bool isMuted) {
    Difference difference = changeOf(part, whatBefore, whatAfter, before, after);
    difference.kind = isMuted ? Kind::Muted : Kind::Unmuted;
    return difference;
}

std::vector<Difference> ConditionDifferences::compare(const Row& rootBefore, const Row& rootAfter) {
    const Row before = asConjunction(rootBefore);
    const Row after = asConjunction(rootAfter);
    m_found.clear();
    findMoves(before, after);
    compareGroups(before, after, true);
    return std::move(m_found);
}

void ConditionDifferences::compareGroups(const Row& before, const Row& after, bool isRoot) {
    if (m_before.rowKey(before) == m_after.rowKey(after)) return;
    // A group without conditions says nothing, so neither does its word.
    if (!saysTheSame(before, after) && !before.rows.empty() && !after.rows.empty()) {
        const auto what = [&](const ComparedQuery& query, const Row& group) {
            if (isRoot) return QStringLiteral("in how the conditions hold together");
            return QStringLiteral("in the group that begins with \"%1\"")
                .arg(query.conditions.onOneLine(group.rows.front()));
        };
        m_found.push_back(changeOf(m_part, what(m_before, before), what(m_after, after),
                                   groupWords(before.group), groupWords(after.group)));
    }
    const Pairing pairing = pairRows(before, after);
    for (std::size_t place = 0; place < before.rows.size(); ++place) {
        const Row& row = before.rows[place];
        if (pairing.after(place) == Pairing::none) {
            tellAlone(Kind::Removed, m_before, m_movedBefore, before, row, isRoot);
            continue;
        }
        const Row& partner = after.rows[std::size_t(pairing.after(place))];
        if (row.muted != partner.muted) {
            m_found.push_back(mutingOf(m_part, contextOf(before, isRoot), contextOf(after, isRoot),
                                       m_before.conditions.bareLine(row),
                                       m_after.conditions.bareLine(partner), partner.muted));
        }
        if (m_before.contentKey(row) == m_after.contentKey(partner)) continue;
        if (isGroup(row) && isGroup(partner)) {
            compareGroups(row, partner, false);
        } else {
            m_found.push_back(changeOf(m_part, contextOf(before, isRoot), contextOf(after, isRoot),
                                       m_before.conditions.onOneLine(row),
                                       m_after.conditions.onOneLine(partner)));
        }
    }
    for (std::size_t place = 0; place < after.rows.size(); ++place) {
        if (pairing.before(place) == Pairing::none) {
            tellAlone(Kind::Added, m_after, m_movedAfter, after, after.rows[place], isRoot);
        }
    }
    const bool hasOrder =
        groupKind(before.group) == GroupKind::Other || groupKind(after.group) == GroupKind::Other;
    if (hasOrder && !pairing.keepsOrder()) {
        m_found.push_back(changeOf(m_part, QStringLiteral("in the order of conditions"),
                                   QStringLiteral("in the order of conditions"),
                                   m_before.conditions.onOneLine(before),
                                   m_after.conditions.onOneLine(after)));
    }
}

Pairing ConditionDifferences::pairRows(const Row& before, const Row& after) const {
    Pairing pairing = pairAlike(before, after);
    pairConditions(before, after, pairing);
    return pairing;
}

// Rows that say the same, and groups that have something in common.
Pairing ConditionDifferences::pairAlike(const Row& before, const Row& after) const {
    Pairing pairing(before.rows.size(), after.rows.size());
    const auto keys = [](const ComparedQuery& query, const Row& group) {
        QStringList list;
        for (const Row& row : group.rows) list += query.rowKey(row);
        return list;
    };
    pairing.pairByKeys(keys(m_before, before), keys(m_after, after));
    const auto contents = [](const ComparedQuery& query, const Row& group) {
        QStringList list;
        for (const Row& row : group.rows) list += query.contentKey(row);
        return list;
    };
    pairing.pairByKeys(contents(m_before, before), contents(m_after, after));
    pairGroups(before, after, pairing);
    return pairing;
}

// Conditions on the same thing belong together; with the same operator rather than with another.
// What has moved has its partner elsewhere.
void ConditionDifferences::pairConditions(const Row& before, const Row& after,
                                          Pairing& pairing) const {
    const auto keys = [this](const ComparedQuery& query, const Row& group, bool withOperator) {
        QStringList list;
        for (const Row& row : group.rows) {
            const bool hasMoved = m_movedBefore.contains(&row) || m_movedAfter.contains(&row);
            const bool isComparison = !isGroup(row) && !row.operation.isEmpty() && !hasMoved;
            list += !isComparison ? QString()
                                  : query.textKey(row.func) + u'(' + query.textKey(row.field) +
                                        (withOperator ? row.operation : QString());
        }
        return list;
    };
    pairing.pairByKeys(keys(m_before, before, true), keys(m_after, after, true));
    pairing.pairByKeys(keys(m_before, before, false), keys(m_after, after, false));
}

// The most alike first. Of pairs that are as much alike the order does not depend on the side from
// which one looks.
void ConditionDifferences::pairGroups(const Row& before, const Row& after, Pairing& pairing) const {
    const auto contentsOf = [](const ComparedQuery& query, const Row& row) {
        Contents contents;
        collect(query, row, contents);
        return contents;
    };
    struct Candidate {
        int likeness;
        int before;
        int after;
    };
    std::vector<Candidate> candidates;
    for (int one = 0; one < int(before.rows.size()); ++one) {
        const Row& row = before.rows[std::size_t(one)];
        if (!isGroup(row) || pairing.after(std::size_t(one)) != Pairing::none) continue;
        const Contents contents = contentsOf(m_before, row);
        for (int other = 0; other < int(after.rows.size()); ++other) {
            const Row& partner = after.rows[std::size_t(other)];
            if (!isGroup(partner) || pairing.before(std::size_t(other)) != Pairing::none) continue;
            const int common = likeness(contents, contentsOf(m_after, partner));
            if (common > 0) candidates.push_back({common, one, other});
        }
    }
    std::sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
        const auto rank = [](const Candidate& candidate) {
            return std::tuple(-candidate.likeness, candidate.before + candidate.after,
                              std::min(candidate.before, candidate.after), candidate.before);
        };
        return rank(a) < rank(b);
    });
    for (const Candidate& candidate : candidates) {
        if (pairing.after(std::size_t(candidate.before)) != Pairing::none) continue;
        if (pairing.before(std::size_t(candidate.after)) != Pairing::none) continue;
        pairing.pair(candidate.before, candidate.after);
    }
}

// --- conditions that moved to another group ---

void ConditionDifferences::findMoves(const Row& before, const Row& after) {
    m_movedBefore.clear();
    m_movedAfter.clear();
    if (m_before.rowKey(before) == m_after.rowKey(after)) return;
    QHash<const Row*, const Row*> partners;
    pairTrees(before, after, partners);
    const auto alone = [&partners](const Row& root) {
        std::vector<Place> places;
        const auto walk = [&](const auto& self, const Row& group, bool isRoot) -> void {
            for (const Row& row : group.rows) {
                if (!partners.contains(&row)) {
                    places.push_back({&row, &group, isRoot});
                } else if (partners.value(&row) != nullptr) {
                    self(self, row, false);
                }
            }
        };
        walk(walk, root, true);
        return places;
    };
    const std::vector<Place> aloneBefore = alone(before);
    const std::vector<Place> aloneAfter = alone(after);
    pairMoves(aloneBefore, aloneAfter);
    // Groups that went or came as such may have left conditions behind, or taken some in.
    const auto opened = [](const std::vector<Place>& places, const Moves& moves) {
        std::vector<Place> conditions;
        const auto open = [&](const auto& self, const Place& place) -> void {
            if (moves.contains(place.row)) return;
            // A group of one says what that one says, or the contrary.
            if (place.row->rows.size() <= 1) {
                conditions.push_back(place);
                return;
            }
            for (const Row& row : place.row->rows) self(self, Place{&row, place.row, false});
        };
        for (const Place& place : places) open(open, place);
        return conditions;
    };
    pairMoves(opened(aloneBefore, m_movedBefore), opened(aloneAfter, m_movedAfter));
}

// The partners of rows on both sides; null where partners have nothing to tell.
void ConditionDifferences::pairTrees(const Row& before, const Row& after,
                                     QHash<const Row*, const Row*>& partners) const {
    for (const auto& [one, other] : pairAlike(before, after).pairs()) {
        const Row& row = before.rows[std::size_t(one)];
        const Row& partner = after.rows[std::size_t(other)];
        const bool isSame = m_before.contentKey(row) == m_after.contentKey(partner);
        partners.insert(&row, isSame ? nullptr : &partner);
        partners.insert(&partner, isSame ? nullptr : &row);
        if (!isSame && isGroup(row) && isGroup(partner)) pairTrees(row, partner, partners);
    }
}

void ConditionDifferences::pairMoves(const std::vector<Place>& before,
                                     const std::vector<Place>& after) {
    const auto keys = [](const ComparedQuery& query, const std::vector<Place>& places) {
        QStringList list;
        for (const Place& place : places) list += query.rowKey(*place.row);
        return list;
    };
    Pairing pairing(before.size(), after.size());
    pairing.pairByKeys(keys(m_before, before), keys(m_after, after));
    for (const auto& [one, other] : pairing.pairs()) {
        const Place& from = before[std::size_t(one)];
        const Place& to = after[std::size_t(other)];
        m_movedBefore.insert(from.row, to);
        m_movedAfter.insert(to.row, from);
    }
}

void ConditionDifferences::tellMove(const Place& before, const Place& after) {
    const auto place = [](const Place& where) {
        return where.isInRoot ? QStringLiteral("the outermost level")
                              : QStringLiteral("a group where ") + groupWords(where.group->group);
    };
    Difference difference =
        changeOf(m_part, m_before.conditions.onOneLine(*before.row),
                 m_after.conditions.onOneLine(*after.row), place(before), place(after));
    difference.kind = Kind::Moved;
    m_found.push_back(difference);
}

// A group of which some conditions have moved is told condition by condition. What has moved is
// told once, where it was.
void ConditionDifferences::tellAlone(Kind kind, const ComparedQuery& query, const Moves& moves,
                                     const Row& group, const Row& row, bool isRoot) {
    if (const auto move = moves.constFind(&row); move != moves.cend()) {
        if (kind == Kind::Removed) tellMove({&row, &group, isRoot}, *move);
        return;
    }
    const auto hasMoves = [&moves](const auto& self, const Row& inner) -> bool {
        return moves.contains(&inner) ||
               std::any_of(inner.rows.begin(), inner.rows.end(),
                           [&](const Row& next) { return self(self, next); });
    };
    if (!hasMoves(hasMoves, row)) return tellRow(kind, query, group, row, isRoot);
    for (const Row& inner : row.rows) tellAlone(kind, query, moves, row, inner, false);
}

void ConditionDifferences::tellRow(Kind kind, const ComparedQuery& query, const Row& group,
                                   const Row& row, bool isRoot) {
    Difference difference;
    difference.part = m_part;
    difference.kind = kind;
    difference.what = contextOf(group, isRoot);
    const QString words = query.conditions.onOneLine(row);
    (kind == Kind::Added ? difference.after : difference.before) = words;
    m_found.push_back(difference);
}

}  // namespace orvquery
