// SPDX-License-Identifier: MIT
#include "selection/ORVQDSelectColumns.h"

#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDTokens.h"

#include <algorithm>

namespace orv {

namespace {

bool isAggregateName(QStringView word, const QStringList& aggregates) {
    return std::any_of(aggregates.begin(), aggregates.end(), [&](const QString& name) {
        return !isBlank(name) && word.compare(name, Qt::CaseInsensitive) == 0;
    });
}

bool isOneToken(const QString& text) {
    const SqlTokens tokens = tokenise(text);
    return tokens.size() == 1;
}

bool isStar(const QString& text) {
    const SqlTokens tokens = tokenise(text);
    return isStar(TokenRun(text, tokens.data(), tokens.data() + tokens.size()));
}

// Whether the call that opens at `open` stands over a window; a FILTER may stand between.
bool isOverWindow(const TokenRun& run, int open) {
    int next = run.behindBracket(open);
    if (next + 1 < run.size() && run.is(next, u"FILTER") && run[next + 1].kind == SqlToken::Open) {
        next = run.behindBracket(next + 1);
    }
    return next < run.size() && run.is(next, u"OVER");
}

}  // namespace

QString createFieldName(const QString& aggregate, const QString& source) {
    const qsizetype stop = firstFullStop(source);
    const QString bare = stop < 0 ? source : source.mid(stop + 1);
    return isBlank(aggregate) ? bare : aggregate + QStringLiteral("_OF_") + bare;
}

bool callsAggregate(const QString& source, const QStringList& aggregates) {
    if (!source.contains(u'(')) return false;
    const SqlTokens tokens = tokenise(source);
    const TokenRun run(source, tokens.data(), tokens.data() + tokens.size());
    for (int index = 0; index + 1 < run.size(); ++index) {
        if (run[index].kind == SqlToken::Open && run.is(index + 1, u"SELECT")) {
            index = run.behindBracket(index) - 1;
        } else if (run[index].kind == SqlToken::Word && run[index + 1].kind == SqlToken::Open &&
                   isAggregateName(run.textOf(index), aggregates) &&
                   !isOverWindow(run, index + 1)) {
            return true;
        }
    }
    return false;
}

QString writtenOutputName(const OutputColumn& column, const SelectTextRules& rules) {
    const QString name = orvTrim(column.name);
    const bool isImplied = column.name == createFieldName(QString(), column.source);
    // Only a field or constant alone gets its own name from every database.
    const bool keepsName =
        rules.keepMeaning && (!isBlank(column.aggregate) || !isOneToken(orvTrim(column.source)));
    if (name.isEmpty() || (isImplied && !keepsName)) return {};
    return rules.keepMeaning && !isValidOutputName(name) ? quotedName(name) : name;
}

bool isValidOutputName(const QString& name) {
    const bool isText = name.startsWith(u'\'') && tokenise(name).size() == 1 && name.size() > 1 &&
                        name.endsWith(u'\'');
    return isPlainIdentifier(name) || isQuotedName(name) || isText;
}

QString outputNameProblem(const OutputColumn& column, const SelectTextRules& rules) {
    const QString name = writtenOutputName(column, rules);
    if (name.isEmpty()) return {};
    if (isBlank(column.aggregate) && isStar(column.source)) {
        return QStringLiteral("This stands for several columns, which cannot have one name.");
    }
    if (isValidOutputName(name)) return {};
    return QStringLiteral("This is no valid name of an output column.");
}

QString columnText(const OutputColumn& column, const SelectTextRules& rules) {
    QString text = orvTrim(column.source);
    if (!isBlank(column.aggregate)) {
        text = orvTrim(column.aggregate) + QStringLiteral("( ") + text + QStringLiteral(" )");
    }
    const QString name = writtenOutputName(column, rules);
    return name.isEmpty() ? text : text + QStringLiteral(" AS ") + name;
}

bool isAggregated(const OutputColumns& columns, const SelectTextRules& rules) {
    return std::any_of(columns.begin(), columns.end(), [&](const OutputColumn& column) {
        if (column.muted) return false;
        return !isBlank(column.aggregate) || callsAggregate(column.source, *rules.aggregates);
    });
}

bool fitsAggregation(const OutputColumn& column, const SelectTextRules& rules) {
    return !isBlank(column.aggregate) || callsAggregate(column.source, *rules.aggregates) ||
           column.grouped || rules.isField(orvTrim(column.source));
}

SelectTexts selectTexts(const OutputColumns& columns, const SelectTextRules& rules) {
    SelectTexts texts;
    texts.aggregated = isAggregated(columns, rules);
    QStringList selected;
    QStringList grouped;
    for (std::size_t index = 0; index < columns.size(); ++index) {
        const OutputColumn& column = columns[index];
        if (isBlank(column.source) || column.muted) continue;
        const bool plain =
            isBlank(column.aggregate) && !callsAggregate(column.source, *rules.aggregates);
        if (texts.aggregated && plain) {
            if (!fitsAggregation(column, rules)) {
                throw Error(QStringLiteral("There is no agregate function on page \"Selection\" "
                                           "in %1 row")
                                .arg(index + 1));
            }
            grouped << orvTrim(column.source);
        }
        selected << columnText(column, rules);
    }
    texts.select = selected.join(QStringLiteral(",\r\n"));
    texts.groupBy = grouped.join(QStringLiteral(", "));
    return texts;
}

}  // namespace orv
