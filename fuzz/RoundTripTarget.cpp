// SPDX-License-Identifier: MIT
// Whatever is loaded and written comes back from what was written, where loading that tells
// nothing; and with an empty report what was written says what was loaded. The first byte is the
// mode, "c" for the control's plain rules.
#include "FuzzBuilders.h"
#include "StatementWords.h"
#include "Targets.h"
#include "support/WayBack.h"

#include <algorithm>
#include <optional>

namespace orvfuzz {

namespace {

void checkReport(const orv::Findings& report, const QString& given) {
    for (const orv::Finding& finding : report) {
        require(finding.start >= 0 && finding.length >= 0 &&
                    finding.start + finding.length <= given.size(),
                "A finding lies outside the statement.");
        require(finding.text == given.mid(finding.start, finding.length),
                "A finding tells another text than that of its place.");
    }
}

// The statement that the control would write; none when it raises that there is none.
std::optional<QString> writtenBy(orvtest::HostedBuilder& on) {
    try {
        return on.builder.GetSQLStatment();
    } catch (const orv::Error&) {
        return std::nullopt;
    }
}

bool loads(orvtest::HostedBuilder& on, const QString& text) {
    try {
        on.builder.LoadSQL(text);
    } catch (const orv::Error& error) {
        require(!error.Message().isEmpty(), "A statement is refused without a reason.");
        return false;
    }
    return true;
}

// Boxes that agree with the lists and pages. A statement may give two boxes one alias, which is
// told: then the second one is not found by it, nor are its ticks.
void checkRules(orvtest::HostedBuilder& on) {
    const QString broken = orvtest::brokenRule(on.builder);
    const orv::Findings& report = on.builder.LoadReport();
    const bool isTold = std::any_of(report.begin(), report.end(), [](const orv::Finding& finding) {
        return finding.what.startsWith(u"Another table has this alias");
    });
    const bool isOfAlias = broken.contains(u"alias") || broken.startsWith(u"tick and columns");
    require(broken.isEmpty() || (isTold && isOfAlias), "Loaded: " + broken);
}

// A statement that can be loaded: with columns and tables.
bool isWhole(orvtest::HostedBuilder& on) {
    return !on.columns().isEmpty() && on.builder.WorkArea->TablesCount() > 0;
}

// An unpaired bracket, which is told, pairs with those that are written around its condition.
bool tellsOfBracket(const orv::Findings& report) {
    return std::any_of(report.begin(), report.end(), [](const orv::Finding& finding) {
        return finding.text == u"(" || finding.text == u")";
    });
}

// It was told that something is missing or changed, so that the given text need not come back. What
// is held all the same does, from the first text of the control that is loaded without a word.
void checkRest(FuzzBuilders& builders) {
    orvtest::HostedBuilder* const controls[] = {&builders.first, &builders.second, &builders.third};
    constexpr int mostLoads = 3;
    const bool isPaired = !tellsOfBracket(builders.first.builder.LoadReport());
    for (int load = 0; load < mostLoads; ++load) {
        orvtest::HostedBuilder& from = *controls[load];
        orvtest::HostedBuilder& to = *controls[(load + 1) % 3];
        orvtest::HostedBuilder& third = *controls[(load + 2) % 3];
        const std::optional<QString> written = writtenBy(from);
        if (!written || !isWhole(from)) return;
        to.builder.Clear();
        require(loads(to, *written), "What was written is refused:\n" + *written);
        checkReport(to.builder.LoadReport(), *written);
        checkRules(to);
        const bool silent = to.builder.LoadReport().empty() && builders.services.messages.isEmpty();
        builders.services.messages.clear();
        if (!silent || !isPaired) continue;
        // A text that is shown would not be loaded again.
        to.builder.Clear();
        // By the plain rules the tables change places each time, which the next load may tell.
        const bool comesToRest = from.builder.KeepMeaning();
        if (comesToRest) third.builder.Clear();
        const QString fault =
            comesToRest
                ? orvtest::faultOfWayBack(from, to, third, builders.services)
                : orvtest::faultOfLoading(from, to, orvtest::StateForm::Normal, builders.services);
        require(fault.isEmpty(), "Written behind a finding:\n" + *written + '\n' + fault);
        if (comesToRest) return;
    }
}

void checkWayBack(FuzzBuilders& builders, const QString& given) {
    orvtest::HostedBuilder& first = builders.first;
    if (!loads(first, given)) return;
    const bool silent = first.builder.LoadReport().empty() && builders.services.messages.isEmpty();
    builders.services.messages.clear();
    checkReport(first.builder.LoadReport(), given);
    checkRules(first);
    const std::optional<QString> written = writtenBy(first);
    require(written || !silent, "What was loaded without a finding cannot be written.");
    if (!written || !isWhole(first)) return;
    if (!silent) {
        checkRest(builders);
        return;
    }
    const QString fault =
        orvtest::faultOfWayBack(first, builders.second, builders.third, builders.services);
    require(fault.isEmpty(), "Written:\n" + *written + '\n' + fault);
    const QString words = wordsDifference(given, *written, first.builder.KeepMeaning());
    require(words.isEmpty(), "Written:\n" + *written + "\nsays something else:\n" + words);
}

void runRoundTrip(QByteArrayView input) {
    if (input.isEmpty()) return;
    FuzzBuilders& builders = FuzzBuilders::emptied(input.front() != 'c');
    checkWayBack(builders, QString::fromUtf8(input.sliced(1)));
    builders.settle();
}

QList<QByteArray> roundTripSeeds() {
    QList<QByteArray> seeds;
    for (const QByteArray& statement : statementsOfCases()) seeds << 'k' + statement;
    const QList<QByteArray> kept = seeds;
    for (const QByteArray& seed : kept) seeds << 'c' + seed.sliced(1);
    return seeds;
}

}  // namespace

Target roundtripTarget() {
    return {"roundtrip", true, runRoundTrip, roundTripSeeds};
}

}  // namespace orvfuzz
