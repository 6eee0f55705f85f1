// SPDX-License-Identifier: MIT
// The control as a widget: its parts, properties and options, and the list of its tables.
#include "querybuilder/ORVQDWindow.h"
#include "support/BuilderTools.h"

#include <QVBoxLayout>

using orvtest::HostedBuilder;

class WindowTest : public QObject {
    Q_OBJECT

    static QStringList captions(const TorvQueryBuilder& builder) {
        QStringList texts;
        for (int index = 0; index < builder.PageCtrl->count(); ++index) {
            texts << builder.PageCtrl->tabText(index);
        }
        return texts;
    }

    const QStringList m_captions = {"Criterions", "Selection", "Grouping criterions", "Sorting"};

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- construction

    void hasFourPagesBelowTheDiagram() {
        TorvQueryBuilder builder;
        QCOMPARE(captions(builder), m_captions);
        QCOMPARE(builder.PageCtrl->objectName(), "PageCtrl");
        QCOMPARE(builder.Splitter->orientation(), Qt::Vertical);
        QCOMPARE(builder.Splitter->count(), 2);
        QCOMPARE(builder.Splitter->widget(0), builder.WorkArea);
        QCOMPARE(builder.Splitter->widget(1), builder.PageCtrl);
        QCOMPARE(builder.Splitter->handleWidth(), 5);
        QCOMPARE(builder.size(), QSize(300, 200));
        for (int index = 0; index < 4; ++index) {
            QVERIFY(qobject_cast<TorvTabSheet*>(builder.PageCtrl->widget(index)));
        }
        QVERIFY(builder.PageCtrl->widget(1)->isAncestorOf(builder.SelectPanel));
    }

    void cataloguesHaveTheirDefaults() {
        const TorvQueryBuilder builder;
        QCOMPARE(builder.AgrFuncs.size(), 6);
        QCOMPARE(builder.GroupOpers.size(), std::size_t(4));
        QCOMPARE(builder.GroupOpers.front().GetOwner(), &builder);
        QCOMPARE(builder.Operators->Count(), 14);
        QCOMPARE(builder.SelectPanel->grid()->AgrFuncs, &builder.AgrFuncs);
        QCOMPARE(builder.SelectPanel->grid()->AllFields, &builder.AllFields());
    }

    void imagesAreATableAndAField() {
        const TorvQueryBuilder builder;
        QCOMPARE(builder.ImageList.size(), 2);
        for (const QIcon& icon : builder.ImageList) {
            const QImage image = icon.pixmap(16, 16).toImage();
            QCOMPARE(image.size(), QSize(16, 16));
            QCOMPARE(qAlpha(image.pixel(0, 15)), 0);
        }
        QVERIFY(builder.ImageList[0].pixmap(16, 16).toImage() !=
                builder.ImageList[1].pixmap(16, 16).toImage());
    }

    void designModeShowsEmptyPagesAlone() {
        TorvQueryBuilder builder(nullptr, true);
        QCOMPARE(captions(builder), m_captions);
        QVERIFY(!builder.WorkArea);
        QVERIFY(!builder.ListOfTables);
        QVERIFY(!builder.SelectPanel);
        QCOMPARE(builder.Splitter->count(), 1);
        QVERIFY(builder.Operators && builder.WorkAreaOptions && builder.ConditionOptions);
    }

    void designModeHasNothingToWriteOrLoad() {
        TorvQueryBuilder builder(nullptr, true);
        QCOMPARE(builder.GetSQLStatment(), QString());
        builder.LoadSQL("select a from t");
        builder.Clear();
        builder.CommitPendingEdits();
        QCOMPARE(builder.GetSortedFieldName(1), QString());
        QCOMPARE(builder.GetSortedAliasName("T.A"), QString());
        builder.show();
        QCoreApplication::processEvents();
        QVERIFY(builder.SaveState().isEmpty());
        QVERIFY(builder.PageCtrl->isVisible());
    }

