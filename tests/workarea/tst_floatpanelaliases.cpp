// SPDX-License-Identifier: MIT
// The names of boxes: how they are made unique, found and changed.
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

using orvtest::HostedBuilder;

class FloatPanelAliasesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- aliases

    void sameNameGetsNumbers() {
        HostedBuilder on;
        for (const char* alias : {"EMPLOYEE", "EMPLOYEE1", "EMPLOYEE2"}) {
            QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), alias);
            verifyBuilder(on.builder);
        }
        QCOMPARE(on.builder.WorkArea->Tables(2)->Alias(), QString());
        QCOMPARE(on.builder.WorkArea->Tables(0)->TableName, "EMPLOYEE");
    }

    void takenNumbersAreSkipped() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("DEPT"), "EMPLOYEE1");
        on.addTable("EMPLOYEE");
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE2");
        verifyBuilder(on.builder);
    }

    void numbersStandInsideTheQuotes_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("lower case") << "emp"
                                    << "\"emp\""
                                    << "\"emp1\"";
        QTest::newRow("blank") << "MY TABLE"
                               << "\"MY TABLE\""
                               << "\"MY TABLE1\"";
        QTest::newRow("quoted") << "\"my table\""
                                << "\"my table\""
                                << "\"my table1\"";
        QTest::newRow("quote inside") << "A\"B"
                                      << "\"A\"\"B\""
                                      << "\"A\"\"B1\"";
        QTest::newRow("dot") << "S.T"
                             << "\"S.T\""
                             << "\"S.T1\"";
        QTest::newRow("no ASCII") << QStringLiteral("\u00c4") << QStringLiteral("\"\u00c4\"")
                                  << QStringLiteral("\"\u00c41\"");
    }
    void numbersStandInsideTheQuotes() {
        QFETCH(QString, name);
        QFETCH(QString, first);
        QFETCH(QString, second);
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"A"});
        QCOMPARE(on.builder.WorkArea->AddPanel(name, &fields)->GetAlias(), first);
        QCOMPARE(on.builder.WorkArea->AddPanel(name, &fields)->GetAlias(), second);
        verifyBuilder(on.builder);
    }

    void closingFreesTheName() {
        HostedBuilder on;
        TorvQDTable* first = on.addTable("EMPLOYEE");
        on.addTable("EMPLOYEE");
        on.builder.ListOfTables->DeleteTable(first);
        QVERIFY(!on.table("EMPLOYEE"));
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE2");
        verifyBuilder(on.builder);
    }

    void renamingFreesTheNameAndTakesTheOther() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        on.builder.WorkArea->renameTable(box, "E");
        QVERIFY(!on.table("EMPLOYEE"));
        QCOMPARE(on.table("E"), box);
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        verifyBuilder(on.builder);
    }

    void clearingFreesAllNames() {
        HostedBuilder on;
        on.addTable("EMPLOYEE");
        on.addTable("EMPLOYEE");
        on.builder.Clear();
        QVERIFY(!on.table("EMPLOYEE1"));
        QCOMPARE(on.addTable("EMPLOYEE")->GetAlias(), "EMPLOYEE");
        verifyBuilder(on.builder);
    }

    void boxIsFoundByItsExactAlias() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        QCOMPARE(on.builder.WorkArea->GetTable("EMPLOYEE"), box);
        QVERIFY(!on.builder.WorkArea->GetTable("employee"));
        QVERIFY(!on.builder.WorkArea->GetTable(" EMPLOYEE"));
        QCOMPARE(on.builder.WorkArea->findTable("employee"), box);
        QCOMPARE(on.builder.WorkArea->findTable("\"EMPLOYEE\""), box);
    }

    void looseSearchWantsOneMatch() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "Pair");
        on.builder.WorkArea->renameTable(on.addTable("U"), "PAIR");
        QCOMPARE(on.builder.WorkArea->findTable("Pair"), on.table("Pair"));
        QVERIFY(!on.builder.WorkArea->findTable("pair"));
    }

    void emptyAliasStandsForTheOnlyBox() {
        HostedBuilder on;
        QVERIFY(!on.builder.WorkArea->GetTable(""));
        TorvQDTable* box = on.addTable("T");
        QCOMPARE(on.builder.WorkArea->GetTable(""), box);
        QCOMPARE(on.builder.WorkArea->GetTable("  "), box);
        on.addTable("U");
        QVERIFY(!on.builder.WorkArea->GetTable(""));
    }

    // --- renaming

    void typedTextBecomesAnAlias_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("alias");
        QTest::newRow("plain") << "E"
                               << "E";
        QTest::newRow("lower case") << "e_1$"
                                    << "e_1$";
        QTest::newRow("dots are dropped") << "A.B"
                                          << "AB";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("blanks") << "   "
                                << "";
        QTest::newRow("the table's name") << "EMPLOYEE"
                                          << "";
        QTest::newRow("the table's name behind a dot") << ".EMPLOYEE"
                                                       << "";
        QTest::newRow("the table's name in other case") << "employee"
                                                        << "employee";
        QTest::newRow("dots alone") << "..."
                                    << "";
        QTest::newRow("blank inside") << "my e"
                                      << "\"my e\"";
        QTest::newRow("digit first") << "1E"
                                     << "\"1E\"";
        QTest::newRow("no ASCII") << QStringLiteral("\u00e4") << QStringLiteral("\"\u00e4\"");
        QTest::newRow("quote inside") << "a\"b"
                                      << "\"a\"\"b\"";
        QTest::newRow("in quotes") << "\"my e\""
                                   << "\"my e\"";
        QTest::newRow("blank and dot") << "my.own e"
                                       << "\"myown e\"";
    }
    void typedTextBecomesAnAlias() {
        QFETCH(QString, typed);
        QFETCH(QString, alias);
        HostedBuilder on;
        TorvQDTable* box = on.addTable("EMPLOYEE");
        on.builder.WorkArea->renameTable(box, "OLD");
        on.tick("OLD", "SALARY");
        on.builder.WorkArea->renameTable(box, typed);
        QCOMPARE(box->Alias(), alias);
        QCOMPARE(box->GetAlias(), alias.isEmpty() ? "EMPLOYEE" : alias);
        verifyBuilder(on.builder);
    }

    void nameOfAQuotedTableClearsItsAlias_data() {
        QTest::addColumn<QString>("typed");
        QTest::newRow("in quotes") << "\"my table\"";
        QTest::newRow("without quotes") << "my table";
    }
    void nameOfAQuotedTableClearsItsAlias() {
        QFETCH(QString, typed);
        HostedBuilder on;
        TorvQDTable* box = on.addTable("my table");
        on.builder.WorkArea->renameTable(box, "M");
        on.builder.WorkArea->renameTable(box, typed);
        QCOMPARE(box->Alias(), QString());
        verifyBuilder(on.builder);
    }

    void renamingTellsOnceWithTheOldAlias() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        on.tick("T", "A");
        QStringList log;
        const TChangeStringEvent old = on.builder.WorkArea->OnChangeAlias;
        on.builder.WorkArea->OnChangeAlias = [&](QObject* item, const QString& oldAlias) {
            log << oldAlias + ">" + qobject_cast<TorvQDTable*>(item)->GetAlias();
            old(item, oldAlias);
        };
        on.changes = 0;
        on.builder.WorkArea->renameTable(box, "X");
        QCOMPARE(log, QStringList("T>X"));
        QCOMPARE(on.changes, 1);
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("X.A"));
        QCOMPARE(on.columns(), QStringList("A||X.A"));
        verifyBuilder(on.builder);
    }

    void sameAliasTellsNobody() {
        HostedBuilder on;
        TorvQDTable* box = on.addTable("T");
        int told = 0;
        on.builder.WorkArea->OnChangeAlias = [&](QObject*, const QString&) { ++told; };
        on.changes = 0;
        on.builder.WorkArea->renameTable(box, "T");
        on.builder.WorkArea->renameTable(box, "");
        on.builder.WorkArea->renameTable(box, "T.");
        QCOMPARE(told, 0);
        QCOMPARE(on.changes, 0);
    }

    void takenAliasIsRefused_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("named");
        QTest::newRow("plain") << "U"
                               << "U";
        QTest::newRow("quoted by the other") << "my u"
                                             << "my u";
        QTest::newRow("blank counts as the table's name") << "  "
                                                          << "T";
    }
    void takenAliasIsRefused() {
        QFETCH(QString, typed);
        QFETCH(QString, named);
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.WorkArea->renameTable(on.addTable("DEPT"), "my u");
        TorvQDTable* box = on.addTable("T");
        const QByteArray before = orvtest::visibleState(on.builder);
        on.changes = 0;
        QCOMPARE(orvtest::errorOf([&] { on.builder.WorkArea->renameTable(box, typed); }),
                 "Table with alias " + named + " already exist!");
        QCOMPARE(box->GetAlias(), "T1");
        QCOMPARE(on.changes, 0);
        QCOMPARE(orvtest::visibleState(on.builder), before);
    }

    void aliasesDifferInCase() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "e");
        TorvQDTable* box = on.addTable("U");
        on.builder.WorkArea->renameTable(box, "E");
        QCOMPARE(box->GetAlias(), "E");
        verifyBuilder(on.builder);
    }

    // The dots are dropped behind the test.
    void duplicatesAreLookedForWithTheDots() {
        HostedBuilder on;
        on.builder.WorkArea->renameTable(on.addTable("T"), "AB");
        TorvQDTable* box = on.addTable("U");
        on.builder.WorkArea->renameTable(box, "A.B");
        QCOMPARE(box->Alias(), "AB");
    }

    // An old alias catches every name that begins with it.
    void renamingAlsoCatchesNamesThatBeginWithTheOldAlias() {
        HostedBuilder on;
        const TDataSet fields = orvtest::stringFields({"NAME"});
        TorvQDTable* box = on.builder.WorkArea->AddPanel("T", &fields);
        on.builder.WorkArea->AddPanel("T2", &fields);
        on.tick("T", "NAME");
        on.tick("T2", "NAME");
        on.builder.WorkArea->renameTable(box, "X");
        QCOMPARE(on.builder.AllFields().names(), QStringList({"X.NAME", "X.NAME"}));
        QCOMPARE(on.builder.SelectedFields().names(), QStringList({"X.NAME", "X.NAME"}));
        QCOMPARE(on.columns(), QStringList({"NAME||X.NAME", "NAME||T2.NAME"}));
    }

    // A column may be listed by its bare name: no alias stands in it.
    void renamingLeavesBareNamesAlone() {
        HostedBuilder on;
        on.builder.LoadSQL("select salary from employee s");
        on.builder.WorkArea->renameTable(on.table("S"), "X");
        QCOMPARE(on.builder.SelectedFields().names(), QStringList("SALARY"));
        on.tick("X", "SALARY", false);
        QCOMPARE(on.columns(), QStringList());
        verifyBuilder(on.builder);
    }

    void strangerCannotBeRenamed() {
        HostedBuilder on;
        HostedBuilder other;
        TorvQDTable* box = other.addTable("T");
        on.builder.WorkArea->renameTable(box, "X");
        on.builder.WorkArea->renameTable(nullptr, "X");
        QCOMPARE(box->GetAlias(), "T");
    }
};

QTEST_MAIN(FloatPanelAliasesTest)
#include "tst_floatpanelaliases.moc"
