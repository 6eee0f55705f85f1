// SPDX-License-Identifier: MIT
#include "support/PageRules.h"

#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDTailLine.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTreeWidget>

namespace orvtest {

namespace {

constexpr int fixedElements = 5;
constexpr int leastChoiceWidthPx = 90;
constexpr int gridColumns = 3;
constexpr int nameColumn = 0;
constexpr int sourceColumn = 2;

// --- rows ---

QString brokenRow(const TorvQDWhereRow& row) {
    const QString name = "row " + row.GetFullIndex();
    const TorvQDWhereRows& below = *row.SubRows;
    if (below.ownerRow() != &row) return name + ": its rows belong to another row";
    if (!row.isGroup() && below.GetCount() > 0) return name + ": no group, but rows below it";
    const std::size_t elements = fixedElements + std::size_t(row.Arguments.size());
    if (row.Controls.size() != elements) return name + ": elements do not match its arguments";
    for (std::size_t kind = 0; kind < elements; ++kind) {
        const TorvQDControl& element = *row.Controls[kind];
        if (element.Row != &row || element.Kind != int(kind)) return name + ": a stray element";
    }
    for (int index = 0; index < below.GetCount(); ++index) {
        const TorvQDWhereRow* each = below.Row(index);
        if (each->GetIndex() != index) return name + ": a wrong index below it";
        if (each->parentRow() != &row) return name + ": a row below it has another parent";
        QString broken = brokenRow(*each);
        if (!broken.isEmpty()) return broken;
    }
    return {};
}

bool isLive(const TorvQDWherePanel& panel, const TorvQDControl* element) {
    const TorvQDWhereRow* top = element->Row;
    const auto& own = top->Controls;
    if (element->Kind >= int(own.size()) || own[std::size_t(element->Kind)].get() != element) {
        return false;
    }
    while (top->parentRow()) top = top->parentRow();
    return top == panel.rootRow();
}

// Where the operator that was put in has no operand, the frame goes to the row's last element,
// which is not shown on a page without functions.
bool mayBeInvisible(const TorvQDWherePanel& panel, const TorvQDControl& element) {
    return !panel.Functions && element.Kind == ekArgFunc && element.Row->Arguments.isEmpty();
}

QString brokenElements(TorvQDWherePanel& panel) {
    const TorvQDControl* active = panel.ActiveElement();
    if (!active) return "no element is active";
    if (!isLive(panel, active)) return "the active element is none of the rows'";
    const auto& shown = panel.shownRows();
    if (std::find(shown.begin(), shown.end(), active->Row) == shown.end()) {
        return "the active element is of a hidden row";
    }
    if (active->Width <= 0 && !mayBeInvisible(panel, *active)) {
        return "the active element is not shown: " + active->Row->GetFullIndex() +
               QString::number(active->Kind);
    }
    const TorvQDControl* current = panel.CurrentElement();
    if (current && !isLive(panel, current)) return "the current element is none of the rows'";
    return {};
}

// --- the editor in place ---

TMemoEx* memoOf(const TorvQDWherePanel& panel) {
    return panel.viewport()->findChild<TMemoEx*>();
}

const TorvQDControl* editedElement(TorvQDWherePanel& panel) {
    const TMemoEx* memo = memoOf(panel);
    if (!panel.isEditing()) return nullptr;
    for (TorvQDWhereRow* row : panel.shownRows()) {
        for (const auto& element : row->Controls) {
            if (!row->textOf(element->Kind)) continue;
            if (panel.elementRect(*element).topLeft() == memo->pos()) return element.get();
        }
    }
    return nullptr;
}

QString brokenEditor(TorvQDWherePanel& panel) {
    const TMemoEx* memo = memoOf(panel);
    const auto* list = panel.viewport()->findChild<orv::FieldList*>();
    if (memo->isHidden() == panel.isEditing()) return "the editor is open and hidden, or neither";
    if (list->isHidden() == list->isOpen()) return "the field list is open and hidden, or neither";
    if (list->isOpen() && !panel.isEditing()) return "a field list without an editor";
    if (!panel.isEditing()) return {};
    if (!panel.isVisible()) return "an editor is open on a hidden page";
    const TorvQDControl* element = editedElement(panel);
    if (!element) return "the editor lies over no element";
    const QSize view = panel.viewport()->size();
    const bool covers = memo->width() >= std::min(element->Width, view.width()) &&
                        memo->height() >= std::min(panel.rowHeight(), view.height());
    return covers ? QString() : "the editor does not cover its element";
}

// --- places ---

struct Place {
    TorvQDControl* element;
    int left;
    int width;
    QString text;
};

// All is laid out once more from scratch, and put back: an open editor has moved what follows it.
QString brokenPlaces(TorvQDWherePanel& panel) {
    const TorvQDControl* edited = editedElement(panel);
    const std::vector<TorvQDWhereRow*> shown = panel.shownRows();
    std::vector<Place> places;
    for (TorvQDWhereRow* row : shown) {
        for (const auto& element : row->Controls) {
            places.push_back({element.get(), element->Left, element->Width, element->GetText()});
        }
    }
    const QSize extent = panel.conditionLayout().extent();
    const TorvQDWhereRow& root = *panel.rootRow();
    orv::ConditionLayout fresh(root.rows()->context(), *root.rows());
    fresh.textsChanged();
    fresh.ensure();
    if (fresh.rows() != shown) return "other rows are shown than there should be";
    if (fresh.extent() != extent) return "the rows have another extent";
    QString broken;
    for (const Place& place : places) {
        TorvQDControl& element = *place.element;
        const bool isMoved = edited && element.Row == edited->Row && element.Kind > edited->Kind;
        const int aside = isMoved ? memoOf(panel)->width() - edited->Width : 0;
        const bool fits = place.left == element.Left + aside && place.width == element.Width &&
                          place.text == element.GetText();
        if (!fits && broken.isEmpty()) {
            broken = QStringLiteral("element %1%2 is \"%3\" at %4+%5, not \"%6\" at %7+%8")
                         .arg(element.Row->GetFullIndex())
                         .arg(element.Kind)
                         .arg(place.text)
                         .arg(place.left)
                         .arg(place.width)
                         .arg(element.GetText())
                         .arg(element.Left + aside)
                         .arg(element.Width);
        }
    }
    for (const Place& place : places) place.element->Left = place.left;
    return broken;
}

QString brokenRanges(TorvQDWherePanel& panel) {
    QSize extent = panel.conditionLayout().extent();
    if (const TorvQDControl* edited = editedElement(panel)) {
        const QSize memo = memoOf(panel)->size();
        extent =
            extent.expandedTo({std::max(edited->Left + memo.width(), edited->Row->rightBound()),
                               edited->Row->GetTopBound() + memo.height()});
    }
    const QSize rest = extent - panel.viewport()->size();
    const int across = panel.horizontalScrollBar()->maximum();
    const int down = panel.verticalScrollBar()->maximum();
    if (across == std::max(0, rest.width() + 2) && down == std::max(0, rest.height())) return {};
    return QStringLiteral("scroll ranges %1, %2 do not match what is hidden: %3, %4")
        .arg(across)
        .arg(down)
        .arg(rest.width())
        .arg(rest.height());
}

QString brokenPanel(TorvQDWherePanel& panel) {
    if (!panel.rootRow() || !panel.rootRow()->isGroup()) return "the root row is no group";
    QString broken = brokenRow(*panel.rootRow());
    if (!broken.isEmpty()) return broken;
    for (const auto rule : {brokenElements, brokenEditor, brokenPlaces}) {
        QString found = rule(panel);
        if (!found.isEmpty()) return found;
    }
    return panel.isVisible() ? brokenRanges(panel) : QString();
}

// --- the grid ---

QString brokenGridEditor(const TorvQDSelectGrid& grid) {
    const auto* edit = grid.viewport()->findChild<orv::ExitEdit*>();
    const auto* choice = grid.viewport()->findChild<orv::ExitCombo*>();
    const int open = int(!edit->isHidden()) + int(!choice->isHidden());
    if (open != int(grid.isEditing())) return "the grid's editors do not know whether one is open";
    if (open == 0) return {};
    if (!grid.isVisible()) return "an editor of the grid is open on a hidden page";
    const QRect place = edit->isHidden() ? choice->geometry() : edit->geometry();
    for (int row = 0; row < grid.RowCount() - 1; ++row) {
        for (int column = 0; column < gridColumns; ++column) {
            if ((column == nameColumn) != choice->isHidden()) continue;
            QRect cell = grid.visualRect(grid.model()->index(row, column));
            if (column != nameColumn && cell.width() < leastChoiceWidthPx) {
                cell.setWidth(leastChoiceWidthPx);
            }
            const bool isLast = row == grid.RowCount() - 2;
            if (cell == place) {
                return isLast && column != sourceColumn ? "the last row is edited" : QString();
            }
        }
    }
    return "the grid's editor lies on no cell of its own";
}

// --- sorting ---

QString brokenSorting(TorvQueryBuilder& builder) {
    const TorvQDOrderPanel& page = *builder.OrderPanel;
    QStringList names;
    for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
        names << column.name;
    }
    QStringList sorted;
    for (const orv::SortList::Line& line : page.sortList().lines()) {
        if (!names.contains(line.name)) return "sorted by what is not put out: " + line.name;
        sorted << line.name + u' ' + line.direction;
    }
    for (const QString& name : page.sortList().unsorted()) {
        if (!names.contains(name)) return "offered for sorting, but not put out: " + name;
    }
    const auto* list = page.findChild<QListWidget*>();
    QStringList shown;
    for (int row = 0; row < list->count(); ++row) shown << list->item(row)->text();
    if (shown != page.sortList().unsorted()) return "the list shows " + shown.join(u' ');
    const auto* tree = page.findChild<QTreeWidget*>();
    shown.clear();
    for (int row = 0; row < tree->topLevelItemCount(); ++row) {
        shown << tree->topLevelItem(row)->text(0) + u' ' + tree->topLevelItem(row)->text(1);
    }
    return shown == sorted ? QString() : "the sorted list shows " + shown.join(u' ');
}

QString brokenStatement(TorvQueryBuilder& builder) {
    static const QRegularExpression expected(
        "^There is no agregate function on page \"Selection\" in \\d+ row$");
    const QString error = errorOf([&] { (void)builder.GetSQLStatment(); });
    const bool isExpected = error == "(no error)" || expected.match(error).hasMatch();
    return isExpected ? QString() : "the statement fails: " + error;
}

}  // namespace

