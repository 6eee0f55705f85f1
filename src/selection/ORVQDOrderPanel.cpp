// SPDX-License-Identifier: MIT
// The sorting page: its lists and buttons, the ORDER BY list written and loaded. Keys, double
// clicks and drags are in ORVQDOrderPanelInput.cpp.
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Services.h"

#include <QEvent>
#include <QHash>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalBlocker>
#include <QTreeWidget>

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>

namespace {

constexpr int labelHeightPx = 20;
constexpr int buttonHeightPx = 30;
constexpr int addTopPx = 30;
constexpr int removeTopPx = 70;
constexpr int gapPx = 2;
constexpr int keywordTokens = 2;  // ORDER BY

QPushButton* makeButton(QWidget* parent, const char* caption, int top, QSize size,
                        const char* hint) {
    auto* button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setGeometry(0, top, size.width(), size.height());
    button->setEnabled(false);
    button->setToolTip(QString::fromLatin1(hint));
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
    m_unsorted = new QListWidget(this);
    m_unsorted->setAccessibleName(m_outputLabel->text());
    m_sorted = new QTreeWidget(this);
    m_sorted->setAccessibleName(QStringLiteral("Sorted fields"));
    m_sorted->setRootIsDecorated(false);
    m_sorted->setAllColumnsShowFocus(true);
    m_sorted->setHeaderLabels({QStringLiteral("Sorted fields"), QStringLiteral("Sort order")});
    m_sorted->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_sorted->header()->setStretchLastSection(false);
    m_add = makeButton(this, "Add", addTopPx, {50, 30}, "Sort by the selected output field");
    m_remove =
        makeButton(this, "Remove", removeTopPx, {50, 30}, "No longer sort by the selected field");
    m_order = makeButton(this, "A..Z", 0, {30, 20}, "Change the direction of the selected field");
    m_up = makeButton(this, "Up", 0, {35, 20}, "Move the selected field up");
    m_down = makeButton(this, "Down", 0, {35, 20}, "Move the selected field down");
    setFocusPolicy(Qt::StrongFocus);
    for (QAbstractItemView* list :
         {static_cast<QAbstractItemView*>(m_unsorted), static_cast<QAbstractItemView*>(m_sorted)}) {
        // The drop itself is handled here: the views would move their rows on their own.
        list->setDragDropMode(QAbstractItemView::DragDrop);
        list->setDefaultDropAction(Qt::CopyAction);
        list->setDropIndicatorShown(false);
        list->installEventFilter(this);
        list->viewport()->installEventFilter(this);
    }
    connectParts();
    nameParts();
    placeParts();
}

// The keyboard goes from a list to what is done with its names, and on to the other list.
void TorvQDOrderPanel::nameParts() {
    const std::initializer_list<QWidget*> parts = {m_unsorted, m_add,   m_remove, m_up,
                                                   m_down,     m_order, m_sorted};
    QWidget* before = nullptr;
    for (QWidget* part : parts) {
        if (before) setTabOrder(before, part);
        before = part;
    }
    setFocusProxy(m_unsorted);
    m_outputLabel->setBuddy(m_unsorted);
    m_outputLabel->setToolTip(m_outputLabel->text());
    m_order->setAccessibleName(QStringLiteral("Change the direction"));
    m_up->setAccessibleName(QStringLiteral("Move up"));
    m_down->setAccessibleName(QStringLiteral("Move down"));
    for (QWidget* part : {m_add, m_remove, m_order, m_up, m_down}) {
        part->setAccessibleDescription(part->toolTip());
    }
    m_unsorted->setAccessibleDescription(
        QStringLiteral("Enter or Insert sorts by the selected field"));
    m_sorted->setAccessibleDescription(QStringLiteral(
        "Delete removes the selected field, Space changes its direction, Ctrl with Up or Down "
        "moves it"));
}

void TorvQDOrderPanel::connectParts() {
    const auto on = [this](QPushButton* button, void (TorvQDOrderPanel::*handler)()) {
        connect(button, &QPushButton::clicked, this,
                [this, handler] { orv::guarded([&] { (this->*handler)(); }); });
    };
    on(m_add, &TorvQDOrderPanel::_AddClick);
    on(m_remove, &TorvQDOrderPanel::_RemoveClick);
    on(m_order, &TorvQDOrderPanel::_ChangeOrder);
    on(m_up, &TorvQDOrderPanel::_MoveUp);
    on(m_down, &TorvQDOrderPanel::_MoveDown);
    const auto select = [this] { _SelectItem(); };
    connect(m_unsorted, &QListWidget::itemClicked, this, select);
    connect(m_unsorted, &QListWidget::itemSelectionChanged, this, select);
    connect(m_sorted, &QTreeWidget::itemClicked, this, select);
    connect(m_sorted, &QTreeWidget::itemSelectionChanged, this, select);
}

IPagesHost* TorvQDOrderPanel::host() const {
    return orv::pagesHostAbove(this);
}

TorvQDOrderPanel::Outputs TorvQDOrderPanel::outputs(std::size_t first) const {
    Outputs outputs;
    if (!grid) return outputs;
    for (std::size_t index = first; index < grid->columns().size(); ++index) {
        const orv::OutputColumn& column = grid->columns()[index];
        outputs.names << column.name;
        outputs.sources << orv::orvTrim(column.aggregate) + u'|' + column.source;
    }
    return outputs;
}

void TorvQDOrderPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeParts();
}

void TorvQDOrderPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_down) placeParts();
}

// The heights are those of usual fonts and grow with larger ones.
void TorvQDOrderPanel::placeParts() {
    const int textHeight = fontMetrics().height();
    const int labelHeight = std::max(labelHeightPx, textHeight + gapPx);
    const int buttonHeight = std::max(buttonHeightPx, textHeight + 2 * gapPx);
    const int labelWidth = (width() - m_add->width()) / 2;
    const int listTop = labelHeight + gapPx;
    const int sortedLeft = labelWidth + m_add->width() + gapPx;
    m_outputLabel->setGeometry(0, 0, labelWidth, labelHeight);
    m_unsorted->setGeometry(0, listTop, labelWidth - gapPx, height() - labelHeight);
    m_sorted->setGeometry(sortedLeft, listTop, labelWidth - gapPx, height() - listTop);
    m_add->setGeometry(labelWidth, addTopPx, m_add->width(), buttonHeight);
    m_remove->setGeometry(labelWidth, removeTopPx + buttonHeight - buttonHeightPx,
                          m_remove->width(), buttonHeight);
    m_up->setGeometry(sortedLeft, 0, m_up->width(), labelHeight);
    m_down->setGeometry(sortedLeft + m_up->width() + gapPx, 0, m_down->width(), labelHeight);
    m_order->setGeometry(width() - m_order->width() - gapPx, 0, m_order->width(), labelHeight);
    update();
}

// --- the lists ---

int TorvQDOrderPanel::selectedLine() const {
    const QList<QTreeWidgetItem*> items = m_sorted->selectedItems();
    return items.isEmpty() ? -1 : m_sorted->indexOfTopLevelItem(items.front());
}

int TorvQDOrderPanel::selectedName() const {
    return m_unsorted->selectedItems().isEmpty() ? -1 : m_unsorted->currentRow();
}

namespace {

/// Where two lists differ: behind a common beginning and in front of a common end.
struct Difference {
    int start = 0;
    int shown = 0;   // so many of the list as it is
    int wanted = 0;  // give way to so many of the list as it shall be
};

template <typename List, typename Equal>
Difference difference(const List& shown, const List& wanted, const Equal& equal) {
    const auto [one, other] =
        std::mismatch(shown.begin(), shown.end(), wanted.begin(), wanted.end(), equal);
    const auto ends = std::mismatch(shown.rbegin(), std::make_reverse_iterator(one),
                                    wanted.rbegin(), std::make_reverse_iterator(other), equal);
    return {int(one - shown.begin()), int(ends.first.base() - one),
            int(ends.second.base() - other)};
}

// Lines that sort by what is not put out are shown as such columns are. The output rows are looked
// for only where something is muted.
void markMuted(QTreeWidget& list, const std::vector<orv::SortList::Line>& lines,
               const TorvQDSelectGrid* grid, const std::function<orv::OutputRows()>& makeRows) {
    if (lines.empty()) return;
    const orv::OutputColumns none;
    const orv::OutputColumns& columns = grid ? grid->columns() : none;
    std::optional<orv::OutputRows> rows;
    if (std::any_of(columns.begin(), columns.end(),
                    [](const orv::OutputColumn& column) { return column.muted; })) {
        rows = makeRows();
    }
    const QSignalBlocker silent(list);
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const int row = rows ? rows->rowOf(lines[index]) : 0;
        const bool isMuted = row > 0 && columns[std::size_t(row - 1)].muted;
        QTreeWidgetItem* item = list.topLevelItem(int(index));
        if (item->font(0).strikeOut() == isMuted) continue;
        for (int column = 0; column < list.columnCount(); ++column) {
            QFont font = list.font();
            font.setStrikeOut(true);
            const QBrush ink = list.palette().brush(QPalette::Disabled, QPalette::Text);
            item->setData(column, Qt::FontRole, isMuted ? QVariant(font) : QVariant());
            item->setData(column, Qt::ForegroundRole, isMuted ? QVariant(ink) : QVariant());
            item->setToolTip(column, isMuted ? QStringLiteral("Muted: the statement is not sorted "
                                                              "by this column.")
                                             : QString());
        }
    }
}

}  // namespace

