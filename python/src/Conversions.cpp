// SPDX-License-Identifier: MIT
#include "Conversions.h"

#include "sipAPI_core.h"

#include <QApplication>
#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <type_traits>

namespace orvpy {

namespace {

// --- sequences ---

template <typename Entry>
PyObject* newEntry(const Entry& entry, const sipTypeDef* type, PyObject* owner) {
    return sipConvertFromNewType(new Entry(entry), type, owner);
}

// A tuple where a change of the list would go unnoticed.
template <typename Entries>
PyObject* toTuple(const Entries& entries, const sipTypeDef* type, PyObject* owner) {
    PyObject* tuple = PyTuple_New(Py_ssize_t(entries.size()));
    if (!tuple) return nullptr;
    Py_ssize_t index = 0;
    for (const auto& entry : entries) {
        PyObject* object = newEntry(entry, type, owner);
        if (!object) {
            Py_DECREF(tuple);
            return nullptr;
        }
        PyTuple_SetItem(tuple, index++, object);
    }
    return tuple;
}

/// The object as the wrapped type; throws TypeError, with the place in the list, when it is not.
template <typename Entry>
const Entry& entryOf(PyObject* object, const sipTypeDef* type, const char* wanted,
                     Py_ssize_t index) {
    constexpr int flags = SIP_NOT_NONE | SIP_NO_CONVERTORS;
    if (!sipCanConvertToType(object, type, flags)) {
        throwTypeError(
            QStringLiteral("entry %1 must be a %2").arg(index).arg(QLatin1String(wanted)));
    }
    int error = 0;
    const void* entry = sipConvertToType(object, type, nullptr, flags, nullptr, &error);
    if (error) throwPythonError();
    return *static_cast<const Entry*>(entry);
}

/// Calls the body with every entry and its place; throws what Python raises.
template <typename Body>
void forEach(PyObject* iterable, const Body& body) {
    const Shared iterator = adopt(PyObject_GetIter(iterable));
    if (!iterator) throwPythonError();
    for (Py_ssize_t index = 0;; ++index) {
        const Shared entry = adopt(PyIter_Next(iterator.get()));
        if (!entry) break;
        body(entry.get(), index);
    }
    if (PyErr_Occurred()) throwPythonError();
}

template <typename Entries, typename Body>
Entries* collect(PyObject* iterable, int* isErr, const Body& body) {
    auto entries = std::make_unique<Entries>();
    const bool isDone = attempt([&] {
        forEach(iterable,
                [&](PyObject* entry, Py_ssize_t index) { entries->push_back(body(entry, index)); });
    });
    if (!isDone) *isErr = 1;
    return isDone ? entries.release() : nullptr;
}

QString textOf(PyObject* object) {
    int state = 0;
    int error = 0;
    auto* text = static_cast<QString*>(
        sipConvertToType(object, sipType_QString, nullptr, SIP_NOT_NONE, &state, &error));
    if (error) throwPythonError();
    QString copy = *text;
    sipReleaseType(text, sipType_QString, state);
    return copy;
}

TFieldDef fieldOf(PyObject* object, Py_ssize_t index) {
    const bool isPair = PyTuple_Check(object) && PyTuple_Size(object) == 2;
    PyObject* name = isPair ? PyTuple_GetItem(object, 0) : nullptr;
    if (!name || !PyUnicode_Check(name)) {
        return entryOf<TFieldDef>(object, sipType_TFieldDef,
                                  "TFieldDef or a tuple of a name and a TFieldType", index);
    }
    const int type = sipConvertToEnum(PyTuple_GetItem(object, 1), sipType_TFieldType);
    if (PyErr_Occurred()) throwPythonError();
    return {textOf(name), TFieldType(type)};
}

}  // namespace

PyObject* fromFieldDefs(const TFieldDefs& fields, PyObject* owner) {
    return toTuple(fields, sipType_TFieldDef, owner);
}

PyObject* fromParams(const std::vector<TParam>& params, PyObject* owner) {
    return toTuple(params, sipType_TParam, owner);
}

PyObject* fromRows(const std::vector<RowRef>& rows, PyObject* owner) {
    return toTuple(rows, sipType_RowRef, owner);
}

PyObject* fromFindings(const orv::Findings& findings, PyObject* owner) {
    const Shared tuple = adopt(toTuple(findings, sipType_orv_Finding, owner));
    return tuple ? PySequence_List(tuple.get()) : nullptr;
}

bool isIterable(PyObject* object) {
    if (PyUnicode_Check(object) || PyBytes_Check(object)) return false;
    const Shared iterator = adopt(PyObject_GetIter(object));
    if (!iterator) PyErr_Clear();
    return bool(iterator);
}

TFieldDefs* toFieldDefs(PyObject* iterable, int* isErr) {
    return collect<TFieldDefs>(iterable, isErr, fieldOf);
}

std::vector<TParam>* toParams(PyObject* iterable, int* isErr) {
    return collect<std::vector<TParam>>(iterable, isErr, [](PyObject* entry, Py_ssize_t index) {
        return entryOf<TParam>(entry, sipType_TParam, "TParam", index);
    });
}

orv::Findings* toFindings(PyObject* iterable, int* isErr) {
    return collect<orv::Findings>(iterable, isErr, [](PyObject* entry, Py_ssize_t index) {
        return entryOf<orv::Finding>(entry, sipType_orv_Finding, "Finding", index);
    });
}

TEditRestrictions* toRestrictions(PyObject* iterable, int* isErr) {
    auto restrictions = std::make_unique<TEditRestrictions>();
    const bool isDone = attempt([&] {
        forEach(iterable, [&](PyObject* entry, Py_ssize_t) {
            const int edit = sipConvertToEnum(entry, sipType_ORVQDWindow__1);
            if (PyErr_Occurred()) throwPythonError();
            *restrictions = *restrictions | ORVQDWindow__1(edit);
        });
    });
    if (!isDone) *isErr = 1;
    return isDone ? restrictions.release() : nullptr;
}

PyObject* fromRestrictions(TEditRestrictions restrictions) {
    const Shared list = adopt(PyList_New(0));
    if (!list) return nullptr;
    for (const ORVQDWindow__1 edit : {erAdd, erDelete, erName, erArgument}) {
        if (!restrictions.contains(edit)) continue;
        const Shared member = adopt(sipConvertFromEnum(edit, sipType_ORVQDWindow__1));
        if (!member || PyList_Append(list.get(), member.get()) < 0) return nullptr;
    }
    return PyFrozenSet_New(list.get());
}

OperatorListRef* toOperatorList(PyObject* iterable) {
    auto list = std::make_unique<OperatorListRef>();
    const bool isDone = attempt([&] {
        forEach(iterable, [&](PyObject* entry, Py_ssize_t index) {
            list->Add(
                entryOf<TorvQDOperator>(entry, sipType_TorvQDOperator, "TorvQDOperator", index));
        });
    });
    return isDone ? list.release() : nullptr;
}

// What is assigned may be the builder's own list, so it is read before anything changes.
bool setOperators(TorvQueryBuilder* builder, PyObject* operators) {
    const std::unique_ptr<OperatorListRef> list(toOperatorList(operators));
    return list && attempt([&] { builder->setOperators(list->get()); });
}

// --- values ---

QString typeName(PyObject* object) {
    const Shared name =
        adopt(PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(object)), "__name__"));
    const Shared bytes = adopt(name ? PyUnicode_AsUTF8String(name.get()) : nullptr);
    if (!bytes) PyErr_Clear();
    return bytes ? QString::fromUtf8(PyBytes_AsString(bytes.get())) : QStringLiteral("object");
}

