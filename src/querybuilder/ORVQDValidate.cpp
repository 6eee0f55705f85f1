// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDValidate.h"

#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "parser/ORVQDArgument.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDTokens.h"
#include "querybuilder/ORVQDNames.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QHash>
#include <QSet>

#include <functional>
#include <numeric>

namespace orv {

namespace {

/// Which tables hang together, by their numbers.
class Components {
public:
    explicit Components(int count) : m_parent(std::size_t(count)) {
        std::iota(m_parent.begin(), m_parent.end(), 0);
    }
    int find(int element) {
        while (m_parent[std::size_t(element)] != element) {
            int& parent = m_parent[std::size_t(element)];
            parent = m_parent[std::size_t(parent)];
            element = parent;
        }
        return element;
    }
    void unite(int a, int b) { m_parent[std::size_t(find(b))] = find(a); }

private:
    std::vector<int> m_parent;
};

class Validator {
public:
    explicit Validator(TorvQueryBuilder& builder) : m_builder(builder) {}

    Findings validate() {
        checkTables();
        checkAliases();
        checkJoins();
        checkParameters();
        checkValues();
        checkPlaceholders();
        checkColumns();
        checkRows(*m_builder.WherePanel->rootRow(), QString());
        checkRows(*m_builder.HavingPanel->rootRow(), QString());
        checkWriting();
        for (Finding& finding : tailFindings(m_builder)) m_findings.push_back(std::move(finding));
        return std::move(m_findings);
    }

    QStringList muted() {
        checkJoins();
        checkColumns();
        checkRows(*m_builder.WherePanel->rootRow(), QString());
        checkRows(*m_builder.HavingPanel->rootRow(), QString());
        return m_muted;
    }

private:
    void report(const QString& text, const QString& what) {
        m_findings.push_back({0, 0, text, what});
    }

    void reportMuted(const QString& text, const QString& part) {
        m_muted << text;
        report(text, QStringLiteral("This %1 is muted: the statement does not have it.").arg(part));
    }

    // --- the diagram ---

    void checkTables() {
        const std::vector<TorvQDTable*>& tables = m_builder.WorkArea->tablesByCreation();
        Components components(int(tables.size()));
        for (int index = 0; index < int(tables.size()); ++index) {
            m_numbers.insert(tables[std::size_t(index)], index);
        }
        for (const auto& join : m_builder.WorkArea->Joins()) {
            if (!m_builder.WorkArea->isWritten(*join)) continue;
            components.unite(m_numbers.value(join->Table1), m_numbers.value(join->Table2));
        }
        uniteByArguments(components);
        uniteByConditions(*m_builder.WherePanel->rootRow(), components);
        QHash<int, QStringList> aliases;
        std::vector<int> order;
        for (int index = 0; index < int(tables.size()); ++index) {
            const int component = components.find(index);
            if (!aliases.contains(component)) order.push_back(component);
            aliases[component] << tables[std::size_t(index)]->GetAlias();
        }
        for (std::size_t index = 1; index < order.size(); ++index) {
            report(aliases.value(order[index]).join(QStringLiteral(", ")),
                   QStringLiteral("Nothing links this with the other tables: each of its rows is "
                                  "combined with each of theirs."));
        }
    }

    // So does an argument that names another table.
    void uniteByArguments(Components& components) {
        visitParameters([&](const TorvQDListItem& row) {
            for (const TorvQDTable* named : m_builder.WorkArea->tablesNamedBy(row)) {
                components.unite(m_numbers.value(row.Table), m_numbers.value(named));
            }
        });
    }

    void visitParameters(const std::function<void(const TorvQDListItem&)>& visit) {
        for (TorvQDTable* table : m_builder.WorkArea->tablesByCreation()) {
            const auto* procedure = qobject_cast<const TorvQDSProc*>(table);
            if (!procedure) continue;
            for (const TorvQDListItem* row : procedure->parameterRows()) visit(*row);
        }
    }

