#include "session/signals.h"

#include <QBXIpodShareMemory.h>
#include <gvariant_data.h>
#include <ipod.pb.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <utility>

#include "commands/records.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
namespace
{
using Bytes = std::vector<unsigned char>;

/// The arguments of a signal whose type has been checked.
class Arguments
{
public:
    explicit Arguments(GVariant* body) : m_body(body) {}

    VariantPtr At(gsize index) const { return VariantPtr(g_variant_get_child_value(m_body, index)); }

    template <class T>
    T As(gsize index) const
    {
        const VariantPtr value = At(index);
        if constexpr (std::is_enum_v<T>)
            return static_cast<T>(g_variant_get_byte(value.get()));
        else if constexpr (std::is_same_v<T, unsigned char>)
            return g_variant_get_byte(value.get());
        else if constexpr (std::is_same_v<T, std::uint16_t>)
            return g_variant_get_uint16(value.get());
        else if constexpr (std::is_same_v<T, bool>)
            return g_variant_get_boolean(value.get()) != FALSE;
        else if constexpr (std::is_same_v<T, std::string>)
            return g_variant_get_string(value.get(), nullptr);
        else
            return T(g_variant_get_int32(value.get()));
    }

private:
    GVariant* m_body;
};

using MaybeEvent = std::optional<Event>;

/// For events whose members are the arguments of the signal, in their order.
template <class E, class... Members>
struct Plain
{
    static MaybeEvent Decode(const Arguments& arguments, PictureCache&)
    {
        return Make(arguments, std::index_sequence_for<Members...>());
    }

private:
    template <std::size_t... Index>
    static MaybeEvent Make(const Arguments& arguments, std::index_sequence<Index...>)
    {
        return E{arguments.As<Members>(Index)...};
    }
};

MaybeEvent ToTrackChange(const Arguments& arguments, PictureCache&)
{
    return TrackChanged{arguments.As<int>(0), TrackIn(arguments.At(1).get())};
}

MaybeEvent ToArtwork(const Arguments& arguments, PictureCache& pictures)
{
    const PictureHead head = PictureHeadIn(arguments.At(0).get());
    const bool available = head[0] == 0;
    PicturePtr picture;
    if (available) picture = pictures.Put(BytesIn(g_VecArtworkChangeBufferShareMemory).value_or(Bytes{}));
    return ArtworkChanged{available, std::move(picture), head[1], head[2], head[3]};
}

// An empty payload would parse as a message without fields, but is not an event.
template <class Message>
bool Parse(const Arguments& arguments, Message& message)
{
    Bytes bytes;
    gvariant_data_extract(bytes, arguments.At(0).get());
    return !bytes.empty() && message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
}

// Numbers outside the range of a member keep its low bits.
template <class T, class Sent>
void Copy(std::optional<T>& member, bool sent, const Sent& value)
{
    if (sent) member = static_cast<T>(value);
}

MaybeEvent ToCall(const Arguments& arguments, PictureCache&)
{
    ipod::iPodPhoneCall sent;
    if (!Parse(arguments, sent)) return std::nullopt;
    PhoneCall call;
    Copy(call.remote, sent.has_remote_id(), sent.remote_id());
    Copy(call.name, sent.has_display_name(), sent.display_name());
    Copy(call.status, sent.has_status(), sent.status());
    Copy(call.direction, sent.has_direction(), sent.direction());
    Copy(call.id, sent.has_calluuid(), sent.calluuid());
    Copy(call.addressId, sent.has_addressbookid(), sent.addressbookid());
    Copy(call.label, sent.has_label(), sent.label());
    Copy(call.service, sent.has_service(), sent.service());
    Copy(call.conferenced, sent.has_is_conferenced(), sent.is_conferenced());
    Copy(call.conferenceGroup, sent.has_conference_group(), sent.conference_group());
    Copy(call.end, sent.has_disconnect_reason(), sent.disconnect_reason());
    if (sent.has_start_timestamp())
        call.start = PhoneCall::Time(std::chrono::seconds(static_cast<std::int64_t>(sent.start_timestamp())));
    return CallChanged{std::move(call)};
}

MaybeEvent ToBattery(const Arguments& arguments, PictureCache&)
{
    ipod::iPodBattery sent;
    if (!Parse(arguments, sent)) return std::nullopt;
    Battery battery;
    Copy(battery.charging, sent.has_battery_charging_status(), sent.battery_charging_status());
    if (sent.has_battery_charge_level()) battery.percent = static_cast<std::uint16_t>(sent.battery_charge_level());
    return BatteryChanged{battery};
}

MaybeEvent ToAccessoryData(const Arguments& arguments, PictureCache&)
{
    return AccessoryData{arguments.As<unsigned char>(0), BytesIn(g_VecEapReadBufferShareMemory).value_or(Bytes{})};
}

// The bytes are sent as structures of one byte each, which have the same layout as the bytes.
MaybeEvent ToPairing(const Arguments& arguments, PictureCache&)
{
    const VariantPtr bytes = arguments.At(1);
    gsize count = 0;
    const auto* const first = static_cast<const unsigned char*>(g_variant_get_fixed_array(bytes.get(), &count, 1));
    return PairingReceived{arguments.As<std::string>(0), Bytes(first, first + count)};
}

struct SignalRow
{
    const char* name;
    const char* type;
    MaybeEvent (*decode)(const Arguments&, PictureCache&);
};

using std::chrono::milliseconds;

// In the order of the alternatives of Event.
const SignalRow kSignals[] = {
    {"OnIpodDeviceStatusChange", "(yb)", Plain<DeviceChanged, DeviceStatus, bool>::Decode},
    {"OnPlayStatusChanged", "(y)", Plain<PlayStatusChanged, PlayStatus>::Decode},
    {"OnPlayProgressChange", "(ii)", Plain<ProgressChanged, milliseconds, milliseconds>::Decode},
    {"OnIpodRepeatModeChange", "(y)", Plain<RepeatChanged, Repeat>::Decode},
    {"OnIpodShuffleModeChange", "(y)", Plain<ShuffleChanged, Shuffle>::Decode},
    {"OnIpodPlayingTrackChange", "(iv)", ToTrackChange},
    {"OnIpodPlayingListAmountChange", "(i)", Plain<QueueSizeChanged, int>::Decode},
    {"OnIpodSourceValidStatusChange", "(b)", Plain<SourceValidChanged, bool>::Decode},
    {"OnIpodArtworkChange", "(v)", ToArtwork},
    {"OnCarplayDeviceDetectStatusChange", "(ys)", Plain<CarPlayChanged, DeviceStatus, std::string>::Decode},
    {"OnIpodPhoneCallChange", "(v)", ToCall},
    {"OnIpodBatteryChange", "(v)", ToBattery},
    {"OnIpodLocationStatusChange", "(y)", Plain<LocationChanged, LocationStatus>::Decode},
    {"OnIpodAppBundleNameChange", "(s)", Plain<ForegroundAppChanged, std::string>::Decode},
    {"OnIpodStartEapSession", "(yq)", Plain<AccessoryOpened, unsigned char, std::uint16_t>::Decode},
    {"OnIpodStopEapSession", "(q)", Plain<AccessoryClosed, std::uint16_t>::Decode},
    {"OnIpodReceiveEapData", "(y)", ToAccessoryData},
    {"OnCarlifeDeviceDetectStatusChange", "(y)", Plain<CarLifeChanged, DeviceStatus>::Decode},
    {"OnWirelessCarPlayUpdate", "(bs)", Plain<WirelessCarPlayChanged, bool, std::string>::Decode},
    {"OnOOBPairingInfo", "(sa(y))", ToPairing},
};
static_assert(std::size(kSignals) == std::variant_size_v<Event>, "each event has its signal");
}  // namespace

std::optional<Event> Decode(const char* signal, GVariant* body, PictureCache& pictures)
{
    const auto* const row =
        std::find_if(std::begin(kSignals), std::end(kSignals),
                     [signal](const SignalRow& each) { return std::strcmp(each.name, signal) == 0; });
    if (row == std::end(kSignals) || !g_variant_is_of_type(body, G_VARIANT_TYPE(row->type))) return std::nullopt;
    return row->decode(Arguments(body), pictures);
}

const char* SignalName(const Event& event)
{
    return kSignals[event.index()].name;
}

const char* EventName(const Event& event)
{
    return std::visit([](const auto& each) { return Rows<std::decay_t<decltype(each)>>::name; }, event);
}
}  // namespace ipodkit
