// SPDX-License-Identifier: MIT
// The names on the work area: which boxes have a field or an alias of a name, and how an alias is
// given.
#include "contract/ChangeScope.h"
#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDKeywords.h"
#include "workarea/ORVQDAccessible.h"
#include "workarea/ORVQDFloatPanel.h"

#include <algorithm>

namespace {

// A name that SQL takes for one without quotes.
bool isFreeName(const QString& name) {
    return orv::isPlainIdentifier(name) && orv::wordInfo(name.toUpper()).traits == 0 &&
           !lReservedWords().contains(name.toUpper());
}

// What names are compared by without their quotes and ignoring case.
QString looseKey(const QString& name) {
    return orv::unquotedName(name).toUpper();
}

void eraseFrom(QHash<QString, std::vector<TorvQDTable*>>& index, const QString& key,
               TorvQDTable* table) {
    const auto found = index.find(key);
    if (found == index.end()) return;
    std::erase(found.value(), table);
    if (found.value().empty()) index.erase(found);
}

}  // namespace

// --- fields ---

void TorvQDWorkArea::indexFields(TorvQDTable* table) {
    QStringList& names = m_fieldsOfTable[table];
    for (const auto& item : table->Items) {
        if (item->ParamType != ptOutput) continue;
        const QString name = looseKey(item->Name);
        std::vector<TorvQDTable*>& tables = m_byField[name];
        if (!tables.empty() && tables.back() == table) continue;
        tables.push_back(table);
        names.push_back(name);
    }
}

void TorvQDWorkArea::unindexFields(TorvQDTable* table) {
    for (const QString& name : m_fieldsOfTable.take(table)) eraseFrom(m_byField, name, table);
}

std::vector<TorvQDTable*> TorvQDWorkArea::tablesWithField(const QString& name) const {
    return m_byField.value(looseKey(name));
}

const std::vector<TorvQDTable*>* TorvQDWorkArea::tablesByField(const QString& name) const {
    const auto found = m_byField.constFind(looseKey(name));
    return found == m_byField.constEnd() ? nullptr : &*found;
}

// --- aliases ---

void TorvQDWorkArea::rememberAlias(TorvQDTable* table) {
    addAlias(table);
    table->aliasChanged = [this](TorvQDTable* changed, const QString& oldAlias) {
        if (indexOf(changed) < 0) return;
        forgetAlias(changed, oldAlias);
        addAlias(changed);
        orv::accessible::tellRenamed(changed);
        for (const int join : m_joinsOfTable.value(changed)) tellJoinChanged(m_joins[join]);
    };
}

void TorvQDWorkArea::addAlias(TorvQDTable* table) {
    const QString alias = table->GetAlias();
    m_byAlias[alias].push_back(table);
    m_byLooseAlias[looseKey(alias)].push_back(table);
}

void TorvQDWorkArea::forgetAlias(TorvQDTable* table, const QString& alias) {
    eraseFrom(m_byAlias, alias, table);
    eraseFrom(m_byLooseAlias, looseKey(alias), table);
}

TorvQDTable* TorvQDWorkArea::GetTable(const QString& Alias) const {
    if (orv::isBlank(Alias)) {
        return m_tables.size() == 1 ? m_tables.front().get() : nullptr;
    }
    const auto entry = m_byAlias.constFind(Alias);
    if (entry == m_byAlias.constEnd()) return nullptr;
    const std::vector<TorvQDTable*>& found = *entry;
    if (found.size() == 1) return found.front();
    return *std::min_element(found.begin(), found.end(), [&](TorvQDTable* a, TorvQDTable* b) {
        return indexOf(a) < indexOf(b);
    });
}

TorvQDTable* TorvQDWorkArea::findTable(const QString& alias) const {
    if (TorvQDTable* table = GetTable(alias)) return table;
    if (orv::isBlank(alias)) return nullptr;
    const auto found = m_byLooseAlias.constFind(looseKey(alias));
    const bool isUnique = found != m_byLooseAlias.constEnd() && found->size() == 1;
    return isUnique ? found->front() : nullptr;
}

void TorvQDWorkArea::renameTable(TorvQDTable* table, const QString& text) {
    if (indexOf(table) < 0) return;
    const QString old = table->GetAlias();
    QString alias = orv::isBlank(text) ? table->TableName : text;
    for (const QString& taken : {alias, orv::quotedName(alias)}) {
        const TorvQDTable* other = GetTable(taken);
        if (other && other != table) {
            throw orv::Error(QStringLiteral("Table with alias %1 already exist!").arg(alias));
        }
    }
    if (alias == table->TableName) alias.clear();
    if (!orv::isQuotedName(alias)) {
        alias.remove(u'.');
        if (!alias.isEmpty() && !isFreeName(alias)) alias = orv::quotedName(alias);
    }
    if (alias == table->TableName) alias.clear();
    ChangeScope change(m_owner, this);
    invalidate(table->toView(table->GetBoundsRect()));
    table->SetAlias(alias);
    if (table->GetAlias() != old) {
        m_owner->statementChanged();
        if (const TChangeStringEvent handler = OnChangeAlias) handler(table, old);
    }
    change.finish();
}

// The name itself, or the name followed by the first free number.
QString TorvQDWorkArea::freeAlias(const QString& processedName) const {
    QString candidate = processedName;
    const QString base = orv::withoutQuotes(processedName);
    for (int counter = 1; m_byAlias.contains(candidate); ++counter) {
        const QString numbered = base + QString::number(counter);
        candidate = base == processedName ? numbered : ProcessName(numbered);
    }
    return candidate;
}
