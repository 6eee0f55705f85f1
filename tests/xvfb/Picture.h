// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QPixmap>
#include <QScreen>

namespace orvtest {

/// A picture of the screen, or of a part of it, in the folder that the variable names, for the eye.
inline void takePicture(const QString& name, const QRect& part = {}) {
    const QString folder = qEnvironmentVariable("ORV_PICTURES");
    if (folder.isEmpty()) return;
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0);
    const qreal ratio = screen.devicePixelRatio();
    const QRect pixels = QRectF(part.topLeft() * ratio, part.size() * ratio).toRect();
    (part.isNull() ? screen : screen.copy(pixels)).save(folder + u'/' + name + ".png");
}

}  // namespace orvtest