    void parentIsTheOwner() {
        QWidget form;
        auto* builder = new TorvQueryBuilder(&form);
        QCOMPARE(builder->parentWidget(), &form);
        QCOMPARE(builder->WorkArea->window(), &form);
    }

    // --- the height of the pages

    void tabsHeightBeforeAndAfterShow_data() {
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("expected");
        QTest::newRow("negative") << -5 << 100;
        QTest::newRow("99") << 99 << 100;
        QTest::newRow("100") << 100 << 100;
        QTest::newRow("101") << 101 << 101;
        QTest::newRow("250") << 250 << 250;
    }
    void tabsHeightBeforeAndAfterShow() {
        QFETCH(int, height);
        QFETCH(int, expected);
        TorvQueryBuilder before;
        QCOMPARE(before.TabsHeight(), 100);
        before.setTabsHeight(height);
        QCOMPARE(before.TabsHeight(), expected);
        before.resize(600, 600);
        before.show();
        QCoreApplication::processEvents();
        QCOMPARE(before.TabsHeight(), expected);
        QCOMPARE(before.PageCtrl->height(), expected);

        TorvQueryBuilder after;
        after.resize(600, 600);
        after.show();
        QCoreApplication::processEvents();
        QCOMPARE(after.TabsHeight(), 100);
        after.setTabsHeight(height);
        QCOMPARE(after.TabsHeight(), expected);
        QCoreApplication::processEvents();
        QCOMPARE(after.PageCtrl->height(), expected);
    }

