// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "querybuilder/ORVQDUndo.h"
#include "querybuilder/ORVQDWindow.h"

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

// What Python holds instead of objects of the diagram and of the builder. These die when their
// owner says so, however many Python variables are left: a reference knows when its object is gone
// and raises RuntimeError then.

/// Thrown by a reference whose object is gone.
class GoneError : public std::runtime_error {
public:
    explicit GoneError(const char* what) : std::runtime_error(what) {}
};

class RowRef;

/// While one lives, the box or link counts as one of the diagram: the host is asked whether it may
/// become one.
class Offer {
public:
    explicit Offer(const TorvQDFloatObject* object);
    ~Offer();
    Offer(const Offer&) = delete;
    Offer& operator=(const Offer&) = delete;
};

/// Whether the box or link is on the diagram, or offered to it. One that was closed is not, though
/// it dies later.
[[nodiscard]] bool isOnDiagram(const TorvQDFloatObject* object);

/// A box of the diagram.
class TableRef {
public:
    explicit TableRef(TorvQDTable* table) : m_table(table), m_hash(qHash(quintptr(table))) {}

    [[nodiscard]] bool isAlive() const { return isOnDiagram(m_table); }
    /// The box; throws GoneError when there is none any more.
    [[nodiscard]] TorvQDTable* get() const;

    [[nodiscard]] QString TableName() const { return get()->TableName; }
    [[nodiscard]] QString Alias() const { return get()->Alias(); }
    [[nodiscard]] QString GetAlias() const { return get()->GetAlias(); }
    [[nodiscard]] QString GetCaption() const { return get()->GetCaption(); }
    [[nodiscard]] QString Hint() const { return get()->Hint; }
    void setHint(const QString& text) { get()->Hint = text; }
    [[nodiscard]] int FieldState() const { return get()->FieldState; }
    void SetFieldState(int state);
    [[nodiscard]] bool Expanded() const { return get()->Expanded != 0; }
    void setExpanded(bool value) { get()->SetExpand(value ? -1 : 0); }
    [[nodiscard]] int Left() const { return get()->Left; }
    [[nodiscard]] int Top() const { return get()->Top; }
    [[nodiscard]] int Width() const { return get()->Width; }
    [[nodiscard]] int Height() const { return get()->Height; }
    void setLeft(int value) { get()->SetLeft(value); }
    void setTop(int value) { get()->SetTop(value); }
    void setWidth(int value) { get()->SetWidth(value); }
    void setHeight(int value) { get()->SetHeight(value); }
    void MoveTable(int dx, int dy) { get()->MoveTable(dx, dy); }
    [[nodiscard]] std::vector<RowRef> Items() const;
    /// None when there is none; the caller owns it.
    [[nodiscard]] RowRef* GetFieldItem(const QString& name) const;
    [[nodiscard]] bool isProcedure() const;
    [[nodiscard]] QString GetParameters() const;
    /// Throws std::invalid_argument for a row of another box.
    void setParameter(const RowRef& row, const QVariant& value);
    void CloseTable() { get()->CloseTable(); }
    void UnlinkTable() { get()->UnlinkTable(); }

    [[nodiscard]] QString repr() const;
    [[nodiscard]] std::size_t hash() const { return m_hash; }
    friend bool operator==(const TableRef& left, const TableRef& right) {
        return &left == &right || (left.m_table && left.m_table == right.m_table);
    }

private:
    QPointer<TorvQDTable> m_table;
    std::size_t m_hash;  // stays when the box is gone
};

/// A row of a box. Rows live as long as their box.
class RowRef {
public:
    explicit RowRef(TorvQDListItem* item)
        : m_table(item->Table), m_item(item), m_hash(qHash(quintptr(item))) {}

    [[nodiscard]] bool isAlive() const { return isOnDiagram(m_table); }
    [[nodiscard]] TorvQDListItem* get() const;

    [[nodiscard]] TableRef* Table() const { return new TableRef(get()->Table); }
    [[nodiscard]] QString Name() const { return get()->Name; }
    [[nodiscard]] TFieldType FieldType() const { return get()->FieldType; }
    [[nodiscard]] TParamType ParamType() const { return get()->ParamType; }
    [[nodiscard]] int GetIndex() const { return get()->GetIndex(); }
    [[nodiscard]] QString GetDataName() const { return get()->GetDataName(); }
    [[nodiscard]] bool Checked() const { return get()->Checked; }
    /// As the user does: a field when it is not as wanted, for an input parameter the host is asked
    /// whatever it is.
    void SetCheck(bool value);
    [[nodiscard]] bool IsNull() const { return get()->IsNull; }
    [[nodiscard]] QVariant Value() const { return get()->Value; }
    // The members of a parameter; throw std::invalid_argument for a field.
    void setChecked(bool value);
    void setIsNull(bool value);
    void setValue(const QVariant& value);

