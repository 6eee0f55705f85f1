// SPDX-License-Identifier: MIT
#include "window/UndoActions.h"

#include "querybuilder/ORVQDWindow.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTextDocument>

namespace orvquery {

namespace {

constexpr int mostSteps = 200;

bool isEditor(const QWidget* widget) {
    if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return !line->isReadOnly();
    const auto* text = qobject_cast<const QPlainTextEdit*>(widget);
    return text != nullptr && !text->isReadOnly();
}

bool canUndo(const QWidget& editor) {
    if (const auto* line = qobject_cast<const QLineEdit*>(&editor)) return line->isUndoAvailable();
    return static_cast<const QPlainTextEdit&>(editor).document()->isUndoAvailable();
}

bool canRedo(const QWidget& editor) {
    if (const auto* line = qobject_cast<const QLineEdit*>(&editor)) return line->isRedoAvailable();
    return static_cast<const QPlainTextEdit&>(editor).document()->isRedoAvailable();
}

void show(QAction& action, const QString& verb, const QString& what, bool isEnabled) {
    action.setText(isEnabled && !what.isEmpty() ? verb + u' ' + what : verb);
    action.setEnabled(isEnabled);
}

}  // namespace

UndoActions::UndoActions(TorvQueryBuilder& builder, QWidget& window)
    : QObject(&window),
      m_window(window),
      m_control(&builder),
      m_recorder(&builder, &m_stack),
      m_undo(new QAction(this)),
      m_redo(new QAction(this)) {
    m_stack.setUndoLimit(mostSteps);
    m_undo->setObjectName(QStringLiteral("undo"));
    m_redo->setObjectName(QStringLiteral("redo"));
    m_undo->setIconText(tr("Undo"));
    m_redo->setIconText(tr("Redo"));
    m_undo->setShortcut(QKeySequence(QKeySequence::Undo));
    // Both keys are common, whatever the desktop.
    QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::Redo);
    for (const char* key : {"Ctrl+Shift+Z", "Ctrl+Y"}) {
        const QKeySequence sequence(QString::fromLatin1(key));
        if (!keys.contains(sequence)) keys += sequence;
    }
    m_redo->setShortcuts(keys);
    connect(m_undo, &QAction::triggered, this, &UndoActions::undo);
    connect(m_redo, &QAction::triggered, this, &UndoActions::redo);
    connect(&m_stack, &QUndoStack::canUndoChanged, this, &UndoActions::refresh);
    connect(&m_stack, &QUndoStack::canRedoChanged, this, &UndoActions::refresh);
    connect(&m_stack, &QUndoStack::undoTextChanged, this, &UndoActions::refresh);
    connect(&m_stack, &QUndoStack::redoTextChanged, this, &UndoActions::refresh);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { followFocus(now); });
    refresh();
}

void UndoActions::followFocus(QWidget* focus) {
    // It is there for a while only, and what is chosen concerns who had it before.
    if (qobject_cast<QMenuBar*>(focus) || qobject_cast<QMenu*>(focus)) return;
    if (m_focused) m_focused->removeEventFilter(this);
    m_focused = isEditor(focus) && focus->window() == &m_window ? focus : nullptr;
    m_watch = std::make_unique<QObject>();
    if (m_focused) m_focused->installEventFilter(this);
    const auto refresh = [this] { this->refresh(); };
    if (const auto* line = qobject_cast<QLineEdit*>(m_focused.data())) {
        connect(line, &QLineEdit::textChanged, m_watch.get(), refresh);
    } else if (const auto* text = qobject_cast<QPlainTextEdit*>(m_focused.data())) {
        connect(text->document(), &QTextDocument::undoAvailable, m_watch.get(), refresh);
        connect(text->document(), &QTextDocument::redoAvailable, m_watch.get(), refresh);
    }
    this->refresh();
}

// Whose undo and redo are wanted; none for those of the diagram. In the control the diagram is not
// to change below an open editor.
QWidget* UndoActions::editor() const {
    if (!m_focused) return nullptr;
    const bool isOfControl = m_control && m_control->isAncestorOf(m_focused);
    const bool isUsed = canUndo(*m_focused) || canRedo(*m_focused) || isOfControl;
    return isUsed ? m_focused.data() : nullptr;
}

void UndoActions::undo() {
    QWidget* editor = this->editor();
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        line->undo();
    } else if (auto* text = qobject_cast<QPlainTextEdit*>(editor)) {
        text->undo();
    } else {
        m_stack.undo();
    }
}

void UndoActions::redo() {
    QWidget* editor = this->editor();
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        line->redo();
    } else if (auto* text = qobject_cast<QPlainTextEdit*>(editor)) {
        text->redo();
    } else {
        m_stack.redo();
    }
}

void UndoActions::refresh() {
    const QWidget* editor = this->editor();
    show(*m_undo, tr("&Undo"), editor ? tr("typing") : m_stack.undoText(),
         editor ? canUndo(*editor) : m_stack.canUndo());
    show(*m_redo, tr("&Redo"), editor ? tr("typing") : m_stack.redoText(),
         editor ? canRedo(*editor) : m_stack.canRedo());
}

// Editors take the keys even when there is nothing to undo.
bool UndoActions::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && watched == m_focused && editor() == nullptr) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const QKeySequence pressed(key->keyCombination());
        if (m_undo->shortcuts().contains(pressed) || m_redo->shortcuts().contains(pressed)) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace orvquery
