// SPDX-License-Identifier: MIT
// The query builder as a widget: its parts, its properties, its questions to the host.
#include "querybuilder/ORVQDWindow.h"

#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDOpersEditor.h"
#include "querybuilder/ORVQDPageTabs.h"
#include "querybuilder/ORVQDTailLine.h"
#include "querybuilder/ORVQDValidate.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Glyph.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QPointer>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QShowEvent>
#include <QThread>
#include <QVBoxLayout>

namespace {

constexpr QSize initialSize(300, 200);
constexpr int splitterHeightPx = 5;
constexpr int leastTabsHeightPx = 100;

// Counts a call of a host's handler for as long as it runs; the builder may die in it.
class HostCall {
public:
    HostCall(QObject* builder, int& calls) : m_builder(builder), m_calls(calls) { ++m_calls; }
    ~HostCall() {
        if (m_builder) --m_calls;
    }
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

private:
    QPointer<QObject> m_builder;
    int& m_calls;
};

}  // namespace

TorvTabSheet::TorvTabSheet(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

TorvQueryBuilder::TorvQueryBuilder(QWidget* parent, bool designMode)
    : TorvBuilder(parent),
      m_tabsHeight(leastTabsHeightPx),
      m_dragIdentity(QRandomGenerator::global()->generate64()) {
    orv::installAccessibility();
    orv::installCriteriaAccessibility();
    resize(initialSize);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setLineWidth(1);
    WorkAreaOptions = std::make_unique<TorvQDWorkAreaOptions>();
    ConditionOptions = std::make_unique<TorvQDConditionOptions>();
    ImageList = {orv::glyphIcon(QStringLiteral("TABLEBMP")),
                 orv::glyphIcon(QStringLiteral("FIELDBMP"))};
    fillCatalogues();

    Splitter = new QSplitter(Qt::Vertical, this);
    Splitter->setHandleWidth(splitterHeightPx);
    Splitter->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Splitter);
    connect(Splitter, &QSplitter::splitterMoved, this, [this] {
        m_tabsHeight = Splitter->sizes().last();
        m_isTabsHeightDue = false;
    });
    // The diagram comes first for the Tab key, as it does on the screen.
    if (!designMode) createWorkArea();
    createPages(designMode);
    Splitter->setStretchFactor(Splitter->count() - 1, 0);
}

// The children go first, while the lists that they refer to are still there.
TorvQueryBuilder::~TorvQueryBuilder() {
    beginChange();  // nobody is told of what goes
    discardEdits();
    delete WorkArea;
    delete PageCtrl;
}

void TorvQueryBuilder::fillCatalogues() {
    orv::fillGroupOperators(GroupOpers, this);
    orv::fillAggregates(AgrFuncs);
    Operators = std::make_unique<TOperatorList>();
    orv::fillOperators(*Operators);
    watchOperators();
}

TorvTabSheet* TorvQueryBuilder::addSheet(const QString& caption) {
    auto* sheet = new TorvTabSheet;
    PageCtrl->addTab(sheet, caption);
    return sheet;
}

void TorvQueryBuilder::createPages(bool designMode) {
    auto* pages = new orv::PageTabs(Splitter);
    PageCtrl = pages;
    PageCtrl->setObjectName(QStringLiteral("PageCtrl"));
    PageCtrl->setMinimumHeight(1);
    TorvTabSheet* criterions = addSheet(QStringLiteral("Criterions"));
    TorvTabSheet* selection = addSheet(QStringLiteral("Selection"));
    TorvTabSheet* grouping = addSheet(QStringLiteral("Grouping criterions"));
    TorvTabSheet* sorting = addSheet(QStringLiteral("Sorting"));
    pages->addNumberKeys(this);
    if (designMode) return;
    pages->aboutToChange = [this] { HideFieldList(); };
    WherePanel = addCriteria(criterions, nullptr);
    SelectPanel = new TorvQDSelectPanel(selection);
    selection->layout()->addWidget(SelectPanel);
    TorvQDSelectGrid* grid = SelectPanel->grid();
    grid->AgrFuncs = &AgrFuncs;
    grid->AllFields = &m_allFields;
    grid->OnFieldChosen = [this](const QString& name) { _SelectField(name); };
    grid->OnFieldRemoved = [this](const QString& name) { _UnselectField(name); };
    HavingPanel = addCriteria(grouping, &AgrFuncs);
    OrderPanel = new TorvQDOrderPanel(sorting);
    OrderPanel->grid = grid;
    sorting->layout()->addWidget(OrderPanel);
    ConditionOptions->changed = [this] {
        WherePanel->refreshView();
        HavingPanel->refreshView();
    };
    m_tailLine = new orv::TailLine(sorting);
    m_tailLine->committed = [this](const QString& text) { setTailText(text); };
    connect(PageCtrl, &QTabWidget::currentChanged, this, [this] {
        if (OrderPanel) OrderPanel->RefreshFields();
    });
}

