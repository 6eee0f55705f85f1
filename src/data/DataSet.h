// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QString>
#include <QVariant>

#include <vector>

/// Name and data type of one column, as the host describes it.
struct TFieldDef {
    QString Name;
    TFieldType DataType = ftUnknown;
};

using TFieldDefs = std::vector<TFieldDef>;

/// What the host tells about a table: its columns, in order. A plain value; no rows.
class TDataSet {
public:
    TDataSet() = default;
    TDataSet(TFieldDefs fieldDefs) : FieldDefs(std::move(fieldDefs)) {}

    TFieldDefs FieldDefs;
};

/// One parameter of a stored procedure. An invalid Value means that none is given; a null value of
/// a type is SQL's NULL.
struct TParam {
    QString Name;
    TFieldType DataType = ftUnknown;
    TParamType ParamType = ptUnknown;
    QVariant Value = {};
};

/// The parameters of a stored procedure, in order. A plain value.
class TParams {
public:
    TParams() = default;
    TParams(std::vector<TParam> items) : Items(std::move(items)) {}

    std::vector<TParam> Items;
};
