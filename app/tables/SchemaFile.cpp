// SPDX-License-Identifier: MIT
#include "tables/SchemaFile.h"

#include "names/NameFolding.h"
#include "tables/SchemaReader.h"
#include "text/TextFile.h"

#include <QFileInfo>

#include <algorithm>

namespace orvquery {

namespace {

QStringList inputNames(const TParams& parameters) {
    QStringList names;
    for (const TParam& parameter : parameters.Items) {
        if (parameter.ParamType == ptInput) names += parameter.Name;
    }
    return names;
}

}  // namespace

std::unique_ptr<SchemaFile> SchemaFile::read(const QString& path) {
    return std::make_unique<SchemaFile>(readTextFile(path).toUtf8(), path);
}

SchemaFile::SchemaFile(const QByteArray& json, const QString& name)
    : m_title(QFileInfo(name).fileName()), m_tables(SchemaReader(name).read(json)) {}

std::vector<TableEntry> SchemaFile::tables() const {
    std::vector<TableEntry> entries;
    entries.reserve(m_tables.size());
    for (const TableDescription& table : m_tables) {
        TableEntry entry{table.name};
        if (table.parameters) {
            entry.kind = TableKind::Procedure;
            entry.parameters = inputNames(*table.parameters);
        }
        entries.push_back(std::move(entry));
    }
    sortByName(entries);
    return entries;
}

std::optional<TableDescription> SchemaFile::find(const QString& nameInStatement) const {
    if (auto table = describe(nameInStatement)) return table;
    QStringList parts;
    for (const NamePart& part : nameParts(nameInStatement)) parts += part.text;
    return describe(parts.join(u'.'));
}

std::optional<TableDescription> SchemaFile::describe(const TableName& name) const {
    const auto found =
        std::find_if(m_tables.begin(), m_tables.end(), [&](const TableDescription& table) {
            return table.name.compare(name.name, Qt::CaseInsensitive) == 0;
        });
    if (found == m_tables.end()) return std::nullopt;
    TableDescription table = *found;
    table.source = {table.name};
    for (const TFieldDef& field : table.columns.FieldDefs) {
        table.entries.push_back({field.Name, field.DataType});
    }
    return table;
}

}  // namespace orvquery
