// SPDX-License-Identifier: MIT
#include "ServerWindowTests.h"

#include "AppTestTools.h"
#include "window/PasswordDialog.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>

using namespace apptest;
using namespace orvquery;

namespace {

constexpr int patienceMs = 30000;

const QString connectionLost =
    QStringLiteral("The database says: the server has closed the connection");

}  // namespace

void ServerWindowTests::init() {
    if (m_database.isEmpty()) QVERIFY(makeDatabase());
    // Also after a test that failed before that.
    QVERIFY(startAgain());
    begin();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
}

QString ServerWindowTests::addressOf(const char* user, const char* password) const {
    QUrl url(address());
    url.setUserName(QLatin1String(user));
    url.setPassword(QLatin1String(password));
    return url.toString(QUrl::FullyEncoded);
}

QStringList ServerWindowTests::rowsOf(const char* statement) {
    load(statement);
    run();
    return waitForRows() ? column(0) : QStringList();
}

void ServerWindowTests::refresh() const {
    activate(*m_window);
    QTest::keyClick(child<QAbstractItemView>("tables"), Qt::Key_R, Qt::ControlModifier);
}

// Until the server has it.
void ServerWindowTests::start(const char* statement, const char* text) {
    load(statement);
    run();
    QVERIFY(child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(QTest::qWaitFor([&] { return runs(text); }, patienceMs));
}

// The server is there again: the list can be read, and a query has a connection of its own.
void ServerWindowTests::checkThatItWorksAgain() {
    child<QToolButton>("listAgain")->click();
    QTRY_VERIFY_WITH_TIMEOUT(
        !child<QToolButton>("listAgain")->isVisible() && !isShown("listingText"), patienceMs);
    QVERIFY(listIndex(QStringLiteral("orders")).isValid());
    QCOMPARE(rowsOf("select city, id from orders order by id"), (QStringList{"Rome", "NULL"}));
}

void ServerWindowTests::sessionAtTheWindow() {
    QVERIFY(open());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop on 127.0.0.1 - orvquery"));
    for (const char* name : {"orders", "secret", "many", "slow"}) {
        QVERIFY2(listIndex(QLatin1String(name)).isValid(), name);
    }
    QVERIFY(!isShown("listingText"));
    load("select o.id, o.city from orders o where o.id < 9 order by o.id desc");
    QVERIFY(!isShown("findings"));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"2", "1"}));
    QCOMPARE(column(1), (QStringList{"NULL", "Rome"}));
    QVERIFY(label("summary").startsWith(QStringLiteral("2 rows, ")));
    // Rows that come later are seen, though the program knows the table already.
    QVERIFY(execute({"INSERT INTO orders VALUES (3, 'Oslo')"}));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(1), (QStringList{"Oslo", "NULL", "Rome"}));
    QVERIFY(execute({"DELETE FROM orders WHERE id = 3"}));
}

void ServerWindowTests::longRunIsCancelled() {
    QVERIFY(open());
    start("select x from slow", "slow");
    QTest::mouseClick(child<QToolButton>("stopButton"), Qt::LeftButton);
    QVERIFY(waitForEnd());
    QVERIFY2(label("resultText").startsWith(QStringLiteral("Stopped after ")),
             qPrintable(label("resultText")));
    // The server does not go on with it either.
    QTRY_VERIFY_WITH_TIMEOUT(!runs("slow"), patienceMs);
    QCOMPARE(rowsOf("select id from orders order by id"), (QStringList{"1", "2"}));
}

void ServerWindowTests::passwordIsAskedForUntilItIsRight() {
    QStringList told;
    const auto typeIn = [&](const QString& password) {
        answer([&, password](QDialog& dialog) {
            QVERIFY(qobject_cast<PasswordDialog*>(&dialog));
            auto* problem = childOf<QLabel>(dialog, "problem");
            told += problem->isHidden() ? QStringLiteral("-") : problem->text();
            auto* field = childOf<QLineEdit>(dialog, "password");
            QVERIFY(field->hasFocus());
            QTest::keyClicks(field, password);
            QTest::keyClick(field, Qt::Key_Return);
        });
    };
    typeIn(QStringLiteral("wrong"));
    typeIn(QUrl(address()).password());
    const QString owner = QUrl(address()).userName();
    QVERIFY(m_window->openDatabase(addressOf(qPrintable(owner), "")));
    const QString refused =
        QStringLiteral("The server at 127.0.0.1:%1 refuses the user \"%2\" with this password.")
            .arg(QUrl(address()).port())
            .arg(owner);
    QCOMPARE(told, (QStringList{"-", refused}));
    QCOMPARE(rowsOf("select id from orders order by id"), (QStringList{"1", "2"}));
}

