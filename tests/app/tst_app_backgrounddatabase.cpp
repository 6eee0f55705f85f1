// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "FakeDatabase.h"
#include "database/BackgroundDatabase.h"
#include "database/WorkerThread.h"
#include "toolkit/Services.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace orvquery;
using namespace std::chrono_literals;

namespace {

const QString noTable = QStringLiteral("(none)");

QString columnsOf(const std::optional<TableDescription>& table) {
    if (!table) return noTable;
    QStringList names;
    for (const ColumnEntry& column : table->entries) names += column.name;
    return names.join(u' ');
}

// Shows a dialog until somebody ends it.
int waitForEnd(QDialog& dialog) {
    QEventLoop loop;
    QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return dialog.result();
}

QStringList namesOf(const std::vector<TableEntry>& entries) {
    QStringList names;
    for (const TableEntry& entry : entries) names += entry.name;
    return names;
}

// What a stop call releases; such a call has no place for a gate of its own.
QSemaphore stopCalls;

StopCall releaseOnStop(const QSqlDatabase&, const std::atomic<bool>&) {
    return [] { stopCalls.release(); };
}

}  // namespace

class TestBackgroundDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void unknownNamesAreListedForOnce();
    void listIsReadInAnotherThread();
    void factsAreKnownWhenItIsOpen();
    void progressIsTold();
    void fileIsOpened();
    void keysThatCannotBeReadAreToldWhenAskedFor();

    void whatIsKnownIsNotAskedAgain();
    void tableThatIsNotThere();
    void fetchTellsColumns();
    void fetchTellsThatTableIsGone();
    void refreshForgetsColumns();

    void questionBeforeTheListIsAnswered();
    void boxShowsUntilTheAnswerComes();
    void cancelledQuestionRaises();
    void questionAfterACancelledOneIsAnswered();
    void cancelledQuestionEndsFetchesToo();
    void objectMayGoWhileItIsWaitedFor();

    void listingCanBeCancelled();
    void cancelledListingEndsSoon();
    void stopCallEndsWhatRuns();
    void openingCanBeCancelled();
    void refreshAfterCancelListsAgain();

    void failedOpeningIsTold();
    void refusedLoginIsTold();
    void failedListingIsTold();
    void failedRefreshKeepsTheList();
    void failedQuestionConnectsAnew();
    void questionThatFailsTwiceIsTold();
    void failedFetchIsTold();

    void objectMayGoBeforeItsThread();
    void idleThreadEndsWithTheObject();

private:
    /// A listed database.
    std::unique_ptr<BackgroundDatabase> listed();
    [[nodiscard]] static bool list(BackgroundDatabase& database);

    std::shared_ptr<apptest::Script> m_script;
    std::shared_ptr<QSemaphore> m_gate;
};

