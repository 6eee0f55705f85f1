// SPDX-License-Identifier: MIT
#include "Calls.h"

#include "core/Error.h"

#include <QByteArray>

#include <new>
#include <stdexcept>

namespace orvpy {

namespace {

PyObject* errorType = nullptr;  // OrvError; lives as long as the interpreter

constexpr const char* errorDoc =
    "What an operation of the query builder raises when it cannot be done.\n\n"
    "Its text is that of the library, fixed and in English.";

QByteArray describe(PyObject* type, PyObject* value) {
    const Shared name = adopt(type ? PyObject_GetAttrString(type, "__name__") : nullptr);
    const Shared text = adopt(value ? PyObject_Str(value) : nullptr);
    QByteArray line;
    for (const Shared& part : {name, text}) {
        const Shared bytes = adopt(part ? PyUnicode_AsUTF8String(part.get()) : nullptr);
        const char* chars = bytes ? PyBytes_AsString(bytes.get()) : nullptr;
        if (!chars || !*chars) continue;
        if (!line.isEmpty()) line += ": ";
        line += chars;
    }
    PyErr_Clear();
    return line;
}

}  // namespace

bool isPythonAlive() {
    return Py_IsInitialized() != 0;
}

Shared adopt(PyObject* object) {
    return Shared(object, [](PyObject* held) {
        if (!held || !isPythonAlive()) return;
        const Lock lock;
        Py_DECREF(held);
    });
}

Shared share(PyObject* object) {
    Py_XINCREF(object);
    return adopt(object);
}

// --- exceptions ---

struct PythonError::State {
    Shared type;
    Shared value;
    Shared traceback;
    QByteArray text;
};

PythonError::PythonError() : m_state(std::make_shared<State>()) {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback) PyException_SetTraceback(value, traceback);
    m_state->text = describe(type, value);
    m_state->type = adopt(type);
    m_state->value = adopt(value);
    m_state->traceback = adopt(traceback);
}

const char* PythonError::what() const noexcept {
    return m_state->text.constData();
}

void PythonError::restore() const {
    Py_XINCREF(m_state->type.get());
    Py_XINCREF(m_state->value.get());
    Py_XINCREF(m_state->traceback.get());
    PyErr_Restore(m_state->type.get(), m_state->value.get(), m_state->traceback.get());
}

// The hook is called as it is: PyErr_Print() would end the program for SystemExit.
void PythonError::report() const {
    if (!isPythonAlive()) return;
    const Lock lock;
    PyObject* hook = PySys_GetObject("excepthook");
    const auto orNone = [](const Shared& object) {
        PyObject* there = object ? object.get() : Py_None;
        Py_INCREF(there);
        return there;
    };
    if (!hook) {
        restore();
        PyErr_WriteUnraisable(nullptr);
        return;
    }
    const Shared held = share(hook);
    try {
        (void)call(held.get(),
                   {orNone(m_state->type), orNone(m_state->value), orNone(m_state->traceback)});
    } catch (const PythonError& second) {
        second.restore();
        PyErr_WriteUnraisable(held.get());
    }
}

Shared call(PyObject* callable, std::initializer_list<PyObject*> arguments) {
    const Shared tuple = adopt(PyTuple_New(Py_ssize_t(arguments.size())));
    bool isWhole = bool(tuple);
    Py_ssize_t index = 0;
    for (PyObject* argument : arguments) {
        if (!argument) isWhole = false;
        if (tuple) {
            PyTuple_SetItem(tuple.get(), index++, argument);
        } else {
            Py_XDECREF(argument);
        }
    }
    if (!isWhole) throwPythonError();
    Shared result = adopt(PyObject_Call(callable, tuple.get(), nullptr));
    if (!result) throwPythonError();
    return result;
}

void throwPythonError() {
    if (!PyErr_Occurred()) PyErr_SetString(PyExc_SystemError, "an error without an exception");
    throw PythonError();
}

void throwTypeError(const QString& text) {
    PyErr_SetString(PyExc_TypeError, text.toUtf8().constData());
    throwPythonError();
}

PyObject* toPython(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return PyUnicode_DecodeUTF8(bytes.constData(), bytes.size(), "replace");
}

void raiseCurrentException() {
    try {
        throw;
    } catch (const PythonError& error) {
        error.restore();
    } catch (const orv::Error& error) {
        const Shared text = adopt(toPython(error.Message()));
        if (text) PyErr_SetObject(errorType, text.get());
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::out_of_range& error) {
        PyErr_SetString(PyExc_IndexError, error.what());
    } catch (const std::invalid_argument& error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    } catch (...) {
        PyErr_SetString(PyExc_RuntimeError, "unknown error");
    }
}

bool addErrorType(PyObject* moduleDict) {
    errorType =
        PyErr_NewExceptionWithDoc("orvquerybuilder.OrvError", errorDoc, PyExc_Exception, nullptr);
    return errorType && PyDict_SetItemString(moduleDict, "OrvError", errorType) == 0;
}

}  // namespace orvpy
