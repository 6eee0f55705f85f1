// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"

#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"

#include <QScopeGuard>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int minimumCaptionHeightPx = 20;
constexpr int minimumItemHeightPx = 16;
constexpr int mostVisibleRows = 6;

}  // namespace

TorvQDListItem::TorvQDListItem(TorvQDTable* table, const QString& name, TFieldType fieldType,
                               TParamType paramType)
    : Table(table), Name(name), FieldType(fieldType), ParamType(paramType) {}

QString TorvQDListItem::qualifiedName() const {
    return Table->GetAlias() + u'.' + Name;
}

TRect TorvQDListItem::GetBoundsRect() const {
    return Table->GetFullItemRect(this);
}

void TorvQDListItem::store(bool value) {
    if (Checked == value) return;
    if (ParamType == ptOutput) Table->m_checkedRows += value ? 1 : -1;
    Checked = value;
    Table->tell(IDiagramCanvas::BoxChange::Tick, this);
}

void TorvQDListItem::invalidate() const {
    if (IDiagramCanvas* canvas = Table->canvas()) canvas->invalidate(Table->GetItemRect(this));
}

void TorvQDListItem::SetCheck(bool value) {
    if (Table->leaving) return;
    IDiagramCanvas* canvas = Table->canvas();
    if (ParamType == ptInput && !Busy) {
        // The host may close the box while it asks its user: the row is looked at again afterwards.
        const QPointer<TorvQDTable> table(Table);
        const int index = m_index;
        Busy = true;
        // A handler that raises may have changed the row before.
        const auto settle = qScopeGuard([&] {
            if (!table) return;
            if (index < int(table->Items.size())) table->Items[std::size_t(index)]->Busy = false;
            table->invalidate(table->GetBoundsRect());
        });
        if (canvas) canvas->enterParameter(Table, this);
        return;
    }
    store(value);
    invalidate();
    if (ParamType == ptOutput && canvas) canvas->checkItem(Table, this);
}

void TorvQDListItem::UpdateCheck(int value) {
    store(value != 0);
    invalidate();
    if (ParamType == ptOutput) Table->recountFieldState(value != 0);
}

void TorvQDListItem::SetSelect(bool value) {
    Selected = value;
    invalidate();
}

TorvQDTable::TorvQDTable(QWidget* AParent, const TDataSet* DataSet, const QString& Name)
    : TorvQDFloatObject(AParent) {
    if (!canvas()) throw orv::Error(QStringLiteral("Invalide parent for table object!"));
    TableName = ProcessName(Name);
    const int fontHeight = std::abs(canvas()->fontHeight());
    SetCaptionHeight(fontHeight + captionPaddingPx);
    SetItemHeight(fontHeight);
    AssignItems(DataSet);
    Height = heightFor(VisibleCount);
}

TorvQDTable::~TorvQDTable() = default;

void TorvQDTable::AssignItems(const TDataSet* DataSet) {
    ++m_rowsVersion;
    for (std::unique_ptr<TorvQDListItem>& item : Items) m_droppedRows.push_back(std::move(item));
    Items.clear();
    m_rowByName.clear();
    m_rowByWord.clear();
    CurrentItem = DropItem = nullptr;
    m_outputRows = m_checkedRows = 0;
    const TFieldDefs fields = DataSet ? DataSet->FieldDefs : TFieldDefs();
    VisibleCount = std::min(int(fields.size()), mostVisibleRows);
    for (const TFieldDef& field : fields) {
        if (field.Name.isEmpty()) throw orv::Error(QStringLiteral("A field must have a name"));
        addRow(ProcessName(field.Name), field.DataType, ptOutput);
    }
    tell(IDiagramCanvas::BoxChange::Rows);
}

TorvQDListItem* TorvQDTable::addRow(const QString& name, TFieldType type, TParamType paramType) {
    Items.push_back(std::make_unique<TorvQDListItem>(this, name, type, paramType));
    Items.back()->m_index = int(Items.size()) - 1;
    if (paramType == ptOutput) ++m_outputRows;
    m_rowByName.clear();
    m_rowByWord.clear();
    return Items.back().get();
}

int TorvQDTable::heightFor(int rows) const {
    return (ItemHeight + rowGapPx) * rows + CaptionHeight + BorderWidth + 2 * Indent;
}

void TorvQDTable::tell(IDiagramCanvas::BoxChange change, const TorvQDListItem* row) {
    if (canvas()) canvas()->boxChanged(this, change, row);
}

void TorvQDTable::SetAlias(const QString& alias) {
    const QString old = GetAlias();
    m_alias = alias;
    if (aliasChanged && GetAlias() != old) aliasChanged(this, old);
}

