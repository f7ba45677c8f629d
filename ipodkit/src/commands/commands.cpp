#include <ipodkit/commands.h>

#include <gvariant_data.h>

#include <limits>

#include "commands/maker.h"
#include "commands/records.h"

namespace ipodkit
{
namespace
{
constexpr std::size_t kLongestText = 1 << 20;
constexpr std::size_t kSlotLength = 255;

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
    return tl::unexpected<Error>(Error{ErrorKind::BadReply, "an amount of " + std::to_string(*count)});
}

Decoded<std::string> Text(GVariant* body)
{
    const gchar* text = nullptr;
    g_variant_get(body, "(&s)", &text);
    return std::string(text);
}

Decoded<PlayPosition> TwoInts(GVariant* body)
{
    PlayPosition position{};
    g_variant_get(body, "(ii)", &position.position, &position.duration);
    return position;
}

Decoded<CarPlayDevice> StatusAndSerial(GVariant* body)
{
    guchar status = 0;
    const gchar* serial = nullptr;
    g_variant_get(body, "(y&s)", &status, &serial);
    return CarPlayDevice{static_cast<QBXAppleDeviceDetectStatus>(status), serial};
}

// Why a number cannot be sent as a @p Wire; nothing when it can.
template <class Wire, class Number>
std::optional<Error> Unfit(Number number)
{
    using Limits = std::numeric_limits<Wire>;
    if (number >= Limits::min() && number <= Limits::max()) return std::nullopt;
    return Error{ErrorKind::BadArgument, "the number " + std::to_string(number) + "; " + std::to_string(Limits::min()) +
                                             " to " + std::to_string(Limits::max()) + " can be sent"};
}
}  // namespace

// Makers with what every command has in common. Macros, because they name private members of Commands: functions that
// do would have to be declared in the public header, and Maker with them.
//
// The members are spelled as in the bus contract: searching for one finds its one use.
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

Request<void> Commands::StartPlayback(iPodPlayerPlayOption_e option) const
{
    const bool starts = option >= IPOD_PLAY_START && option <= IPOD_PLAY_RESTART;
    std::optional<Error> obstacle;
    if (!starts) obstacle = Error{ErrorKind::BadArgument, "option " + std::to_string(option) + " starts no playback"};
    return ORDER("Play", g_variant_new("(y)", static_cast<guchar>(option)), obstacle);
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

Request<void> Commands::SetShuffle(iPodPlayerShuffleStatus mode) const
{
    return TELL("SetShuffleMode", g_variant_new("(y)", static_cast<guchar>(mode)), Unfit<guchar>(mode));
}

Request<void> Commands::SetRepeat(iPodPlayerRepeatStatus mode) const
{
    return TELL("SetRepeatMode", g_variant_new("(y)", static_cast<guchar>(mode)), Unfit<guchar>(mode));
}

Request<void> Commands::PressButton(iPodPlayerButtonControl control) const
{
    return ORDER("SetButtonStatus", g_variant_new("(@v)", gvariant_data_build(&control, sizeof(control))));
}

Request<void> Commands::SetTransmission(bool on) const
{
    return TELL("SetTransmissionState", g_variant_new("(y)", on ? 1 : 0));
}

Request<QBXiPodTrackInfo> Commands::CurrentTrack() const
{
    return ASK(QBXiPodTrackInfo, "(v)", ToTrack)("GetCurrentMediaInfo");
}

Request<iPodPlayerPlayStatus> Commands::PlayStatus() const
{
    return ASK(iPodPlayerPlayStatus, "(i)", Int<iPodPlayerPlayStatus>)("GetPlayStatus");
}

Request<PlayPosition> Commands::Position() const
{
    return ASK(PlayPosition, "(ii)", TwoInts)("GetPlayPosition");
}

Request<Winding> Commands::WindingStatus() const
{
    return ASK(Winding, "(i)", Int<Winding>)("GetFfwFbwStatus");
}

Request<iPodPlayerShuffleStatus> Commands::Shuffle() const
{
    return ASK(iPodPlayerShuffleStatus, "(i)", Int<iPodPlayerShuffleStatus>)("GetShuffleMode");
}

Request<iPodPlayerRepeatStatus> Commands::Repeat() const
{
    return ASK(iPodPlayerRepeatStatus, "(i)", Int<iPodPlayerRepeatStatus>)("GetRepeatMode");
}

Request<int> Commands::PlayingIndex() const
{
    return ASK(int, "(i)", Int<int>)("GetPlayingTrackIdx");
}

Request<int> Commands::PlayingCount() const
{
    return ASK(int, "(i)", Count)("GetPlayingListItemsAmount");
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

Request<QBXAppleDeviceDetectStatus> Commands::CarLifeStatus() const
{
    return ASK(QBXAppleDeviceDetectStatus, "(i)", Int<QBXAppleDeviceDetectStatus>)("GetCarlifeDeviceDetectStatus");
}

Request<void> Commands::NotifyCarPlay(bool connected, bool wireless) const
{
    return TELL("CarplayConnectStatusNotify", g_variant_new("(bb)", connected, wireless));
}

Request<void> Commands::AnnounceAccessory(const EAPInfo& info) const
{
    std::optional<Error> obstacle = Obstacle(info.text1, kSlotLength);
    if (!obstacle) obstacle = Obstacle(info.text2, kSlotLength);
    return TELL("EapInit", g_variant_new("(@v)", ToEapInit(info)), obstacle);
}

Request<void> Commands::SetHubTestMode(unsigned char mode) const
{
    return TELL("SetHubTestMode", g_variant_new("(y)", mode));
}
}  // namespace ipodkit
