// SPDX-License-Identifier: MIT
// Hosts that misbehave: on every way on which the control comes to its host, handlers raise, refuse
// or call the control in turn. Each way of the one table is tried with each fault of the other.
#include "querybuilder/FaultPaths.h"
#include "querybuilder/Faults.h"
#include "querybuilder/LifetimeRules.h"
#include "querybuilder/ORVQDUndo.h"

#include <QScopeGuard>
#include <QUndoStack>

using orvtest::Fault;
using orvtest::FaultPath;
using orvtest::RecordedServices;
using orvtest::runLoopOnce;
using orvtest::Scene;

namespace {

// What the control says when it does not do, inside of a question, what the host wants.
const QStringList refusals = {
    "LoadSQL is running",
    "A state cannot be restored while a handler is being asked",
    "The operators cannot be edited while a handler is being asked",
};

const std::vector<FaultPath>& allPaths() {
    static const std::vector<FaultPath> all = [] {
        std::vector<FaultPath> paths = orvtest::diagramFaultPaths();
        for (const auto more : {orvtest::noticeFaultPaths, orvtest::pageFaultPaths}) {
            for (FaultPath& path : more()) paths.push_back(std::move(path));
        }
        return paths;
    }();
    return all;
}

bool goesWith(const FaultPath& path, const Fault& fault) {
    if (fault.kind == Fault::Kind::Refuses) return path.traits & FaultPath::Asks;
    if (fault.endsBuilder && path.traits & FaultPath::QtGoesOn) return false;
    const bool isTold = path.by == FaultPath::By::Hand || path.traits & FaultPath::Reports;
    return !fault.handler || isTold;
}

/// What is seen of the statement.
QString statementOf(TorvQueryBuilder& builder) {
    QString text;
    const QString error = orvtest::errorOf([&] { text = builder.GetSQLStatment(); });
    return text + error;
}

}  // namespace

class FaultsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A window that is closed is not the end of the program.
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }
    void init() {
        orvtest::failOnAnyWarning();
        m_drags = orv::setDragRunner({});
        m_isArmed = true;
    }
    void cleanup() { orv::setDragRunner(m_drags); }

    void controlOutlivesFaults_data() {
        QTest::addColumn<int>("path");
        QTest::addColumn<int>("fault");
        for (std::size_t path = 0; path < allPaths().size(); ++path) {
            for (std::size_t fault = 0; fault < orvtest::allFaults().size(); ++fault) {
                const FaultPath& way = allPaths()[path];
                const Fault& what = orvtest::allFaults()[fault];
                if (!goesWith(way, what)) continue;
                QTest::addRow("%s: %s", way.name, what.name) << int(path) << int(fault);
            }
        }
    }
    void controlOutlivesFaults() {
        QFETCH(int, path);
        QFETCH(int, fault);
        m_path = &allPaths()[std::size_t(path)];
        m_fault = &orvtest::allFaults()[std::size_t(fault)];
        RecordedServices services;
        Scene on;
        QUndoStack stack;
        const orv::UndoRecorder recorder(on.builder, &stack);
        on.undo = &stack;
        const auto over = qScopeGuard([this] { m_isArmed = false; });
        const QByteArray beginning = orv::editedState(*on.builder);
        on.builder->setTailText("FOR UPDATE");
        m_path->prepare(on);
        if (QTest::currentTestFailed()) return;
        runLoopOnce();
        liveThrough(on, services, stack);
        if (QTest::currentTestFailed() || !on.builder) return;
        orvtest::verifyAgrees(*on.builder);
        if (QTest::currentTestFailed()) return;
        if (m_fault->isState) verifyUndo(on, stack, beginning);
        if (QTest::currentTestFailed()) return;
        on.builder->OnAddRemoveTable = nullptr;
        on.area()->setZoom(1);
        on.builder->show();
        orvtest::verifyGoesOn(on);
    }

