// SPDX-License-Identifier: MIT
#include "ParameterDesk.h"
#include "support/LocaleScope.h"
#include "window/KeepQueryDialog.h"

#include <QPointer>

using namespace apptest;
using namespace orvquery;

// Procedures in the window, from the list of tables to the rows, by mouse and keys.
class TestProcedures : public QObject, protected ParameterDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(makeDatabase()); }
    void init() { begin(); }
    void cleanup() { end(); }

    void functionsStandBehindTables();
    void functionFromListToRows();
    void keysReachParameters();
    void unsetParameterIsAskedFor();
    void loadedPlaceholderIsNoValue();
    void unsetParameterStaysUnset();
    void procedureBoxesShareAnswer();
    void answersAreRemembered();
    void cancelledDialogCancelsRun();
    void nullIsAnAnswer();
    void loadedStatementHasPlaceholders();
    void questionMarkIsRefused();
    void boxClosedWhileDialogIsOpen();
    void diagramClearedWhileDialogIsOpen();
    void databaseChangedWhileDialogIsOpen();
    void windowGoesWhileDialogIsOpen();
    void schemaProcedureTakesValues();
    void numberIsTypedWithDecimalComma();
};

void TestProcedures::functionsStandBehindTables() {
    auto* list = child<QTreeView>("tables");
    const QAbstractItemModel* model = list->model();
    QCOMPARE(model->rowCount(), 3);
    const QModelIndex group = model->index(2, 0);
    QVERIFY(group.data().toString().startsWith(QStringLiteral("System functions (")));
    QVERIFY(!list->isExpanded(group));
    const QModelIndex function = listIndex(QStringLiteral("pragma_table_info"));
    QCOMPARE(function.parent(), group);
    QVERIFY(function.data(Qt::ToolTipRole)
                .toString()
                .contains(QStringLiteral("pragma_table_info(arg, schema)")));
    // Enter unfolds; a filter shows what it finds.
    list->setCurrentIndex(group);
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(list->isExpanded(group));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    auto* filter = child<QLineEdit>("filter");
    QTest::keyClicks(filter, "json_e");
    QCOMPARE(model->rowCount(), 1);
    QVERIFY(list->isExpanded(model->index(0, 0)));
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    QVERIFY(box() != nullptr);
    QTest::keyClick(filter, Qt::Key_Escape);
    QVERIFY(!list->isExpanded(model->index(2, 0)));
}

void TestProcedures::functionFromListToRows() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    QVERIFY(box() != nullptr);
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "it's");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QCOMPARE(text(), QStringLiteral("SELECT PRAGMA_TABLE_INFO.NAME\n"
                                    "FROM PRAGMA_TABLE_INFO('it''s', NULL)"));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"a", "b"}));
}

void TestProcedures::keysReachParameters() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    rowOf(*box(), "VALUE")->SetCheck(true);
    TorvQDWorkArea* area = builder().WorkArea;
    area->setFocus();
    box()->SetCurrentItem(rowOf(*box(), "JSON"));
    answer([](QDialog& dialog) {
        QTest::keyClicks(dialog.focusWidget(), "[3, \"x\"]");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    QTest::keyClick(area, Qt::Key_Return);
    QVERIFY2(text().endsWith(QStringLiteral("JSON_EACH('[3, \"x\"]', '$')")), qPrintable(text()));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"3", "x"}));
}

