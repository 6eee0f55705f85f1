// SPDX-License-Identifier: MIT
#include "criteria/RowTools.h"
#include "support/TestTools.h"

#include <QTest>

#include <limits>

namespace {

const QString blanks(9, u' ');

/// The catalogues of a query builder and a root row, as a panel has them.
class Tree {
public:
    Tree() : rows(&catalogues, nullptr) {
        orv::fillOperators(operators);
        orv::fillGroupOperators(groups, nullptr);
        root = rows.AddRow();
        root->SetGroupOper("All");
    }

    [[nodiscard]] TOperatorList::Entry find(const QString& name) const {
        return operators.FindName(name);
    }
    TorvQDWhereRow* group(TorvQDWhereRow* in, const QString& name) {
        TorvQDWhereRow* row = in->SubRows->AddRow();
        row->SetGroupOper(name);
        return row;
    }
    TorvQDWhereRow* condition(TorvQDWhereRow* in, const QString& field, const QString& oper,
                              const QStringList& arguments) {
        TorvQDWhereRow* row = in->SubRows->AddRow();
        row->FieldName = field;
        row->setOperator(find(oper));
        row->Arguments = arguments;
        return row;
    }

    TOperatorList operators;
    TGroupOperators groups;
    orv::ConditionContext catalogues{&operators, &groups};
    TorvQDWhereRows rows;
    TorvQDWhereRow* root;
};

QStringList shownTexts(TorvQDWhereRow& row) {
    row.refreshTexts();
    QStringList texts;
    for (const auto& control : row.Controls) texts << control->GetText();
    return texts;
}

}  // namespace

class WhereRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- a new row

    void newRowIsNotFilled() {
        Tree tree;
        const TorvQDWhereRow* row = tree.root->SubRows->AddRow();
        QCOMPARE(row->FieldFunc, blanks);
        QCOMPARE(row->FieldName, blanks);
        QCOMPARE(row->ArgFunc, blanks);
        QCOMPARE(row->GroupOper, QString());
        QCOMPARE(row->AuxText, QString());
        QCOMPARE(row->Operator, tree.operators.Items(0));
        QCOMPARE(row->Arguments, QStringList(blanks));
        QVERIFY(row->Valid);
        QVERIFY(!row->Expanded);
        QVERIFY(!row->isGroup());
        QCOMPARE(row->SubRows->GetCount(), 0);
        QCOMPARE(row->SubRows->ownerRow(), row);
        QCOMPARE(row->Controls.size(), std::size_t(6));
        for (int kind = 0; kind < 6; ++kind) {
            QCOMPARE(row->Controls[std::size_t(kind)]->Kind, kind);
            QCOMPARE(row->Controls[std::size_t(kind)]->Row, row);
        }
    }

    void unfilledRowWritesItsBlanks() {
        Tree tree;
        const TorvQDWhereRow* row = tree.root->SubRows->AddRow();
        QCOMPARE(row->GetSQLCondition(false), "(" + blanks + " = " + blanks + ")");
    }

    void newRowTakesTheFirstOperatorWhateverItNeeds() {
        Tree tree;
        tree.operators.Clear();
        TorvQDOperator between{"BETWIXT", "betwixt", " and ", "", "", 2};
        tree.operators.Add(between);
        const TorvQDWhereRow* row = tree.root->SubRows->AddRow();
        QCOMPARE(row->Arguments.size(), 2);
        QCOMPARE(row->Controls.size(), std::size_t(7));
        QCOMPARE(row->GetSQLCondition(false),
                 "(" + blanks + " BETWIXT " + blanks + " and " + blanks + ")");
    }

    void emptyCatalogueGivesAnEqualsSignWithoutCaption() {
        Tree tree;
        tree.operators.Clear();
        TorvQDWhereRow* row = tree.root->SubRows->AddRow();
        QCOMPARE(row->Operator, nullptr);
        QCOMPARE(row->Arguments, QStringList(blanks));
        QCOMPARE(row->GetSQLCondition(false), "(" + blanks + " = " + blanks + ")");
        QCOMPARE(shownTexts(*row)[3], blanks);
    }

    // --- operator and arguments

    void changingTheOperatorKeepsTheFirstArguments() {
        Tree tree;
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "BETWEEN", {"1", "9"});
        row->setOperator(tree.find("="));
        QCOMPARE(row->Arguments, QStringList("1"));
        QCOMPARE(row->Controls.size(), std::size_t(6));
        row->setOperator(tree.find("BETWEEN"));
        QCOMPARE(row->Arguments, QStringList({"1", blanks}));
        QCOMPARE(row->Controls.size(), std::size_t(7));
        QCOMPARE(row->Controls[6]->Kind, 6);
        row->setOperator(tree.find("IS NULL"));
        QCOMPARE(row->Arguments, QStringList());
        QCOMPARE(row->Controls.size(), std::size_t(5));
    }

    void operandCountIsBounded() {
        const auto count = [](int operands) {
            TorvQDOperator entry;
            entry.Count = operands;
            return orv::operandCount(std::make_shared<TorvQDOperator>(entry));
        };
        QCOMPARE(count(3), 3);
        QCOMPARE(count(0), 0);
        QCOMPARE(count(-5), 0);
        QVERIFY(count(std::numeric_limits<int>::max()) <= 1000);
        QCOMPARE(orv::operandCount(nullptr), 1);
    }

    // --- SQL on one line

    void simpleRows_data() {
        QTest::addColumn<QString>("oper");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* oper, const QStringList& arguments, const char* text) {
            QTest::newRow(text) << QString::fromLatin1(oper) << arguments
                                << QString::fromLatin1(text);
        };
        row("=", {"5"}, "(T.A = 5)");
        row("BETWEEN", {"1", "9"}, "(T.A BETWEEN 1 and 9)");
        row("NOT BETWEEN", {"1", "9"}, "(T.A NOT BETWEEN 1 and 9)");
        row("IN", {"1,2"}, "(T.A IN (1,2))");
        row("IS NULL", {}, "(T.A IS NULL )");
        row("NOT LIKE", {"'x%'"}, "(T.A NOT LIKE 'x%')");
    }
    void simpleRows() {
        QFETCH(QString, oper);
        QFETCH(QStringList, arguments);
        QFETCH(QString, text);
        Tree tree;
        const TorvQDWhereRow* row = tree.condition(tree.root, "T.A", oper, arguments);
        QCOMPARE(row->GetSQLCondition(false), text);
    }

    void functionsStandAroundFieldAndArgument() {
        Tree tree;
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", ">", {"10"});
        row->FieldFunc = "SUM";
        QCOMPARE(row->GetSQLCondition(false), "(SUM(T.A) > 10)");
        row->ArgFunc = "AVG";
        row->Arguments = QStringList("T.B");
        QCOMPARE(row->GetSQLCondition(false), "(SUM(T.A) > AVG(T.B))");
        row->FieldFunc = "   ";
        QCOMPARE(row->GetSQLCondition(false), "(T.A > AVG(T.B))");
    }

    // The argument's function takes the place of the prefix, and of the prefix alone.
    void functionOfTheArgumentReplacesThePrefixOnly() {
        Tree tree;
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "IN", {"1"});
        row->ArgFunc = "MAX";
        QCOMPARE(row->GetSQLCondition(false), "(T.A IN MAX(1)))");
        row->setOperator(tree.find("BETWEEN"));
        row->Arguments = QStringList({"1", "2"});
        QCOMPARE(row->GetSQLCondition(false), "(T.A BETWEEN 1 and 2)");
    }

    void operatorOfAHostWritesAllItsTexts() {
        Tree tree;
        tree.operators.Add(TorvQDOperator{"WITHIN", "within", " TO ", " ]", "[ ", 3});
        tree.operators.Add(TorvQDOperator{"IS", "empty", "x", ")", "EMPTY(", 0});
        const TorvQDWhereRow* three = tree.condition(tree.root, "T.A", "WITHIN", {"1", "2", "3"});
        QCOMPARE(three->GetSQLCondition(false), "(T.A WITHIN [ 1 TO 2 TO 3 ])");
        const TorvQDWhereRow* none = tree.condition(tree.root, "T.A", "IS", {});
        QCOMPARE(none->GetSQLCondition(false), "(T.A IS EMPTY())");
    }

    void expressionIsItsFieldInBrackets() {
        Tree tree;
        TorvQDWhereRow* row = tree.root->SubRows->AddRow();
        row->setOperator(orv::expressionOperator());
        row->FieldName = "EXISTS (SELECT 1)";
        QVERIFY(row->isExpression());
        QCOMPARE(row->Arguments, QStringList());
        QCOMPARE(row->GetSQLCondition(false), "(EXISTS (SELECT 1))");
        QCOMPARE(shownTexts(*row)[3], blanks);
        for (int index = 0; index < tree.operators.Count(); ++index) {
            QVERIFY(tree.operators.Items(index) != orv::expressionOperator());
        }
    }

    void groups_data() {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("text");
        QTest::newRow("All") << "All"
                             << " ((T.A = 5) and (T.B = 6))";
        QTest::newRow("Any") << "Any"
                             << " ((T.A = 5) or (T.B = 6))";
        QTest::newRow("None") << "None"
                              << "not((T.A = 5) and (T.B = 6))";
        QTest::newRow("Not all") << "Not all"
                                 << "not((T.A = 5) or (T.B = 6))";
        QTest::newRow("another case") << "nOt AlL"
                                      << "not((T.A = 5) or (T.B = 6))";
        QTest::newRow("unknown") << "Some" << blanks;
    }
    void groups() {
        QFETCH(QString, group);
        QFETCH(QString, text);
        Tree tree;
        TorvQDWhereRow* row = tree.group(tree.root, group);
        tree.condition(row, "T.A", "=", {"5"});
        tree.condition(row, "T.B", "=", {"6"});
        QCOMPARE(row->GetSQLCondition(false), text);
        QCOMPARE(tree.root->GetSQLCondition(false), " (" + text + ")");
    }

    void emptyGroupWritesNineBlanks() {
        Tree tree;
        QCOMPARE(tree.root->GetSQLCondition(true), blanks);
        QCOMPARE(tree.root->GetSQLCondition(false), blanks);
        tree.condition(tree.root, "T.A", "=", {"5"});
        tree.group(tree.root, "Any");
        QCOMPARE(tree.root->GetSQLCondition(false), " ((T.A = 5) and " + blanks + ")");
    }

    // --- SQL over several lines

    void linesAreIndentedByTheDepth() {
        Tree tree;
        tree.condition(tree.root, "T.A", "=", {"5"});
        tree.condition(tree.root, "T.B", "=", {"6"});
        QCOMPARE(tree.root->GetSQLCondition(true),
                 "\r\n   (\r\n      (T.A = 5)\r\n   and \r\n      (T.B = 6)\r\n   )");
    }

    void prefixAndConnectorLoseTheirLeadingBlanks() {
        Tree tree;
        TorvQDWhereRow* group = tree.group(tree.root, "Not all");
        tree.condition(group, "T.A", "=", {"5"});
        tree.condition(group, "T.B", "=", {"6"});
        QCOMPARE(tree.root->GetSQLCondition(true),
                 "\r\n   (\r\n      not(\r\n         (T.A = 5)\r\n      or \r\n         (T.B = "
                 "6)\r\n      )\r\n   )");
    }

    // Three levels below the root are four units.
    void rowDeepInTheTreeIsIndentedByItsOwnDepth() {
        Tree tree;
        TorvQDWhereRow* inner = tree.group(tree.group(tree.root, "Any"), "All");
        const TorvQDWhereRow* row = tree.condition(inner, "T.A", "=", {"5"});
        QCOMPARE(row->depth(), 4);
        QCOMPARE(row->GetSQLCondition(true), "\r\n" + QString(12, u' ') + "(T.A = 5)");
        QCOMPARE(row->GetSQLCondition(false), "(T.A = 5)");
    }

    // --- texts of the elements

    void elementsShowTheFieldsOfTheRow() {
        Tree tree;
        tree.operators.Add(TorvQDOperator{"SOUNDS LIKE", "sounds like", "", "", "", 1});
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "SOUNDS LIKE", {"'x'"});
        row->FieldFunc = "MIN";
        QCOMPARE(shownTexts(*row), QStringList({"1.", "MIN", "T.A", "sounds like", blanks, "'x'"}));
    }

    void elementOfAGroupShowsItsOperatorOrItsCondition() {
        Tree tree;
        TorvQDWhereRow* group = tree.group(tree.root, "Any");
        tree.condition(group, "T.A", "=", {"5"});
        QCOMPARE(shownTexts(*group)[1], "Any");
        group->SetExpanded(false);
        QCOMPARE(shownTexts(*group)[1], " ((T.A = 5))");
        tree.condition(group, "T.LONGNAME", "=", {"123456789"});
        QCOMPARE(shownTexts(*group)[1], " ((T.A = 5) or (T.LONGNAME = 1...");
    }

    void shownTextIsCutAndOnOneLine_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const QString thirty(30, u'x');
        QTest::newRow("empty") << "" << blanks;
        QTest::newRow("blank") << " "
                               << " ";
        QTest::newRow("thirty characters") << thirty << thirty;
        QTest::newRow("one more") << thirty + "y" << thirty + "...";
        QTest::newRow("line breaks") << "a\r\nb\nc"
                                     << "a  b c";
        QTest::newRow("cut in front of the line breaks are blanks") << QString(29, u'x') + "\r\n"
                                                                    << QString(29, u'x') + " ...";
        const QString clef = QString::fromUtf8("\xF0\x9D\x84\x9E");
        QTest::newRow("surrogate pair at the cut")
            << QString(29, u'x') + clef << QString(29, u'x') + "...";
        QTest::newRow("surrogate pair before the cut")
            << QString(28, u'x') + clef + "y" << QString(28, u'x') + clef + "...";
    }
    void shownTextIsCutAndOnOneLine() {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        TorvQDControl control(nullptr, 2);
        control.SetText(text);
        QCOMPARE(control.GetText(), shown);
    }

    void rowKeepsTheFullText() {
        Tree tree;
        const QString text(50, u'x');
        TorvQDWhereRow* row = tree.condition(tree.root, text, "=", {text});
        (void)shownTexts(*row);
        QCOMPARE(row->FieldName, text);
        QCOMPARE(row->Arguments, QStringList(text));
    }

    // A large group that is collapsed shows 30 characters; no more are put together.
    void collapsedGroupComputesWhatItShows() {
        Tree tree;
        TorvQDWhereRow* group = tree.group(tree.root, "All");
        for (int index = 0; index < 1000; ++index) tree.condition(group, "T.A", "=", {"5"});
        QVERIFY(group->shortCondition(31).size() < 100);
        QVERIFY(group->GetSQLCondition(false).startsWith(group->shortCondition(31).left(31)));
        TorvQDWhereRow* nested = group;
        for (int index = 0; index < 1000; ++index) nested = tree.group(nested, "Any");
        QVERIFY(nested->parentRow()->shortCondition(31).size() < 100);
    }

    // --- numbering and neighbours

    void numbersOfRows() {
        Tree tree;
        TorvQDWhereRow* first = tree.group(tree.root, "Any");
        tree.condition(first, "T.A", "=", {"5"});
        const TorvQDWhereRow* second = tree.condition(first, "T.B", "=", {"6"});
        tree.condition(tree.root, "T.C", "=", {"7"});
        const TorvQDWhereRow* third = tree.condition(tree.root, "T.D", "=", {"8"});
        QCOMPARE(tree.root->GetFullIndex(), " ");
        QCOMPARE(first->GetFullIndex(), "1.");
        QCOMPARE(second->GetFullIndex(), "1.2.");
        QCOMPARE(third->GetFullIndex(), "3.");
    }

    void neighboursFollowWhatIsShown() {
        Tree tree;
        TorvQDWhereRow* group = tree.group(tree.root, "Any");
        TorvQDWhereRow* inner = tree.group(group, "All");
        TorvQDWhereRow* leaf = tree.condition(inner, "T.A", "=", {"5"});
        TorvQDWhereRow* last = tree.condition(tree.root, "T.B", "=", {"6"});
        const QList<TorvQDWhereRow*> shown = {tree.root, group, inner, leaf, last};
        for (int index = 0; index < shown.size(); ++index) {
            QCOMPARE(shown[index]->GetNextRow(), shown.value(index + 1));
            QCOMPARE(shown[index]->GetPreviousRow(), index > 0 ? shown[index - 1] : nullptr);
        }
        inner->SetExpanded(false);
        QCOMPARE(inner->GetNextRow(), last);
        QCOMPARE(last->GetPreviousRow(), inner);
        group->SetExpanded(false);
        QCOMPARE(group->GetNextRow(), last);
        QCOMPARE(last->GetPreviousRow(), group);
    }

    void expandedGroupWithoutRowsHasNoNextRow() {
        Tree tree;
        const TorvQDWhereRow* group = tree.group(tree.root, "Any");
        const TorvQDWhereRow* last = tree.condition(tree.root, "T.B", "=", {"6"});
        QCOMPARE(group->GetNextRow(), nullptr);
        QCOMPARE(last->GetPreviousRow(), group);
    }

    // --- copying and moving

    void assignCopiesAllButTheSubRows() {
        Tree tree;
        TorvQDWhereRow* source = tree.condition(tree.root, "T.A", "BETWEEN", {"1", "9"});
        source->FieldFunc = "MIN";
        source->ArgFunc = "MAX";
        source->Valid = false;
        source->AuxText = "aux";
        source->SetExpanded(true);
        tree.condition(source, "T.B", "=", {"6"});
        TorvQDWhereRow* copy = tree.root->SubRows->AddRow();
        tree.condition(copy, "T.C", "=", {"7"});
        copy->Assign(*source);
        QCOMPARE(copy->FieldFunc, "MIN");
        QCOMPARE(copy->FieldName, "T.A");
        QCOMPARE(copy->ArgFunc, "MAX");
        QCOMPARE(copy->Operator, source->Operator);
        QCOMPARE(copy->Arguments, QStringList({"1", "9"}));
        QCOMPARE(copy->Controls.size(), std::size_t(7));
        QVERIFY(!copy->Valid);
        QCOMPARE(copy->AuxText, "aux");
        QVERIFY(copy->Expanded);
        QCOMPARE(copy->SubRows->Row(0)->FieldName, "T.C");
        QCOMPARE(copy->GroupOper, QString());
        copy->Assign(*tree.root);
        QCOMPARE(copy->GroupOper, "All");
    }

    void assignIgnoresOtherItems() {
        Tree tree;
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "=", {"5"});
        row->Assign(TCollectionItemEx());
        row->Assign(*row);
        QCOMPARE(row->FieldName, "T.A");
        QCOMPARE(row->Arguments, QStringList("5"));
    }

    void subRowsChangeHandsAsAWhole() {
        Tree tree;
        TorvQDWhereRow* from = tree.group(tree.root, "All");
        TorvQDWhereRow* row = tree.condition(from, "T.A", "=", {"5"});
        TorvQDWhereRow* to = tree.group(tree.root, "Any");
        to->takeSubRows(*from);
        QCOMPARE(row->parentRow(), to);
        QCOMPARE(row->GetFullIndex(), "2.1.");
        QCOMPARE(from->SubRows->GetCount(), 0);
        QCOMPARE(from->SubRows->ownerRow(), from);
    }

    void rowMovesBetweenGroups() {
        Tree tree;
        TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "=", {"5"});
        TorvQDWhereRow* group = tree.group(tree.root, "Any");
        row->SetCollection(group->SubRows.get());
        QCOMPARE(row->parentRow(), group);
        QCOMPARE(row->depth(), 3);
        QCOMPARE(group->GetFullIndex(), "1.");
    }

    void entriesOutliveTheirCatalogue() {
        Tree tree;
        const TorvQDWhereRow* row = tree.condition(tree.root, "T.A", "LIKE", {"'x'"});
        tree.operators.Clear();
        QCOMPARE(row->GetSQLCondition(false), "(T.A LIKE 'x')");
    }

    // --- many rows

    void deepTreeIsDestroyedWithoutRecursion() {
        Tree tree;
        TorvQDWhereRow* group = tree.root;
        for (int depth = 0; depth < 200'000; ++depth) group = tree.group(group, "All");
        tree.root->SubRows->Clear();
        QCOMPARE(tree.root->SubRows->GetCount(), 0);
    }

    void textsOfAWideGroupAreLinear() {
        Tree tree;
        constexpr int count = 20'000;
        for (int index = 0; index < count; ++index) tree.condition(tree.root, "T.A", "=", {"5"});
        for (int round = 0; round < 5; ++round) {
            for (int index = 0; index < count; ++index) {
                tree.root->SubRows->Row(index)->refreshTexts();
            }
        }
        QCOMPARE(tree.root->SubRows->Row(count - 1)->Controls[0]->GetText(), "20000.");
        const QString unit = "\r\n      (T.A = 5)\r\n   and ";
        QCOMPARE(tree.root->GetSQLCondition(true).size(), qsizetype(count) * unit.size() +
                                                              QString("\r\n   (\r\n   )").size() -
                                                              QString("\r\n   and ").size());
    }
};

QTEST_MAIN(WhereRowsTest)
#include "tst_whererows.moc"
