// SPDX-License-Identifier: MIT
#include "Events.h"

#include "Conversions.h"
#include "Refs.h"
#include "sipAPI_core.h"

#include <QCoreApplication>

#include <optional>

namespace orvpy {

namespace {

PyObject* wrapBuilder(TorvQueryBuilder* builder) {
    return sipConvertFromType(builder, sipType_TorvQueryBuilder, nullptr);
}

PyObject* wrapObject(QObject* object) {
    if (auto* builder = qobject_cast<TorvQueryBuilder*>(object)) return wrapBuilder(builder);
    return sipConvertFromType(object, sipType_QObject, nullptr);
}

template <typename Ref, typename Object>
PyObject* wrapRef(Object* object, const sipTypeDef* type) {
    return object ? sipConvertFromNewType(new Ref(object), type, nullptr)
                  : (Py_INCREF(Py_None), Py_None);
}

PyObject* wrap(TorvQDTable* table) {
    return wrapRef<TableRef>(table, sipType_TableRef);
}

PyObject* wrap(TorvQDLink* link) {
    return wrapRef<LinkRef>(link, sipType_LinkRef);
}

PyObject* wrap(TorvQDListItem* item) {
    return wrapRef<RowRef>(item, sipType_RowRef);
}

PyObject* wrap(TAddRemove action) {
    return sipConvertFromEnum(action, sipType_TAddRemove);
}

// Made before a Turn: what that drops may still look at the object.
std::optional<Offer> offerOf(const TorvQDFloatObject* object, TAddRemove action) {
    if (action != araAdd) return std::nullopt;
    return std::optional<Offer>(std::in_place, object);
}

/// One event on its way to Python: keeps the callable and the builder for as long as it runs.
class Turn {
public:
    Turn(TorvQueryBuilder* builder, PyObject* callable)
        : m_callable(share(callable)), m_builder(builder ? adopt(wrapBuilder(builder)) : nullptr) {}
    ~Turn() { release(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] Shared call(std::initializer_list<PyObject*> arguments) const {
        return orvpy::call(m_callable.get(), arguments);
    }

private:
    // A handler that drops the last variable of the builder would delete it under the event that
    // the builder is in the middle of: the event loop drops it.
    void release() {
        if (!m_builder || Py_REFCNT(m_builder.get()) > 1) return;
        QCoreApplication* application = QCoreApplication::instance();
        if (!application) return;
        QMetaObject::invokeMethod(
            application, [last = std::move(m_builder)]() mutable { last.reset(); },
            Qt::QueuedConnection);
    }

    Shared m_callable;
    Shared m_builder;
};

// Nothing means yes: a handler that only looks needs no return.
bool isAllowed(const Shared& answer) {
    if (answer.get() == Py_None) return true;
    const int truth = PyObject_IsTrue(answer.get());
    if (truth < 0) throwPythonError();
    return truth != 0;
}

template <typename Value>
std::unique_ptr<Value> copyOf(PyObject* object, const sipTypeDef* type) {
    if (object == Py_None) return nullptr;
    if (!sipCanConvertToType(object, type, SIP_NOT_NONE | SIP_NO_CONVERTORS)) {
        throwTypeError(QStringLiteral("OnGetTableFields must return a TDataSet, a tuple of a "
                                      "TDataSet and TParams, or None, not %1")
                           .arg(typeName(object)));
    }
    int error = 0;
    const auto* value = static_cast<const Value*>(
        sipConvertToType(object, type, nullptr, SIP_NOT_NONE | SIP_NO_CONVERTORS, nullptr, &error));
    if (error) throwPythonError();
    return std::make_unique<Value>(*value);
}

}  // namespace

// --- events ---

void GetTableFields::operator()(const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                std::unique_ptr<TParams>& params) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    const Shared answer = turn.call({toPython(name)});
    PyObject* fields = answer.get();
    PyObject* parameters = Py_None;
    if (PyTuple_Check(answer.get()) && PyTuple_Size(answer.get()) == 2) {
        fields = PyTuple_GetItem(answer.get(), 0);
        parameters = PyTuple_GetItem(answer.get(), 1);
    }
    auto found = copyOf<TDataSet>(fields, sipType_TDataSet);
    params = copyOf<TParams>(parameters, sipType_TParams);
    dataSet = std::move(found);
}

void AddRemoveTable::operator()(QObject* sender, TorvQDTable* table, TAddRemove action,
                                bool& canDo) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const auto offer = offerOf(table, action);
    const Turn turn(m_builder, callable());
    canDo = isAllowed(turn.call({wrapObject(sender), wrap(table), wrap(action)}));
}

void AddRemoveLink::operator()(QObject* sender, TorvQDLink* link, TAddRemove action,
                               bool& canDo) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const auto offer = offerOf(link, action);
    const Turn turn(m_builder, callable());
    canDo = isAllowed(turn.call({wrapObject(sender), wrap(link), wrap(action)}));
}

void EnterProcParameter::operator()(QObject* sender, TorvQDTable* procedure,
                                    TorvQDListItem* item) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    (void)turn.call({wrapObject(sender), wrap(procedure), wrap(item)});
}

void StartDrag::operator()(QObject* sender, const orv::DraggedField& field) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    PyObject* copy =
        sipConvertFromNewType(new orv::DraggedField(field), sipType_orv_DraggedField, nullptr);
    (void)turn.call({wrapObject(sender), copy});
}

