// SPDX-License-Identifier: MIT
#include "window/SchemaModel.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace orvquery;

class TestSchemaModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void tablesWithoutSchemasAreFlat();
    void oneSchemaIsNoLevel();
    void schemasAreALevel();
    void defaultSchemasComeFirstInTheirOrder();
    void tablesOutsideSchemasHaveAPlace();
    void parametersStandInTheToolTip();

    void filterLooksIntoNames();
    void filterLooksIntoSchemas();
    void filterLooksIntoKnownColumns();
    void emptyFilterShowsAll();
    void newTablesAreNotFiltered();

    void columnsAreAskedForOnce();
    void columnsTakeThePlaceOfTheNote();
    void problemIsANoteUntilItIsForgotten();
    void tableWithoutColumnsHasNothingBelow();
    void columnsOfTablesThatAreNotShown();
    void columnsCanBeReplaced();
    void foreignKeysStandInTheToolTip();

    void tablesCanBeDragged();
    void brokenDragHasNoTables();
    void tenThousandTablesAreFilteredAtOnce();

private:
    /// The tree as lines, each indented by its depth.
    [[nodiscard]] QStringList tree(const QModelIndex& parent = {}, int depth = 0) const;
    void read(const TableName& name) const;
    [[nodiscard]] QModelIndex at(const TableName& name) const { return m_model->indexOf(name); }

    std::unique_ptr<SchemaModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void TestSchemaModel::init() {
    m_tester.reset();
    m_model = std::make_unique<SchemaModel>();
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    // Columns are asked for when the test wants it.
    m_tester->setUseFetchMore(false);
}

QStringList TestSchemaModel::tree(const QModelIndex& parent, int depth) const {
    QStringList lines;
    for (int row = 0; row < m_model->rowCount(parent); ++row) {
        const QModelIndex index = m_model->index(row, 0, parent);
        lines += QString(depth * 2, u' ') + index.data().toString();
        lines += tree(index, depth + 1);
    }
    return lines;
}

void TestSchemaModel::read(const TableName& name) const {
    m_model->fetchMore(at(name));
    m_model->setColumns(name,
                        {{QStringLiteral("id"), ftInteger, QStringLiteral("INTEGER"), true, true},
                         {QStringLiteral("City"), ftString, QStringLiteral("TEXT"), false, false}});
}

void TestSchemaModel::tablesWithoutSchemasAreFlat() {
    m_model->setTables({{"each", TableKind::Function},
                        {"make", TableKind::Procedure},
                        {"orders"},
                        {"rich", TableKind::View}},
                       {});
    QCOMPARE(tree(), QStringList({"orders", "rich", "Procedures and functions (1)", "  make",
                                  "System functions (1)", "  each"}));
    QCOMPARE(m_model->kindOf(at({"make"}).parent()), SchemaModel::Kind::Group);
    QVERIFY(m_model->beginsUnfolded(at({"make"}).parent()));
    QVERIFY(!m_model->beginsUnfolded(at({"each"}).parent()));
    QVERIFY(m_model->tableAt(at({"make"}).parent()) == nullptr);
    QCOMPARE(m_model->tableAt(at({"rich"}))->kind, TableKind::View);
}

void TestSchemaModel::oneSchemaIsNoLevel() {
    m_model->setTables({{"a", TableKind::Table, {}, "public"},
                        {"p", TableKind::Procedure, {}, "public"},
                        {"f", TableKind::Function, {}, "system"}},
                       {"public"});
    QCOMPARE(tree(), QStringList({"a", "Procedures and functions (1)", "  p",
                                  "System functions (1)", "  f"}));
}

void TestSchemaModel::schemasAreALevel() {
    m_model->setTables({{"each", TableKind::Function},
                        {"a", TableKind::Table, {}, "archive"},
                        {"p", TableKind::Procedure, {}, "archive"},
                        {"b", TableKind::Table, {}, "public"}},
                       {"public"});
    QCOMPARE(tree(),
             QStringList({"public", "  b", "archive", "  a", "  Procedures and functions (1)",
                          "    p", "System functions (1)", "  each"}));
    QVERIFY(m_model->beginsUnfolded(m_model->index(0, 0)));
    QVERIFY(!m_model->beginsUnfolded(m_model->index(1, 0)));
    QCOMPARE(m_model->kindOf(m_model->index(0, 0)), SchemaModel::Kind::Schema);
    QCOMPARE(at({"a", "archive"}).parent(), m_model->index(1, 0));
    QVERIFY(!at({"a", "public"}).isValid());
}

