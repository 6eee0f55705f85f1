// SPDX-License-Identifier: MIT
// The selection grid rebuilt from a parsed statement: its select list and its GROUP BY list.
#include "contract/ChangeScope.h"
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDKeywords.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "selection/ORVQDSelectOrder.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <optional>

using orv::SqlToken;
using orv::TokenRun;

namespace {

constexpr int drawsOfName = 100;

}  // namespace

/// Reads a select list and a GROUP BY list into the columns of a grid, and accounts for their text.
class SelectLoader {
public:
    SelectLoader(TorvQDSelectGrid& grid, const TorvQDParser& root)
        : m_grid(grid),
          m_root(root),
          m_host(grid.host()),
          m_ledger(m_host ? m_host->ledger() : nullptr),
          m_rules(grid.textRules()) {
        if (!m_ledger) m_tokens = orv::tokenise(root.Source());
    }

    void load() {
        const TokenRun list = selectList();
        const TokenRun columns = readDistinct(list);
        placeCommas(columns);
        const std::vector<TokenRun> runs = columns.splitAtCommas();
        for (const TokenRun& run : runs) {
            const orv::AliasedRun parts = orv::splitAlias(run);
            if (!parts.alias.isEmpty()) {
                m_names.insert(loadedName(parts.alias));
            } else if (parts.expression.size() == 1) {
                m_names.insert(orv::createFieldName({}, parts.expression.sourceText()));
            }
        }
        for (const TokenRun& run : runs) {
            if (!run.isEmpty()) loadColumn(run);
        }
        reportMissing(columns, runs);
        // Commas alone are no columns either.
        const bool isBare = std::all_of(runs.begin(), runs.end(),
                                        [](const TokenRun& run) { return run.isEmpty(); });
        if (isBare && m_ledger) {
            m_ledger->report(m_root.Start(), m_root.Start() + int(m_root.Text().size()),
                             QStringLiteral("The statement has no columns."));
        }
        m_groupBy = m_root.Clause(inGroupBy);
        markGrouped();
        reportUnwritableColumns();
        settleGroupBy();
        tellChosenFields();
    }

private:
    /// A column with the text that it came from.
    struct Loaded {
        orv::OutputColumn column;
        TokenRun run;
    };

    [[nodiscard]] TokenRun tokensIn(int start, int end) const {
        return m_ledger ? m_ledger->tokensIn(start, end)
                        : orv::tokensBetween(m_root.Source(), m_tokens, start, end);
    }

    /// What stands between SELECT and the first clause.
    [[nodiscard]] TokenRun selectList() const {
        int end = m_root.End();
        for (const TorvQDParser::Node& child : m_root.Children()) {
            const bool isClause = child->Kind() == otCompound && child->Location() >= inSelect;
            if (isClause) {
                end = child->Start();
                break;
            }
        }
        const TokenRun all = tokensIn(m_root.Start(), end);
        if (!all.isEmpty()) place(all.mid(0, 1));
        return all.isEmpty() ? all : all.mid(1);
    }

    TokenRun readDistinct(const TokenRun& list) {
        auto* panel = qobject_cast<TorvQDSelectPanel*>(m_grid.parentWidget());
        if (panel) panel->SetDistinct(0);
        if (list.isEmpty()) return list;
        const bool isDistinct = list.is(0, u"DISTINCT");
        if (!isDistinct && !list.is(0, u"ALL")) return list;
        if (list.size() > 1 && list.is(1, u"ON")) return list;
        if (panel) panel->SetDistinct(isDistinct ? -1 : 0);
        place(list.mid(0, 1));
        return list.mid(1);
    }

    void placeCommas(const TokenRun& list) {
        for (int index = 0; index < list.size(); ++index) {
            const bool own =
                list[index].kind == SqlToken::Comma && list[index].depth == list[0].depth;
            if (own) place(list.mid(index, 1));
        }
    }

    // --- columns ---

    void loadColumn(const TokenRun& run) {
        if (loadStar(run)) return;
        const orv::AliasedRun parts = orv::splitAlias(run);
        if (!orv::isExpression(parts.expression)) {
            report(run, QStringLiteral("This is no column that can be shown: it is not loaded."));
            return;
        }
        if (parts.expression.size() == 1) {
            loadValue(parts);
        } else if (const TorvQDParser* call = callNode(parts.expression)) {
            loadCall(parts, *call);
        } else {
            loadExpression(parts);
        }
    }

