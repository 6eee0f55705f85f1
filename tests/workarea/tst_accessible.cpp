// SPDX-License-Identifier: MIT
// What screen readers are told of the diagram.
#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QScrollBar>
#include <QVBoxLayout>

#include <memory>

using orvtest::HostedBuilder;
using orvtest::RecordedServices;

namespace {

QAccessibleInterface* interfaceOf(QObject* object) {
    return QAccessible::queryAccessibleInterface(object);
}

QString nameOf(QAccessibleInterface* interface) {
    return interface ? interface->text(QAccessible::Name) : QString("(none)");
}

QStringList namesOfChildren(QAccessibleInterface* interface) {
    QStringList names;
    for (int index = 0; index < interface->childCount(); ++index) {
        names << nameOf(interface->child(index));
    }
    return names;
}

void act(QAccessibleInterface* interface, const QString& action) {
    interface->actionInterface()->doAction(action);
}

/// A shown builder with the boxes DEPT and EMPLOYEE, made in this order; EMPLOYEE is selected, and
/// the canvas has the focus.
class Read : public HostedBuilder {
public:
    Read() {
        builder.resize(800, 600);
        addTable("DEPT");
        addTable("EMPLOYEE");
        builder.show();
        builder.activateWindow();
        area().setFocus();
        QCoreApplication::processEvents();
    }

    TorvQDWorkArea& area() const { return *builder.WorkArea; }
    QAccessibleInterface* root() const { return interfaceOf(builder.WorkArea); }
    QAccessibleInterface* box(const QString& alias) const { return interfaceOf(table(alias)); }
    QAccessibleInterface* row(const QString& alias, const QString& field) const {
        return box(alias)->child(table(alias)->GetFieldItem(field)->GetIndex());
    }
    TorvQDLink* addLink() const {
        return area().AddLink(table("EMPLOYEE"), table("DEPT"),
                              table("EMPLOYEE")->GetFieldItem("DEPT_NO"),
                              table("DEPT")->GetFieldItem("DEPT_NO"));
    }
    QPoint toScreen(const QPoint& viewPoint) const {
        return area().viewport()->mapToGlobal(area().toViewport(viewPoint));
    }
};

/// The events that readers get while it lives, as "kind name".
class Reader {
public:
    Reader() {
        m_old = orv::setAccessibleListener([this](QAccessibleEvent& event) { take(event); });
    }
    ~Reader() { orv::setAccessibleListener(m_old); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Those of one kind.
    [[nodiscard]] QStringList heard(const QString& kind) const {
        QStringList found;
        for (const QString& event : events) {
            if (event.startsWith(kind + u' ')) found << event.mid(kind.size() + 1);
        }
        return found;
    }

    QStringList events;

private:
    void take(QAccessibleEvent& event) {
        QString text = QString(qAccessibleEventString(event.type())) + u' ' +
                       nameOf(event.accessibleInterface());
        if (event.type() == QAccessible::StateChanged) {
            const auto changed = static_cast<QAccessibleStateChangeEvent&>(event).changedStates();
            if (changed.checked) text += " checked";
            if (changed.selected) text += " selected";
            if (changed.expanded) text += " expanded";
        }
        events << text;
    }

    orv::AccessibleListener m_old;
};

}  // namespace

class AccessibleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the tree

    void diagramHasItsBoxesThenItsLinks() {
        const Read on;
        on.addLink();
        QCOMPARE(on.root()->role(), QAccessible::Canvas);
        QCOMPARE(nameOf(on.root()), QString("Diagram"));
        QCOMPARE(on.root()->text(QAccessible::Description), QString("Tables: 2, links: 1"));
        const QStringList names = {"DEPT", "EMPLOYEE", "EMPLOYEE.DEPT_NO = DEPT.DEPT_NO"};
        QCOMPARE(namesOfChildren(on.root()), names);
        on.area().selectObject(on.table("DEPT"));
        QCOMPARE(namesOfChildren(on.root()), names);
        QVERIFY(!on.root()->child(3));
        QVERIFY(!on.root()->child(-1));
    }