    [[nodiscard]] QString repr() const;
    [[nodiscard]] std::size_t hash() const { return m_hash; }
    friend bool operator==(const RowRef& left, const RowRef& right) {
        return &left == &right ||
               (left.m_table && left.m_table == right.m_table && left.m_item == right.m_item);
    }

private:
    template <typename Change>
    void changeParameter(const Change& change);

    QPointer<TorvQDTable> m_table;
    TorvQDListItem* m_item;
    std::size_t m_hash;
};

/// A link of the diagram.
class LinkRef {
public:
    explicit LinkRef(TorvQDLink* link) : m_link(link), m_hash(qHash(quintptr(link))) {}

    [[nodiscard]] bool isAlive() const { return isOnDiagram(m_link); }
    [[nodiscard]] TorvQDLink* get() const;

    [[nodiscard]] TableRef* Table1() const { return new TableRef(get()->Join->Table1); }
    [[nodiscard]] TableRef* Table2() const { return new TableRef(get()->Join->Table2); }
    [[nodiscard]] RowRef* Item1() const { return new RowRef(get()->Item1); }
    [[nodiscard]] RowRef* Item2() const { return new RowRef(get()->Item2); }
    [[nodiscard]] QString operatorText() const { return get()->operatorText(); }
    [[nodiscard]] TKindOfJoin KindOfJoin() const { return get()->Join->KindOfJoin; }
    [[nodiscard]] QString GetHint() const { return get()->GetHint(); }
    [[nodiscard]] bool Muted() const { return get()->Muted; }
    void setMuted(bool value) const {
        if (get()->Muted != value) get()->_MuteLink();
    }

    [[nodiscard]] QString repr() const;
    [[nodiscard]] std::size_t hash() const { return m_hash; }
    friend bool operator==(const LinkRef& left, const LinkRef& right) {
        return &left == &right || (left.m_link && left.m_link == right.m_link);
    }

private:
    QPointer<TorvQDLink> m_link;
    std::size_t m_hash;
};

/// One step of an undo stack, from when it is entered until it is left.
class UndoGroup {
public:
    explicit UndoGroup(orv::UndoRecorder* recorder, QString text = {})
        : m_recorder(recorder), m_text(std::move(text)) {}

    void enter() {
        m_group = std::make_unique<orv::UndoRecorder::Group>(m_recorder.data(), m_text);
    }
    void leave() { m_group.reset(); }

private:
    QPointer<orv::UndoRecorder> m_recorder;
    QString m_text;
    std::unique_ptr<orv::UndoRecorder::Group> m_group;
};

/// The list of tables of a builder.
class TableListRef {
public:
    explicit TableListRef(TorvQueryBuilder* builder) : m_builder(builder) {}

    [[nodiscard]] int TablesCount() const { return get().TablesCount(); }
    [[nodiscard]] TableRef* Tables(int index) const { return new TableRef(get().Tables(index)); }
    /// Throws std::out_of_range; negative indices count from the end.
    [[nodiscard]] TableRef* item(int index) const;
    [[nodiscard]] TableRef* tableByAlias(const QString& alias) const;
    /// None when the host did not allow the table.
    TableRef* AddTable(const QString& name, const TDataSet* dataSet) const;
    TableRef* AddProc(const QString& name, const TDataSet* dataSet, const TParams* params) const;
    void DeleteTable(int index) const { get().DeleteTable(index); }
    void DeleteTable(const TableRef& table) const { get().DeleteTable(table.get()); }

private:
    [[nodiscard]] TorvQDListOfTables& get() const;

    QPointer<TorvQueryBuilder> m_builder;
};

/// The diagram of a builder, as far as its look goes.
class WorkAreaRef {
public:
    explicit WorkAreaRef(TorvQDWorkArea* area);

    void setLinkColor(const QColor& color) const;

private:
    QPointer<TorvQDWorkArea> m_area;
};

/// An operator list: a builder's, or one of its own.
class OperatorListRef {
public:
    OperatorListRef() : m_own(std::make_shared<TOperatorList>()), m_list(m_own.get()) {}
    explicit OperatorListRef(TOperatorList* list) : m_list(list) {}

    [[nodiscard]] TOperatorList& get() const;

