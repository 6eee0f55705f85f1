// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldEdit.h"
#include "support/TestTools.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>

#include <memory>

namespace {

// A window with something to edit in place and something else that can take the focus.
class Form : public QWidget {
public:
    Form() {
        setFocusPolicy(Qt::StrongFocus);
        area = new QWidget(this);
        area->setGeometry(0, 0, 300, 200);
        area->setFocusProxy(this);
        other = new QLineEdit(this);
        other->setGeometry(0, 200, 100, 20);
        companion = new QWidget(area);
        companion->setGeometry(0, 100, 100, 40);
        companionLine = new QLineEdit(companion);
        edit = new TMemoEx(area);
        edit->setCompanion(companion);
        edit->committed = [this] { exits << "commit " + edit->text(); };
        edit->dropped = [this] { exits << QStringLiteral("drop"); };
        edit->exited = [this](Qt::FocusReason, QWidget* focus) {
            exits << QStringLiteral("exit");
            newFocus = focus;
        };
        edit->insertField = [this] { exits << QStringLiteral("insert"); };
        edit->changed = [this] { ++changes; };
        resize(300, 240);
        show();
    }
    void open(const QString& text = QStringLiteral("OLD")) {
        edit->setGeometry(10, 20, 80, 18);
        edit->open(text);
    }
    [[nodiscard]] QMenu* openMenu(QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
        QContextMenuEvent event(reason, QPoint(5, 5), edit->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(edit->viewport(), &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    QWidget* area;
    QLineEdit* other;
    QWidget* companion;
    QLineEdit* companionLine;
    TMemoEx* edit;
    QStringList exits;
    QWidget* newFocus = nullptr;
    int changes = 0;
};

void loseFocus(TMemoEx* edit, Qt::FocusReason reason) {
    QFocusEvent event(QEvent::FocusOut, reason);
    QCoreApplication::sendEvent(edit, &event);
}

}  // namespace

class FieldEditTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void looksLikeTheTextThatItCovers() {
        const Form form;
        QCOMPARE(form.edit->frameShape(), QFrame::NoFrame);
        QCOMPARE(form.edit->lineWrapMode(), QPlainTextEdit::NoWrap);
        QCOMPARE(form.edit->document()->documentMargin(), 1.0);
        QCOMPARE(form.edit->font().family(), "Arial");
        QCOMPARE(form.edit->toolTip(), "Press Shift+Enter to insert field");
        QVERIFY(!form.edit->accessibleName().isEmpty());
    }

    void isHiddenUntilItIsOpened() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QVERIFY(form.edit->isHidden());
        QVERIFY(!form.edit->isOpen());
        form.open();
        QVERIFY(form.edit->isVisible());
        QVERIFY(form.edit->isOpen());
        QCOMPARE(form.edit->geometry(), QRect(10, 20, 80, 18));
        QCOMPARE(form.edit->textCursor().selectedText(), "OLD");
        QVERIFY(form.edit->hasFocus());
    }

    void nothingOfTheTextBeforeCanBeBroughtBack() {
        Form form;
        form.open("FIRST");
        QTest::keyClicks(form.edit, "typed");
        form.edit->discard();
        form.open("SECOND");
        QVERIFY(!form.edit->document()->isUndoAvailable());
        form.edit->undo();
        QCOMPARE(form.edit->text(), "SECOND");
    }

    // --- keys

    void enterCommits_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("return") << int(Qt::Key_Return) << int(Qt::NoModifier);
        QTest::newRow("enter") << int(Qt::Key_Enter) << int(Qt::NoModifier);
        QTest::newRow("on the keypad") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    }
    void enterCommits() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        QTest::keyClicks(form.edit, "NEW");
        QTest::keyClick(form.edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(form.exits, QStringList("commit NEW"));
        QVERIFY(form.edit->isHidden());
        QVERIFY(!form.edit->isOpen());
        QVERIFY(form.hasFocus());  // the area's proxy
    }

