// SPDX-License-Identifier: MIT
#include "JoinDesk.h"
#include "database/BackgroundDatabase.h"
#include "database/OpenDatabase.h"
#include "tables/Host.h"
#include "window/JoinAssistant.h"

#include <QSignalSpy>

using namespace orvquery;

namespace {

// Tables of two columns; what it cannot tell it raises.
class OddSource : public TableSource {
public:
    bool hasKeys = true;
    mutable int keyReads = 0;
    QStringList gone = {};

    [[nodiscard]] QString title() const override { return {}; }
    [[nodiscard]] std::vector<TableEntry> tables() const override {
        return {{QStringLiteral("A")}, {QStringLiteral("B")}, {QStringLiteral("C")}};
    }
    [[nodiscard]] std::optional<TableDescription> find(const QString& name) const override {
        return describe(name);
    }
    [[nodiscard]] std::optional<TableDescription> describe(const TableName& name) const override {
        if (gone.contains(name.name)) throw orv::Error(name.name + QStringLiteral(" is gone."));
        TableDescription table;
        table.name = name.name;
        table.source = name;
        for (const char* column : {"NO", "NEXT"}) {
            table.columns.FieldDefs.push_back({QString::fromLatin1(column), ftInteger});
            table.entries.push_back({QString::fromLatin1(column), ftInteger});
        }
        return table;
    }
    [[nodiscard]] std::vector<ForeignKey> foreignKeys() const override {
        ++keyReads;
        if (!hasKeys) throw orv::Error(QStringLiteral("The keys cannot be read."));
        return {{QStringLiteral("A"), {"NEXT"}, QStringLiteral("B"), {"NO"}},
                {QStringLiteral("B"), {"NEXT"}, QStringLiteral("C"), {"NO"}}};
    }
};

}  // namespace

// What can change or fail while tables are joined.
class TestJoinHazards : public QObject, protected apptest::JoinDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void keysThatCannotBeReadAreNone();
    void keysAreReadOncePerListing();
    void backgroundListIsFollowed();
    void unreadableBoxIsPassedOver();
    void goneTableOfPath();
    void goneTableIsTold();
    void vetoOfLink();
    void vetoOfTable();
    void boxClosedWhileDialogIsOpen();
    void otherDatabaseWhileDialogIsOpen();
    void windowGoesWhileDialogIsOpen();
};

void TestJoinHazards::keysThatCannotBeReadAreNone() {
    OddSource source;
    source.hasKeys = false;
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(source, source.tables());
    for (const char* name : {"A", "B", "C"}) assistant.addTable(QString::fromLatin1(name));
    QCOMPARE(boxes(), QStringList({"A", "B", "C"}));
    QCOMPARE(links(), QStringList());
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(source.keyReads, 1);
}

void TestJoinHazards::keysAreReadOncePerListing() {
    OddSource source;
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(source, source.tables());
    QCOMPARE(source.keyReads, 0);
    for (const char* name : {"A", "B", "C"}) assistant.addTable(QString::fromLatin1(name));
    QCOMPARE(links(), QStringList({"A.NEXT=B.NO", "B.NEXT=C.NO"}));
    QCOMPARE(source.keyReads, 1);
    assistant.setSource(source, source.tables());
    answer([](JoinDialog& dialog) { dialog.reject(); });
    assistant.addTable(QStringLiteral("C"));
    QCOMPARE(source.keyReads, 2);
}

void TestJoinHazards::backgroundListIsFollowed() {
    const QString path = m_folder.filePath(QStringLiteral("growing.db"));
    QVERIFY(apptest::runStatements(path, {"CREATE TABLE a (id INTEGER PRIMARY KEY)"}));
    BackgroundDatabase database(databaseAddress(path));
    QSignalSpy listed(&database, &BackgroundDatabase::listed);
    database.refresh();
    QTRY_COMPARE(listed.count(), 1);
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(database, database.tables());
    assistant.addTable(QStringLiteral("a"));
    QVERIFY(apptest::runStatements(path, {"CREATE TABLE b (x INT REFERENCES a)"}));
    database.refresh();
    QTRY_COMPARE(listed.count(), 2);
    assistant.addTable(QStringLiteral("b"));
    QCOMPARE(links(), QStringList("A.ID=B.X"));
    // The present source counts, and no other.
    OddSource source;
    assistant.setSource(source, source.tables());
    database.refresh();
    QTRY_COMPARE(listed.count(), 3);
    builder().Clear();
    assistant.addTable(QStringLiteral("A"));
    assistant.addTable(QStringLiteral("B"));
    QCOMPARE(links(), QStringList("A.NEXT=B.NO"));
}

