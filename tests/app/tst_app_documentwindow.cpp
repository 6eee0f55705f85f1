// SPDX-License-Identifier: MIT
#include "DocumentDesk.h"
#include "documents/DocumentLock.h"
#include "documents/RecentDocuments.h"
#include "sample/SampleDatabase.h"
#include "window/FileDrop.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QMenu>
#include <QMimeData>

using namespace apptest;
using namespace orvquery;

// Queries as documents of the window: opened, changed and saved.
class TestDocumentWindow : public QObject, private apptest::DocumentDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void titleTellsNameAndChanges();
    void savedQueryComesBack();
    void layoutComesBack();
    void movedBoxIsAChange();
    void typedTextComesBack();
    void unchangedWindowClosesWithoutQuestion();
    void closingAsks_data();
    void closingAsks();
    void newAsksAndEmptiesEverything();
    void otherSuffixIsRefused();
    void databaseIsOpenedWithItsQuery();
    void queryOpensWithoutItsDatabase();
    void tablesThatAreMissingAreTold();
    void keptQueryIsSavedAsAWhole();
    void keptStatementFileStaysAsItIs();
    void columnsComeAnewWithTheDatabase();
    void sampleIsTheSampleAnywhere();
    void brokenFileChangesNothing();
    void laterVersionChangesNothing();
    void statementFileOpensAndSaves();
    void statementFileIsLeftAloneWhileUnchanged();
    void losingPartsOfAStatementFileAsksFirst_data();
    void losingPartsOfAStatementFileAsksFirst();
    void statementFileCanBecomeAQueryFile();
    void textThatWasNotLoadedIsReplacedWithoutQuestion();
    void typedTextThatHasEverythingIsNoQuestion();
    void clearedStatementFileAsksFirst();
    void statementThatCannotBeWrittenKeepsTheFile();
    void textAndDiagramAsk_data();
    void textAndDiagramAsk();
    void textAloneIsNoQuestion();
    void layoutIsNoChangeOfAStatementFile();
    void refusedStatementFileIsThereToBeMended();
    void droppedQueryIsOpened();
    void namedOnTheCommandLine();
    void recentQueriesAreInTheMenu();
    void otherKeysAreSavedAgain();
};

