// SPDX-License-Identifier: MIT
// Conditions, links and output columns that are kept but not written.
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDUndo.h"
#include "querybuilder/ORVQDValidate.h"
#include "support/ShownBuilder.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTreeWidget>
#include <QUndoStack>

using orvtest::errorOf;
using orvtest::HostedBuilder;
using orvtest::ShownBuilder;

class MutingTest : public QObject {
    Q_OBJECT

private:
    static TorvQDWhereRow& row(const HostedBuilder& on, const QList<int>& path) {
        TorvQDWhereRow* row = on.builder.WherePanel->rootRow();
        for (const int index : path) row = row->SubRows->Row(index);
        return *row;
    }
    static QString clause(HostedBuilder& on, const char* keyword) {
        for (const QString& line : on.builder.GetSQLStatment().split("\r\n")) {
            if (line.startsWith(QLatin1String(keyword))) return line;
        }
        return {};
    }
    static QString flatWhere(HostedBuilder& on) {
        return row(on, {}).GetSQLCondition(false).simplified().replace("( ", "(");
    }
    static QStringList whats(HostedBuilder& on) {
        QStringList texts;
        for (const orv::Finding& finding : on.builder.Validate()) {
            texts << finding.text.simplified() + ": " + finding.what;
        }
        return texts;
    }

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- conditions

    void mutedConditionIsNotWritten_data() {
        QTest::addColumn<QList<QList<int>>>("muted");
        QTest::addColumn<QString>("written");
        using Paths = QList<QList<int>>;
        QTest::newRow("none") << Paths{} << "((A = 1) and ((B = 2) or (C = 3)) and (D = 4))";
        QTest::newRow("first") << Paths{{0}} << "(((B = 2) or (C = 3)) and (D = 4))";
        QTest::newRow("last") << Paths{{2}} << "((A = 1) and ((B = 2) or (C = 3)))";
        QTest::newRow("in a group") << Paths{{1, 0}} << "((A = 1) and ((C = 3)) and (D = 4))";
        QTest::newRow("group") << Paths{{1}} << "((A = 1) and (D = 4))";
        QTest::newRow("all of a group") << Paths{{1, 0}, {1, 1}} << "((A = 1) and (D = 4))";
        QTest::newRow("all") << Paths{{0}, {1}, {2}} << "";
        QTest::newRow("all, one of them within") << Paths{{0}, {1, 0}, {1, 1}, {2}} << "";
    }
    void mutedConditionIsNotWritten() {
        using Paths = QList<QList<int>>;
        QFETCH(Paths, muted);
        QFETCH(QString, written);
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and (B = 2 or C = 3) and D = 4");
        for (const QList<int>& path : muted) row(on, path).SetMuted(true);
        QCOMPARE(flatWhere(on), written);
        QCOMPARE(on.builder.GetSQLStatment().contains("WHERE"), !written.isEmpty());
        for (const QList<int>& path : muted) row(on, path).SetMuted(false);
        QCOMPARE(flatWhere(on), "((A = 1) and ((B = 2) or (C = 3)) and (D = 4))");
    }

