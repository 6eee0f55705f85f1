// SPDX-License-Identifier: MIT
#include "querybuilder/LifetimeMoments.h"

#include "diagram/Orvqdlnkprop.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDFieldSearch.h"

#include <QCheckBox>
#include <QComboBox>
#include <QMessageBox>
#include <QPushButton>

#include <vector>

namespace orvtest {

namespace {

void goOnDragging(Scene& on, const QPoint& at) {
    on.strikeNow();
    on.fireTimers();
    on.move(at + QPoint(30, 30));
    on.move(at + QPoint(60, 10));
    on.release(at + QPoint(60, 10));
}

void movingTheBox(Scene& on, RecordedServices&) {
    const QPoint at = Scene::captionOf(*on.box);
    on.press(at);
    on.move(at + QPoint(20, 20));
    QVERIFY(on.area()->isGesturing());
    goOnDragging(on, at);
}

void sizingTheBox(Scene& on, RecordedServices&) {
    const TRect bounds = on.box->toView(on.box->GetBoundsRect());
    const QPoint at(bounds.Right - 1, bounds.Bottom - 1);
    on.press(at);
    on.move(at + QPoint(20, 20));
    QVERIFY(on.area()->isGesturing());
    goOnDragging(on, at);
}

void pressingTheCloseButton(Scene& on, RecordedServices&) {
    const TRect buttons = on.box->toView(on.box->GetButtonRect());
    const QPoint at(buttons.Right - 5, (buttons.Top + buttons.Bottom) / 2);
    on.press(at);
    QCOMPARE(on.box->PressedButton, 2);
    on.strikeNow();
    on.release(at);
}

void movingABend(Scene& on, RecordedServices&) {
    on.area()->selectObject(on.link);
    const QPoint at = on.link->GetPoint(2);
    on.press(at);
    on.move(at + QPoint(20, 20));
    QVERIFY(on.link->isBendDragged());
    goOnDragging(on, at);
}

void movingAnEnd(Scene& on, RecordedServices&) {
    on.area()->selectObject(on.link);
    const QPoint at = on.link->GetPoint(on.link->GetCountPoints() - 1) - QPoint(2, 0);
    on.press(at);
    on.move(at - QPoint(20, 20));
    QVERIFY(on.link && on.link->isEndDragged());
    const QPoint target = Scene::rowOf(*on.table("WIDE"), 1);
    on.move(target);
    on.strikeNow();
    on.fireTimers();
    on.move(target + QPoint(0, 1));
    on.release(target);
}

void atTheEdgeOfTheView(Scene& on, RecordedServices&) {
    const QPoint at = Scene::captionOf(*on.box);
    on.press(at);
    on.move(at + QPoint(20, 20));
    const QPoint edge(on.view()->width() - 2, on.view()->height() - 2);
    on.move(edge);
    QVERIFY(on.area()->isTimerActive(TorvQDWorkArea::edgeTimer));
    on.area()->timerFired(TorvQDWorkArea::edgeTimer);
    on.strikeNow();
    // With the box the reason to scroll is gone, though the button is still held.
    if (on.builder && !on.area()->isGesturing()) {
        QVERIFY(!on.area()->isTimerActive(TorvQDWorkArea::edgeTimer));
    }
    on.fireTimers();
    on.move(edge - QPoint(1, 1));
    on.release(edge);
}

// Drags the row T.B, and has the rest done inside of the drag.
void dragRow(Scene& on, const std::function<void(QDrag&)>& hand) {
    int drags = 0;
    const auto old = orv::setDragRunner([&](QDrag& drag) {
        ++drags;
        const QPointer<QDrag> running(&drag);
        hand(drag);
        return running ? Qt::CopyAction : Qt::IgnoreAction;
    });
    const QPoint at = Scene::rowOf(*on.box, 1);
    on.press(at);
    on.move(at + QPoint(15, 5));
    on.release(at + QPoint(15, 5));
    orv::setDragRunner(old);
    QCOMPARE(drags, 1);
}

void draggingARow(Scene& on, RecordedServices&) {
    const QPoint target = Scene::rowOf(*on.table("WIDE"), 2);
    dragRow(on, [&](QDrag& drag) {
        on.dragTo(drag, target);
        QVERIFY(on.table("WIDE")->DropItem);
        on.strikeNow();
        on.dragTo(drag, target + QPoint(0, 1));
        on.drop(drag, target);
    });
}

// The box that goes is the one below the drag.
void draggingARowOverTheBox(Scene& on, RecordedServices&) {
    TorvQDTable* wide = on.table("WIDE");
    const auto old = orv::setDragRunner([&](QDrag& drag) {
        const QPoint target = Scene::rowOf(*on.box, 2);
        on.dragTo(drag, target);
        Q_ASSERT(on.box->DropItem);
        on.strikeNow();
        on.dragTo(drag, target + QPoint(0, 1));
        on.drop(drag, target);
        return Qt::CopyAction;
    });
    const QPoint at = Scene::rowOf(*wide, 1);
    on.press(at);
    on.move(at + QPoint(15, 5));
    on.release(at + QPoint(15, 5));
    orv::setDragRunner(old);
}

// Dropped before the end comes: the link is made when the drag is over.
void droppingARow(Scene& on, RecordedServices&) {
    const QPoint target = Scene::rowOf(*on.table("WIDE"), 2);
    dragRow(on, [&](QDrag& drag) {
        on.dragTo(drag, target);
        on.drop(drag, target);
        on.strikeNow();
    });
}

void rowsScrollingUnderADrag(Scene& on, RecordedServices&) {
    TorvQDTable* wide = on.table("WIDE");
    const TRect list = wide->toView(wide->GetClientRect());
    const QPoint target((list.Left + list.Right) / 2, list.Bottom - 2);
    dragRow(on, [&](QDrag& drag) {
        on.dragTo(drag, target);
        QVERIFY(on.area()->isTimerActive(TorvQDWorkArea::rowsDownTimer));
        on.area()->timerFired(TorvQDWorkArea::rowsDownTimer);
        on.strikeNow();
        on.fireTimers();
        on.dragTo(drag, target);
        on.fireTimers();
        on.drop(drag, target);
    });
    if (!on.builder) return;
    QVERIFY(!on.area()->isTimerActive(TorvQDWorkArea::rowsDownTimer));
}

void scrollingRowsByWheel(Scene& on, RecordedServices&) {
    on.box->SetHeight(on.box->CaptionHeight + 60);
    on.area()->selectObject(on.box);
    const QPoint at = Scene::rowOf(*on.box, 1);
    on.wheel(at, -160);
    QVERIFY(on.box->FirstVisibleItem > 0);
    on.strikeNow();
    on.wheel(at, -160);
    on.wheel(at, 320);
}

void waitingForAHint(Scene& on, RecordedServices&) {
    on.move(Scene::captionOf(*on.box), Qt::NoButton);
    QCOMPARE(on.area()->hotObject(), on.box);
    QVERIFY(on.area()->isTimerActive(TorvQDWorkArea::hintTimer));
    on.strikeNow();
    on.fireTimers();
}

void waitingForAHintOfTheLink(Scene& on, RecordedServices&) {
    on.move(on.middleOfLink(), Qt::NoButton);
    QCOMPARE(on.area()->hotObject(), on.link);
    on.strikeNow();
    on.fireTimers();
}

void seeingAHint(Scene& on, RecordedServices&) {
    on.move(Scene::captionOf(*on.box), Qt::NoButton);
    on.area()->timerFired(TorvQDWorkArea::hintTimer);
    QVERIFY(on.area()->isTimerActive(TorvQDWorkArea::hintEndTimer));
    on.strikeNow();
    on.fireTimers();
}

void editingTheAlias(Scene& on, RecordedServices&) {
    on.area()->selectObject(on.box);
    on.key(Qt::Key_F2);
    const QPointer<orv::ExitEdit> edit = on.view()->findChild<orv::ExitEdit*>();
    QVERIFY(edit && !edit->isHidden());
    edit->setText("OTHER");
    on.strikeNow();
    if (edit) QTest::keyClick(edit, Qt::Key_Return);
}

void searchingARow(Scene& on, RecordedServices&) {
    on.area()->selectObject(on.box);
    on.key(Qt::Key_C, {}, "c");
    const QPointer<TEditEx> edit = on.view()->findChild<TEditEx*>();
    QVERIFY(edit && !edit->isHidden());
    on.strikeNow();
    if (edit) QTest::keyClick(edit, Qt::Key_D);
    if (edit) QTest::keyClick(edit, Qt::Key_Down);
    if (edit) QTest::keyClick(edit, Qt::Key_Return);
}

void editingTheLink(Scene& on, RecordedServices& services) {
    services.onDialog = [&](QDialog& shown) {
        const QPointer<TdlgLnkProp> dialog(qobject_cast<TdlgLnkProp*>(&shown));
        if (!on.byTimer) {
            on.strike();
            answerDialog(dialog);
            return int(QDialog::Accepted);
        }
        callInTurn(on.strike, [dialog] { answerDialog(dialog); });
        return shown.exec();
    };
    on.area()->selectObject(on.link);
    on.key(Qt::Key_F2);
    QCOMPARE(services.dialogs.size(), 1);
}

void editingTheLinkByDoubleClick(Scene& on, RecordedServices& services) {
    services.onDialog = [&](QDialog& shown) {
        const QPointer<TdlgLnkProp> dialog(qobject_cast<TdlgLnkProp*>(&shown));
        on.strikeNow();
        answerDialog(dialog);
        return int(QDialog::Accepted);
    };
    const QPoint at = on.middleOfLink();
    QTest::mouseClick(on.view(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(on.view(), Qt::LeftButton, {}, at);
    QCOMPARE(services.dialogs.size(), 1);
    on.release(at);
}

void beingAskedAboutTheLink(Scene& on, RecordedServices&) {
    const auto old = orv::setMessageService([&](const orv::MessageRequest&) {
        on.strikeNow();
        return orv::MessageAnswer::Yes;
    });
    on.area()->selectObject(on.link);
    on.key(Qt::Key_Delete);
    orv::setMessageService(old);
}

// The real message box, which belongs to the view.
void beingAskedByAMessageBox(Scene& on, RecordedServices&) {
    const auto old = orv::setMessageService({});
    on.area()->selectObject(on.link);
    bool wasShown = false;
    const auto answer = [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box) box->button(QMessageBox::Yes)->click();
    };
    const auto strike = [&] {
        wasShown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        on.strike();
    };
    callInTurn(strike, answer);
    on.key(Qt::Key_Delete);
    orv::setMessageService(old);
    QVERIFY(wasShown);
}

void seeingTheMenuOfTheBox(Scene& on, RecordedServices&) {
    on.rightClick(Scene::captionOf(*on.box));
    const QPointer<QMenu> menu = on.area()->findChild<QMenu*>();
    QVERIFY(menu);
    on.strikeNow();
    if (menu) menu->actions().constLast()->trigger();
    if (menu) menu->close();
}

void seeingTheMenuOfTheLink(Scene& on, RecordedServices&) {
    on.rightClick(on.middleOfLink());
    const QPointer<QMenu> menu = on.area()->findChild<QMenu*>();
    QVERIFY(menu);
    on.strikeNow();
    if (menu) menu->actions().constFirst()->trigger();
    if (menu) menu->actions().constLast()->trigger();
    if (menu) menu->close();
}

void linkingByKeys(Scene& on, RecordedServices&) {
    on.area()->selectObject(on.box);
    on.key(Qt::Key_Down);
    on.key(Qt::Key_Insert);
    on.strikeNow();
    on.key(Qt::Key_PageDown, Qt::ControlModifier);
    on.key(Qt::Key_Down);
    on.key(Qt::Key_Insert);
}

void havingAskedToDeleteTheLink(Scene& on, RecordedServices&) {
    on.area()->postDeleteLink(on.link);
    on.strikeNow();
}

void openingTheCaptionByDoubleClick(Scene& on, RecordedServices&) {
    const QPoint at = Scene::captionOf(*on.box);
    QTest::mouseClick(on.view(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(on.view(), Qt::LeftButton, {}, at);
    on.strikeNow();
    on.release(at);
}

void panning(Scene& on, RecordedServices&) {
    const QPoint at(5, 5);
    QTest::mousePress(on.view(), Qt::MiddleButton, {}, at);
    on.move(at + QPoint(9, 9), Qt::MiddleButton);
    on.strikeNow();
    on.move(at + QPoint(19, 9), Qt::MiddleButton);
    if (on.builder) QTest::mouseRelease(on.view(), Qt::MiddleButton, {}, at);
}

// Puts a procedure where T was, whose parameter the host is asked for while it all happens. The
// host goes on with the box when that is still there.
void enterParameter(Scene& on, const std::function<void(TorvQDSProc&)>& begin) {
    on.host.addProc("P", {"A", "B"}, TParams({{"X", ftInteger, ptInput}}));
    const QPointer<TorvQDSProc> proc = qobject_cast<TorvQDSProc*>(
        on.builder->ListOfTables->AddProc("P", on.host.table("P"), on.host.params("P")));
    TorvQDTable* second = on.table("U");
    on.area()->RemoveLink(on.link, true);
    on.builder->ListOfTables->DeleteTable(on.box);
    proc->MoveTable(50 - proc->Left, 20 - proc->Top);
    on.box = proc;
    on.link = on.area()->AddLink(proc, second, proc->GetFieldItem("A"), second->GetFieldItem("X"));
    on.builder->OnEnterProcParameter = [&on, proc](QObject*, TorvQDTable*, TorvQDListItem* row) {
        on.strikeNow();
        if (proc) proc->setParameter(row, 5);
    };
    begin(*proc);
    if (on.builder) on.builder->OnEnterProcParameter = nullptr;
}

void enteringAParameterByDoubleClick(Scene& on, RecordedServices&) {
    enterParameter(on, [&](TorvQDSProc& proc) {
        const QPoint at = Scene::rowOf(proc, 2);
        on.press(at);
        on.release(at);
        QTest::mouseDClick(on.view(), Qt::LeftButton, {}, at);
        on.move(at + QPoint(5, 5), Qt::NoButton);
    });
}

void enteringAParameterByKey(Scene& on, RecordedServices&) {
    enterParameter(on, [&](TorvQDSProc& proc) {
        on.area()->selectObject(&proc);
        proc.SetCurrentItem(proc.Items.back().get());
        on.key(Qt::Key_Space, {}, " ");
        on.key(Qt::Key_Down);
    });
}

const Moment moments[] = {
    {"moving the box", movingTheBox},
    {"sizing the box", sizingTheBox},
    {"pressing its close button", pressingTheCloseButton},
    {"moving a bend point", movingABend},
    {"moving an end of the link", movingAnEnd},
    {"moving the box at the edge of the view", atTheEdgeOfTheView},
    {"dragging a row", draggingARow},
    {"dragging a row over the box", draggingARowOverTheBox},
    {"having dropped a row", droppingARow},
    {"rows scrolling under a drag", rowsScrollingUnderADrag},
    {"scrolling rows by wheel", scrollingRowsByWheel},
    {"waiting for a hint", waitingForAHint},
    {"waiting for a hint of the link", waitingForAHintOfTheLink},
    {"seeing a hint", seeingAHint},
    {"editing the alias", editingTheAlias},
    {"searching a row", searchingARow},
    {"editing the link", editingTheLink},
    {"editing the link by double click", editingTheLinkByDoubleClick},
    {"being asked about the link", beingAskedAboutTheLink},
    {"being asked by a message box", beingAskedByAMessageBox},
    {"seeing the menu of the box", seeingTheMenuOfTheBox},
    {"seeing the menu of the link", seeingTheMenuOfTheLink},
    {"linking by keys", linkingByKeys},
    {"having asked to delete the link", havingAskedToDeleteTheLink},
    {"renaming by double click", openingTheCaptionByDoubleClick},
    {"panning", panning},
    {"entering a parameter by double click", enteringAParameterByDoubleClick},
    {"entering a parameter by key", enteringAParameterByKey},
};

}  // namespace

std::span<const Moment> allMoments() {
    static const std::vector<Moment> all = [] {
        std::vector<Moment> both(std::begin(moments), std::end(moments));
        const std::span<const Moment> pages = pageMoments();
        both.insert(both.end(), pages.begin(), pages.end());
        return both;
    }();
    return all;
}

void answerDialog(const QPointer<TdlgLnkProp>& dialog) {
    if (!dialog) return;
    dialog->btnLeftOuter->setChecked(true);
    dialog->cbConditions->setCurrentIndex(2);
    dialog->btnOK->click();
}

}  // namespace orvtest
