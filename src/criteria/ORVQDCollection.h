// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class TCollectionItemEx;

/// An ordered collection that owns its items, hands each an id and can hold back its notification
/// while many items change.
class ORV_EXPORT TCollectionEx {
public:
    /// Makes an item that the collection is to own.
    using ItemFactory = std::function<std::unique_ptr<TCollectionItemEx>()>;

    /// `factory` makes the items that Add and Insert create.
    explicit TCollectionEx(ItemFactory factory);
    TCollectionEx(const TCollectionEx&) = delete;
    TCollectionEx& operator=(const TCollectionEx&) = delete;
    virtual ~TCollectionEx();

    /// Replaces the items by copies of the source's.
    virtual void Assign(const TCollectionEx& Source);
    /// Gives a new item a name; here items have none.
    virtual void SetItemName(TCollectionItemEx* Item);
    /// Called after a change, with the item, or none when all may have changed.
    virtual void Update(TCollectionItemEx* Item);
    /// Between these two, which nest, changes are not told; the last one tells that all may have
    /// changed.
    virtual void BeginUpdate();
    virtual void EndUpdate();

    /// Makes an item at the end, or at an index, and owns it.
    TCollectionItemEx* Add();
    TCollectionItemEx* Insert(int Index);
    /// Deletes the item at an index; nothing out of range.
    void Delete(int Index);
    /// Deletes all items.
    void Clear();
    /// How many items there are.
    [[nodiscard]] int GetCount() const { return int(m_items.size()); }
    /// The item at an index; none out of range.
    [[nodiscard]] TCollectionItemEx* GetItem(int Index) const;
    /// Copies the item's content into the one at the index.
    void SetItem(int Index, const TCollectionItemEx& Item);
    /// The item of that id; none when there is none.
    [[nodiscard]] TCollectionItemEx* FindItemID(int ID) const;
    /// Position of an item of this collection; -1 for any other.
    [[nodiscard]] int indexOf(const TCollectionItemEx* item) const;

    /// The name of the class; items add their index to it.
    [[nodiscard]] QString GetNamePath() const;
    /// The property that holds the collection: none, because no form stores one.
    [[nodiscard]] QString GetPropName() const { return {}; }
    /// Items have no attributes besides their display name.
    [[nodiscard]] int GetAttrCount() const { return 0; }
    [[nodiscard]] QString GetAttr(int) const { return {}; }
    [[nodiscard]] QString GetItemAttr(int AttrIndex, int ItemIndex) const;

    /// Takes the item in at the end and gives it the next id.
    void InsertItem(std::unique_ptr<TCollectionItemEx> Item);
    /// Lets the item go; the caller owns it then.
    [[nodiscard]] std::unique_ptr<TCollectionItemEx> RemoveItem(TCollectionItemEx* Item);

    /// Lets all items go, in order; the caller owns them then.
    [[nodiscard]] std::vector<std::unique_ptr<TCollectionItemEx>> takeAll();

    /// Tells Update() that all may have changed, once the last EndUpdate() has come.
    void Changed();

protected:
    friend class TCollectionItemEx;

    ItemFactory m_factory;
    std::vector<std::unique_ptr<TCollectionItemEx>> m_items;
    int m_updateCount = 0;
    int m_nextId = 0;

private:
    void renumber() const;
};

/// One item of a TCollectionEx, which owns it.
class ORV_EXPORT TCollectionItemEx {
public:
    /// An item of no collection.
    TCollectionItemEx() = default;
    TCollectionItemEx(const TCollectionItemEx&) = delete;
    TCollectionItemEx& operator=(const TCollectionItemEx&) = delete;
    virtual ~TCollectionItemEx();

    /// Copies the content of the source; a source of another class is ignored.
    virtual void Assign(const TCollectionItemEx& Source);
    /// What stands for the item in a list; empty here.
    [[nodiscard]] virtual QString GetDisplayName() const;
    /// Moves the item to another position of its collection.
    virtual void SetIndex(int Index);
    /// Gives the item that text; nothing here.
    virtual void SetDisplayName(const QString& Name);

    /// Position in the collection; -1 without one.
    [[nodiscard]] int GetIndex() const;
    /// The collection's name with the item's index: "TCollectionEx[2]".
    [[nodiscard]] QString GetNamePath() const;
    /// The collection that owns the item; none without one.
    [[nodiscard]] TCollectionEx* GetOwner() const { return m_collection; }
    /// The number that the collection gave it; it gives no number twice.
    [[nodiscard]] int id() const { return m_id; }
    /// The collection that owns the item; none without one.
    [[nodiscard]] TCollectionEx* collection() const { return m_collection; }
    /// Moves the item to the end of another collection.
    void SetCollection(TCollectionEx* Collection);
    /// Tells the collection that this item, or all, changed.
    void Changed(bool AllItems);

private:
    friend class TCollectionEx;

    TCollectionEx* m_collection = nullptr;
    int m_id = 0;
    mutable int m_index = 0;  // where the item was last found; a hint only
};
