// SPDX-License-Identifier: MIT
#include "core/Error.h"
#include "norows/TrialQuery.h"
#include "support/RandomState.h"
#include "support/TestTools.h"

using namespace orvquery;

namespace {

constexpr unsigned states = 60;

// The items of FROM are separated by commas at the ends of lines.
int itemsOfFrom(const QString& statement) {
    const QStringList lines = statement.split(QStringLiteral("\r\n"));
    int items = 0;
    bool isFrom = false;
    for (const QString& line : lines) {
        if (line.startsWith(u"FROM")) isFrom = true;
        if (line.startsWith(u"WHERE") || line.startsWith(u"GROUP") || line.startsWith(u"ORDER")) {
            break;
        }
        if (isFrom && line.endsWith(u',')) ++items;
    }
    return items;
}

}  // namespace

// Trials of queries that nobody would think of.
class TestNoRowsStates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void trialsOfRandomStates_data() {
        QTest::addColumn<bool>("keepMeaning");
        QTest::newRow("meaning kept") << true;
        QTest::newRow("plain rules") << false;
    }
    void trialsOfRandomStates();
};

void TestNoRowsStates::trialsOfRandomStates() {
    QFETCH(bool, keepMeaning);
    const orvtest::StateSetting setting{keepMeaning, false};
    orvtest::HostedBuilder on(keepMeaning);
    orvtest::prepareForRandomStates(on, setting);
    int tried = 0;
    int joins = 0;
    for (unsigned seed = 1; seed <= states; ++seed) {
        orvtest::RandomState(seed, setting).build(on);
        const auto name = [seed](const QString& what) {
            return QByteArray("seed " + QByteArray::number(seed) + ": " + what.toUtf8());
        };
        try {
            (void)on.builder.GetSQLStatment();
        } catch (const orv::Error&) {
            continue;  // nothing that could be run
        }
        const QByteArray before = on.builder.SaveState();
        TrialQuery query(on.builder);
        const QString base = query.without({});
        QCOMPARE(query.whole(), on.builder.GetSQLStatment());
        const int items = itemsOfFrom(base);
        for (std::size_t index = 0; index < query.parts().size(); ++index) {
            const QueryPart& part = query.parts()[index];
            QVERIFY(part.parent < int(index));
            const QString trial = query.without({int(index)});
            // No trial combines each row of one table with each row of another.
            QVERIFY2(itemsOfFrom(trial) == items, name(base + "\n" + trial).constData());
            QVERIFY2(query.without({}) == base, name(base).constData());
            if (part.isTop()) QVERIFY2(trial != base, name(part.text).constData());
            joins += part.kind == QueryPart::Kind::Join ? 1 : 0;
            ++tried;
        }
        const QString bare = query.without({}, TrialQuery::Conditions::Dropped);
        QVERIFY2(!bare.contains("\r\nWHERE") && !bare.contains("\r\nHAVING"),
                 name(bare).constData());
        QCOMPARE(on.builder.SaveState(), before);
    }
    QVERIFY(tried > 200);
    QVERIFY(joins > 20);
}

QTEST_MAIN(TestNoRowsStates)
#include "tst_app_norowsstates.moc"
