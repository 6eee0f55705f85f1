// SPDX-License-Identifier: MIT
// What screen readers are told of conditions.
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"
#include "toolkit/AccessibleEvents.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>

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
    QCoreApplication::processEvents();
}

/// A shown builder with conditions; its criteria panel has the focus.
class Read : public HostedBuilder {
public:
    explicit Read(const QString& condition) : HostedBuilder(true) {
        builder.resize(800, 700);
        builder.LoadSQL("select t.a from t" +
                        (condition.isEmpty() ? QString() : " where " + condition));
        builder.show();
        builder.activateWindow();
        panel().setFocus();
        QCoreApplication::processEvents();
    }

    [[nodiscard]] TorvQDWherePanel& panel() const { return *builder.WherePanel; }
    [[nodiscard]] QAccessibleInterface* list() const { return interfaceOf(builder.WherePanel); }
    [[nodiscard]] TorvQDWhereRow* row(int index) const {
        return panel().shownRows()[std::size_t(index)];
    }
    [[nodiscard]] QAccessibleInterface* readRow(int index) const { return list()->child(index); }
    /// The child of a row with that role or name.
    [[nodiscard]] QAccessibleInterface* element(int index, const QString& name) const {
        QAccessibleInterface* row = readRow(index);
        return row->child(int(namesOfChildren(row).indexOf(name)));
    }
    [[nodiscard]] QMenu* menu(const QString& name) const { return panel().findChild<QMenu*>(name); }
};

/// The events that readers get while it lives, as "kind name".
class Reader {
public:
    Reader() {
        m_old = orv::setAccessibleListener([this](QAccessibleEvent& event) {
            events << QString(qAccessibleEventString(event.type())) + u' ' +
                          nameOf(event.accessibleInterface());
        });
    }
    ~Reader() { orv::setAccessibleListener(m_old); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Those of one kind, which are forgotten then.
    QStringList heard(const QString& kind) {
        QStringList found;
        for (const QString& event : std::exchange(events, {})) {
            if (event.startsWith(kind + u' ')) found << event.mid(kind.size() + 1);
        }
        return found;
    }

    QStringList events;

private:
    orv::AccessibleListener m_old;
};

const QString condition =
    "t.a in ('London', 'Paris') and (t.b between 1 and 5 or not (t.c is null))";

}  // namespace

class WhereAccessibleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the list and its rows

    void panelIsAListOfTheShownRows() {
        const Read on(condition);
        QCOMPARE(on.list()->role(), QAccessible::List);
        QCOMPARE(nameOf(on.list()), "Conditions");
        QCOMPARE(
            namesOfChildren(on.list()),
            QStringList(
                {"All of following are met, 2 conditions, expanded", "1. T.A IN 'London', 'Paris'",
                 "2. Any of following are met, 2 conditions, expanded", "2.1. T.B BETWEEN 1 and 5",
                 "2.2. None of following are met, 1 condition, expanded", "2.2.1. T.C IS NULL"}));
        on.panel().setCurrentElement(on.row(2)->Controls[0].get());
        on.panel().ExpandCollapse();
        QCOMPARE(namesOfChildren(on.list()),
                 QStringList({"All of following are met, 2 conditions, expanded",
                              "1. T.A IN 'London', 'Paris'",
                              "2. Any of following are met, 2 conditions, collapsed"}));
        QVERIFY(!on.list()->child(3));
        QVERIFY(!on.list()->child(-1));
        QCOMPARE(namesOfChildren(Read("").list()),
                 QStringList("All of following are met, no conditions, expanded"));
    }

    void rowsTellWhatIsWrong() {
        const Read on("t.a = 1 and t.b = 2 and x.y = 3");
        on.row(1)->Valid = false;
        on.row(2)->Arguments[0] = orv::blankText();
        on.panel().rootRow()->SubRows->AddRow()->SetGroupOper("Any");
        QCOMPARE(nameOf(on.readRow(1)), "1. T.A = 1, type mismatch");
        QCOMPARE(nameOf(on.readRow(2)), "2. T.B = empty, This condition is not filled in.");
        const QString problem = on.panel().rowProblem(*on.row(3));
        QVERIFY(!problem.isEmpty());
        QCOMPARE(nameOf(on.readRow(3)), "3. X.Y = 3, " + problem);
        QCOMPARE(nameOf(on.readRow(4)),
                 "4. Any of following are met, no conditions, expanded, "
                 "This group has no conditions.");
    }

    // It keeps the mark of the condition that it was made of, which has that mark itself.
    void groupHasNoTypes() {
        const Read on("t.a = 1");
        on.row(1)->Valid = false;
        on.panel().setCurrentElement(on.row(1)->Controls[ekButton].get());
        on.panel().MakeCompositCondition();
        QCOMPARE(nameOf(on.readRow(1)), "1. All of following are met, 1 condition, expanded");
        QCOMPARE(nameOf(on.readRow(2)), "1.1. T.A = 1, type mismatch");
    }

    void rowsTellTheirLevelAndState() {
        const Read on(condition);
        const auto level = [&](int index) {
            return on.readRow(index)->text(QAccessible::Description);
        };
        QCOMPARE(level(0), "level 1");
        QCOMPARE(level(1), "level 2");
        QCOMPARE(level(3), "level 3");
        QCOMPARE(level(5), "level 4");
        const auto state = [&](int index) { return on.readRow(index)->state(); };
        QVERIFY(state(0).expanded && !state(0).expandable);
        QVERIFY(!state(1).expanded && !state(1).collapsed && !state(1).expandable);
        QVERIFY(state(2).expanded && !state(2).collapsed && state(2).expandable);
        QVERIFY(state(0).selected && !state(1).selected && state(1).selectable);
        on.row(2)->SetExpanded(false);
        QVERIFY(!state(2).expanded && state(2).collapsed);
        on.panel().setActiveElement(on.row(2)->Controls[1].get());
        QVERIFY(!state(0).selected && state(2).selected);
        QVERIFY(!state(1).invisible && !state(1).offscreen && !state(1).disabled);
        on.builder.WherePanel->setEnabled(false);
        QVERIFY(state(1).disabled);
        on.builder.WherePanel->hide();
        QVERIFY(state(1).invisible && state(1).offscreen);
    }

    void longTextsAreReadInPart() {
        const Read on("t.a = 1");
        on.row(1)->Arguments[0] = u'\'' + QString(20'000, u'x') + u'\'';
        QVERIFY(nameOf(on.readRow(1)).size() < 1000);
        QVERIFY(nameOf(on.readRow(1)).endsWith("x..."));
    }

    void parentsAndChildrenAgree() {
        const Read on(condition);
        QAccessibleInterface* list = on.list();
        QCOMPARE(list->childCount(), 6);
        for (int index = 0; index < 6; ++index) {
            QAccessibleInterface* row = list->child(index);
            QVERIFY(row && row->isValid());
            QCOMPARE(row->parent(), list);
            QCOMPARE(list->indexOfChild(row), index);
            QCOMPARE(list->child(index), row);
            QCOMPARE(row->role(), QAccessible::ListItem);
            QCOMPARE(row->window(), on.builder.windowHandle());
            QVERIFY(row->childCount() >= 2);
            for (int place = 0; place < row->childCount(); ++place) {
                QAccessibleInterface* element = row->child(place);
                QVERIFY(element && element->isValid());
                QCOMPARE(element->parent(), row);
                QCOMPARE(row->indexOfChild(element), place);
                QCOMPARE(row->child(place), element);
                QCOMPARE(list->indexOfChild(element), -1);
            }
            QVERIFY(!row->child(row->childCount()));
            QVERIFY(!row->child(-1));
        }
        QCOMPARE(list->child(1)->indexOfChild(list->child(3)->child(0)), -1);
        QCOMPARE(list->indexOfChild(nullptr), -1);
        QVERIFY(list->parent());
        QVERIFY(list->parent()->indexOfChild(list) >= 0);
    }

    // --- elements

    void elementsTellWhatTheyAre() {
        const Read on(condition);
        QCOMPARE(namesOfChildren(on.readRow(0)),
                 QStringList({"commands of all conditions", "group operator All"}));
        QCOMPARE(namesOfChildren(on.readRow(1)),
                 QStringList({"commands of 1.", "field T.A", "operator IN",
                              "argument: 'London', 'Paris'"}));
        QCOMPARE(namesOfChildren(on.readRow(3)),
                 QStringList({"commands of 2.1.", "field T.B", "operator BETWEEN",
                              "argument 1 of 2: 1", "argument 2 of 2: 5"}));
        const QList<QAccessible::Role> roles = {QAccessible::Button, QAccessible::EditableText,
                                                QAccessible::Link, QAccessible::EditableText,
                                                QAccessible::EditableText};
        for (int index = 0; index < 5; ++index) {
            QCOMPARE(on.readRow(3)->child(index)->role(), roles[index]);
        }
        QCOMPARE(on.readRow(2)->child(1)->role(), QAccessible::Link);
        on.row(3)->FieldName = orv::blankText();
        on.row(3)->Arguments[1] = orv::blankText();
        QCOMPARE(nameOf(on.readRow(3)->child(1)), "field, empty");
        QCOMPARE(nameOf(on.readRow(3)->child(4)), "argument 2 of 2, empty");
        on.row(3)->FieldName = QString(40, u'F');
        QCOMPARE(on.readRow(3)->child(1)->text(QAccessible::Value), QString(40, u'F'));
    }

    void functionsAreElementsOfTheHavingPanel() {
        Read on("");
        on.builder.LoadSQL("select t.b from t group by t.b having sum(t.a) > 1");
        on.builder.PageCtrl->setCurrentIndex(2);
        QAccessibleInterface* row = interfaceOf(on.builder.HavingPanel)->child(1);
        QCOMPARE(nameOf(row), "1. SUM(T.A) > 1");
        QCOMPARE(namesOfChildren(row),
                 QStringList({"commands of 1.", "function SUM", "field T.A", "operator >",
                              "no function of the argument", "argument: 1"}));
    }

    void collapsedGroupTellsItsCondition() {
        const Read on(condition);
        on.row(2)->SetExpanded(false);
        QCOMPARE(on.readRow(2)->child(1)->text(QAccessible::Value),
                 "((T.B BETWEEN 1 and 5) or not((T.C IS NULL )))");
    }

    // --- places

    void rectanglesAreThoseOfTheScreen() {
        Read on(condition + " and t.d = " + QString("'%1'").arg(QString(400, u'x')));
        on.builder.WherePanel->setFixedSize(160, 90);
        QCoreApplication::processEvents();
        const QWidget& view = *on.panel().viewport();
        for (const QPoint& scroll : {QPoint(0, 0), QPoint(7, 33)}) {
            on.panel().horizontalScrollBar()->setValue(scroll.x());
            on.panel().verticalScrollBar()->setValue(scroll.y());
            QCOMPARE(on.panel().verticalScrollBar()->value(), scroll.y());
            QCOMPARE(on.panel().horizontalScrollBar()->value(), scroll.x());
            for (int index = 0; index < on.list()->childCount(); ++index) {
                QAccessibleInterface* row = on.readRow(index);
                const QPoint left = view.mapToGlobal(QPoint(0, 20 * index - scroll.y()));
                QCOMPARE(row->rect(), QRect(left, QSize(view.width(), 20)));
                QCOMPARE(bool(row->state().offscreen),
                         !QRect(view.mapToGlobal(QPoint()), view.size()).intersects(row->rect()));
                const TorvQDControl& button = *on.row(index)->Controls[0];
                QCOMPARE(row->child(0)->rect(), QRect(left + QPoint(button.Left - scroll.x(), 0),
                                                      QSize(button.Width, 20)));
            }
        }
        QVERIFY(on.readRow(0)->state().offscreen);
        QVERIFY(!on.readRow(3)->state().offscreen);
    }

    void placesAgreeWithThePanel() {
        Read on(condition);
        on.builder.WherePanel->setFixedSize(160, 70);
        QCoreApplication::processEvents();
        on.panel().verticalScrollBar()->setValue(25);
        QWidget& view = *on.panel().viewport();
        int rows = 0;
        int elements = 0;
        for (int y = -4; y < view.height() + 4; y += 3) {
            for (int x = -4; x < view.width() + 4; x += 5) {
                const QPoint global = view.mapToGlobal(QPoint(x, y));
                QAccessibleInterface* found = on.list()->childAt(global.x(), global.y());
                const bool isInside = view.rect().contains(x, y);
                int top = 0;
                const TorvQDWhereRow* row = isInside ? on.panel().LookRows(y + 25, top) : nullptr;
                QCOMPARE(found, row ? on.readRow(orv::ConditionLayout::positionOf(*row)) : nullptr);
                if (!found) continue;
                ++rows;
                QAccessibleInterface* part = found->childAt(global.x(), global.y());
                QCOMPARE(part != nullptr, on.panel().elementAt({x, y}) != nullptr);
                if (!part) continue;
                ++elements;
                QVERIFY(part->rect().contains(global));
            }
        }
        QVERIFY(rows > 50 && elements > 20 && elements < rows);
    }

    // --- actions

    void pressIsAClick() {
        const Read on(condition);
        act(on.element(1, "commands of 1."), QAccessibleActionInterface::pressAction());
        QVERIFY(on.menu("RowMenu")->isVisible());
        QCOMPARE(on.panel().CurrentElement(), on.row(1)->Controls[0].get());
        on.menu("RowMenu")->close();
        act(on.element(1, "operator IN"), QAccessibleActionInterface::pressAction());
        QVERIFY(on.menu("OperatorMenu")->isVisible());
        QCOMPARE(on.panel().ActiveElement(), on.row(1)->Controls[3].get());
        on.menu("OperatorMenu")->close();
        act(on.readRow(2), QAccessibleActionInterface::pressAction());
        QVERIFY(on.menu("GroupMenu")->isVisible());
        on.menu("GroupMenu")->close();
        on.row(2)->SetExpanded(false);
        act(on.readRow(2), QAccessibleActionInterface::pressAction());
        QVERIFY(on.row(2)->Expanded);
        act(on.readRow(3), QAccessibleActionInterface::showMenuAction());
        QVERIFY(on.menu("RowMenu")->isVisible());
        QCOMPARE(on.panel().CurrentElement(), on.row(3)->Controls[0].get());
        on.menu("RowMenu")->close();
    }

    void readerDoesNotWaitForThePress() {
        const Read on(condition);
        on.element(1, "operator IN")
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(!on.menu("OperatorMenu")->isVisible());
        // What it was about is gone meanwhile.
        on.panel().ClearContents();
        QCoreApplication::processEvents();
        QVERIFY(!on.menu("OperatorMenu")->isVisible());
    }

    void focusIsSetOnAnElement() {
        const Read on(condition);
        on.builder.PageCtrl->setFocus();
        act(on.element(3, "argument 2 of 2: 5"), QAccessibleActionInterface::setFocusAction());
        QVERIFY(on.panel().hasFocus());
        QCOMPARE(on.panel().ActiveElement(), on.row(3)->Controls[6].get());
        QCOMPARE(on.panel().CurrentElement(), on.row(3)->Controls[6].get());
    }

    void disabledPanelDoesNothing() {
        const Read on(condition);
        on.builder.WherePanel->setEnabled(false);
        act(on.element(1, "operator IN"), QAccessibleActionInterface::pressAction());
        QVERIFY(!on.menu("OperatorMenu")->isVisible());
    }

    // --- the focus

    void focusIsInOnePlaceOnly() {
        const Read on(condition);
        QCOMPARE(on.list()->focusChild(), on.element(0, "group operator All"));
        QVERIFY(!on.list()->state().focused);
        QVERIFY(on.element(0, "group operator All")->state().focused);
        QVERIFY(!on.readRow(0)->state().focused);
        on.panel().setActiveElement(on.row(1)->Controls[2].get());
        QCOMPARE(on.list()->focusChild(), on.element(1, "field T.A"));
        QVERIFY(!on.element(0, "group operator All")->state().focused);
        on.builder.PageCtrl->setFocus();
        QVERIFY(!on.element(1, "field T.A")->state().focused);
    }

    void readersHearWhereTheFocusGoes() {
        Read on(condition);
        Reader reader;
        QTest::keyClick(&on.panel(), Qt::Key_Down);
        QCOMPARE(reader.heard("Focus"), QStringList("field T.A"));
        QTest::keyClick(&on.panel(), Qt::Key_Right);
        QCOMPARE(reader.heard("Focus"), QStringList("operator IN"));
        QTest::keyClick(&on.panel(), Qt::Key_Home);
        QCOMPARE(reader.heard("Focus"), QStringList("group operator All"));
        QTest::keyClick(&on.panel(), Qt::Key_Home);
        QCOMPARE(reader.heard("Focus"), QStringList());
        on.builder.PageCtrl->setFocus();
        on.panel().setActiveElement(on.row(1)->Controls[2].get());
        QCoreApplication::processEvents();
        QCOMPARE(reader.heard("Focus"), QStringList());
        on.panel().setFocus();
        QCoreApplication::processEvents();
        QCOMPARE(reader.heard("Focus"), QStringList("field T.A"));
    }

    void readersHearOfRowsThatComeAndGo() {
        RecordedServices services;
        Read on("t.a = 1 and t.b = 2");
        Reader reader;
        on.panel().setActiveElement(on.row(2)->Controls[2].get());
        QCOMPARE(reader.heard("Focus"), QStringList("field T.B"));
        QTest::keyClick(&on.panel(), Qt::Key_Insert);
        QVERIFY(reader.events.contains("ObjectReorder Conditions"));
        QCOMPARE(reader.heard("Focus"), QStringList("field, empty"));
        QTest::keyClick(&on.panel(), Qt::Key_Delete, Qt::ControlModifier);
        QVERIFY(reader.events.contains("ObjectReorder Conditions"));
        QCOMPARE(reader.heard("Focus"), QStringList("group operator All"));
        QCOMPARE(on.list()->childCount(), 3);
        on.panel().setCurrentElement(nullptr);
        on.builder.LoadSQL("select t.a from t where t.c = 3");
        QCOMPARE(reader.heard("ObjectReorder"), QStringList("Conditions"));
    }

    void readersHearOfNewContentAndOfOpening() {
        Read on(condition);
        Reader reader;
        on.row(1)->Arguments[0] = "'Rome'";
        on.row(1)->Changed(false);
        on.panel().refreshView();
        QCOMPARE(reader.heard("NameChanged"), QStringList("1. T.A IN 'Rome'"));
        on.panel().setCurrentElement(on.row(2)->Controls[0].get());
        on.panel().ExpandCollapse();
        QCOMPARE(reader.heard("StateChanged"),
                 QStringList("2. Any of following are met, 2 conditions, collapsed"));
    }

    // A long list is no reason to make interfaces that nobody asks for.
    void interfacesAreMadeOnDemand() {
        QStringList conditions;
        for (int index = 0; index < 2000; ++index) conditions << "t.a = 1";
        Read on(conditions.join(" and "));
        Reader reader;
        QTest::keyClick(&on.panel(), Qt::Key_End);
        QCOMPARE(reader.heard("Focus").size(), 1);
        QCOMPARE(on.list()->childCount(), 2001);
        QAccessibleInterface* last = on.list()->child(2000);
        QCOMPARE(on.list()->indexOfChild(last), 2000);
        const QAccessible::Id before = QAccessible::uniqueId(last);
        QTest::keyClick(&on.panel(), Qt::Key_Insert);
        QTest::keyClick(&on.panel(), Qt::Key_Up);
        // The new row has an interface, with its new element; the others have theirs from before.
        QAccessibleInterface* added = on.list()->child(2001);
        QVERIFY(QAccessible::uniqueId(added) - before < 10);
    }

    void elementsHaveNoParts() {
        const Read on("t.a = 1");
        QAccessibleInterface* row = on.readRow(1);
        QVERIFY(row->childCount() >= 4);
        for (int index = 0; index < row->childCount(); ++index) {
            QAccessibleInterface* element = row->child(index);
            QCOMPARE(element->childCount(), 0);
            QVERIFY(!element->child(0));
            QVERIFY(!element->childAt(element->rect().center().x(), element->rect().center().y()));
            QCOMPARE(element->indexOfChild(row), -1);
        }
    }

    // --- what is gone

    void interfacesOfGoneRowsAreInvalid() {
        const Read on(condition);
        const QAccessible::Id row = QAccessible::uniqueId(on.readRow(3));
        const QAccessible::Id element = QAccessible::uniqueId(on.readRow(3)->child(1));
        on.row(2)->SetExpanded(false);
        QVERIFY(!QAccessible::accessibleInterface(row)->isValid());
        QVERIFY(!QAccessible::accessibleInterface(element)->isValid());
        QVERIFY(QAccessible::accessibleInterface(element)->state().invalid);
        QCOMPARE(QAccessible::accessibleInterface(element)->rect(), QRect());
        on.row(2)->SetExpanded(true);
        QCOMPARE(on.list()->indexOfChild(QAccessible::accessibleInterface(row)), 3);
        on.panel().ClearContents();
        QVERIFY(!QAccessible::accessibleInterface(row)->isValid());
        QCOMPARE(on.list()->indexOfChild(QAccessible::accessibleInterface(row)), -1);
        act(QAccessible::accessibleInterface(element), QAccessibleActionInterface::pressAction());
    }

    void interfacesDieWithThePanel() {
        QAccessible::Id row = 0;
        QAccessible::Id element = 0;
        {
            const Read on(condition);
            row = QAccessible::uniqueId(on.readRow(3));
            element = QAccessible::uniqueId(on.readRow(3)->child(1));
            QVERIFY(QAccessible::accessibleInterface(element));
        }
        QVERIFY(!QAccessible::accessibleInterface(row));
        QVERIFY(!QAccessible::accessibleInterface(element));
    }

    void interfacesOfGoneRowsDoNotPileUp() {
        const Read on("");
        const QAccessible::Id first = QAccessible::uniqueId(on.readRow(0));
        QList<QAccessible::Id> ids;
        for (int round = 0; round < 200; ++round) {
            on.panel().ClearContents();
            on.panel().rootRow()->SubRows->AddRow();
            ids << QAccessible::uniqueId(on.readRow(1));
        }
        QVERIFY(QAccessible::accessibleInterface(first));
        int alive = 0;
        for (const QAccessible::Id id : ids)
            alive += QAccessible::accessibleInterface(id) != nullptr;
        QVERIFY(alive < 40);
    }

    // --- what lies over the rows

    void openEditorsAreThere() {
        const Read on("t.a = 1");
        QLineEdit inView(on.panel().viewport());
        QCOMPARE(on.list()->childCount(), 2);
        inView.setGeometry(10, 10, 40, 20);
        inView.show();
        QCOMPARE(on.list()->childCount(), 3);
        QAccessibleInterface* pane = on.list()->child(2);
        QCOMPARE(pane->object(), on.panel().viewport());
        QCOMPARE(on.list()->indexOfChild(pane), 2);
        QCOMPARE(pane->parent(), on.list());
        const QPoint middle = inView.mapToGlobal(QPoint(5, 5));
        QCOMPARE(on.list()->childAt(middle.x(), middle.y()), pane);
        QLineEdit beside(&on.panel());
        beside.setGeometry(100, 10, 40, 20);
        beside.show();
        QCOMPARE(on.list()->child(3), interfaceOf(&beside));
        QCOMPARE(on.list()->indexOfChild(interfaceOf(&beside)), 3);
        inView.hide();
        beside.hide();
        QCOMPARE(on.list()->childCount(), 2);
    }

    // --- what is gone

    void rowsThatAreGoneAreForgotten() {
        QStringList conditions;
        for (int index = 0; index < 60; ++index) conditions << "t.a = " + QString::number(index);
        const Read on(conditions.join(" and "));
        QList<QAccessible::Id> ids;
        for (int index = 1; index <= 60; ++index) ids << QAccessible::uniqueId(on.readRow(index));
        for (const QAccessible::Id id : ids) QVERIFY(QAccessible::accessibleInterface(id));
        const QAccessible::Id root = QAccessible::uniqueId(on.readRow(0));
        on.panel().rootRow()->SubRows->Clear();
        on.panel().refreshView();
        QCOMPARE(QAccessible::uniqueId(on.readRow(0)), root);
        for (const QAccessible::Id id : ids) QVERIFY(!QAccessible::accessibleInterface(id));
        QVERIFY(QAccessible::accessibleInterface(root)->isValid());
    }

    // --- the menu of functions

    void blankFunctionIsReadAsNoFunction() {
        const Read on("");
        auto* menu = on.builder.HavingPanel->findChild<QMenu*>("FunctionMenu");
        QAccessibleInterface* items = interfaceOf(menu);
        QCOMPARE(namesOfChildren(items),
                 QStringList({"no function", "SUM", "MIN", "MAX", "AVG", "COUNT"}));
        QAction* item = menu->actions().front();
        QCOMPARE(item->text(), QString(9, u' '));
        QAccessibleInterface* first = items->child(0);
        QCOMPARE(first->role(), QAccessible::MenuItem);
        QCOMPARE(first->parent(), items);
        QCOMPARE(items->indexOfChild(first), 0);
        QVERIFY(!first->state().disabled);
        QVERIFY(first->isValid());
        QCOMPARE(first->childCount(), 0);
        QVERIFY(!first->child(0));
        QCOMPARE(first->indexOfChild(items), -1);
        QCOMPARE(first->actionInterface()->actionNames(),
                 QStringList(QAccessibleActionInterface::pressAction()));
        QCOMPARE(first->rect(), QRect(menu->mapToGlobal(menu->actionGeometry(item).topLeft()),
                                      menu->actionGeometry(item).size()));
        int triggered = 0;
        connect(item, &QAction::triggered, menu, [&] { ++triggered; });
        RecordedServices services;
        act(first, QAccessibleActionInterface::pressAction());
        QCOMPARE(triggered, 1);
    }
};

QTEST_MAIN(WhereAccessibleTest)
#include "tst_whereaccessible.moc"