void TestDocumentWindow::titleTellsNameAndChanges() {
    QCOMPARE(title(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
    doubleClickTable("orders");
    QVERIFY(m_window->isWindowModified());
    QVERIFY(saveAs(path("a.orvq")));
    QCOMPARE(title(), QStringLiteral("a.orvq[*] - shop.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
    doubleClickTable("people");
    QVERIFY(m_window->isWindowModified());
    // Back where it was, there is nothing to save.
    builder().RestoreState(openFile(path("a.orvq")).document.state());
    QVERIFY(!m_window->isWindowModified());
}

void TestDocumentWindow::savedQueryComesBack() {
    load("select o.city, count(*) from orders o where o.total > 5 group by o.city");
    const QString before = statement();
    QVERIFY(saveAs(path("a.orvq")));
    openNew(path("a.orvq"));
    QCOMPARE(statement(), before);
    QCOMPARE(title(), QStringLiteral("a.orvq[*] - shop.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(tableIndex("orders").isValid());
    QCOMPARE(m_services->messages, QStringList());
}

void TestDocumentWindow::layoutComesBack() {
    load("select * from orders");
    builder().WorkArea->Tables(0)->SetLeft(321);
    QVERIFY(saveAs(path("a.orvq")));
    openNew(path("a.orvq"));
    QCOMPARE(builder().WorkArea->Tables(0)->Left, 321);
}

void TestDocumentWindow::movedBoxIsAChange() {
    load("select * from orders");
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(!m_window->isWindowModified());
    builder().WorkArea->Tables(0)->SetLeft(321);
    QCoreApplication::processEvents();
    QVERIFY(m_window->isWindowModified());
}

void TestDocumentWindow::typedTextComesBack() {
    load("select id from orders");
    type("select half");
    QVERIFY(m_window->isWindowModified());
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(!m_window->isWindowModified());
    openNew(path("a.orvq"));
    QCOMPARE(text(), QStringLiteral("select half"));
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
    QVERIFY(statement().contains(QStringLiteral("FROM ORDERS")));
    QVERIFY(!m_window->isWindowModified());
}

void TestDocumentWindow::unchangedWindowClosesWithoutQuestion() {
    QVERIFY(m_window->close());
    openNew();
    QCOMPARE(boxes(), 3);  // the sample query, which nobody has made
    QVERIFY(m_window->close());
    QCOMPARE(m_services->dialogs, QStringList());
}

void TestDocumentWindow::closingAsks_data() {
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("saves");
    QTest::newRow("save") << QByteArray("saveChanges") << true << true;
    QTest::newRow("discard") << QByteArray("discardChanges") << true << false;
    QTest::newRow("cancel") << QByteArray() << false << false;
}

void TestDocumentWindow::closingAsks() {
    QFETCH(QByteArray, button);
    QFETCH(bool, closes);
    QFETCH(bool, saves);
    doubleClickTable("orders");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray before = contentOf(path("a.orvq"));
    doubleClickTable("people");
    m_services->dialogs.clear();
    if (!button.isEmpty()) answer(button.constData());
    QCOMPARE(m_window->close(), closes);
    QCOMPARE(m_window->isVisible(), !closes);
    QCOMPARE(m_services->dialogs, QStringList{"Unsaved changes"});
    QCOMPARE(m_questions.last(),
             QStringLiteral("a.orvq has changes that are not saved. Save them?"));
    QCOMPARE(contentOf(path("a.orvq")) != before, saves);
    QCOMPARE(contentOf(path("a.orvq")).contains("PEOPLE"), saves);
    QCOMPARE(boxes(), 2);
}

void TestDocumentWindow::newAsksAndEmptiesEverything() {
    doubleClickTable("orders");
    type("select half");
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(m_services->dialogs, QStringList{"Unsaved changes"});
    QCOMPARE(boxes(), 1);
    QCOMPARE(text(), QStringLiteral("select half"));
    answer("discardChanges");
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(boxes(), 0);
    QCOMPARE(text(), QString());
    QVERIFY(!m_window->isWindowModified());
    // A file is left behind with its name.
    doubleClickTable("orders");
    QVERIFY(saveAs(path("a.orvq")));
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(boxes(), 0);
    QCOMPARE(title(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
    QCOMPARE(documents().path(), QString());
}

void TestDocumentWindow::otherSuffixIsRefused() {
    doubleClickTable("orders");
    QVERIFY(!saveAs(path("a.txt")));
    QCOMPARE(m_services->messages,
             QStringList{"A query is saved into a file named .orvq or .sql, not \"a.txt\"."});
    QVERIFY(!QFileInfo::exists(path("a.txt")));
}

void TestDocumentWindow::databaseIsOpenedWithItsQuery() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    openNew({}, m_numbers);
    QVERIFY(!tableIndex("orders").isValid());
    documents().open(path("a.orvq"));
    QVERIFY(tableIndex("orders").isValid());
    QCOMPARE(title(), QStringLiteral("a.orvq[*] - shop.db - orvquery"));
    QCOMPARE(boxes(), 1);
    QCOMPARE(m_services->messages, QStringList());
    QCOMPARE(m_services->dialogs, QStringList{"Save query as"});
}

void TestDocumentWindow::queryOpensWithoutItsDatabase() {
    const QString database = path("short.db");
    QVERIFY(apptest::runStatements(database, {"CREATE TABLE things (x INT)"}));
    openNew({}, database);
    load("select x from things");
    const QString before = statement();
    QVERIFY(saveAs(path("a.orvq")));
    m_window.reset();
    QVERIFY(QFile::remove(database));
    openNew(path("a.orvq"));
    QCOMPARE(statement(), before);
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].startsWith(
        QStringLiteral("The query is shown, but its database short.db is not open.")));
    QVERIFY(m_services->messages[0].endsWith(QStringLiteral("does not exist.")));
    // Saving it does not lose what it is for.
    builder().WorkArea->Tables(0)->SetLeft(321);
    QVERIFY(documents().save());
    QCOMPARE(openFile(path("a.orvq")).document.database.name, QStringLiteral("short.db"));
    QVERIFY(contentOf(path("a.orvq")).contains("\"sqlite://./short.db\""));
}

void TestDocumentWindow::tablesThatAreMissingAreTold() {
    load("select o.id, p.name from orders o, people p");
    const QString before = statement();
    QVERIFY(saveAs(path("a.orvq")));
    openNew(path("a.orvq"), m_numbers);
    QCOMPARE(statement(), before);
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].startsWith(QStringLiteral("numbers.db has no ")));
    QVERIFY(m_services->messages[0].contains(QStringLiteral("ORDERS")));
    QVERIFY(m_services->messages[0].contains(QStringLiteral("PEOPLE")));
}

void TestDocumentWindow::keptQueryIsSavedAsAWhole() {
    load(
        "select o.city, count(*) from orders o join people p on p.name = o.city where o.total > 5 "
        "group by o.city");
    builder().WorkArea->Tables(0)->SetLeft(321);
    QVERIFY(saveAs(path("a.orvq")));
    const QueryDocument before = openFile(path("a.orvq")).document;
    answer("keep");
    QVERIFY(m_window->openDatabase(m_numbers));
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_window->isWindowModified());
    press(Qt::Key_S, Qt::ControlModifier);
    const QueryDocument after = openFile(path("a.orvq")).document;
    QCOMPARE(after.query, before.query);
    QCOMPARE(after.statement, before.statement);
    QCOMPARE(after.database.name, QStringLiteral("numbers.db"));
}

void TestDocumentWindow::keptStatementFileStaysAsItIs() {
    const QByteArray before = "select id from orders\n";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    answer("keep");
    QVERIFY(m_window->openDatabase(m_numbers));
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.sql")), before);
    doubleClickTable("many");
    QVERIFY(documents().save());
    QVERIFY(contentOf(path("a.sql")).contains("ORDERS"));
    QVERIFY(contentOf(path("a.sql")).contains("MANY"));
}

// What the file knows of a table may be older than the table.
void TestDocumentWindow::columnsComeAnewWithTheDatabase() {
    const QString database = path("short.db");
    QVERIFY(apptest::runStatements(database, {"CREATE TABLE things (x INT, y INT, z INT)"}));
    openNew({}, database);
    load("select x from things where y > 5");
    const QString before = statement();
    QVERIFY(saveAs(path("a.orvq")));
    m_window.reset();
    QVERIFY(apptest::runStatements(database,
                                   {"DROP TABLE things", "CREATE TABLE things (w INT, x INT)"}));
    openNew(path("a.orvq"));
    QCOMPARE(statement(), before);
    QStringList names;
    for (const auto& item : builder().WorkArea->Tables(0)->Items) names += item->Name;
    QCOMPARE(names, (QStringList{"W", "X", "Y"}));
    QCOMPARE(m_services->messages,
             QStringList{"short.db has no column THINGS.Y; the query keeps it."});
    QVERIFY(!m_window->isWindowModified());
}

void TestDocumentWindow::sampleIsTheSampleAnywhere() {
    openNew();
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(contentOf(path("a.orvq")).contains("\"sample\": true"));
    QVERIFY(!contentOf(path("a.orvq")).contains("address"));
    openNew({}, m_numbers);
    documents().open(path("a.orvq"));
    QCOMPARE(title(), QStringLiteral("a.orvq[*] - sample.db - orvquery"));
    QCOMPARE(boxes(), 3);
}

void TestDocumentWindow::brokenFileChangesNothing() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray whole = contentOf(path("a.orvq"));
    QVERIFY(apptest::writeFile(path("half.orvq"), whole.left(whole.size() / 2)));
    QByteArray odd = whole;
    odd.replace("\"bounds\": [", "\"bounds\": [1, ");
    QVERIFY(apptest::writeFile(path("odd.orvq"), odd));
    const QByteArray before = builder().SaveState();
    for (const char* name : {"half.orvq", "odd.orvq", "none.orvq"}) {
        m_services->messages.clear();
        documents().open(path(name));
        QCOMPARE(m_services->messages.size(), 1);
        QVERIFY(m_services->messages[0].contains(QLatin1String(name)));
        QCOMPARE(builder().SaveState(), before);
        QCOMPARE(documents().path(), path("a.orvq"));
    }
}

void TestDocumentWindow::laterVersionChangesNothing() {
    QVERIFY(saveAs(path("a.orvq")));
    QByteArray later = contentOf(path("a.orvq"));
    later.replace("\"version\": 1", "\"version\": 7");
    QVERIFY(apptest::writeFile(path("later.orvq"), later));
    load("select id from orders");
    const QByteArray before = builder().SaveState();
    documents().open(path("later.orvq"));
    QVERIFY(m_services->messages.value(0).contains(QStringLiteral("by a later version")));
    QCOMPARE(builder().SaveState(), before);
    QCOMPARE(contentOf(path("later.orvq")), later);
}

void TestDocumentWindow::statementFileOpensAndSaves() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select id\nfrom orders\n"));
    documents().open(path("a.sql"));
    QCOMPARE(boxes(), 1);
    QCOMPARE(title(), QStringLiteral("a.sql[*] - shop.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
    doubleClickTable("people");
    QVERIFY(m_window->isWindowModified());
    QVERIFY(documents().save());
    const QByteArray written = contentOf(path("a.sql"));
    QVERIFY(written.startsWith("SELECT ORDERS.ID\nFROM ") ||
            written.startsWith("SELECT ID\nFROM "));
    QVERIFY(written.contains("PEOPLE"));
    QVERIFY(written.endsWith('\n'));
    QVERIFY(!written.contains('\r'));
    // Told once.
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].contains(QStringLiteral("where the boxes stand is not kept")));
    doubleClickTable("rich");
    QVERIFY(documents().save());
    QCOMPARE(m_services->messages.size(), 1);
}

