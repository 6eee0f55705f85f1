// SPDX-License-Identifier: MIT
#include "workarea/ORVQDKeptPlaces.h"

#include "core/Text.h"
#include "workarea/ORVQDFloatPanel.h"

#include <algorithm>

namespace orv {

KeptPlaces::KeptPlaces(const TorvQDWorkArea& area) {
    for (const TorvQDTable* table : area.tablesByCreation()) {
        m_boxes.insert(keyOf(table->GetAlias()), {table->TableName, int(table->Items.size()),
                                                  table->shape(), table->Expanded != 0});
    }
    for (const TorvQDLink* link : area.Links()) {
        if (!link->bendPoints().empty()) m_bends.insert(keyOf(*link), link->bendPoints());
    }
}

// Loading writes an alias in upper case.
QString KeptPlaces::keyOf(const QString& alias) {
    return unquotedName(alias).toUpper();
}

// What a link compares, without its operator: its line stays when that is changed.
QString KeptPlaces::keyOf(const TorvQDLink& link) {
    return keyOf(link.Join->Table1->GetAlias()) + u'.' + link.Item1->Name + u' ' +
           keyOf(link.Join->Table2->GetAlias()) + u'.' + link.Item2->Name;
}

const KeptPlaces::Box* KeptPlaces::find(const TorvQDTable& table) const {
    const auto found = m_boxes.constFind(keyOf(table.GetAlias()));
    const bool isSame = found != m_boxes.constEnd() &&
                        found->tableName.compare(table.TableName, Qt::CaseInsensitive) == 0;
    return isSame ? &*found : nullptr;
}

bool KeptPlaces::keepsAny(const TorvQDWorkArea& area) const {
    const std::vector<TorvQDTable*>& tables = area.tablesByCreation();
    return std::any_of(tables.begin(), tables.end(),
                       [&](const TorvQDTable* table) { return find(*table); });
}

void KeptPlaces::apply(TorvQDWorkArea& area) const {
    if (!keepsAny(area)) return;
    std::vector<TorvQDTable*> added;
    for (TorvQDTable* table : area.tablesByCreation()) {
        const Box* box = find(*table);
        if (!box) {
            added.push_back(table);
            continue;
        }
        TorvQDTable::Shape shape = box->shape;
        if (box->rowCount != int(table->Items.size())) {
            shape = table->shape();
            shape.left = box->shape.left;
            shape.top = box->shape.top;
            shape.width = box->shape.width;
        }
        table->setShape(shape);
        if (!box->expanded) table->SetExpand(0);
    }
    area.placeAgain(added);
    for (TorvQDLink* link : area.Links()) {
        const auto bends = m_bends.constFind(keyOf(*link));
        if (bends != m_bends.constEnd()) link->setBendPoints(*bends);
    }
}

}  // namespace orv
