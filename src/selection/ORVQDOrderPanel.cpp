// SPDX-License-Identifier: MIT
// The sorting page: its lists and buttons, the ORDER BY list written and loaded.
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Services.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>

namespace {

constexpr int labelHeightPx = 20;
constexpr int gapPx = 2;

QPushButton* makeButton(QWidget* parent, const char* caption, int top, QSize size) {
    auto* button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setGeometry(0, top, size.width(), size.height());
    button->setEnabled(false);
    return button;
}

[[noreturn]] void raiseNoHost() {
    throw orv::Error(QStringLiteral("Fatal error! Could not find parent for sorting page!"));
}

// Databases disagree about which of several output columns of one name is meant.
constexpr int ambiguousRow = -1;

bool areAlike(const orv::OutputColumn& one, const orv::OutputColumn& other) {
    return orv::tokenKey(one.source) == orv::tokenKey(other.source) &&
           orv::orvTrim(one.aggregate) == orv::orvTrim(other.aggregate);
}

bool isAnyOf(const orv::TokenRun& run, int index, std::initializer_list<QStringView> words) {
    if (index < 0 || index >= run.size()) return false;
    for (const QStringView word : words) {
        if (run.is(index, word)) return true;
    }
    return false;
}

}  // namespace

TorvQDOrderPanel::TorvQDOrderPanel(QWidget* AOwner) : QWidget(AOwner) {
    if (!AOwner) throw orv::Error(QStringLiteral("Invalide parent for OrderPanel"));
    m_outputLabel = new QLabel(QStringLiteral("Output fields"), this);
    m_outputLabel->setGeometry(0, 0, 100, labelHeightPx);
    m_unsorted = new QListWidget(this);
    m_sorted = new QTreeWidget(this);
    m_sorted->setRootIsDecorated(false);
    m_sorted->setAllColumnsShowFocus(true);
    m_sorted->setHeaderLabels({QStringLiteral("Sorted fields"), QStringLiteral("Sort order")});
    m_add = makeButton(this, "Add", 30, {50, 30});
    m_remove = makeButton(this, "Remove", 70, {50, 30});
    m_order = makeButton(this, "A..Z", 0, {30, 20});
    m_up = makeButton(this, "Up", 0, {35, 20});
    m_down = makeButton(this, "Down", 0, {35, 20});
    setFocusPolicy(Qt::StrongFocus);
    const auto on = [this](QPushButton* button, void (TorvQDOrderPanel::*handler)()) {
        connect(button, &QPushButton::clicked, this,
                [this, handler] { orv::guarded([&] { (this->*handler)(); }); });
    };
    on(m_add, &TorvQDOrderPanel::_AddClick);
    on(m_remove, &TorvQDOrderPanel::_RemoveClick);
    on(m_order, &TorvQDOrderPanel::_ChangeOrder);
    on(m_up, &TorvQDOrderPanel::_MoveUp);
    on(m_down, &TorvQDOrderPanel::_MoveDown);
    connect(m_unsorted, &QListWidget::itemSelectionChanged, this, [this] { _SelectItem(); });
    connect(m_sorted, &QTreeWidget::itemSelectionChanged, this, [this] { _SelectItem(); });
}

IPagesHost* TorvQDOrderPanel::host() const {
    for (QWidget* widget = parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* host = dynamic_cast<IPagesHost*>(widget)) return host;
    }
    return nullptr;
}

QStringList TorvQDOrderPanel::outputNames() const {
    QStringList names;
    if (!grid) return names;
    for (const orv::OutputColumn& column : grid->columns()) names << column.name;
    return names;
}

void TorvQDOrderPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int labelWidth = (width() - m_add->width()) / 2;
    const int listTop = labelHeightPx + gapPx;
    const int sortedLeft = labelWidth + m_add->width() + gapPx;
    m_unsorted->setGeometry(0, listTop, labelWidth - gapPx, height() - labelHeightPx);
    m_sorted->setGeometry(sortedLeft, listTop, labelWidth - gapPx, height() - listTop);
    m_add->move(labelWidth, m_add->y());
    m_remove->move(labelWidth, m_remove->y());
    m_up->move(sortedLeft, 0);
    m_down->move(sortedLeft + m_up->width() + gapPx, 0);
    m_order->move(width() - m_order->width() - gapPx, 0);
}

// --- the lists ---

int TorvQDOrderPanel::selectedLine() const {
    const QList<QTreeWidgetItem*> items = m_sorted->selectedItems();
    return items.isEmpty() ? -1 : m_sorted->indexOfTopLevelItem(items.front());
}

void TorvQDOrderPanel::selectLine(int line) {
    m_sorted->setCurrentItem(m_sorted->topLevelItem(line));
    _SelectItem();
}

void TorvQDOrderPanel::show() {
    const QSignalBlocker silentSorted(m_sorted);
    const QSignalBlocker silentUnsorted(m_unsorted);
    const int selected = m_unsorted->currentRow();
    m_sorted->clear();
    for (const orv::SortList::Line& line : m_list.lines()) {
        m_sorted->addTopLevelItem(new QTreeWidgetItem({line.name, line.direction}));
    }
    m_unsorted->clear();
    m_unsorted->addItems(m_list.unsorted());
    if (selected >= 0 && selected < m_unsorted->count()) m_unsorted->setCurrentRow(selected);
}

void TorvQDOrderPanel::RefreshFields() {
    m_list.refresh(outputNames());
    show();
    _SelectItem();
}

void TorvQDOrderPanel::ClearContents() {
    m_list.clear();
    RefreshFields();
}