    [[nodiscard]] int Count() const { return get().Count(); }
    /// Throws std::out_of_range; negative indices count from the end.
    [[nodiscard]] TorvQDOperator* item(int index) const;
    /// None when there is none; the caller owns it.
    [[nodiscard]] TorvQDOperator* Items(int index) const { return copyOf(get().Items(index)); }
    [[nodiscard]] TorvQDOperator* FindName(const QString& name) const {
        return copyOf(get().FindName(name));
    }
    int Add(const TorvQDOperator& entry) { return get().Add(entry); }
    void Delete(int index) { get().Delete(index); }
    void Clear() { get().Clear(); }
    void Assign(const OperatorListRef& source) { get().Assign(&source.get()); }
    [[nodiscard]] QStringList toStrings() const { return get().toStrings(); }
    void fromStrings(const QStringList& texts) { get().fromStrings(texts); }

    [[nodiscard]] QString repr() const;

private:
    [[nodiscard]] static TorvQDOperator* copyOf(const TOperatorList::Entry& entry) {
        return entry ? new TorvQDOperator(*entry) : nullptr;
    }

    std::shared_ptr<TOperatorList> m_own;
    QPointer<TOperatorList> m_list;
};

/// The options of a diagram: a builder's, or some of their own.
class WorkAreaOptionsRef {
public:
    WorkAreaOptionsRef()
        : m_own(std::make_shared<TorvQDWorkAreaOptions>()), m_options(m_own.get()) {}
    explicit WorkAreaOptionsRef(TorvQDWorkAreaOptions* options) : m_options(options) {}

    [[nodiscard]] TorvQDWorkAreaOptions& get() const;

    [[nodiscard]] bool HideSelection() const { return get().GetHideSelection(); }
    void setHideSelection(bool value) { get().SetHideSelection(value); }
    [[nodiscard]] bool DragFieldName() const { return get().GetDragFieldName(); }
    void setDragFieldName(bool value) { get().SetDragFieldName(value); }
    [[nodiscard]] bool Flat() const { return get().GetFlat(); }
    void setFlat(bool value) { get().SetFlat(value); }
    [[nodiscard]] bool ShowFieldsType() const { return get().GetShowFieldsType(); }
    void setShowFieldsType(bool value) { get().SetShowFieldsType(value); }
    [[nodiscard]] bool FlatCaptionBtns() const { return get().GetFlatCaptionBtns(); }
    void setFlatCaptionBtns(bool value) { get().SetFlatCaptionBtns(value); }
    [[nodiscard]] TBorderKind TableBorder() const { return get().GetTableBorder(); }
    void setTableBorder(TBorderKind value) { get().SetTableBorder(value); }
    [[nodiscard]] QFont Font() const { return get().GetFont(); }
    void setFont(const QFont& value) { get().SetFont(value); }
    [[nodiscard]] QColor TableColor() const { return get().GetTableColor(); }
    void setTableColor(const QColor& value) { get().SetTableColor(value); }
    [[nodiscard]] QColor ProcedureColor() const { return get().GetProcedureColor(); }
    void setProcedureColor(const QColor& value) { get().SetProcedureColor(value); }
    void Assign(const WorkAreaOptionsRef& source) { get().Assign(&source.get()); }

private:
    std::shared_ptr<TorvQDWorkAreaOptions> m_own;
    QPointer<TorvQDWorkAreaOptions> m_options;
};

/// The options of criteria panels: a builder's, or some of their own.
class ConditionOptionsRef {
public:
    ConditionOptionsRef()
        : m_own(std::make_shared<TorvQDConditionOptions>()), m_options(m_own.get()) {}
    explicit ConditionOptionsRef(TorvQDConditionOptions* options) : m_options(options) {}

    [[nodiscard]] TorvQDConditionOptions& get() const;

    [[nodiscard]] bool SelectRow() const { return get().GetSelectRow(); }
    void setSelectRow(bool value) { get().SetSelectRow(value); }
    [[nodiscard]] TbtnStyle BtnsStyle() const { return get().GetBtnsStyle(); }
    void setBtnsStyle(TbtnStyle value) { get().SetBtnsStyle(value); }
    [[nodiscard]] QColor ActiveRowColor() const { return get().GetActiveRowColor(); }
    void setActiveRowColor(const QColor& value) { get().SetActiveRowColor(value); }
    void Assign(const ConditionOptionsRef& source) { get().Assign(&source.get()); }

private:
    std::shared_ptr<TorvQDConditionOptions> m_own;
    QPointer<TorvQDConditionOptions> m_options;
};
