// SPDX-License-Identifier: MIT
// The work area under a real mouse: everything goes through presses and keys of the view.
#include "support/ShownBuilder.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>

using orvtest::ShownBuilder;

class FloatPanelViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- ticking

    void clickOnACheckSquareTicksTheRow() {
        ShownBuilder on;
        on.click(on.checkSquareOf("T", "B"));
        QVERIFY(on.table("T")->GetFieldItem("B")->Checked);
        QCOMPARE(on.table("T")->FieldState, 1);
        QCOMPARE(on.columns(), QStringList("B||T.B"));
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
        on.click(on.checkSquareOf("T", "B"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 2);
        verifyBuilder(on.builder);
    }

    void clickOnACheckSquareWorksWhenScrolled() {
        ShownBuilder on;
        TorvQDWorkArea* area = on.builder.WorkArea;
        on.table("T")->MoveTable(400, 300);
        area->horizontalScrollBar()->setValue(137);
        area->verticalScrollBar()->setValue(253);
        on.click(on.checkSquareOf("T", "C"));
        QCOMPARE(on.columns(), QStringList("C||T.C"));
        verifyBuilder(on.builder);
    }

    void clickBesideTheCheckSquareMakesTheRowCurrent() {
        ShownBuilder on;
        on.click(on.rowTextOf("T", "B"));
        QCOMPARE(on.table("T")->CurrentItem, on.table("T")->GetFieldItem("B"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
    }

    void pressOnOneSquareAndReleaseOnAnotherTicksNothing() {
        ShownBuilder on;
        QTest::mousePress(on.view(), Qt::LeftButton, {}, on.checkSquareOf("T", "A"));
        QTest::mouseRelease(on.view(), Qt::LeftButton, {}, on.checkSquareOf("T", "B"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 0);
    }

    void clickOnTheCaptionsCheckBoxTicksAllRows() {
        ShownBuilder on;
        on.click(on.captionCheckOf("T"));
        QCOMPARE(on.table("T")->FieldState, 2);
        QCOMPARE(on.columns().size(), 5);
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
        on.click(on.captionCheckOf("T"));
        QCOMPARE(on.columns(), QStringList());
        QCOMPARE(on.changes, 2);
        verifyBuilder(on.builder);
    }

    void clickOnTheCaptionsCheckBoxCompletesAPartlyTickedBox() {
        ShownBuilder on;
        on.click(on.checkSquareOf("T", "C"));
        on.click(on.captionCheckOf("T"));
        QCOMPARE(on.columns(), QStringList({"C||T.C", "A||T.A", "B||T.B", "D||T.D", "E||T.E"}));
        verifyBuilder(on.builder);
    }

    // --- selecting and moving

    void pressSelectsAndBringsToTheFront() {
        ShownBuilder on;
        QTest::mousePress(on.view(), Qt::LeftButton, {}, on.captionOf("U"));
        QVERIFY(on.table("U")->Selected);
        QVERIFY(!on.table("T")->Selected);
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.changes, 1);
        QTest::mouseRelease(on.view(), Qt::LeftButton, {}, on.captionOf("U"));
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void keptMeaningDoesNotCareWhichBoxIsInFront() {
        ShownBuilder on;
        on.builder.setKeepMeaning(true);
        on.changes = 0;
        on.click(on.captionOf("U"));
        QCOMPARE(on.changes, 0);
    }

    void pressOnTheSelectedBoxChangesNothing() {
        ShownBuilder on;
        on.click(on.captionOf("T"));
        QCOMPARE(on.changes, 0);
    }

    void pressOnEmptyCanvasDeselects() {
        ShownBuilder on;
        on.click({5, 5});
        QVERIFY(!on.builder.WorkArea->selectedObject());
        QVERIFY(!on.table("T")->Selected);
        QCOMPARE(on.changes, 0);
    }

    void frontMostOfOverlappingBoxesIsHit() {
        ShownBuilder on;
        on.table("T")->MoveTable(on.table("U")->Left - on.table("T")->Left, 0);
        on.click(on.checkSquareOf("U", "A"));
        QCOMPARE(on.columns(), QStringList("A||T.A"));
        verifyBuilder(on.builder);
    }

    void boxIsSelectedByAClickAfterARefusedAddition() {
        ShownBuilder on;
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable*, TAddRemove, bool& can) {
            can = false;
        };
        on.addTable("DEPT");
        on.click(on.captionOf("T"));
        QVERIFY(on.table("T")->Selected);
    }

    void draggingTheCaptionMovesTheBox() {
        ShownBuilder on;
        const TorvQDTable* box = on.table("T");
        const QPoint before(box->Left, box->Top);
        on.drag(on.captionOf("T"), {60, 45});
        QCOMPARE(QPoint(box->Left, box->Top), before + QPoint(60, 45));
        QCOMPARE(on.changes, 0);
        verifyBuilder(on.builder);
    }

    void draggedBoxStaysInsideTheDiagram() {
        ShownBuilder on;
        const TorvQDTable* box = on.table("T");
        on.drag(on.captionOf("T"), {-2000, -2000});
        QCOMPARE(QPoint(box->Left, box->Top), QPoint(0, 0));
    }

    void draggingARowMovesNothing() {
        ShownBuilder on;
        const TorvQDTable* box = on.table("T");
        const QPoint before(box->Left, box->Top);
        on.drag(on.rowTextOf("T", "A"), {0, 30});
        QCOMPARE(QPoint(box->Left, box->Top), before);
    }

    void boxClosedWhileItIsDraggedEndsTheDrag() {
        ShownBuilder on;
        const QPoint from = on.captionOf("T");
        QTest::mousePress(on.view(), Qt::LeftButton, {}, from);
        on.moveTo(from + QPoint(5, 5));
        on.table("T")->CloseTable();
        QCoreApplication::processEvents();
        on.moveTo(from + QPoint(50, 50));
        QTest::mouseRelease(on.view(), Qt::LeftButton, {}, from + QPoint(50, 50));
        QCOMPARE(on.tables(), QStringList("U"));
        verifyBuilder(on.builder);
    }

    void diagramClearedWhileABoxIsDragged() {
        ShownBuilder on;
        const QPoint from = on.captionOf("T");
        QTest::mousePress(on.view(), Qt::LeftButton, {}, from);
        on.moveTo(from + QPoint(5, 5));
        on.builder.Clear();
        QCoreApplication::processEvents();
        on.moveTo(from + QPoint(50, 50));
        QTest::mouseRelease(on.view(), Qt::LeftButton, {}, from + QPoint(50, 50));
        QCOMPARE(on.tables(), QStringList());
        verifyBuilder(on.builder);
    }

    void boxClosedByItsOwnHandlerDuringAPress() {
        ShownBuilder on;
        TorvQDTable* box = on.table("T");
        box->OnMouseDown = [box](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
            box->CloseTable();
        };
        on.click(on.captionOf("T"));
        QCoreApplication::processEvents();
        QCOMPARE(on.tables(), QStringList("U"));
        verifyBuilder(on.builder);
    }

    // Selecting it changed the order of FROM, and the host answered by closing it.
    void pressThatBringsToTheFrontAndTicksIsOneChange() {
        ShownBuilder on;
        on.click(on.captionCheckOf("U"));
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.columns().size(), 3);
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void boxClosedByTheHostDuringAPressIsNotTicked() {
        ShownBuilder on;
        const QPoint point = on.captionCheckOf("U");
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            if (on.table("U")) on.table("U")->CloseTable();
        });
        on.click(point);
        QCOMPARE(on.tables(), QStringList("T"));
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void errorInsideAPressGoesToTheHandler() {
        orvtest::RecordedServices services;
        ShownBuilder on;
        on.table("T")->OnMouseDown = [](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int,
                                        int) { throw orv::Error(QStringLiteral("host")); };
        on.click(on.captionOf("T"));
        QCOMPARE(services.errors, QStringList("host"));
    }

    // --- the scroll bar of the rows

    void rowScrollBarScrollsTheSelectedBox() {
        ShownBuilder on;
        on.host.add("WIDE", QStringList({"A", "B", "C", "D", "E", "F", "G", "H"}));
        TorvQDTable* box = on.addTable("WIDE");
        QScrollBar* bar = rowScrollBar(on);
        QVERIFY(bar && bar->isVisible());
        QCOMPARE(bar->maximum(), 2);
        bar->setValue(2);
        QCOMPARE(box->FirstVisibleItem, 2);
        box->SetFirstVisibleItem(1);
        QCOMPARE(bar->value(), 1);
        on.click(on.captionOf("T"));
        QVERIFY(!bar->isVisible());
    }

    void rowScrollBarGoesWithTheContents() {
        ShownBuilder on;
        on.addTable("WIDE");
        QVERIFY(rowScrollBar(on)->isVisible());
        on.area().ClearContents();
        QVERIFY(!rowScrollBar(on)->isVisible());
        on.addTable("WIDE");
        QVERIFY(rowScrollBar(on)->isVisible());
        on.builder.LoadSQL("select a from t");
        QVERIFY(!rowScrollBar(on)->isVisible());
    }

    // --- the menu

    void rightClickOnTheCaptionOffersDeletingAndRenaming() {
        ShownBuilder on;
        QMenu* menu = menuAt(on, on.captionOf("T"));
        QVERIFY(menu);
        QStringList texts;
        for (const QAction* action : menu->actions()) {
            texts << (action->isSeparator() ? "-" : action->text());
        }
        QCOMPARE(texts, QStringList({"Delete table", "-", "Rename table"}));
        menu->actions().at(0)->trigger();
        QCOMPARE(on.tables(), QStringList("U"));
        menu->close();
    }

    void rightClickElsewhereOnABoxShowsNoMenu() {
        ShownBuilder on;
        QVERIFY(!menuAt(on, on.rowTextOf("T", "A")));
        QVERIFY(!menuAt(on, on.captionCheckOf("T")));
    }

    void rightClickBesideTheBoxesOffersWhatConcernsThemAll() {
        ShownBuilder on;
        QMenu* menu = menuAt(on, {5, 5});
        QVERIFY(menu);
        QStringList texts;
        for (const QAction* action : menu->actions()) {
            texts << (action->isSeparator() ? "-" : action->text().remove(u'&'));
        }
        QCOMPARE(texts, QStringList({"Arrange", "Fit", "Actual size", "-", "Copy as picture"}));
        menu->close();
    }

    void menuRenamesTheBox() {
        ShownBuilder on;
        QMenu* menu = menuAt(on, on.captionOf("U"));
        QVERIFY(menu);
        menu->actions().at(2)->trigger();
        menu->close();
        QVERIFY(on.edit()->isVisible());
        QVERIFY(on.table("U")->Selected);
        QCOMPARE(on.edit()->text(), "U");
    }

    // --- renaming

    void doubleClickOnTheCaptionOpensTheEditOverIt() {
        ShownBuilder on;
        on.builder.WorkArea->renameTable(on.table("T"), "X");
        on.doubleClick(on.captionOf("X"));
        QVERIFY(on.edit()->isVisible());
        QCOMPARE(on.edit()->text(), "X");
        const TorvQDTable* box = on.table("X");
        const QRect caption = box->toView(box->GetCaptionRect()).toQRect();
        QCOMPARE(on.edit()->geometry(), caption.translated(0, 1));
    }

    void editIsSilverBehindItsText() {
        ShownBuilder on;
        on.doubleClick(on.captionOf("T"));
        const QImage image = on.edit()->grab().toImage();
        const QPoint behindTheText(image.width() - 8, image.height() / 2);
        QCOMPARE(image.pixelColor(behindTheText), QColor(0xC0, 0xC0, 0xC0));
    }

    void doubleClickElsewhereOpensNothing() {
        ShownBuilder on;
        on.doubleClick(on.rowTextOf("T", "A"));
        on.doubleClick({5, 5});
        QVERIFY(!on.edit()->isVisible());
    }

    void enterRenames() {
        ShownBuilder on;
        on.doubleClick(on.captionOf("T"));
        QTest::keyClicks(on.edit(), "NEW");
        on.changes = 0;
        QTest::keyClick(on.edit(), Qt::Key_Return);
        QCOMPARE(on.tables(), QStringList({"U", "T NEW"}));
        QVERIFY(!on.edit()->isVisible());
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void escapeKeepsTheAlias() {
        ShownBuilder on;
        on.doubleClick(on.captionOf("T"));
        QTest::keyClicks(on.edit(), "NEW");
        QTest::keyClick(on.edit(), Qt::Key_Escape);
        QCOMPARE(on.tables(), QStringList({"U", "T"}));
        QVERIFY(!on.edit()->isVisible());
        on.builder.CommitPendingEdits();
        QCOMPARE(on.tables(), QStringList({"U", "T"}));
        QCOMPARE(on.changes, 0);
    }

    void lossOfFocusRenames() {
        ShownBuilder on;
        QVERIFY(QTest::qWaitForWindowActive(&on.builder));
        on.doubleClick(on.captionOf("T"));
        QTest::keyClicks(on.edit(), "NEW");
        on.grid()->setFocus(Qt::MouseFocusReason);
        QCOMPARE(on.tables(), QStringList({"U", "T NEW"}));
        QVERIFY(!on.edit()->isVisible());
    }

    void pressOnAnotherBoxRenamesTheEditedOne() {
        ShownBuilder on;
        QVERIFY(QTest::qWaitForWindowActive(&on.builder));
        on.doubleClick(on.captionOf("T"));
        QTest::keyClicks(on.edit(), "NEW");
        on.click(on.captionOf("U"));
        QCOMPARE(on.tables(), QStringList({"U", "T NEW"}));
        QVERIFY(on.table("U")->Selected);
    }

    void takenAliasIsToldAndTheOldOneStays() {
        orvtest::RecordedServices services;
        ShownBuilder on;
        on.doubleClick(on.captionOf("T"));
        QTest::keyClicks(on.edit(), "U");
        QTest::keyClick(on.edit(), Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("Table with alias U already exist!"));
        QCOMPARE(on.tables(), QStringList({"U", "T"}));
        QVERIFY(!on.edit()->isVisible());
    }

    void programMayCommitTheEdit() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.builder.CommitPendingEdits();
        QCOMPARE(on.tables(), QStringList({"U", "T NEW"}));
        QVERIFY(!on.edit()->isVisible());
    }

    void commitByProgramRaises() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("U");
        QCOMPARE(orvtest::errorOf([&] { on.builder.CommitPendingEdits(); }),
                 "Table with alias U already exist!");
        QVERIFY(!on.edit()->isVisible());
    }

    void closingTheEditedBoxDropsTheEdit() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.table("T")->CloseTable();
        QVERIFY(!on.edit()->isVisible());
        QCOMPARE(on.tables(), QStringList("U"));
    }

    void clearingAndLoadingDropTheEdit() {
        ShownBuilder on;
        int renamed = 0;
        on.builder.WorkArea->OnChangeAlias = [&](QObject*, const QString&) { ++renamed; };
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.builder.LoadSQL("select 1 from t");
        QVERIFY(!on.edit()->isVisible());
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.builder.Clear();
        QVERIFY(!on.edit()->isVisible());
        QCOMPARE(renamed, 0);
    }

    void loadingTheShownStatementLeavesTheEditOpen() {
        ShownBuilder on;
        const QString text = on.builder.GetSQLStatment();
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.builder.LoadSQL(text);
        QVERIFY(on.edit()->isVisible());
        QCOMPARE(on.edit()->text(), "NEW");
    }

    void selectionByProgramCommitsTheEditFirst() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        on.addTable("DEPT");
        QCOMPARE(on.tables(), QStringList({"U", "T NEW", "DEPT"}));
        QVERIFY(!on.edit()->isVisible());
    }

    void statementDoesNotCommitTheEdit() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        on.edit()->setText("NEW");
        QVERIFY(!on.builder.GetSQLStatment().contains("NEW"));
        QVERIFY(on.edit()->isVisible());
    }

    void editFollowsTheView() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        const QPoint before = on.edit()->pos();
        on.builder.WorkArea->horizontalScrollBar()->setValue(30);
        on.builder.WorkArea->verticalScrollBar()->setValue(12);
        QCOMPARE(on.edit()->pos(), before - QPoint(30, 12));
    }

    void editFollowsItsBox() {
        ShownBuilder on;
        on.builder.WorkArea->beginRename(on.table("T"));
        const QPoint before = on.edit()->pos();
        on.table("T")->MoveTable(25, 15);
        QCOMPARE(on.edit()->pos(), before + QPoint(25, 15));
    }

    // --- painting

    void diagramIsPaintedIntoAPictureWhereverItIsScrolled() {
        ShownBuilder on;
        const auto picture = [&] {
            QImage image(400, 200, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            on.builder.WorkArea->paintDiagram(painter);
            return image;
        };
        QCOMPARE(
            on.builder.WorkArea->diagramBounds(),
            on.table("T")->GetBoundsRect().toQRect() | on.table("U")->GetBoundsRect().toQRect());
        const QImage first = picture();
        QImage blank(first.size(), first.format());
        blank.fill(Qt::white);
        QVERIFY(first != blank);
        on.builder.WorkArea->horizontalScrollBar()->setValue(137);
        QCOMPARE(picture(), first);
    }

private:
    static QScrollBar* rowScrollBar(const ShownBuilder& on) {
        for (QScrollBar* bar : on.view()->findChildren<QScrollBar*>()) return bar;
        return nullptr;
    }

    // The menu that a right click at the place opens; none when it opens none.
    static QMenu* menuAt(const ShownBuilder& on, const QPoint& point) {
        QTest::mouseClick(on.view(), Qt::RightButton, {}, point);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
};

QTEST_MAIN(FloatPanelViewTest)
#include "tst_floatpanelview.moc"
