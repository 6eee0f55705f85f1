// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"

#include <QAbstractEventDispatcher>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace orvtest {

/// A shown builder with two boxes; T is in front and selected, U lies beside it. Mouse and wheel
/// work on the view of its diagram; points are those of the viewport.
class ShownBuilder : public HostedBuilder {
public:
    explicit ShownBuilder(bool keepMeaning = false) : HostedBuilder(keepMeaning) {
        host.add(QStringLiteral("WIDE"), {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"});
        builder.resize(800, 600);
        addTable(QStringLiteral("U"));
        addTable(QStringLiteral("T"));
        builder.show();
        QCoreApplication::processEvents();
        changes = 0;
    }

    [[nodiscard]] TorvQDWorkArea& area() const { return *builder.WorkArea; }
    [[nodiscard]] QWidget* view() const { return builder.WorkArea->viewport(); }
    [[nodiscard]] orv::ExitEdit* edit() const { return view()->findChild<orv::ExitEdit*>(); }
    void scrollTo(const QPoint& position) const {
        area().horizontalScrollBar()->setValue(position.x());
        area().verticalScrollBar()->setValue(position.y());
    }

    // --- rows and links

    [[nodiscard]] TorvQDListItem* row(const QString& alias, const QString& field) const {
        return table(alias)->GetFieldItem(field);
    }
    TorvQDLink* link(const QString& from, const QString& field1, const QString& to,
                     const QString& field2) const {
        return area().AddLink(table(from), table(to), row(from, field1), row(to, field2));
    }
    /// The links in the order of their creation, by what their hints say.
    [[nodiscard]] QStringList links() const {
        QStringList hints;
        for (const TorvQDLink* each : area().Links()) hints << each->GetHint();
        return hints;
    }

    /// The intervals of the diagram's running timers, in milliseconds.
    [[nodiscard]] QList<int> timerIntervals() const {
        QList<int> intervals;
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&area());
        for (const auto& timer : timers) intervals << timer.interval;
        return intervals;
    }

    /// The row on which something that is being dragged would be dropped.
    [[nodiscard]] TorvQDListItem* markedRow(const QString& alias) const {
        return table(alias)->DropItem;
    }

    // --- places

    static QPoint centre(const TRect& rect) {
        return {(rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2};
    }
    /// In view coordinates, which are those of the viewport while nothing is magnified.
    [[nodiscard]] QPoint captionOf(const QString& alias) const {
        const TorvQDTable* box = table(alias);
        return centre(box->toView(box->GetCaptionRect()));
    }
    [[nodiscard]] QPoint captionCheckOf(const QString& alias) const {
        const TorvQDTable* box = table(alias);
        return box->toView(box->GetBoundsRect()).toQRect().topLeft() + QPoint(8, 10);
    }
    [[nodiscard]] QPoint checkSquareOf(const QString& alias, const QString& field) const {
        const TRect rect = table(alias)->GetItemRect(row(alias, field));
        return {rect.Left + 5, rect.Top + 8};
    }
    [[nodiscard]] QPoint rowTextOf(const QString& alias, const QString& field) const {
        return checkSquareOf(alias, field) + QPoint(25, 0);
    }

    // --- the mouse

    void press(const QPoint& point) const { QTest::mousePress(view(), Qt::LeftButton, {}, point); }
    void release(const QPoint& point) const {
        QTest::mouseRelease(view(), Qt::LeftButton, {}, point);
    }
    void click(const QPoint& point) const { QTest::mouseClick(view(), Qt::LeftButton, {}, point); }
    /// As a real hand does it: press, release, double click, release.
    void doubleClick(const QPoint& point) const {
        click(point);
        QTest::mouseDClick(view(), Qt::LeftButton, {}, point);
        release(point);
    }
    void drag(const QPoint& from, const QPoint& by) const {
        press(from);
        moveTo(from + by / 2);
        moveTo(from + by);
        release(from + by);
    }
    void moveTo(const QPoint& point, Qt::MouseButtons held = Qt::LeftButton) const {
        QMouseEvent event(QEvent::MouseMove, point, view()->mapToGlobal(point), Qt::NoButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    void hover(const QPoint& point) const { moveTo(point, Qt::NoButton); }
    /// Turns the wheel by eighths of a degree; 120 of them make a notch.
    void wheel(const QPoint& point, int eighths, Qt::KeyboardModifiers modifiers = {}) const {
        QWheelEvent event(point, view()->mapToGlobal(point), {}, {0, eighths}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view(), &event);
    }
};

}  // namespace orvtest
