// SPDX-License-Identifier: MIT
#include "criteria/ORVQDRowBuilder.h"

#include <algorithm>

namespace orv {

namespace {

const QString all = QStringLiteral("All");
const QString any = QStringLiteral("Any");
const QString none = QStringLiteral("None");
const QString notAll = QStringLiteral("Not all");

QString opposite(const QString& group) {
    if (group == any) return notAll;
    if (group == notAll) return any;
    if (group == none) return all;
    return none;
}

void fill(TorvQDWhereRow& row, const ReadCondition& condition) {
    row.FieldFunc = condition.fieldFunc;
    row.FieldName = condition.field;
    row.ArgFunc = condition.argFunc;
    row.setOperator(condition.operation);
    for (qsizetype index = 0; index < row.Arguments.size(); ++index) {
        row.Arguments[index] = condition.arguments.value(index, blankText());
    }
}

// One bracket around everything.
bool isWholeBracket(const std::vector<ConditionElement>& elements) {
    return elements.size() == 1 && elements.front().kind == ConditionElement::Bracket;
}

// NOT in front of one bracket, and nothing else on the level.
bool isNegatedBracket(const std::vector<ConditionElement>& elements) {
    return elements.size() == 2 && elements.front().kind == ConditionElement::Not &&
           elements.back().kind == ConditionElement::Bracket;
}

/// The reading of one level; see buildRows.
class RowBuilder {
public:
    RowBuilder(TorvQDWhereRow* group, bool negate, Nots nots)
        : m_group(group), m_negate(negate), m_nots(nots) {
        m_current = m_group->SubRows->AddRow();
    }

    /// Reads the elements; the group that holds them in the end.
    TorvQDWhereRow* read(const std::vector<ConditionElement>& elements) {
        if (isWholeBracket(elements)) {
            replaceAllBy(elements.front().children);
            return m_group;
        }
        if (isNegatedBracket(elements)) {
            m_negate = !m_negate;
            replaceAllBy(elements.back().children);
            return m_group;
        }
        for (const ConditionElement& element : elements) {
            switch (element.kind) {
            case ConditionElement::And:
            case ConditionElement::Or: readConnective(element.kind); break;
            case ConditionElement::Not: readNot(); break;
            case ConditionElement::Bracket: readBracket(element); break;
            case ConditionElement::Condition:
                fill(*m_current, element.condition);
                m_pendingNot = false;
                m_filled = true;
                break;
            }
        }
        if (!m_filled) m_current->SetGroupOper(all);
        finish();
        return m_group;
    }

private:
    // The bracket's conditions become the group's own, and it is negated as a whole.
    void replaceAllBy(const std::vector<ConditionElement>& elements) {
        m_group->SubRows->Clear();
        m_group = buildRows(elements, m_group, false, m_nots);
        if (!m_negate) return;
        if (!m_group->isGroup()) {
            wrapInNone();
            return;
        }
        m_group->SetGroupOper(opposite(m_group->GroupOper));
        // Two negations of one condition leave the condition.
        if (m_group->GroupOper == all && holdsOneRow()) takeOnlyRow();
    }

    [[nodiscard]] bool holdsOneRow() const {
        return m_group->parentRow() && m_group->SubRows->GetCount() == 1;
    }

    void readConnective(ConditionElement::Kind kind) {
        if (!m_filled) m_current->SetGroupOper(all);  // nothing stands between two connectives
        m_pendingNot = false;
        const int connective = kind == ConditionElement::And ? 1 : 2;
        if (m_connective != 0 && m_connective != connective) {
            regroup(m_connective == 2 ? any : all);
        }
        m_group->SetGroupOper(connective == 1 ? all : any);
        m_connective = connective;
        m_current = m_group->SubRows->AddRow();
        m_filled = false;
    }

    // What was read so far becomes one group, and reading goes on beside it.
    void regroup(const QString& name) {
        if (!m_group->parentRow()) {
            TorvQDWhereRows& rows = *m_group->SubRows;
            auto items = rows.takeAll();
            TorvQDWhereRow* inner = rows.AddRow();
            inner->SetGroupOper(name);
            for (auto& item : items) inner->SubRows->InsertItem(std::move(item));
            return;
        }
        TorvQDWhereRow* outer = m_group->rows()->AddRow();
        m_group->SetCollection(outer->SubRows.get());
        m_group = outer;
    }

    void readNot() {
        if (m_pendingNot) {  // NOT NOT: the row of the first one is the condition's own again
            m_negation->SubRows->Clear();
            m_negation->GroupOper.clear();
            m_negation->SetExpanded(false);
            m_current = m_negation;
            m_pendingNot = false;
            return;
        }
        m_negation = m_current;
        m_negation->SetGroupOper(none);
        m_current = m_negation->SubRows->AddRow();
        m_pendingNot = m_connective != 0 || m_nots == Nots::Merge;
    }

