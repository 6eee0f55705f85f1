// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QByteArray>

namespace orvquery {

/// Tables that a JSON file describes, for work on statements without a database:
///
///     {"ORDERS": [["CUSTNO", "ftInteger"], ["PRICE", "ftFloat"]],
///      "TOP_CUSTOMERS": {"fields": [["CUSTNO", "ftInteger"]],
///                        "params": [["SINCE", "ftDate", "ptInput", "2024-01-01"]]}}
///
/// A table is a list of fields, each a name and a type; a procedure has parameters besides, each a
/// name, a type, a direction and, if it has one, a value. Names are handed over as they stand.
class SchemaFile : public TableSource {
public:
    /// Reads a file. Raises orv::Error with the place of the first mistake.
    [[nodiscard]] static std::unique_ptr<SchemaFile> read(const QString& path);

    /// Reads the content of a file; `name` is what errors call it. Raises orv::Error like read.
    SchemaFile(const QByteArray& json, const QString& name);

    [[nodiscard]] QString title() const override { return m_title; }
    [[nodiscard]] std::vector<TableEntry> tables() const override;
    [[nodiscard]] std::optional<TableDescription> find(
        const QString& nameInStatement) const override;
    [[nodiscard]] std::optional<TableDescription> describe(const TableName& name) const override;

private:
    QString m_title;
    std::vector<TableDescription> m_tables;
};

}  // namespace orvquery
