// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWherePanel.h"

#include "contract/ChangeScope.h"
#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDAliasRename.h"
#include "criteria/ORVQDConditionEditor.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDConditionMeaning.h"
#include "criteria/ORVQDFontWidths.h"
#include "criteria/ORVQDNodeText.h"
#include "criteria/ORVQDRowBuilder.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace {

bool isClauseOfConditions(TLocationKinds location) {
    return location == inWhere || location == inHaving;
}

// Numbers of SQL or of the user's language; no group separators.
template <typename Convert>
bool convertsInEither(const Convert& convert) {
    for (QLocale language : {QLocale::c(), QLocale()}) {
        language.setNumberOptions(QLocale::RejectGroupSeparator);
        if (convert(language)) return true;
    }
    return false;
}

bool isInteger(const QString& text) {
    return convertsInEither([&](const QLocale& language) {
        bool converts = false;
        (void)language.toLongLong(text, &converts);
        return converts;
    });
}

// "INF" and "NAN" are names in SQL.
bool isFloat(const QString& text) {
    return convertsInEither([&](const QLocale& language) {
        bool converts = false;
        return std::isfinite(language.toDouble(text, &converts)) && converts;
    });
}

// Both sides in one of the sets of types that go together, or of the same type.
bool goTogether(TFieldType type, TFieldType other) {
    for (const CompatibleFields* set : {&sNumeric, &sFloat, &sString}) {
        if (set->contains(type)) return set->contains(other);
    }
    return type == other;
}

template <typename Visit>
void visitConditions(TorvQDWhereRow& row, const Visit& visit) {
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        visitConditions(*row.SubRows->Row(index), visit);
    }
    if (!row.isGroup()) visit(row);
}

bool isEmptyBracket(const orv::TokenRun& run) {
    return run.size() == 2 && run[0].kind == orv::SqlToken::Open &&
           run[1].kind == orv::SqlToken::Close;
}

// Places what the rows hold, and tells where reading from left to right changes the meaning.
void account(const std::vector<orv::ConditionElement>& level, orv::LoadLedger& ledger,
             bool keepsMeaning) {
    const std::vector<const orv::ConditionElement*> changed =
        keepsMeaning ? std::vector<const orv::ConditionElement*>() : orv::andsBehindOr(level);
    for (const orv::ConditionElement* element : changed) {
        ledger.report(element->run, QStringLiteral("AND and OR are combined from left to right: "
                                                   "the condition means something else."));
    }
    bool hasOperand = false;
    for (const orv::ConditionElement& element : level) {
        if (element.kind == orv::ConditionElement::Bracket) {
            account(element.children, ledger, keepsMeaning);
        }
        const bool connects =
            element.kind == orv::ConditionElement::And || element.kind == orv::ConditionElement::Or;
        if (connects && !hasOperand) {
            ledger.report(element.run, QStringLiteral("A condition is missing in front of this."));
        }
        if (element.kind == orv::ConditionElement::Condition && isEmptyBracket(element.run)) {
            ledger.report(element.run, QStringLiteral("A condition is missing in this bracket."));
        }
        hasOperand = element.kind == orv::ConditionElement::Bracket ||
                     element.kind == orv::ConditionElement::Condition;
    }
    if (!hasOperand && !level.empty()) {
        ledger.report(level.back().run, QStringLiteral("A condition is missing behind this."));
    }
}

// Where texts must come back as they are, a NOT must not put a group around its bracket.
orv::Nots notsOf(bool keepsMeaning) {
    return keepsMeaning ? orv::Nots::Merge : orv::Nots::Nest;
}

// Whether the parser stopped inside the last condition: in front of a word that opens something
// else at other places.
bool isCutOff(const orv::TokenRun& condition, const orv::LoadLedger& ledger) {
    if (condition.isEmpty()) return false;
    const int last = condition.size() - 1;
    if (orv::endsOperand(condition, last)) return false;
    const orv::TokenRun behind =
        ledger.tokensIn(condition.endPosition(), int(ledger.text().size()));
    if (behind.isEmpty() || behind[0].kind != orv::SqlToken::Word) return false;
    const QStringList followers = {QStringLiteral("GROUP"), QStringLiteral("HAVING"),
                                   QStringLiteral("ORDER")};
    return !followers.contains(behind.textOf(0).toString().toUpper());
}

// Where the last connective of the condition stands.
int behindLastWholeCondition(const orv::TokenRun& condition, const orv::ConditionRules& rules) {
    const auto elements = orv::readConditions(condition, rules);
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        const bool connects = element->kind == orv::ConditionElement::And ||
                              element->kind == orv::ConditionElement::Or;
        if (connects) return int(element->run.begin() - condition.begin());
    }
    return 0;
}

}  // namespace

TorvQDWherePanel::TorvQDWherePanel(QWidget* Parent) : QAbstractScrollArea(Parent) {
    // The sheets belong to the query builder, above.
    if (!Parent || !Parent->inherits("TorvTabSheet")) {
        throw orv::Error(QStringLiteral("Invalide parent for conditions panel"));
    }
    prepareView();
}

