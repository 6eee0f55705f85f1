// SPDX-License-Identifier: MIT
#include "window/TableListPane.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QStyle>
#include <QTreeView>
#include <QVBoxLayout>

#include <memory>

namespace orvquery {

namespace {

constexpr QSize iconSizePx(16, 16);

QIcon iconOf(TableKind kind) {
    switch (kind) {
    case TableKind::Table: return QIcon(QStringLiteral(":/orvquery/icons/table.svg"));
    case TableKind::View: return QIcon(QStringLiteral(":/orvquery/icons/view.svg"));
    case TableKind::Procedure:
    case TableKind::Function: return QIcon(QStringLiteral(":/orvquery/icons/procedure.svg"));
    }
    return {};
}

// One with hundreds of parameters is still to fit on the screen.
constexpr qsizetype mostShownParameters = 12;

QString callText(const TableEntry& entry) {
    QStringList shown = entry.parameters.mid(0, mostShownParameters);
    if (entry.parameters.size() > mostShownParameters) shown += QStringLiteral("...");
    return entry.name + u'(' + shown.join(QStringLiteral(", ")) + u')';
}

QString toolTipOf(const TableEntry& entry) {
    switch (entry.kind) {
    case TableKind::Table: return QObject::tr("Table");
    case TableKind::View: return QObject::tr("View");
    case TableKind::Procedure: return QObject::tr("Stored procedure %1").arg(callText(entry));
    case TableKind::Function: return QObject::tr("Function %1").arg(callText(entry));
    }
    return {};
}

// What a person reads of an entry; nothing for the heading of a group, which nobody looks for.
constexpr int nameRole = Qt::UserRole;
constexpr int kindRole = Qt::UserRole + 1;  // of a heading

QStandardItem* makeItem(const TableEntry& entry) {
    auto* item = new QStandardItem(iconOf(entry.kind), entry.name);
    item->setData(entry.name, nameRole);
    item->setToolTip(toolTipOf(entry));
    return item;
}

}  // namespace

TableListPane::TableListPane(QWidget* parent)
    : QWidget(parent),
      m_filter(new QLineEdit(this)),
      m_list(new QTreeView(this)),
      m_model(new QStandardItemModel(this)),
      m_filtered(new QSortFilterProxyModel(this)) {
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter tables by name"));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);

    m_filtered->setSourceModel(m_model);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_filtered->setFilterRole(nameRole);
    m_filtered->setRecursiveFilteringEnabled(true);
    m_list->setObjectName(QStringLiteral("tables"));
    m_list->setModel(m_filtered);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderHidden(true);
    m_list->setIndentation(m_list->style()->pixelMetric(QStyle::PM_SmallIconSize));
    m_list->setIconSize(iconSizePx);
    m_list->setAccessibleName(tr("Tables, views and procedures"));
    m_list->installEventFilter(this);

    auto* title = new QLabel(tr("&Tables"), this);
    title->setBuddy(m_list);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);

    connect(m_filter, &QLineEdit::textChanged, this, &TableListPane::filter);
    connect(m_list, &QTreeView::doubleClicked, this, &TableListPane::choose);
}

void TableListPane::setTables(const std::vector<TableEntry>& entries) {
    m_filter->clear();
    m_model->clear();
    for (const TableEntry& entry : entries) {
        if (!isCalled(entry.kind)) m_model->appendRow(makeItem(entry));
    }
    addGroup(entries, TableKind::Procedure, tr("Procedures"));
    addGroup(entries, TableKind::Function, tr("Functions"));
    filter(QString());
}

void TableListPane::addGroup(const std::vector<TableEntry>& entries, TableKind kind,
                             const QString& title) {
    auto group = std::make_unique<QStandardItem>(iconOf(kind), title);
    for (const TableEntry& entry : entries) {
        if (entry.kind == kind) group->appendRow(makeItem(entry));
    }
    if (group->rowCount() == 0) return;
    group->setData(int(kind), kindRole);
    group->setText(tr("%1 (%2)").arg(title).arg(group->rowCount()));
    m_model->appendRow(group.release());
}

// Procedures are somebody's own work like the tables; what every database has stays folded until it
// is looked for.
void TableListPane::filter(const QString& text) {
    m_filtered->setFilterFixedString(text);
    for (int row = 0; row < m_filtered->rowCount(); ++row) {
        const QModelIndex index = m_filtered->index(row, 0);
        const bool isFolded = index.data(kindRole) == QVariant(int(TableKind::Function));
        m_list->setExpanded(index, !text.isEmpty() || !isFolded);
    }
    selectFirst();
}

void TableListPane::selectFirst() {
    QModelIndex first = m_filtered->index(0, 0);
    if (m_filtered->hasChildren(first) && m_list->isExpanded(first))
        first = first.model()->index(0, 0, first);
    m_list->setCurrentIndex(first);
}

void TableListPane::choose(const QModelIndex& index) {
    const QString name = index.data(nameRole).toString();
    if (!name.isEmpty()) Q_EMIT tableChosen(name);
}

void TableListPane::foldCurrent() {
    const QModelIndex index = m_list->currentIndex();
    if (m_filtered->hasChildren(index)) m_list->setExpanded(index, !m_list->isExpanded(index));
}

// Whether a single click activates is the platform's choice, and Enter does not on all of them;
// here the keys decide for both widgets.
bool TableListPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        handleKey(watched, static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool TableListPane::handleKey(QObject* watched, int key) {
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        choose(m_list->currentIndex());
        foldCurrent();
        return true;
    }
    if (watched == m_filter && key == Qt::Key_Down) {
        m_list->setFocus(Qt::ShortcutFocusReason);
        return true;
    }
    if (watched == m_filter && key == Qt::Key_Escape && !m_filter->text().isEmpty()) {
        m_filter->clear();
        return true;
    }
    return false;
}

}  // namespace orvquery