    void shiftEnterAsksForAField_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }
    void shiftEnterAsksForAField() {
        QFETCH(int, key);
        Form form;
        form.open();
        QTest::keyClick(form.edit, Qt::Key(key), Qt::ShiftModifier);
        QCOMPARE(form.exits, QStringList("insert"));
        QVERIFY(form.edit->isVisible());
        QCOMPARE(form.edit->text(), "OLD");
    }

    void enterWithAnotherModifierBreaksTheLine_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Ctrl+Return") << int(Qt::Key_Return) << int(Qt::ControlModifier);
        QTest::newRow("Ctrl+Enter") << int(Qt::Key_Enter) << int(Qt::ControlModifier);
        QTest::newRow("Alt+Return") << int(Qt::Key_Return) << int(Qt::AltModifier);
        QTest::newRow("Ctrl+Shift+Return")
            << int(Qt::Key_Return) << int(Qt::ControlModifier | Qt::ShiftModifier);
    }
    void enterWithAnotherModifierBreaksTheLine() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Form form;
        form.open("ABCDE");
        QTextCursor cursor = form.edit->textCursor();
        cursor.setPosition(1);
        cursor.setPosition(3, QTextCursor::KeepAnchor);
        form.edit->setTextCursor(cursor);
        QTest::keyClick(form.edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(form.edit->text(), "A\r\nDE");
        QTest::keyClicks(form.edit, "x");  // the caret stands behind the break
        QCOMPARE(form.edit->text(), "A\r\nxDE");
        QVERIFY(form.exits.isEmpty());
        form.edit->undo();
        form.edit->undo();
        QCOMPARE(form.edit->text(), "ABCDE");
    }

    void typedLineBreaksAreSwallowed() {
        Form form;
        form.open("");
        for (const char* text : {"\r", "\n"}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier,
                            QString::fromLatin1(text));
            QCoreApplication::sendEvent(form.edit, &press);
            QVERIFY(press.isAccepted());
        }
        QCOMPARE(form.edit->text(), "");
        QVERIFY(form.exits.isEmpty());
    }

    void pastedTextKeepsItsLineBreaks() {
        Form form;
        form.open();
        QApplication::clipboard()->setText("SELECT 1\nFROM T");
        form.edit->paste();
        QCOMPARE(form.edit->text(), "SELECT 1\r\nFROM T");
        QTest::keyClick(form.edit, Qt::Key_Return);
        QCOMPARE(form.exits, QStringList("commit SELECT 1\r\nFROM T"));
    }

    void escapeDrops() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        QTest::keyClicks(form.edit, "NEW");
        QTest::keyClick(form.edit, Qt::Key_Escape);
        QCOMPARE(form.exits, QStringList("drop"));
        QVERIFY(form.edit->isHidden());
        QVERIFY(form.hasFocus());
    }

    void shortcutsOfTheWindowDoNotTakeItsKeys_data() {
        QTest::addColumn<QKeySequence>("keys");
        QTest::newRow("enter") << QKeySequence(Qt::Key_Return);
        QTest::newRow("shift") << QKeySequence(Qt::SHIFT | Qt::Key_Return);
        QTest::newRow("ctrl") << QKeySequence(Qt::CTRL | Qt::Key_Return);
        QTest::newRow("escape") << QKeySequence(Qt::Key_Escape);
    }
    void shortcutsOfTheWindowDoNotTakeItsKeys() {
        QFETCH(QKeySequence, keys);
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        int shortcuts = 0;
        const QShortcut shortcut(keys, &form, [&] { ++shortcuts; });
        form.open();
        QTest::keySequence(form.windowHandle(), keys);
        QCOMPARE(shortcuts, 0);
        const QString now = form.edit->text() + form.exits.join(u',');
        QVERIFY2(now != "OLD", "the key did nothing");
        form.edit->discard();
        form.other->setFocus();
        QTest::keySequence(form.windowHandle(), keys);
        QCOMPARE(shortcuts, 1);
    }

    // --- leaving

    void lossOfFocusIsAnExitThatTellsWhereTo() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.other->setFocus(Qt::MouseFocusReason);
        QCOMPARE(form.exits, QStringList("exit"));
        QCOMPARE(form.newFocus, form.other);
        QVERIFY(form.edit->isHidden());
        QVERIFY(form.other->hasFocus());
    }

    void tabLeaves() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Tab);
        QCOMPARE(form.exits, QStringList("exit"));
        QCOMPARE(form.edit->text(), "OLD");
    }

    void focusToNoneIsAnExit() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.newFocus = form.other;
        form.edit->clearFocus();
        QCOMPARE(form.exits, QStringList("exit"));
        QCOMPARE(form.newFocus, nullptr);
    }

    // A context menu or another window is no exit; a menu bar is.
    void reasonOfTheLossDecides_data() {
        QTest::addColumn<int>("reason");
        QTest::addColumn<int>("exits");
        QTest::newRow("popup") << int(Qt::PopupFocusReason) << 0;
        QTest::newRow("another window") << int(Qt::ActiveWindowFocusReason) << 0;
        QTest::newRow("menu bar") << int(Qt::MenuBarFocusReason) << 1;
        QTest::newRow("tab") << int(Qt::TabFocusReason) << 1;
        QTest::newRow("mouse") << int(Qt::MouseFocusReason) << 1;
        QTest::newRow("program") << int(Qt::OtherFocusReason) << 1;
    }
    void reasonOfTheLossDecides() {
        QFETCH(int, reason);
        QFETCH(int, exits);
        Form form;
        form.open();
        loseFocus(form.edit, Qt::FocusReason(reason));
        QCOMPARE(int(form.exits.size()), exits);
        QCOMPARE(form.edit->isHidden(), exits == 1);
    }

    void companionMayHaveTheFocus() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.companionLine->setFocus(Qt::OtherFocusReason);
        QVERIFY(form.exits.isEmpty());
        QVERIFY(form.edit->isVisible());
        QVERIFY(form.edit->isOpen());
        form.companion->setFocus();
        QVERIFY(form.exits.isEmpty());
    }

    void hidingThePageIsAnExit() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        QTest::keyClicks(form.edit, "NEW");
        form.area->hide();
        QCOMPARE(form.exits, QStringList("exit"));
        QCOMPARE(form.edit->text(), "NEW");
        QVERIFY(!form.edit->isOpen());
    }

    void discardTellsNobodyAndGivesTheFocusToTheParent() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.edit->discard();
        QVERIFY(form.exits.isEmpty());
        QVERIFY(form.edit->isHidden());
        QVERIFY(form.hasFocus());
        loseFocus(form.edit, Qt::TabFocusReason);
        QVERIFY(form.exits.isEmpty());
    }

    void discardLeavesTheFocusWhereItIs() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.companionLine->setFocus();
        form.edit->discard();
        QVERIFY(form.companionLine->hasFocus());
    }

    void leavingTwiceIsOneExit() {
        Form form;
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        loseFocus(form.edit, Qt::TabFocusReason);
        QCOMPARE(form.exits, QStringList("commit OLD"));
    }

    void handlerMayDestroyTheEdit_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("commit") << int(Qt::Key_Return);
        QTest::newRow("drop") << int(Qt::Key_Escape);
        QTest::newRow("exit") << int(Qt::Key_Tab);
    }
    void handlerMayDestroyTheEdit() {
        QFETCH(int, key);
        auto form = std::make_unique<Form>();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        const QPointer<TMemoEx> edit = form->edit;
        edit->committed = [&] { delete edit; };
        edit->dropped = edit->committed;
        edit->exited = [&](Qt::FocusReason, QWidget*) { delete edit; };
        form->open();
        QTest::sendKeyEvent(QTest::Press, edit, Qt::Key(key), QString(), Qt::NoModifier);
        QVERIFY(!edit);
    }

    void errorOfTheCommitGoesToTheHandler() {
        orvtest::RecordedServices services;
        Form form;
        form.edit->committed = [] { throw orv::Error(QStringLiteral("taken")); };
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("taken"));
        QVERIFY(form.edit->isHidden());
    }

    void handlerMayReplaceItselfAndOpenTheEditAgain() {
        Form form;
        int runs = 0;
        form.edit->committed = [&] {
            int& count = runs;
            Form& there = form;
            there.edit->committed = nullptr;
            ++count;
            there.open("AGAIN");
        };
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        QCOMPARE(runs, 1);
        QVERIFY(form.edit->isVisible());
        QCOMPARE(form.edit->text(), "AGAIN");
        QTest::keyClick(form.edit, Qt::Key_Return);
        QVERIFY(form.edit->isHidden());
    }

    // --- the text

    void lineBreaksAreReadAsTwoCharacters_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("read");
        QTest::newRow("none") << "A B"
                              << "A B";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("CR LF") << "A\r\nB"
                               << "A\r\nB";
        QTest::newRow("LF") << "A\nB\n"
                            << "A\r\nB\r\n";
        QTest::newRow("non-breaking blank")
            << QStringLiteral("'A\u00a0B'") << QStringLiteral("'A\u00a0B'");
        QTest::newRow("blanks around") << "  A  "
                                       << "  A  ";
    }
    void lineBreaksAreReadAsTwoCharacters() {
        QFETCH(QString, text);
        QFETCH(QString, read);
        Form form;
        form.open(text);
        QCOMPARE(form.edit->text(), read);
        QVERIFY(!form.edit->isChanged());
    }

    void changeIsToldWhileItIsOpenOnly() {
        Form form;
        form.open("FIRST");
        QCOMPARE(form.changes, 0);
        QVERIFY(!form.edit->isChanged());
        QTest::keyClicks(form.edit, "x");
        QVERIFY(form.changes > 0);
        QVERIFY(form.edit->isChanged());
        form.changes = 0;
        form.edit->discard();
        form.open("SECOND");
        QCOMPARE(form.changes, 0);
        QVERIFY(!form.edit->isChanged());
    }

    void textTypedBackIsNoChange() {
        Form form;
        form.open();
        QTest::keyClicks(form.edit, "OLD");
        QVERIFY(!form.edit->isChanged());
    }

    void fieldReplacesTheSelection() {
        Form form;
        form.open("A + B");
        QTextCursor cursor = form.edit->textCursor();
        cursor.setPosition(4);
        cursor.setPosition(5, QTextCursor::KeepAnchor);
        form.edit->setTextCursor(cursor);
        form.edit->replaceSelection("T.X");
        QCOMPARE(form.edit->text(), "A + T.X");
        form.edit->replaceSelection("!");
        QCOMPARE(form.edit->text(), "A + T.X!");
        form.edit->undo();
        form.edit->undo();
        QCOMPARE(form.edit->text(), "A + B");
    }

    void sizeGrowsWithTheText() {
        Form form;
        form.open("A");
        const QSize one = form.edit->textSize();
        form.edit->replaceSelection("AAAAAAAAAA");
        const QSize wide = form.edit->textSize();
        QVERIFY(wide.width() > one.width());
        QCOMPARE(wide.height(), one.height());
        QTest::keyClick(form.edit, Qt::Key_Return, Qt::ControlModifier);
        const QSize high = form.edit->textSize();
        QCOMPARE(high.width(), wide.width());
        QVERIFY(high.height() >= one.height() + form.edit->fontMetrics().height());
    }

    void firstLineStandsInTheMiddleOfARow() {
        Form form;
        form.open("A");
        const QSize plain = form.edit->textSize();
        form.edit->setFirstLineHeight(plain.height() + 20);
        QCOMPARE(form.edit->textSize(), plain + QSize(0, 10));
        form.edit->resize(100, plain.height() + 20);
        const QPoint top =
            form.edit->viewport()->mapTo(form.edit, form.edit->cursorRect().topLeft());
        const QPoint end =
            form.edit->viewport()->mapTo(form.edit, form.edit->cursorRect().bottomLeft());
        QVERIFY(std::abs(top.y() - (form.edit->height() - 1 - end.y())) <= 1);
    }

    // In that size nothing is cut off: the view does not scroll when the caret goes to the end.
    void textFitsIntoItsSize() {
        Form form;
        form.open("SELECT SALARY\nFROM EMPLOYEE WHERE NAME = 'x'\n\tWW");
        form.edit->resize(form.edit->textSize());
        for (const auto place : {QTextCursor::End, QTextCursor::Start, QTextCursor::Down,
                                 QTextCursor::EndOfLine, QTextCursor::End}) {
            form.edit->moveCursor(place);
            QVERIFY(form.edit->viewport()->rect().contains(form.edit->cursorRect()));
            QCOMPARE(form.edit->horizontalScrollBar()->value(), 0);
        }
        QCOMPARE(form.edit->verticalScrollBar()->maximum(), 0);
    }

    void wheelGoesToWhatLiesBelow_data() {
        QTest::addColumn<bool>("isCut");
        QTest::newRow("all of the text is seen") << false;
        QTest::newRow("some of it is cut") << true;
    }
    void wheelGoesToWhatLiesBelow() {
        QFETCH(bool, isCut);
        Form form;
        form.open("A\nB\nC\nD\nE\nF");
        form.edit->moveCursor(QTextCursor::Start);
        form.edit->resize(form.edit->textSize() - QSize(0, isCut ? 40 : 0));
        QWheelEvent turn(QPointF(5, 5), form.edit->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120),
                         Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(form.edit->viewport(), &turn);
        QCOMPARE(turn.isAccepted(), isCut);
    }

    // --- the popup menu

    void menuBeginsWithItsOneCommand() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        const QPointer<QMenu> menu = form.openMenu();
        QVERIFY(menu);
        QVERIFY(form.exits.isEmpty());  // a menu is no exit
        QVERIFY(form.edit->isVisible());
        const QList<QAction*> actions = menu->actions();
        QVERIFY(actions.size() > 5);
        QCOMPARE(actions[0]->text(), "InsertField");
        QVERIFY(actions[1]->isSeparator());
        for (const char* name : {"edit-cut", "edit-copy", "edit-paste", "select-all"}) {
            QVERIFY2(menu->findChild<QAction*>(name), name);
        }
        actions[0]->trigger();
        QCOMPARE(form.exits, QStringList("insert"));
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!menu);
        QVERIFY(form.edit->isOpen());
    }

    void menuOfTheKeyboardOpensAtTheCaret() {
        Form form;
        form.open("AAAA");
        form.edit->moveCursor(QTextCursor::End);
        const QPointer<QMenu> menu = form.openMenu(QContextMenuEvent::Keyboard);
        QVERIFY(menu);
        const QPoint caret = form.edit->cursorRect().bottomLeft();
        QCOMPARE(menu->pos(), form.edit->viewport()->mapToGlobal(caret));
        menu->close();
    }
};

QTEST_MAIN(FieldEditTest)
#include "tst_fieldedit.moc"
