// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionClipboard.h"

#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDCopiedRows.h"
#include "criteria/ORVQDRowBuilder.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDNormalise.h"

#include <QMimeData>
#include <QSet>

#include <algorithm>
#include <utility>

namespace orv {

namespace {

constexpr int longestQuotation = 60;  // characters of the text in a refusal

QString quotation(const TokenRun& run) {
    QString text = run.sourceText().simplified();
    if (text.size() > longestQuotation) text = text.left(longestQuotation) + QStringLiteral("...");
    return u'"' + text + u'"';
}

[[noreturn]] void refuse(const QString& reason) {
    throw Error(QStringLiteral("The text is no condition: %1.").arg(reason));
}

QStringList wordsOf(const QString& text) {
    QStringList words;
    for (const SqlToken& token : tokenise(text)) {
        words << upperOutsideQuotes(QStringView(text).mid(token.start, token.end - token.start));
    }
    return words;
}

bool matchesAt(const TokenRun& run, int index, const QStringList& words) {
    if (words.isEmpty() || index < 0 || index + words.size() > run.size()) return false;
    for (qsizetype word = 0; word < words.size(); ++word) {
        if (!run.is(index + int(word), words[word])) return false;
    }
    return true;
}

bool isOneOf(const TokenRun& run, int index, const QSet<QString>& words) {
    return index < run.size() && run[index].kind == SqlToken::Word &&
           words.contains(run.textOf(index).toString().toUpper());
}

// --- what is not closed ---

// Pairs of backticks have become quotes: what is left of them has no other end.
void checkQuotes(const QString& text) {
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != u'\'' && text[at] != u'"' && text[at] != u'`') continue;
        at = text[at] == u'`' ? -1 : text.indexOf(text[at], at + 1);
        if (at < 0) refuse(QStringLiteral("a quotation mark is not closed"));
    }
}

void checkBrackets(const TokenRun& run) {
    int open = 0;
    for (const SqlToken& token : run) {
        if (token.kind == SqlToken::Open) ++open;
        if (token.kind == SqlToken::Close && --open < 0) {
            refuse(QStringLiteral("a bracket is closed that was not opened"));
        }
    }
    if (open > 0) refuse(QStringLiteral("a bracket is not closed"));
}

// --- what is missing ---

/// The texts of an operator, word by word.
struct OperatorWords {
    explicit OperatorWords(const TorvQDOperator& operation)
        : name(wordsOf(operation.Name)),
          prefix(wordsOf(operation.Prefix)),
          relate(wordsOf(operation.Relate)),
          postfix(wordsOf(operation.Postfix)),
          count(operation.Count) {}

    QStringList name;
    QStringList prefix;
    QStringList relate;
    QStringList postfix;
    int count;
};

/// Looks for what the reader of conditions takes as it is, because a statement must not lose it,
/// but what nobody means as a condition.
class Checker {
public:
    explicit Checker(const ConditionRules& rules) : m_rules(rules) {
        for (int index = 0; rules.operators && index < rules.operators->Count(); ++index) {
            const TOperatorList::Entry entry = rules.operators->Items(index);
            if (entry) m_operators.emplace_back(*entry);
        }
        // Of several names that begin alike the longest is meant.
        std::stable_sort(m_operators.begin(), m_operators.end(), [](const auto& a, const auto& b) {
            return a.name.size() > b.name.size();
        });
    }