    bool loadStar(const TokenRun& run) {
        if (!orv::isStar(run)) return false;
        QStringList aliases;
        if (run.size() == 1) {
            if (!m_host) {
                throw orv::Error(
                    QStringLiteral("Fatal error! Could not find parent for sorting page!"));
            }
            aliases = m_host->tableAliases();
        } else {
            aliases << orv::upperOutsideQuotes(run.textOf(0).chopped(1));
        }
        const std::size_t before = m_loaded.size();
        for (const QString& alias : std::as_const(aliases)) {
            if (!m_host) break;
            for (const PageField& field : m_host->fieldsOf(alias)) {
                const QString name = field.qualifiedName();
                add({orv::createFieldName(QString(), name), QString(), name}, run);
            }
        }
        m_hasStar = true;
        if (m_loaded.size() == before) {
            report(run, QStringLiteral("No table on the diagram gives fields for this: it is not "
                                       "loaded."));
        } else {
            place(run);
        }
        return true;
    }

    // Nothing stands between two commas, or beside one at the end.
    void reportMissing(const TokenRun& columns, const std::vector<TokenRun>& runs) {
        if (!m_ledger || runs.size() < 2) return;
        const auto isMissing = [](const TokenRun& run) { return run.isEmpty(); };
        const bool isBare = std::all_of(runs.begin(), runs.end(), isMissing);
        if (isBare || std::none_of(runs.begin(), runs.end(), isMissing)) return;
        for (int index = 0; index < columns.size(); ++index) {
            const auto isComma = [&](int at) {
                return at < 0 || at >= columns.size() ||
                       (columns[at].kind == SqlToken::Comma &&
                        columns[at].depth == columns[0].depth);
            };
            if (!isComma(index)) continue;
            if (!isComma(index - 1) && !isComma(index + 1)) continue;
            m_ledger->report(columns.mid(index, 1),
                             QStringLiteral("A column is missing beside this comma."));
        }
    }

    /// A field or a constant alone.
    void loadValue(const orv::AliasedRun& parts) {
        QString source = parts.expression.sourceText();
        if (m_host && orv::namesField(parts.expression, 0)) {
            const std::optional<PageField> field = m_host->resolveField(source);
            if (!field) {
                report(parts.whole, m_host->isAmbiguous(source)
                                        ? QStringLiteral("Several tables have this field: the "
                                                         "column is not loaded.")
                                        : QStringLiteral("No table on the diagram has this field: "
                                                         "the column is not loaded."));
                return;
            }
            if (orv::firstFullStop(source) >= 0) source = writtenName(source, *field);
        }
        take(parts, {orv::createFieldName(QString(), source), QString(), source});
    }

    // The name of the row, but a keyword keeps the quotes that the text gives it.
    static QString writtenName(const QString& source, const PageField& field) {
        const QString given = orv::splitQualifiedName(source).field;
        const bool isKeyword = orv::isQuotedName(given) && !orv::isQuotedName(field.name) &&
                               orv::wordInfo(field.name).traits != 0;
        return isKeyword ? field.alias + u'.' + given : field.qualifiedName();
    }

    /// The node of a run that is one call of a function that the parser knows.
    [[nodiscard]] const TorvQDParser* callNode(const TokenRun& run) const {
        if (run.size() < 3 || run[1].kind != SqlToken::Open || run.behindBracket(1) != run.size()) {
            return nullptr;
        }
        const TorvQDParser* node = nodeAt(run.start());
        return node && node->Location() == inFunction ? node : nullptr;
    }

    // Nodes are asked for in the order of the text.
    [[nodiscard]] const TorvQDParser* nodeAt(int start) const {
        while (m_nextNode < m_root.Count() && m_root.Child(m_nextNode)->Start() < start)
            ++m_nextNode;
        if (m_nextNode == m_root.Count()) return nullptr;
        const TorvQDParser* node = m_root.Child(m_nextNode);
        return node->Start() == start ? node : nullptr;
    }

