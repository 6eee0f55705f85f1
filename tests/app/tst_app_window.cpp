// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/MainWindow.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>

using namespace orvquery;

// The window as a person uses it: mouse and keys in, what can be seen out.
class TestWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void beginsWithSampleQuery();
    void beginsWithGivenStatement();
    void refusedTextHasNoFindingsOfAnother();
    void beginsWithSchema();
    void doubleClickAddsTable();
    void keysAddTable();
    void filterNarrowsList();
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
    void runShowsRows();
    void doubtsStandAboveTheRows();
    void nullIsNoEmptyText();
    void rowsAreCut();
    void rowsCanBeCopied();
    void databaseErrorIsShown();
    void runWithoutDatabase();
    void longQueryCanBeStopped();
    void windowClosesWhileQueryRuns();
    void failedOpenKeepsWindowUsable();
    void incompleteStatementIsNotRun();
    void otherDatabaseReplacesTables();
    void newEmptiesEverything();
    void quitClosesWindow();
    void layoutIsRemembered();

private:
    template <typename Widget>
    Widget* child(const char* name) const {
        return m_window->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] TorvQueryBuilder& builder() const {
        return *m_window->findChild<TorvQueryBuilder*>();
    }
    [[nodiscard]] QPlainTextEdit& editor() const { return *child<QPlainTextEdit>("statement"); }
    [[nodiscard]] QString text() const { return editor().toPlainText(); }
    [[nodiscard]] QString label(const char* name) const { return child<QLabel>(name)->text(); }
    [[nodiscard]] bool isShown(const char* name) const { return child<QWidget>(name)->isVisible(); }
    [[nodiscard]] QString cell(int row, int column) const;
    [[nodiscard]] QModelIndex tableIndex(const char* name) const;

    void open(const Options& options);
    void type(const QString& text) const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void click(const char* button) const;
    void doubleClickTable(const char* name) const;
    [[nodiscard]] bool runAndWait() const;

    std::unique_ptr<MainWindow> m_window;
    QStringList m_messages;
    QTemporaryDir m_folder;
    QString m_database;
};

void TestWindow::initTestCase() {
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                     "CREATE TABLE people (name TEXT)",
                     "CREATE VIEW rich AS SELECT id FROM orders WHERE total > 5",
                     "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3), (3, '', NULL)"}));
}

void TestWindow::init() {
    // The platform without a display says that it has no window manager to tell sizes to.
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support propagateSizeHints)")));
    QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
    m_messages.clear();
    orv::setMessageService([this](const orv::MessageRequest& request) {
        m_messages += request.text;
        return orv::MessageAnswer::Ok;
    });
    Options options;
    options.database = m_database;
    open(options);
}

void TestWindow::cleanup() {
    m_window.reset();
    orv::setMessageService({});
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
}

void TestWindow::open(const Options& options) {
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->begin(options);
}

QString TestWindow::cell(int row, int column) const {
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    return model->index(row, column).data().toString();
}

QModelIndex TestWindow::tableIndex(const char* name) const {
    const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 0).data().toString() == QLatin1String(name)) {
            return model->index(row, 0);
        }
    }
    return {};
}

void TestWindow::type(const QString& text) const {
    editor().setFocus();
    editor().selectAll();
    QTest::keyClicks(&editor(), text);
}

void TestWindow::press(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(m_window.get(), key, modifiers);
}

void TestWindow::click(const char* button) const {
    QTest::mouseClick(child<QWidget>(button), Qt::LeftButton);
}

// As a mouse does it: press, release, double click, release.
void TestWindow::doubleClickTable(const char* name) const {
    auto* list = child<QAbstractItemView>("tables");
    const QPoint place = list->visualRect(tableIndex(name)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

bool TestWindow::runAndWait() const {
    auto* stop = child<QToolButton>("stopButton");
    press(Qt::Key_F5);
    return QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000);
}

void TestWindow::beginsWithSampleQuery() {
    open({});
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("sample.db - orvquery"));
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
    QCOMPARE(m_window->windowTitle(), QStringLiteral("s.json - orvquery"));
    doubleClickTable("ORDERS");
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no rows: no database is open."));
}

void TestWindow::doubleClickAddsTable() {
    QVERIFY(builder().KeepMeaning());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("shop.db - orvquery"));
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
    QVERIFY(builder().GetSQLStatment().contains(QStringLiteral("'\u00a0'")));
}

