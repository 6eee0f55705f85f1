// SPDX-License-Identifier: MIT
// Nothing dangles: boxes, links and the whole builder may go at any moment, whatever the user is
// just doing with them. Each moment of the one table is tried with each end of the other.
#include "contract/DiagramEvents.h"
#include "diagram/Orvqdlnkprop.h"
#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDrag>
#include <QDropEvent>
#include <QEventLoop>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

using orvtest::Host;
using orvtest::RecordedServices;

namespace {

void runLoopOnce() {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

/// In the event loop that runs next: the one, then the other from an event of its own.
void callInTurn(const std::function<void()>& first, const std::function<void()>& second) {
    QTimer::singleShot(0, qApp, [first, second] {
        first();
        QTimer::singleShot(0, qApp, second);
    });
}

/// A shown builder with the boxes T, U and WIDE; a link with a bend point goes from T to U. Box and
/// link are watched, and so is the builder, which may die before its scene.
class Scene {
public:
    Scene() : builder(new TorvQueryBuilder) {
        host.add("WIDE", {"W1", "W2", "W3", "W4", "W5", "W6", "W7", "W8", "W9"});
        host.attach(*builder);
        builder->resize(900, 700);
        TorvQDTable* wide = builder->ListOfTables->AddTable("WIDE", host.table("WIDE"));
        wide->MoveTable(0, 200);
        TorvQDTable* second = builder->ListOfTables->AddTable("U", host.table("U"));
        TorvQDTable* first = builder->ListOfTables->AddTable("T", host.table("T"));
        second->MoveTable(300, 0);
        box = first;
        link = area()->AddLink(first, second, first->GetFieldItem("A"), second->GetFieldItem("X"));
        link->setBendPoints({{300, 250}});
        builder->show();
        QCoreApplication::processEvents();
        area()->setFocus();
    }
    ~Scene() { delete builder; }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    [[nodiscard]] TorvQDWorkArea* area() const { return builder->WorkArea; }
    [[nodiscard]] QWidget* view() const { return area()->viewport(); }
    [[nodiscard]] TorvQDTable* table(const QString& alias) const {
        return builder->ListOfTables->tableByAlias(alias);
    }

    static QPoint centre(const TRect& rect) {
        return {(rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2};
    }
    static QPoint captionOf(const TorvQDTable& table) {
        return centre(table.toView(table.GetCaptionRect()));
    }
    static QPoint rowOf(const TorvQDTable& table, int row) {
        const TRect rect = table.GetItemRect(table.Items[std::size_t(row)].get());
        return {rect.Left + 40, (rect.Top + rect.Bottom) / 2};
    }
    /// Where `rowOf` finds no row scrolled away and no scroll bar.
    [[nodiscard]] QPoint middleOfLink() const {
        return (link->GetPoint(1) + link->GetPoint(2)) / 2;
    }

    // The mouse, wherever the builder still is.

    void press(const QPoint& point) { send(QEvent::MouseButtonPress, point, Qt::LeftButton); }
    void move(const QPoint& point, Qt::MouseButtons held = Qt::LeftButton) {
        if (!builder) return;
        QMouseEvent event(QEvent::MouseMove, point, view()->mapToGlobal(point), Qt::NoButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    void release(const QPoint& point) { send(QEvent::MouseButtonRelease, point, Qt::LeftButton); }
    void rightClick(const QPoint& point) {
        send(QEvent::MouseButtonPress, point, Qt::RightButton);
        send(QEvent::MouseButtonRelease, point, Qt::RightButton);
    }
    void wheel(const QPoint& point, int delta) {
        if (!builder) return;
        QWheelEvent event(point, view()->mapToGlobal(point), {}, {0, delta}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view(), &event);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             const QString& text = {}) {
        if (!builder) return;
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QCoreApplication::sendEvent(area(), &event);
    }
    void dragTo(QDrag& drag, const QPoint& point) {
        if (!builder) return;
        QDragEnterEvent event(point, Qt::CopyAction, drag.mimeData(), Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    void drop(QDrag& drag, const QPoint& point) {
        if (!builder) return;
        QDropEvent event(point, Qt::CopyAction, drag.mimeData(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    void fireTimers() {
        for (const int number :
             {TorvQDWorkArea::rowsUpTimer, TorvQDWorkArea::rowsDownTimer, TorvQDWorkArea::edgeTimer,
              TorvQDWorkArea::hintTimer, TorvQDWorkArea::hintEndTimer}) {
            if (builder && area()->isTimerActive(number)) area()->timerFired(number);
        }
    }

    /// The entry of a menu that the view shows, else of one that the object fills.
    void choose(TorvQDFloatObject& object, TTableHitTest hit, const QString& text) {
        QList<QMenu*> menus = area()->findChildren<QMenu*>();
        QMenu own;
        object.PopupMenu(own, 0, 0, hit);
        menus << &own;
        for (QMenu* menu : std::as_const(menus)) {
            const auto actions = menu->actions();
            const auto found = std::find_if(actions.begin(), actions.end(), [&](QAction* action) {
                return action->text() == text;
            });
            if (found != actions.end()) return (*found)->trigger();
        }
        QFAIL(qPrintable("no menu has " + text));
    }

    Host host;
    QPointer<TorvQueryBuilder> builder;
    QPointer<TorvQDTable> box;     // T
    QPointer<TorvQDLink> link;     // from T.A to U.X
    std::function<void()> strike;  // what ends one of them, once
    bool byTimer = false;

    /// Does it now, or from a timer of an event loop that runs here.
    void strikeNow() {
        if (!byTimer) return strike();
        QTimer::singleShot(0, qApp, strike);
        runLoopOnce();
        runLoopOnce();
    }

private:
    void send(QEvent::Type type, const QPoint& point, Qt::MouseButton button) {
        if (!builder) return;
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
        QMouseEvent event(type, point, view()->mapToGlobal(point), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
};

// --- ends ---

/// What goes, and how.
struct End {
    const char* name;
    enum What { Box, Link, Builder } what;
    bool comesByTimer;  // the user or a handler does the others
    void (*happen)(Scene& on);
};

void closeByMenu(Scene& on) {
    on.choose(*on.box, htTCaption, "Delete table");
}

void closeInAVeto(Scene& on) {
    on.builder->OnAddRemoveTable = [&on](QObject*, TorvQDTable* table, TAddRemove action, bool&) {
        if (action == araAdd && on.box && table != on.box) {
            on.builder->ListOfTables->DeleteTable(on.box);
        }
    };
    on.builder->ListOfTables->AddTable("DEPT", on.host.table("DEPT"));
    on.builder->OnAddRemoveTable = nullptr;
}

void closeInAVetoOfALink(Scene& on) {
    on.builder->OnAddRemoveLink = [&on](QObject*, TorvQDLink*, TAddRemove, bool&) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    TorvQDTable* wide = on.table("WIDE");
    on.area()->AddLink(on.box, wide, on.box->GetFieldItem("B"), wide->GetFieldItem("W1"));
    on.builder->OnAddRemoveLink = nullptr;
}

void closeInKeyDown(Scene& on) {
    on.area()->selectObject(on.box);
    if (!on.box) return;
    on.box->OnKeyDown = [&on](QObject*, int&, Qt::KeyboardModifiers) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.key(Qt::Key_Down);
}

void closeInMouseDown(Scene& on) {
    on.box->OnMouseDown = [&on](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->TableToFront(on.box);
    on.press(Scene::captionOf(*on.box));
}

void closeInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

// A modal box of the host, in whose event loop what was removed dies while the event goes on.
void closeAndWaitInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
        runLoopOnce();
        runLoopOnce();
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

void clear(Scene& on) {
    on.builder->Clear();
}

void load(Scene& on) {
    on.builder->LoadSQL("SELECT BUDGET FROM DEPT");
}

void restore(Scene& on) {
    orvtest::HostedBuilder other;
    other.addTable("T");
    other.tick("T", "C");
    on.builder->RestoreState(other.builder.SaveState());
}

void deleteTable(Scene& on) {
    on.builder->ListOfTables->DeleteTable(on.box);
}

void deleteLinkByMenu(Scene& on) {
    const auto old =
        orv::setMessageService([](const orv::MessageRequest&) { return orv::MessageAnswer::Yes; });
    on.choose(*on.link, htTClient, "Delete link");
    orv::setMessageService(old);
    QCoreApplication::sendPostedEvents(on.area(), CMDELETELINK);
}

void unlink(Scene& on) {
    on.box->UnlinkTable();
}

// The handler that is told of the link's end has the same link deleted once more.
void deleteLinkTwice(Scene& on) {
    on.area()->OnRemoveLink = [&on](QObject*, QObject* link) {
        on.area()->deleteLink(qobject_cast<TorvQDLink*>(link));
    };
    on.area()->deleteLink(on.link);
    on.area()->OnRemoveLink = nullptr;
}

void closeWhenDeselected(Scene& on) {
    if (!on.link) return deleteTable(on);
    on.area()->selectObject(on.link);
    on.area()->OnSelectionLink = [&on](QObject*, TorvQDTable*, TorvQDTable*, TorvQDListItem*,
                                       TorvQDListItem*, bool selected) {
        if (!selected && on.box) on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->selectObject(on.box);
    on.area()->OnSelectionLink = nullptr;
}

void deleteBuilder(Scene& on) {
    delete on.builder;
}

void deleteBuilderLater(Scene& on) {
    on.builder->deleteLater();
    QCoreApplication::sendPostedEvents(on.builder, QEvent::DeferredDelete);
}

void deleteBuilderInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->deleteLater();
        QCoreApplication::sendPostedEvents(on.builder, QEvent::DeferredDelete);
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

const End ends[] = {
    {"box closed by its menu", End::Box, true, closeByMenu},
    {"box closed in a veto", End::Box, false, closeInAVeto},
    {"box closed in a veto of a link", End::Box, false, closeInAVetoOfALink},
    {"box closed in OnKeyDown", End::Box, false, closeInKeyDown},
    {"box closed in OnMouseDown", End::Box, false, closeInMouseDown},
    {"box closed in OnMouseMove", End::Box, false, closeInMouseMove},
    {"box closed and dead in OnMouseMove", End::Box, false, closeAndWaitInMouseMove},
    {"box closed when a link is deselected", End::Box, false, closeWhenDeselected},
    {"box closed by DeleteTable", End::Box, true, deleteTable},
    {"all cleared", End::Box, true, clear},
    {"all replaced by LoadSQL", End::Box, true, load},
    {"all replaced by RestoreState", End::Box, true, restore},
    {"link deleted by its menu", End::Link, false, deleteLinkByMenu},
    {"link deleted by unlinking", End::Link, true, unlink},
    {"link deleted twice", End::Link, false, deleteLinkTwice},
    {"builder deleted", End::Builder, true, deleteBuilder},
    {"builder deleted later", End::Builder, true, deleteBuilderLater},
    {"builder deleted in OnMouseMove", End::Builder, false, deleteBuilderInMouseMove},
};

// --- moments ---

/// What the user is doing. It gets to the moment, lets the end come there, and goes on with what
/// there is no stopping of: the button is still down, the dialog still open.
struct Moment {
    const char* name;
    void (*live)(Scene& on, RecordedServices& services);
};

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

void answerDialog(const QPointer<TdlgLnkProp>& dialog) {
    if (!dialog) return;
    dialog->btnLeftOuter->setChecked(true);
    dialog->cbConditions->setCurrentIndex(2);
    dialog->btnOK->click();
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
};

}  // namespace

class LifetimeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void anythingMayGoAtAnyMoment_data() {
        QTest::addColumn<int>("moment");
        QTest::addColumn<int>("end");
        QTest::addColumn<bool>("byTimer");
        for (int moment = 0; moment < int(std::size(moments)); ++moment) {
            for (int end = 0; end < int(std::size(ends)); ++end) {
                const auto add = [&](const char* how, bool byTimer) {
                    QTest::addRow("%s: %s%s", moments[moment].name, ends[end].name, how)
                        << moment << end << byTimer;
                };
                add("", false);
                if (ends[end].comesByTimer) add(", by a timer", true);
            }
        }
    }
    void anythingMayGoAtAnyMoment() {
        QFETCH(int, moment);
        QFETCH(int, end);
        QFETCH(bool, byTimer);
        RecordedServices services;
        Scene on;
        on.byTimer = byTimer;
        const End& goes = ends[end];
        int strikes = 0;
        on.strike = [&] {
            ++strikes;
            goes.happen(on);
        };
        moments[moment].live(on, services);
        if (QTest::currentTestFailed()) return;
        QCOMPARE(strikes, 1);
        runLoopOnce();
        runLoopOnce();
        QCOMPARE(on.builder.isNull(), goes.what == End::Builder);
        QCOMPARE(services.errors, QStringList());
        if (goes.what == End::Box || goes.what == End::Builder) QVERIFY(!on.box);
        QVERIFY(!on.link);
        if (!on.builder) return;
        QVERIFY(!on.area()->isGesturing());
        verifyBuilder(*on.builder);
        verifyGoesOn(on);
    }

private:
    /// A box can be added, ticked and moved as ever.
    static void verifyGoesOn(Scene& on) {
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
        verifyBuilder(*on.builder);
    }

private Q_SLOTS:
    // --- several builders

    void dialogOfTheFirstBuilderOutlivesTheSecond() {
        RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        Scene first;
        {
            Scene second;
            QVERIFY(dlgLnkProp);
            QCOMPARE(dlgLnkProp->parent(), second.area());
        }
        QVERIFY(!dlgLnkProp);
        first.area()->editLink(first.link);
        QCOMPARE(first.link->Join->KindOfJoin, klLOuterJoin);
        QCOMPARE(first.link->Operator, 2);
        verifyBuilder(*first.builder);
    }

    void dialogOfTheSecondBuilderOutlivesTheFirst() {
        RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        auto first = std::make_unique<Scene>();
        Scene second;
        first.reset();
        QVERIFY(dlgLnkProp);
        second.area()->editLink(second.link);
        QCOMPARE(second.link->Join->KindOfJoin, klLOuterJoin);
        verifyBuilder(*second.builder);
    }

    void builderMayGoWhileTheDialogOfAnotherIsOpen_data() {
        QTest::addColumn<bool>("byTimer");
        QTest::newRow("at once") << false;
        QTest::newRow("by a timer") << true;
    }
    void builderMayGoWhileTheDialogOfAnotherIsOpen() {
        QFETCH(bool, byTimer);
        RecordedServices services;
        Scene first;
        Scene second;
        first.byTimer = byTimer;
        first.strike = [&] { delete second.builder; };
        services.onDialog = [&](QDialog& dialog) {
            first.strikeNow();
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        first.area()->editLink(first.link);
        QVERIFY(!second.builder);
        QCOMPARE(first.link->Join->KindOfJoin, klLOuterJoin);
        verifyBuilder(*first.builder);
    }

    void dialogWithoutALinkSaysSo() {
        Scene on;
        auto* dialog = on.area()->findChild<TdlgLnkProp*>();
        dialog->CurrentLnk = on.link;
        on.builder->Clear();
        runLoopOnce();
        runLoopOnce();
        QVERIFY(!dialog->CurrentLnk);
        dialog->btnOKClick();
        QCOMPARE(orvtest::errorOf([&] { dialog->FormShow(); }), QString("Invalid link"));
    }
};

QTEST_MAIN(LifetimeTest)
#include "tst_lifetime.moc"
