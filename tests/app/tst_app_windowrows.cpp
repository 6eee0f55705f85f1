// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "window/ExportDialog.h"
#include "workarea/ORVQDFloatPanel.h"

using namespace orvquery;

// Running, stopping and exporting in the window.
class TestWindowRows : public QObject, protected apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void doubtsStandAboveTheRows();
    void runShowsRows();
    void nullIsNoEmptyText();
    void rowsAreCut();
    void rowsCanBeCopied();
    void databaseErrorIsShown();
    void tableIsDroppedAfterTheListing();
    void fileGoesAfterTheListing();
    void rowsBeforeAnErrorStay();
    void typedTextIsNotRun();
    void refusedTextIsNotRun();
    void loadedTextIsNotRun();
    void runWithoutDatabase();
    void longQueryCanBeStopped();
    void otherDatabaseEndsQuery();
    void silentDatabaseIsGivenUp();
    void rowsAreExported();
    void exportProposesFile();
    void exportNames_data();
    void exportNames();
    void earlierRowsAreMarked();
    void earlierRowsAreExportedAsSuch();
    void exportRunsAgainForAllRows();
    void exportTellsWhatIsWrong();
    void windowClosesWhileQueryRuns();
    void incompleteStatementIsNotRun();
    void problemIsToldWhileItIsThere();
    void problemOfATextIsToldWhileItIsThere();
    void doubtsOfAProblemGoWithAChange();
    void earlierErrorIsMarked();
    void errorOfAStatementChangedMeanwhileIsMarked();
};

void TestWindowRows::doubtsStandAboveTheRows() {
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

void TestWindowRows::runShowsRows() {
    load("select id, city, total from orders order by id");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QCOMPARE(cell(0, 1), QStringLiteral("Rome"));
    QCOMPARE(cell(0, 2), QStringLiteral("10.5"));
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QCOMPARE(model->rowCount(), 3);
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("city"));
    QVERIFY(label("summary").startsWith(QStringLiteral("3 rows, ")));
}

void TestWindowRows::nullIsNoEmptyText() {
    load("select city from orders where id > 1 order by id");
    click("loadAnyway");
    QVERIFY(runAndWait());
    QCOMPARE(cell(0, 0), QStringLiteral("NULL"));
    QCOMPARE(cell(1, 0), QString());
    const QModelIndex index = child<QTableView>("rows")->model()->index(0, 0);
    QVERIFY(index.data(Qt::FontRole).value<QFont>().italic());
}

void TestWindowRows::rowsAreCut() {
    openNumbers();
    load("select x from many");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 100000);
    QVERIFY(label("summary").startsWith(
        QStringLiteral("First %1 rows; there are more. ").arg(QLocale().toString(100000))));
    QVERIFY(!label("summary").contains(QStringLiteral("sorted")));
    child<QTableView>("rows")->sortByColumn(0, Qt::DescendingOrder);
    QVERIFY(label("summary").endsWith(QStringLiteral(". Only the fetched rows are sorted")));
    QCOMPARE(cell(0, 0), QStringLiteral("100000"));
}

