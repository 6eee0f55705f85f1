// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDUndo.h"

#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDUndoText.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QHash>
#include <QScopeGuard>
#include <QUndoStack>

#include <utility>

namespace orv {

namespace {

// States are long and much the same from place to place: they take a tenth of their room then, at
// the fastest level.
QByteArray packed(const QByteArray& state) {
    return qCompress(state, 1);
}

// What a user has scrolled to, and the box that is selected.
class ViewOfDiagram {
public:
    explicit ViewOfDiagram(const TorvQDWorkArea& area) : m_position(area.scrollPosition()) {
        for (const TorvQDTable* box : area.tablesByCreation()) {
            if (box->FirstVisibleItem == 0) continue;
            m_rows[box->GetAlias()] = {box->FirstVisibleItem, box->VisibleCount};
        }
        const auto* selected = qobject_cast<const TorvQDTable*>(area.selectedObject());
        if (selected) m_selected = selected->GetAlias();
    }

    void restore(TorvQDWorkArea& area) const {
        for (TorvQDTable* box : area.tablesByCreation()) {
            const Rows rows = m_rows.value(box->GetAlias());
            if (rows.first == 0) continue;
            // In a list of another height rows below zero would be out of sight.
            if (box->VisibleCount == rows.count) {
                box->restoreFirstVisibleItem(rows.first);
            } else {
                box->SetFirstVisibleItem(rows.first);
            }
        }
        area.scrollTo(m_position);
        // The selected box is the one in front. Any other would change the order of stacking.
        if (area.TablesCount() == 0 || m_selected.isEmpty()) return;
        if (area.Tables(0)->GetAlias() == m_selected) area.selectObject(area.Tables(0));
    }

private:
    /// What the list of a box shows.
    struct Rows {
        int first = 0;
        int count = 0;
    };

    QPoint m_position;
    QHash<QString, Rows> m_rows;  // by alias
    QString m_selected;           // alias
};

}  // namespace

class UndoRecorder::Step : public QUndoCommand {
public:
    Step(UndoRecorder* recorder, const QByteArray& before, const QByteArray& after)
        : m_recorder(recorder), m_before(packed(before)), m_after(packed(after)) {}

    void undo() override { show(m_before, -1); }
    // The stack redoes what is pushed, which has happened already.
    void redo() override {
        if (std::exchange(m_isDone, true)) show(m_after, +1);
    }

private:
    void show(const QByteArray& state, int direction) {
        if (!m_recorder) return setObsolete(true);
        if (m_recorder->m_isRealigning) return;
        const QPointer<UndoRecorder> recorder = m_recorder;
        const int index = recorder->m_stack ? recorder->m_stack->index() : 0;
        const Shown shown = recorder->show(qUncompress(state));
        // A host that undoes or redoes meanwhile has moved the stack, which goes on from where it
        // is.
        if (recorder) recorder->moveStack(index);
        if (shown == Shown::Never) {
            setObsolete(true);
            if (recorder && recorder->m_stack) recorder->joinNeighbour(index, direction);
        }
        if (shown == Shown::NotNow && recorder) recorder->returnTo(index);
    }

    QPointer<UndoRecorder> m_recorder;
    mutable QByteArray m_before;  // a neighbour that goes leaves its side to this step
    mutable QByteArray m_after;
    bool m_isDone = false;

