// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "window/KeepQueryDialog.h"
#include "window/PasswordDialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace orvquery;

// The small dialogs that ask one thing before a database is opened.
class TestQuestions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void passwordQuestion();
    void keepQueryQuestion();
};

void TestQuestions::passwordQuestion() {
    const DatabaseAddress address =
        DatabaseAddress::fromUrl(QStringLiteral("postgresql://me@host/shop"));
    PasswordDialog first(address, QString());
    QVERIFY(first.findChild<QLabel*>(QStringLiteral("subject"))
                ->text()
                .contains(QStringLiteral("shop on host")));
    QVERIFY(first.findChild<QLabel*>(QStringLiteral("problem"))->isHidden());
    auto* password = first.findChild<QLineEdit*>(QStringLiteral("password"));
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    QTest::keyClicks(password, QStringLiteral("s3cret"));
    DatabaseAddress expected = address;
    expected.password = QStringLiteral("s3cret");
    QCOMPARE(first.address(), expected);
    PasswordDialog second(expected, QStringLiteral("Wrong."));
    QVERIFY(!second.findChild<QLabel*>(QStringLiteral("problem"))->isHidden());
    QCOMPARE(second.address().password, QString());
}

void TestQuestions::keepQueryQuestion() {
    KeepQueryDialog dialog(QStringLiteral("shop.db"));
    const auto press = [&](const char* name) {
        dialog.findChild<QPushButton*>(QLatin1String(name))->click();
        return dialog.result();
    };
    QCOMPARE(press("empty"), int(KeepQueryDialog::Empty));
    QCOMPARE(press("keep"), int(KeepQueryDialog::Keep));
    dialog.reject();
    QCOMPARE(dialog.result(), int(KeepQueryDialog::Cancel));
}

QTEST_MAIN(TestQuestions)
#include "tst_app_questions.moc"
