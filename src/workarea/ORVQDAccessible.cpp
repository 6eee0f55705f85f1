// SPDX-License-Identifier: MIT
#include "workarea/ORVQDAccessible.h"

#include "toolkit/ExitEdit.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QApplication>
#include <QWindow>

#include <algorithm>

namespace orv {

namespace {

TorvQDWorkArea* areaOf(const TorvQDFloatObject* object) {
    auto* area = object ? qobject_cast<TorvQDWorkArea*>(object->Parent.data()) : nullptr;
    return area && area->holds(object) ? area : nullptr;
}

QRect toScreen(const TorvQDWorkArea& area, const TRect& viewRect) {
    const QRect rect = area.toViewport(viewRect);
    return {area.viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

QPoint fromScreen(const TorvQDWorkArea& area, int x, int y) {
    return area.viewport()->mapFromGlobal(QPoint(x, y));
}

// The row that has the focus when the canvas has it.
TorvQDListItem* focusRow(const TorvQDTable& table) {
    return table.Expanded ? table.CurrentItem : nullptr;
}

QAccessibleInterface* interfaceOf(TorvQDFloatObject* object) {
    return QAccessible::queryAccessibleInterface(object);
}

QAccessibleInterface* interfaceOf(TorvQDTable* table, const TorvQDListItem* row) {
    QAccessibleInterface* box = interfaceOf(table);
    return box && row ? box->child(row->GetIndex()) : box;
}

// What the keyboard is at; none while the canvas has not the focus.
QAccessibleInterface* focusOf(TorvQDWorkArea& area) {
    if (!area.hasFocus()) return nullptr;
    if (!area.selectedObject()) return QAccessible::queryAccessibleInterface(&area);
    auto* table = qobject_cast<TorvQDTable*>(area.selectedObject());
    return table ? interfaceOf(table, focusRow(*table)) : interfaceOf(area.selectedObject());
}

void show(QAccessible::State& state, const TorvQDWorkArea& area, const QRect& screenRect) {
    const QWidget& view = *area.viewport();
    const QRect seen(view.mapToGlobal(QPoint(0, 0)), view.size());
    state.invisible = state.invisible || !area.isVisible();
    state.offscreen = state.invisible || !seen.intersects(screenRect);
    state.disabled = !area.isEnabled();
}

// An action may open a dialog; whoever asked for it must not wait for its end.
template <typename Body>
void later(TorvQDFloatObject* object, const Body& body) {
    QMetaObject::invokeMethod(
        object,
        [object, body] {
            guarded([&] {
                if (TorvQDWorkArea* area = areaOf(object)) body(*area);
            });
        },
        Qt::QueuedConnection);
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
        if (kind != QAccessible::Value && kind != QAccessible::Description) return {};
        return row->GetDataName().replace(QStringLiteral("&&"), QStringLiteral("&"));
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

// --- boxes and links ---

class ObjectAccessible : public QAccessibleObject, public QAccessibleActionInterface {
public:
    using QAccessibleObject::QAccessibleObject;

    [[nodiscard]] TorvQDFloatObject* diagramObject() const {
        return qobject_cast<TorvQDFloatObject*>(object());
    }
    [[nodiscard]] TorvQDWorkArea* area() const { return areaOf(diagramObject()); }

    bool isValid() const override { return area(); }
    QWindow* window() const override { return area() ? area()->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override {
        return area() ? QAccessible::queryAccessibleInterface(area()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !area();
        if (!area()) return state;
        show(state, *area(), rect());
        state.selectable = true;
        state.selected = diagramObject()->Selected;
        state.focusable = true;
        state.focused = area()->hasFocus() && area()->selectedObject() == diagramObject();
        return state;
    }

    void doAction(const QString& name) override {
        if (!area() || !area()->isEnabled() || !actionNames().contains(name)) return;
        if (name == setFocusAction()) {
            guarded([&] { focus(); });
        } else if (name == showMenuAction()) {
            guarded([&] {
                focus();
                if (area()) area()->showMenuOf(diagramObject());
            });
        } else {
            act(name);
        }
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    [[nodiscard]] virtual TRect diagramRect() const = 0;
    virtual void act(const QString& name) = 0;

private:
    void focus() const {
        area()->setFocus(Qt::OtherFocusReason);
        area()->selectObject(diagramObject());
        if (area()) area()->ensureVisible(diagramRect());
    }
};

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
        const auto ticked = std::count_if(box->Items.begin(), box->Items.end(),
                                          [](const auto& item) { return item->Checked; });
        return TorvQDWorkArea::tr("Table, %1 of %2 fields selected")
            .arg(ticked)
            .arg(box->Items.size());
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

// "all rows of A, those of B that match"
QString joinMeaning(const TorvQDJoin& join) {
    const QString first = join.Table1->GetAlias();
    const QString second = join.Table2->GetAlias();
    switch (join.KindOfJoin) {
    case klInnerJoin: return TorvQDWorkArea::tr("only rows that match");
    case klLOuterJoin:
        return TorvQDWorkArea::tr("all rows of %1, those of %2 that match").arg(first, second);
    case klROuterJoin:
        return TorvQDWorkArea::tr("all rows of %1, those of %2 that match").arg(second, first);
    case klFOuterJoin: return TorvQDWorkArea::tr("all rows of %1 and of %2").arg(first, second);
    }
    return {};
}

class LinkAccessible : public ObjectAccessible {
public:
    using ObjectAccessible::ObjectAccessible;

    [[nodiscard]] TorvQDLink* link() const {
        return area() ? qobject_cast<TorvQDLink*>(object()) : nullptr;
    }

    // "Link" would be read as one of a web page.
    QAccessible::Role role() const override { return QAccessible::Graphic; }

    QString text(QAccessible::Text kind) const override {
        const TorvQDLink* line = link();
        if (!line) return {};
        if (kind == QAccessible::Name) {
            return line->Join->Table1->GetAlias() + u'.' + line->Item1->Name + u' ' +
                   line->operatorText() + u' ' + line->Join->Table2->GetAlias() + u'.' +
                   line->Item2->Name;
        }
        if (kind == QAccessible::Value) return joinWords(line->Join->KindOfJoin).toLower();
        return kind == QAccessible::Description ? joinMeaning(*line->Join) : QString();
    }

    QRect rect() const override {
        if (!link()) return {};
        const QPoint scroll = area()->scrollPosition();
        return toScreen(*area(), diagramRect().translated(-scroll.x(), -scroll.y()));
    }

    QStringList actionNames() const override {
        if (!link()) return {};
        return {pressAction(), showMenuAction(), setFocusAction()};
    }
    QString localizedActionDescription(const QString& name) const override {
        if (name == pressAction()) return TorvQDWorkArea::tr("Show the properties of the link");
        return ObjectAccessible::localizedActionDescription(name);
    }

protected:
    TRect diagramRect() const override { return TRect::fromQRect(link()->extent()); }
    void act(const QString&) override {
        const QPointer<TorvQDLink> line(link());
        later(line, [line](TorvQDWorkArea&) { line->_LinkProperties(); });
    }
};

// --- the work area ---

std::vector<QWidget*> openEdits(const QWidget& view) {
    std::vector<QWidget*> edits;
    for (QWidget* edit :
         std::initializer_list<QWidget*>{view.findChild<ExitEdit*>(), view.findChild<TEditEx*>()}) {
        if (edit && !edit->isHidden()) edits.push_back(edit);
    }
    return edits;
}

// The view in which the edits lie; it is there for readers while one of these is open.
class ViewAccessible : public QAccessibleWidget {
public:
    explicit ViewAccessible(QWidget* view)
        : QAccessibleWidget(view, QAccessible::LayeredPane, TorvQDWorkArea::tr("Editors")) {}

    int childCount() const override { return int(openEdits(*widget()).size()); }
    QAccessibleInterface* child(int index) const override {
        const std::vector<QWidget*> edits = openEdits(*widget());
        if (index < 0 || index >= int(edits.size())) return nullptr;
        return QAccessible::queryAccessibleInterface(edits[std::size_t(index)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const std::vector<QWidget*> edits = openEdits(*widget());
        const auto found = std::find(edits.begin(), edits.end(), child ? child->object() : nullptr);
        return found == edits.end() ? -1 : int(found - edits.begin());
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        for (QWidget* edit : openEdits(*widget())) {
            if (!edit->rect().contains(edit->mapFromGlobal(QPoint(x, y)))) continue;
            return QAccessible::queryAccessibleInterface(edit);
        }
        return nullptr;
    }
};

class AreaAccessible : public QAccessibleWidget {
public:
    explicit AreaAccessible(TorvQDWorkArea* area)
        : QAccessibleWidget(area, QAccessible::Canvas, TorvQDWorkArea::tr("Diagram")) {}

    // None while the widget is on its way out.
    [[nodiscard]] TorvQDWorkArea* area() const { return qobject_cast<TorvQDWorkArea*>(object()); }

    QString text(QAccessible::Text kind) const override {
        const QString own = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Description || !own.isEmpty() || !area()) return own;
        return TorvQDWorkArea::tr("Tables: %1, links: %2")
            .arg(area()->TablesCount())
            .arg(area()->Links().size());
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (area() && area()->selectedObject()) state.focused = false;
        return state;
    }

    int childCount() const override { return int(children().size()); }
    QAccessibleInterface* child(int index) const override {
        const std::vector<QObject*> list = children();
        if (index < 0 || index >= int(list.size())) return nullptr;
        return QAccessible::queryAccessibleInterface(list[std::size_t(index)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const std::vector<QObject*> list = children();
        const auto found = std::find(list.begin(), list.end(), child ? child->object() : nullptr);
        return !child || !child->object() || found == list.end() ? -1 : int(found - list.begin());
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        if (!area()) return nullptr;
        const QPoint point = fromScreen(*area(), x, y);
        if (!area()->viewport()->rect().contains(point)) return nullptr;
        QAccessibleInterface* view = QAccessible::queryAccessibleInterface(area()->viewport());
        if (view && view->childAt(x, y)) return view;
        TorvQDFloatObject* object = area()->objectAt(area()->toViewPoint(point));
        return object ? interfaceOf(object) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        QAccessibleInterface* focus = area() ? focusOf(*area()) : nullptr;
        return focus ? focus : QAccessibleWidget::focusChild();
    }

private:
    [[nodiscard]] std::vector<QObject*> children() const {
        if (!area()) return {};
        const std::vector<TorvQDTable*>& tables = area()->tablesByCreation();
        const std::vector<TorvQDLink*> links = area()->Links();
        std::vector<QObject*> list(tables.begin(), tables.end());
        list.insert(list.end(), links.begin(), links.end());
        if (!openEdits(*area()->viewport()).empty()) list.push_back(area()->viewport());
        return list;
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* area = qobject_cast<TorvQDWorkArea*>(object)) return new AreaAccessible(area);
    if (qobject_cast<TorvQDTable*>(object)) return new BoxAccessible(object);
    if (qobject_cast<TorvQDLink*>(object)) return new LinkAccessible(object);
    auto* view = qobject_cast<QWidget*>(object);
    const auto* area = view ? qobject_cast<TorvQDWorkArea*>(view->parentWidget()) : nullptr;
    return area && area->viewport() == view ? new ViewAccessible(view) : nullptr;
}

AccessibleListener& listener() {
    static AccessibleListener present;
    return present;
}

// Whether somebody listens, without whom nothing is looked up.
bool isHeard() {
    return listener() || QAccessible::isActive();
}

void send(QAccessibleEvent& event) {
    if (const AccessibleListener present = listener()) {
        present(event);
    } else {
        QAccessible::updateAccessibility(&event);
    }
}

void tell(QAccessibleInterface* about, QAccessible::Event what) {
    if (!about) return;
    QAccessibleEvent event(about, what);
    send(event);
}

void tell(QAccessibleInterface* about, QAccessible::State changed) {
    if (!about) return;
    QAccessibleStateChangeEvent event(about, changed);
    send(event);
}

}  // namespace

void installAccessibility() {
    QAccessible::installFactory(makeInterface);
}

AccessibleListener setAccessibleListener(AccessibleListener present) {
    return std::exchange(listener(), std::move(present));
}

namespace accessible {

void tellFocus(TorvQDWorkArea& area) {
    if (isHeard()) tell(focusOf(area), QAccessible::Focus);
}

void tellSelected(TorvQDFloatObject* object, bool selected) {
    if (!isHeard() || !areaOf(object)) return;
    QAccessible::State changed;
    changed.selected = true;
    tell(interfaceOf(object), changed);
    if (selected) tell(interfaceOf(object), QAccessible::Selection);
}

void tellAdded(TorvQDFloatObject* object) {
    if (isHeard()) tell(interfaceOf(object), QAccessible::ObjectCreated);
}

void tellRemoved(TorvQDFloatObject* object) {
    if (isHeard()) tell(interfaceOf(object), QAccessible::ObjectDestroyed);
}

void tellRenamed(TorvQDFloatObject* object) {
    if (isHeard()) tell(interfaceOf(object), QAccessible::NameChanged);
}

void tellChange(TorvQDTable* table, IDiagramCanvas::BoxChange change, const TorvQDListItem* row) {
    if (!isHeard() || !areaOf(table)) return;
    QAccessible::State changed;
    switch (change) {
    case IDiagramCanvas::BoxChange::CurrentRow: {
        changed.selected = true;
        tell(interfaceOf(table, row), changed);
        TorvQDWorkArea& area = *areaOf(table);
        if (area.selectedObject() == table) tellFocus(area);
        break;
    }
    case IDiagramCanvas::BoxChange::Tick:
        changed.checked = true;
        changed.checkStateMixed = !row;
        tell(interfaceOf(table, row), changed);
        break;
    case IDiagramCanvas::BoxChange::Expanded:
        changed.expanded = true;
        changed.collapsed = true;
        tell(interfaceOf(table), changed);
        break;
    case IDiagramCanvas::BoxChange::Rows:
        tell(interfaceOf(table), QAccessible::ObjectReorder);
        break;
    }
}

}  // namespace accessible

}  // namespace orv
