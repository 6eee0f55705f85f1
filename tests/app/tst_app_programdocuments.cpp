// SPDX-License-Identifier: MIT
#include "ProgramRun.h"
#include "documents/DocumentFile.h"
#include "documents/DocumentLock.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace orvquery;

// Query files on the program's command line.
class TestProgramDocuments : public QObject, protected apptest::ProgramRun {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void statementIsPrinted_data();
    void statementIsPrinted();
    void queryIsExplained();
    void rowsComeFromItsDatabase();
    void namedDatabaseComesFirst();
    void pictureHasItsLayout();
    void stateIsThatOfTheFile();
    void statementAloneIsLoaded();
    void stateIsAQueryToo();
    void typedTextIsLeftOut();
    void fileOfASchema();
    void fileOfTheSample();
    void listHasQueryFiles();
    void endOfTheSessionLeavesNoLock();

    void unusableFiles_data();
    void unusableFiles();
    void refusedStatementsAreExplained_data();
    void refusedStatementsAreExplained();
    void databaseThatCannotBeOpened();
    void databaseThatCannotBeOpenedForAStatement();
    void tablesOfAnotherDatabase();
    void tablesOfAnotherDatabaseInAList();
    void emptyQueryIsTold_data();
    void emptyQueryIsTold();

    void comparedWithAStatement();
    void comparedWithoutDatabase();
    void unusableFilesAreNotCompared_data();
    void unusableFilesAreNotCompared();
    void comparedStatementsNeedTheDatabase();

private:
    [[nodiscard]] QString saved(const char* name, const QueryDocument& document) const {
        return written(name, documentText(document));
    }
    [[nodiscard]] QueryDocument moved(int left, int top) const;
    [[nodiscard]] QByteArray elsewhere() const;

    QString m_database;
    QString m_other;  // has none of the tables
    QueryDocument m_document;
    QString m_query;
};

// The statement beside the query asks for something else: it is not read.
void TestProgramDocuments::initTestCase() {
    m_database = file("shop.db");
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT)",
                     "INSERT INTO orders VALUES (1, 'Rome'), (2, 'Oslo'), (3, 'Bonn')"}));
    m_other = file("other.db");
    QVERIFY(apptest::runStatements(m_other, {"CREATE TABLE people (name TEXT)"}));
    const QString statement = written("query.sql", "select o.city from orders o where o.id = 3");
    const Result state = run({m_database, "--load", statement, "--state"});
    QCOMPARE(state.status, 0);
    m_document.setState(state.output);
    m_document.statement = QStringLiteral("select id from orders");
    m_document.database = {QStringLiteral("shop.db"), QStringLiteral("sqlite://./shop.db"), {}};
    m_query = saved("query.orvq", m_document);
}

// The query with its one box at that place.
QueryDocument TestProgramDocuments::moved(int left, int top) const {
    QueryDocument document = m_document;
    QJsonArray tables = document.query.value(QStringLiteral("tables")).toArray();
    QJsonObject table = tables[0].toObject();
    table.insert(QStringLiteral("bounds"), QJsonArray({left, top, 400, 300}));
    tables[0] = table;
    document.query.insert(QStringLiteral("tables"), tables);
    return document;
}

// The same for a database that is not there.
QByteArray TestProgramDocuments::elsewhere() const {
    QueryDocument document = m_document;
    document.database = {QStringLiteral("Our shop"), QStringLiteral("sqlite://./gone.db"), {}};
    return documentText(document);
}

void TestProgramDocuments::statementIsPrinted_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("isPiped");
    QTest::newRow("named alone") << QStringList{"query.orvq", "--print"} << false;
    QTest::newRow("by its option") << QStringList{"--print", "--load", "query.orvq"} << false;
    QTest::newRow("from standard input") << QStringList{"--print", "--load", "-"} << true;
}

void TestProgramDocuments::statementIsPrinted() {
    QFETCH(QStringList, arguments);
    QFETCH(bool, isPiped);
    const Result result = run(arguments, isPiped ? documentText(m_document) : QByteArray());
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output.simplified(),
             QByteArray("SELECT O.CITY FROM ORDERS O WHERE ( (O.ID = 3) )"));
}

