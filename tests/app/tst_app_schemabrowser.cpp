// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "FakeDatabase.h"
#include "database/BackgroundDatabase.h"
#include "database/WorkerThread.h"
#include "tables/SchemaFile.h"
#include "toolkit/Services.h"
#include "window/SchemaBrowser.h"
#include "window/SchemaModel.h"

#include <QAction>
#include <QClipboard>
#include <QDrag>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>

using namespace orvquery;
using namespace std::chrono_literals;

// The browser as a person uses it, on a database that does what the test wants.
class TestSchemaBrowser : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void doubleClickChooses();
    void doubleClickFoldsGroups();
    void enterChoosesAllThatAreSelected();
    void enterOnAColumnChoosesItsTable();
    void typedLettersFindATable();
    void escapeClearsTheFilter();
    void downGoesToTheList();
    void controlLGoesToTheFilter();
    void filterSelectsTheFirstTable();
    void filterSelectsTheWholeName();
    void filterSelectsTheWholeNameInSchemas();

    void unfoldingReadsColumns();
    void columnsOfAFile();
    void problemIsReadAgainWhenUnfoldedAgain();
    void filterUnfoldsTablesForTheirColumns();
    void whatWasUnfoldedIsSoAfterFiltering();

    void refreshKeepsWhatAPersonSees();
    void progressIsShown();
    void readingCanBeCancelled();
    void failureCanBeTriedAgain();
    void openingIsShownOverTheFormerTables();

    void namesCanBeCopied();
    void selectCanBeCopied();
    void menuOffersWhatCanBeDone();
    void tablesAreDragged();
    void widgetsHaveNames();

private:
    void show(const QStringList& tables);
    void listAgain();
    [[nodiscard]] QTreeView& list() const { return *m_browser->findChild<QTreeView*>("tables"); }
    [[nodiscard]] QLineEdit& filter() const { return *m_browser->findChild<QLineEdit*>("filter"); }
    [[nodiscard]] SchemaModel& model() const { return *m_browser->findChild<SchemaModel*>(); }
    template <typename Widget>
    Widget& child(const char* name) const {
        return *m_browser->findChild<Widget*>(QLatin1String(name));
    }
    /// What a person sees, each line indented by its depth.
    [[nodiscard]] QStringList lines(const QModelIndex& parent = {}, int depth = 0) const;
    [[nodiscard]] QStringList chosen();
    void select(const QStringList& tables);
    void doubleClick(const QModelIndex& index);
    void trigger(const char* text);

    std::shared_ptr<apptest::Script> m_script;
    std::shared_ptr<QSemaphore> m_gate;
    std::unique_ptr<BackgroundDatabase> m_database;
    std::unique_ptr<SchemaBrowser> m_browser;
    std::unique_ptr<QSignalSpy> m_chosen;
};

void TestSchemaBrowser::init() {
    m_script = apptest::makeScript({});
    m_gate = std::make_shared<QSemaphore>();
    m_browser = std::make_unique<SchemaBrowser>();
    m_browser->resize(220, 400);
    m_browser->show();
    m_browser->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_browser.get()));
    m_chosen = std::make_unique<QSignalSpy>(m_browser.get(), &SchemaBrowser::tablesChosen);
}

void TestSchemaBrowser::cleanup() {
    m_gate->release(1000);
    m_chosen.reset();
    m_browser.reset();
    m_database.reset();
    QTRY_COMPARE(WorkerThread::threadsAtLarge(), 0);
    orv::setDragRunner({});
}

void TestSchemaBrowser::show(const QStringList& tables) {
    m_script->entries.clear();
    for (const QString& table : tables) m_script->entries.push_back({table});
    m_database = std::make_unique<BackgroundDatabase>(apptest::openerOf(m_script));
    QSignalSpy listed(m_database.get(), &BackgroundDatabase::listed);
    m_database->refresh();
    QVERIFY(listed.wait());
    m_browser->setDatabase(*m_database);
}

QStringList TestSchemaBrowser::lines(const QModelIndex& parent, int depth) const {
    QStringList all;
    for (int row = 0; row < model().rowCount(parent); ++row) {
        const QModelIndex index = model().index(row, 0, parent);
        all += QString(depth * 2, u' ') + index.data().toString();
        if (list().isExpanded(index)) all += lines(index, depth + 1);
    }
    return all;
}

