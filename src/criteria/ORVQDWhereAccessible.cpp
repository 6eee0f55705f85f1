// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWhereAccessible.h"

#include "core/Text.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/AccessibleEvents.h"
#include "toolkit/Services.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QAction>
#include <QHash>
#include <QMenu>
#include <QPointer>
#include <QWindow>

#include <algorithm>

namespace orv {

namespace {

constexpr int longestRead = 500;            // characters of one text
constexpr std::size_t mostChangesTold = 8;  // of single rows; more are one change of all
constexpr const char* readNameProperty = "orvReadName";

QString shortened(const QString& text) {
    return text.size() > longestRead ? text.left(longestRead) + QStringLiteral("...") : text;
}

// --- what is read ---

// Blanks say nothing when they are read.
QString spoken(const QString& text) {
    return isBlank(text) ? QStringLiteral("empty") : shortened(orvTrim(text).simplified());
}

QString called(const QString& function, const QString& text) {
    return isBlank(function) ? text : orvTrim(function) + u'(' + text + u')';
}

QString conditionSentence(const TorvQDWhereRow& row) {
    QString text = called(row.FieldFunc, spoken(row.FieldName));
    if (row.isExpression()) return text;
    text += u' ' + (row.Operator ? row.Operator->Caption : QString());
    const QString relate =
        row.Operator && !row.Operator->Relate.isEmpty() ? row.Operator->Relate : QString(u' ');
    QStringList arguments;
    for (const QString& argument : row.Arguments) arguments << spoken(argument);
    if (!arguments.isEmpty()) text += u' ' + called(row.ArgFunc, arguments.join(relate));
    return text;
}

QString groupSentence(const TorvQDWhereRow& row) {
    const int count = row.SubRows->GetCount();
    QString conditions = QStringLiteral("%1 conditions").arg(count);
    if (count == 0) conditions = QStringLiteral("no conditions");
    if (count == 1) conditions = QStringLiteral("1 condition");
    return QStringLiteral("%1 of following are met, %2, %3")
        .arg(row.GroupOper, conditions,
             row.Expanded ? QStringLiteral("expanded") : QStringLiteral("collapsed"));
}

QString numberOf(const TorvQDWhereRow& row) {
    return orvTrim(row.Controls[ekButton]->GetText());
}

QString rowSentence(const TorvQDWherePanel& panel, const TorvQDWhereRow& row) {
    const QString number = numberOf(row);
    QStringList parts(row.isGroup() ? groupSentence(row) : conditionSentence(row));
    if (!number.isEmpty()) parts.front().prepend(number + u' ');
    if (row.Muted) parts << QStringLiteral("muted");
    if (!row.isGroup() && !row.Valid) parts << QStringLiteral("type mismatch");
    const QString problem = panel.rowProblem(row);
    if (!problem.isEmpty()) parts << problem;
    return parts.join(QStringLiteral(", "));
}

QString textName(const QString& what, const QString& text, const QString& separator) {
    return isBlank(text) ? what + QStringLiteral(", empty") : what + separator + spoken(text);
}

QString functionName(const QString& what, const QString& function) {
    return isBlank(function) ? QStringLiteral("no ") + what : what + u' ' + orvTrim(function);
}

QString elementName(const TorvQDWhereRow& row, int kind) {
    if (kind == ekButton) {
        const QString number = numberOf(row);
        return QStringLiteral("commands of ") +
               (number.isEmpty() ? QStringLiteral("all conditions") : number);
    }
    if (row.isGroup()) return QStringLiteral("group operator ") + row.GroupOper;
    const QString blank(u' ');
    switch (kind) {
    case ekFieldFunc: return functionName(QStringLiteral("function"), row.FieldFunc);
    case ekFieldName: return textName(QStringLiteral("field"), row.FieldName, blank);
    case ekOperator:
        return textName(QStringLiteral("operator"),
                        row.Operator ? row.Operator->Caption : QString(), blank);
    case ekArgFunc: return functionName(QStringLiteral("function of the argument"), row.ArgFunc);
    default: break;
    }
    const qsizetype index = kind - ekArgument;
    const QString what =
        row.Arguments.size() == 1
            ? QStringLiteral("argument")
            : QStringLiteral("argument %1 of %2").arg(index + 1).arg(row.Arguments.size());
    return textName(what, row.Arguments.value(index), QStringLiteral(": "));
}

// --- rows and elements ---

/// Rows are no objects of Qt's: an interface of theirs refers to the panel and to the row.
class PartAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PartAccessible(TorvQDWherePanel* panel, const ElementRef& part)
        : m_panel(panel), m_part(part) {}

