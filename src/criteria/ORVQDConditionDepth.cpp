// SPDX-License-Identifier: MIT
// How deep a condition nests, told from its brackets and connectives alone.
#include "core/Error.h"
#include "criteria/ORVQDConditionReader.h"

#include <algorithm>

namespace orv {

void raiseTooDeep() {
    throw Error(QStringLiteral("Conditions nest deeper than %1 levels").arg(deepestCondition));
}

namespace {

bool isKeyword(const TokenRun& run, int index, QStringView word) {
    return index >= 0 && index < run.size() && run[index].kind == SqlToken::Word &&
           run.is(index, word);
}

/// What a level of brackets may become: an upper bound.
struct LevelBound {
    int connective = 0;  // 0 none yet, 1 AND, 2 OR
    int changes = 0;
    int nots = 0;  // since the last connective
    int mostNots = 0;
    int below = 1;  // inside its brackets; a missing condition is a group, too

    void connect(int kind) {
        if (connective != 0 && connective != kind) ++changes;
        connective = kind;
        nots = 0;
    }
    void negate() { mostNots = std::max(mostNots, ++nots); }
    [[nodiscard]] int groups() const { return changes + mostNots + below; }
};

}  // namespace

int mostGroupsBelow(const TokenRun& run) {
    std::vector<LevelBound> levels(1);
    for (int index = 0; index < run.size(); ++index) {
        const SqlToken::Kind kind = run[index].kind;
        if (kind == SqlToken::Open) {
            levels.emplace_back();
        } else if (kind == SqlToken::Close && levels.size() > 1) {
            const int groups = levels.back().groups() + 1;
            levels.pop_back();
            levels.back().below = std::max(levels.back().below, groups);
        } else if (isKeyword(run, index, u"AND") || isKeyword(run, index, u"OR")) {
            levels.back().connect(run.is(index, u"AND") ? 1 : 2);
        } else if (isKeyword(run, index, u"NOT")) {
            levels.back().negate();
        }
    }
    int groups = 0;
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        level->below = std::max(level->below, groups);
        groups = level->groups() + 1;
    }
    return groups;
}

}  // namespace orv
