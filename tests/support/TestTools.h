// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"
#include "toolkit/Services.h"

#include <QDialog>
#include <QRegularExpression>
#include <QStringList>
#include <QTest>

#include <exception>
#include <functional>

// What the tests of the control share. QVERIFY returns from the function that it stands in, so
// these report through their results.
namespace orvtest {

/// The text of the orv::Error that the body raises; a text that no error has when it raises none.
template <typename Body>
QString errorOf(Body&& body) {
    try {
        body();
    } catch (const orv::Error& error) {
        return error.Message();
    }
    return QStringLiteral("(no error)");
}

/// The same of whatever the body raises, in the words of which the error handler is told.
template <typename Body>
QString anyErrorOf(Body&& body) {
    try {
        body();
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return QStringLiteral("Unknown error");
    }
    return QStringLiteral("(no error)");
}

/// For the init() of a test class: a warning of Qt that no test asked for fails the test. What the
/// offscreen platform says about itself whenever a window has a minimum size is none.
inline void failOnAnyWarning() {
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
}

/// Answers message boxes and dialogs and takes errors for as long as it lives, so that no test can
/// block.
class RecordedServices {
public:
    RecordedServices() {
        m_oldService = orv::setMessageService([this](const orv::MessageRequest& request) {
            messages << request.text;
            return request.buttons == orv::MessageButtons::Ok ? orv::MessageAnswer::Ok : answer;
        });
        m_oldRunner = orv::setDialogRunner([this](QDialog& dialog) {
            dialogs << dialog.windowTitle();
            return onDialog ? onDialog(dialog) : int(QDialog::Rejected);
        });
        m_oldHandler = orv::setErrorHandler([this](const QString& text) { errors << text; });
    }
    ~RecordedServices() {
        orv::setMessageService(m_oldService);
        orv::setDialogRunner(m_oldRunner);
        orv::setErrorHandler(m_oldHandler);
    }
    RecordedServices(const RecordedServices&) = delete;
    RecordedServices& operator=(const RecordedServices&) = delete;

    QStringList messages;
    QStringList errors;
    orv::MessageAnswer answer = orv::MessageAnswer::Yes;
    QStringList dialogs;         // their titles
    orv::DialogRunner onDialog;  // the user at a dialog; without one it is cancelled

private:
    orv::MessageService m_oldService;
    orv::DialogRunner m_oldRunner;
    orv::ErrorHandler m_oldHandler;
};

}  // namespace orvtest
