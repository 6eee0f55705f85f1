// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOperators.h"
#include "criteria/ORVQDConditionMeaning.h"

#include <QTest>

// Conditions that say the same have the same meaning, and others have not.
class ConditionMeaningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameMeaning_data() {
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("other");
        QTest::newRow("blanks and letters") << "a = 1 and b=2"
                                            << "A=1  AND  B = 2";
        QTest::newRow("brackets around one condition") << "a = 1"
                                                       << "((A = 1))";
        QTest::newRow("brackets of the same connective") << "a = 1 and b = 2 and c = 3"
                                                         << "a = 1 and (b = 2 and c = 3)";
        QTest::newRow("AND binds tighter") << "a = 1 or b = 2 and c = 3"
                                           << "a = 1 or (b = 2 and c = 3)";
        QTest::newRow("not not") << "not not a = 1"
                                 << "a = 1";
        QTest::newRow("not around not") << "a = 1 and not (not b = 2)"
                                        << "a = 1 and b = 2";
        QTest::newRow("three nots") << "not (not (not (a = 1)))"
                                    << "not a = 1";
        QTest::newRow("unequal") << "a != 1"
                                 << "a <> 1";
        QTest::newRow("sign behind an operator") << "a>-1"
                                                 << "a > - 1";
        QTest::newRow("unequal and a sign") << "a!=-1"
                                            << "a <> -1";
        QTest::newRow("between") << "a between 1 and 2 or b = 3"
                                 << "(A BETWEEN 1 AND 2) or b = 3";
    }
    void sameMeaning() {
        QFETCH(QString, one);
        QFETCH(QString, other);
        QCOMPARE(meaningOf(one), meaningOf(other));
    }

    void otherMeaning_data() {
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("other");
        QTest::newRow("another bracket") << "a = 1 or b = 2 and c = 3"
                                         << "(a = 1 or b = 2) and c = 3";
        QTest::newRow("a not that is lost") << "not a = 1"
                                            << "a = 1";
        QTest::newRow("two nots that are lost") << "not a = 1 and not b = 2"
                                                << "a = 1 and b = 2";
        QTest::newRow("a not of both") << "not (a = 1 and b = 2)"
                                       << "not a = 1 and not b = 2";
        QTest::newRow("another connective") << "a = 1 and b = 2"
                                            << "a = 1 or b = 2";
        QTest::newRow("letters in quotes") << "a = 'x'"
                                           << "a = 'X'";
        QTest::newRow("blanks in quotes") << "a = 'x y'"
                                          << "a = 'xy'";
        QTest::newRow("a lost condition") << "a = 1 and b = 2"
                                          << "a = 1";
        QTest::newRow("sides that change") << "a < b"
                                           << "b < a";
    }
    void otherMeaning() {
        QFETCH(QString, one);
        QFETCH(QString, other);
        QVERIFY(meaningOf(one) != meaningOf(other));
    }

private:
    static QString meaningOf(const QString& text) {
        TOperatorList operators;
        orv::fillOperators(operators);
        const orv::SqlTokens tokens = orv::tokenise(text);
        const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
        return orv::meaningOf(orv::readConditions(run, {&operators, nullptr, false}));
    }
};

QTEST_MAIN(ConditionMeaningTest)
#include "tst_conditionmeaning.moc"
