// SPDX-License-Identifier: MIT
#include "support/TestTools.h"
#include "toolkit/ExitCombo.h"

#include <QAbstractItemView>
#include <QFocusEvent>
#include <QLineEdit>
#include <QWheelEvent>

// A window with a cell that offers a list and something else that can take the focus.
class Form : public QWidget {
public:
    Form() {
        setFocusPolicy(Qt::StrongFocus);
        other = new QLineEdit(this);
        combo = new orv::ExitCombo(this);
        combo->committed = [this](const QString& text) { exits << "commit " + text; };
        combo->dropped = [this] { exits << "drop"; };
        resize(300, 200);
        other->setGeometry(0, 100, 100, 20);
        show();
        activateWindow();
        QCoreApplication::processEvents();
    }
    void open(const QString& text = "OLD") {
        combo->setGeometry(10, 20, 80, 20);
        combo->open({"FIRST", "OLD", "LAST"}, text);
    }
    void lose(Qt::FocusReason reason) {
        QFocusEvent event(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(combo, &event);
    }

    QLineEdit* other;
    orv::ExitCombo* combo;
    QStringList exits;
};

class ExitComboTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void isHiddenUntilItIsOpened() {
        Form form;
        QVERIFY(form.combo->isHidden());
        form.open();
        QVERIFY(form.combo->isVisible());
        QVERIFY(form.combo->hasFocus());
        QCOMPARE(form.combo->currentText(), "OLD");
        QCOMPARE(form.combo->lineEdit()->selectedText(), "OLD");
        QCOMPARE(form.combo->currentIndex(), 1);
        QCOMPARE(form.combo->count(), 3);
    }

    // Long names differ at their ends as often as not.
    void longNamesAreCutInTheMiddle() {
        const Form form;
        QCOMPARE(form.combo->view()->textElideMode(), Qt::ElideMiddle);
    }

    void textNeedNotBeInTheList_data() {
        QTest::addColumn<QString>("text");
        for (const char* text : {"NONE", "", "old", "fir"}) QTest::addRow("'%s'", text) << text;
    }
    void textNeedNotBeInTheList() {
        QFETCH(QString, text);
        Form form;
        form.open(text);
        QCOMPARE(form.combo->currentText(), text);
        QTest::keyClick(form.combo, Qt::Key_Return);
        QCOMPARE(form.exits, QStringList("commit " + text));
    }

    void exitsTakeTheTextAsTyped_data() {
        QTest::addColumn<QString>("exit");
        QTest::addColumn<QString>("typed");
        for (const char* exit : {"return", "enter", "tab", "mouse", "other"}) {
            for (const char* typed : {"last", "fi", "new one"}) {
                QTest::addRow("%s, %s", exit, typed) << exit << typed;
            }
        }
    }
    void exitsTakeTheTextAsTyped() {
        QFETCH(QString, exit);
        QFETCH(QString, typed);
        Form form;
        form.open();
        QTest::keyClicks(form.combo, typed);
        QCOMPARE(form.combo->currentText(), typed);
        if (exit == "return") QTest::keyClick(form.combo, Qt::Key_Return);
        if (exit == "enter") QTest::keyClick(form.combo, Qt::Key_Enter);
        if (exit == "tab") QTest::keyClick(form.combo, Qt::Key_Tab);
        if (exit == "mouse") form.lose(Qt::MouseFocusReason);
        if (exit == "other") form.other->setFocus();
        QCOMPARE(form.exits, QStringList("commit " + typed));
        QVERIFY(form.combo->isHidden());
        QCOMPARE(form.combo->count(), 3);
    }

    void escapeDrops() {
        Form form;
        form.open();
        QTest::keyClicks(form.combo, "x");
        QTest::keyClick(form.combo, Qt::Key_Escape);
        QCOMPARE(form.exits, QStringList("drop"));
        QVERIFY(form.combo->isHidden());
        QVERIFY(form.hasFocus());
    }

    void discardTellsNobody() {
        Form form;
        form.open();
        form.combo->showPopup();
        form.combo->discard();
        QCOMPARE(form.exits, QStringList());
        QVERIFY(form.combo->isHidden());
        QVERIFY(!form.combo->view()->isVisible());
    }

    void listAndOtherWindowsAreNoExits() {
        Form form;
        form.open();
        QTest::keyClicks(form.combo, "la");
        form.lose(Qt::PopupFocusReason);
        form.lose(Qt::ActiveWindowFocusReason);
        form.combo->showPopup();
        QVERIFY(form.combo->view()->isVisible());
        QTest::keyClick(form.combo->view(), Qt::Key_Escape);
        QVERIFY(!form.combo->view()->isVisible());
        QCOMPARE(form.exits, QStringList());
        QCOMPARE(form.combo->currentText(), "la");
        QVERIFY(form.combo->isVisible());
    }

    void wheelChangesNothing() {
        Form form;
        form.open();
        QWheelEvent event(QPointF(5, 5), form.combo->mapToGlobal(QPointF(5, 5)), {}, {0, -120},
                          Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(form.combo, &event);
        QCOMPARE(form.combo->currentText(), "OLD");
    }

    void keysAreNotTheWindows() {
        Form form;
        form.open();
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QKeyEvent event(QEvent::ShortcutOverride, key, Qt::NoModifier);
            event.ignore();
            QCoreApplication::sendEvent(form.combo, &event);
            QVERIFY(event.isAccepted());
        }
    }

    void commitMayRaise() {
        orvtest::RecordedServices services;
        Form form;
        form.combo->committed = [](const QString&) { throw orv::Error("no"); };
        form.open();
        QTest::keyClick(form.combo, Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("no"));
        QVERIFY(form.combo->isHidden());
    }
};

QTEST_MAIN(ExitComboTest)
#include "tst_exitcombo.moc"
