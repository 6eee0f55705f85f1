// SPDX-License-Identifier: MIT
// What the work area does after a while: rows and the view scroll under a resting drag, hints come
// and go.
#include "toolkit/Services.h"
#include "workarea/ORVQDFieldDrag.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDGestures.h"
#include "workarea/ORVQDHints.h"

#include <QTimerEvent>

#include <algorithm>

namespace {

constexpr int rowsMs = 200;
constexpr int edgeMs = 50;
constexpr int hintMs = 500;
constexpr int hintEndMs = 2000;
constexpr int edgeBandPx = 12;
constexpr int edgeStepPx = 20;

int intervalOf(int timer) {
    switch (timer) {
    case TorvQDWorkArea::edgeTimer: return edgeMs;
    case TorvQDWorkArea::hintTimer: return hintMs;
    case TorvQDWorkArea::hintEndTimer: return hintEndMs;
    default: return rowsMs;
    }
}

}  // namespace

// --- timers ---

void TorvQDWorkArea::startTimerNumber(int number) {
    m_timers[number].start(intervalOf(number), this);
}

void TorvQDWorkArea::stopTimer(int number) {
    m_timers.erase(number);
}

bool TorvQDWorkArea::isTimerActive(int number) const {
    return m_timers.count(number) > 0;
}

void TorvQDWorkArea::timerEvent(QTimerEvent* event) {
    const auto found = std::find_if(m_timers.begin(), m_timers.end(), [&](const auto& timer) {
        return timer.second.timerId() == event->timerId();
    });
    if (found == m_timers.end()) return QAbstractScrollArea::timerEvent(event);
    const int number = found->first;
    orv::guarded([&] { timerFired(number); });
}

void TorvQDWorkArea::timerFired(int number) {
    switch (number) {
    case rowsUpTimer:
    case rowsDownTimer: m_fieldDrag->scrollRows(number); break;
    case edgeTimer: scrollAtEdge(); break;
    case hintTimer: showHint(); break;
    case hintEndTimer: hideHint(); break;
    default: break;
    }
}

// While something is dragged near the edge of the view, the view follows.
void TorvQDWorkArea::watchEdge(const QPoint& viewPoint) {
    const QSize size = viewSize();
    const bool isInside = viewPoint.x() >= edgeBandPx && viewPoint.y() >= edgeBandPx &&
                          viewPoint.x() < size.width() - edgeBandPx &&
                          viewPoint.y() < size.height() - edgeBandPx;
    if (isInside) {
        stopTimer(edgeTimer);
    } else if (!isTimerActive(edgeTimer)) {
        startTimerNumber(edgeTimer);
    }
}

void TorvQDWorkArea::scrollAtEdge() {
    // What was held may have gone meanwhile.
    if (!m_gestures->movesThings() && !m_fieldDrag->isOver()) return stopTimer(edgeTimer);
    const QSize size = viewSize();
    const auto step = [](int place, int end) {
        return place < edgeBandPx ? -edgeStepPx : place >= end - edgeBandPx ? edgeStepPx : 0;
    };
    scrollBy(step(m_mouse.x(), size.width()), step(m_mouse.y(), size.height()));
}

// --- hints ---

void TorvQDWorkArea::hideHint() {
    stopTimer(hintTimer);
    stopTimer(hintEndTimer);
    m_hint->hide();
}

void TorvQDWorkArea::showHint() {
    stopTimer(hintTimer);
    if (!m_hot || m_mouse != m_hintPoint) return;
    QString text = m_hot->GetHint();
    if (text.isEmpty()) return;
    const auto* table = qobject_cast<TorvQDTable*>(m_hot.data());
    if (table && m_hotHit == htTClient) {
        // Names of types have doubled ampersands; in the name of a field each one counts.
        const qsizetype type = text.lastIndexOf(QStringLiteral(" ("));
        text = text.left(type) + text.mid(type).replace(QStringLiteral("&&"), QStringLiteral("&"));
    }
    if (table && m_hotHit == htTCaption) {
        const TRect room = table->GetCaptionRect();
        if (boldTextWidth(table->GetCaption()) > room.width()) text += u'\n' + table->GetCaption();
    }
    m_hint->showAt(viewport()->mapToGlobal(toViewport(m_mouse)), text);
    startTimerNumber(hintEndTimer);
}
