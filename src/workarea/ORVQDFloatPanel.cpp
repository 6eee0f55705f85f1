// SPDX-License-Identifier: MIT
// The work area as a model: its boxes, their places and stacking, adding and removing.
#include "workarea/ORVQDFloatPanel.h"

#include "contract/ChangeScope.h"
#include "contract/DiagramEvents.h"
#include "core/Error.h"
#include "core/Text.h"
#include "diagram/Orvqdlnkprop.h"
#include "toolkit/ExitEdit.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDDiagramKeys.h"
#include "workarea/ORVQDFieldDrag.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDGestures.h"
#include "workarea/ORVQDHints.h"
#include "workarea/ORVQDSProc.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QMenu>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTimer>
#include <queue>

#include <algorithm>
#include <exception>

namespace {

constexpr int placementRightPx = 50;
constexpr int placementDownPx = 20;
const QColor aliasEditColor(0xC0, 0xC0, 0xC0);

IWorkAreaOwner* ownerOf(QWidget* widget) {
    auto* owner = dynamic_cast<IWorkAreaOwner*>(widget);
    if (!owner) throw orv::Error(QStringLiteral("Given parent is not valid for WorkArea!"));
    return owner;
}

}  // namespace

QPointer<TdlgLnkProp> dlgLnkProp;

TorvQDWorkArea::TorvQDWorkArea(QWidget* AOwner)
    : QAbstractScrollArea(AOwner),
      m_owner(ownerOf(AOwner)),
      m_aliasEdit(new orv::ExitEdit(viewport())),
      m_searchEdit(new TEditEx(viewport())),
      m_rowScrollBar(new QScrollBar(Qt::Vertical, viewport())),
      m_hint(new orv::HintPopup(this)),
      m_linkDialog(new TdlgLnkProp(this)),
      m_gestures(std::make_unique<orv::Gestures>(*this)),
      m_fieldDrag(std::make_unique<orv::FieldDrag>(*this)),
      m_keys(std::make_unique<orv::DiagramKeys>(*this)) {
    dlgLnkProp = m_linkDialog;
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setFocusProxy(this);
    QPalette palette = m_aliasEdit->palette();
    palette.setColor(QPalette::Base, aliasEditColor);
    m_aliasEdit->setPalette(palette);
    m_aliasEdit->setAccessibleName(tr("Alias"));
    m_aliasEdit->setCursor(Qt::IBeamCursor);
    m_aliasEdit->committed = [this] { _EditNameKillFocus(); };
    m_aliasEdit->dropped = [this] { m_renamed.clear(); };
    m_searchEdit->setCursor(Qt::IBeamCursor);
    m_rowScrollBar->setFocusPolicy(Qt::NoFocus);
    m_rowScrollBar->setCursor(Qt::ArrowCursor);
    m_rowScrollBar->hide();
    connect(m_rowScrollBar, &QScrollBar::valueChanged, this, [this](int row) {
        if (auto* table = qobject_cast<TorvQDTable*>(m_selected.data())) {
            table->SetFirstVisibleItem(row);
        }
    });
    updateScrollRange();
    m_owner->workAreaOptions().OnChangeFont = [this](const QFont& font) { _SetFont(font); };
    m_owner->workAreaOptions().changed = [this] { viewport()->update(); };
}

TorvQDWorkArea::~TorvQDWorkArea() {
    // A menu outlives its command, in which the control may die: Qt looks at it afterwards. Closed,
    // it goes by itself.
    if (m_menu) {
        m_menu->close();
        m_menu->setParent(nullptr, m_menu->windowFlags());
    }
    m_aliasEdit->committed = nullptr;
    contentsCleared = nullptr;
    m_selected.clear();
    m_hot.clear();
}

TorvQDTable* TorvQDWorkArea::Tables(int Index) const {
    if (Index < 0 || Index >= TablesCount()) {
        throw orv::Error(QStringLiteral("List index out of bounds (%1)").arg(Index));
    }
    return m_tables[std::size_t(Index)].get();
}

int TorvQDWorkArea::indexOf(const QObject* table) const {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(),
                                    [&](const auto& box) { return box.get() == table; });
    return found == m_tables.end() ? -1 : int(found - m_tables.begin());
}

// --- adding ---

TorvQDTable* TorvQDWorkArea::AddPanel(const QString& TableName, const TDataSet* DataSet) {
    return addTable({TableName, DataSet});
}

TorvQDTable* TorvQDWorkArea::AddProc(const QString& ProcName, const TDataSet* DataSet,
                                     const TParams* Params) {
    return addTable({ProcName, DataSet, true, Params});
}

