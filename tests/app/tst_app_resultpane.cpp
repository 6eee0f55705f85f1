// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "values/ShortenedValue.h"
#include "window/ResultModel.h"
#include "window/ResultPane.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QTableView>
#include <QToolButton>

using namespace orvquery;

// The pane alone, told by the test what a query does.
class TestResultPane : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void rowsShowWhileTheQueryRuns();
    void countAndTimeAreShown();
    void emptyResultHasItsColumns();
    void cutResultSaysSo();
    void rowsBeforeStopStay();
    void stopBeforeRowsIsTold();
    void rowsBeforeErrorStay();
    void errorWithoutRowsStandsInTheirPlace();
    void abandonedQueryIsTold();
    void sortingOfPartIsTold();
    void sortingWhileRowsComeIsTold();
    void headerClicksSortAndRestore();
    void keySortsByTheColumnOfTheCell();
    void keySortsInSightOfTheCell();
    void shortenedValuesAreTold();
    void columnsFitFirstRowsOnly();
    void chosenColumnWidthStays();
    void manyColumnsAreMeasuredInPart();
    void keysCopyAndSelect();
    void contextMenuHasAllOfIt();
    void remedyIsOffered();
    void nextRunForgetsTheLast();
    void exportStateIsShown();

private:
    [[nodiscard]] QString label(const char* name) const {
        return m_pane->findChild<QLabel*>(QLatin1String(name))->text();
    }
    [[nodiscard]] bool isShown(const char* name) const {
        return m_pane->findChild<QWidget*>(QLatin1String(name))->isVisible();
    }
    [[nodiscard]] QTableView& view() const { return *m_pane->findChild<QTableView*>("rows"); }
    [[nodiscard]] QString cell(int row, int column) const {
        return m_pane->model().index(row, column).data().toString();
    }
    void clickHeader(int column) const;
    void show(const QStringList& columns, const std::vector<Row>& rows,
              const QueryOutcome& outcome = {});

    std::unique_ptr<ResultPane> m_pane;
};

void TestResultPane::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestResultPane::init() {
    m_pane = std::make_unique<ResultPane>();
    m_pane->resize(500, 300);
    m_pane->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
}

void TestResultPane::cleanup() {
    m_pane.reset();
}

void TestResultPane::show(const QStringList& columns, const std::vector<Row>& rows,
                          const QueryOutcome& outcome) {
    m_pane->setRunning();
    m_pane->begin(columns);
    m_pane->addRows(rows);
    m_pane->setOutcome(outcome);
}

void TestResultPane::clickHeader(int column) const {
    QHeaderView* header = view().horizontalHeader();
    const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {x, header->height() / 2});
}

void TestResultPane::rowsShowWhileTheQueryRuns() {
    QVERIFY(!isShown("rows"));
    QVERIFY(!isShown("busy"));
    m_pane->setRunning();
    QVERIFY(isShown("busy"));
    m_pane->begin({"a"});
    QVERIFY(isShown("rows"));
    m_pane->addRows({{1}, {2}});
    QCOMPARE(cell(1, 0), QStringLiteral("2"));
    QVERIFY(!m_pane->hasRows());
    QTRY_VERIFY(label("summary").startsWith(QStringLiteral("Running ... 2 rows, ")));
    m_pane->addRows({{3}});
    QTRY_VERIFY(label("summary").startsWith(QStringLiteral("Running ... 3 rows, ")));
    m_pane->setOutcome({});
    QVERIFY(!isShown("busy"));
    QVERIFY(m_pane->hasRows());
    QVERIFY(m_pane->areRowsWhole());
}

void TestResultPane::countAndTimeAreShown() {
    show({"a"}, {{1}}, {{.milliseconds = 999}});
    QCOMPARE(label("summary"), QStringLiteral("1 row, 999 ms"));
    show({"a"}, std::vector<Row>(1234, Row{1}), {{.milliseconds = 61230}});
    QCOMPARE(label("summary"), QStringLiteral("1,234 rows, 61.2 s"));
}