void TorvQDOrderPanel::_SelectItem() {
    const int line = selectedLine();
    const int lines = int(m_list.lines().size());
    m_add->setEnabled(!m_unsorted->selectedItems().isEmpty());
    for (QPushButton* button : {m_remove, m_order, m_up, m_down}) button->setEnabled(line >= 0);
    if (line < 0) return;
    const bool ascending = m_list.lines()[std::size_t(line)].direction == orv::ascendingText();
    m_order->setText(ascending ? QStringLiteral("Z..A") : QStringLiteral("A..Z"));
    m_up->setEnabled(line > 0);
    m_down->setEnabled(line + 1 < lines);
}

void TorvQDOrderPanel::edit(const std::function<void()>& change) {
    IPagesHost* owner = host();
    if (owner) owner->beginChange();
    change();
    show();
    if (!owner) return;
    owner->statementChanged();
    owner->endChange();
}

void TorvQDOrderPanel::_AddClick() {
    if (m_unsorted->selectedItems().isEmpty()) return;
    edit([this] { m_list.add(m_unsorted->currentRow()); });
    _SelectItem();
}

void TorvQDOrderPanel::_RemoveClick() {
    const int line = selectedLine();
    if (line < 0) return;
    edit([&] {
        m_list.remove(line);
        m_list.refresh(outputNames());
    });
    _SelectItem();
}

// The button's own caption follows with the next selection.
void TorvQDOrderPanel::_ChangeOrder() {
    const int line = selectedLine();
    if (line < 0) return;
    edit([&] { m_list.changeOrder(line); });
    const QSignalBlocker silent(m_sorted);
    m_sorted->setCurrentItem(m_sorted->topLevelItem(line));
}

void TorvQDOrderPanel::_MoveUp() {
    const int line = selectedLine();
    if (line < 1) return;
    edit([&] { m_list.moveUp(line); });
    selectLine(line - 1);
}

void TorvQDOrderPanel::_MoveDown() {
    const int line = selectedLine();
    if (line < 0 || line + 1 >= int(m_list.lines().size())) return;
    edit([&] { m_list.moveDown(line); });
    selectLine(line + 1);
}

// --- ORDER BY ---

QString TorvQDOrderPanel::GetSQLStatment() const {
    if (!host()) raiseNoHost();
    const QStringList names = outputNames();
    QStringList items;
    for (const orv::SortList::Line& line : m_list.lines()) {
        const int row = m_list.rowOf(line, names);
        if (row < 1) continue;
        const bool descends = line.direction == orv::descendingText();
        items << grid->GetFieldName(row) + (descends ? QStringLiteral(" DESC") : QString());
    }
    return items.join(QStringLiteral(", "));
}

void TorvQDOrderPanel::LoadSQL(const TorvQDParser& Node) {
    IPagesHost* owner = host();
    if (!owner) raiseNoHost();
    if (Node.Location() != inOrderBy) {
        throw orv::Error(QStringLiteral("There is not valid object for extract order list"));
    }
    m_list.clear();
    orv::LoadLedger* ledger = owner->ledger();
    if (!ledger) return;
    const orv::TokenRun run = ledger->tokensIn(Node.Start(), Node.End());
    ledger->place(run);
    const QStringList names = outputNames();
    for (const orv::TokenRun& item : run.mid(2).splitAtCommas()) {
        if (item.isEmpty()) continue;
        const int last = item.size() - 1;
        const bool descends = isAnyOf(item, last, {u"DESC", u"DESCENDING"});
        const bool directed = descends || isAnyOf(item, last, {u"ASC", u"ASCENDING"});
        const orv::TokenRun expression = directed ? item.mid(0, last) : item;
        const bool isNumber = expression.size() == 1 && expression[0].kind == orv::SqlToken::Number;
        const int row = expression.isEmpty() ? 0 : loadedRow(expression.sourceText(), isNumber);
        if (row == ambiguousRow) {
            ledger->report(item, QStringLiteral("Several output columns have this name: the rows "
                                                "are not sorted by it."));
            continue;
        }
        if (row < 1 || orv::isBlank(names.value(row - 1))) {
            ledger->report(item, QStringLiteral("No output column stands for this: the rows are "
                                                "not sorted by it."));
            continue;
        }
        m_list.append(names[row - 1], descends ? orv::descendingText() : orv::ascendingText(), row);
    }
    RefreshFields();
}

// The output row that an item of ORDER BY names: by number, output name, field or text; 0 for none.
int TorvQDOrderPanel::loadedRow(const QString& text, bool isNumber) const {
    const orv::OutputColumns& columns = grid->columns();
    const int count = int(columns.size());
    if (isNumber) {
        const int number = text.toInt();
        return number >= 1 && number <= count ? number : 0;
    }
    const bool qualified = orv::firstFullStop(text) >= 0;
    const QString word = orv::unquotedName(text).toUpper();
    int named = 0;
    for (int row = 1; !qualified && row <= count; ++row) {
        if (orv::unquotedName(columns[std::size_t(row - 1)].name).toUpper() != word) continue;
        if (named > 0 &&
            !areAlike(columns[std::size_t(named - 1)], columns[std::size_t(row - 1)])) {
            return ambiguousRow;
        }
        if (named == 0) named = row;
    }
    if (named > 0) return named;
    const std::optional<PageField> field = host()->resolveField(text);
    const QString key = orv::tokenKey(text);
    for (int row = 1; row <= count; ++row) {
        const orv::OutputColumn& column = columns[std::size_t(row - 1)];
        const bool plain = orv::isBlank(column.aggregate);
        const QString source =
            plain ? column.source : column.aggregate + u'(' + column.source + u')';
        if (orv::tokenKey(source) == key) return row;
        if (!field || !plain) continue;
        const std::optional<PageField> other = host()->resolveField(column.source);
        if (other && other->qualifiedName() == field->qualifiedName()) return row;
    }
    return 0;
}