void TestSchemaModel::defaultSchemasComeFirstInTheirOrder() {
    m_model->setTables({{"t", TableKind::Table, {}, "a"},
                        {"t", TableKind::Table, {}, "b"},
                        {"t", TableKind::Table, {}, "c"},
                        {"t", TableKind::Table, {}, "d"}},
                       {"d", "b"});
    QCOMPARE(tree(), QStringList({"d", "  t", "b", "  t", "a", "  t", "c", "  t"}));
}

void TestSchemaModel::tablesOutsideSchemasHaveAPlace() {
    m_model->setTables({{"t"}, {"t", TableKind::Table, {}, "a"}}, {});
    QCOMPARE(tree(), QStringList({"(no schema)", "  t", "a", "  t"}));
    QVERIFY(at({"t"}) != at({"t", "a"}));
}

void TestSchemaModel::parametersStandInTheToolTip() {
    m_model->setTables({{"orders"}, {"make", TableKind::Procedure, {"x", "y"}}}, {});
    QCOMPARE(at({"orders"}).data(Qt::ToolTipRole).toString(), QStringLiteral("Table"));
    QCOMPARE(at({"make"}).data(Qt::ToolTipRole).toString(),
             QStringLiteral("Procedure or function make(x, y)"));
}

// -------------------------------------------------------------------------------------- filter

void TestSchemaModel::filterLooksIntoNames() {
    m_model->setTables(
        {{"each", TableKind::Function}, {"make", TableKind::Procedure}, {"Orders"}, {"people"}},
        {});
    m_model->setFilter("ORD");
    QCOMPARE(tree(), QStringList{"Orders"});
    m_model->setFilter("a");
    // The number is that of all.
    QCOMPARE(tree(), QStringList({"Procedures and functions (1)", "  make", "System functions (1)",
                                  "  each"}));
    QVERIFY(!at({"Orders"}).isValid());
    m_model->setFilter("procedures");
    QCOMPARE(tree(), QStringList());
}

void TestSchemaModel::filterLooksIntoSchemas() {
    m_model->setTables({{"orders", TableKind::Table, {}, "archive"},
                        {"make", TableKind::Procedure, {}, "archive"},
                        {"orders", TableKind::Table, {}, "public"},
                        {"people", TableKind::Table, {}, "public"}},
                       {"public"});
    m_model->setFilter("chive.o");
    QCOMPARE(tree(), QStringList({"archive", "  orders"}));
    m_model->setFilter("orders");
    QCOMPARE(tree(), QStringList({"public", "  orders", "archive", "  orders"}));
    m_model->setFilter("archive");
    QCOMPARE(tree(),
             QStringList({"archive", "  orders", "  Procedures and functions (1)", "    make"}));
}

void TestSchemaModel::filterLooksIntoKnownColumns() {
    m_model->setTables({{"cities"}, {"orders"}, {"people"}}, {});
    read({"orders"});
    m_model->setFilter("cit");
    QCOMPARE(tree(), QStringList({"cities", "orders", "  City"}));
    QVERIFY(m_model->isThereForColumn(at({"orders"})));
    QVERIFY(!m_model->isThereForColumn(at({"cities"})));
    m_model->setFilter("order");
    QCOMPARE(tree(), QStringList({"orders", "  id", "  City"}));
    QVERIFY(!m_model->isThereForColumn(at({"orders"})));
}

void TestSchemaModel::emptyFilterShowsAll() {
    m_model->setTables({{"orders"}, {"people"}}, {});
    read({"orders"});
    const QStringList all = tree();
    m_model->setFilter("city");
    m_model->setFilter("");
    QCOMPARE(tree(), all);
    QCOMPARE(all, QStringList({"orders", "  id", "  City", "people"}));
}