    // A page of tabs hides the builder and shows it again.
    void draggedPagesKeepTheirHeight() {
        TorvQueryBuilder builder;
        builder.resize(600, 600);
        builder.show();
        QCoreApplication::processEvents();
        QWidget* handle = builder.Splitter->handle(1);
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, grip);
        QTest::mouseMove(handle, grip - QPoint(0, 150));
        QTest::mouseRelease(handle, Qt::LeftButton, Qt::NoModifier, grip - QPoint(0, 150));
        QCoreApplication::processEvents();
        const int dragged = builder.PageCtrl->height();
        QCOMPARE(dragged, 250);
        QCOMPARE(builder.TabsHeight(), dragged);
        builder.hide();
        QCOMPARE(builder.TabsHeight(), dragged);
        builder.show();
        QCoreApplication::processEvents();
        QCOMPARE(builder.PageCtrl->height(), dragged);
        QCOMPARE(builder.TabsHeight(), dragged);
    }

    void heightOfPagesWaitsForRoom() {
        TorvQueryBuilder builder;
        builder.resize(300, 200);
        builder.show();
        QCoreApplication::processEvents();
        builder.setTabsHeight(250);
        QCOMPARE(builder.TabsHeight(), 100);
        builder.resize(600, 600);
        QCoreApplication::processEvents();
        QCOMPARE(builder.TabsHeight(), 250);
        QCOMPARE(builder.PageCtrl->height(), 250);
        builder.Splitter->setSizes({400, 150});
        const int own = builder.TabsHeight();
        builder.resize(600, 700);
        QCoreApplication::processEvents();
        QCOMPARE(builder.TabsHeight(), own);
    }

    void diagramTakesWhatThePagesLeave() {
        TorvQueryBuilder builder;
        builder.resize(600, 600);
        builder.show();
        QCoreApplication::processEvents();
        builder.resize(700, 800);
        QCoreApplication::processEvents();
        QCOMPARE(builder.PageCtrl->height(), 100);
        QCOMPARE(builder.TabsHeight(), 100);
    }

    // A form designer shows the control in design mode and stores what it reads.
    void tabsHeightOfADesignedFormIsTheOneThatWasSet() {
        TorvQueryBuilder builder(nullptr, true);
        builder.resize(600, 600);
        builder.show();
        QCoreApplication::processEvents();
        QCOMPARE(builder.TabsHeight(), 100);
        builder.setTabsHeight(150);
        QCOMPARE(builder.TabsHeight(), 150);
    }

    // --- alignment

    void alignPlacesTheControlInAParentWithoutLayout_data() {
        QTest::addColumn<int>("align");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("none") << int(TorvQueryBuilder::alNone) << QRect(10, 20, 300, 200);
        QTest::newRow("top") << int(TorvQueryBuilder::alTop) << QRect(0, 0, 640, 200);
        QTest::newRow("bottom") << int(TorvQueryBuilder::alBottom) << QRect(0, 280, 640, 200);
        QTest::newRow("left") << int(TorvQueryBuilder::alLeft) << QRect(0, 0, 300, 480);
        QTest::newRow("right") << int(TorvQueryBuilder::alRight) << QRect(340, 0, 300, 480);
        QTest::newRow("client") << int(TorvQueryBuilder::alClient) << QRect(0, 0, 640, 480);
    }
    void alignPlacesTheControlInAParentWithoutLayout() {
        QFETCH(int, align);
        QFETCH(QRect, expected);
        QWidget form;
        form.resize(500, 400);
        TorvQueryBuilder builder(&form);
        builder.move(10, 20);
        QCOMPARE(builder.Align(), TorvQueryBuilder::alNone);
        builder.setAlign(TorvQueryBuilder::TAlign(align));
        QCOMPARE(int(builder.Align()), align);
        form.show();
        form.resize(640, 480);
        QCoreApplication::processEvents();
        QCOMPARE(builder.geometry(), expected);
    }

    void layoutOfTheParentWins() {
        QWidget form;
        auto* layout = new QVBoxLayout(&form);
        layout->setContentsMargins(7, 7, 7, 7);
        auto* builder = new TorvQueryBuilder;
        layout->addWidget(builder);
        builder->setAlign(TorvQueryBuilder::alClient);
        form.resize(400, 300);
        form.show();
        QCoreApplication::processEvents();
        QCOMPARE(builder->geometry(), QRect(7, 7, 386, 286));
    }

    // --- options

    void optionsHaveTheirDefaults() {
        const TorvQueryBuilder builder;
        const TorvQDWorkAreaOptions& area = *builder.WorkAreaOptions;
        QVERIFY(area.GetHideSelection());
        QVERIFY(area.GetFlatCaptionBtns());
        QVERIFY(!area.GetDragFieldName());
        QVERIFY(!area.GetFlat());
        QVERIFY(!area.GetShowFieldsType());
        QCOMPARE(area.GetTableBorder(), edgeRaised);
        QCOMPARE(area.GetFont().family(), "Arial");
        QCOMPARE(area.GetTableColor(), QColor(Qt::white));
        QCOMPARE(area.GetProcedureColor(), QGuiApplication::palette().color(QPalette::ToolTipBase));
        QVERIFY(builder.ConditionOptions->GetSelectRow());
        QCOMPARE(builder.ConditionOptions->GetBtnsStyle(), btnFlat);
        QCOMPARE(builder.ConditionOptions->GetActiveRowColor(), QColor(Qt::white));
    }

    void fontChangeIsToldOncePerChange() {
        TorvQDWorkAreaOptions options;
        QFont font = options.GetFont();
        font.setPointSize(14);
        options.SetFont(font);  // nobody listens
        QList<int> sizes;
        options.OnChangeFont = [&](const QFont& changed) { sizes << changed.pointSize(); };
        font.setPointSize(20);
        options.SetFont(font);
        options.SetFont(font);
        QCOMPARE(sizes, QList<int>({20}));
    }

    void assigningOptionsCopies() {
        TorvQueryBuilder builder;
        TorvQDWorkAreaOptions* const own = builder.WorkAreaOptions.get();
        TorvQDWorkAreaOptions area;
        area.SetFlat(true);
        area.SetTableBorder(edgeBump);
        builder.setWorkAreaOptions(area);
        QCOMPARE(builder.WorkAreaOptions.get(), own);
        QVERIFY(own->GetFlat());
        QCOMPARE(own->GetTableBorder(), edgeBump);
        TorvQDConditionOptions conditions;
        conditions.SetSelectRow(false);
        builder.setConditionOptions(conditions);
        QVERIFY(!builder.ConditionOptions->GetSelectRow());
    }

    void operatorsAreCopied() {
        TorvQueryBuilder builder;
        TOperatorList list;
        list.Add(TorvQDOperator{"~", "like", {}, {}, {}, 1});
        builder.setOperators(list);
        QCOMPARE(builder.Operators->Count(), 1);
        QCOMPARE(builder.Operators->Items(0)->Name, "~");
        QVERIFY(builder.Operators.get() != &list);
    }

    void operatorsTravelAsTexts() {
        TorvQueryBuilder builder;
        const QStringList texts = builder.OperatorsList();
        QCOMPARE(texts.size(), 14 * 6);
        TorvQueryBuilder other;
        other.Operators->Clear();
        other.setOperatorsList(texts);
        QCOMPARE(other.OperatorsList(), texts);
        other.setOperatorsList({});
        QCOMPARE(other.OperatorsList(), texts);
    }

    void damagedOperatorsKeepWholeEntriesAndAreTold() {
        orvtest::RecordedServices services;
        TorvQueryBuilder builder;
        builder.setOperatorsList({"=", "equals", "", "", "", "1", "<", "less"});
        QCOMPARE(builder.Operators->Count(), 1);
        QCOMPARE(services.errors.size(), 1);
    }

    void publishedPropertiesAreThere_data() {
        QTest::addColumn<QByteArray>("name");
        for (const char* name :
             {"Align", "TabsHeight", "OperatorsList", "KeepMeaning", "TailText"}) {
            QTest::newRow(name) << QByteArray(name);
        }
    }
    void publishedPropertiesAreThere() {
        QFETCH(QByteArray, name);
        const TorvQueryBuilder builder;
        const int index = builder.metaObject()->indexOfProperty(name.constData());
        QVERIFY(index >= 0);
        QVERIFY(builder.metaObject()->property(index).isWritable());
    }

    void meaningIsNotKeptAtFirst() {
        const TorvQueryBuilder builder;
        QVERIFY(!builder.KeepMeaning());
    }

    // --- questions to the host

    void withoutAHandlerEverythingIsAllowed() {
        TorvQueryBuilder builder;
        QVERIFY(builder.DoAddRemoveTable(nullptr, araAdd));
        QVERIFY(builder.DoAddRemoveTable(nullptr, araRemove));
        QVERIFY(builder.DoAddRemoveLink(nullptr, araAdd));
        QVERIFY(builder.DoAddRemoveLink(nullptr, araRemove));
    }

    void handlerGetsTrueAndItsAnswerCounts() {
        TorvQueryBuilder builder;
        QList<bool> given;
        bool answer = false;
        builder.OnAddRemoveTable = [&](QObject* sender, TorvQDTable*, TAddRemove, bool& can) {
            if (sender == &builder) given << can;
            can = answer;
        };
        builder.OnAddRemoveLink = [&](QObject* sender, TorvQDLink*, TAddRemove, bool& can) {
            if (sender == &builder) given << can;
            can = answer;
        };
        QVERIFY(!builder.DoAddRemoveTable(nullptr, araAdd));
        QVERIFY(!builder.DoAddRemoveLink(nullptr, araAdd));
        answer = true;
        QVERIFY(builder.DoAddRemoveTable(nullptr, araAdd));
        QVERIFY(builder.DoAddRemoveLink(nullptr, araAdd));
        QCOMPARE(given, QList<bool>({true, true, true, true}));
    }

    void sortedNamesComeFromTheGrid() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a x, sum(t.b) s from t group by t.a");
        QCOMPARE(on.builder.GetSortedFieldName(1), "T.A");
        QCOMPARE(on.builder.GetSortedFieldName(2), "2");
        QCOMPARE(on.builder.GetSortedAliasName("T.A"), "X");
        QCOMPARE(on.builder.GetSortedAliasName("T.C"), QString());
    }

    // --- the list of tables

    void listShowsTheStackingOrder() {
        HostedBuilder on;
        QCOMPARE(on.builder.ListOfTables->TablesCount(), 0);
        TorvQDTable* first = on.addTable("T");
        TorvQDTable* second = on.addTable("U");
        QCOMPARE(on.builder.ListOfTables->TablesCount(), 2);
        QCOMPARE(on.builder.ListOfTables->Tables(0), second);
        QCOMPARE(on.builder.ListOfTables->Tables(1), first);
        QCOMPARE(on.builder.ListOfTables->tableByAlias("T"), first);
        QVERIFY(!on.builder.ListOfTables->tableByAlias("X"));
    }

    void indexOutsideTheListRaises_data() {
        QTest::addColumn<int>("index");
        QTest::newRow("negative") << -1;
        QTest::newRow("behind the last") << 1;
    }
    void indexOutsideTheListRaises() {
        QFETCH(int, index);
        HostedBuilder on;
        on.addTable("T");
        int asked = 0;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) { ++asked; };
        const QString error = QStringLiteral("List index out of bounds (%1)").arg(index);
        QCOMPARE(orvtest::errorOf([&] { (void)on.builder.ListOfTables->Tables(index); }), error);
        QCOMPARE(orvtest::errorOf([&] { on.builder.ListOfTables->DeleteTable(index); }), error);
        QCOMPARE(asked, 0);
        QCOMPARE(on.builder.ListOfTables->TablesCount(), 1);
    }

    void deletingByIndexAsksAndTells() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        QStringList asked;
        on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable* box, TAddRemove action, bool&) {
            if (action == araRemove) asked << box->GetAlias();
        };
        on.changes = 0;
        on.builder.ListOfTables->DeleteTable(1);
        QCOMPARE(asked, QStringList("T"));
        QCOMPARE(on.tables(), QStringList("U"));
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void deletingNothingDoesNothing() {
        HostedBuilder on;
        on.addTable("T");
        on.changes = 0;
        on.builder.ListOfTables->DeleteTable(nullptr);
        QCOMPARE(on.tables(), QStringList("T"));
        QCOMPARE(on.changes, 0);
    }

    void tableWithoutADataSetHasNoRows() {
        HostedBuilder on;
        const TDataSet* none = nullptr;
        const TorvQDTable* box = on.builder.ListOfTables->AddTable("T", none);
        QVERIFY(box && box->Items.empty());
        QVERIFY(orvtest::errorOf([&] { on.builder.ListOfTables->AddTable("", none); }) !=
                "(no error)");
        verifyBuilder(on.builder);
    }

    // --- lifetime

    void destroyingWithAnOpenEditTellsNobody() {
        int told = 0;
        {
            HostedBuilder on;
            on.builder.show();
            TorvQDTable* box = on.addTable("T");
            on.tick("T", "A");
            on.builder.WorkArea->beginRename(box);
            on.builder.OnAddRemoveTable = [&](QObject*, TorvQDTable*, TAddRemove, bool&) {
                ++told;
            };
            connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] { ++told; });
        }
        QCOMPARE(told, 0);
    }

    void builderMayBeDeletedWhenTheStatementChanged() {
        const QPointer<TorvQueryBuilder> builder = new TorvQueryBuilder;
        connect(builder, &TorvQueryBuilder::StatementChanged, builder, [&] {
            if (builder) builder->deleteLater();
        });
        orvtest::Host host;
        host.attach(*builder);
        builder->LoadSQL("select t.a from t");
        QVERIFY(builder);
        QCOMPARE(builder->GetSQLStatment(), "SELECT T.A\r\nFROM T");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!builder);
    }

    void noWidgetStaysBehind() {
        const qsizetype before = QApplication::allWidgets().size();
        {
            HostedBuilder on;
            on.addTable("T");
            on.builder.show();
        }
        QCOMPARE(QApplication::allWidgets().size(), before);
    }
};

QTEST_MAIN(WindowTest)
#include "tst_window.moc"
