// SPDX-License-Identifier: MIT
// Whatever can be built comes back from its own text: random states are written, loaded into a
// second control and compared, and what that one writes is loaded into a third, which changes
// nothing more. Built once for each mode.
#include "core/Error.h"
#include "support/RandomState.h"
#include "support/Sanitizers.h"
#include "support/StateText.h"
#include "support/TestTools.h"
#include "support/WayBack.h"

using orvtest::HostedBuilder;
using orvtest::RandomState;
using orvtest::StateSetting;

namespace {

#ifdef ORV_KEEP_MEANING
constexpr bool keepsMeaning = true;
#else
constexpr bool keepsMeaning = false;
#endif

constexpr unsigned wanted = orvtest::fewerIfSanitized(1000U, 5U);
constexpr unsigned states = wanted + wanted / 8;  // not all of them can be compared
constexpr unsigned blocks = 5;                    // of states, each a test of its own

constexpr int shrinkingRounds = 3;

/// What was seen of the states of one test.
struct Tally {
    int compared = 0;     // that came back
    int notPromised = 0;  // that did not have to
    int plain = 0;        // byte for byte
    int joined = 0;
    int conditions = 0;
    int having = 0;
};

/// Three controls in one mode with one catalogue.
class WayBack {
public:
    explicit WayBack(StateSetting setting) : m_setting(setting) {
        for (HostedBuilder* on : {&m_first, &m_second, &m_third}) {
            orvtest::prepareForRandomStates(*on, setting);
        }
    }

    /// What is wrong with the way back of a state; empty when nothing is.
    QString fault(const RandomState& state, Tally* tally = nullptr) {
        m_services.messages.clear();
        m_statement.clear();
        // Loading the text that is shown already would do nothing.
        m_second.builder.Clear();
        m_third.builder.Clear();
        try {
            state.build(m_first);
            const bool selects = !m_first.columns().isEmpty();
            if (!selects || m_first.builder.ListOfTables->TablesCount() == 0) return {};
            m_statement = m_first.builder.GetSQLStatment();
            return faultOfStatement(tally);
        } catch (const orv::Error& error) {
            return "raised: " + error.Message();
        }
    }

    /// The same with the statement, for the smallest part of the state that still has a fault.
    QString smallestFault(unsigned seed) {
        RandomState state(seed, m_setting);
        const QString kind = fault(state).section(u'\n', 0, 0);
        for (int round = 0; round < shrinkingRounds; ++round) {
            for (int piece = 0; piece < state.pieceCount(); ++piece) {
                const QSet<int> before = state.leftOut();
                if (before.contains(piece)) continue;
                state.setLeftOut(before + QSet<int>{piece});
                if (fault(state).section(u'\n', 0, 0) != kind) state.setLeftOut(before);
            }
        }
        const QString found = fault(state);
        return QStringLiteral("\nsmallest statement:\n%1\n%2").arg(m_statement, found);
    }

    [[nodiscard]] QString statement() const { return m_statement; }

private:
    QString faultOfStatement(Tally* tally) {
        const bool promised = orvtest::promiseOf(m_first.builder).lost.isEmpty();
        const bool plain = orvtest::isPlainState(m_first.builder);
        QString found = orvtest::faultOfWayBack(m_first, m_second, m_third, m_services);
        if (!found.isEmpty() || !tally) return found;
        if (promised) {
            count(*tally, plain);
        } else {
            ++tally->notPromised;
        }
        return {};
    }

    void count(Tally& tally, bool plain) {
        ++tally.compared;
        if (plain) ++tally.plain;
        if (!m_first.builder.WorkArea->Joins().empty()) ++tally.joined;
        if (m_statement.contains("\r\nWHERE ")) ++tally.conditions;
        if (m_statement.contains("\r\nHAVING ")) ++tally.having;
    }

    const StateSetting m_setting;
    orvtest::RecordedServices m_services;
    HostedBuilder m_first;
    HostedBuilder m_second;
    HostedBuilder m_third;
    QString m_statement;
};

}  // namespace

class WayBackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void ownTextComesBack_data() {
        QTest::addColumn<bool>("ownOperators");
        QTest::addColumn<unsigned>("block");
        for (unsigned block = 0; block < blocks; ++block) {
            QTest::addRow("operators of the catalogue, %u", block) << false << block;
            QTest::addRow("operators of the host, %u", block) << true << block;
        }
    }
    void ownTextComesBack() {
        QFETCH(bool, ownOperators);
        QFETCH(unsigned, block);
        const StateSetting setting{keepsMeaning, ownOperators};
        WayBack wayBack(setting);
        Tally tally;
        const unsigned first = (ownOperators ? 100000 : 0) + block * states;
        for (unsigned seed = first; seed < first + states; ++seed) {
            const QString fault = wayBack.fault(RandomState(seed, setting), &tally);
            if (fault.isEmpty()) continue;
            const QString text = QStringLiteral("seed %1\n%2\n").arg(seed).arg(wayBack.statement());
            QFAIL(qPrintable(text + fault + wayBack.smallestFault(seed)));
        }
        // What was compared is worth comparing.
        const auto isFew = [](int count, unsigned share) { return count < int(states / share); };
        QVERIFY(tally.compared >= int(wanted));
        QVERIFY(!isFew(tally.joined, 3));
        QVERIFY(!isFew(tally.conditions, 2));
        QVERIFY(!isFew(tally.having, 10));
        QVERIFY(!keepsMeaning || !isFew(tally.plain, 3));
        // They are few in a thousand: the states of a sanitizer may hold none.
        QVERIFY(orvtest::isSanitized || tally.notPromised > 0);
    }
};

QTEST_MAIN(WayBackTest)
#include "tst_wayback.moc"
