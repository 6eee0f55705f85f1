// SPDX-License-Identifier: MIT
#include "window/SchemaBrowser.h"

#include "core/Error.h"
#include "database/BackgroundDatabase.h"
#include "toolkit/Services.h"
#include "window/SchemaModel.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr QSize iconSizePx(16, 16);
constexpr int progressHeightPx = 4;

// Draws the type of a column behind its name, less loud than that.
class SchemaDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const QString detail = detailOf(index);
        if (detail.isEmpty()) return;
        QStyleOptionViewItem item = option;
        initStyleOption(&item, index);
        const QStyle& style = *item.widget->style();
        QRect room = style.subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget);
        const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &item, item.widget) + 1;
        room.adjust(margin + item.fontMetrics.horizontalAdvance(item.text) + gap(item), 0, 0, 0);
        const bool isSelected = item.state.testFlag(QStyle::State_Selected);
        const bool isActive = item.state.testFlag(QStyle::State_Active);
        painter->save();
        painter->setFont(item.font);
        painter->setPen(
            item.palette.color(isActive ? QPalette::Active : QPalette::Inactive,
                               isSelected ? QPalette::HighlightedText : QPalette::PlaceholderText));
        painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                          item.fontMetrics.elidedText(detail, Qt::ElideRight, room.width()));
        painter->restore();
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        const QString detail = detailOf(index);
        if (!detail.isEmpty()) {
            size.rwidth() += gap(option) + option.fontMetrics.horizontalAdvance(detail);
        }
        return size;
    }

private:
    static QString detailOf(const QModelIndex& index) {
        return index.data(SchemaModel::detailRole).toString();
    }
    static int gap(const QStyleOptionViewItem& option) {
        return option.fontMetrics.horizontalAdvance(u' ') * 2;
    }
};

class SchemaView : public QTreeView {
public:
    using QTreeView::QTreeView;

protected:
    // The view's own way would drop where it is.
    void startDrag(Qt::DropActions) override {
        orv::guarded([this] {
            QMimeData* data = model()->mimeData(selectedIndexes());
            if (data == nullptr) return;
            auto* drag = new QDrag(this);
            drag->setMimeData(data);
            drag->setPixmap(currentIndex()
                                .data(Qt::DecorationRole)
                                .value<QIcon>()
                                .pixmap(iconSizePx, devicePixelRatioF()));
            orv::runDrag(*drag);
        });
    }
};

// A schema stands in the set of what is unfolded as a table without a name.
std::optional<TableName> keyOf(const SchemaModel& model, const QModelIndex& index) {
    switch (model.kindOf(index)) {
    case SchemaModel::Kind::Table: return model.tableAt(index)->tableName();
    case SchemaModel::Kind::Schema: return TableName({}, index.data().toString());
    default: return std::nullopt;
    }
}

}  // namespace

SchemaBrowser::SchemaBrowser(QWidget* parent)
    : QWidget(parent),
      m_filter(new QLineEdit(this)),
      m_list(new SchemaView(this)),
      m_model(new SchemaModel(this)),
      m_status(new QWidget(this)),
      m_progress(new QProgressBar(m_status)),
      m_statusText(new QLabel(m_status)),
      m_cancel(new QToolButton(m_status)),
      m_tryAgain(new QToolButton(m_status)),
      m_add(addAction(tr("&Add to diagram"), {}, &SchemaBrowser::addChosen)),
      m_copyName(addAction(tr("Copy &name"), {}, &SchemaBrowser::copyName)),
      m_copySelect(addAction(tr("Copy &SELECT *"), {}, &SchemaBrowser::copySelect)),
      m_refresh(addAction(tr("Re&fresh tables"), QKeySequence(QStringLiteral("Ctrl+R")),
                          &SchemaBrowser::refresh)) {
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setToolTip(tr("Shows the tables with this in their name (Ctrl+L)"));
    m_filter->setAccessibleName(tr("Filter tables by name"));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);
    buildList();
    buildStatus();

    auto* title = new QLabel(tr("&Tables"), this);
    title->setBuddy(m_list);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title);
    layout->addWidget(m_filter);
    layout->addWidget(m_status);
    layout->addWidget(m_list);

    auto* find = new QAction(this);
    find->setShortcut(QKeySequence(QStringLiteral("Ctrl+L")));
    QWidget::addAction(find);
    connect(find, &QAction::triggered, this, &SchemaBrowser::focusFilter);
    connect(m_filter, &QLineEdit::textChanged, this, &SchemaBrowser::filter);
    connect(m_model, &SchemaModel::columnsWanted, this, &SchemaBrowser::askColumns);
    showNothing();
}

