// SPDX-License-Identifier: MIT
// What assistive technology is told of boxes and of their rows.
#include "workarea/ORVQDAccessible_p.h"
#include "workarea/ORVQDSProc.h"

#include <QWindow>

#include <algorithm>

namespace orv::accessible {

namespace {

// What a person hears of a parameter: its value as the call has it.
QString valueOf(const TorvQDListItem& row) {
    const QVariant value = TorvQDSProc::valueOf(row);
    if (!value.isValid()) return TorvQDWorkArea::tr("not set");
    const TorvQDWorkArea* area = areaOf(row.Table);
    const QString text = TorvQDSProc::valueText(value, row.FieldType, area && area->keepsMeaning());
    return text.isEmpty() ? TorvQDWorkArea::tr("left out") : text;
}

// --- rows ---

class RowAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    RowAccessible(TorvQDTable* table, int index)
        : m_table(table), m_index(index), m_version(table->rowsVersion()) {}

    [[nodiscard]] TorvQDListItem* item() const {
        const bool isThere = m_table && areaOf(m_table) && m_version == m_table->rowsVersion();
        return isThere ? m_table->Items[std::size_t(m_index)].get() : nullptr;
    }
    [[nodiscard]] const TorvQDTable* table() const { return m_table; }
    [[nodiscard]] int index() const { return m_index; }

