// SPDX-License-Identifier: MIT
#include "DocumentDesk.h"
#include "SmallDisk.h"
#include "database/BackgroundDatabase.h"
#include "database/OpenDatabase.h"
#include "selection/ORVQDSelectOrder.h"
#include "window/DatabaseOpener.h"

#include <QEventLoop>
#include <QTimer>

using namespace apptest;
using namespace orvquery;

// Full disks, other databases, and others at the same document: nothing is lost.
class TestDocumentSafety : public QObject, private apptest::DocumentDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void failedSaveKeepsTheWindowOpen();
    void fullDiskKeepsTheOldFile();
    void placesThatCannotBeWritten();
    void failedSaveOffersAnotherPlace();
    void openDocumentIsReadAfterItWasSaved();
    void openDocumentIsReadAfterItWasSavedMeanwhile();
    void openedElsewhere();
    void queryThatIsNotOpenedAfterAllLeavesTheSample();
    void savingOverALockedFileIsRefused();
    void changedByAnotherProgram();
    void diagramWithoutAStatementIsNoStatementFile();
    void otherDatabaseLeavesTheDocument();
    void windowMayGoWhileADocumentIsLoaded();
};

void TestDocumentSafety::failedSaveKeepsTheWindowOpen() {
    doubleClickTable("orders");
    answer("saveChanges");
    QVERIFY(QDir(m_files->path()).mkdir(QStringLiteral("none")));
    m_answers += [this](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        files->setDirectory(path("none"));
        files->selectFile(QStringLiteral("a.orvq"));
        QDir(m_files->path()).rmdir(QStringLiteral("none"));
        return int(QDialog::Accepted);
    };
    QVERIFY(!m_window->close());
    QCOMPARE(m_questions.last(),
             QStringLiteral("The file \"%1\" cannot be written: its folder does not exist.")
                 .arg(path("none/a.orvq")));
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(documents().path(), QString());
}

void TestDocumentSafety::fullDiskKeepsTheOldFile() {
#ifdef Q_OS_UNIX
    doubleClickTable("orders");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray before = contentOf(path("a.orvq"));
    doubleClickTable("people");
    for (const int bytes : {0, 100, int(before.size())}) {
        const apptest::SmallDisk disk{rlim_t(bytes)};
        m_questions.clear();
        QVERIFY(!documents().save());
        QCOMPARE(m_questions,
                 QStringList{QStringLiteral("The file \"%1\" cannot be written: File too large.")
                                 .arg(path("a.orvq"))});
        QCOMPARE(contentOf(path("a.orvq")), before);
        QVERIFY(m_window->isWindowModified());
    }
    QCOMPARE(QDir(m_files->path()).entryList(QDir::Files), QStringList{"a.orvq"});
    QVERIFY(documents().save());
    QVERIFY(contentOf(path("a.orvq")).contains("PEOPLE"));
#else
    QSKIP("Only Unix has setrlimit(), which stands for a full disk.");
#endif
}

void TestDocumentSafety::placesThatCannotBeWritten() {
    doubleClickTable("orders");
    QVERIFY(QDir(m_files->path()).mkdir(QStringLiteral("f.orvq")));
    QVERIFY(!saveAs(path("f.orvq")));
    QVERIFY(m_questions.value(0).contains(QStringLiteral("cannot be written")) ||
            m_services->messages.value(0).contains(QStringLiteral("is saved into a file")));
    // The folder goes while the document is open.
    QVERIFY(QDir(m_files->path()).mkdir(QStringLiteral("gone")));
    QVERIFY(saveAs(path("gone/a.orvq")));
    QVERIFY(QDir(path("gone")).removeRecursively());
    doubleClickTable("people");
    m_questions.clear();
    QVERIFY(!documents().save());
    QCOMPARE(
        m_questions,
        QStringList{QStringLiteral("The file \"%1\" cannot be written: its folder does not exist.")
                        .arg(path("gone/a.orvq"))});
    QVERIFY(m_window->isWindowModified());
}