void TestWindowRows::rowsCanBeCopied() {
    load("select id, city from orders order by id");
    QVERIFY(runAndWait());
    auto* rows = child<QTableView>("rows");
    rows->setFocus();
    rows->selectAll();
    QTest::keyClick(rows, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1\tRome\n2\t\n3\t"));
}

void TestWindowRows::databaseErrorIsShown() {
    openNumbers();
    load("select abs(x) as y from lowest where x < 0");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("The database says: integer overflow"));
    load("select x from lowest");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindowRows::tableIsDroppedAfterTheListing() {
    const QString file = m_folder.filePath(QStringLiteral("passing.db"));
    QVERIFY(apptest::runStatements(
        file, {"CREATE TABLE passing (id INT)", "CREATE TABLE staying (id INT)"}));
    QVERIFY(m_window->openDatabase(file));
    load("select id from passing");
    QVERIFY(apptest::runStatements(file, {"DROP TABLE passing"}));
    QVERIFY(runAndWait());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("The database says: no such table: PASSING"));
    load("select id from staying");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindowRows::fileGoesAfterTheListing() {
    const QString file = m_folder.filePath(QStringLiteral("moving.db"));
    const QString moved = m_folder.filePath(QStringLiteral("moved.db"));
    QVERIFY(apptest::runStatements(file, {"CREATE TABLE things (id INT)"}));
    QVERIFY(m_window->openDatabase(file));
    load("select id from things");
    QVERIFY(QFile::rename(file, moved));
    QVERIFY(runAndWait());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"),
             QStringLiteral("The database file \"%1\" does not exist.").arg(file));
    QVERIFY(QFile::rename(moved, file));
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindowRows::rowsBeforeAnErrorStay() {
    openNumbers();
    load("select abs(x) as y from lowest");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QCOMPARE(cell(0, 0), QStringLiteral("5"));
    QVERIFY(isShown("trouble"));
    QCOMPARE(label("trouble"), QStringLiteral("The database says: integer overflow. The rows below "
                                              "came before; they are incomplete."));
    QVERIFY(label("summary").startsWith(QStringLiteral("1 row, incomplete, ")));
    load("select x from lowest");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("trouble"));
}

void TestWindowRows::typedTextIsNotRun() {
    load("select id from orders");
    QVERIFY(runAndWait());
    type("select city from orders");
    press(Qt::Key_F5);
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("The text was changed but not loaded; Load "
                                                 "(Ctrl+Enter) it first, or choose Back to the "
                                                 "statement."));
    QVERIFY(isShown("remedyButton"));
    click("remedyButton");
    QCOMPARE(text(), QStringLiteral("SELECT CITY\nFROM ORDERS"));
    QCOMPARE(label("resultText"), QStringLiteral("Run the statement (F5) to see its rows here."));
    QVERIFY(!isShown("remedyButton"));
    QVERIFY(runAndWait());
    QCOMPARE(cell(0, 0), QStringLiteral("Rome"));
}

void TestWindowRows::refusedTextIsNotRun() {
    type("delete from orders");
    press(Qt::Key_F5);
    click("remedyButton");
    QVERIFY(isShown("refusal"));
    QVERIFY(label("resultText").startsWith(QStringLiteral("The text was changed but not loaded")));
    QVERIFY(isShown("remedyButton"));
}

// What runs is what the diagram holds of it.
void TestWindowRows::loadedTextIsNotRun() {
    load("select o.id from orders o, nowhere n");
    click("loadAnyway");
    auto* findings = child<QListWidget>("findings");
    QTest::mouseClick(findings->viewport(), Qt::LeftButton, {},
                      findings->visualItemRect(findings->item(0)).center());
    QCOMPARE(label("statementState"), QStringLiteral("as it was loaded"));
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 3);
    QVERIFY(text().startsWith(QStringLiteral("SELECT O.ID\nFROM ORDERS O")));
}