TorvQDWherePanel::~TorvQDWherePanel() {
    m_context.changed = nullptr;
    m_editor.reset();
}

void TorvQDWherePanel::Activate() {
    if (m_root) return;
    m_context.operators = Operators;
    m_context.groupOperators = GroupOpers;
    m_context.functions = Functions;
    m_context.widths = m_widths.get();
    m_context.changed = [this](TorvQDWhereRow* row) { rowsChanged(row); };
    m_root = std::make_unique<TorvQDWhereRows>(&m_context, nullptr);
    m_layout = std::make_unique<orv::ConditionLayout>(m_context, *m_root);
    m_root->AddRow();
    m_editor = std::make_unique<orv::ConditionEditor>(*this);
    ClearContents();
    createMenus();
}

TorvQDWhereRow* TorvQDWherePanel::rootRow() const {
    return m_root ? m_root->Row(0) : nullptr;
}

IPagesHost* TorvQDWherePanel::host() const {
    return orv::pagesHostAbove(this);
}

QString TorvQDWherePanel::GetSQLStatment() const {
    return rootRow() ? rootRow()->GetSQLCondition(true) : orv::blankText();
}

void TorvQDWherePanel::ClearContents() {
    TorvQDWhereRow* root = rootRow();
    if (!root) return;
    const bool hadRows = root->SubRows->GetCount() > 0;
    clearRows();
    IPagesHost* owner = host();
    if (hadRows && owner) owner->statementChanged();
}

void TorvQDWherePanel::clearRows() {
    TorvQDWhereRow* root = rootRow();
    discardEdit();
    root->SubRows->Clear();
    root->SetGroupOper(QStringLiteral("All"));
    setCurrentElement(nullptr);
    setActiveElement(root->Controls[ekGroupOper].get());
}

orv::ConditionRules TorvQDWherePanel::readingRules(bool keepMeaning) const {
    return {Operators, Functions, keepMeaning};
}

void TorvQDWherePanel::LoadSQL(const TorvQDParser& Node) {
    if (!isClauseOfConditions(Node.Location())) {
        throw orv::Error(QStringLiteral("There is not valid object for extract selection list"));
    }
    IPagesHost* owner = host();
    const bool keepsMeaning = owner && owner->KeepMeaning();
    if (orv::LoadLedger* ledger = owner ? owner->ledger() : nullptr) {
        loadRun(ledger->tokensIn(Node.Start(), Node.End()), ledger, keepsMeaning);
        return;
    }
    // Outside the loading of a statement nobody keeps account, and the source is not at hand.
    const QString text = Node.Text() + u' ' + orv::nodeText(Node);
    const orv::SqlTokens tokens = orv::tokenise(text);
    loadRun({text, tokens.data(), tokens.data() + tokens.size()}, nullptr, keepsMeaning);
}

// Takes the whole clause, with its keyword.
void TorvQDWherePanel::loadRun(const orv::TokenRun& run, orv::LoadLedger* ledger,
                               bool keepsMeaning) {
    TorvQDWhereRow* root = rootRow();
    if (!root) return;
    orv::TokenRun condition = run.mid(std::min(1, run.size()));
    checkDepth(condition, keepsMeaning);
    const int end = orv::conditionEnd(condition, Operators);
    orv::TokenRun rest = condition.mid(end);
    condition = condition.mid(0, end);
    if (ledger && rest.isEmpty() && isCutOff(condition, *ledger)) {
        const int kept = behindLastWholeCondition(condition, readingRules(false));
        rest = condition.mid(kept);
        condition = condition.mid(0, kept);
    }
    const auto elements = orv::readConditions(condition, readingRules(keepsMeaning));
    IPagesHost* owner = host();
    ChangeScope change(owner, this);
    clearRows();
    if (!elements.empty()) orv::buildRows(elements, root, false, notsOf(keepsMeaning));
    if (ledger) {
        ledger->place(run);
        if (!rest.isEmpty()) {
            ledger->report(rest, QStringLiteral("The rest of this condition was not understood."));
        }
        if (elements.empty() && rest.isEmpty()) {
            ledger->report(run, QStringLiteral("This clause has no condition."));
        }
        account(elements, *ledger, keepsMeaning);
        compareWritten(elements, run, *ledger);
    }
    if (owner) owner->statementChanged();
    change.finish();
}

// A pathological condition is read on trial: most are told from their brackets and connectives.
void TorvQDWherePanel::checkDepth(const orv::TokenRun& condition, bool keepsMeaning) const {
    if (orv::mostGroupsBelow(condition) <= orv::deepestCondition) return;
    orv::ConditionRules rules = readingRules(keepsMeaning);
    rules.structureOnly = true;
    const auto elements = orv::readConditions(condition, rules);
    if (orv::groupsBelow(elements, notsOf(keepsMeaning)) > orv::deepestCondition)
        orv::raiseTooDeep();
}

void TorvQDWherePanel::checkLoadable(const TorvQDParser& node, const orv::LoadLedger& ledger,
                                     bool keepMeaning) const {
    const orv::TokenRun run = ledger.tokensIn(node.Start(), node.End());
    checkDepth(run.mid(std::min(1, run.size())), keepMeaning);
}

