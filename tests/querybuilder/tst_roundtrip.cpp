// SPDX-License-Identifier: MIT
// Whatever can be built comes back from its own text, without a finding.
#include "data/SqlText.h"
#include "support/BuilderTools.h"
#include "support/Sanitizers.h"

#include <QDateTime>

#include <random>

using orvtest::HostedBuilder;

namespace {

/// Makes states through the public operations, the same ones for the same seed.
class StateMaker {
public:
    StateMaker(HostedBuilder& on, unsigned seed) : m_on(on), m_random(seed) {}

    void make() {
        m_on.builder.Clear();
        if (below(3) == 0) {
            loadStatement();
        } else {
            const int count = 1 + below(4);
            for (int index = 0; index < count; ++index) addTable();
        }
        const int steps = below(10);
        for (int index = 0; index < steps; ++index) change();
        m_on.builder.SelectPanel->SetDistinct(below(3) == 0 ? -1 : 0);
        if (below(3) == 0) m_on.builder.setTailText(tails[below(int(tails.size()))]);
    }

private:
    int below(int limit) { return int(m_random() % unsigned(limit)); }
    [[nodiscard]] bool keeps() const { return m_on.builder.KeepMeaning(); }

    // By the plain rules a table that is there takes the second mention of its name.
    void addTable() {
        const QString name = names[below(int(names.size()))];
        if (!keeps() && isThere(name)) return;
        if (name != "PROC") {
            m_on.addTable(name);
            return;
        }
        TorvQDSProc* proc = m_on.addProc(name);
        for (TorvQDListItem* row : proc->parameterRows()) proc->setParameter(row, anyValue());
    }

    // By the plain rules inner apostrophes are not doubled.
    QVariant anyValue() {
        static const QList<QVariant> values = {{},
                                               QVariant::fromValue(nullptr),
                                               5,
                                               -2.5,
                                               1e20,
                                               "a, b)",
                                               true,
                                               QDateTime(QDate(2024, 2, 3), QTime(4, 5)),
                                               QVariant::fromValue(orv::SqlText{"1 + F(2, 'x')"}),
                                               "it's"};
        return values[below(int(values.size()) - (keeps() ? 0 : 1))];
    }

    [[nodiscard]] bool isThere(const QString& name) const {
        for (const TorvQDTable* box : m_on.builder.WorkArea->tablesByCreation()) {
            if (orv::unquotedName(box->TableName) == name) return true;
        }
        return false;
    }

    TorvQDTable* anyTable() {
        const int count = m_on.builder.WorkArea->TablesCount();
        return count == 0 ? nullptr : m_on.builder.WorkArea->Tables(below(count));
    }

    void change() {
        TorvQDTable* box = anyTable();
        if (!box) return;
        switch (below(8)) {
        case 0: box->SetFieldState(below(2) ? 2 : 0); break;
        case 1: m_on.builder.WorkArea->selectObject(box); break;
        case 2: rename(box); break;
        case 3: addTable(); break;
        case 4:
            if (m_on.builder.WorkArea->TablesCount() > 1) box->CloseTable();
            break;
        default: {
            TorvQDListItem* item = box->Items[std::size_t(below(int(box->Items.size())))].get();
            const bool ticks = !item->Checked;
            item->SetCheck(ticks);
            item->UpdateCheck(ticks ? -1 : 0);
        }
        }
    }

    // Renaming also rewrites names that begin or end with the old alias: such boxes stay as they
    // are.
    void rename(TorvQDTable* box) {
        const QString alias = aliases[below(int(aliases.size()))];
        if (m_on.table(alias) || m_on.table(orv::quotedName(alias))) return;
        const QString old = box->GetAlias();
        for (const TorvQDTable* other : m_on.builder.WorkArea->tablesByCreation()) {
            const QString taken = other->GetAlias();
            if (other != box && (taken.startsWith(old) || taken.endsWith(old))) return;
        }
        m_on.builder.WorkArea->renameTable(box, alias);
    }

    void loadStatement() {
        QStringList columns;
        QStringList grouped;
        const bool aggregates = below(2) == 0;
        QStringList plain = {"e.emp_no", "e.salary", "d.department", "d.budget", "e.dept_no"};
        std::shuffle(plain.begin(), plain.end(), m_random);
        const int count = 1 + below(4);
        for (int index = 0; index < count; ++index) {
            const QString column = plain[index];
            columns << column + (below(2) ? QStringLiteral(" as n%1").arg(index) : QString());
            grouped << column;
        }
        const QStringList expressions = {"lower(e.first_name) l", "e.salary * 2 + 1 as twice",
                                         "case when e.salary > 5 then 'x, y' else 'z' end k",
                                         "e.first_name || ' ' || e.dept_no \"full name\"",
                                         "'text' t1"};
        if (below(2)) {
            const QString& expression = expressions[below(int(expressions.size()))];
            columns << expression;
            grouped << QString(expression)
                           .remove(QRegularExpression("( as)? [a-z0-9]+$| \"full name\"$"));
        }
        if (aggregates) {
            columns << "sum(e.salary)"
                    << "count(*) n"
                    << "max(d.budget) - 1 as top1";
        }
        QString text = "select " + columns.join(", ") + " from employee e, dept d";
        if (aggregates) text += " group by " + grouped.join(", ");
        m_on.builder.LoadSQL(text);
    }

