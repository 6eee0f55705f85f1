// SPDX-License-Identifier: MIT
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDAccessible_p.h"
#include "workarea/ORVQDFieldSearch.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QWindow>

#include <algorithm>

namespace orv {

namespace accessible {

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

void show(QAccessible::State& state, const TorvQDWorkArea& area, const QRect& screenRect) {
    const QWidget& view = *area.viewport();
    const QRect seen(view.mapToGlobal(QPoint(0, 0)), view.size());
    state.invisible = state.invisible || !area.isVisible();
    state.offscreen = state.invisible || !seen.intersects(screenRect);
    state.disabled = !area.isEnabled();
}

// --- boxes and links ---

QAccessible::State ObjectAccessible::state() const {
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

void ObjectAccessible::doAction(const QString& name) {
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

void ObjectAccessible::focus() const {
    area()->setFocus(Qt::OtherFocusReason);
    area()->selectObject(diagramObject());
    if (area()) area()->ensureVisible(diagramRect());
}

namespace {

// What the keyboard is at; none while the canvas has not the focus.
QAccessibleInterface* focusOf(TorvQDWorkArea& area) {
    if (!area.hasFocus()) return nullptr;
    if (!area.selectedObject()) return QAccessible::queryAccessibleInterface(&area);
    auto* table = qobject_cast<TorvQDTable*>(area.selectedObject());
    return table ? interfaceOf(table, focusRow(*table)) : interfaceOf(area.selectedObject());
}

// --- links ---

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
                   line->Item2->Name + (line->Muted ? TorvQDWorkArea::tr(", muted") : QString());
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
        QString own = QAccessibleWidget::text(kind);
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
    if (qobject_cast<TorvQDTable*>(object)) return makeBoxInterface(object);
    if (qobject_cast<TorvQDLink*>(object)) return new LinkAccessible(object);
    auto* view = qobject_cast<QWidget*>(object);
    const auto* area = view ? qobject_cast<TorvQDWorkArea*>(view->parentWidget()) : nullptr;
    return area && area->viewport() == view ? new ViewAccessible(view) : nullptr;
}

}  // namespace

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
        if (row && row->ParamType != ptOutput) {
            tell(interfaceOf(table, row), QAccessible::DescriptionChanged);
            break;
        }
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

void installAccessibility() {
    QAccessible::installFactory(accessible::makeInterface);
}

}  // namespace orv