    [[nodiscard]] TorvQDWherePanel* panel() const { return m_panel; }
    /// The row; none when it is gone or not shown.
    [[nodiscard]] TorvQDWhereRow* row() const {
        TorvQDWhereRow* row = m_panel ? m_part.row() : nullptr;
        if (!row) return nullptr;
        (void)m_panel->shownRows();
        return ConditionLayout::positionOf(*row) >= 0 ? row : nullptr;
    }
    [[nodiscard]] const ElementRef& part() const { return m_part; }

    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return isValid() ? m_panel->window()->windowHandle() : nullptr;
    }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!isValid()) return state;
        const QWidget& view = *m_panel->viewport();
        const QRect seen(view.mapToGlobal(QPoint(0, 0)), view.size());
        state.invisible = !m_panel->isVisible();
        state.offscreen = state.invisible || !seen.intersects(rect());
        state.disabled = !m_panel->isEnabled();
        state.focusable = true;
        return state;
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override {
        if (!isValid() || !m_panel->isEnabled() || !actionNames().contains(name)) return;
        if (name == setFocusAction()) {
            guarded([&] { focus(); });
            return;
        }
        // An action may open a menu; whoever asked for it must not wait for its end.
        QMetaObject::invokeMethod(
            m_panel,
            [panel = m_panel.data(), part = m_part, isMenu = name == showMenuAction()] {
                guarded([&] { act(*panel, part, isMenu); });
            },
            Qt::QueuedConnection);
    }

protected:
    [[nodiscard]] QRect onScreen(const QRect& viewRect) const {
        return {m_panel->viewport()->mapToGlobal(viewRect.topLeft()), viewRect.size()};
    }

private:
    // As a click does it. The row may be gone by now.
    static void act(TorvQDWherePanel& panel, const ElementRef& part, bool isMenu) {
        const QPointer<TorvQDWherePanel> self(&panel);
        panel.HideFieldList();
        if (!self || !part.get()) return;
        panel.setFocus(Qt::OtherFocusReason);
        if (!self || !part.get()) return;
        panel.showElement(*part.get());
        const TorvQDControl& element = isMenu ? *part.row()->Controls[ekButton] : *part.get();
        const int top = panel.elementRect(element).top();
        if (element.Kind == ekButton) {
            panel.ButtonClick(element, top);
        } else {
            panel.setActiveElement(&element);
            panel.TextClick(element, top);
        }
    }

    void focus() const {
        const QPointer<TorvQDWherePanel> self(m_panel);
        m_panel->setFocus(Qt::OtherFocusReason);
        if (!self || !m_part.get()) return;
        m_panel->setCurrentElement(m_part.get());
        m_panel->showElement(*m_part.get());
        m_panel->setActiveElement(m_part.get());
    }

    QPointer<TorvQDWherePanel> m_panel;
    ElementRef m_part;  // of a row the element that stands for it
};

QAccessibleInterface* rowInterface(const TorvQDWherePanel& panel, const TorvQDWhereRow& row) {
    QAccessibleInterface* list =
        QAccessible::queryAccessibleInterface(const_cast<TorvQDWherePanel*>(&panel));
    return list ? list->child(ConditionLayout::positionOf(row)) : nullptr;
}

class ElementAccessible : public PartAccessible {
public:
    using PartAccessible::PartAccessible;

    [[nodiscard]] const TorvQDControl* element() const {
        const TorvQDControl* control = row() ? part().get() : nullptr;
        return control && control->Width > 0 ? control : nullptr;
    }

