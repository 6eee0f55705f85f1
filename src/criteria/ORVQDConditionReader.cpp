// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionReader.h"

#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWhereRows.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDKeywords.h"

#include <algorithm>
#include <optional>

namespace orv {

namespace {

constexpr int deepestFormedText = 20;  // brackets in brackets; deeper ones stay as they stood

bool isWord(const TokenRun& run, int index, QStringView word) {
    return index < run.size() && run[index].kind == SqlToken::Word && run.is(index, word);
}

bool isSign(const TokenRun& run, int index) {
    return index < run.size() && run[index].kind == SqlToken::Sign;
}

/// An operator of the list with its name and the text between its operands as tokens.
struct KnownOperator {
    TOperatorList::Entry entry;
    QStringList name;
    QStringList relate;
};

QStringList tokenTexts(const QString& text) {
    QStringList texts;
    for (const SqlToken& token : tokenise(text)) {
        texts << text.mid(token.start, token.end - token.start).toUpper();
    }
    return texts;
}

bool matches(const TokenRun& run, int index, const QStringList& texts) {
    if (texts.isEmpty() || index + texts.size() > run.size()) return false;
    for (qsizetype word = 0; word < texts.size(); ++word) {
        if (!run.is(index + int(word), texts[word])) return false;
    }
    return true;
}

/// Where an operator stands in a condition and what follows it.
struct FoundOperator {
    const KnownOperator* known;
    int index;      // of its first token
    int behind;     // of the first token behind it
    int signsLeft;  // characters of the token in front of `behind` that belong to the operand
};

class Reader {
public:
    explicit Reader(const ConditionRules& rules) : m_rules(rules) {
        for (int index = 0; rules.operators && index < rules.operators->Count(); ++index) {
            const TOperatorList::Entry entry = rules.operators->Items(index);
            m_known.push_back({entry, tokenTexts(entry->Name), tokenTexts(entry->Relate)});
        }
        // Of several names that begin alike the longest is meant.
        std::stable_sort(m_known.begin(), m_known.end(), [](const auto& a, const auto& b) {
            return a.name.size() > b.name.size();
        });
    }

    std::vector<ConditionElement> level(TokenRun run, int depth) const {
        if (depth > deepestCondition) {
            throw Error(
                QStringLiteral("Conditions nest deeper than %1 levels").arg(deepestCondition));
        }
        std::vector<ConditionElement> elements;
        bool expectsOperand = true;
        for (int index = 0; index < run.size();) {
            ConditionElement element;
            int next = index + 1;
            if (isWord(run, index, u"AND") || isWord(run, index, u"OR")) {
                element.kind = run.is(index, u"AND") ? ConditionElement::And : ConditionElement::Or;
                expectsOperand = true;
            } else if (isWord(run, index, u"NOT") && expectsOperand) {
                element.kind = ConditionElement::Not;
            } else {
                next = endOfCondition(run, index);
                element = condition(run.mid(index, next - index), depth);
                expectsOperand = false;
            }
            element.run = run.mid(index, next - index);
            elements.push_back(std::move(element));
            index = next;
        }
        if (m_rules.andBindsTighter) bindAnds(elements);
        return elements;
    }

private:
    // --- where a condition ends
    // -------------------------------------------------------------------

    // Up to the next AND or OR of this level that is no part of a BETWEEN or CASE.
    [[nodiscard]] int endOfCondition(const TokenRun& run, int first) const {
        int ownAnds = 0;
        int cases = 0;
        int index = first;
        while (index < run.size()) {
            if (run[index].kind == SqlToken::Open) {
                index = run.behindBracket(index);
                continue;
            }
            if (isWord(run, index, u"CASE")) ++cases;
            if (isWord(run, index, u"END") && cases > 0) --cases;
            const bool isAnd = isWord(run, index, u"AND");
            if (cases == 0 && (isAnd || isWord(run, index, u"OR"))) {
                if (!isAnd || ownAnds == 0) return index;
                --ownAnds;
            }
            const KnownOperator* known =
                cases == 0 && index > first ? operatorNamed(run, index) : nullptr;
            if (known) {
                ownAnds += andsBetweenOperands(*known);
                index += int(known->name.size());
                continue;
            }
            if (cases == 0 && isWord(run, index, u"BETWEEN")) ++ownAnds;
            ++index;
        }
        return index;
    }