    // What parameters hold that cannot be written, or that is not valid where it stands.
    void checkParameters() {
        visitParameters([&](const TorvQDListItem& row) {
            if (row.ParamType != ptInput) return;
            if (const std::optional<QString> sql = TorvQDSProc::sqlOf(row)) {
                checkArgument(row, *sql);
                return;
            }
            const QVariant value = TorvQDSProc::valueOf(row);
            const bool isWritten =
                !value.isValid() ||
                !TorvQDSProc::valueText(value, row.FieldType, m_builder.KeepMeaning()).isEmpty();
            if (isWritten) return;
            report(row.qualifiedName(),
                   QStringLiteral("The value of this parameter is of a kind that cannot be "
                                  "written: the call leaves it out."));
        });
        for (const TorvQDListItem* row : m_builder.WorkArea->earlyArguments()) {
            report(TorvQDSProc::sqlOf(*row).value_or(QString()),
                   QStringLiteral("This argument is written in front of a table that it names."));
        }
    }

    void checkValues() {
        visitParameters([&](const TorvQDListItem& row) {
            if (row.ParamType != ptInput) return;
            const QVariant value = TorvQDSProc::valueOf(row);
            const QString name = row.qualifiedName();
            if (!TorvQDSProc::hasText(value)) {
                report(name, QStringLiteral("The value of this parameter cannot be written as SQL: "
                                            "the call has a placeholder."));
            }
            const bool isText = value.typeId() == QMetaType::QString ||
                                value.typeId() == QMetaType::QByteArray ||
                                value.typeId() == QMetaType::QChar;
            const QString text = isText ? value.toString() : QString();
            if (text.contains(u'\n') || text.contains(u'\r')) {
                report(name, QStringLiteral("A line break in the value of this parameter becomes a "
                                            "blank when the statement is loaded."));
            }
        });
    }

    // A blank one is left out of the call.
    void checkArgument(const TorvQDListItem& row, const QString& sql) {
        const QString problem = isBlank(sql) ? QString() : argumentProblem(sql);
        if (!problem.isEmpty()) report(row.qualifiedName(), problem);
        visitArgumentProblems(
            m_builder, sql, *row.Table,
            [this](const QString& name, const QString& what) { reportName(name, what); });
    }

    // The inputs that are written as placeholders; those behind the last argument are left out.
    static std::vector<const TorvQDListItem*> placeholders(const TorvQDSProc& procedure) {
        std::vector<const TorvQDListItem*> rows;
        std::vector<const TorvQDListItem*> leftOut;
        for (const TorvQDListItem* row : procedure.parameterRows()) {
            if (row->ParamType != ptInput) continue;
            const std::optional<QString> sql = TorvQDSProc::sqlOf(*row);
            if (sql && isBlank(*sql)) {
                leftOut.push_back(row);
                continue;
            }
            rows.insert(rows.end(), leftOut.begin(), leftOut.end());
            leftOut.clear();
            if (!TorvQDSProc::valueOf(*row).isValid()) rows.push_back(row);
        }
        return rows;
    }

    // Whoever gives a placeholder a value gives it to each input that is written with its name.
    void checkPlaceholders() {
        QHash<QString, QStringList> inputs;  // by placeholder
        QStringList order;
        for (const TorvQDTable* table : m_builder.WorkArea->tablesByCreation()) {
            const auto* procedure = qobject_cast<const TorvQDSProc*>(table);
            if (!procedure) continue;
            for (const TorvQDListItem* row : placeholders(*procedure)) {
                const QString name = u':' + TorvQDSProc::placeholderName(*row);
                if (!inputs.contains(name)) order << name;
                inputs[name] << row->qualifiedName();
            }
        }
        for (const QString& name : order) {
            const QStringList sharing = inputs.value(name);
            if (sharing.size() < 2) continue;
            report(name,
                   QStringLiteral("These parameters share a placeholder, and so one value: ") +
                       sharing.join(QStringLiteral(", ")) + u'.');
        }
    }

