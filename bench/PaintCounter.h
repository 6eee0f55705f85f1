// SPDX-License-Identifier: MIT
#pragma once

#include <QPaintEvent>
#include <QWidget>

namespace bench {

/// Counts what a widget paints.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        ++paints;
        for (const QRect& rect : static_cast<QPaintEvent*>(event)->region()) {
            pixels += double(rect.width()) * rect.height();
        }
        return false;
    }

    double paints = 0;
    double pixels = 0;
};

}  // namespace bench
