// SPDX-License-Identifier: MIT
// What the rows of a read condition mean, beside what its text means.
#include "criteria/ReadConditions.h"
#include "support/Sanitizers.h"
#include "support/TestTools.h"

#include <QTest>

#include <functional>
#include <random>

namespace {

/// A formula over the atoms A to D, as text and as a function of their values.
struct Formula {
    QString text;
    std::function<bool(int)> holds;
};

/// Makes formulas and knows what they mean in either reading of AND and OR.
class FormulaMaker {
public:
    FormulaMaker(unsigned seed, bool andFirst) : m_random(seed), m_andFirst(andFirst) {}

    Formula level(int depth) {
        const int count = 1 + below(4);
        std::vector<Formula> operands;
        std::vector<bool> ands;
        Formula result;
        for (int index = 0; index < count; ++index) {
            operands.push_back(operand(depth));
            if (index > 0) {
                ands.push_back(below(2) == 0);
                result.text += ands.back() ? " and " : " or ";
            }
            result.text += operands.back().text;
        }
        result.holds = [operands, ands, andFirst = m_andFirst](int values) {
            return holds(operands, ands, andFirst, values);
        };
        return result;
    }

private:
    int below(int limit) { return int(m_random() % unsigned(limit)); }

    static bool holds(const std::vector<Formula>& operands, const std::vector<bool>& ands,
                      bool andFirst, int values) {
        bool whole = false;  // of what stands in front of the last OR
        bool term = operands.front().holds(values);
        for (std::size_t index = 0; index < ands.size(); ++index) {
            const bool next = operands[index + 1].holds(values);
            if (ands[index]) {
                term = term && next;
            } else if (andFirst) {
                whole = whole || term;
                term = next;
            } else {
                term = term || next;
            }
        }
        return whole || term;
    }

    Formula operand(int depth) {
        if (below(4) == 0) {
            const Formula inner = operand(depth);
            return {"not " + inner.text, [inner](int values) { return !inner.holds(values); }};
        }
        if (depth > 0 && below(2) == 0) {
            const Formula inner = level(depth - 1);
            return {"(" + inner.text + ")", inner.holds};
        }
        const int atom = below(4);
        return {QString(QChar(u'A' + atom)) + " = 1",
                [atom](int values) { return (values >> atom & 1) != 0; }};
    }

    std::mt19937 m_random;
    bool m_andFirst;
};

}  // namespace

class ConditionReaderMeaningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // Whatever AND, OR, NOT and brackets say, the rows and their text say the same.
    void rowsMeanWhatTheTextMeans_data() {
        QTest::addColumn<bool>("andFirst");
        QTest::addColumn<bool>("merge");
        QTest::newRow("left to right") << false << false;
        QTest::newRow("AND first") << true << true;
        QTest::newRow("AND first, NOT nested") << true << false;
    }
    void rowsMeanWhatTheTextMeans() {
        QFETCH(bool, andFirst);
        QFETCH(bool, merge);
        orvtest::ReadConditions on;
        if (merge) on.nots = orv::Nots::Merge;
        on.andBindsTighter = andFirst;
        for (unsigned seed = 0; seed < orvtest::fewerIfSanitized(600U, 4U); ++seed) {
            const Formula formula = FormulaMaker(seed, andFirst).level(3);
            const QString rows = on.read(formula.text);
            const QString where = formula.text + "\n" + rows;
            QVERIFY2(on.groupsBelowRoot() == on.groupsExpected, qPrintable(where));
            QVERIFY2(on.groupsExpected <= on.groupsAtMost, qPrintable(where));
            for (int round = 0; round < 2; ++round) {
                for (int values = 0; values < 16; ++values) {
                    QVERIFY2(orvtest::holds(*on.root, values) == formula.holds(values),
                             qPrintable(where));
                }
                on.read(on.written());
            }
            const QString written = on.written();
            on.read(written);
            QVERIFY2(on.written() == written, qPrintable(where));
        }
    }
};

QTEST_MAIN(ConditionReaderMeaningTest)
#include "tst_conditionreadermeaning.moc"
