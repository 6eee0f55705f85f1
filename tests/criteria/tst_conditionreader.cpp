// SPDX-License-Identifier: MIT
// What the text of a condition becomes: rows, groups, and their text again.
#include "core/Error.h"
#include "criteria/ReadConditions.h"
#include "parser/ORVQDExpressions.h"
#include "support/Sanitizers.h"
#include "support/TestTools.h"

#include <QElapsedTimer>
#include <QTest>

using Conditions = orvtest::ReadConditions;

namespace {

TorvQDOperator plain(const char* name) {
    TorvQDOperator entry;
    entry.Name = QString::fromLatin1(name);
    entry.Caption = entry.Name;
    return entry;
}

}  // namespace

class ConditionReaderTest : public QObject {
    Q_OBJECT

    static void addTexts() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("rows");
    }
    static void row(const char* text, const char* rows) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(rows);
    }
    // Reading what was written changes nothing any more, and nothing was lost.
    static void compare(Conditions& on) {
        QFETCH(QString, text);
        QFETCH(QString, rows);
        QCOMPARE(on.read(text), rows);
        const QString written = on.written();
        QCOMPARE(characters(written), characters(text));
        // A group that holds one group only is that group when it comes back.
        const bool isSingle = rows.startsWith("All(None(") && !rows.contains(';');
        QCOMPARE(on.read(written), isSingle ? rows.mid(4).chopped(1) : rows);
        if (!isSingle) QCOMPARE(on.written(), written);
    }
    // What is written apart from brackets and blanks, in order.
    static QString characters(const QString& text) {
        QString result = orv::upperOutsideQuotes(text);
        for (const char* silent : {" ", "(", ")"}) result.remove(silent);
        return result.replace("!=", "<>");
    }

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void structureAloneHasTheSameElements() {
        Conditions conditions;
        const QString text = "A = 1 and not (B = 2 or C between 3 and 4)";
        const orv::SqlTokens tokens = orv::tokenise(text);
        const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
        orv::ConditionRules rules{&conditions.operators};
        const auto taken = orv::readConditions(run, rules);
        rules.structureOnly = true;
        const auto elements = orv::readConditions(run, rules);
        QCOMPARE(elements.size(), std::size_t(4));
        QCOMPARE(elements[0].run.sourceText(), "A = 1");
        QVERIFY(taken[0].condition.operation);
        QVERIFY(!elements[0].condition.operation);
        QCOMPARE(elements[3].kind, orv::ConditionElement::Bracket);
        QCOMPARE(elements[3].children.size(), std::size_t(3));
        QCOMPARE(elements[3].children[2].run.sourceText(), "C BETWEEN 3 AND 4");
        QCOMPARE(orv::meaningOf(elements), orv::meaningOf(taken));
    }

    // --- single conditions

    void conditions_data() {
        addTexts();
        row("X > -5", "All(X >[-5])");
        row("X>-5", "All(X >[-5])");
        row("x<>-y", "All(X <>[-Y])");
        row("A=+5", "All(A =[+5])");
        row("A + 1 > 5", "All(A + 1 >[5])");
        row("-A = 5", "All(-A =[5])");
        row("(A + B) * 2 > 5 AND C = 1", "All((A + B) * 2 >[5]; C =[1])");
        row("LOWER(A) = 'x'", "All(LOWER(A) =['x'])");
        row("'x' = LOWER(A)", "All('x' =[LOWER(A)])");
        row("UPPER(A) = 'x'", "All(UPPER(A) =['x'])");
        row("LEFT(C, 1) = 'x' AND B = 1", "All(LEFT(C, 1) =['x']; B =[1])");
        row("X BETWEEN -1 AND B + 5 AND Y = 2", "All(X BETWEEN[-1][B + 5]; Y =[2])");
        row("X NOT BETWEEN 1 AND 2 OR Y = 2", "Any(X NOT BETWEEN[1][2]; Y =[2])");
        row("A LIKE 'x%' ESCAPE '!'", "All(A LIKE['x%' ESCAPE '!'])");
        row("A NOT LIKE 'X'", "All(A NOT LIKE['X'])");
        row("X IN (1, 2)", "All(X IN[1, 2])");
        row("X IN (1,2)", "All(X IN[1, 2])");
        row("X IN ((1,2), (3,4))", "All(X IN[(1, 2), (3, 4)])");
        row("X IN (A+1,2)", "All(X IN[A+1,2])");
        row("X IN (1)", "All(X IN[1])");
        row("X IN ('a)', 'b(')", "All(X IN['a)', 'b('])");
        row("X IN ('it''s, not (', 'and')", "All(X IN['it''s, not (', 'and'])");
        row("X NOT IN (SELECT Y FROM Z WHERE W = 1)", "All(X NOT IN[SELECT Y FROM Z WHERE W = 1])");
        row("X IN (SELECT Y, V FROM Z)", "All(X IN[SELECT Y, V FROM Z])");
        row("A = ALL (SELECT B FROM C)", "All(A =[ALL (SELECT B FROM C)])");
        row("A = (SELECT MAX(B) FROM C WHERE D = 1 AND E = 2)",
            "All(A =[(SELECT MAX(B) FROM C WHERE D = 1 AND E = 2)])");
        row("A = B = C", "All(A =[B = C])");
        row("D > DATE '1995-01-01' + INTERVAL '1' DAY",
            "All(D >[DATE '1995-01-01' + INTERVAL '1' DAY])");
        row("A IS NULL", "All(A IS NULL[])");
        row("A is  not null", "All(A IS NOT NULL[])");
        row("A IS NOT NULL AND B IS NULL", "All(A IS NOT NULL[]; B IS NULL[])");
        row("A != 5", "All(A <>[5])");
        row("A!=-5", "All(A <>[-5])");
        row("A <= 5 OR B >= 6", "Any(A <=[5]; B >=[6])");
        row("(A, B) = (1, 2)", "All((A, B) =[(1, 2)])");
        row("(A,B) IN (SELECT C, D FROM E)", "All((A, B) IN[SELECT C, D FROM E])");
        row("A = CASE WHEN B = 1 AND C = 2 THEN 3 ELSE 4 END AND D = 5",
            "All(A =[CASE WHEN B = 1 AND C = 2 THEN 3 ELSE 4 END]; D =[5])");
        row("CASE WHEN A BETWEEN 1 AND 2 OR B = 3 THEN 1 ELSE 0 END = 1 AND C = 2",
            "All(CASE WHEN A BETWEEN 1 AND 2 OR B = 3 THEN 1 ELSE 0 END =[1]; C =[2])");
        row("A BETWEEN CASE WHEN B = 1 AND C = 2 THEN 1 END AND 9",
            "All(A BETWEEN[CASE WHEN B = 1 AND C = 2 THEN 1 END][9])");
        row("A BETWEEN 1 AND B BETWEEN 2 AND 3 AND C = 1",
            "All(A BETWEEN[1][B BETWEEN 2 AND 3]; C =[1])");
        row("A = 'x and y' AND B = 'or'", "All(A =['x and y']; B =['or'])");
        row("\"AND\" = \"or\"", "All(\"AND\" =[\"or\"])");
        row("T.\"my field\" = 'it''s'", "All(T.\"my field\" =['it''s'])");
        row("A || B = 'x'", "All(A || B =['x'])");
        row("A = B || 'x' AND C << 2 = 4", "All(A =[B || 'x']; C << 2 =[4])");
        row("A = - -5", "All(A =[- -5])");
        row("A >- -5", "All(A >[- -5])");
        row("A = :param and b = ?", "All(A =[:param]; B =[?])");
        row("A>:p", "All(A >[:p])");
        row("A::INT = 5", "All(A::INT =[5])");
        row("EXTRACT(YEAR FROM D) = 1995", "All(EXTRACT(YEAR FROM D) =[1995])");
        row("COUNT(*) > 5", "All(COUNT(*) >[5])");
        row("(A = 1) = (B = 2)", "All((A = 1) =[(B = 2)])");
        row("(A) = 5", "All((A) =[5])");
    }
    void conditions() {
        Conditions on;
        compare(on);
    }

    // Each condition is written in a bracket, within which it has to be read as it was.
    void textsThatAreNoConditions_data() {
        addTexts();
        row("A = 1, B = 2", "All(A =[1, B = 2])");
        row("(A = 1, B = 2)", "All(A =[1, B = 2])");
        row("((A, B)) AND C = 1", "All(A, B; C =[1])");
        row("A = SELECT B", "All((A = SELECT B))");
        row("(A = SELECT B AND C = 1)", "All((A = SELECT B AND C = 1))");
        row("SELECT 5 OR B = 1", "Any((SELECT 5); B =[1])");
        row("((SELECT 5)) OR B = 1", "Any((SELECT 5); B =[1])");
    }
    void textsThatAreNoConditions() {
        Conditions on;
        compare(on);
    }

    // Conditions that no operator of the list fits are kept word for word.
    void expressions_data() {
        addTexts();
        row("EXISTS (SELECT B FROM C WHERE D = 1 AND E = 2)",
            "All(EXISTS (SELECT B FROM C WHERE D = 1 AND E = 2))");
        row("NOT EXISTS (SELECT B FROM C WHERE C.X = A.X) AND D = 1",
            "All(None(EXISTS (SELECT B FROM C WHERE C.X = A.X)); D =[1])");
        row("A CONTAINING 'x'", "All(A CONTAINING 'x')");
        row("active and B = 1", "All(ACTIVE; B =[1])");
        row("(A OR B) IS TRUE", "All((A OR B) IS TRUE)");
        row("(A OR B) IS NOT TRUE AND C = 1", "All((A OR B) IS NOT TRUE; C =[1])");
        row("A IS TRUE", "All(A IS TRUE)");
        row("A IS NOT UNKNOWN", "All(A IS NOT UNKNOWN)");
        row("A IN X", "All(A IN X)");
        row("A IN (1) || (2)", "All(A IN (1) || (2))");
        row("A IN (1) = TRUE", "All(A IN (1) = TRUE)");
        row("A BETWEEN 1", "All(A BETWEEN 1)");
        row("A IS NULL = TRUE", "All(A IS NULL = TRUE)");
        row("A =", "All(A =)");
        row("= 5", "All(= 5)");
        row("A >-", "All(A >-)");
        row("A <=> B", "All(A <=> B)");
        row("A ~ 'x'", "All(A ~ 'x')");
        row("A NOT SIMILAR TO 'x'", "All(A NOT SIMILAR TO 'x')");
        row("A @> B", "All(A @> B)");
        row("A <@ B", "All(A <@ B)");
        row("A #> B", "All(A #> B)");
        row("A #>> B", "All(A #>> B)");
        row("(SELECT 1) AND B = 1", "All((SELECT 1); B =[1])");
        row("(SELECT A FROM B WHERE C = 1 AND D = 2)",
            "All((SELECT A FROM B WHERE C = 1 AND D = 2))");
        row("(WITH Q AS (SELECT 1) SELECT A FROM Q WHERE C = 1 AND D = 2)",
            "All((WITH Q AS (SELECT 1) SELECT A FROM Q WHERE C = 1 AND D = 2))");
        row("A = 1 XOR B = 2 AND C = 3", "All(A = 1 XOR B = 2 AND C = 3)");
        row("A IS DISTINCT FROM B OR C = 1", "Any(A IS DISTINCT FROM B; C =[1])");
    }
    void expressions() {
        Conditions on;
        compare(on);
    }

    void expressionWritesItsTextInBrackets() {
        Conditions on;
        on.read("exists (select 'a' from c)");
        QCOMPARE(on.root->GetSQLCondition(false), " ((EXISTS (SELECT 'a' FROM C)))");
    }

    // --- functions of their own cells

    void functions_data() {
        addTexts();
        row("SUM(T.A) > 10", "All(SUM:T.A >[10])");
        row("sum( T.A ) > 10", "All(SUM:T.A >[10])");
        row("SUM(A) > AVG(B)", "All(SUM:A >[AVG:B])");
        row("COUNT(*) > 5", "All(COUNT:* >[5])");
        row("5 < COUNT(*)", "All(5 <[COUNT:*])");
        row("COUNT(DISTINCT A) > 1", "All(COUNT:DISTINCT A >[1])");
        row("SUM(A*B) > 1", "All(SUM:A*B >[1])");
        row("SUM(A) + 1 > 5", "All(SUM(A) + 1 >[5])");
        row("MAX(A) BETWEEN MIN(B) AND 9", "All(MAX:A BETWEEN[MIN(B)][9])");
        row("COUNT(*) IN (1, 2)", "All(COUNT:* IN[1, 2])");
        row("NOT COUNT(*) > 5", "All(None(COUNT:* >[5]))");
        row("LOWER(A) = MAX(B)", "All(LOWER(A) =[MAX:B])");
        row("SUM(A) OVER (PARTITION BY B) > 1", "All(SUM(A) OVER (PARTITION BY B) >[1])");
        row("COUNT(*) FILTER (WHERE A = 1 AND B = 2) > 5",
            "All(COUNT(*) FILTER (WHERE A = 1 AND B = 2) >[5])");
        row("SUM() > 1", "All(SUM() >[1])");
        row("\"SUM\"(A) > 1", "All(\"SUM\"(A) >[1])");
        row("A > -SUM(B)", "All(A >[-SUM(B)])");
    }
    void functions() {
        Conditions on;
        orv::fillAggregates(on.functions);
        compare(on);
    }

    void callsStayTextWithoutFunctions() {
        Conditions on;
        QCOMPARE(on.read("SUM(A) > 10"), "All(SUM(A) >[10])");
        QCOMPARE(on.root->SubRows->Row(0)->FieldFunc, QString(9, u' '));
    }

    // --- operators of a host

    void hostOperators_data() {
        addTexts();
        row("A ~* 'x'", "All(A ~*['x'])");
        row("A ~*-5", "All(A ~*[-5])");
        row("A ~ B", "All(A ~ B)");
        row("A [=] 5", "All(A [=][5])");
        row("A[=]-5", "All(A [=][-5])");
        row("A IS SIMILAR TO 'x' AND B = 1", "All(A IS SIMILAR TO['x']; B =[1])");
        row("A WITHIN [ 1 TO 2 TO B + 3 ]", "All(A WITHIN[1][2][B + 3])");
        row("A WITHIN [ 1 TO 2 ]", "All(A WITHIN [ 1 TO 2 ])");
        row("A WITHIN 1 TO 2 TO 3", "All(A WITHIN 1 TO 2 TO 3)");
        row("(A NEAR 1 , 2) AND B = 1", "All(A NEAR[1][2]; B =[1])");
        row("(A NEAR 1, F(2, 3))", "All(A NEAR[1][F(2, 3)])");
        row("(A NEAR 1, 2, 3) AND B = 1", "All(A NEAR[1][2, 3]; B =[1])");
        row("A NEAR 1, 2, 3 AND B = 1", "All(A NEAR[1][2, 3]; B =[1])");
        row("A EITHER 1 or 2 OR B = 1", "Any(A EITHER[1][2]; B =[1])");
        row("A AMONG (1 and 2 and 3) and B = 1", "All(A AMONG[1][2][3]; B =[1])");
        row("A IS EMPTY", "All(A IS[])");
        row("A IS FULL", "All(A IS FULL)");
        row("A HAS F( B )", "All(A HAS[B])");
        row("A HAS F( B ) || ( C )", "All(A HAS F( B ) || ( C ))");
        row("A STARTS 'abc%'", "All(A STARTS[abc])");
        row("A STARTS 'it''s, (and) so%'", "All(A STARTS[it''s, (and) so])");
        row("A STARTS B", "All(A STARTS B)");
        row("A STARTS '%'", "All(A STARTS '%')");
        row("A ISNULL", "All(A ISNULL[])");
        row("A ISNULL AND B = 1", "All(A ISNULL[]; B =[1])");
        row("IS EMPTY = 5", "All(IS EMPTY =[5])");
    }
    void hostOperators() {
        Conditions on;
        on.operators.Add(plain("~*"));
        on.operators.Add(plain("[=]"));
        on.operators.Add(plain("IS SIMILAR TO"));
        on.operators.Add(TorvQDOperator{"WITHIN", "within", " TO ", " ]", "[ ", 3});
        on.operators.Add(TorvQDOperator{"NEAR", "near", " , ", "", "", 2});
        on.operators.Add(TorvQDOperator{"EITHER", "either", " or ", "", "", 2});
        on.operators.Add(TorvQDOperator{"AMONG", "among", " and ", ")", "(", 3});
        on.operators.Add(TorvQDOperator{"IS", "is empty", "", "", "EMPTY", 0});
        on.operators.Add(TorvQDOperator{"HAS", "has", "", " )", "F( ", 1});
        on.operators.Add(TorvQDOperator{"STARTS", "starts", "", "%'", "'", 1});
        on.operators.Add(TorvQDOperator{"ISNULL", "isnull", "", "", "", 0});
        compare(on);
    }

    void longestNameWins() {
        Conditions on;
        on.operators.Clear();
        for (const char* name : {"IS", "IS NOT", "=", "==", "NOT IN", "IN"})
            on.operators.Add(plain(name));
        QCOMPARE(on.read("A IS NOT B"), "All(A IS NOT[B])");
        QCOMPARE(on.read("A IS B"), "All(A IS[B])");
        QCOMPARE(on.read("A == B"), "All(A ==[B])");
        QCOMPARE(on.read("A==-B"), "All(A ==[-B])");
        QCOMPARE(on.read("A NOT IN B"), "All(A NOT IN[B])");
    }

    void unequalSignIsTheOneOfTheList() {
        Conditions on;
        on.operators.Add(plain("!="));
        QCOMPARE(on.read("A != 5"), "All(A !=[5])");
        QCOMPARE(on.read("A <> 5"), "All(A <>[5])");
        on.operators.Clear();
        on.operators.Add(plain("!"));
        QCOMPARE(on.read("A != 5"), "All(A != 5)");
    }

    // Names are found as they stand in a statement, in upper case.
    void nameInUpperCaseComesFirst() {
        Conditions on;
        on.operators.Clear();
        on.operators.Add(plain("like"));
        on.operators.Add(plain("LIKE"));
        on.read("A like 'x'");
        QCOMPARE(on.root->SubRows->Row(0)->Operator, on.operators.Items(1));
    }

    void listWithoutOperatorsKeepsEveryText() {
        Conditions on;
        on.operators.Clear();
        QCOMPARE(on.read("A = 1 AND B BETWEEN 2 AND 3"), "All(A = 1; B BETWEEN 2 AND 3)");
        QCOMPARE(on.written(), "( (A = 1) and (B BETWEEN 2 AND 3) )");
    }

    // An operator with fewer operands than the first one of the list leaves none over.
    void argumentsFitTheOperatorThatWasRead() {
        Conditions on;
        on.operators.Clear();
        on.operators.Add(TorvQDOperator{"IS NULL", "IS NULL", "", "", "", 0});
        on.operators.Add(plain("="));
        QCOMPARE(on.read("A = 5"), "All(A =[5])");
    }

    // --- groups

    void leftToRight_data() {
        addTexts();
        row("A = 1 AND B = 2 OR C = 3", "Any(All(A =[1]; B =[2]); C =[3])");
        row("A = 1 OR B = 2 AND C = 3", "All(Any(A =[1]; B =[2]); C =[3])");
        row("A = 1 OR B = 2 AND C = 3 AND D = 4 OR E = 5",
            "Any(All(Any(A =[1]; B =[2]); C =[3]; D =[4]); E =[5])");
        row("A = 1 AND (B = 2 OR C = 3 AND D = 4)",
            "All(A =[1]; All(Any(B =[2]; C =[3]); D =[4]))");
        row("(A = 1 OR B = 2) AND C = 3", "All(Any(A =[1]; B =[2]); C =[3])");
        row("A = 1 AND (B = 2) AND ((C = 3))", "All(A =[1]; B =[2]; C =[3])");
        row("((A = 1 AND B = 2))", "All(A =[1]; B =[2])");
        row("(((A = 1)))", "All(A =[1])");
        row("(A = 1) OR (B = 2)", "Any(A =[1]; B =[2])");
        row("A = 1 AND (B)", "All(A =[1]; B)");
    }
    void leftToRight() {
        Conditions on;
        compare(on);
    }

    void andFirst_data() {
        addTexts();
        row("A = 1 AND B = 2 OR C = 3", "Any(All(A =[1]; B =[2]); C =[3])");
        row("A = 1 OR B = 2 AND C = 3", "Any(A =[1]; All(B =[2]; C =[3]))");
        row("A = 1 OR B = 2 AND C = 3 AND D = 4 OR E = 5",
            "Any(A =[1]; All(B =[2]; C =[3]; D =[4]); E =[5])");
        row("NOT A = 1 AND B = 2 OR C = 3", "Any(All(None(A =[1]); B =[2]); C =[3])");
        row("A = 1 AND (B = 2 OR C = 3 AND D = 4)",
            "All(A =[1]; Any(B =[2]; All(C =[3]; D =[4])))");
        row("A = 1 AND B = 2", "All(A =[1]; B =[2])");
        row("A = 1 OR B = 2", "Any(A =[1]; B =[2])");
        row("A BETWEEN 1 AND 2 OR B = 3", "Any(A BETWEEN[1][2]; B =[3])");
    }
    void andFirst() {
        Conditions on;
        on.andBindsTighter = true;
        compare(on);
    }

    void nots_data() {
        addTexts();
        row("NOT (A = 1)", "None(A =[1])");
        row("NOT (A = 1 AND B = 2)", "None(A =[1]; B =[2])");
        row("NOT (A = 1 OR B = 2)", "Not all(A =[1]; B =[2])");
        row("NOT ((A = 1))", "None(A =[1])");
        row("NOT A = 1", "All(None(A =[1]))");
        row("NOT A = 1 AND B = 2", "All(None(A =[1]); B =[2])");
        row("NOT A", "All(None(A))");
        row("A = 1 AND NOT B = 2", "All(A =[1]; None(B =[2]))");
        row("B = 2 AND NOT (A = 1)", "All(B =[2]; None(A =[1]))");
        row("(B = 2) and not((A = 1))", "All(B =[2]; None(A =[1]))");
        row("(NOT A = 1) AND C = 3", "All(None(A =[1]); C =[3])");
        row("A = 1 OR NOT (B = 2 AND C = 3)", "Any(A =[1]; None(B =[2]; C =[3]))");
        row("A = 1 OR NOT (B = 2 OR C = 3)", "Any(A =[1]; Not all(B =[2]; C =[3]))");
        row("NOT (A = 1 OR B = 2) AND C = 3", "All(None(Any(A =[1]; B =[2])); C =[3])");
        row("A NOT IN (1) AND NOT B NOT IN (2)", "All(A NOT IN[1]; None(B NOT IN[2]))");
        row("A = NOT B", "All(A =[NOT B])");
    }
    void nots() {
        Conditions on;
        compare(on);
    }

    void mergedNots_data() {
        addTexts();
        row("NOT (A = 1 AND B = 2) AND C = 3", "All(None(A =[1]; B =[2]); C =[3])");
        row("NOT (A = 1 OR B = 2) OR C = 3", "Any(Not all(A =[1]; B =[2]); C =[3])");
        row("NOT A = 1 AND C = 3", "All(None(A =[1]); C =[3])");
        row("NOT NOT A = 1 AND C = 3", "All(A =[1]; C =[3])");
        row("NOT (A = 1)", "None(A =[1])");
        row("NOT A = 1", "All(None(A =[1]))");
    }
    void mergedNots() {
        QFETCH(QString, text);
        QFETCH(QString, rows);
        Conditions on;
        on.nots = orv::Nots::Merge;
        QCOMPARE(on.read(text), rows);
    }

    void doubleNots_data() {
        addTexts();
        row("NOT NOT A = 1", "All(None(None(A =[1])))");
        row("A = 1 AND NOT NOT B = 2", "All(A =[1]; B =[2])");
        row("A = 1 AND NOT NOT NOT B = 2", "All(A =[1]; None(B =[2]))");
        row("NOT (NOT (A = 1 AND B = 2))", "All(A =[1]; B =[2])");
        row("A = 1 AND NOT (NOT (B = 2))", "All(A =[1]; B =[2])");
        row("A = 1 AND NOT (NOT (NOT (B = 2)))", "All(A =[1]; None(B =[2]))");
        row("A = 1 AND (NOT (NOT B = 2))", "All(A =[1]; B =[2])");
        row("A = 1 AND (NOT (B = 2 AND C = 3 OR D = 4))",
            "All(A =[1]; Not all(All(B =[2]; C =[3]); D =[4]))");
    }
    void doubleNots() {
        QFETCH(QString, text);
        QFETCH(QString, rows);
        Conditions on;
        QCOMPARE(on.read(text), rows);
    }

    // A row that was a group for a moment is no group to the keys.
    void rowBehindDoubleNotIsNotExpanded() {
        Conditions on;
        on.read("A = 1 AND NOT NOT B = 2 AND C = 3");
        const TorvQDWhereRow* row = on.root->SubRows->Row(1);
        QVERIFY(!row->Expanded);
        QCOMPARE(row->GetNextRow(), on.root->SubRows->Row(2));
    }

    void nothingBetweenConnectivesIsAnEmptyGroup_data() {
        addTexts();
        row("A = 1 AND OR B = 2", "Any(All(A =[1]; All()); B =[2])");
        row("AND A = 1", "All(All(); A =[1])");
        row("A = 1 OR", "Any(A =[1]; All())");
        row("NOT", "All(None(All()))");
        row("A = 1 AND (B = 2 AND) AND C = 3", "All(A =[1]; All(B =[2]; All()); C =[3])");
    }
    void nothingBetweenConnectivesIsAnEmptyGroup() {
        QFETCH(QString, text);
        QFETCH(QString, rows);
        Conditions on;
        QCOMPARE(on.read(text), rows);
    }

    void unclosedBracketIsKeptAsText() {
        Conditions on;
        QCOMPARE(on.read("((A = 1)"), "All(((A = 1))");
    }

    void andsBehindOrAreFound() {
        const auto at = [](const char* condition) {
            const QString text = QString::fromLatin1(condition);
            const orv::SqlTokens tokens = orv::tokenise(text);
            const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
            const auto level = orv::readConditions(run, {});
            QList<int> starts;
            for (const auto* found : orv::andsBehindOr(level)) starts << found->run.start();
            return starts;
        };
        QCOMPARE(at("a or b and c and d"), QList<int>{7});
        QCOMPARE(at("a or b and c or d and e"), (QList<int>{7, 18}));
        QCOMPARE(at("a and b or c"), QList<int>());
        QCOMPARE(at("a or b or c"), QList<int>());
        QCOMPARE(at("a or (b and c)"), QList<int>());
    }

    // --- depth

    // Blanks beside brackets go where they nest no deeper than that.
    void bracketsOfOperandsHaveOneFormToADepthOf20() {
        Conditions on;
        const auto nested = [](int depth, const char* inside) {
            return QString(depth, u'(') + inside + QString(depth, u')');
        };
        QCOMPARE(on.read("A = UPPER" + nested(20, " B ")),
                 "All(A =[UPPER" + nested(20, "B") + "])");
        QCOMPARE(on.read("A = UPPER" + nested(21, " B ")),
                 "All(A =[UPPER" + nested(21, " B ") + "])");
    }

    void nestingBeyondTheBoundRaises() {
        Conditions on;
        const auto nested = [](int depth) {
            QString text = "A";
            for (int level = 0; level < depth; ++level) text = "(" + text + ") OR B AND C";
            return text;
        };
        on.andBindsTighter = true;
        on.read(nested(orv::deepestCondition));
        QCOMPARE(orvtest::errorOf([&] { on.read(nested(orv::deepestCondition + 2)); }),
                 "Conditions nest deeper than 500 levels");
    }

    void redundantBracketsDoNotCount() {
        Conditions on;
        constexpr int depth = 100'000;
        QCOMPARE(on.read(QString(depth, u'(') + "A = 1" + QString(depth, u')')), "All(A =[1])");
        on.read(QString(depth, u'(') + "A" + QString(depth, u')') + " = 1");
        QCOMPARE(on.root->SubRows->Row(0)->Arguments, QStringList("1"));
    }

    void alternationsNestFromLeftToRight() {
        Conditions on;
        QString text = "A = 0";
        for (int index = 1; index <= 3000; ++index) {
            text += index % 2 ? " AND A = 1" : " OR A = 2";
        }
        on.andBindsTighter = true;
        on.read(text);
        QCOMPARE(on.groupsBelowRoot(), 1);
        QVERIFY(on.groupsAtMost >= 2999);
        const orv::SqlTokens tokens = orv::tokenise(text);
        const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
        QCOMPARE(orv::groupsBelow(orv::readConditions(run, {})), 2999);
    }

    // --- costs

    void readingIsLinear_data() {
        QTest::addColumn<QString>("text");
        QString nested = "A = 1";
        for (int depth = 0; depth < orv::deepestCondition / 2; ++depth) {
            nested = "(" + nested + " AND B = 2) OR C IN (1, 2, 3) AND D BETWEEN 1 AND 2";
        }
        QTest::newRow("nested groups") << nested;
        QString wide = "A = 1";
        const int many = orvtest::fewerIfSanitized(50'000, 10);
        for (int index = 0; index < many / 5; ++index) wide += " AND (B = 'x' OR C = 2 AND D = 3)";
        QTest::newRow("wide group") << wide;
        QTest::newRow("one long list")
            << "A IN (" + QString("'x', ").repeated(many) + "1) AND B = 1";
        QTest::newRow("one long chain") << "A" + QString(" + B").repeated(many) + " = 1";
        QTest::newRow("nested calls") << QString("F(").repeated(many * 2 / 5) + "1" +
                                             QString(")").repeated(many * 2 / 5) + " = 1";
    }
    void readingIsLinear() {
        QFETCH(QString, text);
        Conditions on;
        QElapsedTimer timer;
        timer.start();
        on.read(text);
        on.root->SubRows->Clear();
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_MAIN(ConditionReaderTest)
#include "tst_conditionreader.moc"
