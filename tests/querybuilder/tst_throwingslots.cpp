// SPDX-License-Identifier: MIT
// Hosts whose slots raise: a statement that cannot be written raises where it is asked for, and
// that may be inside StatementChanged.
#include "support/BuilderTools.h"

#include <QCheckBox>

using orvtest::HostedBuilder;

class ThrowingSlotsTest : public QObject {
    Q_OBJECT

    static constexpr const char* unwritable = "select count(t.b) n, t.a + 1 x from t";
    static constexpr const char* error =
        "There is no agregate function on page \"Selection\" in 2 row";

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void errorOfASlotPassesThroughAnAddition() {
        HostedBuilder on;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error(QStringLiteral("slot")); });
        QCOMPARE(orvtest::errorOf([&] { on.addTable("T"); }), "slot");
        on.builder.disconnect(this);
        on.changes = 0;
        on.tick("T", "A");
        QCOMPARE(on.changes, 1);
        verifyBuilder(on.builder);
    }

    void errorOfASlotPassesThroughClear() {
        HostedBuilder on;
        on.addTable("T");
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error(QStringLiteral("slot")); });
        QCOMPARE(orvtest::errorOf([&] { on.builder.Clear(); }), "slot");
        QCOMPARE(on.builder.WorkArea->TablesCount(), 0);
        verifyBuilder(on.builder);
    }

    // The customary slot of a host that shows the statement.
    void slotMayAskForAStatementThatCannotBeWritten() {
        HostedBuilder on;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [&] { (void)on.builder.GetSQLStatment(); });
        QCOMPARE(orvtest::errorOf([&] { on.builder.LoadSQL(unwritable); }), error);
        QCOMPARE(on.columns().size(), 2);
        verifyBuilder(on.builder);
    }

    void errorOfASlotDoesNotPassThroughTheOptionOfUniqueRecords() {
        const orvtest::RecordedServices services;
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error(QStringLiteral("slot")); });
        QCOMPARE(orvtest::errorOf([&] { on.builder.SelectPanel->distinctBox()->click(); }),
                 "(no error)");
        QCOMPARE(services.errors, QStringList("slot"));
        QCOMPARE(on.builder.SelectPanel->GetDistinct(), -1);
        verifyBuilder(on.builder);
    }
};

QTEST_MAIN(ThrowingSlotsTest)
#include "tst_throwingslots.moc"
