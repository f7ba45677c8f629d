#include <ipodkit/event.h>

namespace ipodkit
{
namespace
{
int Count(std::chrono::milliseconds time)
{
    return static_cast<int>(time.count());
}

/// The core's operation for each event.
struct Operation
{
    IQBXIpodPlayerListener& listener;

    void operator()(const DeviceChanged& e) const
    {
        listener.OnIpodDeviceStatusChange(e.status, e.mediaRestart ? 1 : 0);
    }
    void operator()(const PlayStatusChanged& e) const { listener.OnPlayStatusChanged(e.status); }
    void operator()(const ProgressChanged& e) const
    {
        listener.OnPlayProgressChange(Count(e.position), Count(e.duration));
    }
    void operator()(const RepeatChanged& e) const { listener.OnIpodRepeatModeChange(e.mode); }
    void operator()(const ShuffleChanged& e) const { listener.OnIpodShuffleModeChange(e.mode); }
    void operator()(const TrackChanged& e) const { listener.OnIpodPlayingTrackChange(e.index, e.track); }
    void operator()(const QueueSizeChanged& e) const { listener.OnIpodPlayingListAmountChange(e.size); }
    void operator()(const SourceValidChanged& e) const { listener.OnIpodSourceValidStatusChange(e.valid ? 1 : 0); }
    void operator()(const CarPlayChanged& e) const
    {
        listener.OnCarplayDeviceDetectStatusChange(e.status, e.serialNumber);
    }
    void operator()(const CallChanged& e) const { listener.OnIpodPhoneCallChange(e.call); }
    void operator()(const BatteryChanged& e) const { listener.OnIpodBatteryChange(e.battery); }
    void operator()(const LocationChanged& e) const { listener.OnIpodLocationStatusChange(e.status); }
    void operator()(const ForegroundAppChanged& e) const { listener.OnIpodAPPBundleNameChange(e.bundleId); }
    void operator()(const AccessoryOpened& e) const { listener.OnIpodStartEapSession(e.protocol, e.session); }
    void operator()(const AccessoryClosed& e) const { listener.OnIpodStopEapSession(e.session); }
    void operator()(const CarLifeChanged& e) const { listener.OnCarlifeDeviceDetectStatusChange(e.status); }
    void operator()(const WirelessCarPlayChanged& e) const
    {
        listener.OnWirelessCarPlayUpdate(e.available, e.deviceAddress);
    }
    void operator()(const PairingReceived& e) const { listener.OnOOBPairingInfo(e.bluetoothAddress, e.bytes); }

    // The listener may change the bytes: it gets its own.
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

void Deliver(const Event& event, IQBXIpodPlayerListener& listener)
{
    std::visit(Operation{listener}, event);
}
}  // namespace ipodkit
