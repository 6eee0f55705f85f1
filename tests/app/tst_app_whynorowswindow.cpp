// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "window/WhyNoRowsDialog.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QTreeWidget>

#include <algorithm>
#include <thread>

using namespace orvquery;

namespace {

constexpr int timeoutMs = 30000;

}  // namespace

// "Why no rows?" in the program's window.
class TestWhyNoRowsWindow : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() {
        begin();
        m_dialogs = 0;
        orv::setDialogRunner([this](QDialog& dialog) {
            ++m_dialogs;
            return m_answer ? m_answer(dialog) : int(QDialog::Rejected);
        });
    }
    void cleanup() {
        m_answer = nullptr;
        end();
        orv::setDialogRunner({});
        QTRY_COMPARE_WITH_TIMEOUT(QueryThread::threadsAtLarge(), 0, timeoutMs);
    }

    void offeredWhereARunHadNoRows();
    void notOfferedForRowsOrAnotherStatement();
    void answersByKey();
    void chosenConditionIsMutedAndUndone();
    void keysChooseAndMute();
    void titlesCannotBeMuted();
    void linkIsMuted();
    void joinCannotBeMuted();
    void conditionThatIsGone();
    void conditionThatHasMoved();
    void conditionThatIsMutedAlready();
    void queryMayChangeMeanwhile();
    void queryWithRows();
    void conditionOfGroupsIsMutedOnItsPage();
    void stopped();
    void closedWhileATrialRuns();
    void windowGoesWhileATrialRuns();
    void otherDatabaseClosesIt();
    void askedAgainReplacesTheFirst();
    void trialThatTakesTooLong();
    void trialThatFails();
    void connectionThatWasGivenUp();
    void valuesOfTheLastRunAreUsed();
    void valuesAreAskedForOnce();
    void noAnswerNoTrials();
    void textThatIsNotLoaded();
    void noTables();
    void withoutADatabase();

private:
    [[nodiscard]] WhyNoRowsDialog* dialog() const {
        const QList<WhyNoRowsDialog*> dialogs = m_window->findChildren<WhyNoRowsDialog*>();
        for (WhyNoRowsDialog* each : dialogs) {
            if (each->isVisible()) return each;
        }
        return nullptr;
    }
    template <typename Widget>
    Widget* part(const char* name) const {
        return dialog()->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] QString said(const char* name) const { return part<QLabel>(name)->text(); }
    [[nodiscard]] QTreeWidgetItem* item(const char* text) const;
    [[nodiscard]] QString remarkOf(const char* text) const { return item(text)->text(2); }
    [[nodiscard]] QAction& action() const { return *child<QAction>("whyNoRowsAction"); }
    [[nodiscard]] RunController& running() const { return *m_window->findChild<RunController*>(); }
    /// Asks, and waits for the answer.
    void ask() const;
    /// Brings the window itself to the front.
    void goBack() const {
        m_window->activateWindow();
        // The window counts as active while its dialog is.
        QTRY_COMPARE(QApplication::activeWindow(), m_window.get());
    }
    void choose(const char* text) const;
    void clickMute() const { QTest::mouseClick(part<QWidget>("muteIt"), Qt::LeftButton); }
    [[nodiscard]] bool waitForEnd() const {
        return QTest::qWaitFor([this] { return !part<QWidget>("stopTrials")->isEnabled(); },
                               timeoutMs);
    }

    std::function<int(QDialog&)> m_answer;
    int m_dialogs = 0;
};

QTreeWidgetItem* TestWhyNoRowsWindow::item(const char* text) const {
    const QList<QTreeWidgetItem*> items = part<QTreeWidget>("trials")->findItems(
        QLatin1String(text), Qt::MatchExactly | Qt::MatchRecursive);
    return items.value(0);
}

void TestWhyNoRowsWindow::ask() const {
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(dialog());
    QTRY_COMPARE(QApplication::activeWindow(), dialog());
    QVERIFY(waitForEnd());
}

void TestWhyNoRowsWindow::choose(const char* text) const {
    auto* tree = part<QTreeWidget>("trials");
    QVERIFY(item(text));
    tree->scrollToItem(item(text));
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                      tree->visualItemRect(item(text)).center());
    QCOMPARE(tree->currentItem(), item(text));
}

// --- asking

