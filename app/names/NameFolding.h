// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace orvquery {

/// One part of a name as it stands in a statement.
struct NamePart {
    QString text;  ///< without quotes
    bool isQuoted = false;

    friend bool operator==(const NamePart&, const NamePart&) = default;
};

/// How names travel between one database and the control, which upper-cases what is typed without
/// quotes and quotes every name that is not plain upper case. A name that the database finds
/// without quotes is therefore handed over in upper case, so that it is shown and written plainly
/// and a typed one matches it; any other name is handed over so that it is written in quotes. A
/// plain value.
class NameFolding {
public:
    /// What a database makes of a name that stands without quotes.
    enum class Unquoted {
        IgnoresCase,  ///< it finds the name in any case, also within quotes
        FoldsUp,      ///< it looks for the name in upper case
        FoldsDown,    ///< it looks for the name in lower case
        KeepsCase     ///< it looks for the name as it stands
    };
    /// What has the name: some databases treat those of tables and schemas differently.
    enum class Of { Table, Column };

    NameFolding(Unquoted unquoted, QStringList reservedWords);
    NameFolding(Unquoted unquotedTables, Unquoted unquotedColumns, QStringList reservedWords);

    /// The rules of SQLite.
    [[nodiscard]] static NameFolding sqlite();
    /// The rules of Firebird.
    [[nodiscard]] static NameFolding firebird();
    /// The rules of PostgreSQL.
    [[nodiscard]] static NameFolding postgresql();

    /// The rules of MariaDB and MySQL, whose servers keep the case of tables or ignore it.
    [[nodiscard]] static NameFolding mariadb(bool keepsCaseOfTables);

    /// Rules that suit most databases behind ODBC.
    [[nodiscard]] static NameFolding odbc();

    /// The name of a table or column as the control is to get it.
    [[nodiscard]] QString handedOver(const QString& name, Of of = Of::Column) const;

    /// Whether the database takes the two names, both without quotes around them, for the same.
    [[nodiscard]] bool isSameName(const QString& left, const QString& right,
                                  Of of = Of::Column) const;

    /// Whether what stands in a statement means the thing of that name.
    [[nodiscard]] bool isMeant(const NamePart& inStatement, const QString& name, Of of) const;

    /// Whether tables are found without quotes in their own spelling alone.
    [[nodiscard]] bool keepsCaseOfTables() const { return m_tables == Unquoted::KeepsCase; }

    /// The name as a person writes it in a statement: in quotes where it needs them.
    [[nodiscard]] QString inStatement(const QString& name, Of of = Of::Column) const;

    /// The name in upper case when it can stand without quotes as an alias; else empty.
    [[nodiscard]] QString plainAlias(const QString& name) const;

    /// The words that the database does not take as names without quotes, in upper case.
    [[nodiscard]] const QStringList& reservedWords() const { return m_reservedWords; }

private:
    [[nodiscard]] Unquoted rule(Of of) const { return of == Of::Table ? m_tables : m_columns; }
    [[nodiscard]] bool isFoundUnquoted(const QString& name, Of of) const;

    Unquoted m_tables;
    Unquoted m_columns;
    QStringList m_reservedWords;
};

/// The parts of a name as it stands in a statement, from left to right: `main."Order Details"`
/// gives `main` and, quoted, `Order Details`.
[[nodiscard]] QList<NamePart> nameParts(const QString& nameInStatement);

}  // namespace orvquery