void DragOver::operator()(QObject* sender, QObject* source, int x, int y, bool& accept) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    const Shared answer =
        turn.call({wrapObject(sender), wrapObject(source), PyLong_FromLong(x), PyLong_FromLong(y)});
    // Here nothing means no, as nothing was asked for.
    accept = answer.get() != Py_None && isAllowed(answer);
}

void DragDrop::operator()(QObject* sender, QObject* source, int x, int y) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    (void)turn.call(
        {wrapObject(sender), wrapObject(source), PyLong_FromLong(x), PyLong_FromLong(y)});
}

void EndDrag::operator()(QObject* sender, QObject* target, int x, int y) const {
    if (!isPythonAlive()) return;
    const Lock lock;
    const Turn turn(m_builder, callable());
    (void)turn.call(
        {wrapObject(sender), wrapObject(target), PyLong_FromLong(x), PyLong_FromLong(y)});
}

bool checkCallable(const char* name, PyObject* object) {
    if (object == Py_None || PyCallable_Check(object)) return true;
    PyErr_SetString(PyExc_TypeError, QStringLiteral("%1 must be a callable or None, not %2")
                                         .arg(QLatin1String(name), typeName(object))
                                         .toUtf8()
                                         .constData());
    return false;
}

namespace {

template <typename Builder, typename Visitor>
void visitHandlers(Builder& builder, const Visitor& visitor) {
    visitor.template operator()<GetTableFields>(builder.OnGetTableFields);
    visitor.template operator()<AddRemoveTable>(builder.OnAddRemoveTable);
    visitor.template operator()<AddRemoveLink>(builder.OnAddRemoveLink);
    visitor.template operator()<EnterProcParameter>(builder.OnEnterProcParameter);
    visitor.template operator()<StartDrag>(builder.OnStartDrag);
    visitor.template operator()<DragOver>(builder.OnDragOver);
    visitor.template operator()<DragDrop>(builder.OnDragDrop);
    visitor.template operator()<EndDrag>(builder.OnEndDrag);
}

}  // namespace

int traverse(const TorvQueryBuilder* builder, visitproc visit, void* argument) {
    int result = 0;
    visitHandlers(*builder, [&]<typename Kind>(const auto& event) {
        const Kind* kind = event.template target<Kind>();
        if (kind && result == 0) result = visit(kind->callable(), argument);
    });
    return result;
}

int clear(TorvQueryBuilder* builder) {
    visitHandlers(*builder, [&]<typename Kind>(auto& event) {
        using Event = std::decay_t<decltype(event)>;
        if (event.template target<Kind>()) const Event old = std::exchange(event, Event());
    });
    return 0;
}

QMimeData* draggedData(const TorvQueryBuilder& builder) {
    const QMimeData* source = builder.DragMimeData();
    if (!source) return nullptr;
    auto copy = std::make_unique<QMimeData>();
    const QStringList formats = source->formats();
    for (const QString& format : formats) copy->setData(format, source->data(format));
    if (source->hasImage()) copy->setImageData(source->imageData());
    if (source->hasColor()) copy->setColorData(source->colorData());
    return copy.release();
}

// --- services ---

namespace {

Shared errorCallable;
Shared messageCallable;

PyObject* exchanged(Shared& held, PyObject* callable) {
    const Shared old = std::exchange(held, callable == Py_None ? Shared() : share(callable));
    PyObject* result = old ? old.get() : Py_None;
    Py_INCREF(result);
    return result;
}

void handleError(const QString& text);

void handleByLibrary(const QString& text) {
    orv::setErrorHandler({});
    orv::reportError(text);
    orv::setErrorHandler(handleError);
}

void handleByHost(const QString& text) {
    const Lock lock;
    const Shared callable = errorCallable;
    try {
        (void)call(callable.get(), {toPython(text)});
    } catch (const PythonError& error) {
        error.report();
    }
}

// The guard calls this while it handles the exception itself.
void handleError(const QString& text) {
    try {
        if (std::current_exception()) throw;
    } catch (const PythonError& error) {
        error.report();
        return;
    } catch (...) {
        // Told by its text, as always.
    }
    if (errorCallable && isPythonAlive()) {
        handleByHost(text);
    } else {
        handleByLibrary(text);
    }
}

orv::MessageAnswer answerByHost(const orv::MessageRequest& request) {
    const bool asks = request.buttons == orv::MessageButtons::YesNo;
    const orv::MessageAnswer unanswered = asks ? orv::MessageAnswer::No : orv::MessageAnswer::Ok;
    if (!isPythonAlive()) return unanswered;
    const Lock lock;
    const Shared callable = messageCallable;
    PyObject* copy = sipConvertFromNewType(new orv::MessageRequest(request),
                                           sipType_orv_MessageRequest, nullptr);
    const Shared answer = call(callable.get(), {copy});
    if (answer.get() == Py_None) return unanswered;
    const int value = sipConvertToEnum(answer.get(), sipType_orv_MessageAnswer);
    if (PyErr_Occurred()) throwPythonError();
    return orv::MessageAnswer(value);
}

}  // namespace

void installErrorHandler() {
    orv::setErrorHandler(handleError);
}

PyObject* setErrorHandler(PyObject* callable) {
    if (!checkCallable("the error handler", callable)) return nullptr;
    return exchanged(errorCallable, callable);
}

PyObject* setMessageService(PyObject* callable) {
    if (!checkCallable("the message service", callable)) return nullptr;
    orv::setMessageService(callable == Py_None ? orv::MessageService() : answerByHost);
    return exchanged(messageCallable, callable);
}

}  // namespace orvpy
