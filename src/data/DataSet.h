// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QVariant>

#include <vector>

/// Name and data type of one column, as the host describes it.
struct TFieldDef {
    QString Name;  ///< as the database has it, without the quotes of SQL
    TFieldType DataType =
        ftUnknown;  ///< by it the pages tell whether two sides of a condition go together
};

/// Columns in their order.
using TFieldDefs = std::vector<TFieldDef>;

/// What the host tells about a table: its columns, in order. A plain value; no rows.
class TDataSet {
public:
    /// No columns, or these.
    TDataSet() = default;
    TDataSet(TFieldDefs fieldDefs) : FieldDefs(std::move(fieldDefs)) {}

    TFieldDefs FieldDefs;  ///< the columns
};

/// One parameter of a stored procedure. An invalid Value means that none is given; a null value of
/// a type is SQL's NULL.
struct TParam {
    QString Name;                      ///< as the database has it, without the quotes of SQL
    TFieldType DataType = ftUnknown;   ///< by it a value is written
    TParamType ParamType = ptUnknown;  ///< inputs are asked for; outputs are columns of the result
    QVariant Value = {};               ///< what it begins with
};

/// The parameters of a stored procedure, in order. A plain value.
class TParams {
public:
    /// No parameters, or these.
    TParams() = default;
    TParams(std::vector<TParam> items) : Items(std::move(items)) {}

    std::vector<TParam> Items;  ///< the parameters
};