    bool isValid() const override { return element(); }
    QAccessibleInterface* parent() const override {
        return isValid() ? rowInterface(*panel(), *row()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QAccessible::Role role() const override {
        if (part().kind() == ekButton) return QAccessible::Button;
        return isTyped() ? QAccessible::EditableText : QAccessible::Link;
    }
    QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        if (kind == QAccessible::Name) return elementName(*row(), part().kind());
        if (kind != QAccessible::Value) return {};
        if (row()->isGroup() && part().kind() == ekGroupOper) {
            return shortened(orvTrim(row()->shortCondition(longestRead)));
        }
        return isTyped() ? orvTrim(*row()->textOf(part().kind())) : QString();
    }
    QRect rect() const override {
        const TorvQDControl* control = element();
        return control ? onScreen(panel()->elementRect(*control)) : QRect();
    }
    QAccessible::State state() const override {
        QAccessible::State state = PartAccessible::state();
        if (state.invalid) return state;
        state.hasPopup = !isTyped();
        state.focused = panel()->hasFocus() && panel()->ActiveElement() == element();
        return state;
    }
    QStringList actionNames() const override {
        if (!isValid()) return {};
        return {pressAction(), showMenuAction(), setFocusAction()};
    }

private:
    [[nodiscard]] bool isTyped() const { return row() && row()->textOf(part().kind()); }
};

class RowAccessible : public PartAccessible {
public:
    using PartAccessible::PartAccessible;
    ~RowAccessible() override {
        for (const QAccessible::Id id : m_elements) {
            if (id != 0) QAccessible::deleteAccessibleInterface(id);
        }
    }

    bool isValid() const override { return row(); }
    QAccessibleInterface* parent() const override {
        return isValid() ? QAccessible::queryAccessibleInterface(panel()) : nullptr;
    }

    int childCount() const override { return int(shownElements().size()); }
    QAccessibleInterface* child(int index) const override {
        const std::vector<const TorvQDControl*> elements = shownElements();
        if (index < 0 || index >= int(elements.size())) return nullptr;
        return interfaceOf(*elements[std::size_t(index)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* part = dynamic_cast<const ElementAccessible*>(child);
        const std::vector<const TorvQDControl*> elements = shownElements();
        const auto found =
            std::find(elements.begin(), elements.end(), part ? part->element() : nullptr);
        return found == elements.end() ? -1 : int(found - elements.begin());
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        if (!isValid()) return nullptr;
        const QPoint point = panel()->viewport()->mapFromGlobal(QPoint(x, y));
        const bool isSeen = panel()->viewport()->rect().contains(point);
        const TorvQDControl* element = isSeen ? panel()->elementAt(point) : nullptr;
        return element && element->Row == row() ? interfaceOf(*element) : nullptr;
    }
    [[nodiscard]] QAccessibleInterface* interfaceOf(const TorvQDControl& element) const {
        const std::size_t kind = std::size_t(element.Kind);
        if (m_elements.size() <= kind) m_elements.resize(kind + 1);
        QAccessible::Id& id = m_elements[kind];
        if (id == 0) {
            id = QAccessible::registerAccessibleInterface(
                new ElementAccessible(panel(), ElementRef(&element)));
        }
        return QAccessible::accessibleInterface(id);
    }

    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        if (kind == QAccessible::Name) return rowSentence(*panel(), *row());
        if (kind != QAccessible::Description) return {};
        return QStringLiteral("level %1").arg(row()->depth());
    }
    QRect rect() const override {
        if (!isValid()) return {};
        const QRect button = panel()->elementRect(*row()->Controls[ekButton]);
        return onScreen({0, button.top(), panel()->viewport()->width(), button.height()});
    }
    QAccessible::State state() const override {
        QAccessible::State state = PartAccessible::state();
        if (state.invalid) return state;
        const TorvQDWhereRow& shown = *row();
        state.selectable = true;
        state.selected = panel()->ActiveElement()->Row == &shown;
        // The root row cannot be collapsed.
        state.expandable = shown.isGroup() && shown.parentRow();
        state.expanded = shown.isGroup() && shown.Expanded;
        state.collapsed = shown.isGroup() && !shown.Expanded;
        return state;
    }
    QStringList actionNames() const override {
        if (!isValid()) return {};
        return {pressAction(), showMenuAction(), setFocusAction()};
    }

private:
    [[nodiscard]] std::vector<const TorvQDControl*> shownElements() const {
        std::vector<const TorvQDControl*> elements;
        if (!isValid()) return elements;
        for (const auto& control : row()->Controls) {
            if (control->Width > 0) elements.push_back(control.get());
        }
        return elements;
    }

    mutable std::vector<QAccessible::Id> m_elements;  // by kind; 0 for one that nobody asked for
};

// --- the panel ---

bool isShownEditor(const QObject* object, const QWidget& view) {
    const auto* widget = qobject_cast<const QWidget*>(object);
    return widget && widget != &view && !widget->isWindow() && !widget->isHidden() &&
           widget->focusPolicy() != Qt::NoFocus;
}

class PanelAccessible : public QAccessibleWidget {
public:
    explicit PanelAccessible(TorvQDWherePanel* panel)
        : QAccessibleWidget(panel, QAccessible::List) {}
    ~PanelAccessible() override {
        for (const QAccessible::Id id : m_rows) QAccessible::deleteAccessibleInterface(id);
    }

