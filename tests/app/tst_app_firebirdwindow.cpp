// SPDX-License-Identifier: MIT
#include "FirebirdTestTools.h"
#include "ParameterDesk.h"

using namespace apptest;
using namespace orvquery;

// Procedures of Firebird in the window, from the list of tables to the rows.
class TestFirebirdWindow : public QObject, protected ParameterDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { begin(); }
    void cleanup() { end(); }

    void procedureFromListToRows();
    void procedureTakesMoments();
    void droppedTableIsTold();
    void deniedTableIsTold();
    void valuesOfAllTypesAreSeen();
};

void TestFirebirdWindow::initTestCase() {
    QCOMPARE(firebirdtest::whatIsMissing(), QString());
    firebirdtest::setLockFolder(m_folder.path());
    QVERIFY(makeDatabase());
}

void TestFirebirdWindow::procedureFromListToRows() {
    const QString path = m_folder.filePath(QStringLiteral("shop.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE SERIES (LOW INTEGER, HIGH INTEGER) RETURNS (N INTEGER) AS "
        "BEGIN N = LOW; WHILE (N <= HIGH) DO BEGIN SUSPEND; N = N + 1; END END^"
        "CREATE TABLE T (ID INTEGER)^"));
    QVERIFY(m_window->openDatabase(path));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - shop.fdb - orvquery"));
    doubleClickInList(QStringLiteral("SERIES"));
    rowOf(*box(), "N")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "2");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("LOW");
    QCOMPARE(text(), QStringLiteral("SELECT SERIES.N\nFROM SERIES(2, :HIGH)"));
    answer([](QDialog& dialog) {
        auto* field = childOf<QLineEdit>(dialog, "HIGH");
        QCOMPARE(field->accessibleName(), QStringLiteral(":HIGH (Integer)"));
        QTest::keyClicks(field, "4x");
        QVERIFY(!childOf<QPushButton>(dialog, "run")->isEnabled());
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClick(field, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"2", "3", "4"}));
}

// What is typed runs, be it in the box or when the query runs.
void TestFirebirdWindow::procedureTakesMoments() {
    const QString path = m_folder.filePath(QStringLiteral("moments.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE MOMENTS (S TIMESTAMP, D DATE, T TIME) RETURNS (R VARCHAR(80)) AS "
        "BEGIN R = DATEADD(1 SECOND TO S) || '/' || DATEADD(1 DAY TO D) || '/' || "
        "DATEADD(1 MINUTE TO T); SUSPEND; END^"));
    QVERIFY(m_window->openDatabase(path));
    doubleClickInList(QStringLiteral("MOMENTS"));
    rowOf(*box(), "R")->SetCheck(true);
    const QString expected = QStringLiteral("2024-01-02 03:04:01.0000/2024-03-01/18:31:15.0000");
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "S"), "2024-01-02 03:04");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "D"), "2024-02-29");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "T"), "18:30:15");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{expected});
    const std::vector<std::pair<const char*, QString>> typed = {
        {"S", "2024-01-02 03:04"}, {"D", "2024-02-29"}, {"T", "18:30:15"}};
    for (const auto& [name, text] : typed) {
        answer([value = text](QDialog& dialog) {
            QTest::keyClicks(dialog.focusWidget(), value);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        doubleClickRow(name);
    }
    QCOMPARE(text(), QStringLiteral("SELECT MOMENTS.R\nFROM MOMENTS('2024-01-02 03:04:00', "
                                    "'2024-02-29', '18:30:15')"));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{expected});
}

