// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "sample/SampleDatabase.h"
#include "sample/SampleQueries.h"

#include <QAction>
#include <QMenu>

using namespace orvquery;

// The worked queries on the sample database, in the program's window.
class TestSampleQueries : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void offeredForTheSampleAlone();
    void queriesHaveTheirRows_data();
    void queriesHaveTheirRows();
    void ownQueryIsAskedFor();

private:
    [[nodiscard]] QMenu& menu() const { return *child<QMenu>("sampleQueries"); }
};

void TestSampleQueries::offeredForTheSampleAlone() {
    QVERIFY(!menu().menuAction()->isVisible());
    QVERIFY(m_window->openSample());
    QVERIFY(menu().menuAction()->isVisible());
    QVERIFY(m_window->openDatabase(m_database));
    QVERIFY(!menu().menuAction()->isVisible());
}

void TestSampleQueries::queriesHaveTheirRows_data() {
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QStringList>("firstColumn");
    // Orders 1471 to 1500 are open, and none of them is 11 more than a multiple of 47, which would
    // have cancelled it. The last one is of working day 1040: 208 weeks after the first Monday.
    QTest::newRow("open orders") << QStringLiteral("Which orders are open?")
                                 << QStringLiteral("30 rows") << QStringList{"21500", "21499"};
    // 156 parts have each of 12 materials in each of 13 shapes. The dearest material costs 2.9
    // times the price of the shape: 18.50 for a mallet, 14.20 for a valve, 6.90 for a handle, but
    // 0.80 for a bolt.
    QTest::newRow("dear parts") << QStringLiteral("Which categories have dear parts?")
                                << QStringLiteral("3 rows")
                                << QStringList{"Tools", "Plumbing", "Fittings"};
    // Parts have suppliers 501 to 525; there are 28.
    QTest::newRow("idle suppliers") << QStringLiteral("Which suppliers deliver nothing?")
                                    << QStringLiteral("3 rows") << QStringList{"526", "527", "528"};
}

void TestSampleQueries::queriesHaveTheirRows() {
    QFETCH(QString, title);
    QFETCH(QString, rows);
    QFETCH(QStringList, firstColumn);
    QVERIFY(m_window->openSample());
    QCOMPARE(menu().actions().size(), 3);
    for (QAction* action : menu().actions()) {
        if (action->text() == title) action->trigger();
    }
    QVERIFY(builder().LoadReport().empty());
    QVERIFY(builder().Validate().empty());
    QVERIFY(!isShown("findings"));
    QVERIFY(runAndWait());
    QCOMPARE(label("summary").section(u',', 0, 0), rows);
    for (int row = 0; row < firstColumn.size(); ++row) QCOMPARE(cell(row, 0), firstColumn[row]);
    if (title == u"Which orders are open?") QCOMPARE(cell(0, 1), QStringLiteral("2024-12-30"));
    if (title == u"Which categories have dear parts?") {
        QCOMPARE(cell(0, 1), QStringLiteral("36"));
        QCOMPARE(cell(2, 1), QStringLiteral("48"));
        QVERIFY(cell(0, 2).startsWith(QStringLiteral("53.65")));
        QVERIFY(cell(1, 2).startsWith(QStringLiteral("41.18")));
        QVERIFY(cell(2, 2).startsWith(QStringLiteral("20.01")));
    }
    QCOMPARE(m_messages, QStringList());
}

void TestSampleQueries::ownQueryIsAskedFor() {
    QVERIFY(m_window->openSample());
    load("select name from customers");
    QVERIFY(m_window->isWindowModified());
    const QString own = text();
    orv::setDialogRunner([](QDialog&) { return int(QDialog::Rejected); });
    menu().actions().first()->trigger();
    QCOMPARE(text(), own);
    QVERIFY(m_window->isWindowModified());
    orv::setDialogRunner([](QDialog& dialog) {
        dialog.findChild<QPushButton*>(QStringLiteral("discardChanges"))->click();
        return dialog.result();
    });
    menu().actions().first()->trigger();
    orv::setDialogRunner({});
    QVERIFY(text() != own);
    QVERIFY(builder().ListOfTables->TablesCount() > 0);
    // Nobody has made it, so nobody misses it.
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(!child<QAction>("undo")->isEnabled());
}

QTEST_MAIN(TestSampleQueries)
#include "tst_app_samplequeries.moc"