    // A condition that names two tables links them as a join does.
    void uniteByConditions(const TorvQDWhereRow& row, Components& components) {
        if (row.Muted) return;
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            uniteByConditions(*row.SubRows->Row(index), components);
        }
        if (row.isGroup()) return;
        int first = -1;
        const auto see = [&](const QString& text) {
            const std::optional<PageField> field = m_builder.resolveField(text);
            if (!field) return;
            const int number = m_numbers.value(m_builder.WorkArea->GetTable(field->alias));
            if (first < 0) first = number;
            components.unite(first, number);
        };
        for (const QString& text : row.Arguments + QStringList(row.FieldName)) {
            if (isFieldName(text)) {
                see(text);
            } else {
                visitQualifiedNames(text, see);
            }
        }
    }

    // Statements are read ignoring case.
    void checkAliases() {
        QHash<QString, QString> seen;  // by upper case
        for (const TorvQDTable* table : m_builder.WorkArea->tablesByCreation()) {
            const QString alias = table->GetAlias();
            const QString other = seen.value(alias.toUpper());
            if (!other.isEmpty() && !isQuotedName(alias)) {
                report(alias, alias == other
                                  ? QStringLiteral("Two tables have this alias.")
                                  : QStringLiteral("Another table's alias differs from this one in "
                                                   "case only."));
            }
            seen.insert(alias.toUpper(), alias);
        }
    }

    void checkJoins() {
        for (const TorvQDJoin* join : m_builder.WorkArea->Joins()) checkNames(join->Text);
        for (const TorvQDLink* link : m_builder.WorkArea->Links()) {
            if (link->Muted) {
                reportMuted(link->Join->Table1->GetAlias() + u'.' + link->Item1->Name + u' ' +
                                link->operatorText() + u' ' + link->Join->Table2->GetAlias() +
                                u'.' + link->Item2->Name,
                            QStringLiteral("link"));
                continue;
            }
            for (const TorvQDListItem* item : {link->Item1, link->Item2}) {
                if (item->ParamType == ptOutput) continue;
                report(item->qualifiedName(),
                       QStringLiteral("This is a parameter: it cannot be compared in a join."));
            }
        }
        for (const TorvQDJoin* join : m_builder.WorkArea->brokenCircles()) {
            const QString text = join->Table1->GetAlias() + u' ' + joinWords(join->KindOfJoin) +
                                 u' ' + join->Table2->GetAlias();
            report(text, m_builder.KeepMeaning()
                             ? QStringLiteral("This join closes a circle in which not all joins "
                                              "are inner ones: what it asks for is not certain.")
                             : QStringLiteral("This join closes a circle: its table is named "
                                              "twice."));
        }
    }

    // --- the pages ---

    void checkColumns() {
        const TorvQDSelectGrid& grid = *m_builder.SelectPanel->grid();
        const SelectTextRules rules = grid.textRules();
        for (const OutputColumn& column : grid.columns()) {
            if (isBlank(column.source)) continue;
            if (column.muted) {
                reportMuted(columnText(column, rules), QStringLiteral("column"));
                continue;
            }
            checkNames(column.source);
            const QString problem = outputNameProblem(column, rules);
            if (!problem.isEmpty()) report(writtenOutputName(column, rules), problem);
        }
    }

    // `number` is the row's outline number, empty for the root row.
    void checkRows(const TorvQDWhereRow& row, const QString& number) {
        if (row.Muted) {
            const QString condition = orvTrim(row.GetSQLCondition(false));
            return reportMuted(number + u' ' + (condition.isEmpty() ? row.GroupOper : condition),
                               QStringLiteral("condition"));
        }
        if (row.isGroup()) {
            const int count = row.SubRows->GetCount();
            if (count == 0 && !number.isEmpty()) {
                report(number + u' ' + row.GroupOper,
                       QStringLiteral("This group has no conditions."));
            }
            for (int index = 0; index < count; ++index) {
                checkRows(*row.SubRows->Row(index), number + QString::number(index + 1) + u'.');
            }
            return;
        }
        bool isFilled = !isBlank(row.FieldName);
        for (const QString& argument : row.Arguments) isFilled = isFilled && !isBlank(argument);
        if (!isFilled) {
            report(number + u' ' + orvTrim(row.GetSQLCondition(false)),
                   QStringLiteral("This condition is not filled in."));
        }
        const QString problem = operatorProblem(row);
        if (!problem.isEmpty()) {
            report(number + u' ' + orvTrim(row.GetSQLCondition(false)), problem);
        }
        checkNames(row.FieldName);
        for (const QString& argument : row.Arguments) checkNames(argument);
    }

