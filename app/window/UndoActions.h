// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDUndo.h"

#include <QObject>
#include <QPointer>
#include <QUndoStack>

#include <memory>

class QAction;
class QWidget;

namespace orvquery {

/// Undo and redo of what happens to the query on the diagram, as actions of a window. While a text
/// is edited in the window they are the editor's, by their keys as well as in the menu; an editor
/// beside the control in which there is nothing to undo or redo leaves them to the diagram.
class UndoActions : public QObject {
    Q_OBJECT

public:
    UndoActions(TorvQueryBuilder& builder, QWidget& window);

    [[nodiscard]] QAction* undoAction() const { return m_undo; }
    [[nodiscard]] QAction* redoAction() const { return m_redo; }

    /// What is on the diagram is where undoing ends from now on.
    void reset() { m_recorder.reset(); }

    [[nodiscard]] const QUndoStack& stack() const { return m_stack; }

    /// For orv::UndoRecorder::Group.
    [[nodiscard]] orv::UndoRecorder* recorder() { return &m_recorder; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followFocus(QWidget* focus);
    [[nodiscard]] QWidget* editor() const;
    void undo();
    void redo();
    void refresh();

    QWidget& m_window;
    QPointer<const QWidget> m_control;  ///< the window may outlive it
    QUndoStack m_stack;
    orv::UndoRecorder m_recorder;
    QAction* m_undo;
    QAction* m_redo;
    QPointer<QWidget> m_focused;       ///< the editor with the focus, if it is one
    std::unique_ptr<QObject> m_watch;  ///< the context of connections with that editor
};

}  // namespace orvquery
