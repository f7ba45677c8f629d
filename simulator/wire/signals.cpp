#include "wire/signals.h"

#include <utility>

#include "music/picture.h"

namespace ipodsim
{
namespace
{
guchar Byte(int value)
{
    return static_cast<guchar>(value);
}

template <class Message>
GVariant* PackMessage(const Message& message)
{
    const std::string bytes = message.SerializeAsString();
    return Pack(bytes.data(), bytes.size());
}

// An array of one-byte structures, a different D-Bus type from an array of bytes.
GVariant* ByteStructures(const Bytes& bytes)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(y)"));
    for (const unsigned char byte : bytes) g_variant_builder_add(&builder, "(y)", byte);
    return g_variant_builder_end(&builder);
}
}  // namespace

Signals::Signals(ComZarnLinuxIpod* skeleton, Segments& segments, std::function<void(const std::string&)> warn)
    : m_skeleton(skeleton), m_segments(segments), m_warn(std::move(warn))
{
}

void Signals::DeviceStatus(int status, bool mediaRestart)
{
    com_zarn_linux_ipod_emit_on_ipod_device_status_change(m_skeleton, Byte(status), mediaRestart);
}

void Signals::PlayStatus(const Player& player)
{
    com_zarn_linux_ipod_emit_on_play_status_changed(m_skeleton, Byte(player.Status()));
}

void Signals::PlayProgress(const Player& player)
{
    com_zarn_linux_ipod_emit_on_play_progress_change(m_skeleton, player.Position(), player.Length());
}

void Signals::RepeatMode(const Player& player)
{
    com_zarn_linux_ipod_emit_on_ipod_repeat_mode_change(m_skeleton, Byte(player.List().Repeat()));
}

void Signals::ShuffleMode(const Player& player)
{
    com_zarn_linux_ipod_emit_on_ipod_shuffle_mode_change(m_skeleton, Byte(player.List().Shuffle()));
}

void Signals::PlayingTrack(const Player& player)
{
    // Filled first, because the record announces whether there is artwork.
    const ArtworkHead head = FillArtwork(*m_segments.artworkChange, player);
    com_zarn_linux_ipod_emit_on_ipod_playing_track_change(m_skeleton, player.Index(), Pack(RecordOf(player)));
    com_zarn_linux_ipod_emit_on_ipod_artwork_change(m_skeleton, Pack(head));
}

void Signals::PlayingListAmount(const Player& player)
{
    com_zarn_linux_ipod_emit_on_ipod_playing_list_amount_change(m_skeleton,
                                                                static_cast<gint>(player.List().Tracks().size()));
}

void Signals::SourceValid(bool valid)
{
    com_zarn_linux_ipod_emit_on_ipod_source_valid_status_change(m_skeleton, valid);
}

void Signals::Carplay(int status, const std::string& serialNumber)
{
    com_zarn_linux_ipod_emit_on_carplay_device_detect_status_change(m_skeleton, Byte(status), serialNumber.c_str());
}

void Signals::PhoneCall(const ipod::iPodPhoneCall& call)
{
    com_zarn_linux_ipod_emit_on_ipod_phone_call_change(m_skeleton, PackMessage(call));
}

void Signals::Battery(const ipod::iPodBattery& battery)
{
    com_zarn_linux_ipod_emit_on_ipod_battery_change(m_skeleton, PackMessage(battery));
}

void Signals::Location(int status)
{
    com_zarn_linux_ipod_emit_on_ipod_location_status_change(m_skeleton, Byte(status));
}

void Signals::AppBundleName(const std::string& bundleName)
{
    com_zarn_linux_ipod_emit_on_ipod_app_bundle_name_change(m_skeleton, bundleName.c_str());
}

void Signals::StartEapSession(int protocol, std::uint16_t session)
{
    com_zarn_linux_ipod_emit_on_ipod_start_eap_session(m_skeleton, Byte(protocol), session);
}

void Signals::StopEapSession(std::uint16_t session)
{
    com_zarn_linux_ipod_emit_on_ipod_stop_eap_session(m_skeleton, session);
}

bool Signals::ReceiveEapData(std::uint16_t session, const Bytes& data)
{
    if (!Fill(*m_segments.eapRead, data))
    {
        m_warn("accessory data of " + std::to_string(data.size()) + " bytes does not fit into shared memory");
        return false;
    }
    com_zarn_linux_ipod_emit_on_ipod_receive_eap_data(m_skeleton, Byte(session & 0xFF));
    return true;
}

void Signals::Carlife(int status)
{
    com_zarn_linux_ipod_emit_on_carlife_device_detect_status_change(m_skeleton, Byte(status));
}

void Signals::WirelessCarPlay(bool available, const std::string& deviceAddress)
{
    com_zarn_linux_ipod_emit_on_wireless_car_play_update(m_skeleton, available, deviceAddress.c_str());
}

void Signals::PairingInfo(const std::string& btAddress, const Bytes& bytes)
{
    com_zarn_linux_ipod_emit_on_oobpairing_info(m_skeleton, btAddress.c_str(), ByteStructures(bytes));
}

ArtworkHead Signals::FillArtwork(QBXByteVector& vector, const Player& player)
{
    const TrackPtr track = player.Track();
    const Picture picture = track == nullptr ? Picture{} : PictureOf(*track);
    const bool filled = m_segments.FillArtwork(vector, picture.bytes);
    if (track == nullptr) return HeadOfNone();
    if (filled && !picture.bytes.empty())
    {
        m_undelivered.erase(track->file);
        return HeadOf(picture);
    }
    if (m_undelivered.insert(track->file).second && !filled)
        m_warn("no space in shared memory for the artwork of '" + track->title + "', " +
               std::to_string(picture.bytes.size()) + " bytes");
    return HeadOfNone();
}

TrackRecord Signals::RecordOf(const Player& player) const
{
    const TrackPtr track = player.Track();
    if (track == nullptr) return {};
    return ToRecord(*track, player.List().Tracks().size(), m_undelivered.count(track->file) == 0);
}
}  // namespace ipodsim