    void groupWithoutRowsIsStillAPlaceToFill() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWhereRow* group = row(on, {}).SubRows->AddRow();
        group->SetGroupOper("Any");
        QVERIFY(group->isWritten());
        row(on, {0}).SetMuted(true);
        QVERIFY(flatWhere(on).startsWith("("));
    }

    void collapsedGroupShowsWhatIsWritten() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and (B = 2 or C = 3)");
        TorvQDWhereRow& group = row(on, {1});
        group.SetExpanded(false);
        row(on, {1, 0}).SetMuted(true);
        group.refreshTexts();
        QCOMPARE(group.Controls[1]->GetText().simplified(), QString("((C = 3))"));
    }

    void copiesAreMutedToo() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        row(on, {0}).SetMuted(true);
        panel.setCurrentElement(row(on, {0}).Controls[0].get());
        panel.DuplicateCondition();
        QVERIFY(row(on, {1}).Muted);
    }

    void clipboardKeepsTheMark() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and (B = 2 or C = 3)");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        row(on, {1, 0}).SetMuted(true);
        panel.setCurrentElement(row(on, {1}).Controls[0].get());
        panel.CopyCondition();
        QCOMPARE(QGuiApplication::clipboard()->text().simplified(), QString("( (C = 3) )"));
        panel.setCurrentElement(row(on, {}).Controls[0].get());
        panel.PasteCondition();
        QCOMPARE(flatWhere(on), "((A = 1) and ((C = 3)) and ((C = 3)))");
        QCOMPARE(row(on, {2}).GroupOper, QString("Any"));
        QVERIFY(row(on, {2, 0}).Muted && !row(on, {2, 1}).Muted && !row(on, {2}).Muted);
        row(on, {2, 0}).SetMuted(false);
        QCOMPARE(flatWhere(on), "((A = 1) and ((C = 3)) and ((B = 2) or (C = 3)))");
    }

    void clipboardKeepsTheMarkOfTheRowItself_data() {
        QTest::addColumn<QList<int>>("path");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("unmuted");
        QTest::newRow("condition") << QList<int>{0} << "A = 1"
                                   << "(((B = 2) or (C = 3)) and (A = 1))";
        QTest::newRow("group") << QList<int>{1} << "( (B = 2) or (C = 3) )"
                               << "((A = 1) and ((B = 2) or (C = 3)))";
    }
    void clipboardKeepsTheMarkOfTheRowItself() {
        QFETCH(QList<int>, path);
        QFETCH(QString, text);
        QFETCH(QString, unmuted);
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and (B = 2 or C = 3)");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        panel.setCurrentElement(row(on, path).Controls[0].get());
        panel.MuteCondition();
        const QString muted = on.builder.GetSQLStatment();
        panel.CopyCondition();
        QCOMPARE(QGuiApplication::clipboard()->text().simplified(), text);
        panel.setCurrentElement(row(on, {}).Controls[0].get());
        panel.PasteCondition();
        QVERIFY(row(on, {2}).Muted);
        QCOMPARE(on.builder.GetSQLStatment(), muted);
        row(on, {2}).SetMuted(false);
        QCOMPARE(flatWhere(on), unmuted);
    }

    // Text that comes from elsewhere says nothing of muting, whatever was copied before.
    void textOfOthersIsNotMuted() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        row(on, {0}).SetMuted(true);
        panel.setCurrentElement(row(on, {0}).Controls[0].get());
        panel.CopyCondition();
        QGuiApplication::clipboard()->setText("B = 2");
        panel.PasteCondition();
        QVERIFY(row(on, {0}).Muted && !row(on, {1}).Muted);
        QCOMPARE(flatWhere(on), "((B = 2))");
    }

    void copyOfMutedRowsOnlyIsTheirText() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and (B = 2 or C = 3)");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        for (const int index : {0, 1}) row(on, {1, index}).SetMuted(true);
        on.changes = 0;
        panel.setCurrentElement(row(on, {1}).Controls[0].get());
        panel.CopyCondition();
        QCOMPARE(on.changes, 0);
        QCOMPARE(QGuiApplication::clipboard()->text().simplified(),
                 QString("( (B = 2) or (C = 3) )"));
        QVERIFY(row(on, {1, 0}).Muted && row(on, {1, 1}).Muted);
    }

    void rowsThatTheCataloguesDoNotHaveArePastedAsText() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        for (const char* rows : {R"({"field":"B","operator":"?","arguments":["2"],"muted":true})",
                                 R"({"group":"Some","rows":[],"muted":true})", "[]", "{}", "x"}) {
            auto* data = new QMimeData;
            data->setText("B = 2");
            data->setData("application/x-orv-conditions+json", rows);
            QGuiApplication::clipboard()->setMimeData(data);
            panel.setCurrentElement(row(on, {0}).Controls[0].get());
            panel.PasteCondition();
            QCOMPARE(flatWhere(on), "((A = 1) and (B = 2))");
            row(on, {}).SubRows->Delete(1);
        }
    }

    void groupMadeOfAMutedConditionIsMutedOnce() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and B = 2");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        panel.setCurrentElement(row(on, {1}).Controls[0].get());
        panel.MuteCondition();
        panel.MakeCompositCondition();
        QCOMPARE(flatWhere(on), "((A = 1))");
        row(on, {1}).SetMuted(false);
        QCOMPARE(flatWhere(on), "((A = 1) and ((B = 2)))");
    }

    void mutedRowsHaveNoProblems() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T");
        TorvQDWhereRow* group = row(on, {}).SubRows->AddRow();
        group->SetGroupOper("Any");
        const TorvQDWhereRow* inner = group->SubRows->AddRow();
        const TorvQDWherePanel& panel = *on.builder.WherePanel;
        QCOMPARE(panel.rowProblem(*inner), QString("This condition is not filled in."));
        group->SetMuted(true);
        QCOMPARE(panel.rowProblem(*inner), QString());
    }

    void keyMutesTheActiveCondition() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and B = 2");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        on.builder.PageCtrl->setCurrentWidget(panel.parentWidget());
        panel.setActiveElement(row(on, {1}).Controls[ekFieldName].get());
        const int before = on.changes;
        QTest::keyClick(&panel, Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(flatWhere(on), "((A = 1))");
        QCOMPARE(on.changes, before + 1);
        QTest::keyClick(&panel, Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(flatWhere(on), "((A = 1) and (B = 2))");
    }

    void rootIsNotMuted() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        panel.setCurrentElement(row(on, {}).Controls[0].get());
        QCOMPARE(errorOf([&] { panel.MuteCondition(); }), QString("Could not mute first row"));
    }

    void menuTellsWhatItDoes() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        on.builder.PageCtrl->setCurrentWidget(panel.parentWidget());
        auto* menu = panel.findChild<QMenu*>("RowMenu");
        QAction* item = menu->actions().last();
        panel.ButtonClick(*row(on, {0}).Controls[0], 0);
        QCOMPARE(item->text(), QString("Mute condition"));
        item->trigger();
        menu->close();
        QVERIFY(row(on, {0}).Muted);
        panel.ButtonClick(*row(on, {0}).Controls[0], 0);
        QCOMPARE(item->text(), QString("Unmute condition"));
        menu->close();
        panel.ButtonClick(*row(on, {}).Controls[0], 0);
        QVERIFY(!item->isEnabled());
        menu->close();
    }

    // --- links

    void mutedLinkIsNotWritten() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select T.A from T left join U on T.A = U.A and T.B = U.X");
        TorvQDWorkArea& area = *on.builder.WorkArea;
        area.muteLink(area.Links()[0], true);
        QCOMPARE(area.GetSQLStatment().simplified(), QString("T LEFT OUTER JOIN U ON (T.B = U.X)"));
        area.muteLink(area.Links()[1], true);
        QCOMPARE(area.GetSQLStatment().simplified(), QString("T, U"));
        area.muteLink(area.Links()[0], false);
        QCOMPARE(area.GetSQLStatment().simplified(), QString("T LEFT OUTER JOIN U ON (T.A = U.A)"));
    }

    // Whatever joins are left: what is muted is as if it did not exist.
    void mutedLinksAreAsIfTheyWereDeleted_data() {
        QTest::addColumn<bool>("keepsMeaning");
        QTest::newRow("meaning is kept") << true;
        QTest::newRow("order of stacking") << false;
    }
    void mutedLinksAreAsIfTheyWereDeleted() {
        QFETCH(bool, keepsMeaning);
        HostedBuilder on(keepsMeaning);
        on.builder.LoadSQL(
            "select T.A from T left join U on T.A = U.A and T.B = U.X right join DEPT on U.Y = "
            "DEPT.DEPT_NO join EMPLOYEE on EMPLOYEE.DEPT_NO = DEPT.DEPT_NO and T.C = "
            "EMPLOYEE.EMP_NO");
        const QByteArray state = on.builder.SaveState();
        const QString whole = on.builder.GetSQLStatment();
        const std::size_t links = on.builder.WorkArea->Links().size();
        QVERIFY(links >= 4);
        for (std::size_t mask = 0; mask < (1U << links); ++mask) {
            HostedBuilder other(keepsMeaning);
            other.builder.RestoreState(state);
            const std::vector<TorvQDLink*> present = on.builder.WorkArea->Links();
            const std::vector<TorvQDLink*> deleted = other.builder.WorkArea->Links();
            for (std::size_t link = 0; link < links; ++link) {
                const bool isChosen = (mask >> link & 1) != 0;
                on.builder.WorkArea->muteLink(present[link], isChosen);
                if (isChosen) other.builder.WorkArea->deleteLink(deleted[link]);
            }
            QCOMPARE(on.builder.GetSQLStatment(), other.builder.GetSQLStatment());
            QCOMPARE(on.builder.WorkArea->brokenCircles().size(),
                     other.builder.WorkArea->brokenCircles().size());
        }
        for (TorvQDLink* link : on.builder.WorkArea->Links()) {
            on.builder.WorkArea->muteLink(link, false);
        }
        QCOMPARE(on.builder.GetSQLStatment(), whole);
    }

    void joinWithATextStays() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select T.A from T join U on T.A = U.A and T.B > U.X + 1");
        TorvQDWorkArea& area = *on.builder.WorkArea;
        QCOMPARE(area.Links().size(), 1U);
        area.muteLink(area.Links()[0], true);
        QCOMPARE(area.GetSQLStatment().simplified(), QString("T INNER JOIN U ON (T.B > U.X + 1)"));
    }

    void circleIsOpenWhereALinkIsMuted() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select T.A from T left join U on T.A = U.A left join DEPT on U.X = DEPT.DEPT_NO");
        TorvQDWorkArea& area = *on.builder.WorkArea;
        TorvQDLink* link =
            area.AddLink(on.table("T"), on.table("DEPT"), on.table("T")->GetFieldItem("B"),
                         on.table("DEPT")->GetFieldItem("BUDGET"));
        QCOMPARE(area.brokenCircles().size(), 1U);
        area.muteLink(link, true);
        QVERIFY(area.brokenCircles().empty());
    }

    void linkIsMutedByKeyAndMenu() {
        ShownBuilder on(true);
        TorvQDLink* link = on.link("T", "B", "U", "X");
        on.changes = 0;
        on.area().selectObject(link);
        QTest::keyClick(&on.area(), Qt::Key_M, Qt::ControlModifier);
        QVERIFY(link->Muted);
        QCOMPARE(on.changes, 1);
        QMenu menu;
        link->PopupMenu(menu, 0, 0, htTClient);
        QCOMPARE(menu.actions().last()->text(), QString("Unmute link"));
        menu.actions().last()->trigger();
        QVERIFY(!link->Muted);
        QCOMPARE(on.changes, 2);
    }

    // --- columns

    // The rows are sorted by the place of a column among those that come out.
    void mutedColumnIsNotWritten_data() {
        QTest::addColumn<QList<int>>("muted");
        QTest::addColumn<QString>("written");
        QTest::newRow("none") << QList<int>{} << "SELECT A, B, C FROM T ORDER BY 3, 1 DESC";
        QTest::newRow("first") << QList<int>{1} << "SELECT B, C FROM T ORDER BY 2";
        QTest::newRow("middle") << QList<int>{2} << "SELECT A, C FROM T ORDER BY 2, 1 DESC";
        QTest::newRow("last") << QList<int>{3} << "SELECT A, B FROM T ORDER BY 1 DESC";
        QTest::newRow("sorted ones") << QList<int>{1, 3} << "SELECT B FROM T";
        QTest::newRow("but the last") << QList<int>{1, 2} << "SELECT C FROM T ORDER BY 1";
    }
    void mutedColumnIsNotWritten() {
        QFETCH(QList<int>, muted);
        QFETCH(QString, written);
        HostedBuilder on(true);
        on.builder.LoadSQL("select A, B, C from T order by C, A desc");
        const QString before = on.builder.GetSQLStatment();
        for (const int column : muted) on.grid()->SetMuted(column, true);
        QCOMPARE(on.builder.GetSQLStatment().simplified(), written);
        QVERIFY(on.table("T")->GetFieldItem("B")->Checked);
        for (const int column : muted) on.grid()->SetMuted(column, false);
        QCOMPARE(on.builder.GetSQLStatment(), before);
    }

    void mutedColumnsAreAsIfTheyWereDeleted() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select distinct T.A, T.B + 1 as X, max(T.C) as M, U.X as Y from T, U group by T.A, "
            "T.B + 1, U.X having max(T.C) > 1 order by M desc, X, T.A, Y");
        const QByteArray state = on.builder.SaveState();
        const orv::OutputColumns columns = on.grid()->columns();
        QCOMPARE(columns.size(), 4U);
        for (unsigned mask = 0; mask < 1U << columns.size(); ++mask) {
            HostedBuilder other(true);
            other.builder.RestoreState(state);
            orv::OutputColumns left;
            for (std::size_t column = 0; column < columns.size(); ++column) {
                const bool isChosen = (mask >> column & 1) != 0;
                on.grid()->SetMuted(int(column) + 1, isChosen);
                if (!isChosen) left.push_back(columns[column]);
            }
            other.grid()->setColumns(left);
            QCOMPARE(on.builder.GetSQLStatment(), other.builder.GetSQLStatment());
        }
    }

    // Sorting by what DISTINCT does not put out is no statement.
    void mutedColumnSortsNothingBesideDistinct() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select distinct T.A, T.B from T, U order by T.B");
        QCOMPARE(clause(on, "ORDER"), QString("ORDER BY T.B"));
        on.grid()->SetMuted(2, true);
        QCOMPARE(on.builder.GetSQLStatment(), QString("SELECT DISTINCT T.A\r\nFROM T,\r\nU"));
    }

    void mutedColumnGroupsNothing() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select DEPT_NO, EMP_NO, sum(SALARY) as S from EMPLOYEE group by DEPT_NO, EMP_NO "
            "order by S");
        QCOMPARE(clause(on, "GROUP"), QString("GROUP BY DEPT_NO, EMP_NO"));
        on.grid()->SetMuted(1, true);
        QCOMPARE(on.builder.GetSQLStatment().simplified(),
                 QString("SELECT EMP_NO, SUM( SALARY ) AS S FROM EMPLOYEE GROUP BY EMP_NO "
                         "ORDER BY 2"));
    }

    void conditionsOfGroupsWithoutGroupsAreTold() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select DEPT_NO, sum(SALARY) as S from EMPLOYEE group by DEPT_NO having sum(SALARY) > "
            "5");
        QVERIFY(on.builder.Validate().empty());
        on.grid()->SetMuted(2, true);
        QCOMPARE(on.builder.GetSQLStatment(), QString("SELECT DEPT_NO\r\nFROM EMPLOYEE"));
        const QStringList told = whats(on);
        QCOMPARE(told.size(), 2);
        QVERIFY(told[0].contains("This column is muted"));
        QVERIFY(told[1].contains("SALARY"));
        QVERIFY(told[1].endsWith("Without a GROUP BY list this condition is not written."));
    }

    void mutedSortingIsInNobodysWay() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A, B from T order by A");
        on.builder.setTailText("UNION SELECT X, A FROM U");
        QVERIFY(whats(on).join('\n').contains("Sorting cannot stand in front of UNION."));
        on.grid()->SetMuted(1, true);
        QVERIFY(!whats(on).join('\n').contains("Sorting"));
    }

    void mutedAggregateGroupsNothing() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select DEPT_NO, sum(SALARY) as S from EMPLOYEE group by DEPT_NO");
        QVERIFY(on.builder.GetSQLStatment().contains("GROUP BY"));
        on.grid()->SetMuted(2, true);
        QCOMPARE(on.builder.GetSQLStatment(), QString("SELECT DEPT_NO\r\nFROM EMPLOYEE"));
    }

    void mutedColumnNeedNotFitTheGroups() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select sum(SALARY) as S from EMPLOYEE");
        orv::OutputColumns columns = on.grid()->columns();
        columns.push_back({"X", {}, "SALARY + 1"});
        on.grid()->setColumns(columns);
        QVERIFY(errorOf([&] { (void)on.builder.GetSQLStatment(); }).contains("in 2 row"));
        on.grid()->SetMuted(2, true);
        QCOMPARE(clause(on, "SELECT"), QString("SELECT SUM( SALARY ) AS S"));
    }

    void columnIsMutedByKey() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A, B from T");
        on.builder.PageCtrl->setCurrentWidget(on.builder.SelectPanel->parentWidget());
        on.grid()->setCurrentIndex(on.grid()->model()->index(0, 0));
        on.changes = 0;
        QTest::keyClick(on.grid(), Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(on.changes, 1);
        QVERIFY(on.grid()->columns()[0].muted);
        const QModelIndex cell = on.grid()->model()->index(0, 0);
        QVERIFY(cell.data(Qt::FontRole).value<QFont>().strikeOut());
        QVERIFY(cell.data(Qt::ToolTipRole).toString().contains("Muted"));
        QVERIFY(cell.data(Qt::AccessibleTextRole).toString().endsWith(", muted"));
        QTest::keyClick(on.grid(), Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(clause(on, "SELECT"), QString("SELECT A,"));
    }

    void lastRowIsNotMuted() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T");
        on.changes = 0;
        for (const int index : {-1, 0, 2, 9}) on.grid()->SetMuted(index, true);
        QCOMPARE(on.changes, 0);
    }
};

QTEST_MAIN(MutingTest)
#include "tst_muting.moc"