void TestDocumentSafety::failedSaveOffersAnotherPlace() {
    doubleClickTable("orders");
    QVERIFY(saveAs(path("a.orvq")));
    doubleClickTable("people");
    // Nothing can be written there.
    QVERIFY(QFile::remove(path("a.orvq")));
    QVERIFY(QDir(m_files->path()).mkdir(QStringLiteral("a.orvq")));
    answer("overwrite");
    answer("saveElsewhere");
    answerFile(path("b.orvq"));
    QVERIFY(documents().save());
    QVERIFY(m_questions.last().startsWith(
        QStringLiteral("The file \"%1\" cannot be written: ").arg(path("a.orvq"))));
    QVERIFY(contentOf(path("b.orvq")).contains("PEOPLE"));
    QCOMPARE(documents().path(), path("b.orvq"));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(m_services->messages, QStringList());
}

void TestDocumentSafety::openDocumentIsReadAfterItWasSaved() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    doubleClickTable("people");
    const QString changed = statement();
    answer("saveChanges");
    QVERIFY(documents().open(path("a.orvq")));
    QCOMPARE(statement(), changed);
    QVERIFY(!m_window->isWindowModified());
    // Nobody else has changed it.
    m_questions.clear();
    doubleClickTable("rich");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
}

void TestDocumentSafety::openDocumentIsReadAfterItWasSavedMeanwhile() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    openNew(path("a.orvq"), m_numbers);
    m_services->messages.clear();
    // Its own database takes a while.
    std::function<void(Opening)> finish;
    m_window->opener().setEngineCall(
        [&](const DatabaseAddress&, const std::function<void(Opening)>& end) { finish = end; });
    QString changed;
    QTimer::singleShot(0, m_window.get(), [&] {
        doubleClickTable("many");
        changed = statement();
        auto database = std::make_unique<BackgroundDatabase>(databaseAddress(m_database));
        QEventLoop loop;
        connect(database.get(), &BackgroundDatabase::listed, &loop, &QEventLoop::quit);
        connect(database.get(), &BackgroundDatabase::failed, &loop, &QEventLoop::quit);
        database->refresh();
        loop.exec();
        answer("saveChanges");
        finish({std::move(database), {}, false});
    });
    QVERIFY(documents().open(path("a.orvq")));
    QVERIFY(changed.contains(QStringLiteral("MANY")));
    QCOMPARE(statement(), changed);
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(m_questions.size(), 1);
}

void TestDocumentSafety::openedElsewhere() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    const std::unique_ptr<MainWindow> first = std::move(m_window);
    Options options;
    options.database = m_database;
    open(options);
    documents().open(path("a.orvq"));
    QVERIFY(m_questions.last().startsWith(QStringLiteral("a.orvq is opened elsewhere (process ")));
    QCOMPARE(boxes(), 0);
    answer("openReadOnly");
    documents().open(path("a.orvq"));
    QCOMPARE(boxes(), 1);
    QCOMPARE(title(), QStringLiteral("a.orvq[*] (read only) - shop.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
    // Saving asks for a place of its own.
    doubleClickTable("people");
    answerFile(path("mine.orvq"));
    QVERIFY(documents().save());
    QCOMPARE(title(), QStringLiteral("mine.orvq[*] - shop.db - orvquery"));
    QVERIFY(!contentOf(path("a.orvq")).contains("PEOPLE"));
    answer("openCopy");
    documents().open(path("a.orvq"));
    QCOMPARE(documents().path(), QString());
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(boxes(), 1);
    // Opening one's own again is no question.
    m_questions.clear();
    first->documents().open(path("a.orvq"));
    QCOMPARE(m_questions, QStringList());
}

void TestDocumentSafety::queryThatIsNotOpenedAfterAllLeavesTheSample() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    const std::unique_ptr<MainWindow> first = std::move(m_window);
    Options options;
    options.document = path("a.orvq");
    open(options);
    QCOMPARE(m_questions.size(), 1);
    QCOMPARE(title(), QStringLiteral("Untitled[*] - sample.db - orvquery"));
    QVERIFY(tableIndex("customers").isValid());
    QCOMPARE(boxes(), 0);
}

