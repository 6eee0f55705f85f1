// SPDX-License-Identifier: MIT
#pragma once

#include "meaning/Dice.h"
#include "querybuilder/ORVQDUndo.h"
#include "support/BuilderTools.h"
#include "support/PageHand.h"

#include <QHash>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QUndoStack>

#include <functional>
#include <vector>

class QDrag;
class QMenu;

namespace orvtest {

/// A user and a host who do one thing after the other to a builder, by chance: mouse, keys, menus,
/// drags, dialogs and calls, at the diagram and on the pages. The same seed makes the same session.
/// Events mostly aim at what is there. The timers of the diagram fire when the session says so,
/// never by the clock. Handlers of the host call the control in turn, refuse and raise, all of
/// which it has to live through.
class RandomSession : public QObject {
public:
    explicit RandomSession(quint32 seed);
    ~RandomSession() override;

    /// Does the next thing and returns which rule is broken now; empty for none.
    QString step();
    /// What the saved state does not bring back, or the loaded statement; empty for nothing.
    QString brokenState();
    /// The last events, one a line, each with its number.
    [[nodiscard]] QString lastEvents() const { return m_log.join(u'\n'); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Action {
        int weight;
        void (RandomSession::*run)();
    };
    struct Saved {
        QByteArray state;
        QSet<QString> loose;
    };

    // What happens.
    void press();
    void move();
    void release();
    void click();
    void doubleClick();
    void rightClick();
    void dragAbout();
    void wheel();
    void key();
    void letter();
    void rename();
    void keyboardMenu();
    void fireTimer();
    void loseFocus();
    void hideOrShow();
    void resize();
    static void addSessionTables(Host& host);
    void enterValue(TorvQDSProc& proc, TorvQDListItem* row);
    void addTable();
    void deleteTable();
    void clearAll();
    void load();
    void restore();
    void undo();
    void zoom();
    void arrangeOrFit();
    void changeOption();
    void tick();
    void changeGrid();
    void addLinks();
    void callBox();
    void keepMeaning();
    void foreignDrag();
    void usePages();
    void disturb();
    void disturbAtChange();
    void mayRaise();
    void beAwkward();
    void beAwkwardAtNotices();
    void watchMouseAndKeys(TorvQDFloatObject& object);

    // Hands and eyes.
    void note(const QString& text);
    [[nodiscard]] TorvQDWorkArea& area() const { return *m_on.builder.WorkArea; }
    [[nodiscard]] TorvQDTable* anyTable();
    [[nodiscard]] TorvQDLink* anyLink();
    [[nodiscard]] QPoint anyPoint();
    [[nodiscard]] QPoint pointOfBox(TorvQDTable& box);
    [[nodiscard]] QPoint pointOfLink(const TorvQDLink& link);
    [[nodiscard]] QPoint target();
    void send(QEvent::Type type, const QPoint& point, Qt::MouseButton button);
    void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text);
    void chooseFromMenu();
    void keepToMinimums();
    void answerHost();
    Qt::DropAction runDrag(QDrag& drag);
    void settle();
    [[nodiscard]] QString brokenGesture() const;
    /// The fields that have output columns, and whether one of them has an aggregate.
    [[nodiscard]] QHash<QString, bool> columnsOfFields();
    /// Sources that are no field of the diagram.
    [[nodiscard]] QSet<QString> unknownSources();
    void watchTicks(const QHash<QString, bool>& before, const QSet<QString>& unknown);
    void renameLoose(const QString& alias, const QString& old);
    [[nodiscard]] QString brokenWayBack(const QByteArray& saved) const;

    Dice m_dice;
    HostedBuilder m_on;
    QUndoStack m_undoStack;
    std::unique_ptr<orv::UndoRecorder> m_recorder;
    PageHand m_pages;
    RecordedServices m_services;
    orv::DragRunner m_oldDrags;
    orv::MessageService m_oldMessages;
    QStringList m_log;
    int m_count = 0;
    QPoint m_mouse;  // in coordinates of the viewport
    Qt::MouseButtons m_held;
    QPointer<QWidget> m_grabber;  // gets the mouse from press to release
    QString m_complaint;
    bool m_isSpoilt = false;  // all begins anew after this event
    QList<Saved> m_states;    // saved on the way
    QSet<QString> m_loose;    // fields whose tick and column need not agree
    QSet<QString> m_everLoose;
    int m_disturbances = 0;  // how often the host did something inside of an event
    bool m_isDisturbing = false;
    bool m_isQuiet = false;  // the host behaves for once
};

}  // namespace orvtest