TorvQDWherePanel* TorvQueryBuilder::addCriteria(TorvTabSheet* sheet, const QStringList* functions) {
    auto* panel = new TorvQDWherePanel(sheet);
    sheet->layout()->addWidget(panel);
    panel->GroupOpers = &GroupOpers;
    panel->Functions = functions;
    panel->Operators = Operators.get();
    panel->Activate();
    return panel;
}

void TorvQueryBuilder::createWorkArea() {
    WorkArea = new TorvQDWorkArea(this);
    Splitter->addWidget(WorkArea);
    Splitter->setStretchFactor(0, 1);
    WorkArea->OnCheckItem = [this](QObject* sender, TorvQDListItem* item) {
        _AddRemoveField(sender, item);
    };
    WorkArea->OnAddTable = [this](QObject* sender, QObject* table) { _AddTable(sender, table); };
    WorkArea->OnRemoveTable = [this](QObject* sender, QObject* table) {
        _RemoveTable(sender, table);
    };
    WorkArea->OnChangeAlias = [this](QObject* table, const QString& oldAlias) {
        _ChangeAlias(table, oldAlias);
    };
    WorkArea->contentsCleared = [this] { m_allFields.clear(); };
    ListOfTables = std::make_unique<TorvQDListOfTables>(WorkArea);
}

QSize TorvQueryBuilder::sizeHint() const {
    return initialSize;
}

// --- properties ---

int TorvQueryBuilder::TabsHeight() const {
    if (!WorkArea) return m_tabsHeight;
    const QList<int> sizes = Splitter->sizes();
    const bool laidOut = isVisible() && !sizes.isEmpty() && sizes.last() > 0;
    return laidOut ? sizes.last() : m_tabsHeight;
}

void TorvQueryBuilder::setTabsHeight(int height) {
    if (height <= leastTabsHeightPx) return;
    const bool isShownSo = height == TabsHeight();
    m_tabsHeight = height;
    if (!isShownSo) applyTabsHeight();
}

void TorvQueryBuilder::resetTabsHeight() {
    m_tabsHeight = leastTabsHeightPx;
    applyTabsHeight();
}

// A form designer may have put something in the diagram's place. A height that there is no room for
// yet comes about as soon as there is.
void TorvQueryBuilder::applyTabsHeight() {
    if (Splitter->count() < 2) return;
    const int rest = contentsRect().height() - splitterHeightPx - m_tabsHeight;
    if (rest > 0) Splitter->setSizes({rest, m_tabsHeight});
    const QWidget& diagram = *Splitter->widget(0);
    m_isTabsHeightDue =
        rest < std::max(diagram.minimumHeight(), diagram.minimumSizeHint().height());
}

void TorvQueryBuilder::resizeEvent(QResizeEvent* event) {
    TorvBuilder::resizeEvent(event);
    if (!isVisible() || m_isTabsHeightDue) applyTabsHeight();
}

void TorvQueryBuilder::showEvent(QShowEvent* event) {
    TorvBuilder::showEvent(event);
    if (!event->spontaneous()) applyTabsHeight();
}

void TorvQueryBuilder::setAlign(TAlign align) {
    m_align = align;
    watchParent();
}

void TorvQueryBuilder::watchParent() {
    if (m_watchedParent) m_watchedParent->removeEventFilter(this);
    m_watchedParent = m_align == alNone ? nullptr : parentWidget();
    if (m_watchedParent) m_watchedParent->installEventFilter(this);
    applyAlign();
}

bool TorvQueryBuilder::event(QEvent* event) {
    if (event->type() == QEvent::ParentChange) watchParent();
    return TorvBuilder::event(event);
}

bool TorvQueryBuilder::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) applyAlign();
    return TorvBuilder::eventFilter(watched, event);
}