    void check(const std::vector<ConditionElement>& elements) const {
        std::vector<const std::vector<ConditionElement>*> open = {&elements};
        while (!open.empty()) {
            const std::vector<ConditionElement>& level = *open.back();
            open.pop_back();
            const ConditionElement* expecting = nullptr;  // a condition behind it
            bool expects = true;
            for (const ConditionElement& element : level) {
                switch (element.kind) {
                case ConditionElement::And:
                case ConditionElement::Or:
                    if (expects) refuseMissing(QStringLiteral("in front of"), element);
                    expects = true;
                    break;
                case ConditionElement::Not: expects = true; break;
                case ConditionElement::Bracket:
                    open.push_back(&element.children);
                    expects = false;
                    break;
                case ConditionElement::Condition:
                    checkCondition(element);
                    expects = false;
                    break;
                }
                expecting = expects ? &element : nullptr;
            }
            if (expecting) refuseMissing(QStringLiteral("behind"), *expecting);
        }
    }

private:
    [[noreturn]] static void refuseMissing(const QString& where, const ConditionElement& element) {
        refuse(QStringLiteral("a condition is missing %1 %2").arg(where, quotation(element.run)));
    }
    [[noreturn]] static void refuseUnfilled(const TokenRun& run) {
        refuse(QStringLiteral("%1 is not filled in").arg(quotation(run)));
    }

    void checkCondition(const ConditionElement& element) const {
        const TokenRun& run = element.run;
        checkNothingBehind(run);
        if (operatorAt(run, 0)) refuseUnfilled(run);
        int at = 0;
        const OperatorWords* found = nullptr;
        for (int cases = 0; at < run.size(); ++at) {
            if (run[at].depth != run[0].depth) continue;
            if (isOneOf(run, at, {"CASE"})) ++cases;
            if (isOneOf(run, at, {"END"})) --cases;
            if (at > 0 && cases <= 0) found = operatorAt(run, at);
            if (found) break;
        }
        if (found && hasEmptyOperand(run, at + int(found->name.size()), *found)) {
            refuseUnfilled(run);
        }
        if (found) checkNoList(run.mid(at + int(found->name.size())), *found);
        if (callsWithNothing(run)) refuseUnfilled(run);
        const bool isWholeText = element.condition.operation == expressionOperator();
        const bool isValue = run.size() == 1 && run[0].kind != SqlToken::Word;
        const bool isEmptyBracket = run[0].kind == SqlToken::Open && run[0].closeOffset == 1;
        if (isValue || isEmptyBracket || !isPhrase(isWholeText ? run : run.mid(0, at))) {
            refuse(QStringLiteral("%1 is none").arg(quotation(run)));
        }
    }

    // A comma outside brackets begins what no operand has: within the brackets that are written
    // around the condition, it would make another one of it.
    static void checkNoList(const TokenRun& operands, const OperatorWords& known) {
        const bool isBare = known.prefix.isEmpty() && known.postfix.isEmpty();
        if (!isBare || known.relate.contains(QStringLiteral(","))) return;
        const std::vector<TokenRun> items = operands.splitAtCommas();
        if (items.size() > 1) refuseRest(operands.mid(items.front().size()));
    }

    // Clauses of a statement, and whole statements.
    void checkNothingBehind(const TokenRun& run) const {
        static const QSet<QString> queries = {"SELECT", "WITH", "VALUES"};
        static const QSet<QString> statements = {"INSERT", "UPDATE", "DELETE",  "MERGE",
                                                 "CREATE", "ALTER",  "DROP",    "WITH",
                                                 "CALL",   "EXEC",   "EXECUTE", "TRUNCATE"};
        const bool isQuery = isOneOf(run, 0, {"SELECT"}) ||
                             (run[0].kind == SqlToken::Open && isOneOf(run, 1, queries) &&
                              run.behindBracket(0) == run.size());
        const bool isStatement = isOneOf(run, 0, statements) && run.size() > 1 &&
                                 run[1].kind == SqlToken::Word && !operatorAt(run, 1);
        if (isQuery || isStatement) refuse(QStringLiteral("it is a statement"));
        int end = conditionEnd(run, m_rules.operators);
        if (end < run.size() && isWordOfOperator(run, end)) end = run.size();
        for (int index = 1; index < end; ++index) {
            if (run[index].depth != run[0].depth || !endsOperand(run, index - 1)) continue;
            static const QSet<QString> clauses = {"SELECT", "FROM", "WHERE", "HAVING", "JOIN"};
            if (isOneOf(run, index - 1, {"DISTINCT"})) continue;
            static const QSet<QString> ordering = {"GROUP", "ORDER"};
            if (isOneOf(run, index, clauses) ||
                (isOneOf(run, index, ordering) && isOneOf(run, index + 1, {"BY"}))) {
                end = index;
            }
        }
        if (end < run.size()) refuseRest(run.mid(end));
    }

public:
    [[noreturn]] static void refuseRest(const TokenRun& rest) {
        refuse(QStringLiteral("%1 stands behind it").arg(quotation(rest)));
    }

private:
    [[nodiscard]] const OperatorWords* operatorAt(const TokenRun& run, int index) const {
        const auto find = [&](const auto& matches) -> const OperatorWords* {
            const auto found = std::find_if(m_operators.begin(), m_operators.end(), matches);
            return found == m_operators.end() ? nullptr : &*found;
        };
        const OperatorWords* found =
            find([&](const auto& known) { return matchesAt(run, index, known.name); });
        return found ? found
                     : find([&](const auto& known) { return isSpeltAt(run, index, known); });
    }

