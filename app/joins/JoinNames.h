// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QStringList>

namespace orvquery {

// What names and types tell of columns that no key is declared for. Case, underscores and other
// marks between the words of a name do not count.

/// The name with nothing but its letters and digits, in upper case: two names that differ in case
/// and underscores alone are the same so.
[[nodiscard]] QString comparableName(const QString& name);

/// Whether columns of that name stand in tables that have nothing to do with each other.
[[nodiscard]] bool isGenericName(const QString& column);

/// How far the name of a column says that it holds the key of a table.
enum class KeyLikeness {
    None,
    Partly,  ///< among other words, which may be the part that the other row plays
    Fully
};

/// CUSTOMER_ID, CUSTOMERNO or CUSTOMER in the table that is asked about say that they hold the key
/// of CUSTOMERS, BILLING_CUSTOMER_ID says it among other words.
[[nodiscard]] KeyLikeness likenessToKey(const QString& column, const QString& table,
                                        const QString& key);

/// Whether the name says that the column holds the key of another row of the same table: PARENT_ID.
[[nodiscard]] bool isParentName(const QString& column);

/// Whether the column's name alone says that it is the key of its table: ID, or CUSTOMER_ID in
/// CUSTOMERS.
[[nodiscard]] bool isOwnKeyName(const QString& column, const QString& table);

/// Whether the name has what names of keys end or begin with: CUSTOMER_ID, CUSTNO, FK_CUSTOMER.
[[nodiscard]] bool hasKeyWord(const QString& column);

/// Whether values of the two types can be the same. A type that is not known can be any.
[[nodiscard]] bool areComparable(TFieldType left, TFieldType right);

/// Whether columns of the type are used as keys when nothing else speaks for it: numbers with
/// decimals, moments and the like are not.
[[nodiscard]] bool isTypeOfKeys(TFieldType type);

}  // namespace orvquery