void TestDocumentWindow::statementFileIsLeftAloneWhileUnchanged() {
    const QByteArray before = "-- all of them\r\nselect id from orders\r\n";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.sql")), before);
    type("select city from orders");
    answer("saveAnyway");
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.sql")), QByteArray("select city from orders\r\n"));
}

void TestDocumentWindow::losingPartsOfAStatementFileAsksFirst_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("losses");
    QTest::newRow("comment") << QByteArray("select id from orders -- all of them\n") << "1 comment";
    QTest::newRow("comments") << QByteArray("/* a */ select id /* b */ from orders")
                              << "2 comments";
    QTest::newRow("second statement") << QByteArray("select id from orders; select 2;")
                                      << "what stands behind the first statement";
    QTest::newRow("finding") << QByteArray("select id from orders order by total desc")
                             << "what the query does not hold: \"total desc\"";
    QTest::newRow("everything")
        << QByteArray("-- mine\nselect id from orders order by total desc;\nselect 2;")
        << "1 comment, what stands behind the first statement and what the query does not hold: "
           "\"total desc\"";
}

void TestDocumentWindow::losingPartsOfAStatementFileAsksFirst() {
    QFETCH(QByteArray, text);
    QFETCH(QString, losses);
    QVERIFY(apptest::writeFile(path("a.sql"), text));
    documents().open(path("a.sql"));
    doubleClickTable("people");
    QVERIFY(!documents().save());  // cancelled
    QCOMPARE(m_questions, QStringList{QStringLiteral("Saving a.sql would lose %1. A query file of "
                                                     "its own leaves it as it is.")
                                          .arg(losses)});
    QCOMPARE(contentOf(path("a.sql")), text);
    QVERIFY(m_window->isWindowModified());
    answer("saveAnyway");
    QVERIFY(documents().save());
    QVERIFY(contentOf(path("a.sql")).contains("PEOPLE"));
    QVERIFY(!m_window->isWindowModified());
    // Once is enough.
    m_questions.clear();
    doubleClickTable("rich");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
}

