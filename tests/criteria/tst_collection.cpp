// SPDX-License-Identifier: MIT
#include "criteria/ORVQDCollection.h"
#include "support/TestTools.h"

namespace {

class Item : public TCollectionItemEx {
public:
    void Assign(const TCollectionItemEx& Source) override {
        if (const auto* item = dynamic_cast<const Item*>(&Source)) text = item->text;
    }
    QString GetDisplayName() const override { return text; }
    void SetDisplayName(const QString& Name) override { text = Name; }

    QString text;
};

class Foreign : public TCollectionItemEx {};

/// A collection that remembers its notifications: the item's text, or "all".
class Items : public TCollectionEx {
public:
    Items() : TCollectionEx([] { return std::make_unique<Item>(); }) {}

    void Update(TCollectionItemEx* Item) override {
        updates << (Item ? Item->GetDisplayName() : QStringLiteral("all"));
    }
    void SetItemName(TCollectionItemEx* Item) override { named << Item->id(); }

    Item* add(const QString& text) {
        auto* item = static_cast<Item*>(Add());
        item->text = text;
        return item;
    }
    [[nodiscard]] QStringList texts() const {
        QStringList result;
        for (int index = 0; index < GetCount(); ++index) result << GetItem(index)->GetDisplayName();
        return result;
    }

    QStringList updates;
    QList<int> named;
};

/// a, b and c.
void fill(Items& items) {
    for (const char* text : {"a", "b", "c"}) items.add(text);
    items.updates.clear();
}

}  // namespace

class CollectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void addAppendsAndTheItemKnowsItsPlace() {
        Items items;
        Item* a = items.add("a");
        Item* b = items.add("b");
        QCOMPARE(items.texts(), QStringList({"a", "b"}));
        QCOMPARE(items.GetCount(), 2);
        QCOMPARE(a->GetIndex(), 0);
        QCOMPARE(b->GetIndex(), 1);
        QCOMPARE(a->collection(), &items);
        QCOMPARE(a->GetOwner(), &items);
    }

    void idsCountOnAndAreNotUsedAgain() {
        Items items;
        fill(items);
        QCOMPARE(items.GetItem(0)->id(), 0);
        QCOMPARE(items.GetItem(2)->id(), 2);
        items.Delete(2);
        QCOMPARE(items.Add()->id(), 3);
        QCOMPARE(items.named, QList<int>({0, 1, 2, 3}));
    }

    void itemsAreFoundById() {
        Items items;
        fill(items);
        items.Delete(0);
        QCOMPARE(items.FindItemID(2)->GetDisplayName(), "c");
        QCOMPARE(items.FindItemID(0), nullptr);
        QCOMPARE(items.FindItemID(7), nullptr);
    }

    void insertPutsTheNewItemInItsPlace() {
        Items items;
        fill(items);
        static_cast<Item*>(items.Insert(1))->text = "x";
        QCOMPARE(items.texts(), QStringList({"a", "x", "b", "c"}));
        for (int index = 0; index < 4; ++index) QCOMPARE(items.GetItem(index)->GetIndex(), index);
    }

    void deleteAndClear() {
        Items items;
        fill(items);
        items.Delete(1);
        QCOMPARE(items.texts(), QStringList({"a", "c"}));
        QCOMPARE(items.GetItem(1)->GetIndex(), 1);
        items.Delete(-1);
        items.Delete(2);
        QCOMPARE(items.GetCount(), 2);
        items.Clear();
        QCOMPARE(items.GetCount(), 0);
        QCOMPARE(items.GetItem(0), nullptr);
    }

    void setIndexMovesAnItem_data() {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("to the end") << 0 << 2 << QStringList({"b", "c", "a"});
        QTest::newRow("to the front") << 2 << 0 << QStringList({"c", "a", "b"});
        QTest::newRow("by one") << 0 << 1 << QStringList({"b", "a", "c"});
        QTest::newRow("out of range") << 0 << 3 << QStringList({"a", "b", "c"});
        QTest::newRow("below zero") << 1 << -1 << QStringList({"a", "b", "c"});
    }
    void setIndexMovesAnItem() {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QStringList, texts);
        Items items;
        fill(items);
        items.GetItem(from)->SetIndex(to);
        QCOMPARE(items.texts(), texts);
        for (int index = 0; index < 3; ++index) QCOMPARE(items.GetItem(index)->GetIndex(), index);
    }

    void setItemCopiesContentsOnly() {
        Items items;
        fill(items);
        Item other;
        other.text = "new";
        items.SetItem(1, other);
        QCOMPARE(items.texts(), QStringList({"a", "new", "c"}));
        QCOMPARE(items.GetItem(1)->id(), 1);
        items.SetItem(5, other);
        items.SetItem(0, Foreign());
        QCOMPARE(items.texts(), QStringList({"a", "new", "c"}));
    }

    void assignCopiesTheItemsOfTheSource() {
        Items source;
        fill(source);
        Items items;
        items.add("old");
        items.updates.clear();
        items.Assign(source);
        QCOMPARE(items.texts(), source.texts());
        QVERIFY(items.GetItem(0) != source.GetItem(0));
        QCOMPARE(items.updates, QStringList("all"));
        items.Assign(items);
        QCOMPARE(items.texts(), source.texts());
    }

    // --- notifications

    void changesAreToldUnlessTheyAreHeldBack() {
        Items items;
        fill(items);
        items.Add();
        QCOMPARE(items.updates, QStringList("all"));
        items.updates.clear();
        items.BeginUpdate();
        items.BeginUpdate();
        items.Add();
        items.Delete(0);
        items.EndUpdate();
        QCOMPARE(items.updates, QStringList());
        items.EndUpdate();
        QCOMPARE(items.updates, QStringList("all"));
    }

    void itemTellsOfItselfOrOfAll() {
        Items items;
        fill(items);
        items.GetItem(1)->Changed(false);
        items.GetItem(1)->Changed(true);
        QCOMPARE(items.updates, QStringList({"b", "all"}));
        items.updates.clear();
        items.BeginUpdate();
        items.GetItem(1)->Changed(false);
        QCOMPARE(items.updates, QStringList());
        items.EndUpdate();
        Item alone;
        alone.Changed(false);
    }

    // --- moving between collections

    void itemMovesToTheEndOfAnotherCollection() {
        Items from;
        Items to;
        fill(from);
        fill(to);
        TCollectionItemEx* item = from.GetItem(1);
        item->SetCollection(&to);
        QCOMPARE(from.texts(), QStringList({"a", "c"}));
        QCOMPARE(to.texts(), QStringList({"a", "b", "c", "b"}));
        QCOMPARE(to.GetItem(3), item);
        QCOMPARE(item->collection(), &to);
        QCOMPARE(item->GetIndex(), 3);
        QCOMPARE(item->id(), 3);
        QCOMPARE(from.GetItem(1)->GetIndex(), 1);
        item->SetCollection(&to);
        QCOMPARE(to.GetCount(), 4);
    }

    void removedItemBelongsToNobody() {
        Items items;
        fill(items);
        TCollectionItemEx* first = items.GetItem(0);
        const auto removed = items.RemoveItem(first);
        QCOMPARE(removed.get(), first);
        QCOMPARE(removed->collection(), nullptr);
        QCOMPARE(removed->GetIndex(), -1);
        QCOMPARE(items.texts(), QStringList({"b", "c"}));
        QVERIFY(!items.RemoveItem(first));
        QCOMPARE(items.indexOf(first), -1);
        QCOMPARE(items.indexOf(nullptr), -1);
    }

    void takingAllLeavesTheCollectionEmpty() {
        Items items;
        fill(items);
        const auto all = items.takeAll();
        QCOMPARE(all.size(), std::size_t(3));
        QCOMPARE(all[2]->GetDisplayName(), "c");
        QCOMPARE(all[2]->collection(), nullptr);
        QCOMPARE(items.GetCount(), 0);
    }

    void attributesAreTheDisplayName() {
        Items items;
        fill(items);
        QCOMPARE(items.GetAttrCount(), 0);
        QCOMPARE(items.GetAttr(0), QString());
        QCOMPARE(items.GetItemAttr(0, 1), "b");
        QCOMPARE(items.GetItemAttr(0, 9), QString());
        QCOMPARE(items.GetPropName(), QString());
        QCOMPARE(items.GetItem(2)->GetNamePath(), items.GetNamePath() + "[2]");
    }

    void baseItemHasNoContents() {
        Foreign item;
        item.SetDisplayName("x");
        QCOMPARE(item.GetDisplayName(), QString());
        item.Assign(Foreign());
        QCOMPARE(item.GetNamePath(), QString());
    }

    // Asking every item for its place must not search for each of them.
    void placesOfManyItemsAreFoundQuickly() {
        Items items;
        constexpr int count = 50'000;
        items.BeginUpdate();
        for (int index = 0; index < count; ++index) items.Add();
        items.EndUpdate();
        items.Delete(0);
        qint64 sum = 0;
        for (int round = 0; round < 10; ++round) {
            for (int index = items.GetCount() - 1; index >= 0; --index) {
                sum += items.GetItem(index)->GetIndex();
            }
        }
        QCOMPARE(sum, qint64(10) * (count - 1) * (count - 2) / 2);
    }
};

QTEST_MAIN(CollectionTest)
#include "tst_collection.moc"
