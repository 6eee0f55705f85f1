// SPDX-License-Identifier: MIT
#pragma once

#include "Calls.h"
#include "Refs.h"
#include "data/SqlText.h"
#include "querybuilder/ORVQDWindow.h"

#include <vector>

// How plain values go to Python and back. All of it is called with the interpreter's lock held;
// what returns none has set an exception.
namespace orvpy {

[[nodiscard]] PyObject* fromFieldDefs(const TFieldDefs& fields, PyObject* owner);
[[nodiscard]] PyObject* fromParams(const std::vector<TParam>& params, PyObject* owner);
[[nodiscard]] PyObject* fromFindings(const orv::Findings& findings, PyObject* owner);
[[nodiscard]] PyObject* fromRestrictions(TEditRestrictions restrictions);
[[nodiscard]] PyObject* fromRows(const std::vector<RowRef>& rows, PyObject* owner);

/// Whether the object can be iterated and is no text.
[[nodiscard]] bool isIterable(PyObject* object);
/// New lists; `isErr` is set when an entry is none.
[[nodiscard]] TFieldDefs* toFieldDefs(PyObject* iterable, int* isErr);
[[nodiscard]] std::vector<TParam>* toParams(PyObject* iterable, int* isErr);
[[nodiscard]] orv::Findings* toFindings(PyObject* iterable, int* isErr);
[[nodiscard]] TEditRestrictions* toRestrictions(PyObject* iterable, int* isErr);
[[nodiscard]] OperatorListRef* toOperatorList(PyObject* iterable);
[[nodiscard]] bool setOperators(TorvQueryBuilder* builder, PyObject* operators);

/// What Python calls the object's type.
[[nodiscard]] QString typeName(PyObject* object);
/// No object is no value, None is NULL. False with an exception set for what cannot be written.
[[nodiscard]] bool toValue(PyObject* object, QVariant& value);
[[nodiscard]] PyObject* fromValue(const QVariant& value);

[[nodiscard]] bool isEqual(const TFieldDef& left, const TFieldDef& right);
[[nodiscard]] bool isEqual(const TDataSet& left, const TDataSet& right);
[[nodiscard]] bool isEqual(const TParam& left, const TParam& right);
[[nodiscard]] bool isEqual(const TParams& left, const TParams& right);
[[nodiscard]] Py_hash_t hashOf(const QString& text, int number);

[[nodiscard]] PyObject* repr(const TFieldDef& field);
[[nodiscard]] PyObject* repr(const TDataSet& dataSet);
[[nodiscard]] PyObject* repr(const TParam& param);
[[nodiscard]] PyObject* repr(const TParams& params);
[[nodiscard]] PyObject* repr(const orv::SqlText& sql);
[[nodiscard]] PyObject* repr(const orv::Finding& finding);
[[nodiscard]] PyObject* repr(const TorvQDOperator& entry);

/// Whether widgets can be made; sets RuntimeError when they cannot.
[[nodiscard]] bool checkApplication();

}  // namespace orvpy
