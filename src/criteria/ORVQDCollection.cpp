// SPDX-License-Identifier: MIT
#include "criteria/ORVQDCollection.h"

#include <algorithm>
#include <utility>

TCollectionEx::TCollectionEx(ItemFactory factory) : m_factory(std::move(factory)) {}

TCollectionEx::~TCollectionEx() = default;

void TCollectionEx::Assign(const TCollectionEx& Source) {
    if (&Source == this) return;
    BeginUpdate();
    m_items.clear();
    for (const auto& item : Source.m_items) Add()->Assign(*item);
    EndUpdate();
}

void TCollectionEx::SetItemName(TCollectionItemEx*) {}

void TCollectionEx::Update(TCollectionItemEx*) {}

void TCollectionEx::BeginUpdate() {
    ++m_updateCount;
}

void TCollectionEx::EndUpdate() {
    --m_updateCount;
    Changed();
}

void TCollectionEx::Changed() {
    if (m_updateCount == 0) Update(nullptr);
}

TCollectionItemEx* TCollectionEx::Add() {
    InsertItem(m_factory());
    return m_items.back().get();
}

TCollectionItemEx* TCollectionEx::Insert(int Index) {
    TCollectionItemEx* item = Add();
    item->SetIndex(Index);
    return item;
}

void TCollectionEx::Delete(int Index) {
    if (Index < 0 || Index >= GetCount()) return;
    const auto item = std::move(m_items[std::size_t(Index)]);
    m_items.erase(m_items.begin() + Index);
    Changed();
}

void TCollectionEx::Clear() {
    if (m_items.empty()) return;
    m_items.clear();
    Changed();
}

TCollectionItemEx* TCollectionEx::GetItem(int Index) const {
    return Index >= 0 && Index < GetCount() ? m_items[std::size_t(Index)].get() : nullptr;
}

void TCollectionEx::SetItem(int Index, const TCollectionItemEx& Item) {
    if (TCollectionItemEx* item = GetItem(Index)) item->Assign(Item);
}

TCollectionItemEx* TCollectionEx::FindItemID(int ID) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const auto& item) { return item->m_id == ID; });
    return found == m_items.end() ? nullptr : found->get();
}

// Items remember where they were found: asking all of them in turn stays linear.
int TCollectionEx::indexOf(const TCollectionItemEx* item) const {
    if (!item || item->m_collection != this) return -1;
    if (GetItem(item->m_index) != item) renumber();
    return item->m_index;
}

void TCollectionEx::renumber() const {
    for (std::size_t index = 0; index < m_items.size(); ++index) {
        m_items[index]->m_index = int(index);
    }
}

QString TCollectionEx::GetNamePath() const {
    return QStringLiteral("TCollectionEx");
}

QString TCollectionEx::GetItemAttr(int, int ItemIndex) const {
    const TCollectionItemEx* item = GetItem(ItemIndex);
    return item ? item->GetDisplayName() : QString();
}

void TCollectionEx::InsertItem(std::unique_ptr<TCollectionItemEx> Item) {
    Item->m_collection = this;
    Item->m_id = m_nextId++;
    Item->m_index = GetCount();
    SetItemName(Item.get());
    m_items.push_back(std::move(Item));
    Changed();
}

std::unique_ptr<TCollectionItemEx> TCollectionEx::RemoveItem(TCollectionItemEx* Item) {
    const int index = indexOf(Item);
    if (index < 0) return nullptr;
    std::unique_ptr<TCollectionItemEx> item = std::move(m_items[std::size_t(index)]);
    m_items.erase(m_items.begin() + index);
    item->m_collection = nullptr;
    Changed();
    return item;
}

std::vector<std::unique_ptr<TCollectionItemEx>> TCollectionEx::takeAll() {
    std::vector<std::unique_ptr<TCollectionItemEx>> items = std::move(m_items);
    m_items.clear();
    for (const auto& item : items) item->m_collection = nullptr;
    Changed();
    return items;
}

TCollectionItemEx::~TCollectionItemEx() = default;

void TCollectionItemEx::Assign(const TCollectionItemEx&) {}

QString TCollectionItemEx::GetDisplayName() const {
    return {};
}

void TCollectionItemEx::SetDisplayName(const QString&) {}

int TCollectionItemEx::GetIndex() const {
    return m_collection ? m_collection->indexOf(this) : -1;
}

QString TCollectionItemEx::GetNamePath() const {
    if (!m_collection) return {};
    return QStringLiteral("%1[%2]").arg(m_collection->GetNamePath()).arg(GetIndex());
}

void TCollectionItemEx::SetIndex(int Index) {
    const int from = GetIndex();
    if (from < 0 || from == Index || Index < 0 || Index >= m_collection->GetCount()) return;
    auto& items = m_collection->m_items;
    auto item = std::move(items[std::size_t(from)]);
    items.erase(items.begin() + from);
    items.insert(items.begin() + Index, std::move(item));
    m_collection->Changed();
}

void TCollectionItemEx::SetCollection(TCollectionEx* Collection) {
    if (Collection == m_collection || !Collection || !m_collection) return;
    Collection->InsertItem(m_collection->RemoveItem(this));
}

void TCollectionItemEx::Changed(bool AllItems) {
    if (m_collection && m_collection->m_updateCount == 0) {
        m_collection->Update(AllItems ? nullptr : this);
    }
}