void TestWindowRows::runWithoutDatabase() {
    Options options;
    options.database = QStringLiteral("/none.db");
    open(options);
    QCOMPARE(m_messages.size(), 1);
    type("select 1");
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no rows: no database is open."));
    type("select id from orders");
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(label("refusal").contains(QStringLiteral("\"orders\": This table is not known")));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestWindowRows::longQueryCanBeStopped() {
    openNumbers();
    load("select x from endless");
    press(Qt::Key_F5);
    auto* stop = child<QToolButton>("stopButton");
    QVERIFY(stop->isEnabled());
    QVERIFY(label("summary").startsWith(QStringLiteral("Running ...")));
    QVERIFY(isShown("busy"));
    // Further presses do nothing.
    press(Qt::Key_F5);
    click("stopButton");
    QTRY_VERIFY_WITH_TIMEOUT(!stop->isEnabled(), 10000);
    QVERIFY(label("resultText").startsWith(QStringLiteral("Stopped after ")));
    QVERIFY(!isShown("busy"));
    load("select x from lowest");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindowRows::otherDatabaseEndsQuery() {
    openNumbers();
    load("select x from endless");
    press(Qt::Key_F5);
    orv::setDialogRunner([](QDialog&) { return int(KeepQueryDialog::Empty); });
    QVERIFY(m_window->openDatabase(m_database));
    orv::setDialogRunner({});
    QVERIFY(QTest::qWaitFor([&] { return !child<QToolButton>("stopButton")->isEnabled(); }, 30000));
    QCOMPARE(label("resultText"), QStringLiteral("Run the statement (F5) to see its rows here."));
    QCOMPARE(label("summary"), QString());
    load("select id from orders");
    QVERIFY(runAndWait());
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 3);
}

void TestWindowRows::silentDatabaseIsGivenUp() {
    auto* controller = m_window->findChild<RunController*>();
    QSemaphore released;
    controller->setPatience(std::chrono::milliseconds(0));
    controller->setSourceMaker([&](const auto&...) {
        return [&](RowSink& sink, StopPoint&) {
            sink.begin({"a"});
            released.acquire();
        };
    });
    load("select id from orders");
    press(Qt::Key_F5);
    auto* stop = child<QToolButton>("stopButton");
    click("stopButton");
    QVERIFY(QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000));
    QCOMPARE(label("resultText"), QStringLiteral("Stopped; the database did not answer, so its "
                                                 "connection was given up."));
    QVERIFY(QueryThread::threadsAtLarge() > 0);
    controller->setSourceMaker(rowsOfQuery);
    QVERIFY(runAndWait());
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 3);
    released.release();
    QVERIFY(QTest::qWaitFor([] { return QueryThread::threadsAtLarge() == 0; }, 30000));
}

void TestWindowRows::rowsAreExported() {
    QVERIFY(!child<QToolButton>("exportButton")->isEnabled());
    load("select id, city from orders order by id");
    QVERIFY(runAndWait());
    child<QTableView>("rows")->sortByColumn(0, Qt::DescendingOrder);
    const QString file = m_folder.filePath(QStringLiteral("rows.tsv"));
    const orv::DialogRunner before = orv::setDialogRunner([&](QDialog& dialog) {
        static_cast<QFileDialog&>(dialog).selectFile(file);
        return int(QDialog::Accepted);
    });
    click("exportButton");
    auto* stop = child<QToolButton>("stopButton");
    QVERIFY(stop->isEnabled());
    QVERIFY(QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000));
    orv::setDialogRunner(before);
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(label("exportState"), QStringLiteral("Exported 3 rows to rows.tsv."));
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("id\tcity\n3\t\"\"\n2\t\n1\tRome\n"));
    QVERIFY(isShown("rows"));
}

void TestWindowRows::exportProposesFile() {
    load("select p.name from people p, orders o");
    QVERIFY(runAndWait());
    QStringList files;
    const orv::DialogRunner before = orv::setDialogRunner([&](QDialog& dialog) {
        auto& dialogFiles = static_cast<QFileDialog&>(dialog);
        files += dialogFiles.selectedFiles();
        for (const QString& filter : dialogFiles.nameFilters()) {
            dialogFiles.selectNameFilter(filter);
            Q_EMIT dialogFiles.filterSelected(filter);
            files += dialogFiles.selectedFiles();
        }
        dialogFiles.selectFile(m_folder.filePath(QStringLiteral("p.1")));
        Q_EMIT dialogFiles.filterSelected(dialogFiles.nameFilters().last());
        files += dialogFiles.selectedFiles();
        return int(QDialog::Accepted);
    });
    click("exportButton");
    auto* stop = child<QToolButton>("stopButton");
    QVERIFY(QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000));
    const QDir home(QDir::homePath());
    const QString chosen = m_folder.filePath(QStringLiteral("p.1.json"));
    QCOMPARE(files,
             QStringList({home.filePath("people.csv"), home.filePath("people.csv"),
                          home.filePath("people.tsv"), home.filePath("people.json"), chosen}));
    QVERIFY(QFile::exists(chosen));
    // The next one is proposed beside it.
    files.clear();
    click("exportButton");
    QVERIFY(QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000));
    orv::setDialogRunner(before);
    QCOMPARE(files.front(), m_folder.filePath(QStringLiteral("people.csv")));
}

