#include "events/events.h"

#include "output/hexdump.h"
#include "output/moment.h"
#include "output/names.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/phone.h"
#include "player/track.h"

namespace ctl
{
namespace
{
constexpr int kNameWidth = 14;

std::string_view View(const std::vector<unsigned char>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string TextOf(const Json& value)
{
    return Printable(value.is_string() ? value.get<std::string>() : value.dump());
}

// "status ringing, name Anna"
std::string Listed(const Json& fields)
{
    std::string text;
    for (const auto& [name, value] : fields.items()) text += (text.empty() ? "" : ", ") + name + " " + TextOf(value);
    return text;
}

std::string BytesText(const std::vector<unsigned char>& data)
{
    constexpr int kShown = 60;
    return Cut(Printable(View(data)), kShown);
}

std::string Size(std::size_t bytes)
{
    return Count(static_cast<int>(bytes), "byte", "bytes");
}
}  // namespace

void EventListener::OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart)
{
    const std::string name = DetectName(status);
    m_sink({"device",
            {{"status", name}, {"media_restart", mediaRestart != 0}},
            name + (mediaRestart != 0 ? ", media starts anew" : "")});
}

void EventListener::OnPlayStatusChanged(iPodPlayerPlayStatus status)
{
    const std::string name = PlayStatusName(status);
    m_sink({"play-status", {{"state", name}}, name});
}

void EventListener::OnPlayProgressChange(int position, int length)
{
    m_sink({"progress", {{"position_ms", position}, {"length_ms", length}}, Clock(position) + " / " + Clock(length)});
}

void EventListener::OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode)
{
    m_sink({"repeat", {{"mode", RepeatName(mode)}}, RepeatName(mode)});
}

void EventListener::OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode)
{
    m_sink({"shuffle", {{"mode", ShuffleName(mode)}}, ShuffleName(mode)});
}

void EventListener::OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo track)
{
    const std::string length = track.value1 > 0 ? " (" + Clock(track.value1) + ")" : "";
    m_sink({"track",
            {{"index", index}, {"track", TrackJson(track)}},
            "#" + std::to_string(index) + " " + TrackLine(track) + length});
}

void EventListener::OnIpodPlayingListAmountChange(int amount)
{
    m_sink({"queue-size", {{"count", amount}}, Count(amount, "entry", "entries")});
}

void EventListener::OnIpodSourceValidStatusChange(int valid)
{
    m_sink({"source", {{"valid", valid != 0}}, valid != 0 ? "valid" : "invalid"});
}

void EventListener::OnIpodArtworkChange(QBXTrackArtwork artwork)
{
    const Json fields = ArtworkJson(artwork);
    m_sink({"artwork", fields, artwork.image.empty() ? "none" : ArtworkLine(artwork)});
}

void EventListener::OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serial)
{
    m_sink({"carplay",
            {{"status", DetectName(status)}, {"serial", serial}},
            DetectName(status) + (serial.empty() ? "" : ", serial number " + Printable(serial))});
}

void EventListener::OnIpodPhoneCallChange(const iPodPhoneCall_t& call)
{
    const Json fields = CallJson(call);
    m_sink({"phone-call", fields, Listed(fields)});
}

void EventListener::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    const Json fields = BatteryJson(battery);
    m_sink({"battery", fields, Listed(fields)});
}

void EventListener::OnIpodLocationStatusChange(LocationStatus status)
{
    m_sink({"location", {{"status", LocationName(status)}}, LocationName(status)});
}

void EventListener::OnIpodAPPBundleNameChange(std::string bundle)
{
    m_sink({"foreground-app", {{"bundle", bundle}}, bundle.empty() ? "none" : Printable(bundle)});
}

void EventListener::OnIpodStartEapSession(unsigned char protocol, unsigned short session)
{
    m_sink({"eap-start",
            {{"session", session}, {"protocol", protocol}},
            "session " + std::to_string(session) + ", protocol " + std::to_string(protocol)});
}

void EventListener::OnIpodStopEapSession(unsigned short session)
{
    m_sink({"eap-stop", {{"session", session}}, "session " + std::to_string(session)});
}

void EventListener::OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data)
{
    m_sink({"eap-data",
            {{"session_low_byte", session}, {"bytes", data.size()}, {"hex", Hex(View(data))}},
            "session " + std::to_string(session) + ", " + Size(data.size()) + ": " + BytesText(data)});
}

void EventListener::OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status)
{
    m_sink({"carlife", {{"status", DetectName(status)}}, DetectName(status)});
}

void EventListener::OnWirelessCarPlayUpdate(bool available, const std::string& address)
{
    m_sink({"wireless-carplay",
            {{"available", available}, {"address", address}},
            (available ? "available, " : "unavailable, ") + Printable(address)});
}

void EventListener::OnOOBPairingInfo(std::string address, const std::vector<unsigned char>& bytes)
{
    m_sink({"pairing",
            {{"address", address}, {"hex", Hex(View(bytes))}},
            Printable(address) + ", " + Size(bytes.size()) + ": " + Hex(View(bytes))});
}

const std::vector<std::string>& EventNames()
{
    static const std::vector<std::string> names = {
        "device",    "play-status", "progress", "repeat",  "shuffle",          "track",         "queue-size",
        "source",    "artwork",     "carplay",  "battery", "location",         "carlife",       "phone-call",
        "eap-start", "eap-stop",    "eap-data", "pairing", "wireless-carplay", "foreground-app"};
    return names;
}

Answer ToAnswer(const Event& event)
{
    const Moment now = Moment::Now();
    Json json{{"time", now.full}, {"event", event.name}};
    json.update(event.fields);
    return {json, now.clock + "  " + Pad(event.name, kNameWidth) + "  " + event.text};
}
}  // namespace ctl