    friend class UndoRecorder;
};

UndoRecorder::UndoRecorder(TorvQueryBuilder* builder, QUndoStack* stack, QObject* parent)
    : QObject(parent), m_builder(builder), m_stack(stack) {
    if (m_builder->WorkArea) m_present = editedState(*m_builder);
    connect(m_builder, &TorvQueryBuilder::StatementChanged, this, &UndoRecorder::record);
    connect(m_builder, &TorvQueryBuilder::LayoutChanged, this, &UndoRecorder::record);
}

UndoRecorder::~UndoRecorder() = default;

void UndoRecorder::reset() {
    if (m_isRestoring) {
        QMetaObject::invokeMethod(this, &UndoRecorder::reset, Qt::QueuedConnection);
        return;
    }
    if (m_builder && m_builder->WorkArea) m_present = editedState(*m_builder);
    m_index = -1;
    if (m_stack) m_stack->clear();
}

void UndoRecorder::record() {
    if (m_groups == 0) take({});
}

void UndoRecorder::take(const QString& text) {
    if (m_isRestoring || !m_stack || !m_builder || !m_builder->WorkArea) return;
    const QByteArray state = editedState(*m_builder);
    if (state == m_present) return;
    const QPointer<UndoRecorder> self(this);
    realign();
    if (!self || !m_stack) return;
    auto* step = new Step(this, m_present, state);
    step->setText(text.isEmpty() ? changeText(m_present, state) : text);
    m_present = state;
    m_stack->push(step);
}

// A host that wants to undo while it is told of the same has done nothing: the step must stay, as
// the stack is not done with it. So has one that is being asked for something, and one that raises
// on the way gets back what was there: the stack, which goes on in any case, is taken back
// afterwards.
UndoRecorder::Shown UndoRecorder::show(const QByteArray& state) {
    if (!m_builder) return Shown::Never;
    if (m_isRestoring) return Shown::Yes;  // the outer one moves the stack back
    const bool isBusy = m_builder->isBusy();
    const QPointer<UndoRecorder> self(this);
    m_isRestoring = true;
    const auto over = qScopeGuard([&] {
        if (self) m_isRestoring = false;
    });
    const ViewOfDiagram view(*m_builder->WorkArea);
    bool isShown = false;
    guarded([&] {
        m_builder->RestoreState(state);
        isShown = true;
    });
    if (!self || !m_builder) return Shown::Yes;
    // What a slot raises does not unmake the restored state; what a handler raises on the way
    // leaves nothing.
    const QByteArray shown = isShown ? state : editedState(*m_builder);
    if (shown != state && shown == m_present) return isBusy ? Shown::NotNow : Shown::Never;
    if (shown != state) guarded([&] { m_builder->RestoreState(m_present); });
    if (!self || !m_builder) return Shown::Yes;
    guarded([&] { view.restore(*m_builder->WorkArea); });
    if (!self || !m_builder) return Shown::Yes;
    // What has come of the state before in the hands of the host is recorded like any other change.
    if (shown != state) return Shown::NotNow;
    m_present = state;
    m_index = -1;
    return Shown::Yes;
}

// The step of the stack's index, in the direction that it goes, is about to go: its neighbour leads
// to where that one began.
void UndoRecorder::joinNeighbour(int index, int direction) {
    const int place = direction < 0 ? index - 2 : index + 1;
    if (place < 0) return;
    const auto* neighbour = dynamic_cast<const Step*>(m_stack->command(place));
    if (!neighbour) return;
    (direction < 0 ? neighbour->m_after : neighbour->m_before) = packed(m_present);
}

// Of several attempts the first one knows where the diagram stands.
void UndoRecorder::returnTo(int index) {
    if (m_index >= 0) return;
    m_index = index;
    QMetaObject::invokeMethod(this, &UndoRecorder::realign, Qt::QueuedConnection);
}

void UndoRecorder::realign() {
    if (!m_isRestoring && m_index >= 0) moveStack(std::exchange(m_index, -1));
}

// The diagram is there already.
void UndoRecorder::moveStack(int index) {
    if (!m_stack || m_stack->index() == index) return;
    m_isRealigning = true;
    const QPointer<UndoRecorder> self(this);
    guarded([&] { m_stack->setIndex(index); });
    if (self) m_isRealigning = false;
}

UndoRecorder::Group::Group(UndoRecorder* recorder, QString text)
    : m_recorder(recorder), m_text(std::move(text)) {
    if (m_recorder) ++m_recorder->m_groups;
}

UndoRecorder::Group::~Group() {
    if (!m_recorder || --m_recorder->m_groups > 0) return;
    // A slot of the stack may raise something.
    guarded([this] { m_recorder->take(m_text); });
}

}  // namespace orv