// Items that stay are left alone, so that a tick costs the item that it adds.
void TorvQDOrderPanel::showNames() {
    const QStringList& wanted = m_list.unsorted();
    const Difference change = difference(m_shownNames, wanted, std::equal_to<>());
    if (change.shown > 0) m_unsorted->model()->removeRows(change.start, change.shown);
    if (change.wanted > 0) {
        m_unsorted->insertItems(change.start, wanted.mid(change.start, change.wanted));
    }
    m_shownNames = wanted;
}

void TorvQDOrderPanel::showLines() {
    using Line = orv::SortList::Line;
    const std::vector<Line>& wanted = m_list.lines();
    const Difference change =
        difference(m_shownLines, wanted, [](const Line& one, const Line& other) {
            return one.name == other.name && one.direction == other.direction;
        });
    const int kept = std::min(change.shown, change.wanted);
    const auto line = [&](int index) {
        return wanted[std::size_t(change.start) + std::size_t(index)];
    };
    for (int index = 0; index < kept; ++index) {
        QTreeWidgetItem* item = m_sorted->topLevelItem(change.start + index);
        item->setText(0, line(index).name);
        item->setText(1, line(index).direction);
    }
    if (change.shown > kept) {
        m_sorted->model()->removeRows(change.start + kept, change.shown - kept);
    }
    QList<QTreeWidgetItem*> items;
    for (int index = kept; index < change.wanted; ++index) {
        items << new QTreeWidgetItem({line(index).name, line(index).direction});
    }
    m_sorted->insertTopLevelItems(change.start + kept, items);
    m_shownLines = wanted;
}

// Shows the lists as they are, with these of them selected or none.
void TorvQDOrderPanel::showLists(int line, int name) {
    const QSignalBlocker silentSorted(m_sorted);
    const QSignalBlocker silentUnsorted(m_unsorted);
    showLines();
    showNames();
    markMuted(*m_sorted, m_list.lines(), grid, [this] {
        const Outputs shown = outputs();
        return orv::OutputRows(shown.names, shown.sources);
    });
    if (line >= 0) {
        m_sorted->setCurrentItem(m_sorted->topLevelItem(line));
    } else {
        m_sorted->selectionModel()->clear();
    }
    if (name >= 0 && name < m_unsorted->count()) {
        m_unsorted->setCurrentRow(name);
    } else {
        m_unsorted->selectionModel()->clear();
    }
}

void TorvQDOrderPanel::refreshLists(int line) {
    m_shownColumns = grid ? grid->columns() : orv::OutputColumns();
    const Outputs shown = outputs();
    showLists(m_list.refresh(shown.names, shown.sources, line), selectedName());
    _SelectItem();
}

// How many output columns are as they were at the last refresh, from the first one on.
std::size_t TorvQDOrderPanel::unchangedOutputs() const {
    if (!grid) return 0;
    const orv::OutputColumns& columns = grid->columns();
    const auto equal = [](const orv::OutputColumn& one, const orv::OutputColumn& other) {
        return one.name == other.name && one.source == other.source &&
               one.aggregate == other.aggregate;
    };
    const auto differ = std::mismatch(columns.begin(), columns.end(), m_shownColumns.begin(),
                                      m_shownColumns.end(), equal);
    return std::size_t(differ.first - columns.begin());
}

// A change of the order alone leaves lists and buttons as its command left them. Columns that came
// behind the others, as ticked fields do, cost what they are.
void TorvQDOrderPanel::RefreshFields() {
    const std::size_t unchanged = unchangedOutputs();
    const std::size_t columns = grid ? grid->columns().size() : 0;
    if (unchanged < m_shownColumns.size()) {
        refreshLists(selectedLine());
    } else if (unchanged < columns) {
        const Outputs added = outputs(unchanged);
        m_shownColumns.insert(m_shownColumns.end(), grid->columns().begin() + unchanged,
                              grid->columns().end());
        m_list.appendOutputs(added.names, added.sources, int(unchanged) + 1);
        showLists(selectedLine(), selectedName());
        _SelectItem();
    } else if (!m_editing) {
        showLists(selectedLine(), selectedName());
        _SelectItem();
    }
}

