// SPDX-License-Identifier: MIT
// What must not be lost between a statement, the diagram and the grid: names in their spellings,
// numbers, and the state after a handler of the host raised.
#include "core/Error.h"
#include "support/BuilderTools.h"

#include <QTest>

using orvtest::HostedBuilder;

class MeaningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The box has the field "CustomerId", the statement calls it customerid.
    void bareNameInAnotherSpellingFollowsItsTick() {
        HostedBuilder on(true);
        addMixedTable(on);
        on.builder.LoadSQL(QStringLiteral("select customerid from mixed"));
        QCOMPARE(on.findings(), QStringList());
        TorvQDTable* box = on.builder.WorkArea->Tables(0);
        QVERIFY(box->Items[0]->Checked);
        box->SetFieldState(2);
        QCOMPARE(on.columns().size(), 2);
        box->Items[0]->SetCheck(false);
        QCOMPARE(on.columns().size(), 1);
        box->CloseTable();
        QCOMPARE(on.columns(), QStringList());
        QVERIFY(on.builder.SelectedFields().isEmpty());
    }

    // A number is no field, though a column may be called so.
    void numberIsNoField() {
        HostedBuilder on(true);
        const TDataSet fields(TFieldDefs{{QStringLiteral("1"), ftInteger}});
        answer(on, fields);
        on.builder.LoadSQL(QStringLiteral("select 1 from mixed"));
        QVERIFY(!on.builder.WorkArea->Tables(0)->Items[0]->Checked);
        QVERIFY(on.builder.SelectedFields().isEmpty());
    }

    void aliasThatIsAKeywordIsQuoted() {
        HostedBuilder on(true);
        TorvQDTable* box = on.addTable(QStringLiteral("T"));
        on.tick(QStringLiteral("T"), QStringLiteral("A"));
        on.builder.WorkArea->renameTable(box, QStringLiteral("union"));
        QCOMPARE(box->GetAlias(), QStringLiteral("\"union\""));
        const QString text = on.builder.GetSQLStatment();
        HostedBuilder other(true);
        other.builder.LoadSQL(text);
        QCOMPARE(other.findings(), QStringList());
    }

    // 1.5 is no position: the second column is grouped by, and the own text is loaded again.
    void numberThatIsNoPositionIsGrouped() {
        HostedBuilder on(true);
        on.builder.LoadSQL(QStringLiteral("select T.A, 1.5, sum(T.B) from T group by T.A, 2"));
        QCOMPARE(on.findings(), QStringList());
        HostedBuilder other(true);
        const QString written = on.builder.GetSQLStatment();
        other.builder.LoadSQL(written);
        QCOMPARE(other.findings(), QStringList());
        QCOMPARE(other.builder.GetSQLStatment(), written);
    }

    // Some databases sort by T.A, some by T.B, and some refuse it.
    void sortNameOfTwoColumnsIsTold() {
        HostedBuilder on(true);
        on.builder.LoadSQL(QStringLiteral("select A, T.B as a from T order by a"));
        QCOMPARE(on.findings(), QStringList("a"));
        on.builder.LoadSQL(QStringLiteral("select A, T.B, T.A as a from T order by B"));
        QCOMPARE(on.findings(), QStringList());
    }

    // The comparisons of the second ON are written in two lines, without AND.
    void onThatSpreadsOverTwoLinesIsHeld() {
        HostedBuilder on(true);
        on.builder.LoadSQL(QStringLiteral(
            "select T.A from T, U join DEPT on DEPT.DEPT_NO = T.A and DEPT.BUDGET = U.X"));
        QCOMPARE(on.findings(), QStringList());
    }

    // Turning it into a comparison of the first join would preserve other rows.
    void comparisonOfEarlierTablesInAnOuterJoinChangesNothingSilently() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            QStringLiteral("select T.A from T join U on U.A = T.A "
                           "left join DEPT on DEPT.DEPT_NO = T.A and U.X = T.B"));
        const QString written = on.builder.GetSQLStatment();
        QVERIFY(written.contains(QStringLiteral("INNER JOIN U")));
        const int line = int(written.indexOf(QStringLiteral("LEFT OUTER JOIN DEPT")));
        const bool isKept = written.indexOf(QStringLiteral("U.X")) > line;
        QVERIFY(isKept || !on.findings().isEmpty());
    }

    // The next change is told although a notification raised in the middle of this one.
    void changeEndsWhenANotificationRaises() {
        HostedBuilder on;
        const TAddEvent own = on.builder.WorkArea->OnAddTable;
        on.builder.WorkArea->OnAddTable = [](QObject*, QObject*) {
            throw orv::Error(QStringLiteral("slot"));
        };
        QVERIFY_THROWS_EXCEPTION(orv::Error, on.addTable(QStringLiteral("T")));
        on.builder.WorkArea->OnAddTable = own;
        on.changes = 0;
        on.builder.setTailText(QStringLiteral("LIMIT 1"));
        QCOMPARE(on.changes, 1);
    }

    void emptyingTheDiagramIsTold() {
        HostedBuilder on;
        on.addTable(QStringLiteral("T"));
        on.changes = 0;
        on.builder.WorkArea->ClearContents();
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void renamingWhatNoColumnUsesLeavesTheGridAlone() {
        HostedBuilder on;
        on.addTable(QStringLiteral("T"));
        on.changes = 0;
        on.grid()->ChangeAlias(QStringLiteral("X"), QStringLiteral("Y"));
        QCOMPARE(on.changes, 0);
    }

    // What lies beyond the view would be selected without anybody seeing it.
    void newBoxIsScrolledIntoView() {
        HostedBuilder on;
        on.builder.resize(400, 400);
        on.builder.show();
        for (int table = 0; table < 8; ++table) on.addTable(QStringLiteral("T"));
        const QPoint scroll = on.builder.WorkArea->scrollPosition();
        const TRect bounds = on.builder.WorkArea->Tables(0)->GetBoundsRect();
        QVERIFY(bounds.Left >= scroll.x());
        QVERIFY(bounds.Right <= scroll.x() + on.builder.WorkArea->viewport()->width());
    }

private:
    static void answer(HostedBuilder& on, const TDataSet& fields) {
        on.builder.OnGetTableFields = [fields](const QString&, std::unique_ptr<TDataSet>& dataSet,
                                               std::unique_ptr<TParams>&) {
            dataSet = std::make_unique<TDataSet>(fields);
        };
    }
    static void addMixedTable(HostedBuilder& on) {
        answer(on, TDataSet(TFieldDefs{{QStringLiteral("CustomerId"), ftInteger},
                                       {QStringLiteral("Up"), ftInteger}}));
    }
};

QTEST_MAIN(MeaningTest)
#include "tst_meaning.moc"
