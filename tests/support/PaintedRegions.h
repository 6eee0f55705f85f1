// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QPaintEvent>
#include <QRegion>
#include <QWidget>

#include <utility>

namespace orvtest {

/// Watches what of a widget is painted, in its coordinates. What was asked for before counts for
/// nothing.
class PaintedRegions : public QObject {
public:
    explicit PaintedRegions(QWidget* view) {
        QCoreApplication::processEvents();
        view->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) m_region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
    /// What was painted since the last call, with what is still asked for.
    [[nodiscard]] QRegion take() {
        QCoreApplication::processEvents();
        return std::exchange(m_region, QRegion());
    }

private:
    QRegion m_region;
};

}  // namespace orvtest