// A parent with a layout places its children itself.
void TorvQueryBuilder::applyAlign() {
    if (!parentWidget() || parentWidget()->layout()) return;
    const QRect area = parentWidget()->contentsRect();
    switch (m_align) {
    case alNone: break;
    case alTop: setGeometry(area.x(), area.y(), area.width(), height()); break;
    case alBottom:
        setGeometry(area.x(), area.y() + area.height() - height(), area.width(), height());
        break;
    case alLeft: setGeometry(area.x(), area.y(), width(), area.height()); break;
    case alRight:
        setGeometry(area.x() + area.width() - width(), area.y(), width(), area.height());
        break;
    case alClient: setGeometry(area); break;
    }
}

// Rows refer to operators: they go over to those of the new list, whoever changes it. What is being
// typed is taken over before, and is one change with it: a host that is told in between could end
// everything while the rows have no operators.
void TorvQueryBuilder::watchOperators() {
    Operators->aboutToChange = [this] {
        beginChange();
        // What the host raises while it is told of what was typed keeps the list as it is.
        const QPointer<TorvQueryBuilder> self(this);
        auto giveUp = qScopeGuard([&] {
            if (self) orv::guarded([this] { Operators->changed(); });
        });
        for (TorvQDWherePanel* panel : {WherePanel, HavingPanel}) {
            if (panel) panel->PrepareToReloadOperators();
            if (!self) return;
        }
        giveUp.dismiss();
    };
    Operators->changed = [this] {
        for (TorvQDWherePanel* panel : {WherePanel, HavingPanel}) {
            if (panel) panel->ReloadOperators();
        }
        statementChanged();
        endChange();
    };
}

// The dialog is a child of the control: it dies with it, and lies above its window. Whatever else
// happens while it is open, a statement that is loaded for one, finds the old catalogue.
void TorvQueryBuilder::ModifyOperators(TEditRestrictions Restrictions) {
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_hostCalls > 0 && !m_loading) {
        throw orv::Error(
            QStringLiteral("The operators cannot be edited while a handler is being asked"));
    }
    refuseWhileBusy();
    if (auto* open = findChild<TorvQDOperatorsPropertyDlg*>({}, Qt::FindDirectChildrenOnly)) {
        open->raise();
        open->activateWindow();
        return;
    }
    const QPointer<TorvQueryBuilder> self(this);
    closeMenus();
    CommitPendingEdits();
    if (!self) return;
    const std::unique_ptr<TOperatorList> edited =
        orv::editOperators(*Operators, Restrictions, {}, this);
    if (!self || !edited) return;
    const QStringList lost = lostOperators(*edited);
    setOperators(*edited);
    if (!self || lost.isEmpty()) return;
    orv::showMessage({this,
                      QStringLiteral("These operators are no longer in the list: %1.\nConditions "
                                     "that had them now have %2.")
                          .arg(lost.join(QStringLiteral(", ")), edited->Items(0)->Name),
                      QStringLiteral("Attention!"), orv::MessageIcon::Exclamation,
                      orv::MessageButtons::Ok});
}

void TorvQueryBuilder::closeMenus() const {
    const auto isOwn = [this](const QObject* object) {
        while (object && object != this) object = object->parent();
        return object != nullptr;
    };
    QWidget* last = nullptr;
    for (QWidget* popup = QApplication::activePopupWidget(); popup && popup != last && isOwn(popup);
         popup = QApplication::activePopupWidget()) {
        last = popup;
        popup->close();
    }
}

// Operators of conditions that the list has not. An empty list takes none away.
QStringList TorvQueryBuilder::lostOperators(const TOperatorList& operators) const {
    QStringList names;
    if (!WherePanel || operators.Count() == 0) return names;
    for (const TorvQDWherePanel* panel : {WherePanel, HavingPanel}) names += panel->operatorNames();
    names.removeDuplicates();
    names.removeIf([&](const QString& name) { return operators.FindName(name) != nullptr; });
    return names;
}

void TorvQueryBuilder::setKeepMeaning(bool keep) {
    if (keep == m_keepMeaning) return;
    m_keepMeaning = keep;
    statementChanged();
}

void TorvQueryBuilder::setTailText(const QString& text) {
    if (text == m_tail) return;
    showTail(text);
    statementChanged();
}

void TorvQueryBuilder::showTail(const QString& text) {
    m_tail = text;
    if (m_tailLine) m_tailLine->showText(text);
}

void TorvQueryBuilder::showTailProblems() {
    QStringList problems;
    for (const orv::Finding& finding : orv::tailFindings(*this)) problems << finding.what;
    m_tailLine->showProblems(problems);
}