void TestWindow::statementThatCannotBeWritten() {
    type("select 1, count(*) from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
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

void TestWindow::doubtsStandAboveTheRows() {
    type("select id, name from orders, people");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(runAndWait());
    QVERIFY(isShown("notes"));
    QCOMPARE(label("notes"),
             QStringLiteral("PEOPLE: Nothing links this with the other tables: each of its rows is "
                            "combined with each of theirs."));
    type("select id from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(runAndWait());
    QVERIFY(!isShown("notes"));
}

void TestWindow::runShowsRows() {
    type("select id, city, total from orders order by id");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QCOMPARE(cell(0, 1), QStringLiteral("Rome"));
    QCOMPARE(cell(0, 2), QStringLiteral("10.5"));
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QCOMPARE(model->rowCount(), 3);
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("city"));
    QVERIFY(label("summary").startsWith(QStringLiteral("3 rows, ")));
    // What is typed runs as it is; the diagram takes no part in it.
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestWindow::nullIsNoEmptyText() {
    type("select city from orders where id > 1 order by id");
    QVERIFY(runAndWait());
    QCOMPARE(cell(0, 0), QStringLiteral("NULL"));
    QCOMPARE(cell(1, 0), QString());
    const QModelIndex index = child<QTableView>("rows")->model()->index(0, 0);
    QVERIFY(index.data(Qt::FontRole).value<QFont>().italic());
}

void TestWindow::rowsAreCut() {
    type(
        "with recursive n(x) as (values(1) union all select x + 1 from n limit 20000) "
        "select x from n");
    QVERIFY(runAndWait());
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 10000);
    QVERIFY(label("summary").startsWith(
        QStringLiteral("the first %1 rows; there are more").arg(QLocale().toString(10000))));
}

void TestWindow::rowsCanBeCopied() {
    type("select id, city from orders order by id");
    QVERIFY(runAndWait());
    auto* rows = child<QTableView>("rows");
    rows->setFocus();
    rows->selectAll();
    QTest::keyClick(rows, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1\tRome\n2\t\n3\t"));
}

void TestWindow::databaseErrorIsShown() {
    type("select x from nowhere");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("The database says: no such table: nowhere"));
    type("select 1");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    type("  ");
    QVERIFY(runAndWait());
    QCOMPARE(label("resultText"), QStringLiteral("There is no statement to run."));
}

void TestWindow::runWithoutDatabase() {
    Options options;
    options.database = QStringLiteral("/none.db");
    open(options);
    QCOMPARE(m_messages.size(), 1);
    type("select 1");
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no rows: no database is open."));
    type("select id from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(isShown("findings"));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestWindow::longQueryCanBeStopped() {
    type("with recursive n(x) as (values(1) union all select x + 1 from n) select max(x) from n");
    press(Qt::Key_F5);
    auto* stop = child<QToolButton>("stopButton");
    QVERIFY(stop->isEnabled());
    QCOMPARE(label("summary"), QStringLiteral("running ..."));
    // Further presses do nothing.
    press(Qt::Key_F5);
    click("stopButton");
    QTRY_VERIFY_WITH_TIMEOUT(!stop->isEnabled(), 10000);
    QVERIFY(label("resultText").startsWith(QStringLiteral("Stopped after ")));
    type("select 1");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindow::windowClosesWhileQueryRuns() {
    type("with recursive n(x) as (values(1) union all select x + 1 from n) select max(x) from n");
    press(Qt::Key_F5);
    QVERIFY(child<QToolButton>("stopButton")->isEnabled());
    m_window.reset();
}

void TestWindow::failedOpenKeepsWindowUsable() {
    doubleClickTable("orders");
    const QString before = text();
    QVERIFY(!m_window->openDatabase(m_folder.path()));
    QCOMPARE(
        m_messages,
        QStringList{QStringLiteral("The database file \"%1\" is a folder.").arg(m_folder.path())});
    QCOMPARE(text(), before);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("shop.db - orvquery"));
    doubleClickTable("people");
    QCOMPARE(builder().ListOfTables->TablesCount(), 2);
    type("select 1");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindow::incompleteStatementIsNotRun() {
    QCOMPARE(text(), QString());
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no tables in the diagram yet."));
    doubleClickTable("orders");
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
}

void TestWindow::otherDatabaseReplacesTables() {
    doubleClickTable("orders");
    QVERIFY(runAndWait());
    const QString other = m_folder.filePath(QStringLiteral("other.db"));
    QVERIFY(apptest::runStatements(other, {"CREATE TABLE things (x INT)"}));
    QVERIFY(m_window->openDatabase(other));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("other.db - orvquery"));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    QVERIFY(!isShown("rows"));
    QVERIFY(!tableIndex("orders").isValid());
    doubleClickTable("things");
    QVERIFY(text().contains(QStringLiteral("FROM THINGS")));
}

void TestWindow::newEmptiesEverything() {
    type("select o.id from orders o, nowhere n");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(runAndWait());
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    QVERIFY(!isShown("findings"));
    QVERIFY(!isShown("rows"));
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
