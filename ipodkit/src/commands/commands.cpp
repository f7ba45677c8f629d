#include <ipodkit/commands.h>

#include <gvariant_data.h>

#include <limits>

#include "commands/maker.h"
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
    return tl::unexpected<Error>(
        Error{ErrorKind::BadReply, "expected a count of at least 0, got " + std::to_string(*count)});
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
    if (!head) return tl::unexpected<Error>(head.error());
    ArtworkChanged artwork{(*head)[0] == 0, nullptr, (*head)[1], (*head)[2], (*head)[3]};
    if (!artwork.available) return artwork;
    auto image = BytesIn(g_VecArtworkBufferShareMemory);
    if (!image)
        return tl::unexpected<Error>(Error{ErrorKind::NoSharedMemory, "the artwork buffer is damaged or not attached"});
    if (!image->empty()) artwork.picture = std::make_shared<const Picture>(Examine(std::move(*image)));
    return artwork;
}

// Returns why a number cannot be sent as a @p Wire; nothing if it can.
template <class Wire, class Number>
std::optional<Error> Unfit(Number number)
{
    using Limits = std::numeric_limits<Wire>;
    if (number >= Limits::min() && number <= Limits::max()) return std::nullopt;
    return Error{ErrorKind::BadArgument, "expected a number between " + std::to_string(Limits::min()) + " and " +
                                             std::to_string(Limits::max()) + ", got " + std::to_string(number)};
}
}  // namespace

// Makers with what all commands share. They are macros because they name private members of Commands: functions would
// have to be declared in the public header, together with Maker.
//
// Methods are spelled as in the bus contract, so that a search finds their only use.
#define ORDER                                   \
    Maker<void>                                 \
    {                                           \
        m_bus, m_deadline, "(b)", Nothing, true \
    }
#define TELL                             \
    Maker<void>                          \
    {                                    \
        m_bus, m_deadline, "()", Nothing \
    }
#define ASK(T, type, decode)            \
    Maker<T>                            \
    {                                   \
        m_bus, m_deadline, type, decode \
    }

Request<void> Commands::StartPlayback(PlayOption option) const
{
    const int number = static_cast<int>(option);
    std::optional<Error> obstacle;
    if (option < PlayOption::Start || option > PlayOption::Restart)
        obstacle = Error{ErrorKind::BadArgument, "play option " + std::to_string(number) + " does not start playback"};
    return ORDER("Play", g_variant_new("(y)", static_cast<guchar>(number)), obstacle);
}

Request<void> Commands::Pause() const
{
    return ORDER("Pause");
}

Request<void> Commands::Stop() const
{
    return ORDER("Stop");
}

Request<void> Commands::Next() const
{
    return ORDER("Next");
}

Request<void> Commands::Previous() const
{
    return ORDER("Previous");
}

Request<void> Commands::Seek(std::chrono::seconds position) const
{
    const auto seconds = position.count();
    return TELL("Seek", g_variant_new("(i)", static_cast<gint32>(seconds)), Unfit<gint32>(seconds));
}

Request<void> Commands::FastForward() const
{
    return ORDER("FastForward");
}

Request<void> Commands::FastBackward() const
{
    return ORDER("FastBackward");
}

Request<void> Commands::StopWinding() const
{
    return ORDER("StopFfwFbw");
}

Request<void> Commands::SetShuffle(ipodkit::Shuffle mode) const
{
    return TELL("SetShuffleMode", g_variant_new("(y)", static_cast<guchar>(mode)),
                Unfit<guchar>(static_cast<int>(mode)));
}

Request<void> Commands::SetRepeat(ipodkit::Repeat mode) const
{
    return TELL("SetRepeatMode", g_variant_new("(y)", static_cast<guchar>(mode)),
                Unfit<guchar>(static_cast<int>(mode)));
}

Request<void> Commands::PressButton(const ButtonPress& press) const
{
    const auto held = press.held.count();
    ButtonRecord record{{press.button, press.state, static_cast<std::uint32_t>(held)}};
    return ORDER("SetButtonStatus", g_variant_new("(@v)", gvariant_data_build(&record, sizeof(record))),
                 Unfit<std::uint32_t>(held));
}

Request<void> Commands::SetTransmission(bool on) const
{
    return TELL("SetTransmissionState", g_variant_new("(y)", on ? 1 : 0));
}