namespace {

/// The object as that wrapped type, when it can be one.
template <typename Value>
bool convert(PyObject* object, const sipTypeDef* type, QVariant& value) {
    if (!sipCanConvertToType(object, type, SIP_NOT_NONE)) return false;
    int state = 0;
    int error = 0;
    auto* converted =
        static_cast<Value*>(sipConvertToType(object, type, nullptr, SIP_NOT_NONE, &state, &error));
    if (error) throwPythonError();
    if constexpr (std::is_same_v<Value, QVariant>) {
        value = *converted;
    } else {
        value = QVariant::fromValue(*converted);
    }
    sipReleaseType(converted, type, state);
    return true;
}

/// Whether the object is of a class of a module of Python.
bool isA(PyObject* object, const char* module, const char* name) {
    const Shared imported = adopt(PyImport_ImportModule(module));
    const Shared type = adopt(imported ? PyObject_GetAttrString(imported.get(), name) : nullptr);
    const int isInstance = type ? PyObject_IsInstance(object, type.get()) : -1;
    if (isInstance < 0) throwPythonError();
    return isInstance != 0;
}

/// What the object's method answers.
Shared answerOf(PyObject* object, const char* method, const char* format = nullptr,
                const char* argument = nullptr) {
    Shared answer = adopt(PyObject_CallMethod(object, method, format, argument));
    if (!answer) throwPythonError();
    return answer;
}

[[noreturn]] void refuseNumber() {
    throw std::invalid_argument("a number must be finite: SQL has none for infinity and NaN");
}

// As SQL, so that no digit is lost. Without an exponent, which would make it a broken number of few
// digits for most databases, unless it were very long then.
QVariant decimalOf(PyObject* object) {
    constexpr long mostZeros = 100;
    if (!PyObject_IsTrue(answerOf(object, "is_finite").get())) refuseNumber();
    const long exponent = PyLong_AsLong(answerOf(object, "adjusted").get());
    if (exponent == -1 && PyErr_Occurred()) throwPythonError();
    const bool isShort = exponent >= -mostZeros && exponent <= mostZeros;
    const Shared text =
        isShort ? answerOf(object, "__format__", "s", "f") : answerOf(object, "__str__");
    return QVariant::fromValue(orv::SqlText{textOf(text.get()).toUpper()});
}

QByteArray bytesOf(PyObject* object) {
    const Shared bytes = adopt(PyBytes_FromObject(object));
    if (!bytes) throwPythonError();
    return {PyBytes_AsString(bytes.get()), qsizetype(PyBytes_Size(bytes.get()))};
}

/// Whether it is a moment of Python with a time zone, which a moment of Qt made from it would lack.
bool hasTimeZone(PyObject* object) {
    const Shared zone = adopt(PyObject_GetAttrString(object, "tzinfo"));
    if (!zone) PyErr_Clear();
    return zone && zone.get() != Py_None;
}

// Throws for a value of a good kind that cannot be written as it is.
void checkContent(const QVariant& value) {
    const auto checkMoment = [](bool isValid) {
        if (!isValid) throw std::invalid_argument("the date or time is not a valid one");
    };
    switch (value.typeId()) {
    case QMetaType::Double:
        if (!std::isfinite(value.toDouble())) refuseNumber();
        break;
    case QMetaType::QByteArray:
        if (!value.toByteArray().isValidUtf8()) {
            throw std::invalid_argument("bytes are written as a text and must be one in UTF-8");
        }
        break;
    case QMetaType::QDate: checkMoment(value.toDate().isValid()); break;
    case QMetaType::QTime: checkMoment(value.toTime().isValid()); break;
    case QMetaType::QDateTime: checkMoment(value.toDateTime().isValid()); break;
    default: break;
    }
}

bool canBeWritten(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return true;
    default: return value.metaType() == QMetaType::fromType<orv::SqlText>();
    }
}

}  // namespace

