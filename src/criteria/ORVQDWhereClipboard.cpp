// SPDX-License-Identifier: MIT
// Condition rows as text on the clipboard, copied and moved.
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionClipboard.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/Services.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>

namespace {

// The items of the row menu, behind those of the commands.
enum TextItem { duplicateItem = 6, copyItem = 7, pasteItem = 8, muteItem = 9 };

bool isAnd(const QString& groupOper) {
    return groupOper == QStringLiteral("All") || groupOper == QStringLiteral("None");
}

bool isNegated(const QString& groupOper) {
    return groupOper == QStringLiteral("None") || groupOper == QStringLiteral("Not all");
}

// The rows by which a text goes into a group: one by one where the group joins them in the same
// way, as one group where it does not. An empty panel needs no group inside its own.
std::vector<const TorvQDWhereRow*> rowsFor(const orv::LooseConditions& text,
                                           const TorvQDWhereRow& group) {
    const TorvQDWhereRow& root = text.root();
    const bool isEmptyPanel = !group.parentRow() && group.SubRows->GetCount() == 0;
    if (root.Muted) return {&root};
    const bool isSingle = root.SubRows->GetCount() == 1;
    const bool mayUnpack =
        !text.isOneGroup() || (isEmptyPanel && root.GroupOper == group.GroupOper);
    const bool joinsAlike = isSingle || isAnd(root.GroupOper) == isAnd(group.GroupOper);
    if (isNegated(root.GroupOper) || !joinsAlike || !(mayUnpack || isSingle)) return {&root};
    std::vector<const TorvQDWhereRow*> rows;
    rows.reserve(std::size_t(root.SubRows->GetCount()));
    for (int index = 0; index < root.SubRows->GetCount(); ++index) {
        rows.push_back(root.SubRows->Row(index));
    }
    return rows;
}

}  // namespace

// --- commands ---

void TorvQDWherePanel::DuplicateCondition() {
    const TorvQDWhereRow* row = commandRow();
    if (!row) return;
    if (!row->parentRow()) throw orv::Error(QStringLiteral("Could not duplicate first row"));
    edit([&] {
        const TorvQDWhereRow* copy = orv::copyRow(*row, *row->rows(), row->GetIndex() + 1);
        activate(*copy->Controls[copy->isGroup() ? ekGroupOper : ekFieldName]);
    });
}

void TorvQDWherePanel::MoveCondition(int step) {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    const int to = row->GetIndex() + step;
    if (!row->parentRow() || to < 0 || to >= row->rows()->GetCount()) return;
    edit([&] {
        row->SetIndex(to);
        showElement(*CurrentElement());
    });
}

void TorvQDWherePanel::CopyCondition() {
    const TorvQDWhereRow* row = commandRow();
    if (row) QGuiApplication::clipboard()->setMimeData(copyOfRow(*row).release());
}

// What is not deleted after all is not copied either.
void TorvQDWherePanel::CutCondition() {
    const TorvQDWhereRow* row = commandRow();
    if (!row) return;
    std::unique_ptr<QMimeData> copy = row->parentRow() ? copyOfRow(*row) : nullptr;
    const orv::ElementRef cut(*row, ekButton);
    DeleteCondition();
    if (!cut.row()) QGuiApplication::clipboard()->setMimeData(copy.release());
}

std::unique_ptr<QMimeData> TorvQDWherePanel::copyOfRow(const TorvQDWhereRow& row) const {
    return orv::copiedCondition(row, readingRules(keepsMeaning()), GroupOpers);
}

bool TorvQDWherePanel::keepsMeaning() const {
    const IPagesHost* owner = host();
    return owner && owner->KeepMeaning();
}

void TorvQDWherePanel::PasteCondition() {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    if (!copied) return;
    const orv::LooseConditions pasted(*copied, readingRules(keepsMeaning()), GroupOpers);
    TorvQDWhereRow& group = row->isGroup() ? *row : *row->parentRow();
    const std::vector<const TorvQDWhereRow*> rows = rowsFor(pasted, group);
    const int more = rows.front() == &pasted.root() ? 1 : 0;
    if (group.depth() - 1 + pasted.groupsBelow() + more > orv::deepestCondition) {
        orv::raiseTooDeep();
    }
    edit([&] {
        if (!group.Expanded) group.SetExpanded(true);
        int index = row->isGroup() ? group.SubRows->GetCount() : row->GetIndex() + 1;
        const TorvQDWhereRow* first = nullptr;
        for (const TorvQDWhereRow* each : rows) {
            const TorvQDWhereRow* added = orv::copyRow(*each, *group.SubRows, index++);
            if (!first) first = added;
        }
        activate(*first->Controls[first->isGroup() ? ekGroupOper : ekFieldName]);
    });
}

// --- menu and keys ---

void TorvQDWherePanel::addTextItems() {
    m_rowMenu->addSeparator();
    const auto add = [this](const QString& caption, int key, void (TorvQDWherePanel::*command)()) {
        QAction* item = m_rowMenu->addAction(caption);
        // The panel's own keys: the item only tells of them, and no other shortcut is in its way.
        item->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(key)));
        item->setShortcutContext(Qt::WidgetShortcut);
        item->setShortcutVisibleInContextMenu(true);
        connect(item, &QAction::triggered, this,
                [this, command] { orv::guarded([&] { (this->*command)(); }); });
    };
    add(QStringLiteral("Duplicate condition"), Qt::Key_D, &TorvQDWherePanel::DuplicateCondition);
    add(QStringLiteral("Copy"), Qt::Key_C, &TorvQDWherePanel::CopyCondition);
    add(QStringLiteral("Paste"), Qt::Key_V, &TorvQDWherePanel::PasteCondition);
    add(QStringLiteral("Mute condition"), Qt::Key_M, &TorvQDWherePanel::MuteCondition);
}

void TorvQDWherePanel::enableTextItems(const TorvQDWhereRow& row) {
    const QList<QAction*> items = m_rowMenu->actions();
    items[duplicateItem]->setEnabled(row.parentRow());
    items[copyItem]->setEnabled(!row.isGroup() || row.SubRows->GetCount() > 0);
    items[pasteItem]->setEnabled(!orv::isBlank(QGuiApplication::clipboard()->text()));
    items[muteItem]->setEnabled(row.parentRow());
    items[muteItem]->setText(row.Muted ? QStringLiteral("Unmute condition")
                                       : QStringLiteral("Mute condition"));
}

void TorvQDWherePanel::runTextKey(int key) {
    setCurrentElement(ActiveElement());
    switch (key) {
    case Qt::Key_Up: MoveCondition(-1); break;
    case Qt::Key_Down: MoveCondition(1); break;
    case Qt::Key_C: CopyCondition(); break;
    case Qt::Key_X: CutCondition(); break;
    case Qt::Key_V: PasteCondition(); break;
    case Qt::Key_D: DuplicateCondition(); break;
    case Qt::Key_M: MuteCondition(); break;
    }
}