void TestJoinHazards::unreadableBoxIsPassedOver() {
    OddSource source;
    for (const char* name : {"A", "B"}) orvquery::addTable(builder(), source, TableName(name));
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(source, source.tables());
    source.gone = QStringList{QStringLiteral("A")};
    assistant.addTable(QStringLiteral("C"));
    QCOMPARE(links(), QStringList("B.NEXT=C.NO"));
    QCOMPARE(m_messages, QStringList());
}

// What was asked for comes all the same, and the reason is told.
void TestJoinHazards::goneTableOfPath() {
    OddSource source;
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(source, source.tables());
    assistant.addTable(QStringLiteral("A"));
    source.gone = QStringList{QStringLiteral("B")};
    answer([](JoinDialog& dialog) {
        listOf(dialog).topLevelItem(0)->setSelected(true);
        dialog.accept();
    });
    QCOMPARE(apptest::errorOf([&] { assistant.addTable(QStringLiteral("C")); }),
             QStringLiteral("B is gone."));
    QCOMPARE(m_asked, QStringList("A - B - C: also add B"));
    QCOMPARE(boxes(), QStringList({"A", "C"}));
    QCOMPARE(links(), QStringList());
}

void TestJoinHazards::goneTableIsTold() {
    OddSource source;
    JoinAssistant assistant(builder(), *m_window);
    assistant.setSource(source, source.tables());
    assistant.addTable(QStringLiteral("A"));
    source.gone = QStringList{QStringLiteral("B")};
    QCOMPARE(apptest::errorOf([&] { assistant.addTable(QStringLiteral("B")); }),
             QStringLiteral("B is gone."));
    QCOMPARE(boxes(), QStringList("A"));
}

void TestJoinHazards::vetoOfLink() {
    add("customers");
    builder().OnAddRemoveLink = [](QObject*, TorvQDLink*, TAddRemove, bool& isAllowed) {
        isAllowed = false;
    };
    add("orders");
    QCOMPARE(boxes(), QStringList({"CUSTOMERS", "ORDERS"}));
    QCOMPARE(links(), QStringList());
}

void TestJoinHazards::vetoOfTable() {
    add("customers");
    QString refused = QStringLiteral("ITEMS");
    builder().OnAddRemoveTable = [&](QObject*, TorvQDTable* box, TAddRemove, bool& isAllowed) {
        isAllowed = box->TableName != refused;
    };
    answer([](JoinDialog& dialog) {
        listOf(dialog).topLevelItem(0)->setSelected(true);
        dialog.accept();
    });
    add("products");
    QCOMPARE(boxes(), QStringList({"CUSTOMERS", "ORDERS", "PRODUCTS"}));
    QCOMPARE(links(), QStringList("CUSTOMERS.CUSTNO=ORDERS.CUSTNO"));
    refused = QStringLiteral("RETURNS");
    answer([](JoinDialog& dialog) { dialog.reject(); });
    add("returns");
    QCOMPARE(boxes(), QStringList({"CUSTOMERS", "ORDERS", "PRODUCTS"}));
    builder().OnAddRemoveTable = {};
}

void TestJoinHazards::boxClosedWhileDialogIsOpen() {
    add("places");
    answer([this](JoinDialog& dialog) {
        builder().ListOfTables->DeleteTable(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        dialog.accept();
    });
    add("trips");
    QCOMPARE(boxes(), QStringList("TRIPS"));
    QCOMPARE(links(), QStringList());
}

// The table is none of the other database.
void TestJoinHazards::otherDatabaseWhileDialogIsOpen() {
    add("places");
    QStringList sampleBoxes;
    answer([&, this](JoinDialog& dialog) {
        QVERIFY(m_window->openSample());
        sampleBoxes = boxes();
        dialog.accept();
    });
    add("trips");
    QVERIFY(!sampleBoxes.isEmpty());
    QCOMPARE(boxes(), sampleBoxes);
    QCOMPARE(m_messages, QStringList());
}

void TestJoinHazards::windowGoesWhileDialogIsOpen() {
    OddSource source;
    auto window = std::make_unique<QWidget>();
    auto* control = new TorvQueryBuilder(window.get());
    auto* assistant = new JoinAssistant(*control, *window);
    assistant->setSource(source, source.tables());
    assistant->addTable(QStringLiteral("A"));
    answer([&](JoinDialog&) { window.reset(); });
    assistant->addTable(QStringLiteral("C"));
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(m_messages, QStringList());
}

QTEST_MAIN(TestJoinHazards)
#include "tst_app_joinhazards.moc"
