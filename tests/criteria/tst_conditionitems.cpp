// SPDX-License-Identifier: MIT
// Duplicating and moving conditions; the menu items and keys of these and of the clipboard.
#include "criteria/ChosenConditions.h"
#include "criteria/EditedPanel.h"

#include <QAction>
#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>

using orvtest::clipboard;
using orvtest::Criteria;
using orvtest::partsOf;
using orvtest::RecordedServices;

class ConditionItemsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- duplicates and order

    void duplicateStandsRightBehind() {
        const Criteria on("t.a = 1 and (t.b = 2 or not (t.c = 3)) and t.d = 4");
        on.row("2.")->SetExpanded(false);
        on.row("1.")->Valid = false;
        on.choose("1.");
        on.panel().DuplicateCondition();
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; Any(T.B =[2]; None(T.C =[3])); T.D =[4])");
        QVERIFY(!on.row("2.")->Valid);
        QCOMPARE(on.activeNumber(), "2.");
        QCOMPARE(on.changes, 1);
        on.choose("3.");
        on.panel().DuplicateCondition();
        QCOMPARE(on.rows(),
                 "All(T.A =[1]; T.A =[1]; Any(T.B =[2]; None(T.C =[3])); "
                 "Any(T.B =[2]; None(T.C =[3])); T.D =[4])");
        QVERIFY(!on.row("4.")->Expanded);
        QVERIFY(on.row("4.2.")->Expanded);
        QCOMPARE(on.activeNumber(), "4.");
        QCOMPARE(on.changes, 2);
        on.row("4.1.")->FieldName = "T.E";
        QCOMPARE(on.row("3.1.")->FieldName, "T.B");
    }

    void duplicateKeepsWhatIsNotFilledIn() {
        const Criteria on("t.a between 1 and 2");
        on.row("1.")->Arguments[0] = orv::blankText();
        on.row("1.")->FieldName = "t.lower";
        on.choose("1.");
        on.panel().DuplicateCondition();
        QCOMPARE(partsOf(*on.row("2.")), partsOf(*on.row("1.")));
        QCOMPARE(on.row("2.")->Operator, on.row("1.")->Operator);
    }

    void rootRowIsNotDuplicated() {
        const Criteria on("t.a = 1");
        on.choose("");
        QCOMPARE(orvtest::errorOf([&] { on.panel().DuplicateCondition(); }),
                 "Could not duplicate first row");
        QCOMPARE(on.changes, 0);
    }

    void rowsMoveAmongTheirSiblings() {
        const Criteria on("t.a = 1 and (t.b = 2 or t.c = 3) and t.d = 4");
        on.choose("2.");
        on.panel().MoveCondition(-1);
        QCOMPARE(on.rows(), "All(Any(T.B =[2]; T.C =[3]); T.A =[1]; T.D =[4])");
        QCOMPARE(on.activeNumber(), "1.");
        QCOMPARE(on.changes, 1);
        on.panel().MoveCondition(-1);
        QCOMPARE(on.changes, 1);
        on.choose("1.2.");
        on.panel().MoveCondition(1);
        QCOMPARE(on.changes, 1);
        on.choose("1.1.");
        on.panel().MoveCondition(1);
        QCOMPARE(on.rows(), "All(Any(T.C =[3]; T.B =[2]); T.A =[1]; T.D =[4])");
        on.choose("");
        on.panel().MoveCondition(1);
        on.panel().MoveCondition(-1);
        QCOMPARE(on.changes, 2);
    }

    void rowThatIsMovedStaysInView() {
        QStringList conditions;
        for (int index = 0; index < 60; ++index) conditions << "t.a = " + QString::number(index);
        Criteria on(conditions.join(" and "));
        on.builder.resize(600, 500);
        on.builder.show();
        QCoreApplication::processEvents();
        const auto isInView = [&](const QString& number) {
            const QRect rect = on.panel().elementRect(*on.row(number)->Controls[ekButton]);
            return on.panel().viewport()->rect().contains(rect);
        };
        on.choose("1.");
        QVERIFY(isInView("1."));
        QVERIFY(!isInView("60."));
        for (int step = 1; step < 60; ++step) on.panel().MoveCondition(1);
        QCOMPARE(on.activeNumber(), "60.");
        QVERIFY(isInView("60."));
        QVERIFY(!isInView("1."));
    }

    // --- menu and keys

    void rowMenuHasTheirItemsBehindTheCommands() {
        const Criteria on("t.a = 1 and t.b = 2");
        clipboard().setText("t.c = 3");
        const QList<QAction*> items = openRowMenu(on, "1.");
        QStringList captions;
        for (const QAction* item : items) captions << (item->isSeparator() ? "-" : item->text());
        QCOMPARE(captions, QStringList({"Add condition", "Make compose condition",
                                        "Delete condition", "-", "Expand condition", "-",
                                        "Duplicate condition", "Copy", "Paste", "Mute condition"}));
        const QList<QKeySequence> keys = {QKeySequence("Ctrl+D"), QKeySequence("Ctrl+C"),
                                          QKeySequence("Ctrl+V")};
        for (int index = 0; index < 3; ++index) {
            QCOMPARE(items[6 + index]->shortcut(), keys[index]);
            QCOMPARE(items[6 + index]->shortcutContext(), Qt::WidgetShortcut);
            QVERIFY(items[6 + index]->isShortcutVisibleInContextMenu());
        }
        items[6]->trigger();
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; T.B =[2])");
        items[7]->trigger();
        QCOMPARE(clipboard().text(), "T.A = 1");
        items[8]->trigger();
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; T.A =[1]; T.B =[2])");
        QCOMPARE(on.changes, 2);
    }

    void itemsAreEnabledWhereTheyCanBeUsed() {
        const Criteria on("t.a = 1");
        on.row("")->SubRows->AddRow()->SetGroupOper("Any");
        clipboard().setText("t.c = 3");
        QCOMPARE(enabledItems(on, "1."), "DCP");
        QCOMPARE(enabledItems(on, ""), "-CP");
        QCOMPARE(enabledItems(on, "2."), "D-P");
        clipboard().setText(" \r\n");
        QCOMPARE(enabledItems(on, "1."), "DC-");
        clipboard().clear();
        QCOMPARE(enabledItems(on, "1."), "DC-");
        QCOMPARE(enabledItems(Criteria(), ""), "---");
    }

    void keysRunTheCommands() {
        RecordedServices services;
        const Criteria on("t.a = 1 and t.b = 2");
        on.choose("1.");
        QTest::keyClick(&on.panel(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; T.B =[2])");
        QTest::keyClick(&on.panel(), Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.B =[2]; T.A =[1])");
        QTest::keyClick(&on.panel(), Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; T.B =[2])");
        QTest::keyClick(&on.panel(), Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.B =[2])");
        on.choose("2.");
        QTest::keyClick(&on.panel(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.B =[2]; T.A =[1])");
        on.choose("2.");
        QTest::keyClick(&on.panel(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard().text(), "T.B = 2");
        QCOMPARE(on.changes, 5);
        QCOMPARE(services.errors, QStringList());
        clipboard().setText("a =");
        QTest::keyClick(&on.panel(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(services.errors,
                 QStringList("The text is no condition: \"A =\" is not filled in."));
        QCOMPARE(on.changes, 5);
    }

    // The keys are about the row with the frame, wherever the mouse pressed last.
    void keysAreAboutTheActiveRow() {
        const Criteria on("t.a = 1 and t.b = 2");
        on.choose("2.");
        on.panel().setCurrentElement(on.row("1.")->Controls[0].get());
        QTest::keyClick(&on.panel(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard().text(), "T.B = 2");
    }

    void otherModifiersAreNotTaken() {
        const Criteria on("t.a = 1 and t.b = 2");
        on.choose("1.");
        clipboard().setText("t.c = 3");
        const Qt::KeyboardModifiers others[] = {Qt::NoModifier, Qt::ShiftModifier, Qt::AltModifier,
                                                Qt::ControlModifier | Qt::ShiftModifier};
        for (const Qt::KeyboardModifiers modifiers : others) {
            for (const Qt::Key key : {Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_D}) {
                QKeyEvent event(QEvent::KeyPress, key, modifiers);
                QCoreApplication::sendEvent(&on.panel(), &event);
                QVERIFY(!event.isAccepted());
            }
        }
        QCOMPARE(on.changes, 0);
        QCOMPARE(clipboard().text(), "t.c = 3");
    }

    // A window has these keys, too: while the panel has the focus they are the panel's, and
    // neither the window's nor ambiguous.
    void shortcutsOfTheWindowDoNotFireMeanwhile() {
        Criteria on("t.a = 1 and t.b = 2");
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&on.builder);
        int fired = 0;
        for (const char* keys : {"Ctrl+C", "Ctrl+V", "Ctrl+D", "Ctrl+X"}) {
            auto* shortcut = new QShortcut(QKeySequence(keys), &window);
            connect(shortcut, &QShortcut::activated, &window, [&] { ++fired; });
            connect(shortcut, &QShortcut::activatedAmbiguously, &window, [&] { fired += 100; });
        }
        window.show();
        window.activateWindow();
        on.panel().setFocus();
        on.choose("1.");
        QTest::keyClick(window.windowHandle(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.A =[1]; T.B =[2])");
        QCOMPARE(fired, 0);
        on.builder.PageCtrl->setFocus();
        QTest::keyClick(window.windowHandle(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(fired, 1);
        on.builder.setParent(nullptr);
    }

    // What is being typed is taken over first, and the host is told of that.
    void hostMayDestroyTheBuilderBeforeACommand_data() {
        QTest::addColumn<int>("command");
        QTest::newRow("copy") << 0;
        QTest::newRow("cut") << 1;
        QTest::newRow("paste") << 2;
        QTest::newRow("duplicate") << 3;
        QTest::newRow("move") << 4;
    }
    void hostMayDestroyTheBuilderBeforeACommand() {
        QFETCH(int, command);
        const orvtest::RecordedServices services;
        orvtest::EditedPanel on;
        on.type("7");
        TorvQDWherePanel* panel = on.panel();
        panel->setCurrentElement(&on.element(0, ekArgument));
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { delete on.builder; });
        switch (command) {
        case 0: panel->CopyCondition(); break;
        case 1: panel->CutCondition(); break;
        case 2: panel->PasteCondition(); break;
        case 3: panel->DuplicateCondition(); break;
        default: panel->MoveCondition(1);
        }
        QVERIFY(!on.builder);
        QCOMPARE(services.errors, QStringList());
        QCOMPARE(services.messages, QStringList());
    }

private:
    static QList<QAction*> openRowMenu(const Criteria& on, const QString& number) {
        on.panel().ButtonClick(*on.row(number)->Controls[0], 0);
        auto* menu = on.panel().findChild<QMenu*>("RowMenu");
        menu->close();
        return menu->actions();
    }
    static QString enabledItems(const Criteria& on, const QString& number) {
        const QList<QAction*> items = openRowMenu(on, number);
        QString text;
        for (int index = 0; index < 3; ++index) {
            text += items[6 + index]->isEnabled() ? QString("DCP")[index] : QChar(u'-');
        }
        return text;
    }
};

QTEST_MAIN(ConditionItemsTest)
#include "tst_conditionitems.moc"
