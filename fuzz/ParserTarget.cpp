// SPDX-License-Identifier: MIT
// Any text is normalised, tokenised, split, parsed and accounted for: it ends, raises nothing but
// orv::Error, and every position that is told lies in the text that it is about.
#include "Targets.h"
#include "core/Error.h"
#include "parser/ORVQDArgument.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"

#include <optional>

namespace orvfuzz {

namespace {

using orv::NormalisedSQL;
using orv::SqlToken;
using orv::SqlTokens;
using orv::TokenRun;

void checkNormalised(const NormalisedSQL& normalised, const QString& given) {
    const std::vector<int>& positions = normalised.positions;
    require(qsizetype(positions.size()) == normalised.text.size() + 1,
            "There is not one position for each character and for the end.");
    int last = 0;
    for (const int position : positions) {
        require(position >= last, "The positions of the normalised text go back.");
        last = position;
    }
    require(last <= given.size(), "A position lies behind the given text.");
    for (int end = 1; end <= normalised.text.size(); ++end) {
        require(normalised.givenEnd(end) <= given.size(), "A span ends behind the given text.");
    }
}

// Tokens follow each other with nothing but blanks between them, and brackets find each other.
void checkTokens(const SqlTokens& tokens, QStringView text) {
    const auto areBlanks = [&](int start, int end) {
        const QStringView between = text.mid(start, end - start);
        return std::all_of(between.begin(), between.end(), [](QChar character) {
            return character <= u' ' || character.isSpace();
        });
    };
    int behind = 0;
    for (std::size_t index = 0; index < tokens.size(); ++index) {
        const SqlToken& token = tokens[index];
        require(token.start >= behind && token.end > token.start, "Tokens overlap or are empty.");
        require(areBlanks(behind, token.start), "Text between two tokens is lost.");
        behind = token.end;
        if (token.closeOffset == 0) continue;
        require(token.kind == SqlToken::Open && token.closeOffset > 0 &&
                    index + std::size_t(token.closeOffset) < tokens.size(),
                "A bracket is closed outside the text.");
        const SqlToken& close = tokens[index + std::size_t(token.closeOffset)];
        require(close.kind == SqlToken::Close && close.depth == token.depth,
                "A bracket is closed by what does not close it.");
    }
    require(behind <= text.size(), "A token ends behind the text.");
    require(areBlanks(behind, int(text.size())), "Text behind the last token is lost.");
}

bool liesIn(const TokenRun& part, const TokenRun& whole) {
    return part.isEmpty() || (part.begin() >= whole.begin() && part.end() <= whole.end());
}

void checkExpressions(const TokenRun& run, const QString& text) {
    const orv::AliasedRun aliased = orv::splitAlias(run);
    require(
        liesIn(aliased.expression, run) && liesIn(aliased.alias, run) && liesIn(aliased.whole, run),
        "An alias or its expression lies outside the item.");
    std::vector<TokenRun> parts;
    if (orv::splitConjunction(run, parts)) {
        for (const TokenRun& part : parts) require(liesIn(part, run), "A condition lies outside.");
    }
    const int end = orv::endOfCondition(run);
    require(end >= 0 && end <= run.size(), "A condition ends outside its tokens.");
    require(int(orv::insideSubQueries(run).size()) == run.size(),
            "Not each token is said to be in a subquery or not.");
    int tokens = 0;
    for (const TokenRun& item : run.splitAtCommas()) tokens += item.size();
    require(tokens <= run.size(), "The items of a list have more tokens than it has.");
    (void)orv::isExpression(run);
    (void)orv::countTokens(run);
    (void)orv::tokenKey(text);
    (void)orv::withJoinedNames(text);
    (void)orv::isFieldName(text);
    (void)orv::argumentProblem(text);
}

void checkParts(const orv::StatementParts& parts, qsizetype size) {
    require(0 <= parts.bodyEnd && parts.bodyEnd <= parts.tailStart &&
                parts.tailStart <= parts.tailEnd && parts.tailEnd <= parts.restStart &&
                parts.restStart <= size,
            "The parts of the statement do not follow each other.");
}

// Both trees are walked at once, without recursion: they may be as deep as the text is long.
void checkTrees(const TorvQDParser& first, const TorvQDParser& second) {
    const qsizetype size = first.Source().size();
    std::vector<std::pair<const TorvQDParser*, const TorvQDParser*>> open{{&first, &second}};
    while (!open.empty()) {
        const auto [one, other] = open.back();
        open.pop_back();
        require(one->Kind() == other->Kind() && one->Location() == other->Location() &&
                    one->Text() == other->Text() && one->Start() == other->Start() &&
                    one->End() == other->End() && one->Count() == other->Count(),
                "Reading a text twice gives two trees.");
        require(0 <= one->Start() && one->Start() <= one->End() && one->End() <= size,
                "A node spans more than the text.");
        for (int index = 0; index < one->Count(); ++index) {
            require(one->Child(index)->Start() >= one->Start(), "A child begins before its node.");
            open.emplace_back(one->Child(index), other->Child(index));
        }
    }
}

// Why a text is refused, when it is.
std::optional<QString> refusal(const QString& text, bool twice) {
    try {
        const TorvQDParser tree(text);
        if (twice) {
            checkTrees(tree, TorvQDParser(text));
            (void)tree.FillArguments(true);
        }
    } catch (const orv::Error& error) {
        return error.Message();
    }
    return std::nullopt;
}

void checkLedger(const QString& given, const NormalisedSQL& normalised) {
    orv::LoadLedger ledger(given, normalised);
    const int size = int(ledger.text().size());
    ledger.reportUnclosed(size);
    ledger.reportChangedTexts(size);
    // Some tokens are taken, so that what nobody took lies in several places.
    for (std::size_t index = 0; index < ledger.tokens().size(); index += 3) {
        ledger.place(ledger.tokens()[index].start, ledger.tokens()[index].end);
    }
    int last = 0;
    for (const orv::Finding& finding : ledger.findings()) {
        require(finding.start >= last, "The findings are not in the order of the text.");
        last = finding.start;
        require(finding.length >= 0 && finding.start + finding.length <= given.size(),
                "A finding lies outside the given text.");
        require(finding.text == given.mid(finding.start, finding.length),
                "A finding tells another text than that of its place.");
        require(!finding.what.isEmpty(), "A finding does not say what became of its text.");
    }
}

/// A text that begins with "[" is read with square brackets as signs, without that bracket.
void runParser(QByteArrayView input) {
    const bool areSigns = input.startsWith('[');
    const QString given = QString::fromUtf8(areSigns ? input.sliced(1) : input);
    const NormalisedSQL normalised = orv::NormaliseSQL(
        given, areSigns ? orv::SquareBrackets::AreSigns : orv::SquareBrackets::QuoteNames);
    checkNormalised(normalised, given);
    const SqlTokens tokens = orv::tokenise(normalised.text);
    checkTokens(tokens, normalised.text);
    const orv::StatementParts parts = orv::splitStatement(normalised.text, tokens);
    checkParts(parts, normalised.text.size());
    checkExpressions({normalised.text, tokens.data(), tokens.data() + tokens.size()}, given);

    const QString body = normalised.text.left(parts.bodyEnd);
    const std::optional<QString> refused = refusal(body, true);
    require(!refused || *refused == u"Given statement is not SELECT clause",
            "A text is refused for an unknown reason.");
    if (given != body) (void)refusal(given, false);  // hosts may hand over any text
    checkLedger(given, normalised);
}

QList<QByteArray> parserSeeds() {
    QList<QByteArray> seeds = statementsOfCases();
    const QList<QByteArray> texts = seeds;
    for (qsizetype index = 0; index < texts.size(); index += 8) seeds << '[' + texts[index];
    return seeds;
}

}  // namespace

Target parserTarget() {
    return {"parser", false, runParser, parserSeeds};
}

}  // namespace orvfuzz