void TestProgramDocuments::queryIsExplained() {
    const Result result = run({m_query, "--explain"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY2(result.output.contains("the ID is 3"), result.output.constData());
}

// Its address is one in the folder of the file, wherever the program runs.
void TestProgramDocuments::rowsComeFromItsDatabase() {
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    QVERIFY(apptest::runStatements(file("sub/shop.db"),
                                   {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT)",
                                    "INSERT INTO orders VALUES (3, 'Lima')"}));
    const QString below = saved("sub/query.orvq", m_document);
    QCOMPARE(run({m_query, "--run", "--format", "csv"}).output, QByteArray("city\r\nBonn\r\n"));
    const Result result = run({"--load", below, "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("city\r\nLima\r\n"));
}

void TestProgramDocuments::namedDatabaseComesFirst() {
    const QString named = file("named.db");
    QVERIFY(apptest::runStatements(named, {"CREATE TABLE orders (id INTEGER, city TEXT)",
                                           "INSERT INTO orders VALUES (3, 'Kiel')"}));
    const QString path = written("elsewhere.orvq", elsewhere());
    const Result result = run({named, path, "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("city\r\nKiel\r\n"));
}

// A box of 400 x 300 pixels at any place is that with a margin of 20 around it.
void TestProgramDocuments::pictureHasItsLayout() {
    const QString path = saved("moved.orvq", moved(1700, 900));
    const QString picture = file("moved.png");
    const Result result = run({path, "--render", picture});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(QImage(picture).size(), QSize(440, 340));
}

void TestProgramDocuments::stateIsThatOfTheFile() {
    const QueryDocument document = moved(30, 40);
    const Result result = run({saved("state.orvq", document), "--state"});
    QCOMPARE(result.status, 0);
    QueryDocument read;
    read.setState(result.output);
    QCOMPARE(read.query, document.query);
}

void TestProgramDocuments::statementAloneIsLoaded() {
    QueryDocument document;
    document.database = m_document.database;
    document.statement = QStringLiteral("select id, nothing\r\nfrom orders");
    const QString path = saved("statement.orvq", document);
    const Result result = run({path, "--print"});
    QVERIFY2(result.errors.startsWith(path.toUtf8() + " (statement):1:12: \"nothing\": "),
             result.errors.constData());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.contains("FROM ORDERS"));
    QCOMPARE(run({path, "--print", "--strict"}).status, 1);
}

// What --state has written can be read again; of its database it says nothing.
void TestProgramDocuments::stateIsAQueryToo() {
    const QString state = written("state.json", run({m_query, "--state"}).output);
    const Result result = run({m_database, "--load", state, "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray("city\r\nBonn\r\n"));
}

void TestProgramDocuments::typedTextIsLeftOut() {
    QueryDocument document = m_document;
    document.typed = QStringLiteral("select everything");
    const QString path = saved("typed.orvq", document);
    const Result result = run({path, "--run", "--format", "csv"});
    QCOMPARE(result.errors,
             QByteArray("orvquery: " + path.toUtf8() +
                        " has a text besides that was typed and not loaded; it is left out.\n"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("city\r\nBonn\r\n"));
}

void TestProgramDocuments::fileOfASchema() {
    const QString schema =
        written("tables.json", R"({"ORDERS": [["ID", "ftInteger"], ["CITY", "ftString"]]})");
    QueryDocument document = m_document;
    document.database = {QStringLiteral("tables.json"), {}, QStringLiteral("tables.json")};
    const QString path = saved("schema.orvq", document);
    const Result printed = run({path, "--print"});
    QCOMPARE(printed.errors, QByteArray());
    QCOMPARE(printed.status, 0);
    const Result rows = run({path, "--run"});
    QCOMPARE(rows.status, 1);
    QCOMPARE(rows.output, QByteArray());
    QCOMPARE(QString::fromUtf8(rows.errors),
             QStringLiteral("orvquery: The query is for the tables of the file \"%1\", which has "
                            "no rows; --database FILE names a database.\n")
                 .arg(schema));
    QCOMPARE(run({m_database, path, "--run", "--format", "csv"}).output,
             QByteArray("city\r\nBonn\r\n"));
}

void TestProgramDocuments::fileOfTheSample() {
    QueryDocument document;
    document.database.isSample = true;
    document.statement = QStringLiteral("select name from departments");
    const Result result = run({saved("sample.orvq", document), "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.contains("\r\nWarehouse\r\n"));
}

// The program's window, which without its own end would leave that behind.
void TestProgramDocuments::endOfTheSessionLeavesNoLock() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), file("settings"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ORVQUERY_PROGRAM), {m_query});
    const QString lock = DocumentLock::lockPath(m_query);
    // Once it is shown it is one of the recent ones.
    const QString name = QFileInfo(m_query).fileName();
    const auto isShown = [&] {
        QFile settings(file("settings/orvquery/orvquery.conf"));
        return settings.open(QIODevice::ReadOnly) && settings.readAll().contains(name.toUtf8());
    };
    QVERIFY(QTest::qWaitFor(isShown, 60000));
    QVERIFY(QFileInfo::exists(lock));
    process.terminate();
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QVERIFY(!QFileInfo::exists(lock));
#else
    QSKIP("Only Unix but macOS has settings under XDG_CONFIG_HOME and ends it by SIGTERM.");
#endif
}

void TestProgramDocuments::listHasQueryFiles() {
    const QString statement = written("plain.sql", "select id from orders");
    const QString list = written("list", (m_query + u'\n' + statement + u'\n').toUtf8());
    const Result result = run({m_database, "--list", list});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    const QList<QByteArray> lines = result.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 2);
    QueryDocument read;
    read.setState(lines.front());
    QCOMPARE(read.query, m_document.query);
    read.setState(lines.back());
    QCOMPARE(read.statement, QStringLiteral("SELECT ID\r\nFROM ORDERS"));
}

void TestProgramDocuments::unusableFiles_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    const QString name = QStringLiteral("The file \"%1\" ").arg(file("bad.orvq"));
    const QByteArray begin = "{\"format\": \"orvquery query\", \"version\": ";
    QTest::newRow("empty") << QByteArray() << name + "is no query file: it is empty.";
    QTest::newRow("a statement") << QByteArray("select id from orders")
                                 << name + "is no query file: it is no JSON from line 1 on";
    QTest::newRow("cut short") << begin + "1,\n\"query\": {\"tables\": [{\"name\": \"ORD"
                               << name + "is no query file: it is no JSON from line 2 on";
    QTest::newRow("later version")
        << begin + "2}"
        << name +
               "was saved by a later version of orvquery (its format is 2, this "
               "program knows up to 1); it is left as it is.";
    QTest::newRow("no query") << begin + "1, \"query\": {\"tables\": 1}}"
                              << name + "cannot be opened. ";
    QTest::newRow("no text") << QByteArray("{\"\xfc\": 1}")
                             << name + "is not valid UTF-8 text (line 1).";
}

void TestProgramDocuments::unusableFiles() {
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString path = written("bad.orvq", content);
    const QString picture = file("bad.png");
    for (const QStringList& output : {QStringList{"--print"}, QStringList{"--explain"},
                                      QStringList{"--run"}, QStringList{"--render", picture}}) {
        const Result result = run(QStringList{path} + output);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(result.errors.count('\n'), 1);
        QVERIFY2(result.errors.startsWith("orvquery: " + message.toUtf8()),
                 result.errors.constData());
    }
    QVERIFY(!QFile::exists(picture));
    const Result state = run({path, "--state"});
    QCOMPARE(state.status, 1);
    const QString told = QJsonDocument::fromJson(state.output).object()["error"].toString();
    QVERIFY2(told.startsWith(message), qPrintable(told));
}

// The file has all that is drawn and written, but no rows.
void TestProgramDocuments::refusedStatementsAreExplained_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("more");
    QTest::newRow("with") << QByteArray("with a as (select 1) select * from a")
                          << QStringLiteral(
                                 "The text begins with WITH, and a common table "
                                 "expression is not read.");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("The text is empty.");
    QTest::newRow("blank") << QByteArray("\n") << QStringLiteral("The text is empty.");
}

// The state has the control's own words, for programs to compare.
void TestProgramDocuments::refusedStatementsAreExplained() {
    QFETCH(QByteArray, content);
    QFETCH(QString, more);
    const QString reason = QStringLiteral("Given statement is not SELECT clause");
    const QString query = written("refused.sql", content);
    const Result result = run({m_database, "--load", query, "--state"});
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: %1: %2. %3\n").arg(query, reason, more));
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QCOMPARE(state.value("error").toString(), reason);
}

void TestProgramDocuments::databaseThatCannotBeOpened() {
    const QString path = written("elsewhere.orvq", elsewhere());
    const QString told =
        QStringLiteral(
            "orvquery: The query's database Our shop is not open. The database file "
            "\"%1\" does not exist.\n")
            .arg(file("gone.db"));
    const QString picture = file("elsewhere.svg");
    const Result drawn = run({path, "--render", picture});
    QCOMPARE(QString::fromUtf8(drawn.errors), told);
    QCOMPARE(drawn.status, 1);
    QVERIFY(QFile::exists(picture));
    const Result printed = run({path, "--print"});
    QCOMPARE(QString::fromUtf8(printed.errors), told);
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.output.startsWith("SELECT O.CITY\r\n"));
    const Result rows = run({path, "--run"});
    QCOMPARE(QString::fromUtf8(rows.errors), told);
    QCOMPARE(rows.status, 1);
    QCOMPARE(rows.output, QByteArray());
}

void TestProgramDocuments::databaseThatCannotBeOpenedForAStatement() {
    QueryDocument document;
    document.statement = QStringLiteral("select id from orders");
    document.database.address = QStringLiteral("sqlite://./gone.db");
    const Result result = run({saved("statement.orvq", document), "--print"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QVERIFY(result.errors.endsWith("gone.db\" does not exist.\n"));
    QCOMPARE(result.errors.count('\n'), 1);
}

void TestProgramDocuments::tablesOfAnotherDatabase() {
    const QByteArray told = "orvquery: " + m_query.toUtf8() +
                            ": other.db has no ORDERS; the query keeps what it knows of them.\n";
    const Result printed = run({m_other, m_query, "--print"});
    QCOMPARE(printed.errors, told);
    QCOMPARE(printed.status, 0);
    QVERIFY(printed.output.startsWith("SELECT O.CITY\r\n"));
    QCOMPARE(run({m_other, m_query, "--print", "--strict"}).status, 1);
    const Result rows = run({m_other, m_query, "--run"});
    QCOMPARE(rows.status, 1);
    QCOMPARE(rows.output, QByteArray());
    QVERIFY2(rows.errors.startsWith(told + "orvquery: The database says: no such table"),
             rows.errors.constData());
}

void TestProgramDocuments::tablesOfAnotherDatabaseInAList() {
    const QString list = written("list", m_query.toUtf8());
    const Result result = run({m_other, "--list", list});
    QVERIFY(result.errors.contains(": other.db has no ORDERS; "));
    QCOMPARE(result.status, 0);
    QueryDocument read;
    read.setState(result.output);
    QCOMPARE(read.query, m_document.query);
}

void TestProgramDocuments::emptyQueryIsTold_data() {
    QTest::addColumn<bool>("hasDiagram");
    QTest::newRow("no query at all") << false;
    QTest::newRow("a diagram without boxes") << true;
}

void TestProgramDocuments::emptyQueryIsTold() {
    QFETCH(bool, hasDiagram);
    QueryDocument document;
    document.database = m_document.database;
    if (hasDiagram) document.setState(run({m_database, "--state"}).output);
    QCOMPARE(!document.query.isEmpty(), hasDiagram);
    const QString path = saved("empty.orvq", document);
    for (const char* output : {"--print", "--explain", "--run"}) {
        const Result result = run({path, QLatin1String(output)});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(result.errors, QByteArray("orvquery: There is no query on the diagram of " +
                                           path.toUtf8() + ".\n"));
    }
    QCOMPARE(run({path, "--state"}).status, 0);
}

void TestProgramDocuments::comparedWithAStatement() {
    const QString statement = written("query.sql", "select o.city from orders o where o.id = 4");
    const Result some = run({"--diff", statement, m_query});
    QCOMPARE(some.errors, QByteArray());
    QCOMPARE(some.status, 1);
    QCOMPARE(some.output, QByteArray("Conditions\n  - Changed: the ID is 4; now the ID is 3\n"));
    const QString same = written("same.sql", "select o.city from orders o where o.id = 3");
    QCOMPARE(run({"--diff", m_query, same}).status, 0);
}

// Nothing is opened, and no sample database made: files of queries say all that is compared.
void TestProgramDocuments::comparedWithoutDatabase() {
    const QString other = written("elsewhere.orvq", elsewhere());
    const Result none = run({"--diff", m_query, other});
    QCOMPARE(none.errors, QByteArray());
    QCOMPARE(none.output, QByteArray("Differences\n  There are none.\n"));
    QCOMPARE(none.status, 0);
    // Where the boxes stand makes no other query.
    const Result place = run({"--diff", m_query, saved("moved.orvq", moved(500, 500))});
    QCOMPARE(place.status, 0);
}

void TestProgramDocuments::unusableFilesAreNotCompared_data() {
    unusableFiles_data();
}

void TestProgramDocuments::unusableFilesAreNotCompared() {
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString path = written("bad.orvq", content);
    for (const QStringList& files : {QStringList{m_query, path}, QStringList{path, m_query}}) {
        const Result result = run(QStringList{"--diff"} + files);
        QCOMPARE(result.status, 2);
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(result.errors.count('\n'), 1);
        QVERIFY2(result.errors.startsWith("orvquery: " + message.toUtf8()),
                 result.errors.constData());
    }
}

void TestProgramDocuments::comparedStatementsNeedTheDatabase() {
    const QString other = written("elsewhere.orvq", elsewhere());
    const QString statement = written("query.sql", "select o.city from orders o");
    const Result result = run({"--diff", other, statement});
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QByteArray());
    QVERIFY2(result.errors.startsWith("orvquery: The query's database Our shop is not open. "),
             result.errors.constData());
}

QTEST_GUILESS_MAIN(TestProgramDocuments)
#include "tst_app_programdocuments.moc"
