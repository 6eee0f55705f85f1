// SPDX-License-Identifier: MIT
// Every chain and star of up to four tables with every kind of join, run as it was given and as the
// control writes it: the load report is to tell where the order of the joins changes rows, and not
// where it is known to keep them.
#include "meaning/Dice.h"
#include "meaning/OpenDatabase.h"
#include "querybuilder/ORVQDWindow.h"
#include "support/Sanitizers.h"
#include "support/TestTools.h"

#include <QTest>

#include <algorithm>
#include <memory>

using orvtest::Answer;
using orvtest::OpenDatabase;

namespace {

constexpr int databases = orvtest::fewerIfSanitized(6, 3);
const QStringList tables = {"P", "Q", "R", "S"};

enum class Kind : quint8 { Inner, Left, Right, Full };
constexpr Kind kinds[] = {Kind::Inner, Kind::Left, Kind::Right, Kind::Full};

/// A join of the table of its own number plus one with an earlier one.
struct Join {
    Kind kind;
    int partner;
    bool behindComma = false;  // a comma instead of a join, and nothing is compared
};
using Joins = std::vector<Join>;

QString textOf(const Joins& joins, bool newFirst) {
    static const QStringList joinTexts = {"JOIN", "LEFT JOIN", "RIGHT JOIN", "FULL JOIN"};
    QString text = QStringLiteral("SELECT * FROM P");
    for (std::size_t index = 0; index < joins.size(); ++index) {
        const Join& join = joins[index];
        const QString& table = tables[qsizetype(index) + 1];
        const QString& partner = tables[join.partner];
        if (join.behindComma) {
            text += QStringLiteral(", ") + table;
            continue;
        }
        text += QStringLiteral(" %1 %2 ON %3.K = %4.K")
                    .arg(joinTexts[int(join.kind)], table, newFirst ? table : partner,
                         newFirst ? partner : table);
    }
    return text;
}

/// All ways to join `count` tables, each with one earlier table of its item of the comma list or
/// behind a comma.
std::vector<Joins> allJoins(int count) {
    std::vector<Joins> all = {{}};
    for (int table = 1; table < count; ++table) {
        std::vector<Joins> longer;
        for (const Joins& joins : all) {
            int first = 0;
            for (int index = 0; index < table - 1; ++index) {
                if (joins[std::size_t(index)].behindComma) first = index + 1;
            }
            for (const Kind kind : kinds) {
                for (int partner = first; partner < table; ++partner) {
                    longer.push_back(joins);
                    longer.back().push_back({kind, partner});
                }
            }
            longer.push_back(joins);
            longer.back().push_back({Kind::Inner, 0, true});
        }
        all = std::move(longer);
    }
    return all;
}

bool hasOuter(const Joins& joins) {
    return std::any_of(joins.begin(), joins.end(),
                       [](const Join& join) { return join.kind != Kind::Inner; });
}

bool hasComma(const Joins& joins) {
    return std::any_of(joins.begin(), joins.end(),
                       [](const Join& join) { return join.behindComma; });
}

// Without commas, and each table compared with one other: no table that may stay empty is in
// another join but as its preserved side, and full joins stand alone or all joins are full.
bool isKnownToKeepRows(const Joins& joins) {
    if (hasComma(joins)) return !hasOuter(joins);
    const auto fulls = std::count_if(joins.begin(), joins.end(),
                                     [](const Join& join) { return join.kind == Kind::Full; });
    if (fulls > 0) return fulls == std::ptrdiff_t(joins.size());
    for (std::size_t index = 0; index < joins.size(); ++index) {
        const Join& join = joins[index];
        if (join.kind == Kind::Inner) continue;
        const int empty = join.kind == Kind::Left ? int(index) + 1 : join.partner;
        for (std::size_t other = 0; other < joins.size(); ++other) {
            if (other == index) continue;
            const int joined = int(other) + 1;
            const int partner = joins[other].partner;
            if (joined != empty && partner != empty) continue;
            const bool isPreserved = (joins[other].kind == Kind::Left && partner == empty) ||
                                     (joins[other].kind == Kind::Right && joined == empty);
            if (!isPreserved) return false;
        }
    }
    return true;
}

// Few values and some NULLs, so that each join finds some rows and misses others.
QStringList contents(int seed) {
    orvtest::Dice dice{quint32(seed)};
    QStringList statements;
    for (const QString& table : tables) {
        statements << QStringLiteral("CREATE TABLE %1 (K INTEGER, V INTEGER)").arg(table);
        for (int row = dice.below(4); row > 0; --row) {
            const QString key = dice.pick({"1", "2", "3", "NULL"});
            statements << QStringLiteral("INSERT INTO %1 VALUES (%2, %3)").arg(table, key).arg(row);
        }
    }
    return statements;
}

/// One statement as it was given and as it was written.
struct Case {
    QString given;
    QString written;
    bool isTold = false;
    bool keepsRows = false;
    bool differs = false;
};

QString told(const std::vector<Case>& cases, const char* what) {
    QStringList lines = {QString::number(cases.size()) + QString::fromLatin1(what)};
    for (std::size_t index = 0; index < std::min<std::size_t>(cases.size(), 5); ++index) {
        lines << cases[index].given << cases[index].written;
    }
    return lines.join(u'\n');
}

template <typename Test>
std::vector<Case> those(const std::vector<Case>& cases, const Test& test) {
    std::vector<Case> found;
    std::copy_if(cases.begin(), cases.end(), std::back_inserter(found), test);
    return found;
}

}  // namespace

class JoinOrderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // A proof that did not run is none.
        QCOMPARE(OpenDatabase::whatIsMissing(), QString());
    }

    void everyOrderOfJoins_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::addColumn<bool>("newTableFirst");
        QTest::newRow("meaning not kept") << false << false;
        QTest::newRow("meaning not kept, joined table first in ON") << false << true;
        QTest::newRow("meaning kept") << true << false;
        QTest::newRow("meaning kept, joined table first in ON") << true << true;
    }
    void everyOrderOfJoins() {
        QFETCH(bool, keepMeaning);
        QFETCH(bool, newTableFirst);
        std::vector<Case> cases = loaded(keepMeaning, newTableFirst);
        QVERIFY(cases.size() > 500);
        for (int seed = 1; seed <= databases; ++seed) {
            const OpenDatabase database(contents(seed));
            QVERIFY(database.isOpen);
            for (Case& one : cases) compare(database, one);
        }
        const auto missed =
            those(cases, [](const Case& one) { return one.differs && !one.isTold; });
        QVERIFY2(missed.empty(), qPrintable(told(missed, " change rows and are not told")));
        const auto inVain = those(
            cases, [&](const Case& one) { return one.isTold && (one.keepsRows || keepMeaning); });
        QVERIFY2(inVain.empty(), qPrintable(told(inVain, " keep rows and are told")));
        // The rows of these databases show most of what is told.
        const auto shown = those(cases, [](const Case& one) { return one.isTold && one.differs; });
        QCOMPARE(shown.empty(), keepMeaning);
    }

private:
    static std::vector<Case> loaded(bool keepMeaning, bool newTableFirst) {
        TorvQueryBuilder builder;
        builder.setKeepMeaning(keepMeaning);
        builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& dataSet,
                                      std::unique_ptr<TParams>&) {
            dataSet = std::make_unique<TDataSet>(
                TFieldDefs{{QStringLiteral("K"), ftInteger}, {QStringLiteral("V"), ftInteger}});
        };
        std::vector<Case> cases;
        for (int count = 2; count <= int(tables.size()); ++count) {
            for (const Joins& joins : allJoins(count)) {
                Case one;
                one.given = textOf(joins, newTableFirst);
                builder.LoadSQL(one.given);
                one.isTold = !builder.LoadReport().empty();
                one.written = builder.GetSQLStatment();
                one.keepsRows = isKnownToKeepRows(joins);
                cases.push_back(one);
            }
        }
        return cases;
    }

    static void compare(const OpenDatabase& database, Case& one) {
        const Answer given = database.ask(one.given);
        const Answer written = database.ask(one.written);
        const bool same = given.isGiven() && written.isGiven() &&
                          orvtest::sorted(given.rows) == orvtest::sorted(written.rows);
        one.differs = one.differs || !same;
    }
};

QTEST_MAIN(JoinOrderTest)
#include "tst_joinorder.moc"
