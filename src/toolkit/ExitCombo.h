// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "toolkit/InPlace.h"

#include <QComboBox>
#include <QStringList>

#include <functional>

class QStringListModel;

namespace orv {

/// An editable combo box that is placed over something to edit it in place, and knows how it is
/// left, as ExitEdit does. Its own list is no exit either. What is typed is never altered: nothing
/// is completed, put into the list or taken from it unasked.
class ORV_EXPORT ExitCombo : public QComboBox {
    Q_OBJECT

public:
    explicit ExitCombo(QWidget* parent);

    /// Shows the box where it lies, with the list and the text, and takes the focus.
    void open(const QStringList& items, const QString& text);
    /// Hides the box without an exit; its parent gets the focus when the box has it.
    void discard() { m_place.discard(); }

    std::function<void(const QString& text)> committed;
    std::function<void()> dropped;

    void showPopup() override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QStringListModel* m_items;
    InPlace m_place{*this, [this] { hidePopup(); }};
};

}  // namespace orv
