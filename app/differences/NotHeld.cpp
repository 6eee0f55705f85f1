// SPDX-License-Identifier: MIT
// What diagrams could not hold of two statements.
#include "differences/Differences.h"
#include "differences/Pairing.h"
#include "parser/ORVQDExpressions.h"
#include "words/QueryNames.h"

namespace orvquery {

namespace {

QStringList keys(const orv::Findings& findings) {
    QStringList list;
    for (const orv::Finding& finding : findings) {
        list += orv::tokenKey(finding.text) + u'\x1f' + finding.what;
    }
    return list;
}

QString words(const orv::Finding& finding) {
    return QStringLiteral("%1 (%2)").arg(quotedSql(finding.text), finding.what);
}

}  // namespace

std::vector<Difference> differencesNotHeld(const orv::Findings& before,
                                           const orv::Findings& after) {
    Pairing pairing(before.size(), after.size());
    pairing.pairByKeys(keys(before), keys(after));
    std::vector<Difference> found;
    for (std::size_t place = 0; place < before.size(); ++place) {
        if (pairing.after(place) != Pairing::none) continue;
        Difference difference;
        difference.part = Difference::Part::NotHeld;
        difference.kind = Difference::Kind::Removed;
        difference.before = words(before[place]);
        found.push_back(difference);
    }
    for (std::size_t place = 0; place < after.size(); ++place) {
        if (pairing.before(place) != Pairing::none) continue;
        Difference difference;
        difference.part = Difference::Part::NotHeld;
        difference.kind = Difference::Kind::Added;
        difference.after = words(after[place]);
        found.push_back(difference);
    }
    return found;
}

QString whyNotComparable(const orv::QueryState& state, const orv::Findings& findings) {
    if (findings.empty() || !state.tables.empty()) return {};
    return QStringLiteral(
        "No table of this statement could be loaded, so there is nothing to "
        "compare.");
}

}  // namespace orvquery