void TestWhyNoRowsWindow::offeredWhereARunHadNoRows() {
    load("select o.id from orders o where o.city = 'Paris' and o.id > 0");
    QVERIFY(!isShown("noRowsButton"));
    QVERIFY(runAndWait());
    QVERIFY(isShown("noRowsButton"));
    QCOMPARE(child<QToolButton>("noRowsButton")->text(), QStringLiteral("Why no rows?"));
    click("noRowsButton");
    QVERIFY(dialog());
    QVERIFY(waitForEnd());
    QCOMPARE(
        said("verdict"),
        QStringLiteral("The condition \u201cO.CITY = 'Paris'\u201d alone keeps every row away: "
                       "without it there are 3 rows."));
    QCOMPARE(said("trialCounts"), QStringLiteral("The query as it is: no rows. Without any "
                                                 "condition: 3 rows."));
    QCOMPARE(said("trialState"), QString());
    QCOMPARE(item("O.CITY = 'Paris'")->text(1), QStringLiteral("3"));
    QCOMPARE(remarkOf("O.CITY = 'Paris'"), QStringLiteral("Keeps every row away"));
    QVERIFY(item("O.CITY = 'Paris'")->font(0).bold());
    QCOMPARE(item("O.ID > 0")->text(1), QStringLiteral("0"));
    QVERIFY(!item("O.ID > 0")->font(0).bold());
    QCOMPARE(part<QTreeWidget>("trials")->currentItem(), item("O.CITY = 'Paris'"));
    QVERIFY(!part<QWidget>("stopTrials")->isEnabled());
}

void TestWhyNoRowsWindow::notOfferedForRowsOrAnotherStatement() {
    load("select o.id from orders o");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("noRowsButton"));
    load("select o.id from orders o where o.id = 99");
    QVERIFY(runAndWait());
    QVERIFY(isShown("noRowsButton"));
    load("select o.id from orders o where o.id = 98");
    QVERIFY(!isShown("noRowsButton"));
    QVERIFY(runAndWait());
    QVERIFY(isShown("noRowsButton"));
    load("select nofunc(o.id) from orders o");
    QVERIFY(runAndWait());
    QVERIFY(!isShown("noRowsButton"));
}

void TestWhyNoRowsWindow::answersByKey() {
    load("select o.id from orders o where o.id = 99");
    ask();
    QVERIFY(said("verdict").contains("O.ID = 99"));
    QVERIFY(!dialog()->isModal());
    const QPointer<WhyNoRowsDialog> shown = dialog();
    QTest::keyClick(dialog(), Qt::Key_Escape);
    QTRY_VERIFY(!shown);
}

// --- muting

void TestWhyNoRowsWindow::chosenConditionIsMutedAndUndone() {
    load("select o.id from orders o where o.id = 99 and o.id > 0");
    const QString before = builder().GetSQLStatment();
    ask();
    clickMute();
    QVERIFY(!builder().GetSQLStatment().contains("99"));
    QVERIFY(builder().GetSQLStatment().contains("O.ID > 0"));
    QCOMPARE(said("trialState"), QStringLiteral("The condition \u201cO.ID = 99\u201d is muted now. "
                                                "Run the query (F5) to see its rows."));
    QVERIFY(dialog());
    QVERIFY(builder().WherePanel->isVisible());
    // The keys are the same as in the window.
    QTest::keyClick(dialog(), Qt::Key_F5);
    QTRY_COMPARE(child<QTableView>("rows")->model()->rowCount(), 3);
    QTest::keyClick(dialog(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(builder().GetSQLStatment(), before);
    QTest::keyClick(dialog(), Qt::Key_Y, Qt::ControlModifier);
    QVERIFY(!builder().GetSQLStatment().contains("99"));
    goBack();
    builder().WorkArea->setFocus();
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(builder().GetSQLStatment(), before);
}

void TestWhyNoRowsWindow::keysChooseAndMute() {
    load("select o.id from orders o where o.id = 99 and o.id > 0");
    ask();
    auto* tree = part<QTreeWidget>("trials");
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Down);
    QCOMPARE(tree->currentItem(), item("O.ID > 0"));
    QTest::keyClick(tree, Qt::Key_M, Qt::AltModifier);
    QTRY_VERIFY(!builder().GetSQLStatment().contains("O.ID > 0"));
    QVERIFY(builder().GetSQLStatment().contains("O.ID = 99"));
}

void TestWhyNoRowsWindow::titlesCannotBeMuted() {
    load("select o.id from orders o where o.id = 99");
    const QString before = builder().GetSQLStatment();
    ask();
    auto* tree = part<QTreeWidget>("trials");
    const QRect title = tree->visualItemRect(tree->topLevelItem(0));
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, title.center());
    QVERIFY(!part<QPushButton>("muteIt")->isEnabled());
    QTest::keyClick(tree, Qt::Key_M, Qt::AltModifier);
    QCOMPARE(builder().GetSQLStatment(), before);
}