Request<Track> Commands::CurrentTrack() const
{
    return ASK(Track, "(v)", ToTrack)("GetCurrentMediaInfo");
}

Request<ipodkit::PlayStatus> Commands::PlayStatus() const
{
    return ASK(ipodkit::PlayStatus, "(i)", Int<ipodkit::PlayStatus>)("GetPlayStatus");
}

Request<PlayPosition> Commands::Position() const
{
    return ASK(PlayPosition, "(ii)", TwoInts)("GetPlayPosition");
}

Request<Winding> Commands::WindingStatus() const
{
    return ASK(Winding, "(i)", Int<Winding>)("GetFfwFbwStatus");
}

Request<ipodkit::Shuffle> Commands::Shuffle() const
{
    return ASK(ipodkit::Shuffle, "(i)", Int<ipodkit::Shuffle>)("GetShuffleMode");
}

Request<ipodkit::Repeat> Commands::Repeat() const
{
    return ASK(ipodkit::Repeat, "(i)", Int<ipodkit::Repeat>)("GetRepeatMode");
}

Request<int> Commands::PlayingIndex() const
{
    return ASK(int, "(i)", Int<int>)("GetPlayingTrackIdx");
}

Request<int> Commands::PlayingCount() const
{
    return ASK(int, "(i)", Count)("GetPlayingListItemsAmount");
}

Request<ArtworkChanged> Commands::Artwork() const
{
    return ASK(ArtworkChanged, "(v)", HeadAndImage)("GetPlayingTrackAlbumArtwork");
}

Request<int> Commands::DatabaseCount(bool fromTop) const
{
    return ASK(int, "(i)", Count)("GetCurDbListItemsAmount", g_variant_new("(b)", fromTop));
}

Request<void> Commands::EnterRoot() const
{
    return ORDER("EnterDbRoot");
}

Request<void> Commands::EnterParent() const
{
    return ORDER("EnterDbParentList");
}

Request<void> Commands::EnterChild(int index) const
{
    return ORDER("EnterDbChildList", g_variant_new("(i)", index));
}

Request<bool> Commands::AtRoot() const
{
    return ASK(bool, "(b)", Flag)("IsIPodInDbRoot");
}

Request<void> Commands::PlayDatabaseEntry(int index) const
{
    return TELL("PlayDbList", g_variant_new("(i)", index));
}

Request<void> Commands::PlayPlayingEntry(int index) const
{
    return TELL("PlayPlayingList", g_variant_new("(i)", index));
}

Request<int> Commands::DeviceCount() const
{
    return ASK(int, "(i)", Count)("GetDeviceAmount");
}

Request<void> Commands::EnterDevice(int index) const
{
    return ORDER("EnterDeviceChildList", g_variant_new("(i)", index));
}

Request<std::string> Commands::IpodName() const
{
    return ASK(std::string, "(s)", Text)("GetIpodName");
}

Request<std::string> Commands::ForegroundApp() const
{
    return ASK(std::string, "(s)", Text)("GetIpodAppBundleName");
}

Request<void> Commands::LaunchApp(const std::string& bundleId) const
{
    const std::optional<Error> obstacle = Obstacle(bundleId, kLongestText);
    return ORDER("EapLaunchApp", g_variant_new("(s)", obstacle ? "" : bundleId.c_str()), obstacle);
}

Request<CarPlayDevice> Commands::CarPlayStatus() const
{
    return ASK(CarPlayDevice, "(ys)", StatusAndSerial)("GetCarplayDeviceDetectStatus");
}

Request<DeviceStatus> Commands::CarLifeStatus() const
{
    return ASK(DeviceStatus, "(i)", Int<DeviceStatus>)("GetCarlifeDeviceDetectStatus");
}

Request<void> Commands::NotifyCarPlay(bool connected, bool wireless) const
{
    return TELL("CarplayConnectStatusNotify", g_variant_new("(bb)", connected, wireless));
}

Request<void> Commands::AnnounceAccessory(const AccessoryInfo& info) const
{
    std::optional<Error> obstacle = Obstacle(info.protocols, kSlotLength);
    if (!obstacle) obstacle = Obstacle(info.bundleId, kSlotLength);
    return TELL("EapInit", g_variant_new("(@v)", ToEapInit(info)), obstacle);
}

Request<void> Commands::SetHubTestMode(unsigned char mode) const
{
    return TELL("SetHubTestMode", g_variant_new("(y)", mode));
}
}  // namespace ipodkit
