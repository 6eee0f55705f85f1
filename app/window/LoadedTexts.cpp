// SPDX-License-Identifier: MIT
#include "window/LoadedTexts.h"

#include "toolkit/Services.h"

#include <QUndoStack>

#include <utility>

namespace orvquery {

LoadedTexts::LoadedTexts(const QUndoStack& stack, StatementPane& pane)
    : QObject(&pane), m_stack(stack), m_pane(pane) {
    take();
    connect(&stack, &QUndoStack::indexChanged, this,
            [this] { orv::guarded([this] { follow(); }); });
}

const QUndoCommand* LoadedTexts::step() const {
    return m_stack.index() == 0 ? nullptr : m_stack.command(m_stack.index() - 1);
}

void LoadedTexts::take() {
    m_present = std::make_shared<LoadedText>(m_pane.loaded());
    if (const QUndoCommand* step = this->step()) {
        m_afterSteps[step] = m_present;
    } else {
        m_beforeSteps = m_present;
    }
}

void LoadedTexts::follow() {
    if (m_stack.count() == 0) {
        m_afterSteps.clear();
        m_first = nullptr;
        return take();
    }
    followSteps();
    const QUndoCommand* step = this->step();
    const Text text = step ? m_afterSteps.value(step) : m_beforeSteps;
    // What happened beside the steps, such as a refused text, stays where nothing was loaded.
    if (text == m_present) return;
    m_present = text;
    m_pane.setLoadedAgain(*text);
}

// Steps that are new have loaded nothing so far; of those that are gone no address may stay, as
// another step may get it.
void LoadedTexts::followSteps() {
    QHash<const QUndoCommand*, Text> texts;
    for (int index = 0; index < m_stack.count(); ++index) {
        const QUndoCommand* step = m_stack.command(index);
        texts[step] = m_afterSteps.value(step, m_present);
    }
    const QUndoCommand* first = m_stack.command(0);
    // The stack lets go of its oldest steps.
    if (first != m_first && m_afterSteps.contains(first)) {
        m_beforeSteps = m_afterSteps.value(m_first);
    }
    m_first = first;
    m_afterSteps = std::move(texts);
}

}  // namespace orvquery