void TestWindowRows::exportNames_data() {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "ORDERS"
                           << "orders";
    QTest::newRow("quoted") << "\"Order Details\""
                            << "Order_Details";
    QTest::newRow("schema") << "\"sales\".\"Orders\""
                            << "Orders";
    QTest::newRow("no names of files") << "\"a/b:c..\""
                                       << "a_b_c__";
    QTest::newRow("none") << ""
                          << "rows";
}

void TestWindowRows::exportNames() {
    QFETCH(QString, table);
    QTEST(exportName(table), "name");
}

void TestWindowRows::earlierRowsAreMarked() {
    QVERIFY(!isShown("earlier"));
    load("select id from orders");
    QVERIFY(!isShown("earlier"));
    QVERIFY(runAndWait());
    QVERIFY(!isShown("earlier"));
    type("select name from people");
    QVERIFY(!isShown("earlier"));
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(isShown("rows"));
    QVERIFY(isShown("earlier"));
    QCOMPARE(label("earlier"), QStringLiteral("These rows are of an earlier statement. Run (F5) to "
                                              "see those of the present one."));
    load("select id from orders");
    QVERIFY(!isShown("earlier"));
    doubleClickTable("people");
    QVERIFY(isShown("earlier"));
    QVERIFY(runAndWait());
    QVERIFY(!isShown("earlier"));
    startAnew();
    QVERIFY(!isShown("earlier"));
}

void TestWindowRows::earlierRowsAreExportedAsSuch() {
    QStringList titles;
    const orv::DialogRunner before = orv::setDialogRunner([&](QDialog& dialog) {
        titles += dialog.windowTitle();
        return int(QDialog::Rejected);
    });
    load("select id from orders");
    QVERIFY(runAndWait());
    click("exportButton");
    load("select name from people");
    click("exportButton");
    startAnew();
    openNumbers();
    load("select name, data from large");
    QVERIFY(runAndWait());
    click("exportButton");
    orv::setDialogRunner(before);
    QCOMPARE(titles, QStringList({"Export rows", "Export the rows of the earlier statement",
                                  "Export rows: runs the statement again to get all of them"}));
}

void TestWindowRows::exportRunsAgainForAllRows() {
    openNumbers();
    auto* controller = m_window->findChild<RunController*>();
    auto* stop = child<QToolButton>("stopButton");
    const auto exported = [&](const char* name) {
        const QString file = m_folder.filePath(QLatin1String(name));
        controller->exportRows(file);
        if (!QTest::qWaitFor([&] { return !stop->isEnabled(); }, 60000)) return QByteArray();
        QFile written(file);
        return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray();
    };
    load("select x from many");
    QVERIFY(runAndWait());
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 100000);
    const QByteArray all = exported("all.csv");
    QCOMPARE(all.count('\n'), 150001);
    QVERIFY(all.endsWith("\r\n150000\r\n"));
    load("select name, data from large");
    QVERIFY(runAndWait());
    QVERIFY(label("summary").endsWith(QStringLiteral(". Large values are shortened")));
    QCOMPARE(exported("large.csv").size(), qsizetype(11 + 2 + 4000000 + 2));
}