// Name and alias are stored before anybody is told of the box, so that all names made from it are
// right from the start.
TorvQDTable* TorvQDWorkArea::addTable(const NewBox& wanted) {
    if (orv::isBlank(wanted.name)) {
        throw orv::Error(QStringLiteral("A table must have a name"));
    }
    const QPointer<TorvQDFloatObject> old(m_selected);
    const QPointer<TorvQDWorkArea> self(this);
    orv::guarded([&] { commitPendingEdit(); });
    if (self) deselect();
    if (!self) return nullptr;
    // A refusal leaves nothing selected.
    auto tellDeselected = qScopeGuard([&] {
        if (self && !m_selected) selectionChanged(old);
    });
    std::unique_ptr<TorvQDTable> box = makeBox(wanted);
    const auto takeFreeAlias = [&] {
        const QString alias = freeAlias(box->TableName);
        box->SetAlias(alias == box->TableName ? QString() : alias);
    };
    takeFreeAlias();
    const bool allowed = m_owner->DoAddRemoveTable(box.get(), araAdd);
    if (!self || !allowed) return nullptr;
    if (m_byAlias.contains(box->GetAlias())) takeFreeAlias();  // a handler took it meanwhile
    const int captionWidth = box->CaptionRect(true).width();
    if (captionWidth > box->Width) box->Width = captionWidth;
    placeTable(*box);
    if (!wanted.finalAlias.isEmpty() && wanted.finalAlias != box->TableName) {
        box->SetAlias(wanted.finalAlias);
    }

    tellDeselected.dismiss();
    ChangeScope change(m_owner, this);
    // A handler may have added and selected one while it was asked, and may add another while it is
    // told. What is selected is in front, whatever is raised.
    deselect();
    if (!self) return nullptr;
    const QPointer<TorvQDTable> added(box.get());
    TorvQDTable* table = adopt(std::move(box));
    if (self && added) tellTicks(table);
    if (self) deselect();
    if (!self || !added || indexOf(table) < 0) return nullptr;
    m_selected = table;
    table->SetSelect(true);
    selectionChanged(old);
    // While a statement is loaded its boxes come one by one, and the view stays where it is.
    if (!m_owner->ledger() && viewport()->isVisible()) ensureVisible(table->GetBoundsRect());
    change.finish();
    return self && indexOf(table) >= 0 ? table : nullptr;
}

std::unique_ptr<TorvQDTable> TorvQDWorkArea::makeBox(const NewBox& wanted) {
    std::unique_ptr<TorvQDTable> box;
    if (wanted.isProcedure) {
        auto procedure =
            std::make_unique<TorvQDSProc>(this, wanted.dataSet, wanted.name, wanted.params);
        procedure->setWithoutBrackets(wanted.withoutBrackets);
        box = std::move(procedure);
    } else {
        box = std::make_unique<TorvQDTable>(this, wanted.dataSet, wanted.name);
    }
    if (!wanted.writtenName.isEmpty()) box->TableName = wanted.writtenName;
    return box;
}

// From here on the box is one of the diagram; those who want to know are told.
TorvQDTable* TorvQDWorkArea::adopt(std::unique_ptr<TorvQDTable> box) {
    TorvQDTable* table = box.get();
    m_tables.insert(m_tables.begin(), std::move(box));
    m_creation.push_back(table);
    m_creationNumber.insert(table, m_created++);
    rememberAlias(table);
    indexFields(table);
    updateScrollRange(*table);
    orv::accessible::tellAdded(table);
    m_owner->statementChanged();
    if (const TAddEvent handler = OnAddTable) handler(this, table);
    return table;
}

// The host may have ticked rows while it was asked for its permission. What a loaded statement
// selects is for the statement alone to say.
void TorvQDWorkArea::tellTicks(TorvQDTable* table) {
    std::vector<TorvQDListItem*> ticked;
    for (const auto& item : table->Items) {
        if (item->Checked && item->ParamType == ptOutput) ticked.push_back(item.get());
    }
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> box(table);
    for (TorvQDListItem* item : ticked) {
        if (!self || !box) return;
        if (m_owner->ledger()) item->UpdateCheck(0);
        if (!item->Checked) continue;
        _CheckItem(table, item);
        if (self && box && box->owns(item) && item->Checked) item->UpdateCheck(-1);
    }
}