void TestBackgroundDatabase::init() {
    m_script = apptest::makeScript({"people", "orders", "gone"});
    m_gate = std::make_shared<QSemaphore>();
    orv::setDialogRunner([](QDialog& dialog) {
        qWarning("unexpected: %s", qPrintable(dialog.findChild<QLabel*>()->text()));
        return int(QDialog::Rejected);
    });
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void TestBackgroundDatabase::cleanup() {
    m_gate->release(1000);
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
    orv::setDialogRunner({});
}

bool TestBackgroundDatabase::list(BackgroundDatabase& database) {
    QSignalSpy listed(&database, &BackgroundDatabase::listed);
    database.refresh();
    return listed.wait();
}

std::unique_ptr<BackgroundDatabase> TestBackgroundDatabase::listed() {
    auto database = std::make_unique<BackgroundDatabase>(apptest::openerOf(m_script));
    // Only tests of the box shall see it.
    database->setShortWait(1h);
    return list(*database) ? std::move(database) : nullptr;
}

// ------------------------------------------------------------------------------------- the list

// What was made since the list was read is found nevertheless.
void TestBackgroundDatabase::unknownNamesAreListedForOnce() {
    int listings = 0;
    m_script->onEntries = [&listings] { ++listings; };
    const apptest::FakeDatabase database(m_script);
    m_script->entries.push_back({"later"});
    (void)database.tables();
    QCOMPARE(listings, 1);
    QVERIFY(!database.find("NOWHERE"));
    QCOMPARE(listings, 2);
    m_script->entries.push_back({"nowhere"});
    m_script->entries.push_back({"new"});
    QVERIFY(!database.find("NOWHERE"));
    QVERIFY(database.find("LATER"));
    QCOMPARE(listings, 2);
    QVERIFY(database.find("NEW"));
    QCOMPARE(listings, 3);
    // Now the list has it.
    QVERIFY(database.find("NOWHERE"));
    m_script->entries.clear();
    (void)database.tables();
    QVERIFY(!database.find("NEW"));
    QVERIFY(!database.find("NEW"));
    QCOMPARE(listings, 5);
}

void TestBackgroundDatabase::listIsReadInAnotherThread() {
    m_script->keys = {{{"orders"}, {"person"}, {"people"}, {"id"}}};
    BackgroundDatabase database(apptest::openerOf(m_script));
    QVERIFY(!database.isListed());
    QCOMPARE(database.tables().size(), std::size_t(0));
    QSignalSpy listed(&database, &BackgroundDatabase::listed);
    database.refresh();
    QVERIFY(database.isListing());
    QVERIFY(listed.wait());
    QVERIFY(!database.isListing());
    QVERIFY(database.isListed());
    QVERIFY(m_script->thread != nullptr && m_script->thread != QThread::currentThread());
    const QStringList sorted = {"gone", "orders", "people"};
    QCOMPARE(namesOf(database.tables()), sorted);
    QCOMPARE(namesOf(listed[0][0].value<std::vector<TableEntry>>()), sorted);
    QCOMPARE(database.foreignKeys(), m_script->keys);
    QCOMPARE(listed[0][1].value<std::vector<ForeignKey>>(), m_script->keys);
}

void TestBackgroundDatabase::factsAreKnownWhenItIsOpen() {
    m_script->defaultSchemas = QStringList{"one", "two"};
    BackgroundDatabase database(apptest::openerOf(m_script));
    QString title;
    connect(&database, &BackgroundDatabase::opened, this, [&] { title = database.title(); });
    QVERIFY(list(database));
    QCOMPARE(title, QStringLiteral("fake"));
    QCOMPARE(database.settings().driver, QStringLiteral("QSQLITE"));
    QVERIFY(!database.hasStrictTypes());
    QCOMPARE(database.defaultSchemas(), m_script->defaultSchemas);
    QVERIFY(database.reservedWords().contains(QStringLiteral("SELECT")));
}

void TestBackgroundDatabase::progressIsTold() {
    m_script->entries.clear();
    for (int table = 0; table < 250; ++table) {
        m_script->entries.push_back({QStringLiteral("t%1").arg(table)});
    }
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy progressed(&database, &BackgroundDatabase::progressed);
    QVERIFY(list(database));
    QCOMPARE(progressed.size(), 2);
    QCOMPARE(progressed[0][0].toInt(), 100);
    QCOMPARE(progressed[1][0].toInt(), 200);
    QCOMPARE(database.tables().size(), std::size_t(250));
}

void TestBackgroundDatabase::fileIsOpened() {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(apptest::runStatements(path, {"CREATE TABLE a (x INTEGER PRIMARY KEY)",
                                          "CREATE TABLE b (y INT REFERENCES a (x))"}));
    BackgroundDatabase database(DatabaseAddress{QStringLiteral("sqlite"), {}, -1, {}, {}, path});
    database.setShortWait(1h);
    QVERIFY(list(database));
    QCOMPARE(database.title(), QStringLiteral("shop.db"));
    QCOMPARE(columnsOf(database.find(QStringLiteral("B"))), QStringLiteral("y"));
    const std::vector<ForeignKey> keys = {{{"b"}, {"y"}, {"a"}, {"x"}}};
    QCOMPARE(database.foreignKeys(), keys);
}

void TestBackgroundDatabase::keysThatCannotBeReadAreToldWhenAskedFor() {
    m_script->onKeys = [] { throw orv::Error(QStringLiteral("No keys for you.")); };
    const auto database = listed();
    QVERIFY(database);
    QCOMPARE(database->tables().size(), std::size_t(3));
    QCOMPARE(apptest::errorOf([&] { (void)database->foreignKeys(); }),
             QStringLiteral("No keys for you."));
}

// ------------------------------------------------------------------------------------- columns

void TestBackgroundDatabase::whatIsKnownIsNotAskedAgain() {
    const auto database = listed();
    QVERIFY(database->known({"orders"}) == nullptr);
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QVERIFY(database->known({"orders"}) != nullptr);
    QCOMPARE(m_script->described, 1);
    QCOMPARE(columnsOf(database->find(QStringLiteral("PEOPLE"))), QStringLiteral("id of_people"));
    QCOMPARE(columnsOf(database->find(QStringLiteral("PEOPLE"))), QStringLiteral("id of_people"));
    QCOMPARE(columnsOf(database->describe({"people"})), QStringLiteral("id of_people"));
    QCOMPARE(m_script->described, 2);
}

void TestBackgroundDatabase::tableThatIsNotThere() {
    const auto database = listed();
    QCOMPARE(columnsOf(database->find(QStringLiteral("NOWHERE"))), noTable);
    QCOMPARE(columnsOf(database->describe({"nowhere"})), noTable);
    QCOMPARE(columnsOf(database->describe({"gone"})), noTable);
    // What is not there is no failure of the connection.
    QCOMPARE(m_script->opened, 1);
    // It may come, and shows once the list is read again.
    m_script->entries.push_back({QStringLiteral("nowhere")});
    QSignalSpy again(database.get(), &BackgroundDatabase::listed);
    database->refresh();
    QVERIFY(again.wait());
    QCOMPARE(columnsOf(database->find(QStringLiteral("NOWHERE"))), QStringLiteral("id of_nowhere"));
}

void TestBackgroundDatabase::fetchTellsColumns() {
    const auto database = listed();
    QSignalSpy described(database.get(), &BackgroundDatabase::described);
    database->fetch({"orders"});
    QVERIFY(described.wait());
    QCOMPARE(described[0][0].value<TableName>(), TableName("orders"));
    QCOMPARE(columnsOf(described[0][1].value<TableDescription>()), QStringLiteral("id of_orders"));
    database->fetch({"orders"});
    QCOMPARE(described.size(), 2);
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QCOMPARE(m_script->described, 1);
}

void TestBackgroundDatabase::fetchTellsThatTableIsGone() {
    const auto database = listed();
    QSignalSpy notDescribed(database.get(), &BackgroundDatabase::notDescribed);
    database->fetch({"gone"});
    QVERIFY(notDescribed.wait());
    QCOMPARE(notDescribed[0][0].value<TableName>(), TableName("gone"));
    QCOMPARE(notDescribed[0][1].toString(),
             QStringLiteral("The table \"gone\" is not there any more."));
    QCOMPARE(m_script->opened, 1);
}

void TestBackgroundDatabase::refreshForgetsColumns() {
    const auto database = listed();
    QCOMPARE(columnsOf(database->find(QStringLiteral("ORDERS"))), QStringLiteral("id of_orders"));
    m_script->entries = {{QStringLiteral("people")}};
    QVERIFY(list(*database));
    QCOMPARE(namesOf(database->tables()), QStringList{"people"});
    QVERIFY(database->known({"orders"}) == nullptr);
    QCOMPARE(columnsOf(database->find(QStringLiteral("ORDERS"))), noTable);
    QCOMPARE(m_script->opened, 1);
}

// --------------------------------------------------------------------------------- being waited
// for

void TestBackgroundDatabase::questionBeforeTheListIsAnswered() {
    BackgroundDatabase database(apptest::openerOf(m_script));
    database.setShortWait(1h);
    QCOMPARE(columnsOf(database.find(QStringLiteral("orders"))), QStringLiteral("id of_orders"));
}

void TestBackgroundDatabase::boxShowsUntilTheAnswerComes() {
    const auto database = listed();
    m_script->onColumns = [gate = m_gate] { gate->acquire(); };
    database->setShortWait(0ms);
    QStringList texts;
    orv::setDialogRunner([&](QDialog& dialog) {
        texts += dialog.findChild<QLabel*>()->text();
        m_gate->release();
        return waitForEnd(dialog);
    });
    QCOMPARE(columnsOf(database->find(QStringLiteral("orders"))), QStringLiteral("id of_orders"));
    QCOMPARE(texts, QStringList{"Reading the columns of orders ..."});
}

void TestBackgroundDatabase::cancelledQuestionRaises() {
    const auto database = listed();
    m_script->onColumns = [gate = m_gate] { gate->acquire(); };
    database->setShortWait(0ms);
    orv::setDialogRunner([&](QDialog& dialog) {
        QMetaObject::invokeMethod(
            &dialog, [&] { dialog.findChild<QDialogButtonBox*>()->buttons().front()->click(); },
            Qt::QueuedConnection);
        return waitForEnd(dialog);
    });
    QCOMPARE(apptest::errorOf([&] { (void)database->describe({"orders"}); }),
             QStringLiteral("Reading the columns of orders was stopped."));
    QVERIFY(database->known({"orders"}) == nullptr);
    QCOMPARE(namesOf(database->tables()).size(), 3);
}

void TestBackgroundDatabase::questionAfterACancelledOneIsAnswered() {
    const auto database = listed();
    // The first question has to be the one that is held up, whichever thread is faster later on.
    const auto isHeld = std::make_shared<QSemaphore>();
    const auto isFirst = std::make_shared<std::atomic<bool>>(true);
    m_script->onColumns = [gate = m_gate, isHeld, isFirst] {
        if (!isFirst->exchange(false)) return;
        isHeld->release();
        gate->acquire();
    };
    database->setShortWait(0ms);
    orv::setDialogRunner([isHeld](QDialog&) {
        isHeld->acquire();
        return int(QDialog::Rejected);
    });
    QVERIFY(apptest::errorOf([&] { (void)database->describe({"orders"}); }) !=
            QStringLiteral("(no error)"));
    database->setShortWait(1h);
    // Told while the question waits for it, or afterwards.
    QSignalSpy answered(database.get(), &BackgroundDatabase::answered);
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QCOMPARE(m_script->opened, 2);
    QTRY_COMPARE(answered.size(), 1);
    // The thread that did not answer is still there, and what it says by now is not heard.
    QVERIFY(WorkerThread::threadsAtLarge() >= 2);
    m_gate->release();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(answered.size(), 1);
}

void TestBackgroundDatabase::cancelledQuestionEndsFetchesToo() {
    const auto database = listed();
    m_script->onColumns = [gate = m_gate] { gate->acquire(); };
    QSignalSpy notDescribed(database.get(), &BackgroundDatabase::notDescribed);
    database->fetch({"people"});
    database->setShortWait(0ms);
    orv::setDialogRunner([](QDialog&) { return int(QDialog::Rejected); });
    QVERIFY(apptest::errorOf([&] { (void)database->describe({"orders"}); }) !=
            QStringLiteral("(no error)"));
    QCOMPARE(notDescribed.size(), 1);
    QCOMPARE(notDescribed[0][1].toString(),
             QStringLiteral("Reading the columns of people was stopped."));
}

void TestBackgroundDatabase::objectMayGoWhileItIsWaitedFor() {
    auto database = listed();
    m_script->onColumns = [gate = m_gate] { gate->acquire(); };
    database->setShortWait(0ms);
    database->setPatience(0ms);
    orv::setDialogRunner([&](QDialog& dialog) {
        QMetaObject::invokeMethod(
            this, [&] { database.reset(); }, Qt::QueuedConnection);
        return waitForEnd(dialog);
    });
    BackgroundDatabase* const asked = database.get();
    QCOMPARE(apptest::errorOf([&] { (void)asked->describe({"orders"}); }),
             QStringLiteral("Reading the columns of orders was stopped."));
    QVERIFY(!database);
}

// -------------------------------------------------------------------------------------- cancel

void TestBackgroundDatabase::listingCanBeCancelled() {
    m_script->onEntries = [gate = m_gate] { gate->acquire(); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    QSignalSpy listed(&database, &BackgroundDatabase::listed);
    QSignalSpy failed(&database, &BackgroundDatabase::failed);
    QSignalSpy cancelled(&database, &BackgroundDatabase::cancelled);
    database.refresh();
    QVERIFY(opened.wait());
    database.cancel();
    QCOMPARE(cancelled.size(), 1);
    QVERIFY(!database.isListing());
    database.cancel();
    QCOMPARE(cancelled.size(), 1);
    m_gate->release();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(listed.size() + failed.size(), 0);
}

void TestBackgroundDatabase::cancelledListingEndsSoon() {
    m_script->onEntries = [gate = m_gate] { gate->acquire(); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    database.refresh();
    QVERIFY(opened.wait());
    database.cancel();
    m_gate->release();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    // It did not come to the end of its rows.
    QVERIFY(!m_script->hasListed);
}

void TestBackgroundDatabase::stopCallEndsWhatRuns() {
    m_script->makeStopSwitch = releaseOnStop;
    m_script->onEntries = [] { stopCalls.acquire(2); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    database.refresh();
    QVERIFY(opened.wait());
    database.cancel();
    // Nothing else would end the threads.
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
}

void TestBackgroundDatabase::openingCanBeCancelled() {
    QSemaphore begun;
    m_script->onOpen = [gate = m_gate, &begun] {
        begun.release();
        gate->acquire();
    };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    QSignalSpy cancelled(&database, &BackgroundDatabase::cancelled);
    database.refresh();
    begun.acquire();
    database.cancel();
    QCOMPARE(cancelled.size(), 1);
    m_gate->release();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(opened.size(), 0);
    QVERIFY(!m_script->hasListed);
}

void TestBackgroundDatabase::refreshAfterCancelListsAgain() {
    m_script->onEntries = [gate = m_gate, script = m_script.get()] {
        if (script->opened == 1) gate->acquire();
    };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    database.refresh();
    QVERIFY(opened.wait());
    database.cancel();
    QVERIFY(list(database));
    QCOMPARE(m_script->opened, 2);
    QCOMPARE(database.tables().size(), std::size_t(3));
}

// ------------------------------------------------------------------------------------- failures

void TestBackgroundDatabase::failedOpeningIsTold() {
    m_script->onOpen = [] { throw orv::Error(QStringLiteral("Nobody is there.")); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy failed(&database, &BackgroundDatabase::failed);
    database.refresh();
    QVERIFY(failed.wait());
    QCOMPARE(failed[0][0].toString(), QStringLiteral("Nobody is there."));
    QCOMPARE(failed[0][1].toBool(), false);
    QVERIFY(!database.isListing());
    QVERIFY(!database.isListed());
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    m_script->onOpen = {};
    QVERIFY(list(database));
}

void TestBackgroundDatabase::refusedLoginIsTold() {
    m_script->onOpen = [] { throw LoginError(QStringLiteral("Who are you?")); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy failed(&database, &BackgroundDatabase::failed);
    database.refresh();
    QVERIFY(failed.wait());
    QCOMPARE(failed[0][0].toString(), QStringLiteral("Who are you?"));
    QCOMPARE(failed[0][1].toBool(), true);
}

void TestBackgroundDatabase::failedListingIsTold() {
    m_script->onEntries = [] { throw std::runtime_error("The server went away."); };
    BackgroundDatabase database(apptest::openerOf(m_script));
    QSignalSpy opened(&database, &BackgroundDatabase::opened);
    QSignalSpy failed(&database, &BackgroundDatabase::failed);
    database.refresh();
    QVERIFY(failed.wait());
    QCOMPARE(opened.size(), 1);
    QCOMPARE(failed[0][0].toString(), QStringLiteral("The server went away."));
}

void TestBackgroundDatabase::failedRefreshKeepsTheList() {
    const auto database = listed();
    m_script->onEntries = [] { throw orv::Error(QStringLiteral("The server went away.")); };
    QSignalSpy failed(database.get(), &BackgroundDatabase::failed);
    database->refresh();
    QVERIFY(failed.wait());
    QVERIFY(database->isListed());
    QCOMPARE(database->tables().size(), std::size_t(3));
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    m_script->onEntries = {};
    QVERIFY(list(*database));
    QCOMPARE(m_script->opened, 2);
}

void TestBackgroundDatabase::failedQuestionConnectsAnew() {
    const auto database = listed();
    m_script->onColumns = [script = m_script.get()] {
        if (script->opened == 1) throw orv::Error(QStringLiteral("The server went away."));
    };
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QCOMPARE(m_script->opened, 2);
}

void TestBackgroundDatabase::questionThatFailsTwiceIsTold() {
    const auto database = listed();
    m_script->onColumns = [script = m_script.get()] {
        if (script->opened <= 2) throw orv::Error(QStringLiteral("The server went away."));
    };
    QCOMPARE(apptest::errorOf([&] { (void)database->describe({"orders"}); }),
             QStringLiteral("The server went away."));
    QCOMPARE(m_script->opened, 2);
    QCOMPARE(columnsOf(database->describe({"orders"})), QStringLiteral("id of_orders"));
    QCOMPARE(m_script->opened, 3);
}

void TestBackgroundDatabase::failedFetchIsTold() {
    const auto database = listed();
    m_script->onColumns = [] { throw orv::Error(QStringLiteral("The server went away.")); };
    QSignalSpy notDescribed(database.get(), &BackgroundDatabase::notDescribed);
    database->fetch({"orders"});
    database->fetch({"people"});
    QVERIFY(notDescribed.size() == 2 || notDescribed.wait());
    QTRY_COMPARE(notDescribed.size(), 2);
}

// ------------------------------------------------------------------------------------- the end

void TestBackgroundDatabase::objectMayGoBeforeItsThread() {
    m_script->onEntries = [gate = m_gate] { gate->acquire(); };
    {
        BackgroundDatabase database(apptest::openerOf(m_script));
        database.setPatience(0ms);
        QSignalSpy opened(&database, &BackgroundDatabase::opened);
        database.refresh();
        QVERIFY(opened.wait());
    }
    QVERIFY(WorkerThread::threadsAtLarge() >= 1);
    m_gate->release();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    QVERIFY(!m_script->hasListed);
}

void TestBackgroundDatabase::idleThreadEndsWithTheObject() {
    auto database = listed();
    database->setPatience(1h);
    database.reset();
    QCOMPARE(WorkerThread::threadsAtLarge(), 0);
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
}

QTEST_MAIN(TestBackgroundDatabase)
#include "tst_app_backgrounddatabase.moc"
