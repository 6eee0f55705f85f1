// SPDX-License-Identifier: MIT
#include "support/PageHand.h"

#include "catalogue/ORVQDOptions.h"
#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/DraggedField.h"
#include "support/PageRules.h"
#include "toolkit/ExitCombo.h"

#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTreeWidget>
#include <QWheelEvent>

namespace orvtest {

namespace {

enum Page { wherePage, gridPage, havingPage, sortingPage };

QString textOf(const QPoint& point) {
    return QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
}

}  // namespace

const QString PageHand::oddWord = QStringLiteral("ODD");

PageHand::PageHand(Session session) : m_session(std::move(session)) {}

PageHand::~PageHand() = default;

template <std::size_t count>
void PageHand::runOne(const Action (&actions)[count]) {
    int sum = 0;
    for (const Action& action : actions) sum += action.weight;
    int chosen = dice().below(sum);
    const Action* action = actions;
    while (chosen >= action->weight) chosen -= (action++)->weight;
    (this->*action->run)();
}

void PageHand::act() {
    using Hand = PageHand;
    static const Action everywhere[] = {
        {14, &Hand::changePage},   {6, &Hand::loseFocus},       {6, &Hand::changeWindow},
        {3, &Hand::commitPending}, {3, &Hand::changeOperators}, {3, &Hand::changeLooks},
        {8, &Hand::dropField},     {4, &Hand::disturb},
    };
    static const Action conditions[] = {
        {14, &Hand::clickCondition},      {4, &Hand::pressAndMove},
        {4, &Hand::doubleClickCondition}, {10, &Hand::rightClickCondition},
        {3, &Hand::scrollConditions},     {18, &Hand::conditionKey},
        {8, &Hand::addCondition},         {16, &Hand::editCondition},
        {8, &Hand::useFieldList},         {5, &Hand::callPanel},
    };
    static const Action selection[] = {
        {8, &Hand::clickCell}, {6, &Hand::doubleClickCell}, {6, &Hand::rightClickCell},
        {16, &Hand::gridKey},  {18, &Hand::editCell},       {8, &Hand::openChoice},
        {8, &Hand::dragRow},   {4, &Hand::callGrid},        {2, &Hand::clickDistinct},
    };
    static const Action sorting[] = {
        {8, &Hand::clickLists},  {5, &Hand::doubleClickLists}, {12, &Hand::sortingKey},
        {8, &Hand::clickButton}, {6, &Hand::dragLine},         {8, &Hand::editTail},
    };
    if (dice().chance(20)) return runOne(everywhere);
    switch (builder().PageCtrl->currentIndex()) {
    case gridPage: return runOne(selection);
    case sortingPage: return runOne(sorting);
    default: return runOne(conditions);
    }
}

// --- where ---

TorvQDWherePanel* PageHand::panel() const {
    const bool isHaving = builder().PageCtrl->currentIndex() == havingPage;
    return isHaving ? builder().HavingPanel : builder().WherePanel;
}

QWidget* PageHand::pageWidget() const {
    switch (builder().PageCtrl->currentIndex()) {
    case gridPage: return &grid();
    case sortingPage: return builder().OrderPanel->findChild<QListWidget*>();
    default: return panel();
    }
}

QPoint PageHand::somewhereIn(const QWidget& view) {
    const int x = dice().below(std::max(1, view.width()));
    return {x, dice().below(std::max(1, view.height()))};
}

// Mostly an element, which is mostly scrolled in.
QPoint PageHand::conditionPoint() {
    TorvQDWherePanel& on = *panel();
    const auto& rows = on.shownRows();
    if (dice().chance(12)) return somewhereIn(*on.viewport());
    const TorvQDWhereRow& row = *rows[std::size_t(dice().below(int(rows.size())))];
    const int kind = dice().below(row.isGroup() ? 2 : int(row.Controls.size()));
    const TorvQDControl& element = *row.Controls[std::size_t(kind)];
    if (dice().chance(80)) on.showElement(element);
    const QPoint point = on.elementRect(element).center();
    return on.viewport()->rect().contains(point) ? point : somewhereIn(*on.viewport());
}

QPoint PageHand::cellPoint() {
    QWidget& view = *grid().viewport();
    if (dice().chance(10)) return somewhereIn(view);
    const int row = dice().below(grid().model()->rowCount());
    const QModelIndex cell = grid().model()->index(row, dice().below(3));
    if (dice().chance(80)) grid().scrollTo(cell);
    const QPoint point = grid().visualRect(cell).center();
    return view.rect().contains(point) ? point : somewhereIn(view);
}

QString PageHand::fieldName() {
    const QStringList names = builder().AllFields().names();
    return names.isEmpty() || dice().chance(10) ? QStringLiteral("T.A") : dice().pick(names);
}

QString PageHand::operandText() {
    if (dice().chance(40)) return fieldName();
    if (dice().chance(12)) {
        return oddWord + dice().pick({" (", " 'x", " )", " AND", "\n--", ",", " = "});
    }
    return dice().pick({"1", "-5", "'x y'", "", "LOWER(T.A)", "T.A + 1", "(SELECT X FROM U)",
                        "NULL", "1 +\n2", ":P", "1.5", "T.A + T.B + T.C + T.D + T.E + T.A + T.B"});
}

// --- mouse and keys ---

// As the window does it: what the mouse does is spontaneous, and so it moves the focus.
void PageHand::mouse(QEvent::Type type, QWidget* target, const QWidget* view, const QPoint& point,
                     Qt::MouseButton button) {
    const QPoint local = target->mapFrom(&builder(), view->mapTo(&builder(), point));
    const bool isHeld = type != QEvent::MouseButtonRelease;
    const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : button;
    QMouseEvent event(type, local, target->mapToGlobal(local), changed,
                      isHeld ? Qt::MouseButtons(button) : Qt::NoButton, Qt::NoModifier);
    QSpontaneKeyEvent::setSpontaneous(&event);
    countChanges("a mouse event", [&] { qApp->notify(target, &event); });
}

// One event is one change of the statement, besides the texts that it takes over.
void PageHand::countChanges(const char* what, const std::function<void()>& event) {
    const int typed = openEdits(builder());
    const int disturbances = m_session.disturbances;
    const int before = m_session.on.changes;
    event();
    const int changes = m_session.on.changes - before;
    if (m_session.disturbances != disturbances || changes <= 1 + typed) return;
    m_complaint = QStringLiteral("%1 changed the statement %2 times").arg(what).arg(changes);
}

// What gets the release, too.
QWidget* PageHand::press(QWidget* view, const QPoint& point, Qt::MouseButton button) {
    QWidget* child = view->childAt(point);
    const QPointer<QWidget> target(child ? child : view);
    mouse(QEvent::MouseButtonPress, target, view, point, button);
    if (target && dice().chance(5)) disturb();
    // What is hidden gets no release.
    return target && target->isVisible() ? target.data() : nullptr;
}

void PageHand::click(QWidget* view, const QPoint& point, Qt::MouseButton button) {
    if (QWidget* target = press(view, point, button)) {
        mouse(QEvent::MouseButtonRelease, target, view, point, button);
    }
    answerMenu();
}

void PageHand::doubleClick(QWidget* view, const QPoint& point) {
    click(view, point);
    QWidget* child = view->childAt(point);
    const QPointer<QWidget> target(child ? child : view);
    if (!target->isVisible()) return;
    mouse(QEvent::MouseButtonDblClick, target, view, point, Qt::LeftButton);
    if (target && target->isVisible())
        mouse(QEvent::MouseButtonRelease, target, view, point, Qt::LeftButton);
    answerMenu();
}

void PageHand::askForMenu(QWidget* view, const QPoint& point) {
    const auto reason = dice().chance(70) ? QContextMenuEvent::Mouse : QContextMenuEvent::Keyboard;
    if (reason == QContextMenuEvent::Mouse) click(view, point, Qt::RightButton);
    QContextMenuEvent event(reason, point, view->mapToGlobal(point));
    QCoreApplication::sendEvent(view, &event);
    answerMenu();
}

void PageHand::pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    if (!builder().isActiveWindow()) return;
    QWidget* focus = QApplication::focusWidget();
    if (!focus || !builder().PageCtrl->isAncestorOf(focus)) focus = pageWidget();
    const QPointer<QWidget> receiver(focus);
    countChanges("a key",
                 [&] { QTest::sendKeyEvent(QTest::Press, receiver, key, text, modifiers); });
    if (receiver) QTest::sendKeyEvent(QTest::Release, receiver, key, text, modifiers);
    answerMenu();
}

