// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace orvquery {

/// One place in a statement where a value is to stand: ":NAME".
struct Placeholder {
    qsizetype start = 0;   ///< of the colon
    qsizetype length = 0;  ///< with the colon
    QString name;          ///< without it, in upper case: case makes no difference

    friend bool operator==(const Placeholder&, const Placeholder&) = default;
};

/// The placeholders of a statement in the order of the text. What looks like one within quotes or a
/// comment, or behind the second colon of a cast ("A::TEXT"), is none.
[[nodiscard]] std::vector<Placeholder> placeholders(const QString& statement);

/// Their names, each once, in the order in which they first appear.
[[nodiscard]] QStringList placeholderNames(const QString& statement);

/// One sentence when a "?" stands outside quotes and comments, which databases take for a parameter
/// of its own and which nothing can give a value; empty when none does.
[[nodiscard]] QString questionMarkProblem(const QString& statement);

/// The values of placeholders by their names in upper case; a null variant is NULL.
using PlaceholderValues = QHash<QString, QVariant>;

/// A statement as it goes to the database: each placeholder is a question mark, whose values follow
/// in the order of the text.
struct BoundStatement {
    QString text;
    QVariantList values;
};

/// Puts values to the placeholders. Comments become blanks, because Qt would look for placeholders
/// in them. Raises orv::Error when one of the placeholders has no value or no name.
[[nodiscard]] BoundStatement boundStatement(const QString& statement,
                                            const PlaceholderValues& values);

}  // namespace orvquery