    // The longest operator of the list whose name stands here.
    [[nodiscard]] const KnownOperator* operatorNamed(const TokenRun& run, int index) const {
        const auto found = std::find_if(m_known.begin(), m_known.end(), [&](const auto& known) {
            return matches(run, index, known.name);
        });
        return found == m_known.end() ? nullptr : &*found;
    }

    // Operators that have AND between their operands keep that many of them.
    static int andsBetweenOperands(const KnownOperator& known) {
        const bool hasAnd = known.relate.size() == 1 && known.relate.front() == u"AND";
        return hasAnd ? std::max(operandCount(known.entry) - 1, 0) : 0;
    }

    // --- one condition
    // ----------------------------------------------------------------------------

    [[nodiscard]] ConditionElement condition(TokenRun run, int depth) const {
        ConditionElement element;
        while (isSubCondition(run)) {
            const TokenRun inside = run.mid(1, run.size() - 2);
            if (!isSubCondition(inside)) {
                element.kind = ConditionElement::Bracket;
                element.children = level(inside, depth + 1);
                return element;
            }
            run = inside;
        }
        element.condition = comparison(run);
        return element;
    }

    // A bracket that is the whole condition and holds one: no sub-select and no list.
    static bool isSubCondition(const TokenRun& run) {
        if (run.size() < 3 || run[0].kind != SqlToken::Open || run.behindBracket(0) != run.size() ||
            run[run.size() - 1].kind != SqlToken::Close) {
            return false;
        }
        if (isWord(run, 1, u"SELECT")) return false;
        return std::none_of(run.begin(), run.end(), [&](const SqlToken& token) {
            return token.kind == SqlToken::Comma && token.depth == run[0].depth + 1;
        });
    }

    [[nodiscard]] ReadCondition comparison(const TokenRun& run) const {
        if (const std::optional<FoundOperator> found = findOperator(run)) {
            if (std::optional<ReadCondition> read = operands(run, *found)) {
                if (saysTheSame(*read, run)) return *read;
            }
        }
        return {blankText(), run.sourceText(), expressionOperator(), blankText(), {}};
    }

    // The row must write what the text says, word for word.
    static bool saysTheSame(const ReadCondition& read, const TokenRun& run) {
        const TorvQDOperator& operation = *read.operation;
        const auto call = [](const QString& function, const QString& text) {
            return orvTrim(function).isEmpty() ? text : function + u'(' + text + u')';
        };
        QString text =
            call(read.fieldFunc, read.field) + u' ' + operation.Name + u' ' + operation.Prefix;
        text += call(read.argFunc, read.arguments.join(operation.Relate)) + operation.Postfix;
        QString source = run.sourceText();
        QString written = tokenKey(text);
        QString given = tokenKey(source);
        if (written == given) return true;
        // A run of signs was split, or "!=" is written as "<>".
        return written.remove(u' ').replace(QStringLiteral("!="), QStringLiteral("<>")) ==
               given.remove(u' ').replace(QStringLiteral("!="), QStringLiteral("<>"));
    }

