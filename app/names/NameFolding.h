// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace orvquery {

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
        FoldsUp       ///< it looks for the name in upper case
    };

    NameFolding(Unquoted unquoted, QStringList reservedWords);

    /// The rules of SQLite.
    [[nodiscard]] static NameFolding sqlite();
    /// The rules of Firebird.
    [[nodiscard]] static NameFolding firebird();

    /// The name of a table or column as the control is to get it.
    [[nodiscard]] QString handedOver(const QString& name) const;

    /// Whether the database takes the two names, both without quotes around them, for the same.
    [[nodiscard]] bool isSameName(const QString& left, const QString& right) const;

    /// The words that the database does not take as names without quotes, in upper case.
    [[nodiscard]] const QStringList& reservedWords() const { return m_reservedWords; }

private:
    [[nodiscard]] bool isFoundUnquoted(const QString& name) const;

    Unquoted m_unquoted;
    QStringList m_reservedWords;
};

/// The parts of a name as it stands in a statement, from left to right and without their quotes:
/// `main."Order Details"` gives `main` and `Order Details`.
[[nodiscard]] QStringList nameParts(const QString& nameInStatement);

}  // namespace orvquery