    void readBracket(const ConditionElement& element) {
        if (m_pendingNot) {
            m_negation->SubRows->Clear();
            m_negation->GroupOper.clear();
            buildRows(element.children, m_negation, true, m_nots);
        } else {
            buildRows(element.children, m_current, false, m_nots);
        }
        m_pendingNot = false;
        m_filled = true;
    }

    void finish() {
        if (m_negate) {
            m_group->SetGroupOper(opposite(m_group->GroupOper));
        } else if (holdsOneRow()) {
            takeOnlyRow();
        }
    }

    // The group is one condition by now: it moves down, and "None" stands around it.
    void wrapInNone() {
        m_group->SubRows->AddRow()->Assign(*m_group);
        m_group->SetGroupOper(none);
    }

    // A group of one row is that row, its sub-rows included.
    void takeOnlyRow() {
        const auto items = m_group->SubRows->takeAll();
        auto& only = static_cast<TorvQDWhereRow&>(*items.front());
        m_group->Assign(only);
        m_group->takeSubRows(only);
    }

    TorvQDWhereRow* m_group;
    bool m_negate;
    const Nots m_nots;
    TorvQDWhereRow* m_current = nullptr;
    TorvQDWhereRow* m_negation = nullptr;
    int m_connective = 0;  // 0 none yet, 1 AND, 2 OR
    bool m_pendingNot = false;
    bool m_filled = false;  // the current row has its condition
};

// --- how deep the rows will be ---

int groupsOf(const std::vector<ConditionElement>& elements, bool negate, Nots nots);

/// The deepest of the rows that a level gives, counted as RowBuilder makes them.
class DepthCounter {
public:
    explicit DepthCounter(Nots nots) : m_rule(nots) {}

    void add(const ConditionElement& element) {
        switch (element.kind) {
        case ConditionElement::And:
        case ConditionElement::Or:
            addConnective(element.kind == ConditionElement::And ? 1 : 2);
            break;
        case ConditionElement::Not: ++m_nots; break;
        case ConditionElement::Bracket: addBracket(element.children); break;
        case ConditionElement::Condition: addRow(pendingGroups()); break;
        }
    }
    void finish() {
        if (!m_filled) addRow(pendingGroups() + 1);
    }
    [[nodiscard]] int deepest() const { return m_deepest; }
    [[nodiscard]] bool hasConnective() const { return m_connective != 0; }

private:
    [[nodiscard]] bool mergesNots() const { return m_connective != 0 || m_rule == Nots::Merge; }
    // Two NOTs that are merged cancel out.
    [[nodiscard]] int pendingGroups() const { return mergesNots() ? m_nots % 2 : m_nots; }

    void addRow(int groups) {
        m_deepest = std::max(m_deepest, groups);
        m_nots = 0;
        m_filled = true;
    }
    void addBracket(const std::vector<ConditionElement>& elements) {
        // A bracket behind a pending NOT becomes the group of that NOT.
        if (mergesNots()) {
            addRow(groupsOf(elements, m_nots % 2 == 1, m_rule));
        } else {
            addRow(m_nots + groupsOf(elements, false, m_rule));
        }
    }
    void addConnective(int connective) {
        finish();
        if (m_connective != 0 && m_connective != connective) ++m_deepest;
        m_connective = connective;
        m_filled = false;
    }

    const Nots m_rule;
    int m_deepest = 0;
    int m_connective = 0;
    int m_nots = 0;
    bool m_filled = false;
};

// The groups of the row into which the level is built, itself included; 0 for a simple row.
int groupsOf(const std::vector<ConditionElement>& elements, bool negate, Nots nots) {
    if (isWholeBracket(elements) || isNegatedBracket(elements)) {
        const bool negates = negate != isNegatedBracket(elements);
        return std::max(negates ? 1 : 0, groupsOf(elements.back().children, false, nots));
    }
    DepthCounter counter(nots);
    for (const ConditionElement& element : elements) counter.add(element);
    counter.finish();
    return counter.deepest() + (negate || counter.hasConnective() ? 1 : 0);
}

}  // namespace

int groupsBelow(const std::vector<ConditionElement>& elements, Nots nots) {
    if (isWholeBracket(elements) || isNegatedBracket(elements)) {
        return groupsBelow(elements.back().children, nots);
    }
    DepthCounter counter(nots);
    for (const ConditionElement& element : elements) counter.add(element);
    counter.finish();
    return counter.deepest();
}

TorvQDWhereRow* buildRows(const std::vector<ConditionElement>& elements, TorvQDWhereRow* group,
                          bool negate, Nots nots) {
    return RowBuilder(group, negate, nots).read(elements);
}

}  // namespace orv