void TestResultPane::emptyResultHasItsColumns() {
    show({"a", "b"}, {}, {{.milliseconds = 5}});
    QVERIFY(isShown("rows"));
    QCOMPARE(view().model()->columnCount(), 2);
    QCOMPARE(label("summary"), QStringLiteral("0 rows, 5 ms"));
    QVERIFY(m_pane->hasRows());
}

void TestResultPane::cutResultSaysSo() {
    show({"a"}, std::vector<Row>(1000, Row{1}), {{.milliseconds = 5}, true});
    QCOMPARE(label("summary"), QStringLiteral("First 1,000 rows; there are more. 5 ms"));
    QVERIFY(!isShown("trouble"));
    QVERIFY(m_pane->hasRows());
    QVERIFY(!m_pane->areRowsWhole());
}

void TestResultPane::rowsBeforeStopStay() {
    show({"a"}, {{1}, {2}}, {{.isStopped = true, .milliseconds = 1500}});
    QVERIFY(isShown("rows"));
    QCOMPARE(label("summary"), QStringLiteral("2 rows, then stopped after 1.5 s"));
    QVERIFY(!m_pane->areRowsWhole());
}

void TestResultPane::stopBeforeRowsIsTold() {
    m_pane->setRunning();
    m_pane->setOutcome({{.isStopped = true, .milliseconds = 1500}});
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("Stopped after 1.5 s."));
    QVERIFY(!m_pane->hasRows());
}

void TestResultPane::rowsBeforeErrorStay() {
    show({"a"}, {{1}, {2}}, {{.error = "The database says: gone away", .milliseconds = 20}});
    QVERIFY(isShown("rows"));
    QCOMPARE(view().model()->rowCount(), 2);
    QVERIFY(isShown("trouble"));
    QCOMPARE(label("trouble"), QStringLiteral("The database says: gone away. The rows below came "
                                              "before; they are incomplete."));
    QCOMPARE(label("summary"), QStringLiteral("2 rows, incomplete, 20 ms"));
    QVERIFY(!m_pane->areRowsWhole());
}

void TestResultPane::errorWithoutRowsStandsInTheirPlace() {
    show({"a"}, {{1}});
    m_pane->setRunning();
    m_pane->setOutcome({{.error = "The database says: no"}});
    QVERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("The database says: no"));
    QCOMPARE(label("summary"), QString());
    QVERIFY(!isShown("trouble"));
    show({"a"}, {}, {{.error = "The database says: no"}});
    QVERIFY(!isShown("rows"));
}

void TestResultPane::abandonedQueryIsTold() {
    const QueryEnd end = {"Stopped; gave up.", true, true, 5000};
    m_pane->setRunning();
    m_pane->setOutcome({end});
    QCOMPARE(label("resultText"), QStringLiteral("Stopped; gave up."));
    show({"a"}, {{1}}, {end});
    QVERIFY(isShown("rows"));
    QCOMPARE(label("trouble"), QStringLiteral("Stopped; gave up. The rows below came before; they "
                                              "are incomplete."));
}

void TestResultPane::sortingOfPartIsTold() {
    show({"a"}, {{2}, {1}}, {{.milliseconds = 5}, true});
    view().sortByColumn(0, Qt::AscendingOrder);
    QCOMPARE(
        label("summary"),
        QStringLiteral("First 2 rows; there are more. 5 ms. Only the fetched rows are sorted"));
    view().sortByColumn(-1, Qt::AscendingOrder);
    QCOMPARE(label("summary"), QStringLiteral("First 2 rows; there are more. 5 ms"));
    show({"a"}, {{2}, {1}}, {{.milliseconds = 5}});
    view().sortByColumn(0, Qt::AscendingOrder);
    QCOMPARE(label("summary"), QStringLiteral("2 rows, 5 ms"));
}