TorvQDTable* TorvQDWorkArea::restoreTable(const QString& name, const QString& alias,
                                          const TDataSet& dataSet, const QRect& bounds,
                                          const TParams* params) {
    std::unique_ptr<TorvQDTable> box =
        makeBox({name, &dataSet, params != nullptr, params, false, name});
    if (alias != name) box->SetAlias(alias);
    if (bounds.isValid()) {
        box->SetWidth(bounds.width());
        // A box of few rows is made lower than anybody can size it.
        if (bounds.height() != box->Height) box->SetHeight(bounds.height());
        box->SetLeft(bounds.left());
        box->SetTop(bounds.top());
    } else {
        placeTable(*box);
    }
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> made(box.get());
    adopt(std::move(box));
    return self && made && indexOf(made) >= 0 ? made.data() : nullptr;
}

void TorvQDWorkArea::restack(const std::vector<TorvQDTable*>& frontToBack) {
    QHash<const TorvQDTable*, int> places;
    for (TorvQDTable* table : frontToBack) places.insert(table, int(places.size()));
    std::stable_sort(m_tables.begin(), m_tables.end(), [&](const auto& a, const auto& b) {
        return places.value(a.get()) < places.value(b.get());
    });
    m_owner->statementChanged();
    viewport()->update();
}

// The box goes right until it is clear of all others, each time with a gap behind the first box of
// the list that it meets. Boxes that it has passed can never be met again, so each is looked at
// once: `reached` holds those whose left edge the place has reached, first of the list on top.
void TorvQDWorkArea::placeTable(TorvQDTable& table, int gapPx) const {
    TRect place = table.GetBoundsRect().translated(placementRightPx, placementDownPx);
    struct Obstacle {
        int left;
        int right;
        int index;
    };
    std::vector<Obstacle> obstacles;
    for (int index = 0; index < TablesCount(); ++index) {
        if (m_tables[std::size_t(index)].get() == &table) continue;
        const TRect bounds = m_tables[std::size_t(index)]->GetBoundsRect();
        const bool sameHeight = bounds.Top < place.Bottom && place.Top < bounds.Bottom;
        if (sameHeight) obstacles.push_back({bounds.Left, bounds.Right, index});
    }
    std::sort(obstacles.begin(), obstacles.end(),
              [](const Obstacle& a, const Obstacle& b) { return a.left < b.left; });
    const auto later = [](const Obstacle& a, const Obstacle& b) { return a.index > b.index; };
    std::priority_queue<Obstacle, std::vector<Obstacle>, decltype(later)> reached(later);
    std::size_t next = 0;
    while (true) {
        while (next < obstacles.size() && obstacles[next].left < place.Right) {
            reached.push(obstacles[next++]);
        }
        while (!reached.empty() && reached.top().right <= place.Left) reached.pop();
        if (reached.empty()) break;
        place = place.translated(reached.top().right + gapPx - place.Left, 0);
    }
    table.Left = place.Left;
    table.Top = place.Top;
}

void TorvQDWorkArea::placeAgain(const std::vector<TorvQDTable*>& tables, int gapPx) {
    // Those that wait for their place are in nobody's way.
    constexpr int outOfTheWay = -100000;
    std::vector<QPoint> before;
    for (TorvQDTable* table : tables) {
        before.emplace_back(table->Left, table->Top);
        table->Left = outOfTheWay;
    }
    for (std::size_t index = 0; index < tables.size(); ++index) {
        TorvQDTable& table = *tables[index];
        table.Left = table.Top = 0;
        placeTable(table, gapPx);
        const QPoint place(table.Left, table.Top);
        table.Left = before[index].x();
        table.Top = before[index].y();
        table.MoveTable(place.x() - table.Left, place.y() - table.Top);
    }
}

// --- stacking and removing ---

void TorvQDWorkArea::TableToFront(QObject* Table) {
    const int index = indexOf(Table);
    if (index < 1) return;
    beginChange();
    std::rotate(m_tables.begin(), m_tables.begin() + index, m_tables.begin() + index + 1);
    if (!m_owner->KeepMeaning()) m_owner->statementChanged();
    endChange();
}

