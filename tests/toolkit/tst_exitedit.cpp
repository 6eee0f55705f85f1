// SPDX-License-Identifier: MIT
#include "support/TestTools.h"
#include "toolkit/ExitEdit.h"

#include <QFocusEvent>
#include <QVBoxLayout>

// A window with something to edit in place and something else that can take the focus.
class Form : public QWidget {
public:
    Form() {
        setFocusPolicy(Qt::StrongFocus);
        other = new QLineEdit(this);
        edit = new orv::ExitEdit(this);
        edit->committed = [this] { exits << "commit " + edit->text(); };
        edit->dropped = [this] { exits << "drop"; };
        resize(300, 200);
        other->setGeometry(0, 100, 100, 20);
        show();
    }
    void open() {
        edit->setGeometry(10, 20, 80, 18);
        edit->open("OLD");
    }

    QLineEdit* other;
    orv::ExitEdit* edit;
    QStringList exits;
};

class ExitEditTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void isHiddenUntilItIsOpened() {
        Form form;
        QVERIFY(form.edit->isHidden());
        form.open();
        QVERIFY(form.edit->isVisible());
        QCOMPARE(form.edit->geometry(), QRect(10, 20, 80, 18));
        QCOMPARE(form.edit->text(), "OLD");
        QCOMPARE(form.edit->selectedText(), "OLD");
        QVERIFY(form.isActiveWindow() || QTest::qWaitForWindowActive(&form));
        QVERIFY(form.edit->hasFocus());
    }

    void enterCommits_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }
    void enterCommits() {
        QFETCH(int, key);
        Form form;
        form.open();
        QTest::keyClicks(form.edit, "NEW");
        QTest::keyClick(form.edit, Qt::Key(key));
        QCOMPARE(form.exits, QStringList("commit NEW"));
        QVERIFY(form.edit->isHidden());
    }

    void escapeDrops() {
        Form form;
        form.open();
        QTest::keyClicks(form.edit, "NEW");
        QTest::keyClick(form.edit, Qt::Key_Escape);
        QCOMPARE(form.exits, QStringList("drop"));
        QVERIFY(form.edit->isHidden());
    }

    void lossOfFocusCommits() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.other->setFocus(Qt::MouseFocusReason);
        QCOMPARE(form.exits, QStringList("commit OLD"));
        QVERIFY(form.edit->isHidden());
        QVERIFY(form.other->hasFocus());
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
        QFocusEvent event(QEvent::FocusOut, Qt::FocusReason(reason));
        QCoreApplication::sendEvent(form.edit, &event);
        QCOMPARE(int(form.exits.size()), exits);
        QCOMPARE(form.edit->isHidden(), exits == 1);
    }

    void discardTellsNobody() {
        Form form;
        form.open();
        form.edit->discard();
        QVERIFY(form.exits.isEmpty());
        QVERIFY(form.edit->isHidden());
    }

    void discardGivesTheFocusToTheParent() {
        Form form;
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.open();
        form.edit->discard();
        QVERIFY(form.hasFocus());
    }

    void leavingTwiceIsOneExit() {
        Form form;
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        QFocusEvent event(QEvent::FocusOut, Qt::TabFocusReason);
        QCoreApplication::sendEvent(form.edit, &event);
        QCOMPARE(form.exits.size(), 1);
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

    void handlerMayReplaceItself() {
        Form form;
        int runs = 0;
        form.edit->committed = [&] {
            int& count = runs;
            form.edit->committed = nullptr;
            ++count;
        };
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        QCOMPARE(runs, 1);
    }

    void handlerMayOpenItAgain() {
        Form form;
        form.edit->committed = [&] {
            form.exits << "again";
            if (form.exits.size() == 1) form.open();
        };
        form.open();
        QTest::keyClick(form.edit, Qt::Key_Return);
        QVERIFY(form.edit->isVisible());
        QTest::keyClick(form.edit, Qt::Key_Return);
        QCOMPARE(form.exits.size(), 2);
    }
};

QTEST_MAIN(ExitEditTest)
#include "tst_exitedit.moc"
