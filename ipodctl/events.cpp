#include "events.h"

#include <glib.h>

#include <optional>

#include "names.h"
#include "picture.h"
#include "text.h"
#include "track.h"

namespace ctl
{
namespace
{
constexpr int kNameWidth = 14;

std::string Now(const char* format)
{
    GDateTime* const now = g_date_time_new_now_local();
    gchar* const text = g_date_time_format(now, format);
    const std::string result = text;
    g_free(text);
    g_date_time_unref(now);
    return result;
}

std::string Milliseconds()
{
    char text[8];
    g_snprintf(text, sizeof(text), ".%03d", static_cast<int>(g_get_real_time() / 1000 % 1000));
    return text;
}

std::string Hex(const std::vector<unsigned char>& bytes)
{
    std::string text;
    char pair[3];
    for (const unsigned char byte : bytes)
    {
        g_snprintf(pair, sizeof(pair), "%02x", byte);
        text += pair;
    }
    return text;
}

// Fields that the service did not send are left out.
template <class T>
void AddField(Json& fields, const char* name, const std::optional<T>& value)
{
    if (value) fields[name] = *value;
}

template <class T>
void AddName(Json& fields, const char* name, const std::optional<T>& value, std::string (*nameOf)(int))
{
    if (value) fields[name] = nameOf(*value);
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

void AddCallFields(Json& fields, const iPodPhoneCall_t& call)
{
    AddName(fields, "status", call.Status, CallStatusName);
    AddName(fields, "direction", call.Direction, CallDirectionName);
    AddField(fields, "name", call.DisplayName);
    AddField(fields, "remote", call.RemoteID);
    AddField(fields, "label", call.Label);
    AddName(fields, "service", call.Service, CallServiceName);
    AddField(fields, "uuid", call.CallUUID);
    AddField(fields, "address_book_id", call.AddressBookID);
    AddField(fields, "conferenced", call.IsConferenced);
    AddField(fields, "conference_group", call.ConferenceGroup);
    AddName(fields, "end", call.DisconnectReason, CallEndName);
    AddField(fields, "start", call.StartTimestamp);
}

std::string BytesText(const std::vector<unsigned char>& data)
{
    constexpr int kShown = 60;
    return Cut(Printable({reinterpret_cast<const char*>(data.data()), data.size()}), kShown);
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
    Json fields = Json::object();
    AddCallFields(fields, call);
    m_sink({"phone-call", fields, Listed(fields)});
}

void EventListener::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    Json fields = Json::object();
    AddField(fields, "percent", battery.BatteryChargeLevel);
    AddName(fields, "status", battery.BatteryChargingStatus, ChargingName);
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
            {{"session_low_byte", session}, {"bytes", data.size()}, {"hex", Hex(data)}},
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
            {{"address", address}, {"hex", Hex(bytes)}},
            Printable(address) + ", " + Size(bytes.size()) + ": " + Hex(bytes)});
}

Answer ToAnswer(const Event& event)
{
    const std::string fraction = Milliseconds();
    Json json{{"time", Now("%FT%T") + fraction + Now("%:z")}, {"event", event.name}};
    json.update(event.fields);
    return {json, Now("%T") + fraction + "  " + Pad(event.name, kNameWidth) + "  " + event.text};
}
}  // namespace ctl
