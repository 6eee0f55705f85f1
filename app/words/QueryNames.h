// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDStateReader.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace orvquery {

/// "a", "a and b", "a, b and c"; `last` is the word in front of the last one.
[[nodiscard]] QString enumeration(const QStringList& parts,
                                  const QString& last = QStringLiteral("and"));

/// A text of the statement within a sentence, on one line.
[[nodiscard]] QString quotedSql(const QString& sql);

/// Whether the text is a placeholder, ":name".
[[nodiscard]] bool isPlaceholder(const QString& text);

/// Whether the text is NULL and no more.
[[nodiscard]] bool isNull(const QString& text);

/// How the parts of one query are called in sentences. Refers to the state, which must outlive it.
class QueryNames {
public:
    /// Columns are named with their tables where there are several.
    explicit QueryNames(const orv::QueryState& state)
        : QueryNames(state, state.tables.size() != 1) {}
    QueryNames(const orv::QueryState& state, bool namesTables)
        : m_state(state), m_namesTables(namesTables) {}

    /// A column of a table of the query.
    struct Field {
        int table = -1;
        QString name;  ///< without quotes
        TFieldType type = ftUnknown;
    };

    /// The column that the text names, when it names one and no more.
    [[nodiscard]] std::optional<Field> field(const QString& text) const;
    [[nodiscard]] std::optional<Field> fieldOf(int table, const QString& name) const;

    /// "CUSTOMERS (C)"; without the alias where it says nothing new.
    [[nodiscard]] QString table(int index) const;
    /// "NAME of CUSTOMERS (C)", or "NAME" alone.
    [[nodiscard]] QString column(const Field& field) const;
    /// The same with "the" in front.
    [[nodiscard]] QString theColumn(const Field& field) const;

    /// One side of a comparison: a column in words, a constant as it stands, anything else quoted.
    [[nodiscard]] QString operand(const QString& text) const;

    /// What an aggregate makes of a column or expression: "the sum of the PRICE of ORDERS".
    [[nodiscard]] QString aggregate(const QString& function, const QString& source) const;

    [[nodiscard]] const orv::QueryState& state() const { return m_state; }

private:
    [[nodiscard]] int tableByAlias(const QString& alias) const;

    const orv::QueryState& m_state;
    bool m_namesTables;
};

/// How values of a type are compared in words.
enum class Scale { Unknown, Number, Text, Time };
[[nodiscard]] Scale scaleOf(TFieldType type);

/// What stands for a text that nobody has filled in.
[[nodiscard]] QString notFilledIn();

}  // namespace orvquery
