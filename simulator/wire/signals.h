/// @file
/// The twenty signals of the service. Signals with bulk data fill their vector first, as the contract requires.
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
/// Emits on the skeleton, on the service's thread only. The values of playback signals are read from the player at
/// emission.
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
    /// Returns false and emits nothing if the data does not fit in addition to the artwork.
    bool ReceiveEapData(std::uint16_t session, const Bytes& data);
    void Carlife(int status);
    void WirelessCarPlay(bool available, const std::string& deviceAddress);
    void PairingInfo(const std::string& btAddress, const Bytes& bytes);

    /// Copies the artwork of the playing track into @p vector and returns its head. Artwork that does not fit is
    /// omitted, with a warning the first time.
    ArtworkHead FillArtwork(QBXByteVector& vector, const Player& player);
    /// The record of the playing track. It announces artwork unless its last delivery failed.
    TrackRecord RecordOf(const Player& player) const;

private:
    ComZarnLinuxIpod* m_skeleton;
    Segments& m_segments;
    std::function<void(const std::string&)> m_warn;
    std::set<std::string> m_undelivered;  // files whose artwork did not fit or was gone
};
}  // namespace ipodsim