void TestProcedures::unsetParameterIsAskedFor() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) {
        clickOn(*childOf<QRadioButton>(dialog, "unset"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("SCHEMA");
    QVERIFY(text().endsWith(QStringLiteral("PRAGMA_TABLE_INFO(:ARG, :SCHEMA)")));
    answer([](QDialog& dialog) {
        // It has a default, so that nobody needs to know what it is for.
        QVERIFY(childOf<QCheckBox>(dialog, "null SCHEMA")->isChecked());
        QTest::keyClicks(childOf<QLineEdit>(dialog, "ARG"), "orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"id", "city", "total"}));
}

// A placeholder of another name stands in the row as a piece of SQL.
void TestProcedures::loadedPlaceholderIsNoValue() {
    builder().LoadSQL("select i.name from pragma_table_info(:t, null) i");
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLineEdit>(dialog, "T")->text(), QString());
        QTest::keyClicks(childOf<QLineEdit>(dialog, "T"), "orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"id", "city", "total"}));
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLabel>(dialog, "subject")->text(),
                 QStringLiteral("Parameter ARG (String) of PRAGMA_TABLE_INFO (I)"));
        QVERIFY(childOf<QRadioButton>(dialog, "asSql")->isChecked());
        QCOMPARE(childOf<QLineEdit>(dialog, "value")->text(), QStringLiteral(":t"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QVERIFY2(text().contains(QStringLiteral("PRAGMA_TABLE_INFO(:t, NULL) I")), qPrintable(text()));
    answer([](QDialog& dialog) {
        choose(dialog, "asValue", Qt::Key_V);
        childOf<QLineEdit>(dialog, "value")->selectAll();
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "it's");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QVERIFY2(text().contains(QStringLiteral("PRAGMA_TABLE_INFO('it''s', NULL) I")),
             qPrintable(text()));
}

void TestProcedures::unsetParameterStaysUnset() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) { QTest::keyClick(dialog.focusWidget(), Qt::Key_Return); });
    doubleClickRow("ARG");
    QVERIFY2(text().endsWith(QStringLiteral("PRAGMA_TABLE_INFO(:ARG, NULL)")), qPrintable(text()));
}

void TestProcedures::procedureBoxesShareAnswer() {
    builder().LoadSQL(
        "select a.name, b.name from pragma_table_info(:arg) a, pragma_index_list(:arg) b");
    answer([](QDialog& dialog) {
        auto* takers = childOf<QLabel>(dialog, "takers ARG");
        QVERIFY(takers != nullptr);
        QCOMPARE(takers->text(), QStringLiteral("For ARG of PRAGMA_INDEX_LIST (B), "
                                                "ARG of PRAGMA_TABLE_INFO (A)"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    run();
}

void TestProcedures::answersAreRemembered() {
    load("select :x as a, :y as b from orders where id = 1");
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "X"), "one");
        clickOn(*childOf<QCheckBox>(dialog, "null Y"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"one"});
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLineEdit>(dialog, "X")->text(), QStringLiteral("one"));
        QVERIFY(childOf<QCheckBox>(dialog, "null Y")->isChecked());
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(1), QStringList{"NULL"});
}

void TestProcedures::cancelledDialogCancelsRun() {
    load("select 'before' as a from orders where id = 1");
    run();
    QVERIFY(waitForRows());
    load("select :x as a from orders");
    answer([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(child<QTableView>("rows")->isVisible());
    QCOMPARE(column(0), QStringList{"before"});
}

void TestProcedures::nullIsAnAnswer() {
    load("select id from orders where city is :c");
    answer([](QDialog& dialog) {
        clickOn(*childOf<QCheckBox>(dialog, "null C"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"2"});
}

void TestProcedures::loadedStatementHasPlaceholders() {
    load("select ':no' as a, value -- isn't :one\nfrom json_each(:j) where value > :v");
    answer([](QDialog& dialog) {
        QCOMPARE(dialog.findChildren<QLineEdit*>().size(), 2);
        QTest::keyClicks(childOf<QLineEdit>(dialog, "J"), "[1, 2, 3]");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "V"), "1");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{":no", ":no"}));
    QCOMPARE(column(1), (QStringList{"2", "3"}));
}

// --- what may happen meanwhile ---

// Nobody is asked for the other values first.
void TestProcedures::questionMarkIsRefused() {
    load("select id from orders where id = ? or 1 = :x");
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QCOMPARE(child<QLabel>("resultText")->text(),
             QStringLiteral("The statement has a parameter \"?\", which has no name by which it "
                            "could get a value; please write it as :NAME."));
}

void TestProcedures::boxClosedWhileDialogIsOpen() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    QPointer<QDialog> shown;
    answer([&](QDialog& dialog) {
        shown = &dialog;
        builder().ListOfTables->DeleteTable(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    doubleClickRow("JSON");
    QVERIFY(!shown || !shown->isVisible());
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestProcedures::diagramClearedWhileDialogIsOpen() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    answer([&](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "[]");
        builder().Clear();
        builder().LoadSQL("select id from orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("JSON");
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
}

void TestProcedures::databaseChangedWhileDialogIsOpen() {
    load("select :x as a from orders");
    answer([&](QDialog& dialog) {
        answer([](QDialog& question) { question.done(KeepQueryDialog::Empty); });
        const QString other = m_folder.filePath(QStringLiteral("other.db"));
        QVERIFY(QFile::copy(m_database, other));
        QVERIFY(m_window->openDatabase(other));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(!child<QTableView>("rows")->isVisible());
}

void TestProcedures::windowGoesWhileDialogIsOpen() {
    load("select :x as a from orders");
    orv::setDialogRunner([this](QDialog&) {
        m_window.reset();
        return int(QDialog::Accepted);
    });
    QToolButton* button = child<QToolButton>("runButton");
    QVERIFY(button != nullptr);
    QMetaObject::invokeMethod(m_window.get(), [button] { button->defaultAction()->trigger(); });
    QVERIFY(m_window == nullptr);
}

void TestProcedures::schemaProcedureTakesValues() {
    const QString schema = m_folder.filePath(QStringLiteral("s.json"));
    QVERIFY(apptest::writeFile(schema, R"({"P": {"fields": [["A", "ftInteger"]],
                          "params": [["X", "ftDate", "ptInput"], ["Y", "ftFloat", "ptInput", 2.5]]}})"));
    Options options;
    options.schema = schema;
    m_window->begin(options);
    QVERIFY(
        child<QTreeView>("tables")->isExpanded(child<QTreeView>("tables")->model()->index(0, 0)));
    doubleClickInList(QStringLiteral("P"));
    rowOf(*box(), "A")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "2024-01-31");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("X");
    QCOMPARE(text(), QStringLiteral("SELECT P.A\nFROM P('2024-01-31', 2.5)"));
    answer([](QDialog& dialog) {
        choose(dialog, "asNull", Qt::Key_N);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("Y");
    QCOMPARE(text(), QStringLiteral("SELECT P.A\nFROM P('2024-01-31', NULL)"));
}

void TestProcedures::numberIsTypedWithDecimalComma() {
    const orvtest::LocaleScope german(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(QLocale().decimalPoint(), QStringLiteral(","));
    const QString schema = m_folder.filePath(QStringLiteral("comma.json"));
    QVERIFY(apptest::writeFile(schema, R"({"P": {"fields": [["A", "ftInteger"]],
                          "params": [["F", "ftFloat", "ptInput"], ["C", "ftCurrency", "ptInput"]]}})"));
    Options options;
    options.schema = schema;
    m_window->begin(options);
    doubleClickInList(QStringLiteral("P"));
    rowOf(*box(), "A")->SetCheck(true);
    for (const auto& [row, typed] : {std::pair("F", "1,5"), std::pair("C", "-1234567,25")}) {
        answer([typed = typed](QDialog& dialog) {
            QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), typed);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        doubleClickRow(row);
    }
    QCOMPARE(text(), QStringLiteral("SELECT P.A\nFROM P(1.5, -1234567.25)"));
}

QTEST_MAIN(TestProcedures)
#include "tst_app_procedures.moc"