void PageHand::type(const QString& text) {
    pressKey(Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty()) pressKey(Qt::Key_Delete);
    for (const QChar letter : text) {
        if (letter == u'\n') {
            pressKey(Qt::Key_Return, Qt::ControlModifier);
        } else {
            pressKey(Qt::Key(letter.toUpper().unicode()), {}, QString(letter));
        }
    }
}

// How an edit goes on; often it stays open.
void PageHand::endEdit() {
    if (dice().chance(8)) disturb();
    const int way = dice().below(10);
    if (way < 4) return pressKey(dice().chance(50) ? Qt::Key_Return : Qt::Key_Enter);
    if (way < 6) return pressKey(Qt::Key_Escape);
    if (way == 6) return pressKey(Qt::Key_Tab);
    if (way == 7) return loseFocus();
}

void PageHand::answerMenu() {
    for (int count = 0; count < 3; ++count) {
        const QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) return;
        if (dice().chance(10)) disturb();
        QList<QAction*> items;
        const auto all = menu ? menu->actions() : QList<QAction*>();
        for (QAction* each : all) {
            if (!each->isSeparator() && each->isEnabled()) items << each;
        }
        if (menu && !items.isEmpty() && dice().chance(75)) {
            const QPointer<QAction> item(items[dice().below(int(items.size()))]);
            note("  chosen: " + item->text());
            menu->close();
            if (item) item->trigger();
        }
        if (menu) menu->close();
    }
}

