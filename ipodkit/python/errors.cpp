#include "errors.h"

#include <map>
#include <string>

#include "bindings.h"

namespace ipodkit::python
{
namespace
{
constexpr char kErrorDoc[] =
    "Why a request failed. `kind` is an ErrorKind, `reason` has details for logs, "
    "`name` is the D-Bus name of the error reply, or None, and `remedy` is what the user can do, or None.";

// Valid as long as the module.
py::handle errorType;
std::map<ErrorKind, py::handle> typesByKind;

struct Kind
{
    ErrorKind kind;
    const char* constant;
    PyObject** also;  // built-in exception as an additional base class, or null
    const char* doc;
};

const Kind kKinds[] = {
    {ErrorKind::NoBus, "NO_BUS", &PyExc_ConnectionError, "No session bus is available, or its connection was closed."},
    {ErrorKind::NoService, "NO_SERVICE", &PyExc_ConnectionError, "Nobody owns the service's name."},
    {ErrorKind::ServiceLost, "SERVICE_LOST", &PyExc_ConnectionError, "The service exited before it answered."},
    {ErrorKind::TimedOut, "TIMED_OUT", &PyExc_TimeoutError, "No answer within the deadline."},
    {ErrorKind::Refused, "REFUSED", nullptr, "The service answered with an error, or with false."},
    {ErrorKind::BadReply, "BAD_REPLY", nullptr, "The answer violates the contract."},
    {ErrorKind::Cancelled, "CANCELLED", nullptr, "The request was cancelled."},
    {ErrorKind::NoSharedMemory, "NO_SHARED_MEMORY", nullptr, "The shared memory cannot be used."},
    {ErrorKind::BadArgument, "BAD_ARGUMENT", &PyExc_ValueError, "The request is invalid and was not sent."},
    {ErrorKind::Ambiguous, "AMBIGUOUS", nullptr, "Received bytes that may belong to several accessory sessions."},
    {ErrorKind::NoStorage, "NO_STORAGE", &PyExc_OSError, "A file cannot be written."},
    {ErrorKind::Busy, "BUSY", nullptr, "Another process holds the list, or the queue of an accessory session is full."},
    {ErrorKind::WouldDeadlock, "WOULD_DEADLOCK", &PyExc_RuntimeError,
     "The wait would block the thread on which the result arrives."},
};

py::handle NewType(const std::string& name, const py::tuple& bases, const char* doc)
{
    const std::string full = "ipodkit." + name;
    const py::handle type = PyErr_NewExceptionWithDoc(full.c_str(), doc, bases.ptr(), nullptr);
    if (!type) throw py::error_already_set();
    return type;
}

py::object TextOrNone(const std::string& text)
{
    return text.empty() ? py::object(py::none()) : py::str(text);
}
}  // namespace

void BindErrors(py::module_& module)
{
    py::enum_<ErrorKind> kinds(module, "ErrorKind");
    errorType = NewType("Error", py::make_tuple(py::handle(PyExc_Exception)), kErrorDoc);
    module.attr("Error") = errorType;
    for (const Kind& each : kKinds)
    {
        const std::string name = Name(each.kind);
        kinds.value(each.constant, each.kind);
        py::tuple bases = py::make_tuple(errorType);
        if (each.also != nullptr) bases = py::make_tuple(errorType, py::handle(*each.also));
        module.attr(name.c_str()) = typesByKind[each.kind] = NewType(name, bases, each.doc);
    }
}

py::object ToException(const Error& error)
{
    py::object exception = typesByKind.at(error.kind)(error.Text());
    exception.attr("kind") = error.kind;
    exception.attr("reason") = error.reason;
    exception.attr("name") = TextOrNone(error.name);
    exception.attr("remedy") = TextOrNone(Remedy(error.kind));
    return exception;
}

void Raise(const Error& error)
{
    const py::object exception = ToException(error);
    PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
    throw py::error_already_set();
}
}  // namespace ipodkit::python