void TestDocumentWindow::statementFileCanBecomeAQueryFile() {
    const QByteArray before = "select id from orders; select 2;";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    doubleClickTable("people");
    // Enter takes the way on which nothing is lost.
    m_answers += [](QDialog& dialog) {
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Return);
        return dialog.result();
    };
    answerFile(path("a.orvq"));
    press(Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(contentOf(path("a.sql")), before);
    QCOMPARE(documents().path(), path("a.orvq"));
    QVERIFY(contentOf(path("a.orvq")).contains("PEOPLE"));
    QVERIFY(!m_window->isWindowModified());
    // Given up, it is still the statement file.
    documents().open(path("a.sql"));
    doubleClickTable("people");
    answer("saveAsQuery");
    QVERIFY(!documents().save());
    QCOMPARE(documents().path(), path("a.sql"));
    QCOMPARE(contentOf(path("a.sql")), before);
}

void TestDocumentWindow::textThatWasNotLoadedIsReplacedWithoutQuestion() {
    QVERIFY(apptest::writeFile(path("a.sql"), "drop table orders; -- all of it"));
    documents().open(path("a.sql"));
    type("select id from orders");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
    QCOMPARE(contentOf(path("a.sql")).trimmed(), QByteArray("select id from orders"));
}

void TestDocumentWindow::typedTextThatHasEverythingIsNoQuestion() {
    const QByteArray before = "select id from orders order by total desc; select 2 -- last";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    type("select id from orders");
    QVERIFY(!documents().save());
    QCOMPARE(m_questions,
             QStringList{"Saving a.sql would lose 1 comment, what stands behind the first "
                         "statement and what the query does not hold: \"total desc\". A query "
                         "file of its own leaves it as it is."});
    QCOMPARE(contentOf(path("a.sql")), before);
    m_questions.clear();
    type("select id, city from orders order by total desc; select 2 -- last");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
    QVERIFY(contentOf(path("a.sql")).startsWith("select id, city"));
}

