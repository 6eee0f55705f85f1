// SPDX-License-Identifier: MIT
#include "norows/Verdict.h"

#include "words/QueryNames.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace orvquery {

namespace {

constexpr qsizetype longestText = 70;
constexpr std::size_t mostNamed = 4;

QString tr(const char* text) {
    return QCoreApplication::translate("orvquery::Verdict", text);
}

// Sentences that go on with a name begin small.
QString sentence(QString text) {
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return text + u'.';
}

QString shortText(const QString& text) {
    return text.size() <= longestText ? text : text.left(longestText).trimmed() + QChar(0x2026);
}

QString ending(const RowCount& count) {
    if (count.rows == 1 && !count.isAtLeast) return tr("there is 1 row");
    return tr("there are %1").arg(countWords(count));
}

QString namesOf(const Inquiry& inquiry, const std::vector<int>& parts) {
    QStringList names;
    for (const int part : parts) names += partWords(inquiry.parts()[std::size_t(part)]);
    return enumeration(names);
}

QString singleSentence(const Inquiry& inquiry, int number) {
    const QueryPart& part = inquiry.parts()[std::size_t(number)];
    const RowCount& count = *inquiry.without(number);
    if (part.kind == QueryPart::Kind::Join) {
        return sentence(tr("%1 alone keeps every row away: no row that is left has a match there. "
                           "As an outer join %2")
                            .arg(partWords(part), ending(count)));
    }
    return sentence(
        tr("%1 alone keeps every row away: without it %2").arg(partWords(part), ending(count)));
}

QStringList culpritSentences(const Inquiry& inquiry, const std::vector<int>& culprits) {
    if (culprits.size() == 1) return {singleSentence(inquiry, culprits.front())};
    if (culprits.size() > mostNamed) {
        return {tr("%1 parts of the query exclude each other: without any one of them there are "
                   "rows.")
                    .arg(culprits.size())};
    }
    return {sentence(tr("%1 exclude each other: without any one of them there are rows")
                         .arg(namesOf(inquiry, culprits)))};
}

QString togetherSentence(const Inquiry& inquiry) {
    const std::vector<int>& parts = inquiry.culpritsTogether();
    const QString rows = ending(*inquiry.withoutTogether());
    if (parts.size() > mostNamed) {
        return sentence(tr("no single condition does it: %1 together keep every row away; without "
                           "all of these %2")
                            .arg(tr("%1 conditions").arg(parts.size()), rows));
    }
    return sentence(tr("no single condition does it: %1 together keep every row away; without %2 "
                       "%3")
                        .arg(namesOf(inquiry, parts),
                             parts.size() == 2 ? tr("both") : tr("all of these"), rows));
}

QStringList tableSentences(const Inquiry& inquiry) {
    if (inquiry.losingJoin() >= 0) {
        const QueryPart& join = inquiry.parts()[std::size_t(inquiry.losingJoin())];
        return {tr("No single condition does it: the tables themselves have no matching rows."),
                sentence(tr("The rows vanish at %1").arg(partWords(join)))};
    }
    if (!inquiry.firstTables() || !inquiry.firstTables()->hasNone()) {
        return {tr("No single condition does it: without any condition there are no rows either.")};
    }
    const QStringList tables = inquiry.query().firstTables();
    if (!inquiry.query().hasPlainJoins()) {
        return {tr("No single condition does it: the tables themselves have no rows.")};
    }
    if (tables.size() == 1) return {tr("The table %1 has no rows.").arg(tables.front())};
    return {tr("One of the tables %1 has no rows.").arg(enumeration(tables, tr("and")))};
}

// What has been found out about a query without rows.
QStringList findings(const Inquiry& inquiry) {
    const std::vector<int> culprits = inquiry.culprits();
    const bool hasEnded = inquiry.stage() == Inquiry::Stage::Ended;
    if (!culprits.empty() && (hasEnded || inquiry.stage() != Inquiry::Stage::Singles)) {
        return culpritSentences(inquiry, culprits);
    }
    if (!culprits.empty()) {
        return {tr("The query has no rows; a part that keeps them away is found already.")};
    }
    if (inquiry.bare() && inquiry.bare()->hasNone()) {
        if (hasEnded && !inquiry.isStopped()) return tableSentences(inquiry);
        return {tr("The query has no rows, and without any condition there are none either.")};
    }
    if (hasEnded && !inquiry.isStopped() && inquiry.withoutTogether()) {
        if (inquiry.culpritsTogether().size() > 1) return {togetherSentence(inquiry)};
    }
    if (hasEnded && !inquiry.isStopped()) {
        return {tr("The query has no rows, and no single part of it keeps them away.")};
    }
    return {tr("The query has no rows.")};
}

// The parts without which a query runs that does not run with them.
std::vector<int> runnableWithout(const Inquiry& inquiry) {
    const auto runs = [&](int part) {
        return inquiry.without(part) && inquiry.without(part)->isKnown();
    };
    std::vector<int> found;
    for (std::size_t index = 0; index < inquiry.parts().size(); ++index) {
        const std::vector<int>& covered = inquiry.parts()[index].covered;
        if (runs(int(index)) && std::none_of(covered.begin(), covered.end(), runs)) {
            found.push_back(int(index));
        }
    }
    return found;
}

QString stepRemark(const Inquiry& inquiry, int number) {
    const std::optional<RowCount>& step = inquiry.step(number);
    if (!step) return {};
    if (!step->isKnown()) return step->problem;
    if (inquiry.parts()[std::size_t(number)].kind == QueryPart::Kind::Join) {
        return step->hasRows() ? tr("Without conditions: %1 up to here").arg(countWords(*step))
                               : tr("Without conditions: no row from here on");
    }
    return step->hasRows() ? tr("Step by step: %1 left").arg(countWords(*step))
                           : tr("Step by step: no row left");
}

}  // namespace