    // None while the widget is on its way out.
    [[nodiscard]] TorvQDWherePanel* panel() const {
        return qobject_cast<TorvQDWherePanel*>(object());
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (hasRows()) state.focused = false;  // it is at an element
        return state;
    }

    int childCount() const override { return rowCount() + int(editors().size()); }
    QAccessibleInterface* child(int index) const override {
        const int rows = rowCount();
        if (index < 0) return nullptr;
        if (index < rows) return interfaceOf(*panel()->shownRows()[std::size_t(index)]);
        const std::vector<QObject*> open = editors();
        const std::size_t place = std::size_t(index - rows);
        return place < open.size() ? QAccessible::queryAccessibleInterface(open[place]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (!child) return -1;
        if (const auto* part = dynamic_cast<const RowAccessible*>(child)) {
            const bool isOwn = part->panel() == panel() && part->isValid();
            return isOwn ? ConditionLayout::positionOf(*part->row()) : -1;
        }
        const std::vector<QObject*> open = editors();
        const auto found = std::find(open.begin(), open.end(), child->object());
        const bool isThere = child->object() && found != open.end();
        return isThere ? rowCount() + int(found - open.begin()) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        if (!hasRows()) return nullptr;
        const QWidget& view = *panel()->viewport();
        const QPoint point = view.mapFromGlobal(QPoint(x, y));
        if (!view.rect().contains(point)) return nullptr;
        for (QObject* editor : editors()) {
            const auto& widget = *static_cast<QWidget*>(editor);
            const bool isView = &widget == &view;
            const bool isHit = isView ? view.childAt(point) != nullptr
                                      : widget.rect().contains(widget.mapFromGlobal(QPoint(x, y)));
            if (isHit) return QAccessible::queryAccessibleInterface(editor);
        }
        int top = 0;
        const QPoint content(point.x(), point.y() - panel()->elementRect(first()).top());
        TorvQDWhereRow* row = panel()->LookRows(content.y(), top);
        return row ? interfaceOf(*row) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        if (!hasRows() || !panel()->hasFocus()) return QAccessibleWidget::focusChild();
        return elementInterface(*panel()->ActiveElement());
    }

    /// That of the element, or of its row when the element is not shown.
    [[nodiscard]] QAccessibleInterface* elementInterface(const TorvQDControl& element) const {
        (void)panel()->shownRows();
        if (ConditionLayout::positionOf(*element.Row) < 0) return nullptr;
        QAccessibleInterface* row = interfaceOf(*element.Row);
        return element.Width > 0 ? static_cast<RowAccessible*>(row)->interfaceOf(element) : row;
    }

    [[nodiscard]] QAccessibleInterface* interfaceOf(TorvQDWhereRow& row) const {
        QAccessible::Id& id = m_rows[&row];
        // Another row may stand where one was that is gone.
        if (id != 0 &&
            static_cast<RowAccessible*>(QAccessible::accessibleInterface(id))->row() != &row) {
            QAccessible::deleteAccessibleInterface(std::exchange(id, 0));
        }
        if (id == 0) {
            id = QAccessible::registerAccessibleInterface(
                new RowAccessible(panel(), ElementRef(row, ekGroupOper)));
        }
        QAccessibleInterface* found = QAccessible::accessibleInterface(id);
        dropGoneRows();
        return found;
    }

private:
    [[nodiscard]] bool hasRows() const { return panel() && panel()->rootRow(); }
    [[nodiscard]] int rowCount() const { return hasRows() ? int(panel()->shownRows().size()) : 0; }
    [[nodiscard]] const TorvQDControl& first() const {
        return *panel()->rootRow()->Controls[ekButton];
    }

    // What lies over the rows while something is being typed: in the view, or beside it.
    [[nodiscard]] std::vector<QObject*> editors() const {
        std::vector<QObject*> found;
        if (!panel()) return found;
        QWidget& view = *panel()->viewport();
        const QObjectList& inView = view.children();
        if (std::any_of(inView.begin(), inView.end(),
                        [&](const QObject* child) { return isShownEditor(child, view); })) {
            found.push_back(&view);
        }
        for (QObject* child : panel()->children()) {
            if (isShownEditor(child, view)) found.push_back(child);
        }
        return found;
    }

    // Now and then, so that asking stays cheap.
    void dropGoneRows() const {
        if (m_rows.size() < 2 * rowCount() + 16) return;
        for (auto entry = m_rows.begin(); entry != m_rows.end();) {
            if (QAccessible::accessibleInterface(entry.value())->isValid()) {
                ++entry;
                continue;
            }
            QAccessible::deleteAccessibleInterface(entry.value());
            entry = m_rows.erase(entry);
        }
    }

    mutable QHash<const TorvQDWhereRow*, QAccessible::Id> m_rows;
};

// --- items of menus ---

class ItemAccessible : public QAccessibleObject, public QAccessibleActionInterface {
public:
    using QAccessibleObject::QAccessibleObject;