QString TorvQDTable::GetCaption() const {
    if (orv::isBlank(m_alias)) return TableName;
    return TableName + QStringLiteral(" (") + m_alias + QStringLiteral(")");
}

QString TorvQDTable::GetAlias() const {
    return orv::isBlank(m_alias) ? TableName : m_alias;
}

void TorvQDTable::indexNames() const {
    if (!m_rowByName.isEmpty()) return;
    for (std::size_t index = Items.size(); index-- > 0;) {
        const QString name = Items[index]->Name.toUpper();
        const auto held = m_rowByName.constFind(name);
        const bool isOutput = Items[index]->ParamType == ptOutput;
        const bool yields = !isOutput && held != m_rowByName.constEnd() &&
                            Items[std::size_t(*held)]->ParamType == ptOutput;
        if (!yields) m_rowByName.insert(name, int(index));
        if (!isOutput) continue;
        const QString word = orv::unquotedName(name);
        m_rowByWord.insert(word, m_rowByWord.contains(word) ? -1 : int(index));
    }
}

TorvQDListItem* TorvQDTable::GetFieldItem(const QString& Name) const {
    indexNames();
    const int index = m_rowByName.value(Name.toUpper(), -1);
    return index < 0 ? nullptr : Items[std::size_t(index)].get();
}

TorvQDListItem* TorvQDTable::findItem(const QString& name) const {
    TorvQDListItem* item = GetFieldItem(name);
    if (item && item->ParamType == ptOutput) return item;
    const int index = m_rowByWord.value(orv::unquotedName(name).toUpper(), -1);
    return index < 0 ? nullptr : Items[std::size_t(index)].get();
}

bool TorvQDTable::owns(const TorvQDListItem* item) const {
    return item && item->Table == this && item->m_index >= 0 && item->m_index < int(Items.size()) &&
           Items[std::size_t(item->m_index)].get() == item;
}

void TorvQDTable::SetCaptionHeight(int Value) {
    const int height = std::abs(Value);
    if (height == 0 || height == CaptionHeight) return;
    CaptionHeight = std::max(height, minimumCaptionHeightPx);
}

void TorvQDTable::SetItemHeight(int Value) {
    const int height = std::abs(Value);
    if (height == 0 || height == ItemHeight) return;
    ItemHeight = std::max(height, minimumItemHeightPx);
}

void TorvQDTable::SetSelect(bool Value) {
    TorvQDFloatObject::SetSelect(Value);
    invalidate(GetBoundsRect());
    showScrollBar(Value && Expanded && UpdateScrollBar());
}

void TorvQDTable::SetCurrentItem(TorvQDListItem* Item) {
    if (Item == CurrentItem || !owns(Item)) return;
    if (CurrentItem) CurrentItem->invalidate();
    CurrentItem = Item;
    CurrentItem->invalidate();
    tell(IDiagramCanvas::BoxChange::CurrentRow, CurrentItem);
}

void TorvQDTable::SetFieldState(int State) {
    UpdateFieldState(State);
    ChangeScope change(canvas(), Parent);
    // The host that is told may assign other rows, close the box, or raise something.
    const QPointer<TorvQDTable> self(this);
    auto settle = qScopeGuard([&] {
        if (self) recountFieldState(m_checkedRows > 0);
    });
    const int version = m_rowsVersion;
    for (std::size_t index = 0; self && version == m_rowsVersion && index < Items.size(); ++index) {
        if (Items[index]->ParamType == ptOutput) Items[index]->SetCheck(State == 2);
    }
    settle.dismiss();
    // What was being typed in the grid is taken over on the way: it may have ticked or unticked a
    // row whose turn came later.
    if (self && m_checkedRows == (State == 2 ? m_outputRows : 0)) UpdateFieldState(State);
    change.finish();
}

void TorvQDTable::UpdateFieldState(int State) {
    const int state = std::clamp(State, 0, 2);
    if (state == FieldState) return;
    FieldState = state;
    invalidate({Left, Top, Left + CaptionHeight, Top + CaptionHeight});
    tell(IDiagramCanvas::BoxChange::Tick);
}

// What one row's new tick makes of the check box: all ticked, none ticked, or some.
void TorvQDTable::recountFieldState(bool value) {
    const bool uniform = value ? m_checkedRows == m_outputRows : m_checkedRows == 0;
    const int state = !uniform ? 1 : value ? 2 : 0;
    if (state != FieldState) UpdateFieldState(state);
}

void TorvQDTable::CloseTable() {
    if (canvas()) canvas()->closeTable(this);
}

void TorvQDTable::UnlinkTable() {
    if (canvas()) canvas()->unlinkTable(this);
}

void TorvQDTable::_RemoveTable() {
    CloseTable();
}
