// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <algorithm>

namespace orvtest {

/// A diagram with boxes, and what it told of its links.
class LinkedBuilder : public HostedBuilder {
public:
    explicit LinkedBuilder(const QStringList& tables, bool keepMeaning = false)
        : HostedBuilder(keepMeaning) {
        for (const QString& name : tables) addTable(name);
        area().OnAddLink = [this](QObject* sender, QObject* link) {
            if (sender == &area()) told << "+" + hintOf(link);
        };
        area().OnRemoveLink = [this](QObject* sender, QObject* link) {
            if (sender == &area()) told << "-" + hintOf(link);
        };
        builder.OnAddRemoveLink = [this](QObject* sender, TorvQDLink* link, TAddRemove action,
                                         bool& can) {
            if (sender == &builder) asked << (action == araAdd ? "+" : "-") + link->GetHint();
            can = allows;
        };
        changes = 0;
    }

    [[nodiscard]] TorvQDWorkArea& area() const { return *builder.WorkArea; }
    [[nodiscard]] TorvQDListItem* row(const QString& alias, const QString& field) const {
        return table(alias)->GetFieldItem(field);
    }
    TorvQDLink* link(const QString& from, const QString& field1, const QString& to,
                     const QString& field2) {
        return area().AddLink(table(from), table(to), row(from, field1), row(to, field2));
    }
    [[nodiscard]] QStringList links() const {
        QStringList hints;
        for (const TorvQDLink* each : area().Links()) hints << each->GetHint();
        return hints;
    }
    [[nodiscard]] QStringList joins() const {
        QStringList pairs;
        for (const TorvQDJoin* each : area().Joins()) {
            pairs << each->GetTable(0)->GetAlias() + "-" + each->GetTable(1)->GetAlias();
        }
        return pairs;
    }
    static QString hintOf(QObject* link) { return qobject_cast<TorvQDLink*>(link)->GetHint(); }

    QStringList told;
    QStringList asked;
    bool allows = true;
};

/// What holds between joins and links whatever happened.
inline QString brokenLinkRule(const TorvQDWorkArea& area) {
    QList<const TorvQDLink*> joined;
    for (const TorvQDJoin* join : area.Joins()) {
        if (area.linksOf(join).empty()) return "a join has no link";
        for (const TorvQDLink* link : area.linksOf(join)) {
            if (link->Join != join) return "a link belongs to another join";
            if (link->Item1->Table != join->Table1) return "the first row is not of the first box";
            if (link->Item2->Table != join->Table2) return "the second row is not of the second";
            joined << link;
        }
        for (const TorvQDTable* box : {join->Table1, join->Table2}) {
            const auto& boxes = area.tablesByCreation();
            if (std::count(boxes.begin(), boxes.end(), box) != 1) return "a join has no box";
        }
        bool reversed = true;
        if (area.FindJoin(join->Table1, join->Table2, reversed) != join || reversed) {
            return "a join is not found";
        }
    }
    if (joined.size() != qsizetype(area.Links().size())) return "a link has no join";
    return {};
}

}  // namespace orvtest

#define verifyLinks(on) QCOMPARE(orvtest::brokenLinkRule((on).area()), QString())
