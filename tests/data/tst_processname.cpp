// SPDX-License-Identifier: MIT
#include "data/ProcessName.h"

#include <QTest>

class TestProcessName : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { lReservedWords().clear(); }

    void names_data();
    void names();
    void reservedWordsAreEmptyAtStart();
    void reservedWordsAreQuoted();
    void reservedWordsAreComparedExactly();
    void aSecondTimeChangesNothing();
};

void TestProcessName::names_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("processed");
    const auto same = [](const char* tag, const char* name) {
        QTest::newRow(tag) << QString::fromUtf8(name) << QString::fromUtf8(name);
    };
    const auto quoted = [](const char* tag, const char* name, const char* processed) {
        QTest::newRow(tag) << QString::fromUtf8(name) << QString::fromUtf8(processed);
    };
    same("upper-case letters", "AZ");
    same("digits", "X09");
    same("digit first", "1X");
    same("dollar and underscore", "$A_B$");
    quoted("lower-case letters", "emp", "\"emp\"");
    quoted("one lower-case letter", "EMp", "\"EMp\"");
    quoted("blank", "MY TABLE", "\"MY TABLE\"");
    quoted("full stop", "S.T", "\"S.T\"");
    quoted("hyphen", "A-B", "\"A-B\"");
    quoted("at sign before A", "@A", "\"@A\"");
    quoted("bracket behind Z", "A[", "\"A[\"");
    quoted("slash before 0", "A/", "\"A/\"");
    quoted("colon behind 9", "A:", "\"A:\"");
    quoted("other upper-case letter", "\xc3\x84", "\"\xc3\x84\"");
    same("in double quotes", "\"my table\"");
    same("in apostrophes", "'my table'");
    same("quotes inside a quoted name", "\"S\".\"T\"");
    same("empty name in quotes", "\"\"");
    quoted("quote inside", "A\"B", "\"A\"\"B\"");
    quoted("quote at the start only", "\"A", "\"\"\"A\"");
    quoted("different quotes", "\"A'", "\"\"\"A'\"");
    quoted("two quotes inside", "a\"b\"c", "\"a\"\"b\"\"c\"");
    quoted("apostrophe inside", "A'B", "\"A'B\"");
}

void TestProcessName::names() {
    QFETCH(QString, name);
    QFETCH(QString, processed);
    QCOMPARE(ProcessName(name), processed);
}

void TestProcessName::reservedWordsAreEmptyAtStart() {
    QVERIFY(lReservedWords().isEmpty());
    QCOMPARE(ProcessName(QStringLiteral("SELECT")), QStringLiteral("SELECT"));
}

void TestProcessName::reservedWordsAreQuoted() {
    lReservedWords() << QStringLiteral("ORDER");
    QCOMPARE(ProcessName(QStringLiteral("ORDER")), QStringLiteral("\"ORDER\""));
    QCOMPARE(ProcessName(QStringLiteral("ORDERS")), QStringLiteral("ORDERS"));
}

void TestProcessName::reservedWordsAreComparedExactly() {
    lReservedWords() << QStringLiteral("order");
    QCOMPARE(ProcessName(QStringLiteral("ORDER")), QStringLiteral("ORDER"));
}

void TestProcessName::aSecondTimeChangesNothing() {
    lReservedWords() << QStringLiteral("ORDER");
    for (const char* name : {"emp", "A\"B", "ORDER", "S.T"}) {
        const QString once = ProcessName(QString::fromLatin1(name));
        QCOMPARE(ProcessName(once), once);
    }
}

QTEST_GUILESS_MAIN(TestProcessName)
#include "tst_processname.moc"
