// SPDX-License-Identifier: MIT
// The query builder's state, saved and restored as a whole.
#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/ProcessName.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDStateReader.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QPointer>
#include <QScopeGuard>
#include <QSet>
#include <QThread>

#include <algorithm>

namespace {

[[noreturn]] void fail(const QString& what) {
    throw orv::Error(QStringLiteral("The state cannot be restored: ") + what);
}

/// The boxes, joins and links of a state, put on an empty diagram. The host is told of each, and
/// may take away what is there already, add more, or end it all.
class DiagramRestorer {
public:
    DiagramRestorer(TorvQDWorkArea& area, const orv::QueryState& state)
        : m_area(area), m_guard(&area), m_state(state), m_boxes(state.tables.size()) {}

    void restore() {
        for (const int index : m_state.creationOrder) {
            restoreBox(std::size_t(index));
            if (!m_guard) return;
        }
        std::vector<TorvQDTable*> frontToBack;
        for (const auto& box : m_boxes) frontToBack.push_back(box);
        m_area.restack(frontToBack);
        for (const orv::QueryState::Join& saved : m_state.joins) restoreJoin(saved);
        for (const orv::QueryState::Link& saved : m_state.links) {
            restoreLink(saved);
            if (!m_guard) return;
        }
        m_area.selectObject(nullptr);  // one that a handler has added
    }

    /// Whether the diagram has the boxes of the state, and no others.
    [[nodiscard]] bool isComplete() const {
        bool agrees = m_area.TablesCount() == int(m_boxes.size());
        for (std::size_t index = 0; agrees && index < m_boxes.size(); ++index) {
            const orv::QueryState::Table& saved = m_state.tables[index];
            const QString& alias = orv::isBlank(saved.alias) ? saved.name : saved.alias;
            const TorvQDTable* box = boxAt(int(index));
            agrees = box && box->GetAlias() == alias &&
                     box->Items.size() == saved.checked.size() + saved.paramChecked.size();
        }
        return agrees;
    }

    /// Ticks the rows that were ticked, and no others; none at all on a diagram that is another
    /// one.
    void tickRows() {
        QSet<const TorvQDListItem*> wanted;
        for (std::size_t index = 0; isComplete() && index < m_boxes.size(); ++index) {
            const orv::QueryState::Table& saved = m_state.tables[index];
            std::vector<bool> ticks = saved.checked;
            ticks.insert(ticks.end(), saved.paramChecked.begin(), saved.paramChecked.end());
            for (std::size_t row = 0; row < ticks.size(); ++row) {
                if (ticks[row]) wanted.insert(m_boxes[index]->Items[row].get());
            }
        }
        for (const TorvQDTable* box : m_area.tablesByCreation()) {
            for (const auto& row : box->Items) {
                const bool isTicked = wanted.contains(row.get());
                if (row->ParamType != ptOutput || row->Checked == isTicked) continue;
                row->UpdateCheck(isTicked ? -1 : 0);
            }
        }
    }

private:
    /// None when it has been taken away.
    [[nodiscard]] TorvQDTable* boxAt(int index) const {
        TorvQDTable* box = m_boxes[std::size_t(index)];
        return m_area.holds(box) ? box : nullptr;
    }

    void restoreBox(std::size_t index) {
        const orv::QueryState::Table& saved = m_state.tables[index];
        TorvQDTable* box = m_area.restoreTable(saved.name, saved.alias, saved.fields, saved.bounds,
                                               saved.isProcedure ? &saved.params : nullptr);
        m_boxes[index] = box;
        if (!box) return;
        if (auto* procedure = qobject_cast<TorvQDSProc*>(box)) {
            procedure->setWithoutBrackets(saved.withoutBrackets);
        }
        if (saved.shownRows >= 0) box->restoreVisibleCount(saved.shownRows);
        if (saved.firstRow != 0) box->restoreFirstVisibleItem(saved.firstRow);
        if (saved.collapsed) box->SetExpand(0);
    }