// --- every page ---

void PageHand::disturb() {
    m_session.disturb();
}

void PageHand::changePage() {
    QTabWidget& pages = *builder().PageCtrl;
    const int next = dice().below(pages.count());
    const int way = dice().below(7);
    note(QStringLiteral("page %1, way %2").arg(next).arg(way));
    switch (way) {
    case 0: return pressKey(Qt::Key_PageDown, Qt::ControlModifier);
    case 1: return pressKey(Qt::Key_PageUp, Qt::ControlModifier);
    case 2: return pressKey(Qt::Key(Qt::Key_1 + next), Qt::AltModifier);
    case 3: {
        QWheelEvent event(QPointF(5, 5), pages.tabBar()->mapToGlobal(QPointF(5, 5)), {}, {0, -120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(pages.tabBar(), &event);
        return;
    }
    case 4: return pages.setCurrentIndex(next);
    default: click(pages.tabBar(), pages.tabBar()->tabRect(next).center());
    }
}

void PageHand::loseFocus() {
    note("  focus elsewhere");
    if (dice().chance(50)) {
        builder().WorkArea->setFocus(Qt::MouseFocusReason);
    } else {
        builder().PageCtrl->tabBar()->setFocus(Qt::MouseFocusReason);
    }
}

void PageHand::changeWindow() {
    const bool isActive = builder().isActiveWindow() && dice().chance(40);
    note(isActive ? "another window" : "back from the other window");
    if (!m_otherWindow) m_otherWindow = std::make_unique<QWidget>();
    QWidget& next = isActive ? *m_otherWindow : builder();
    next.show();
    next.activateWindow();
    QCoreApplication::processEvents();
}

void PageHand::commitPending() {
    note("CommitPendingEdits");
    builder().CommitPendingEdits();
}

void PageHand::changeOperators() {
    TOperatorList& operators = *builder().Operators;
    const int way = dice().below(5);
    note(QStringLiteral("operators, way %1").arg(way));
    switch (way) {
    case 0: {
        TOperatorList all;
        orv::fillOperators(all);
        return builder().setOperatorsList(all.toStrings());
    }
    case 1:
        if (operators.Count() > 3) operators.Delete(dice().below(operators.Count()));
        return;
    case 2: {
        TOperatorList few;
        orv::fillSmallOperators(few);
        return builder().setOperators(few);
    }
    case 3: {
        TorvQDOperator like;
        like.Name = like.Caption = QStringLiteral("SIMILAR TO");
        if (!operators.FindName(like.Name)) operators.Add(like);
        return;
    }
    default: {
        TOperatorList all;
        orv::fillOperators(all);
        operators.Clear();
        for (int index = 0; index < all.Count(); ++index) operators.Add(*all.Items(index));
    }
    }
}

void PageHand::changeLooks() {
    TorvQDConditionOptions& options = *builder().ConditionOptions;
    const int way = dice().below(4);
    note(QStringLiteral("looks, way %1").arg(way));
    switch (way) {
    case 0: panel()->SetRowHeight(dice().between(14, 40)); break;
    case 1: panel()->setFont(QFont("Arial", dice().between(6, 16))); break;
    case 2: options.SetSelectRow(dice().chance(50)); break;
    default: options.SetBtnsStyle(TbtnStyle(dice().below(3))); break;
    }
}

void PageHand::dropField() {
    const auto& boxes = builder().WorkArea->tablesByCreation();
    if (boxes.empty()) return disturb();
    const TorvQDTable& box = *boxes[std::size_t(dice().below(int(boxes.size())))];
    if (box.Items.empty()) return;
    const auto& item = box.Items[std::size_t(dice().below(int(box.Items.size())))];
    const auto data = orv::toMimeData({builder().dragIdentity(), box.GetAlias(), item->Name});
    note("field " + box.GetAlias() + u'.' + item->Name + " is dragged");
    dragHere(*data);
    if (dice().chance(10)) disturb();
}

bool PageHand::dragHere(const QMimeData& data) {
    const int page = builder().PageCtrl->currentIndex();
    if (page == sortingPage) return false;
    const bool isGrid = page == gridPage;
    const QPointer<QWidget> view(isGrid ? grid().viewport() : panel()->viewport());
    QPoint at = isGrid ? cellPoint() : conditionPoint();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &enter);
    bool accepted = false;
    for (int moves = dice().between(1, 3); moves > 0; --moves) {
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &move);
        accepted = move.isAccepted();
        if (moves > 1) at = isGrid ? cellPoint() : conditionPoint();
        if (dice().chance(5)) disturb();
    }
    if (accepted && dice().chance(85)) {
        note("  dropped at " + textOf(at));
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &drop);
        return drop.isAccepted();
    }
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(view, &leave);
    return false;
}

