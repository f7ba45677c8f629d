/// @file
/// The twenty signals of the service. Those with bulk data fill their vector first, as the contract wants it.
#pragma once

#include <ipod.pb.h>
#include <ipod_dbus.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "playback/player.h"
#include "wire/records.h"
#include "wire/segments.h"

namespace ipodsim
{
/// Emits on the skeleton; only on the service's thread. The events of the player name no values: they are read from
/// the player when they are emitted.
class Signals
{
public:
    Signals(ComZarnLinuxIpod* skeleton, Segments& segments, std::function<void(const std::string&)> warn);

    void DeviceStatus(int status, bool mediaRestart);
    void PlayStatus(const Player& player);
    void PlayProgress(const Player& player);
    void RepeatMode(const Player& player);
    void ShuffleMode(const Player& player);
    /// The track and its artwork: two signals.
    void PlayingTrack(const Player& player);
    void PlayingListAmount(const Player& player);
    void SourceValid(bool valid);
    void Carplay(int status, const std::string& serialNumber);
    void PhoneCall(const ipod::iPodPhoneCall& call);
    void Battery(const ipod::iPodBattery& battery);
    void Location(int status);
    void AppBundleName(const std::string& bundleName);
    void StartEapSession(int protocol, std::uint16_t session);
    void StopEapSession(std::uint16_t session);
    /// False, and nothing emitted, when the bytes do not fit beside the pictures.
    bool ReceiveEapData(std::uint16_t session, const Bytes& data);
    void Carlife(int status);
    void WirelessCarPlay(bool available, const std::string& deviceAddress);
    void PairingInfo(const std::string& btAddress, const Bytes& bytes);

    /// Puts the artwork of the playing track into @p vector and returns its head. Artwork that does not fit is left
    /// out, the first time with a warning.
    ArtworkHead FillArtwork(QBXByteVector& vector, const Player& player);
    /// The record of the playing track, which has artwork unless it could not be delivered last time.
    TrackRecord RecordOf(const Player& player) const;

private:
    ComZarnLinuxIpod* m_skeleton;
    Segments& m_segments;
    std::function<void(const std::string&)> m_warn;
    std::set<std::string> m_undelivered;  // files whose artwork did not fit or was gone
};
}  // namespace ipodsim