    void restoreJoin(const orv::QueryState::Join& saved) {
        TorvQDTable* first = boxAt(saved.table1);
        TorvQDTable* second = boxAt(saved.table2);
        bool reversed = false;
        if (!first || !second || m_area.FindJoin(first, second, reversed)) return;
        TorvQDJoin* join = m_area.restoreJoin(first, second);
        join->KindOfJoin = saved.kind;
        join->Text = saved.text;
    }

    void restoreLink(const orv::QueryState::Link& saved) {
        const orv::QueryState::Join& pair = m_state.joins[std::size_t(saved.join)];
        TorvQDTable* first = boxAt(pair.table1);
        TorvQDTable* second = boxAt(pair.table2);
        bool reversed = false;
        TorvQDJoin* join = first && second ? m_area.FindJoin(first, second, reversed) : nullptr;
        if (!join || reversed) return;
        TorvQDLink* link = m_area.restoreLink(join, first->GetFieldItem(saved.field1),
                                              second->GetFieldItem(saved.field2));
        if (!link) return;
        link->setOperatorText(saved.operation);
        link->Muted = saved.muted;
        if (!saved.points.empty()) link->setBendPoints(saved.points);
    }

    TorvQDWorkArea& m_area;
    const QPointer<TorvQDWorkArea> m_guard;
    const orv::QueryState& m_state;
    std::vector<QPointer<TorvQDTable>> m_boxes;  // as the state lists them
};

// What would only show half way is looked for before anything is cleared: a link without its
// fields, a join without a link.
void checkDiagram(const orv::QueryState& state) {
    std::vector<QSet<QString>> fieldsOf;  // by table, in upper case
    for (const auto& table : state.tables) {
        QSet<QString> fields;
        for (const TFieldDef& field : table.fields.FieldDefs) {
            fields.insert(ProcessName(field.Name).toUpper());
        }
        // A host may link those that are put in, too.
        for (const TParam& param : table.params.Items) {
            fields.insert(ProcessName(param.Name).toUpper());
        }
        fieldsOf.push_back(fields);
    }
    const auto aliasOf = [&](int table) { return state.tables[std::size_t(table)].alias; };
    const auto checkField = [&](int table, const QString& field) {
        if (fieldsOf[std::size_t(table)].contains(field.toUpper())) return;
        fail(QStringLiteral("a link names the unknown field %1 of %2").arg(field, aliasOf(table)));
    };
    QSet<std::pair<int, int>> pairs;
    for (const auto& join : state.joins) {
        const bool isSecond = pairs.contains({join.table1, join.table2}) ||
                              pairs.contains({join.table2, join.table1});
        if (isSecond) {
            fail(QStringLiteral("two joins between %1 and %2")
                     .arg(aliasOf(join.table1), aliasOf(join.table2)));
        }
        pairs.insert({join.table1, join.table2});
    }
    std::vector<bool> hasLink(state.joins.size());
    for (const auto& link : state.links) {
        const orv::QueryState::Join& join = state.joins[std::size_t(link.join)];
        hasLink[std::size_t(link.join)] = true;
        checkField(join.table1, link.field1);
        checkField(join.table2, link.field2);
    }
    for (std::size_t index = 0; index < hasLink.size(); ++index) {
        if (hasLink[index]) continue;
        const orv::QueryState::Join& join = state.joins[index];
        fail(QStringLiteral("a join without a link between %1 and %2")
                 .arg(aliasOf(join.table1), aliasOf(join.table2)));
    }
}

constexpr int mostArguments = 1000;

/// Condition rows of a state, put into a panel.
class ConditionRestorer {
public:
    ConditionRestorer(const TGroupOperators& groups, const TOperatorList& operators)
        : m_groups(groups), m_operators(operators) {}

    void check(const orv::QueryState::Row& saved) const {
        if (saved.group.isEmpty()) {
            (void)operatorOf(saved);
            if (saved.arguments.size() > mostArguments) {
                fail(QStringLiteral("too many operands for the operator ") + saved.operation);
            }
            return;
        }
        if (!orv::findGroupOperator(m_groups, saved.group)) {
            fail(QStringLiteral("an unknown group operator: ") + saved.group);
        }
        for (const orv::QueryState::Row& row : saved.rows) check(row);
    }

