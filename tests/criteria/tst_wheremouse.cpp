// SPDX-License-Identifier: MIT
#include "criteria/ShownConditions.h"

#include <QClipboard>
#include <QPointer>

using orvtest::ShownConditions;

namespace {

const QString blanks(9, u' ');
const QString nested = "t.a = 1 and (t.b = 2 or t.c = 3) and t.d between 1 and 9";
const QStringList operatorCaptions = {
    "=",        "<>", "<",      ">",       "<=",          ">=",      "LIKE",
    "NOT LIKE", "IN", "NOT IN", "BETWEEN", "NOT BETWEEN", "IS NULL", "IS NOT NULL"};

/// Between two elements of a row.
QPoint gapOf(const ShownConditions& on, const QString& number, int kind) {
    const QRect rect = on.panel->elementRect(*on.element(number, kind));
    return {rect.right() + 2, rect.center().y()};
}

}  // namespace

class WhereMouseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what commands are about

    void hoveringChangesNoTarget() {
        ShownConditions on(nested);
        on.select("1.", 2);
        on.hover(on.at("3.", 5));
        on.hover(on.at("2.", 0));
        on.hover(QPoint(5, 200));
        QCOMPARE(on.current(), "1.:2");
        QCOMPARE(on.active(), "1.:2");
        on.panel->AddCondition();
        QCOMPARE(on.root()->SubRows->GetCount(), 4);
        QCOMPARE(on.row("2.")->SubRows->GetCount(), 2);
    }

    void pressNeedsNoMoveBefore() {
        ShownConditions on(nested);
        on.press(on.at("2.1.", 5));
        QCOMPARE(on.current(), "2.1.:5");
        QCOMPARE(on.active(), "2.1.:5");
        on.press(on.at("", 1));
        QCOMPARE(on.current(), ":1");
        QCOMPARE(on.active(), ":1");
    }

    // The second press of two quick ones is one like the first.
    void doubleClickGoesWhereItIs() {
        ShownConditions on(nested);
        on.press(on.at("1.", 2));
        on.release(on.at("1.", 2));
        QTest::mouseDClick(on.view(), Qt::LeftButton, {}, on.at("2.1.", 5));
        QCOMPARE(on.current(), "2.1.:5");
        QCOMPARE(on.active(), "2.1.:5");
    }

    void pressOnAButtonKeepsTheFrame() {
        ShownConditions on(nested);
        on.press(on.at("1.", 3));
        on.press(on.at("2.", 0));
        QCOMPARE(on.current(), "2.:0");
        QCOMPARE(on.active(), "1.:3");
    }

    void pressBesideTheElementsKeepsTheFrame_data() {
        QTest::addColumn<bool>("isBelow");
        QTest::newRow("between elements") << false;
        QTest::newRow("below the rows") << true;
    }
    void pressBesideTheElementsKeepsTheFrame() {
        QFETCH(bool, isBelow);
        ShownConditions on(nested);
        on.select("1.", 2);
        on.click(isBelow ? QPoint(80, 20 * 6 + 3) : gapOf(on, "1.", 2));
        QCOMPARE(on.active(), "1.:2");
        QCOMPARE(on.current(), "none");
        QCOMPARE(on.openMenu(), "");
        QVERIFY(!on.panel->isEditing());
    }

    void pressBesideTheElementsOfAnotherRowChoosesIt() {
        ShownConditions on(nested);
        on.select("1.", 2);
        on.click(QPoint(600, on.at("2.1.", 2).y()));
        QCOMPARE(on.active(), "2.1.:2");
        on.click(QPoint(600, on.at("2.", 1).y()));
        QCOMPARE(on.active(), "2.:1");
        QVERIFY(!on.panel->isEditing());
        QCOMPARE(on.openMenu(), "");
    }

    void otherButtonsOfTheMouseDoNothing() {
        for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
            ShownConditions on(nested);
            on.select("1.", 2);
            QTest::mouseClick(on.view(), button, {}, on.at("2.", 1));
            QTest::mouseClick(on.view(), button, {}, on.at("2.", 0));
            QCOMPARE(on.active(), "1.:2");
            QCOMPARE(on.current(), "1.:2");
            QCOMPARE(on.openMenu(), "");
        }
    }

    void pressTakesTheFocus() {
        ShownConditions on(nested);
        on.before->setFocus();
        on.press(on.at("1.", 2));
        QVERIFY(on.panel->hasFocus());
        on.before->setFocus();
        on.press(QPoint(300, 200));
        QVERIFY(on.panel->hasFocus());
    }

    void pressAloneOpensNothing() {
        ShownConditions on(nested);
        on.press(on.at("1.", 0));
        QCOMPARE(on.openMenu(), "");
        on.release(on.at("1.", 0));
        QCOMPARE(on.openMenu(), "RowMenu");
    }

    void elementUnderTheReleaseIsClicked() {
        ShownConditions on(nested);
        on.press(on.at("1.", 2));
        on.hover(on.at("3.", 0), Qt::LeftButton);
        on.release(on.at("3.", 0));
        QCOMPARE(on.openMenu(), "RowMenu");
        QCOMPARE(on.current(), "3.:0");
        QCOMPARE(on.active(), "1.:2");
        on.closeMenus();
        on.press(on.at("1.", 0));
        on.release(QPoint(300, 200));
        QCOMPARE(on.openMenu(), "");
    }

    void scrolledRowsAreClickedWhereTheyAreSeen() {
        QStringList many;
        for (int index = 0; index < 60; ++index) many << "t.a = " + QString::number(index);
        many << "'" + QString(30, u'W') + "' = '" + QString(40, u'W') + "'";
        ShownConditions on(many.join(" and "));
        on.panel->verticalScrollBar()->setValue(1000);
        on.panel->horizontalScrollBar()->setValue(17);
        QCOMPARE(on.panel->horizontalScrollBar()->value(), 17);
        QCOMPARE(on.at("55.", 2).y(), 55 * 20 + 9 - on.panel->verticalScrollBar()->value());
        on.press(on.at("55.", 2));
        QCOMPARE(on.current(), "55.:2");
        QCOMPARE(on.panel->elementAt(QPoint(on.element("55.", 3)->Left - 17, on.at("55.", 2).y())),
                 on.element("55.", 3));
    }

    // --- cursors

    void handPointsAtElementsOnly() {
        ShownConditions on(nested);
        const auto shape = [&](const QPoint& point) {
            on.hover(point);
            return on.view()->cursor().shape();
        };
        QCOMPARE(shape(on.at("1.", 2)), Qt::PointingHandCursor);
        QCOMPARE(shape(gapOf(on, "1.", 2)), Qt::ArrowCursor);
        QCOMPARE(shape(on.at("1.", 0)), Qt::PointingHandCursor);
        QCOMPARE(shape(on.at("", 1)), Qt::PointingHandCursor);
        QCOMPARE(shape(QPoint(80, 200)), Qt::ArrowCursor);
        QCOMPARE(shape(on.at("2.2.", 5)), Qt::PointingHandCursor);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(on.view(), &leave);
        QCOMPARE(on.view()->cursor().shape(), Qt::ArrowCursor);
    }

    void cursorFollowsRowsThatDieUnderIt() {
        ShownConditions on("t.a = 1");
        const QPoint place = on.at("1.", 2);
        on.hover(place);
        on.root()->SubRows->Clear();
        on.hover(place);
        QCOMPARE(on.view()->cursor().shape(), Qt::ArrowCursor);
    }

    void rowMenuResetsTheCursor() {
        ShownConditions on(nested);
        const QPoint place = on.at("1.", 0);
        on.hover(place);
        on.click(place);
        QCOMPARE(on.view()->cursor().shape(), Qt::ArrowCursor);
        on.closeMenus();
        on.hover(place);
        QCOMPARE(on.view()->cursor().shape(), Qt::PointingHandCursor);
    }

    // --- the row menu

    void rowMenuTellsWhatIsPossible_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<bool>("isCollapsed");
        QTest::addColumn<QStringList>("items");
        const QStringList text = {"-", "Duplicate condition", "Copy", "Paste (off)",
                                  "Mute condition"};
        const QStringList group = QStringList({"Add condition", "Make compose condition (off)",
                                               "Delete condition", "-", "Collapse condition"}) +
                                  text;
        QTest::newRow("condition")
            << "1." << false
            << QStringList({"Add condition", "Make compose condition", "Delete condition", "-",
                            "Expand condition (off)"}) +
                   text;
        QTest::newRow("group") << "2." << false << group;
        QTest::newRow("collapsed group")
            << "2." << true << (group.mid(0, 4) << "Expand condition") + text;
        QTest::newRow("root") << "" << false
                              << QStringList({"Add condition", "Make compose condition (off)",
                                              "Delete condition (off)", "-",
                                              "Collapse condition (off)", "-",
                                              "Duplicate condition (off)", "Copy", "Paste (off)",
                                              "Mute condition (off)"});
    }
    void rowMenuTellsWhatIsPossible() {
        QFETCH(QString, number);
        QFETCH(bool, isCollapsed);
        QFETCH(QStringList, items);
        QGuiApplication::clipboard()->clear();
        for (const auto page : {ShownConditions::Where, ShownConditions::Having}) {
            ShownConditions on(nested, page);
            // The menu of another row does not shine through.
            on.click(number == "1." ? "2." : "1.", 0);
            on.closeMenus();
            on.row("2.")->SetExpanded(!isCollapsed);
            on.click(number, 0);
            QCOMPARE(on.openMenu(), "RowMenu");
            QCOMPARE(on.captions("RowMenu"), items);
        }
    }

    void rightClickAndMenuKeyOpenTheRowMenu() {
        ShownConditions on(nested);
        on.select("1.", 2);
        on.askForMenu(on.at("2.2.", 5), QContextMenuEvent::Mouse);
        QCOMPARE(on.openMenu(), "RowMenu");
        QCOMPARE(on.current(), "2.2.:0");
        QCOMPARE(on.active(), "1.:2");
        on.closeMenus();
        on.askForMenu(gapOf(on, "3.", 2), QContextMenuEvent::Mouse);
        QCOMPARE(on.current(), "3.:0");
        on.closeMenus();
        on.askForMenu(QPoint(80, 200), QContextMenuEvent::Mouse);  // below the rows
        QCOMPARE(on.openMenu(), "");
        on.askForMenu(on.at("2.2.", 5), QContextMenuEvent::Keyboard);
        QCOMPARE(on.openMenu(), "RowMenu");
        QCOMPARE(on.current(), "1.:0");
        const QRect button = on.panel->elementRect(*on.element("1.", 0));
        QCOMPARE(on.menu("RowMenu")->pos(),
                 on.view()->mapToGlobal(QPoint(button.left(), button.top() + 20)));
    }

    void menuKeyWithoutAnActiveElementDoesNothing() {
        ShownConditions on(nested);
        on.panel->setActiveElement(nullptr);
        on.askForMenu(QPoint(), QContextMenuEvent::Keyboard);
        QCOMPARE(on.openMenu(), "");
    }

    void itemsOfTheRowMenuRunTheCommands() {
        ShownConditions on("t.a = 1 and t.b = 2");
        on.click("1.", 0);
        on.choose("RowMenu", "Add condition");
        QCOMPARE(on.rows(), "All(T.A =[1]; T.B =[2];  =[])");
        on.click("1.", 0);
        on.choose("RowMenu", "Make compose condition");
        QCOMPARE(on.rows(), "All(All(T.A =[1]); T.B =[2];  =[])");
        on.click("1.", 0);
        on.choose("RowMenu", "Collapse condition");
        QVERIFY(!on.row("1.")->Expanded);
        on.click("1.", 0);
        on.choose("RowMenu", "Expand condition");
        QVERIFY(on.row("1.")->Expanded);
        on.click("3.", 0);
        on.choose("RowMenu", "Delete condition");
        QCOMPARE(on.rows(), "All(All(T.A =[1]); T.B =[2])");
        QCOMPARE(on.changes, 3);
        QVERIFY(on.services.errors.isEmpty());
        QCOMPARE(on.services.messages,
                 QStringList("Are you sure want to delete current condition(s)?"));
    }

    void menusOpenBelowTheirElements() {
        ShownConditions on(nested, ShownConditions::Having);
        on.panel->horizontalScrollBar()->setValue(3);
        const std::tuple<QString, int, QString> clicks[] = {{"2.", 0, "RowMenu"},
                                                            {"2.", 1, "GroupMenu"},
                                                            {"1.", 1, "FunctionMenu"},
                                                            {"1.", 4, "FunctionMenu"},
                                                            {"2.1.", 3, "OperatorMenu"}};
        for (const auto& [number, kind, name] : clicks) {
            on.click(number, kind);
            QCOMPARE(on.openMenu(), name);
            const QRect rect = on.panel->elementRect(*on.element(number, kind));
            QCOMPARE(on.menu(name)->pos(), on.view()->mapToGlobal(rect.topLeft() + QPoint(0, 20)));
            on.closeMenus();
        }
    }

    // --- choices

    void groupMenuSetsTheGroupOperator() {
        ShownConditions on(nested);
        on.click("2.", 1);
        QCOMPARE(on.openMenu(), "GroupMenu");
        QCOMPARE(on.captions("GroupMenu"), QStringList({"All", "Any", "None", "Not all"}));
        QCOMPARE(on.menu("GroupMenu")->activeAction()->text(), "Any");
        on.choose("GroupMenu", "Not all");
        QCOMPARE(on.row("2.")->GroupOper, "Not all");
        on.click("", 1);
        on.choose("GroupMenu", "None");
        QCOMPARE(on.rows(), "None(T.A =[1]; Not all(T.B =[2]; T.C =[3]); T.D BETWEEN[1][9])");
        QCOMPARE(on.changes, 2);
    }

    void clickOnACollapsedGroupExpandsIt() {
        ShownConditions on(nested);
        on.row("2.")->SetExpanded(false);
        on.click("2.", 1);
        QVERIFY(on.row("2.")->Expanded);
        QCOMPARE(on.openMenu(), "");
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.panel->shownRows().size(), std::size_t(6));
        on.click("2.", 1);
        QCOMPARE(on.openMenu(), "GroupMenu");
    }

    void functionMenuSetsTheFunctionOfASide() {
        ShownConditions on("sum(t.a) > 1", ShownConditions::Having);
        on.click("1.", 1);
        QCOMPARE(on.openMenu(), "FunctionMenu");
        QCOMPARE(on.captions("FunctionMenu"), on.builder.AgrFuncs);
        QCOMPARE(on.captions("FunctionMenu").front(), blanks);
        QCOMPARE(on.menu("FunctionMenu")->activeAction()->text(), "SUM");
        on.choose("FunctionMenu", "MIN");
        on.click("1.", 4);
        QCOMPARE(on.menu("FunctionMenu")->activeAction()->text(), blanks);
        on.choose("FunctionMenu", "MAX");
        QCOMPARE(on.rows(), "All(MIN:T.A >[MAX:1])");
        on.click("1.", 1);
        on.choose("FunctionMenu", blanks);
        QCOMPARE(on.row("1.")->FieldFunc, blanks);
        QCOMPARE(on.rows(), "All(T.A >[MAX:1])");
        QCOMPARE(on.changes, 3);
    }

    void panelWithoutFunctionsHasNoneToHit() {
        ShownConditions on("t.a = 1");
        for (int x = 0; x < 400; ++x) {
            const TorvQDControl* element = on.panel->elementAt(QPoint(x, 30));
            QVERIFY(!element || (element->Kind != 1 && element->Kind != 4));
        }
    }

    void operatorMenuSetsTheOperator() {
        ShownConditions on("t.a = 1");
        on.click("1.", 3);
        QCOMPARE(on.openMenu(), "OperatorMenu");
        QCOMPARE(on.captions("OperatorMenu"), operatorCaptions);
        QCOMPARE(on.menu("OperatorMenu")->activeAction()->text(), "=");
        on.choose("OperatorMenu", "BETWEEN");
        QCOMPARE(on.row("1.")->Arguments, QStringList({"1", blanks}));
        (void)on.panel->shownRows();
        QVERIFY(on.element("1.", 6)->Width > 0);
        on.click("1.", 3);
        QCOMPARE(on.menu("OperatorMenu")->activeAction()->text(), "BETWEEN");
        on.choose("OperatorMenu", "IS NULL");
        QCOMPARE(on.rows(), "All(T.A IS NULL[])");
        QCOMPARE(on.changes, 2);
    }

    // An ampersand is no mnemonic, and what an item stands for is not read from its caption.
    void namesWithAmpersandsAreChosen() {
        ShownConditions on("t.a = 1");
        on.builder.Operators->Add(TorvQDOperator{"A&B", "a & b", "", "", "", 1});
        on.builder.Operators->Add(TorvQDOperator{"SECOND", "a & b", "", "", "", 1});
        on.click("1.", 3);
        QCOMPARE(on.captions("OperatorMenu").mid(14), QStringList({"a && b", "a && b"}));
        on.menu("OperatorMenu")->actions().last()->trigger();
        QCOMPARE(on.row("1.")->Operator->Name, "SECOND");
    }

    void operatorMenuShowsTheCatalogueOfTheMoment() {
        ShownConditions on("t.a = 1");
        on.click("1.", 3);
        on.closeMenus();
        on.builder.Operators->Clear();
        on.builder.Operators->Add(TorvQDOperator{"~", "like so", "", "", "", 1});
        on.click("1.", 3);
        QCOMPARE(on.captions("OperatorMenu"), QStringList("like so"));
        on.choose("OperatorMenu", "like so");
        QCOMPARE(on.rows(), "All(T.A ~[1])");
    }

    void operatorOfAReplacedCatalogueIsTheOneThatWasShown() {
        ShownConditions on("t.a = 1");
        on.click("1.", 3);
        QAction* between = on.item("OperatorMenu", "BETWEEN");
        TOperatorList other;
        other.Add(TorvQDOperator{"~", "like so", "", "", "", 1});
        other.Add(TorvQDOperator{"IN", "in", "", "", "", 1});
        on.builder.setOperators(other);
        QCOMPARE(on.rows(), "All(T.A ~[1])");
        between->trigger();
        QCOMPARE(on.rows(), "All(T.A BETWEEN[1][])");
        on.builder.setOperators(TOperatorList());
        // Without any operator in the list a row asks for what it asked before.
        QCOMPARE(on.rows(), "All(T.A BETWEEN[1][])");
    }

    void emptyCatalogueOpensNoMenu() {
        ShownConditions on;
        on.builder.Operators->Clear();
        on.click("", 0);
        on.choose("RowMenu", "Add condition");
        QVERIFY(!on.row("1.")->Operator);
        on.click("1.", 3);
        QCOMPARE(on.current(), "1.:3");
        QCOMPARE(on.openMenu(), "");
        on.key(Qt::Key_Return);
        QCOMPARE(on.openMenu(), "");
        on.view()->grab();
        QVERIFY(on.services.errors.isEmpty());
        QCOMPARE(on.row("1.")->GetSQLCondition(false), "(" + blanks + " = " + blanks + ")");
    }

    // --- rows that go while a menu is open

    void itemOfARowThatIsGoneDoesNothing_data() {
        QTest::addColumn<QString>("event");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("error");
        for (const QString event : {"clear", "load", "delete", "rows"}) {
            const auto row = [&](int kind, const QString& menu, const QString& caption,
                                 const QString& error) {
                QTest::newRow(qPrintable(event + ", " + caption))
                    << event << kind << menu << caption << error;
            };
            row(0, "RowMenu", "Add condition", "There are no active button");
            row(0, "RowMenu", "Make compose condition", "There are no active button");
            row(0, "RowMenu", "Delete condition", "There is no active button");
            row(1, "FunctionMenu", "MAX", "There are no active condition");
            row(3, "OperatorMenu", "BETWEEN", "There are no active condition");
        }
    }
    void itemOfARowThatIsGoneDoesNothing() {
        QFETCH(QString, event);
        QFETCH(int, kind);
        QFETCH(QString, menu);
        QFETCH(QString, caption);
        QFETCH(QString, error);
        ShownConditions on("t.a = 1 and t.b = 2", ShownConditions::Having);
        on.click("2.", kind);
        QCOMPARE(on.openMenu(), menu);
        if (event == "clear") on.builder.Clear();
        if (event == "load") on.builder.LoadSQL("select t.a from t where t.c = 9");
        if (event == "delete") on.root()->SubRows->Delete(1);
        if (event == "rows") on.panel->ClearContents();
        const QString rows = on.rows();
        on.changes = 0;
        on.choose(menu, caption);
        QCOMPARE(on.services.errors, QStringList(error));
        QCOMPARE(on.rows(), rows);
        QVERIFY(on.services.messages.isEmpty());
        QCOMPARE(on.changes, 0);
        on.view()->grab();
    }

    void itemOfAGroupMenuOutlivesItsGroup() {
        ShownConditions on(nested);
        on.click("2.", 1);
        on.root()->SubRows->Delete(1);
        on.choose("GroupMenu", "None");
        QCOMPARE(on.services.errors, QStringList("There are no active condition"));
        QCOMPARE(on.root()->GroupOper, "All");
    }

    void menuDiesWithTheBuilder() {
        orvtest::RecordedServices services;
        orvtest::Host host;
        auto* builder = new TorvQueryBuilder;
        host.attach(*builder);
        builder->resize(700, 560);
        builder->LoadSQL("select t.a from t where t.a = 1");
        builder->show();
        TorvQDWherePanel* panel = builder->WherePanel;
        const TorvQDWhereRow& row = *panel->rootRow()->SubRows->Row(0);
        for (const int kind : {0, 3}) {
            (void)panel->shownRows();
            kind == 0 ? panel->ButtonClick(*row.Controls[0], 20)
                      : panel->TextClick(*row.Controls[3], 20);
        }
        const QPointer<QMenu> menu = panel->findChild<QMenu*>("OperatorMenu");
        QVERIFY(menu->isVisible());
        const QPointer<QAction> item = menu->actions().front();
        delete builder;
        QVERIFY(!menu);
        QVERIFY(!item);
        QVERIFY(services.errors.isEmpty());
    }

    void buttonUnderThePressMayDieBeforeTheRelease() {
        ShownConditions on(nested);
        const QPoint place = on.at("3.", 0);
        on.press(place);
        on.root()->SubRows->Clear();
        on.view()->grab();
        on.release(place);
        QCOMPARE(on.openMenu(), "");
        QCOMPARE(on.current(), "none");
    }
};

QTEST_MAIN(WhereMouseTest)
#include "tst_wheremouse.moc"