bool toValue(PyObject* object, QVariant& value) {
    if (!object) return true;
    if (object == Py_None) {
        value = QVariant::fromValue(nullptr);
        return true;
    }
    return attempt([&] {
        if (PyBytes_Check(object) || PyByteArray_Check(object)) {
            value = bytesOf(object);
            checkContent(value);
            return;
        }
        if (isA(object, "decimal", "Decimal")) {
            value = decimalOf(object);
            return;
        }
        // A datetime is a date, too.
        const bool isConverted = convert<orv::SqlText>(object, sipType_orv_SqlText, value) ||
                                 convert<QDateTime>(object, sipFindType("QDateTime"), value) ||
                                 convert<QDate>(object, sipFindType("QDate"), value) ||
                                 convert<QTime>(object, sipFindType("QTime"), value) ||
                                 convert<QVariant>(object, sipType_QVariant, value);
        if (isConverted && canBeWritten(value)) {
            if (hasTimeZone(object)) {
                throw std::invalid_argument(
                    "a date or time with a time zone would be written without it: convert it to "
                    "the zone of the database, and give it without tzinfo");
            }
            checkContent(value);
            return;
        }
        if (PyLong_Check(object)) {
            PyErr_SetString(PyExc_OverflowError,
                            "a whole number must fit 64 bits; a larger one is given as a Decimal");
            throwPythonError();
        }
        throwTypeError(
            QStringLiteral("the value of a parameter must be a bool, a number, a Decimal, a text, "
                           "bytes, a date or time, a SqlText or None, not %1")
                .arg(typeName(object)));
    });
}

