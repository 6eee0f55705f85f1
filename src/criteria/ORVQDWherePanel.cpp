// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWherePanel.h"

#include "contract/IPagesHost.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionMeaning.h"
#include "criteria/ORVQDRowBuilder.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"

#include <QLocale>

#include <algorithm>

namespace {

bool isClauseOfConditions(TLocationKinds location) {
    return location == inWhere || location == inHaving;
}

// The decimal sign of SQL, or the one of the user's language; no group separators.
bool isInteger(const QString& text) {
    bool converts = false;
    QLocale language;
    language.setNumberOptions(QLocale::RejectGroupSeparator);
    QLocale::c().toLongLong(text, &converts);
    if (!converts) language.toLongLong(text, &converts);
    return converts;
}

bool isFloat(const QString& text) {
    bool converts = false;
    QLocale language;
    language.setNumberOptions(QLocale::RejectGroupSeparator);
    QLocale::c().toDouble(text, &converts);
    if (!converts) language.toDouble(text, &converts);
    return converts;
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

// Places what the rows hold, and tells where reading from left to right changes the meaning.
void account(const std::vector<orv::ConditionElement>& level, orv::LoadLedger& ledger,
             bool keepsMeaning) {
    const orv::ConditionElement* changed = keepsMeaning ? nullptr : orv::andBehindOr(level);
    if (changed) {
        ledger.report(changed->run, QStringLiteral("AND and OR are combined from left to right: "
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
        hasOperand = element.kind == orv::ConditionElement::Bracket ||
                     element.kind == orv::ConditionElement::Condition;
    }
    if (!hasOperand && !level.empty()) {
        ledger.report(level.back().run, QStringLiteral("A condition is missing behind this."));
    }
}

}  // namespace

TorvQDWherePanel::TorvQDWherePanel(QWidget* Parent) : QWidget(Parent) {
    if (!Parent) throw orv::Error(QStringLiteral("Invalide parent for conditions panel"));
}

TorvQDWherePanel::~TorvQDWherePanel() = default;

void TorvQDWherePanel::Activate() {
    if (m_root) return;
    m_catalogues = {Operators, GroupOpers};
    m_root = std::make_unique<TorvQDWhereRows>(&m_catalogues, nullptr);
    m_root->AddRow();
    ClearContents();
}

TorvQDWhereRow* TorvQDWherePanel::rootRow() const {
    return m_root ? m_root->Row(0) : nullptr;
}

IPagesHost* TorvQDWherePanel::host() const {
    for (QWidget* widget = parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* host = dynamic_cast<IPagesHost*>(widget)) return host;
    }
    return nullptr;
}

QString TorvQDWherePanel::GetSQLStatment() const {
    return rootRow() ? rootRow()->GetSQLCondition(true) : orv::blankText();
}

void TorvQDWherePanel::ClearContents() {
    TorvQDWhereRow* root = rootRow();
    if (!root) return;
    CurrentElement = nullptr;
    root->SubRows->Clear();
    root->SetGroupOper(QStringLiteral("All"));
    ActiveElement = root->Controls[1].get();
}

orv::ConditionRules TorvQDWherePanel::readingRules(bool keepMeaning) const {
    return {Operators, Functions, keepMeaning};
}

void TorvQDWherePanel::LoadSQL(const TorvQDParser& Node) {
    if (!isClauseOfConditions(Node.Location())) {
        throw orv::Error(QStringLiteral("There is not valid object for extract selection list"));
    }
    ClearContents();
    IPagesHost* owner = host();
    orv::LoadLedger* ledger = owner ? owner->ledger() : nullptr;
    if (!ledger || !rootRow()) return;
    const bool keepsMeaning = owner->KeepMeaning();
    const orv::TokenRun run = ledger->tokensIn(Node.Start(), Node.End());
    const orv::TokenRun condition = run.mid(1);
    ledger->place(run);
    if (condition.isEmpty()) {
        ledger->report(run, QStringLiteral("This clause has no condition."));
        return;
    }
    const auto elements = orv::readConditions(condition, readingRules(keepsMeaning));
    account(elements, *ledger, keepsMeaning);
    orv::buildRows(elements, rootRow(), false);
    if (ledger->hasFinding(Node.Start(), Node.End()) || writesMeaning(elements, condition)) {
        return;
    }
    ledger->report(run, QStringLiteral("This clause is written differently."));
}

// A safety net: what the rows write is read again. Where they nest deeper than can be read, words
// are counted.
bool TorvQDWherePanel::writesMeaning(const std::vector<orv::ConditionElement>& elements,
                                     const orv::TokenRun& condition) const {
    const QString written = rootRow()->GetSQLCondition(false);
    const orv::SqlTokens tokens = orv::tokenise(written);
    const orv::TokenRun run(written, tokens.data(), tokens.data() + tokens.size());
    std::vector<orv::ConditionElement> again;
    try {
        again = orv::readConditions(run, readingRules(true));
    } catch (const orv::Error&) {
        return orv::countTokens(run) == orv::countTokens(condition);
    }
    return orv::meaningOf(again) == orv::meaningOf(elements);
}

// A whole word in front of a full stop, outside quotes: "PO.X" is not renamed with "O".
void TorvQDWherePanel::ChangeAlias(const QString& NewAlias, const QString& OldAlias) {
    if (NewAlias == OldAlias || !rootRow()) return;
    const auto rename = [&](QString& text) {
        QString result;
        qsizetype copied = 0;
        for (const orv::SqlToken& token : orv::tokenise(text)) {
            const QStringView word = QStringView(text).mid(token.start, token.end - token.start);
            if (token.kind != orv::SqlToken::Word || !word.startsWith(OldAlias) ||
                word.size() == OldAlias.size() || word[OldAlias.size()] != u'.') {
                continue;
            }
            result += QStringView(text).mid(copied, token.start - copied);
            result += NewAlias;
            copied = token.start + OldAlias.size();
        }
        if (copied > 0) text = result + text.mid(copied);
    };
    visitConditions(*rootRow(), [&](TorvQDWhereRow& row) {
        rename(row.FieldName);
        for (QString& argument : row.Arguments) rename(argument);
    });
}

const TorvQDGroupFunc* TorvQDWherePanel::FindGroupFunc(const QString& Name) const {
    return GroupOpers ? orv::findGroupOperator(*GroupOpers, Name) : nullptr;
}

// --- types
// ----------------------------------------------------------------------------------------

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
