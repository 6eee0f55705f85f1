// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionReader.h"

#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWhereRows.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDKeywords.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace orv {

namespace {

constexpr int deepestFormedText = 20;  // brackets in brackets; deeper ones stay as they stood

bool isWord(const TokenRun& run, int index, QStringView word) {
    return index >= 0 && index < run.size() && run[index].kind == SqlToken::Word &&
           run.is(index, word);
}

bool isSign(const TokenRun& run, int index) {
    return index < run.size() && run[index].kind == SqlToken::Sign;
}

bool isConnective(const TokenRun& run, int index) {
    return isWord(run, index, u"AND") || isWord(run, index, u"OR");
}

QStringList tokenTexts(const QString& text) {
    QStringList texts;
    for (const SqlToken& token : tokenise(text)) {
        texts << upperOutsideQuotes(QStringView(text).mid(token.start, token.end - token.start));
    }
    return texts;
}

bool matches(const TokenRun& run, int index, const QStringList& texts) {
    if (texts.isEmpty() || index + texts.size() > run.size()) return false;
    for (qsizetype word = 0; word < texts.size(); ++word) {
        const int at = index + int(word);
        if (!run.is(at, texts[word])) return false;
    }
    return true;
}

bool isNumberSign(QStringView signs) {
    return std::all_of(signs.begin(), signs.end(),
                       [](QChar sign) { return sign == u'+' || sign == u'-'; });
}

/// An operator of the list, its texts as tokens.
struct KnownOperator {
    explicit KnownOperator(const TOperatorList::Entry& operation)
        : entry(operation),
          name(tokenTexts(operation->Name)),
          relate(tokenTexts(operation->Relate)),
          prefix(tokenTexts(operation->Prefix)),
          postfix(tokenTexts(operation->Postfix)) {
        // Behind an opening bracket they do not stand at the level of the condition.
        const QString open = QStringLiteral("(");
        const QString close = QStringLiteral(")");
        if (prefix.count(open) > prefix.count(close)) return;
        for (const QStringList& texts : {prefix, postfix}) count(texts, 1);
        count(relate, std::max(0, operandCount(entry) - 1));
    }
    [[nodiscard]] bool hasAffixes() const { return !prefix.isEmpty() || !postfix.isEmpty(); }
    /// Whether a text has this operator's name as FindName takes it: in upper case.
    [[nodiscard]] bool isUpperCase() const {
        return entry->Name == upperOutsideQuotes(entry->Name);
    }

    TOperatorList::Entry entry;
    QStringList name;
    QStringList relate;
    QStringList prefix;
    QStringList postfix;
    // What stands around and between the operands, counted.
    int ands = 0;
    int ors = 0;

private:
    void count(const QStringList& texts, int times) {
        ands += times * int(texts.count(QStringLiteral("AND")));
        ors += times * int(texts.count(QStringLiteral("OR")));
    }
};

/// Where an operator stands in a condition and what follows it.
struct FoundOperator {
    const KnownOperator* known;
    int index;      // of its first token
    int behind;     // of the first token behind it
    int signsLeft;  // characters of the token in front of `behind` that belong to the operand
};

/// Counts CASE and END while tokens go by: what stands between them is one operand.
class CaseDepth {
public:
    void pass(const TokenRun& run, int index) {
        if (isWord(run, index, u"CASE")) ++m_depth;
        if (isWord(run, index, u"END") && m_depth > 0) --m_depth;
    }
    [[nodiscard]] bool isInside() const { return m_depth > 0; }

private:
    int m_depth = 0;
};

/// Calls `visit` with the index of each token of the run's own level, outside CASE, until it
/// answers false.
template <typename Visit>
void visitLevel(const TokenRun& run, int first, const Visit& visit) {
    CaseDepth cases;
    for (int index = first; index < run.size();) {
        if (run[index].kind == SqlToken::Open) {
            index = run.behindBracket(index);
            continue;
        }
        cases.pass(run, index);
        if (!cases.isInside() && !visit(index)) return;
        ++index;
    }
}

class Reader {
public:
    Reader(const ConditionRules& rules, const TokenRun& run) : m_rules(rules), m_base(run.begin()) {
        readCatalogue();
        lookIntoBrackets(run);
    }

