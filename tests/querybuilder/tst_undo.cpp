// SPDX-License-Identifier: MIT
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDUndo.h"
#include "querybuilder/ORVQDUndoText.h"
#include "support/ShownBuilder.h"

#include <QUndoStack>

using orv::UndoRecorder;
using orvtest::RecordedServices;
using orvtest::ShownBuilder;

namespace {

/// A shown builder whose changes are recorded from here on.
class Recorded : public ShownBuilder {
public:
    explicit Recorded(bool keepMeaning = true) : ShownBuilder(keepMeaning) {
        QCoreApplication::processEvents();
        recorder = std::make_unique<UndoRecorder>(&builder, &stack);
    }

    [[nodiscard]] QByteArray state() { return orv::editedState(builder); }
    [[nodiscard]] QStringList steps() const {
        QStringList texts;
        for (int index = 0; index < stack.count(); ++index) texts << stack.text(index);
        return texts;
    }

    QUndoStack stack;
    std::unique_ptr<UndoRecorder> recorder;
};

}  // namespace

class UndoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void beginsWithoutSteps() {
        const Recorded on;
        QVERIFY(on.steps().isEmpty());
        QVERIFY(!on.stack.canUndo());
    }

    void everyActionIsOneStep_data() {
        using Action = std::function<void(Recorded&)>;
        QTest::addColumn<Action>("action");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* text, const Action& action) {
            QTest::newRow(text) << action << QString::fromLatin1(text);
        };
        row("adding ORDERS", [](Recorded& on) { on.addTable("ORDERS"); });
        row("removing T", [](Recorded& on) { on.table("T")->CloseTable(); });
        row("renaming T to X", [](Recorded& on) { on.area().renameTable(on.table("T"), "X"); });
        row("clearing the diagram", [](Recorded& on) { on.builder.Clear(); });
        row("replacing the query",
            [](Recorded& on) { on.builder.LoadSQL("select d.BUDGET from DEPT d, ORDERS"); });
        row("adding the column B", [](Recorded& on) { on.tick("T", "B"); });
        row("changing the columns", [](Recorded& on) {
            on.builder.beginChange();
            on.tick("T", "B");
            on.tick("T", "C");
            on.builder.endChange();
        });
        row("linking T and U", [](Recorded& on) { on.link("T", "B", "U", "X"); });
        row("changing the conditions", [](Recorded& on) {
            on.builder.WherePanel->rootRow()->SubRows->AddRow();
            on.builder.statementChanged();
        });
        row("changing the end of the statement",
            [](Recorded& on) { on.builder.setTailText("LIMIT 3"); });
        row("switching DISTINCT", [](Recorded& on) { on.builder.SelectPanel->SetDistinct(-1); });
        row("moving T", [](Recorded& on) { on.drag(on.captionOf("T"), {40, 30}); });
        row("resizing T", [](Recorded& on) { on.table("T")->SetExpand(0); });
        row("arranging the tables", [](Recorded& on) { on.area().arrange(); });
    }

    void everyActionIsOneStep() {
        using Action = std::function<void(Recorded&)>;
        QFETCH(Action, action);
        QFETCH(QString, text);
        Recorded on;
        const QByteArray before = on.state();
        action(on);
        QCoreApplication::processEvents();
        QCOMPARE(on.steps(), QStringList{text});
        const QByteArray after = on.state();
        QVERIFY(before != after);
        on.stack.undo();
        QCoreApplication::processEvents();
        QCOMPARE(on.state(), before);
        QCOMPARE(on.steps(), QStringList{text});
        on.stack.redo();
        QCoreApplication::processEvents();
        QCOMPARE(on.state(), after);
        QCOMPARE(on.stack.count(), 1);
    }

    void actionsOnLinksAreSteps() {
        Recorded on;
        TorvQDLink* link = on.link("T", "B", "U", "X");
        TorvQDLink* second = on.link("T", "C", "U", "Y");
        link->setOperatorText(">");
        on.builder.statementChanged();
        on.area().deleteLink(second);
        QCOMPARE(on.steps(), QStringList({"linking T and U", "linking T and U", "changing a join",
                                          "removing a link"}));
        while (on.stack.canUndo()) on.stack.undo();
        QVERIFY(on.links().isEmpty());
        on.stack.redo();
        on.stack.redo();
        QCOMPARE(on.links().size(), 2);
    }

    void otherStepsBesideLinksAreNamed() {
        Recorded on;
        on.link("T", "B", "U", "X");
        on.tick("T", "A");
        on.drag(on.captionOf("U"), {250, 150});
        QCoreApplication::processEvents();
        on.tick("U", "Y");
        QCOMPARE(on.steps(), QStringList({"linking T and U", "adding the column A", "moving U",
                                          "adding the column Y"}));
    }

    void bendsAreSteps() {
        Recorded on;
        on.drag(on.captionOf("U"), {250, 150});
        TorvQDLink* link = on.link("T", "B", "U", "X");
        QCoreApplication::processEvents();
        on.recorder->reset();
        const QPoint middle = (link->GetPoint(1) + link->GetPoint(2)) / 2;
        link->DragPoint = middle;
        link->_InsertPoint();
        QCoreApplication::processEvents();
        const std::vector<QPoint> bent = link->bendPoints();
        QCOMPARE(bent.size(), 1U);
        on.drag(link->GetPoint(2), {20, 40});
        QCoreApplication::processEvents();
        QCOMPARE(on.steps(), QStringList({"bending a link", "bending a link"}));
        on.stack.undo();
        QCOMPARE(on.area().Links().front()->bendPoints(), bent);
        on.stack.undo();
        QVERIFY(on.area().Links().front()->bendPoints().empty());
    }

    // --- what is no step

    void handsThatLetNothingGoMakeNoStep() {
        const Recorded on;
        on.press(on.captionOf("T"));
        on.moveTo(on.captionOf("T") + QPoint(40, 30));
        QCoreApplication::processEvents();
        QVERIFY(on.steps().isEmpty());
        QTest::keyClick(&on.area(), Qt::Key_Escape);
        QCoreApplication::processEvents();
        QVERIFY(on.steps().isEmpty());
    }

    void clicksAndScrollingAreNoSteps() {
        Recorded on;
        on.click(on.captionOf("U"));
        on.addTable("WIDE");
        on.recorder->reset();
        on.table("WIDE")->SetFirstVisibleItem(3);
        on.scrollTo({70, 50});
        on.builder.setTabsHeight(150);
        QCoreApplication::processEvents();
        on.recorder->record();
        QVERIFY(on.steps().isEmpty());
    }

    void otherOrderOfStackingIsAStepWhereItIsWritten() {
        Recorded on(false);
        on.tick("T", "A");
        on.recorder->reset();
        on.click(on.captionOf("U"));
        QCOMPARE(on.stack.count(), 1);
        on.stack.undo();
        QCOMPARE(on.stacking(), QStringList({"T", "U"}));
    }

    void whatIsScrolledToStays() {
        Recorded on;
        on.addTable("WIDE");
        on.recorder->reset();
        on.tick("WIDE", "A");
        on.table("WIDE")->SetFirstVisibleItem(3);
        on.scrollTo({70, 50});
        const QPoint position = on.area().scrollPosition();
        on.stack.undo();
        QCOMPARE(on.area().scrollPosition(), position);
        QCOMPARE(on.table("WIDE")->FirstVisibleItem, 3);
    }

    void rowsBelowTheUpperEdgeStay() {
        Recorded on;
        TorvQDTable* box = on.table("T");
        box->SetHeight(box->Height + 4 * (box->ItemHeight + 1));
        box->SetFirstVisibleItem(0);
        box->SetHeight(box->Height - box->ItemHeight - 1);
        const int first = box->FirstVisibleItem;
        QVERIFY(first < std::min(0, int(box->Items.size()) - box->VisibleCount));
        on.recorder->reset();
        on.tick("T", "A");
        on.stack.undo();
        QCOMPARE(on.table("T")->FirstVisibleItem, first);
    }

    // The list is lower again: rows below zero would be out of sight, without a scroll bar.
    void undoneHeightShowsTheRows() {
        Recorded on;
        TorvQDTable* box = on.table("T");
        box->SetHeight(box->Height + 8 * (box->ItemHeight + 1));
        QCoreApplication::processEvents();
        QCOMPARE(on.stack.count(), 1);
        box->SetFirstVisibleItem(0);
        QVERIFY(box->FirstVisibleItem < 0);
        on.stack.undo();
        QCOMPARE(on.table("T")->FirstVisibleItem, 0);
    }

    // A host has put it there; it comes back within reach, which is no step of its own.
    void boxOutOfReachIsNoStep() {
        Recorded on;
        on.table("T")->SetLeft(-300);
        on.recorder->reset();
        on.tick("T", "A");
        on.stack.undo();
        QCoreApplication::processEvents();
        QCOMPARE(on.table("T")->Left, 0);
        QCOMPARE(on.stack.count(), 1);
        QVERIFY(on.stack.canRedo());
        on.stack.redo();
        QCoreApplication::processEvents();
        QCOMPARE(on.stack.count(), 1);
        QVERIFY(on.row("T", "A")->Checked);
    }

    void selectedBoxStaysSelected() {
        Recorded on;
        on.click(on.captionOf("U"));
        on.recorder->reset();
        on.tick("U", "X");
        on.stack.undo();
        QCOMPARE(on.area().selectedObject(), on.table("U"));
        QCOMPARE(on.stacking(), QStringList({"U", "T"}));
        QCOMPARE(on.stack.count(), 1);
    }

    void undoneStepsAreReplaced() {
        Recorded on;
        on.tick("T", "A");
        on.tick("T", "B");
        on.stack.undo();
        on.tick("T", "C");
        QCOMPARE(on.steps(), QStringList({"adding the column A", "adding the column C"}));
    }

    // --- groups

    void groupIsOneStep() {
        Recorded on;
        const QByteArray before = on.state();
        {
            const UndoRecorder::Group group(on.recorder.get());
            on.addTable("ORDERS");
            {
                const UndoRecorder::Group inner(on.recorder.get(), "inner");
                on.tick("ORDERS", "PRICE");
            }
            QCoreApplication::processEvents();
            on.link("T", "B", "ORDERS", "NAME");
            QVERIFY(on.steps().isEmpty());
        }
        QCOMPARE(on.steps(), QStringList{"adding ORDERS"});
        on.stack.undo();
        QCOMPARE(on.state(), before);
    }

    void groupHasItsOwnText() {
        Recorded on;
        {
            const UndoRecorder::Group group(on.recorder.get(), "loading a file");
            on.builder.LoadSQL("select BUDGET from DEPT");
        }
        { const UndoRecorder::Group nothing(on.recorder.get(), "nothing"); }
        QCOMPARE(on.steps(), QStringList{"loading a file"});
    }

    void groupMayOutliveItsRecorder() {
        Recorded on;
        const UndoRecorder::Group group(on.recorder.get(), "late");
        on.recorder.reset();
        on.tick("T", "A");
        QVERIFY(on.steps().isEmpty());
    }

    // --- bad days

    void whatIsToldMeanwhileIsNoStep() {
        Recorded on;
        on.tick("T", "A");
        int told = 0;
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, &on.builder, [&] {
            ++told;
            QVERIFY(on.recorder->isRestoring());
        });
        on.stack.undo();
        QCOMPARE(told, 1);
        QVERIFY(on.stack.canRedo());
        QVERIFY(!on.recorder->isRestoring());
    }

    void stepThatCannotBeShownGoes() {
        const RecordedServices services;
        Recorded on;
        on.tick("T", "A");
        on.builder.WherePanel->rootRow()->SubRows->AddRow();
        on.builder.statementChanged();
        on.builder.Clear();
        QCOMPARE(on.stack.count(), 3);
        // The condition's operator is known no more.
        TOperatorList none;
        on.builder.setOperators(none);
        const QByteArray before = on.state();
        on.stack.undo();
        QCOMPARE(services.errors.size(), 1);
        QVERIFY2(services.errors[0].startsWith("The state cannot be restored"),
                 qPrintable(services.errors[0]));
        QCOMPARE(on.state(), before);
        QCOMPARE(on.stack.count(), 2);
    }

    void anyoneMayGoFirst() {
        {
            QUndoStack stack;
            auto builder = std::make_unique<orvtest::HostedBuilder>();
            UndoRecorder recorder(&builder->builder, &stack);
            builder->addTable("T");
            QCOMPARE(stack.count(), 1);
            builder.reset();
            recorder.record();
            recorder.reset();
            QCOMPARE(stack.count(), 0);
        }
        {
            QUndoStack stack;
            orvtest::HostedBuilder on;
            auto recorder = std::make_unique<UndoRecorder>(&on.builder, &stack);
            on.addTable("T");
            recorder.reset();
            stack.undo();
            QCOMPARE(on.tables(), QStringList{"T"});
            QCOMPARE(stack.count(), 0);
        }
        {
            auto stack = std::make_unique<QUndoStack>();
            orvtest::HostedBuilder on;
            UndoRecorder recorder(&on.builder, stack.get());
            stack.reset();
            on.addTable("T");
            recorder.reset();
        }
    }

    void limitOfTheStackHolds() {
        Recorded on;
        on.stack.clear();
        on.stack.setUndoLimit(2);
        for (const char* field : {"A", "B", "C", "D"}) on.tick("T", field);
        QCOMPARE(on.steps(), QStringList({"adding the column C", "adding the column D"}));
        on.stack.undo();
        on.stack.undo();
        QCOMPARE(on.columns().size(), 2);
    }

    // --- the signal for the layout

    void layoutIsToldOnceTheHandLetsGo() {
        const ShownBuilder on;
        QCoreApplication::processEvents();
        int told = 0;
        QObject::connect(&on.builder, &TorvQueryBuilder::LayoutChanged, &on.builder,
                         [&] { ++told; });
        on.press(on.captionOf("T"));
        for (int way = 10; way <= 40; way += 10) {
            on.moveTo(on.captionOf("T") + QPoint(10, 10));
            QCoreApplication::processEvents();
        }
        QCOMPARE(told, 0);
        on.release(on.captionOf("T"));
        QCOMPARE(told, 0);
        QCoreApplication::processEvents();
        QCOMPARE(told, 1);
        on.area().arrange();
        QCoreApplication::processEvents();
        QCOMPARE(told, 2);
    }

    void layoutIsToldThoughAHandlerRaises() {
        const RecordedServices services;
        Recorded on;
        int told = 0;
        QObject::connect(&on.builder, &TorvQueryBuilder::LayoutChanged, &on.builder,
                         [&] { ++told; });
        on.table("T")->OnMouseUp = [](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
            throw orv::Error(QStringLiteral("handler"));
        };
        on.press(on.captionOf("T"));
        on.moveTo(on.captionOf("T") + QPoint(30, 30));
        QCoreApplication::processEvents();
        on.release(on.captionOf("T"));
        QCOMPARE(services.errors, QStringList("handler"));
        QCoreApplication::processEvents();
        QCOMPARE(told, 1);
        QCOMPARE(on.steps(), QStringList("moving T"));
    }

    // --- hosts that are told of an undone step

    void slotThatRaisesLeavesTheStep() {
        const RecordedServices services;
        Recorded on;
        const QByteArray before = on.state();
        on.addTable("ORDERS");
        const QByteArray after = on.state();
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                         [] { throw orv::Error(QStringLiteral("slot")); });
        on.stack.undo();
        QCOMPARE(services.errors, QStringList("slot"));
        QCOMPARE(on.state(), before);
        QVERIFY(on.stack.canRedo());
        on.stack.redo();
        QCOMPARE(on.state(), after);
        QCOMPARE(on.steps(), QStringList("adding ORDERS"));
        on.recorder->record();
        QCOMPARE(on.stack.count(), 1);
    }

    // It is told on the way, when half of the diagram is there: another attempt brings all of it.
    void handlerThatRaisesOnTheWayTakesNothingAway() {
        const RecordedServices services;
        Recorded on;
        on.addTable("ORDERS");
        on.tick("ORDERS", "ORDER_NO");
        const QByteArray before = on.state();
        on.builder.ListOfTables->DeleteTable(on.table("ORDERS"));
        const QByteArray after = on.state();
        const QStringList steps = on.steps();
        int told = 0;
        on.builder.WorkArea->OnAddTable = [&told](auto&&...) {
            if (++told == 1) throw orv::Error("handler");
        };
        on.stack.undo();
        QCOMPARE(services.errors, QStringList("handler"));
        QCOMPARE(on.state(), after);
        QCOMPARE(on.steps(), steps);
        on.builder.WorkArea->OnAddTable = nullptr;
        on.stack.redo();
        QCOMPARE(on.state(), after);
        on.stack.undo();
        QCOMPARE(on.state(), before);
        on.recorder->record();
        QCOMPARE(on.steps(), steps);
    }

    // Neither state can be shown: what is left is a change, which can be undone.
    void handlerThatAlwaysRaisesLeavesTheSteps() {
        const RecordedServices services;
        Recorded on;
        on.addTable("ORDERS");
        on.addTable("DEPT");
        const QStringList steps = on.steps();
        const QByteArray after = on.state();
        on.builder.WorkArea->OnAddTable = [](auto&&...) { throw orv::Error("handler"); };
        on.stack.undo();
        QCOMPARE(services.errors, QStringList({"handler", "handler"}));
        QCOMPARE(on.steps(), steps);
        on.builder.WorkArea->OnAddTable = nullptr;
        on.recorder->record();
        QCOMPARE(on.steps(), steps + QStringList("clearing the diagram"));
        on.stack.undo();
        QCOMPARE(on.state(), after);
    }

    // The steps hang together: what the host does to the state that comes back is one of its own.
    void changeOfWhatComesBackIsAStep() {
        const RecordedServices services;
        Recorded on;
        on.addTable("ORDERS");
        on.addTable("DEPT");
        const QStringList steps = on.steps();
        const QByteArray before = on.state();
        int told = 0;
        on.builder.WorkArea->OnAddTable = [&told](auto&&...) {
            if (++told == 1) throw orv::Error("handler");
        };
        bool isTicked = false;
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            if (!on.table("DEPT") || std::exchange(isTicked, true)) return;
            on.tick("DEPT", "BUDGET");
        });
        on.stack.undo();
        on.builder.WorkArea->OnAddTable = nullptr;
        QCOMPARE(services.errors, QStringList("handler"));
        const QByteArray after = on.state();
        QVERIFY(after != before);
        on.recorder->record();
        QCOMPARE(on.steps(), steps + QStringList("adding the column BUDGET"));
        on.stack.undo();
        QCOMPARE(on.state(), before);
        on.stack.redo();
        QCOMPARE(on.state(), after);
    }

    void slotMayUndoAgain() {
        Recorded on;
        const QByteArray before = on.state();
        on.addTable("ORDERS");
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                         [&] { on.stack.undo(); });
        on.stack.undo();
        QCOMPARE(on.state(), before);
        QVERIFY(on.stack.canRedo());
        QVERIFY(!on.stack.canUndo());
    }

    // The stack goes on from where it is then, which must be where the diagram is.
    void slotMayMoveTheStack_data() {
        QTest::addColumn<bool>("isUndone");
        QTest::addColumn<bool>("undoesMeanwhile");
        for (const bool isUndone : {false, true}) {
            for (const bool undoes : {false, true}) {
                QTest::addRow("%s in %s", undoes ? "undo" : "redo", isUndone ? "undo" : "redo")
                    << isUndone << undoes;
            }
        }
    }
    void slotMayMoveTheStack() {
        QFETCH(bool, isUndone);
        QFETCH(bool, undoesMeanwhile);
        Recorded on;
        QList<QByteArray> states = {on.state()};
        for (const char* table : {"ORDERS", "DEPT", "EMPLOYEE", "U"}) {
            on.addTable(table);
            states << on.state();
        }
        on.stack.setIndex(2);
        bool isFirst = true;
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            if (!std::exchange(isFirst, false)) return;
            undoesMeanwhile ? on.stack.undo() : on.stack.redo();
        });
        isUndone ? on.stack.undo() : on.stack.redo();
        QVERIFY(!isFirst);
        QCOMPARE(on.stack.index(), isUndone ? 1 : 3);
        QCOMPARE(on.state(), states[on.stack.index()]);
        on.stack.undo();
        QCOMPARE(on.state(), states[on.stack.index()]);
        on.stack.redo();
        QCOMPARE(on.state(), states[on.stack.index()]);
    }

    void slotMayResetTheRecorder() {
        Recorded on;
        const QByteArray before = on.state();
        on.addTable("ORDERS");
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                         [&] { on.recorder->reset(); });
        on.stack.undo();
        QCoreApplication::processEvents();
        QCOMPARE(on.stack.count(), 0);
        QCOMPARE(on.state(), before);
    }

    void slotMayDestroyTheRecorder() {
        Recorded on;
        const QByteArray before = on.state();
        on.addTable("ORDERS");
        QObject::connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                         [&] { on.recorder.reset(); });
        on.stack.undo();
        QVERIFY(!on.recorder);
        QCOMPARE(on.state(), before);
    }

    void slotOfTheStackMayRaiseAtTheEndOfAGroup() {
        const RecordedServices services;
        Recorded on;
        QObject::connect(&on.stack, &QUndoStack::indexChanged, this,
                         [] { throw orv::Error(QStringLiteral("slot")); });
        {
            const UndoRecorder::Group group(on.recorder.get());
            on.addTable("ORDERS");
        }
        on.stack.disconnect(this);
        QCOMPARE(services.errors, QStringList("slot"));
        QCOMPARE(on.steps(), QStringList("adding ORDERS"));
    }

    // --- texts

    void texts_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<QString>("text");
        const QByteArray three =
            R"({"tables":[{"alias":"A"},{"alias":"B"},{"alias":"C"}],"columns":[["X","","A.X"]]})";
        const QByteArray four =
            R"({"tables":[{"alias":"A"},{"alias":"B"},{"alias":"C"},{"alias":"D"}],)"
            R"("columns":[["X","","A.X"]]})";
        QTest::newRow("three") << QByteArray("{}") << three << "adding A, B, C";
        QTest::newRow("four") << QByteArray("{}") << four << "adding 4 tables";
        QTest::newRow("removed") << four << three << "removing D";
        QTest::newRow("column removed")
            << QByteArray(R"({"columns":[["X","","A.X"],["Y","","A.Y"],["Z","","A.Z"]]})")
            << QByteArray(R"({"columns":[["X","","A.X"],["Z","","A.Z"]]})")
            << "removing the column Y";
        QTest::newRow("groups") << QByteArray(R"({"having":{"group":"All"}})")
                                << QByteArray(R"({"having":{"group":"Any"}})")
                                << "changing the conditions of groups";
        QTest::newRow("order") << QByteArray(R"({"order":[]})")
                               << QByteArray(R"({"order":[["X","Ascending"]]})")
                               << "changing the order of rows";
        QTest::newRow("parameters")
            << QByteArray(R"({"tables":[{"alias":"P","parameters":[{"name":"N"}]}]})")
            << QByteArray(R"({"tables":[{"alias":"P","parameters":[{"name":"N","value":"1"}]}]})")
            << "changing the parameters of P";
        QTest::newRow("anything") << QByteArray("{}") << QByteArray(R"({"creationOrder":[1]})")
                                  << "changing the query";
    }

    void texts() {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QFETCH(QString, text);
        QCOMPARE(orv::changeText(before, after), text);
    }
};

QTEST_MAIN(UndoTest)
#include "tst_undo.moc"
