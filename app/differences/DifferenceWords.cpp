// SPDX-License-Identifier: MIT
// Differences in words.
#include "differences/Differences.h"

namespace orvquery {

QString partTitle(Difference::Part part) {
    switch (part) {
    case Difference::Part::Columns: return QStringLiteral("Result");
    case Difference::Part::Tables: return QStringLiteral("Tables");
    case Difference::Part::Joins: return QStringLiteral("Joins");
    case Difference::Part::Conditions: return QStringLiteral("Conditions");
    case Difference::Part::GroupConditions: return QStringLiteral("Groups");
    case Difference::Part::Order: return QStringLiteral("Order");
    case Difference::Part::FurtherText: return QStringLiteral("Further text");
    case Difference::Part::NotHeld: break;
    }
    return QStringLiteral("Not compared");
}

QString sentence(const Difference& difference) {
    if (difference.part == Difference::Part::NotHeld) {
        const QString lead = QStringLiteral("Not held by the diagram, and so not compared: ");
        return difference.kind == Difference::Kind::Added
                   ? lead + QStringLiteral("in the second query ") + difference.after
                   : lead + QStringLiteral("in the first query ") + difference.before;
    }
    const QString where = difference.what.isEmpty() ? QString() : u' ' + difference.what;
    switch (difference.kind) {
    case Difference::Kind::Added:
        return QStringLiteral("Added") + where + QStringLiteral(": ") + difference.after;
    case Difference::Kind::Removed:
        return QStringLiteral("Removed") + where + QStringLiteral(": ") + difference.before;
    case Difference::Kind::Muted:
        return QStringLiteral("Muted now") + where + QStringLiteral(": ") + difference.after;
    case Difference::Kind::Unmuted:
        return QStringLiteral("No longer muted") + where + QStringLiteral(": ") + difference.after;
    case Difference::Kind::Moved:
        return QStringLiteral("Moved%1 from %2 to %3")
            .arg(difference.what.isEmpty() ? where : QStringLiteral(": ") + difference.what + u',',
                 difference.before, difference.after);
    case Difference::Kind::Changed: break;
    }
    return QStringLiteral("Changed") + where + QStringLiteral(": ") + difference.before +
           QStringLiteral("; now ") + difference.after;
}

// The parts follow one another in the list.
Explanation inWords(const std::vector<Difference>& differences) {
    Explanation explanation;
    if (differences.empty()) {
        explanation.sections.push_back(
            {QStringLiteral("Differences"), {{0, QStringLiteral("There are none.")}}});
    }
    for (const Difference& difference : differences) {
        const QString title = partTitle(difference.part);
        if (explanation.sections.empty() || explanation.sections.back().title != title) {
            explanation.sections.push_back({title, {}});
        }
        explanation.sections.back().lines.push_back({1, sentence(difference)});
    }
    return explanation;
}

}  // namespace orvquery
