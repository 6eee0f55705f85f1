// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/LifetimeScene.h"
#include "support/PageRules.h"

#include <QScrollBar>

// What must be so after anything that has happened to the builder of a scene.
namespace orvtest {

/// All that the control shows agrees.
inline void verifyAgrees(TorvQueryBuilder& builder) {
    QCOMPARE(brokenRule(builder, aggregatedFields(builder)), QString());
    QCOMPARE(brokenPageRule(builder), QString());
}

/// A box can be added, ticked and moved as ever.
inline void verifyGoesOn(Scene& on) {
    on.area()->horizontalScrollBar()->setValue(0);
    on.area()->verticalScrollBar()->setValue(0);
    const auto columns = [&] { return on.builder->SelectPanel->grid()->columns().size(); };
    const std::size_t before = columns();
    TorvQDTable* added = on.builder->ListOfTables->AddTable("ORDERS", on.host.table("ORDERS"));
    QVERIFY(added);
    added->MoveTable(40 - added->Left, 60 - added->Top);
    const TRect row = added->GetItemRect(added->Items[0].get());
    on.press({row.Left + 5, row.Top + 8});
    on.release({row.Left + 5, row.Top + 8});
    QCOMPARE(columns(), before + 1);
    const QPoint caption = Scene::captionOf(*added);
    on.press(caption);
    on.move(caption + QPoint(10, 10));
    on.release(caption + QPoint(10, 10));
    QCOMPARE(added->Left, 50);
    on.view()->grab();
    verifyAgrees(*on.builder);
}

}  // namespace orvtest