// The names that were chosen since the last time, each choice in one text.
QStringList TestSchemaBrowser::chosen() {
    QStringList choices;
    for (const QList<QVariant>& arguments : std::as_const(*m_chosen)) {
        QStringList names;
        for (const TableName& name : arguments[0].value<QList<TableName>>()) names += name.name;
        choices += names.join(u' ');
    }
    m_chosen->clear();
    return choices;
}

void TestSchemaBrowser::select(const QStringList& tables) {
    list().clearSelection();
    for (const QString& table : tables) {
        list().selectionModel()->setCurrentIndex(model().indexOf({table}),
                                                 QItemSelectionModel::Select);
    }
}

// As a mouse does it: press, release, double click, release.
void TestSchemaBrowser::doubleClick(const QModelIndex& index) {
    const QPoint place = list().visualRect(index).center();
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, place);
}

void TestSchemaBrowser::trigger(const char* text) {
    for (QAction* action : m_browser->actions()) {
        if (action->text() == QLatin1String(text)) return action->trigger();
    }
    QFAIL(text);
}

// ---------------------------------------------------------------------------------- mouse and keys

void TestSchemaBrowser::doubleClickChooses() {
    show({"orders", "people"});
    doubleClick(model().indexOf({"people"}));
    QCOMPARE(chosen(), QStringList{"people"});
    QVERIFY(!list().isExpanded(model().indexOf({"people"})));
}

void TestSchemaBrowser::doubleClickFoldsGroups() {
    m_script->entries = {{"make", TableKind::Procedure}, {"each", TableKind::Function}};
    const std::vector<TableEntry> entries = m_script->entries;
    show({});
    m_script->entries = entries;
    QSignalSpy listed(m_database.get(), &BackgroundDatabase::listed);
    m_database->refresh();
    QVERIFY(listed.wait());
    QCOMPARE(lines(),
             QStringList({"Procedures and functions (1)", "  make", "System functions (1)"}));
    doubleClick(model().index(0, 0));
    doubleClick(model().index(1, 0));
    QCOMPARE(lines(),
             QStringList({"Procedures and functions (1)", "System functions (1)", "  each"}));
    QCOMPARE(chosen(), QStringList());
}

void TestSchemaBrowser::enterChoosesAllThatAreSelected() {
    show({"cities", "orders", "people"});
    select({"people", "cities"});
    QTest::keyClick(&list(), Qt::Key_Return);
    QCOMPARE(chosen(), QStringList{"cities people"});
    select({"orders"});
    QTest::keyClick(&filter(), Qt::Key_Enter);
    QCOMPARE(chosen(), QStringList{"orders"});
}

void TestSchemaBrowser::enterOnAColumnChoosesItsTable() {
    show({"orders"});
    list().expand(model().indexOf({"orders"}));
    QTRY_COMPARE(lines().size(), 3);
    list().setCurrentIndex(model().index(1, 0, model().indexOf({"orders"})));
    QTest::keyClick(&list(), Qt::Key_Return);
    QCOMPARE(chosen(), QStringList{"orders"});
}

void TestSchemaBrowser::typedLettersFindATable() {
    show({"cities", "orders", "people"});
    list().setFocus();
    QTest::keyClicks(&list(), "peo");
    QCOMPARE(list().currentIndex().data().toString(), QStringLiteral("people"));
}

void TestSchemaBrowser::escapeClearsTheFilter() {
    show({"orders", "people"});
    filter().setFocus();
    QTest::keyClicks(&filter(), "peo");
    QCOMPARE(lines(), QStringList{"people"});
    QTest::keyClick(&filter(), Qt::Key_Escape);
    QCOMPARE(lines(), QStringList({"orders", "people"}));
    QTest::keyClicks(&filter(), "ord");
    QTest::keyClick(&list(), Qt::Key_Escape);
    QCOMPARE(filter().text(), QString());
}

