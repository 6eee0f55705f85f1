// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

// What the program does not need for an output, and so does not look for when it starts.
class TestProgramStart : public QObject, protected apptest::ProgramRun {
    Q_OBJECT

private Q_SLOTS:
    void textsNeedNoFonts_data();
    void textsNeedNoFonts();
    void pictureNeedsFonts();

private:
    [[nodiscard]] Result runWithoutFonts(const QStringList& arguments) const;
    [[nodiscard]] QString query() const {
        return written("query.sql", "select name from departments where department_no > 1");
    }
};

// Where there is no list of fonts, looking for them is heard.
apptest::ProgramRun::Result TestProgramStart::runWithoutFonts(const QStringList& arguments) const {
    qputenv("FONTCONFIG_FILE", file("none.conf").toUtf8());
    Result result = run(arguments);
    qunsetenv("FONTCONFIG_FILE");
    return result;
}

void TestProgramStart::textsNeedNoFonts_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("print") << QStringList{"--load", query(), "--print"};
    QTest::newRow("explain") << QStringList{"--load", query(), "--explain"};
    QTest::newRow("run") << QStringList{"--load", query(), "--run"};
    QTest::newRow("diff") << QStringList{"--diff", query(), query()};
}

// Looking for them takes longer than all the rest.
void TestProgramStart::textsNeedNoFonts() {
    QFETCH(QStringList, arguments);
    const Result result = runWithoutFonts(arguments);
    QCOMPARE(result.status, 0);
    QVERIFY(!result.output.isEmpty());
    QCOMPARE(result.errors, QByteArray());
}

void TestProgramStart::pictureNeedsFonts() {
#ifndef Q_OS_LINUX
    QSKIP("Only on Linux does Qt find fonts by Fontconfig, whose warning this looks for.");
#endif
    const Result result = runWithoutFonts({"--load", query(), "--render", file("picture.png")});
    QVERIFY(result.errors.contains("Fontconfig"));
}

QTEST_GUILESS_MAIN(TestProgramStart)
#include "tst_app_programstart.moc"
