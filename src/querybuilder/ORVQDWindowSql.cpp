// SPDX-License-Identifier: MIT
// The statement of the query builder: assembled from its pages, and loaded into them.
#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"
#include "querybuilder/ORVQDStatement.h"
#include "querybuilder/ORVQDValidate.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDKeptPlaces.h"

#include <QPointer>
#include <QSet>
#include <QThread>

#include <utility>

namespace {

/// What a FROM clause says, as far as two of the same meaning have it in common.
struct FromWords {
    QSet<QString> names;       // of tables and aliases: one of them may be implied
    orv::TokenCounts content;  // of the ON conditions and the words of joins
};

// CROSS JOIN is written as a comma, and a comparison may move to another line, which changes the
// number of ANDs. Sides may change places: LEFT becomes RIGHT then, and "<" becomes ">".
FromWords wordsOf(const orv::TokenCounts& counts, const QSet<QString>& namesOfTables) {
    static const QSet<QString> implied = {QStringLiteral("CROSS"), QStringLiteral("JOIN"),
                                          QStringLiteral("ON"), QStringLiteral("AND")};
    static const QHash<QString, QString> mirrored = {
        {QStringLiteral("RIGHT"), QStringLiteral("LEFT")},
        {QStringLiteral(">"), QStringLiteral("<")},
        {QStringLiteral(">="), QStringLiteral("<=")},
        {QStringLiteral("!="), QStringLiteral("<>")}};
    FromWords words;
    for (auto count = counts.constBegin(); count != counts.constEnd(); ++count) {
        if (implied.contains(count.key())) continue;
        const QString name = orv::withoutQuotes(count.key()).toUpper();  // FROM T AS 'A'
        if (namesOfTables.contains(count.key()) || namesOfTables.contains(name)) {
            words.names.insert(name);
        } else {
            words.content[mirrored.value(count.key(), count.key())] += count.value();
        }
    }
    return words;
}

QSet<QString> namesOfTables(const TorvQDWorkArea& area) {
    QSet<QString> names;
    for (const TorvQDTable* table : area.tablesByCreation()) {
        for (const QString& name : {table->TableName, table->GetAlias()}) {
            const orv::TokenCounts counts = orv::countTokens(name);
            names += QSet<QString>(counts.keyBegin(), counts.keyEnd());
        }
    }
    return names;
}

// A FROM that is there may stand behind a bracket or quote that nothing closes.
QString reasonWithoutFrom(const QString& text) {
    int open = 0;
    for (const orv::SqlToken& token : orv::tokenise(text)) {
        if (token.kind == orv::SqlToken::Open) ++open;
        if (token.kind == orv::SqlToken::Close) --open;
    }
    if (open > 0) {
        return QStringLiteral("A bracket is not closed: nothing is loaded.");
    }
    if (text.count(u'\'') % 2 != 0 || text.count(u'"') % 2 != 0) {
        return QStringLiteral("A quote is not closed: nothing is loaded.");
    }
    return QStringLiteral("A statement without FROM cannot be shown: nothing is loaded.");
}

void untickAll(const TorvQDWorkArea& area) {
    for (const TorvQDTable* table : area.tablesByCreation()) {
        for (const auto& item : table->Items) {
            if (item->ParamType == ptOutput && item->Checked) item->UpdateCheck(0);
        }
    }
}

bool containsSquareBracket(const TOperatorList& operators) {
    for (int index = 0; index < operators.Count(); ++index) {
        const TorvQDOperator& entry = *operators.Items(index);
        for (const QString& text : {entry.Name, entry.Prefix, entry.Relate, entry.Postfix}) {
            if (text.contains(u'[')) return true;
        }
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
    clauses.where = WherePanel->GetSQLStatment();
    clauses.having = HavingPanel->GetSQLStatment();
    clauses.orderBy = OrderPanel->GetSQLStatment();
    clauses.tail = m_tail;
    return orv::assembleStatement(clauses);
}

orv::Findings TorvQueryBuilder::Validate() {
    Q_ASSERT(thread() == QThread::currentThread());
    return WorkArea ? orv::validate(*this) : orv::Findings();
}

// --- clearing ---

// The host's handlers are in the middle of a question: what they were asked about must not go.
void TorvQueryBuilder::refuseWhileBusy() const {
    if (isBusy()) throw orv::Error(QStringLiteral("LoadSQL is running"));
}

void TorvQueryBuilder::Clear() {
    Q_ASSERT(thread() == QThread::currentThread());
    refuseWhileBusy();
    ChangeScope change(this, this);
    clearAll();
    change.finish();
}

// The diagram comes last: the host hears of it, and may begin another query or end it all.
void TorvQueryBuilder::clearAll() {
    statementChanged();
    discardEdits();
    m_removals.clear();
    m_selectedFields.clear();
    m_givenNames.clear();
    if (SelectPanel) {
        SelectPanel->ClearContents();
        SelectPanel->SetDistinct(0);
        WherePanel->ClearContents();
        HavingPanel->ClearContents();
        OrderPanel->ClearContents();
    }
    showTail({});
    m_report.clear();
    if (WorkArea) WorkArea->ClearContents();
}

// --- loading ---

namespace {

// For as long as it lives a statement is being loaded; the builder may die meanwhile.
class LoadScope {
public:
    LoadScope(TorvQueryBuilder* builder, bool& loading, std::unique_ptr<orv::LoadLedger>& ledger)
        : m_builder(builder),
          m_loading(loading),
          m_ledger(ledger),
          m_updates(builder->updatesEnabled()) {
        m_loading = true;
        builder->setUpdatesEnabled(false);
        builder->beginChange();
    }
    // Loading failed: what the host's slots raise now must not hide why.
    ~LoadScope() {
        orv::guarded([this] { finish(); });
    }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;

    /// Ends the load and tells of the change; what a slot of the host raises passes through.
    void finish() {
        const QPointer<TorvQueryBuilder> builder = std::exchange(m_builder, nullptr);
        if (!builder) return;
        m_loading = false;
        m_ledger.reset();
        builder->setUpdatesEnabled(m_updates);
        builder->endChange();
    }

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
    const QPointer<TorvQueryBuilder> self(this);
    m_report.clear();
    try {
        if (!isShown(Text)) loadText(Text);
    } catch (...) {
        if (self) m_report.clear();  // it would be about a load that ended otherwise
        throw;
    }
    if (!self) return;
    // A slot may replace the findings, by clearing everything, say, while it goes through them.
    const orv::Findings report = m_report;
    Q_EMIT LoadReported(report);
}

// Loading the statement that is shown must not disturb the pages. What cannot be written is none.
bool TorvQueryBuilder::isShown(const QString& text) {
    try {
        return text == GetSQLStatment();
    } catch (const orv::Error&) {
        return false;
    }
}

void TorvQueryBuilder::loadText(const QString& text) {
    const orv::SquareBrackets brackets = containsSquareBracket(*Operators)
                                             ? orv::SquareBrackets::AreSigns
                                             : orv::SquareBrackets::QuoteNames;
    auto ledger = std::make_unique<orv::LoadLedger>(text, orv::NormaliseSQL(text, brackets));
    const orv::StatementParts parts = orv::splitStatement(ledger->text(), ledger->tokens());
    const TorvQDParser root(ledger->text().left(parts.bodyEnd));
    checkLoadable(root, *ledger);
    const QPointer<TorvQueryBuilder> self(this);
    m_ledger = std::move(ledger);
    LoadScope scope(this, m_loading, m_ledger);
    const orv::KeptPlaces places(*WorkArea);
    clearAll();
    if (!self) return;
    if (root.Clause(inFrom)) {
        m_ledger->reportUnclosed(parts.tailEnd);
        loadParsed(root);
        if (!self) return;
        places.apply(*WorkArea);
        m_ledger->reportChangedTexts(parts.bodyEnd);
        loadTail(parts.tailStart, parts.tailEnd, parts.restStart);
        compareClauses(root);
    } else {
        m_ledger->report(0, int(m_ledger->text().size()), reasonWithoutFrom(root.Source()));
    }
    m_report = m_ledger->findings();
    scope.finish();
}

// What can be seen to fail fails before anything is cleared.
void TorvQueryBuilder::checkLoadable(const TorvQDParser& root,
                                     const orv::LoadLedger& ledger) const {
    const TorvQDParser* from = root.Clause(inFrom);
    if (!from) return;
    if (!canGetTableFields()) {
        throw orv::Error(QStringLiteral(
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables"));
    }
    for (const TorvQDParser::Node& child : root.Children()) {
        if (child->Location() == inWhere) {
            WherePanel->checkLoadable(*child, ledger, m_keepMeaning);
        } else if (child->Location() == inHaving) {
            HavingPanel->checkLoadable(*child, ledger, m_keepMeaning);
        }
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
    for (const TorvQDParser::Node& child : root.Children()) {
        if (child->Location() == inFrom) {
            WorkArea->LoadSQL(*child);
            if (!self) return;
            // A handler of the host may have ticked rows meanwhile, which have no columns then.
            untickAll(*WorkArea);
            m_selectedFields.clear();
            m_givenNames.clear();
            m_removals.clear();
            SelectPanel->grid()->LoadSQL(root);
        } else if (child->Location() == inWhere) {
            WherePanel->LoadSQL(*child);
        } else if (child->Location() == inHaving) {
            HavingPanel->LoadSQL(*child);
        } else if (child->Location() == inOrderBy) {
            OrderPanel->LoadSQL(*child);
        }
    }
    settleHaving(root);
}

// HAVING is written behind a GROUP BY list only.
void TorvQueryBuilder::settleHaving(const TorvQDParser& root) {
    const TorvQDParser* having = root.Clause(inHaving);
    if (!having) return;
    QString groupBy;
    try {
        groupBy = SelectPanel->grid()->GetSQLStatment().groupBy;
    } catch (const orv::Error&) {
        return;  // told already: nothing is written at all
    }
    if (!orv::isBlank(groupBy)) return;
    m_ledger->report(having->Start(), having->End(),
                     QStringLiteral("Without a GROUP BY list this condition is not written."));
}

void TorvQueryBuilder::loadTail(int tailStart, int tailEnd, int restStart) {
    showTail({});  // a handler of the host may have set one meanwhile
    if (tailStart < tailEnd) {
        const orv::TokenRun tail = m_ledger->tokensIn(tailStart, tailEnd);
        showTail(m_ledger->givenText(tail.start(), tail.endPosition()));
        m_ledger->place(tailStart, tailEnd);
    }
    if (restStart < int(m_ledger->text().size())) {
        m_ledger->report(restStart, int(m_ledger->text().size()),
                         QStringLiteral("A second statement is not loaded."));
    }
}

// A safety net: a FROM clause that comes out different without anybody having said so. The pages
// compare their own clauses.
void TorvQueryBuilder::compareClauses(const TorvQDParser& root) {
    const TorvQDParser* from = root.Clause(inFrom);
    if (!from || m_ledger->hasFinding(from->Start(), from->End())) return;
    const QSet<QString> names = namesOfTables(*WorkArea);
    const orv::TokenRun clause = m_ledger->tokensIn(from->Start(), from->End());
    const FromWords loaded = wordsOf(orv::countTokens(clause.mid(1)), names);
    const FromWords written = wordsOf(orv::countTokens(WorkArea->GetSQLStatment()), names);
    if (loaded.names == written.names && loaded.content == written.content) return;
    m_ledger->report(from->Start(), from->End(),
                     QStringLiteral("This clause is written differently."));
}
