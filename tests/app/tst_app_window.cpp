// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "workarea/ORVQDFloatPanel.h"

using namespace orvquery;

// The window: tables, statements, databases.
class TestWindow : public QObject, protected apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void beginsWithSampleQuery();
    void beginsWithGivenStatement();
    void refusedTextHasNoFindingsOfAnother();
    void beginsWithSchema();
    void doubleClickAddsTable();
    void keysAddTable();
    void filterNarrowsList();
    void goneTableLeavesTheList();
    void typedStatementIsLoaded();
    void loadButtonLoads();
    void unchangedStatementStaysAsItIs();
    void refusedStatementStays();
    void typedTextIsNotOverwritten();
    void typedTextCanBeKept();
    void findingsSelectTheirPlace();
    void findingsOfTextWithCarriageReturns();
    void noBreakSpaceStays();
    void statementThatCannotBeWritten();
    void failedOpenKeepsWindowUsable();
    void otherDatabaseReplacesTables();
    void newEmptiesEverything();
    void newBeginsAtTheOrigin();
    void otherDatabaseBeginsAtTheOrigin();
    void quitClosesWindow();
    void layoutIsRemembered();
};

void TestWindow::beginsWithSampleQuery() {
    open({});
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - sample.db - orvquery"));
    QCOMPARE(child<QAbstractItemView>("tables")->model()->rowCount(), 14);
    QCOMPARE(builder().ListOfTables->TablesCount(), 3);
    QVERIFY(builder().LoadReport().empty());
    QVERIFY(builder().Validate().empty());
    QVERIFY(text().contains(QStringLiteral("FROM CUSTOMERS")));
    QVERIFY(runAndWait());
    QCOMPARE(label("summary").section(u',', 0, 0), QStringLiteral("167 rows"));
    QVERIFY(!isShown("notes"));
}

void TestWindow::beginsWithGivenStatement() {
    const QString query = m_folder.filePath(QStringLiteral("q.sql"));
    QVERIFY(apptest::writeFile(query, "select id from orders"));
    Options options;
    options.database = m_database;
    options.load = query;
    options.keepMeaning = false;
    open(options);
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
    QVERIFY(!builder().KeepMeaning());
    options.load = m_folder.filePath(QStringLiteral("none.sql"));
    open(options);
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_messages.size(), 1);
    QVERIFY(m_messages[0].endsWith(QStringLiteral("it does not exist.")));
    // A statement that is refused is there to be mended.
    QVERIFY(apptest::writeFile(query, "drop table orders"));
    options.load = query;
    open(options);
    QCOMPARE(text(), QStringLiteral("drop table orders"));
    QVERIFY(isShown("refusal"));
}

void TestWindow::refusedTextHasNoFindingsOfAnother() {
    type("select id, nope from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(isShown("findings"));
    type("selec id");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(isShown("refusal"));
    QVERIFY(!isShown("findings"));
}

void TestWindow::beginsWithSchema() {
    const QString schema = m_folder.filePath(QStringLiteral("s.json"));
    QVERIFY(apptest::writeFile(schema, R"({"ORDERS": [["CUSTNO", "ftInteger"]]})"));
    Options options;
    options.schema = schema;
    open(options);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - s.json - orvquery"));
    doubleClickTable("ORDERS");
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no rows: no database is open."));
}

void TestWindow::doubleClickAddsTable() {
    QVERIFY(builder().KeepMeaning());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
    QCOMPARE(child<QAbstractItemView>("tables")->model()->rowCount(), 4);
    doubleClickTable("orders");
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    QVERIFY(text().contains(QStringLiteral("FROM ORDERS")));
    doubleClickTable("rich");
    QCOMPARE(builder().ListOfTables->TablesCount(), 2);
}

void TestWindow::keysAddTable() {
    auto* filter = child<QLineEdit>("filter");
    filter->setFocus();
    QTest::keyClicks(filter, "peop");
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    QVERIFY(text().contains(QStringLiteral("FROM PEOPLE")));
    QTest::keyClick(filter, Qt::Key_Escape);
    QCOMPARE(filter->text(), QString());
    auto* list = child<QAbstractItemView>("tables");
    QTest::keyClick(filter, Qt::Key_Down);
    QVERIFY(list->hasFocus());
    QTest::keyClick(list, Qt::Key_Home);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Enter);
    QCOMPARE(builder().ListOfTables->TablesCount(), 2);
}