QString TorvQueryBuilder::GetSortedFieldName(int Index) const {
    return SelectPanel ? SelectPanel->grid()->GetFieldName(Index) : QString();
}

QString TorvQueryBuilder::GetSortedAliasName(const QString& Name) const {
    return SelectPanel ? SelectPanel->grid()->GetFieldAlias(Name) : QString();
}

// --- questions to the host ---

bool TorvQueryBuilder::DoAddRemoveTable(TorvQDTable* Table, TAddRemove Action) {
    bool allowed = true;
    const TAddRemoveTableEvent handler = OnAddRemoveTable;
    const HostCall call(this, m_hostCalls);
    if (handler) handler(this, Table, Action, allowed);
    return allowed;
}

bool TorvQueryBuilder::DoAddRemoveLink(TorvQDLink* Link, TAddRemove Action) {
    bool allowed = true;
    const TAddRemoveLinkEvent handler = OnAddRemoveLink;
    const HostCall call(this, m_hostCalls);
    if (handler) handler(this, Link, Action, allowed);
    return allowed;
}

bool TorvQueryBuilder::canGetTableFields() const {
    return bool(OnGetTableFields);
}

void TorvQueryBuilder::getTableFields(const QString& nameOfTable, const QString& asWritten,
                                      std::unique_ptr<TDataSet>& dataSet,
                                      std::unique_ptr<TParams>& params) {
    const TGetTableFieldsEvent handler = OnGetTableFields;
    const HostCall call(this, m_hostCalls);
    const auto restore =
        qScopeGuard([self = QPointer(this), before = std::exchange(m_tableAsWritten, asWritten)] {
            if (self) self->m_tableAsWritten = before;
        });
    if (handler) handler(nameOfTable, dataSet, params);
}

void TorvQueryBuilder::enterProcParameter(TorvQDTable* procedure, TorvQDListItem* item) {
    if (const TEnterProcParameter handler = OnEnterProcParameter) handler(this, procedure, item);
}

// --- drags ---

void TorvQueryBuilder::fieldDragStarted(const orv::DraggedField& field) {
    if (const TStartDragEvent handler = OnStartDrag) handler(this, field);
}

void TorvQueryBuilder::fieldDragEnded(QObject* target, const QPoint& viewPoint) {
    if (const TEndDragEvent handler = OnEndDrag) {
        handler(this, target, viewPoint.x(), viewPoint.y());
    }
}

// The host sees what is dragged for as long as its handler runs; the builder may die in it.
template <typename Handler>
void TorvQueryBuilder::showDragged(const QMimeData& data, const Handler& handler) {
    const QPointer<TorvQueryBuilder> self(this);
    m_dragData = &data;
    const auto over = qScopeGuard([&] {
        if (self) m_dragData = nullptr;
    });
    handler();
}

bool TorvQueryBuilder::foreignDragOver(QObject* source, const QPoint& viewPoint,
                                       const QMimeData& data) {
    bool accept = false;
    const TDragOverEvent handler = OnDragOver;
    if (!handler) return false;
    showDragged(data, [&] { handler(this, source, viewPoint.x(), viewPoint.y(), accept); });
    return accept;
}

void TorvQueryBuilder::foreignDrop(QObject* source, const QPoint& viewPoint,
                                   const QMimeData& data) {
    const TDragDropEvent handler = OnDragDrop;
    if (handler) showDragged(data, [&] { handler(this, source, viewPoint.x(), viewPoint.y()); });
}

// --- what is being typed ---

// The host is told of each; it may destroy the control when it is.
void TorvQueryBuilder::CommitPendingEdits() {
    const QPointer<TorvQueryBuilder> self(this);
    if (WorkArea) WorkArea->commitPendingEdit();
    if (self) commitPages();
}

void TorvQueryBuilder::HideFieldList() {
    commitPages();
}

// Every editor of the pages has its call here. What the host does about each may end it all.
void TorvQueryBuilder::commitPages() {
    if (!SelectPanel) return;
    const QPointer<TorvQueryBuilder> self(this);
    WherePanel->HideFieldList();
    if (self) HavingPanel->HideFieldList();
    if (self) SelectPanel->grid()->commitEdit();
    if (self) m_tailLine->commit();
}

void TorvQueryBuilder::discardEdits() {
    if (!SelectPanel) return;
    WherePanel->discardEdit();
    HavingPanel->discardEdit();
    SelectPanel->grid()->discardEdit();
    m_tailLine->showText(m_tail);
}