    void parentsAndChildrenAgree() {
        const Read on;
        on.addLink();
        for (int index = 0; index < 3; ++index) {
            QAccessibleInterface* child = on.root()->child(index);
            QVERIFY(child && child->isValid());
            QCOMPARE(child->parent(), on.root());
            QCOMPARE(on.root()->indexOfChild(child), index);
            QCOMPARE(child->window(), on.builder.windowHandle());
            for (int row = 0; row < child->childCount(); ++row) {
                QAccessibleInterface* grandchild = child->child(row);
                QVERIFY(grandchild && grandchild->isValid());
                QCOMPARE(grandchild->parent(), child);
                QCOMPARE(child->indexOfChild(grandchild), row);
                QCOMPARE(child->child(row), grandchild);
                QCOMPARE(on.root()->indexOfChild(grandchild), -1);
            }
        }
        QCOMPARE(on.box("DEPT")->indexOfChild(on.row("EMPLOYEE", "SALARY")), -1);
        QVERIFY(!on.box("DEPT")->child(3));
        QVERIFY(on.root()->parent());
        QCOMPARE(on.root()->parent()->child(on.root()->parent()->indexOfChild(on.root())),
                 on.root());
    }

    void openEditsAreThere() {
        const Read on;
        QWidget* view = on.area().viewport();
        on.table("DEPT")->_RenameTable();
        QCOMPARE(on.root()->childCount(), 3);
        QAccessibleInterface* pane = on.root()->child(2);
        QCOMPARE(pane->childCount(), 1);
        QCOMPARE(pane->parent(), on.root());
        QAccessibleInterface* edit = interfaceOf(view->findChild<orv::ExitEdit*>());
        QCOMPARE(pane->child(0), edit);
        QCOMPARE(edit->parent(), pane);
        QCOMPARE(pane->indexOfChild(edit), 0);
        QCOMPARE(nameOf(edit), QString("Alias"));
        QCOMPARE(on.root()->focusChild(), edit);
        const QPoint middle = edit->rect().center();
        QCOMPARE(on.root()->childAt(middle.x(), middle.y()), pane);
        QCOMPARE(pane->childAt(middle.x(), middle.y()), edit);
        on.area().discardPendingEdit();
        QCOMPARE(on.root()->childCount(), 2);
        on.area().beginSearch(on.table("DEPT"), "b");
        QCOMPARE(nameOf(on.root()->child(2)->child(0)), QString("Search a field"));
    }

    // --- a box

    void boxTellsItsNameAndItsFields() {
        Read on;
        on.area().renameTable(on.table("DEPT"), "D");
        on.tick("D", "BUDGET");
        QAccessibleInterface* box = on.box("D");
        QCOMPARE(box->role(), QAccessible::List);
        QCOMPARE(nameOf(box), QString("DEPT (D)"));
        QCOMPARE(box->text(QAccessible::Description), QString("Table, 1 of 3 fields selected"));
        QCOMPARE(namesOfChildren(box), QStringList({"DEPT_NO", "DEPARTMENT", "BUDGET"}));
    }

    void boxTellsItsTicks() {
        Read on;
        const auto state = [&] { return on.box("DEPT")->state(); };
        QVERIFY(state().checkable && !state().checked && !state().checkStateMixed);
        on.tick("DEPT", "BUDGET");
        QVERIFY(!state().checked && state().checkStateMixed);
        on.table("DEPT")->SetFieldState(2);
        QVERIFY(state().checked && !state().checkStateMixed);
    }

    void boxTellsWhetherItIsSelectedAndOpen() {
        const Read on;
        const auto state = [&](const QString& alias) { return on.box(alias)->state(); };
        QVERIFY(state("EMPLOYEE").selected && state("EMPLOYEE").focused);
        QVERIFY(!state("DEPT").selected && !state("DEPT").focused && state("DEPT").focusable);
        QVERIFY(!on.root()->state().focused);
        QVERIFY(state("DEPT").expanded && !state("DEPT").collapsed && state("DEPT").expandable);
        on.table("DEPT")->SetExpand(0);
        QVERIFY(!state("DEPT").expanded && state("DEPT").collapsed);
        on.area().selectObject(nullptr);
        QVERIFY(!state("EMPLOYEE").selected && !state("EMPLOYEE").focused);
        QVERIFY(on.root()->state().focused);
    }

