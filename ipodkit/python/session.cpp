#include "bindings.h"

#include <ipodkit/session.h>
#include <ipodkit/sharing.h>

#include <type_traits>

#include "any_request.h"
#include "context.h"
#include "duration.h"
#include "rows.h"
#include "session_handle.h"
#include "values.h"

namespace ipodkit::python
{
namespace
{
constexpr char kSessionDoc[] =
    "The connection to the service, across restarts. If asyncio runs where it is created, it uses that loop, "
    "otherwise GLib's default main context: create and close it on that context's thread. A process has one at a time.";

std::unique_ptr<SessionHandle> Open(const py::object& settle, const py::object& deadline,
                                    const py::object& callbackBudget, std::size_t artworkLimit, bool activateService,
                                    const std::shared_ptr<Context>& context)
{
    SessionOptions options;
    options.context = context == nullptr ? nullptr : context->Native();
    options.activateService = activateService;
    options.settle = ToMilliseconds(settle);
    options.deadline = ToMilliseconds(deadline);
    options.callbackBudget = ToMilliseconds(callbackBudget);
    options.artworkLimit = artworkLimit;
    return std::make_unique<SessionHandle>(options);
}

double Seconds(std::chrono::milliseconds duration)
{
    return std::chrono::duration<double>(duration).count();
}

OwnedSubscriptionPtr OnConnection(const SessionHandle& handle, const std::string& name, py::function function)
{
    const Callback callback(name, std::move(function));
    const py::gil_scoped_release others;
    return SessionHandle::Own(
        name, handle.Get().OnConnection(name, [callback](const Connection& connection)
                                        { callback.Call([&] { return py::make_tuple(connection); }); }));
}

OwnedSubscriptionPtr OnState(const SessionHandle& handle, const std::string& name, py::function function,
                             const py::object& fields)
{
    const Callback callback(name, std::move(function));
    const Fields wanted = ToFields(fields);
    const py::gil_scoped_release others;
    return SessionHandle::Own(
        name, handle.Get().OnState(
                  name,
                  [callback](const StatePtr& state, Fields changed)
                  { callback.Call([&] { return py::make_tuple(ToPython(state), ToPython(changed)); }); },
                  wanted));
}

// The rows contain only printable fields, which the image is not.
template <class E>
py::object BindEvent(py::module_& module)
{
    auto type = BindRows<E>(module);
    if constexpr (std::is_same_v<E, ArtworkChanged>)
        type.def_readonly("available", &ArtworkChanged::available, "Whether the track has artwork.")
            .def_property_readonly(
                "picture", [](const ArtworkChanged& event) { return ToObject(event.picture); },
                "The image, a Picture; None if there is none, and in events when it exceeds the session's "
                "artwork_limit.");
    return std::move(type);
}

// Binds a class for each event type and maps names to classes in EVENTS.
template <class... Events>
void BindEvents(py::module_& module, const std::variant<Events...>*)
{
    py::dict events;
    ((events[Rows<Events>::name] = BindEvent<Events>(module)), ...);
    module.attr("EVENTS") = events;
}

OwnedSubscriptionPtr OnEvent(const SessionHandle& handle, const std::string& name, py::function function)
{
    const Callback callback(name, std::move(function));
    const auto deliver = [callback](const Event& event) {
        callback.Call([&]
                      { return py::make_tuple(std::visit([](const auto& each) { return py::cast(each); }, event)); });
    };
    const py::gil_scoped_release others;
    return SessionHandle::Own(name, handle.Get().OnEvent(name, deliver));
}

py::object ErrorOf(const Connection& connection)
{
    return connection.error ? ToException(*connection.error) : py::none();
}

void BindConnection(py::module_& module)
{
    py::class_<Connection>(module, "Connection", "State of the connection to the service.")
        .def_readonly("phase", &Connection::phase)
        .def_readonly("generation", &Connection::generation, "Number of times the service has appeared.")
        .def_property_readonly("error", ErrorOf, "The Error that prevents a connection, or None.");
    py::class_<OwnedSubscription>(module, "Subscription",
                                  "Ends with end(), or with a ResourceWarning when it is garbage-collected.")
        .def("end", &OwnedSubscription::End, "When it returns, the callback is not running and will not run again.");
}
}  // namespace

void BindSession(py::module_& module)
{
    BindConnection(module);
    BindEvents(module, static_cast<const Event*>(nullptr));
    const SessionOptions usual;
    py::class_<SessionHandle>(module, "Session", kSessionDoc)
        .def(py::init(&Open), py::kw_only(), py::arg("settle") = Seconds(usual.settle),
             py::arg("deadline") = Seconds(usual.deadline), py::arg("callback_budget") = Seconds(usual.callbackBudget),
             py::arg("artwork_limit") = usual.artworkLimit, py::arg("activate_service") = usual.activateService,
             py::arg("_context") = py::none())
        .def("close", &SessionHandle::Close, "Completes open requests with ErrorKind.CANCELLED.")
        .def("__enter__", [](py::object self) { return self; })
        .def("__exit__", [](SessionHandle& handle, const py::args&) { handle.Close(); })
        .def_property_readonly("connection", [](const SessionHandle& handle) { return handle.Get().Connection(); })
        .def_property_readonly("state", [](const SessionHandle& handle) { return ToPython(handle.Get().State()); })
        .def_property_readonly("commands", [](const SessionHandle& handle) { return handle.Get().Commands(); })
        .def("on_connection", OnConnection, py::arg("name"), py::arg("callback"),
             "Calls callback(connection) with the current connection, then with every change.")
        .def("on_state", OnState, py::arg("name"), py::arg("callback"), py::arg("fields") = py::none(),
             "Calls callback(state, changed) for every published state that differs in one of the fields (all when "
             "None), starting with the current one and all fields.")
        .def("on_event", OnEvent, py::arg("name"), py::arg("callback"),
             "Calls callback(event) for every event of the service, such as a TrackChanged.")
        .def(
            "refresh",
            [](const SessionHandle& handle, const py::object& fields) { handle.Get().Refresh(ToFields(fields)); },
            py::arg("fields") = py::none(), "Reads fields from the service again (all when None).")
        .def(
            "refreshed",
            [](const SessionHandle& handle, const py::object& fields)
            { return Wrapped(handle.Get().Refreshed(ToFields(fields))); },
            py::arg("fields") = py::none(),
            "A request like refresh(), whose value is the state in which each field is read, or unknown for a reason. "
            "Raises NoService, or ServiceLost.")
        .def(
            "browse",
            [](const SessionHandle& handle, Browsing how) { return Wrapped(BrowseLease::Acquire(handle.Get(), how)); },
            py::arg("how") = Browsing::Changing,
            "A request for the right to browse the database, a BrowseLease: `async with await session.browse():`. "
            "Raises Busy, with the holder in its reason, when another process does not release it within two seconds, "
            "or three quarters of the session's deadline if that is less.");
}
}  // namespace ipodkit::python