void ServerWindowTests::passwordQuestionIsCancelled() {
    answer([&](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    const QString owner = QUrl(address()).userName();
    QVERIFY(!m_window->openDatabase(addressOf(qPrintable(owner), "wrong")));
    // What was there before is still of use.
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop.db - orvquery"));
    QCOMPARE(rowsOf("select city, id from orders order by id"), (QStringList{"Rome", "NULL"}));
}

void ServerWindowTests::serverDiesDuringARun() {
    QVERIFY(open());
    start("select x from slow", "slow");
    kill();
    QVERIFY(waitForEnd());
    QCOMPARE(label("resultText"), connectionLost);
    QVERIFY(!isShown("rows") && !isShown("busy"));
    // Nor can anything be run now.
    const QString nobody =
        QStringLiteral("No server answers at 127.0.0.1:%1.").arg(QUrl(address()).port());
    run();
    QVERIFY(waitForEnd());
    QCOMPARE(label("resultText"), nobody);
    QVERIFY(startAgain());
    run();
    QVERIFY(child<QToolButton>("stopButton")->isEnabled());
    QTest::mouseClick(child<QToolButton>("stopButton"), Qt::LeftButton);
    QVERIFY(waitForEnd());
    QCOMPARE(rowsOf("select city, id from orders order by id"), (QStringList{"Rome", "NULL"}));
}

void ServerWindowTests::serverDiesBetweenRows() {
    QVERIFY(open());
    start("select n, x from trickling", "trickling");
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QVERIFY(QTest::qWaitFor([&] { return model->rowCount() > 0; }, patienceMs));
    kill();
    QVERIFY(waitForEnd());
    QVERIFY(isShown("rows"));
    QCOMPARE(label("trouble"),
             connectionLost + QStringLiteral(". The rows below came before; they are incomplete."));
    QVERIFY(model->rowCount() <= 10);
    QCOMPARE(column(0).front(), QStringLiteral("1"));
    QVERIFY(startAgain());
    QCOMPARE(rowsOf("select city, id from orders order by id"), (QStringList{"Rome", "NULL"}));
    QVERIFY(!isShown("trouble"));
}

void ServerWindowTests::serverDiesDuringAListing() {
    QVERIFY(open());
    holdListing();
    refresh();
    QVERIFY(isShown("listingText"));
    QCOMPARE(label("listingText"), QStringLiteral("Reading the tables ..."));
    kill();
    auto* again = child<QToolButton>("listAgain");
    QVERIFY(QTest::qWaitFor([&] { return again->isVisible(); }, patienceMs));
    QCOMPARE(label("listingText"),
             QStringLiteral("The tables of \"shop on 127.0.0.1\" cannot be read: the server has "
                            "closed the connection"));
    // The list that was there stays.
    QVERIFY(listIndex(QStringLiteral("orders")).isValid());
    again->click();
    const QString nobody =
        QStringLiteral("No server answers at 127.0.0.1:%1.").arg(QUrl(address()).port());
    QTRY_COMPARE_WITH_TIMEOUT(label("listingText"), nobody, patienceMs);
    QVERIFY(startAgain());
    checkThatItWorksAgain();
}

void ServerWindowTests::serverDiesBeforeColumnsAreRead() {
    QVERIFY(open());
    kill();
    doubleClickInList(QStringLiteral("orders"));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    const QString nobody =
        QStringLiteral("No server answers at 127.0.0.1:%1.").arg(QUrl(address()).port());
    QTRY_COMPARE_WITH_TIMEOUT(m_messages, QStringList{nobody}, patienceMs);
    m_messages.clear();
    QVERIFY(startAgain());
    doubleClickInList(QStringLiteral("orders"));
    QTRY_COMPARE_WITH_TIMEOUT(builder().ListOfTables->TablesCount(), 1, patienceMs);
}

void ServerWindowTests::tableIsDroppedAfterTheListing() {
    QVERIFY(execute({"CREATE TABLE passing (id INT)", "CREATE TABLE early (id INT)"}));
    QVERIFY(open());
    load("select id from passing");
    QVERIFY(execute({"DROP TABLE passing", "DROP TABLE early"}));
    run();
    QVERIFY(waitForEnd());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), goneSentence());
    // One that is still in the list alone.
    doubleClickInList(QStringLiteral("early"));
    QTRY_COMPARE_WITH_TIMEOUT(
        m_messages, QStringList{QStringLiteral("The table \"early\" is not there any more.")},
        patienceMs);
    m_messages.clear();
    refresh();
    QVERIFY(
        QTest::qWaitFor([&] { return !listIndex(QStringLiteral("early")).isValid(); }, patienceMs));
    QVERIFY(!listIndex(QStringLiteral("passing")).isValid());
    QCOMPARE(rowsOf("select id from orders order by id"), (QStringList{"1", "2"}));
}

