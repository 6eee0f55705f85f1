// SPDX-License-Identifier: MIT
#include "data/ProcessName.h"
#include "diagram/BoxOnCanvas.h"
#include "diagram/ORVQDFloatTable.h"
#include "support/TestTools.h"

#include <QMenu>

#include <stdexcept>

using orvtest::BoxOnCanvas;
using orvtest::FakeCanvas;
using orvtest::numberedFields;
using orvtest::oddScroll;

namespace {

QStringList rowNames(const TorvQDTable& box) {
    QStringList names;
    for (const auto& item : box.Items) names << item->Name;
    return names;
}

int checkedRows(const TorvQDTable& box) {
    int count = 0;
    for (const auto& item : box.Items) count += item->Checked ? 1 : 0;
    return count;
}

}  // namespace

class FloatTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() { lReservedWords().clear(); }

    // --- making a box

    void parentMustBeACanvas() {
        QWidget plain;
        const TDataSet fields = numberedFields(1);
        const QString expected = QStringLiteral("Invalide parent for table object!");
        QCOMPARE(orvtest::errorOf([&] { TorvQDTable box(&plain, &fields, "T"); }), expected);
        QCOMPARE(orvtest::errorOf([&] { TorvQDTable box(nullptr, &fields, "T"); }), expected);
    }

    void newBoxHasItsInitialValues() {
        FakeCanvas canvas;
        const TDataSet fields = numberedFields(10);
        const TorvQDTable box(&canvas, &fields, "T");
        QCOMPARE(box.GetBoundsRect(), TRect({0, 0, 100, 128}));
        QCOMPARE(box.CaptionHeight, 20);
        QCOMPARE(box.ItemHeight, 16);
        QCOMPARE(box.ButtonsWidth, 40);
        QCOMPARE(box.BorderWidth, 2);
        QCOMPARE(box.Indent, 2);
        QCOMPARE(box.ScrollBarWidth, 16);
        QCOMPARE(box.VisibleCount, 6);
        QCOMPARE(box.FirstVisibleItem, 0);
        QCOMPARE(box.FieldState, 0);
        QCOMPARE(box.PressedButton, -1);
        QCOMPARE(box.HotButton, -1);
        QVERIFY(box.Expanded);
        QVERIFY(!box.Selected);
        QVERIFY(!box.CurrentItem);
        QCOMPARE(box.Alias(), QString());
        QCOMPARE(box.GetHint(), QString());
    }

    void heightFollowsTheNumberOfFields_data() {
        QTest::addColumn<int>("fields");
        QTest::addColumn<int>("visible");
        QTest::addColumn<int>("height");
        QTest::newRow("none") << 0 << 0 << 20 + 2 + 2 * 2;
        QTest::newRow("one") << 1 << 1 << 17 + 26;
        QTest::newRow("six") << 6 << 6 << 6 * 17 + 26;
        QTest::newRow("ten") << 10 << 6 << 6 * 17 + 26;
    }
    void heightFollowsTheNumberOfFields() {
        QFETCH(int, fields);
        QFETCH(int, visible);
        QFETCH(int, height);
        const BoxOnCanvas on(fields);
        QCOMPARE(on.box.VisibleCount, visible);
        QCOMPARE(on.box.Height, height);
        QCOMPARE(int(on.box.Items.size()), fields);
    }

    void largeFontMakesHigherCaptionAndRows() {
        FakeCanvas canvas;
        canvas.font = 30;
        const TDataSet fields = numberedFields(2);
        const TorvQDTable box(&canvas, &fields, "T");
        QCOMPARE(box.CaptionHeight, 34);
        QCOMPARE(box.ItemHeight, 30);
        QCOMPARE(box.Height, 2 * 31 + 34 + 6);
    }

    void withoutADataSetThereAreNoRows() {
        FakeCanvas canvas;
        const TorvQDTable box(&canvas, nullptr, "T");
        QVERIFY(box.Items.empty());
    }

    void namesAreQuotedWhereTheyMust() {
        lReservedWords() << "ORDER";
        FakeCanvas canvas;
        const TDataSet fields({{"NAME_1$", ftString},
                               {"name", ftString},
                               {"MY FIELD", ftString},
                               {"A.B", ftString},
                               {"A\"B", ftString},
                               {QStringLiteral("\u00c4"), ftString},
                               {"\"done\"", ftString},
                               {"'done'", ftString},
                               {"ORDER", ftString}});
        const TorvQDTable box(&canvas, &fields, "my table");
        QCOMPARE(box.TableName, "\"my table\"");
        QCOMPARE(rowNames(box),
                 QStringList({"NAME_1$", "\"name\"", "\"MY FIELD\"", "\"A.B\"", "\"A\"\"B\"",
                              QStringLiteral("\"\u00c4\""), "\"done\"", "'done'", "\"ORDER\""}));
    }

    void rowsKnowTheirBoxTypeAndPlace() {
        const BoxOnCanvas on(3);
        for (int index = 0; index < 3; ++index) {
            QCOMPARE(on.row(index)->Table, &on.box);
            QCOMPARE(on.row(index)->GetIndex(), index);
            QCOMPARE(on.row(index)->FieldType, ftInteger);
            QCOMPARE(on.row(index)->ParamType, ptOutput);
            QVERIFY(!on.row(index)->Checked);
            QVERIFY(!on.row(index)->Selected);
            QVERIFY(on.row(index)->IsNull);
            QVERIFY(!on.row(index)->Busy);
        }
    }

    void assigningItemsReplacesTheRowsAndKeepsTheHeight() {
        BoxOnCanvas on(10);
        QVERIFY(on.box.GetFieldItem("F9"));
        const TDataSet other({{"X", ftString}, {"Y", ftString}});
        on.box.AssignItems(&other);
        QCOMPARE(rowNames(on.box), QStringList({"X", "Y"}));
        QCOMPARE(on.box.VisibleCount, 2);
        QCOMPARE(on.box.Height, 128);
        QVERIFY(!on.box.GetFieldItem("F9"));
        QCOMPARE(on.box.GetFieldItem("y"), on.row(1));
    }

    void typesAreNamedForPeople_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        const char* const texts[] = {
            "",       "String",     "Integer",  "Integer",      "Integer",   "Boolean",
            "Float",  "Float",      "BCD",      "Date",         "Time",      "Date&&Time",
            "Bytes",  "VarBytes",   "Integer",  "Blob",         "String",    "Graphic",
            "String", "ParadoxOle", "DBaseOle", "Typed binary", "Cursor",    "String",
            "String", "Integer",    "ADT",      "Array",        "Reference", "Data set"};
        for (int type = ftUnknown; type <= ftDataSet; ++type) {
            QTest::addRow("%d", type) << type << QString::fromLatin1(texts[type]);
        }
    }
    void typesAreNamedForPeople() {
        QFETCH(int, type);
        QFETCH(QString, text);
        const BoxOnCanvas on(1);
        on.row(0)->FieldType = TFieldType(type);
        QCOMPARE(on.row(0)->GetDataName(), text);
    }

    // --- names

    void captionShowsTheAliasInBrackets_data() {
        QTest::addColumn<QString>("alias");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("effective");
        QTest::newRow("none") << ""
                              << "T"
                              << "T";
        QTest::newRow("one letter") << "O"
                                    << "T (O)"
                                    << "O";
        QTest::newRow("blanks only") << "   "
                                     << "T"
                                     << "T";
        QTest::newRow("untrimmed") << " O "
                                   << "T ( O )"
                                   << " O ";
    }
    void captionShowsTheAliasInBrackets() {
        QFETCH(QString, alias);
        QFETCH(QString, caption);
        QFETCH(QString, effective);
        BoxOnCanvas on(1);
        on.box.SetAlias(alias);
        QCOMPARE(on.box.GetCaption(), caption);
        QCOMPARE(on.box.GetAlias(), effective);
        QCOMPARE(on.box.Alias(), alias);
    }

    void aliasChangeIsToldOnceWithTheOldEffectiveAlias() {
        BoxOnCanvas on(1);
        QStringList old;
        on.box.aliasChanged = [&](TorvQDTable*, const QString& oldAlias) { old << oldAlias; };
        on.box.SetAlias("E");
        on.box.SetAlias("E");
        on.box.SetAlias("");
        on.box.SetAlias("  ");
        QCOMPARE(old, QStringList({"T", "E"}));
    }

    void fieldsAreFoundIgnoringCase_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("row");
        QTest::newRow("exact") << "NAME" << 0;
        QTest::newRow("other case") << "nAmE" << 0;
        QTest::newRow("quoted") << "\"my field\"" << 1;
        QTest::newRow("quoted, other case") << "\"MY FIELD\"" << 1;
        QTest::newRow("quotes count") << "my field" << -1;
        QTest::newRow("unknown") << "NAMES" << -1;
        QTest::newRow("empty") << "" << -1;
        QTest::newRow("first of equal ones") << "twice" << 2;
        QTest::newRow("no ASCII") << QStringLiteral("\"\u00c4\"") << 4;
    }
    void fieldsAreFoundIgnoringCase() {
        QFETCH(QString, name);
        QFETCH(int, row);
        FakeCanvas canvas;
        const TDataSet fields({{"NAME", ftString},
                               {"my field", ftString},
                               {"TWICE", ftString},
                               {"TWICE", ftInteger},
                               {QStringLiteral("\u00e4"), ftString}});
        const TorvQDTable box(&canvas, &fields, "T");
        const TorvQDListItem* found = box.GetFieldItem(name);
        QCOMPARE(found ? found->GetIndex() : -1, row);
    }

    void findingIgnoresQuotesWhenOneRowAloneMatches_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("row");
        QTest::newRow("without quotes") << "my field" << 0;
        QTest::newRow("with quotes") << "\"NAME\"" << 1;
        QTest::newRow("exact comes first") << "SAME" << 2;
        QTest::newRow("quoted exact comes first") << "\"same\"" << 3;
        QTest::newRow("two match") << "pair" << -1;
    }
    void findingIgnoresQuotesWhenOneRowAloneMatches() {
        QFETCH(QString, name);
        QFETCH(int, row);
        FakeCanvas canvas;
        const TDataSet fields({{"my field", ftString},
                               {"NAME", ftString},
                               {"SAME", ftString},
                               {"same", ftString},
                               {"pair", ftString},
                               {"Pair", ftString}});
        const TorvQDTable box(&canvas, &fields, "T");
        const TorvQDListItem* found = box.findItem(name);
        QCOMPARE(found ? found->GetIndex() : -1, row);
    }

    // --- ticks

    void tickingTellsTheCanvasAndRepaintsTheRow() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        on.row(2)->SetCheck(true);
        QVERIFY(on.row(2)->Checked);
        QCOMPARE(on.canvas.checks, QStringList("F2+"));
        QCOMPARE(on.canvas.invalidated, std::vector<TRect>{on.box.GetItemRect(on.row(2))});
        QCOMPARE(on.box.FieldState, 0);
    }

    void updatingATickTellsNobodyAndRecounts_data() {
        QTest::addColumn<QList<int>>("ticked");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("state");
        QTest::newRow("one of three") << QList<int>() << 0 << -1 << 1;
        QTest::newRow("the last of three") << QList<int>({0, 1}) << 2 << 1 << 2;
        QTest::newRow("off, others stay") << QList<int>({0, 1, 2}) << 1 << 0 << 1;
        QTest::newRow("off, none stays") << QList<int>({1}) << 1 << 0 << 0;
        QTest::newRow("ticked already") << QList<int>({0, 1, 2}) << 1 << -1 << 2;
    }
    void updatingATickTellsNobodyAndRecounts() {
        QFETCH(QList<int>, ticked);
        QFETCH(int, row);
        QFETCH(int, value);
        QFETCH(int, state);
        BoxOnCanvas on(3);
        for (const int index : ticked) on.row(index)->UpdateCheck(-1);
        on.row(row)->UpdateCheck(value);
        QCOMPARE(on.row(row)->Checked, value != 0);
        QCOMPARE(on.box.FieldState, state);
        QVERIFY(on.canvas.checks.isEmpty());
    }

    void stateTwoTicksAllRows() {
        BoxOnCanvas on(4);
        on.box.SetFieldState(2);
        QCOMPARE(checkedRows(on.box), 4);
        QCOMPARE(on.box.FieldState, 2);
        QCOMPARE(on.canvas.checks, QStringList({"F0+", "F1+", "F2+", "F3+"}));
        QCOMPARE(on.canvas.begun, 1);
        QCOMPARE(on.canvas.ended, 1);
    }

    void stateZeroUnticksAllRows() {
        BoxOnCanvas on(3);
        on.box.SetFieldState(2);
        on.canvas.checks.clear();
        on.box.SetFieldState(0);
        QCOMPARE(checkedRows(on.box), 0);
        QCOMPARE(on.box.FieldState, 0);
        QCOMPARE(on.canvas.checks, QStringList({"F0-", "F1-", "F2-"}));
    }

    // The check box shows the mixed state until the next recount.
    void stateOneUnticksAllRowsAndStaysMixed() {
        BoxOnCanvas on(3);
        on.box.SetFieldState(2);
        on.box.SetFieldState(1);
        QCOMPARE(checkedRows(on.box), 0);
        QCOMPARE(on.box.FieldState, 1);
        on.row(0)->UpdateCheck(0);
        QCOMPARE(on.box.FieldState, 0);
    }

    void shownStateIsClampedAndRepaintsItsSquare() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        on.box.UpdateFieldState(7);
        QCOMPARE(on.box.FieldState, 2);
        QCOMPARE(on.canvas.invalidated,
                 std::vector<TRect>{TRect({30, 40, 50, 60}).translated(-137, -53)});
        on.box.UpdateFieldState(2);
        QCOMPARE(on.canvas.invalidated.size(), std::size_t(1));
        on.box.UpdateFieldState(-3);
        QCOMPARE(on.box.FieldState, 0);
    }

    void tickingAnInputRowAsksForItsValue() {
        BoxOnCanvas on(2);
        TorvQDListItem* item = on.row(1);
        item->ParamType = ptInput;
        bool busy = false;
        int asked = 0;
        on.canvas.onEnterParameter = [&](TorvQDTable* table, TorvQDListItem* row) {
            busy = table == &on.box && row == item && row->Busy;
            ++asked;
        };
        item->SetCheck(true);
        QCOMPARE(asked, 1);
        QVERIFY(busy);
        QVERIFY(!item->Busy);
        QVERIFY(!item->Checked);
        QVERIFY(on.canvas.checks.isEmpty());
    }

    void enteredValueRepaintsTheRow() {
        BoxOnCanvas on(2);
        on.canvas.scroll = oddScroll;
        TorvQDListItem* item = on.row(1);
        item->ParamType = ptInput;
        on.canvas.onEnterParameter = [&](TorvQDTable*, TorvQDListItem* row) {
            row->Checked = true;
            row->Value = 5;
        };
        item->SetCheck(true);
        const QRegion row(on.box.GetItemRect(item).toQRect());
        QVERIFY(!row.isEmpty());
        QCOMPARE(row - on.canvas.repainted(), QRegion());
    }

    // While the host is being asked, the tick itself is set.
    void busyInputRowIsTicked() {
        BoxOnCanvas on(2);
        TorvQDListItem* item = on.row(1);
        item->ParamType = ptInput;
        on.canvas.onEnterParameter = [&](TorvQDTable*, TorvQDListItem* row) {
            row->SetCheck(true);
        };
        item->SetCheck(false);
        QVERIFY(item->Checked);
    }

    void errorWhileAskingLeavesTheRowUsable() {
        BoxOnCanvas on(2);
        on.row(1)->ParamType = ptInput;
        on.canvas.onEnterParameter = [](TorvQDTable*, TorvQDListItem*) {
            throw std::runtime_error("no");
        };
        on.canvas.invalidated.clear();
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, on.row(1)->SetCheck(true));
        QVERIFY(!on.row(1)->Busy);
        QCOMPARE(on.canvas.invalidated, std::vector<TRect>{on.box.GetBoundsRect()});
    }

    void highlightingRepaintsTheRow() {
        BoxOnCanvas on;
        on.row(3)->SetSelect(true);
        QVERIFY(on.row(3)->Selected);
        QCOMPARE(on.canvas.invalidated, std::vector<TRect>{on.box.GetItemRect(on.row(3))});
    }

    void currentRowRepaintsOldAndNew() {
        BoxOnCanvas on;
        on.box.SetCurrentItem(on.row(1));
        on.canvas.invalidated.clear();
        on.box.SetCurrentItem(on.row(4));
        QCOMPARE(on.box.CurrentItem, on.row(4));
        QCOMPARE(on.canvas.invalidated, (std::vector<TRect>{on.box.GetItemRect(on.row(1)),
                                                            on.box.GetItemRect(on.row(4))}));
    }

    void currentRowMustBeARowOfTheBox() {
        BoxOnCanvas on;
        const BoxOnCanvas other;
        on.box.SetCurrentItem(on.row(1));
        on.canvas.invalidated.clear();
        on.box.SetCurrentItem(other.row(1));
        on.box.SetCurrentItem(nullptr);
        on.box.SetCurrentItem(on.row(1));
        QCOMPARE(on.box.CurrentItem, on.row(1));
        QVERIFY(on.canvas.invalidated.empty());
    }

    // --- mouse and menu

    void pressOnTheCaptionsCheckBox_data() {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("none") << 0 << 2;
        QTest::newRow("some") << 1 << 2;
        QTest::newRow("all") << 2 << 0;
    }
    void pressOnTheCaptionsCheckBox() {
        QFETCH(int, before);
        QFETCH(int, after);
        BoxOnCanvas on(3);
        for (int index = 0; index < before + before / 2; ++index) on.row(index)->UpdateCheck(-1);
        QCOMPARE(on.box.FieldState, before);
        TWMMouse message{40, 50, Qt::LeftButton};
        on.box.MouseDown(message, htTCheck);
        QCOMPARE(on.box.FieldState, after);
        QCOMPARE(checkedRows(on.box), after == 2 ? 3 : 0);
    }

    void pressMakesTheRowCurrentAndReleaseTicksIt() {
        BoxOnCanvas on;
        on.canvas.scroll = oddScroll;
        const TRect rect = on.box.GetItemRect(on.row(2));
        TWMMouse down{rect.Left, rect.Top, Qt::LeftButton};
        on.box.MouseDown(down, htTClient);
        QCOMPARE(on.box.CurrentItem, on.row(2));
        QVERIFY(!on.row(2)->Checked);
        TWMMouse up{rect.Left, rect.Top, Qt::LeftButton};
        on.box.MouseUp(up, htTClient);
        QVERIFY(on.row(2)->Checked);
        QCOMPARE(on.box.FieldState, 1);
        QCOMPARE(on.canvas.checks, QStringList("F2+"));
        QCOMPARE(on.canvas.begun, on.canvas.ended);
    }

    void releaseOutsideTheCheckSquareTicksNothing_data() {
        QTest::addColumn<int>("x");  // from the row's left edge
        QTest::addColumn<bool>("ticked");
        QTest::newRow("left of it") << -1 << false;
        QTest::newRow("first column") << 0 << true;
        QTest::newRow("last column") << 15 << true;
        QTest::newRow("right of it") << 16 << false;
    }
    void releaseOutsideTheCheckSquareTicksNothing() {
        QFETCH(int, x);
        QFETCH(bool, ticked);
        BoxOnCanvas on;
        const TRect rect = on.box.GetItemRect(on.row(0));
        on.box.SetCurrentItem(on.row(0));
        TWMMouse up{rect.Left + x, rect.Top, Qt::LeftButton};
        on.box.MouseUp(up, htTClient);
        QCOMPARE(on.row(0)->Checked, ticked);
    }

    void releaseOverAnotherRowTicksNothing() {
        BoxOnCanvas on;
        on.box.SetCurrentItem(on.row(0));
        const TRect rect = on.box.GetItemRect(on.row(1));
        TWMMouse up{rect.Left, rect.Top, Qt::LeftButton};
        on.box.MouseUp(up, htTClient);
        QCOMPARE(checkedRows(on.box), 0);
        QVERIFY(on.canvas.checks.isEmpty());
    }

    void mouseEventsAreRelativeToTheBox() {
        BoxOnCanvas on;
        QPoint seen;
        on.box.OnMouseDown = [&](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int x, int y) {
            seen = {x, y};
        };
        TWMMouse message{60, 50, Qt::LeftButton};
        on.box.MouseDown(message, htTCaption);
        QCOMPARE(seen, QPoint(30, 10));
        QCOMPARE(message.Result, 1);
    }

    void captionHasAMenu() {
        BoxOnCanvas on;
        QMenu menu;
        on.box.PopupMenu(menu, 60, 50, htTCaption);
        QCOMPARE(menu.actions().size(), 3);
        QCOMPARE(menu.actions().at(0)->text(), "Delete table");
        QVERIFY(menu.actions().at(1)->isSeparator());
        QCOMPARE(menu.actions().at(2)->text(), "Rename table");
        menu.actions().at(0)->trigger();
        QCOMPARE(on.canvas.closed, std::vector<TorvQDTable*>{&on.box});
        menu.actions().at(2)->trigger();
        QCOMPARE(on.canvas.renames, std::vector<TorvQDTable*>{&on.box});
    }

    void otherPlacesHaveNoMenu() {
        BoxOnCanvas on;
        for (const TTableHitTest hit : {htTOutSide, htTClient, htTbutton, htTCheck, htTLeft}) {
            QMenu menu;
            on.box.PopupMenu(menu, 60, 50, hit);
            QVERIFY(menu.isEmpty());
        }
    }

    void menuOfADeadBoxDoesNothing() {
        FakeCanvas canvas;
        auto box = std::make_unique<TorvQDTable>(&canvas, nullptr, "T");
        QMenu menu;
        box->PopupMenu(menu, 0, 0, htTCaption);
        box.reset();
        menu.actions().at(0)->trigger();
        menu.actions().at(2)->trigger();
        QVERIFY(canvas.closed.empty());
    }

    void closingAndUnlinkingAreTheCanvassBusiness() {
        BoxOnCanvas on;
        on.box.CloseTable();
        on.box.UnlinkTable();
        QCOMPARE(on.canvas.closed, std::vector<TorvQDTable*>{&on.box});
        QCOMPARE(on.canvas.unlinked, std::vector<TorvQDTable*>{&on.box});
    }
};

QTEST_MAIN(FloatTableTest)
#include "tst_floattable.moc"
