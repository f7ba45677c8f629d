#include <ipodkit/accessory.h>

#include "bindings.h"
#include "rows.h"
#include "session_handle.h"

namespace ipodkit::python
{
namespace
{
constexpr char kPortDoc[] =
    "The accessory sessions of the device. Use it on the thread of the session's loop. Announce the protocols first, "
    "by "
    "Commands.announce_accessory(). Destroying the port closes its sessions.";
constexpr char kPeerDoc[] =
    "A byte stream between the application and its companion app on the device, from opening to closing. "
    "Iterate over it with `async for` to receive bytes.";

Owned<AccessoryPort> OpenPort(const SessionHandle& session, std::size_t chunk, std::size_t highWater)
{
    return Owned<AccessoryPort>(new AccessoryPort(session.Get(), {chunk, highWater}));
}

std::unique_ptr<AnyRequest> Write(AccessorySession& session, const py::bytes& bytes)
{
    const std::string_view data = bytes;
    return Wrapped(session.Write(Bytes(data.begin(), data.end())));
}

std::unique_ptr<AnyRequest> WriteTo(AccessoryPort& port, std::uint16_t session, const py::bytes& bytes)
{
    const std::string_view data = bytes;
    return Wrapped(port.WriteTo(session, Bytes(data.begin(), data.end())));
}

void BindAccessorySession(py::module_& module)
{
    py::class_<AccessorySession, AccessorySessionPtr>(module, "AccessorySession", kPeerDoc)
        .def_property_readonly("number", &AccessorySession::Number, "The session's number.")
        .def_property_readonly("protocol", &AccessorySession::Protocol, "Index of its protocol in the announced list.")
        .def_property_readonly("is_open", &AccessorySession::IsOpen, "False once the session is closed.")
        .def_property_readonly("waiting", &AccessorySession::Waiting, "Bytes accepted by write() and not sent yet.")
        .def("write", Write, py::arg("data"),
             "Sends bytes after those of earlier writes; done when the service has accepted the last one. Raises Busy "
             "if has_room_for() is False for its size, and Cancelled when the session is closed.")
        .def("has_room_for", &AccessorySession::HasRoomFor, py::arg("count"),
             "Whether write() accepts this many bytes now.")
        .def(
            "on_data", Subscribing(&AccessorySession::OnData), py::arg("name"), py::arg("callback"),
            "Calls callback(data, None) for received bytes, and callback(None, Ambiguous) for bytes that may belong to "
            "several sessions.")
        .def("on_drained", Subscribing(&AccessorySession::OnDrained), py::arg("name"), py::arg("callback"),
             "Calls callback() whenever all accepted bytes have been sent.")
        .def("on_closed", Subscribing(&AccessorySession::OnClosed), py::arg("name"), py::arg("callback"),
             "Calls callback() when the session is closed.");
}
}  // namespace

void BindAccessory(py::module_& module)
{
    BindAccessorySession(module);
    const AccessoryOptions usual;
    py::class_<AccessoryPort, Owned<AccessoryPort>>(module, "AccessoryPort", kPortDoc)
        .def(py::init(&OpenPort), py::arg("session"), py::kw_only(), py::arg("chunk") = usual.chunk,
             py::arg("high_water") = usual.highWater,
             "chunk: bytes per call to the service. high_water: a session accepts no more bytes while this many are "
             "waiting.")
        .def("sessions", &AccessoryPort::Sessions, "The open sessions.")
        .def("write_to", WriteTo, KeepsPart(), py::arg("session"), py::arg("data"),
             "Like AccessorySession.write(), to a session by its number, also one that was opened before the port. "
             "Raises Refused if the service has no such session.")
        .def("on_opened", Subscribing(&AccessoryPort::OnOpened), py::arg("name"), py::arg("callback"),
             "Calls callback(accessory_session) for each AccessorySession that the device opens.");
}
}  // namespace ipodkit::python
