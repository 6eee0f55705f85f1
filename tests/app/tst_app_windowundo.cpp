// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "selection/ORVQDSelectOrder.h"
#include "window/DocumentController.h"
#include "window/UndoActions.h"
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

    void findingsGoWithTheLoad();
    void findingsOfTheLoadBeforeComeBack();
    void findingsOutliveOtherSteps();
    void findingsOfALoadWithoutAStep();
    void findingsOutliveTheirStep();
    void findingsLeaveWhatIsTyped();

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
    void loadAnyway(const QString& text) const {
        load(text);
        click("loadAnyway");
        leaveEditor();
    }
    void undo() const { press(Qt::Key_Z, Qt::ControlModifier); }
    void redo() const { press(Qt::Key_Y, Qt::ControlModifier); }
    [[nodiscard]] QStringList findings() const {
        if (!isShown("findings") || !isShown("findingsTitle")) return {};
        QStringList texts;
        const auto* list = child<QListWidget>("findings");
        for (int row = 0; row < list->count(); ++row) {
            texts += list->item(row)->text().section(u'"', 1, 1);
        }
        return texts;
    }

    const QString m_doubtful = QStringLiteral("select o.id from orders o, nowhere n");
    const QStringList m_doubts = {QStringLiteral("nowhere n")};
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

void TestWindowUndo::findingsGoWithTheLoad() {
    load("select name from people");
    loadAnyway(m_doubtful);
    QCOMPARE(findings(), m_doubts);
    undo();
    QVERIFY(text().contains(QStringLiteral("FROM PEOPLE")));
    QCOMPARE(findings(), QStringList());
    QVERIFY(!isShown("showLoaded"));
    redo();
    QCOMPARE(findings(), m_doubts);
    QVERIFY(isShown("showLoaded"));
    // With the text that they are about in their place as well.
    click("showLoaded");
    QCOMPARE(text(), m_doubtful);
    leaveEditor();
    undo();
    QVERIFY(text().contains(QStringLiteral("FROM PEOPLE")));
    QCOMPARE(findings(), QStringList());
}

void TestWindowUndo::findingsOfTheLoadBeforeComeBack() {
    loadAnyway(m_doubtful);
    loadAnyway("select p.name from people p, nothing n");
    QCOMPARE(findings(), QStringList{QStringLiteral("nothing n")});
    undo();
    QCOMPARE(findings(), m_doubts);
    click("showLoaded");
    QCOMPARE(text(), m_doubtful);
    leaveEditor();
    undo();
    QCOMPARE(boxes(), 0);
    QCOMPARE(findings(), QStringList());
    // What is done now is about neither.
    doubleClickTable("people");
    leaveEditor();
    undo();
    redo();
    QCOMPARE(boxes(), 1);
    QCOMPARE(findings(), QStringList());
}

void TestWindowUndo::findingsOutliveOtherSteps() {
    loadAnyway(m_doubtful);
    doubleClickTable("people");
    leaveEditor();
    QCOMPARE(boxes(), 2);
    QCOMPARE(findings(), m_doubts);
    undo();
    QCOMPARE(boxes(), 1);
    QCOMPARE(findings(), m_doubts);
    undo();
    QCOMPARE(findings(), QStringList());
    redo();
    redo();
    QCOMPARE(boxes(), 2);
    QCOMPARE(findings(), m_doubts);
    startAnew();
    QCOMPARE(findings(), QStringList());
}

// The diagram has all that it takes already.
void TestWindowUndo::findingsOfALoadWithoutAStep() {
    loadAnyway(m_doubtful);
    loadAnyway("select o.id from orders o, nothing n");
    doubleClickTable("people");
    leaveEditor();
    undo();
    QCOMPARE(boxes(), 1);
    QCOMPARE(findings(), QStringList{QStringLiteral("nothing n")});
    undo();
    QCOMPARE(boxes(), 0);
    QCOMPARE(findings(), QStringList());
}

void TestWindowUndo::findingsOutliveTheirStep() {
    loadAnyway(m_doubtful);
    const int mostSteps = m_window->findChild<UndoActions*>()->stack().undoLimit();
    for (int step = 1; step <= mostSteps; ++step) builder().SelectPanel->SetDistinct(step % 2);
    loadAnyway("select p.name from people p, nothing n");
    for (int step = 0; step < mostSteps; ++step) undo();
    QVERIFY(!action("undo").isEnabled());
    QCOMPARE(boxes(), 1);
    QVERIFY(text().contains(QStringLiteral("DISTINCT")));
    QCOMPARE(findings(), m_doubts);
}

void TestWindowUndo::findingsLeaveWhatIsTyped() {
    loadAnyway(m_doubtful);
    type("select half");
    leaveEditor();
    undo();
    QCOMPARE(boxes(), 0);
    QCOMPARE(text(), QStringLiteral("select half"));
    QCOMPARE(findings(), QStringList());
}

QTEST_MAIN(TestWindowUndo)
#include "tst_app_windowundo.moc"