// --- criteria ---

void PageHand::clickCondition() {
    const QPoint at = conditionPoint();
    note("click on conditions at " + textOf(at));
    click(panel()->viewport(), at);
}

void PageHand::pressAndMove() {
    QWidget* view = panel()->viewport();
    const QPoint from = conditionPoint();
    const QPoint to = conditionPoint();
    note("press on conditions at " + textOf(from) + ", release at " + textOf(to));
    QWidget* target = press(view, from);
    if (!target) return;
    mouse(QEvent::MouseMove, target, view, to, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, target, view, to, Qt::LeftButton);
    answerMenu();
}

void PageHand::doubleClickCondition() {
    const QPoint at = conditionPoint();
    note("double click on conditions at " + textOf(at));
    doubleClick(panel()->viewport(), at);
}

void PageHand::rightClickCondition() {
    const QPoint at = conditionPoint();
    note("right click on conditions at " + textOf(at));
    askForMenu(panel()->viewport(), at);
}

void PageHand::scrollConditions() {
    QScrollBar& bar =
        dice().chance(70) ? *panel()->verticalScrollBar() : *panel()->horizontalScrollBar();
    note("conditions are scrolled");
    bar.setValue(dice().below(bar.maximum() + 1));
}

void PageHand::conditionKey() {
    static const Qt::Key keys[] = {
        Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Up,   Qt::Key_Down,  Qt::Key_Home,
        Qt::Key_End,    Qt::Key_Up,       Qt::Key_Down, Qt::Key_Left,  Qt::Key_Right,
        Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_F2,   Qt::Key_Enter, Qt::Key_Return,
        Qt::Key_Insert, Qt::Key_Delete,   Qt::Key_C,    Qt::Key_X,     Qt::Key_V,
        Qt::Key_D,      Qt::Key_Insert,   Qt::Key_V,    Qt::Key_D,
    };
    static const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::NoModifier,
                                                      Qt::ControlModifier, Qt::AltModifier};
    const Qt::Key key = keys[dice().below(int(std::size(keys)))];
    const bool isText = key >= Qt::Key_A && key <= Qt::Key_Z;
    const Qt::KeyboardModifiers held = isText ? Qt::KeyboardModifiers(Qt::ControlModifier)
                                              : modifiers[dice().below(int(std::size(modifiers)))];
    note("key in conditions " + QKeySequence(int(held) | int(key)).toString());
    // What the editor would make of its text with these keys is not what a statement can hold.
    if (panel()->isEditing() && (isText || key == Qt::Key_Delete)) return;
    panel()->setFocus();
    pressKey(key, held);
}

