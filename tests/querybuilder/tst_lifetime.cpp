// SPDX-License-Identifier: MIT
// Nothing dangles: boxes, links and the whole builder may go at any moment, whatever the user is
// just doing with them. Each moment of the one table is tried with each end of the other.
#include "diagram/Orvqdlnkprop.h"
#include "querybuilder/LifetimeEnds.h"
#include "querybuilder/LifetimeMoments.h"
#include "querybuilder/LifetimeRules.h"

using orvtest::allEnds;
using orvtest::allMoments;
using orvtest::answerDialog;
using orvtest::End;
using orvtest::RecordedServices;
using orvtest::runLoopOnce;
using orvtest::Scene;

class LifetimeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void anythingMayGoAtAnyMoment_data() {
        QTest::addColumn<int>("moment");
        QTest::addColumn<int>("end");
        QTest::addColumn<bool>("byTimer");
        for (std::size_t moment = 0; moment < allMoments().size(); ++moment) {
            for (std::size_t end = 0; end < allEnds().size(); ++end) {
                const auto add = [&](const char* how, bool byTimer) {
                    QTest::addRow("%s: %s%s", allMoments()[moment].name, allEnds()[end].name, how)
                        << int(moment) << int(end) << byTimer;
                };
                add("", false);
                if (allEnds()[end].comesByTimer) add(", by a timer", true);
            }
        }
    }
    void anythingMayGoAtAnyMoment() {
        QFETCH(int, moment);
        QFETCH(int, end);
        QFETCH(bool, byTimer);
        RecordedServices services;
        Scene on;
        on.byTimer = byTimer;
        const End& goes = allEnds()[std::size_t(end)];
        int strikes = 0;
        on.strike = [&] {
            ++strikes;
            goes.happen(on);
        };
        allMoments()[std::size_t(moment)].live(on, services);
        if (QTest::currentTestFailed()) return;
        QCOMPARE(strikes, 1);
        runLoopOnce();
        runLoopOnce();
        QCOMPARE(on.builder.isNull(), goes.what == End::Builder);
        QCOMPARE(services.errors, QStringList());
        if (goes.what == End::Box || goes.what == End::Builder) QVERIFY(!on.box);
        QVERIFY(!on.link);
        if (!on.builder) return;
        QVERIFY(!on.area()->isGesturing());
        orvtest::verifyAgrees(*on.builder);
        if (QTest::currentTestFailed()) return;
        orvtest::verifyGoesOn(on);
    }

    // --- several builders

    void dialogOfTheFirstBuilderOutlivesTheSecond() {
        RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        Scene first;
        {
            Scene second;
            QVERIFY(dlgLnkProp);
            QCOMPARE(dlgLnkProp->parent(), second.area());
        }
        QVERIFY(!dlgLnkProp);
        first.area()->editLink(first.link);
        QCOMPARE(first.link->Join->KindOfJoin, klLOuterJoin);
        QCOMPARE(first.link->Operator, 2);
        verifyBuilder(*first.builder);
    }

    void dialogOfTheSecondBuilderOutlivesTheFirst() {
        RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        auto first = std::make_unique<Scene>();
        Scene second;
        first.reset();
        QVERIFY(dlgLnkProp);
        second.area()->editLink(second.link);
        QCOMPARE(second.link->Join->KindOfJoin, klLOuterJoin);
        verifyBuilder(*second.builder);
    }

    void builderMayGoWhileTheDialogOfAnotherIsOpen_data() {
        QTest::addColumn<bool>("byTimer");
        QTest::newRow("at once") << false;
        QTest::newRow("by a timer") << true;
    }
    void builderMayGoWhileTheDialogOfAnotherIsOpen() {
        QFETCH(bool, byTimer);
        RecordedServices services;
        Scene first;
        Scene second;
        first.byTimer = byTimer;
        first.strike = [&] { delete second.builder; };
        services.onDialog = [&](QDialog& dialog) {
            first.strikeNow();
            answerDialog(qobject_cast<TdlgLnkProp*>(&dialog));
            return int(QDialog::Accepted);
        };
        first.area()->editLink(first.link);
        QVERIFY(!second.builder);
        QCOMPARE(first.link->Join->KindOfJoin, klLOuterJoin);
        verifyBuilder(*first.builder);
    }

    void dialogWithoutALinkSaysSo() {
        Scene on;
        auto* dialog = on.area()->findChild<TdlgLnkProp*>();
        dialog->CurrentLnk = on.link;
        on.builder->Clear();
        runLoopOnce();
        runLoopOnce();
        QVERIFY(!dialog->CurrentLnk);
        dialog->btnOKClick();
        QCOMPARE(orvtest::errorOf([&] { dialog->FormShow(); }), QString("Invalid link"));
    }
};

QTEST_MAIN(LifetimeTest)
#include "tst_lifetime.moc"
