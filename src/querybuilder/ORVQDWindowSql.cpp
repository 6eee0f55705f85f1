// SPDX-License-Identifier: MIT
// The statement of the query builder: assembled from its pages, and loaded into them.
#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"
#include "querybuilder/ORVQDStatement.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QPointer>
#include <QThread>

namespace {

QString clauseLoss(TLocationKinds location) {
    switch (location) {
    case inWhere:
        return QStringLiteral(
            "Conditions are not held yet: without them the statement gives other "
            "rows.");
    case inHaving:
        return QStringLiteral(
            "Grouping conditions are not held yet: without them the statement "
            "gives other rows.");
    case inOrderBy: return QStringLiteral("Sorting is not held yet: the rows come in any order.");
    case inUnknown:
    case inFunction:
    case inItem:
    case inSelect:
    case inFrom:
    case inGroupBy: break;
    }
    return {};
}

// A table name with full stops gets its last part as an alias when it has none.
void addImpliedAliases(const orv::TokenRun& run, orv::TokenCounts& counts) {
    for (int index = 0; index < run.size(); ++index) {
        const QString name = run.textOf(index).toString();
        const bool isQualified =
            run[index].kind == orv::SqlToken::Word && orv::firstFullStop(name) >= 0;
        const bool endsItem = index + 1 == run.size() ||
                              run[index + 1].kind != orv::SqlToken::Word ||
                              run.is(index + 1, u"CROSS");
        if (!isQualified || !endsItem) continue;
        for (const auto& [word, count] : orv::countTokens(run.mid(index, 1)).asKeyValueRange()) {
            counts[word] += count;
        }
    }
}

bool containsSquareBracket(const TOperatorList& operators) {
    for (int index = 0; index < operators.Count(); ++index) {
        if (operators.Items(index)->Name.contains(u'[')) return true;
    }
    return false;
}

}  // namespace

QString TorvQueryBuilder::GetSQLStatment() {
    Q_ASSERT(thread() == QThread::currentThread());
    if (!WorkArea) return {};
    flushRemovals();
    const orv::SelectTexts texts = SelectPanel->grid()->GetSQLStatment();
    orv::StatementClauses clauses;
    clauses.distinct = SelectPanel->GetDistinct() != 0;
    clauses.select = texts.select;
    clauses.groupBy = texts.groupBy;
    clauses.from = WorkArea->GetSQLStatment();
    clauses.tail = m_tail;
    return orv::assembleStatement(clauses);
}

// --- clearing
// -------------------------------------------------------------------------------------

// The host's handlers are in the middle of a question: what they were asked about must not go.
void TorvQueryBuilder::refuseWhileBusy() const {
    if (m_loading || m_hostCalls > 0) throw orv::Error(QStringLiteral("LoadSQL is running"));
}

void TorvQueryBuilder::Clear() {
    Q_ASSERT(thread() == QThread::currentThread());
    refuseWhileBusy();
    beginChange();
    clearAll();
    endChange();
}

void TorvQueryBuilder::clearAll() {
    m_removals.clear();
    m_selectedFields.clear();
    if (WorkArea) WorkArea->ClearContents();
    if (SelectPanel) {
        SelectPanel->ClearContents();
        SelectPanel->SetDistinct(0);
    }
    m_tail.clear();
    m_report.clear();
    statementChanged();
}

// --- loading
// --------------------------------------------------------------------------------------

namespace {

// For as long as it lives a statement is being loaded; the builder may die meanwhile.
class LoadScope {
public:
    LoadScope(TorvQueryBuilder* builder, bool& loading, std::unique_ptr<orv::LoadLedger>& ledger)
        : m_builder(builder), m_loading(loading), m_ledger(ledger) {
        m_loading = true;
        m_updates = builder->updatesEnabled();
        builder->setUpdatesEnabled(false);
        builder->beginChange();
    }
    ~LoadScope() {
        if (!m_builder) return;
        m_loading = false;
        m_ledger.reset();
        m_builder->setUpdatesEnabled(m_updates);
        m_builder->endChange();
    }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;

private:
    QPointer<TorvQueryBuilder> m_builder;
    bool& m_loading;
    std::unique_ptr<orv::LoadLedger>& m_ledger;
    bool m_updates;
};

}  // namespace