    std::vector<ConditionElement> read(const TokenRun& run) const {
        std::vector<ConditionElement> elements = level(run, 0);
        if (!m_rules.structureOnly) takeApart(elements);
        return elements;
    }

private:
    // The brackets, connectives and conditions of a level and of all levels below. It calls itself
    // for each bracket: what needs much room on the stack is done afterwards.
    [[nodiscard]] std::vector<ConditionElement> level(const TokenRun& run, int depth) const {
        if (depth > deepestCondition + 1) raiseTooDeep();  // the root group has brackets, too
        std::vector<ConditionElement> elements;
        if (mixesXorAndAnd(run)) {
            ConditionElement& whole = elements.emplace_back();
            whole.run = run;
            whole.condition = wholeText(run);
            return elements;
        }
        bool expectsOperand = true;
        for (int index = 0; index < run.size();) {
            ConditionElement& element = elements.emplace_back();
            int next = index + 1;
            if (isConnective(run, index)) {
                element.kind = run.is(index, u"AND") ? ConditionElement::And : ConditionElement::Or;
                expectsOperand = true;
            } else if (isWord(run, index, u"NOT") && expectsOperand) {
                element.kind = ConditionElement::Not;
            } else {
                next = endOfCondition(run, index);
                readBracket(element, run.mid(index, next - index), depth);
                expectsOperand = false;
            }
            element.run = run.mid(index, next - index);
            index = next;
        }
        if (m_rules.andBindsTighter) bindAnds(elements);
        return elements;
    }

    // The conditions as cells of rows; those that stay whole have theirs already.
    void takeApart(std::vector<ConditionElement>& elements) const {
        std::vector<std::vector<ConditionElement>*> open = {&elements};
        while (!open.empty()) {
            std::vector<ConditionElement>& level = *open.back();
            open.pop_back();
            for (ConditionElement& element : level) {
                if (element.kind == ConditionElement::Bracket) open.push_back(&element.children);
                const bool isOpen =
                    element.kind == ConditionElement::Condition && !element.condition.operation;
                if (isOpen) element.condition = comparison(element.run);
            }
        }
    }

    void readCatalogue() {
        for (int index = 0; m_rules.operators && index < m_rules.operators->Count(); ++index) {
            const TOperatorList::Entry entry = m_rules.operators->Items(index);
            if (entry) m_known.emplace_back(entry);
        }
        // Of several names that begin alike the longest is meant; of names that differ in case only
        // the one in upper case, as words of a statement are.
        std::stable_sort(m_known.begin(), m_known.end(), [](const auto& a, const auto& b) {
            if (a.name.size() != b.name.size()) return a.name.size() > b.name.size();
            return a.isUpperCase() && !b.isUpperCase();
        });
        for (const KnownOperator& known : m_known) {
            if (known.ands > 0 || known.ors > 0) m_withConnectives.push_back(&known);
        }
    }

    // One walk for all brackets, so that nested ones are not searched again and again.
    void lookIntoBrackets(const TokenRun& run) {
        m_holdsSelect.resize(std::size_t(run.size()));
        std::vector<int> open;
        for (int index = 0; index < run.size(); ++index) {
            const SqlToken::Kind kind = run[index].kind;
            if (kind == SqlToken::Open) {
                open.push_back(index);
            } else if (open.empty()) {
                continue;
            } else if (kind == SqlToken::Close) {
                open.pop_back();
            } else if (isWord(run, index, u"SELECT")) {
                m_holdsSelect[std::size_t(open.back())] = true;
            }
        }
    }

