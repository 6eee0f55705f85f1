// SPDX-License-Identifier: MIT
#include "support/TestTools.h"
#include "toolkit/Services.h"

#include <QAbstractButton>
#include <QDialog>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>

#include <stdexcept>

using orv::MessageAnswer;
using orv::MessageButtons;
using orv::MessageIcon;

class ServicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() {
        orv::setMessageService({});
        orv::setDialogRunner({});
        orv::setErrorHandler({});
    }

    void serviceGetsTheRequestAndAnswers() {
        orv::MessageRequest seen;
        orv::setMessageService([&](const orv::MessageRequest& request) {
            seen = request;
            return MessageAnswer::No;
        });
        QWidget parent;
        const MessageAnswer answer = orv::showMessage(
            {&parent, "text", "caption", MessageIcon::Question, MessageButtons::YesNo});
        QCOMPARE(answer, MessageAnswer::No);
        QCOMPARE(seen.parent, &parent);
        QCOMPARE(seen.text, "text");
        QCOMPARE(seen.caption, "caption");
        QCOMPARE(seen.icon, MessageIcon::Question);
        QCOMPARE(seen.buttons, MessageButtons::YesNo);
    }

    void settingAServiceReturnsTheOldOne() {
        int first = 0;
        QVERIFY(!orv::setMessageService([&](const orv::MessageRequest&) {
            ++first;
            return MessageAnswer::Ok;
        }));
        const orv::MessageService old =
            orv::setMessageService([](const orv::MessageRequest&) { return MessageAnswer::Ok; });
        old({});
        QCOMPARE(first, 1);
    }

    void serviceMayReplaceItselfWhileItRuns() {
        QStringList called;
        orv::setMessageService([&called](const orv::MessageRequest&) {
            QStringList& list = called;  // the captures must outlive the replacement
            orv::setMessageService([&list](const orv::MessageRequest&) {
                list << "second";
                return MessageAnswer::Ok;
            });
            list << "first";
            return MessageAnswer::Ok;
        });
        orv::showMessage({});
        orv::showMessage({});
        QCOMPARE(called, QStringList({"first", "second"}));
    }

    void messageBoxShowsPlainText() {
        QString text;
        Qt::TextFormat format = Qt::AutoText;
        QString caption;
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return;
            text = box->text();
            format = box->textFormat();
            caption = box->windowTitle();
            box->reject();
        });
        const MessageAnswer answer = orv::showMessage(
            {nullptr, "<b>T</b>", "Error!", MessageIcon::Exclamation, MessageButtons::Ok});
        QCOMPARE(answer, MessageAnswer::Ok);
        QCOMPARE(text, "<b>T</b>");
        QCOMPARE(format, Qt::PlainText);
        QCOMPARE(caption, "Error!");
    }

    void closingAQuestionAnswersNo() {
        QTimer::singleShot(0, this, [] {
            if (QWidget* box = QApplication::activeModalWidget()) box->close();
        });
        QCOMPARE(orv::showMessage({nullptr, "sure?", "Attention!", MessageIcon::Question,
                                   MessageButtons::YesNo}),
                 MessageAnswer::No);
    }

    void yesButtonAnswersYes() {
        QTimer::singleShot(0, this, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box) box->button(QMessageBox::Yes)->click();
        });
        QCOMPARE(orv::showMessage({nullptr, "sure?", "Attention!", MessageIcon::Question,
                                   MessageButtons::YesNo}),
                 MessageAnswer::Yes);
    }

    void runnerGetsTheDialogAndItsResultIsReturned() {
        QDialog dialog;
        QDialog* seen = nullptr;
        orv::setDialogRunner([&](QDialog& shown) {
            seen = &shown;
            return 17;
        });
        QCOMPARE(orv::runDialog(dialog), 17);
        QCOMPARE(seen, &dialog);
        QVERIFY(!dialog.isVisible());
    }

    void settingARunnerReturnsTheOldOne() {
        QVERIFY(!orv::setDialogRunner([](QDialog&) { return 3; }));
        const orv::DialogRunner old = orv::setDialogRunner({});
        QDialog dialog;
        QCOMPARE(old(dialog), 3);
    }

    void dialogRunsModallyWithoutARunner() {
        QDialog dialog;
        bool wasModal = false;
        QTimer::singleShot(0, &dialog, [&] {
            wasModal = QApplication::activeModalWidget() == &dialog;
            dialog.accept();
        });
        QCOMPARE(orv::runDialog(dialog), int(QDialog::Accepted));
        QVERIFY(wasModal);
    }

    void dialogThatDiesWhileItRunsIsRejected() {
        auto* dialog = new QDialog;
        QTimer::singleShot(0, dialog, [dialog] { delete dialog; });
        QCOMPARE(orv::runDialog(*dialog), int(QDialog::Rejected));
    }

    void guardHandsAnErrorToTheHandler() {
        QStringList errors;
        orv::setErrorHandler([&](const QString& text) { errors << text; });
        orv::guarded([] { throw orv::Error(QStringLiteral("Table \u00c4 is gone")); });
        orv::guarded([] { throw std::runtime_error("of a host"); });
        QCOMPARE(errors, QStringList({QStringLiteral("Table \u00c4 is gone"), "of a host"}));
    }

    void handlerThatRaisesIsPassedOver() {
        QStringList messages;
        orv::setMessageService([&](const orv::MessageRequest& request) {
            messages << request.text;
            return MessageAnswer::Ok;
        });
        orv::setErrorHandler([](const QString&) { throw orv::Error(QStringLiteral("handler")); });
        orv::guarded([] { throw orv::Error(QStringLiteral("the first")); });
        QCOMPARE(messages, QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(messages, QStringList("the first"));
    }

    void serviceThatRaisesInTheErrorBoxEndsNothing() {
        int calls = 0;
        orv::setMessageService([&](const orv::MessageRequest&) -> MessageAnswer {
            ++calls;
            throw orv::Error(QStringLiteral("service"));
        });
        orv::reportError(QStringLiteral("text"));
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QCOMPARE(calls, 1);
    }

    void guardTakesWhatIsNoStandardException() {
        QStringList errors;
        orv::setErrorHandler([&](const QString& text) { errors << text; });
        bool escaped = false;
        try {
            orv::guarded([] { throw 5; });
        } catch (...) {
            escaped = true;
        }
        QVERIFY(!escaped);
        QCOMPARE(errors.size(), 1);
    }

    void guardWithoutAnErrorTellsNobody() {
        QStringList errors;
        orv::setErrorHandler([&](const QString& text) { errors << text; });
        bool ran = false;
        orv::guarded([&] { ran = true; });
        QVERIFY(ran);
        QVERIFY(errors.isEmpty());
    }

    void settingAHandlerReturnsTheOldOne() {
        int first = 0;
        orv::setErrorHandler([&](const QString&) { ++first; });
        const orv::ErrorHandler old = orv::setErrorHandler({});
        old("x");
        QCOMPARE(first, 1);
    }

    // Inside a focus or drop event a modal box would run in the middle of the event.
    void defaultHandlerShowsTheBoxOnceTheEventIsOver() {
        QStringList texts;
        QString caption;
        orv::setMessageService([&](const orv::MessageRequest& request) {
            texts << request.text;
            caption = request.caption;
            return MessageAnswer::Ok;
        });
        orv::reportError("it failed");
        QVERIFY(texts.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(texts, QStringList("it failed"));
        QCOMPARE(caption, QCoreApplication::applicationName());
    }
};

QTEST_MAIN(ServicesTest)
#include "tst_services.moc"