void TorvQDWorkArea::closeTable(TorvQDTable* table) {
    if (indexOf(table) < 0 || table->closing) return;
    table->closing = true;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> box(table);
    bool allowed = false;
    try {
        allowed = m_owner->DoAddRemoveTable(table, araRemove);
    } catch (...) {
        if (box) box->closing = false;
        throw;
    }
    if (!self || !box) return;
    if (!allowed) {
        box->closing = false;
        return;
    }
    box->leaving = true;
    ChangeScope change(m_owner, this);
    // What a handler raises is passed on once the box is gone. One that begins another query takes
    // the box away: what is told afterwards would be about one of the same name.
    std::exception_ptr error;
    const auto isThere = [&] { return self && box && indexOf(box) >= 0; };
    const auto tell = [&](const auto& body) {
        try {
            if (isThere()) body();
        } catch (...) {
            if (!error) error = std::current_exception();
        }
    };
    for (std::size_t index = 0; isThere() && index < table->Items.size(); ++index) {
        TorvQDListItem* item = table->Items[index].get();
        if (!item->Checked) continue;
        item->UpdateCheck(0);
        tell([&] { _CheckItem(table, item); });
    }
    tell([&] {
        if (const TRemoveEvent handler = OnRemoveTable) handler(this, table);
    });
    tell([&] { unlinkTable(table); });
    if (isThere()) removeBox(table);
    if (error) std::rethrow_exception(error);
    change.finish();
}

void TorvQDWorkArea::removeBox(TorvQDTable* table) {
    const int index = indexOf(table);
    if (index < 0) return;
    m_owner->statementChanged();
    invalidate(table->toView(table->GetBoundsRect()));
    forget(table);
    orv::accessible::tellRemoved(table);
    forgetAlias(table, table->GetAlias());
    unindexFields(table);
    std::erase(m_creation, table);
    m_creationNumber.remove(table);
    // Those of a state that is being restored wait for their links.
    for (const int join : m_joinsOfTable.value(table)) dropUnusedJoin(m_joins[join].join.get());
    m_joinsOfTable.remove(table);
    auto dying = std::move(m_tables[std::size_t(index)]);
    m_tables.erase(m_tables.begin() + index);
    bury(std::move(dying));
    updateScrollRange();
}

// Drops every reference to an object that is about to go.
void TorvQDWorkArea::forget(TorvQDFloatObject* object) {
    if (m_renamed == object) discardPendingEdit();
    if (m_searchEdit->table() == object) m_searchEdit->close();
    m_gestures->forget(object);
    m_fieldDrag->forget(object);
    m_keys->forget(object);
    if (m_menu && m_menuObject == object) m_menu->close();
    if (m_hot == object) leaveHot();
    if (m_selected != object) return;
    object->SetSelect(false);
    m_selected.clear();
    selectionChanged(object);
}

// An object may go from within one of its own handlers: it dies once that has returned.
void TorvQDWorkArea::bury(std::unique_ptr<QObject> object) {
    if (m_dying.empty()) {
        QTimer::singleShot(0, this, [this] {
            m_dying.clear();
            m_dyingJoins.clear();
        });
    }
    m_dying.push_back(std::move(object));
}

void TorvQDWorkArea::ClearContents() {
    discardPendingEdit();
    m_searchEdit->close();
    m_gestures->end();
    m_fieldDrag->leave();
    m_keys->cancelLink();
    m_hot.clear();
    hideHint();
    if (m_menu) m_menu->close();
    m_selected.clear();
    for (const auto& [number, link] : m_links) orv::accessible::tellRemoved(link.get());
    for (TorvQDTable* table : m_creation) orv::accessible::tellRemoved(table);
    showRowScrollBar(false);
    m_creation.clear();
    m_creationNumber.clear();
    m_byAlias.clear();
    m_byLooseAlias.clear();
    m_byField.clear();
    m_fieldsOfTable.clear();
    m_joinByPair.clear();
    m_joinNumbers.clear();
    m_linkNumbers.clear();
    m_joinsOfTable.clear();
    for (auto& [number, link] : m_links) bury(std::move(link));
    m_links.clear();
    for (auto& [number, held] : m_joins) m_dyingJoins.push_back(std::move(held.join));
    m_joins.clear();
    for (auto& table : m_tables) bury(std::move(table));
    m_tables.clear();
    updateScrollRange();
    viewport()->update();
    orv::accessible::tellFocus(*this);
    ChangeScope change(m_owner, this);
    m_owner->statementChanged();
    if (const std::function<void()> handler = contentsCleared) handler();
    change.finish();
}

void TorvQDWorkArea::selectObject(TorvQDFloatObject* object) {
    if (m_deselects || (m_selected == object && (!object || object->Selected))) return;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDFloatObject> wanted(object);
    orv::guarded([&] { commitPendingEdit(); });
    if (!self || (object && !wanted)) return;
    if (m_searchEdit->table() != object) m_searchEdit->close();
    ChangeScope change(m_owner, this);
    const QPointer<TorvQDFloatObject> old(m_selected);
    deselect();
    if (!self) return;
    // A handler that was told of it may have closed what is to be selected.
    m_selected = holds(wanted) ? wanted.data() : nullptr;
    if (m_selected) m_selected->SetSelect(true);
    if (!self) return;
    selectionChanged(old);
    change.finish();
}

