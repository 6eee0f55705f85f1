// SPDX-License-Identifier: MIT
#include "support/RandomSession.h"

#include "diagram/Orvqdlnkprop.h"
#include "support/PageRules.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScopeGuard>
#include <QScrollBar>
#include <QWheelEvent>

namespace orvtest {

namespace {

constexpr int loggedEvents = 20;
constexpr int undoLimit = 20;
constexpr int mostPicturePx = 2000;

QString textOf(const QPoint& point) {
    return QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
}

}  // namespace

RandomSession::RandomSession(quint32 seed)
    : m_dice(seed),
      m_pages({m_dice, m_on, m_disturbances, [this](const QString& text) { note(text); },
               [this] { disturb(); }}) {
    addSessionTables(m_on.host);
    m_on.builder.OnEnterProcParameter = [this](QObject*, TorvQDTable* table, TorvQDListItem* row) {
        const QPointer<TorvQDTable> box(table);
        const int version = table->rowsVersion();
        if (m_dice.chance(10)) disturb();
        mayRaise();
        auto* proc = qobject_cast<TorvQDSProc*>(box.data());
        if (proc && proc->rowsVersion() == version) enterValue(*proc, row);
    };
    m_on.builder.OnAddRemoveTable = [this](QObject*, TorvQDTable*, TAddRemove, bool& allowed) {
        answerHost();
        allowed = !m_dice.chance(10);
    };
    m_on.builder.OnAddRemoveLink = [this](QObject*, TorvQDLink*, TAddRemove, bool& allowed) {
        answerHost();
        allowed = !m_dice.chance(10);
    };
    m_on.builder.OnDragOver = [this](QObject*, QObject*, int, int, bool& accept) {
        accept = m_dice.chance(70);
        beAwkward();
    };
    m_on.builder.OnDragDrop = [this](QObject*, QObject*, int, int) {
        beAwkward();
        addTable();
    };
    m_on.builder.OnStartDrag = [this](QObject*, const orv::DraggedField&) { beAwkward(); };
    m_on.builder.OnEndDrag = [this](QObject*, QObject*, int, int) { beAwkward(); };
    m_services.onDialog = [this](QDialog& dialog) {
        const QPointer<QDialog> shown(&dialog);
        beAwkward();
        if (!shown) return int(QDialog::Rejected);
        auto* properties = qobject_cast<TdlgLnkProp*>(&dialog);
        if (!properties || m_dice.chance(30)) return int(QDialog::Rejected);
        if (m_dice.chance(10)) clearAll();
        properties->btnLeftOuter->setChecked(m_dice.chance(50));
        properties->btnRightOuter->setChecked(m_dice.chance(50));
        properties->cbConditions->setCurrentIndex(m_dice.below(properties->cbConditions->count()));
        properties->btnOKClick();
        return int(QDialog::Accepted);
    };
    m_oldMessages = orv::setMessageService([this](const orv::MessageRequest& request) {
        if (m_dice.chance(5)) disturb();
        mayRaise();
        if (request.buttons == orv::MessageButtons::Ok) return orv::MessageAnswer::Ok;
        if (m_dice.chance(10)) disturb();
        return m_dice.chance(70) ? orv::MessageAnswer::Yes : orv::MessageAnswer::No;
    });
    m_oldDrags = orv::setDragRunner([this](QDrag& drag) { return runDrag(drag); });
    // Renaming also takes the names of other boxes that begin or end alike, and an alias that is
    // taken only without its full stops is not refused: the parts of the control need not agree
    // from then on.
    area().OnChangeAlias = [this, handler = area().OnChangeAlias](QObject* table,
                                                                  const QString& old) {
        handler(table, old);
        const QString alias = qobject_cast<TorvQDTable*>(table)->GetAlias();
        renameLoose(alias, old);
        for (const TorvQDTable* box : area().tablesByCreation()) {
            if (box == table) continue;
            const bool isAlike = box->GetAlias().startsWith(old) || box->GetAlias().endsWith(old);
            if (isAlike || box->GetAlias() == alias) m_isSpoilt = true;
        }
    };
    // One of several equal columns that goes takes the tick along.
    m_on.grid()->OnFieldRemoved = [this, tell = m_on.grid()->OnFieldRemoved](const QString& name) {
        tell(name);
        const std::optional<PageField> field = m_on.builder.resolveField(name);
        if (field && columnsOfFields().contains(field->qualifiedName())) {
            m_loose.insert(field->qualifiedName());
        }
    };
    area().installEventFilter(this);
    beAwkwardAtNotices();
    m_undoStack.setUndoLimit(undoLimit);
    m_recorder = std::make_unique<orv::UndoRecorder>(&m_on.builder, &m_undoStack);
    QObject::connect(&m_on.builder, &TorvQueryBuilder::StatementChanged, this,
                     [this] { disturbAtChange(); });
    QObject::connect(&m_on.builder, &TorvQueryBuilder::LayoutChanged, this,
                     [this] { disturbAtChange(); });
    QObject::connect(&m_on.builder, &TorvQueryBuilder::LoadReported, this,
                     [this] { disturbAtChange(); });
    m_on.builder.resize(900, 650);
    m_on.builder.setTabsHeight(220);
    m_on.builder.show();
    QCoreApplication::processEvents();
    area().setFocus();
}

RandomSession::~RandomSession() {
    orv::setDragRunner(m_oldDrags);
    orv::setMessageService(m_oldMessages);
}

// The clock must not have a say in what happens.
bool RandomSession::eventFilter(QObject* watched, QEvent* event) {
    return event->type() == QEvent::Timer || QObject::eventFilter(watched, event);
}

void RandomSession::note(const QString& text) {
    m_log << QStringLiteral("%1: %2").arg(m_count).arg(text);
    while (m_log.size() > loggedEvents) m_log.removeFirst();
}

QString RandomSession::step() {
    using Session = RandomSession;
    static const Action actions[] = {
        {10, &Session::press},     {20, &Session::move},        {12, &Session::release},
        {14, &Session::click},     {6, &Session::doubleClick},  {6, &Session::rightClick},
        {12, &Session::dragAbout}, {5, &Session::wheel},        {14, &Session::key},
        {4, &Session::letter},     {4, &Session::rename},       {2, &Session::keyboardMenu},
        {6, &Session::fireTimer},  {2, &Session::loseFocus},    {1, &Session::hideOrShow},
        {1, &Session::resize},     {8, &Session::addTable},     {2, &Session::deleteTable},
        {1, &Session::clearAll},   {2, &Session::load},         {1, &Session::restore},
        {3, &Session::zoom},       {1, &Session::arrangeOrFit}, {2, &Session::changeOption},
        {4, &Session::tick},       {3, &Session::changeGrid},   {6, &Session::addLinks},
        {3, &Session::callBox},    {1, &Session::keepMeaning},  {1, &Session::foreignDrag},
        {2, &Session::undo},       {150, &Session::usePages},
    };
    int sum = 0;
    for (const Action& action : actions) sum += action.weight;
    int chosen = m_dice.below(sum);
    const Action* action = actions;
    while (chosen >= action->weight) chosen -= (action++)->weight;
    ++m_count;
    m_services.errors.clear();
    const QHash<QString, bool> before = columnsOfFields();
    const QSet<QString> unknown = unknownSources();
    const QString error = anyErrorOf([&] { (this->*action->run)(); });
    if (error != "(no error)") note("  raised: " + error);
    for (const QString& text : std::as_const(m_services.errors)) note("  error: " + text);
    settle();
    m_everLoose += m_loose;
    if (std::exchange(m_isSpoilt, false)) {
        m_isQuiet = true;
        clearAll();
        m_recorder->reset();
        m_isQuiet = false;
    }
    if (!m_complaint.isEmpty()) return m_complaint;
    if (!m_pages.complaint().isEmpty()) return m_pages.complaint();
    watchTicks(before, unknown);
    QString broken = brokenRule(m_on.builder, m_loose);
    if (broken.isEmpty()) broken = brokenPageRule(m_on.builder);
    return broken.isEmpty() ? brokenGesture() : broken;
}

void RandomSession::settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

QString RandomSession::brokenGesture() const {
    if (!m_held && area().isGesturing()) return "a gesture goes on without a button";
    if (!m_held && area().isTimerActive(TorvQDWorkArea::edgeTimer)) {
        return "the view scrolls at its edge without a button";
    }
    return {};
}

// --- where ---

TorvQDTable* RandomSession::anyTable() {
    const auto& boxes = area().tablesByCreation();
    return boxes.empty() ? nullptr : boxes[std::size_t(m_dice.below(int(boxes.size())))];
}

TorvQDLink* RandomSession::anyLink() {
    const std::vector<TorvQDLink*> links = area().Links();
    return links.empty() ? nullptr : links[std::size_t(m_dice.below(int(links.size())))];
}

QPoint RandomSession::anyPoint() {
    const QSize size = area().viewport()->size();
    const int x = m_dice.below(std::max(1, size.width()));
    return {x, m_dice.below(std::max(1, size.height()))};
}

// In view coordinates.
QPoint RandomSession::pointOfBox(TorvQDTable& box) {
    const TRect bounds = box.toView(box.GetBoundsRect());
    const QPoint middle((bounds.Left + bounds.Right) / 2, (bounds.Top + bounds.Bottom) / 2);
    switch (m_dice.below(9)) {
    case 0: {
        const TRect caption = box.toView(box.GetCaptionRect());
        return {(caption.Left + caption.Right) / 2, (caption.Top + caption.Bottom) / 2};
    }
    case 1: {
        const TRect buttons = box.toView(box.GetButtonRect());
        return {buttons.Left + m_dice.below(buttons.width()), buttons.Top + 8};
    }
    case 2: return {bounds.Left + 8, bounds.Top + 10};
    case 3: return {bounds.Right - 1, middle.y()};
    case 4: return {bounds.Left + m_dice.below(3), bounds.Top + m_dice.below(3)};
    case 5: return {bounds.Right - 1, bounds.Bottom - 1};
    default: break;
    }
    if (box.Items.empty()) return middle;
    const TRect row =
        box.GetItemRect(box.Items[std::size_t(m_dice.below(int(box.Items.size())))].get());
    return {row.Left + (m_dice.chance(40) ? 5 : 40), row.Top + 8};
}

QPoint RandomSession::pointOfLink(const TorvQDLink& link) {
    const int count = link.GetCountPoints();
    if (m_dice.chance(40)) return link.GetPoint(m_dice.below(count));
    const int segment = m_dice.below(count - 1);
    return (link.GetPoint(segment) + link.GetPoint(segment + 1)) / 2;
}

// In coordinates of the viewport; what is out of sight is mostly scrolled in.
QPoint RandomSession::target() {
    if (m_dice.chance(10)) return anyPoint();
    TorvQDLink* link = m_dice.chance(30) ? anyLink() : nullptr;
    TorvQDTable* box = anyTable();
    if (!link && !box) return anyPoint();
    const bool isSeen = !m_held && m_dice.chance(80);
    if (isSeen) area().ensureVisible(link ? link->GetBounds() : box->GetBoundsRect());
    if (box && !link && m_dice.chance(50) && !m_held) area().selectObject(box);
    return area().toViewport(link ? pointOfLink(*link) : pointOfBox(*box));
}

// --- the mouse ---

void RandomSession::send(QEvent::Type type, const QPoint& point, Qt::MouseButton button) {
    QWidget* view = area().viewport();
    if (!m_grabber && !m_held) {
        if (!view->rect().contains(point) || !view->isVisible()) return;
        QWidget* child = view->childAt(point);
        m_grabber = child ? child : view;
    }
    const bool isPress = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    if (isPress) m_held |= button;
    if (type == QEvent::MouseButtonRelease) m_held &= ~button;
    m_mouse = point;
    if (m_grabber) {
        const QPoint local = m_grabber->mapFrom(&m_on.builder, view->mapTo(&m_on.builder, point));
        QMouseEvent event(type, local, m_grabber->mapToGlobal(local), button, m_held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(m_grabber, &event);
    }
    if (!m_held) m_grabber.clear();
}

void RandomSession::press() {
    if (m_held) return release();
    const QPoint at = target();
    const Qt::MouseButton button = m_dice.chance(10) ? Qt::MiddleButton : Qt::LeftButton;
    note(QStringLiteral("press %1 at %2").arg(int(button)).arg(textOf(at)));
    send(QEvent::MouseButtonPress, at, button);
}

void RandomSession::move() {
    const QPoint nearby = m_mouse + QPoint(m_dice.between(-40, 40), m_dice.between(-40, 40));
    const QPoint at = m_dice.chance(50) ? nearby : target();
    note("move to " + textOf(at));
    send(QEvent::MouseMove, at, Qt::NoButton);
}

void RandomSession::release() {
    if (!m_held) return move();
    const Qt::MouseButton button = m_held & Qt::LeftButton ? Qt::LeftButton : Qt::MiddleButton;
    note("release at " + textOf(m_mouse));
    send(QEvent::MouseButtonRelease, m_mouse, button);
}

void RandomSession::click() {
    if (m_held) return release();
    const QPoint at = target();
    note("click at " + textOf(at));
    send(QEvent::MouseButtonPress, at, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, at, Qt::LeftButton);
}

void RandomSession::doubleClick() {
    if (m_held) return release();
    const QPoint at = target();
    note("double click at " + textOf(at));
    send(QEvent::MouseButtonPress, at, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, at, Qt::LeftButton);
    send(QEvent::MouseButtonDblClick, at, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, at, Qt::LeftButton);
}

void RandomSession::dragAbout() {
    if (m_held) return release();
    const QPoint from = target();
    const QPoint to = m_dice.chance(50)
                          ? target()
                          : from + QPoint(m_dice.between(-150, 150), m_dice.between(-150, 150));
    note("drag from " + textOf(from) + " to " + textOf(to));
    send(QEvent::MouseButtonPress, from, Qt::LeftButton);
    send(QEvent::MouseMove, from + (to - from) / 3, Qt::NoButton);
    send(QEvent::MouseMove, to, Qt::NoButton);
    if (m_dice.chance(10)) pressKey(Qt::Key_Escape, {}, {});
    if (m_dice.chance(80)) send(QEvent::MouseButtonRelease, to, Qt::LeftButton);
}

void RandomSession::rightClick() {
    if (m_held) return release();
    const QPoint at = target();
    note("right click at " + textOf(at));
    send(QEvent::MouseButtonPress, at, Qt::RightButton);
    send(QEvent::MouseButtonRelease, at, Qt::RightButton);
    chooseFromMenu();
}

void RandomSession::keyboardMenu() {
    if (m_held) return release();
    note("menu key");
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(&area(), &event);
    chooseFromMenu();
}

void RandomSession::chooseFromMenu() {
    const QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) return;
    QList<QAction*> actions;
    const QRect picture = area().diagramBounds();
    const auto all = menu->actions();
    for (QAction* action : all) {
        const bool isLarge = std::max(picture.width(), picture.height()) > mostPicturePx;
        if (action->isSeparator() || !action->isEnabled()) continue;
        if (!isLarge || !action->text().contains("picture")) actions << action;
    }
    const auto over = qScopeGuard([&menu] {
        if (menu) menu->close();
    });
    if (m_dice.chance(10)) deleteTable();
    if (m_dice.chance(5)) clearAll();
    if (menu && !actions.isEmpty() && m_dice.chance(75)) {
        QAction* action = actions[m_dice.below(int(actions.size()))];
        note("  chosen: " + action->text());
        menu->hide();
        action->trigger();
    }
}

void RandomSession::wheel() {
    const QPoint at = target();
    const int delta = m_dice.between(-4, 4) * 60;
    const Qt::KeyboardModifiers modifiers = m_dice.chance(10)   ? Qt::ControlModifier
                                            : m_dice.chance(20) ? Qt::ShiftModifier
                                                                : Qt::NoModifier;
    note(QStringLiteral("wheel %1 at %2, modifiers %3")
             .arg(delta)
             .arg(textOf(at))
             .arg(int(modifiers)));
    QWheelEvent event(at, area().viewport()->mapToGlobal(at), {}, {0, delta}, m_held, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(area().viewport(), &event);
}

// --- the keys ---

void RandomSession::pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWidget* focus = QApplication::focusWidget();
    if (!focus || !area().isAncestorOf(focus)) focus = &area();
    const QPointer<QWidget> receiver(focus);
    for (const QEvent::Type type :
         {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        if (!receiver) return;
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(receiver, &event);
    }
}

void RandomSession::key() {
    static const Qt::Key keys[] = {
        Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Home,
        Qt::Key_End,    Qt::Key_PageUp, Qt::Key_Insert, Qt::Key_PageDown, Qt::Key_Delete,
        Qt::Key_Space,  Qt::Key_Return, Qt::Key_Enter,  Qt::Key_Escape,   Qt::Key_F2,
        Qt::Key_Insert, Qt::Key_Plus,   Qt::Key_Minus,  Qt::Key_Equal,    Qt::Key_0,
        Qt::Key_Escape, Qt::Key_PageUp, Qt::Key_Down,   Qt::Key_PageDown, Qt::Key_F10,
    };
    static const Qt::KeyboardModifiers modifiers[] = {
        Qt::NoModifier,      Qt::NoModifier,
        Qt::NoModifier,      Qt::ControlModifier,
        Qt::ControlModifier, Qt::AltModifier,
        Qt::ShiftModifier,   Qt::ControlModifier | Qt::ShiftModifier,
    };
    const Qt::Key key = keys[m_dice.below(int(std::size(keys)))];
    const Qt::KeyboardModifiers held = modifiers[m_dice.below(int(std::size(modifiers)))];
    note("key " + QKeySequence(int(held) | int(key)).toString());
    pressKey(key, held, key == Qt::Key_0 ? QStringLiteral("0") : QString());
}

void RandomSession::letter() {
    const QString text = m_dice.pick({"a", "w", "x", "e", "D", "1", "\u00E4", "_", "."});
    note("letter " + text);
    pressKey(Qt::Key(text.at(0).toUpper().unicode()), {}, text);
}

void RandomSession::rename() {
    TorvQDTable* box = anyTable();
    if (!box) return addTable();
    area().selectObject(box);
    const QString text = m_dice.pick({"N", "T", "u", "a b", "", "x.y", "\"q\"", "SELECT", "T2"});
    note("rename " + box->GetAlias() + " to " + text);
    pressKey(Qt::Key_F2, {}, {});
    for (const QChar letter : text) {
        pressKey(Qt::Key(letter.toUpper().unicode()), {}, QString(letter));
    }
    if (m_dice.chance(10)) deleteTable();
    if (m_dice.chance(60)) pressKey(Qt::Key_Return, {}, {});
    if (m_dice.chance(20)) pressKey(Qt::Key_Escape, {}, {});
}

// --- the window ---

void RandomSession::fireTimer() {
    for (const int number :
         {TorvQDWorkArea::rowsUpTimer, TorvQDWorkArea::rowsDownTimer, TorvQDWorkArea::edgeTimer,
          TorvQDWorkArea::hintTimer, TorvQDWorkArea::hintEndTimer}) {
        if (!area().isTimerActive(number)) continue;
        note(QStringLiteral("timer %1").arg(number));
        area().timerFired(number);
    }
}

void RandomSession::loseFocus() {
    note("focus elsewhere");
    m_on.builder.PageCtrl->setFocus();
    if (m_dice.chance(70)) area().setFocus();
}

void RandomSession::hideOrShow() {
    note("hidden and shown");
    m_on.builder.hide();
    m_held = {};  // a hidden window gets no release
    m_grabber.clear();
    const auto over = qScopeGuard([this] {
        m_on.builder.show();
        area().setFocus();
    });
    if (m_dice.chance(30)) addTable();
}

void RandomSession::resize() {
    const QSize size(m_dice.between(300, 1000), m_dice.between(300, 800));
    note(QStringLiteral("size %1 x %2").arg(size.width()).arg(size.height()));
    m_on.builder.resize(size);
}

// --- drags ---

void RandomSession::foreignDrag() {
    if (m_held) return release();
    QMimeData data;
    data.setText("DEPT");
    const QPoint at = anyPoint();
    note("a name is dragged to " + textOf(at));
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(area().viewport(), &enter);
    if (enter.isAccepted() && m_dice.chance(70)) {
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(area().viewport(), &drop);
    } else {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(area().viewport(), &leave);
    }
}

// The mouse belongs to the drag until it is over.
Qt::DropAction RandomSession::runDrag(QDrag& drag) {
    const QPointer<QDrag> running(&drag);
    m_held = {};
    m_grabber.clear();
    beAwkward();
    bool accepted = false;
    QPoint at;
    const int moves = m_dice.below(5);
    for (int index = 0; index < moves; ++index) {
        at = target();
        if (!area().viewport()->rect().contains(at)) at = anyPoint();
        note("  dragged to " + textOf(at));
        QDragEnterEvent event(at, Qt::CopyAction, drag.mimeData(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(area().viewport(), &event);
        accepted = event.isAccepted();
        if (m_dice.chance(20)) fireTimer();
        if (m_dice.chance(4)) deleteTable();
        if (m_dice.chance(2)) clearAll();
    }
    if (m_dice.chance(25)) {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(area().viewport(), &leave);
        return m_pages.dragHere(*drag.mimeData()) ? Qt::CopyAction : Qt::IgnoreAction;
    }
    if (accepted && m_dice.chance(85)) {
        note("  dropped");
        QDropEvent event(at, Qt::CopyAction, drag.mimeData(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(area().viewport(), &event);
        return event.isAccepted() ? Qt::CopyAction : Qt::IgnoreAction;
    }
    if (m_dice.chance(50)) {
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(area().viewport(), &event);
    }
    return Qt::IgnoreAction;
}

}  // namespace orvtest
