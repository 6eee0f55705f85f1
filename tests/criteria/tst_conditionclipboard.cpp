// SPDX-License-Identifier: MIT
// Conditions as text on the clipboard.
#include "criteria/ChosenConditions.h"
#include "criteria/ORVQDConditionClipboard.h"
#include "criteria/ORVQDConditionMeaning.h"
#include "criteria/ORVQDWherePanel.h"
#include "criteria/RowTools.h"
#include "data/ProcessName.h"
#include "parser/ORVQDExpressions.h"
#include "support/BuilderTools.h"
#include "support/RandomState.h"
#include "support/Sanitizers.h"

#include <QClipboard>
#include <QGuiApplication>

#include <random>

using orvtest::clipboard;
using orvtest::Criteria;
using orvtest::HostedBuilder;
using orvtest::RandomState;
using orvtest::RecordedServices;
using orvtest::StateSetting;

namespace {

constexpr unsigned seeds = orvtest::fewerIfSanitized(60, 4);

QString meaning(const TorvQDWherePanel& panel) {
    const QString text = panel.rootRow()->GetSQLCondition(false);
    const orv::SqlTokens tokens = orv::tokenise(text);
    const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    return orv::meaningOf(orv::readConditions(run, panel.readingRules(true)));
}

}  // namespace

class ConditionClipboardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() { lReservedWords().clear(); }

    // --- copying

    void conditionIsCopiedWithoutItsBrackets_data() {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* condition, const char* text) {
            QTest::newRow(condition) << QString(condition) << QString(text);
        };
        row("t.a = 5", "T.A = 5");
        row("t.a in (1, 2)", "T.A IN (1, 2)");
        row("t.a between 1 and 2", "T.A BETWEEN 1 and 2");
        row("t.a is null", "T.A IS NULL ");
        row("(t.a + 1) * 2 > 5", "(T.A + 1) * 2 > 5");
        row("exists (select a from u)", "EXISTS (SELECT A FROM U)");
        row("t.a containing 'x'", "T.A CONTAINING 'x'");
        row("t.a = 'it''s ('", "T.A = 'it''s ('");
    }
    void conditionIsCopiedWithoutItsBrackets() {
        QFETCH(QString, condition);
        QFETCH(QString, text);
        const Criteria on(condition);
        QCOMPARE(on.copied("1."), text);
        QCOMPARE(on.changes, 0);
        const Criteria other;
        other.paste(text);
        QCOMPARE(other.rows(), on.rows());
    }

    // Without brackets these would say something else, or nothing.
    void textThatBreaksOutKeepsItsBrackets_data() {
        QTest::addColumn<QString>("field");
        QTest::newRow("or") << "A OR B";
        QTest::newRow("comment") << "A -- because";
        QTest::newRow("bracket") << "A) OR (B";
        QTest::newRow("semicolon") << "A ;";
    }
    void textThatBreaksOutKeepsItsBrackets() {
        QFETCH(QString, field);
        const Criteria on("t.a = 1");
        on.row("1.")->FieldName = field;
        on.row("1.")->setOperator(orv::expressionOperator());
        QCOMPARE(on.copied("1."), u'(' + field + u')');
    }

    void groupIsCopiedOverSeveralLines() {
        const Criteria on("t.a = 1 and (t.b = 2 or not (t.c = 3 and t.d = 4))");
        QCOMPARE(on.rows(), "All(T.A =[1]; Any(T.B =[2]; None(T.C =[3]; T.D =[4])))");
        QCOMPARE(
            on.copied("2.").split("\r\n"),
            QStringList({"   (", "      (T.B = 2)", "   or ", "      not(", "         (T.C = 3)",
                         "      and ", "         (T.D = 4)", "      )", "   )"}));
        QCOMPARE(on.copied("2.2.").split("\r\n"),
                 QStringList({"   not(", "      (T.C = 3)", "   and ", "      (T.D = 4)", "   )"}));
    }

    void lineBreakInATextIsCopied() {
        const Criteria on("t.a = 1 and t.b = 2");
        on.row("1.")->Arguments[0] = "'x\r\n   y'";
        const Criteria other;
        other.paste(on.copied("1."));
        QCOMPARE(other.row("1.")->Arguments[0], "'x\r\n   y'");
        other.paste(on.copied(""));
        QCOMPARE(other.row("2.1.")->Arguments[0], "'x\r\n   y'");
    }

    void groupWithoutConditionsIsNotCopied() {
        const Criteria on("t.a = 1");
        on.row("")->SubRows->AddRow()->SetGroupOper("Any");
        on.choose("2.");
        clipboard().setText("kept");
        QCOMPARE(orvtest::errorOf([&] { on.panel().CopyCondition(); }),
                 "There is no condition to copy.");
        QCOMPARE(clipboard().text(), "kept");
    }

    void withoutACurrentElementNothingIsCopied() {
        const Criteria on("t.a = 1");
        on.panel().setCurrentElement(nullptr);
        const QString refusal = "There are no active button";
        QCOMPARE(orvtest::errorOf([&] { on.panel().CopyCondition(); }), refusal);
        QCOMPARE(orvtest::errorOf([&] { on.panel().CutCondition(); }), refusal);
        QCOMPARE(orvtest::errorOf([&] { on.panel().PasteCondition(); }), refusal);
        QCOMPARE(orvtest::errorOf([&] { on.panel().DuplicateCondition(); }), refusal);
        QCOMPARE(orvtest::errorOf([&] { on.panel().MoveCondition(1); }), refusal);
    }

    // --- pasting

    void textBecomesRows_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("at");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("after");
        const auto row = [](const char* before, const char* at, const char* text,
                            const char* after) {
            QTest::addRow("%s at %s into %s", qPrintable(QString(text).simplified()), at, before)
                << QString(before) << QString(at) << QString(text) << QString(after);
        };
        // Into the group, or behind the condition.
        row("a = 1 and b = 2", "", "c = 3", "All(A =[1]; B =[2]; C =[3])");
        row("a = 1 and b = 2", "1.", "c = 3", "All(A =[1]; C =[3]; B =[2])");
        row("a = 1 and b = 2", "2.", "c = 3", "All(A =[1]; B =[2]; C =[3])");
        row("a = 1 and (b = 2 or d = 4)", "2.", "c = 3",
            "All(A =[1]; Any(B =[2]; D =[4]; C =[3]))");
        row("a = 1 and (b = 2 or d = 4)", "2.1.", "c = 3",
            "All(A =[1]; Any(B =[2]; C =[3]; D =[4]))");
        // One by one where the group joins them so, else as a group.
        row("a = 1", "", "b = 2 and c = 3", "All(A =[1]; B =[2]; C =[3])");
        row("a = 1 and d = 4", "1.", "b = 2 and c = 3", "All(A =[1]; B =[2]; C =[3]; D =[4])");
        row("a = 1", "", "b = 2 or c = 3", "All(A =[1]; Any(B =[2]; C =[3]))");
        row("a = 1 or d = 4", "", "b = 2 or c = 3", "Any(A =[1]; D =[4]; B =[2]; C =[3])");
        row("a = 1 or d = 4", "1.", "b = 2 and c = 3", "Any(A =[1]; All(B =[2]; C =[3]); D =[4])");
        row("not (a = 1 and d = 4)", "", "b = 2 and c = 3", "None(A =[1]; D =[4]; B =[2]; C =[3])");
        row("not (a = 1 and d = 4)", "", "b = 2 or c = 3",
            "None(A =[1]; D =[4]; Any(B =[2]; C =[3]))");
        row("not (a = 1 or d = 4)", "", "b = 2 or c = 3",
            "Not all(A =[1]; D =[4]; B =[2]; C =[3])");
        row("", "", "b = 2 or c = 3", "All(Any(B =[2]; C =[3]))");
        // Brackets and NOT make a group.
        row("a = 1", "", "(b = 2 and c = 3)", "All(A =[1]; All(B =[2]; C =[3]))");
        row("a = 1", "", "((b = 2) and (c = 3))", "All(A =[1]; All(B =[2]; C =[3]))");
        row("a = 1", "", "not (b = 2 and c = 3)", "All(A =[1]; None(B =[2]; C =[3]))");
        row("a = 1", "", "not (b = 2 or c = 3)", "All(A =[1]; Not all(B =[2]; C =[3]))");
        row("a = 1", "", "not (b = 2)", "All(A =[1]; None(B =[2]))");
        row("a = 1", "", "not b = 2", "All(A =[1]; None(B =[2]))");
        row("a = 1", "", "not not (b = 2 or c = 3)", "All(A =[1]; Any(B =[2]; C =[3]))");
        row("a = 1", "", "(b = 2)", "All(A =[1]; B =[2])");
        row("a = 1", "", "(((b = 2)))", "All(A =[1]; B =[2])");
        row("", "", "(b = 2 and c = 3)", "All(B =[2]; C =[3])");
        row("", "", "(b = 2 or c = 3)", "All(Any(B =[2]; C =[3]))");
        row("", "", "not (b = 2 and c = 3)", "All(None(B =[2]; C =[3]))");
        // AND binds tighter here.
        row("a = 1", "", "b = 2 or c = 3 and d = 4",
            "All(A =[1]; Any(B =[2]; All(C =[3]; D =[4])))");
        // As other programs have it.
        row("a = 1", "", "where b = 2", "All(A =[1]; B =[2])");
        row("a = 1", "", " HAVING\tb = 2\n", "All(A =[1]; B =[2])");
        row("a = 1", "", "on b = 2;", "All(A =[1]; B =[2])");
        row("a = 1", "", "-- those\r\nWHERE b = 2 /* two */\r\n  AND c = 3 -- and three\r\n",
            "All(A =[1]; B =[2]; C =[3])");
        row("a = 1", "", "[b] = 'x' and `c` = 2", "All(A =[1]; \"b\" =['x']; \"c\" =[2])");
        row("a = 1", "", "t.b[1] = 2", "All(A =[1]; T.B[1] =[2])");
        row("a = 1", "", "b > -5", "All(A =[1]; B >[-5])");
        row("a = 1", "", "b != 5", "All(A =[1]; B <>[5])");
        row("a = 1", "", "b is distinct from c", "All(A =[1]; B IS DISTINCT FROM C)");
        row("a = 1", "", "b", "All(A =[1]; B)");
        row("a = 1", "", "f() = now()", "All(A =[1]; F() =[NOW()])");
        row("a = 1", "", "b = (select c from u where x = 1 order by 1)",
            "All(A =[1]; B =[(SELECT C FROM U WHERE X = 1 ORDER BY 1)])");
        row("a = 1", "", "limit = 5 and update = 1", "All(A =[1]; LIMIT =[5]; UPDATE =[1])");
    }
    void textBecomesRows() {
        QFETCH(QString, before);
        QFETCH(QString, at);
        QFETCH(QString, text);
        QFETCH(QString, after);
        const Criteria on(before);
        on.paste(text, at);
        QCOMPARE(on.rows(), after);
        QCOMPARE(on.changes, 1);
    }

    void withoutKeptMeaningConnectivesGoFromLeftToRight() {
        const Criteria on({}, false);
        on.paste("b = 2 or c = 3 and d = 4");
        QCOMPARE(on.rows(), "All(Any(B =[2]; C =[3]); D =[4])");
    }

    void firstNewRowIsActive() {
        const Criteria on("a = 1 and b = 2");
        on.paste("c = 3 and d = 4", "1.");
        QCOMPARE(on.activeNumber(), "2.");
        QCOMPARE(on.panel().ActiveElement()->Kind, int(ekFieldName));
        QCOMPARE(on.panel().CurrentElement(), on.panel().ActiveElement());
        on.paste("c = 3 or d = 4", "1.");
        QCOMPARE(on.panel().ActiveElement(), on.row("2.")->Controls[1].get());
    }

    void collapsedGroupOpensForWhatIsPasted() {
        const Criteria on("a = 1 and (b = 2 or c = 3)");
        on.row("2.")->SetExpanded(false);
        on.paste("d = 4", "2.");
        QVERIFY(on.row("2.")->Expanded);
        QCOMPARE(on.activeNumber(), "2.3.");
    }

    void havingTakesAggregates() {
        const Criteria on;
        TorvQDWherePanel& having = *on.builder.HavingPanel;
        having.setCurrentElement(having.ActiveElement());
        clipboard().setText("having sum(t.a) > 1 and 5 < count(*)");
        having.PasteCondition();
        QCOMPARE(orvtest::rowText(*having.rootRow()), "All(SUM:T.A >[1]; 5 <[COUNT:*])");
        const TorvQDWhereRow* row = having.rootRow()->SubRows->Row(0);
        having.setCurrentElement(row->Controls[0].get());
        having.CopyCondition();
        QCOMPARE(clipboard().text(), "SUM(T.A) > 1");
    }

    // --- what is refused

    void textThatIsNoConditionChangesNothing_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("refusal");
        const auto row = [](const char* text, const char* refusal) {
            const QString name = QString(text).simplified();
            QTest::addRow("'%s'", qPrintable(name)) << QString(text) << QString(refusal);
        };
        row("", "There is no condition in the text.");
        row(" \t\r\n ;", "There is no condition in the text.");
        row("where", "There is no condition in the text.");
        row("-- a = 1", "There is no condition in the text.");
        row(";", "There is no condition in the text.");
        const auto no = [&](const char* text, const char* reason) {
            QTest::newRow(text) << QString(text)
                                << QString("The text is no condition: %1.").arg(reason);
        };
        no("(a = 1", "a bracket is not closed");
        no("a = 1)", "a bracket is closed that was not opened");
        no("a = 1) or (b = 2", "a bracket is closed that was not opened");
        no("a = 'x", "a quotation mark is not closed");
        no("a = 'it's'", "a quotation mark is not closed");
        no("\"a = 1", "a quotation mark is not closed");
        no("`a = 1", "a quotation mark is not closed");
        no("a = ` and b = c.````c\"x``", "a quotation mark is not closed");
        no("select a from t where b = 1", "it is a statement");
        no("(select a from t)", "it is a statement");
        no("update t set a = 1", "it is a statement");
        no("a = 1; drop table t", "\"; DROP TABLE T\" stands behind it");
        no("a = 1 order by b", "\"ORDER BY B\" stands behind it");
        no("where a = 1 group by b having c = 2", "\"GROUP BY B HAVING C = 2\" stands behind it");
        no("a = 1 limit 10", "\"LIMIT 10\" stands behind it");
        no("a = 1 union select 2", "\"UNION SELECT 2\" stands behind it");
        no("(a = 1 order by b)", "\"ORDER BY B\" stands behind it");
        no("a = 1, b = 2", "\", B = 2\" stands behind it");
        no("a between 1 and 2, 3 and b = 1", "\", 3\" stands behind it");
        no("a = 1 from t", "\"FROM T\" stands behind it");
        no("delete from t where a = 1", "it is a statement");
        no("a = 1 and", "a condition is missing behind \"AND\"");
        no("and a = 1", "a condition is missing in front of \"AND\"");
        no("a = 1 and or b = 2", "a condition is missing behind \"AND\"");
        no("a = 1 and and b = 2", "a condition is missing in front of \"AND\"");
        no("a = 1 and (b = 2 or)", "a condition is missing behind \"OR\"");
        no("not", "a condition is missing behind \"NOT\"");
        no("a = 1 and not", "a condition is missing behind \"NOT\"");
        no("()", "\"()\" is none");
        no("a =", "\"A =\" is not filled in");
        no("= 5", "\"= 5\" is not filled in");
        no("=", "\"=\" is not filled in");
        no("a = 1 and (b >)", "\"B >\" is not filled in");
        no("like 'x'", "\"LIKE 'x'\" is not filled in");
        no("not like 'x'", "\"LIKE 'x'\" is not filled in");
        no("is null", "\"IS NULL\" is not filled in");
        no("a in ()", "\"A IN ()\" is not filled in");
        no("a between 1 and", "\"A BETWEEN 1 AND\" is not filled in");
        no("a between and 5", "\"A BETWEEN AND 5\" is not filled in");
        no("'London'", "\"'London'\" is none");
        no("5", "\"5\" is none");
        no("Dear Sir", "\"DEAR SIR\" is none");
        no("Dear Sir >= -3", "\"DEAR SIR >= -3\" is none");
        no("Dear Sir >=-3", "\"DEAR SIR >=-3\" is none");
        no("Dear Sir != 3", "\"DEAR SIR != 3\" is none");
        no("Dear Sir !=-3", "\"DEAR SIR !=-3\" is none");
        no("a != 1, b = 2", "\", B = 2\" stands behind it");
        no("London, Paris", "\"LONDON, PARIS\" is none");
        no("(a = 1) (b = 2)", "\"(A = 1) (B = 2)\" is none");
    }
    void textThatIsNoConditionChangesNothing() {
        QFETCH(QString, text);
        QFETCH(QString, refusal);
        const Criteria on("t.a = 1 and (t.b = 2 or t.c = 3)");
        const QByteArray before = orvtest::visibleState(const_cast<Criteria&>(on).builder);
        const TorvQDControl* active = on.row("2.1.")->Controls[1].get();
        QCOMPARE(orvtest::errorOf([&] { on.paste(text, "2.1."); }), refusal);
        QCOMPARE(orvtest::visibleState(const_cast<Criteria&>(on).builder), before);
        QCOMPARE(on.panel().ActiveElement(), active);
        QCOMPARE(on.changes, 0);
    }

    void deepestNestingIsPastedAndNoDeeper() {
        // OR and AND in turn: below the root each level is a group.
        const auto nested = [](int groups) {
            return QString("(A = 1 AND ").repeated(groups) + "B = 2" +
                   QString(")").repeated(groups);
        };
        constexpr int groups = orv::deepestCondition;
        const QString refusal = orvtest::errorOf([] { orv::raiseTooDeep(); });
        const Criteria on("a = 1");
        QCOMPARE(orvtest::errorOf([&] { on.paste(nested(groups + 1)); }), refusal);
        QCOMPARE(on.rows(), "All(A =[1])");
        on.paste(nested(groups));
        QCOMPARE(on.row("")->SubRows->GetCount(), 2);
        const Criteria within("a = 1 and (b = 2 or c = 3)");
        QCOMPARE(orvtest::errorOf([&] { within.paste(nested(groups), "2."); }), refusal);
        QCOMPARE(within.rows(), "All(A =[1]; Any(B =[2]; C =[3]))");
        within.paste(nested(groups - 1), "2.");
        QCOMPARE(within.row("2.")->SubRows->GetCount(), 3);
    }

    // --- there and back

    void copiedConditionsComeBack_data() {
        QTest::addColumn<bool>("keep");
        QTest::addColumn<bool>("own");
        for (const bool keep : {false, true}) {
            for (const bool own : {false, true}) {
                QTest::addRow("%s, %s", keep ? "meaning kept" : "meaning not kept",
                              own ? "own operators" : "default operators")
                    << keep << own;
            }
        }
    }
    void copiedConditionsComeBack() {
        QFETCH(bool, keep);
        QFETCH(bool, own);
        const StateSetting setting{keep, own};
        HostedBuilder on;
        HostedBuilder other;
        orvtest::prepareForRandomStates(on, setting);
        orvtest::prepareForRandomStates(other, setting);
        int conditions = 0;
        for (unsigned seed = 1; seed <= seeds; ++seed) {
            RandomState(seed, setting).build(on);
            for (TorvQDWherePanel* from : {on.builder.WherePanel, on.builder.HavingPanel}) {
                if (from->rootRow()->SubRows->GetCount() == 0) continue;
                const bool isWhere = from == on.builder.WherePanel;
                TorvQDWherePanel* to =
                    isWhere ? other.builder.WherePanel : other.builder.HavingPanel;
                to->ClearContents();
                from->setCurrentElement(from->rootRow()->Controls[0].get());
                to->setCurrentElement(to->rootRow()->Controls[0].get());
                from->CopyCondition();
                const QString context = QString("seed %1: ").arg(seed) + clipboard().text();
                const QString refusal = orvtest::errorOf([&] { to->PasteCondition(); });
                QVERIFY2(refusal == "(no error)", qPrintable(refusal + u'\n' + context));
                QVERIFY2(meaning(*to) == meaning(*from), qPrintable(context));
                conditions += int(clipboard().text().count("\r\n"));
            }
        }
        QVERIFY(conditions > 4 * int(seeds));
    }

    void singleConditionsComeBackAsTheyWere_data() { copiedConditionsComeBack_data(); }
    void singleConditionsComeBackAsTheyWere() {
        QFETCH(bool, keep);
        QFETCH(bool, own);
        const StateSetting setting{keep, own};
        HostedBuilder on;
        orvtest::prepareForRandomStates(on, setting);
        int bare = 0;
        for (unsigned seed = 1; seed <= seeds; ++seed) {
            RandomState(seed, setting).build(on);
            for (TorvQDWherePanel* panel : {on.builder.WherePanel, on.builder.HavingPanel}) {
                const std::vector<TorvQDWhereRow*> rows = panel->shownRows();
                for (TorvQDWhereRow* row : rows) {
                    if (row->isGroup()) continue;
                    panel->setCurrentElement(row->Controls[0].get());
                    panel->CopyCondition();
                    const QString text = clipboard().text();
                    const QString context = QString("seed %1: ").arg(seed) + text;
                    const QString refusal = orvtest::errorOf([&] { panel->PasteCondition(); });
                    QVERIFY2(refusal == "(no error)", qPrintable(refusal + u'\n' + context));
                    const TorvQDWhereRow* copy = row->rows()->Row(row->GetIndex() + 1);
                    const QString written = row->GetSQLCondition(false);
                    QVERIFY2(orv::tokenKey(copy->GetSQLCondition(false)) == orv::tokenKey(written),
                             qPrintable(context));
                    bare += u'(' + text + u')' == written;
                    row->rows()->Delete(copy->GetIndex());
                }
            }
        }
        QVERIFY(bare > int(seeds));
    }

    // What is left out is told; nothing else takes its place.
    void unfilledConditionsAreNotPasted_data() { copiedConditionsComeBack_data(); }
    void unfilledConditionsAreNotPasted() {
        QFETCH(bool, keep);
        QFETCH(bool, own);
        const StateSetting setting{keep, own};
        HostedBuilder on;
        orvtest::prepareForRandomStates(on, setting);
        int refused = 0;
        std::mt19937 random(7);
        for (unsigned seed = 1; seed <= seeds; ++seed) {
            RandomState(seed, setting).build(on);
            for (TorvQDWherePanel* panel : {on.builder.WherePanel, on.builder.HavingPanel}) {
                const std::vector<TorvQDWhereRow*> rows = panel->shownRows();
                for (TorvQDWhereRow* row : rows) {
                    if (row->isGroup() || row->isExpression()) continue;
                    const int side = int(random() % unsigned(1 + row->Arguments.size()));
                    *row->textOf(side == 0 ? ekFieldName : ekArgument + side - 1) =
                        orv::blankText();
                    panel->setCurrentElement(row->Controls[0].get());
                    panel->CopyCondition();
                    const QString context = QString("seed %1: ").arg(seed) + clipboard().text();
                    QCOMPARE(orv::orvTrim(row->GetSQLCondition(false)), clipboard().text());
                    const int count = row->rows()->GetCount();
                    const QString refusal = orvtest::errorOf([&] { panel->PasteCondition(); });
                    QVERIFY2(refusal.startsWith("The text is"), qPrintable(refusal + context));
                    QCOMPARE(row->rows()->GetCount(), count);
                    ++refused;
                }
            }
        }
        QVERIFY(refused > int(seeds));
    }

    void emptyGroupInsideIsNotPasted() {
        const Criteria on("t.a = 1");
        on.row("")->SubRows->AddRow()->SetGroupOper("Any");
        const QString text = on.copied("");
        QVERIFY(text.contains("(T.A = 1)"));
        QCOMPARE(orvtest::errorOf([&] { on.paste(text); }),
                 "The text is no condition: a condition is missing behind \"AND\".");
    }

    void manyConditionsArePasted() {
        const Criteria on;
        constexpr int count = orvtest::fewerIfSanitized(5'000, 5);
        on.paste(QStringList(count, "t.a = 1").join(" and "));
        QCOMPARE(on.row("")->SubRows->GetCount(), count);
        on.paste(on.copied(""), "1.");
        QCOMPARE(on.row("2.")->SubRows->GetCount(), count);
    }

    // --- cutting

    void cuttingCopiesAndDeletesAfterTheQuestion() {
        RecordedServices services;
        const Criteria on("t.a = 1 and t.b = 2");
        on.choose("1.");
        clipboard().setText("kept");
        services.answer = orv::MessageAnswer::No;
        on.panel().CutCondition();
        QCOMPARE(services.messages.size(), 1);
        QCOMPARE(on.rows(), "All(T.A =[1]; T.B =[2])");
        QCOMPARE(clipboard().text(), "kept");
        QCOMPARE(on.changes, 0);
        services.answer = orv::MessageAnswer::Yes;
        on.panel().CutCondition();
        QCOMPARE(on.rows(), "All(T.B =[2])");
        QCOMPARE(clipboard().text(), "T.A = 1");
        QCOMPARE(on.changes, 1);
    }

    void rootRowIsNotCut() {
        RecordedServices services;
        const Criteria on("t.a = 1");
        on.choose("");
        clipboard().setText("kept");
        QCOMPARE(orvtest::errorOf([&] { on.panel().CutCondition(); }),
                 "Could not delete first row");
        QCOMPARE(clipboard().text(), "kept");
        QCOMPARE(services.messages, QStringList());
    }
};

QTEST_MAIN(ConditionClipboardTest)
#include "tst_conditionclipboard.moc"