// The handlers that are told of it cannot select anything meanwhile; a box that they add is no
// longer selected afterwards.
void TorvQDWorkArea::deselect() {
    const QPointer<TorvQDWorkArea> self(this);
    m_deselects = true;
    const auto settle = qScopeGuard([&] {
        if (self) m_deselects = false;
    });
    while (self && m_selected) {
        const QPointer<TorvQDFloatObject> object = std::exchange(m_selected, nullptr);
        object->SetSelect(false);
    }
}

// Beside what the objects repaint of themselves: the focus, and a link that keys have begun, may be
// shown elsewhere now.
void TorvQDWorkArea::selectionChanged(TorvQDFloatObject* old) {
    if (!old != !m_selected || m_keys->linkSource()) viewport()->update();
    if (old == m_selected) return;
    if (old) orv::accessible::tellSelected(old, false);
    if (m_selected) orv::accessible::tellSelected(m_selected, true);
    orv::accessible::tellFocus(*this);
}

// --- relays ---

// A box that is not on the diagram has no part in the statement: one that the host is still asked
// about, or one that is closed and dies once the present event is over. Nor has a replaced row.
bool TorvQDWorkArea::isOnDiagram(const QObject* box, const TorvQDListItem* item) const {
    const int index = indexOf(box);
    return index >= 0 && m_tables[std::size_t(index)]->owns(item);
}

void TorvQDWorkArea::_CheckItem(QObject* Sender, TorvQDListItem* Item) {
    if (!isOnDiagram(Sender, Item)) return;
    if (const TCheckItemEvent handler = OnCheckItem) handler(Sender, Item);
}

// The host changes the row behind everybody's back: whoever wants to know is told here, even when
// it raises. It may close the box, or load another statement, which tells of itself.
void TorvQDWorkArea::DoEnterParameter(TorvQDTable* SProcedure, TorvQDListItem* ListItem) {
    if (!isOnDiagram(SProcedure, ListItem)) return;
    const QPointer<TorvQDWorkArea> self(this);
    const QPointer<TorvQDTable> box(SProcedure);
    const int version = box ? box->rowsVersion() : 0;
    const auto arguments = [&] {
        const auto* procedure = qobject_cast<const TorvQDSProc*>(box.data());
        return procedure ? procedure->GetParameters() : QString();
    };
    const QString before = arguments();
    const QPointer<TorvQDTable> outer = std::exchange(m_entering, box);
    const auto settle = [&] {
        if (!self) return;
        m_entering = outer;
        if (!box || indexOf(box) < 0 || box->rowsVersion() != version) return;
        boxChanged(box, BoxChange::Tick, ListItem);
        if (arguments() != before) m_owner->statementChanged();
    };
    try {
        m_owner->enterProcParameter(SProcedure, ListItem);
    } catch (...) {
        orv::guarded(settle);
        throw;
    }
    settle();
}

// A value that the host sets while it is asked for one is told of once, at the end.
void TorvQDWorkArea::parameterChanged(TorvQDSProc* procedure, TorvQDListItem* item) {
    if (!isOnDiagram(procedure, item) || m_entering == procedure) return;
    boxChanged(procedure, BoxChange::Tick, item);
    m_owner->statementChanged();
}

void TorvQDWorkArea::checkItem(TorvQDFloatObject* sender, TorvQDListItem* item) {
    _CheckItem(sender, item);
}

void TorvQDWorkArea::enterParameter(TorvQDTable* table, TorvQDListItem* item) {
    DoEnterParameter(table, item);
}

void TorvQDWorkArea::beginChange() {
    m_owner->beginChange();
}

void TorvQDWorkArea::endChange() {
    m_owner->endChange();
}

const TorvQDWorkAreaOptions& TorvQDWorkArea::options() const {
    return m_owner->workAreaOptions();
}

QFont TorvQDWorkArea::GetFont() const {
    return options().GetFont();
}

void TorvQDWorkArea::_SetFont(const QFont&) {
    for (const auto& table : m_tables) table->relayout();
    updateScrollRange();
    viewport()->update();
}

int TorvQDWorkArea::fontHeight() const {
    return QFontInfo(options().GetFont()).pixelSize();
}

int TorvQDWorkArea::boldTextWidth(const QString& text) const {
    QFont font = options().GetFont();
    font.setBold(true);
    return QFontMetrics(font).horizontalAdvance(text);
}