    void focusIsInOnePlaceOnly() {
        const Read on;
        TorvQDTable* table = on.table("EMPLOYEE");
        QCOMPARE(on.root()->focusChild(), on.box("EMPLOYEE"));
        table->SetCurrentItem(table->GetFieldItem("SALARY"));
        QCOMPARE(on.root()->focusChild(), on.row("EMPLOYEE", "SALARY"));
        QCOMPARE(on.box("EMPLOYEE")->focusChild(), on.row("EMPLOYEE", "SALARY"));
        QVERIFY(on.row("EMPLOYEE", "SALARY")->state().focused);
        QVERIFY(!on.row("EMPLOYEE", "EMP_NO")->state().focused);
        QVERIFY(!on.box("EMPLOYEE")->state().focused);
        table->SetExpand(0);
        QCOMPARE(on.root()->focusChild(), on.box("EMPLOYEE"));
        QVERIFY(on.box("EMPLOYEE")->state().focused);
        QVERIFY(!on.row("EMPLOYEE", "SALARY")->state().focused);
        on.area().selectObject(nullptr);
        QCOMPARE(on.root()->focusChild(), on.root());
    }

    // --- a row

    void rowTellsItsNameTypeAndTick() {
        Read on;
        TDataSet fields;
        fields.FieldDefs.push_back({"W", ftWideString});
        on.builder.ListOfTables->AddTable("WIDE", fields);
        QAccessibleInterface* row = on.row("WIDE", "W");
        QCOMPARE(row->role(), QAccessible::ListItem);
        QCOMPARE(nameOf(row), QString("W"));
        const QString type = orv::fieldTypeDisplayName(ftWideString);
        QCOMPARE(row->text(QAccessible::Value), QString(type).replace("&&", "&"));
        QVERIFY(!row->text(QAccessible::Value).isEmpty());
        for (int kind = ftUnknown; kind <= ftWideString; ++kind) {
            on.table("WIDE")->Items.front()->FieldType = TFieldType(kind);
            QVERIFY(!row->text(QAccessible::Value).contains("&&"));
        }
        QVERIFY(row->state().checkable && !row->state().checked);
        on.tick("WIDE", "W");
        QVERIFY(row->state().checked);
    }

    void parameterIsNotTicked() {
        const Read on;
        on.table("DEPT")->Items.front()->ParamType = ptInput;
        QVERIFY(!on.box("DEPT")->child(0)->state().checkable);
        QVERIFY(on.box("DEPT")->child(1)->state().checkable);
    }

    void rowThatIsNotShownIsInvisible() {
        Read on;
        on.host.add("BIG", {"F0", "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9"});
        TorvQDTable* table = on.addTable("BIG");
        const auto seen = [&] {
            QString text;
            for (int index = 0; index < 10; ++index) {
                const QAccessible::State state = on.box("BIG")->child(index)->state();
                text += state.invisible ? u'-' : u'+';
                // Who is not there is not on the screen.
                if (state.invisible && !state.offscreen) text += u'!';
            }
            return text;
        };
        QCOMPARE(seen(), QString("++++++----"));
        table->SetFirstVisibleItem(3);
        QCOMPARE(seen(), QString("---++++++-"));
        table->SetExpand(0);
        QCOMPARE(seen(), QString("----------"));
        table->SetExpand(-1);
        QVERIFY(!on.row("BIG", "F4")->state().offscreen);
        on.area().verticalScrollBar()->setValue(2000);
        QVERIFY(on.row("BIG", "F4")->state().offscreen);
        QVERIFY(!on.row("BIG", "F4")->state().invisible);
        QVERIFY(on.box("BIG")->state().offscreen);
        on.builder.hide();
        QVERIFY(on.row("BIG", "F4")->state().invisible);
        QVERIFY(on.box("BIG")->state().invisible);
    }

    // --- places

    void rectanglesAreThoseOfTheScreen() {
        const Read on;
        TorvQDTable* table = on.table("DEPT");
        const TorvQDLink* link = on.addLink();
        table->MoveTable(300, 150);
        for (const qreal zoom : {1.0, 2.0}) {
            on.area().setZoom(zoom, QPoint(0, 0));
            on.area().horizontalScrollBar()->setValue(40);
            on.area().verticalScrollBar()->setValue(30);
            const QPoint scroll(40, 30);
            const QPoint topLeft = QPoint(table->Left, table->Top) - scroll;
            const QRect box = on.box("DEPT")->rect();
            QCOMPARE(box.topLeft(), on.area().viewport()->mapToGlobal(topLeft * zoom));
            QCOMPARE(box.size(), QSize(table->Width, table->Height) * zoom);
            const TRect item = table->GetItemRect(table->GetFieldItem("BUDGET"));
            const QRect row = on.row("DEPT", "BUDGET")->rect();
            QCOMPARE(row.topLeft(), on.toScreen({item.Left, item.Top}));
            QCOMPARE(row.size(), QSize(item.width(), item.height()) * zoom);
            QVERIFY(box.contains(row));
            const QRect line = interfaceOf(const_cast<TorvQDLink*>(link))->rect();
            for (int index = 0; index < link->GetCountPoints(); ++index) {
                QVERIFY(line.contains(on.toScreen(link->GetPoint(index))));
            }
        }
    }

