// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "FirebirdTestTools.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

// The program from outside: arguments and standard input in, outputs and exit status back.
class TestProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void help();
    void version();
    void wrongUsage_data();
    void wrongUsage();
    void needsNoDisplay();

    void print();
    void printFromStandardInput();
    void sampleDatabaseIsMade();
    void doubtsAreToldBeforeRunning();
    void byteOrderMarkAndLineBreaks();
    void unreadableStatements_data();
    void unreadableStatements();
    void refusedStatement();
    void findingsAreLines();
    void strict();

    void state();
    void stateOfRefusedStatement();
    void stateOfUnreadableFile();
    void stateOfEach();
    void listThatCannotBeRead();

    void runAsTable();
    void runAsCsv();
    void runAsJson();
    void runWithParameters();
    void runWithoutParameters();
    void runProcedure();
    void runFirebirdProcedure();
    void runFails();
    void schema();
    void schemaWithMistake();
    void databaseThatIsNone();
    void databaseWithoutPermission();
    void renderPng();
    void renderSvg();
    void renderFails();
    void fullDiskIsTold();

private:
    struct Result {
        int status = -1;
        QByteArray output;
        QByteArray errors;
    };

    [[nodiscard]] Result run(const QStringList& arguments, const QByteArray& input = {},
                             bool asNobody = false) const;
    [[nodiscard]] QString file(const char* name) const {
        return m_folder.filePath(QLatin1String(name));
    }
    [[nodiscard]] QString written(const char* name, const QByteArray& content) const;

    QTemporaryDir m_folder;
    QString m_database;
    QString m_query;
};

void TestProgram::initTestCase() {
    m_database = file("shop.db");
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                     "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3), (3, '', NULL)"}));
    m_query = written("query.sql", "select o.id, o.city, o.total from orders o");
}

QString TestProgram::written(const char* name, const QByteArray& content) const {
    const QString path = file(name);
    return apptest::writeFile(path, content) ? path : QString();
}

TestProgram::Result TestProgram::run(const QStringList& arguments, const QByteArray& input,
                                     bool asNobody) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The program must find out for itself that it needs no display.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
#ifdef Q_OS_UNIX
    // Nothing is forbidden to root.
    if (asNobody && geteuid() == 0) {
        process.setChildProcessModifier([] {
            if (setgid(65534) != 0 || setuid(65534) != 0) _exit(99);
        });
    }
#else
    Q_UNUSED(asNobody);
#endif
    process.start(QStringLiteral(ORVQUERY_PROGRAM), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000)) return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

