// SPDX-License-Identifier: MIT
// Texts that can, and that cannot, stand as one argument of a call.
#include "parser/ORVQDArgument.h"

#include <QTest>

class ArgumentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneArgumentHasNoProblem_data() {
        QTest::addColumn<QString>("sql");
        for (const char* sql : {"5",
                                "-5",
                                "1 - -1",
                                "NULL",
                                ":X",
                                "T.A + 1",
                                " T.A ",
                                "(1)",
                                "F(1, 2)",
                                "'it''s'",
                                "'a, b); -- /*'",
                                "\"a, b\"",
                                "`a, b`",
                                "[a, b]",
                                "T.[it's]",
                                "ARRAY[1, 2]",
                                "(SELECT MAX(A) FROM T WHERE B IN (1, 2))",
                                "A\r\n+ 1",
                                "6 / 2",
                                "A => 5"}) {
            QTest::newRow(sql) << QString::fromLatin1(sql);
        }
    }
    void oneArgumentHasNoProblem() {
        QFETCH(QString, sql);
        QCOMPARE(orv::argumentProblem(sql), QString());
    }

    void otherTextsAreNoArgument_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("problem");
        const auto rows = [](const char* problem, std::initializer_list<const char*> texts) {
            for (const char* text : texts) {
                QTest::addRow("<%s>", text)
                    << QString::fromLatin1(text) << QString::fromLatin1(problem);
            }
        };
        rows("An argument must not be blank.", {"", "  ", "\t\r\n"});
        rows("An argument has no comments.", {"x -- c", "x /* c */", "/* c */ x", "x --", "x /* c",
                                              "--", "1 -- -1", "1; -- c", "1;--", "; /* c"});
        rows("A quote is not closed.", {"'", "'it's'", "\"a", "`a", "'a) ;", "(', ", "a'''"});
        rows("A semicolon ends the statement.", {"1;", "1; 2", "(1; 2)"});
        rows("The brackets do not match.",
             {"(", ")", "1) , O (", "1)", "(1", ")(", "ARRAY[1, 2", "F([1)]", "a[1, 2"});
        rows("A comma outside brackets makes more than one argument of this.",
             {"1, 2", ",", "1,", "(1), 2", "f(1), g(2)"});
    }
    void otherTextsAreNoArgument() {
        QFETCH(QString, sql);
        QFETCH(QString, problem);
        QCOMPARE(orv::argumentProblem(sql), problem);
    }
};

QTEST_APPLESS_MAIN(ArgumentTest)
#include "tst_argument.moc"
