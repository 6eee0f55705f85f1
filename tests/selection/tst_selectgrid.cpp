// SPDX-License-Identifier: MIT
#include "data/NameList.h"
#include "selection/ORVQDSelectOrder.h"
#include "support/TestTools.h"

#include <QCheckBox>
#include <QHeaderView>

namespace {

/// A grid on a plain window, with the catalogue and the fields of a diagram.
class GridOnWindow {
public:
    GridOnWindow() : grid(&window) {
        aggregates = {QString(9, u' '), "SUM", "COUNT"};
        for (const char* name : {"O.PRICE", "O.CUSTNO", "PO.PRICE"}) fields.append(name);
        grid.AgrFuncs = &aggregates;
        grid.AllFields = &fields;
    }
    [[nodiscard]] QStringList sources() const {
        QStringList texts;
        for (const orv::OutputColumn& column : grid.columns()) texts << column.source;
        return texts;
    }

    QStringList aggregates;
    orv::NameList fields;
    QWidget window;
    TorvQDSelectGrid grid;
};

}  // namespace

class SelectGridTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void mustHaveAParent() {
        QCOMPARE(orvtest::errorOf([] { TorvQDSelectGrid grid(nullptr); }),
                 "Invalide parent for SelectGrids");
        QCOMPARE(orvtest::errorOf([] { TorvQDSelectPanel panel(nullptr); }),
                 "Invalide parent for OrderPanel");
    }

    void newGridHasItsHeaderAndOneEmptyRow() {
        const GridOnWindow on;
        QCOMPARE(on.grid.RowCount(), 2);
        QCOMPARE(on.grid.model()->rowCount(), 1);
        QCOMPARE(on.grid.model()->columnCount(), 3);
        const QStringList headers = {"Name of output field", "Agregate", "Name source field"};
        for (int column = 0; column < 3; ++column) {
            QCOMPARE(on.grid.Cells(column, 0), headers[column]);
            QCOMPARE(on.grid.model()->headerData(column, Qt::Horizontal).toString(),
                     headers[column]);
            QCOMPARE(on.grid.Cells(column, 1), QString());
        }
        QCOMPARE(on.grid.verticalHeader()->defaultSectionSize(), 20);
        QCOMPARE(on.grid.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    }

    void columnsShareTheWidth() {
        GridOnWindow on;
        on.window.resize(640, 400);
        on.grid.resize(600, 300);
        on.window.show();
        QCoreApplication::processEvents();
        const int width = on.grid.viewport()->width();
        QCOMPARE(on.grid.columnWidth(0), int(width * 0.4));
        QCOMPARE(on.grid.columnWidth(1), int(width * 0.1));
        QCOMPARE(on.grid.columnWidth(0) + on.grid.columnWidth(1) + on.grid.columnWidth(2), width);
    }

    void checkingAppendsARow() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        QCOMPARE(on.grid.RowCount(), 3);
        QCOMPARE(on.grid.Cells(0, 1), "PRICE");
        QCOMPARE(on.grid.Cells(1, 1), QString());
        QCOMPARE(on.grid.Cells(2, 1), "O.PRICE");
        QCOMPARE(on.grid.Cells(2, 2), QString());
        QCOMPARE(on.grid.model()->index(0, 2).data().toString(), "O.PRICE");
    }

    void checkingTwiceGivesTwoRowsAndUncheckingRemovesBoth() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        on.grid.CheckField("O.CUSTNO");
        on.grid.CheckField("O.PRICE");
        QCOMPARE(on.sources(), QStringList({"O.PRICE", "O.CUSTNO", "O.PRICE"}));
        on.grid.UnCheckField("O.PRICE");
        QCOMPARE(on.sources(), QStringList("O.CUSTNO"));
        QCOMPARE(on.grid.RowCount(), 3);
        QCOMPARE(on.grid.model()->rowCount(), 2);
    }

    void uncheckingComparesExactly() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        for (const char* name : {"o.price", "PRICE", "O.PRICE ", "O.PRIC"}) {
            on.grid.UnCheckField(name);
        }
        QCOMPARE(on.sources(), QStringList("O.PRICE"));
    }

    void cellsOutsideTheGridAreEmpty() {
        const GridOnWindow on;
        QCOMPARE(on.grid.Cells(0, -1), QString());
        QCOMPARE(on.grid.Cells(3, 1), QString());
        QCOMPARE(on.grid.Cells(0, 99), QString());
    }

    void createFieldName_data() {
        QTest::addColumn<QString>("aggregate");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("name");
        QTest::newRow("aggregate") << "SUM"
                                   << "O.PRICE"
                                   << "SUM_OF_PRICE";
        QTest::newRow("plain") << ""
                               << "O.PRICE"
                               << "PRICE";
        QTest::newRow("no full stop") << ""
                                      << "PRICE"
                                      << "PRICE";
    }
    void createFieldName() {
        QFETCH(QString, aggregate);
        QFETCH(QString, source);
        QFETCH(QString, name);
        QCOMPARE(TorvQDSelectGrid::CreateFieldName(aggregate, source), name);
    }

    // A plain text search: PO.PRICE becomes PORD.PRICE.
    void aliasIsReplacedAsText_data() {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("oldAlias");
        QTest::addColumn<QString>("newAlias");
        QTest::addColumn<QString>("after");
        QTest::newRow("field") << "O.PRICE"
                               << "O"
                               << "ORD"
                               << "ORD.PRICE";
        QTest::newRow("ends with the alias") << "PO.PRICE"
                                             << "O"
                                             << "ORD"
                                             << "PORD.PRICE";
        QTest::newRow("every mention") << "O.A+O.B"
                                       << "O"
                                       << "ORD"
                                       << "ORD.A+ORD.B";
        QTest::newRow("another alias") << "T.PRICE"
                                       << "O"
                                       << "ORD"
                                       << "T.PRICE";
        QTest::newRow("same alias") << "O.PRICE"
                                    << "O"
                                    << "O"
                                    << "O.PRICE";
        QTest::newRow("new ends with old") << "O.A+O.B"
                                           << "O"
                                           << "XO"
                                           << "XO.A+XO.B";
        QTest::newRow("new ends with old, twice") << "O.A"
                                                  << "O"
                                                  << "OO"
                                                  << "OO.A";
        QTest::newRow("found again") << "AA.X"
                                     << "A"
                                     << "B"
                                     << "AB.X";
    }
    void aliasIsReplacedAsText() {
        QFETCH(QString, source);
        QFETCH(QString, oldAlias);
        QFETCH(QString, newAlias);
        QFETCH(QString, after);
        GridOnWindow on;
        on.grid.CheckField(source);
        const QString name = on.grid.Cells(0, 1);
        on.grid.ChangeAlias(newAlias, oldAlias);
        QCOMPARE(on.grid.Cells(2, 1), after);
        QCOMPARE(on.grid.Cells(0, 1), name);
        QCOMPARE(on.grid.model()->index(0, 2).data().toString(), after);
    }

    void rowsAreNamedForSorting() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        on.grid.CheckField("LOWER(X)");
        on.grid.CheckField("");
        QCOMPARE(on.grid.GetFieldName(1), "O.PRICE");
        QCOMPARE(on.grid.GetFieldName(2), "2");
        QCOMPARE(on.grid.GetFieldName(3), QString());
    }

    void sourceOfASortedFieldGivesItsOutputName() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        QCOMPARE(on.grid.GetFieldAlias("O.PRICE"), "PRICE");
        QCOMPARE(on.grid.GetFieldAlias("o.price"), QString());
        QCOMPARE(on.grid.GetFieldAlias("O.CUSTNO"), QString());
    }

    void textsComeFromTheRows() {
        GridOnWindow on;
        QCOMPARE(on.grid.GetSQLStatment().select, QString());
        on.grid.CheckField("O.PRICE");
        on.grid.CheckField("PO.PRICE");
        const orv::SelectTexts texts = on.grid.GetSQLStatment();
        QCOMPARE(texts.select, "O.PRICE,\r\nPO.PRICE");
        QVERIFY(!texts.aggregated);
    }

    void clearingLeavesOneEmptyRow() {
        GridOnWindow on;
        on.grid.CheckField("O.PRICE");
        on.grid.ClearContents();
        QCOMPARE(on.grid.RowCount(), 2);
        QCOMPARE(on.grid.model()->rowCount(), 1);
        QCOMPARE(on.grid.Cells(2, 1), QString());
    }

    void numbersOfNamesAreTheSameInEachGrid() {
        const GridOnWindow one;
        const GridOnWindow other;
        for (int draw = 0; draw < 50; ++draw) {
            const int number = one.grid.randomBelow100();
            QCOMPARE(number, other.grid.randomBelow100());
            QVERIFY(number >= 0 && number < 100);
        }
    }

    // --- the panel

    void panelHasTheOptionAboveTheGrid() {
        QWidget window;
        const TorvQDSelectPanel panel(&window);
        QCOMPARE(panel.distinctBox()->text(), "Include only unique records");
        QVERIFY(panel.grid());
        QCOMPARE(panel.focusPolicy(), Qt::NoFocus);
        QCOMPARE(panel.GetDistinct(), 0);
    }

    void distinctIsMinusOne_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("distinct");
        QTest::newRow("off") << 0 << 0;
        QTest::newRow("all bits") << -1 << -1;
        QTest::newRow("one") << 1 << -1;
    }
    void distinctIsMinusOne() {
        QFETCH(int, value);
        QFETCH(int, distinct);
        QWidget window;
        TorvQDSelectPanel panel(&window);
        panel.SetDistinct(value == 0 ? 1 : 0);
        panel.SetDistinct(value);
        QCOMPARE(panel.GetDistinct(), distinct);
        QCOMPARE(panel.distinctBox()->isChecked(), distinct != 0);
    }

    void clearingThePanelKeepsTheOption() {
        QWidget window;
        TorvQDSelectPanel panel(&window);
        panel.SetDistinct(-1);
        panel.grid()->CheckField("O.PRICE");
        panel.ClearContents();
        QCOMPARE(panel.GetDistinct(), -1);
        QCOMPARE(panel.grid()->RowCount(), 2);
    }
};

QTEST_MAIN(SelectGridTest)
#include "tst_selectgrid.moc"