void TestSchemaBrowser::downGoesToTheList() {
    show({"orders"});
    filter().setFocus();
    QTest::keyClick(&filter(), Qt::Key_Down);
    QVERIFY(list().hasFocus());
}

void TestSchemaBrowser::controlLGoesToTheFilter() {
    show({"orders"});
    filter().setText("ord");
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_L, Qt::ControlModifier);
    QVERIFY(filter().hasFocus());
    QCOMPARE(filter().selectedText(), QStringLiteral("ord"));
    QTest::keyClick(m_browser.get(), Qt::Key_T, Qt::AltModifier);
    QVERIFY(list().hasFocus());
}

void TestSchemaBrowser::filterSelectsTheFirstTable() {
    m_script->entries = {};
    show({"orders", "people"});
    m_script->entries = {{"orders", TableKind::Table, {}, "archive"},
                         {"orders", TableKind::Table, {}, "sales"}};
    listAgain();
    // Nothing begins unfolded without a default schema.
    QCOMPARE(lines(), QStringList({"archive", "sales"}));
    filter().setText("sales.o");
    QCOMPARE(lines(), QStringList({"sales", "  orders"}));
    QCOMPARE(list().currentIndex().data().toString(), QStringLiteral("orders"));
    QCOMPARE(list().currentIndex().parent().data().toString(), QStringLiteral("sales"));
}

void TestSchemaBrowser::listAgain() {
    QSignalSpy listed(m_database.get(), &BackgroundDatabase::listed);
    m_database->refresh();
    QVERIFY(listed.wait());
}

// ------------------------------------------------------------------------------------- columns

void TestSchemaBrowser::filterSelectsTheWholeName() {
    show({"a_orders", "Orders", "orders_archive"});
    QTest::keyClicks(&filter(), "order");
    QTest::keyClick(&filter(), Qt::Key_Return);
    QTest::keyClicks(&filter(), "s");
    QTest::keyClick(&filter(), Qt::Key_Return);
    QTest::keyClicks(&filter(), "_");
    QTest::keyClick(&filter(), Qt::Key_Return);
    QCOMPARE(chosen(), QStringList({"a_orders", "Orders", "orders_archive"}));
}

// Of several those come first that need no schema in a statement.
void TestSchemaBrowser::filterSelectsTheWholeNameInSchemas() {
    m_script->defaultSchemas = QStringList{"main"};
    show({});
    m_script->entries = {{"all_orders", TableKind::Table, {}, "main"},
                         {"orders", TableKind::Table, {}, "archive"},
                         {"orders", TableKind::Table, {}, "main"}};
    listAgain();
    const auto chosenByTyping = [&](const char* text) {
        filter().clear();
        QTest::keyClicks(&filter(), text);
        m_chosen->clear();
        QTest::keyClick(&filter(), Qt::Key_Return);
        return m_chosen->value(0).value(0).value<QList<TableName>>();
    };
    QCOMPARE(chosenByTyping("orders"), QList<TableName>({{"orders", "main"}}));
    QCOMPARE(chosenByTyping("archive.orders"), QList<TableName>({{"orders", "archive"}}));
}

void TestSchemaBrowser::unfoldingReadsColumns() {
    show({"orders"});
    m_script->onColumns = [gate = m_gate] { gate->acquire(); };
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Right);
    QCOMPARE(lines(), QStringList({"orders", "  reading ..."}));
    m_gate->release();
    QTRY_COMPARE(lines(), QStringList({"orders", "  id", "  of_orders"}));
    QCOMPARE(m_script->described, 1);
}

void TestSchemaBrowser::columnsOfAFile() {
    const SchemaFile file(R"({"ORDERS": [["CUSTNO", "ftInteger"]]})", "s.json");
    m_browser->setSource(file, file.tables());
    list().expand(model().indexOf({"ORDERS"}));
    QTRY_COMPARE(lines(), QStringList({"ORDERS", "  CUSTNO"}));
    // There is nothing to be read anew.
    trigger("Re&fresh tables");
    QVERIFY(!child<QLabel>("listingText").isVisible());
}

