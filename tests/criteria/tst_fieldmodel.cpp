// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldModel.h"
#include "support/PagesHostStandIn.h"
#include "support/TestTools.h"

#include <QAbstractItemModelTester>

using orv::FieldModel;
using orvtest::PagesHostStandIn;

namespace {

QString textOf(const QModelIndex& index, int role = Qt::DisplayRole) {
    return index.data(role).toString();
}

// "T: A B" for each table.
QStringList shown(const FieldModel& model) {
    QStringList lines;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex table = model.index(row, 0);
        QStringList names;
        for (int field = 0; field < model.rowCount(table); ++field) {
            names << textOf(model.index(field, 0, table));
        }
        lines << textOf(table) + u':' + names.join(u' ');
    }
    return lines;
}

}  // namespace

class FieldModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void tablesAndFieldsAreInOrder() {
        PagesHostStandIn host;
        host.addTable("b", {"Z", "a", "M"});
        host.addTable("C", {});
        host.addTable("A", {"X"});
        FieldModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        QCOMPARE(model.rowCount(), 0);
        model.fill(host);
        QCOMPARE(shown(model), QStringList({"A:X", "b:a M Z", "C:"}));
        QCOMPARE(model.shownCount(), 7);
    }

    void fieldsHaveQualifiedNamesAndTablesHaveNone() {
        PagesHostStandIn host;
        host.addTable("T", {"B", "A"}, ftInteger);
        FieldModel model;
        model.fill(host);
        const QModelIndex table = model.index(0, 0);
        const QModelIndex field = model.index(1, 0, table);
        QVERIFY(model.isTable(table));
        QVERIFY(!model.isTable(field));
        QVERIFY(!model.isTable({}));
        QCOMPARE(model.qualifiedName(table), "");
        QCOMPARE(model.qualifiedName({}), "");
        QCOMPARE(model.qualifiedName(field), "T.B");
        QCOMPARE(field.parent(), table);
        QCOMPARE(model.firstField(), model.index(0, 0, table));
    }

    void picturesTypesAndTips() {
        PagesHostStandIn host;
        host.addTable("T", {"N"}, ftInteger);
        host.addTable("U", {"D"}, ftDateTime);
        host.addTable("V", {"A<b>"}, ftUnknown);
        FieldModel model;
        model.fill(host);
        const auto field = [&](int table) { return model.index(0, 0, model.index(table, 0)); };
        const auto picture = [](const QModelIndex& index) {
            return index.data(Qt::DecorationRole).value<QIcon>().cacheKey();
        };
        QCOMPARE(picture(model.index(0, 0)), host.fieldImages()[0].cacheKey());
        QCOMPARE(picture(field(0)), host.fieldImages()[1].cacheKey());
        QCOMPARE(textOf(field(0), FieldModel::TypeRole), "Integer");
        QCOMPARE(textOf(field(0), Qt::ToolTipRole), "<qt>T.N: Integer</qt>");
        QCOMPARE(textOf(field(1), FieldModel::TypeRole), "Date&Time");
        QCOMPARE(textOf(field(2), FieldModel::TypeRole), "");
        QCOMPARE(textOf(field(2), Qt::ToolTipRole), "<qt>V.A&lt;b&gt;</qt>");
        QCOMPARE(textOf(model.index(0, 0), FieldModel::TypeRole), "");
    }

    void filter_data() {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("left");
        const auto row = [](const char* filter, const QStringList& left) {
            QTest::newRow(filter) << QString::fromLatin1(filter) << left;
        };
        row("", {"DEPT:DEPT_NO NAME", "EMPTY:", "STAFF:EMP_NO NAME SALARY"});
        row("sal", {"STAFF:SALARY"});
        row("NAME", {"DEPT:NAME", "STAFF:NAME"});
        row("Dept", {"DEPT:DEPT_NO NAME"});
        row("f.n", {"STAFF:NAME"});
        row("staff.", {"STAFF:EMP_NO NAME SALARY"});
        row("emp", {"EMPTY:", "STAFF:EMP_NO"});
        row("none", {});
    }
    void filter() {
        QFETCH(QString, filter);
        QFETCH(QStringList, left);
        PagesHostStandIn host;
        host.addTable("STAFF", {"SALARY", "EMP_NO", "NAME"});
        host.addTable("EMPTY", {});
        host.addTable("DEPT", {"DEPT_NO", "NAME"});
        FieldModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.fill(host);
        model.setFilter("x");
        model.setFilter(filter);
        QCOMPARE(shown(model), left);
    }

    void firstFieldIsTheFirstThatIsLeft() {
        PagesHostStandIn host;
        host.addTable("NONE", {});
        host.addTable("U", {"B", "A"});
        FieldModel model;
        QVERIFY(!model.firstField().isValid());
        model.fill(host);
        QCOMPARE(model.qualifiedName(model.firstField()), "U.A");
        model.setFilter("b");
        QCOMPARE(model.qualifiedName(model.firstField()), "U.B");
        model.setFilter("none");
        QVERIFY(!model.firstField().isValid());
    }

    void holdsWhatWasThereWhenItWasFilled() {
        FieldModel model;
        {
            PagesHostStandIn host;
            host.addTable("T", {"B", "A"});
            model.fill(host);
        }
        QCOMPARE(shown(model), QStringList("T:A B"));
        model.setFilter("B");
        QCOMPARE(shown(model), QStringList("T:B"));
        model.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void fillingAgainForgetsTheFilter() {
        PagesHostStandIn host;
        host.addTable("T", {"A"});
        FieldModel model;
        model.fill(host);
        model.setFilter("x");
        model.fill(host);
        QCOMPARE(shown(model), QStringList("T:A"));
    }
};

QTEST_MAIN(FieldModelTest)
#include "tst_fieldmodel.moc"
