#include <ipodkit/player_state.h>

#include <algorithm>
#include <tuple>

// Values of the core are compared member by member.
namespace
{
auto Members(const QBXiPodTrackInfo& info)
{
    return std::tie(info.text1, info.text2, info.text3, info.text4, info.value1, info.value2, info.value3, info.value4);
}

auto Members(const iPodPhoneCall_t& call)
{
    return std::tie(call.RemoteID, call.DisplayName, call.Status, call.Direction, call.CallUUID, call.AddressBookID,
                    call.Label, call.Service, call.IsConferenced, call.ConferenceGroup, call.DisconnectReason,
                    call.StartTimestamp);
}

auto Members(const iPodBattery_t& battery)
{
    return std::tie(battery.BatteryChargingStatus, battery.BatteryChargeLevel);
}

auto Members(const ipodkit::Position& position)
{
    return std::tie(position.position, position.duration, position.at, position.advancing);
}

auto Members(const ipodkit::CarPlayDevice& device)
{
    return std::tie(device.status, device.serialNumber);
}

auto Members(const ipodkit::WirelessCarPlay& wireless)
{
    return std::tie(wireless.available, wireless.deviceAddress);
}

auto Members(const ipodkit::PairingInfo& pairing)
{
    return std::tie(pairing.bluetoothAddress, pairing.bytes);
}

// What the connection consists of.
auto Members(const ipodkit::PlayerState& state)
{
    return std::tie(state.phase, state.generation, state.error, state.missing);
}

template <class T>
bool Same(const T& one, const T& other)
{
    return Members(one) == Members(other);
}

template <class T>
bool Same(const std::optional<T>& one, const std::optional<T>& other)
{
    return one.has_value() == other.has_value() && (!one || Same(*one, *other));
}

bool Same(const std::map<std::string, iPodPhoneCall_t>& one, const std::map<std::string, iPodPhoneCall_t>& other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const auto& left, const auto& right)
                      { return left.first == right.first && Same(left.second, right.second); });
}
}  // namespace

namespace ipodkit
{
const char* Name(Phase phase)
{
    static constexpr const char* names[] = {"Absent", "Connecting", "Ready", "Lost"};
    return names[static_cast<int>(phase)];
}

const char* Name(Field field)
{
    static constexpr const char* names[] = {"connection",     "track",
                                            "track index",    "status",
                                            "position",       "shuffle",
                                            "repeat",         "queue size",
                                            "artwork",        "device",
                                            "devices",        "device name",
                                            "source",         "CarPlay",
                                            "CarLife",        "wireless CarPlay",
                                            "pairing",        "location",
                                            "foreground app", "battery",
                                            "calls",          "accessory sessions"};
    std::size_t index = 0;
    while (static_cast<std::uint32_t>(field) >> (index + 1) != 0) ++index;
    return names[index];
}

std::string Names(Fields fields)
{
    std::string names;
    for (std::uint32_t bit = 1; bit <= static_cast<std::uint32_t>(Field::AccessorySessions); bit <<= 1)
        if (const auto field = static_cast<Field>(bit); fields.Has(field))
            names += (names.empty() ? "" : ", ") + std::string(Name(field));
    return names;
}

std::chrono::milliseconds Position::At(std::chrono::steady_clock::time_point now) const
{
    if (!advancing || now <= at) return position;
    const auto reached = position + std::chrono::duration_cast<std::chrono::milliseconds>(now - at);
    return duration.count() > 0 ? std::min(reached, std::max(duration, position)) : reached;
}

Fields Differences(const PlayerState& one, const PlayerState& other)
{
    Fields fields;
    const auto note = [&fields](bool same, Field field) { fields = same ? fields : fields | field; };
    note(Members(one) == Members(other), Field::Connection);
    note(Same(one.track, other.track), Field::Track);
    note(one.trackIndex == other.trackIndex, Field::TrackIndex);
    note(one.status == other.status, Field::Status);
    note(Same(one.position, other.position), Field::Position);
    note(one.shuffle == other.shuffle, Field::Shuffle);
    note(one.repeat == other.repeat, Field::Repeat);
    note(one.queueSize == other.queueSize, Field::QueueSize);
    note(one.artwork == other.artwork, Field::Artwork);
    note(one.device == other.device, Field::Device);
    note(one.deviceCount == other.deviceCount, Field::DeviceCount);
    note(one.deviceName == other.deviceName, Field::DeviceName);
    note(one.sourceValid == other.sourceValid, Field::SourceValid);
    note(Same(one.carPlay, other.carPlay), Field::CarPlay);
    note(one.carLife == other.carLife, Field::CarLife);
    note(Same(one.wireless, other.wireless), Field::Wireless);
    note(Same(one.pairing, other.pairing), Field::Pairing);
    note(one.location == other.location, Field::Location);
    note(one.foregroundApp == other.foregroundApp, Field::ForegroundApp);
    note(Same(one.battery, other.battery), Field::Battery);
    note(Same(one.calls, other.calls), Field::Calls);
    note(one.accessorySessions == other.accessorySessions, Field::AccessorySessions);
    return fields;
}
}  // namespace ipodkit