    // What another catalogue has made of a row.
    [[nodiscard]] QString operatorProblem(const TorvQDWhereRow& row) const {
        const int count = operandCount(row.Operator);
        const int given = int(row.Arguments.size());
        if (given < count) {
            return QStringLiteral("The operator of this condition takes more arguments.");
        }
        if (given > count) {
            return QStringLiteral("The operator of this condition takes fewer arguments.");
        }
        const bool isKnown = row.isExpression() || !row.Operator ||
                             m_builder.Operators->FindName(row.Operator->Name);
        return isKnown ? QString()
                       : QStringLiteral("The operator of this condition is no longer in the list.");
    }

    // Each name is told once.
    void checkNames(const QString& text) {
        visitNameProblems(m_builder, text, [this](const QString& name, const QString& what) {
            reportName(name, what);
        });
    }
    void reportName(const QString& name, const QString& what) {
        if (m_told.contains(name)) return;
        m_told.insert(name);
        report(name, what);
    }

    // --- the statement ---

    void checkWriting() {
        try {
            (void)m_builder.GetSQLStatment();
            const QString having =
                orvTrim(m_builder.HavingPanel->rootRow()->GetSQLCondition(false));
            if (!having.isEmpty() &&
                m_builder.SelectPanel->grid()->GetSQLStatment().groupBy.isEmpty()) {
                report(having,
                       QStringLiteral("Without a GROUP BY list this condition is not written."));
            }
        } catch (const Error& error) {
            report({}, error.Message());
        }
    }

    TorvQueryBuilder& m_builder;
    QHash<const TorvQDTable*, int> m_numbers;  // in the order of creation
    QSet<QString> m_told;
    QStringList m_muted;
    Findings m_findings;
};

bool isTail(const QString& text) {
    const QString statement = QStringLiteral("SELECT A FROM T ");
    const NormalisedSQL whole = NormaliseSQL(statement + text);
    const StatementParts parts = splitStatement(whole.text, tokenise(whole.text));
    return parts.tailStart <= statement.size() && parts.restStart >= whole.text.size();
}

}  // namespace

Findings tailFindings(TorvQueryBuilder& builder) {
    static const QStringList earlier = {QStringLiteral("UNION"), QStringLiteral("INTERSECT"),
                                        QStringLiteral("EXCEPT"), QStringLiteral("WINDOW")};
    const QString& tail = builder.TailText();
    const SqlTokens tokens = tokenise(tail);
    if (tokens.empty()) return {};
    Findings findings;
    if (!isTail(tail)) {
        findings.push_back(
            {0, 0, tail, QStringLiteral("This is nothing that may follow a statement.")});
    }
    const QString sorting = builder.OrderPanel->GetSQLStatment();
    if (isBlank(sorting)) return findings;
    const QString word =
        tail.mid(tokens.front().start, tokens.front().end - tokens.front().start).toUpper();
    if (earlier.contains(word)) {
        findings.push_back(
            {0, 0, sorting, QStringLiteral("Sorting cannot stand in front of %1.").arg(word)});
    }
    return findings;
}

Findings validate(TorvQueryBuilder& builder) {
    return Validator(builder).validate();
}

QStringList mutedParts(TorvQueryBuilder& builder) {
    return Validator(builder).muted();
}

}  // namespace orv