void TestSchemaModel::newTablesAreNotFiltered() {
    m_model->setTables({{"orders"}, {"people"}}, {});
    read({"orders"});
    m_model->setFilter("people");
    m_model->setTables({{"cities"}, {"orders"}}, {});
    QCOMPARE(tree(), QStringList({"cities", "orders"}));
    QVERIFY(m_model->canFetchMore(at({"orders"})));
}

// ------------------------------------------------------------------------------------- columns

void TestSchemaModel::columnsAreAskedForOnce() {
    m_model->setTables({{"orders", TableKind::Table, {}, "s"}}, {});
    QSignalSpy wanted(m_model.get(), &SchemaModel::columnsWanted);
    const QModelIndex orders = at({"orders", "s"});
    QVERIFY(m_model->hasChildren(orders));
    QCOMPARE(m_model->rowCount(orders), 0);
    QVERIFY(m_model->canFetchMore(orders));
    m_model->fetchMore(orders);
    QVERIFY(!m_model->canFetchMore(orders));
    m_model->fetchMore(orders);
    QCOMPARE(tree(), QStringList({"orders", "  reading ..."}));
    QCOMPARE(wanted.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(wanted.size(), 1);
    QCOMPARE(wanted[0][0].value<TableName>(), TableName("orders", "s"));
}

void TestSchemaModel::columnsTakeThePlaceOfTheNote() {
    m_model->setTables({{"orders"}}, {});
    read({"orders"});
    QCOMPARE(tree(), QStringList({"orders", "  id", "  City"}));
    const QModelIndex id = m_model->index(0, 0, at({"orders"}));
    const QModelIndex city = m_model->index(1, 0, at({"orders"}));
    QCOMPARE(m_model->kindOf(id), SchemaModel::Kind::Column);
    QCOMPARE(id.data(SchemaModel::detailRole).toString(), QStringLiteral("INTEGER, not null"));
    QCOMPARE(id.data(Qt::AccessibleTextRole).toString(),
             QStringLiteral("id, INTEGER, not null, primary key"));
    QCOMPARE(city.data(Qt::AccessibleTextRole).toString(), QStringLiteral("City, TEXT"));
    QVERIFY(id.data(Qt::DecorationRole).value<QIcon>().cacheKey() !=
            city.data(Qt::DecorationRole).value<QIcon>().cacheKey());
    QCOMPARE(m_model->tableAt(city)->name, QStringLiteral("orders"));
    QVERIFY(!m_model->hasChildren(city));
}

void TestSchemaModel::problemIsANoteUntilItIsForgotten() {
    m_model->setTables({{"orders"}}, {});
    m_model->fetchMore(at({"orders"}));
    m_model->setProblem({"orders"}, "The server went away.");
    QCOMPARE(tree(), QStringList({"orders", "  The server went away."}));
    QCOMPARE(m_model->kindOf(m_model->index(0, 0, at({"orders"}))), SchemaModel::Kind::Note);
    QVERIFY(!m_model->canFetchMore(at({"orders"})));
    m_model->forgetProblem(at({"orders"}));
    QCOMPARE(tree(), QStringList{"orders"});
    QVERIFY(m_model->canFetchMore(at({"orders"})));
    read({"orders"});
    // What is known stays so.
    m_model->setProblem({"orders"}, "The server went away.");
    m_model->forgetProblem(at({"orders"}));
    QCOMPARE(tree(), QStringList({"orders", "  id", "  City"}));
}

void TestSchemaModel::tableWithoutColumnsHasNothingBelow() {
    m_model->setTables({{"orders"}}, {});
    m_model->fetchMore(at({"orders"}));
    m_model->setColumns({"orders"}, {});
    QCOMPARE(tree(), QStringList{"orders"});
    QVERIFY(!m_model->hasChildren(at({"orders"})));
}

void TestSchemaModel::columnsOfTablesThatAreNotShown() {
    m_model->setTables({{"orders"}, {"people"}}, {});
    m_model->fetchMore(at({"orders"}));
    m_model->setFilter("people");
    m_model->setColumns({"orders"}, {{QStringLiteral("id")}});
    m_model->setColumns({"nowhere"}, {{QStringLiteral("id")}});
    QCOMPARE(tree(), QStringList{"people"});
    m_model->setFilter("");
    QCOMPARE(tree(), QStringList({"orders", "  id", "people"}));
}

void TestSchemaModel::columnsCanBeReplaced() {
    m_model->setTables({{"orders"}}, {});
    read({"orders"});
    m_model->setColumns({"orders"}, {{QStringLiteral("x")}});
    QCOMPARE(tree(), QStringList({"orders", "  x"}));
}

void TestSchemaModel::foreignKeysStandInTheToolTip() {
    m_model->setTables({{"cities"}, {"orders"}}, {});
    m_model->setForeignKeys({{{"orders"}, {"x", "City"}, {"cities"}, {"y", "name"}}});
    read({"orders"});
    read({"cities"});
    const auto toolTip = [&](const TableName& table) {
        return m_model->index(1, 0, at(table)).data(Qt::ToolTipRole).toString();
    };
    QCOMPARE(toolTip({"orders"}), QStringLiteral("City TEXT\nRefers to cities (name)"));
    QCOMPARE(toolTip({"cities"}), QStringLiteral("City TEXT"));
}

// --------------------------------------------------------------------------------- drags and size

void TestSchemaModel::tablesCanBeDragged() {
    m_model->setTables({{"a", TableKind::Table, {}, "s"}, {"b", TableKind::Table, {}, "t"}}, {});
    read({"a", "s"});
    const QModelIndex column = m_model->index(0, 0, at({"a", "s"}));
    QVERIFY(m_model->flags(at({"a", "s"})) & Qt::ItemIsDragEnabled);
    QVERIFY(!(m_model->flags(column) & Qt::ItemIsDragEnabled));
    QVERIFY(!(m_model->flags(m_model->index(0, 0)) & Qt::ItemIsDragEnabled));
    const std::unique_ptr<QMimeData> data(
        m_model->mimeData({at({"a", "s"}), column, m_model->index(0, 0), at({"b", "t"})}));
    QCOMPARE(data->formats(), m_model->mimeTypes());
    QCOMPARE(SchemaModel::tablesOf(*data), QList<TableName>({{"a", "s"}, {"b", "t"}}));
    QVERIFY(m_model->mimeData({m_model->index(0, 0)}) == nullptr);
}

void TestSchemaModel::brokenDragHasNoTables() {
    QMimeData data;
    QCOMPARE(SchemaModel::tablesOf(data), QList<TableName>());
    data.setText("orders");
    QCOMPARE(SchemaModel::tablesOf(data), QList<TableName>());
    data.setData(SchemaModel::mimeType, "nonsense");
    QCOMPARE(SchemaModel::tablesOf(data), QList<TableName>());
}

// The times are of interest to people; what is wrong is what takes longer than any machine needs.
void TestSchemaModel::tenThousandTablesAreFilteredAtOnce() {
    m_tester.reset();
    std::vector<TableEntry> entries;
    for (int table = 0; table < 10000; ++table) {
        const QString number = QStringLiteral("%1").arg(table, 5, 10, QLatin1Char('0'));
        entries.push_back({QStringLiteral("customer_orders_") + number,
                           TableKind::Table,
                           {},
                           QStringLiteral("schema_") + number.left(2)});
    }
    QElapsedTimer timer;
    timer.start();
    m_model->setTables(entries, {"schema_00"});
    qInfo("10000 tables set in %lld ms", timer.restart());
    QCOMPARE(m_model->rowCount(), 10);
    for (const char* text : {"o", "or", "ord", "orders_000", "schema_07.c", ""}) {
        timer.restart();
        m_model->setFilter(QLatin1String(text));
        qInfo("filtered by \"%s\" in %lld ms", text, timer.elapsed());
        QVERIFY(timer.elapsed() < 1000);
    }
    m_model->setFilter("orders_0004");
    QCOMPARE(tree().size(), 11);
}

QTEST_MAIN(TestSchemaModel)
#include "tst_app_schemamodel.moc"
