// SPDX-License-Identifier: MIT
#include "toolkit/Services.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDrag>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace orv {

namespace {

QMessageBox::Icon boxIcon(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::None: return QMessageBox::NoIcon;
    case MessageIcon::Information: return QMessageBox::Information;
    case MessageIcon::Exclamation: return QMessageBox::Warning;
    case MessageIcon::Question: return QMessageBox::Question;
    case MessageIcon::Error: return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

MessageAnswer showMessageBox(const MessageRequest& request) {
    const bool asks = request.buttons == MessageButtons::YesNo;
    // Its parent may die while it is shown, and takes it along.
    const QPointer<QMessageBox> box = new QMessageBox(request.parent);
    box->setTextFormat(Qt::PlainText);
    box->setWindowTitle(request.caption);
    box->setText(request.text);
    box->setIcon(boxIcon(request.icon));
    box->setStandardButtons(asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    const int pressed = box->exec();
    delete box;
    if (!asks) return MessageAnswer::Ok;
    return pressed == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
}

// Inside a focus or drop event a modal box would run in the middle of the event: show it behind. A
// service that raises instead of showing it can be told to nobody else.
void queueErrorBox(const QString& text) {
    QTimer::singleShot(0, QCoreApplication::instance(), [text] {
        try {
            showMessage({nullptr, text, QCoreApplication::applicationName(), MessageIcon::Error,
                         MessageButtons::Ok});
        } catch (...) {
            return;
        }
    });
}

MessageService& messageService() {
    static MessageService service;
    return service;
}

DialogRunner& dialogRunner() {
    static DialogRunner runner;
    return runner;
}

DragRunner& dragRunner() {
    static DragRunner runner;
    return runner;
}

ErrorHandler& errorHandler() {
    static ErrorHandler handler;
    return handler;
}

}  // namespace

MessageAnswer showMessage(const MessageRequest& request) {
    const MessageService service = messageService();
    return service ? service(request) : showMessageBox(request);
}

MessageService setMessageService(MessageService service) {
    return std::exchange(messageService(), std::move(service));
}

int runDialog(QDialog& dialog) {
    const DialogRunner runner = dialogRunner();
    return runner ? runner(dialog) : dialog.exec();
}

DialogRunner setDialogRunner(DialogRunner runner) {
    return std::exchange(dialogRunner(), std::move(runner));
}

Qt::DropAction runDrag(QDrag& drag) {
    const DragRunner runner = dragRunner();
    return runner ? runner(drag) : drag.exec(Qt::CopyAction, Qt::CopyAction);
}

DragRunner setDragRunner(DragRunner runner) {
    return std::exchange(dragRunner(), std::move(runner));
}

ErrorHandler setErrorHandler(ErrorHandler handler) {
    return std::exchange(errorHandler(), std::move(handler));
}

void reportError(const QString& text) {
    const ErrorHandler handler = errorHandler();
    if (!handler) return queueErrorBox(text);
    // It is called where nothing may be raised any more: when it fails, the text is shown all the
    // same.
    try {
        handler(text);
    } catch (...) {
        queueErrorBox(text);
    }
}

}  // namespace orv