void ServerWindowTests::columnIsDroppedAfterTheListing() {
    QVERIFY(execute({"CREATE TABLE shrinking (id INT, note VARCHAR(9))",
                     "INSERT INTO shrinking VALUES (5, 'x')"}));
    QVERIFY(open());
    QCOMPARE(rowsOf("select note from shrinking"), QStringList{"x"});
    QVERIFY(execute({"ALTER TABLE shrinking DROP COLUMN note"}));
    run();
    QVERIFY(waitForEnd());
    QVERIFY2(label("resultText").startsWith(columnGoneSentence()), qPrintable(label("resultText")));
    QCOMPARE(rowsOf("select id from shrinking"), QStringList{"5"});
    QVERIFY(execute({"DROP TABLE shrinking"}));
}

void ServerWindowTests::tableIsDenied() {
    QVERIFY(m_window->openDatabase(addressOf("reader", "reader")));
    QVERIFY(listIndex(QStringLiteral("denied")).isValid());
    load("select id from denied");
    run();
    QVERIFY(waitForEnd());
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), deniedSentence());
    QCOMPARE(rowsOf("select id from orders order by id"), (QStringList{"1", "2"}));
}

// Also when the server refuses the query as it is.
void ServerWindowTests::whyThereAreNoRows() {
    QVERIFY(open());
    load("select o.id from orders o where o.city = 'Oslo' and nofunc(o.id) = 1");
    QTest::keyClick(m_window.get(), Qt::Key_F5, Qt::ControlModifier);
    auto* dialog = m_window->findChild<QDialog*>(QStringLiteral("whyNoRows"));
    QVERIFY(dialog);
    const auto waitForEnd = [](const QDialog& shown) {
        const auto* stop = shown.findChild<QWidget*>(QStringLiteral("stopTrials"));
        return QTest::qWaitFor([stop] { return !stop->isEnabled(); }, 30000);
    };
    QVERIFY(waitForEnd(*dialog));
    const auto said = [](const QDialog& shown, const char* name) {
        return shown.findChild<QLabel*>(QLatin1String(name))->text();
    };
    QVERIFY2(said(*dialog, "verdict").startsWith("The query as it is cannot be run: The database"),
             qPrintable(said(*dialog, "verdict")));
    QVERIFY2(said(*dialog, "verdictDetails").contains("it runs, and there are no rows."),
             qPrintable(said(*dialog, "verdictDetails")));
    dialog->close();
    QTRY_VERIFY(!m_window->findChild<QDialog*>(QStringLiteral("whyNoRows")));

    load("select o.id from orders o where o.city = 'Oslo' and o.id > 0");
    QTest::keyClick(m_window.get(), Qt::Key_F5, Qt::ControlModifier);
    dialog = m_window->findChild<QDialog*>(QStringLiteral("whyNoRows"));
    QVERIFY(dialog);
    QVERIFY(waitForEnd(*dialog));
    QVERIFY2(said(*dialog, "verdict").contains("O.CITY = 'Oslo'") &&
                 said(*dialog, "verdict").endsWith("without it there are 2 rows."),
             qPrintable(said(*dialog, "verdict")));
}

void ServerWindowTests::rowsAreCut() {
    QVERIFY(open());
    load("select x from many");
    run();
    QVERIFY(waitForRows());
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QCOMPARE(model->rowCount(), 100000);
    QCOMPARE(model->index(99999, 0).data().toString(), QStringLiteral("100000"));
    QVERIFY(label("summary").startsWith(QStringLiteral("First 100000 rows; there are more. ")));
    // The server does not send the rest to nobody.
    QTRY_VERIFY_WITH_TIMEOUT(!runs("many"), patienceMs);
}

void ServerWindowTests::hugeValueIsShortened() {
    QVERIFY(open());
    load("select x from huge");
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{QString(500, u'x') + QChar(0x2026) +
                                    QStringLiteral(" (%1 characters)").arg(hugeCharacters)});
    QVERIFY(label("summary").endsWith(QStringLiteral(". Large values are shortened")));
    QCOMPARE(rowsOf("select id from orders order by id"), (QStringList{"1", "2"}));
}
