// SPDX-License-Identifier: MIT
#include "criteria/ORVQDRowBuilder.h"

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

void moveRows(TorvQDWhereRows& from, TorvQDWhereRows& to) {
    TorvQDWhereRows* target = &to;
    for (auto& item : from.takeAll()) target->InsertItem(std::move(item));
}

/// The reading of one level; see buildRows.
class RowBuilder {
public:
    RowBuilder(TorvQDWhereRow* group, bool negate, bool joinsNots)
        : m_group(group), m_negate(negate), m_joinsNots(joinsNots) {
        m_current = m_group->SubRows->AddRow();
    }

    /// Reads the elements; the group that holds them in the end.
    TorvQDWhereRow* read(const std::vector<ConditionElement>& elements) {
        for (std::size_t index = 0; index < elements.size(); ++index) {
            const ConditionElement& element = elements[index];
            switch (element.kind) {
            case ConditionElement::And:
            case ConditionElement::Or: readConnective(element.kind); break;
            case ConditionElement::Not:
                if (isNegatedBracket(elements, index)) {
                    m_negate = !m_negate;
                    replaceAllBy(elements.back().children);
                    return m_group;
                }
                readNot();
                break;
            case ConditionElement::Bracket:
                if (m_connective == 0 && elements.size() == 1) {
                    replaceAllBy(element.children);
                    return m_group;
                }
                readBracket(element);
                break;
            case ConditionElement::Condition:
                fill(*m_current, element.condition);
                m_pendingNot = false;
                m_filled = true;
                break;
            }
        }
        if (!m_filled) m_current->GroupOper = all;
        finish();
        return m_group;
    }

private:
    // NOT in front of one bracket, and nothing else on the level.
    [[nodiscard]] bool isNegatedBracket(const std::vector<ConditionElement>& elements,
                                        std::size_t index) const {
        return m_connective == 0 && index == 0 && elements.size() == 2 &&
               elements.back().kind == ConditionElement::Bracket;
    }

    // The bracket's conditions become the group's own, and it is negated as a whole.
    void replaceAllBy(const std::vector<ConditionElement>& elements) {
        m_group->SubRows->Clear();
        m_current = nullptr;
        m_group = buildRows(elements, m_group, false, m_joinsNots);
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
        if (!m_filled) m_current->GroupOper = all;  // nothing stands between two connectives
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
            m_current = m_negation;
            m_pendingNot = false;
            return;
        }
        m_negation = m_current;
        m_negation->SetGroupOper(none);
        m_current = m_negation->SubRows->AddRow();
        m_pendingNot = m_connective != 0 || m_joinsNots;
    }

    void readBracket(const ConditionElement& element) {
        if (m_pendingNot) {
            m_negation->SubRows->Clear();
            m_negation->GroupOper.clear();
            buildRows(element.children, m_negation, true, m_joinsNots);
        } else {
            buildRows(element.children, m_current, false, m_joinsNots);
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
        TorvQDWhereRow* inner = m_group->SubRows->AddRow();
        inner->Assign(*m_group);
        m_group->SetGroupOper(none);
    }

    // A group of one row is that row, its sub-rows included.
    void takeOnlyRow() {
        auto items = m_group->SubRows->takeAll();
        auto& only = static_cast<TorvQDWhereRow&>(*items.front());
        m_group->Assign(only);
        moveRows(*only.SubRows, *m_group->SubRows);
    }

    TorvQDWhereRow* m_group;
    bool m_negate;
    bool m_joinsNots;
    TorvQDWhereRow* m_current = nullptr;
    TorvQDWhereRow* m_negation = nullptr;
    int m_connective = 0;  // 0 none yet, 1 AND, 2 OR
    bool m_pendingNot = false;
    bool m_filled = false;  // the current row has its condition
};

}  // namespace

TorvQDWhereRow* buildRows(const std::vector<ConditionElement>& elements, TorvQDWhereRow* group,
                          bool negate, bool joinsNots) {
    return RowBuilder(group, negate, joinsNots).read(elements);
}

}  // namespace orv
