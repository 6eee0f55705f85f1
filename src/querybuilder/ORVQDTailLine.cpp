// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDTailLine.h"

#include "core/Text.h"
#include "toolkit/InPlace.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QAction>
#include <QBoxLayout>
#include <QEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

namespace orv {

namespace {

// With all buttons of the panel, clear of each other.
constexpr int leastPanelHeightPx = 100;
constexpr int leastPanelWidthPx = 262;
constexpr int leastEditWidthPx = 120;
constexpr int marginPx = 2;
constexpr int labelHeightPx = 20;  // that of the label of the list beside it
constexpr int panelStretch = 3;

QString hint() {
    return QStringLiteral("What follows the last clause of the statement");
}

}  // namespace

/// While nothing has been typed Enter and Escape belong to the window.
class TailLine::Edit : public QLineEdit {
public:
    explicit Edit(TailLine* line) : QLineEdit(line), m_line(line) {}

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ShortcutOverride && isOwn(*static_cast<QKeyEvent*>(event))) {
            event->accept();
            return true;
        }
        return QLineEdit::event(event);
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (!isOwn(*event)) {
            QLineEdit::keyPressEvent(event);
            return;
        }
        event->accept();
        if (event->key() == Qt::Key_Escape) {
            m_line->showText(m_line->m_text);
        } else {
            guarded([this] { m_line->commit(); });
        }
    }

    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        const Qt::FocusReason reason = event->reason();
        if (!isExit(reason)) return;
        guarded([this] { m_line->commit(); });
    }

private:
    [[nodiscard]] bool isOwn(const QKeyEvent& event) const {
        const int key = event.key();
        const bool isPlain = !(event.modifiers() & ~Qt::KeypadModifier);
        const bool ends = isEnter(key) || key == Qt::Key_Escape;
        return m_line->m_edited && isPlain && ends;
    }

    TailLine* m_line;
};

TailLine::TailLine(QWidget* sheet) : QWidget(sheet) {
    m_label = new QLabel(QStringLiteral("Behind the statement"), this);
    m_edit = new Edit(this);
    m_label->setBuddy(m_edit);
    m_label->setToolTip(hint());
    m_edit->setAccessibleName(m_label->text());
    m_edit->setPlaceholderText(QStringLiteral("LIMIT 10, UNION SELECT ..."));
    // A field that is dragged past would be typed into it.
    m_edit->setAcceptDrops(false);
    m_mark = m_edit->addAction(style()->standardIcon(QStyle::SP_MessageBoxWarning),
                               QLineEdit::TrailingPosition);
    connect(m_edit, &QLineEdit::textEdited, this, [this] { m_edited = true; });
    m_layout = new QBoxLayout(QBoxLayout::LeftToRight, this);
    m_layout->setSpacing(marginPx);
    m_layout->addWidget(m_label);
    m_layout->addWidget(m_edit, 1);
    m_layout->addStretch(0);
    showProblems({});
    auto* around = qobject_cast<QBoxLayout*>(sheet->layout());
    around->setSpacing(0);
    around->setStretch(0, panelStretch);
    around->addWidget(this, 1);
    sheet->installEventFilter(this);
    arrange();
}

void TailLine::showText(const QString& text) {
    m_text = text;
    m_edited = false;
    if (m_edit->text() == text) return;
    m_edit->setText(text);
    m_edit->setCursorPosition(0);
}

void TailLine::commit() {
    if (m_edit->hasFocus()) QGuiApplication::inputMethod()->commit();
    if (!m_edited) return;
    const QString text = orvTrim(m_edit->text());
    if (text == orvTrim(m_text)) {
        showText(m_text);
        return;
    }
    showText(text);
    if (const std::function<void(const QString&)> handler = committed) handler(text);
}

void TailLine::showProblems(const QStringList& problems) {
    const QString text = problems.join(u'\n');
    m_mark->setVisible(!problems.isEmpty());
    m_mark->setToolTip(text);
    m_edit->setToolTip(problems.isEmpty() ? hint() : text);
    m_edit->setAccessibleDescription(m_edit->toolTip());
}

// A program that changes the page hides it without asking.
void TailLine::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) guarded([this] { commit(); });
}

// --- where it lies ---

bool TailLine::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) arrange();
    return QWidget::eventFilter(watched, event);
}

void TailLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_edit) arrange();
}

void TailLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitLabel();
}

// A low sheet has no height to spare for a line of its own; one that is narrow too has no place.
void TailLine::arrange() {
    const QSize sheet = parentWidget()->size();
    auto* around = qobject_cast<QBoxLayout*>(parentWidget()->layout());
    const int ownHeight = m_edit->sizeHint().height() + 2 * marginPx;
    const bool below = sheet.height() >= leastPanelHeightPx + ownHeight;
    const bool isPlaced = below || sheet.width() >= leastPanelWidthPx + leastEditWidthPx;
    if (isPlaced == isHidden()) setVisible(isPlaced);
    const auto direction = below ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    m_layout->setDirection(below ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_layout->setContentsMargins(below ? QMargins(0, marginPx, 0, marginPx)
                                       : QMargins(marginPx, 0, 0, 0));
    m_layout->setStretchFactor(m_edit, below ? 1 : 0);
    m_layout->setStretch(2, below ? 0 : 1);
    m_label->setMinimumHeight(below ? 0 : labelHeightPx);
    // It must not keep the control from becoming narrow.
    setSizePolicy(QSizePolicy::Ignored, below ? QSizePolicy::Maximum : QSizePolicy::Ignored);
    fitLabel();
    if (around->direction() == direction) return;
    around->setDirection(direction);
    around->activate();
}

void TailLine::fitLabel() {
    const bool inOneRow = m_layout->direction() == QBoxLayout::LeftToRight;
    m_label->setVisible(!inOneRow || width() >= m_label->sizeHint().width() + leastEditWidthPx);
}

}  // namespace orv
