#include "any_request.h"

#include "bindings.h"
#include "duration.h"

namespace ipodkit::python
{
namespace
{
constexpr char kRequestDoc[] = "A request that has not been sent yet. start(), future(), or wait() sends it, once.";

AnyRequest& Within(AnyRequest& request, const py::object& deadline)
{
    const std::chrono::milliseconds duration = ToMilliseconds(deadline);
    if (duration.count() < 0) throw py::value_error("expected a non-negative deadline");
    request.Within(duration);
    return request;
}

AnyRequest& CancelledBy(AnyRequest& request, const Cancellation& cancellation)
{
    request.CancelledBy(cancellation);
    return request;
}

void Start(AnyRequest& request, py::function callback)
{
    request.Start({"completion", std::move(callback)});
}

// Skips a future that the caller has cancelled.
void Settle(const py::object& future, const py::object& value, const py::object& error)
{
    if (!future.attr("set_running_or_notify_cancel")().cast<bool>()) return;
    if (error.is_none())
        future.attr("set_result")(value);
    else
        future.attr("set_exception")(error);
}

// Does nothing if the caller supplied a Cancellation, which may serve other requests.
void WithdrawWhenGivenUp(AnyRequest& request, const py::object& future)
{
    if (request.HasSwitch()) return;
    const Cancellation stop;
    request.CancelledBy(stop);
    const py::cpp_function done(
        [stop](const py::object& given)
        {
            const bool givenUp = given.attr("cancelled")().cast<bool>();
            const py::gil_scoped_release others;
            if (givenUp) stop.Cancel();
        });
    future.attr("add_done_callback")(done);
}

py::object Future(AnyRequest& request)
{
    const py::cpp_function checkThread(
        [home = request.Home()]
        {
            if (detail::RunsHere(*home)) Raise(detail::WouldDeadlock());
        });
    py::object future = py::module_::import("ipodkit").attr("_Future")(checkThread);
    WithdrawWhenGivenUp(request, future);
    const py::cpp_function settle([future](const py::object& value, const py::object& error)
                                  { Settle(future, value, error); });
    request.Start({"future", settle});
    return future;
}
}  // namespace

void AnyRequest::WaitUntil(const std::function<bool(std::chrono::milliseconds)>& ready, const Cancellation& stop,
                           const std::optional<Cancellation>& other)
{
    // Limits the delay of Ctrl-C. An answer ends the wait at once.
    constexpr std::chrono::milliseconds kSlice(20);
    for (bool done = false; !done;)
    {
        {
            const py::gil_scoped_release others;
            done = ready(kSlice);
        }
        const bool interrupted = PyErr_CheckSignals() != 0;
        if (interrupted || (other && other->Cancelled())) stop.Cancel();
        if (interrupted) throw py::error_already_set();
    }
}

void BindRequest(py::module_& module)
{
    py::class_<Cancellation>(module, "Cancellation",
                             "Cancels requests; cancel() can be called once. One object may serve many requests.")
        .def(py::init<>())
        .def("cancel", &Cancellation::Cancel, py::call_guard<py::gil_scoped_release>())
        .def_property_readonly("cancelled", &Cancellation::Cancelled);
    constexpr auto same = py::return_value_policy::reference;
    py::class_<AnyRequest>(module, "Request", kRequestDoc)
        .def("within", Within, py::arg("deadline"), same,
             "Sets the deadline: seconds or a timedelta, more than 0; rounded up to milliseconds.")
        .def("cancelled_by", CancelledBy, py::arg("cancellation"), same)
        .def_property_readonly("_has_cancellation", &AnyRequest::HasSwitch)
        .def("start", Start, py::arg("callback"),
             "Sends the request. The loop calls the callback once, with (value, None) or (None, Error).")
        .def("future", Future,
             "Sends the request; returns a concurrent.futures.Future. Waiting for it on the loop's thread raises "
             "WouldDeadlock. Cancelling it cancels the request, unless the request has its own Cancellation.")
        .def("wait", &AnyRequest::Wait,
             "Sends the request and blocks until the answer: returns the value or raises Error. An exception raised by "
             "a signal handler, such as KeyboardInterrupt, ends the wait at once and cancels the request.");
}
}  // namespace ipodkit::python
