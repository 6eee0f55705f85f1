// SPDX-License-Identifier: MIT
// What a user does with condition rows: the commands and the menus that run them.
#include "contract/ChangeScope.h"
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/Services.h"

#include <QMenu>
#include <QPointer>
#include <QScrollBar>

namespace {

// The items of the row menu that change with its row.
enum RowMenuItem { composeItem = 1, deleteItem = 2, expandItem = 4 };

const QString noCondition = QStringLiteral("There are no active condition");

// "&" of a name is no mnemonic.
QString menuText(const QString& text) {
    return QString(text).replace(u'&', QStringLiteral("&&"));
}

// What an item stands for; an item of the host's own is known by its caption alone.
QString choiceOf(const QAction& item) {
    return item.data().isValid() ? item.data().toString() : item.text();
}

}  // namespace

void TorvQDWherePanel::createMenus() {
    const auto makeMenu = [this](const QString& name) {
        auto* menu = new QMenu(this);
        menu->setObjectName(name);
        return menu;
    };
    m_rowMenu = makeMenu(QStringLiteral("RowMenu"));
    const auto add = [this](const QString& caption, void (TorvQDWherePanel::*command)()) {
        connect(m_rowMenu->addAction(caption), &QAction::triggered, this,
                [this, command] { orv::guarded([&] { (this->*command)(); }); });
    };
    add(QStringLiteral("Add condition"), &TorvQDWherePanel::AddCondition);
    add(QStringLiteral("Make compose condition"), &TorvQDWherePanel::MakeCompositCondition);
    add(QStringLiteral("Delete condition"), &TorvQDWherePanel::DeleteCondition);
    m_rowMenu->addSeparator();
    add(QStringLiteral("Expand condition"), &TorvQDWherePanel::ExpandCollapse);
    addTextItems();

    using Choice = void (TorvQDWherePanel::*)(const QAction*);
    const auto choose = [this](QMenu* menu, Choice choice) {
        connect(menu, &QMenu::triggered, this, [this, choice](const QAction* item) {
            orv::guarded([&] { (this->*choice)(item); });
        });
    };
    m_groupMenu = makeMenu(QStringLiteral("GroupMenu"));
    for (const TorvQDGroupFunc& group : GroupOpers ? *GroupOpers : TGroupOperators()) {
        m_groupMenu->addAction(menuText(group.Caption))->setData(group.Caption);
    }
    choose(m_groupMenu, &TorvQDWherePanel::SelectGroupFuncs);
    m_functionMenu = makeMenu(QStringLiteral("FunctionMenu"));
    for (const QString& function : Functions ? *Functions : QStringList()) {
        QAction* item = m_functionMenu->addAction(menuText(function));
        item->setData(function);
        if (orv::isBlank(function)) orv::setReadName(*item, QStringLiteral("no function"));
    }
    choose(m_functionMenu, &TorvQDWherePanel::SelectAgrFuncs);
    m_operatorMenu = makeMenu(QStringLiteral("OperatorMenu"));
    connect(m_operatorMenu, &QMenu::aboutToShow, this,
            [this] { orv::guarded([this] { _PopupOpersMenu(); }); });
    choose(m_operatorMenu, &TorvQDWherePanel::SelectOperator);
}

void TorvQDWherePanel::_PopupOpersMenu() {
    m_operatorMenu->clear();
    for (int index = 0; Operators && index < Operators->Count(); ++index) {
        // Operators travel with their items: the catalogue may change while the menu is open.
        const TOperatorList::Entry entry = Operators->Items(index);
        m_operatorMenu->addAction(menuText(entry->Caption))->setData(QVariant::fromValue(entry));
    }
}

namespace {

QAction* itemWith(const QMenu& menu, const QVariant& data) {
    const QList<QAction*> items = menu.actions();
    for (QAction* item : items) {
        if (item->data() == data) return item;
    }
    return items.isEmpty() ? nullptr : items.front();
}

}  // namespace

// The arrow keys start from the item with the data that is chosen now. It is looked for when the
// menu is open: opening fills it.
void TorvQDWherePanel::popUp(QMenu* menu, const TorvQDControl& element, int y,
                             const QVariant& chosen) {
    if (menu->isEmpty()) return;
    const QPoint below(element.Left - horizontalScrollBar()->value(), y + m_context.rowHeight);
    menu->popup(viewport()->mapToGlobal(below));
    if (chosen.isValid()) menu->setActiveAction(itemWith(*menu, chosen));
}

void TorvQDWherePanel::ButtonClick(const TorvQDControl& Element, int y) {
    const TorvQDWhereRow& row = *Element.Row;
    setCurrentElement(&Element);
    const bool isRoot = !row.parentRow();
    const QList<QAction*> items = m_rowMenu->actions();
    items[composeItem]->setEnabled(!row.isGroup());
    items[deleteItem]->setEnabled(!isRoot);
    items[expandItem]->setEnabled(!isRoot && row.isGroup());
    items[expandItem]->setText(row.Expanded ? QStringLiteral("Collapse condition")
                                            : QStringLiteral("Expand condition"));
    enableTextItems(row);
    popUp(m_rowMenu, Element, y, {});
    viewport()->unsetCursor();
}