    // The first operator of the list behind the beginning of the left side.
    [[nodiscard]] std::optional<FoundOperator> findOperator(const TokenRun& run) const {
        int cases = 0;
        for (int index = 0; index < run.size();) {
            if (run[index].kind == SqlToken::Open) {
                index = run.behindBracket(index);
                continue;
            }
            if (isWord(run, index, u"CASE")) ++cases;
            if (isWord(run, index, u"END") && cases > 0) --cases;
            if (index > 0 && cases == 0) {
                if (const auto found = operatorAt(run, index)) return found;
            }
            ++index;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<FoundOperator> operatorAt(const TokenRun& run, int index) const {
        if (const KnownOperator* known = operatorNamed(run, index)) {
            return FoundOperator{known, index, index + int(known->name.size()), 0};
        }
        if (isSign(run, index)) return splitSigns(run, index);
        return std::nullopt;
    }

    // Signs that are no operator as they stand: an operator and the sign of a number behind it.
    [[nodiscard]] std::optional<FoundOperator> splitSigns(const TokenRun& run, int index) const {
        const QString signs = run.textOf(index).toString();
        for (qsizetype length = signs.size(); length > 0; --length) {
            const KnownOperator* known = operatorOfSigns(signs.left(length));
            if (!known) continue;
            const QString rest = signs.mid(length);
            const bool isNumberSign = std::all_of(rest.begin(), rest.end(), [](QChar character) {
                return character == u'+' || character == u'-';
            });
            if (!isNumberSign) return std::nullopt;
            return FoundOperator{known, index, index + 1, int(rest.size())};
        }
        return std::nullopt;
    }

    [[nodiscard]] const KnownOperator* operatorOfSigns(const QString& signs) const {
        const auto named = [this](const QString& name) -> const KnownOperator* {
            const auto found = std::find_if(m_known.begin(), m_known.end(), [&](const auto& known) {
                return known.name.size() == 1 && known.name.front() == name;
            });
            return found == m_known.end() ? nullptr : &*found;
        };
        if (const KnownOperator* known = named(signs)) return known;
        return signs == u"!=" ? named(QStringLiteral("<>")) : nullptr;
    }

    // --- operands
    // ---------------------------------------------------------------------------------

    [[nodiscard]] std::optional<ReadCondition> operands(const TokenRun& run,
                                                        const FoundOperator& found) const {
        const TOperatorList::Entry& entry = found.known->entry;
        ReadCondition read{blankText(), {}, entry, blankText(), {}};
        takeSide(run.mid(0, found.index), read.fieldFunc, read.field);
        const int count = operandCount(entry);
        const TokenRun rest = run.mid(found.behind);
        const QString sign = found.signsLeft > 0
                                 ? run.textOf(found.index).toString().right(found.signsLeft)
                                 : QString();
        if (count == 0)
            return rest.isEmpty() && sign.isEmpty() ? std::optional(read) : std::nullopt;
        if (rest.isEmpty()) return std::nullopt;
        const std::optional<TokenRun> inside = withoutAffixes(rest, *entry);
        if (!inside) return std::nullopt;
        const std::vector<TokenRun> parts = splitOperands(*inside, *found.known, count);
        if (int(parts.size()) != count) return std::nullopt;
        for (const TokenRun& part : parts) {
            if (part.isEmpty()) return std::nullopt;
            read.arguments << operandText(part);
        }
        const bool plain = orvTrim(entry->Prefix).isEmpty() && orvTrim(entry->Postfix).isEmpty();
        if (count == 1 && plain && sign.isEmpty()) {
            takeSide(parts.front(), read.argFunc, read.arguments.front());
        }
        read.arguments.front().prepend(sign);
        return read;
    }

    // A call of one of the panel's functions has a cell of its own.
    void takeSide(const TokenRun& run, QString& function, QString& text) const {
        const bool isCall = m_rules.functions && run.size() > 3 && run[0].kind == SqlToken::Word &&
                            run[1].kind == SqlToken::Open && run.behindBracket(1) == run.size();
        const QString name = isCall ? run.textOf(0).toString().toUpper() : QString();
        if (isCall && m_rules.functions->contains(name)) {
            function = name;
            const TokenRun inside = run.mid(2, run.size() - 3);
            text = listText(inside);
            return;
        }
        text = operandText(run);
    }

    // The operands between the operator's prefix and postfix; none where one is missing.
    static std::optional<TokenRun> withoutAffixes(TokenRun rest, const TorvQDOperator& operation) {
        const QStringList prefix = tokenTexts(operation.Prefix);
        const QStringList postfix = tokenTexts(operation.Postfix);
        const int affixes = int(prefix.size() + postfix.size());
        if (affixes == 0) return rest;
        if (rest.size() <= affixes) return std::nullopt;
        if (!prefix.isEmpty() && !matches(rest, 0, prefix)) return std::nullopt;
        const int end = rest.size() - int(postfix.size());
        if (!postfix.isEmpty() && !matches(rest, end, postfix)) return std::nullopt;
        const bool isBracket = prefix == QStringList{QStringLiteral("(")};
        if (isBracket && rest.behindBracket(0) != rest.size()) return std::nullopt;
        return rest.mid(int(prefix.size()), rest.size() - affixes);
    }

    static std::vector<TokenRun> splitOperands(const TokenRun& run, const KnownOperator& known,
                                               int count) {
        if (count == 1) return {run};
        std::vector<TokenRun> parts;
        if (known.relate.isEmpty()) return parts;
        int first = 0;
        int cases = 0;
        for (int index = 0; index < run.size();) {
            if (run[index].kind == SqlToken::Open) {
                index = run.behindBracket(index);
                continue;
            }
            if (isWord(run, index, u"CASE")) ++cases;
            if (isWord(run, index, u"END") && cases > 0) --cases;
            const bool splits =
                cases == 0 && int(parts.size()) + 1 < count && matches(run, index, known.relate);
            if (splits) {
                parts.push_back(run.mid(first, index - first));
                index += int(known.relate.size());
                first = index;
            } else {
                ++index;
            }
        }
        parts.push_back(run.mid(first));
        return parts;
    }

    // Single operands and lists of them have one form of text; all else stays as it stood.
    static QString operandText(const TokenRun& run) {
        const QString text = run.sourceText();
        const QString formed = formedText(run, 0);
        return !formed.isEmpty() && tokenKey(formed) == tokenKey(text) ? formed : text;
    }

    static QString listText(const TokenRun& run) {
        QStringList items;
        for (const TokenRun& item : run.splitAtCommas()) {
            const QString formed = formedText(item, 0);
            if (formed.isEmpty()) return run.sourceText();
            items << formed;
        }
        return items.join(QStringLiteral(", "));
    }

    // A word, a call of a function that the parser knows, or a bracket; empty for anything else.
    static QString formedText(const TokenRun& run, int nesting) {
        if (nesting > deepestFormedText) return {};
        if (run.size() == 1) return run[0].kind == SqlToken::Sign ? QString() : run.sourceText();
        QString name;
        int open = 0;
        if (run.size() > 2 && run[0].kind == SqlToken::Word &&
            wordInfo(run.textOf(0).toString().toUpper()).is(wordFunction)) {
            name = run.textOf(0).toString().toUpper();
            open = 1;
        }
        const bool isGroup = run.size() > open + 2 && run[open].kind == SqlToken::Open &&
                             run.behindBracket(open) == run.size();
        if (!isGroup) return {};
        QStringList items;
        for (const TokenRun& item : run.mid(open + 1, run.size() - open - 2).splitAtCommas()) {
            const QString formed = item.isEmpty() ? QString() : formedText(item, nesting + 1);
            if (formed.isEmpty()) return {};
            items << formed;
        }
        return name + u'(' + items.join(QStringLiteral(", ")) + u')';
    }

    // --- AND before OR
    // ----------------------------------------------------------------------------

    // In a level that also has OR, each run of conditions joined by AND gets a bracket.
    static void bindAnds(std::vector<ConditionElement>& elements) {
        const auto has = [&](ConditionElement::Kind kind) {
            return std::any_of(elements.begin(), elements.end(),
                               [&](const auto& element) { return element.kind == kind; });
        };
        if (!has(ConditionElement::And) || !has(ConditionElement::Or)) return;
        std::vector<ConditionElement> bound;
        std::vector<ConditionElement> part;
        const auto flush = [&] {
            const bool hasAnd = std::any_of(part.begin(), part.end(), [](const auto& element) {
                return element.kind == ConditionElement::And;
            });
            if (hasAnd) {
                ConditionElement bracket;
                bracket.kind = ConditionElement::Bracket;
                bracket.run = part.front().run;
                bracket.children = std::move(part);
                bound.push_back(std::move(bracket));
            } else {
                std::move(part.begin(), part.end(), std::back_inserter(bound));
            }
            part.clear();
        };
        for (ConditionElement& element : elements) {
            if (element.kind == ConditionElement::Or) {
                flush();
                bound.push_back(std::move(element));
            } else {
                part.push_back(std::move(element));
            }
        }
        flush();
        elements = std::move(bound);
    }

    const ConditionRules& m_rules;
    std::vector<KnownOperator> m_known;
};

}  // namespace

std::vector<ConditionElement> readConditions(const TokenRun& run, const ConditionRules& rules) {
    TokenRun inner = run;
    return Reader(rules).level(inner, 1);
}

const ConditionElement* andBehindOr(const std::vector<ConditionElement>& level) {
    bool seenOr = false;
    for (const ConditionElement& element : level) {
        if (element.kind == ConditionElement::Or) seenOr = true;
        if (element.kind == ConditionElement::And && seenOr) return &element;
    }
    return nullptr;
}

}  // namespace orv
