// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "toolkit/InPlace.h"

#include <QLineEdit>

#include <functional>

namespace orv {

/// A line edit that is placed over something to edit it in place, and knows how it is left. Enter
/// and a real loss of focus commit; Escape drops. Losing the focus to a popup or because another
/// window becomes active is no exit.
class ORV_EXPORT ExitEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit ExitEdit(QWidget* parent);

    /// Shows the edit where it lies, with the text, and takes the focus.
    void open(const QString& text);
    /// Hides the edit without an exit; its parent gets the focus when the edit has it.
    void discard() { m_place.discard(); }

    std::function<void()> committed;
    std::function<void()> dropped;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    InPlace m_place{*this};
};

}  // namespace orv
