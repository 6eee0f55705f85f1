// SPDX-License-Identifier: MIT
// How changes travel between the diagram and the pages: always through the query builder.
#include "contract/ChangeScope.h"
#include "core/Text.h"
#include "criteria/ORVQDAliasRename.h"
#include "criteria/ORVQDWherePanel.h"
#include "parser/ORVQDExpressions.h"
#include "querybuilder/ORVQDNames.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QThread>

// --- one change ---

void TorvQueryBuilder::beginChange() {
    ++m_changeDepth;
}

void TorvQueryBuilder::endChange() {
    if (m_changeDepth == 1) flushRemovals();
    if (--m_changeDepth > 0) return;
    if (m_gridChanged && SelectPanel) {
        SelectPanel->grid()->refreshView();
        OrderPanel->RefreshFields();
        WherePanel->refreshView();
        HavingPanel->refreshView();
        showTailProblems();
    }
    m_gridChanged = false;
    if (!m_statementChanged) return;
    m_statementChanged = false;
    Q_EMIT StatementChanged();
}

void TorvQueryBuilder::statementChanged() {
    Q_ASSERT(thread() == QThread::currentThread());
    beginChange();
    m_statementChanged = true;
    m_gridChanged = true;
    endChange();
}

void TorvQueryBuilder::layoutChanged() {
    Q_EMIT LayoutChanged();
}

// --- ticks ---

bool TorvQueryBuilder::isListed(const QString& name) const {
    return m_selectedFields.contains(name) && !m_removals.contains(name);
}

// Names that were unticked leave both lists in one walk, so that unticking a box of many rows does
// not walk them once per row.
void TorvQueryBuilder::flushRemovals() {
    if (m_removals.isEmpty()) return;
    const QSet<QString> names = std::exchange(m_removals, {});
    m_selectedFields.remove(names);
    if (SelectPanel) SelectPanel->grid()->uncheckFields(names);
}

const orv::NameList& TorvQueryBuilder::SelectedFields() {
    flushRemovals();
    return m_selectedFields;
}

// What is being typed in the grid may name the very field: it is taken over before the tick counts.
void TorvQueryBuilder::commitCellBefore(TorvQDListItem& item) {
    if (!SelectPanel || !SelectPanel->grid()->isEditing()) return;
    const bool isChecked = item.Checked;
    orv::guarded([this] { SelectPanel->grid()->commitEdit(); });
    if (item.Checked != isChecked) item.UpdateCheck(isChecked ? -1 : 0);
}

// A field that a loaded statement names in a way of its own is listed under that name.
void TorvQueryBuilder::_AddRemoveField(QObject* Sender, TorvQDListItem* Item) {
    if (!qobject_cast<TorvQDTable*>(Sender)) return;
    const QString name = Item->qualifiedName();
    ChangeScope change(this, this);
    commitCellBefore(*Item);
    const QString given = listedGivenName(Item);
    if (!Item->Checked) {
        const bool listed = isListed(name);
        if (listed) m_removals.insert(name);
        if (!given.isEmpty()) m_removals.insert(given);
        if (listed || !given.isEmpty()) statementChanged();
    } else if (given.isEmpty() && !isListed(name)) {
        flushRemovals();
        m_selectedFields.append(name);
        if (SelectPanel) SelectPanel->grid()->CheckField(name);
    }
    change.finish();
}

// The name of the statement by which the row is listed, when it can only mean this row.
QString TorvQueryBuilder::listedGivenName(const TorvQDListItem* item) const {
    const auto names = m_givenNames.values(item);
    for (const QString& name : names) {
        if (isListed(name) && resolveItem(name) == item) return name;
    }
    return {};
}

TorvQDListItem* TorvQueryBuilder::resolveItem(const QString& text) const {
    const std::optional<PageField> field = resolveField(text);
    const TorvQDTable* table = field ? WorkArea->GetTable(field->alias) : nullptr;
    return table ? table->GetFieldItem(field->name) : nullptr;
}

void TorvQueryBuilder::_SelectField(const QString& FullName) {
    TorvQDListItem* item = resolveItem(FullName);
    if (!item || item->Table->leaving) return;
    ChangeScope change(this, this);
    item->UpdateCheck(-1);
    flushRemovals();
    m_selectedFields.appendNew(FullName);
    if (FullName != item->qualifiedName()) {
        m_givenNames.insert(item, FullName);
    }
    change.finish();
}

// It goes under whatever names it is listed.
void TorvQueryBuilder::_UnselectField(const QString& FullName) {
    TorvQDListItem* item = resolveItem(FullName);
    if (!item) return;
    item->UpdateCheck(0);
    QSet<QString> names = {FullName, item->qualifiedName()};
    const auto given = m_givenNames.values(item);
    for (const QString& name : given) {
        if (resolveItem(name) == item) names.insert(name);
    }
    m_selectedFields.remove(names);
}

// --- tables ---

