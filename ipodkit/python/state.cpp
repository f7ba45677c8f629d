#include <pybind11/chrono.h>
#include <pybind11/stl.h>

#include "bindings.h"
#include "values.h"

namespace ipodkit::python
{
namespace
{
struct FieldName
{
    Field field;
    const char* name;
};

constexpr FieldName kFields[] = {
    {Field::Connection, "CONNECTION"},
    {Field::Track, "TRACK"},
    {Field::TrackIndex, "TRACK_INDEX"},
    {Field::Status, "STATUS"},
    {Field::Position, "POSITION"},
    {Field::Shuffle, "SHUFFLE"},
    {Field::Repeat, "REPEAT"},
    {Field::QueueSize, "QUEUE_SIZE"},
    {Field::Artwork, "ARTWORK"},
    {Field::Device, "DEVICE"},
    {Field::DeviceCount, "DEVICE_COUNT"},
    {Field::DeviceName, "DEVICE_NAME"},
    {Field::SourceValid, "SOURCE_VALID"},
    {Field::CarPlay, "CARPLAY"},
    {Field::CarLife, "CARLIFE"},
    {Field::Wireless, "WIRELESS"},
    {Field::Pairing, "PAIRING"},
    {Field::Location, "LOCATION"},
    {Field::ForegroundApp, "FOREGROUND_APP"},
    {Field::Battery, "BATTERY"},
    {Field::Calls, "CALLS"},
    {Field::AccessorySessions, "ACCESSORY_SESSIONS"},
};

template <class Bytes>
py::bytes ToBytes(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

py::str ReprOfPicture(const Picture& picture)
{
    return Described("<ipodkit.Picture {}, {}x{}, {} bytes>", MediaType(picture.type), picture.width, picture.height,
                     picture.bytes.size());
}

void BindPicture(py::module_& module)
{
    py::class_<Picture, std::shared_ptr<Picture>>(module, "Picture")
        .def_property_readonly("data", [](const Picture& picture) { return ToBytes(picture.bytes); })
        .def_property_readonly("media_type", [](const Picture& picture) { return MediaType(picture.type); })
        .def_readonly("width", &Picture::width, "Pixels; 0 when unknown.")
        .def_readonly("height", &Picture::height, "Pixels; 0 when unknown.")
        .def_readonly("hash", &Picture::hash)
        .def("__repr__", ReprOfPicture);
}

py::str ReprOfPosition(const Position& position)
{
    return Described("<ipodkit.Position {} of {}, {}>", position.position, position.duration,
                     position.advancing ? "advancing" : "standing");
}

void BindParts(py::module_& module)
{
    py::class_<Position>(module, "Position", "Where playback was at a moment.")
        .def_readonly("position", &Position::position, "A timedelta.")
        .def_readonly("duration", &Position::duration, "A timedelta; zero when unknown.")
        .def_readonly("advancing", &Position::advancing, "Whether it goes on by itself.")
        .def(
            "now", [](const Position& position) { return position.At(std::chrono::steady_clock::now()); },
            "Where playback is if nothing else was heard: a timedelta.")
        .def("__repr__", ReprOfPosition);
    py::class_<WirelessCarPlay>(module, "WirelessCarPlay")
        .def_readonly("available", &WirelessCarPlay::available)
        .def_readonly("device_address", &WirelessCarPlay::deviceAddress);
    py::class_<PairingInfo>(module, "PairingInfo")
        .def_readonly("bluetooth_address", &PairingInfo::bluetoothAddress)
        .def_property_readonly("data", [](const PairingInfo& pairing) { return ToBytes(pairing.bytes); });
}

std::shared_ptr<Picture> ArtworkOf(const PlayerState& state)
{
    return std::const_pointer_cast<Picture>(state.artwork);
}

py::str ReprOfState(const PlayerState& state)
{
    return Described("<ipodkit.PlayerState {}: phase {}, status {}, track {!r}>", state.version,
                     NameOf(std::optional(state.phase)), NameOf(state.status), state.track);
}

void BindPlayerState(py::module_& module)
{
    py::class_<PlayerState, std::shared_ptr<PlayerState>>(module, "PlayerState", "What is not known is None.")
        .def_readonly("version", &PlayerState::version)
        .def_readonly("phase", &PlayerState::phase)
        .def_readonly("generation", &PlayerState::generation)
        .def_readonly("track", &PlayerState::track)
        .def_readonly("track_index", &PlayerState::trackIndex)
        .def_readonly("status", &PlayerState::status)
        .def_readonly("position", &PlayerState::position)
        .def_readonly("shuffle", &PlayerState::shuffle)
        .def_readonly("repeat", &PlayerState::repeat)
        .def_readonly("queue_size", &PlayerState::queueSize)
        .def_property_readonly("artwork", ArtworkOf)
        .def_readonly("device", &PlayerState::device)
        .def_readonly("device_count", &PlayerState::deviceCount)
        .def_readonly("device_name", &PlayerState::deviceName)
        .def_readonly("source_valid", &PlayerState::sourceValid)
        .def_readonly("carplay", &PlayerState::carPlay)
        .def_readonly("carlife", &PlayerState::carLife)
        .def_readonly("wireless", &PlayerState::wireless)
        .def_readonly("pairing", &PlayerState::pairing)
        .def_readonly("location", &PlayerState::location)
        .def_readonly("foreground_app", &PlayerState::foregroundApp)
        .def_readonly("battery", &PlayerState::battery)
        .def_readonly("calls", &PlayerState::calls, "By UUID.")
        .def_readonly("accessory_sessions", &PlayerState::accessorySessions, "Index of the protocol by number.")
        .def("__repr__", ReprOfState);
}
}  // namespace

void BindState(py::module_& module)
{
    py::enum_<Phase>(module, "Phase")
        .value("ABSENT", Phase::Absent)
        .value("CONNECTING", Phase::Connecting)
        .value("READY", Phase::Ready)
        .value("LOST", Phase::Lost);
    py::enum_<Field> fields(module, "Field", "The parts of a PlayerState.");
    for (const FieldName& each : kFields) fields.value(each.name, each.field);
    BindPicture(module);
    BindParts(module);
    BindPlayerState(module);
}

// Python has no constant objects; nothing that is bound changes it.
py::object ToPython(const StatePtr& state)
{
    return py::cast(std::const_pointer_cast<PlayerState>(state));
}

py::object ToPython(Fields fields)
{
    py::set set;
    for (const FieldName& each : kFields)
        if (fields.Has(each.field)) set.add(each.field);
    return py::frozenset(set);
}

Fields ToFields(const py::object& fields)
{
    if (fields.is_none()) return Fields::All();
    Fields wanted;
    for (const py::handle each : fields)
    {
        if (!py::isinstance<Field>(each)) throw py::type_error("expected members of ipodkit.Field");
        wanted = wanted | Fields(each.cast<Field>());
    }
    return wanted;
}
}  // namespace ipodkit::python
