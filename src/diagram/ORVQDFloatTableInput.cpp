// SPDX-License-Identifier: MIT
// What a box does with the mouse: ticking rows, choosing the current row, its menu.
#include "contract/ChangeScope.h"
#include "diagram/ORVQDFloatTable.h"
#include "toolkit/Services.h"

#include <QMenu>

void TorvQDTable::MouseDown(TWMMouse& Message, TTableHitTest Hit) {
    if (Hit == htTCheck) {
        const QPointer<TorvQDTable> self(this);
        SetFieldState(FieldState == 2 ? 0 : 2);
        if (!self) return;
    } else if (Hit == htTClient) {
        SetCurrentItem(GetItemAt(Message.XPos, Message.YPos));
    }
    Message.XPos -= Left;
    Message.YPos -= Top;
    TorvQDFloatObject::MouseDown(Message, Hit);
}

void TorvQDTable::MouseUp(TWMMouse& Message, TTableHitTest Hit) {
    if (Hit == htTClient) {
        TorvQDListItem* item = GetItemAt(Message.XPos, Message.YPos);
        if (item && item == CurrentItem && item->ParamType == ptOutput) {
            const TRect rect = GetItemRect(item);
            const QPointer<TorvQDTable> self(this);
            if (Message.XPos >= rect.Left && Message.XPos < rect.Left + ItemHeight) toggle(item);
            if (!self) return;
        }
    }
    Message.XPos -= Left;
    Message.YPos -= Top;
    TorvQDFloatObject::MouseUp(Message, Hit);
}

void TorvQDTable::toggle(TorvQDListItem* item) {
    const QPointer<TorvQDTable> self(this);
    ChangeScope change(canvas(), Parent);
    item->SetCheck(!item->Checked);
    if (self) item->UpdateCheck(item->Checked ? -1 : 0);
    change.finish();
}

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
            if (self && self->renameRequested) self->renameRequested(self);
        });
    });
}
