// SPDX-License-Identifier: MIT
#include "core/Error.h"

#include <QTest>

class TestError : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void messageIsTheTextGiven();
    void whatIsTheTextAsUtf8();
    void isARuntimeError();
};

void TestError::messageIsTheTextGiven() {
    const QString text = QStringLiteral("Could not find table: ÄÖ \u20ac");
    QCOMPARE(orv::Error(text).Message(), text);
}

void TestError::whatIsTheTextAsUtf8() {
    const QString text = QStringLiteral("Could not find table: Ä");
    QCOMPARE(QByteArray(orv::Error(text).what()), text.toUtf8());
}

void TestError::isARuntimeError() {
    const auto raise = [] { throw orv::Error(QStringLiteral("x")); };
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, raise());
}

QTEST_GUILESS_MAIN(TestError)
#include "tst_error.moc"