    // Where XOR stands beside AND, databases disagree about which binds tighter: the text stays.
    static bool mixesXorAndAnd(const TokenRun& run) {
        bool hasXor = false;
        bool hasAnd = false;
        visitLevel(run, 0, [&](int index) {
            hasXor = hasXor || (index > 0 && isWord(run, index, u"XOR"));
            hasAnd = hasAnd || isWord(run, index, u"AND");
            return true;
        });
        return hasXor && hasAnd;
    }

    // --- where a condition ends ---

    // Up to the next AND or OR of this level that is no part of a CASE or between operands.
    [[nodiscard]] int endOfCondition(const TokenRun& run, int first) const {
        int ownAnds = 0;
        int ownOrs = 0;
        int end = run.size();
        int counted = first;  // up to here operators were looked for
        visitLevel(run, first, [&](int index) {
            if (isConnective(run, index)) {
                int& own = run.is(index, u"AND") ? ownAnds : ownOrs;
                if (own == 0) {
                    end = index;
                    return false;
                }
                --own;
            } else if (index > first && index >= counted) {
                counted = index + countOwnConnectives(run, index, ownAnds, ownOrs);
            }
            return true;
        });
        return end;
    }

    // Operators that have AND or OR between their operands keep them; the number of tokens of the
    // operator, or 1.
    int countOwnConnectives(const TokenRun& run, int index, int& ands, int& ors) const {
        for (const KnownOperator* known : m_withConnectives) {
            if (!matches(run, index, known->name)) continue;
            ands += known->ands;
            ors += known->ors;
            return int(known->name.size());
        }
        if (isWord(run, index, u"BETWEEN")) ++ands;
        return 1;
    }

    // --- one condition ---

    // Of brackets around brackets one is enough.
    void readBracket(ConditionElement& element, TokenRun run, int depth) const {
        while (isSubCondition(run)) {
            run = run.mid(1, run.size() - 2);
            if (isSubCondition(run)) continue;
            element.kind = ConditionElement::Bracket;
            element.children = level(run, depth + 1);
        }
    }

    // A bracket that is the whole condition and holds one: no sub-select. A comma in it stands
    // where no condition has any; it is read as it is without the bracket, which is written around
    // it.
    [[nodiscard]] bool isSubCondition(const TokenRun& run) const {
        if (run.size() < 3 || run[0].kind != SqlToken::Open ||
            run[0].closeOffset != run.size() - 1) {
            return false;
        }
        return !m_holdsSelect[std::size_t(run.begin() - m_base)];
    }

    static ReadCondition wholeText(const TokenRun& run) {
        return {blankText(), run.sourceText(), expressionOperator(), blankText(), {}};
    }

    static bool holdsSelect(const TokenRun& run) {
        for (int index = 0; index < run.size(); ++index) {
            if (run[index].depth == run[0].depth && isWord(run, index, u"SELECT")) return true;
        }
        return false;
    }

    [[nodiscard]] ReadCondition comparison(const TokenRun& run) const {
        // Within the bracket that is written around it, it would be read as a sub-select: it is one
        // text at once, with that bracket.
        if (holdsSelect(run)) {
            ReadCondition whole = wholeText(run);
            whole.field = u'(' + whole.field + u')';
            return whole;
        }
        if (const std::optional<FoundOperator> found = findOperator(run)) {
            if (std::optional<ReadCondition> read = operands(run, *found)) {
                if (saysTheSame(*read, run)) return *read;
            }
        }
        return wholeText(run);
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
        const SqlTokens tokens = tokenise(text);
        return signKey({text, tokens.data(), tokens.data() + tokens.size()}) == signKey(run);
    }

    // As tokenKey, but runs of signs count as one however they are spaced, and "!=" is "<>".
    static QString signKey(const TokenRun& run) {
        QString key;
        key.reserve(2 * (run.endPosition() - run.start()) + 1);
        bool behindSign = false;
        for (int index = 0; index < run.size(); ++index) {
            const QStringView word = run.textOf(index);
            const bool isSign = run[index].kind == SqlToken::Sign;
            if (!isSign || !behindSign) key += u' ';
            if (isSign) {
                key += word.toString().replace(QStringLiteral("!="), QStringLiteral("<>"));
            } else {
                appendUpperOutsideQuotes(key, word);
            }
            behindSign = isSign;
        }
        return key;
    }

