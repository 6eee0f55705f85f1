// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "window/DocumentController.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

using namespace orvquery;

// Undo and redo in the program's window.
class TestWindowUndo : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void nothingToUndoAtTheBeginning();
    void tableThatWasAddedIsOneStep();
    void loadedStatementIsOneStep();
    void redoHasTwoKeys();
    void removedTableComesBack();
    void otherDocumentBeginsAnew();
    void editorKeepsItsOwn();
    void otherDatabaseBeginsAnew();
    void textOfTheLastDocumentIsGone();
    void textOfAnOpenedDocumentIsTheFirst();

    void menuDoesWhatTheKeyDoes();
    void menuOpenedByItsKeyIsTheEditors();
    void lineEditorsHaveTheirOwn();
    void untouchedEditorLeavesItToTheDiagram();
    void editorOfTheControlKeepsTheDiagram();

private:
    [[nodiscard]] QAction& action(const char* name) const { return *child<QAction>(name); }
    [[nodiscard]] int boxes() const { return builder().ListOfTables->TablesCount(); }
    [[nodiscard]] QMenu& editMenu() const {
        for (QObject* object : action("undo").associatedObjects()) {
            if (auto* menu = qobject_cast<QMenu*>(object)) return *menu;
        }
        qFatal("no menu");
    }
    /// By mouse.
    void chooseInMenu(const char* name) const {
        QMenuBar* bar = m_window->menuBar();
        QMenu& menu = editMenu();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu.menuAction()).center());
        QVERIFY(menu.isVisible());
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&action(name)).center());
        QVERIFY(!menu.isVisible());
    }
    void leaveEditor() const { builder().WorkArea->setFocus(); }
};

void TestWindowUndo::nothingToUndoAtTheBeginning() {
    QVERIFY(!action("undo").isEnabled());
    QVERIFY(!action("redo").isEnabled());
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo"));
}

// With what is done to the names of the fields that are there.
void TestWindowUndo::tableThatWasAddedIsOneStep() {
    load("select id from orders");
    leaveEditor();
    const QString before = text();
    orv::setDialogRunner([](QDialog&) { return int(QDialog::Rejected); });
    doubleClickTable("orders");
    QTRY_COMPARE(boxes(), 2);
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo adding ORDERS1"));
    leaveEditor();
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
    QCOMPARE(text(), before);
    QCOMPARE(action("redo").text(), QStringLiteral("&Redo adding ORDERS1"));
}

void TestWindowUndo::loadedStatementIsOneStep() {
    load("select id from orders");
    load("select name from people");
    leaveEditor();
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo loading the statement"));
    action("undo").trigger();
    QCOMPARE(builder().WorkArea->Tables(0)->TableName, QStringLiteral("ORDERS"));
    QVERIFY(text().contains(QStringLiteral("FROM ORDERS")));
    action("undo").trigger();
    QCOMPARE(boxes(), 0);
    QVERIFY(!action("undo").isEnabled());
    action("redo").trigger();
    action("redo").trigger();
    QVERIFY(text().contains(QStringLiteral("FROM PEOPLE")));
}