    void loadCall(const orv::AliasedRun& parts, const TorvQDParser& node) {
        const bool aggregates = m_rules.aggregates->contains(node.Text());
        const TokenRun inside = parts.expression.mid(2, parts.expression.size() - 3);
        if (!aggregates) {
            const QString text = expressionText(callText(node), parts.expression);
            take(parts, {QString(), QString(), text});
        } else if (inside.isEmpty()) {
            report(parts.whole, QStringLiteral("This aggregate has no argument: the column is not "
                                               "loaded."));
        } else {
            const QString argument = expressionText(node.FillArguments(false), inside);
            take(parts, {orv::createFieldName(node.Text(), argument), node.Text(), argument});
        }
    }

    // The call without the alias behind it, which belongs to the column.
    static QString callText(const TorvQDParser& node) {
        const QString text = node.FillArguments(true);
        const QString alias = node.GetAliasName();
        return alias.isEmpty() ? text : text.chopped(alias.size() + 1);
    }

    // The text put together from nodes where it says what the source says; else the source.
    static QString expressionText(const QString& fromNodes, const TokenRun& source) {
        QString text = source.sourceText();
        if (std::any_of(text.begin(), text.end(), orv::beginsParameter)) return text;
        return orv::tokenKey(fromNodes) == orv::tokenKey(text) ? fromNodes : text;
    }

    void loadExpression(const orv::AliasedRun& parts) {
        QString name;
        QString source = parts.expression.sourceText();
        if (isChain(parts.expression)) {
            source.clear();
            for (int index = 0; index < parts.expression.size(); ++index) {
                source += orv::upperOutsideQuotes(parts.expression.textOf(index));
            }
            name = withoutOwnQuotes(orv::createFieldName(
                QString(), orv::upperOutsideQuotes(parts.expression.textOf(0))));
            if (m_names.contains(name)) name.clear();  // a name of its own instead
        }
        take(parts, {name, QString(), source});
    }

    // Fields joined by operators: a word, a sign, a word ...
    static bool isChain(const TokenRun& run) {
        for (int index = 0; index < run.size(); ++index) {
            const bool isField = orv::namesField(run, index) && !run.textOf(index).startsWith(u'"');
            const bool fits = index % 2 == 0 ? isField : run[index].kind == SqlToken::Sign;
            if (!fits) return false;
        }
        return run.size() % 2 == 1;
    }

    // SUM_OF_"my field": what aggregates of quoted fields are called as long as nobody quotes it.
    static bool isPartlyQuoted(const QString& name) {
        const bool hasQuote = name.contains(u'"') || name.contains(u'\'');
        return hasQuote && !orv::isQuotedName(name) && !name.startsWith(u'\'');
    }

    // Keeps the column when what will be written says what the text says; else all of it is lost.
    void take(const orv::AliasedRun& parts, orv::OutputColumn column) {
        const bool named = !parts.alias.isEmpty();
        orv::OutputColumn unnamed = column;
        unnamed.name.clear();
        const bool same = orv::countTokens(orv::columnText(unnamed, m_rules)) ==
                          orv::countTokens(parts.expression);
        if (!same) {
            report(parts.whole, QStringLiteral("This column would be written with another "
                                               "meaning: it is not loaded."));
            return;
        }
        if (named) column.name = loadedName(parts.alias);
        if (!named && column.name.isEmpty()) column.name = freshName();
        const bool invalidName =
            !m_rules.keepMeaning && (named ? isPartlyQuoted(column.name)
                                           : !orv::writtenOutputName(column, m_rules).isEmpty() &&
                                                 !orv::isPlainIdentifier(column.name));
        const bool losesName =
            named && orv::columnText(column, m_rules) == orv::columnText(unnamed, m_rules) &&
            (!orv::isBlank(column.aggregate) || parts.expression.size() > 1 ||
             parts.expression[0].kind != SqlToken::Word);
        add(std::move(column), parts.whole);
        if (losesName) {
            report(parts.whole,
                   QStringLiteral("The name of this column is not written, because its "
                                  "field has the same one."));
        } else if (invalidName) {
            report(parts.whole, QStringLiteral("The name that this column gets is no valid name "
                                               "in SQL."));
        } else {
            place(parts.whole);
        }
    }

    [[nodiscard]] QString loadedName(const TokenRun& alias) const {
        return withoutOwnQuotes(alias.sourceText());
    }

