#include <ipodkit/commands.h>

#include <gvariant_data.h>

#include <limits>

#include "commands/proxy.h"
#include "commands/records.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
namespace
{
constexpr std::size_t kLongestText = 1 << 20;
constexpr std::size_t kSlotLength = 255;

/// The record of SetButtonStatus, in memory order.
struct ButtonRecord
{
    std::uint32_t words[3];
};

template <class T>
using Decoded = Result<T>;

Decoded<bool> Flag(GVariant* body)
{
    gboolean flag = FALSE;
    g_variant_get(body, "(b)", &flag);
    return flag != FALSE;
}

template <class Number>
Decoded<Number> Int(GVariant* body)
{
    gint32 number = 0;
    g_variant_get(body, "(i)", &number);
    return static_cast<Number>(number);
}

Decoded<int> Count(GVariant* body)
{
    Result<int> count = Int<int>(body);
    if (*count >= 0) return count;
    return tl::unexpected(Error{ErrorKind::BadReply, "expected a count of at least 0, got " + std::to_string(*count)});
}

Decoded<std::string> Text(GVariant* body)
{
    const gchar* text = nullptr;
    g_variant_get(body, "(&s)", &text);
    return std::string(text);
}

Decoded<PlayPosition> TwoInts(GVariant* body)
{
    gint32 position = 0;
    gint32 duration = 0;
    g_variant_get(body, "(ii)", &position, &duration);
    return PlayPosition{std::chrono::milliseconds(position), std::chrono::milliseconds(duration)};
}

Decoded<CarPlayDevice> StatusAndSerial(GVariant* body)
{
    guchar status = 0;
    const gchar* serial = nullptr;
    g_variant_get(body, "(y&s)", &status, &serial);
    return CarPlayDevice{static_cast<DeviceStatus>(status), serial};
}

// The image is in the shared memory when the reply arrives.
Decoded<ArtworkChanged> HeadAndImage(GVariant* body)
{
    const Result<PictureHead> head = ToPictureHead(body);
    if (!head) return tl::unexpected(head.error());
    ArtworkChanged artwork{(*head)[0] == 0, nullptr, (*head)[1], (*head)[2], (*head)[3]};
    if (!artwork.available) return artwork;
    auto image = BytesIn(g_VecArtworkBufferShareMemory);
    if (!image)
        return tl::unexpected(Error{ErrorKind::NoSharedMemory, "the artwork buffer is damaged or not attached"});
    if (!image->empty()) artwork.picture = std::make_shared<const Picture>(Examine(std::move(*image)));
    return artwork;
}

// Returns why a number cannot be sent as a @p Wire; nothing if it can.
template <class Wire, class Number>
std::optional<Error> CheckRange(Number number)
{
    using Limits = std::numeric_limits<Wire>;
    if (number >= Limits::min() && number <= Limits::max()) return std::nullopt;
    return Error{ErrorKind::BadArgument, "expected a number between " + std::to_string(Limits::min()) + " and " +
                                             std::to_string(Limits::max()) + ", got " + std::to_string(number)};
}
}  // namespace

// The members are spelled as in the bus contract: searching for one finds its one use.
Request<void> Commands::StartPlayback(PlayOption option) const
{
    const int number = static_cast<int>(option);
    std::optional<Error> error;
    if (option < PlayOption::Start || option > PlayOption::Restart)
        error = Error{ErrorKind::BadArgument, "play option " + std::to_string(number) + " does not start playback"};
    return Proxy{m_bus, m_deadline}.Command("Play", g_variant_new("(y)", static_cast<guchar>(number)), error);
}

Request<void> Commands::Pause() const
{
    return Proxy{m_bus, m_deadline}.Command("Pause");
}

Request<void> Commands::Stop() const
{
    return Proxy{m_bus, m_deadline}.Command("Stop");
}

Request<void> Commands::Next() const
{
    return Proxy{m_bus, m_deadline}.Command("Next");
}

Request<void> Commands::Previous() const
{
    return Proxy{m_bus, m_deadline}.Command("Previous");
}

Request<void> Commands::Seek(std::chrono::seconds position) const
{
    const auto seconds = position.count();
    return Proxy{m_bus, m_deadline}.Notify("Seek", g_variant_new("(i)", static_cast<gint32>(seconds)),
                                           CheckRange<gint32>(seconds));
}

Request<void> Commands::FastForward() const
{
    return Proxy{m_bus, m_deadline}.Command("FastForward");
}

Request<void> Commands::FastBackward() const
{
    return Proxy{m_bus, m_deadline}.Command("FastBackward");
}

Request<void> Commands::StopWinding() const
{
    return Proxy{m_bus, m_deadline}.Command("StopFfwFbw");
}

Request<void> Commands::SetShuffle(ipodkit::Shuffle mode) const
{
    return Proxy{m_bus, m_deadline}.Notify("SetShuffleMode", g_variant_new("(y)", static_cast<guchar>(mode)),
                                           CheckRange<guchar>(static_cast<int>(mode)));
}

Request<void> Commands::SetRepeat(ipodkit::Repeat mode) const
{
    return Proxy{m_bus, m_deadline}.Notify("SetRepeatMode", g_variant_new("(y)", static_cast<guchar>(mode)),
                                           CheckRange<guchar>(static_cast<int>(mode)));
}

Request<void> Commands::PressButton(const ButtonPress& press) const
{
    const auto held = press.held.count();
    ButtonRecord record{{press.button, press.state, static_cast<std::uint32_t>(held)}};
    return Proxy{m_bus, m_deadline}.Command("SetButtonStatus",
                                            g_variant_new("(@v)", gvariant_data_build(&record, sizeof(record))),
                                            CheckRange<std::uint32_t>(held));
}