void TestWindowUndo::redoHasTwoKeys() {
    load("select id from orders");
    leaveEditor();
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(boxes(), 0);
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(boxes(), 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
}

void TestWindowUndo::removedTableComesBack() {
    load("select id, city from orders where total > 5");
    leaveEditor();
    const QString statement = builder().GetSQLStatment();
    builder().WorkArea->Tables(0)->CloseTable();
    QCOMPARE(boxes(), 0);
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(builder().GetSQLStatment(), statement);
}

void TestWindowUndo::otherDocumentBeginsAnew() {
    load("select id from orders");
    leaveEditor();
    startAnew();
    QCOMPARE(boxes(), 0);
    QVERIFY(!action("undo").isEnabled());
}

void TestWindowUndo::editorKeepsItsOwn() {
    load("select id from orders");
    QTest::keyClicks(&editor(), QStringLiteral("x"));
    const QString typed = text();
    QTest::keyClick(&editor(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(text() != typed);
    QCOMPARE(boxes(), 1);
    QVERIFY(action("undo").isEnabled());
}

void TestWindowUndo::otherDatabaseBeginsAnew() {
    load("select id from orders");
    orv::setDialogRunner([](QDialog&) { return int(KeepQueryDialog::Empty); });
    openNumbers();
    leaveEditor();
    QVERIFY(!action("undo").isEnabled());
}

void TestWindowUndo::textOfTheLastDocumentIsGone() {
    load("select id from orders");
    QTest::keyClicks(&editor(), QStringLiteral("x"));
    startAnew();
    QCOMPARE(text(), QString());
    editor().setFocus();
    QVERIFY(!action("undo").isEnabled());
    QTest::keyClick(&editor(), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&editor(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(text(), QString());
    QTest::keyClicks(&editor(), QStringLiteral("y"));
    QTest::keyClick(&editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(text(), QString());
}

void TestWindowUndo::textOfAnOpenedDocumentIsTheFirst() {
    const QString path = m_folder.filePath(QStringLiteral("a.sql"));
    QVERIFY(apptest::writeFile(path, "select id from orders"));
    type("secret");
    orv::setDialogRunner([](QDialog& dialog) {
        dialog.findChild<QPushButton*>(QStringLiteral("discardChanges"))->click();
        return dialog.result();
    });
    QVERIFY(m_window->documents().open(path));
    const QString opened = text();
    QVERIFY(opened.startsWith(QStringLiteral("SELECT ID")));
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(text(), opened);
}

void TestWindowUndo::menuDoesWhatTheKeyDoes() {
    load("select id from orders");
    const QString before = text();
    editor().moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor(), QStringLiteral("x"));
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo typing"));
    chooseInMenu("undo");
    QCOMPARE(text(), before);
    QCOMPARE(boxes(), 1);
    QCOMPARE(action("redo").text(), QStringLiteral("&Redo typing"));
    chooseInMenu("redo");
    QCOMPARE(text(), before + u'x');
    QCOMPARE(boxes(), 1);
    leaveEditor();
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo loading the statement"));
    QVERIFY(!action("redo").isEnabled());
    chooseInMenu("undo");
    QCOMPARE(boxes(), 0);
}

// The menu bar has the focus then.
void TestWindowUndo::menuOpenedByItsKeyIsTheEditors() {
    load("select id from orders");
    const QString before = text();
    editor().moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor(), QStringLiteral("x"));
    press(Qt::Key_E, Qt::AltModifier);
    QVERIFY(editMenu().isVisible());
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo typing"));
    QTest::keyClick(&editMenu(), Qt::Key_U);
    QCOMPARE(text(), before);
    QCOMPARE(boxes(), 1);
}

void TestWindowUndo::lineEditorsHaveTheirOwn() {
    load("select id from orders");
    auto* filter = child<QLineEdit>("filter");
    filter->setFocus();
    QTest::keyClicks(filter, QStringLiteral("or"));
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo typing"));
    chooseInMenu("undo");
    QCOMPARE(filter->text(), QString());
    QCOMPARE(boxes(), 1);
    // All of it is undone, and the diagram is not next.
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo"));
    QVERIFY(!action("undo").isEnabled());
    QTest::keyClick(filter, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
}

void TestWindowUndo::untouchedEditorLeavesItToTheDiagram() {
    load("select id from orders");
    auto* filter = child<QLineEdit>("filter");
    filter->setFocus();
    QCOMPARE(action("undo").text(), QStringLiteral("&Undo loading the statement"));
    QTest::keyClick(filter, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(boxes(), 0);
    QTest::keyClick(filter, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
    chooseInMenu("undo");
    QCOMPARE(boxes(), 0);
}

void TestWindowUndo::editorOfTheControlKeepsTheDiagram() {
    load("select id from orders");
    QLineEdit inside(&builder());
    inside.show();
    inside.setFocus();
    QVERIFY(inside.hasFocus());
    QVERIFY(!action("undo").isEnabled());
    QTest::keyClick(&inside, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
}

QTEST_MAIN(TestWindowUndo)
#include "tst_app_windowundo.moc"
