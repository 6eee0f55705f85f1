// SPDX-License-Identifier: MIT
#include "database/Database.h"

#include <algorithm>

namespace orvquery {

namespace {

// The catalog is looked at now and then; a transaction would show it as it was at the first look.
ConnectionSettings catalogSettings(ConnectionSettings settings) {
    settings.isTakenBack = false;
    return settings;
}

}  // namespace

Database::Database(ConnectionSettings settings, NameFolding folding)
    : m_settings(std::move(settings)),
      m_catalog(catalogSettings(m_settings)),
      m_folding(std::move(folding)) {}

std::vector<TableEntry> Database::tables() const {
    std::vector<TableEntry> entries = readEntries();
    sortByName(entries);
    return entries;
}

std::optional<TableDescription> Database::find(const QString& nameInStatement) const {
    const QStringList parts = nameParts(nameInStatement);
    if (parts.size() > 2 || (parts.size() == 2 && !isDefaultSchema(parts.front()))) {
        return std::nullopt;
    }
    return describe(parts.back());
}

std::optional<TableDescription> Database::describe(const QString& name) const {
    const std::vector<TableEntry> entries = readEntries();
    const auto entry = std::find_if(
        entries.begin(), entries.end(),
        [&](const TableEntry& candidate) { return m_folding.isSameName(candidate.name, name); });
    if (entry == entries.end()) return std::nullopt;

    TableDescription table{m_folding.handedOver(entry->name), readColumns(*entry), std::nullopt};
    for (TFieldDef& column : table.columns.FieldDefs) {
        column.Name = m_folding.handedOver(column.Name);
    }
    if (!isCalled(entry->kind)) return table;
    TParams parameters(readParameters(*entry));
    if (parameters.Items.empty() && !takesEmptyBrackets()) return table;
    table.parameters = std::move(parameters);
    for (TParam& parameter : table.parameters->Items) {
        parameter.Name = m_folding.handedOver(parameter.Name);
    }
    return table;
}

}  // namespace orvquery
