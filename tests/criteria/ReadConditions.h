// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionMeaning.h"
#include "criteria/ORVQDRowBuilder.h"
#include "criteria/RowTools.h"

#include <algorithm>

namespace orvtest {

/// A root row that conditions are read into.
class ReadConditions {
public:
    ReadConditions() : rows(&catalogues, nullptr) {
        orv::fillOperators(operators);
        orv::fillGroupOperators(groups, nullptr);
        root = rows.AddRow();
        root->SetGroupOper("All");
    }

    QString read(const QString& text) {
        root->SubRows->Clear();
        root->SetGroupOper("All");
        const orv::SqlTokens tokens = orv::tokenise(text);
        const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
        const orv::ConditionRules rules{&operators, functions.isEmpty() ? nullptr : &functions,
                                        andBindsTighter};
        const auto elements = orv::readConditions(run, rules);
        groupsExpected = orv::groupsBelow(elements, nots);
        groupsAtMost = orv::mostGroupsBelow(run);
        orv::buildRows(elements, root, false, nots);
        return orvtest::rowText(*root);
    }
    [[nodiscard]] QString written() const { return root->GetSQLCondition(true).simplified(); }
    /// The groups below the root, one inside the other.
    [[nodiscard]] int groupsBelowRoot() const { return deepest(*root) - 1; }

    TOperatorList operators;
    TGroupOperators groups;
    QStringList functions;
    bool andBindsTighter = false;
    orv::Nots nots = orv::Nots::Nest;
    orv::ConditionContext catalogues{&operators, &groups};
    TorvQDWhereRows rows;
    TorvQDWhereRow* root;
    int groupsExpected = 0;
    int groupsAtMost = 0;

private:
    static int deepest(const TorvQDWhereRow& row) {
        int below = 0;
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            below = std::max(below, deepest(*row.SubRows->Row(index)));
        }
        return below + (row.isGroup() ? 1 : 0);
    }
};

}  // namespace orvtest
