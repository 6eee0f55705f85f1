// SPDX-License-Identifier: MIT
#include "criteria/LaidOut.h"

#include <QTest>

using namespace orvtest;

class ConditionLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- measuring

    // 15 a level; button = 20 + 2 x 7, then 5; "T.A" 21; "=" 7; no function; "5" 7.
    void elementsStandSideBySide() {
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root);
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+0 69+21 95+7 107+0 107+7");
    }

    void functionsHaveRoomWhereThePanelHasSome() {
        const QStringList functions = {"SUM"};
        LaidOut on(&functions);
        TorvQDWhereRow* row = on.condition(on.root);
        row->FieldFunc = "SUM";
        row->Changed(false);
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+21 95+21 121+7 133+63 201+7");
    }

    // "and" with its blanks is 5 x 6 wide, and 5 more.
    void argumentsAreSeparatedByTheRelateTextInTheNormalStyle() {
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root, "T.A", "BETWEEN", {"1", "25"});
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+0 69+21 95+49 149+0 149+7 191+14");
    }

    void groupHasItsButtonAndItsOperatorOnly() {
        LaidOut on;
        on.layout.ensure();
        QCOMPARE(places(*on.root), "15+27 47+21 73+0 73+0 73+0 73+0");
        const QStringList functions = {"SUM"};
        LaidOut with(&functions);
        with.layout.ensure();
        QCOMPARE(places(*with.root), "15+27 47+21 73+0 73+0 73+0 73+0");
    }

    void conditionThatBecomesAGroupLosesItsOtherElements() {
        LaidOut on;
        TorvQDWhereRow* row = on.condition(on.root, "T.A", "BETWEEN", {"1", "9"});
        on.layout.ensure();
        row->SetGroupOper("None");
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+28 102+0 102+0 102+0 102+0 102+0");
    }

    void emptyTextIsNineBlanksWide() {
        LaidOut on;
        const TorvQDWhereRow* row = on.root->SubRows->AddRow();
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+0 69+63 137+7 149+0 149+63");
        QCOMPARE(on.layout.controlAt(*row, 69 + 62)->Kind, 2);
        TorvQDWhereRow* emptied = on.condition(on.root, "", "=", {""});
        on.layout.ensure();
        QCOMPARE(places(*emptied), places(*row));
    }

    void shownTextIsCutToThirtyCharacters() {
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root, QString(80, u'x'));
        on.layout.ensure();
        QCOMPARE(row->Controls[2]->Width, 33 * boldPx);
        QCOMPARE(row->Controls[2]->GetText(), QString(30, u'x') + "...");
        QCOMPARE(row->FieldName.size(), 80);
    }

    void collapsedGroupShowsItsConditionInOneLine() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        on.condition(group);
        group->SetExpanded(false);
        on.layout.ensure();
        QCOMPARE(group->Controls[1]->GetText(), " ((T.A = 5))");
        QCOMPARE(group->Controls[1]->Width, 12 * boldPx);
        QCOMPARE(group->Controls[2]->Width, 0);
    }

    void rowIsIndentedByItsDepth() {
        LaidOut on;
        TorvQDWhereRow* inner = on.group(on.group(on.root));
        const TorvQDWhereRow* row = on.condition(inner);
        on.layout.ensure();
        QCOMPARE(on.root->GetLeftBound(), 15);
        QCOMPARE(inner->GetLeftBound(), 45);
        QCOMPARE(row->GetLeftBound(), 60);
        QCOMPARE(row->Controls[0]->GetText(), "1.1.1.");
        QCOMPARE(row->Controls[0]->Width, 20 + 6 * boldPx);
    }

    void rowWithoutAnOperatorIsMeasured() {
        LaidOut on;
        on.operators.Clear();
        const TorvQDWhereRow* row = on.root->SubRows->AddRow();
        on.layout.ensure();
        QCOMPARE(places(*row), "30+34 69+0 69+63 137+63 205+0 205+63");
    }

    void rowIsPlacedAloneToo() {
        LaidOut on;
        TorvQDWhereRow* row = on.condition(on.root, "T.A", "BETWEEN", {"1", "25"});
        row->SetDimentionControls(100);
        QCOMPARE(places(*row), "100+34 139+0 139+21 165+49 219+0 219+7 261+14");
        QCOMPARE(row->GetLeftBound(), 100);
        QCOMPARE(row->rightBound(), 275);
        row->OffsetControls(3, 10);
        QCOMPARE(places(*row), "100+34 139+0 139+21 155+49 209+0 209+7 251+14");
        row->OffsetControls(6, -20);
        QCOMPARE(places(*row), "100+34 139+0 139+21 155+49 209+0 209+7 271+14");
        row->OffsetControls(7, 5);
        QCOMPARE(places(*row), "100+34 139+0 139+21 155+49 209+0 209+7 271+14");
    }

    // --- which rows are shown

    void rowsAreShownBelowTheirExpandedGroups() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        TorvQDWhereRow* first = on.condition(group);
        TorvQDWhereRow* inner = on.group(group);
        TorvQDWhereRow* deep = on.condition(inner);
        TorvQDWhereRow* last = on.condition(on.root);
        on.layout.ensure();
        const std::vector<TorvQDWhereRow*> all = {on.root, group, first, inner, deep, last};
        QCOMPARE(on.layout.rows(), all);
        QCOMPARE(deep->GetTopBound(), 80);
        QCOMPARE(last->GetTopBound(), 100);
        group->SetExpanded(false);
        on.layout.ensure();
        QCOMPARE(on.layout.rows(), std::vector({on.root, group, last}));
        for (const TorvQDWhereRow* hidden : {first, inner, deep}) {
            QCOMPARE(hidden->GetTopBound(), -1);
            QCOMPARE(on.layout.positionOf(*hidden), -1);
        }
        QCOMPARE(last->GetTopBound(), 40);
        QCOMPARE(on.layout.positionOf(*last), 2);
        group->SetExpanded(true);
        on.layout.ensure();
        QCOMPARE(on.layout.rows(), all);
    }

    void rowThatIsNotLaidOutYetHasNoTop() {
        LaidOut on;
        on.layout.ensure();
        const TorvQDWhereRow* row = on.condition(on.root);
        QCOMPARE(row->GetTopBound(), -1);
        on.layout.ensure();
        QCOMPARE(row->GetTopBound(), 20);
    }

    void topsFollowTheRowHeight() {
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root);
        on.context.rowHeight = 33;
        on.layout.textsChanged();
        on.layout.ensure();
        QCOMPARE(row->GetTopBound(), 33);
        QCOMPARE(row->Controls[0]->Width, 33 + 2 * boldPx);
        QCOMPARE(on.layout.rowAt(32), on.root);
        QCOMPARE(on.layout.rowAt(33), row);
    }

    // --- extent

    void extentIsThatOfTheShownRows() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        const TorvQDWhereRow* hidden = on.condition(group, QString(5, u'x'));
        group->SetExpanded(false);
        on.layout.ensure();
        // 30 + 34 + 5, then " ((xxxxx = 5))" and the gap behind it.
        QCOMPARE(on.layout.extent(), QSize(69 + 14 * boldPx + 5, 40));
        // The hidden row is less wide: 45 + 20 + 4 x 7 + 5, 5 x 7 + 5, 7 + 5, 0 + 0, 7.
        QCOMPARE(on.layout.fullExtent(), QSize(172, 60));
        QCOMPARE(hidden->rightBound(), 157);
        QCOMPARE(hidden->GetTopBound(), -1);
        QCOMPARE(on.layout.extent(), QSize(172, 40));
    }

    void fullExtentCountsWhatIsHidden() {
        LaidOut on;
        TorvQDWhereRow* group = on.group(on.root);
        on.condition(group, QString(30, u'x'), "BETWEEN", {QString(30, u'y'), "9"});
        group->SetExpanded(false);
        // 45 + 48 + 5, 215, 49 + 5, 210 + 35, 7
        QCOMPARE(on.layout.fullExtent(), QSize(98 + 215 + 54 + 245 + 7, 60));
        QCOMPARE(on.layout.extent().height(), 40);
    }

    // Elements that are not shown stand behind the gap.
    void widthIsTheLargestRightEdge() {
        LaidOut on;
        on.group(on.root, "Not all");
        on.layout.ensure();
        QCOMPARE(on.layout.extent(), QSize(69 + 7 * boldPx + 5, 40));
    }

    void extentShrinksWithTheWidestRow() {
        LaidOut on;
        on.condition(on.root);
        TorvQDWhereRow* wide = on.condition(on.root, "T.A", "BETWEEN", {"1", QString(30, u'x')});
        on.layout.ensure();
        QCOMPARE(on.layout.extent().width(), 191 + 30 * boldPx);
        on.rename(wide, "T.ABC");
        on.layout.ensure();
        QCOMPARE(on.layout.extent().width(), 205 + 30 * boldPx);
        wide->setOperator(on.operators.FindName("IS NULL"));
        on.layout.ensure();
        // 30 + 34 + 5, "T.ABC" 35 + 5, "IS NULL" 49; nothing behind the function's place.
        QCOMPARE(on.layout.extent().width(), 163);
        on.rename(wide, "T");
        on.layout.ensure();
        QCOMPARE(on.layout.extent().width(), 135);
        wide->rows()->Delete(1);
        on.layout.ensure();
        QCOMPARE(on.layout.extent(), QSize(114, 40));
    }

    // --- what lies where

    void rowIsFoundByItsBand() {
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root);
        on.layout.ensure();
        QCOMPARE(on.layout.rowAt(-1), nullptr);
        QCOMPARE(on.layout.rowAt(-20), nullptr);
        QCOMPARE(on.layout.rowAt(0), on.root);
        QCOMPARE(on.layout.rowAt(19), on.root);
        QCOMPARE(on.layout.rowAt(20), row);
        QCOMPARE(on.layout.rowAt(39), row);
        QCOMPARE(on.layout.rowAt(40), nullptr);
    }

    void elementIsFoundBetweenItsEdges_data() {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("kind");  // -1: none
        for (const auto& [x, kind] : QList<std::pair<int, int>>{{29, -1},
                                                                {30, 0},
                                                                {63, 0},
                                                                {64, -1},
                                                                {68, -1},
                                                                {69, 2},
                                                                {89, 2},
                                                                {90, -1},
                                                                {95, 3},
                                                                {143, 3},
                                                                {144, -1},
                                                                {149, 5},
                                                                {155, 5},
                                                                {156, -1},
                                                                {190, -1},
                                                                {191, 6},
                                                                {204, 6},
                                                                {205, -1},
                                                                {-1, -1}}) {
            QTest::addRow("%d", x) << x << kind;
        }
    }
    void elementIsFoundBetweenItsEdges() {
        QFETCH(int, x);
        QFETCH(int, kind);
        LaidOut on;
        const TorvQDWhereRow* row = on.condition(on.root, "T.A", "BETWEEN", {"1", "25"});
        on.layout.ensure();
        const TorvQDControl* element = on.layout.controlAt(*row, x);
        QCOMPARE(element ? element->Kind : -1, kind);
        if (element) QCOMPARE(element->Row, row);
    }

    void elementsOfAGroupThatAreNotShownCannotBeHit() {
        LaidOut on;
        on.layout.ensure();
        for (int x = 0; x < 500; ++x) {
            const TorvQDControl* element = on.layout.controlAt(*on.root, x);
            QVERIFY(!element || element->Kind <= 1);
        }
        QCOMPARE(on.layout.controlAt(*on.root, 47)->Kind, 1);
        QCOMPARE(on.layout.controlAt(*on.root, 68), nullptr);
    }
};

QTEST_APPLESS_MAIN(ConditionLayoutTest)
#include "tst_conditionlayout.moc"