QString countText(const RowCount& count) {
    if (!count.isKnown()) return {};
    const QString number = QLocale().toString(count.rows);
    return count.isAtLeast ? number + u'+' : number;
}

QString countWords(const RowCount& count) {
    if (!count.isKnown()) return {};
    if (count.isAtLeast) return tr("%1 rows or more").arg(QLocale().toString(count.rows));
    if (count.rows == 0) return tr("no rows");
    if (count.rows == 1) return tr("1 row");
    return tr("%1 rows").arg(QLocale().toString(count.rows));
}

QString partWords(const QueryPart& part) {
    const QString text = quotedSql(shortText(part.text));
    switch (part.kind) {
    case QueryPart::Kind::Condition:
        return (part.isTop() ? tr("the condition %1") : tr("the condition %1 within a group"))
            .arg(text);
    case QueryPart::Kind::GroupCondition: return tr("the condition on groups %1").arg(text);
    case QueryPart::Kind::Join: return tr("the join of %1").arg(part.table);
    case QueryPart::Kind::Link: return tr("the link %1").arg(text);
    case QueryPart::Kind::End: break;
    }
    return tr("the end of the statement, %1,").arg(text);
}

QString remark(const Inquiry& inquiry, int number) {
    const std::optional<RowCount>& count = inquiry.without(number);
    if (count && !count->isKnown()) return count->problem;
    const std::vector<int> culprits = inquiry.culprits();
    const bool isJoin = inquiry.parts()[std::size_t(number)].kind == QueryPart::Kind::Join;
    if (std::find(culprits.begin(), culprits.end(), number) != culprits.end()) {
        if (isJoin) return tr("As an outer join it lets rows through");
        return culprits.size() == 1 && inquiry.whole()->isKnown()
                   ? tr("Keeps every row away")
                   : tr("Without it alone there are rows");
    }
    QString step = stepRemark(inquiry, number);
    if (!step.isEmpty() || !isJoin || !count) return step;
    return tr("Counted as an outer join");
}

QStringList verdict(const Inquiry& inquiry) {
    if (!inquiry.whole()) {
        return inquiry.isStopped() ? QStringList(tr("Stopped before the query itself had ended."))
                                   : QStringList();
    }
    const RowCount& whole = *inquiry.whole();
    QStringList sentences;
    if (!whole.isKnown()) {
        sentences += tr("The query as it is cannot be run: %1").arg(whole.problem);
        const std::vector<int> runnable = runnableWithout(inquiry);
        if (runnable.size() == 1) {
            sentences += sentence(tr("without %1 it runs, and %2")
                                      .arg(partWords(inquiry.parts()[std::size_t(runnable[0])]),
                                           ending(*inquiry.without(runnable[0]))));
        }
    } else if (whole.hasRows()) {
        sentences += tr("The query has %1: nothing keeps all of them away.").arg(countWords(whole));
        if (inquiry.query().isAlwaysOneRow()) {
            sentences +=
                tr("An aggregate without groups always gives one row, also when no row of "
                   "the tables meets the conditions.");
        }
        return sentences;
    } else {
        sentences += findings(inquiry);
    }
    if (inquiry.isStopped()) sentences += tr("Stopped before everything was tried.");
    const int failures = inquiry.failures() - (whole.isKnown() ? 0 : 1);
    if (inquiry.stage() == Inquiry::Stage::Ended && failures > 0) {
        sentences += failures == 1
                         ? tr("One trial could not be run; the list says why.")
                         : tr("%1 trials could not be run; the list says why.").arg(failures);
    }
    if (inquiry.query().passedOver() > 0 && inquiry.stage() == Inquiry::Stage::Ended) {
        sentences += tr("%1 conditions within groups were not tried by themselves.")
                         .arg(inquiry.query().passedOver());
    }
    return sentences;
}

}  // namespace orvquery
