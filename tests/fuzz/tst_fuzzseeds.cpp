// SPDX-License-Identifier: MIT
// Runs what the fuzzers run on their seeds, and on the inputs with which they have found something
// before: those stand in fuzz/found-cases, in a folder for each fuzzer.
#include "StatementWords.h"
#include "Targets.h"
#include "support/TestTools.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using orvfuzz::Target;

namespace {

Target targetNamed(const QString& name) {
    const QList<Target>& all = orvfuzz::targets();
    return *std::find_if(all.begin(), all.end(),
                         [&](const Target& target) { return name == QLatin1String(target.name); });
}

// What is broken when the target runs on the input; empty when nothing is.
QString brokenBy(const Target& target, const QByteArray& input) {
    try {
        target.run(input);
    } catch (const std::exception& broken) {
        return QString::fromUtf8(broken.what());
    }
    return {};
}

}  // namespace

class FuzzSeedsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void nothingIsBrokenBySeeds_data();
    void nothingIsBrokenBySeeds();
    void nothingIsBrokenByFoundCases_data();
    void nothingIsBrokenByFoundCases();
    void sampleStatesHoldWhatNoStatementSays();
    void otherWordsAreTold_data();
    void otherWordsAreTold();
    void theSameWordsAreNone_data();
    void theSameWordsAreNone();
};

void FuzzSeedsTest::nothingIsBrokenBySeeds_data() {
    QTest::addColumn<QString>("name");
    for (const Target& target : orvfuzz::targets()) {
        QTest::newRow(target.name) << QString::fromLatin1(target.name);
    }
}

void FuzzSeedsTest::nothingIsBrokenBySeeds() {
    QFETCH(QString, name);
    const Target target = targetNamed(name);
    const QList<QByteArray> seeds = target.seeds();
    QVERIFY(seeds.size() > 5);
    int broken = 0;
    for (const QByteArray& seed : seeds) {
        const QString what = brokenBy(target, seed);
        if (what.isEmpty()) continue;
        ++broken;
        qInfo("%s\n%s\n", seed.constData(), qPrintable(what));
    }
    QCOMPARE(broken, 0);
}

void FuzzSeedsTest::nothingIsBrokenByFoundCases_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    for (const Target& target : orvfuzz::targets()) {
        const QDir folder(QStringLiteral(ORV_FOUND_CASES "/") + QLatin1String(target.name));
        for (const QFileInfo& file : folder.entryInfoList(QDir::Files, QDir::Name)) {
            QTest::addRow("%s/%s", target.name, qPrintable(file.fileName()))
                << QString::fromLatin1(target.name) << file.filePath();
        }
    }
}

void FuzzSeedsTest::nothingIsBrokenByFoundCases() {
    QFETCH(QString, name);
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(brokenBy(targetNamed(name), file.readAll()), QString());
}

void FuzzSeedsTest::sampleStatesHoldWhatNoStatementSays() {
    const QList<QByteArray> seeds = targetNamed(QStringLiteral("documents")).seeds();
    const auto holdsAll = [](const QByteArray& seed) {
        const QJsonObject state = QJsonDocument::fromJson(seed.mid(1)).object();
        const QJsonArray links = state[QLatin1String("links")].toArray();
        const auto anyHas = [](const QJsonArray& values, const char* key) {
            return std::any_of(values.begin(), values.end(), [&](const QJsonValue& value) {
                return value.toObject().contains(QLatin1String(key));
            });
        };
        return anyHas(links, "points") && anyHas(links, "muted") &&
               !state[QLatin1String("mutedColumns")].toArray().isEmpty() &&
               anyHas(state[QLatin1String("where")].toObject()[QLatin1String("rows")].toArray(),
                      "muted") &&
               anyHas(state[QLatin1String("tables")].toArray(), "parameters");
    };
    QVERIFY(std::any_of(seeds.begin(), seeds.end(), holdsAll));
}

