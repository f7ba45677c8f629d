/// @file
/// The library without a bus: calls the signal callbacks as GLib would, and records what reaches a listener or the log.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <ipod_dbus.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fuzz
{
/// The last event of each kind, until Forget().
struct Heard : IQBXIpodPlayerListener
{
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override { phoneCall = call; }
    void OnIpodBatteryChange(const iPodBattery_t& status) override { battery = status; }
    void OnIpodPlayingTrackChange(int, QBXiPodTrackInfo info) override { track = info; }
    void OnIpodArtworkChange(QBXTrackArtwork picture) override { artwork = picture; }
    void OnOOBPairingInfo(std::string, const std::vector<unsigned char>& bytes) override { pairing = bytes; }

    void Forget();

    std::optional<iPodPhoneCall_t> phoneCall;
    std::optional<iPodBattery_t> battery;
    std::optional<QBXiPodTrackInfo> track;
    std::optional<QBXTrackArtwork> artwork;
    std::optional<std::vector<unsigned char>> pairing;
};

/// The client and its listener, created on first use. Attaches the segments.
Heard& Listener();
ComZarnLinuxIpod* Proxy();
void* Client();

/// The text of the last log record, truncated to 8191 bytes.
const char* LastLogText();

/// Ends the run with a finding unless @p holds.
void Require(bool holds, const char* what);

/// Owns a variant.
class Variant
{
public:
    explicit Variant(GVariant* value) : m_value(g_variant_ref_sink(value)) {}
    ~Variant() { g_variant_unref(m_value); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    GVariant* get() const { return m_value; }

private:
    GVariant* m_value;
};

/// A "v" that holds these bytes as "ay".
GVariant* Wrapped(const std::uint8_t* data, std::size_t size);
}  // namespace fuzz
