#include <ipodkit/core.h>

namespace ipodkit
{
namespace
{
int Count(std::chrono::milliseconds time)
{
    return static_cast<int>(time.count());
}

// The enumerations of the kit have the numbers of the core's.
template <class Core, class E>
Core As(E value)
{
    return static_cast<Core>(static_cast<int>(value));
}

template <class Core, class E>
std::optional<Core> As(const std::optional<E>& value)
{
    if (!value) return std::nullopt;
    return As<Core>(*value);
}

/// The core's operation for each event.
struct Operation
{
    IQBXIpodPlayerListener& listener;

    void operator()(const DeviceChanged& e) const
    {
        listener.OnIpodDeviceStatusChange(As<QBXAppleDeviceDetectStatus>(e.status), e.mediaRestart ? 1 : 0);
    }
    void operator()(const PlayStatusChanged& e) const
    {
        listener.OnPlayStatusChanged(As<iPodPlayerPlayStatus>(e.status));
    }
    void operator()(const ProgressChanged& e) const
    {
        listener.OnPlayProgressChange(Count(e.position), Count(e.duration));
    }
    void operator()(const RepeatChanged& e) const
    {
        listener.OnIpodRepeatModeChange(As<iPodPlayerRepeatStatus>(e.mode));
    }
    void operator()(const ShuffleChanged& e) const
    {
        listener.OnIpodShuffleModeChange(As<iPodPlayerShuffleStatus>(e.mode));
    }
    void operator()(const TrackChanged& e) const { listener.OnIpodPlayingTrackChange(e.index, ToCore(e.track)); }
    void operator()(const QueueSizeChanged& e) const { listener.OnIpodPlayingListAmountChange(e.size); }
    void operator()(const SourceValidChanged& e) const { listener.OnIpodSourceValidStatusChange(e.valid ? 1 : 0); }
    void operator()(const CarPlayChanged& e) const
    {
        listener.OnCarplayDeviceDetectStatusChange(As<QBXAppleDeviceDetectStatus>(e.status), e.serialNumber);
    }
    void operator()(const CallChanged& e) const { listener.OnIpodPhoneCallChange(ToCore(e.call)); }
    void operator()(const BatteryChanged& e) const { listener.OnIpodBatteryChange(ToCore(e.battery)); }
    void operator()(const LocationChanged& e) const
    {
        listener.OnIpodLocationStatusChange(As<::LocationStatus>(e.status));
    }
    void operator()(const ForegroundAppChanged& e) const { listener.OnIpodAPPBundleNameChange(e.bundleId); }
    void operator()(const AccessoryOpened& e) const { listener.OnIpodStartEapSession(e.protocol, e.session); }
    void operator()(const AccessoryClosed& e) const { listener.OnIpodStopEapSession(e.session); }
    void operator()(const CarLifeChanged& e) const
    {
        listener.OnCarlifeDeviceDetectStatusChange(As<QBXAppleDeviceDetectStatus>(e.status));
    }
    void operator()(const WirelessCarPlayChanged& e) const
    {
        listener.OnWirelessCarPlayUpdate(e.available, e.deviceAddress);
    }
    void operator()(const PairingReceived& e) const { listener.OnOOBPairingInfo(e.bluetoothAddress, e.bytes); }

    // The listener gets a copy, because it may change the bytes.
    void operator()(const AccessoryData& e) const
    {
        std::vector<unsigned char> bytes = e.bytes;
        listener.OnIpodReceiveEapData(e.sessionLowByte, bytes);
    }

    void operator()(const ArtworkChanged& e) const
    {
        QBXTrackArtwork artwork{e.available ? 0U : 1U, e.reportedBytes, e.width, e.height, {}};
        if (e.picture != nullptr) artwork.image = e.picture->bytes;
        listener.OnIpodArtworkChange(std::move(artwork));
    }
};
}  // namespace

QBXiPodTrackInfo ToCore(const Track& track)
{
    return {track.title,           track.artist, track.album,     track.genre,
            Count(track.duration), track.number, track.queueSize, track.artwork};
}

iPodPhoneCall_t ToCore(const PhoneCall& call)
{
    iPodPhoneCall_t core;
    core.RemoteID = call.remote;
    core.DisplayName = call.name;
    core.Status = As<PhoneCallStatus>(call.status);
    core.Direction = As<PhoneCallDirection>(call.direction);
    core.CallUUID = call.id;
    core.AddressBookID = call.addressId;
    core.Label = call.label;
    core.Service = As<CallStateService>(call.service);
    core.IsConferenced = call.conferenced;
    core.ConferenceGroup = call.conferenceGroup;
    core.DisconnectReason = As<CallStateDisconnectReason>(call.end);
    if (call.start) core.StartTimestamp = static_cast<std::uint64_t>(call.start->time_since_epoch().count());
    return core;
}

iPodBattery_t ToCore(const Battery& battery)
{
    iPodBattery_t core;
    core.BatteryChargingStatus = As<BatteryChargingStatus>(battery.charging);
    if (battery.percent) core.BatteryChargeLevel = static_cast<std::uint16_t>(*battery.percent);
    return core;
}

void Deliver(const Event& event, IQBXIpodPlayerListener& listener)
{
    std::visit(Operation{listener}, event);
}

Subscription Listen(Session& session, std::string name, IQBXIpodPlayerListener& listener)
{
    return session.OnEvent(std::move(name), [&listener](const Event& event) { Deliver(event, listener); });
}
}  // namespace ipodkit
