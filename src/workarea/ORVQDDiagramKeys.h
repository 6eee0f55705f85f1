// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/ORVQDFloatTable.h"

#include <QPointer>

class QKeyEvent;
class QPainter;
class TorvQDWorkArea;

namespace orv {

/// What the keyboard does on the diagram beside what the selected object does with a key itself, so
/// that everything can be reached and done without a mouse. docs/keys.md lists the keys. Part of
/// the work area.
class DiagramKeys {
public:
    explicit DiagramKeys(TorvQDWorkArea& area) : m_area(area) {}

    /// Whether the diagram takes the key from the shortcuts of the window.
    [[nodiscard]] bool wants(const QKeyEvent& event) const;
    /// Does what the key means; false when it means nothing here.
    bool press(int key, Qt::KeyboardModifiers modifiers);

    /// The row from which Insert began a link; none at other times.
    [[nodiscard]] TorvQDListItem* linkSource() const;
    /// Ends the link that was begun; false when there is none.
    bool cancelLink();
    void forget(const TorvQDFloatObject* object);

    /// The link that was begun, from its row to the current row of the selected box.
    void paint(QPainter& painter) const;

private:
    enum class Command {
        None,
        Cancel,
        ShowMenu,
        SelectTable,
        SelectLink,
        Deselect,
        ZoomIn,
        ZoomOut,
        ActualSize,
        Scroll,
        ShowProperties,  // of the selected link
        // of the selected box
        Move,
        Size,
        TickAll,
        Unlink,
        Rename,
        Close,
        Link,
        Expand,
        Collapse
    };

    [[nodiscard]] TorvQDTable* selectedTable() const;
    [[nodiscard]] TorvQDLink* selectedLink() const;
    [[nodiscard]] Command commandOf(int key, Qt::KeyboardModifiers modifiers) const;
    [[nodiscard]] Command commandOnSelected(int key, Qt::KeyboardModifiers modifiers) const;
    void doOnTable(TorvQDTable& table, Command command, int key);
    void moveTable(TorvQDTable& table, const QPoint& by);
    void sizeTable(TorvQDTable& table, const QPoint& by);
    void selectTable(int step);
    void selectLink(int step);
    void beginOrEndLink(TorvQDTable& table);
    void scroll(int key, bool finely);

    TorvQDWorkArea& m_area;
    QPointer<TorvQDTable> m_linkTable;
    int m_linkRow = -1;
};

}  // namespace orv
