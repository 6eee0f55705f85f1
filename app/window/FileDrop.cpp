// SPDX-License-Identifier: MIT
#include "window/FileDrop.h"

#include "core/Error.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

namespace orvquery {

FileDrop::FileDrop(QWidget* widget) : QObject(widget) {
    widget->setAcceptDrops(true);
    watch(widget);
}

void FileDrop::watch(QWidget* inside) {
    inside->installEventFilter(this);
}

QString FileDrop::singleFile(const QList<QUrl>& urls) {
    if (urls.size() != 1) {
        throw orv::Error(QCoreApplication::translate(
            "orvquery", "Only one database can be open: drop one file alone."));
    }
    if (!urls.front().isLocalFile()) {
        throw orv::Error(QCoreApplication::translate(
            "orvquery", "Only files of this computer can be opened by dropping them."));
    }
    return urls.front().toLocalFile();
}

bool FileDrop::eventFilter(QObject* watched, QEvent* event) {
    const bool isDrag = event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove;
    if (!isDrag && event->type() != QEvent::Drop) return QObject::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event);
    const bool isFromOutside = drop->source() == nullptr && drop->mimeData()->hasUrls();
    if (!isFromOutside) return QObject::eventFilter(watched, event);
    // The program that gives them must not take them away.
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (!isDrag) {
        // A question would keep that program waiting.
        QMetaObject::invokeMethod(
            this, [this, urls = drop->mimeData()->urls()] { Q_EMIT dropped(urls); },
            Qt::QueuedConnection);
    }
    return true;
}

}  // namespace orvquery
