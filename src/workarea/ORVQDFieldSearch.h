// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "diagram/ORVQDFloatTable.h"

#include <QLineEdit>
#include <QPointer>

#include <functional>

/// The edit below a box in which a field is searched by typing. It lies on the diagram's view and
/// is hidden until it is opened; Enter, Escape and the loss of the focus hide it again.
class ORV_EXPORT TEditEx : public QLineEdit {
    Q_OBJECT

public:
    explicit TEditEx(QWidget* parent);

    /// Searches the rows of the box for the text and for what is typed from now on.
    void open(TorvQDTable* table, const QString& text);
    /// Hides the edit; the parent gets the focus when the edit has it.
    void close();
    [[nodiscard]] TorvQDTable* table() const { return m_table; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void _FindFieldChange();
    void _FindFieldKillFocus();
    void find(int& key);

    QPointer<TorvQDTable> m_table;
};
