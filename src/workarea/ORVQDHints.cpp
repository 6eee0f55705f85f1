// SPDX-License-Identifier: MIT
#include "workarea/ORVQDHints.h"

#include <QGuiApplication>
#include <QScreen>
#include <QToolTip>

#include <algorithm>

namespace orv {

namespace {

constexpr int mostWidthPx = 200;
constexpr int paddingPx = 3;
constexpr QPoint cursorOffset(10, 20);

}  // namespace

HintPopup::HintPopup(QWidget* parent)
    : QLabel(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassGraphicsProxyWidget) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMargin(paddingPx);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    hide();
}

void HintPopup::showAt(const QPoint& globalPoint, const QString& text) {
    setPalette(QToolTip::palette());
    setFont(QToolTip::font());
    setText(text);
    // A word longer than the limit is broken nowhere: it is cut at the window's edge.
    const QRect wrapped = fontMetrics().boundingRect(
        QRect(0, 0, mostWidthPx - 2 * (paddingPx + 1), 10000), Qt::TextWordWrap, text);
    const int frame = 2 * (paddingPx + 1);
    resize(std::min(wrapped.width() + frame + 1, mostWidthPx), wrapped.height() + frame);
    QPoint place = globalPoint + cursorOffset;
    const QScreen* screen = QGuiApplication::screenAt(globalPoint);
    if (screen) {
        const QRect room = screen->availableGeometry();
        place.setX(std::max(room.left(), std::min(place.x(), room.right() + 1 - width())));
        // Above the pointer where there is no room below it.
        if (place.y() + height() > room.bottom() + 1) place.setY(globalPoint.y() - height() - 2);
    }
    move(place);
    show();
    raise();
}

}  // namespace orv