    void placesAgreeWithTheDiagram() {
        const Read on;
        const TorvQDLink* link = on.addLink();
        // One box covers a part of the other.
        TorvQDTable* front = on.table("EMPLOYEE");
        TorvQDTable* back = on.table("DEPT");
        front->MoveTable(back->Left + 40 - front->Left, back->Top + 45 - front->Top);
        int boxes = 0;
        int rows = 0;
        int links = 0;
        for (const qreal zoom : {1.0, 1.25}) {
            on.area().setZoom(zoom, QPoint(0, 0));
            on.area().verticalScrollBar()->setValue(10);
            const QSize size = on.area().viewport()->size();
            for (int y = -5; y < size.height() + 5; y += 7) {
                for (int x = -5; x < size.width() + 5; x += 7) {
                    const QPoint global = on.area().viewport()->mapToGlobal(QPoint(x, y));
                    QAccessibleInterface* found = on.root()->childAt(global.x(), global.y());
                    const QPoint view = on.area().toViewPoint({x, y});
                    const bool isInside = QRect(QPoint(0, 0), size).contains(x, y);
                    TorvQDFloatObject* object = isInside ? on.area().objectAt(view) : nullptr;
                    QCOMPARE(found ? found->object() : nullptr, static_cast<QObject*>(object));
                    links += object == link;
                    for (TorvQDTable* table : {front, back}) {
                        QAccessibleInterface* row =
                            interfaceOf(table)->childAt(global.x(), global.y());
                        const TorvQDListItem* item = isInside ? on.area().rowAt(view) : nullptr;
                        if (item && item->Table != table) item = nullptr;
                        QCOMPARE(row ? nameOf(row) : QString(), item ? item->Name : QString());
                        rows += row != nullptr;
                    }
                    boxes += object == front || object == back;
                }
            }
        }
        QVERIFY(boxes > 0 && rows > 0 && links > 0);
        QVERIFY(rows < boxes);
        // The middle of what a row says is that row.
        const QPoint middle = on.row("EMPLOYEE", "SALARY")->rect().center();
        QCOMPARE(on.box("EMPLOYEE")->childAt(middle.x(), middle.y()), on.row("EMPLOYEE", "SALARY"));
    }

    // --- a link

    void linkTellsItsComparisonAndItsJoin() {
        const Read on;
        TorvQDLink* link = on.addLink();
        QAccessibleInterface* line = interfaceOf(link);
        QCOMPARE(line->role(), QAccessible::Graphic);
        QCOMPARE(nameOf(line), QString("EMPLOYEE.DEPT_NO = DEPT.DEPT_NO"));
        QCOMPARE(line->text(QAccessible::Value), QString("inner join"));
        QCOMPARE(line->text(QAccessible::Description), QString("only rows that match"));
        link->setOperatorText("<>");
        on.area().renameTable(on.table("DEPT"), "D");
        QCOMPARE(nameOf(line), QString("EMPLOYEE.DEPT_NO <> D.DEPT_NO"));
        link->Join->KindOfJoin = klLOuterJoin;
        QCOMPARE(line->text(QAccessible::Value), QString("left outer join"));
        QCOMPARE(line->text(QAccessible::Description),
                 QString("all rows of EMPLOYEE, those of D that match"));
        link->Join->KindOfJoin = klROuterJoin;
        QCOMPARE(line->text(QAccessible::Description),
                 QString("all rows of D, those of EMPLOYEE that match"));
        link->Join->KindOfJoin = klFOuterJoin;
        QCOMPARE(line->text(QAccessible::Description), QString("all rows of EMPLOYEE and of D"));
        QVERIFY(!line->state().selected && line->state().selectable);
        on.area().selectObject(link);
        QVERIFY(line->state().selected && line->state().focused);
        QCOMPARE(on.root()->focusChild(), line);
    }

    // --- actions

