// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "batch/Options.h"

using namespace orvquery;

class TestOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothing();
    void everything();
    void parameters();
    void outputs_data();
    void outputs();
    void wrongUse_data();
    void wrongUse();
    void helpNamesEveryOption();
};

void TestOptions::nothing() {
    const Options options = parseOptions({});
    QCOMPARE(options.output, Output::Window);
    QVERIFY(!options.database && !options.schema && !options.load);
    QVERIFY(options.keepMeaning);
    QVERIFY(!options.strict);
}

void TestOptions::everything() {
    const Options options = parseOptions(
        {"--database", "a.db", "--load=-", "--classic", "--strict", "--run", "--format=csv"});
    QCOMPARE(options.output, Output::Run);
    QCOMPARE(options.database.value(), QStringLiteral("a.db"));
    QCOMPARE(options.load.value(), QStringLiteral("-"));
    QVERIFY(!options.keepMeaning);
    QVERIFY(options.strict);
    QCOMPARE(options.format, RowFormat::Csv);
    QCOMPARE(parseOptions({"--load", "a=b.sql"}).load.value(), QStringLiteral("a=b.sql"));
    QCOMPARE(parseOptions({"--load=a=b.sql"}).load.value(), QStringLiteral("a=b.sql"));
    QCOMPARE(parseOptions({"--load", "-x.sql"}).load.value(), QStringLiteral("-x.sql"));
}

void TestOptions::parameters() {
    const Options options = parseOptions({"--run", "--param", "x=1", "--param=:Name=a=b", "--param",
                                          "EMPTY=", "--param-null", "none", "--param", "P= --x "});
    using Value = std::optional<QString>;
    QCOMPARE(options.parameters.size(), 5);
    QCOMPARE(options.parameters.value("X"), Value("1"));
    QCOMPARE(options.parameters.value("NAME"), Value("a=b"));
    QCOMPARE(options.parameters.value("EMPTY"), Value(""));
    QVERIFY(options.parameters.contains("NONE") && !options.parameters.value("NONE"));
    QCOMPARE(options.parameters.value("P"), Value(" --x "));
}

void TestOptions::outputs_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("output");
    const auto row = [](const QStringList& arguments, Output output) {
        QTest::newRow(qPrintable(arguments.join(u' '))) << arguments << int(output);
    };
    row({"--print"}, Output::Print);
    row({"--state"}, Output::State);
    row({"--list", "f"}, Output::StateOfEach);
    row({"--list", "f", "--state"}, Output::StateOfEach);
    row({"--render", "a.PNG"}, Output::Render);
    row({"--render=a.b.svg"}, Output::Render);
    row({"--run", "--format", "json"}, Output::Run);
    row({"--help", "--print", "--run"}, Output::Help);
    row({"-h"}, Output::Help);
    row({"--version"}, Output::Version);
    row({"--schema", "s.json"}, Output::Window);
}

void TestOptions::outputs() {
    QFETCH(QStringList, arguments);
    QFETCH(int, output);
    QCOMPARE(int(parseOptions(arguments).output), output);
}

void TestOptions::wrongUse_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const QStringList& arguments, const char* message) {
        QTest::newRow(qPrintable(arguments.join(u' ')))
            << arguments << QString::fromLatin1(message);
    };
    row({"--foo"}, "unknown option \"--foo\"");
    row({"-print"}, "unknown option \"-print\"");
    row({"--prin"}, "unknown option \"--prin\"");
    row({"--"}, "unknown option \"--\"");
    row({"query.sql"}, "unexpected argument \"query.sql\"");
    row({"-"}, "unexpected argument \"-\"");
    row({""}, "unexpected argument \"\"");
    row({"--load"}, "--load needs a value");
    row({"--load="}, "--load needs a value");
    row({"--load", ""}, "--load needs a value");
    row({"--load", "--print"}, "--load needs a value");
    row({"--print=x"}, "--print takes no value");
    row({"--print", "--print"}, "--print is there twice");
    row({"--load", "a", "--load", "b"}, "--load is there twice");
    row({"--print", "--state"}, "--print and --state exclude each other");
    row({"--print", "--run"}, "--print and --run exclude each other");
    row({"--run", "--render", "a.png"}, "--run and --render exclude each other");
    row({"--list", "f", "--print"}, "--list and --print exclude each other");
    row({"--list", "f", "--load", "a"}, "--load and --list exclude each other");
    row({"--database", "a", "--schema", "b"}, "--database and --schema exclude each other");
    row({"--format", "csv"}, "--format goes with --run alone");
    row({"--print", "--format", "csv"}, "--format goes with --run alone");
    row({"--run", "--format", "xml"}, "unknown format \"xml\": it is table, csv or json");
    row({"--run", "--format", "CSV"}, "unknown format \"CSV\": it is table, csv or json");
    row({"--render", "a.jpg"}, "--render writes a file named .png or .svg, not \"a.jpg\"");
    row({"--render", "svg"}, "--render writes a file named .png or .svg, not \"svg\"");
    row({"--run", "--param"}, "--param needs a value");
    row({"--run", "--param", "X"}, "--param needs NAME=VALUE, not \"X\"");
    row({"--run", "--param", "=5"}, "--param needs NAME=VALUE, not \"=5\"");
    row({"--run", "--param-null="}, "--param-null needs a value");
    row({"--run", "--param", "x=1", "--param", ":X=2"}, "the parameter X is there twice");
    row({"--run", "--param", "X=1", "--param-null", "x"}, "the parameter X is there twice");
    row({"--param", "X=1"}, "--param goes with --run alone");
    row({"--print", "--param-null", "X"}, "--param-null goes with --run alone");
    row({"--schema", "s", "--run"}, "--run needs a database; a --schema file has no rows");
}

void TestOptions::wrongUse() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    try {
        (void)parseOptions(arguments);
        QFAIL("no error");
    } catch (const UsageError& error) {
        QCOMPARE(error.Message(), message);
    }
}

void TestOptions::helpNamesEveryOption() {
    const QString help = helpText();
    for (const char* name : {"--database", "--schema", "--load", "--list", "--classic", "--strict",
                             "--print", "--state", "--run", "--format", "--param", "--param-null",
                             "--render", "--help", "--version", "Exit status"}) {
        QVERIFY2(help.contains(QLatin1String(name)), name);
    }
    const QStringList lines = help.split(u'\n');
    for (const QString& line : lines) QVERIFY2(line.size() <= 100, qPrintable(line));
}

QTEST_GUILESS_MAIN(TestOptions)
#include "tst_app_options.moc"