    void fill(TorvQDWhereRow& row, const orv::QueryState::Row& saved) const {
        row.Muted = saved.muted;
        if (!saved.group.isEmpty()) {
            row.SetGroupOper(saved.group);
            for (const orv::QueryState::Row& sub : saved.rows) fill(*row.SubRows->AddRow(), sub);
            return;
        }
        row.setOperator(operatorOf(saved));
        QStringList arguments;
        for (const QString& text : saved.arguments) arguments << filled(text);
        // Those of an operator that was taken out of the catalogue stay with their row.
        row.setArguments(arguments);
        row.FieldFunc = filled(saved.func);
        row.FieldName = filled(saved.field);
        row.ArgFunc = filled(saved.argFunc);
    }

private:
    [[nodiscard]] TOperatorList::Entry operatorOf(const orv::QueryState::Row& saved) const {
        // A row that was made while the catalogue was empty has operands, but no operator.
        if (saved.operation.isEmpty()) {
            return saved.arguments.isEmpty() ? orv::expressionOperator() : nullptr;
        }
        TOperatorList::Entry entry = m_operators.FindName(saved.operation);
        if (!entry) fail(QStringLiteral("an unknown operator: ") + saved.operation);
        return entry;
    }
    static QString filled(const QString& text) {
        return orv::isBlank(text) ? orv::blankText() : text;
    }

    const TGroupOperators& m_groups;
    const TOperatorList& m_operators;
};

}  // namespace

QByteArray TorvQueryBuilder::SaveState() {
    Q_ASSERT(thread() == QThread::currentThread());
    return WorkArea ? orv::savedState(*this) : QByteArray();
}

void TorvQueryBuilder::RestoreState(const QByteArray& json) {
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_hostCalls > 0 && !m_loading) {
        throw orv::Error(
            QStringLiteral("A state cannot be restored while a handler is being asked"));
    }
    refuseWhileBusy();
    if (!WorkArea) return;
    const orv::QueryState state = orv::readState(json);
    const ConditionRestorer conditions(GroupOpers, *Operators);
    conditions.check(state.where);
    conditions.check(state.having);
    checkDiagram(state);
    ChangeScope change(this, this);
    // What a handler of the host raises on the way would leave half of it, which agrees with
    // nothing; and so would another query that it begins.
    const QPointer<TorvQueryBuilder> self(this);
    m_loading = true;
    auto giveUp = qScopeGuard([&] {
        if (self) orv::guarded([this] { clearAll(); });
        if (self) m_loading = false;
    });
    clearAll();
    if (!self) return;
    DiagramRestorer diagram(*WorkArea, state);
    diagram.restore();
    if (!self) return;
    // Handlers may have ticked rows meanwhile.
    m_removals.clear();
    m_selectedFields.clear();
    m_givenNames.clear();
    diagram.tickRows();
    conditions.fill(*WherePanel->rootRow(), state.where);
    conditions.fill(*HavingPanel->rootRow(), state.having);
    SelectPanel->SetDistinct(state.distinct ? -1 : 0);
    SelectPanel->grid()->setColumns(state.columns);
    OrderPanel->setSortedLines(state.order);
    showTail(state.tail);
    if (diagram.isComplete()) {
        restoreNames(state.selectedFields, state.allFields);
    } else {
        // On a diagram that the host has changed meanwhile columns go with their boxes.
        QSet<QString> gone;
        for (const QString& name : state.selectedFields) {
            _SelectField(name);
            if (!resolveItem(name)) gone.insert(name);
        }
        SelectPanel->grid()->uncheckFields(gone);
    }
    WorkArea->scrollTo(state.view);
    giveUp.dismiss();
    m_loading = false;
    change.finish();
}

// Renaming by prefix may have changed entries that no box explains: the lists come back as they
// were.
void TorvQueryBuilder::restoreNames(const QStringList& selected, const QStringList& all) {
    for (const QString& name : selected) {
        m_selectedFields.append(name);
        const TorvQDListItem* item = resolveItem(name);
        if (item && name != item->qualifiedName()) {
            m_givenNames.insert(item, name);
        }
    }
    if (all.isEmpty()) return;
    m_allFields.clear();
    for (const QString& name : all) m_allFields.append(name);
}
