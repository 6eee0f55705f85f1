// SPDX-License-Identifier: MIT
#include "data/SqlText.h"
#include "parameters/ParameterText.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

using namespace orvquery;

// What a person types for a parameter, in several countries.
class TestParameterText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void values_data();
    void values();
    void noTextIsText();
    void problems_data();
    void problems();
    void textComesBack_data();
    void textComesBack();
};

void TestParameterText::values_data() {
    QTest::addColumn<TFieldType>("type");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");
    const auto row = [](TFieldType type, const char* locale, const char* text,
                        const QVariant& expected) {
        const QByteArray name =
            orv::fieldTypeIdentifier(type).toLatin1() + ' ' + locale + ' ' + text;
        QTest::newRow(name) << type << QString::fromLatin1(locale) << QString::fromUtf8(text)
                            << expected;
    };
    row(ftInteger, "C", "42", 42LL);
    row(ftInteger, "C", " -2147483648 ", -2147483648LL);
    row(ftInteger, "de", "+7", 7LL);
    row(ftSmallint, "C", "32767", 32767LL);
    row(ftWord, "C", "65535", 65535LL);
    row(ftLargeint, "C", "-9223372036854775808", std::numeric_limits<qlonglong>::min());
    for (const char* locale : {"C", "en_US", "de_DE", "fr_FR"}) {
        row(ftFloat, locale, "1.5", 1.5);
        row(ftFloat, locale, "1,5", 1.5);
        row(ftCurrency, locale, "-0,25", -0.25);
        row(ftBCD, locale, "1e3", 1000.0);
        row(ftFloat, locale, ",5", 0.5);
        row(ftFloat, locale, "7.", 7.0);
        row(ftFloat, locale, "12", 12LL);
    }
    row(ftFloat, "de_DE", "1,234", 1.234);
    row(ftFloat, "en_US", "1.234", 1.234);
    // Double precision would lose its last digits.
    row(ftFloat, "de_DE", "12345678901234,5678", QStringLiteral("12345678901234.5678"));
    row(ftDate, "C", "2024-12-31", QDate(2024, 12, 31));
    row(ftDate, "de_DE", "31.12.2024", QDate(2024, 12, 31));
    row(ftDate, "en_US", "12/31/2024", QDate(2024, 12, 31));
    row(ftDate, "en_US", "2024-02-29", QDate(2024, 2, 29));
    row(ftTime, "C", "18:30", QTime(18, 30));
    row(ftTime, "C", "18:30:15", QTime(18, 30, 15));
    row(ftTime, "de_DE", "18:30:15.250", QTime(18, 30, 15, 250));
    row(ftDateTime, "C", "2024-12-31 18:30", QDateTime(QDate(2024, 12, 31), QTime(18, 30)));
    row(ftDateTime, "C", "2024-12-31T18:30:15", QDateTime(QDate(2024, 12, 31), QTime(18, 30, 15)));
    row(ftDateTime, "de_DE", "31.12.2024 18:30", QDateTime(QDate(2024, 12, 31), QTime(18, 30)));
    row(ftDateTime, "C", "2024-12-31", QDateTime(QDate(2024, 12, 31), QTime(0, 0)));
    row(ftBoolean, "C", "true", QStringLiteral("true"));
    row(ftBoolean, "C", " Yes", QStringLiteral("true"));
    row(ftBoolean, "C", "0", QStringLiteral("false"));
    row(ftString, "C", "", QString(""));
    row(ftString, "C", " it's ", QStringLiteral(" it's "));
    row(ftMemo, "C", "1,5", QStringLiteral("1,5"));
    row(ftUnknown, "C", "5", 5LL);
    row(ftUnknown, "C", "-0.5", -0.5);
    row(ftUnknown, "C", "0", 0LL);
    for (const char* text : {"", "007", "1e5", "+1", "1.", " 5", "1,5", "x", "12-3", "NULL"}) {
        row(ftUnknown, "C", text, QString::fromLatin1(text));
    }
}

