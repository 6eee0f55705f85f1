// SPDX-License-Identifier: MIT
// What becomes of the editor of conditions when rows, pages or the builder change under it.
#include "criteria/EditedPanel.h"
#include "support/PagesHostStandIn.h"

using orvtest::EditedPanel;
using orvtest::PagesHostStandIn;
using orvtest::RecordedServices;

class ConditionEditorChangesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what goes meanwhile

    void textForARowThatIsGoneIsDropped() {
        EditedPanel on;
        on.type("7");
        on.panel()->rootRow()->SubRows->Delete(0);
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(on.condition(), "((T.C = 'x'))");
        QCOMPARE(on.changes, 0);
        QVERIFY(!on.panel()->isEditing());
    }

    void closesWhenItsElementGoes_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("row") << 0;
        QTest::newRow("argument") << 1;
        QTest::newRow("condition") << 2;
    }
    void closesWhenItsElementGoes() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        on.type("7");
        if (way == 0) on.panel()->rootRow()->SubRows->Delete(0);
        if (way == 1) on.row(0)->setOperator(on.builder->Operators->FindName("IS NULL"));
        if (way == 2) on.row(0)->SetGroupOper("Any");
        on.panel()->refreshView();
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
        QVERIFY(on.panel()->hasFocus());
        QVERIFY(!on.condition().contains(u'7'));
        QCOMPARE(on.changes, 0);
    }

    void collapsedByTheProgramItTakesOver() {
        EditedPanel on("(T.I = 1 OR T.J = 2) AND T.C = 'x'");
        TorvQDWhereRow* group = on.row(0);
        on.panel()->editText(*group->SubRows->Row(0)->Controls[ekArgument]);
        on.memo()->insertPlainText("7");
        group->SetExpanded(false);
        on.panel()->refreshView();
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(group->SubRows->Row(0)->Arguments[0], "7");
    }

    // --- what takes over first, and what drops

    void commandsTakeOverFirst_data() {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("condition");
        const QString other = "(T.C = 'x')";
        QTest::newRow("add") << 0
                             << "((T.I = 7) and (T.C = 'x') and (" + QString(9, u' ') + " = " +
                                    QString(9, u' ') + "))";
        QTest::newRow("compose") << 1 << "((T.I = 7) and  ((T.C = 'x')))";
        QTest::newRow("delete") << 2 << "((T.I = 7))";
        QTest::newRow("operator") << 3 << "((T.I = 7) and (T.C <> 'x'))";
        QTest::newRow("catalogue") << 4 << "((T.I = 7) and (T.C = 'x'))";
        QTest::newRow("host") << 5 << "((T.I = 7) and (T.C = 'x'))";
    }
    void commandsTakeOverFirst() {
        QFETCH(int, command);
        QFETCH(QString, condition);
        const RecordedServices services;
        EditedPanel on;
        TorvQDWherePanel* panel = on.panel();
        on.type("7");
        panel->setCurrentElement(&on.element(1, command == 3 ? int(ekOperator) : int(ekButton)));
        switch (command) {
        case 0: panel->AddCondition(); break;
        case 1: panel->MakeCompositCondition(); break;
        case 2: panel->DeleteCondition(); break;
        case 3: {
            QAction item;
            item.setData(QVariant::fromValue(on.builder->Operators->FindName("<>")));
            panel->SelectOperator(&item);
            break;
        }
        case 4: {
            TOperatorList same;
            same.Assign(on.builder->Operators.get());
            on.builder->setOperators(same);
            break;
        }
        case 5: on.builder->CommitPendingEdits(); break;
        default: break;
        }
        QVERIFY(!panel->isEditing());
        QCOMPARE(on.condition(), condition);
        verifyBuilder(*on.builder);
    }

    void renamedAliasReachesWhatIsBeingTyped() {
        EditedPanel on;
        on.type("T.J");
        on.builder->WorkArea->renameTable(on.builder->ListOfTables->tableByAlias("T"), "NEW");
        QCOMPARE(on.condition(), "((NEW.I = NEW.J) and (NEW.C = 'x'))");
        QVERIFY(!on.panel()->isEditing());
    }

    void clearingAndLoadingDrop_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("Clear") << 0;
        QTest::newRow("LoadSQL") << 1;
        QTest::newRow("RestoreState") << 2;
        QTest::newRow("ClearContents") << 3;
    }
    void clearingAndLoadingDrop() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        const QByteArray state = on.builder->SaveState();
        QStringList seen;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { seen << on.condition(); });
        on.type("4711");
        on.panel()->InsertField();
        if (way == 0) on.builder->Clear();
        if (way == 1) on.builder->LoadSQL("SELECT T.I FROM T WHERE T.J = 2");
        if (way == 2) on.builder->RestoreState(state);
        if (way == 3) on.panel()->ClearContents();
        QVERIFY(!on.panel()->isEditing());
        QVERIFY(on.memo()->isHidden());
        QVERIFY(on.list()->isHidden());
        QVERIFY(on.panel()->hasFocus());
        QVERIFY(!on.condition().contains("4711"));
        QCOMPARE(seen.size(), 1);
        QVERIFY(!seen.first().contains("4711"));
    }

    void loadingWhatIsShownLeavesItOpen() {
        EditedPanel on;
        on.type("7");
        on.builder->LoadSQL(on.builder->GetSQLStatment());
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "7");
        QVERIFY(on.memo()->isVisible());
    }

    void loadingThatFailsLeavesItOpen() {
        EditedPanel on;
        on.type("7");
        QVERIFY(orvtest::errorOf([&] { on.builder->LoadSQL("DELETE FROM T"); }) != "(no error)");
        QVERIFY(on.panel()->isEditing());
        QCOMPARE(on.memo()->text(), "7");
    }

    // --- host

    void errorOfTheHostGoesToTheErrorHandler() {
        const RecordedServices services;
        EditedPanel on;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [] { throw orv::Error(QStringLiteral("host")); });
        on.type("7");
        QTest::keyClick(on.memo(), Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("host"));
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QVERIFY(!on.panel()->isEditing());
        verifyBuilder(*on.builder);
    }

    void hostMayDestroyTheBuilder_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("enter") << 0;
        QTest::newRow("focus") << 1;
        QTest::newRow("leaving the list") << 2;
        QTest::newRow("press") << 3;
        QTest::newRow("command") << 4;
        QTest::newRow("catalogue") << 5;
        QTest::newRow("CommitPendingEdits") << 6;
        QTest::newRow("another element") << 7;
        QTest::newRow("row menu") << 8;
    }
    void hostMayDestroyTheBuilder() {
        QFETCH(int, way);
        EditedPanel on;
        QVERIFY(on.isActive());
        connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                [&] { delete on.builder; });
        on.type("7");
        if (way == 2) on.panel()->InsertField();
        switch (way) {
        case 0: EditedPanel::press(on.memo(), Qt::Key_Return); break;
        case 1:
        case 2: on.other->setFocus(); break;
        case 3: {
            QMouseEvent event(QEvent::MouseButtonPress, QPointF(5, 5), QPointF(5, 5),
                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(on.view(), &event);
            break;
        }
        case 4:
            on.panel()->setCurrentElement(&on.element(1, ekButton));
            on.panel()->AddCondition();
            break;
        case 5: on.panel()->PrepareToReloadOperators(); break;
        case 6: on.builder->CommitPendingEdits(); break;
        case 7: on.panel()->editText(on.element(1, ekArgument)); break;
        case 8: {
            QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
            QCoreApplication::sendEvent(on.view(), &event);
            break;
        }
        default: break;
        }
        QVERIFY(!on.builder);
    }

    // Without a builder there is nobody who disarms the editor first.
    void panelThatDiesWithAnOpenEditorTakesNothingOver() {
        for (const bool withList : {false, true}) {
            const RecordedServices services;
            const TGroupOperators groups;
            TOperatorList operators;
            orv::fillOperators(operators);
            PagesHostStandIn page;
            page.addTable("T", {"A"});
            page.show();
            QVERIFY(QTest::qWaitForWindowActive(&page));
            TorvTabSheet sheet(&page);
            sheet.resize(page.size());
            sheet.show();
            auto panel = std::make_unique<TorvQDWherePanel>(&sheet);
            panel->GroupOpers = &groups;
            panel->Operators = &operators;
            panel->Activate();
            TorvQDWhereRow* row = panel->rootRow()->SubRows->AddRow();
            panel->resize(300, 200);
            panel->show();
            page.changes = 0;
            panel->editText(*row->Controls[ekFieldName]);
            panel->findChild<TMemoEx*>()->insertPlainText("T.A");
            if (withList) panel->InsertField();
            QVERIFY(panel->isAncestorOf(QApplication::focusWidget()));
            panel.reset();
            QCOMPARE(page.changes, 0);
            QCOMPARE(page.openChanges, 0);
            QVERIFY(services.errors.isEmpty());
        }
    }

    void builderThatDiesWithAnOpenEditorTellsNobody() {
        for (const bool withList : {false, true}) {
            const RecordedServices services;
            EditedPanel on;
            QVERIFY(on.isActive());
            on.type("12a");
            if (withList) on.panel()->InsertField();
            delete on.builder;
            QCoreApplication::processEvents();
            QCOMPARE(on.changes, 0);
            QVERIFY(services.messages.isEmpty());
            QVERIFY(services.errors.isEmpty());
        }
    }

    void editorDoesNotOpenOnAPageThatTheHostLeft() {
        const EditedPanel on;
        on.type("2");
        QObject::connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                         [&] { on.builder->PageCtrl->setCurrentIndex(1); });
        on.open(1, ekArgument);
        QCOMPARE(on.row(0)->Arguments, QStringList("2"));
        QVERIFY(!on.panel()->isEditing());
    }
};

QTEST_MAIN(ConditionEditorChangesTest)
#include "tst_conditioneditorchanges.moc"
