// SPDX-License-Identifier: MIT
#pragma once

#include "window/StatementPane.h"

#include <QHash>
#include <QObject>

#include <memory>

class QUndoCommand;
class QUndoStack;

namespace orvquery {

/// Keeps for each step of the diagram's undo stack the text that was loaded last, with its
/// findings: what is undone takes them along, and what is redone brings them back. Belongs to the
/// pane, borrows the stack.
class LoadedTexts : public QObject {
    Q_OBJECT

public:
    LoadedTexts(const QUndoStack& stack, StatementPane& pane);

    /// What the pane has now belongs to where the stack stands. To be called when something was
    /// loaded or forgotten.
    void take();

private:
    using Text = std::shared_ptr<const LoadedText>;

    void follow();
    void followSteps();
    [[nodiscard]] const QUndoCommand* step() const;

    const QUndoStack& m_stack;
    StatementPane& m_pane;
    QHash<const QUndoCommand*, Text> m_afterSteps;
    const QUndoCommand* m_first = nullptr;  ///< the step that went farthest back
    Text m_beforeSteps;
    Text m_present;
};

}  // namespace orvquery
