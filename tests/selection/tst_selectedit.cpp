// SPDX-License-Identifier: MIT
// The selection grid in the hand: editing cells.
#include "support/ShownGrid.h"

#include <QLineEdit>
#include <QListView>
#include <QMenu>

using orvtest::ShownGrid;

namespace {

const QStringList firstColumns = {"A||T.A", "B||T.B", "X||U.X"};

void loseFocus(QWidget* editor, Qt::FocusReason reason) {
    QFocusEvent event(QEvent::FocusOut, reason);
    QCoreApplication::sendEvent(editor, &event);
}

}  // namespace

class SelectEditTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what was typed is taken over, or stays in its editor

    void everyExitTakesTheTextOver_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("exit");
        for (const int column : {0, 1, 2}) {
            for (const char* exit :
                 {"enter", "tab", "other cell", "diagram", "commit", "builder commits", "page",
                  "tick", "untick", "untick itself", "alias", "delete", "row moves", "other editor",
                  "window", "inactive"}) {
                QTest::addRow("column %d, %s", column, exit) << column << exit;
            }
        }
    }
    void everyExitTakesTheTextOver() {
        QFETCH(int, column);
        QFETCH(QString, exit);
        orvtest::RecordedServices services;
        ShownGrid on;
        const QStringList texts = {"NEW NAME", "MAX", "T.C"};
        const QStringList taken = {"NEW_NAME||T.B", "MAX_OF_B|MAX|T.B", "C||T.C"};
        on.type(column, 2, texts[column]);
        QVERIFY(on.editor());
        QCOMPARE(on.columns(), firstColumns);
        QCOMPARE(on.changes, 0);
        QWidget* editor = on.editor();
        QString expected = taken[column];
        if (exit == "enter") QTest::keyClick(editor, Qt::Key_Enter);
        if (exit == "tab") QTest::keyClick(editor, Qt::Key_Tab);
        if (exit == "other cell") {
            QTest::mouseClick(on.grid()->viewport(), Qt::LeftButton, {}, on.centreOf(0, 1));
        }
        if (exit == "diagram") on.builder.WorkArea->setFocus();
        if (exit == "commit") on.grid()->commitEdit();
        if (exit == "builder commits") on.builder.CommitPendingEdits();
        if (exit == "page") on.builder.PageCtrl->setCurrentIndex(0);
        if (exit == "tick") on.tick("T", "E");
        if (exit == "untick") on.tick("T", "A", false);
        if (exit == "untick itself") on.tick("T", "B", false);
        if (exit == "alias") on.area().renameTable(on.table("T"), "TT");
        if (exit == "delete") {
            on.go(0, 1);
            on.grid()->_DeleteCurrentRow();
        }
        if (exit == "row moves") on.grid()->moveRow(1, 3);
        if (exit == "other editor") on.grid()->_EditText(0, 1);
        if (exit == "window") {
            loseFocus(editor, Qt::ActiveWindowFocusReason);
            QVERIFY(editor->isVisible());
            loseFocus(editor, Qt::MouseFocusReason);
        }
        QWidget other;
        if (exit == "inactive") {
            other.show();
            other.activateWindow();
            QCoreApplication::processEvents();
            QVERIFY(on.grid()->isEditing());
            QTest::mouseClick(on.grid()->viewport(), Qt::LeftButton, {}, on.centreOf(0, 1));
        }
        if (exit == "alias") expected.replace("T.", "TT.");
        if (exit == "untick itself" && column < 2) {
            QVERIFY(!on.columns().contains("B||T.B"));
        } else {
            QVERIFY2(on.columns().contains(expected), qPrintable(on.columns().join(' ')));
        }
        QCOMPARE(on.editor() != nullptr, exit == "other editor");
        QCOMPARE(on.grid()->isEditing(), exit == "other editor");
        QCOMPARE(services.errors, QStringList());
        if (column != 1) verifyBuilder(on.builder);
    }

    void whatIsTypedIsDropped_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("exit");
        for (const int column : {0, 1, 2}) {
            for (const char* exit : {"escape", "discard", "cell key", "load", "clear", "restore"}) {
                QTest::addRow("column %d, %s", column, exit) << column << exit;
            }
        }
    }
    void whatIsTypedIsDropped() {
        QFETCH(int, column);
        QFETCH(QString, exit);
        ShownGrid on;
        const QByteArray state = on.builder.SaveState();
        on.type(column, 2, "T.C");
        QVERIFY(on.editor());
        const bool isLocal = exit == "escape" || exit == "discard" || exit == "cell key";
        if (exit == "escape") QTest::keyClick(on.editor(), Qt::Key_Escape);
        if (exit == "discard") on.grid()->discardEdit();
        if (exit == "cell key") on.grid()->_CellKeyDown(Qt::Key_Escape);
        if (exit == "load") on.builder.LoadSQL("select t.e from t");
        if (exit == "clear") on.builder.Clear();
        if (exit == "restore") on.builder.RestoreState(state);
        QVERIFY(!on.editor());
        QVERIFY(!on.grid()->isEditing());
        QVERIFY(!on.columns().contains("C||T.C"));
        QVERIFY(exit == "clear" || !on.isTicked("T", "C"));
        if (isLocal) {
            QCOMPARE(on.columns(), firstColumns);
            QCOMPARE(on.told, QStringList());
            QCOMPARE(on.changes, 0);
            QVERIFY(on.grid()->hasFocus());
            QCOMPARE(on.current(), QStringLiteral("%1,2").arg(column));
        }
        if (exit == "load") QCOMPARE(on.columns(), QStringList("E||T.E"));
        if (exit == "clear") QCOMPARE(on.columns(), QStringList());
        if (exit == "restore") QCOMPARE(on.columns(), firstColumns);
        if (!isLocal) QCOMPARE(on.changes, 1);
    }

    void editorStaysOpen_data() {
        QTest::addColumn<QString>("event");
        for (const char* event :
             {"popup", "window", "its list", "same statement", "bad statement", "bad state",
              "statement is read", "saved", "name of another row", "unknown field is unticked"}) {
            QTest::addRow("%s", event) << event;
        }
    }
    void editorStaysOpen() {
        QFETCH(QString, event);
        ShownGrid on;
        const QString text = on.builder.GetSQLStatment();
        on.type(2, 2, "T.C");
        QWidget* editor = on.editor();
        QVERIFY(editor);
        const QRect place = editor->geometry();
        if (event == "popup") loseFocus(editor, Qt::PopupFocusReason);
        if (event == "window") loseFocus(editor, Qt::ActiveWindowFocusReason);
        if (event == "its list") {
            on.choice()->showPopup();
            QVERIFY(on.choice()->view()->isVisible());
            QTest::keyClick(on.choice()->view(), Qt::Key_Escape);
            QVERIFY(!on.choice()->view()->isVisible());
            QVERIFY(editor->hasFocus());
        }
        if (event == "same statement") on.builder.LoadSQL(text);
        if (event == "bad statement") {
            QVERIFY(orvtest::errorOf([&] { on.builder.LoadSQL("update t"); }) != "(no error)");
        }
        if (event == "bad state") {
            QVERIFY(orvtest::errorOf([&] { on.builder.RestoreState("no state"); }) != "(no error)");
        }
        if (event == "statement is read") QCOMPARE(on.builder.GetSQLStatment(), text);
        if (event == "saved") QVERIFY(!on.builder.SaveState().isEmpty());
        if (event == "name of another row") on.builder.setKeepMeaning(true);
        if (event == "unknown field is unticked") on.grid()->UnCheckField("T.NONE");
        QCOMPARE(on.editor(), editor);
        QCOMPARE(on.typed(), "T.C");
        QCOMPARE(editor->geometry(), place);
        QCOMPARE(on.columns(), firstColumns);
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(on.columns(), QStringList({"A||T.A", "C||T.C", "X||U.X"}));
    }

    void untouchedTextChangesNothing_data() {
        QTest::addColumn<int>("column");
        for (const int column : {0, 1, 2}) QTest::addRow("column %d", column) << column;
    }
    void untouchedTextChangesNothing() {
        QFETCH(int, column);
        ShownGrid on;
        on.builder.LoadSQL("select t.b as \"my name\", sum(t.a) from t group by t.b");
        const QStringList before = on.columns();
        on.changes = 0;
        on.told.clear();
        for (const int row : {1, 2}) {
            on.go(column, row);
            on.press(Qt::Key_Return);
            QVERIFY(on.editor());
            QTest::keyClick(on.editor(), Qt::Key_Return);
        }
        QCOMPARE(on.columns(), before);
        QCOMPARE(on.told, QStringList());
        QCOMPARE(on.changes, 0);
    }

    void dyingWithAnOpenEditorTellsNobody_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("inWindow");
        for (const int column : {0, 2}) {
            QTest::addRow("column %d", column) << column << false;
            QTest::addRow("column %d, with its window", column) << column << true;
        }
    }
    void dyingWithAnOpenEditorTellsNobody() {
        QFETCH(int, column);
        QFETCH(bool, inWindow);
        int changes = 0;
        {
            QWidget window;
            ShownGrid on;
            if (inWindow) on.builder.setParent(&window);
            window.show();
            on.builder.show();
            on.type(column, 1, "T.C");
            QVERIFY(on.editor());
            QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, &window,
                             [&] { ++changes; });
            if (inWindow) window.close();
        }
        QCOMPARE(changes, 0);
    }

    void builderMayDieOfWhatWasTaken_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("call");
        for (const int column : {0, 2}) {
            for (const char* call :
                 {"commit", "check", "uncheck", "alias", "delete", "move", "edit", "menu"}) {
                QTest::addRow("column %d, %s", column, call) << column << call;
            }
        }
    }
    void builderMayDieOfWhatWasTaken() {
        QFETCH(int, column);
        QFETCH(QString, call);
        orvtest::RecordedServices services;
        auto on = std::make_unique<ShownGrid>();
        on->type(column, 2, "T.C");
        QVERIFY(on->editor());
        QObject::connect(&on->builder, &TorvQueryBuilder::StatementChanged, qApp,
                         [&] { on.reset(); });
        TorvQDSelectGrid& grid = *on->grid();
        if (call == "commit") on->builder.CommitPendingEdits();
        if (call == "check") grid.CheckField("T.D");
        if (call == "uncheck") grid.UnCheckField("T.A");
        if (call == "alias") grid.ChangeAlias("TT", "T");
        if (call == "delete") grid._DeleteCurrentRow();
        if (call == "move") grid.moveRow(1, 3);
        if (call == "edit") grid._EditText(0, 1);
        if (call == "menu") grid._StringKeyDown(Qt::Key_Delete, Qt::ControlModifier);
        QVERIFY(!on);
        QCOMPARE(services.errors, QStringList());
        QCOMPARE(services.messages, QStringList());
    }

    // --- opening

    void editorLiesOverItsCellWithItsText_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("text");
        QTest::newRow("name") << 0 << "B";
        QTest::newRow("aggregate") << 1 << "";
        QTest::newRow("source") << 2 << "T.B";
    }
    void editorLiesOverItsCellWithItsText() {
        QFETCH(int, column);
        QFETCH(QString, text);
        ShownGrid on;
        on.grid()->_EditText(column, 2);
        QCOMPARE(on.editor(), column == 0 ? static_cast<QWidget*>(on.nameEdit()) : on.choice());
        const QRect place = on.grid()->visualRect(on.cell(column, 2));
        QCOMPARE(on.editor()->geometry().topLeft(), place.topLeft());
        QCOMPARE(on.editor()->height(), place.height());
        QVERIFY(on.editor()->width() >= place.width());
        QCOMPARE(on.typed(), text);
        QVERIFY(on.editor()->hasFocus());
        QCOMPARE(on.current(), QStringLiteral("%1,2").arg(column));
        if (column == 1) QCOMPARE(on.choice()->count(), int(on.builder.AgrFuncs.size()));
        if (column == 2) QCOMPARE(on.choice()->count(), on.builder.AllFields().size());
    }

    void keysAndTheMouseOpenTheEditor_data() {
        QTest::addColumn<QString>("by");
        for (const char* by : {"return", "enter", "F2", "double click", "menu", "letter"}) {
            QTest::addRow("%s", by) << by;
        }
    }
    void keysAndTheMouseOpenTheEditor() {
        QFETCH(QString, by);
        ShownGrid on;
        on.go(0, 2);
        if (by == "return") on.press(Qt::Key_Return);
        if (by == "enter") on.press(Qt::Key_Enter, Qt::KeypadModifier);
        if (by == "F2") on.press(Qt::Key_F2);
        if (by == "double click") {
            QTest::mouseDClick(on.grid()->viewport(), Qt::LeftButton, {}, on.centreOf(0, 2));
        }
        if (by == "menu") {
            on.press(Qt::Key_F10, Qt::ShiftModifier);
            const QList<QAction*> actions = on.grid()->findChild<QMenu*>()->actions();
            QCOMPARE(actions[2]->text(), "Edit");
            actions[2]->trigger();
        }
        if (by == "letter") QTest::keyClicks(on.grid(), "q");
        QCOMPARE(on.editor(), on.nameEdit());
        QCOMPARE(on.typed(), by == "letter" ? "q" : "B");
    }

    void typingStartsTheText_data() {
        QTest::addColumn<int>("column");
        for (const int column : {0, 1, 2}) QTest::addRow("column %d", column) << column;
    }
    void typingStartsTheText() {
        QFETCH(int, column);
        ShownGrid on;
        on.go(column, 1);
        QTest::keyClicks(on.grid(), "t");
        QVERIFY(on.editor());
        QTest::keyClicks(on.editor(), ".a");
        QCOMPARE(on.typed(), "t.a");
        QTest::keyClick(on.editor(), Qt::Key_Escape);
        QCOMPARE(on.columns(), firstColumns);
    }

    void otherKeysOpenNothing() {
        ShownGrid on;
        for (const int key : {Qt::Key_Escape, Qt::Key_Space, Qt::Key_Delete, Qt::Key_Right}) {
            on.press(key);
        }
        on.press(Qt::Key_B, Qt::ControlModifier);
        on.press(Qt::Key_B, Qt::AltModifier);
        QVERIFY(!on.editor());
        QCOMPARE(on.current(), "1,1");
        QCOMPARE(on.columns(), firstColumns);
    }

    void shortcutsOfTheWindowDoNotTakeItsKeys() {
        ShownGrid on;
        const auto isTaken = [&](int key, Qt::KeyboardModifiers modifiers, const QString& text) {
            QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
            event.ignore();
            QCoreApplication::sendEvent(on.grid(), &event);
            return event.isAccepted();
        };
        QVERIFY(isTaken(Qt::Key_Delete, Qt::ControlModifier, {}));
        QVERIFY(isTaken(Qt::Key_Return, {}, "\r"));
        QVERIFY(isTaken(Qt::Key_A, {}, "a"));
        QVERIFY(!isTaken(Qt::Key_Delete, {}, "\x7f"));
        QVERIFY(!isTaken(Qt::Key_S, Qt::ControlModifier, "\x13"));
    }

    void tabLeavesTheGrid() {
        ShownGrid on;
        on.press(Qt::Key_Tab);
        QVERIFY(!on.grid()->hasFocus());
        QCOMPARE(on.current(), "0,1");
    }

    void listIsAboutAHundredPixelsHigh() {
        ShownGrid on;
        on.grid()->_EditText(2, 1);
        on.choice()->showPopup();
        QVERIFY(on.choice()->view()->isVisible());
        const int height = on.choice()->view()->viewport()->height();
        QVERIFY2(height > 50 && height <= 110, qPrintable(QString::number(height)));
        on.choice()->hidePopup();
    }

    // --- output names

    void blanksOfAnOutputNameBecomeUnderscores() {
        ShownGrid on;
        on.enter(0, 1, "TOTAL PRICE");
        QCOMPARE(on.columns()[0], "TOTAL_PRICE||T.A");
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.told, QStringList());
        QCOMPARE(on.cell(0, 1).data().toString(), "TOTAL_PRICE");
        QVERIFY(on.builder.GetSQLStatment().contains("T.A AS TOTAL_PRICE"));
        QVERIFY(on.grid()->hasFocus());
    }

    void generatedNameFollowsAndATypedOneStays() {
        ShownGrid on;
        on.enter(1, 1, "SUM");
        QCOMPARE(on.columns()[0], "SUM_OF_A|SUM|T.A");
        on.enter(2, 1, "U.Y");
        QCOMPARE(on.columns()[0], "SUM_OF_Y|SUM|U.Y");
        on.enter(1, 1, "");
        QCOMPARE(on.columns()[0], "Y||U.Y");
        on.enter(0, 1, "MINE");
        on.enter(1, 1, "MAX");
        on.enter(2, 1, "T.C");
        QCOMPARE(on.columns()[0], "MINE|MAX|T.C");
    }

    // Only a field of the diagram gives its name.
    void expressionKeepsTheNameOfTheField() {
        ShownGrid on;
        on.enter(2, 1, "T.A + 1");
        QCOMPARE(on.columns()[0], "A||T.A + 1");
        on.enter(2, 4, "1 + 1");
        QCOMPARE(on.columns()[3], "||1 + 1");
    }

    void updateNameIsForTheCurrentCell() {
        ShownGrid on;
        on.go(1, 1);
        on.grid()->UpdateName("SUM");
        QCOMPARE(on.grid()->Cells(0, 1), "SUM_OF_A");
        on.go(2, 2);
        on.grid()->UpdateName("U.Y");
        QCOMPARE(on.grid()->Cells(0, 2), "Y");
        on.go(2, 3);
        on.grid()->UpdateName("NO.FIELD");
        QCOMPARE(on.grid()->Cells(0, 3), "X");
    }

    // --- aggregates

    void aggregateTellsNobodyOfItsField() {
        ShownGrid on;
        on.enter(1, 2, "SUM");
        QCOMPARE(on.told, QStringList());
        QCOMPARE(on.changes, 1);
        QVERIFY(on.isTicked("T", "B"));
    }

    void blankChoiceIsNoAggregate() {
        ShownGrid on;
        on.enter(1, 1, "SUM");
        on.grid()->_EditText(1, 1);
        on.choice()->setCurrentIndex(0);
        QCOMPARE(on.typed(), on.builder.AgrFuncs[0]);
        QTest::keyClick(on.editor(), Qt::Key_Return);
        QCOMPARE(on.columns(), firstColumns);
    }

    // --- sources

    void newSourceIsChosenAndTheOldOneRemoved() {
        ShownGrid on;
        on.enter(2, 1, "U.Y");
        QCOMPARE(on.columns()[0], "Y||U.Y");
        QCOMPARE(on.told, QStringList({"-T.A", "+U.Y"}));
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.isTicked("T", "A"));
        QVERIFY(on.isTicked("U", "Y"));
        verifyBuilder(on.builder);
    }

    void sourceUnderAnAggregateIsTold_data() {
        QTest::addColumn<QString>("source");
        QTest::newRow("field") << "T.C";
        QTest::newRow("expression") << "T.C + 1";
    }
    void sourceUnderAnAggregateIsTold() {
        QFETCH(QString, source);
        ShownGrid on;
        on.enter(1, 1, "SUM");
        on.enter(2, 1, source);
        QCOMPARE(on.told, QStringList());
        QVERIFY(!on.isTicked("T", "C"));
    }

    void expressionIsChosenButNotRemoved() {
        ShownGrid on;
        on.enter(2, 1, "T.A + 1");
        QCOMPARE(on.told, QStringList({"-T.A", "+T.A + 1"}));
        QVERIFY(!on.isTicked("T", "A"));
        on.enter(2, 1, "T.A");
        QCOMPARE(on.told.mid(2), QStringList("+T.A"));
        QCOMPARE(on.columns(), firstColumns);
        QVERIFY(on.isTicked("T", "A"));
        verifyBuilder(on.builder);
    }

    void choiceFromTheListIsTakenOver() {
        ShownGrid on;
        on.grid()->_EditText(2, 1);
        on.choice()->showPopup();
        QAbstractItemView* list = on.choice()->view();
        const int row = int(on.builder.AllFields().names().indexOf("U.Y"));
        list->setCurrentIndex(list->model()->index(row, 0));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(on.typed(), "U.Y");
        QVERIFY(on.editor());
        QTest::keyClick(on.editor(), Qt::Key_Return);
        QCOMPARE(on.columns()[0], "Y||U.Y");
    }

    void typedTextIsNeverAltered() {
        ShownGrid on;
        for (const char* text : {"t.a || 'x'", "T", "T.A T.B", "u.z"}) {
            on.enter(2, 1, text);
            QCOMPARE(on.grid()->Cells(2, 1), text);
        }
        on.type(2, 1, "t.q");
        on.builder.WorkArea->setFocus();
        QCOMPARE(on.grid()->Cells(2, 1), "t.q");
        QCOMPARE(on.builder.AllFields().size(), 8);
    }

    void lastRowBecomesADataRow() {
        ShownGrid on;
        on.enter(2, 4, "U.Y");
        QCOMPARE(on.columns(), firstColumns + QStringList("Y||U.Y"));
        QCOMPARE(on.grid()->RowCount(), 6);
        QCOMPARE(on.told, QStringList("+U.Y"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.current(), "2,4");
        QVERIFY(on.isTicked("U", "Y"));
        verifyBuilder(on.builder);
    }

    void lastRowIsEditedInItsSourceOnly() {
        ShownGrid on;
        for (const int column : {0, 1}) {
            on.go(column, 4);
            on.press(Qt::Key_Return);
            QVERIFY(!on.editor());
            QTest::keyClicks(on.grid(), "x");
            QVERIFY(!on.editor());
        }
        QCOMPARE(on.columns(), firstColumns);
    }

    void emptySourceLeavesTheLastRow_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << "";
        QTest::newRow("blanks") << "  ";
    }
    void emptySourceLeavesTheLastRow() {
        QFETCH(QString, text);
        ShownGrid on;
        on.enter(2, 4, text);
        QCOMPARE(on.columns(), firstColumns);
        QCOMPARE(on.changes, 0);
        QCOMPARE(on.told, QStringList());
    }

    void emptySourceDeletesTheRow() {
        ShownGrid on;
        on.enter(2, 2, "");
        QCOMPARE(on.columns(), QStringList({"A||T.A", "X||U.X"}));
        QCOMPARE(on.told, QStringList("-T.B"));
        QCOMPARE(on.changes, 1);
        QVERIFY(!on.isTicked("T", "B"));
        verifyBuilder(on.builder);
    }

    void correctedExpressionStaysGrouped() {
        ShownGrid on;
        on.builder.LoadSQL("select t.a || t.b as k, count(t.c) from t group by t.a || t.b");
        QVERIFY(on.builder.LoadReport().empty());
        on.enter(2, 1, "T.A || T.D");
        QVERIFY(on.builder.GetSQLStatment().contains("T.A || T.D AS K"));
        on.enter(2, 1, "T.A");
        on.enter(2, 1, "T.A || T.D");
        QVERIFY(orvtest::errorOf([&] { static_cast<void>(on.builder.GetSQLStatment()); }) !=
                "(no error)");
    }

    void sortingPageFollows() {
        ShownGrid on;
        on.builder.LoadSQL("select t.a, t.b from t order by t.b");
        on.enter(0, 2, "SECOND");
        QVERIFY(on.builder.OrderPanel->sortList().lines().empty());
        QCOMPARE(on.builder.OrderPanel->sortList().unsorted(), QStringList({"A", "SECOND"}));
    }

    void handlerMayEmptyTheBuilder() {
        orvtest::RecordedServices services;
        ShownGrid on;
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, &on.builder, [&] {
            if (on.builder.WorkArea->TablesCount() > 0) on.builder.Clear();
        });
        on.enter(2, 4, "U.Y");
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }
};

QTEST_MAIN(SelectEditTest)
#include "tst_selectedit.moc"