void TestSchemaBrowser::problemIsReadAgainWhenUnfoldedAgain() {
    show({"orders"});
    m_script->onColumns = [script = m_script.get()] {
        if (script->described == 1) throw orv::Error(QStringLiteral("The server went away."));
    };
    const QPersistentModelIndex orders = model().indexOf({"orders"});
    list().expand(orders);
    QTRY_COMPARE(lines(), QStringList({"orders", "  The server went away."}));
    list().collapse(orders);
    list().expand(orders);
    QTRY_COMPARE(lines(), QStringList({"orders", "  id", "  of_orders"}));
}

void TestSchemaBrowser::filterUnfoldsTablesForTheirColumns() {
    show({"orders", "people"});
    list().expand(model().indexOf({"orders"}));
    QTRY_COMPARE(lines().size(), 4);
    list().collapse(model().indexOf({"orders"}));
    filter().setText("of_o");
    QCOMPARE(lines(), QStringList({"orders", "  of_orders"}));
    filter().clear();
    QCOMPARE(lines(), QStringList({"orders", "people"}));
}

void TestSchemaBrowser::whatWasUnfoldedIsSoAfterFiltering() {
    show({"orders", "people"});
    list().expand(model().indexOf({"orders"}));
    QTRY_COMPARE(lines().size(), 4);
    filter().setText("people");
    filter().clear();
    QCOMPARE(lines(), QStringList({"orders", "  id", "  of_orders", "people"}));
    list().collapse(model().indexOf({"orders"}));
    filter().setText("ord");
    QCOMPARE(lines(), QStringList{"orders"});
}

// ------------------------------------------------------------------------------------- reading

void TestSchemaBrowser::refreshKeepsWhatAPersonSees() {
    show({"cities", "orders", "people"});
    filter().setText("e");
    list().expand(model().indexOf({"people"}));
    QTRY_COMPARE(lines().size(), 5);
    list().setCurrentIndex(model().indexOf({"people"}));
    m_script->entries = {
        {QStringLiteral("more")}, {QStringLiteral("people")}, {QStringLiteral("towns")}};
    QSignalSpy listed(m_database.get(), &BackgroundDatabase::listed);
    QTest::keyClick(&list(), Qt::Key_R, Qt::ControlModifier);
    QVERIFY(listed.wait());
    QCOMPARE(filter().text(), QStringLiteral("e"));
    QCOMPARE(list().currentIndex(), model().indexOf({"people"}));
    QTRY_COMPARE(lines(), QStringList({"more", "people", "  id", "  of_people"}));
    QCOMPARE(m_script->described, 2);
}

void TestSchemaBrowser::progressIsShown() {
    show({"orders"});
    m_script->entries.assign(150, {QStringLiteral("t")});
    m_script->onKeys = [gate = m_gate] { gate->acquire(); };
    trigger("Re&fresh tables");
    QVERIFY(child<QToolButton>("cancelListing").isVisible());
    QVERIFY(!child<QToolButton>("listAgain").isVisible());
    QTRY_COMPARE(child<QLabel>("listingText").text(), QStringLiteral("100 tables so far ..."));
    m_gate->release();
    QTRY_VERIFY(!child<QLabel>("listingText").isVisible());
}

void TestSchemaBrowser::readingCanBeCancelled() {
    show({"orders"});
    m_script->onEntries = [gate = m_gate] { gate->acquire(); };
    trigger("Re&fresh tables");
    QTest::mouseClick(&child<QToolButton>("cancelListing"), Qt::LeftButton);
    QCOMPARE(child<QLabel>("listingText").text(),
             QStringLiteral("Reading the tables was stopped."));
    QVERIFY(child<QToolButton>("listAgain").isVisible());
    QCOMPARE(lines(), QStringList{"orders"});
}

void TestSchemaBrowser::failureCanBeTriedAgain() {
    show({"orders"});
    m_script->onEntries = [script = m_script.get()] {
        if (script->opened == 1) throw orv::Error(QStringLiteral("The server went away."));
    };
    trigger("Re&fresh tables");
    QTRY_COMPARE(child<QLabel>("listingText").text(), QStringLiteral("The server went away."));
    QVERIFY(!child<QToolButton>("cancelListing").isVisible());
    m_script->entries.push_back({QStringLiteral("people")});
    QTest::mouseClick(&child<QToolButton>("listAgain"), Qt::LeftButton);
    QTRY_COMPARE(lines(), QStringList({"orders", "people"}));
    QVERIFY(!child<QLabel>("listingText").isVisible());
}

