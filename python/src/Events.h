// SPDX-License-Identifier: MIT
#pragma once

#include "Calls.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"

#include <QMimeData>
#include <QPointer>

// The events of the builder as Python callables, and the services that Python may replace.
namespace orvpy {

/// What all events have: the callable, and the builder that owns the event.
class Handler {
public:
    Handler(TorvQueryBuilder* builder, Shared callable)
        : m_builder(builder), m_callable(std::move(callable)) {}

    [[nodiscard]] PyObject* callable() const { return m_callable.get(); }

protected:
    QPointer<TorvQueryBuilder> m_builder;
    Shared m_callable;
};

struct GetTableFields : Handler {
    using Handler::Handler;
    void operator()(const QString& name, std::unique_ptr<TDataSet>& dataSet,
                    std::unique_ptr<TParams>& params) const;
};

struct AddRemoveTable : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, TorvQDTable* table, TAddRemove action, bool& canDo) const;
};

struct AddRemoveLink : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, TorvQDLink* link, TAddRemove action, bool& canDo) const;
};

struct EnterProcParameter : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, TorvQDTable* procedure, TorvQDListItem* item) const;
};

struct StartDrag : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, const orv::DraggedField& field) const;
};

struct DragOver : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, QObject* source, int x, int y, bool& accept) const;
};

struct DragDrop : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, QObject* source, int x, int y) const;
};

struct EndDrag : Handler {
    using Handler::Handler;
    void operator()(QObject* sender, QObject* target, int x, int y) const;
};

/// A new reference to the callable of an event; None when there is none, or none of Python's.
template <typename Kind, typename Event>
PyObject* handlerOf(const Event& event) {
    const Kind* kind = event.template target<Kind>();
    PyObject* result = kind ? kind->callable() : Py_None;
    Py_INCREF(result);
    return result;
}

/// Whether the object is None or callable; sets TypeError when it is neither.
[[nodiscard]] bool checkCallable(const char* name, PyObject* object);

/// Assigns a callable to an event, or clears it for None. False with an exception set for anything
/// else.
template <typename Kind, typename Event>
bool setHandler(const char* name, Event& event, TorvQueryBuilder* builder, PyObject* object) {
    if (!checkCallable(name, object)) return false;
    // What is dropped may run code that looks at the event: it is the new one by then.
    Event old = std::exchange(event, Event());
    if (object != Py_None) event = Kind(builder, share(object));
    return true;
}

/// Shows the garbage collector the callables that the builder holds, and drops them.
int traverse(const TorvQueryBuilder* builder, visitproc visit, void* argument);
int clear(TorvQueryBuilder* builder);

/// A copy of what is dragged over the builder; none when nothing is. The caller owns it.
[[nodiscard]] QMimeData* draggedData(const TorvQueryBuilder& builder);

/// From now on Python exceptions in a user's action go to sys.excepthook.
void installErrorHandler();

/// Replace the handler of other errors and the service of message boxes; None brings the library's
/// back. Return the callable that was there, or none with an exception set.
PyObject* setErrorHandler(PyObject* callable);
PyObject* setMessageService(PyObject* callable);

}  // namespace orvpy
