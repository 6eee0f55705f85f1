// SPDX-License-Identifier: MIT
#include "words/TailWords.h"

#include "core/Text.h"
#include "parser/ORVQDTokens.h"
#include "words/QueryNames.h"

#include <array>

namespace orvquery {

namespace {

/// A word that combines the rows of two queries.
struct SetOperation {
    QString name;  ///< "UNION ALL"
    int behind;    ///< the token that begins the query behind it
};

std::optional<SetOperation> operationAt(const orv::TokenRun& run, int index) {
    static constexpr std::array names = {u"UNION", u"INTERSECT", u"EXCEPT", u"MINUS"};
    if (run[index].depth != 0) return std::nullopt;
    for (const char16_t* const name : names) {
        if (!run.is(index, name)) continue;
        const bool hasNext = index + 1 < run.size();
        const bool isAll = hasNext && run.is(index + 1, u"ALL");
        const bool isDistinct = hasNext && run.is(index + 1, u"DISTINCT");
        return SetOperation{QString::fromUtf16(name) + (isAll ? QStringLiteral(" ALL") : QString()),
                            index + (isAll || isDistinct ? 2 : 1)};
    }
    return std::nullopt;
}

// What sorts and limits stands behind the last query and is for the rows of all of them.
int behindQueries(const orv::TokenRun& run) {
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].depth != 0) continue;
        const bool sorts =
            run.is(index, u"ORDER") && index + 1 < run.size() && run.is(index + 1, u"BY");
        if (sorts || run.is(index, u"LIMIT") || run.is(index, u"OFFSET") || run.is(index, u"FETCH"))
            return index;
    }
    return run.size();
}

QString combinationWords(const QString& operation) {
    if (operation == u"UNION") {
        return QStringLiteral(
            "Together with the rows of a second query (UNION), rows that are alike once");
    }
    if (operation == u"UNION ALL") {
        return QStringLiteral(
            "Together with the rows of a second query (UNION ALL), also those that are alike");
    }
    if (operation == u"INTERSECT ALL") {
        return QStringLiteral(
            "Only as many of these rows as a second query returns, too (INTERSECT ALL)");
    }
    if (operation == u"INTERSECT") {
        return QStringLiteral(
            "Only those of these rows that a second query returns, too (INTERSECT), rows that are "
            "alike once");
    }
    if (operation.endsWith(QLatin1String(" ALL"))) {
        return QStringLiteral("Without one of these rows for each row of a second query (%1)")
            .arg(operation);
    }
    return QStringLiteral(
               "Without those of these rows that a second query returns, too (%1), rows that are "
               "alike once")
        .arg(operation);
}

}  // namespace

std::vector<WordsSection> tailSections(const QString& tail) {
    if (orv::isBlank(tail)) return {};
    const orv::SqlTokens tokens = orv::tokenise(tail);
    const orv::TokenRun run(tail, tokens.data(), tokens.data() + tokens.size());
    const auto first = run.isEmpty() ? std::nullopt : operationAt(run, 0);
    const int end = behindQueries(run);
    if (!first || first->behind >= end) {
        return {{QStringLiteral("Further text"),
                 {{0, QStringLiteral("At its end the statement says, as it stands: ") +
                          quotedSql(tail) + u'.'}}}};
    }
    QStringList operations;
    for (int index = 0; index < end; ++index) {
        if (const auto operation = operationAt(run, index)) operations += operation->name;
    }
    const bool isOne = operations.size() == 1;
    const int start = isOne ? first->behind : 0;
    const auto text = [&](const orv::TokenRun& part) {
        return quotedSql(tail.mid(part.start(), part.endPosition() - part.start())) + u'.';
    };
    const QString lead =
        isOne ? combinationWords(first->name)
              : QStringLiteral("These rows are combined with those of %1 further queries (%2)")
                    .arg(operations.size())
                    .arg(enumeration(operations));
    std::vector<WordsLine> lines = {
        {0, lead + QStringLiteral(": ") + text(run.mid(start, end - start))}};
    if (end < run.size()) {
        lines.push_back(
            {0,
             QStringLiteral("For all rows that come of this the statement says, as it stands: ") +
                 text(run.mid(end))});
    }
    return {{QStringLiteral("Further queries"), lines}};
}

}  // namespace orvquery