QString brokenPageRule(TorvQueryBuilder& builder) {
    const QString where = brokenPanel(*builder.WherePanel);
    if (!where.isEmpty()) return "criterions: " + where;
    const QString having = brokenPanel(*builder.HavingPanel);
    if (!having.isEmpty()) return "grouping criterions: " + having;
    QString grid = brokenGridEditor(*builder.SelectPanel->grid());
    if (!grid.isEmpty()) return grid;
    const QString sorting = brokenSorting(builder);
    return sorting.isEmpty() ? brokenStatement(builder) : sorting;
}

int openEdits(const TorvQueryBuilder& builder) {
    int tails = 0;
    const auto lines = builder.PageCtrl->findChildren<QLineEdit*>();
    for (const QLineEdit* line : lines) {
        const bool isTail = qobject_cast<orv::TailLine*>(line->parentWidget());
        if (isTail && line->isModified() && line->text() != builder.TailText()) ++tails;
    }
    const auto* alias = builder.WorkArea->viewport()->findChild<orv::ExitEdit*>();
    return tails + int(alias && !alias->isHidden()) + int(builder.WherePanel->isEditing()) +
           int(builder.HavingPanel->isEditing()) + int(builder.SelectPanel->grid()->isEditing());
}

}  // namespace orvtest