Request<void> Commands::SetTransmission(bool on) const
{
    return Proxy{m_bus, m_deadline}.Notify("SetTransmissionState", g_variant_new("(y)", on ? 1 : 0));
}

Request<Track> Commands::CurrentTrack() const
{
    return Proxy{m_bus, m_deadline}.Query("GetCurrentMediaInfo", "(v)", ToTrack);
}

Request<ipodkit::PlayStatus> Commands::PlayStatus() const
{
    return Proxy{m_bus, m_deadline}.Query("GetPlayStatus", "(i)", Int<ipodkit::PlayStatus>);
}

Request<PlayPosition> Commands::Position() const
{
    return Proxy{m_bus, m_deadline}.Query("GetPlayPosition", "(ii)", TwoInts);
}

Request<Winding> Commands::WindingStatus() const
{
    return Proxy{m_bus, m_deadline}.Query("GetFfwFbwStatus", "(i)", Int<Winding>);
}

Request<ipodkit::Shuffle> Commands::Shuffle() const
{
    return Proxy{m_bus, m_deadline}.Query("GetShuffleMode", "(i)", Int<ipodkit::Shuffle>);
}

Request<ipodkit::Repeat> Commands::Repeat() const
{
    return Proxy{m_bus, m_deadline}.Query("GetRepeatMode", "(i)", Int<ipodkit::Repeat>);
}

Request<int> Commands::PlayingIndex() const
{
    return Proxy{m_bus, m_deadline}.Query("GetPlayingTrackIdx", "(i)", Int<int>);
}

Request<int> Commands::PlayingCount() const
{
    return Proxy{m_bus, m_deadline}.Query("GetPlayingListItemsAmount", "(i)", Count);
}

Request<ArtworkChanged> Commands::Artwork() const
{
    return Proxy{m_bus, m_deadline}.Query("GetPlayingTrackAlbumArtwork", "(v)", HeadAndImage);
}

Request<int> Commands::DatabaseCount(bool fromTop) const
{
    return Proxy{m_bus, m_deadline}.Query("GetCurDbListItemsAmount", "(i)", Count, g_variant_new("(b)", fromTop));
}

Request<void> Commands::EnterRoot() const
{
    return Proxy{m_bus, m_deadline}.Command("EnterDbRoot");
}

Request<void> Commands::EnterParent() const
{
    return Proxy{m_bus, m_deadline}.Command("EnterDbParentList");
}

Request<void> Commands::EnterChild(int index) const
{
    return Proxy{m_bus, m_deadline}.Command("EnterDbChildList", g_variant_new("(i)", index));
}

Request<bool> Commands::AtRoot() const
{
    return Proxy{m_bus, m_deadline}.Query("IsIPodInDbRoot", "(b)", Flag);
}

Request<void> Commands::PlayDatabaseEntry(int index) const
{
    return Proxy{m_bus, m_deadline}.Notify("PlayDbList", g_variant_new("(i)", index));
}

Request<void> Commands::PlayPlayingEntry(int index) const
{
    return Proxy{m_bus, m_deadline}.Notify("PlayPlayingList", g_variant_new("(i)", index));
}

Request<int> Commands::DeviceCount() const
{
    return Proxy{m_bus, m_deadline}.Query("GetDeviceAmount", "(i)", Count);
}

Request<void> Commands::EnterDevice(int index) const
{
    return Proxy{m_bus, m_deadline}.Command("EnterDeviceChildList", g_variant_new("(i)", index));
}

Request<std::string> Commands::IpodName() const
{
    return Proxy{m_bus, m_deadline}.Query("GetIpodName", "(s)", Text);
}

Request<std::string> Commands::ForegroundApp() const
{
    return Proxy{m_bus, m_deadline}.Query("GetIpodAppBundleName", "(s)", Text);
}

Request<void> Commands::LaunchApp(const std::string& bundleId) const
{
    const std::optional<Error> error = CheckText(bundleId, kLongestText);
    return Proxy{m_bus, m_deadline}.Command("EapLaunchApp", g_variant_new("(s)", error ? "" : bundleId.c_str()), error);
}

Request<CarPlayDevice> Commands::CarPlayStatus() const
{
    return Proxy{m_bus, m_deadline}.Query("GetCarplayDeviceDetectStatus", "(ys)", StatusAndSerial);
}

Request<DeviceStatus> Commands::CarLifeStatus() const
{
    return Proxy{m_bus, m_deadline}.Query("GetCarlifeDeviceDetectStatus", "(i)", Int<DeviceStatus>);
}

Request<void> Commands::NotifyCarPlay(bool connected, bool wireless) const
{
    return Proxy{m_bus, m_deadline}.Notify("CarplayConnectStatusNotify", g_variant_new("(bb)", connected, wireless));
}

Request<void> Commands::AnnounceAccessory(const AccessoryInfo& info) const
{
    std::optional<Error> error = CheckText(info.protocols, kSlotLength);
    if (!error) error = CheckText(info.bundleId, kSlotLength);
    return Proxy{m_bus, m_deadline}.Notify("EapInit", g_variant_new("(@v)", ToEapInit(info)), error);
}

Request<void> Commands::SetHubTestMode(unsigned char mode) const
{
    return Proxy{m_bus, m_deadline}.Notify("SetHubTestMode", g_variant_new("(y)", mode));
}
}  // namespace ipodkit