    // Quotes that writing puts back are not part of the name.
    [[nodiscard]] QString withoutOwnQuotes(const QString& text) const {
        const QString bare = orv::unquotedName(text);
        const bool putBack = m_rules.keepMeaning && bare != text && !orv::isPlainIdentifier(bare) &&
                             !orv::isQuotedName(bare) && !orv::isBlank(bare) &&
                             bare == orv::orvTrim(bare) && !bare.startsWith(u'\'');
        return putBack ? bare : text;
    }

    void add(orv::OutputColumn column, const TokenRun& run) {
        m_names.insert(column.name);
        m_loaded.push_back({std::move(column), run});
    }

    /// A name for an expression without one, unlike all names of the text and those given so far.
    QString freshName() {
        const QString prefix = QStringLiteral("FIELD_NAME");
        for (int draw = 0; draw < drawsOfName && m_nextNumber == drawsOfName; ++draw) {
            QString name = prefix + QString::number(m_grid.randomBelow100());
            if (!m_names.contains(name)) return name;
        }
        while (m_names.contains(prefix + QString::number(m_nextNumber))) ++m_nextNumber;
        return prefix + QString::number(m_nextNumber++);
    }

    // --- GROUP BY ---

    [[nodiscard]] bool isPlain(const orv::OutputColumn& column) const {
        return orv::isBlank(column.aggregate) && !orv::isWholeNumber(column.source) &&
               !orv::callsAggregate(column.source, *m_rules.aggregates);
    }

    [[nodiscard]] TokenRun groupByItems() const {
        const TokenRun run = tokensIn(m_groupBy->Start(), m_groupBy->End());
        return run.mid(2);  // behind GROUP and BY
    }

    // An item is a column by its position, by equal text, as the same field, or by output name.
    void markGrouped() {
        if (!m_groupBy) return;
        QHash<QString, std::size_t> byText;
        QHash<QString, std::size_t> byField;
        QHash<QString, std::size_t> byName;
        for (std::size_t index = m_loaded.size(); index-- > 0;) {
            const orv::OutputColumn& column = m_loaded[index].column;
            if (!isPlain(column)) continue;
            byText.insert(orv::tokenKey(column.source), index);
            if (const auto field = resolve(column.source)) byField.insert(*field, index);
            byName.insert(orv::unquotedName(column.name).toUpper(), index);
        }
        for (const TokenRun& item : groupByItems().splitAtCommas()) {
            const std::optional<std::size_t> index = groupedColumn(item, byText, byField, byName);
            if (index) m_loaded[*index].column.grouped = true;
            if (!index) m_unmatchedItems.push_back(item);
        }
        markEqualColumns();
    }

    // Grouping by a field groups every column of that field.
    void markEqualColumns() {
        const auto keyOf = [this](const orv::OutputColumn& column) {
            return resolve(column.source).value_or(orv::tokenKey(column.source));
        };
        QSet<QString> grouped;
        for (const Loaded& loaded : m_loaded) {
            if (loaded.column.grouped) grouped.insert(keyOf(loaded.column));
        }
        for (Loaded& loaded : m_loaded) {
            const bool isEqual = isPlain(loaded.column) && grouped.contains(keyOf(loaded.column));
            loaded.column.grouped = loaded.column.grouped || isEqual;
        }
    }

    [[nodiscard]] std::optional<QString> resolve(const QString& text) const {
        if (!m_host) return std::nullopt;
        const std::optional<PageField> field = m_host->resolveField(text);
        if (!field) return std::nullopt;
        return field->qualifiedName();
    }

    using Index = QHash<QString, std::size_t>;
    [[nodiscard]] std::optional<std::size_t> groupedColumn(const TokenRun& item,
                                                           const Index& byText,
                                                           const Index& byField,
                                                           const Index& byName) const {
        if (item.isEmpty()) return std::nullopt;
        const QString text = item.sourceText();
        if (item.size() == 1 && item[0].kind == SqlToken::Number && orv::isWholeNumber(text)) {
            const std::size_t position = text.toUInt();
            const bool known = !m_hasStar && position >= 1 && position <= m_loaded.size();
            if (!known || !isPlain(m_loaded[position - 1].column)) return std::nullopt;
            return position - 1;
        }
        const QString key = orv::tokenKey(text);
        if (byText.contains(key)) return byText.value(key);
        if (item.size() > 1) return std::nullopt;
        if (const auto field = resolve(text)) {
            return byField.contains(*field) ? std::optional(byField.value(*field)) : std::nullopt;
        }
        const QString name = orv::unquotedName(text).toUpper();
        return byName.contains(name) ? std::optional(byName.value(name)) : std::nullopt;
    }