PyObject* fromValue(const QVariant& value) {
    if (value.isNull()) {
        Py_INCREF(Py_None);
        return Py_None;
    }
    if (value.metaType() == QMetaType::fromType<orv::SqlText>()) {
        return newEntry(value.value<orv::SqlText>(), sipType_orv_SqlText, nullptr);
    }
    return sipConvertFromNewType(new QVariant(value), sipType_QVariant, nullptr);
}

bool isEqual(const TFieldDef& left, const TFieldDef& right) {
    return left.Name == right.Name && left.DataType == right.DataType;
}

bool isEqual(const TDataSet& left, const TDataSet& right) {
    return std::equal(left.FieldDefs.begin(), left.FieldDefs.end(), right.FieldDefs.begin(),
                      right.FieldDefs.end(),
                      [](const TFieldDef& a, const TFieldDef& b) { return isEqual(a, b); });
}

bool isEqual(const TParam& left, const TParam& right) {
    return left.Name == right.Name && left.DataType == right.DataType &&
           left.ParamType == right.ParamType && left.Value == right.Value;
}

bool isEqual(const TParams& left, const TParams& right) {
    return std::equal(left.Items.begin(), left.Items.end(), right.Items.begin(), right.Items.end(),
                      [](const TParam& a, const TParam& b) { return isEqual(a, b); });
}

// -1 stands for an error.
Py_hash_t hashOf(const QString& text, int number) {
    return Py_hash_t(qHashMulti(0, text, number) >> 1);
}

// --- texts ---

namespace {

/// The object as Python writes it; takes the object over.
QString written(PyObject* object) {
    const Shared held = adopt(object);
    const Shared text = adopt(held ? PyObject_Repr(held.get()) : nullptr);
    if (!text) throwPythonError();
    return textOf(text.get());
}

QString written(const QString& text) {
    return written(toPython(text));
}

QString nameOf(int value, const sipTypeDef* type) {
    const Shared member = adopt(sipConvertFromEnum(value, type));
    const Shared name = adopt(member ? PyObject_GetAttrString(member.get(), "name") : nullptr);
    if (!name) throwPythonError();
    return textOf(name.get());
}

/// Type(part, part), as Python would write it.
template <typename Parts>
PyObject* asCall(const char* type, const Parts& parts) {
    PyObject* result = nullptr;
    const bool isDone = attempt([&] {
        const QStringList texts = parts();
        result = toPython(QLatin1String(type) + u'(' + texts.join(u", ") + u')');
    });
    return isDone ? result : nullptr;
}

PyObject* counted(const char* type, std::size_t count, const char* what) {
    return toPython(QStringLiteral("<%1 of %2 %3>")
                        .arg(QLatin1String(type))
                        .arg(count)
                        .arg(QLatin1String(what)));
}

}  // namespace

PyObject* repr(const TFieldDef& field) {
    return asCall("TFieldDef", [&] {
        return QStringList{written(field.Name), nameOf(field.DataType, sipType_TFieldType)};
    });
}

PyObject* repr(const TDataSet& dataSet) {
    return counted("TDataSet", dataSet.FieldDefs.size(), "fields");
}

PyObject* repr(const TParam& param) {
    return asCall("TParam", [&] {
        QStringList parts = {written(param.Name), nameOf(param.DataType, sipType_TFieldType),
                             nameOf(param.ParamType, sipType_TParamType)};
        if (param.Value.isValid()) parts << written(fromValue(param.Value));
        return parts;
    });
}

PyObject* repr(const TParams& params) {
    return counted("TParams", params.Items.size(), "parameters");
}

PyObject* repr(const orv::SqlText& sql) {
    return asCall("SqlText", [&] { return QStringList{written(sql.text)}; });
}

PyObject* repr(const orv::Finding& finding) {
    return asCall("Finding", [&] {
        return QStringList{QString::number(finding.start), QString::number(finding.length),
                           written(finding.text), written(finding.what)};
    });
}

PyObject* repr(const TorvQDOperator& entry) {
    return asCall("TorvQDOperator", [&] {
        return QStringList{written(entry.Name),   written(entry.Caption),
                           written(entry.Relate), written(entry.Postfix),
                           written(entry.Prefix), QString::number(entry.Count)};
    });
}

bool checkApplication() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) return true;
    PyErr_SetString(PyExc_RuntimeError, "a QApplication must be made before a TorvQueryBuilder");
    return false;
}

}  // namespace orvpy
