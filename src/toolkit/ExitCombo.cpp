// SPDX-License-Identifier: MIT
#include "toolkit/ExitCombo.h"

#include "toolkit/Keys.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QStringListModel>
#include <QWheelEvent>

#include <algorithm>

namespace orv {

namespace {

constexpr int listHeightPx = 100;
constexpr int leastListWidthPx = 160;
constexpr int leastListRows = 3;

}  // namespace

ExitCombo::ExitCombo(QWidget* parent) : QComboBox(parent), m_items(new QStringListModel(this)) {
    // Thousands of names are measured once.
    auto* list = new QListView(this);
    list->setUniformItemSizes(true);
    list->setTextElideMode(Qt::ElideMiddle);
    setView(list);
    setModel(m_items);
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setFocusPolicy(Qt::StrongFocus);
}

// The place in the list comes first: it brings a text of its own.
void ExitCombo::open(const QStringList& items, const QString& text) {
    m_items->setStringList(items);
    setCurrentIndex(int(items.indexOf(text)));
    setEditText(text);
    lineEdit()->selectAll();
    m_place.open();
}

void ExitCombo::showPopup() {
    const int rowHeight = std::max(1, view()->sizeHintForRow(0));
    setMaxVisibleItems(std::max(leastListRows, listHeightPx / rowHeight));
    view()->setMinimumWidth(std::max(width(), leastListWidthPx));
    QComboBox::showPopup();
}

// Its keys are its own, also where the window has shortcuts on them.
bool ExitCombo::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* pressed = static_cast<QKeyEvent*>(event);
        const bool isPlain = !(pressed->modifiers() & ~Qt::KeypadModifier);
        if (isPlain && (isEnter(pressed->key()) || pressed->key() == Qt::Key_Escape)) {
            event->accept();
            return true;
        }
    }
    return QComboBox::event(event);
}

void ExitCombo::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event->key())) {
        m_place.leave([handler = committed, text = currentText()] {
            if (handler) handler(text);
        });
    } else if (event->key() == Qt::Key_Escape) {
        m_place.leave(dropped);
    } else {
        QComboBox::keyPressEvent(event);
    }
}

// When it has lost the focus, the box looks for what was typed in its list, ignoring case.
void ExitCombo::focusOutEvent(QFocusEvent* event) {
    const QString typed = currentText();
    QComboBox::focusOutEvent(event);
    if (!m_place.isOpen()) return;
    if (currentText() != typed) setEditText(typed);
    // The list takes the focus for itself, for whatever reason.
    if (view()->isVisible() || !isExit(event->reason())) return;
    handOnFocus(*this, parentWidget(), event->reason());
    m_place.leave([handler = committed, typed] {
        if (handler) handler(typed);
    });
}

// A wheel turned to scroll what lies below must not replace what was typed.
void ExitCombo::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace orv