void TorvQueryBuilder::_AddTable(QObject*, QObject* Table) {
    const auto* table = qobject_cast<TorvQDTable*>(Table);
    if (!table) return;
    const QString prefix = table->GetAlias() + u'.';
    for (const auto& item : table->Items) {
        if (item->ParamType == ptOutput) m_allFields.appendNew(prefix + item->Name);
    }
}

void TorvQueryBuilder::_RemoveTable(QObject*, QObject* Table) {
    const auto* table = qobject_cast<TorvQDTable*>(Table);
    if (!table) return;
    m_allFields.removeWithPrefix(table->GetAlias() + u'.');
    for (const auto& item : table->Items) m_givenNames.remove(item.get());
}

// The old alias is compared as a prefix alone: renaming "T" also renames "T2.NAME" to the new
// alias.
void TorvQueryBuilder::_ChangeAlias(QObject* Table, const QString& OldAlias) {
    const auto* table = qobject_cast<TorvQDTable*>(Table);
    if (!table) return;
    const QString alias = table->GetAlias();
    const auto renamed = [&](const QString& name) {
        if (!name.startsWith(OldAlias) || orv::firstFullStop(name) < 0) return name;
        // An old alias that is a qualified name has full stops of its own.
        if (name.startsWith(OldAlias + u'.')) return alias + name.mid(OldAlias.size());
        return alias + u'.' + orv::splitQualifiedName(name).field;
    };
    flushRemovals();
    m_selectedFields.transform(renamed);
    m_allFields.transform(renamed);
    for (QString& given : m_givenNames) given = renamed(given);
    for (TorvQDJoin* join : WorkArea->Joins()) {
        join->Text = orv::renamedAlias(join->Text, alias, OldAlias);
    }
    for (TorvQDTable* box : WorkArea->tablesByCreation()) {
        auto* procedure = qobject_cast<TorvQDSProc*>(box);
        if (!procedure) continue;
        procedure->changeSqlTexts(
            [&](const QString& text) { return orv::renamedAlias(text, alias, OldAlias); });
    }
    if (!SelectPanel) return;
    WherePanel->ChangeAlias(alias, OldAlias);
    HavingPanel->ChangeAlias(alias, OldAlias);
    SelectPanel->grid()->ChangeAlias(alias, OldAlias);
}

// --- what the pages ask ---

namespace {

PageField pageField(const TorvQDTable& table, const TorvQDListItem& item) {
    return {table.GetAlias(), item.Name, item.FieldType};
}

}  // namespace

QStringList TorvQueryBuilder::tableAliases() const {
    QStringList aliases;
    for (const TorvQDTable* table : WorkArea->tablesByCreation()) aliases << table->GetAlias();
    return aliases;
}

std::vector<PageField> TorvQueryBuilder::fieldsOf(const QString& alias) const {
    std::vector<PageField> fields;
    const TorvQDTable* table = WorkArea->findTable(alias);
    if (!table) return fields;
    for (const auto& item : table->Items) {
        if (item->ParamType == ptOutput) fields.push_back(pageField(*table, *item));
    }
    return fields;
}

std::optional<PageField> TorvQueryBuilder::resolveField(const QString& text) const {
    if (!orv::isFieldName(text)) return std::nullopt;
    const orv::QualifiedName name = orv::splitQualifiedName(text);
    if (orv::firstFullStop(text) >= 0) {
        const TorvQDTable* table = WorkArea->findTable(name.alias);
        const TorvQDListItem* item = table ? table->findItem(name.field) : nullptr;
        return item ? std::optional(pageField(*table, *item)) : std::nullopt;
    }
    const std::vector<PageField> found = fieldsNamed(name.field);
    return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
}

// The output fields of that name, at most one of a box.
std::vector<PageField> TorvQueryBuilder::fieldsNamed(const QString& name) const {
    std::vector<PageField> found;
    for (const TorvQDTable* table : WorkArea->tablesWithField(name)) {
        if (const TorvQDListItem* item = table->findItem(name)) {
            found.push_back(pageField(*table, *item));
        }
    }
    return found;
}

bool TorvQueryBuilder::isAmbiguous(const QString& text) const {
    return orv::firstFullStop(text) < 0 && fieldsNamed(text).size() > 1;
}

namespace {

constexpr qsizetype longestToldName = 100;

}  // namespace

QString TorvQueryBuilder::nameProblem(const QString& text) const {
    QString first;
    orv::visitNameProblems(*this, text, [&](const QString& name, const QString& what) {
        if (!first.isEmpty()) return;
        const bool isLong = name.size() > longestToldName;
        first = name.left(longestToldName) +
                (isLong ? QStringLiteral("...: ") : QStringLiteral(": ")) + what;
        if (orv::firstFullStop(name) < 0 && !isAmbiguous(name)) {
            first += QStringLiteral(" A text stands in quotes: 'abc'.");
        }
    });
    return first;
}