void TorvQueryBuilder::LoadSQL(const QString& Text) {
    Q_ASSERT(thread() == QThread::currentThread());
    refuseWhileBusy();
    if (!WorkArea) return;
    bool isShown = false;
    try {
        isShown = Text == GetSQLStatment();
    } catch (const orv::Error&) {
        isShown = false;  // what cannot be written is no statement
    }
    const QPointer<TorvQueryBuilder> self(this);
    if (!isShown) {
        const orv::SquareBrackets brackets = containsSquareBracket(*Operators)
                                                 ? orv::SquareBrackets::AreSigns
                                                 : orv::SquareBrackets::QuoteNames;
        auto ledger = std::make_unique<orv::LoadLedger>(Text, orv::NormaliseSQL(Text, brackets));
        const orv::StatementParts parts = orv::splitStatement(ledger->text(), ledger->tokens());
        const TorvQDParser root(ledger->text().left(parts.bodyEnd));
        checkLoadable(root);
        m_ledger = std::move(ledger);
        const LoadScope scope(this, m_loading, m_ledger);
        clearAll();
        loadParsed(root);
        if (!self) return;
        loadTail(parts.tailStart, parts.tailEnd, parts.restStart);
        compareClauses(root);
        m_report = m_ledger->findings();
    } else {
        m_report.clear();
    }
    if (self) Q_EMIT LoadReported(m_report);
}

// What can be seen to fail fails before anything is cleared.
void TorvQueryBuilder::checkLoadable(const TorvQDParser& root) const {
    const TorvQDParser* from = root.Clause(inFrom);
    if (!from) return;
    if (!canGetTableFields()) {
        throw orv::Error(QStringLiteral(
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables"));
    }
    for (const TorvQDParser::Node& child : from->Children()) {
        const bool hasTable = child->Count() > 0 && child->Child(0)->Kind() == otTable;
        if (child->Kind() == otJoin && !hasTable) {
            throw orv::Error(QStringLiteral("There is no Table for join"));
        }
    }
}

void TorvQueryBuilder::loadParsed(const TorvQDParser& root) {
    const QPointer<TorvQueryBuilder> self(this);
    if (!root.Clause(inFrom)) {
        m_ledger->report(root.Start(), int(root.Source().size()),
                         QStringLiteral("A statement without FROM cannot be shown: nothing is "
                                        "loaded."));
        return;
    }
    for (const TorvQDParser::Node& child : root.Children()) {
        if (child->Location() == inFrom) {
            WorkArea->LoadSQL(*child);
            if (!self) return;
            SelectPanel->grid()->LoadSQL(root);
        } else if (const QString loss = clauseLoss(child->Location()); !loss.isEmpty()) {
            m_ledger->report(child->Start(), child->End(), loss);
        }
    }
}

void TorvQueryBuilder::loadTail(int tailStart, int tailEnd, int restStart) {
    if (tailStart < tailEnd) {
        const orv::TokenRun tail = m_ledger->tokensIn(tailStart, tailEnd);
        m_tail = m_ledger->givenText(tail.start(), tail.endPosition());
        m_ledger->place(tailStart, tailEnd);
    }
    if (restStart < int(m_ledger->text().size())) {
        m_ledger->report(restStart, int(m_ledger->text().size()),
                         QStringLiteral("A second statement is not loaded."));
    }
}

// A safety net: a FROM clause that comes out different without anybody having said so.
void TorvQueryBuilder::compareClauses(const TorvQDParser& root) {
    const TorvQDParser* from = root.Clause(inFrom);
    if (!from || m_ledger->hasFinding(from->Start(), from->End())) return;
    const orv::TokenRun loaded = m_ledger->tokensIn(from->Start(), from->End());
    orv::TokenCounts expected = orv::countTokens(loaded.mid(1));
    expected.remove(QStringLiteral("CROSS"));
    expected.remove(QStringLiteral("JOIN"));
    addImpliedAliases(loaded.mid(1), expected);
    if (expected == orv::countTokens(WorkArea->GetSQLStatment())) return;
    m_ledger->report(from->Start(), from->End(),
                     QStringLiteral("This clause is written differently."));
}