    HostedBuilder& m_on;
    std::mt19937 m_random;
    const QStringList names = {"T", "U", "EMPLOYEE", "DEPT", "my table", "lower", "q\"q", "PROC"};
    const QStringList aliases = {"X1", "Y2", "my z", "W$", "\u00c4"};
    const QStringList tails = {"LIMIT 10", "FOR UPDATE", "UNION ALL SELECT 'a' FROM U",
                               "limit 5 offset 2"};
};

void addOddTables(HostedBuilder& on) {
    on.host.add("lower", {"a", "B", "c d"});
    on.host.add("q\"q", {"x\"y", "Z"});
    on.host.addProc("PROC", {"R1", "R2"},
                    TParams({{"my param", ftInteger, ptInput},
                             {"OUT", ftString, ptOutput},
                             {"F", ftFloat, ptInput},
                             {"D", ftDate, ptInput}}));
}

// The calls of procedures, in the order of their aliases.
QStringList calls(const HostedBuilder& on) {
    QStringList texts;
    for (TorvQDTable* box : on.builder.WorkArea->tablesByCreation()) {
        const auto* proc = qobject_cast<const TorvQDSProc*>(box);
        if (proc) texts << proc->GetAlias() + u'(' + proc->GetParameters() + u')';
    }
    texts.sort();
    return texts;
}

QStringList sortedTables(const HostedBuilder& on) {
    QStringList tables = on.tables();
    tables.sort();
    return tables;
}

}  // namespace

class RoundTripTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void ownTextComesBack_data() {
        QTest::addColumn<bool>("keep");
        QTest::addColumn<int>("states");
        QTest::newRow("meaning kept") << true << orvtest::fewerIfSanitized(1400, 4);
        QTest::newRow("meaning not kept") << false << orvtest::fewerIfSanitized(600, 4);
    }
    void ownTextComesBack() {
        QFETCH(bool, keep);
        QFETCH(int, states);
        HostedBuilder on(keep);
        HostedBuilder other(keep);
        addOddTables(on);
        addOddTables(other);
        int withColumns = 0;
        int grouped = 0;
        for (int state = 0; state < states; ++state) {
            StateMaker(on, unsigned(state)).make();
            const QString text = on.builder.GetSQLStatment();
            const QString where = QStringLiteral("state %1: %2").arg(state).arg(text.simplified());
            QVERIFY2(orvtest::brokenRule(on.builder).isEmpty(),
                     qPrintable(where + u'\n' + orvtest::brokenRule(on.builder)));
            if (on.columns().isEmpty()) continue;
            ++withColumns;
            if (text.contains("\r\nGROUP BY ")) ++grouped;
            other.builder.LoadSQL(text);
            QVERIFY2(other.findings().isEmpty(),
                     qPrintable(where + u'\n' + other.findings().join(u'\n')));
            QVERIFY2(orvtest::brokenRule(other.builder).isEmpty(),
                     qPrintable(where + u'\n' + orvtest::brokenRule(other.builder)));
            QVERIFY2(other.columns() == on.columns(), qPrintable(where));
            QVERIFY2(sortedTables(other) == sortedTables(on), qPrintable(where));
            QCOMPARE(other.builder.TailText(), on.builder.TailText());
            QCOMPARE(other.builder.SelectPanel->GetDistinct(),
                     on.builder.SelectPanel->GetDistinct());
            QVERIFY2(calls(other) == calls(on), qPrintable(where));
            if (keep) QCOMPARE(other.builder.GetSQLStatment(), text);
        }
        QVERIFY2(withColumns > states / 2, "most states select nothing");
        QVERIFY2(grouped > states / 20, "hardly a state is grouped");
    }

    void statementsComeBackByteForByte_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("columns and aliases")
            << "SELECT O.PRICE,\r\n       O.NAME AS TITLE\r\nFROM ORDERS O";
        QTest::newRow("several tables") << "SELECT T.A,\r\n       X.A\r\nFROM T,\r\nU X,\r\nDEPT";
        QTest::newRow("grouped")
            << "SELECT SUM( O.PRICE ) AS SUM_OF_PRICE,\r\n       O.CUST_NO\r\nFROM ORDERS O\r\n"
               "GROUP BY O.CUST_NO";
        QTest::newRow("distinct and tail")
            << "SELECT DISTINCT T.A,\r\n                T.B\r\nFROM T\r\nLIMIT 5";
        QTest::newRow("same table twice")
            << "SELECT EMPLOYEE.SALARY,\r\n       EMPLOYEE1.SALARY AS OTHER\r\nFROM EMPLOYEE,\r\n"
               "EMPLOYEE EMPLOYEE1";
        QTest::newRow("quoted")
            << "SELECT \"my table\".\"my field\" AS \"my name\"\r\nFROM \"my table\"";
        QTest::newRow("qualified table name") << "SELECT T.Z\r\nFROM S.T T";
        QTest::newRow("count of all") << "SELECT COUNT( * ) AS \"COUNT_OF_*\"\r\nFROM T";
    }
    void statementsComeBackByteForByte() {
        QFETCH(QString, text);
        HostedBuilder on(true);
        on.builder.LoadSQL(text + u' ');
        QCOMPARE(on.findings(), QStringList());
        QCOMPARE(on.builder.GetSQLStatment(), text);
        verifyBuilder(on.builder);
    }

    // Two columns of one field are two items of the GROUP BY list.
    void groupedTwiceByOneField() {
        HostedBuilder on(true);
        on.addTable("T");
        on.grid()->CheckField("T.A");
        on.grid()->OnFieldChosen("T.A");
        on.builder.LoadSQL("select t.a, t.a again, count(t.b) n from t group by t.a");
        const QString text = on.builder.GetSQLStatment();
        HostedBuilder other(true);
        other.builder.LoadSQL(text);
        QCOMPARE(other.builder.GetSQLStatment(), text);
        QCOMPARE(other.findings(), QStringList());
    }
};

QTEST_MAIN(RoundTripTest)
#include "tst_roundtrip.moc"
