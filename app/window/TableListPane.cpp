// SPDX-License-Identifier: MIT
#include "window/TableListPane.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr QSize iconSizePx(16, 16);

QIcon iconOf(TableKind kind) {
    switch (kind) {
    case TableKind::Table: return QIcon(QStringLiteral(":/orvquery/icons/table.svg"));
    case TableKind::View: return QIcon(QStringLiteral(":/orvquery/icons/view.svg"));
    case TableKind::Procedure: return QIcon(QStringLiteral(":/orvquery/icons/procedure.svg"));
    }
    return {};
}

QString toolTipOf(TableKind kind) {
    switch (kind) {
    case TableKind::Table: return QObject::tr("Table");
    case TableKind::View: return QObject::tr("View");
    case TableKind::Procedure: return QObject::tr("Stored procedure");
    }
    return {};
}

}  // namespace

TableListPane::TableListPane(QWidget* parent)
    : QWidget(parent),
      m_filter(new QLineEdit(this)),
      m_list(new QListView(this)),
      m_model(new QStandardItemModel(this)),
      m_filtered(new QSortFilterProxyModel(this)) {
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter tables by name"));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);

    m_filtered->setSourceModel(m_model);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_list->setObjectName(QStringLiteral("tables"));
    m_list->setModel(m_filtered);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(iconSizePx);
    m_list->setAccessibleName(tr("Tables and views"));
    m_list->installEventFilter(this);

    auto* title = new QLabel(tr("&Tables"), this);
    title->setBuddy(m_list);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);

    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_filtered->setFilterFixedString(text);
        selectFirst();
    });
    connect(m_list, &QListView::doubleClicked, this, &TableListPane::chooseCurrent);
}

void TableListPane::setTables(const std::vector<TableEntry>& entries) {
    m_filter->clear();
    m_model->clear();
    for (const TableEntry& entry : entries) {
        auto* item = new QStandardItem(iconOf(entry.kind), entry.name);
        item->setToolTip(toolTipOf(entry.kind));
        m_model->appendRow(item);
    }
    selectFirst();
}

void TableListPane::selectFirst() {
    m_list->setCurrentIndex(m_filtered->index(0, 0));
}

void TableListPane::chooseCurrent() {
    const QModelIndex index = m_list->currentIndex();
    if (index.isValid()) Q_EMIT tableChosen(index.data(Qt::DisplayRole).toString());
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
        chooseCurrent();
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