void TestParameterText::values() {
    QFETCH(TFieldType, type);
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    const ParameterReading reading = readParameter(text, type, QLocale(locale));
    QCOMPARE(reading.problem, QString());
    QCOMPARE(reading.value.metaType(), expected.metaType());
    QCOMPARE(reading.value, expected);
    QVERIFY(!reading.value.isNull());
}

// A database would take a null text for NULL.
void TestParameterText::noTextIsText() {
    for (const TFieldType type : {ftString, ftUnknown, ftMemo}) {
        const QVariant value = readParameter(QString(), type).value;
        QCOMPARE(value.metaType(), QMetaType::fromType<QString>());
        QVERIFY(!value.toString().isNull());
    }
}

void TestParameterText::problems_data() {
    QTest::addColumn<TFieldType>("type");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](TFieldType type, const char* locale, const char* text,
                        const char* expected) {
        const QByteArray name =
            orv::fieldTypeIdentifier(type).toLatin1() + ' ' + locale + ' ' + text;
        QTest::newRow(name) << type << QString::fromLatin1(locale) << QString::fromUtf8(text)
                            << QString::fromUtf8(expected);
    };
    for (const char* text : {"", "x", "1.5", "1,5", "1 000", "0x10", "99999999999999999999"}) {
        row(ftInteger, "C", text, "A whole number is expected, such as 42.");
    }
    row(ftInteger, "C", "2147483648", "A whole number from -2147483648 to 2147483647 is expected.");
    row(ftSmallint, "C", "32768", "A whole number from -32768 to 32767 is expected.");
    row(ftWord, "C", "-1", "A whole number from 0 to 65535 is expected.");
    for (const char* text : {"", "x", "1.5.2", "1,5,2", "1.5,2", "--1", ".", "e5", "inf", "nan"}) {
        row(ftFloat, "C", text, "A number is expected, such as 12.5.");
    }
    row(ftFloat, "de_DE", "x", "A number is expected, such as 12,5.");
    row(ftFloat, "en_US", "1,234",
        "Is this 1234 or 1.234? Please write it without a separator of thousands.");
    row(ftFloat, "de_DE", "-1.234",
        "Is this -1234 or -1,234? Please write it without a separator of thousands.");
    for (const char* text : {"", "x", "2024-13-01", "2023-02-29", "31.12.24", "today"}) {
        row(ftDate, "de_DE", text, "A date is expected, such as 2024-12-31.");
    }
    row(ftTime, "C", "25:00", "A time is expected, such as 18:30 or 18:30:15.");
    row(ftDateTime, "C", "2024-12-31 25:00",
        "A date and a time are expected, such as 2024-12-31 18:30.");
    row(ftBoolean, "C", "maybe", "true or false is expected.");
}

void TestParameterText::problems() {
    QFETCH(TFieldType, type);
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const ParameterReading reading = readParameter(text, type, QLocale(locale));
    QCOMPARE(reading.problem, expected);
    QVERIFY(!reading.value.isValid());
}

void TestParameterText::textComesBack_data() {
    QTest::addColumn<TFieldType>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](TFieldType type, const QVariant& value, const char* text) {
        QTest::newRow(text) << type << value << QString::fromUtf8(text);
    };
    row(ftInteger, 5LL, "5");
    row(ftFloat, 0.1, "0.1");
    row(ftFloat, -1e300, "-1e+300");
    row(ftDate, QDate(2024, 1, 2), "2024-01-02");
    row(ftTime, QTime(3, 4, 5), "03:04:05");
    row(ftTime, QTime(3, 4, 5, 60), "03:04:05.060");
    row(ftDateTime, QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)), "2024-01-02 03:04:05");
    row(ftDateTime, QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5, 60)), "2024-01-02 03:04:05.060");
    row(ftString, QStringLiteral("it's"), "it's");
    row(ftBoolean, QStringLiteral("true"), "true");
}

void TestParameterText::textComesBack() {
    QFETCH(TFieldType, type);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QCOMPARE(parameterText(value), text);
    QCOMPARE(readParameter(text, type, QLocale::c()).value, value);
}

QTEST_GUILESS_MAIN(TestParameterText)
#include "tst_app_parametertext.moc"