    // The first operator of the list behind the beginning of the left side.
    [[nodiscard]] std::optional<FoundOperator> findOperator(const TokenRun& run) const {
        std::optional<FoundOperator> found;
        const int behindFirst = run[0].kind == SqlToken::Open ? run.behindBracket(0) : 1;
        const bool startsCase = isWord(run, 0, u"CASE");
        visitLevel(run, startsCase ? 0 : behindFirst, [&](int index) {
            if (index > 0) found = operatorAt(run, index);
            return !found;
        });
        return found;
    }

    [[nodiscard]] std::optional<FoundOperator> operatorAt(const TokenRun& run, int index) const {
        if (isSign(run, index) && isGluedToMark(run, index)) return std::nullopt;
        // "A NOT SIMILAR B" is no SIMILAR of "A NOT".
        if (isWord(run, index - 1, u"NOT") || isWord(run, index - 1, u"IS")) return std::nullopt;
        for (const KnownOperator& known : m_known) {
            if (!matches(run, index, known.name)) continue;
            return FoundOperator{&known, index, index + int(known.name.size()), 0};
        }
        return splitSigns(run, index);
    }

    // "@>" and "<@" are signs of some databases, where "@" alone begins a name.
    static bool isGluedToMark(const TokenRun& run, int index) {
        const auto isMark = [&](int at) {
            const QStringView text = run.textOf(at);
            return std::all_of(text.begin(), text.end(),
                               [](QChar mark) { return mark == u'@' || mark == u'#'; });
        };
        if (run[index - 1].end == run[index].start && isMark(index - 1)) return true;
        return index + 1 < run.size() && run[index].end == run[index + 1].start &&
               isMark(index + 1);
    }

    // Signs that are no operator as they stand: an operator and the sign of a number behind it.
    [[nodiscard]] std::optional<FoundOperator> splitSigns(const TokenRun& run, int index) const {
        const KnownOperator* longest = nullptr;
        for (const KnownOperator& known : m_known) {
            if (!beginsWithSigns(run, index, known.name)) continue;
            if (longest && (known.name.size() < longest->name.size() ||
                            known.name.back().size() <= longest->name.back().size())) {
                continue;
            }
            longest = &known;
        }
        // "!=" is another spelling of "<>".
        const QString unequal = QStringLiteral("!=");
        const KnownOperator* standard = named(QStringLiteral("<>"));
        const bool isLonger =
            !longest || (longest->name.size() == 1 && longest->name.back().size() < unequal.size());
        if (standard && isLonger && beginsWithSigns(run, index, {unequal})) {
            return splitBehind(run, index, *standard, unequal.size());
        }
        if (!longest) return std::nullopt;
        return splitBehind(run, index, *longest, longest->name.back().size());
    }

    [[nodiscard]] const KnownOperator* named(const QString& sign) const {
        const auto found = std::find_if(m_known.begin(), m_known.end(), [&](const auto& known) {
            return known.name.size() == 1 && known.name.front() == sign;
        });
        return found == m_known.end() ? nullptr : &*found;
    }

    // Whether the tokens are those of the name, the last one perhaps with more signs behind it.
    static bool beginsWithSigns(const TokenRun& run, int index, const QStringList& name) {
        const int last = index + int(name.size()) - 1;
        if (name.isEmpty() || !isSign(run, last)) return false;
        if (name.size() > 1 && !matches(run, index, name.first(name.size() - 1))) return false;
        return run.textOf(last).startsWith(name.back());
    }

    static std::optional<FoundOperator> splitBehind(const TokenRun& run, int index,
                                                    const KnownOperator& known, qsizetype length) {
        const int last = index + int(known.name.size()) - 1;
        const QStringView rest = run.textOf(last).mid(length);
        if (!isNumberSign(rest)) return std::nullopt;
        return FoundOperator{&known, index, last + 1, int(rest.size())};
    }