void TorvQDWherePanel::TextClick(const TorvQDControl& Element, int y) {
    TorvQDWhereRow& row = *Element.Row;
    setCurrentElement(&Element);
    if (row.isGroup()) {
        if (row.Expanded) {
            popUp(m_groupMenu, Element, y, row.GroupOper);
        } else {
            row.SetExpanded(true);
            relay();
        }
        return;
    }
    if (Element.Kind == ekFieldFunc || Element.Kind == ekArgFunc) {
        const QString& function = Element.Kind == ekFieldFunc ? row.FieldFunc : row.ArgFunc;
        popUp(m_functionMenu, Element, y, function);
    } else if (Element.Kind == ekOperator) {
        _PopupOpersMenu();
        popUp(m_operatorMenu, Element, y, QVariant::fromValue(row.Operator));
    } else if (Element.Kind != ekButton) {
        editText(Element);
    }
}

// --- changes ---

// The row that a command is about. What is being typed is taken over first; none when the row
// or the panel does not survive what the host does about it.
TorvQDWhereRow* TorvQDWherePanel::commandRow(const QString& refusal) {
    const QPointer<TorvQDWherePanel> self(this);
    const bool isChosen = CurrentElement();
    commitEdit();
    if (!self) return nullptr;
    const TorvQDControl* element = CurrentElement();
    if (!element && isChosen) return nullptr;
    if (!element) throw orv::Error(refusal);
    return element->Row;
}

// One change of the query. What the host does about it may end in the destruction of all this.
void TorvQDWherePanel::edit(const std::function<void()>& change) {
    const QPointer<TorvQDWherePanel> self(this);
    IPagesHost* owner = host();
    ChangeScope<IPagesHost> scope(owner, this);
    change();
    relay();
    if (owner) owner->statementChanged();
    scope.finish();
    if (self) viewport()->update();
}

// The new row is where the keys go on.
void TorvQDWherePanel::AddCondition() {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    edit([&] {
        TorvQDWhereRows& rows = row->isGroup() ? *row->SubRows : *row->rows();
        if (row->isGroup() && !row->Expanded) row->SetExpanded(true);
        TorvQDWhereRow* added = rows.AddRow();
        activate(*added->Controls[ekFieldName]);
    });
}

void TorvQDWherePanel::MakeCompositCondition() {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    if (row->isGroup()) throw orv::Error(QStringLiteral("Selected condition already compose"));
    if (row->depth() - 1 > orv::deepestCondition) orv::raiseTooDeep();
    edit([&] {
        TorvQDWhereRow* below = row->SubRows->AddRow();
        below->Assign(*row);
        below->Muted = false;  // with its group it is
        row->SetGroupOper(QStringLiteral("All"));
    });
}

void TorvQDWherePanel::DeleteCondition() {
    const TorvQDWhereRow* current = commandRow(QStringLiteral("There is no active button"));
    if (!current) return;
    const orv::ElementRef deleted(*current, ekButton);
    if (!current->parentRow()) throw orv::Error(QStringLiteral("Could not delete first row"));
    orv::MessageRequest question;
    question.parent = this;
    question.text = QStringLiteral("Are you sure want to delete current condition(s)?");
    question.caption = QStringLiteral("Be care!");
    question.icon = orv::MessageIcon::Question;
    question.buttons = orv::MessageButtons::YesNo;
    const QPointer<TorvQDWherePanel> self(this);
    if (orv::showMessage(question) != orv::MessageAnswer::Yes || !self) return;
    TorvQDWhereRow* row = deleted.row();
    if (!row || !row->parentRow()) return;  // the host was faster
    edit([&] {
        row->rows()->Delete(row->GetIndex());
        setCurrentElement(nullptr);
    });
}

void TorvQDWherePanel::MuteCondition() {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    if (!row->parentRow()) throw orv::Error(QStringLiteral("Could not mute first row"));
    edit([&] { row->SetMuted(!row->Muted); });
}

void TorvQDWherePanel::ExpandCollapse() {
    TorvQDWhereRow* row = commandRow();
    if (!row) return;
    if (!row->isGroup()) {
        throw orv::Error(QStringLiteral("Can not expand/collapse simple condition"));
    }
    if (!row->parentRow()) throw orv::Error(QStringLiteral("Can not collapse first condition"));
    row->SetExpanded(!row->Expanded);
    relay();
}

void TorvQDWherePanel::SelectGroupFuncs(const QAction* Sender) {
    TorvQDWhereRow* row = commandRow(noCondition);
    if (!row) return;
    if (CurrentElement()->Kind != ekGroupOper) throw orv::Error(noCondition);
    if (!Sender) return;
    edit([&] { row->SetGroupOper(choiceOf(*Sender)); });
}

void TorvQDWherePanel::SelectAgrFuncs(const QAction* Sender) {
    TorvQDWhereRow* row = commandRow(noCondition);
    if (!row) return;
    if (!Sender) return;
    edit([&] {
        (CurrentElement()->Kind == ekFieldFunc ? row->FieldFunc : row->ArgFunc) = choiceOf(*Sender);
        row->Changed(false);
    });
}

void TorvQDWherePanel::SelectOperator(const QAction* Sender) {
    TorvQDWhereRow* row = commandRow(noCondition);
    if (!row) return;
    if (CurrentElement()->Kind != ekOperator) throw orv::Error(noCondition);
    const auto entry =
        Sender ? Sender->data().value<TOperatorList::Entry>() : TOperatorList::Entry();
    if (!entry) return;
    edit([&] { row->setOperator(entry); });
}