void TestDocumentWindow::clearedStatementFileAsksFirst() {
    const QByteArray before = "select id from orders";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    builder().Clear();
    QVERIFY(!documents().save());
    QVERIFY(m_questions.value(0).startsWith(
        QStringLiteral("Saving a.sql would lose its whole statement.")));
    QCOMPARE(contentOf(path("a.sql")), before);
}

void TestDocumentWindow::statementThatCannotBeWrittenKeepsTheFile() {
    const QByteArray before = "select id from orders";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    load("select 1, count(*) from orders");
    if (isShown("loadAnyway")) click("loadAnyway");
    const QString reason = apptest::errorOf([this] { (void)statement(); });
    QVERIFY(reason != QStringLiteral("(no error)"));
    QVERIFY(!documents().save());
    QCOMPARE(m_questions.value(0),
             QStringLiteral("The query has no statement that a.sql could hold: ") + reason);
    QCOMPARE(contentOf(path("a.sql")), before);
    answer("saveAsQuery");
    answerFile(path("a.orvq"));
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.sql")), before);
    QVERIFY(!openFile(path("a.orvq")).document.query.isEmpty());
}

void TestDocumentWindow::textAndDiagramAsk_data() {
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("cancel") << QByteArray();
    QTest::newRow("text") << QByteArray("saveText");
    QTest::newRow("diagram") << QByteArray("saveDiagram");
    QTest::newRow("query file") << QByteArray("saveAsQuery");
}

void TestDocumentWindow::textAndDiagramAsk() {
    QFETCH(QByteArray, button);
    const QByteArray before = "select id from orders";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    type("select half");
    doubleClickTable("people");
    if (!button.isEmpty()) answer(button.constData());
    if (button == "saveAsQuery") answerFile(path("a.orvq"));
    QCOMPARE(documents().save(), !button.isEmpty());
    QCOMPARE(m_questions,
             QStringList{"a.sql can hold either the text that was typed or the statement of the "
                         "diagram, which has changed as well. A query file holds both."});
    QCOMPARE(m_window->isWindowModified(), button.isEmpty());
    QCOMPARE(text(), QStringLiteral("select half"));
    const QByteArray written = contentOf(path("a.sql"));
    if (button == "saveText") {
        QCOMPARE(written.trimmed(), QByteArray("select half"));
    } else if (button == "saveDiagram") {
        QCOMPARE(written.trimmed(), statement().remove(u'\r').toUtf8().trimmed());
    } else {
        QCOMPARE(written, before);
    }
    if (button == "saveAsQuery") {
        const QueryDocument saved = openFile(path("a.orvq")).document;
        QCOMPARE(saved.typed.value_or(QString()), QStringLiteral("select half"));
        QVERIFY(saved.statement.contains(QStringLiteral("PEOPLE")));
    }
    // A change of the diagram counts also behind the text.
    m_questions.clear();
    doubleClickTable("rich");
    QVERIFY(m_window->isWindowModified());
    QVERIFY(!m_window->close());
    QCOMPARE(m_questions.size(), 1);
}