void TestWindow::filterNarrowsList() {
    const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
    auto* filter = child<QLineEdit>("filter");
    QTest::keyClicks(filter, "R");
    QVERIFY(tableIndex("orders").isValid());
    QVERIFY(tableIndex("rich").isValid());
    QVERIFY(!tableIndex("people").isValid());
    QTest::keyClicks(filter, "x");
    QCOMPARE(model->rowCount(), 0);
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestWindow::goneTableLeavesTheList() {
    QVERIFY(apptest::runStatements(m_database, {"CREATE TABLE brief (x INT)"}));
    press(Qt::Key_R, Qt::ControlModifier);
    QTRY_VERIFY(tableIndex("brief").isValid());
    for (const bool isFirst : {true, false}) {
        QVERIFY(apptest::runStatements(m_database, {"DROP TABLE brief"}));
        m_messages.clear();
        doubleClickTable("brief");
        QTRY_COMPARE(m_messages, QStringList("The table \"brief\" is not there any more."));
        QTRY_VERIFY(!tableIndex("brief").isValid());
        if (!isFirst) break;
        doubleClickTable("people");
        QVERIFY(apptest::runStatements(m_database, {"CREATE TABLE brief (x INT)"}));
        press(Qt::Key_R, Qt::ControlModifier);
        QTRY_VERIFY(tableIndex("brief").isValid());
    }
    QCOMPARE(m_messages.size(), 1);
}

void TestWindow::typedStatementIsLoaded() {
    type("select o.id, o.city from orders o");
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    QCOMPARE(text(), QStringLiteral("SELECT O.ID,\n       O.CITY\nFROM ORDERS O"));
    QCOMPARE(label("statementState"), QString());
    QVERIFY(!isShown("findings"));
}

void TestWindow::loadButtonLoads() {
    type("select id from orders");
    click("loadButton");
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
}

// Loading what is there must not throw away where the boxes lie.
void TestWindow::unchangedStatementStaysAsItIs() {
    type("select id from orders");
    click("loadButton");
    const auto* box = builder().ListOfTables->Tables(0);
    click("loadButton");
    QCOMPARE(builder().ListOfTables->Tables(0), box);
}

void TestWindow::refusedStatementStays() {
    type("delete from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(text(), QStringLiteral("delete from orders"));
    QVERIFY(isShown("refusal"));
    QCOMPARE(label("refusal"), QStringLiteral("Not loaded: Given statement is not SELECT clause"));
    load("with a as (select 1) select * from a");
    QCOMPARE(label("refusal"),
             QStringLiteral("Not loaded: Given statement is not SELECT clause. The text begins "
                            "with WITH, and a common table expression is not read."));
    editor().clear();
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(
        label("refusal"),
        QStringLiteral("Not loaded: Given statement is not SELECT clause. The text is empty."));
    type("select id from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!isShown("refusal"));
}

void TestWindow::typedTextIsNotOverwritten() {
    type("select 1");
    QVERIFY(!isShown("changedBar"));
    doubleClickTable("people");
    QCOMPARE(text(), QStringLiteral("select 1"));
    QVERIFY(isShown("changedBar"));
    click("showStatement");
    QVERIFY(text().contains(QStringLiteral("FROM PEOPLE")));
    QVERIFY(!isShown("changedBar"));
    QCOMPARE(label("statementState"), QString());
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(text(), QStringLiteral("select 1"));
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
}

void TestWindow::typedTextCanBeKept() {
    type("select 1");
    doubleClickTable("people");
    click("keepText");
    QVERIFY(!isShown("changedBar"));
    QCOMPARE(text(), QStringLiteral("select 1"));
    doubleClickTable("orders");
    QVERIFY(isShown("changedBar"));
}

void TestWindow::findingsSelectTheirPlace() {
    type("select o.id from orders o, nowhere n");
    press(Qt::Key_Return, Qt::ControlModifier);
    click("loadAnyway");
    auto* findings = child<QListWidget>("findings");
    QVERIFY(findings->isVisible());
    QCOMPARE(findings->count(), 1);
    QVERIFY(label("findingsTitle").startsWith(QStringLiteral("1 part of the loaded statement")));
    QVERIFY(text().startsWith(QStringLiteral("SELECT O.ID\nFROM ORDERS O")));
    QVERIFY(!isShown("backToStatement"));

    QTest::mouseClick(findings->viewport(), Qt::LeftButton, {},
                      findings->visualItemRect(findings->item(0)).center());
    QCOMPARE(text(), QStringLiteral("select o.id from orders o, nowhere n"));
    QCOMPARE(editor().textCursor().selectedText(), QStringLiteral("nowhere n"));
    QCOMPARE(label("statementState"), QStringLiteral("as it was loaded"));
    click("backToStatement");
    QVERIFY(text().startsWith(QStringLiteral("SELECT O.ID\nFROM ORDERS O")));

    type("select id from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!findings->isVisible());
}

void TestWindow::findingsOfTextWithCarriageReturns() {
    const QString query = m_folder.filePath(QStringLiteral("crlf.sql"));
    QVERIFY(apptest::writeFile(query, "select o.id\r\nfrom orders o,\r\nnowhere n\r\n"));
    Options options;
    options.database = m_database;
    options.load = query;
    open(options);
    auto* findings = child<QListWidget>("findings");
    QCOMPARE(findings->count(), 1);
    QTest::mouseClick(findings->viewport(), Qt::LeftButton, {},
                      findings->visualItemRect(findings->item(0)).center());
    QCOMPARE(editor().textCursor().selectedText(), QStringLiteral("nowhere n"));
}

void TestWindow::noBreakSpaceStays() {
    type("");
    editor().insertPlainText(QStringLiteral("select '\u00a0' as x, \"a\u00a0b\" as y from orders"));
    press(Qt::Key_Return, Qt::ControlModifier);
    click("loadAnyway");
    QVERIFY(builder().GetSQLStatment().contains(QStringLiteral("'\u00a0'")));
}

void TestWindow::statementThatCannotBeWritten() {
    type("select 1, count(*) from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    click("loadAnyway");
    const QString reason = apptest::errorOf([this] { (void)builder().GetSQLStatment(); });
    QVERIFY(reason != QStringLiteral("(no error)"));
    QCOMPARE(text(), QString());
    QCOMPARE(editor().placeholderText(), reason);
    QVERIFY(editor().font().italic());
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), reason);
    type("select 1");
    QVERIFY(!editor().font().italic());
}

void TestWindow::failedOpenKeepsWindowUsable() {
    doubleClickTable("orders");
    const QString before = text();
    QVERIFY(!m_window->openDatabase(m_folder.path()));
    QCOMPARE(
        m_messages,
        QStringList{QStringLiteral("The database file \"%1\" is a folder.").arg(m_folder.path())});
    QCOMPARE(text(), before);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
    doubleClickTable("people");
    QCOMPARE(builder().ListOfTables->TablesCount(), 2);
    load("select id from orders");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindow::otherDatabaseReplacesTables() {
    doubleClickTable("orders");
    QVERIFY(runAndWait());
    const QString other = m_folder.filePath(QStringLiteral("other.db"));
    QVERIFY(apptest::runStatements(other, {"CREATE TABLE things (x INT)"}));
    orv::setDialogRunner([](QDialog&) { return int(KeepQueryDialog::Empty); });
    QVERIFY(m_window->openDatabase(other));
    orv::setDialogRunner({});
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - other.db - orvquery"));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    QVERIFY(!isShown("rows"));
    QVERIFY(!tableIndex("orders").isValid());
    doubleClickTable("things");
    QVERIFY(text().contains(QStringLiteral("FROM THINGS")));
}

void TestWindow::newEmptiesEverything() {
    type("select o.id from orders o, nowhere n");
    press(Qt::Key_Return, Qt::ControlModifier);
    click("loadAnyway");
    QVERIFY(runAndWait());
    startAnew();
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    QVERIFY(!isShown("findings"));
    QVERIFY(!isShown("rows"));
}

void TestWindow::newBeginsAtTheOrigin() {
    TorvQDWorkArea& area = *builder().WorkArea;
    doubleClickTable("orders");
    const QPoint first(area.Tables(0)->Left, area.Tables(0)->Top);
    area.Tables(0)->SetLeft(5000);
    area.Tables(0)->SetTop(4000);
    area.scrollTo({3000, 2000});
    QCOMPARE(area.scrollPosition(), QPoint(3000, 2000));
    startAnew();
    QCOMPARE(area.scrollPosition(), QPoint(0, 0));
    doubleClickTable("orders");
    QCOMPARE(QPoint(area.Tables(0)->Left, area.Tables(0)->Top), first);
}

// A query that is kept stays where it was seen.
void TestWindow::otherDatabaseBeginsAtTheOrigin() {
    TorvQDWorkArea& area = *builder().WorkArea;
    doubleClickTable("orders");
    area.Tables(0)->SetLeft(5000);
    area.scrollTo({3000, 0});
    orv::setDialogRunner([](QDialog&) { return int(KeepQueryDialog::Keep); });
    openNumbers();
    QCOMPARE(area.scrollPosition(), QPoint(3000, 0));
    orv::setDialogRunner([](QDialog&) { return int(KeepQueryDialog::Empty); });
    QVERIFY(m_window->openDatabase(m_database));
    QCOMPARE(area.TablesCount(), 0);
    QCOMPARE(area.scrollPosition(), QPoint(0, 0));
}

void TestWindow::quitClosesWindow() {
    press(Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!m_window->isVisible());
}

void TestWindow::layoutIsRemembered() {
    m_window->resize(900, 700);
    child<QSplitter>("outer")->setSizes({250, 650});
    const QList<int> sizes = child<QSplitter>("outer")->sizes();
    m_window->close();
    open({});
    QCOMPARE(m_window->size(), QSize(900, 700));
    QCOMPARE(child<QSplitter>("outer")->sizes(), sizes);
}

QTEST_MAIN(TestWindow)
#include "tst_app_window.moc"