// A safety net: what the rows write is read again, and must say what was loaded. Where they nest
// deeper than can be read, words are counted.
void TorvQDWherePanel::compareWritten(const std::vector<orv::ConditionElement>& loaded,
                                      const orv::TokenRun& run, orv::LoadLedger& ledger) const {
    if (loaded.empty() || ledger.hasFinding(run.start(), run.endPosition())) return;
    const QString written = rootRow()->GetSQLCondition(false);
    const orv::SqlTokens tokens = orv::tokenise(written);
    const orv::TokenRun text(written, tokens.data(), tokens.data() + tokens.size());
    orv::ConditionRules rules = readingRules(true);
    rules.structureOnly = true;  // operands are compared as texts
    try {
        const auto elements = orv::readConditions(text, rules);
        if (orv::meaningOf(elements) == orv::meaningOf(loaded)) return;
    } catch (const orv::Error&) {
        // Its groups nest deeper than can be read again.
        if (orv::countTokens(text) == orv::countTokens(run.mid(1))) return;
    }
    ledger.report(run, QStringLiteral("This clause is written differently."));
}

// "PO.X" is not renamed with "O".
void TorvQDWherePanel::ChangeAlias(const QString& NewAlias, const QString& OldAlias) {
    if (NewAlias == OldAlias || !rootRow()) return;
    const QPointer<TorvQDWherePanel> self(this);
    commitEdit();
    if (!self) return;
    visitConditions(*rootRow(), [&](TorvQDWhereRow& row) {
        bool isRenamed = false;
        const auto rename = [&](QString& text) {
            const QString renamed = orv::renamedAlias(text, NewAlias, OldAlias);
            isRenamed = isRenamed || renamed != text;
            text = renamed;
        };
        rename(row.FieldName);
        for (QString& argument : row.Arguments) rename(argument);
        if (isRenamed) row.Changed(false);
    });
}

// --- another catalogue ---

// Rows keep their operator aside while the list is replaced.
void TorvQDWherePanel::PrepareToReloadOperators() {
    m_oldOperators.clear();
    if (!rootRow()) return;
    const QPointer<TorvQDWherePanel> self(this);
    commitEdit();
    if (!self) return;
    visitConditions(*rootRow(), [this](TorvQDWhereRow& row) {
        if (row.isExpression()) return;
        m_oldOperators.push_back({orv::ElementRef(row, ekOperator), row.Operator});
        row.Operator.reset();
    });
}

// Where the list has become empty they keep what they had: a list that is filled one by one comes
// by here each time.
void TorvQDWherePanel::ReloadOperators() {
    for (const auto& [element, old] : std::exchange(m_oldOperators, {})) {
        TorvQDWhereRow* row = element.row();
        if (!row) continue;
        row->Operator = Operators && Operators->Count() > 0 ? Operators->Items(0) : old;
        const TOperatorList::Entry same =
            Operators && old ? Operators->FindName(old->Name) : nullptr;
        if (same) row->Operator = same;
        row->Changed(false);
    }
    refreshView();
}

QStringList TorvQDWherePanel::operatorNames() const {
    QStringList names;
    if (!rootRow()) return names;
    visitConditions(*rootRow(), [&](const TorvQDWhereRow& row) {
        if (row.Operator && !row.isExpression()) names << row.Operator->Name;
    });
    return names;
}

const TorvQDGroupFunc* TorvQDWherePanel::FindGroupFunc(const QString& Name) const {
    return GroupOpers ? orv::findGroupOperator(*GroupOpers, Name) : nullptr;
}

// --- types ---

bool TorvQDWherePanel::GetFieldType(const QString& Text, TFieldType& FieldType) const {
    IPagesHost* owner = host();
    if (!owner) throw orv::Error(QStringLiteral("Fatal Error! Class TorvQueryBuilder not found"));
    const std::optional<PageField> field = owner->resolveField(orv::orvTrim(Text));
    if (field) FieldType = field->type;
    return field.has_value();
}

bool TorvQDWherePanel::fitsType(const QString& text, TFieldType type) const {
    const QString trimmed = orv::orvTrim(text);
    if (trimmed.isEmpty() || trimmed.startsWith(QStringLiteral("SELECT"), Qt::CaseInsensitive)) {
        return true;
    }
    TFieldType other = ftUnknown;
    if (GetFieldType(text, other)) return goTogether(type, other);
    if (sNumeric.contains(type)) return isInteger(trimmed);
    if (sFloat.contains(type)) return isFloat(trimmed);
    return sString.contains(type);
}

bool TorvQDWherePanel::CheckTypeMisMatch(const QString&, const TorvQDControl& Element) const {
    const TorvQDWhereRow& row = *Element.Row;
    QStringList sides = row.Arguments;
    sides.prepend(row.FieldName);
    TFieldType type = ftUnknown;
    const bool hasField = std::any_of(
        sides.begin(), sides.end(), [&](const QString& side) { return GetFieldType(side, type); });
    if (!hasField) return true;
    return std::all_of(sides.begin(), sides.end(),
                       [&](const QString& side) { return fitsType(side, type); });
}
