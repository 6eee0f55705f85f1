// SPDX-License-Identifier: MIT
#include "window/DiagramLook.h"

#include "window/Contrast.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QEvent>
#include <QPalette>

namespace orvquery {

DiagramLook::DiagramLook(TorvQDWorkArea& diagram) : QObject(&diagram), m_diagram(diagram) {
    diagram.installEventFilter(this);
    follow();
}

bool DiagramLook::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::PaletteChange) follow();
    return QObject::eventFilter(watched, event);
}

// Black, as the control has them, wherever that can be read.
void DiagramLook::follow() {
    const QPalette palette = m_diagram.palette();
    const QColor ground = palette.color(QPalette::Window);
    const bool isReadable = contrastRatio(ground, Qt::black) >= readableContrast;
    const QColor text = palette.color(QPalette::WindowText);
    m_diagram.setLinkColor(isReadable ? QColor(Qt::black) : readableOn(ground, text));
}

}  // namespace orvquery