void TestWindowRows::exportTellsWhatIsWrong() {
    load("select id from orders");
    QVERIFY(runAndWait());
    auto* controller = m_window->findChild<RunController*>();
    QCOMPARE(apptest::errorOf([&] { controller->exportRows(QStringLiteral("/a/b.xls")); }),
             QStringLiteral("Rows are exported into a file named .csv, .tsv or .json, not "
                            "\"b.xls\"."));
    controller->exportRows(QStringLiteral("/none/b.csv"));
    QVERIFY(QTest::qWaitFor([&] { return !m_messages.isEmpty(); }, 30000));
    QCOMPARE(m_messages, QStringList{QStringLiteral("The file \"/none/b.csv\" cannot be written: "
                                                    "its folder does not exist.")});
    QCOMPARE(label("exportState"), QStringLiteral("Nothing was exported to b.csv."));
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestWindowRows::windowClosesWhileQueryRuns() {
    openNumbers();
    load("select x from endless");
    press(Qt::Key_F5);
    QVERIFY(child<QToolButton>("stopButton")->isEnabled());
    m_window.reset();
}

void TestWindowRows::incompleteStatementIsNotRun() {
    QCOMPARE(text(), QString());
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("There are no tables in the diagram yet."));
    doubleClickTable("orders");
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
}

void TestWindowRows::problemIsToldWhileItIsThere() {
    press(Qt::Key_F5);
    doubleClickTable("orders");
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
    doubleClickTable("people");
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
    startAnew();
    press(Qt::Key_F5);
    load("select id from orders");
    QCOMPARE(label("resultText"), QStringLiteral("Run the statement (F5) to see its rows here."));
    QVERIFY(runAndWait());
    // What is shown now is no problem.
    type("select city from orders");
    QVERIFY(isShown("rows"));
}

void TestWindowRows::problemOfATextIsToldWhileItIsThere() {
    type("select o.id from orders o, nowhere n");
    press(Qt::Key_F5);
    QVERIFY(label("resultText").startsWith(QStringLiteral("The text was changed but not loaded")));
    click("remedyButton");
    QVERIFY(label("resultText").startsWith(QStringLiteral("The text is not loaded")));
    QCOMPARE(child<QToolButton>("remedyButton")->text(), QStringLiteral("Load anyway"));
    editor().setFocus();
    editor().selectAll();
    QTest::keyClick(&editor(), Qt::Key_Delete);
    QCOMPARE(label("resultText"), QStringLiteral("There are no tables in the diagram yet."));
    QVERIFY(!isShown("remedyButton"));
}

void TestWindowRows::doubtsOfAProblemGoWithAChange() {
    doubleClickTable("orders");
    doubleClickTable("people");
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
    QVERIFY(label("notes").contains(QStringLiteral("PEOPLE: Nothing links this")));
    builder().WorkArea->Tables(0)->CloseTable();
    QCOMPARE(label("resultText"), QStringLiteral("No columns are ticked yet."));
    QVERIFY(!isShown("notes"));
}

void TestWindowRows::earlierErrorIsMarked() {
    openNumbers();
    load("select abs(x) as y from lowest where x < 0");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("earlier"));
    load("select x from lowest");
    QCOMPARE(label("resultText"), QStringLiteral("The database says: integer overflow"));
    QVERIFY(isShown("earlier"));
    QCOMPARE(label("earlier"), QStringLiteral("This is about an earlier statement. Run (F5) to see "
                                              "the rows of the present one."));
    load("select abs(x) as y from lowest where x < 0");
    QVERIFY(!isShown("earlier"));
    load("select x from lowest");
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
    QVERIFY(!isShown("earlier"));
    // A problem is about the present one.
    load("select abs(x) as y from lowest where x < 0");
    type("select half");
    press(Qt::Key_F5);
    QVERIFY(!isShown("earlier"));
}

void TestWindowRows::errorOfAStatementChangedMeanwhileIsMarked() {
    QSemaphore released;
    m_window->findChild<RunController*>()->setSourceMaker([&](const auto&...) {
        return [&](RowSink&, StopPoint&) {
            released.acquire();
            throw orv::Error(QStringLiteral("The database says no."));
        };
    });
    load("select id from orders");
    press(Qt::Key_F5);
    load("select city from orders");
    QVERIFY(!isShown("earlier"));
    released.release();
    auto* stop = child<QToolButton>("stopButton");
    QVERIFY(QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000));
    QCOMPARE(label("resultText"), QStringLiteral("The database says no."));
    QVERIFY(isShown("earlier"));
}

QTEST_MAIN(TestWindowRows)
#include "tst_app_windowrows.moc"
