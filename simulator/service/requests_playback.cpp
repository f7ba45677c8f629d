#include <algorithm>
#include <limits>

#include "service/requests.h"

namespace ipodsim::requests
{
namespace
{
constexpr int kMsPerSecond = 1000;

// Buttons of the simulated remote control: the first word of SetButtonStatus's record.
enum Button : std::uint32_t
{
    kPlayPause = 0,
    kNext = 1,
    kPrevious = 2,
    kStop = 3,
};

void Press(Player& player, std::uint32_t button)
{
    if (button == kPlayPause && player.Running())
        player.Pause();
    else if (button == kPlayPause)
        player.Play();
    if (button == kNext) player.Next();
    if (button == kPrevious) player.Previous();
    if (button == kStop) player.Stop();
}

void QueueEverything(Service& service)
{
    const Database* const database = service.Browsed();
    if (database != nullptr) service.player.PlayList(database->Songs(), 0);
}
}  // namespace

GVariant* GetCurrentMediaInfo(Service& service)
{
    return Pack(service.signals.RecordOf(service.player));
}

// If the playing list is empty, all songs are played.
bool Play(Service& service, guchar option)
{
    if (option < IPOD_PLAY_START || option > IPOD_PLAY_RESTART) return false;
    Player& player = service.player;
    if (player.List().Empty()) QueueEverything(service);
    return option == IPOD_PLAY_RESTART ? player.Restart() : player.Play();
}

bool Pause(Service& service)
{
    return service.player.Pause();
}

bool Stop(Service& service)
{
    service.player.Stop();
    return true;
}

std::tuple<gint, gint> GetPlayPosition(Service& service)
{
    return {service.player.Position(), service.player.Length()};
}

gint GetFfwFbwStatus(Service& service)
{
    switch (service.player.Status())
    {
        case IPOD_PLAY_STATUS_FAST_FORWARD:
            return 0;
        case IPOD_PLAY_STATUS_FAST_BACKWARD:
            return 1;
        default:
            return 2;
    }
}

gint GetPlayStatus(Service& service)
{
    return service.player.Status();
}

// An invalid number leaves the mode unchanged; the signal reports the current mode.
void SetShuffleMode(Service& service, guchar mode)
{
    const bool known = mode <= IPOD_SHUFFLE_ALBUMS;
    service.player.SetShuffle(known ? static_cast<iPodPlayerShuffleStatus>(mode) : service.player.List().Shuffle());
}

void SetRepeatMode(Service& service, guchar mode)
{
    const bool known = mode <= IPOD_REPEAT_ALL;
    service.player.SetRepeat(known ? static_cast<iPodPlayerRepeatStatus>(mode) : service.player.List().Repeat());
}

gint GetShuffleMode(Service& service)
{
    return service.player.List().Shuffle();
}

gint GetRepeatMode(Service& service)
{
    return service.player.List().Repeat();
}

bool SetButtonStatus(Service& service, GVariant* control)
{
    ButtonRecord record{};
    if (!Unpack(control, record)) return false;
    const bool pressed = record.words[1] != 0;
    if (pressed) Press(service.player, record.words[0]);
    return true;
}

gint GetPlayingTrackIdx(Service& service)
{
    return service.player.Index();
}

void PlayDbList(Service& service, gint index)
{
    const Database* const database = service.Browsed();
    if (database == nullptr) return;
    if (auto selection = database->Select(index))
        service.player.PlayList(std::move(selection->tracks), selection->start);
}

void PlayPlayingList(Service& service, gint index)
{
    service.player.PlayEntry(index);
}

void Seek(Service& service, gint seconds)
{
    constexpr int kLast = std::numeric_limits<int>::max() / kMsPerSecond;
    service.player.Seek(std::clamp(seconds, 0, kLast) * kMsPerSecond);
}

bool Next(Service& service)
{
    return service.player.Next();
}

bool Previous(Service& service)
{
    return service.player.Previous();
}

GVariant* GetPlayingTrackAlbumArtwork(Service& service)
{
    return Pack(service.signals.FillArtwork(*service.segments.artwork, service.player));
}

bool FastForward(Service& service)
{
    return service.player.Wind(true);
}

bool FastBackward(Service& service)
{
    return service.player.Wind(false);
}

bool StopFfwFbw(Service& service)
{
    return service.player.StopWinding();
}
}  // namespace ipodsim::requests
