// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/Services.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAccessible>
#include <QAccessibleObject>

namespace orv::accessible {

/// The diagram that the object is on; none once it has left.
[[nodiscard]] TorvQDWorkArea* areaOf(const TorvQDFloatObject* object);
[[nodiscard]] QRect toScreen(const TorvQDWorkArea& area, const TRect& viewRect);
[[nodiscard]] QPoint fromScreen(const TorvQDWorkArea& area, int x, int y);

/// The row that has the focus when the canvas has it.
[[nodiscard]] TorvQDListItem* focusRow(const TorvQDTable& table);

[[nodiscard]] QAccessibleInterface* interfaceOf(TorvQDFloatObject* object);
/// That of the box itself without a row.
[[nodiscard]] QAccessibleInterface* interfaceOf(TorvQDTable* table, const TorvQDListItem* row);

/// Whether what lies there can be seen and used.
void show(QAccessible::State& state, const TorvQDWorkArea& area, const QRect& screenRect);

/// An action may open a dialog; whoever asked for it must not wait for its end.
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

/// What boxes and links have in common.
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

    QAccessible::State state() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    [[nodiscard]] virtual TRect diagramRect() const = 0;
    virtual void act(const QString& name) = 0;

private:
    void focus() const;
};

/// The interface of a box, which has those of its rows.
[[nodiscard]] QAccessibleInterface* makeBoxInterface(QObject* box);

}  // namespace orv::accessible