    [[nodiscard]] QAction* item() const { return qobject_cast<QAction*>(object()); }
    [[nodiscard]] QMenu* menu() const {
        return item() ? qobject_cast<QMenu*>(item()->parent()) : nullptr;
    }

    bool isValid() const override { return menu(); }
    QWindow* window() const override { return menu() ? menu()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override {
        return menu() ? QAccessible::queryAccessibleInterface(menu()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::MenuItem; }
    QString text(QAccessible::Text kind) const override {
        const bool isName = kind == QAccessible::Name && item();
        return isName ? item()->property(readNameProperty).toString() : QString();
    }
    QRect rect() const override {
        if (!menu()) return {};
        const QRect own = menu()->actionGeometry(item());
        return {menu()->mapToGlobal(own.topLeft()), own.size()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !menu();
        if (!menu()) return state;
        state.disabled = !item()->isEnabled();
        state.invisible = !menu()->isVisible() || !item()->isVisible();
        state.focusable = true;
        state.focused = menu()->activeAction() == item();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override {
        return menu() ? QStringList(pressAction()) : QStringList();
    }
    void doAction(const QString& name) override {
        if (menu() && name == pressAction()) item()->trigger();
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* panel = qobject_cast<TorvQDWherePanel*>(object)) return new PanelAccessible(panel);
    auto* item = qobject_cast<QAction*>(object);
    const bool isNamed = item && item->property(readNameProperty).isValid();
    return isNamed ? new ItemAccessible(item) : nullptr;
}

}  // namespace

void installCriteriaAccessibility() {
    QAccessible::installFactory(makeInterface);
}

void setReadName(QAction& item, const QString& name) {
    item.setProperty(readNameProperty, name);
}

// --- telling ---

void ConditionTeller::rowsChanged(const TorvQDWhereRow* row) {
    if (!accessible::isHeard()) return;
    if (!row) {
        m_haveRowsMoved = true;
    } else if (m_changed.size() < mostChangesTold) {
        m_changed.emplace_back(*row, ekButton);
    }
}

void ConditionTeller::tell() {
    const bool haveRowsMoved = std::exchange(m_haveRowsMoved, false);
    const std::vector<ElementRef> changed = std::exchange(m_changed, {});
    if (!accessible::isHeard()) return;
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_panel);
    if (haveRowsMoved) accessible::tell(list, QAccessible::ObjectReorder);
    (void)m_panel.shownRows();
    std::vector<const TorvQDWhereRow*> told;
    for (const ElementRef& reference : changed) {
        const TorvQDWhereRow* row = reference.row();
        const bool isNew = std::find(told.begin(), told.end(), row) == told.end();
        if (!row || !isNew || ConditionLayout::positionOf(*row) < 0) continue;
        told.push_back(row);
        QAccessibleInterface* about = rowInterface(m_panel, *row);
        accessible::tell(about, QAccessible::NameChanged);
        if (!row->isGroup() || !haveRowsMoved) continue;
        QAccessible::State opened;
        opened.expanded = true;
        opened.collapsed = true;
        accessible::tell(about, opened);
    }
    tellFocus();
}

void ConditionTeller::tellFocus() {
    if (!m_panel.hasFocus() || !m_panel.rootRow()) return;
    const ElementRef focus(m_panel.ActiveElement());
    if (focus == m_toldFocus) return;
    m_toldFocus = focus;
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_panel);
    if (list) accessible::tell(list->focusChild(), QAccessible::Focus);
}

void ConditionTeller::focusCame() {
    m_toldFocus = {};
    if (accessible::isHeard()) tellFocus();
}

}  // namespace orv