void SchemaBrowser::buildList() {
    m_list->setObjectName(QStringLiteral("tables"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(new SchemaDelegate(m_list));
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderHidden(true);
    m_list->setExpandsOnDoubleClick(false);
    m_list->setDragEnabled(true);
    m_list->setDragDropMode(QAbstractItemView::DragOnly);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setIndentation(m_list->style()->pixelMetric(QStyle::PM_SmallIconSize));
    m_list->setIconSize(iconSizePx);
    m_list->setAccessibleName(tr("Tables, views, procedures and functions"));
    m_list->installEventFilter(this);
    connect(m_list, &QTreeView::doubleClicked, this, &SchemaBrowser::activate);
    connect(m_list, &QTreeView::customContextMenuRequested, this, &SchemaBrowser::showMenu);
    connect(m_list, &QTreeView::collapsed, this, &SchemaBrowser::fold);
    connect(m_list, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        const std::optional<TableName> key = keyOf(*m_model, index);
        if (key && !m_isUnfolding) m_unfolded.insert(*key);
    });
}

void SchemaBrowser::buildStatus() {
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(progressHeightPx);
    m_progress->setAccessibleName(tr("Reading the tables"));
    m_statusText->setObjectName(QStringLiteral("listingText"));
    m_statusText->setTextFormat(Qt::PlainText);
    m_statusText->setWordWrap(true);
    m_cancel->setObjectName(QStringLiteral("cancelListing"));
    m_cancel->setText(tr("Cancel"));
    m_tryAgain->setObjectName(QStringLiteral("listAgain"));
    m_tryAgain->setText(tr("Try again"));
    auto* line = new QHBoxLayout;
    line->addWidget(m_statusText, 1);
    line->addWidget(m_cancel);
    line->addWidget(m_tryAgain);
    auto* layout = new QVBoxLayout(m_status);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(line);
    layout->addWidget(m_progress);
    connect(m_cancel, &QToolButton::clicked, this, &SchemaBrowser::cancelReading);
    connect(m_tryAgain, &QToolButton::clicked, this, &SchemaBrowser::refresh);
}

QAction* SchemaBrowser::addAction(const QString& text, const QKeySequence& shortcut,
                                  void (SchemaBrowser::*slot)()) {
    auto* action = new QAction(text, this);
    action->setShortcut(shortcut);
    QWidget::addAction(action);
    connect(action, &QAction::triggered, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    return action;
}

// ---------------------------------------------------------------------------------- what is shown

void SchemaBrowser::setSource(const TableSource& source, const std::vector<TableEntry>& entries) {
    if (m_watched) m_watched->disconnect(this);
    if (m_database) m_database->disconnect(this);
    m_watched = nullptr;
    m_database = nullptr;
    m_source = &source;
    m_model->setForeignKeys({});
    fill(entries, {});
    showNothing();
}

void SchemaBrowser::setDatabase(BackgroundDatabase& database) {
    setSource(database, {});
    m_database = &database;
    listAgain();
    m_unfolded.clear();
    follow(database);
    connect(&database, &BackgroundDatabase::listed, this, [this] {
        const QString text = m_filter->text();
        const QSet<TableName> unfolded = m_unfolded;
        const std::optional<TableName> current = keyOf(*m_model, m_list->currentIndex());
        listAgain();
        m_unfolded = unfolded;
        const QSignalBlocker blocker(m_filter);
        m_filter->setText(text);
        filter(text);
        const QModelIndex again = current ? m_model->indexOf(*current) : QModelIndex();
        if (again.isValid()) m_list->setCurrentIndex(again);
    });
    connect(&database, &BackgroundDatabase::described, this,
            [this](const TableName& name, const TableDescription& table) {
                m_model->setColumns(name, table.entries);
            });
    connect(&database, &BackgroundDatabase::notDescribed, m_model, &SchemaModel::setProblem);
    connect(&database, &BackgroundDatabase::failed, this,
            [this](const QString& sentence) { showProblem(sentence); });
    connect(&database, &BackgroundDatabase::cancelled, this,
            [this] { showProblem(tr("Reading the tables was stopped.")); });
}

void SchemaBrowser::watchOpening(BackgroundDatabase& database) {
    follow(database);
    connect(&database, &BackgroundDatabase::failed, this, &SchemaBrowser::showNothing);
    connect(&database, &BackgroundDatabase::cancelled, this, &SchemaBrowser::showNothing);
    showReading(tr("Opening the database ..."));
}

void SchemaBrowser::follow(BackgroundDatabase& database) {
    database.disconnect(this);
    m_watched = &database;
    connect(&database, &BackgroundDatabase::opened, this, &SchemaBrowser::showTables);
    connect(&database, &BackgroundDatabase::progressed, this, [this](int tables) {
        showReading(tr("%1 tables so far ...").arg(QLocale().toString(tables)));
    });
    connect(&database, &BackgroundDatabase::listed, this, &SchemaBrowser::showNothing);
}

// Keys that cannot be read are nothing to those who want tables.
void SchemaBrowser::listAgain() {
    try {
        m_model->setForeignKeys(m_database->foreignKeys());
    } catch (const orv::Error&) {
        m_model->setForeignKeys({});
    }
    fill(m_database->tables(), m_database->defaultSchemas());
}

void SchemaBrowser::fill(const std::vector<TableEntry>& entries,
                         const QStringList& defaultSchemas) {
    m_unfolded.clear();
    m_model->setTables(entries, defaultSchemas);
    m_filter->clear();
    filter(QString());
}

void SchemaBrowser::showReading(const QString& text) {
    m_statusText->setText(text);
    m_status->show();
    m_progress->show();
    m_cancel->show();
    m_tryAgain->hide();
}

void SchemaBrowser::showTables() {
    showReading(tr("Reading the tables ..."));
}

void SchemaBrowser::showProblem(const QString& sentence) {
    m_statusText->setText(sentence);
    m_status->show();
    m_progress->hide();
    m_cancel->hide();
    m_tryAgain->show();
}

void SchemaBrowser::showNothing() {
    m_status->hide();
}

void SchemaBrowser::cancelReading() {
    if (m_watched) m_watched->cancel();
}

void SchemaBrowser::refresh() {
    if (!m_database) return;
    m_watched = m_database;
    showTables();
    m_database->refresh();
}

void SchemaBrowser::askColumns(const TableName& name) {
    if (m_database) return m_database->fetch(name);
    if (m_source == nullptr) return;
    try {
        const std::optional<TableDescription> table = m_source->describe(name);
        if (table) m_model->setColumns(name, table->entries);
    } catch (const orv::Error& error) {
        m_model->setProblem(name, error.Message());
    }
}

// --------------------------------------------------------------------------- filter and unfolding

void SchemaBrowser::focusFilter() {
    m_filter->setFocus(Qt::ShortcutFocusReason);
    m_filter->selectAll();
}

void SchemaBrowser::filter(const QString& text) {
    m_model->setFilter(text);
    unfold();
    selectFirst();
}

// What is looked for shows wherever it is.
void SchemaBrowser::unfold() {
    const QScopedValueRollback<bool> unfolding(m_isUnfolding, true);
    const bool isFiltered = !m_filter->text().isEmpty();
    const auto unfoldBelow = [&](const QModelIndex& parent, const auto& again) -> void {
        for (int row = 0; row < m_model->rowCount(parent); ++row) {
            const QModelIndex index = m_model->index(row, 0, parent);
            const SchemaModel::Kind kind = m_model->kindOf(index);
            if (kind == SchemaModel::Kind::Table) {
                if (m_model->isThereForColumn(index)) m_list->expand(index);
                continue;
            }
            const std::optional<TableName> key = keyOf(*m_model, index);
            if (isFiltered || m_model->beginsUnfolded(index) ||
                (key && m_unfolded.contains(*key))) {
                m_list->expand(index);
            }
            again(index, again);
        }
    };
    unfoldBelow(QModelIndex(), unfoldBelow);
    for (const TableName& name : std::as_const(m_unfolded)) {
        const QModelIndex index = m_model->indexOf(name);
        if (index.isValid()) m_list->expand(index);
    }
}

void SchemaBrowser::fold(const QModelIndex& index) {
    if (const std::optional<TableName> key = keyOf(*m_model, index)) m_unfolded.remove(*key);
    m_model->forgetProblem(index);
}

// Whoever types a whole name means that table, and not one before it with more to its name.
void SchemaBrowser::selectFirst() {
    const QModelIndex hit = m_model->exactHit();
    if (hit.isValid()) return m_list->setCurrentIndex(hit);
    QModelIndex first = m_model->index(0, 0);
    while (first.isValid() && m_model->tableAt(first) == nullptr && m_list->isExpanded(first)) {
        first = m_model->index(0, 0, first);
    }
    m_list->setCurrentIndex(first);
}

void SchemaBrowser::foldCurrent() {
    const QModelIndex index = m_list->currentIndex();
    m_list->setExpanded(index, !m_list->isExpanded(index));
}

// ------------------------------------------------------------------------------------- the tables

void SchemaBrowser::activate(const QModelIndex& index) {
    if (const TableEntry* entry = m_model->tableAt(index)) {
        Q_EMIT tablesChosen({entry->tableName()});
    } else if (index.isValid()) {
        foldCurrent();
    }
}

// From top to bottom, whatever the order in which they were selected.
QList<TableName> SchemaBrowser::chosen() const {
    QModelIndexList rows = m_list->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [this](const QModelIndex& left, const QModelIndex& right) {
        return m_list->visualRect(left).top() < m_list->visualRect(right).top();
    });
    QList<TableName> names;
    for (const QModelIndex& row : rows) {
        const TableEntry* entry = m_model->tableAt(row);
        if (entry != nullptr && !names.contains(entry->tableName())) names += entry->tableName();
    }
    return names;
}

void SchemaBrowser::addChosen() {
    const QList<TableName> names = chosen();
    if (!names.isEmpty()) Q_EMIT tablesChosen(names);
}

void SchemaBrowser::copyName() {
    copy(QStringLiteral("%1"));
}

void SchemaBrowser::copySelect() {
    copy(QStringLiteral("SELECT * FROM %1"));
}

void SchemaBrowser::copy(const QString& pattern) {
    QStringList lines;
    for (const TableName& name : chosen()) lines += pattern.arg(m_source->inStatement(name));
    if (!lines.isEmpty()) QApplication::clipboard()->setText(lines.join(u'\n'));
}

void SchemaBrowser::showMenu(const QPoint& place) {
    const bool isTable = !chosen().isEmpty();
    for (QAction* action : {m_add, m_copyName, m_copySelect}) action->setEnabled(isTable);
    m_refresh->setEnabled(m_database);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("tableMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({m_add, m_copyName, m_copySelect});
    menu->addSeparator();
    menu->addAction(m_refresh);
    connect(menu, &QMenu::aboutToHide, this, [this] {
        for (QAction* action : {m_add, m_copyName, m_copySelect, m_refresh}) {
            action->setEnabled(true);
        }
    });
    menu->popup(m_list->viewport()->mapToGlobal(place));
}

// ----------------------------------------------------------------------------------------- keys

// Whether a single click activates is the platform's choice, and Enter does not on all of them;
// here the keys decide for both widgets.
bool SchemaBrowser::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        handleKey(watched, static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool SchemaBrowser::handleKey(QObject* watched, int key) {
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (chosen().isEmpty()) {
            foldCurrent();
        } else {
            addChosen();
        }
        return true;
    }
    if (watched == m_filter && key == Qt::Key_Down) {
        m_list->setFocus(Qt::ShortcutFocusReason);
        return true;
    }
    if (key == Qt::Key_Escape && !m_filter->text().isEmpty()) {
        m_filter->clear();
        return true;
    }
    return false;
}

}  // namespace orvquery
