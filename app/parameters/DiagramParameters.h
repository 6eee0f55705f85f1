// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

class TorvQDListItem;
class TorvQueryBuilder;

namespace orvquery {

/// A placeholder of a statement with what the diagram knows about it. A plain value.
struct ParameterDescription {
    QString name;  ///< in upper case
    TFieldType type = ftUnknown;
    /// What the procedure takes when nothing is given; an invalid variant when a value must be
    /// given.
    QVariant byDefault = {};
    /// The parameters of procedures that get the value, as people read them.
    QStringList takers = {};
};

/// Whether the database refuses values of another type than the column with which a placeholder is
/// compared; else a placeholder in a condition takes any value.
enum class ColumnTypes { AreStrict, AreLoose };

/// The name, in upper case, of the placeholder that stands for the value of a procedure's row: its
/// own, or the one that a loaded statement has there; empty when the row has a value.
[[nodiscard]] QString parameterPlaceholder(const TorvQDListItem& row);

/// The placeholders of the statement, each once, in the order of the text. Those of procedures on
/// the diagram have the type and the default of their parameter, those in conditions the type of
/// the column with which they are compared.
[[nodiscard]] std::vector<ParameterDescription> describeParameters(const QString& statement,
                                                                   const TorvQueryBuilder& builder,
                                                                   ColumnTypes columnTypes);

}  // namespace orvquery