    // An operator and the sign of a number behind it, as one token: ">=-3"; and "!=" for "<>".
    static bool isSpeltAt(const TokenRun& run, int index, const OperatorWords& known) {
        if (run[index].kind != SqlToken::Sign || known.name.size() != 1) return false;
        QString signs = run.textOf(index).toString();
        if (signs.startsWith(QStringLiteral("!="))) signs.replace(0, 2, QStringLiteral("<>"));
        const QString& name = known.name.front();
        return signs.startsWith(name) &&
               std::all_of(signs.cbegin() + name.size(), signs.cend(),
                           [](QChar sign) { return sign == u'+' || sign == u'-'; });
    }

    // Words around and between operands are parts of the condition, too.
    [[nodiscard]] bool isWordOfOperator(const TokenRun& run, int index) const {
        const QString word = run.textOf(index).toString().toUpper();
        return std::any_of(m_operators.begin(), m_operators.end(), [&](const auto& known) {
            return known.prefix.contains(word) || known.relate.contains(word) ||
                   known.postfix.contains(word);
        });
    }

    // An operand that is not filled in leaves two texts of its operator side by side.
    static bool hasEmptyOperand(const TokenRun& run, int behindName, const OperatorWords& known) {
        if (known.count <= 0) return false;
        int first = behindName;
        int last = run.size();
        if (matchesAt(run, first, known.prefix)) first += int(known.prefix.size());
        const int postfix = last - int(known.postfix.size());
        if (postfix >= first && matchesAt(run, postfix, known.postfix)) last = postfix;
        if (first >= last) return true;
        if (known.count == 1 || known.relate.isEmpty()) return false;
        int start = first;
        for (int index = first; index < last; ++index) {
            if (run[index].depth != run[first].depth || !matchesAt(run, index, known.relate)) {
                continue;
            }
            if (index == start) return true;
            start = index + int(known.relate.size());
            index = start - 1;
        }
        return start >= last;
    }

    // A function of the panel's list without a text to call it with.
    [[nodiscard]] bool callsWithNothing(const TokenRun& run) const {
        if (!m_rules.functions) return false;
        for (int index = 0; index + 2 < run.size(); ++index) {
            if (run[index].kind == SqlToken::Word && run[index + 1].kind == SqlToken::Open &&
                run[index + 2].kind == SqlToken::Close &&
                m_rules.functions->contains(run.textOf(index).toString().toUpper())) {
                return true;
            }
        }
        return false;
    }