void TestResultPane::sortingWhileRowsComeIsTold() {
    m_pane->setRunning();
    m_pane->begin({"a"});
    m_pane->addRows({{2}, {1}});
    clickHeader(0);
    QVERIFY(label("summary").endsWith(QStringLiteral(". They are sorted when all have come.")));
    QCOMPARE(cell(0, 0), QStringLiteral("2"));
    m_pane->setOutcome({});
    QCOMPARE(cell(0, 0), QStringLiteral("1"));
}

void TestResultPane::headerClicksSortAndRestore() {
    show({"a", "b"}, {{2, "x"}, {10, "z"}, {1, "y"}});
    const auto column = [&] { return cell(0, 0) + u' ' + cell(1, 0) + u' ' + cell(2, 0); };
    clickHeader(0);
    QCOMPARE(column(), QStringLiteral("1 2 10"));
    clickHeader(0);
    QCOMPARE(column(), QStringLiteral("10 2 1"));
    clickHeader(0);
    QCOMPARE(column(), QStringLiteral("2 10 1"));
    clickHeader(1);
    QCOMPARE(column(), QStringLiteral("2 1 10"));
    // The next query shows its rows as they come.
    show({"a", "b"}, {{2, "x"}, {1, "y"}});
    QCOMPARE(cell(0, 0), QStringLiteral("2"));
    QCOMPARE(view().horizontalHeader()->sortIndicatorSection(), -1);
}

void TestResultPane::keySortsByTheColumnOfTheCell() {
    show({"a", "b"}, {{2, "x"}, {10, "z"}, {1, "y"}});
    const auto column = [&] { return cell(0, 0) + u' ' + cell(1, 0) + u' ' + cell(2, 0); };
    m_pane->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_pane.get()));
    view().setFocus();
    const auto press = [&] {
        QTest::keyClick(&view(), Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    };
    view().setCurrentIndex({});
    press();
    QCOMPARE(column(), QStringLiteral("2 10 1"));
    view().setCurrentIndex(m_pane->model().index(0, 0));
    press();
    QCOMPARE(column(), QStringLiteral("1 2 10"));
    press();
    QCOMPARE(column(), QStringLiteral("10 2 1"));
    press();
    QCOMPARE(column(), QStringLiteral("2 10 1"));
    press();
    view().setCurrentIndex(m_pane->model().index(0, 1));
    press();
    QCOMPARE(column(), QStringLiteral("2 1 10"));
}

void TestResultPane::keySortsInSightOfTheCell() {
    std::vector<Row> rows;
    for (int number = 999; number >= 0; --number) rows.push_back({number});
    show({"a"}, rows);
    m_pane->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_pane.get()));
    view().setFocus();
    view().setCurrentIndex(m_pane->model().index(0, 0));
    for (const int row : {999, 0, 0}) {
        QTest::keyClick(&view(), Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
        const QModelIndex cell = view().currentIndex();
        QCOMPARE(cell.row(), row);
        QVERIFY(view().viewport()->rect().contains(view().visualRect(cell)));
    }
}

void TestResultPane::shortenedValuesAreTold() {
    show({"a"}, {{shortened(QByteArray(2000, 'x'), 1000)}}, {{.milliseconds = 5}});
    QCOMPARE(label("summary"), QStringLiteral("1 row, 5 ms. Large values are shortened"));
    QVERIFY(!m_pane->areRowsWhole());
}

void TestResultPane::columnsFitFirstRowsOnly() {
    m_pane->setRunning();
    m_pane->begin({"a"});
    const int narrow = view().columnWidth(0);
    m_pane->addRows(std::vector<Row>(300, Row{QStringLiteral("thirty characters are in here.")}));
    const int fitted = view().columnWidth(0);
    QVERIFY(fitted > narrow);
    m_pane->addRows({{QStringLiteral("this is a text of more than thirty characters")}});
    m_pane->setOutcome({});
    QCOMPARE(view().columnWidth(0), fitted);
    show({"a"}, {{QString(1000, u'x')}});
    QCOMPARE(view().columnWidth(0), 320);
}

