// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

#include <exception>
#include <functional>

class QDialog;
class QDrag;
class QWidget;

namespace orv {

/// The picture of a message.
enum class MessageIcon { None, Information, Exclamation, Question, Error };
/// The buttons of a message: one, or a question's two.
enum class MessageButtons { Ok, YesNo };
/// The button that closed a message.
enum class MessageAnswer { Ok, Yes, No };

/// One modal message to the user. Texts are plain: "<" in a table name is no markup.
struct MessageRequest {
    QWidget* parent = nullptr;                    ///< the widget over which it appears; borrowed
    QString text;                                 ///< what is told, or asked
    QString caption;                              ///< the title of the box
    MessageIcon icon = MessageIcon::None;         ///< its picture
    MessageButtons buttons = MessageButtons::Ok;  ///< its buttons
};

/// Shows a message and returns the answer.
using MessageService = std::function<MessageAnswer(const MessageRequest&)>;

/// Shows the message through the present service and returns the answer. Closing a Yes/No box
/// answers No. The service may run an event loop: the caller checks what it holds afterwards.
ORV_EXPORT MessageAnswer showMessage(const MessageRequest& request);

/// Replaces the service (tests and command lines record or answer messages); an empty function
/// brings the message boxes back. Returns the service that was there.
ORV_EXPORT MessageService setMessageService(MessageService service);

/// Shows a dialog and returns QDialog::Accepted or QDialog::Rejected.
using DialogRunner = std::function<int(QDialog& dialog)>;

/// Shows the dialog modally through the present runner and returns its result. The runner may run
/// an event loop, in which the dialog and what it is about may die: the caller checks what it
/// holds afterwards.
ORV_EXPORT int runDialog(QDialog& dialog);

/// Replaces the runner (tests answer dialogs without an event loop); an empty function brings
/// QDialog::exec() back. Returns the runner that was there.
ORV_EXPORT DialogRunner setDialogRunner(DialogRunner runner);

/// Runs a drag until it is dropped or given up, and returns what was done with it.
using DragRunner = std::function<Qt::DropAction(QDrag& drag)>;

/// Runs a drag that only copies through the present runner. An event loop runs meanwhile: the
/// caller checks what it holds afterwards.
ORV_EXPORT Qt::DropAction runDrag(QDrag& drag);

/// Replaces the runner (without a display there are no drags, and a test must not wait for a hand);
/// an empty function brings QDrag::exec() back. Returns the runner that was there.
ORV_EXPORT DragRunner setDragRunner(DragRunner runner);

/// What becomes of an error raised in a user's action; the default does, where this raises, too.
using ErrorHandler = std::function<void(const QString& text)>;

/// Replaces the handler; an empty function brings back the default, a message box with the text and
/// the application's name, shown once the event is over. Returns the handler that was there.
ORV_EXPORT ErrorHandler setErrorHandler(ErrorHandler handler);

/// Hands the text to the present handler.
ORV_EXPORT void reportError(const QString& text);

/// Runs an event handler's or slot's body; an exception never leaves it, its text goes to the error
/// handler. State stays as the raising code left it.
template <typename Body>
void guarded(Body&& body) {
    try {
        body();
    } catch (const std::exception& error) {
        reportError(QString::fromUtf8(error.what()));
    } catch (...) {
        reportError(QStringLiteral("Unknown error"));
    }
}

}  // namespace orv
