// SPDX-License-Identifier: MIT
// What the tables of ways share.
#include "querybuilder/FaultPaths.h"

#include <QMenu>

namespace orvtest {

void selectBox(Scene& on) {
    on.area()->selectObject(on.box);
}

void selectLink(Scene& on) {
    on.area()->selectObject(on.link);
}

void addDept(Scene& on) {
    on.builder->ListOfTables->AddTable("DEPT", on.host.table("DEPT"));
}

TorvQDLink* addLinkToWide(Scene& on) {
    TorvQDTable* wide = on.table("WIDE");
    return on.area()->AddLink(on.box, wide, on.box->GetFieldItem("B"), wide->GetFieldItem("W2"));
}

void chooseFromMenu(Scene& on, const QPoint& point, const QString& text) {
    on.rightClick(point);
    const QPointer<QMenu> menu(on.area()->findChild<QMenu*>());
    QVERIFY(menu);
    const QList<QAction*> actions = menu->actions();
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&](const QAction* each) { return each->text() == text; });
    QVERIFY(found != actions.end());
    (*found)->trigger();
    if (menu) menu->close();
}

void armStatementChanged(Scene& on, RecordedServices&, const Strike& strike) {
    QObject::connect(on.builder, &TorvQueryBuilder::StatementChanged, on.builder,
                     [strike = Strike(strike)] { strike(nullptr); });
}

void armMessage(Scene&, RecordedServices&, const Strike& strike) {
    orv::setMessageService([strike](const orv::MessageRequest& request) {
        strike(nullptr);
        return request.buttons == orv::MessageButtons::Ok ? orv::MessageAnswer::Ok
                                                          : orv::MessageAnswer::Yes;
    });
}

}  // namespace orvtest