void TestWhyNoRowsWindow::linkIsMuted() {
    load("select o.id from orders o join people p on o.city = p.name and o.total = p.name");
    ask();
    choose("O.TOTAL = P.NAME");
    clickMute();
    QVERIFY(!builder().GetSQLStatment().contains("TOTAL"));
    QVERIFY(builder().GetSQLStatment().contains("O.CITY = P.NAME"));
    QCOMPARE(said("trialState"), QStringLiteral("The link \u201cO.TOTAL = P.NAME\u201d is muted "
                                                "now. Run the query (F5) to see its rows."));
    clickMute();
    QVERIFY(said("trialState").endsWith("is muted already."));
}

void TestWhyNoRowsWindow::joinCannotBeMuted() {
    load("select o.id from orders o join people p on o.city = p.name");
    ask();
    QCOMPARE(said("verdict"), QStringLiteral("No single condition does it: the tables themselves "
                                             "have no matching rows."));
    QCOMPARE(said("verdictDetails"), QStringLiteral("The rows vanish at the join of PEOPLE (P)."));
    QVERIFY(!part<QLabel>("trialCounts")->isVisible());
    choose("PEOPLE (P): O.CITY = P.NAME");
    QVERIFY(!part<QPushButton>("muteIt")->isEnabled());
}

void TestWhyNoRowsWindow::conditionThatIsGone() {
    load("select o.id from orders o where o.id = 99");
    ask();
    goBack();
    load("select o.id from orders o where o.id = 98");
    const QString before = builder().GetSQLStatment();
    clickMute();
    QCOMPARE(said("trialState"),
             QStringLiteral("The condition \u201cO.ID = 99\u201d is not in the query as it was."));
    QCOMPARE(builder().GetSQLStatment(), before);
    builder().Clear();
    clickMute();
    QVERIFY(said("trialState").endsWith("as it was."));
}

void TestWhyNoRowsWindow::conditionThatHasMoved() {
    load("select o.id from orders o where o.id = 99 and o.id > 0");
    ask();
    goBack();
    load("select o.id from orders o where o.id < 7 and (o.city = 'x' or o.id = 99)");
    clickMute();
    QVERIFY(!builder().GetSQLStatment().contains("99"));
    QVERIFY(builder().GetSQLStatment().contains("O.ID < 7"));
}

void TestWhyNoRowsWindow::conditionThatIsMutedAlready() {
    load("select o.id from orders o where o.id = 99 and o.id > 0");
    ask();
    clickMute();
    const QString muted = builder().GetSQLStatment();
    clickMute();
    QVERIFY(said("trialState").endsWith("is muted already."));
    QCOMPARE(builder().GetSQLStatment(), muted);
}

void TestWhyNoRowsWindow::queryMayChangeMeanwhile() {
    load("select o.id from orders o where o.id = 99 and o.city = 'x'");
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(dialog());
    builder().LoadSQL("select p.name from people p where p.name = 'y'");
    QVERIFY(waitForEnd());
    QVERIFY2(said("verdict").contains("O.ID = 99"), qPrintable(said("verdict")));
    QVERIFY2(said("verdict").contains("without both there are 3 rows."),
             qPrintable(said("verdict")));
}

void TestWhyNoRowsWindow::queryWithRows() {
    load("select o.id from orders o");
    ask();
    QCOMPARE(said("verdict"),
             QStringLiteral("The query has 3 rows: nothing keeps all of them away."));
    QVERIFY(!part<QPushButton>("muteIt")->isEnabled());
}