void TorvQDOrderPanel::ClearContents() {
    const bool hadLines = !m_list.lines().empty();
    m_list.clear();
    refreshLists(-1);
    IPagesHost* owner = host();
    if (hadLines && owner) owner->statementChanged();
}

void TorvQDOrderPanel::setSortedLines(const std::vector<orv::SortList::Line>& lines) {
    m_list.clear();
    for (const orv::SortList::Line& line : lines) {
        m_list.append(line.name, line.direction, line.row);
    }
    refreshLists(-1);
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

// What the host does about the change may end in the destruction of all this.
void TorvQDOrderPanel::edit(const std::function<void()>& change) {
    change();
    IPagesHost* owner = host();
    if (!owner) return;
    const QPointer<TorvQDOrderPanel> self(this);
    const auto done = qScopeGuard([&] {
        if (self) m_editing = false;
    });
    m_editing = true;
    owner->statementChanged();
}

// What takes the place of a name or line that goes is selected, so that the next one can follow.
void TorvQDOrderPanel::_AddClick() {
    const int name = selectedName();
    if (name < 0) return;
    edit([&] {
        m_list.add(name);
        showLists(selectedLine(), std::min(name, int(m_list.unsorted().size()) - 1));
        _SelectItem();
    });
}

void TorvQDOrderPanel::_RemoveClick() {
    const int line = selectedLine();
    if (line < 0) return;
    edit([&] {
        m_list.remove(line);
        refreshLists(std::min(line, int(m_list.lines().size()) - 1));
    });
}

// The button's own caption follows with the next selection.
void TorvQDOrderPanel::_ChangeOrder() {
    const int line = selectedLine();
    if (line < 0) return;
    edit([&] {
        m_list.changeOrder(line);
        showLists(line, selectedName());
    });
}

void TorvQDOrderPanel::_MoveUp() {
    const int line = selectedLine();
    if (line < 1) return;
    edit([&] {
        m_list.moveUp(line);
        showLists(line - 1, selectedName());
        _SelectItem();
    });
}

void TorvQDOrderPanel::_MoveDown() {
    const int line = selectedLine();
    if (line < 0 || line + 1 >= int(m_list.lines().size())) return;
    edit([&] {
        m_list.moveDown(line);
        showLists(line + 1, selectedName());
        _SelectItem();
    });
}

// --- ORDER BY ---

/// The output columns, looked up by what an item of ORDER BY may call them; made once for all items
/// of a list.
class TorvQDOrderPanel::OutputIndex {
public:
    explicit OutputIndex(const TorvQDOrderPanel& panel)
        : m_host(*panel.host()),
          m_columns(panel.grid ? panel.grid->columns() : orv::OutputColumns()),
          outputs(panel.outputs()) {}

    // The output row that an item names: by number, output name, field or text. Columns without a
    // name cannot be sorted.
    int rowOf(const QString& text, bool isNumber) {
        const int row = isNumber ? text.toInt() : rowOfText(text);
        if (!isNumber && row == ambiguousRow) return row;
        if (row < 1 || row > int(m_columns.size())) return 0;
        return orv::isBlank(m_columns[std::size_t(row - 1)].name) ? 0 : row;
    }

private:
    using Rows = QHash<QString, int>;

    int rowOfText(const QString& text) {
        const bool isQualified = orv::firstFullStop(text) >= 0;
        const int named = isQualified ? 0 : namedRow(orv::unquotedName(text).toUpper());
        if (named != 0) return named;
        if (const int row = rowOfSource(orv::tokenKey(text))) return row;
        const std::optional<PageField> field = m_host.resolveField(text);
        return field ? rowOfField(field->qualifiedName()) : 0;
    }

    // Columns of one name that put out the same are one.
    int namedRow(const QString& name) {
        if (!m_byName) {
            m_byName.emplace();
            for (int row = 1; row <= int(m_columns.size()); ++row) {
                const orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
                int& first = (*m_byName)[orv::unquotedName(column.name).toUpper()];
                if (first == 0) {
                    first = row;
                } else if (first != ambiguousRow &&
                           !areAlike(m_columns[std::size_t(first - 1)], column)) {
                    first = ambiguousRow;
                }
            }
        }
        return m_byName->value(name);
    }

    int rowOfSource(const QString& key) {
        if (!m_bySource) {
            m_bySource.emplace();
            for (int row = int(m_columns.size()); row >= 1; --row) {
                const orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
                const bool plain = orv::isBlank(column.aggregate);
                const QString source =
                    plain ? column.source : column.aggregate + u'(' + column.source + u')';
                m_bySource->insert(orv::tokenKey(source), row);
            }
        }
        return m_bySource->value(key);
    }

    int rowOfField(const QString& name) {
        if (!m_byField) {
            m_byField.emplace();
            for (int row = int(m_columns.size()); row >= 1; --row) {
                const orv::OutputColumn& column = m_columns[std::size_t(row - 1)];
                if (!orv::isBlank(column.aggregate)) continue;
                const std::optional<PageField> field = m_host.resolveField(column.source);
                if (field) m_byField->insert(field->qualifiedName(), row);
            }
        }
        return m_byField->value(name);
    }

    const IPagesHost& m_host;
    const orv::OutputColumns m_columns;
    // Made when they are first asked for; the first row of several counts.
    std::optional<Rows> m_byName;
    std::optional<Rows> m_bySource;
    std::optional<Rows> m_byField;

public:
    const Outputs outputs;
};

QString TorvQDOrderPanel::GetSQLStatment() const {
    if (!host()) raiseNoHost();
    const Outputs shown = outputs();
    orv::OutputRows rows(shown.names, shown.sources);
    QStringList items;
    for (const orv::SortList::Line& line : m_list.lines()) {
        const int row = rows.rowOf(line);
        // What is not put out is no order to tell.
        if (row < 1 || grid->columns()[std::size_t(row - 1)].muted) continue;
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
    if (orv::LoadLedger* ledger = owner->ledger()) {
        loadItems(ledger->tokensIn(Node.Start(), Node.End()), *ledger);
    } else {
        loadNode(Node);
    }
    refreshLists(-1);
    owner->statementChanged();
}

// Takes the whole clause, with its keyword.
void TorvQDOrderPanel::loadItems(const orv::TokenRun& run, orv::LoadLedger& ledger) {
    ledger.place(run);
    ledger.reportLongBy(run);
    const std::vector<orv::TokenRun> items =
        run.mid(std::min(keywordTokens, run.size())).splitAtCommas();
    OutputIndex index(*this);
    if (items.empty()) ledger.report(run, QStringLiteral("This clause has no item."));
    for (const orv::TokenRun& item : items) {
        if (item.isEmpty()) {
            ledger.report(run, QStringLiteral("An item is missing beside a comma."));
            continue;
        }
        const int last = item.size() - 1;
        const bool descends = isAnyOf(item, last, {u"DESC", u"DESCENDING"});
        const bool directed = descends || isAnyOf(item, last, {u"ASC", u"ASCENDING"});
        const orv::TokenRun expression = directed ? item.mid(0, last) : item;
        const bool isNumber = expression.size() == 1 && expression[0].kind == orv::SqlToken::Number;
        const int row = expression.isEmpty() ? 0 : index.rowOf(expression.sourceText(), isNumber);
        if (row >= 1) {
            appendLine(index.outputs, row, descends);
        } else if (row == ambiguousRow) {
            ledger.report(item, QStringLiteral("Several output columns have this name: the rows "
                                               "are not sorted by it."));
        } else {
            ledger.report(item, QStringLiteral("No output column stands for this: the rows are "
                                               "not sorted by it."));
        }
    }
}

// Outside the loading of a statement nobody keeps account: what matches nothing is passed over.
void TorvQDOrderPanel::loadNode(const TorvQDParser& node) {
    OutputIndex index(*this);
    for (const TorvQDParser::Node& child : node.Children()) {
        const bool isNumber = child->Kind() == otConst;
        if (!isNumber && child->Kind() != otField) continue;
        const bool descends =
            child->Count() > 0 && child->Child(0)->Text().contains(QStringLiteral("DESC"));
        const int row = index.rowOf(child->Text(), isNumber);
        if (row >= 1) appendLine(index.outputs, row, descends);
    }
}

void TorvQDOrderPanel::appendLine(const Outputs& shown, int row, bool descends) {
    m_list.append(shown.names[row - 1], descends ? orv::descendingText() : orv::ascendingText(),
                  row, shown.sources[row - 1]);
}