    // Operands with something in between. A word behind an operand may be an operator that only
    // the database knows; two words in a row are prose.
    static bool isPhrase(const TokenRun& run) {
        const bool isList = std::any_of(run.begin(), run.end(), [&](const SqlToken& token) {
            return token.kind == SqlToken::Comma && token.depth == run[0].depth;
        });
        if (isList) return false;
        if (isExpression(run)) return true;
        bool expects = true;
        for (int index = 0; index < run.size();) {
            switch (run[index].kind) {
            case SqlToken::Open:
                if (!expects && run[index - 1].kind != SqlToken::Word) return false;
                expects = false;
                index = run.behindBracket(index);
                continue;
            case SqlToken::Number:
            case SqlToken::Text:
                if (!expects) return false;
                expects = false;
                break;
            case SqlToken::Word: expects = !expects; break;
            case SqlToken::Sign: expects = !run.is(index, u"]") && !run.is(index, u"}"); break;
            case SqlToken::Close:
            case SqlToken::Comma: return false;
            }
            ++index;
        }
        return !expects;
    }

    const ConditionRules& m_rules;
    std::vector<OperatorWords> m_operators;
};

// A square bracket in an operator is a sign and opens no name.
SquareBrackets bracketsFor(const TOperatorList* operators) {
    for (int index = 0; operators && index < operators->Count(); ++index) {
        const TorvQDOperator& entry = *operators->Items(index);
        for (const QString& text : {entry.Name, entry.Prefix, entry.Relate, entry.Postfix}) {
            if (text.contains(u'[')) return SquareBrackets::AreSigns;
        }
    }
    return SquareBrackets::QuoteNames;
}

int groupsUnder(const TorvQDWhereRow& root) {
    int deepest = 0;
    std::vector<std::pair<const TorvQDWhereRow*, int>> open = {{&root, 0}};
    while (!open.empty()) {
        const auto [row, depth] = open.back();
        open.pop_back();
        deepest = std::max(deepest, depth);
        for (int index = 0; index < row->SubRows->GetCount(); ++index) {
            const TorvQDWhereRow* below = row->SubRows->Row(index);
            if (below->isGroup()) open.emplace_back(below, depth + 1);
        }
    }
    return deepest;
}

void unmuteAll(TorvQDWhereRow& root) {
    std::vector<TorvQDWhereRow*> open = {&root};
    while (!open.empty()) {
        TorvQDWhereRow& row = *open.back();
        open.pop_back();
        row.Muted = false;
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            open.push_back(row.SubRows->Row(index));
        }
    }
}

bool isWholeGroup(const std::vector<ConditionElement>& elements) {
    const std::size_t size = elements.size();
    return size > 0 && size <= 2 && elements.back().kind == ConditionElement::Bracket &&
           (size == 1 || elements.front().kind == ConditionElement::Not);
}

}  // namespace

LooseConditions::LooseConditions(const QString& text, const ConditionRules& rules,
                                 const TGroupOperators* groups)
    : m_context{.operators = rules.operators, .groupOperators = groups} {
    read(text, rules);
}

LooseConditions::LooseConditions(const QMimeData& copied, const ConditionRules& rules,
                                 const TGroupOperators* groups)
    : m_context{.operators = rules.operators, .groupOperators = groups} {
    if (!takeRows(copied.data(copiedRowsFormat()))) read(copied.text(), rules);
}

bool LooseConditions::takeRows(const QByteArray& rows) {
    if (rows.isEmpty()) return false;
    m_rows = std::make_unique<TorvQDWhereRows>(&m_context, nullptr);
    TorvQDWhereRow* root = m_rows->AddRow();
    if (!pasteRows(rows, *root)) return false;
    m_isOneGroup = root->isGroup();
    if (!m_isOneGroup) {
        TorvQDWhereRow* group = m_rows->AddRow();
        group->SetGroupOper(QStringLiteral("All"));
        group->SubRows->AddRow()->Assign(*root);
        m_rows->Delete(0);
    }
    m_groupsBelow = groupsUnder(*m_rows->Row(0));
    return true;
}