void TestDocumentWindow::textAloneIsNoQuestion() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select id from orders"));
    documents().open(path("a.sql"));
    type("select half");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
    QCOMPARE(contentOf(path("a.sql")).trimmed(), QByteArray("select half"));
    // A query without a file has its diagram nowhere else.
    startAnew();
    doubleClickTable("orders");
    type("select half");
    QVERIFY(!saveAs(path("b.sql")));
    QCOMPARE(m_questions.size(), 1);
    QVERIFY(!QFileInfo::exists(path("b.sql")));
    QCOMPARE(documents().path(), QString());
}

void TestDocumentWindow::layoutIsNoChangeOfAStatementFile() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select id from orders"));
    documents().open(path("a.sql"));
    builder().WorkArea->Tables(0)->SetLeft(321);
    QCoreApplication::processEvents();
    QVERIFY(!m_window->isWindowModified());
}

void TestDocumentWindow::refusedStatementFileIsThereToBeMended() {
    QVERIFY(apptest::writeFile(path("a.sql"), "drop table orders"));
    documents().open(path("a.sql"));
    QCOMPARE(text(), QStringLiteral("drop table orders"));
    QVERIFY(isShown("refusal"));
    QCOMPARE(documents().path(), path("a.sql"));
    QVERIFY(!m_window->isWindowModified());
}

void TestDocumentWindow::droppedQueryIsOpened() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(boxes(), 0);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("a.orvq"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window.get(), &drop);
    QCoreApplication::processEvents();
    QCOMPARE(boxes(), 1);
    QCOMPARE(documents().path(), path("a.orvq"));
}

void TestDocumentWindow::namedOnTheCommandLine() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select x from many"));
    openNew(path("a.sql"), m_numbers);
    QCOMPARE(title(), QStringLiteral("a.sql[*] - numbers.db - orvquery"));
    QCOMPARE(boxes(), 1);
    openNew(path("none.orvq"));
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].endsWith(QStringLiteral("it does not exist.")));
    QCOMPARE(title(), QStringLiteral("Untitled[*] - sample.db - orvquery"));
}

void TestDocumentWindow::recentQueriesAreInTheMenu() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(saveAs(path("b.orvq")));
    QCOMPARE(RecentDocuments().paths(), (QStringList{path("b.orvq"), path("a.orvq")}));
    QVERIFY(QFile::remove(path("b.orvq")));
    auto* menu = child<QMenu>("recentQueries");
    Q_EMIT menu->aboutToShow();
    QVERIFY(!menu->actions()[0]->isEnabled());
    QVERIFY(menu->actions()[0]->text().endsWith(QStringLiteral("(not found)")));
    press(Qt::Key_N, Qt::ControlModifier);
    menu->actions()[1]->trigger();
    QCOMPARE(documents().path(), path("a.orvq"));
    RecentDocuments().forgetMissing();
    QCOMPARE(RecentDocuments().paths(), QStringList{path("a.orvq")});
    for (int number = 0; number < 12; ++number) {
        RecentDocuments().use(path(qPrintable(QStringLiteral("%1.orvq").arg(number))));
    }
    QCOMPARE(RecentDocuments().paths().size(), 10);
}

void TestDocumentWindow::otherKeysAreSavedAgain() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    QByteArray text = contentOf(path("a.orvq"));
    text.replace("\"version\": 1,", "\"version\": 1,\n  \"author\": \"Ann\",");
    text.replace("\"query\": {", "\"query\": {\n    \"paper\": \"A4\",");
    text.replace("\"procedure\": false,", "\"procedure\": false,\n \"note\": \"ours\",");
    QVERIFY(apptest::writeFile(path("b.orvq"), text));
    documents().open(path("b.orvq"));
    doubleClickTable("people");
    QVERIFY(documents().save());
    const QByteArray saved = contentOf(path("b.orvq"));
    for (const char* key : {"\"author\": \"Ann\"", "\"paper\": \"A4\"", "\"note\": \"ours\""}) {
        QCOMPARE(saved.count(key), 1);
    }
    // They belong to that file.
    press(Qt::Key_N, Qt::ControlModifier);
    doubleClickTable("people");
    QVERIFY(saveAs(path("c.orvq")));
    QVERIFY(!contentOf(path("c.orvq")).contains("Ann"));
}

QTEST_MAIN(TestDocumentWindow)
#include "tst_app_documentwindow.moc"