    // --- operands ---

    [[nodiscard]] std::optional<ReadCondition> operands(const TokenRun& run,
                                                        const FoundOperator& found) const {
        const KnownOperator& known = *found.known;
        ReadCondition read{blankText(), {}, known.entry, blankText(), {}};
        takeSide(run.mid(0, found.index), read.fieldFunc, read.field);
        const int count = operandCount(known.entry);
        const TokenRun rest = run.mid(found.behind);
        if (count == 0) {
            const QStringList affixes = known.prefix + known.postfix;
            const bool nothingElse =
                rest.size() == affixes.size() && (affixes.isEmpty() || matches(rest, 0, affixes));
            return nothingElse && found.signsLeft == 0 ? std::optional(read) : std::nullopt;
        }
        if (rest.isEmpty()) return std::nullopt;
        if (known.hasAffixes()) {
            if (found.signsLeft > 0) return std::nullopt;
            const std::optional<TokenRun> inside = withoutAffixes(rest, known);
            if (inside) return withArguments(read, known, *inside);
            return withoutAffixTexts(read, rest);
        }
        if (found.signsLeft > 0) return withSignedArguments(read, run, found);
        if (count == 1) {
            read.arguments << QString();
            takeSide(rest, read.argFunc, read.arguments.front());
            return read;
        }
        return withArguments(read, known, rest);
    }

    static std::optional<ReadCondition> withArguments(ReadCondition read,
                                                      const KnownOperator& known,
                                                      const TokenRun& run) {
        const std::vector<TokenRun> parts = splitOperands(run, known);
        if (parts.empty()) return std::nullopt;
        const bool isList = known.prefix == QStringList{QStringLiteral("(")} &&
                            known.postfix == QStringList{QStringLiteral(")")};
        for (const TokenRun& part : parts) {
            if (part.isEmpty()) return std::nullopt;
            read.arguments << (isList ? listText(part) : operandText(part));
        }
        return read;
    }

    // The first operand begins with signs that stood together with the operator.
    static std::optional<ReadCondition> withSignedArguments(ReadCondition read, const TokenRun& run,
                                                            const FoundOperator& found) {
        const TokenRun rest = run.mid(found.behind);
        std::optional<ReadCondition> whole = withArguments(std::move(read), *found.known, rest);
        if (!whole) return std::nullopt;
        const int first = splitOperands(rest, *found.known).front().size();
        const QString signedText = run.mid(found.behind - 1, first + 1).sourceText();
        const qsizetype signs = run.textOf(found.behind - 1).size();
        whole->arguments.front() = signedText.mid(signs - found.signsLeft);
        return whole;
    }

    // A call of one of the panel's functions has a cell of its own.
    void takeSide(const TokenRun& run, QString& function, QString& text) const {
        const bool isCall = m_rules.functions && run.size() > 3 && run[0].kind == SqlToken::Word &&
                            run[1].kind == SqlToken::Open && run[1].closeOffset == run.size() - 2;
        const QString name = isCall ? run.textOf(0).toString().toUpper() : QString();
        if (isCall && m_rules.functions->contains(name)) {
            function = name;
            text = listText(run.mid(2, run.size() - 3));
            return;
        }
        text = operandText(run);
    }

    // The operands between the operator's prefix and postfix; none where one is missing.
    static std::optional<TokenRun> withoutAffixes(const TokenRun& rest,
                                                  const KnownOperator& known) {
        const int prefix = int(known.prefix.size());
        const int inside = rest.size() - prefix - int(known.postfix.size());
        if (inside <= 0) return std::nullopt;
        if (prefix > 0 && !matches(rest, 0, known.prefix)) return std::nullopt;
        if (!known.postfix.isEmpty() && !matches(rest, prefix + inside, known.postfix)) {
            return std::nullopt;
        }
        const TokenRun operands = rest.mid(prefix, inside);
        return isBalanced(operands) ? std::optional(operands) : std::nullopt;
    }

