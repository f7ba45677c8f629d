#include "values.h"

#include <pybind11/stl.h>

#include "bindings.h"

namespace ipodkit::python
{
namespace
{
py::object NameOfMember(const py::object& value)
{
    for (const auto& [name, member] : py::dict(py::type::of(value).attr("__members__")))
        if (member.equal(value)) return py::reinterpret_borrow<py::object>(name);
    return py::none();
}

py::str Printed(const py::object& value, const char* withName, const char* withNumber)
{
    const py::object name = NameOfMember(value);
    const py::object type = py::type::of(value).attr("__name__");
    return name.is_none() ? Described(withNumber, type, value.attr("value"))
                          : Described(withName, type, name, value.attr("value"));
}

void BindPlayback(py::module_& module)
{
    Enumeration<iPodPlayerPlayStatus>(module, "PlayStatus")
        .value("STOPPED", IPOD_PLAY_STATUS_STOPPED)
        .value("PLAYING", IPOD_PLAY_STATUS_PLAYING)
        .value("PAUSED", IPOD_PLAY_STATUS_PAUSED)
        .value("FAST_FORWARD", IPOD_PLAY_STATUS_FAST_FORWARD)
        .value("FAST_BACKWARD", IPOD_PLAY_STATUS_FAST_BACKWARD);
    Enumeration<iPodPlayerShuffleStatus>(module, "Shuffle")
        .value("OFF", IPOD_SHUFFLE_OFF)
        .value("SONGS", IPOD_SHUFFLE_SONGS)
        .value("ALBUMS", IPOD_SHUFFLE_ALBUMS);
    Enumeration<iPodPlayerRepeatStatus>(module, "Repeat")
        .value("OFF", IPOD_REPEAT_OFF)
        .value("ONE", IPOD_REPEAT_ONE)
        .value("ALL", IPOD_REPEAT_ALL);
    Enumeration<iPodPlayerPlayOption_e>(module, "PlayOption", "What can start playback.")
        .value("START", IPOD_PLAY_START)
        .value("RESUME", IPOD_PLAY_RESUME)
        .value("RESTART", IPOD_PLAY_RESTART);
    Enumeration<Winding>(module, "Winding")
        .value("FORWARD", Winding::Forward)
        .value("BACKWARD", Winding::Backward)
        .value("NONE", Winding::None);
}

py::str ReprOfBattery(const iPodBattery_t& battery)
{
    return Described("<ipodkit.Battery level {}, charging {}>", battery.BatteryChargeLevel,
                     NameOf(battery.BatteryChargingStatus));
}

py::str ReprOfCarPlay(const CarPlayDevice& device)
{
    return Described("<ipodkit.CarPlayDevice {}, serial {!r}>", NameOf(std::optional(device.status)),
                     device.serialNumber);
}

void BindDevice(py::module_& module)
{
    Enumeration<QBXAppleDeviceDetectStatus>(module, "DeviceStatus")
        .value("DETECTED", APPLE_DEVICE_DETECTED)
        .value("NOT_DETECTED", APPLE_DEVICE_NOT_DETECTED)
        .value("UNSUPPORTED", APPLE_DEVICE_UNSUPPORTED);
    Enumeration<LocationStatus>(module, "LocationStatus")
        .value("STOPPED", LOCATION_STATUS_STOPPED)
        .value("REQUESTED", LOCATION_STATUS_REQUESTED);
    Enumeration<BatteryChargingStatus>(module, "ChargingStatus")
        .value("DISABLED", BATTERY_DISABLED)
        .value("CHARGING", BATTERY_CHARGING)
        .value("CHARGED", BATTERY_CHARGED)
        .value("DISCHARGING", BATTERY_DISCHARGING);
    py::class_<iPodBattery_t>(module, "Battery", "What is not known is None.")
        .def_readonly("charging", &iPodBattery_t::BatteryChargingStatus)
        .def_readonly("level", &iPodBattery_t::BatteryChargeLevel, "Percent.")
        .def("__repr__", ReprOfBattery);
    py::class_<CarPlayDevice>(module, "CarPlayDevice")
        .def_readonly("status", &CarPlayDevice::status)
        .def_readonly("serial_number", &CarPlayDevice::serialNumber)
        .def("__repr__", ReprOfCarPlay);
}

void BindCallEnumerations(py::module_& module)
{
    Enumeration<PhoneCallStatus>(module, "CallStatus")
        .value("DISCONNECTED", PHONE_CALL_DISCONNECTED)
        .value("SENDING", PHONE_CALL_SENDING)
        .value("RINGING", PHONE_CALL_RINGING)
        .value("CONNECTING", PHONE_CALL_CONNECTING)
        .value("ACTIVE", PHONE_CALL_ACTIVE)
        .value("HELD", PHONE_CALL_HELD)
        .value("DISCONNECTING", PHONE_CALL_DISCONNECTING);
    Enumeration<PhoneCallDirection>(module, "CallDirection")
        .value("UNKNOWN", PHONE_CALL_DIRECTION_UNKNOWN)
        .value("INCOMING", PHONE_CALL_INCOMING)
        .value("OUTGOING", PHONE_CALL_OUTGOING);
    Enumeration<CallStateService>(module, "CallService")
        .value("UNKNOWN", CALL_SERVICE_UNKNOWN)
        .value("TELEPHONY", CALL_SERVICE_TELEPHONY)
        .value("VIDEO", CALL_SERVICE_VIDEO)
        .value("AUDIO", CALL_SERVICE_AUDIO);
    Enumeration<CallStateDisconnectReason>(module, "DisconnectReason")
        .value("ENDED", CALL_ENDED)
        .value("DECLINED", CALL_DECLINED)
        .value("FAILED", CALL_FAILED);
}

void BindCall(py::module_& module)
{
    py::class_<iPodPhoneCall_t>(module, "PhoneCall", "What is not known is None.")
        .def_readonly("remote_id", &iPodPhoneCall_t::RemoteID)
        .def_readonly("display_name", &iPodPhoneCall_t::DisplayName)
        .def_readonly("status", &iPodPhoneCall_t::Status)
        .def_readonly("direction", &iPodPhoneCall_t::Direction)
        .def_readonly("uuid", &iPodPhoneCall_t::CallUUID)
        .def_readonly("address_book_id", &iPodPhoneCall_t::AddressBookID)
        .def_readonly("label", &iPodPhoneCall_t::Label)
        .def_readonly("service", &iPodPhoneCall_t::Service)
        .def_readonly("conferenced", &iPodPhoneCall_t::IsConferenced)
        .def_readonly("conference_group", &iPodPhoneCall_t::ConferenceGroup)
        .def_readonly("disconnect_reason", &iPodPhoneCall_t::DisconnectReason)
        .def_readonly("started", &iPodPhoneCall_t::StartTimestamp, "Seconds since 1970-01-01 UTC.");
}

// Text of the device need not be UTF-8.
template <std::string QBXiPodTrackInfo::*text>
py::str Text(const QBXiPodTrackInfo& track)
{
    const std::string& bytes = track.*text;
    PyObject* const decoded = PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "replace");
    if (decoded == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

py::str ReprOfTrack(const QBXiPodTrackInfo& track)
{
    return Described("<ipodkit.Track {!r} by {!r}>", Text<&QBXiPodTrackInfo::text1>(track),
                     Text<&QBXiPodTrackInfo::text2>(track));
}

py::str ReprOfPlayPosition(const PlayPosition& position)
{
    return Described("<ipodkit.PlayPosition {} of {} ms>", position.position, position.duration);
}

void BindTrack(py::module_& module)
{
    py::class_<QBXiPodTrackInfo>(module, "Track")
        .def_property_readonly("title", Text<&QBXiPodTrackInfo::text1>)
        .def_property_readonly("artist", Text<&QBXiPodTrackInfo::text2>)
        .def_property_readonly("album", Text<&QBXiPodTrackInfo::text3>)
        .def_property_readonly("genre", Text<&QBXiPodTrackInfo::text4>)
        .def_readonly("length", &QBXiPodTrackInfo::value1, "Milliseconds.")
        .def_readonly("number", &QBXiPodTrackInfo::value2, "Within its album; 0 when unknown.")
        .def("__repr__", ReprOfTrack);
    py::class_<PlayPosition>(module, "PlayPosition")
        .def_readonly("position", &PlayPosition::position, "Milliseconds.")
        .def_readonly("duration", &PlayPosition::duration, "Milliseconds.")
        .def("__repr__", ReprOfPlayPosition);
}
}  // namespace

void PrintNumbersWithoutName(const py::object& enumeration)
{
    const py::is_method method(enumeration);
    const auto repr = [](const py::object& value) { return Printed(value, "<{}.{}: {}>", "<{}: {}>"); };
    const auto str = [](const py::object& value) { return Printed(value, "{}.{}", "{}({})"); };
    const py::object property = py::module_::import("builtins").attr("property");
    enumeration.attr("name") = property(py::cpp_function(NameOfMember));
    enumeration.attr("__repr__") = py::cpp_function(repr, py::name("__repr__"), method);
    enumeration.attr("__str__") = py::cpp_function(str, py::name("__str__"), method);
}

void BindValues(py::module_& module)
{
    BindPlayback(module);
    BindDevice(module);
    BindCallEnumerations(module);
    BindCall(module);
    BindTrack(module);
}
}  // namespace ipodkit::python
