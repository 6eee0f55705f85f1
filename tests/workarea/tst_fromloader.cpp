// SPDX-License-Identifier: MIT
// Joins of a statement: what becomes of them on the diagram, in the text that is written again, and
// in the load report.
#include "parser/ORVQDParser.h"
#include "support/BuilderTools.h"
#include "support/Sanitizers.h"
#include "workarea/ORVQDFloatPanel.h"

#include <random>

using orvtest::HostedBuilder;

namespace {

/// A host with the tables A to D beside the others; "classic" is the mode that keeps no meaning.
class JoinBuilder : public HostedBuilder {
public:
    explicit JoinBuilder(bool keepMeaning) : HostedBuilder(keepMeaning) {
        for (const QString& name : QStringList{"A", "B", "C", "D"}) {
            host.add(name, {"X", "Y", "Z", "Q", name + "1"});
        }
    }

    void load(const QString& from) { builder.LoadSQL("select 1 from " + from); }
    [[nodiscard]] QString text() const { return builder.WorkArea->GetSQLStatment(); }
    /// "A-B left: A.X = B.X", one for each join, with its text behind.
    [[nodiscard]] QStringList joins() const {
        QStringList texts;
        for (const TorvQDJoin* join : builder.WorkArea->Joins()) {
            QStringList parts;
            for (const TorvQDLink* link : builder.WorkArea->linksOf(join)) {
                parts << link->GetHint();
            }
            if (!join->Text.isEmpty()) parts << join->Text;
            texts << join->Table1->GetAlias() + "-" + join->Table2->GetAlias() + " " +
                         orv::joinWords(join->KindOfJoin).section(' ', 0, 0).toLower() + ": " +
                         parts.join(", ");
        }
        return texts;
    }
    [[nodiscard]] QStringList spans() const {
        QStringList texts;
        for (const orv::Finding& finding : builder.LoadReport()) {
            texts << QString::number(finding.start - int(qstrlen("select 1 from "))) + " " +
                         finding.text;
        }
        return texts;
    }
};

// "|" begins the line of a join, ";" the next item.
QString lines(QString text) {
    return text.replace("|", "\r\n   ").replace(";", ",\r\n");
}

void addFromColumns() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("findings");
}

void row(const char* from, const char* text, const QStringList& findings = {}) {
    QTest::newRow(from) << QString::fromLatin1(from) << QString::fromLatin1(text) << findings;
}

}  // namespace

class FromLoaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        orvtest::failOnAnyWarning();
        m_services = std::make_unique<orvtest::RecordedServices>();
    }
    void cleanup() { m_services.reset(); }

    // --- in the order of stacking

    void classic_data() {
        addFromColumns();
        // Kinds, from either side.
        row("a join b on a.x = b.x", "B|INNER JOIN A ON (B.X = A.X)");
        row("a inner join b on (a.x = b.x)", "B|INNER JOIN A ON (B.X = A.X)");
        row("a left join b on a.x = b.x", "B|RIGHT OUTER JOIN A ON (B.X = A.X)");
        row("a left outer join b on b.x = a.x", "B|RIGHT OUTER JOIN A ON (B.X = A.X)");
        row("a right join b on a.x = b.x", "B|LEFT OUTER JOIN A ON (B.X = A.X)");
        row("a right outer join b on b.x = a.x", "B|LEFT OUTER JOIN A ON (B.X = A.X)");
        row("a full join b on a.x = b.x", "B|FULL OUTER JOIN A ON (B.X = A.X)");
        // An operator is not mirrored when its sides change places.
        row("a join b on a.x <> b.x", "B|INNER JOIN A ON (B.X <> A.X)");
        row("a join b on a.x != b.x", "B|INNER JOIN A ON (B.X != A.X)");
        row("a join b on a.x < b.x", "B|INNER JOIN A ON (B.X < A.X)", {"a.x < b.x"});
        row("a join b on a.y = b.y and a.x >= b.x",
            "B|INNER JOIN A ON (B.Y = A.Y) AND (B.X >= A.X)", {"a.x >= b.x"});
        row("a join b on b.x < a.x", "B|INNER JOIN A ON (B.X < A.X)");
        row("a join b on a.x = b.x and b.y < a.y", "B|INNER JOIN A ON (B.X = A.X) AND (B.Y < A.Y)");
        row("a join b on a.x >> b.x", "B|INNER JOIN A ON (B.X >> A.X)", {"a.x >> b.x"});
        row("a join b on b.x >> a.x", "B|INNER JOIN A ON (B.X >> A.X)");
        // Chains of inner joins may be turned round, those with outer joins not always.
        row("a join b on a.x = b.x join c on b.y = c.y",
            "C|INNER JOIN B ON (C.Y = B.Y)|INNER JOIN A ON (B.X = A.X)");
        row("a join b on a.x = b.x left join c on b.y = c.y",
            "C|RIGHT OUTER JOIN B ON (C.Y = B.Y)|INNER JOIN A ON (B.X = A.X)");
        row("a left join b on a.x = b.x left join c on b.y = c.y",
            "C|RIGHT OUTER JOIN B ON (C.Y = B.Y)|RIGHT OUTER JOIN A ON (B.X = A.X)");
        row("a left join b on a.x = b.x left join c on a.y = c.y",
            "C|RIGHT OUTER JOIN A ON (C.Y = A.Y)|LEFT OUTER JOIN B ON (A.X = B.X)");
        row("a left join b on a.x = b.x join c on b.y = c.y",
            "C|INNER JOIN B ON (C.Y = B.Y)|RIGHT OUTER JOIN A ON (B.X = A.X)", {"left join"});
        row("a left join b on a.x = b.x join c on a.y = c.y",
            "C|INNER JOIN A ON (C.Y = A.Y)|LEFT OUTER JOIN B ON (A.X = B.X)");
        row("a right join b on a.x = b.x join c on b.y = c.y",
            "C|INNER JOIN B ON (C.Y = B.Y)|LEFT OUTER JOIN A ON (B.X = A.X)");
        row("a right join b on a.x = b.x join c on a.y = c.y",
            "C|INNER JOIN A ON (C.Y = A.Y)|RIGHT OUTER JOIN B ON (A.X = B.X)", {"right join"});
        row("a left join b on a.x = b.x right join c on b.y = c.y",
            "C|LEFT OUTER JOIN B ON (C.Y = B.Y)|RIGHT OUTER JOIN A ON (B.X = A.X)",
            {"left join", "right join"});
        row("a full join b on a.x = b.x full join c on b.y = c.y",
            "C|FULL OUTER JOIN B ON (C.Y = B.Y)|FULL OUTER JOIN A ON (B.X = A.X)");
        row("a full join b on a.x = b.x join c on b.y = c.y",
            "C|INNER JOIN B ON (C.Y = B.Y)|FULL OUTER JOIN A ON (B.X = A.X)", {"full join"});
        row("a left join b on a.x = b.x full join c on b.y = c.y",
            "C|FULL OUTER JOIN B ON (C.Y = B.Y)|RIGHT OUTER JOIN A ON (B.X = A.X)",
            {"left join", "full join"});
        // An operator that nobody knows may compare NULLs.
        row("a left join b on a.x <=> b.x left join c on c.y >> b.y",
            "C|RIGHT OUTER JOIN B ON (C.Y >> B.Y)|RIGHT OUTER JOIN A ON (B.X <=> A.X)",
            {"left join", "left join"});
        // Beside a comma.
        row("a join b on a.x = b.x, c", "C;B|INNER JOIN A ON (B.X = A.X)");
        row("a, b join c on b.x = c.x", "C|INNER JOIN B ON (C.X = B.X);A");
        row("a left join b on a.x = b.x, c", "C;B|RIGHT OUTER JOIN A ON (B.X = A.X)",
            {"left join"});
        row("a, b left join c on b.x = c.x", "C|RIGHT OUTER JOIN B ON (C.X = B.X);A",
            {"left join"});
        row("a, b right join c on b.x = c.x", "C|LEFT OUTER JOIN B ON (C.X = B.X);A",
            {"right join"});
        row("a, b full join c on b.x = c.x", "C|FULL OUTER JOIN B ON (C.X = B.X);A", {"full join"});
        row("a cross join b right join c on b.x = c.x", "C|LEFT OUTER JOIN B ON (C.X = B.X);A",
            {"right join"});
        row("a, b join c on a.x = c.x and b.y = c.y and b.z = c.z",
            "C|INNER JOIN A ON (C.X = A.X)|INNER JOIN B ON (C.Y = B.Y) AND (C.Z = B.Z)");
        row("a, b left join c on b.x = c.x and a.y = c.y and a.z = c.z",
            "C|RIGHT OUTER JOIN B ON (C.X = B.X)|RIGHT OUTER JOIN A ON (C.Y = A.Y) AND "
            "(C.Z = A.Z)",
            {"left join"});
        row("a, b join c on a.x = c.x left join d on c.y = d.y",
            "D|RIGHT OUTER JOIN C ON (D.Y = C.Y)|INNER JOIN A ON (C.X = A.X);B",
            {"join", "left join"});
        // A cycle names a table twice.
        row("a join b on a.x = b.x join c on b.y = c.y and a.z = c.z",
            "C|INNER JOIN B ON (C.Y = B.Y)|INNER JOIN A ON (B.X = A.X)|INNER JOIN C ON "
            "(A.Z = C.Z)",
            {"join"});
        row("a join b on a.x = b.x left join c on b.y = c.y and a.z = c.z",
            "C|RIGHT OUTER JOIN B ON (C.Y = B.Y)|INNER JOIN A ON (B.X = A.X)|LEFT OUTER JOIN C ON "
            "(A.Z = C.Z)",
            {"left join", "left join"});
        row("a join b on a.x = a.y", "B;A|INNER JOIN A ON (A.X = A.Y)", {"join"});
        // A comparison of two other tables changes their join.
        row("a join b on a.x = b.x join c on a.y = b.y and b.z = c.z",
            "C|INNER JOIN B ON (C.Z = B.Z)|INNER JOIN A ON (B.X = A.X) AND (B.Y = A.Y)");
        row("a join b on a.x = b.x left join c on a.y = b.y and b.z = c.z",
            "C|RIGHT OUTER JOIN B ON (C.Z = B.Z)|RIGHT OUTER JOIN A ON (B.X = A.X) AND "
            "(B.Y = A.Y)",
            {"left join"});
        // The same table twice.
        row("a e join a f on e.x = f.y", "A F|INNER JOIN A E ON (F.Y = E.X)");
        row("a e join a on e.x = a.y", "A|INNER JOIN A E ON (A.Y = E.X)");
        row("a join b on a.x = b.x join b on a.y = b.y",
            "B|INNER JOIN A ON (B.X = A.X) AND (B.Y = A.Y)", {"b"});
    }
    void classic() { writesAgain(false); }

    // --- with the meaning kept

    void keptMeaning_data() {
        addFromColumns();
        row("a join b on a.x = b.x", "A|INNER JOIN B ON (A.X = B.X)");
        row("a left join b on b.x = a.x", "A|LEFT OUTER JOIN B ON (A.X = B.X)");
        row("a right join b on b.x = a.x", "A|RIGHT OUTER JOIN B ON (A.X = B.X)");
        row("a full join b on a.x = b.x", "A|FULL OUTER JOIN B ON (A.X = B.X)");
        // Operators are mirrored, and so are no other than those that are known.
        row("a join b on a.x < b.x", "A|INNER JOIN B ON (A.X < B.X)");
        row("a join b on b.x < a.x", "A|INNER JOIN B ON (A.X > B.X)");
        row("a join b on b.x >= a.x and b.y <> a.y and b.z != a.z",
            "A|INNER JOIN B ON (A.X <= B.X) AND (A.Y <> B.Y) AND (A.Z != B.Z)");
        row("a join b on a.x = b.x and a.y >> b.y and b.z >> a.z",
            "A|INNER JOIN B ON (A.X = B.X) AND (A.Y >> B.Y) AND (B.Z >> A.Z)");
        // Chains come back in the order of the text.
        row("a left join b on a.x = b.x join c on b.y = c.y",
            "A|LEFT OUTER JOIN B ON (A.X = B.X)|INNER JOIN C ON (B.Y = C.Y)");
        row("a left join b on a.x = b.x right join c on c.y = b.y full join d on d.x = a.x",
            "A|LEFT OUTER JOIN B ON (A.X = B.X)|RIGHT OUTER JOIN C ON (B.Y = C.Y)|FULL OUTER JOIN "
            "D ON (A.X = D.X)");
        row("a join b on a.x = b.x join c on a.y = c.y join d on b.z = d.z",
            "A|INNER JOIN B ON (A.X = B.X)|INNER JOIN C ON (A.Y = C.Y)|INNER JOIN D ON "
            "(B.Z = D.Z)");
        // Beside a comma.
        row("a left join b on a.x = b.x, c right join d on c.y = d.y",
            "A|LEFT OUTER JOIN B ON (A.X = B.X);C|RIGHT OUTER JOIN D ON (C.Y = D.Y)");
        row("a, b join c on a.x = c.x and b.y = c.y and b.z = c.z",
            "A|INNER JOIN C ON (A.X = C.X)|INNER JOIN B ON (C.Y = B.Y) AND (C.Z = B.Z)");
        row("a, b left join c on b.x = c.x and a.y = c.y and a.z = c.z",
            "A|LEFT OUTER JOIN C ON (A.Y = C.Y) AND (A.Z = C.Z)|RIGHT OUTER JOIN B ON (C.X = B.X)",
            {"left join"});
        row("a, b join c on a.x = c.x left join d on c.y = d.y",
            "A|INNER JOIN C ON (A.X = C.X)|LEFT OUTER JOIN D ON (C.Y = D.Y);B", {"join"});
        row("a, b left join c on b.x = c.x and a.y > 5",
            "A;B|LEFT OUTER JOIN C ON (B.X = C.X) AND (A.Y > 5)", {"left join"});
        // A CROSS JOIN binds as a join does, the comma that it becomes binds weaker.
        row("a cross join b left join c on b.x = c.x", "A;B|LEFT OUTER JOIN C ON (B.X = C.X)");
        row("a cross join b right join c on b.x = c.x", "A;B|RIGHT OUTER JOIN C ON (B.X = C.X)",
            {"right join"});
        row("a cross join b full join c on b.x = c.x", "A;B|FULL OUTER JOIN C ON (B.X = C.X)",
            {"full join"});
        row("a cross join b, c full join d on c.x = d.x", "A;B;C|FULL OUTER JOIN D ON (C.X = D.X)");
        row("a cross join b join c on b.x = c.x and a.y = 5",
            "A;B|INNER JOIN C ON (B.X = C.X) AND (A.Y = 5)", {"a.y = 5"});
        // Cycles.
        row("a join b on a.x = b.x join c on b.y = c.y and a.z < c.z",
            "A|INNER JOIN B ON (A.X = B.X)|INNER JOIN C ON (B.Y = C.Y) AND (A.Z < C.Z)");
        row("a left join b on a.x = b.x join c on c.y = b.y and c.z < a.z",
            "A|LEFT OUTER JOIN B ON (A.X = B.X)|INNER JOIN C ON (B.Y = C.Y) AND (A.Z > C.Z)");
        row("a join b on a.x = b.x left join c on b.y = c.y and a.z = c.z",
            "A|INNER JOIN B ON (A.X = B.X)|LEFT OUTER JOIN C ON (B.Y = C.Y) AND (A.Z = C.Z)",
            {"left join"});
        // What is no comparison with the table of the join stays with it as text.
        row("a join b on a.x = b.x and b.y > 5 and upper(a.z) = b.q",
            "A|INNER JOIN B ON (A.X = B.X) AND (B.Y > 5 AND UPPER(A.Z) = B.Q)");
        row("a left join b on b.y = 'it''s' and b.x = a.x",
            "A|LEFT OUTER JOIN B ON (A.X = B.X) AND (B.Y = 'it''s')");
        row("a left join b on a.x = b.x and (b.y > 5 or a.z is null)",
            "A|LEFT OUTER JOIN B ON (A.X = B.X) AND ((B.Y > 5 OR A.Z IS NULL))");
        row("a left join b on ((a.x = b.x) and ((b.y > 5)))",
            "A|LEFT OUTER JOIN B ON (A.X = B.X) AND (B.Y > 5)");
        row("a join b on a.x between b.x and b.y and a.z = b.z",
            "A|INNER JOIN B ON (A.Z = B.Z) AND (A.X BETWEEN B.X AND B.Y)");
        row("a join b on a.x = b.x and b.y in (select y from c where c.z = 1)",
            "A|INNER JOIN B ON (A.X = B.X) AND (B.Y IN (SELECT Y FROM C WHERE C.Z = 1))");
        row("a join b on a.x = b.x and a.y = b.y + 1 and a.z + b.z and a.q = :p",
            "A|INNER JOIN B ON (A.X = B.X) AND (A.Y = B.Y + 1 AND A.Z + B.Z AND A.Q = :p)");
        row("a join b on a.x = b.x and b.y = b.z and a.y = a.z",
            "A|INNER JOIN B ON (A.X = B.X) AND (B.Y = B.Z AND A.Y = A.Z)");
        row("a join b on a.x = b.x left join c on a.y = b.y and b.z = c.z",
            "A|INNER JOIN B ON (A.X = B.X)|LEFT OUTER JOIN C ON (B.Z = C.Z) AND (A.Y = B.Y)");
        row("a join b on a.x = b.x and a.y = b.nosuch",
            "A|INNER JOIN B ON (A.X = B.X) AND (A.Y = B.NOSUCH)");
        // Text in front of one of its tables, or with a name that the alias hides.
        row("a, b join c on a.x = c.x and b.q = 5", "A|INNER JOIN C ON (A.X = C.X) AND (B.Q = 5);B",
            {"b.q = 5"});
        row("a, b join c on a.x = c.x and b1 = 5", "A|INNER JOIN C ON (A.X = C.X) AND (B1 = 5);B",
            {"b1 = 5"});
        row("s.t join u on t.a = u.a and s.t.z = 5",
            "S.T T|INNER JOIN U ON (T.A = U.A) AND (S.T.Z = 5)", {"s.t.z = 5"});
        // What an ON cannot keep.
        row("a join b on b.x = 5", "A;B", {"on b.x = 5"});
        row("a join b on a.x = a.y", "A;B", {"on a.x = a.y"});
        row("a join b on a.x = b.x join c on a.y = b.y", "A|INNER JOIN B ON (A.X = B.X);C",
            {"on a.y = b.y"});
        row("a join b on a.x = b.x or a.y = b.y", "A;B", {"on a.x = b.x or a.y = b.y"});
        row("a join b on not a.x = b.x", "A;B", {"on not a.x = b.x"});
        row("a join b on a.x = b.x and not b.y = 5", "A;B", {"on a.x = b.x and not b.y = 5"});
        row("a join b on a.x = b.x xor b.y = 5", "A;B", {"on a.x = b.x xor b.y = 5"});
        row("a join b on a.x = b.x and b.y = 5 xor b.z = 1", "A;B",
            {"on a.x = b.x and b.y = 5 xor b.z = 1"});
        row("a join b on a.x = b.x on a.y = b.y", "A;B", {"on a.x = b.x on a.y = b.y"});
        row("a join b on a.x = b.x and b.y = c.y on a.y = b.y", "A;B",
            {"on a.x = b.x and b.y = c.y on a.y = b.y"});
        row("a join b join c on b.x = c.x on a.y = b.y", "A;B;C",
            {"join b", "on b.x = c.x on a.y = b.y"});
        row("a left join b, c", "A;B;C", {"left join b"});
        // The same table twice.
        row("a join a e on a.x = e.y", "A|INNER JOIN A E ON (A.X = E.Y)");
        row("a e left join a on a.x = e.y", "A E|LEFT OUTER JOIN A ON (E.Y = A.X)");
        row("a join b on a.x = b.x join b on a.y = b.y",
            "A|INNER JOIN B ON (A.X = B.X) AND (A.Y = B.Y)", {"b"});
        row("a join b on a.x = b.x join b f on a.y = f.y and b.z = f.z",
            "A|INNER JOIN B ON (A.X = B.X)|INNER JOIN B F ON (A.Y = F.Y) AND (B.Z = F.Z)");
        // Names.
        row("a join b on a1 = b1 and y = 1", "A|INNER JOIN B ON (A.A1 = B.B1) AND (Y = 1)");
        row("\"my table\" m join t on m.\"my field\" = t.a and t.b = m.\"a.b\"",
            "\"my table\" M|INNER JOIN T ON (M.\"my field\" = T.A) AND (M.\"a.b\" = T.B)");
        row("\"my table\" join t on \"MY TABLE\".\"MY FIELD\" = t.a",
            "\"my table\"|INNER JOIN T ON (\"my table\".\"my field\" = T.A)");
        row("s.t join u x on t.a = x.a", "S.T T|INNER JOIN U X ON (T.A = X.A)");
        row("a join b on a.x = 'X' and a.y = b.y", "A|INNER JOIN B ON (A.Y = B.Y) AND (A.X = 'X')");
    }
    void keptMeaning() { writesAgain(true); }

    // Every text of the list above that was held loads once more, without a change.
    void writtenTextLoadsAsItIs_data() { keptMeaning_data(); }
    void writtenTextLoadsAsItIs() {
        QFETCH(QString, from);
        QFETCH(QStringList, findings);
        if (!findings.isEmpty()) return;
        JoinBuilder first(true);
        first.load(from);
        JoinBuilder second(true);
        second.load(first.text());
        QCOMPARE(second.text(), first.text());
        QCOMPARE(second.findings(), QStringList());
    }

    // --- how it is held

    void kindIsAboutTheTableOfTheJoin_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("classic");
        QTest::addColumn<QString>("kept");
        QTest::newRow("left") << "a left join b on a.x = b.x"
                              << "A-B left: A.X=B.X"
                              << "A-B left: A.X=B.X";
        QTest::newRow("left, its own table first") << "a left join b on b.x < a.x"
                                                   << "B-A right: B.X<A.X"
                                                   << "A-B left: A.X>B.X";
        QTest::newRow("right, its own table first") << "a right join b on b.x = a.x"
                                                    << "B-A left: B.X=A.X"
                                                    << "A-B right: A.X=B.X";
        QTest::newRow("a join that begins with OUTER") << "a outer join b on a.x = b.x"
                                                       << "A-B full: A.X=B.X"
                                                       << "A-B full: A.X=B.X";
        QTest::newRow("full, its own table first") << "a full join b on b.x = a.x"
                                                   << "B-A full: B.X=A.X"
                                                   << "A-B full: A.X=B.X";
        // The pair is there already: the rows change places, the operator stays as it stands.
        QTest::newRow("second link turned round") << "a left join b on a.x = b.x and b.y < a.y"
                                                  << "A-B left: A.X=B.X, A.Y<B.Y"
                                                  << "A-B left: A.X=B.X, A.Y>B.Y";
        QTest::newRow("operator that no link has") << "a join b on a.x !< b.x"
                                                   << "A-B inner: A.X!<B.X"
                                                   << "A-B inner: A.X!<B.X";
    }
    void kindIsAboutTheTableOfTheJoin() {
        QFETCH(QString, from);
        QFETCH(QString, classic);
        QFETCH(QString, kept);
        JoinBuilder on(false);
        on.load(from);
        QCOMPARE(on.joins(), QStringList(classic));
        JoinBuilder keeping(true);
        keeping.load(from);
        QCOMPARE(keeping.joins(), QStringList(kept));
    }

    void textBelongsToTheJoinOfItsOn() {
        JoinBuilder on(true);
        on.load("a join b on a.x = b.x left join c on a.y = b.y and b.z = c.z and c.q > 1");
        QCOMPARE(on.joins(),
                 QStringList({"A-B inner: A.X=B.X", "B-C left: B.Z=C.Z, A.Y = B.Y AND C.Q > 1"}));
    }

    void unknownOperatorIsKeptBesideItsIndex() {
        JoinBuilder on(true);
        on.load("a join b on a.x != b.x");
        const TorvQDLink* link = on.builder.WorkArea->Links()[0];
        QCOMPARE(link->Operator, -1);
        QCOMPARE(link->OperatorSource, "!=");
    }

    void twoTablesMayStandOnTheirJoinOnly() {
        JoinBuilder on(false);
        on.load("a join b on a.x = b.x and a.y <> b.z, c");
        QCOMPARE(on.joins(), QStringList("A-B inner: A.X=B.X, A.Y<>B.Z"));
        QCOMPARE(on.stacking(), QStringList({"C", "B", "A"}));
    }

    // --- messages and what they lose

    void comparisonsThatAreNoLinks_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("findings");
        QTest::addColumn<QString>("text");
        const QString noTable = "Could not find table: ";
        const QString joined = "B|INNER JOIN A ON (B.X = A.X)";
        QTest::newRow("constant") << "a join b on a.x = b.x and b.y = 5" << QStringList(noTable)
                                  << QStringList("b.y = 5") << joined;
        QTest::newRow("bare names") << "a join b on a1 = b1" << QStringList({noTable, noTable})
                                    << QStringList("a1 = b1") << "B;A";
        QTest::newRow("unknown table")
            << "a join b on a.x = b.x and n.y = b.y" << QStringList(noTable + "N")
            << QStringList("n.y = b.y") << joined;
        QTest::newRow("unknown field") << "a join b on a.x = b.nosuch and a.x = b.x"
                                       << QStringList("Could not find field: NOSUCH in B")
                                       << QStringList("a.x = b.nosuch") << joined;
        QTest::newRow("call") << "a join b on upper(a.z) = b.q and a.x = b.x" << QStringList()
                              << QStringList("upper(a.z) = b.q") << joined;
        QTest::newRow("between") << "a join b on a.z between b.y and b.z and a.x = b.x"
                                 << QStringList() << QStringList("a.z between b.y and b.z")
                                 << joined;
        // No part of it is held: the sum is no comparison of its own.
        QTest::newRow("sum") << "a join b on a.y + b.y > 5 and a.x = b.x" << QStringList(noTable)
                             << QStringList("a.y + b.y > 5") << joined;
        QTest::newRow("negative side") << "a join b on a.y =-b.y and a.x = b.x" << QStringList()
                                       << QStringList("a.y =-b.y") << joined;
        QTest::newRow("OR becomes AND") << "a join b on a.x = b.x or a.y = b.y" << QStringList()
                                        << QStringList("on a.x = b.x or a.y = b.y")
                                        << "B|INNER JOIN A ON (B.X = A.X) AND (B.Y = A.Y)";
        QTest::newRow("NOT is dropped") << "a join b on not a.x = b.x" << QStringList()
                                        << QStringList("on not a.x = b.x") << joined;
        QTest::newRow("alias of a table that is there")
            << "a join a e on a.x = e.y" << QStringList(noTable + "E")
            << QStringList({"a e", "a.x = e.y"}) << "A";
    }
    void comparisonsThatAreNoLinks() {
        QFETCH(QString, from);
        QFETCH(QStringList, messages);
        QFETCH(QStringList, findings);
        QFETCH(QString, text);
        JoinBuilder on(false);
        on.load(from);
        QCOMPARE(m_services->messages, messages);
        QCOMPARE(on.findings(), findings);
        QCOMPARE(on.text(), lines(text));
    }

    void messageHasItsCaptionAndIcon() {
        std::vector<orv::MessageRequest> shown;
        const orv::MessageService old =
            orv::setMessageService([&](const orv::MessageRequest& request) {
                shown.push_back(request);
                return orv::MessageAnswer::Ok;
            });
        JoinBuilder on(false);
        on.load("a join b on a.x = b.x and n.y = b.y");
        orv::setMessageService(old);
        QCOMPARE(shown.size(), std::size_t(1));
        QCOMPARE(shown[0].caption, "Error!");
        QCOMPARE(shown[0].icon, orv::MessageIcon::Exclamation);
        QCOMPARE(shown[0].buttons, orv::MessageButtons::Ok);
    }

    void keptMeaningShowsNoMessages() {
        JoinBuilder on(true);
        on.load("a join b on a.x = b.x and n.y = b.y and b.z = 5 join c on c.nosuch = a.x");
        QCOMPARE(m_services->messages, QStringList());
    }

    void findingsStandAtTheirPlaces() {
        JoinBuilder on(false);
        on.load("a join b on a.x = b.x\n  join c on b.y = c.y and a.z < c.z");
        QCOMPARE(on.spans(), QStringList("24 join"));
        JoinBuilder outer(false);
        outer.load("a  left  join b on a.x = b.x join c on b.y = c.y");
        QCOMPARE(outer.spans(), QStringList("3 left  join"));
    }

    void joinOfALostTableIsLost() {
        for (const bool keep : {false, true}) {
            JoinBuilder on(keep);
            on.load("a join nowhere n on n.x = a.x");
            QCOMPARE(on.tables(), QStringList("A"));
            QCOMPARE(on.findings(), QStringList({"join nowhere n on n.x = a.x", "nowhere n"}));
            QCOMPARE(m_services->messages,
                     keep ? QStringList() : QStringList("Could not find table: N"));
            m_services->messages.clear();
        }
    }

    // The ON of a lost join is read all the same, unless the meaning is kept.
    void lostJoinMayLinkOtherTables() {
        for (const bool keep : {false, true}) {
            JoinBuilder on(keep);
            on.load("a join b on a.x = b.x left join nowhere n on a.y = b.y and n.x = a.x");
            QCOMPARE(on.tables(), QStringList({"A", "B"}));
            QCOMPARE(on.joins(),
                     QStringList(keep ? "A-B inner: A.X=B.X" : "A-B left: A.X=B.X, A.Y=B.Y"));
            QVERIFY(on.findings().contains("left join nowhere n on a.y = b.y and n.x = a.x"));
            QCOMPARE(m_services->messages,
                     keep ? QStringList() : QStringList("Could not find table: N"));
            m_services->messages.clear();
        }
    }

    // --- the host's vetoes

    void refusedLinkIsAFinding_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("findings");
        QTest::addColumn<QString>("text");
        QTest::newRow("one of two")
            << "a join b on a.x = b.x and a.y = b.y and b.z = 5" << QStringList("a.x = b.x")
            << "A|INNER JOIN B ON (A.Y = B.Y) AND (B.Z = 5)";
        QTest::newRow("the only one")
            << "a join b on a.x = b.x and b.z = 5"
            << QStringList({"on a.x = b.x and b.z = 5", "a.x = b.x"}) << "A;B";
    }
    void refusedLinkIsAFinding() {
        QFETCH(QString, from);
        QFETCH(QStringList, findings);
        QFETCH(QString, text);
        JoinBuilder on(true);
        on.builder.OnAddRemoveLink = [](QObject*, TorvQDLink* link, TAddRemove, bool& can) {
            can = link->Item1->Name != "X";
        };
        on.load(from);
        QCOMPARE(on.findings(), findings);
        QCOMPARE(on.text(), lines(text));
    }

    void refusedLinkIsSkippedInTheClassicModeToo() {
        JoinBuilder on(false);
        on.builder.OnAddRemoveLink = [](QObject*, TorvQDLink*, TAddRemove, bool& can) {
            can = false;
        };
        on.load("a join b on a.x = b.x and a.y < b.y");
        QCOMPARE(on.findings(), QStringList({"a.x = b.x", "a.y < b.y"}));
        QCOMPARE(on.joins(), QStringList());
    }

    void refusedTableTakesItsJoinWithIt() {
        JoinBuilder on(true);
        on.builder.OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove, bool& can) {
            can = box->TableName != "B";
        };
        on.load("a join b on a.x = b.x");
        QCOMPARE(on.tables(), QStringList("A"));
        QCOMPARE(on.findings(), QStringList({"join b on a.x = b.x", "b"}));
    }

    void linkTakenAwayWhileLoadingIsNotJudged() {
        for (const bool keep : {false, true}) {
            JoinBuilder on(keep);
            on.builder.WorkArea->OnAddLink = [&](QObject*, QObject* link) {
                on.builder.WorkArea->RemoveLink(qobject_cast<TorvQDLink*>(link), false);
            };
            on.load("a join b on a.x < b.x and a.z = b.z");
            QCOMPARE(on.joins(), QStringList());
        }
    }

    // --- errors

    void joinNeedsATable() {
        const QString expected = QStringLiteral("There is no Table for join");
        const QString from = QStringLiteral("a left join (select x from b) c on c.x = a.x");
        JoinBuilder on(true);
        on.addTable("T");
        QCOMPARE(orvtest::errorOf([&] { on.load(from); }), expected);
        QCOMPARE(on.tables(), QStringList("T"));
        const TorvQDParser root("SELECT 1 FROM " + from.toUpper());
        QCOMPARE(orvtest::errorOf([&] { on.builder.WorkArea->LoadSQL(*root.Clause(inFrom)); }),
                 expected);
        QCOMPARE(on.tables(), QStringList("A"));
    }

    // A host may hand over a part of a tree of its own: there is nothing to account for then.
    void nodeLoadsWithoutAReport() {
        for (const bool keep : {false, true}) {
            JoinBuilder on(keep);
            const TorvQDParser root(
                QStringLiteral("SELECT 1 FROM A LEFT JOIN B ON B.X = A.X AND B.Y = 5, C"));
            on.builder.WorkArea->LoadSQL(*root.Clause(inFrom));
            QCOMPARE(on.tables(), QStringList({"A", "B", "C"}));
            QCOMPARE(on.builder.WorkArea->Joins().size(), std::size_t(1));
            QCOMPARE(on.builder.WorkArea->Joins()[0]->KindOfJoin,
                     keep ? klLOuterJoin : klROuterJoin);
        }
    }

    // --- there and back

    // What can be drawn comes back byte for byte and without a finding, as long as no outer join
    // closes a circle.
    void drawnJoinsComeBack() {
        std::mt19937 random(11);
        const auto below = [&](int end) { return int(random() % unsigned(end)); };
        const QStringList names = {"A", "B", "C", "D"};
        const QStringList fields = {"X", "Y", "Z", "Q"};
        for (int run = 0; run < 120; ++run) {
            JoinBuilder on(true);
            TorvQDWorkArea& area = *on.builder.WorkArea;
            const int count = 2 + below(4);
            for (int index = 0; index < count; ++index) on.addTable(names[below(4)]);
            const std::vector<TorvQDTable*> boxes = area.tablesByCreation();
            const bool allInner = below(2) == 0;
            QList<int> group;
            for (int index = 0; index < count; ++index) group << index;
            for (int links = below(7); links > 0; --links) {
                const int from = below(count);
                const int to = below(count);
                if (from == to || (!allInner && group[from] == group[to])) continue;
                TorvQDLink* link =
                    area.AddLink(boxes[std::size_t(from)], boxes[std::size_t(to)],
                                 boxes[std::size_t(from)]->GetFieldItem(fields[below(4)]),
                                 boxes[std::size_t(to)]->GetFieldItem(fields[below(4)]));
                link->setOperatorText(orv::linkOperators()[below(6)]);
                if (!allInner) link->Join->KindOfJoin = TKindOfJoin(below(4));
                const int old = group[to];
                for (int& each : group) each = each == old ? group[from] : each;
            }
            const QString text = on.text();
            JoinBuilder second(true);
            second.load(text);
            QCOMPARE(second.text(), text);
            QCOMPARE(second.findings(), QStringList());
            area.selectObject(boxes[std::size_t(below(count))]);
            QCOMPARE(on.text(), text);
        }
    }

    // Many joins must not take the square of their number.
    void longChainsLoad() {
        constexpr int count = orvtest::fewerIfSanitized(1500, 5);
        for (const bool keep : {false, true}) {
            JoinBuilder on(keep);
            QString from = QStringLiteral("a t0");
            for (int index = 1; index < count; ++index) {
                from +=
                    QStringLiteral(" left join a t%1 on t%2.x = t%1.x").arg(index).arg(index - 1);
            }
            on.load(from);
            QCOMPARE(int(on.builder.WorkArea->Joins().size()), count - 1);
            QCOMPARE(on.findings(), QStringList());
        }
    }

private:
    void writesAgain(bool keepMeaning) {
        QFETCH(QString, from);
        QFETCH(QString, text);
        QFETCH(QStringList, findings);
        JoinBuilder on(keepMeaning);
        on.load(from);
        QCOMPARE(on.text(), lines(text));
        QCOMPARE(on.findings(), findings);
        QCOMPARE(m_services->messages, QStringList());
        verifyBuilder(on.builder);
    }

    std::unique_ptr<orvtest::RecordedServices> m_services;  // no message box may block
};

QTEST_MAIN(FromLoaderTest)
#include "tst_fromloader.moc"