void TestDocumentSafety::savingOverALockedFileIsRefused() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray before = contentOf(path("a.orvq"));
    const std::unique_ptr<MainWindow> first = std::move(m_window);
    Options options;
    options.database = m_database;
    open(options);
    doubleClickTable("people");
    QVERIFY(!saveAs(path("a.orvq")));
    QVERIFY(m_services->messages.value(0).startsWith(
        QStringLiteral("a.orvq is opened elsewhere (process ")));
    QCOMPARE(contentOf(path("a.orvq")), before);
}

void TestDocumentSafety::changedByAnotherProgram() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    QByteArray other = contentOf(path("a.orvq"));
    other.replace("\"distinct\": false", "\"distinct\": true");
    QVERIFY(apptest::writeFile(path("a.orvq"), other));
    doubleClickTable("people");
    QVERIFY(!documents().save());
    QCOMPARE(m_questions.last(),
             QStringLiteral("a.orvq was changed by another program since it was opened here. "
                            "Saving it would lose those changes."));
    QCOMPARE(contentOf(path("a.orvq")), other);
    QVERIFY(m_window->isWindowModified());
    answer("saveElsewhere");
    answerFile(path("b.orvq"));
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.orvq")), other);
    QCOMPARE(documents().path(), path("b.orvq"));
    QVERIFY(apptest::writeFile(path("b.orvq"), other));
    answer("overwrite");
    QVERIFY(documents().save());
    QVERIFY(contentOf(path("b.orvq")).contains("PEOPLE"));
    // Written anew with the same content, it has not changed.
    QVERIFY(apptest::writeFile(path("b.orvq"), contentOf(path("b.orvq"))));
    m_questions.clear();
    doubleClickTable("rich");
    QVERIFY(documents().save());
    QCOMPARE(m_questions, QStringList());
}

void TestDocumentSafety::diagramWithoutAStatementIsNoStatementFile() {
    const QByteArray before = "select total * 2, id from orders\n";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    documents().open(path("a.sql"));
    // A sum beside an expression that is neither summed nor grouped.
    TorvQDSelectGrid* grid = builder().SelectPanel->grid();
    grid->_EditText(1, 2);
    grid->_SetCellText(QStringLiteral("SUM"));
    QCOMPARE(text(), QString());
    const QString problem = editor().placeholderText();
    QVERIFY(problem.contains(QStringLiteral("agregate")));
    QVERIFY(!documents().save());
    QCOMPARE(m_questions,
             QStringList{"The query has no statement that a.sql could hold: " + problem});
    QCOMPARE(contentOf(path("a.sql")), before);
    QVERIFY(m_window->isWindowModified());
    // Nor is an empty file one that would hold it all.
    QVERIFY(apptest::writeFile(path("empty.sql"), ""));
    QVERIFY(!saveAs(path("empty.sql")));
    QCOMPARE(documents().path(), path("a.sql"));
    // All of it goes into a query file.
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(contentOf(path("a.orvq")).contains("ORDERS"));
}

void TestDocumentSafety::otherDatabaseLeavesTheDocument() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    doubleClickTable("people");
    // The question about the query, and then the one about its file.
    const auto empty = [](QDialog&) { return int(KeepQueryDialog::Empty); };
    m_answers += empty;
    QVERIFY(!m_window->openDatabase(m_numbers));
    QCOMPARE(boxes(), 2);
    m_answers += empty;
    answer("discardChanges");
    QVERIFY(m_window->openDatabase(m_numbers));
    QCOMPARE(boxes(), 0);
    QCOMPARE(title(), QStringLiteral("Untitled[*] - numbers.db - orvquery"));
    QVERIFY(!m_window->isWindowModified());
}

// Loading tells of a join that is none in a box of its own, in whose event loop the window goes.
void TestDocumentSafety::windowMayGoWhileADocumentIsLoaded() {
    const QString file = path("a.sql");
    QVERIFY(apptest::writeFile(file, "SELECT o.id FROM orders o JOIN people p ON o.none = p.name"));
    builder().setKeepMeaning(false);
    int boxes = 0;
    orv::setMessageService([&](const orv::MessageRequest&) {
        ++boxes;
        m_window.reset();
        return orv::MessageAnswer::Ok;
    });
    documents().open(file);
    QCOMPARE(boxes, 1);
    QVERIFY(!m_window);
}

QTEST_MAIN(TestDocumentSafety)
#include "tst_app_documentsafety.moc"