// Between the listing and the run.
void TestFirebirdWindow::droppedTableIsTold() {
    const QString path = m_folder.filePath(QStringLiteral("passing.fdb"));
    QVERIFY(firebirdtest::makeDatabase(path,
                                       "CREATE TABLE PASSING (ID INTEGER)^"
                                       "CREATE TABLE STAYING (ID INTEGER)^"
                                       "COMMIT^ INSERT INTO STAYING VALUES (7)^"));
    QVERIFY(m_window->openDatabase(path));
    load("select id from passing");
    ConnectionSettings settings;
    settings.driver = QStringLiteral("QIBASE");
    settings.databaseName = path;
    settings.user = QStringLiteral("SYSDBA");
    QVERIFY(runStatements(settings, {"DROP TABLE PASSING"}));
    run();
    QVERIFY(waitForEnd());
    const QString told = child<QLabel>("resultText")->text();
    QVERIFY2(told.startsWith(QStringLiteral("The database says: ")) &&
                 told.contains(QStringLiteral("PASSING")),
             qPrintable(told));
    load("select id from staying");
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"7"});
}

// The engine within the program asks for no password, and heeds what a user may.
void TestFirebirdWindow::deniedTableIsTold() {
    const QString path = m_folder.filePath(QStringLiteral("rights.fdb"));
    QVERIFY(firebirdtest::makeDatabase(path,
                                       "CREATE TABLE SECRET (ID INTEGER)^"
                                       "CREATE TABLE OPENED (ID INTEGER)^ COMMIT^"
                                       "INSERT INTO OPENED VALUES (7)^"
                                       "GRANT SELECT ON OPENED TO READER^"));
    QVERIFY(m_window->openDatabase(QStringLiteral("firebird://reader@") + path));
    load("select id from secret");
    run();
    QVERIFY(waitForEnd());
    const QString told = child<QLabel>("resultText")->text();
    QVERIFY2(told.contains(QStringLiteral("no permission for SELECT access to TABLE SECRET")),
             qPrintable(told));
    load("select id from opened");
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"7"});
}

// Each beside its NULL.
void TestFirebirdWindow::valuesOfAllTypesAreSeen() {
    struct Case {
        const char* type;
        const char* literal;
        const char* shown;
    };
    const std::vector<Case> cases = {
        {"SMALLINT", "-32768", "-32768"},
        {"INTEGER", "2147483647", "2147483647"},
        {"BIGINT", "9223372036854775807", "9223372036854775807"},
        {"FLOAT", "0.5", "0.5"},
        {"DOUBLE PRECISION", "1.25", "1.25"},
        {"NUMERIC(4, 2)", "-0.07", "-0.07"},
        {"DECIMAL(18, 4)", "1234567890.1234", "1234567890.1234"},
        {"CHAR(3)", "'ab'", "ab "},
        {"VARCHAR(10)", "'größe'", "größe"},
        {"BOOLEAN", "TRUE", "true"},
        {"DATE", "'2024-02-29'", "2024-02-29"},
        {"TIME", "'01:02:03.5'", "01:02:03.500"},
        {"TIMESTAMP", "'2024-02-29 01:02:03'", "2024-02-29T01:02:03.000"},
        {"BLOB SUB_TYPE TEXT", "'a long text'", "a long text"},
        {"BLOB", "'abc'", "(3 bytes)"},
    };
    QStringList columns;
    QStringList values;
    for (std::size_t number = 0; number < cases.size(); ++number) {
        columns += QStringLiteral("C%1 ").arg(number) + QLatin1String(cases[number].type);
        values += QString::fromUtf8(cases[number].literal);
    }
    const QString path = m_folder.filePath(QStringLiteral("kinds.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path,
        QStringLiteral("CREATE TABLE KINDS (ID INTEGER, %1)^ COMMIT^ INSERT INTO KINDS VALUES (1, "
                       "%2)^ INSERT INTO KINDS (ID) VALUES (2)^")
            .arg(columns.join(u','), values.join(u','))));
    QVERIFY(m_window->openDatabase(path));
    load("select k.* from kinds k order by k.id");
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"1", "2"}));
    for (std::size_t number = 0; number < cases.size(); ++number) {
        const QStringList shown = column(int(number) + 1);
        QVERIFY2(shown == (QStringList{QString::fromUtf8(cases[number].shown), "NULL"}),
                 qPrintable(QLatin1String(cases[number].type) + u' ' + shown.join(u'|')));
    }
}

QTEST_MAIN(TestFirebirdWindow)
#include "tst_app_firebirdwindow.moc"