void PageHand::addCondition() {
    note("condition added");
    if (panel()->isEditing()) return panel()->commitEdit();
    panel()->setFocus();
    pressKey(Qt::Key_Insert);
    if (dice().chance(80)) editCondition();
}

void PageHand::editCondition() {
    TorvQDWherePanel& on = *panel();
    if (!on.isEditing()) {
        std::vector<const TorvQDControl*> elements;
        for (TorvQDWhereRow* row : on.shownRows()) {
            for (const auto& each : row->Controls) {
                const QString* text = row->textOf(each->Kind);
                if (!text) continue;
                elements.push_back(each.get());
                // What is missing comes first, so that there are whole conditions.
                if (orv::isBlank(*text)) elements.insert(elements.end(), 4, each.get());
            }
        }
        if (elements.empty()) return addCondition();
        const TorvQDControl& element = *elements[std::size_t(dice().below(int(elements.size())))];
        if (dice().chance(50)) {
            on.editText(element);
        } else {
            on.showElement(element);
            const QPoint at = on.elementRect(element).center();
            if (!on.viewport()->rect().contains(at)) return;
            click(on.viewport(), at);
        }
    }
    const QString text = operandText();
    note("typed into conditions: " + text);
    if (on.isEditing()) type(text);
    endEdit();
}

void PageHand::useFieldList() {
    TorvQDWherePanel& on = *panel();
    if (!on.isEditing()) editCondition();
    if (!on.isEditing()) return;
    note("field list");
    pressKey(Qt::Key_A, Qt::ControlModifier);
    if (dice().chance(80)) {
        pressKey(Qt::Key_Return, Qt::ShiftModifier);
    } else {
        on.InsertField();
    }
    const auto* list = on.viewport()->findChild<orv::FieldList*>();
    if (!list->isOpen()) return;
    if (dice().chance(50)) {
        const QString filter = dice().pick({"a", "t", "dept", "w1", "nothing"});
        for (const QChar letter : filter) {
            pressKey(Qt::Key(letter.toUpper().unicode()), {}, QString(letter));
        }
    }
    if (dice().chance(10)) disturb();
    for (int count = dice().below(4); count > 0; --count) pressKey(Qt::Key_Down);
    switch (dice().below(6)) {
    case 0: return pressKey(Qt::Key_Escape);
    case 1: return loseFocus();
    case 2: return changePage();
    case 3: {
        const QModelIndex found = list->tree()->currentIndex();
        const QPoint at = list->tree()->visualRect(found).center();
        if (list->isOpen() && found.isValid()) doubleClick(list->tree()->viewport(), at);
        return;
    }
    case 4: return clickCondition();
    default: return pressKey(Qt::Key_Return);
    }
}

void PageHand::callPanel() {
    TorvQDWherePanel& on = *panel();
    const int way = dice().below(8);
    note(QStringLiteral("call of the panel, way %1").arg(way));
    switch (way) {
    case 0: return on.MoveCondition(dice().chance(50) ? 1 : -1);
    case 1: return on.DuplicateCondition();
    case 2: return on.DeleteCondition();
    case 3: return on.ExpandCollapse();
    case 4: return on.MakeCompositCondition();
    case 5: return on.setCurrentElement(on.elementAt(conditionPoint()));
    case 6: return on.discardEdit();
    default: return on.ClearContents();
    }
}

}  // namespace orvtest