    void toggleAndPressTickARow() {
        const Read on;
        act(on.row("DEPT", "BUDGET"), QAccessibleActionInterface::toggleAction());
        QCOMPARE(on.columns(), QStringList("BUDGET||DEPT.BUDGET"));
        QCOMPARE(on.table("DEPT")->FieldState, 1);
        act(on.row("DEPT", "BUDGET"), QAccessibleActionInterface::pressAction());
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.table("DEPT")->FieldState, 0);
    }

    void pressOnAParameterAsksTheHost() {
        Read on;
        QStringList asked;
        on.builder.OnEnterProcParameter = [&](QObject*, TorvQDTable*, TorvQDListItem* item) {
            asked << item->Name;
        };
        on.table("DEPT")->Items.front()->ParamType = ptInput;
        QAccessibleInterface* row = on.box("DEPT")->child(0);
        act(row, QAccessibleActionInterface::toggleAction());
        QCoreApplication::processEvents();
        QCOMPARE(asked, QStringList());
        act(row, QAccessibleActionInterface::pressAction());
        QCOMPARE(asked, QStringList());  // the reader does not wait for the answer
        QCoreApplication::processEvents();
        QCOMPARE(asked, QStringList("DEPT_NO"));
    }

    void setFocusSelectsAndShows() {
        Read on;
        TorvQDLink* link = on.addLink();
        on.builder.PageCtrl->setFocus();
        on.area().verticalScrollBar()->setValue(2000);
        act(on.box("DEPT"), QAccessibleActionInterface::setFocusAction());
        QVERIFY(on.area().hasFocus());
        QCOMPARE(on.area().selectedObject(), on.table("DEPT"));
        QVERIFY(!on.box("DEPT")->state().offscreen);
        act(interfaceOf(link), QAccessibleActionInterface::setFocusAction());
        QVERIFY(link->Selected);
        on.area().verticalScrollBar()->setValue(2000);
        act(on.row("EMPLOYEE", "SALARY"), QAccessibleActionInterface::setFocusAction());
        QCOMPARE(on.root()->focusChild(), on.row("EMPLOYEE", "SALARY"));
        QVERIFY(!on.row("EMPLOYEE", "SALARY")->state().offscreen);
    }

    void boxOpensClosesAndTicksAll() {
        const Read on;
        act(on.box("DEPT"), QAccessibleActionInterface::pressAction());
        QVERIFY(!on.table("DEPT")->Expanded);
        act(on.box("DEPT"), QAccessibleActionInterface::pressAction());
        QVERIFY(on.table("DEPT")->Expanded);
        act(on.box("DEPT"), QAccessibleActionInterface::toggleAction());
        QCOMPARE(on.columns().size(), 3);
        act(on.box("DEPT"), QAccessibleActionInterface::toggleAction());
        QCOMPARE(on.columns().size(), 0);
    }

    void menusOpen() {
        const Read on;
        TorvQDLink* link = on.addLink();
        for (QAccessibleInterface* about : {on.box("DEPT"), interfaceOf(link)}) {
            act(about, QAccessibleActionInterface::showMenuAction());
            const auto menus = on.area().findChildren<QMenu*>();
            QCOMPARE(menus.size(), 1);
            QVERIFY(menus.first()->isVisible());
            delete menus.first();
        }
    }

    void pressOnALinkShowsItsProperties() {
        RecordedServices services;
        const Read on;
        act(interfaceOf(on.addLink()), QAccessibleActionInterface::pressAction());
        QCOMPARE(services.dialogs.size(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(services.dialogs.size(), 1);
    }

    void actionsSayWhatTheyDo() {
        const Read on;
        const QString press = QAccessibleActionInterface::pressAction();
        const QString toggle = QAccessibleActionInterface::toggleAction();
        const QString focus = QAccessibleActionInterface::setFocusAction();
        QAccessibleActionInterface* box = on.box("DEPT")->actionInterface();
        QAccessibleActionInterface* link = interfaceOf(on.addLink())->actionInterface();
        QCOMPARE(box->localizedActionDescription(press), "Collapse or expand the table");
        QCOMPARE(box->localizedActionDescription(toggle), "Select or unselect all fields");
        QCOMPARE(link->localizedActionDescription(press), "Show the properties of the link");
        // What it does everywhere, Qt tells.
        for (QAccessibleActionInterface* about : {box, link}) {
            QVERIFY(!about->localizedActionDescription(focus).isEmpty());
            QVERIFY(about->localizedActionDescription(focus) !=
                    about->localizedActionDescription(press));
        }
    }

    void disabledControlDoesNothing() {
        Read on;
        on.builder.setEnabled(false);
        QVERIFY(on.box("DEPT")->state().disabled);
        act(on.row("DEPT", "BUDGET"), QAccessibleActionInterface::toggleAction());
        act(on.box("DEPT"), QAccessibleActionInterface::pressAction());
        QCOMPARE(on.columns(), QStringList());
        QVERIFY(on.table("DEPT")->Expanded);
    }

    // --- lifetime

    void closedBoxIsInvalidThenGone() {
        const Read on;
        TorvQDLink* link = on.addLink();
        QAccessibleInterface* box = on.box("DEPT");
        QAccessibleInterface* row = on.row("DEPT", "BUDGET");
        QAccessibleInterface* line = interfaceOf(link);
        const QAccessible::Id boxId = QAccessible::uniqueId(box);
        const QAccessible::Id rowId = QAccessible::uniqueId(row);
        const QAccessible::Id lineId = QAccessible::uniqueId(line);
        on.table("DEPT")->CloseTable();
        for (QAccessibleInterface* gone : {box, row, line}) {
            QVERIFY(!gone->isValid());
            QVERIFY(gone->state().invalid);
            QVERIFY(!gone->parent());
            QVERIFY(!gone->window());
            QCOMPARE(gone->childCount(), 0);
            QCOMPARE(gone->rect(), QRect());
            QCOMPARE(nameOf(gone), QString());
            QCOMPARE(gone->actionInterface()->actionNames(), QStringList());
            act(gone, QAccessibleActionInterface::setFocusAction());
            act(gone, QAccessibleActionInterface::pressAction());
            QVERIFY(!gone->childAt(0, 0));
        }
        QCOMPARE(namesOfChildren(on.root()), QStringList("EMPLOYEE"));
        QCoreApplication::processEvents();  // the objects die once their event is over
        for (const QAccessible::Id id : {boxId, rowId, lineId}) {
            QVERIFY(!QAccessible::accessibleInterface(id));
        }
    }

    void rowsOfBeforeAreInvalid() {
        const Read on;
        QAccessibleInterface* old = on.row("DEPT", "BUDGET");
        QVERIFY(old->isValid());
        const TDataSet fields = orvtest::stringFields({"X", "Y", "BUDGET"});
        on.table("DEPT")->AssignItems(&fields);
        QVERIFY(!old->isValid());
        QCOMPARE(nameOf(old), QString());
        QCOMPARE(on.box("DEPT")->indexOfChild(old), -1);
        const QAccessible::Id id = QAccessible::uniqueId(old);
        QCOMPARE(namesOfChildren(on.box("DEPT")), QStringList({"X", "Y", "BUDGET"}));
        QVERIFY(!QAccessible::accessibleInterface(id));
    }

    void clearedDiagramIsEmpty() {
        Read on;
        QAccessibleInterface* box = on.box("DEPT");
        QAccessibleInterface* row = on.row("DEPT", "BUDGET");
        const QAccessible::Id rowId = QAccessible::uniqueId(row);
        on.builder.Clear();
        QVERIFY(!box->isValid());
        QVERIFY(!row->isValid());
        QCOMPARE(on.root()->childCount(), 0);
        QCoreApplication::processEvents();
        QVERIFY(!QAccessible::accessibleInterface(rowId));
    }

    void interfacesDieWithTheBuilder() {
        QList<QAccessible::Id> ids;
        const Read other;
        QAccessibleInterface* otherRow = other.row("DEPT", "BUDGET");
        {
            Reader reader;
            const auto on = std::make_unique<Read>();
            TorvQDLink* link = on->addLink();
            for (QAccessibleInterface* each :
                 {on->root(), on->box("DEPT"), on->row("DEPT", "BUDGET"), interfaceOf(link)}) {
                ids << QAccessible::uniqueId(each);
            }
        }
        for (const QAccessible::Id id : ids) QVERIFY(!QAccessible::accessibleInterface(id));
        QVERIFY(otherRow->isValid());
        QCOMPARE(nameOf(otherRow), QString("BUDGET"));
    }

    void twoBuildersKeepApart() {
        const Read on;
        Read other;
        QVERIFY(on.root() != other.root());
        QVERIFY(on.box("DEPT") != other.box("DEPT"));
        other.area().renameTable(other.table("DEPT"), "D");
        act(other.row("D", "BUDGET"), QAccessibleActionInterface::toggleAction());
        QVERIFY(other.row("D", "BUDGET")->state().checked);
        QVERIFY(!on.row("DEPT", "BUDGET")->state().checked);
        QCOMPARE(nameOf(on.box("DEPT")), QString("DEPT"));
        QCOMPARE(on.root()->indexOfChild(other.box("D")), -1);
        QCOMPARE(on.box("DEPT")->indexOfChild(other.row("D", "BUDGET")), -1);
        const QPoint place = on.box("DEPT")->rect().center();
        QAccessibleInterface* found = on.root()->childAt(place.x(), place.y());
        QCOMPARE(found, on.box("DEPT"));
    }

    // --- events

    void readersAreToldWhereTheFocusGoes() {
        const Read on;
        TorvQDLink* link = on.addLink();
        Reader reader;
        on.area().selectObject(on.table("DEPT"));
        QCOMPARE(reader.heard("Focus"), QStringList("DEPT"));
        QCOMPARE(reader.heard("StateChanged"), QStringList({"EMPLOYEE selected", "DEPT selected"}));
        reader.events.clear();
        QTest::keyClick(&on.area(), Qt::Key_Down);
        QTest::keyClick(&on.area(), Qt::Key_Down);
        QCOMPARE(reader.heard("Focus"), QStringList({"DEPT_NO", "DEPARTMENT"}));
        reader.events.clear();
        on.area().selectObject(link);
        QCOMPARE(reader.heard("Focus"), QStringList("EMPLOYEE.DEPT_NO = DEPT.DEPT_NO"));
        reader.events.clear();
        on.area().selectObject(nullptr);
        QCOMPARE(reader.heard("Focus"), QStringList("Diagram"));
    }

    void readersAreToldTheRowWhenTheDiagramGetsTheFocus() {
        const Read on;
        on.table("EMPLOYEE")->SetCurrentItem(on.table("EMPLOYEE")->GetFieldItem("SALARY"));
        on.builder.PageCtrl->setFocus();
        Reader reader;
        on.area().setFocus();
        QCoreApplication::processEvents();
        QVERIFY(!reader.heard("Focus").isEmpty());
        QCOMPARE(reader.heard("Focus").last(), QString("SALARY"));
    }

    void focusElsewhereIsNotTakenAway() {
        const Read on;
        on.builder.PageCtrl->setFocus();
        Reader reader;
        on.area().selectObject(on.table("DEPT"));
        on.table("DEPT")->SetCurrentItem(on.table("DEPT")->GetFieldItem("BUDGET"));
        QCOMPARE(reader.heard("Focus"), QStringList());
    }

    void readersAreToldOfTicks() {
        Read on;
        Reader reader;
        on.tick("DEPT", "BUDGET");
        QCOMPARE(reader.heard("StateChanged"), QStringList({"BUDGET checked", "DEPT checked"}));
        reader.events.clear();
        on.tick("DEPT", "BUDGET");
        QCOMPARE(reader.heard("StateChanged"), QStringList());
        on.table("DEPT")->SetExpand(0);
        QCOMPARE(reader.heard("StateChanged"), QStringList("DEPT expanded"));
    }

    void readersAreToldOfWhatComesAndGoes() {
        Read on;
        Reader reader;
        on.addTable("ORDERS");
        TorvQDLink* link = on.addLink();
        QCOMPARE(reader.heard("ObjectCreated"),
                 QStringList({"ORDERS", "EMPLOYEE.DEPT_NO = DEPT.DEPT_NO"}));
        on.area().RemoveLink(link, true);
        on.table("ORDERS")->CloseTable();
        QCOMPARE(reader.heard("ObjectDestroyed"),
                 QStringList({"EMPLOYEE.DEPT_NO = DEPT.DEPT_NO", "ORDERS"}));
        reader.events.clear();
        on.builder.Clear();
        QCOMPARE(reader.heard("ObjectDestroyed"), QStringList({"DEPT", "EMPLOYEE"}));
    }

    void readersAreToldOfNewNames() {
        const Read on;
        on.addLink();
        Reader reader;
        on.area().renameTable(on.table("DEPT"), "D");
        QCOMPARE(reader.heard("NameChanged"),
                 QStringList({"DEPT (D)", "EMPLOYEE.DEPT_NO = D.DEPT_NO"}));
    }
};

QTEST_MAIN(AccessibleTest)
#include "tst_accessible.moc"
