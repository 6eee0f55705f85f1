// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <Python.h>

#include <exception>
#include <initializer_list>
#include <memory>

// Between Python and C++: the interpreter's lock, shared references, and exceptions that cross the
// border in either direction.
namespace orvpy {

/// Holds the interpreter's lock while it lives.
class Lock {
public:
    Lock() : m_state(PyGILState_Ensure()) {}
    ~Lock() { PyGILState_Release(m_state); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    PyGILState_STATE m_state;
};

/// Whether Python code can run: not any more once the interpreter has begun to end.
[[nodiscard]] bool isPythonAlive();

/// A reference to a Python object that may be copied and dropped without the interpreter's lock.
/// What is left when the interpreter ends is not released.
using Shared = std::shared_ptr<PyObject>;

/// Takes the reference over; none for none. The lock is held.
[[nodiscard]] Shared adopt(PyObject* object);
/// Makes a reference of its own; none for none. The lock is held.
[[nodiscard]] Shared share(PyObject* object);

/// A Python exception on its way through C++.
class PythonError : public std::exception {
public:
    /// Takes over the exception that is set. The lock is held.
    PythonError();

    [[nodiscard]] const char* what() const noexcept override;
    /// Sets the exception again. The lock is held.
    void restore() const;
    /// Hands the exception to sys.excepthook; it never ends the program.
    void report() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

/// Calls a Python callable. The arguments are taken over; none among them means that making it
/// failed. Throws PythonError. The lock is held.
[[nodiscard]] Shared call(PyObject* callable, std::initializer_list<PyObject*> arguments);

/// Throws the PythonError that is set.
[[noreturn]] void throwPythonError();
/// Throws the PythonError for a TypeError of that text.
[[noreturn]] void throwTypeError(const QString& text);

[[nodiscard]] PyObject* toPython(const QString& text);

/// Sets the Python exception for the C++ exception that is being handled. The lock is held.
void raiseCurrentException();

/// Makes OrvError and adds it to the module. False when that failed, with the exception set.
[[nodiscard]] bool addErrorType(PyObject* moduleDict);

/// Runs a body that may throw; false with the Python exception set when it did. The lock is held.
template <typename Body>
[[nodiscard]] bool attempt(const Body& body) {
    try {
        body();
        return true;
    } catch (...) {
        raiseCurrentException();
        return false;
    }
}

}  // namespace orvpy