    bool isValid() const override { return item(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return isValid() ? areaOf(m_table)->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override {
        return isValid() ? interfaceOf(m_table.data()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QString text(QAccessible::Text kind) const override {
        const TorvQDListItem* row = item();
        if (!row) return {};
        if (kind == QAccessible::Name) return row->Name;
        if (kind == QAccessible::Value && row->ParamType != ptOutput) return valueOf(*row);
        if (kind != QAccessible::Value && kind != QAccessible::Description) return {};
        QString type = row->GetDataName().replace(QStringLiteral("&&"), QStringLiteral("&"));
        if (row->ParamType == ptOutput) return type;
        // Not every system hands on the value of a list's row.
        return type.isEmpty() ? valueOf(*row) : type + QStringLiteral(", ") + valueOf(*row);
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        const TorvQDListItem* row = item();
        return row ? toScreen(*areaOf(m_table), m_table->GetItemRect(row)) : QRect();
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        const TorvQDListItem* row = item();
        state.invalid = !row;
        if (!row) return state;
        const TorvQDWorkArea& area = *areaOf(m_table);
        const int place = m_index - m_table->FirstVisibleItem;
        state.invisible = !m_table->Expanded || place < 0 || place >= m_table->VisibleCount;
        show(state, area, rect());
        state.checkable = row->ParamType == ptOutput;
        state.checked = state.checkable && row->Checked;
        state.selectable = true;
        state.selected = m_table->CurrentItem == row;
        state.focusable = true;
        state.focused =
            area.hasFocus() && area.selectedObject() == m_table && focusRow(*m_table) == row;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QString localizedActionDescription(const QString& name) const override {
        const TorvQDListItem* row = item();
        if (row && row->ParamType == ptInput && name == pressAction()) {
            return TorvQDWorkArea::tr("Enter the value of the parameter");
        }
        return QAccessibleActionInterface::localizedActionDescription(name);
    }
    QStringList actionNames() const override {
        const TorvQDListItem* row = item();
        if (!row) return {};
        return row->ParamType == ptOutput
                   ? QStringList{toggleAction(), pressAction(), setFocusAction()}
                   : QStringList{pressAction(), setFocusAction()};
    }

    // Of a parameter the host asks the user for its value.
    void doAction(const QString& name) override {
        const TorvQDListItem* row = item();
        if (!row || !areaOf(m_table)->isEnabled() || !actionNames().contains(name)) return;
        if (name == setFocusAction()) {
            guarded([&] { focus(); });
        } else if (row->ParamType == ptOutput) {
            guarded([&] { m_table->toggle(item()); });
        } else {
            later(m_table, [table = m_table, index = m_index, version = m_version](auto&) {
                if (table && table->rowsVersion() == version) {
                    table->toggle(table->Items[std::size_t(index)].get());
                }
            });
        }
    }
    QStringList keyBindingsForAction(const QString& name) const override {
        const bool isKey = name == toggleAction() || name == pressAction();
        return isKey ? QStringList(QKeySequence(Qt::Key_Space).toString()) : QStringList();
    }

private:
    void focus() const {
        TorvQDWorkArea& area = *areaOf(m_table);
        area.setFocus(Qt::OtherFocusReason);
        area.selectObject(m_table);
        TorvQDListItem* row = item();
        if (!row) return;
        m_table->scrollToItem(row);
        m_table->SetCurrentItem(row);
        const QPoint scroll = area.scrollPosition();
        area.ensureVisible(m_table->GetItemRect(row).translated(scroll.x(), scroll.y()));
    }

    QPointer<TorvQDTable> m_table;
    int m_index;
    int m_version;
};

// --- boxes ---

class BoxAccessible : public ObjectAccessible {
public:
    using ObjectAccessible::ObjectAccessible;
    ~BoxAccessible() override { dropRows(); }

    [[nodiscard]] TorvQDTable* table() const {
        return area() ? qobject_cast<TorvQDTable*>(object()) : nullptr;
    }

    // A list: that is what a box reads like, and what the systems have ticks, selection and
    // opening and closing for.
    QAccessible::Role role() const override { return QAccessible::List; }

    QString text(QAccessible::Text kind) const override {
        const TorvQDTable* box = table();
        if (!box) return {};
        if (kind == QAccessible::Name) return box->GetCaption();
        if (kind != QAccessible::Description) return {};
        const auto isField = [](const auto& item) { return item->ParamType == ptOutput; };
        const auto fields = std::count_if(box->Items.begin(), box->Items.end(), isField);
        const auto ticked =
            std::count_if(box->Items.begin(), box->Items.end(),
                          [&](const auto& item) { return isField(item) && item->Checked; });
        const QString words = qobject_cast<const TorvQDSProc*>(box)
                                  ? TorvQDWorkArea::tr("Procedure, %1 of %2 fields selected")
                                  : TorvQDWorkArea::tr("Table, %1 of %2 fields selected");
        return words.arg(ticked).arg(fields);
    }

    QRect rect() const override {
        return table() ? toScreen(*area(), table()->toView(diagramRect())) : QRect();
    }

    int childCount() const override { return table() ? int(table()->Items.size()) : 0; }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        TorvQDTable* box = table();
        if (m_version != box->rowsVersion()) dropRows();
        m_version = box->rowsVersion();
        m_rows.resize(box->Items.size());
        QAccessible::Id& id = m_rows[std::size_t(index)];
        if (id == 0) id = QAccessible::registerAccessibleInterface(new RowAccessible(box, index));
        return QAccessible::accessibleInterface(id);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* row = dynamic_cast<const RowAccessible*>(child);
        return row && row->isValid() && row->table() == table() ? row->index() : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        if (!table()) return nullptr;
        const QPoint point = fromScreen(*area(), x, y);
        if (!area()->viewport()->rect().contains(point)) return nullptr;
        const TorvQDListItem* row = area()->rowAt(area()->toViewPoint(point));
        return row && row->Table == table() ? child(row->GetIndex()) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        if (!table() || !area()->hasFocus() || area()->selectedObject() != table()) return nullptr;
        const TorvQDListItem* row = focusRow(*table());
        return row ? child(row->GetIndex()) : nullptr;
    }

    QAccessible::State state() const override {
        QAccessible::State state = ObjectAccessible::state();
        const TorvQDTable* box = table();
        if (!box) return state;
        state.focused = state.focused && !focusRow(*box);
        state.expandable = true;
        state.expanded = box->Expanded != 0;
        state.collapsed = box->Expanded == 0;
        state.checkable = !box->Items.empty();
        state.checked = box->FieldState == 2;
        state.checkStateMixed = box->FieldState == 1;
        return state;
    }

    QStringList actionNames() const override {
        if (!table()) return {};
        return {pressAction(), toggleAction(), showMenuAction(), setFocusAction()};
    }
    QString localizedActionDescription(const QString& name) const override {
        if (name == pressAction()) return TorvQDWorkArea::tr("Collapse or expand the table");
        if (name == toggleAction()) return TorvQDWorkArea::tr("Select or unselect all fields");
        return ObjectAccessible::localizedActionDescription(name);
    }

protected:
    TRect diagramRect() const override { return table()->GetBoundsRect(); }
    void act(const QString& name) override {
        TorvQDTable* box = table();
        guarded([&] {
            if (name == pressAction()) {
                box->SetExpand(box->Expanded ? 0 : -1);
            } else {
                box->SetFieldState(box->FieldState == 2 ? 0 : 2);
            }
        });
    }

private:
    void dropRows() const {
        for (const QAccessible::Id id : m_rows) {
            if (id != 0) QAccessible::deleteAccessibleInterface(id);
        }
        m_rows.clear();
    }

    mutable std::vector<QAccessible::Id> m_rows;  // by index; 0 for one that nobody asked for
    mutable int m_version = -1;
};

}  // namespace

QAccessibleInterface* makeBoxInterface(QObject* box) {
    return new BoxAccessible(box);
}

}  // namespace orv::accessible