void TestWhyNoRowsWindow::conditionOfGroupsIsMutedOnItsPage() {
    load("select o.city, count(o.id) from orders o group by o.city having count(o.id) > 5");
    ask();
    clickMute();
    QVERIFY(!builder().GetSQLStatment().contains("HAVING"));
    QVERIFY(builder().HavingPanel->isVisible());
}

// --- coming to an end

void TestWhyNoRowsWindow::stopped() {
    openNumbers();
    load("select e.x from endless e where e.x = 1");
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(dialog());
    QCOMPARE(said("verdict"), QStringLiteral("Running the query ..."));
    QVERIFY(part<QWidget>("stopTrials")->isEnabled());
    QTest::mouseClick(part<QWidget>("stopTrials"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(said("trialState"), QString(), timeoutMs);
    QVERIFY(!part<QWidget>("stopTrials")->isEnabled());
    QVERIFY(dialog()->isVisible());
    QCOMPARE(said("verdict"), QStringLiteral("Stopped before the query itself had ended."));
}

void TestWhyNoRowsWindow::closedWhileATrialRuns() {
    openNumbers();
    load("select e.x from endless e where e.x = 1");
    press(Qt::Key_F5, Qt::ControlModifier);
    const QPointer<WhyNoRowsDialog> shown = dialog();
    QVERIFY(shown);
    shown->close();
    QVERIFY(!shown || !shown->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!shown, timeoutMs);
    goBack();
    load("select m.x from many m where m.x < 3");
    QVERIFY(runAndWait());
    QCOMPARE(child<QTableView>("rows")->model()->rowCount(), 2);
}

void TestWhyNoRowsWindow::windowGoesWhileATrialRuns() {
    openNumbers();
    load("select e.x from endless e where e.x = 1");
    press(Qt::Key_F5, Qt::ControlModifier);
    const QPointer<WhyNoRowsDialog> shown = dialog();
    m_window->close();
    m_window.reset();
    QVERIFY(!shown);
}

void TestWhyNoRowsWindow::otherDatabaseClosesIt() {
    load("select o.id from orders o where o.id = 99");
    ask();
    const QPointer<WhyNoRowsDialog> shown = dialog();
    m_answer = [](QDialog&) { return int(KeepQueryDialog::Empty); };
    openNumbers();
    QTRY_VERIFY(!shown);
    QVERIFY(action().isEnabled());
}

void TestWhyNoRowsWindow::askedAgainReplacesTheFirst() {
    load("select o.id from orders o where o.id = 99");
    ask();
    const QPointer<WhyNoRowsDialog> shown = dialog();
    goBack();
    load("select o.id from orders o where o.id = 98");
    ask();
    QTRY_VERIFY(!shown);
    QVERIFY(said("verdict").contains("O.ID = 98"));
}

void TestWhyNoRowsWindow::trialThatTakesTooLong() {
    load("select o.id from orders o where o.id = 99 and o.total = 7");
    // The query and what lacks its first condition alone have no rows.
    running().setSourceMaker(
        [](const ConnectionSettings&, const QString& statement, const PlaceholderValues&) {
            const bool isSlow = !statement.contains("99") && statement.contains(" = 7");
            const bool hasRows = !statement.contains(" = 7");
            return [isSlow, hasRows](RowSink& sink, StopPoint& stop) {
                sink.begin({"a"});
                while (isSlow && !stop.isStopped()) std::this_thread::yield();
                if (isSlow) throw orv::Error(QStringLiteral("interrupted"));
                if (hasRows) sink.row({1});
            };
        });
    press(Qt::Key_F5, Qt::ControlModifier);
    dialog()->setTrialTime(std::chrono::milliseconds(500));
    QVERIFY(waitForEnd());
    QCOMPARE(item("O.ID = 99")->text(1), QString());
    QCOMPARE(remarkOf("O.ID = 99"),
             QStringLiteral("No row came within 0.5 s, so it was given up."));
    QVERIFY(said("verdict").contains("O.TOTAL = 7"));
    QCOMPARE(said("verdictDetails"),
             QStringLiteral("One trial could not be run; the list says why."));
}

void TestWhyNoRowsWindow::trialThatFails() {
    load("select o.id from orders o where o.id = 99 and o.total = 7");
    running().setSourceMaker(
        [](const ConnectionSettings&, const QString& statement, const PlaceholderValues&) {
            const bool fails = statement.contains("99") && !statement.contains(" = 7");
            const bool hasRows = !statement.contains("99");
            return [fails, hasRows](RowSink& sink, StopPoint&) {
                if (fails) throw orv::Error(QStringLiteral("The database says: division by zero"));
                sink.begin({"a"});
                if (hasRows) sink.row({1});
            };
        });
    ask();
    QCOMPARE(remarkOf("O.TOTAL = 7"), QStringLiteral("The database says: division by zero"));
    QCOMPARE(item("O.ID = 99")->text(1), QStringLiteral("1"));
    QVERIFY(said("verdict").contains("O.ID = 99"));
    QCOMPARE(said("verdictDetails"),
             QStringLiteral("One trial could not be run; the list says why."));
    QCOMPARE(m_messages, QStringList());
}

void TestWhyNoRowsWindow::connectionThatWasGivenUp() {
    load("select o.id from orders o where o.id = 99");
    const auto release = std::make_shared<QSemaphore>();
    running().setSourceMaker(
        [release](const ConnectionSettings&, const QString&, const PlaceholderValues&) {
            return [release](RowSink&, StopPoint&) { release->acquire(); };
        });
    press(Qt::Key_F5, Qt::ControlModifier);
    dialog()->setPatience(std::chrono::milliseconds(0));
    QTest::mouseClick(part<QWidget>("stopTrials"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(said("trialState"), QString(), timeoutMs);
    QVERIFY(said("verdict").contains("Stopped"));
    release->release();
}

// --- values and what prevents trials

void TestWhyNoRowsWindow::valuesOfTheLastRunAreUsed() {
    m_answer = [](QDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(QStringLiteral("99"));
        dialog.accept();
        return dialog.result();
    };
    load("select o.id from orders o where o.id = :number and o.id > 0");
    QVERIFY(runAndWait());
    QCOMPARE(m_dialogs, 1);
    QVERIFY(isShown("noRowsButton"));
    ask();
    QCOMPARE(m_dialogs, 1);
    QVERIFY2(said("verdict").endsWith("without it there are 3 rows."), qPrintable(said("verdict")));
}

void TestWhyNoRowsWindow::valuesAreAskedForOnce() {
    m_answer = [](QDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(QStringLiteral("99"));
        dialog.accept();
        return dialog.result();
    };
    load("select o.id from orders o where o.id = :number and o.id > 0");
    ask();
    QCOMPARE(m_dialogs, 1);
    QVERIFY(said("verdict").contains("O.ID = :number"));
}

void TestWhyNoRowsWindow::noAnswerNoTrials() {
    load("select o.id from orders o where o.id = :number");
    press(Qt::Key_F5, Qt::ControlModifier);
    QCOMPARE(m_dialogs, 1);
    QVERIFY(!dialog());
}

void TestWhyNoRowsWindow::textThatIsNotLoaded() {
    load("select o.id from orders o");
    type("select o.id from orders o where o.id = 5");
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(!dialog());
    QCOMPARE(label("resultText"),
             QStringLiteral("The text was changed but not loaded; Load (Ctrl+Enter) it first, or "
                            "choose Back to the statement."));
}

void TestWhyNoRowsWindow::noTables() {
    startAnew();
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(!dialog());
    QCOMPARE(label("resultText"), QStringLiteral("There are no tables in the diagram yet."));
}

void TestWhyNoRowsWindow::withoutADatabase() {
    QVERIFY(action().isEnabled());
    m_window.reset();
    const QString schema = m_folder.filePath(QStringLiteral("schema.json"));
    QVERIFY(apptest::writeFile(schema, "{\"T\": [[\"A\", \"ftInteger\"]]}"));
    Options options;
    options.schema = schema;
    open(options);
    QVERIFY(!action().isEnabled());
    QCOMPARE(action().toolTip(),
             QStringLiteral("Nothing can be tried: no database is open, only its tables are "
                            "known."));
    const QList<QObject*> menus = action().associatedObjects();
    QVERIFY(std::any_of(menus.begin(), menus.end(), [](QObject* object) {
        const auto* menu = qobject_cast<QMenu*>(object);
        return menu != nullptr && menu->toolTipsVisible();
    }));
    press(Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(!dialog());
}

QTEST_MAIN(TestWhyNoRowsWindow)
#include "tst_app_whynorowswindow.moc"
