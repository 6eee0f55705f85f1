// SPDX-License-Identifier: MIT
#include "criteria/LaidOut.h"

#include <QTest>

#include <random>

using namespace orvtest;

namespace {

QList<TorvQDWhereRow*> allRows(TorvQDWhereRow* from) {
    QList<TorvQDWhereRow*> rows = {from};
    for (int index = 0; index < from->SubRows->GetCount(); ++index) {
        rows += allRows(from->SubRows->Row(index));
    }
    return rows;
}

}  // namespace

class ConditionUpdatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- no more work than is needed

    void oneEditMeasuresOneRow() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        for (int index = 0; index < 200; ++index) on.condition(group);
        on.layout.ensure();
        QCOMPARE(on.measured(), 0);
        QVERIFY(!on.layout.ensure());
        on.rename(group->SubRows->Row(100), "T.LONGER");
        QVERIFY(on.layout.isStale());
        QCOMPARE(on.measured(), 1);
        QVERIFY(!on.layout.isStale());
        QCOMPARE(brokenPlace(on), QString());
        group->SubRows->Row(7)->setOperator(on.operators.FindName("BETWEEN"));
        QCOMPARE(on.measured(), 1);
        QCOMPARE(brokenPlace(on), QString());
        on.rename(group->SubRows->Row(3), "T.X");
        on.rename(group->SubRows->Row(3), "T.Y");
        on.rename(group->SubRows->Row(4), "T.Z");
        QCOMPARE(on.measured(), 2);
    }

    void newRowAtTheEndMeasuresOneRow() {
        LaidOut on;
        for (int index = 0; index < 200; ++index) on.condition(on.root);
        QCOMPARE(on.measured(), 201);
        on.condition(on.root);
        QCOMPARE(on.measured(), 1);
    }

    void deletingARowMeasuresThoseThatGetAnotherNumber() {
        LaidOut on;
        for (int index = 0; index < 9; ++index) on.condition(on.root);
        on.layout.ensure();
        on.root->SubRows->Delete(5);
        QCOMPARE(on.measured(), 3);
        QCOMPARE(on.root->SubRows->Row(5)->Controls[0]->GetText(), "6.");
        QCOMPARE(brokenPlace(on), QString());
    }

    void insertingARowMeasuresItsFollowersWithWhatIsInThem() {
        LaidOut on;
        on.condition(on.root);
        TorvQDWhereRow* group = on.group(on.root);
        const TorvQDWhereRow* inner = on.condition(group);
        on.layout.ensure();
        on.root->SubRows->Insert(1);
        QCOMPARE(on.measured(), 3);
        QCOMPARE(inner->Controls[0]->GetText(), "3.1.");
        QCOMPARE(brokenPlace(on), QString());
    }

    void rowsThatMoveIntoAGroupGetItsIndent() {
        LaidOut on;
        TorvQDWhereRow* row = on.condition(on.root);
        TorvQDWhereRow* group = on.group(on.root);
        on.layout.ensure();
        row->SetCollection(group->SubRows.get());
        QCOMPARE(on.measured(), 2);  // the group is the first one now
        QCOMPARE(row->GetLeftBound(), 45);
        QCOMPARE(row->Controls[0]->GetText(), "1.1.");
    }

    void collapsingMeasuresTheGroupAlone() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        for (int index = 0; index < 50; ++index) on.condition(group);
        on.layout.ensure();
        group->SetExpanded(false);
        QCOMPARE(on.measured(), 1);
        group->SetExpanded(true);
        QCOMPARE(on.measured(), 1);
        QCOMPARE(brokenPlace(on), QString());
    }

    void hiddenRowIsNotMeasuredButItsGroupIs() {
        LaidOut on;
        TorvQDWhereRow* outer = on.group(on.root);
        TorvQDWhereRow* group = on.group(outer);
        TorvQDWhereRow* row = on.condition(group);
        outer->SetExpanded(false);
        on.layout.ensure();
        on.rename(row, "T.OTHER");
        QCOMPARE(on.measured(), 1);
        QCOMPARE(outer->Controls[1]->GetText(), " ( ((T.OTHER = 5)))");
        outer->SetExpanded(true);
        QCOMPARE(brokenPlace(on), QString());
    }

    void hiddenRowsFollowFontNumberAndIndent() {
        LaidOut on;
        on.condition(on.root);
        TorvQDWhereRow* group = on.group(on.root);
        const TorvQDWhereRow* row = on.condition(group);
        on.layout.ensure();
        group->SetExpanded(false);
        on.widths.bold = 20;
        on.layout.textsChanged();
        on.layout.ensure();
        on.widths.bold = boldPx;
        on.layout.textsChanged();
        on.layout.ensure();
        on.widths.bold = 20;
        on.layout.textsChanged();
        on.layout.ensure();
        group->SetExpanded(true);
        on.layout.ensure();
        QCOMPARE(row->Controls[2]->Width, 3 * 20);
        group->SetExpanded(false);
        on.layout.ensure();
        for (int index = 0; index < 9; ++index) on.root->SubRows->Insert(0);
        (void)on.layout.fullExtent();
        QCOMPARE(row->Controls[0]->GetText(), "11.1.");
        QCOMPARE(row->Controls[0]->Width, 20 + 5 * 20);
    }

    void rowsThatChangeInsideAnUpdateAreMeasuredAtItsEnd() {
        LaidOut on;
        TorvQDWhereRow* row = on.condition(on.root);
        on.layout.ensure();
        on.root->SubRows->BeginUpdate();
        on.rename(row, "T.LONGER");
        QVERIFY(!on.layout.isStale());
        on.root->SubRows->EndUpdate();
        QVERIFY(on.layout.isStale());
        QCOMPARE(brokenPlace(on), QString());
        QCOMPARE(row->Controls[2]->GetText(), "T.LONGER");
    }

    void deepAndWideTreesAreLaidOut() {
        LaidOut on;
        TorvQDWhereRow* row = on.root;
        for (int depth = 0; depth < 3000; ++depth) row = on.group(row);
        on.layout.ensure();
        QCOMPARE(row->GetTopBound(), 3000 * 20);
        QCOMPARE(row->GetLeftBound(), 3001 * 15);
        QCOMPARE(on.layout.rows().size(), std::size_t(3001));
    }

    // --- against the rules, row by row

    void manyChangesEndWhereTheRulesSay_data() {
        QTest::addColumn<unsigned>("seed");
        QTest::addColumn<bool>("withFunctions");
        for (unsigned seed = 1; seed <= 4; ++seed) {
            QTest::addRow("%u", seed) << seed << (seed % 2 == 0);
        }
    }
    void manyChangesEndWhereTheRulesSay() {
        QFETCH(unsigned, seed);
        QFETCH(bool, withFunctions);
        const QStringList functions = {blanks, "SUM"};
        LaidOut on(withFunctions ? &functions : nullptr);
        std::mt19937 random(seed);
        const auto dice = [&](int sides) { return int(random() % unsigned(sides)); };
        for (int step = 0; step < 2000; ++step) {
            const QList<TorvQDWhereRow*> rows = allRows(on.root);
            TorvQDWhereRow* row = rows[dice(int(rows.size()))];
            const bool isRoot = row == on.root;
            const bool isFull = rows.size() > 60;
            switch (dice(9)) {
            case 0:
            case 1:
                if (row->isGroup() && !isFull) on.condition(row, QString(1 + dice(40), u'f'));
                break;
            case 2:
                if (!isRoot && (isFull || dice(3) == 0)) row->rows()->Delete(row->GetIndex());
                break;
            case 3:
                if (!row->isGroup() && row->depth() < 6) {
                    row->SubRows->AddRow()->Assign(*row);
                    row->SetGroupOper(dice(2) ? "Not all" : "Any");
                }
                break;
            case 4:
                if (row->isGroup() && !isRoot) row->SetExpanded(!row->Expanded);
                break;
            case 5:
                if (!row->isGroup()) row->setOperator(on.operators.Items(dice(14)));
                break;
            case 6:
                if (!row->isGroup()) on.rename(row, QString(dice(40), u'n'));
                break;
            case 7:
                if (!row->isGroup() && !row->Arguments.isEmpty()) {
                    row->Arguments.last() = QString(dice(40), u'a');
                    row->FieldFunc = dice(2) ? "SUM" : blanks;
                    row->Changed(false);
                }
                break;
            default:
                if (!isRoot && row->depth() == 2) row->SetIndex(dice(on.root->SubRows->GetCount()));
            }
            // Several changes may come together.
            if (dice(3) == 0 || step == 1999) QCOMPARE(brokenPlace(on), QString());
        }
    }
};

QTEST_APPLESS_MAIN(ConditionUpdatesTest)
#include "tst_conditionupdates.moc"
