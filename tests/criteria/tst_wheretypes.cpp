// SPDX-License-Identifier: MIT
// Whether the types of a condition's sides go together.
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"

#include <QLocale>
#include <QTest>

using orvtest::HostedBuilder;

namespace {

TDataSet typedFields() {
    return TDataSet(TFieldDefs{{"I", ftInteger},
                               {"S", ftSmallint},
                               {"F", ftFloat},
                               {"C", ftString},
                               {"M", ftFixedChar},
                               {"D", ftDate},
                               {"D2", ftDate},
                               {"B", ftBoolean}});
}

}  // namespace

class WhereTypesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void fieldTypes() {
        HostedBuilder on;
        on.builder.ListOfTables->AddTable("T", typedFields());
        const TorvQDWherePanel* panel = on.builder.WherePanel;
        TFieldType type = ftUnknown;
        QVERIFY(panel->GetFieldType("T.F", type));
        QCOMPARE(type, ftFloat);
        QVERIFY(panel->GetFieldType(" t.c ", type));
        QCOMPARE(type, ftString);
        type = ftDate;
        QVERIFY(!panel->GetFieldType("T.NONE", type));
        QVERIFY(!panel->GetFieldType("X.F", type));
        QVERIFY(!panel->GetFieldType("5", type));
        QVERIFY(!panel->GetFieldType(QString(9, u' '), type));
        QCOMPARE(type, ftDate);
    }

    void panelOutsideABuilderKnowsNoTypes() {
        TorvTabSheet sheet;
        const TorvQDWherePanel panel(&sheet);
        TFieldType type = ftUnknown;
        QCOMPARE(orvtest::errorOf([&] { (void)panel.GetFieldType("T.A", type); }),
                 "Fatal Error! Class TorvQueryBuilder not found");
    }

    void typesOfBothSides_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("fits");
        const auto row = [](const char* field, const char* value, bool fits) {
            QTest::addRow("%s and %s", field, value)
                << QString::fromLatin1(field) << QString::fromLatin1(value) << fits;
        };
        row("T.I", "12", true);
        row("T.I", "-12", true);
        row("T.I", "12a", false);
        row("T.I", "1.5", false);
        row("T.I", "1,000", false);
        row("T.I", "NULL", false);
        row("T.I", "         ", true);
        row("T.I", "select max(x) from u", true);
        row("T.I", "  SELECT 1", true);
        row("T.I", "SeLeCt 1", true);
        row("T.I", "(SELECT 1)", false);
        row("T.I", "T.S", true);
        row("T.I", "T.F", false);
        row("T.I", "T.C", false);
        row("T.F", "1.5", true);
        row("T.F", "12", true);
        row("T.F", "1e3", true);
        row("T.F", "1,000.5", false);
        row("T.F", "INF", false);
        row("T.F", "NAN", false);
        row("T.F", "select avg(x) from u", true);
        row("T.F", "SeLeCt 1", true);
        row("T.F", "x", false);
        row("T.F", "T.I", false);
        row("T.C", "anything 'at' all", true);
        row("T.C", "5", true);
        row("T.C", "select max(x) from u", true);
        row("T.C", "SeLeCt 1", true);
        row("T.C", "T.M", true);
        row("T.C", "T.I", false);
        row("T.D", "'1995-01-01'", false);
        row("T.D", "Select 1", true);
        row("T.D", "T.D2", true);
        row("T.D", "T.B", false);
        row("T.D", "SeLeCt max(x) from u", true);
        row("T.B", "TRUE", false);
        row("T.B", "select max(x) from u", true);
        row("T.B", "SeLeCt 1", true);
        row("12a", "T.I", false);
        row("12", "T.I", true);
        row("5", "'x'", true);
        row("X.NONE", "'x'", true);
    }
    void typesOfBothSides() {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(bool, fits);
        HostedBuilder on;
        on.builder.ListOfTables->AddTable("T", typedFields());
        TorvQDWherePanel* panel = on.builder.WherePanel;
        TorvQDWhereRow* row = panel->rootRow()->SubRows->AddRow();
        row->FieldName = field;
        row->Arguments = QStringList(value);
        QCOMPARE(panel->CheckTypeMisMatch("not looked at", *row->Controls[5]), fits);
        QCOMPARE(panel->CheckTypeMisMatch({}, *row->Controls[2]), fits);
        QVERIFY(row->Valid);
    }

    void everyArgumentIsChecked() {
        HostedBuilder on;
        on.builder.ListOfTables->AddTable("T", typedFields());
        TorvQDWherePanel* panel = on.builder.WherePanel;
        TorvQDWhereRow* row = panel->rootRow()->SubRows->AddRow();
        row->setOperator(on.builder.Operators->FindName("BETWEEN"));
        row->FieldName = "T.I";
        row->Arguments = QStringList({"1", "x"});
        QVERIFY(!panel->CheckTypeMisMatch({}, *row->Controls[2]));
        row->Arguments = QStringList({"1", "2"});
        QVERIFY(panel->CheckTypeMisMatch({}, *row->Controls[2]));
        // The first argument that is a field gives the type.
        row->FieldName = "5";
        row->Arguments = QStringList({"T.I", "T.C"});
        QVERIFY(!panel->CheckTypeMisMatch({}, *row->Controls[2]));
    }

    void numbersOfTheUsersLanguageFitToo() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        HostedBuilder on;
        on.builder.ListOfTables->AddTable("T", typedFields());
        TorvQDWherePanel* panel = on.builder.WherePanel;
        TorvQDWhereRow* row = panel->rootRow()->SubRows->AddRow();
        const auto fits = [&](const char* field, const char* value) {
            row->FieldName = QString::fromLatin1(field);
            row->Arguments = QStringList(QString::fromLatin1(value));
            return panel->CheckTypeMisMatch({}, *row->Controls[2]);
        };
        const QList<bool> results = {fits("T.F", "1,5"), fits("T.F", "1.5"), fits("T.F", "1.000,5"),
                                     fits("T.I", "1.000"), fits("T.I", "1000")};
        QLocale::setDefault(before);
        QCOMPARE(results, QList<bool>({true, true, false, false, true}));
    }
};

QTEST_MAIN(WhereTypesTest)
#include "tst_wheretypes.moc"