// Of two statements the second lacks something, or has something else.
void FuzzSeedsTest::otherWordsAreTold_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("written");
    const auto row = [](const char* name, const char* given, const char* written) {
        QTest::newRow(name) << QString::fromLatin1(given) << QString::fromLatin1(written);
    };
    row("a condition", "select a from t where b = 1 and c = 2", "SELECT A FROM T WHERE B = 1");
    row("a text", "select a from t where b = 'x'", "SELECT A FROM T WHERE B = 'X'");
    row("a number", "select a from t where b = 15", "SELECT A FROM T WHERE B = 1.5");
    row("a sign", "select a from t where b < 1", "SELECT A FROM T WHERE B <= 1");
    row("a NOT", "select a from t where not b = 1", "SELECT A FROM T WHERE B = 1");
    row("the NOTs of two conditions", "select a from t where not b = 1 and not c = 2",
        "SELECT A FROM T WHERE B = 1 AND C = 2");
    row("the NOTs of a part and of the whole", "select a from t where not (not b = 1 and c = 2)",
        "SELECT A FROM T WHERE B = 1 AND C = 2");
    row("a condition beside a bracket in quotes", "select a from t where b = '[' and c = 2",
        "SELECT A FROM T WHERE B = '['");
    row("a connective", "select a from t where b = 1 or c = 2",
        "SELECT A FROM T WHERE B = 1 AND C = 2");
    row("another clause", "select a from t where b = 1 group by a",
        "SELECT A FROM T GROUP BY A HAVING B = 1");
    row("another column", "select a, b from t", "SELECT A, C FROM T");
    row("a column less", "select a, b from t", "SELECT A FROM T");
    row("columns in another order", "select a, b from t", "SELECT B, A FROM T");
    row("another column beside a star", "select *, a from t", "SELECT T.A, T.B, C FROM T");
    row("a column less beside a star", "select a + 1, t.* from t", "SELECT T.A, T.B FROM T");
    row("an expression in the place of a star", "select * from t", "SELECT T.A + 1 FROM T");
    row("another alias", "select a as x from t", "SELECT A AS Y FROM T");
    row("a lost alias", "select a as x from t", "SELECT A FROM T");
    row("DISTINCT", "select distinct a from t", "SELECT A FROM T");
    row("a table", "select a from t, u", "SELECT A FROM T");
    row("a table's alias", "select a from t x", "SELECT A FROM T Y");
    row("a join's kind", "select a from t left join u on b = c",
        "SELECT A FROM T INNER JOIN U ON B = C");
    row("a join's side", "select a from t left join u on b = c",
        "SELECT A FROM T RIGHT JOIN U ON B = C");
    row("a turned operator", "select a from t join u on b > c",
        "SELECT A FROM T INNER JOIN U ON (B < C)");
    row("a turned operator between fields of one name", "select a from t join u on t.a >= u.a",
        "SELECT A FROM T INNER JOIN U ON (T.A <= U.A)");
    row("sides that changed places", "select a from t join u on t.a >= u.a",
        "SELECT A FROM T INNER JOIN U ON (U.A >= T.A)");
    row("an item of GROUP BY", "select a from t group by a, b", "SELECT A FROM T GROUP BY A, C");
    row("another number", "select a, b from t order by 2", "SELECT A, B FROM T ORDER BY 1");
    row("another item of ORDER BY beside a star", "select * from t order by a",
        "SELECT T.A, T.B FROM T ORDER BY T.B");
    row("another number beside a star", "select *, c + 1 from t order by 3",
        "SELECT T.A, T.B, C + 1 FROM T ORDER BY T.B");
    row("ORDER BY in another order", "select a, b from t order by a, b",
        "SELECT A, B FROM T ORDER BY B, A");
    row("a direction", "select a from t order by a desc", "SELECT A FROM T ORDER BY A");
    row("a tail", "select a from t limit 5", "SELECT A FROM T LIMIT 6");
}

void FuzzSeedsTest::otherWordsAreTold() {
    QFETCH(QString, given);
    QFETCH(QString, written);
    QVERIFY(!orvfuzz::wordsDifference(given, written, true).isEmpty());
}

void FuzzSeedsTest::theSameWordsAreNone_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("written");
    const auto row = [](const char* name, const char* given, const char* written) {
        QTest::newRow(name) << QString::fromLatin1(given) << QString::fromLatin1(written);
    };
    row("spacing and comments", "select a--x\n,b/*y*/from t;", "SELECT A, B FROM T");
    row("qualifiers", "select a from s.t x where b=1", "SELECT X.A FROM S.T X WHERE (X.B = 1)");
    row("names of columns", "select a+1, b b, c as d from t",
        "SELECT A+1 AS FIELD1, B, C AS D FROM T");
    row("a star", "select * from t", "SELECT T.A, T.B FROM T");
    row("a star between columns", "select b, t.*, c + 1 from t",
        "SELECT B, T.A, T.B, C + 1 AS FIELD1 FROM T");
    row("numbers behind a star", "select *, c d from t order by 3 desc, 1",
        "SELECT T.A, T.B, C AS D FROM T ORDER BY C DESC, T.A");
    row("a name with a qualifier", "select a + 1 as t.b from t", "SELECT A + 1 AS \"T.B\" FROM T");
    row("numbers and names of columns", "select a+1 x, b from t group by 1, b order by x desc, 2",
        "SELECT A+1 AS X, B FROM T GROUP BY A+1, B ORDER BY 1 DESC, B");
    row("a join from the other side", "select a from t join u on b > c",
        "SELECT A FROM T INNER JOIN U ON (C < B)");
    row("a join of fields of one name from the other side",
        "select a from t join u on t.a >= u.a and x <> 1",
        "SELECT A FROM T INNER JOIN U ON (U.A <= T.A) AND (X <> 1)");
    row("negations of a negated BETWEEN", "select a from t where not (not b between 1 and 2)",
        "SELECT A FROM T WHERE B BETWEEN 1 AND 2");
    row("negations of negations", "select a from t where not (not (b = 1))",
        "SELECT A FROM T WHERE ((B = 1))");
    row("full stops beside words that are no names", "select a from t join u on .b = 1 and c. or d",
        "SELECT A FROM T INNER JOIN U ON (B = 1) AND (C. OR D)");
    row("glued words", "select a from t where b=1or c!=2", "SELECT A FROM T WHERE B = 1 OR C <> 2");
}

void FuzzSeedsTest::theSameWordsAreNone() {
    QFETCH(QString, given);
    QFETCH(QString, written);
    QCOMPARE(orvfuzz::wordsDifference(given, written, true), QString());
}

QTEST_MAIN(FuzzSeedsTest)
#include "tst_fuzzseeds.moc"
