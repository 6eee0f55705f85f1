// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMultiHash>

namespace orvquery {

/// Turns the JSON of a schema file into tables. Lives for one file; every mistake is raised as an
/// orv::Error that names the file, the table and the entry.
class SchemaReader {
public:
    explicit SchemaReader(QString fileName);

    /// All tables of the file, in the order of the file. Raises orv::Error.
    [[nodiscard]] std::vector<TableDescription> read(const QByteArray& json);

private:
    [[nodiscard]] QJsonObject parse(const QByteArray& json) const;
    [[nodiscard]] TableDescription table(const QString& name, const QJsonValue& value);
    [[nodiscard]] TableDescription procedure(const QString& name, const QJsonObject& object);
    [[nodiscard]] TFieldDefs fields(const QJsonArray& entries);
    [[nodiscard]] TFieldDef field(const QJsonValue& entry);
    [[nodiscard]] TParams params(const QJsonArray& entries);
    [[nodiscard]] TParam param(const QJsonValue& entry);
    [[nodiscard]] TFieldType fieldType(const QJsonValue& value) const;
    [[nodiscard]] TParamType direction(const QJsonValue& value) const;
    [[nodiscard]] QVariant paramValue(const QJsonValue& value, TFieldType type) const;
    [[nodiscard]] QVariant timeValue(const QString& text, TFieldType type) const;
    template <typename Time>
    [[nodiscard]] QVariant requireValid(const Time& time, const QString& text,
                                        TFieldType type) const;
    [[nodiscard]] QString entryName(const QJsonValue& value) const;

    /// Names that are there already, by their spelling without case.
    using KnownNames = QMultiHash<QString, QString>;
    void requireNewName(KnownNames& known, const QString& name) const;
    [[noreturn]] void fail(const QString& mistake) const;

    QString m_fileName;
    QString m_table;    ///< the table that is being read; none when empty
    QString m_entry;    ///< "field" or "parameter" while one of these is read
    int m_entryNo = 0;  ///< from 1; 0 between entries
};

}  // namespace orvquery