void TestSchemaBrowser::openingIsShownOverTheFormerTables() {
    show({"orders"});
    const auto other = apptest::makeScript({"things"});
    other->onOpen = [gate = m_gate] { gate->acquire(); };
    BackgroundDatabase database(apptest::openerOf(other));
    m_browser->watchOpening(database);
    database.refresh();
    QCOMPARE(child<QLabel>("listingText").text(), QStringLiteral("Opening the database ..."));
    QCOMPARE(lines(), QStringList{"orders"});
    QSignalSpy cancelled(&database, &BackgroundDatabase::cancelled);
    QTest::mouseClick(&child<QToolButton>("cancelListing"), Qt::LeftButton);
    QCOMPARE(cancelled.size(), 1);
    QVERIFY(!child<QLabel>("listingText").isVisible());
    QCOMPARE(lines(), QStringList{"orders"});
}

// ---------------------------------------------------------------------------------- what is taken

void TestSchemaBrowser::namesCanBeCopied() {
    m_script->defaultSchemas = QStringList{"main"};
    show({"Order Details", "orders", "select"});
    select({"Order Details", "orders", "select"});
    trigger("Copy &name");
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("\"Order Details\"\norders\n\"select\""));
}

void TestSchemaBrowser::selectCanBeCopied() {
    m_script->defaultSchemas = QStringList{"main"};
    show({});
    m_script->entries = {{"orders", TableKind::Table, {}, "archive"},
                         {"orders", TableKind::Table, {}, "main"}};
    listAgain();
    QCOMPARE(lines(), QStringList({"main", "  orders", "archive"}));
    list().setCurrentIndex(model().indexOf({"orders", "main"}));
    trigger("Copy &SELECT *");
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("SELECT * FROM orders"));
    list().expand(model().index(1, 0));
    list().setCurrentIndex(model().indexOf({"orders", "archive"}));
    trigger("Copy &SELECT *");
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("SELECT * FROM archive.orders"));
}

void TestSchemaBrowser::menuOffersWhatCanBeDone() {
    show({"orders"});
    Q_EMIT list().customContextMenuRequested({5, 5});
    auto* menu = m_browser->findChild<QMenu*>("tableMenu");
    QVERIFY(menu != nullptr);
    QStringList texts;
    for (const QAction* action : menu->actions()) {
        if (!action->isSeparator()) texts += action->text();
        QVERIFY(action->isSeparator() || action->isEnabled());
    }
    QCOMPARE(texts,
             QStringList({"&Add to diagram", "Copy &name", "Copy &SELECT *", "Re&fresh tables"}));
    menu->actions().front()->trigger();
    QCOMPARE(chosen(), QStringList{"orders"});
    menu->close();
}

void TestSchemaBrowser::tablesAreDragged() {
    show({"cities", "orders", "people"});
    select({"cities", "orders"});
    QList<TableName> dragged;
    orv::setDragRunner([&](QDrag& drag) {
        dragged = SchemaModel::tablesOf(*drag.mimeData());
        drag.deleteLater();
        return Qt::CopyAction;
    });
    const QPoint from = list().visualRect(model().indexOf({"orders"})).center();
    QTest::mousePress(list().viewport(), Qt::LeftButton, {}, from);
    QTest::mouseMove(list().viewport(), from + QPoint(0, 60));
    QTest::mouseMove(list().viewport(), from + QPoint(0, 90));
    QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, from + QPoint(0, 90));
    QCOMPARE(dragged, QList<TableName>({{"cities"}, {"orders"}}));
}

void TestSchemaBrowser::widgetsHaveNames() {
    QCOMPARE(list().accessibleName(), QStringLiteral("Tables, views, procedures and functions"));
    QCOMPARE(filter().accessibleName(), QStringLiteral("Filter tables by name"));
}

QTEST_MAIN(TestSchemaBrowser)
#include "tst_app_schemabrowser.moc"
