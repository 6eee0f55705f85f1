// SPDX-License-Identifier: MIT
// What a box does with the mouse and the keys that the canvas hands to it, and its menu.
#include "contract/ChangeScope.h"
#include "core/Text.h"
#include "diagram/ORVQDFloatTable.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QMenu>
#include <QScopeGuard>

#include <algorithm>

namespace {

enum CaptionButton { collapseButton = 0, unlinkButton = 1, closeButton = 2 };

QString buttonHint(int button) {
    switch (button) {
    case collapseButton: return QStringLiteral("Collapse/Expand table");
    case unlinkButton: return QStringLiteral("Unlink table");
    case closeButton: return QStringLiteral("Close table");
    default: return {};
    }
}

bool isTickKey(int key) {
    return orv::isEnter(key) || key == Qt::Key_Space;
}

bool isRowKey(int key) {
    static const int keys[] = {Qt::Key_Right,  Qt::Key_Down,     Qt::Key_Left, Qt::Key_Up,
                               Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

bool startsWithName(const QString& name, const QString& beginning) {
    return orv::unquotedName(name).startsWith(beginning, Qt::CaseInsensitive);
}

}  // namespace

// --- the mouse ---

int TorvQDTable::buttonAt(const QPoint& viewPoint) const {
    const TRect buttons = toView(GetButtonRect());
    if (!buttons.contains(viewPoint)) return -1;
    if (viewPoint.x() < buttons.Left + captionGlyphPx + 1) return collapseButton;
    return viewPoint.x() > buttons.Right - captionGlyphPx - 2 ? closeButton : unlinkButton;
}

void TorvQDTable::setHotButton(int button) {
    if (button == HotButton) return;
    HotButton = button;
    invalidate(GetButtonRect());
}

void TorvQDTable::MouseDown(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDTable> self(this);
    if (Hit == htTCheck) {
        SetFieldState(FieldState == 2 ? 0 : 2);
        if (!self) return;
    } else if (Hit == htTbutton) {
        // Looks pressed at once, also when the box was not selected before: then no button was hot.
        HotButton = PressedButton = buttonAt({Message.XPos, Message.YPos});
        invalidate(GetButtonRect());
    } else if (Hit == htTClient) {
        SetCurrentItem(GetItemAt(Message.XPos, Message.YPos));
    }
    Message.XPos -= Left;
    Message.YPos -= Top;
    TorvQDFloatObject::MouseDown(Message, Hit);
}

void TorvQDTable::MouseMove(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDTable> self(this);
    const QPoint point(Message.XPos, Message.YPos);
    const bool isHeld = Message.Buttons & Qt::LeftButton;
    Hint.clear();
    if (Hit == htTbutton && Selected) {
        const int button = buttonAt(point);
        Hint = buttonHint(button);
        setHotButton(button);
    } else {
        setHotButton(-1);
    }
    if (Hit == htTCheck && !isHeld) {
        Hint = FieldState == 2 ? QStringLiteral("Unselect all fields")
                               : QStringLiteral("Select all fields");
    } else if (Hit == htTCaption && !isHeld) {
        Hint = QStringLiteral("Double click for edit alias");
    } else if (Hit == htTClient) {
        const bool takesRow = isHeld && CurrentItem && CurrentItem->ParamType == ptOutput &&
                              point.x() > GetItemRect(CurrentItem).Left + ItemHeight;
        if (takesRow) {
            if (canvas()) canvas()->startFieldDrag(this, CurrentItem);
            if (!self) return;
        } else if (const TorvQDListItem* item = GetItemAt(point.x(), point.y())) {
            Hint = item->Name + QStringLiteral(" (") + item->GetDataName() + u')';
        }
    }
    Message.XPos -= Left;
    Message.YPos -= Top;
    TorvQDFloatObject::MouseMove(Message, Hit);
}

void TorvQDTable::MouseUp(TWMMouse& Message, TTableHitTest Hit) {
    const QPointer<TorvQDTable> self(this);
    const QPoint point(Message.XPos, Message.YPos);
    if (Hit == htTbutton) {
        const int pressed = std::exchange(PressedButton, -1);
        invalidate(GetButtonRect());
        if (pressed >= 0 && buttonAt(point) == pressed) {
            switch (pressed) {
            case closeButton: CloseTable(); break;
            case unlinkButton: UnlinkTable(); break;
            case collapseButton: SetExpand(Expanded ? 0 : -1); break;
            default: break;
            }
        }
    } else if (Hit == htTClient) {
        TorvQDListItem* item = GetItemAt(point.x(), point.y());
        if (item && item == CurrentItem && item->ParamType == ptOutput) {
            // The release may lie anywhere, also above the list.
            const TRect rect = GetItemRect(item);
            const bool isInRow = point.y() >= rect.Top - rowGapPx;
            const bool isInSquare = point.x() >= rect.Left && point.x() < rect.Left + ItemHeight;
            if (isInRow && isInSquare) toggle(item);
        }
    }
    if (!self) return;
    Message.XPos -= Left;
    Message.YPos -= Top;
    TorvQDFloatObject::MouseUp(Message, Hit);
}

void TorvQDTable::DblClick(TWMMouse&, TTableHitTest Hit) {
    if (Hit == htTCaption) {
        _RenameTable();
    } else if (Hit == htTClient && CurrentItem) {
        toggle(CurrentItem);
    }
}

void TorvQDTable::LeaveHit(TWMMouse&, TTableHitTest) {
    Hint.clear();
    setHotButton(-1);
}

void TorvQDTable::toggle(TorvQDListItem* item) {
    if (item->ParamType != ptOutput) {
        item->SetCheck(!item->Checked);
        return;
    }
    const QPointer<TorvQDTable> self(this);
    ChangeScope change(canvas(), Parent);
    {
        // Also when the host raises something.
        const auto settle = qScopeGuard([&] {
            if (self && owns(item)) item->UpdateCheck(item->Checked ? -1 : 0);
        });
        item->SetCheck(!item->Checked);
    }
    change.finish();
}

void TorvQDTable::setDropItem(TorvQDListItem* item) {
    if (item == DropItem) return;
    for (TorvQDListItem* changed : {DropItem, item}) {
        if (owns(changed)) changed->invalidate();
    }
    DropItem = item;
}

// --- the menu, renaming ---

void TorvQDTable::PopupMenu(QMenu& Menu, int, int, TTableHitTest Hit) {
    if (Hit != htTCaption) return;
    const QPointer<TorvQDTable> self(this);
    Menu.addAction(QStringLiteral("Delete table"), &Menu, [self] {
        orv::guarded([&] {
            if (self) self->_RemoveTable();
        });
    });
    Menu.addSeparator();
    Menu.addAction(QStringLiteral("Rename table"), &Menu, [self] {
        orv::guarded([&] {
            if (self) self->_RenameTable();
        });
    });
}

void TorvQDTable::_RenameTable() {
    if (canvas()) canvas()->beginRename(this);
}

// --- the keys ---

bool TorvQDTable::usesKey(int key, Qt::KeyboardModifiers shift, const QString& text) const {
    if (shift & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    if (isTickKey(key) || isRowKey(key)) return true;
    return !text.isEmpty() && text.at(0).isLetterOrNumber();
}

// The host's event may change the key: then the text that was typed is another one's.
void TorvQDTable::KeyDown(int& Key, Qt::KeyboardModifiers Shift) {
    const QPointer<TorvQDTable> self(this);
    const int pressed = Key;
    TorvQDFloatObject::KeyDown(Key, Shift);
    if (!self || !canvas()) return;
    const bool isPlainKey =
        (Key >= Qt::Key_0 && Key <= Qt::Key_9) || (Key >= Qt::Key_A && Key <= Qt::Key_Z);
    QString text = Key == pressed ? canvas()->typedText() : QString();
    if (text.isEmpty() && isPlainKey) text = QChar(Key);
    if (Key == 0 || !usesKey(Key, Shift, text)) return;
    const int key = std::exchange(Key, 0);
    if (isRowKey(key)) {
        moveCurrent(key);
    } else if (!isTickKey(key)) {
        canvas()->beginSearch(this, text);
    } else if (CurrentItem) {
        toggle(CurrentItem);
    }
}

void TorvQDTable::moveCurrent(int key) {
    const int count = int(Items.size());
    if (count == 0) return;
    int index = CurrentItem ? CurrentItem->GetIndex() : FirstVisibleItem;
    if (CurrentItem) {
        switch (key) {
        case Qt::Key_Right:
        case Qt::Key_Down: ++index; break;
        case Qt::Key_Left:
        case Qt::Key_Up: --index; break;
        case Qt::Key_PageUp: index += 1 - VisibleCount; break;
        case Qt::Key_PageDown: index += VisibleCount - 1; break;
        case Qt::Key_Home: index = 0; break;
        case Qt::Key_End: index = count - 1; break;
        default: break;
        }
    }
    TorvQDListItem* item = Items[std::size_t(std::clamp(index, 0, count - 1))].get();
    if (item == CurrentItem) return;
    scrollToItem(item);
    SetCurrentItem(item);
}

void TorvQDTable::scrollToItem(const TorvQDListItem* item) {
    if (!owns(item)) return;
    const int index = item->GetIndex();
    if (index >= FirstVisibleItem + VisibleCount) {
        SetFirstVisibleItem(index - VisibleCount + 1);
    } else if (index < FirstVisibleItem) {
        SetFirstVisibleItem(index);
    }
}

void TorvQDTable::_FindField(const QString& Text, int& Key) {
    const int count = int(Items.size());
    const bool goesDown = Key == Qt::Key_Down;
    const bool goesUp = Key == Qt::Key_Up;
    const int step = goesUp ? -1 : 1;
    int index = 0;
    if (goesDown || goesUp) {
        Key = 0;
        index = CurrentItem ? CurrentItem->GetIndex() + step : 0;
    }
    if (Text.isEmpty()) return;
    for (; index >= 0 && index < count; index += step) {
        TorvQDListItem* item = Items[std::size_t(index)].get();
        if (!startsWithName(item->Name, Text)) continue;
        scrollToItem(item);
        SetCurrentItem(item);
        return;
    }
}
