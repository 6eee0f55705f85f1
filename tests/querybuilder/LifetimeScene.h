// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QEventLoop>
#include <QMenu>
#include <QMimeData>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <functional>

class QUndoStack;

namespace orvtest {

/// Handles what is due in the event loop, such as the death of what was to be deleted later.
inline void runLoopOnce() {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

/// In the event loop that runs next: the one, then the other from an event of its own.
inline void callInTurn(const std::function<void()>& first, const std::function<void()>& second) {
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
    QUndoStack* undo = nullptr;    // of what is recorded, where that is done
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

}  // namespace orvtest