void TestProgram::help() {
    const Result result = run({"--help"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("usage: orvquery "));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::version() {
    const Result result = run({"--version"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("orvquery " ORVQUERY_VERSION "\n"));
}

void TestProgram::wrongUsage_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown option") << QStringList{"--foo"} << "unknown option \"--foo\"";
    QTest::newRow("stray argument") << QStringList{"a.sql"} << "unexpected argument \"a.sql\"";
    QTest::newRow("two outputs") << QStringList{"--print", "--run"}
                                 << "--print and --run exclude each other";
    QTest::newRow("format alone") << QStringList{"--format", "csv"}
                                  << "--format goes with --run alone";
}

void TestProgram::wrongUsage() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Result result = run(arguments);
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: %1; see orvquery --help\n").arg(message));
}

void TestProgram::needsNoDisplay() {
    const Result result = run({"--database", m_database, "--state"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::print() {
    const Result result = run({"--database", m_database, "--load", m_query, "--print"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output,
             QByteArray("SELECT O.ID,\r\n       O.CITY,\r\n       O.TOTAL\r\nFROM ORDERS O\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::printFromStandardInput() {
    const Result result =
        run({"--database", m_database, "--load", "-", "--print"}, "select id from orders");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT ID\r\nFROM ORDERS\n"));
}

void TestProgram::sampleDatabaseIsMade() {
    const QString query = written("sample.sql", "select name from departments");
    const Result result = run({"--load", query, "--run", "--format", "csv"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.contains("\r\nWarehouse\r\n"));
}

void TestProgram::doubtsAreToldBeforeRunning() {
    const QString query = written("product.sql", "select o.id from orders o, orders p");
    const Result result = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(result.status, 0);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: P: Nothing links this with the other tables: each of its "
                            "rows is combined with each of theirs.\n"));
}

void TestProgram::byteOrderMarkAndLineBreaks() {
    const QString query = written("mark.sql", "\xef\xbb\xbfselect\r\nid\r\nfrom orders\r\n");
    const Result result = run({"--database", m_database, "--load", query, "--print"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT ID\r\nFROM ORDERS\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::unreadableStatements_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << file("none.sql")
                             << QStringLiteral("The file \"%1\" cannot be read: it does not exist.")
                                    .arg(file("none.sql"));
    QTest::newRow("folder")
        << m_folder.path()
        << QStringLiteral("The file \"%1\" cannot be read: it is a folder.").arg(m_folder.path());
    const QString latin = written("latin.sql", "select id\nfrom orders where city = 'Z\xfcrich'");
    QTest::newRow("latin 1")
        << latin << QStringLiteral("The file \"%1\" is not valid UTF-8 text (line 2).").arg(latin);
}

void TestProgram::unreadableStatements() {
    QFETCH(QString, path);
    QFETCH(QString, message);
    const Result result = run({"--database", m_database, "--load", path, "--print"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(QString::fromUtf8(result.errors), QStringLiteral("orvquery: %1\n").arg(message));
}

void TestProgram::refusedStatement() {
    const QString query = written("update.sql", "update orders set id = 1");
    for (const char* output : {"--print", "--run"}) {
        const Result result = run({"--database", m_database, "--load", query, output});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(QString::fromUtf8(result.errors),
                 QStringLiteral("orvquery: %1: Given statement is not SELECT clause\n").arg(query));
    }
}

void TestProgram::findingsAreLines() {
    const QString query = written("unknown.sql", "select o.id\r\nfrom orders o,\r\n  nowhere n");
    const Result result = run({"--database", m_database, "--load", query, "--print"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("SELECT O.ID\r\nFROM ORDERS O"));
    const QString line = QString::fromUtf8(result.errors);
    QVERIFY2(line.startsWith(query + QStringLiteral(":3:3: \"nowhere n\": ")), qPrintable(line));
    QCOMPARE(line.count(u'\n'), 1);
}

void TestProgram::strict() {
    const QString query = written("strict.sql", "select o.id from orders o, nowhere n");
    QCOMPARE(run({"--database", m_database, "--load", query, "--strict", "--print"}).status, 1);
    QCOMPARE(run({"--database", m_database, "--load", m_query, "--strict", "--print"}).status, 0);
}

void TestProgram::state() {
    const Result result = run({"--database", m_database, "--load", m_query, "--state"});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("{\n  \"statement\": "));
    QVERIFY(result.output.endsWith("\n}\n"));
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QVERIFY(state.value("error").isNull());
    QCOMPARE(state.value("report").toArray().size(), 0);
    QCOMPARE(state.value("tables").toArray().size(), 1);
}

void TestProgram::stateOfRefusedStatement() {
    const Result result =
        run({"--database", m_database, "--load", "-", "--state"}, "delete from orders");
    QCOMPARE(result.status, 1);
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QCOMPARE(state.value("error").toString(),
             QStringLiteral("Given statement is not SELECT clause"));
    QCOMPARE(result.errors, QByteArray("orvquery: -: Given statement is not SELECT clause\n"));
}

void TestProgram::stateOfUnreadableFile() {
    const Result result = run({"--database", m_database, "--load", "none.sql", "--state"});
    QCOMPARE(result.status, 1);
    const QJsonObject state = QJsonDocument::fromJson(result.output).object();
    QCOMPARE(state.value("error").toString(),
             QStringLiteral("The file \"none.sql\" cannot be read: it does not exist."));
}

void TestProgram::stateOfEach() {
    const QString list = written("list.txt", "query.sql\r\n\n  \nnone.sql\n" + m_query.toUtf8());
    const Result result = run({"--database", m_database, "--list", list});
    QCOMPARE(result.status, 1);
    const QList<QByteArray> lines = result.output.split('\n');
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[3], QByteArray());
    QCOMPARE(lines[0], lines[2]);
    const QJsonObject first = QJsonDocument::fromJson(lines[0]).object();
    QVERIFY(first.value("error").isNull());
    QCOMPARE(first.value("tables").toArray().size(), 1);
    const QJsonObject second = QJsonDocument::fromJson(lines[1]).object();
    QCOMPARE(second.value("error").toString(),
             QStringLiteral("The file \"none.sql\" cannot be read: it does not exist."));
    QCOMPARE(second.value("tables").toArray().size(), 0);
}

void TestProgram::listThatCannotBeRead() {
    const Result result = run({"--database", m_database, "--list", "none.txt"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors,
             QByteArray("orvquery: The file \"none.txt\" cannot be read: it does not exist.\n"));
}

void TestProgram::runAsTable() {
    const Result result = run({"--database", m_database, "--load", m_query, "--run"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("id  city  total\n--  ----  -----\n 1  Rome   10.5\n"
                                       " 2  NULL      3\n 3         NULL\n(3 rows)\n"));
}

void TestProgram::runAsCsv() {
    const Result result =
        run({"--database", m_database, "--load", m_query, "--run", "--format", "csv"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("id,city,total\r\n1,Rome,10.5\r\n2,,3\r\n3,\"\",\r\n"));
}

void TestProgram::runAsJson() {
    const Result result =
        run({"--database", m_database, "--load", m_query, "--run", "--format=json"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("[\n  {\"id\": 1, \"city\": \"Rome\", \"total\": 10.5},\n"
                                       "  {\"id\": 2, \"city\": null, \"total\": 3},\n"
                                       "  {\"id\": 3, \"city\": \"\", \"total\": null}\n]\n"));
}

void TestProgram::runWithParameters() {
    const QString query = written(
        "parameters.sql", "select id from orders where city = :city or total = :Total or id = :id");
    const auto rows = [&](const QStringList& parameters) {
        return run(
            QStringList{"--database", m_database, "--load", query, "--run", "--format", "csv"} +
            parameters);
    };
    const Result all = rows({"--param", "city=Rome", "--param=TOTAL=3", "--param", "id=3"});
    QCOMPARE(all.errors, QByteArray());
    QCOMPARE(all.status, 0);
    QCOMPARE(all.output, QByteArray("id\r\n1\r\n2\r\n3\r\n"));
    // The empty text is a value; NULL is equal to nothing.
    QCOMPARE(rows({"--param", "city=", "--param-null", "total", "--param-null", "id"}).output,
             QByteArray("id\r\n3\r\n"));
    // A value is never a part of the statement.
    QCOMPARE(
        rows({"--param", "city=' or 1=1 --", "--param-null", "total", "--param-null", "id"}).output,
        QByteArray("id\r\n"));
}

void TestProgram::runWithoutParameters() {
    const QString query =
        written("missing.sql", "select id from orders where city = :city and id = :id");
    const Result missing = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.output, QByteArray());
    QCOMPARE(missing.errors, QByteArray("orvquery: There is no value for :CITY, :ID; --param "
                                        "NAME=VALUE or --param-null NAME gives one.\n"));
    const Result unknown = run(
        {"--database", m_database, "--load", m_query, "--run", "--param", "x=1", "--param", "y=1"});
    QCOMPARE(unknown.status, 1);
    QCOMPARE(unknown.errors, QByteArray("orvquery: The statement has no parameter :X, :Y.\n"));
}

void TestProgram::runProcedure() {
    const QString table = written("table.sql", "select name from pragma_table_info(:t)");
    const Result columns = run({"--database", m_database, "--load", table, "--run", "--format",
                                "csv", "--param", "t=orders"});
    QCOMPARE(columns.errors, QByteArray());
    QCOMPARE(columns.output, QByteArray("name\r\nid\r\ncity\r\ntotal\r\n"));
    const QString json = written("json.sql",
                                 "select e.value from json_each('[1, \"it''s\"]', '$') e "
                                 "where e.value <> :x");
    const Result values = run(
        {"--database", m_database, "--load", json, "--run", "--format", "csv", "--param", "x=1"});
    QCOMPARE(values.errors, QByteArray());
    QCOMPARE(values.output, QByteArray("value\r\nit's\r\n"));
}

void TestProgram::runFirebirdProcedure() {
    const QString missing = firebirdtest::whatIsMissing();
    if (!missing.isEmpty()) QSKIP(qPrintable(missing));
    firebirdtest::setLockFolder(m_folder.path());
    const QString path = file("shop.fdb");
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE \"Some days\" (\"first day\" DATE, DAYS INTEGER, NOTE VARCHAR(9) = 'x') "
        "RETURNS (D DATE, NOTE_OF VARCHAR(9)) AS BEGIN "
        "WHILE (DAYS > 0) DO BEGIN D = \"first day\"; NOTE_OF = NOTE; SUSPEND; "
        "\"first day\" = \"first day\" + 1; DAYS = DAYS - 1; END END^"));
    const QString query =
        written("days.sql", "select s.d, s.note_of from \"Some days\"(:first, :days, 'it''s') s");
    for (const QString& database : {path, QStringLiteral("firebird://") + path}) {
        const Result result = run({"--database", database, "--load", query, "--run", "--format",
                                   "csv", "--param", "first=2024-02-28", "--param", "days=2"});
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, QByteArray("D,NOTE_OF\r\n2024-02-28,it's\r\n2024-02-29,it's\r\n"));
    }
    // The engine itself would take "two" for nought.
    const Result wrong = run({"--database", path, "--load", query, "--run", "--param",
                              "first=2024-02-28", "--param", "days=two"});
    QCOMPARE(wrong.status, 1);
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors, QByteArray("orvquery: The value of :DAYS cannot be \"two\". A whole "
                                      "number is expected, such as 42.\n"));
}

void TestProgram::runFails() {
    const QString query = written("function.sql", "select nofunction(id) as x from orders");
    const Result result = run({"--database", m_database, "--load", query, "--run"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors,
             QByteArray("orvquery: The database says: no such function: NOFUNCTION\n"));
    QCOMPARE(run({"--database", m_database, "--run"}).errors,
             QByteArray("orvquery: There are no tables in the diagram yet.\n"));
}

void TestProgram::schema() {
    const QString path = written("schema.json", R"({"ORDERS": [["CUSTNO", "ftInteger"]]})");
    const Result result =
        run({"--schema", path, "--load", "-", "--print"}, "select o.custno from orders o");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("SELECT O.CUSTNO\r\nFROM ORDERS O\n"));
    QCOMPARE(result.errors, QByteArray());
}

void TestProgram::schemaWithMistake() {
    const QString path = written("bad.json", "{\"ORDERS\":\n[[\"CUSTNO\"");
    const Result result = run({"--schema", path, "--state"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QByteArray());
    QVERIFY(
        result.errors.startsWith("orvquery: " + path.toUtf8() + ":2:10: this is not valid JSON: "));
}

void TestProgram::databaseThatIsNone() {
    const Result result = run({"--database", m_query, "--print"});
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: The database file \"%1\" is not an SQLite database.\n")
                 .arg(m_query));
}

void TestProgram::databaseWithoutPermission() {
#ifdef Q_OS_UNIX
    QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                               QFile::ReadOther | QFile::ExeOther);
    const QString path = file("closed.db");
    QVERIFY(QFile::copy(m_database, path));
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
    const Result result = run({"--database", path, "--print"}, {}, true);
    QCOMPARE(QString::fromUtf8(result.errors),
             QStringLiteral("orvquery: The database file \"%1\" cannot be read: permission "
                            "denied.\n")
                 .arg(path));
    QCOMPARE(result.status, 1);
#endif
}

void TestProgram::renderPng() {
    const QString path = file("diagram.png");
    const Result result = run({"--database", m_database, "--load", m_query, "--render", path});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray());
    const QImage image(path);
    QVERIFY(image.width() > 100 && image.height() > 60);
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::white));
    QCOMPARE(image.pixelColor(image.width() - 1, image.height() - 1), QColor(Qt::white));
    QVERIFY(image.pixelColor(20, 20) != QColor(Qt::white));
}

void TestProgram::renderSvg() {
    const QString path = file("diagram.svg");
    QCOMPARE(run({"--database", m_database, "--load", m_query, "--render", path}).status, 0);
    QFile svg(path);
    QVERIFY(svg.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&svg);
    QStringList texts;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"text") {
            texts += reader.readElementText().simplified();
        }
    }
    QVERIFY(!reader.hasError());
    QVERIFY2(texts.contains(QStringLiteral("CITY")), qPrintable(texts.join(u'|')));
}

void TestProgram::renderFails() {
    const Result empty = run({"--database", m_database, "--render", file("empty.png")});
    QCOMPARE(empty.status, 1);
    QCOMPARE(empty.errors,
             QByteArray("orvquery: There is nothing to draw: the statement has no tables.\n"));
    QVERIFY(!QFile::exists(file("empty.png")));
    const QString nowhere = file("none/diagram.png");
    const Result result = run({"--database", m_database, "--load", m_query, "--render", nowhere});
    QCOMPARE(result.status, 1);
    QVERIFY(result.errors.startsWith("orvquery: The picture \"" + nowhere.toUtf8() +
                                     "\" cannot be written: "));
}

void TestProgram::fullDiskIsTold() {
#ifdef Q_OS_LINUX
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(QStringLiteral(ORVQUERY_PROGRAM),
                  {"--database", m_database, "--load", m_query, "--print"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().startsWith("orvquery: The output cannot be written: "));
#endif
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_app_program.moc"
