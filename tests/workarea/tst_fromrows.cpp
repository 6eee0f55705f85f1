// SPDX-License-Identifier: MIT
// The promise of an empty load report, on a database: the FROM clause that is written asks for the
// same rows as the one that was loaded. Clauses are made at random from a fixed seed.
#include "support/BuilderTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <optional>
#include <random>

using orvtest::HostedBuilder;

namespace {

const QStringList tableNames = {"A", "B", "C", "D", "E"};
const QStringList fieldNames = {"X", "Y", "Z", "Q"};

/// A FROM clause and the aliases of its tables.
struct Clause {
    QString text;
    QStringList aliases;
};

class ClauseMaker {
public:
    explicit ClauseMaker(unsigned seed) : m_random(seed) {}

    int below(int end) { return int(m_random() % unsigned(end)); }
    QString oneOf(const QStringList& texts) { return texts[below(int(texts.size()))]; }

    Clause make() {
        static const QList<QStringList> styles = {{"join"},
                                                  {"left join", "left join", "join"},
                                                  {"join", "left join", "right join"},
                                                  {"full join"},
                                                  {"left join", "right join", "full join", "join"}};
        const QStringList& kinds = styles[below(int(styles.size()))];
        Clause clause;
        QStringList item;
        for (int left = 2 + below(3); left > 0; --left) {
            const QString table = oneOf(tableNames);
            QString alias = table;
            while (clause.aliases.contains(alias)) alias += "1";
            const QString name = alias == table ? table : table + " " + alias;
            const int choice = below(100);
            if (clause.aliases.isEmpty()) {
                clause.text = name;
            } else if (choice < 12) {
                clause.text += ", " + name;
                item.clear();
            } else if (choice < 20) {
                clause.text += " cross join " + name;
            } else {
                clause.text += " " + oneOf(kinds) + " " + name + " on " +
                               condition(below(20) ? item : clause.aliases, alias);
            }
            item << alias;
            clause.aliases << alias;
        }
        return clause;
    }

private:
    QString condition(const QStringList& scope, const QString& alias) {
        QStringList parts;
        for (int left = 1 + below(3) * below(2); left > 0; --left) parts << part(scope, alias);
        const QString text = parts.join(below(15) ? " and " : " or ");
        return below(5) ? text : "(" + text + ")";
    }

    QString part(const QStringList& scope, const QString& alias) {
        const QString other = oneOf(scope) + "." + oneOf(fieldNames);
        const QString own = alias + "." + oneOf(fieldNames);
        const QString sign = " " + oneOf({"=", "=", "=", "<", ">", "<=", ">=", "<>", "!="}) + " ";
        const int choice = below(100);
        if (choice < 45) return other + sign + own;
        if (choice < 70) return own + sign + other;
        if (choice < 77) return other + sign + oneOf(scope) + "." + oneOf(fieldNames);
        if (choice < 80) return own + sign + alias + "." + oneOf(fieldNames);
        if (choice < 85) return other + sign + "1";
        if (choice < 88) return "(" + other + " = 1 or " + own + " is null)";
        if (choice < 91) return own + " between " + other + " and 2";
        if (choice < 94) return own + " is not null";
        if (choice < 96) return "abs(" + other + ") = " + own;
        if (choice < 98) return own + " in (select X from " + oneOf(tableNames) + ")";
        return "not " + own + " = 1";
    }

    std::mt19937 m_random;
};

// Databases differ in what a comma binds; in brackets each item stands for itself.
QString withBrackets(const QString& from) {
    QStringList items(QString{});
    int depth = 0;
    for (const QChar character : from) {
        if (character == u'(') ++depth;
        if (character == u')') --depth;
        if (character == u',' && depth == 0) {
            items << QString();
        } else {
            items.back() += character;
        }
    }
    for (QString& item : items) {
        if (item.contains(" join ", Qt::CaseInsensitive)) item = "(" + item + ")";
    }
    return items.join(", ");
}

}  // namespace

class FromRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_services = std::make_unique<orvtest::RecordedServices>();
        m_database = QSqlDatabase::addDatabase("QSQLITE", "rows");
        m_database.setDatabaseName(":memory:");
        QVERIFY2(m_database.open(), "There is no SQLite driver.");
        QSqlQuery version("select sqlite_version()", m_database);
        version.next();
        const QStringList parts = version.value(0).toString().split('.');
        // A proof that did not run is none.
        QVERIFY2(parts[0].toInt() > 3 || parts[1].toInt() >= 39, "This SQLite has no RIGHT JOIN.");
        std::mt19937 random(5);
        const QStringList values = {"null", "0", "1", "1", "2"};
        for (const QString& table : tableNames) {
            run("create table " + table + "(X, Y, Z, Q)");
            for (int row = 0; row < (table == "D" ? 0 : 4); ++row) {
                QStringList texts;
                for (int field = 0; field < 4; ++field) texts << values[int(random() % 5)];
                run("insert into " + table + " values (" + texts.join(", ") + ")");
            }
        }
    }
    void cleanupTestCase() {
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase("rows");
        m_services.reset();
    }

    void emptyReportKeepsTheRows_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::newRow("in the order of stacking") << false;
        QTest::newRow("with the meaning kept") << true;
    }
    void emptyReportKeepsTheRows() {
        QFETCH(bool, keepMeaning);
        ClauseMaker maker(17);
        int kept = 0;
        int compared = 0;
        for (int clauses = 0; clauses < 300; ++clauses) {
            const Clause clause = maker.make();
            HostedBuilder on(keepMeaning);
            for (const QString& table : tableNames) on.host.add(table, fieldNames);
            on.builder.LoadSQL("select 1 from " + clause.text);
            if (!on.findings().isEmpty()) continue;
            ++kept;
            const QString written = on.builder.WorkArea->GetSQLStatment();
            for (const bool brackets : {false, true}) {
                const auto text = [&](const QString& from) {
                    return brackets ? withBrackets(from) : from;
                };
                const std::optional<QStringList> rows = rowsOf(text(clause.text), clause.aliases);
                if (!rows) continue;  // the database refuses what was loaded
                ++compared;
                if (rowsOf(text(written), clause.aliases) == rows) continue;
                QFAIL(qPrintable(clause.text + "\n" + written));
            }
        }
        // So many that a loader which only ever complains is noticed.
        QVERIFY(kept > (keepMeaning ? 150 : 40));
        QVERIFY(compared > kept);
    }

private:
    void run(const QString& statement) {
        QSqlQuery query(m_database);
        QVERIFY2(query.exec(statement), qPrintable(query.lastError().text()));
    }

    std::optional<QStringList> rowsOf(const QString& from, const QStringList& aliases) {
        QStringList columns;
        for (const QString& alias : aliases) {
            for (const QString& field : fieldNames) columns << alias + "." + field;
        }
        QSqlQuery query(m_database);
        if (!query.exec("select " + columns.join(", ") + " from " + from)) return std::nullopt;
        QStringList rows;
        while (query.next()) {
            QStringList cells;
            for (int index = 0; index < columns.size(); ++index) {
                cells << (query.isNull(index) ? "null" : query.value(index).toString());
            }
            rows << cells.join(' ');
        }
        rows.sort();
        return rows;
    }

    QSqlDatabase m_database;
    std::unique_ptr<orvtest::RecordedServices> m_services;  // no message box may block
};

QTEST_MAIN(FromRowsTest)
#include "tst_fromrows.moc"