    static bool isBalanced(const TokenRun& run) {
        int open = 0;
        for (const SqlToken& token : run) {
            if (token.kind == SqlToken::Open) ++open;
            if (token.kind == SqlToken::Close && --open < 0) return false;
        }
        return open == 0;
    }

    // Prefix and postfix may begin and end a quoted text: LIKE '%...%'.
    static std::optional<ReadCondition> withoutAffixTexts(ReadCondition read,
                                                          const TokenRun& rest) {
        if (rest.size() != 1 || operandCount(read.operation) != 1) return std::nullopt;
        const QString text = rest.sourceText();
        // Blanks at their inner ends belong to the quoted text, if it has them.
        QString prefix = orvTrim(QString(read.operation->Prefix + u'|')).chopped(1);
        QString postfix = orvTrim(QString(u'|' + read.operation->Postfix)).mid(1);
        if (!text.startsWith(prefix, Qt::CaseInsensitive)) prefix = orvTrim(prefix);
        if (!text.endsWith(postfix, Qt::CaseInsensitive)) postfix = orvTrim(postfix);
        const qsizetype inside = text.size() - prefix.size() - postfix.size();
        if (inside <= 0 || !text.startsWith(prefix, Qt::CaseInsensitive) ||
            !text.endsWith(postfix, Qt::CaseInsensitive)) {
            return std::nullopt;
        }
        const QString argument = text.mid(prefix.size(), inside);
        if (isBlank(argument)) return std::nullopt;
        read.arguments << argument;
        return read;
    }

    // As many runs as the operator has operands; none when they do not come out to its count.
    static std::vector<TokenRun> splitOperands(const TokenRun& run, const KnownOperator& known) {
        const std::size_t count = std::size_t(operandCount(known.entry));
        if (count == 1) return {run};
        std::vector<TokenRun> parts;
        if (known.relate.isEmpty()) return parts;
        int first = 0;
        visitLevel(run, 0, [&](int index) {
            if (index < first || !matches(run, index, known.relate)) return true;
            parts.push_back(run.mid(first, index - first));
            first = index + int(known.relate.size());
            return parts.size() + 1 < count;
        });
        parts.push_back(run.mid(first));
        if (parts.size() != count) parts.clear();
        return parts;
    }

    // Single operands and lists of them have one form of text; all else stays as it stood.
    static QString operandText(const TokenRun& run) {
        QString text = run.sourceText();
        const QString formed = formedText(run, 0);
        if (formed.isEmpty() || formed == text) return text;
        return tokenKey(formed) == tokenKey(text) ? formed : text;
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

    // --- AND before OR ---

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
    const SqlToken* m_base;           // of the whole condition
    std::vector<bool> m_holdsSelect;  // by token: a bracket, at its own level
    std::vector<KnownOperator> m_known;
    std::vector<const KnownOperator*> m_withConnectives;
};

}  // namespace

std::vector<ConditionElement> readConditions(const TokenRun& run, const ConditionRules& rules) {
    return Reader(rules, run).read(run);
}

int conditionEnd(const TokenRun& condition, const TOperatorList* operators) {
    const int end = endOfCondition(condition);
    if (end == condition.size() || !operators) return end;
    const QString word = condition.textOf(end).toString().toUpper();
    for (int index = 0; index < operators->Count(); ++index) {
        const QStringList words = operators->Items(index)->Name.toUpper().split(u' ');
        if (words.contains(word)) return condition.size();
    }
    return end;
}

std::vector<const ConditionElement*> andsBehindOr(const std::vector<ConditionElement>& level) {
    std::vector<const ConditionElement*> found;
    bool isBehindOr = false;
    for (const ConditionElement& element : level) {
        if (element.kind == ConditionElement::And && isBehindOr) found.push_back(&element);
        if (element.kind == ConditionElement::And) isBehindOr = false;
        if (element.kind == ConditionElement::Or) isBehindOr = true;
    }
    return found;
}

}  // namespace orv