void TestResultPane::chosenColumnWidthStays() {
    m_pane->setRunning();
    m_pane->begin({"a", "b"});
    m_pane->addRows({{1, 2}});
    view().horizontalHeader()->resizeSection(0, 77);
    m_pane->addRows(std::vector<Row>(300, Row{"a wide text", "a wide text"}));
    m_pane->setOutcome({});
    QCOMPARE(view().columnWidth(0), 77);
}

void TestResultPane::manyColumnsAreMeasuredInPart() {
    QStringList columns;
    Row row;
    for (int column = 0; column < 2000; ++column) {
        columns += QStringLiteral("c%1").arg(column);
        row += column;
    }
    show(columns, std::vector<Row>(100, row));
    QVERIFY(view().horizontalHeader()->resizeContentsPrecision() * 2000 <= 10000);
    QVERIFY(view().columnWidth(1999) > 0);
}

void TestResultPane::keysCopyAndSelect() {
    show({"id", "city"}, {{1, "Rome"}, {2, "Oslo"}});
    m_pane->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_pane.get()));
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1\tRome\n2\tOslo"));
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("id\tcity\n1\tRome\n2\tOslo"));
    // Nothing selected leaves alone what somebody else put there.
    view().clearSelection();
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("id\tcity\n1\tRome\n2\tOslo"));
}

void TestResultPane::contextMenuHasAllOfIt() {
    QAction exporting(QStringLiteral("Export rows..."));
    m_pane->setExportAction(&exporting);
    QStringList texts;
    const QList<QAction*> actions = view().actions();
    for (const QAction* action : actions) {
        if (!action->isSeparator()) texts += action->text().remove(u'&');
    }
    QCOMPARE(texts, (QStringList{"Copy", "Copy with header", "Select all", "Sort by column",
                                 "Export rows..."}));
    QCOMPARE(view().contextMenuPolicy(), Qt::ActionsContextMenu);
    m_pane.reset();
}

void TestResultPane::remedyIsOffered() {
    QAction load(QStringLiteral("Load"));
    int loads = 0;
    connect(&load, &QAction::triggered, this, [&loads] { ++loads; });
    m_pane->setProblem(QStringLiteral("Load it first."), {&load});
    QVERIFY(isShown("remedyButton"));
    auto* button = m_pane->findChild<QToolButton*>("remedyButton");
    QCOMPARE(button->text(), QStringLiteral("Load"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(loads, 1);
    m_pane->setProblem(QStringLiteral("No database."));
    QVERIFY(!isShown("remedyButton"));
    QCOMPARE(label("resultText"), QStringLiteral("No database."));
    m_pane.reset();
}

void TestResultPane::nextRunForgetsTheLast() {
    show({"a"}, {{1}, {2}}, {{.error = "gone"}});
    m_pane->setExportState(QStringLiteral("Exported."));
    m_pane->setRunning();
    QVERIFY(!isShown("trouble"));
    QVERIFY(!isShown("exportState"));
    QVERIFY(!m_pane->hasRows());
    // A query that takes its time does not look as if the old rows were its own.
    QTRY_VERIFY(!isShown("rows"));
    QCOMPARE(label("resultText"), QStringLiteral("Running ..."));
    m_pane->begin({"b"});
    QCOMPARE(view().model()->rowCount(), 0);
    QVERIFY(isShown("rows"));
}

void TestResultPane::exportStateIsShown() {
    QVERIFY(!isShown("exportState"));
    m_pane->setExportState(QStringLiteral("Exporting to a.csv: 5 rows ..."));
    QVERIFY(isShown("exportState"));
    m_pane->clear();
    QVERIFY(!isShown("exportState"));
}

QTEST_MAIN(TestResultPane)
#include "tst_app_resultpane.moc"
