// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "toolkit/InPlace.h"

#include <QPlainTextEdit>
#include <QPointer>

#include <functional>

class QMenu;

/// The edit that is placed over a field or argument of a condition to edit it in place. It knows
/// its keys and how it is left; what is edited and where it lies is its owner's. Losing the focus
/// to a popup, to its companion or because another window becomes active is no exit.
class ORV_EXPORT TMemoEx : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit TMemoEx(QWidget* parent);

    /// Shows the edit where it lies, with the text selected, and takes the focus.
    void open(const QString& text);
    /// Hides the edit without an exit; the parent gets the focus when the edit has it.
    void discard() { m_place.discard(); }
    /// From now on it is left without an exit: its owner is dying.
    void disarm() { m_place.disarm(); }
    /// Whether the edit was opened and not left since.
    [[nodiscard]] bool isOpen() const { return m_place.isOpen(); }

    /// The text with line breaks as CR LF. It can be read after an exit, too.
    [[nodiscard]] QString text() const;
    /// Whether the text is another one than the edit was opened with.
    [[nodiscard]] bool isChanged() const { return text() != m_textAtOpening; }
    /// Puts a text in the place of the selection, as one step of undoing.
    void replaceSelection(const QString& text);
    /// The pixels that the text needs, with the caret behind its last character.
    [[nodiscard]] QSize textSize() const;
    /// Puts the first line in the middle of so many pixels from the top.
    void setFirstLineHeight(int pixels);

    /// What keys do; the result is whether the event is used up.
    bool keyDown(const QKeyEvent& event);
    [[nodiscard]] static bool isSwallowed(const QKeyEvent& event);

    /// The widget that may have the focus while the edit stays open; so may what lies in it.
    void setCompanion(QWidget* companion) { m_companion = companion; }

    /// Enter was pressed; the edit is hidden already.
    std::function<void()> committed;
    /// Escape was pressed; the edit is hidden already.
    std::function<void()> dropped;
    /// Another widget, or none, has the focus now; the edit is hidden already.
    std::function<void(Qt::FocusReason reason, QWidget* newFocus)> exited;
    /// A field is to be inserted at the caret: Shift+Enter or the popup menu.
    std::function<void()> insertField;
    /// The text changed while the edit is open: it may need another size.
    std::function<void()> changed;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void call(const std::function<void()>& handler);

    QPointer<QWidget> m_companion;
    QString m_textAtOpening;
    orv::InPlace m_place{*this};
};