void LooseConditions::read(const QString& text, const ConditionRules& rules) {
    // Behind a keyword it is read as a condition from the first word on.
    const QString keyword = QStringLiteral("WHERE ");
    const NormalisedSQL given = NormaliseSQL(keyword + text, bracketsFor(rules.operators));
    checkQuotes(given.text);
    const SqlTokens tokens = tokenise(given.text);
    TokenRun run = TokenRun(given.text, tokens.data(), tokens.data() + tokens.size()).mid(1);
    if (isOneOf(run, 0, {"WHERE", "HAVING", "ON"})) run = run.mid(1);
    if (run.isEmpty()) throw Error(QStringLiteral("There is no condition in the text."));
    checkBrackets(run);
    const StatementParts parts = splitStatement(given.text, tokens);
    if (parts.bodyEnd < given.text.size()) {
        Checker::refuseRest(
            tokensBetween(given.text, tokens, parts.bodyEnd, int(given.text.size())));
    }
    const std::vector<ConditionElement> elements = readConditions(run, rules);
    Checker(rules).check(elements);
    // What was negated comes back as the group that it was.
    m_groupsBelow = orv::groupsBelow(elements, Nots::Merge);
    if (m_groupsBelow > deepestCondition) raiseTooDeep();
    m_isOneGroup = isWholeGroup(elements);
    m_rows = std::make_unique<TorvQDWhereRows>(&m_context, nullptr);
    TorvQDWhereRow* row = m_rows->AddRow();
    row->SetGroupOper(QStringLiteral("All"));
    buildRows(elements, row, false, Nots::Merge);
}

LooseConditions::~LooseConditions() = default;

const TorvQDWhereRow& LooseConditions::root() const {
    return *m_rows->Row(0);
}

QString conditionText(const TorvQDWhereRow& row, const ConditionRules& rules,
                      const TGroupOperators* groups) {
    if (row.isGroup()) {
        QString text = row.conditionAsRoot();
        if (isBlank(text) && hasMutedRow(row)) {
            const ConditionContext context{.operators = row.rows()->context().operators,
                                           .groupOperators = groups};
            TorvQDWhereRows rows(&context, nullptr);
            TorvQDWhereRow* copy = copyRow(row, rows, 0);
            unmuteAll(*copy);
            text = copy->conditionAsRoot();
        }
        if (isBlank(text)) throw Error(QStringLiteral("There is no condition to copy."));
        const QString lineBreak = QStringLiteral("\r\n");
        return text.startsWith(lineBreak) ? text.mid(lineBreak.size()) : text;
    }
    QString written = row.GetSQLCondition(false);
    QString bare = written.mid(1, written.size() - 2);
    try {
        const LooseConditions read(bare, rules, groups);
        const TorvQDWhereRows& rows = *read.root().SubRows;
        const bool isSame = !read.isOneGroup() && rows.GetCount() == 1 && !rows.Row(0)->isGroup() &&
                            tokenKey(rows.Row(0)->GetSQLCondition(false)) == tokenKey(written);
        if (isSame) return bare;
    } catch (const Error&) {
        // It is not filled in, or its text breaks out of its brackets.
    }
    return written;
}

std::unique_ptr<QMimeData> copiedCondition(const TorvQDWhereRow& row, const ConditionRules& rules,
                                           const TGroupOperators* groups) {
    auto data = std::make_unique<QMimeData>();
    data->setText(conditionText(row, rules, groups));
    if (hasMutedRow(row)) data->setData(copiedRowsFormat(), copiedRows(row));
    return data;
}

// Level by level instead of by recursion: groups may nest deeply.
TorvQDWhereRow* copyRow(const TorvQDWhereRow& row, TorvQDWhereRows& into, int index) {
    auto* copy = static_cast<TorvQDWhereRow*>(into.Insert(index));
    std::vector<std::pair<const TorvQDWhereRow*, TorvQDWhereRow*>> open = {{&row, copy}};
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        to->Assign(*from);
        for (int below = 0; below < from->SubRows->GetCount(); ++below) {
            open.emplace_back(from->SubRows->Row(below), to->SubRows->AddRow());
        }
    }
    return copy;
}

}  // namespace orv
