#include "errors.h"

#include "bindings.h"

namespace ipodkit::python
{
namespace
{
constexpr char kErrorDoc[] =
    "Why a request failed. `kind` is an ErrorKind, `reason` gives details, in the words of the bus where it has any, "
    "and "
    "`name` is the D-Bus name of the error that was the answer, or None.";

py::handle errorType;  // lives as long as the module
}  // namespace

void BindErrors(py::module_& module)
{
    py::enum_<ErrorKind>(module, "ErrorKind")
        .value("NO_BUS", ErrorKind::NoBus)
        .value("NO_SERVICE", ErrorKind::NoService)
        .value("SERVICE_LOST", ErrorKind::ServiceLost)
        .value("TIMED_OUT", ErrorKind::TimedOut)
        .value("REFUSED", ErrorKind::Refused)
        .value("BAD_REPLY", ErrorKind::BadReply)
        .value("CANCELLED", ErrorKind::Cancelled)
        .value("NO_SHARED_MEMORY", ErrorKind::NoSharedMemory)
        .value("BAD_ARGUMENT", ErrorKind::BadArgument)
        .value("AMBIGUOUS", ErrorKind::Ambiguous)
        .value("NO_STORAGE", ErrorKind::NoStorage)
        .value("BUSY", ErrorKind::Busy)
        .value("WOULD_DEADLOCK", ErrorKind::WouldDeadlock);
    errorType = PyErr_NewExceptionWithDoc("ipodkit.Error", kErrorDoc, nullptr, nullptr);
    if (!errorType) throw py::error_already_set();
    module.attr("Error") = errorType;
}

py::object ToException(const Error& error)
{
    py::object exception = errorType(error.Text());
    exception.attr("kind") = error.kind;
    exception.attr("reason") = error.reason;
    exception.attr("name") = error.name.empty() ? py::object(py::none()) : py::str(error.name);
    return exception;
}

void Raise(const Error& error)
{
    PyErr_SetObject(errorType.ptr(), ToException(error).ptr());
    throw py::error_already_set();
}
}  // namespace ipodkit::python