    [[nodiscard]] orv::OutputColumns allColumns() const {
        orv::OutputColumns columns;
        for (const Loaded& loaded : m_loaded) columns.push_back(loaded.column);
        return columns;
    }

    // Nothing is written while a column is neither aggregated nor grouped: whoever shows the
    // statement shows that error, and the report tells where it comes from.
    void reportUnwritableColumns() {
        m_aggregated = orv::isAggregated(allColumns(), m_rules);
        if (!m_aggregated || !m_host) return;
        for (const Loaded& loaded : m_loaded) {
            if (orv::fitsAggregation(loaded.column, m_rules)) continue;
            report(loaded.run, QStringLiteral("A grouped statement cannot be written with this "
                                              "column, which is neither an aggregate nor "
                                              "grouped."));
        }
    }

    // The GROUP BY list is always made from the columns: where that gives another list, say so.
    void settleGroupBy() {
        if (!m_ledger) return;
        if (m_groupBy && !m_aggregated) {
            m_ledger->report(m_groupBy->Start(), m_groupBy->End(),
                             QStringLiteral("No column has an aggregate: the grouping is not "
                                            "held."));
            return;
        }
        for (const Loaded& loaded : m_loaded) {
            if (!m_aggregated || !isPlain(loaded.column) || loaded.column.grouped) continue;
            if (!orv::fitsAggregation(loaded.column, m_rules)) continue;
            m_ledger->report(loaded.run, QStringLiteral("The rows will be grouped by this column, "
                                                        "too."));
        }
        if (!m_groupBy) return;
        const TokenRun items = groupByItems();
        m_ledger->place(m_groupBy->Start(), items.isEmpty() ? m_groupBy->End() : items.start());
        m_ledger->place(items);
        m_ledger->reportLongBy(tokensIn(m_groupBy->Start(), m_groupBy->End()));
        for (const TokenRun& item : m_unmatchedItems) {
            m_ledger->report(item.isEmpty() ? items : item,
                             QStringLiteral("No output column stands for this: the rows will not "
                                            "be grouped by it."));
        }
    }

    void tellChosenFields() {
        m_grid.m_columns = allColumns();
        m_grid.changed();
        const TorvQDSelectGrid::NameEvent handler = m_grid.OnFieldChosen;
        if (!handler) return;
        for (const Loaded& loaded : m_loaded) {
            if (orv::isBlank(loaded.column.aggregate)) handler(loaded.column.source);
        }
    }

    void place(const TokenRun& run) const {
        if (m_ledger && !run.isEmpty()) m_ledger->place(run);
    }

    void report(const TokenRun& run, const QString& what) const {
        if (m_ledger) m_ledger->report(run, what);
    }

    TorvQDSelectGrid& m_grid;
    const TorvQDParser& m_root;
    IPagesHost* m_host;
    orv::LoadLedger* m_ledger;
    orv::SelectTextRules m_rules;
    orv::SqlTokens m_tokens;  // only without a ledger
    std::vector<Loaded> m_loaded;
    const TorvQDParser* m_groupBy = nullptr;
    std::vector<TokenRun> m_unmatchedItems;
    bool m_aggregated = false;
    bool m_hasStar = false;
    mutable int m_nextNode = 0;
    QSet<QString> m_names;  // output names so far
    int m_nextNumber = drawsOfName;
};

void TorvQDSelectGrid::LoadSQL(const TorvQDParser& Node) {
    if (Node.Location() != inSelect) {
        throw orv::Error(QStringLiteral("There is not valid object for extract selection list"));
    }
    // One change: in between the sorting page would lose the lines of columns that come back.
    ChangeScope change(host(), this);
    ClearContents();
    SelectLoader(*this, Node).load();
    change.finish();
}
