// SPDX-License-Identifier: MIT
#include "words/ExpressionWords.h"

#include "catalogue/ORVQDOperators.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionReader.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDTokens.h"

#include <algorithm>

namespace orvquery {

namespace {

using Row = orv::QueryState::Row;

QString textOf(const QString& sql, const orv::TokenRun& run) {
    return sql.mid(run.start(), run.endPosition() - run.start());
}

std::optional<ReadExpression> readExists(const QString& sql, const orv::TokenRun& run) {
    const bool isNegated = !run.isEmpty() && run.is(0, u"NOT");
    const int first = isNegated ? 1 : 0;
    const bool isExists = run.size() > first + 2 && run.is(first, u"EXISTS") &&
                          run[first + 1].kind == orv::SqlToken::Open &&
                          run[first + 1].closeOffset == run.size() - first - 2;
    if (!isExists) return std::nullopt;
    const orv::TokenRun query = run.mid(first + 2, run.size() - first - 3);
    return ReadExpression{ReadExpression::Kind::Exists, isNegated, textOf(sql, query), {}};
}

std::optional<ReadExpression> readTruth(const QString& sql, const orv::TokenRun& run) {
    const int last = run.size() - 1;
    const bool isTruth =
        last > 1 && (run.is(last, u"TRUE") || run.is(last, u"FALSE") || run.is(last, u"UNKNOWN"));
    if (!isTruth) return std::nullopt;
    const bool isNegated = run.is(last - 1, u"NOT");
    const int is = isNegated ? last - 2 : last - 1;
    if (is < 1 || !run.is(is, u"IS")) return std::nullopt;
    return ReadExpression{ReadExpression::Kind::Truth, isNegated, textOf(sql, run.mid(0, is)),
                          run.textOf(last).toString().toUpper()};
}

std::optional<ReadExpression> readPart(const QString& sql, const orv::TokenRun& run) {
    for (int index = 1; index + 1 < run.size(); ++index) {
        const bool isStarting = run.is(index, u"STARTING");
        const bool isWord = run[index].depth == 0 && (isStarting || run.is(index, u"CONTAINING"));
        if (!isWord) continue;
        const bool isNegated = run.is(index - 1, u"NOT");
        const int behind = isStarting && run.is(index + 1, u"WITH") ? index + 2 : index + 1;
        const int leftSize = isNegated ? index - 1 : index;
        if (leftSize < 1 || behind >= run.size()) return std::nullopt;
        return ReadExpression{
            isStarting ? ReadExpression::Kind::Starting : ReadExpression::Kind::Containing,
            isNegated, textOf(sql, run.mid(0, leftSize)), textOf(sql, run.mid(behind))};
    }
    return std::nullopt;
}

// What is one condition has no connective of its own.
bool hasConnective(const orv::TokenRun& run) {
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].depth == 0 && (run.is(index, u"AND") || run.is(index, u"OR"))) return true;
    }
    return false;
}

Row rowOf(const orv::ReadCondition& read, const QString& text) {
    Row row;
    if (!read.operation || orv::isBlank(read.operation->Name)) {
        row.field = text;
        return row;
    }
    row.func = read.fieldFunc;
    row.field = read.field;
    row.operation = read.operation->Name;
    row.argFunc = read.argFunc;
    row.arguments = read.arguments;
    return row;
}

}  // namespace

std::optional<ReadExpression> readExpression(const QString& sql) {
    const orv::SqlTokens tokens = orv::tokenise(sql);
    const orv::TokenRun run(sql, tokens.data(), tokens.data() + tokens.size());
    if (hasConnective(run)) return std::nullopt;
    if (auto exists = readExists(sql, run)) return exists;
    if (!run.isEmpty() && run.is(0, u"NOT")) return std::nullopt;
    if (auto truth = readTruth(sql, run)) return truth;
    return readPart(sql, run);
}

std::vector<TextCondition> conditionsOfText(const QString& sql) {
    const orv::SqlTokens tokens = orv::tokenise(sql);
    const orv::TokenRun run(sql, tokens.data(), tokens.data() + tokens.size());
    std::vector<orv::TokenRun> parts;
    if (!orv::splitConjunction(run, parts)) parts = {run};
    TOperatorList operators;
    orv::fillOperators(operators);
    orv::ConditionRules rules;
    rules.operators = &operators;
    std::vector<TextCondition> conditions;
    for (const orv::TokenRun& part : parts) {
        const QString text = textOf(sql, part);
        const std::vector<orv::ConditionElement> elements = orv::readConditions(part, rules);
        const bool isOne =
            elements.size() == 1 && elements.front().kind == orv::ConditionElement::Condition;
        const orv::ReadCondition read = isOne ? elements.front().condition : orv::ReadCondition();
        conditions.push_back({rowOf(read, text), text});
    }
    return conditions;
}

bool isNeverUnknown(const Row& row) {
    return opposite(row).has_value();
}

std::optional<Row> opposite(const Row& row) {
    if (!row.group.isEmpty()) return std::nullopt;
    Row other = row;
    const QString operation = orv::orvTrim(row.operation).toUpper();
    if (operation == u"IS NULL" || operation == u"IS NOT NULL") {
        other.operation =
            operation == u"IS NULL" ? QStringLiteral("IS NOT NULL") : QStringLiteral("IS NULL");
        return other;
    }
    const bool isExpression = operation.isEmpty() && row.arguments.isEmpty();
    const auto read = isExpression ? readExpression(row.field) : std::nullopt;
    if (!read) return std::nullopt;
    if (read->kind == ReadExpression::Kind::Exists) {
        other.field = (read->isNegated ? QString() : QStringLiteral("NOT ")) +
                      QStringLiteral("EXISTS (%1)").arg(read->left);
        return other;
    }
    if (read->kind != ReadExpression::Kind::Truth) return std::nullopt;
    other.field = read->left +
                  (read->isNegated ? QStringLiteral(" IS ") : QStringLiteral(" IS NOT ")) +
                  read->right;
    return other;
}

}  // namespace orvquery