private:
    void liveThrough(Scene& on, RecordedServices& services, QUndoStack& stack) {
        const QByteArray before = on.builder->SaveState();
        const QString statement = statementOf(*on.builder);
        int changes = 0;
        connect(on.builder, &TorvQueryBuilder::StatementChanged, this, [&] { ++changes; });
        m_strikes = 0;
        m_refusal.clear();
        listenToErrors(on, services);
        m_path->arm(on, services, [&](bool* allowed) { strike(on, stack, allowed); });
        const QString raised = orvtest::anyErrorOf([&] { m_path->act(on); });
        if (QTest::currentTestFailed()) return;
        runLoopOnce();
        runLoopOnce();
        m_isArmed = false;
        QVERIFY(m_strikes > 0);
        if (m_fault->kind == Fault::Kind::Enters) {
            if (!refusals.contains(m_refusal)) QCOMPARE(m_refusal, QString("(no error)"));
        }
        QCOMPARE(on.builder.isNull(), m_fault->endsBuilder);
        verifyErrors(services, raised);
        if (QTest::currentTestFailed() || !on.builder) return;
        QVERIFY(!on.area()->isGesturing());
        on.builder->disconnect(this);
        verifyChanges(on, before, statement, changes);
    }

    // Handlers stay, but behave once the way has been gone.
    void strike(Scene& on, QUndoStack& stack, bool* allowed) {
        if (!m_isArmed) return;
        ++m_strikes;
        if (m_fault->kind == Fault::Kind::Refuses) {
            *allowed = false;
        } else if (m_strikes == 1 && m_fault->kind == Fault::Kind::Raises) {
            m_fault->happen(on, stack);
        } else if (m_strikes == 1) {
            m_refusal = orvtest::errorOf([&] { m_fault->happen(on, stack); });
        }
    }

    // As the recorder of the services does, and then the host's part.
    void listenToErrors(Scene& on, RecordedServices& services) const {
        if (!m_fault->handler) return;
        orv::setErrorHandler([&on, &services, handler = m_fault->handler](const QString& text) {
            services.errors << text;
            handler(on);
        });
    }

    void verifyErrors(const RecordedServices& services, const QString& raised) const {
        const bool passes =
            m_path->by == FaultPath::By::Call && !(m_path->traits & FaultPath::Reports);
        const QStringList expected = m_fault->kind == Fault::Kind::Raises
                                         ? QStringList(QString::fromLatin1(m_fault->error))
                                         : QStringList();
        const QString none = QStringLiteral("(no error)");
        QStringList errors = services.errors;
        if (m_fault->kind == Fault::Kind::Enters) {
            errors.removeIf([](const QString& text) { return refusals.contains(text); });
        }
        QCOMPARE(errors, passes ? QStringList() : expected);
        QCOMPARE(raised, passes ? expected.value(0, none) : none);
    }

    // One notice of an action that changes the statement; none of one that did not happen.
    void verifyChanges(Scene& on, const QByteArray& before, const QString& statement,
                       int changes) const {
        const int most = m_path->traits & FaultPath::Twice ? 2 : 1;
        if (m_fault->kind == Fault::Kind::Enters || m_fault->handler) {
            if (statementOf(*on.builder) != statement) QVERIFY(changes > 0);
            return;
        }
        QVERIFY2(changes <= most, qPrintable(QString::number(changes)));
        if (m_path->traits & FaultPath::Keeps) {
            QCOMPARE(on.builder->SaveState(), before);
            QCOMPARE(changes, 0);
        } else if (statementOf(*on.builder) != statement) {
            QVERIFY(changes > 0);
        }
    }

    static void verifyUndo(Scene& on, QUndoStack& stack, const QByteArray& beginning) {
        while (stack.canUndo()) stack.undo();
        QCOMPARE(orv::editedState(*on.builder), beginning);
    }

    orv::DragRunner m_drags;
    const FaultPath* m_path = nullptr;
    const Fault* m_fault = nullptr;
    bool m_isArmed = true;
    int m_strikes = 0;  // of the host
    QString m_refusal;  // what it was told when it called the control in turn
};

QTEST_MAIN(FaultsTest)
#include "tst_faults.moc"
