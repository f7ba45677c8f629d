#include "player/reported.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "output/failure.h"

namespace ctl
{
namespace
{
using ipodkit::Commands;
using ipodkit::PlayerState;

struct Question
{
    const char* what;
    bool (*isReported)(const PlayerState& state);
    void (*askAgain)(Session& session);
};

template <auto member, auto command>
constexpr Question About(const char* what)
{
    return {what, [](const PlayerState& state) { return (state.*member).has_value(); },
            [](Session& session) { session.Ask((session.Commands().*command)()); }};
}

constexpr Question kTrack = About<&PlayerState::track, &Commands::CurrentTrack>("the track");
constexpr Question kIndex = About<&PlayerState::trackIndex, &Commands::PlayingIndex>("its index");

bool IsArtworkReported(const PlayerState& state)
{
    return state.artwork != nullptr || !state.track || state.track->value4 != 1;
}

void AskForArtwork(Session& session)
{
    const QBXTrackArtwork artwork =
        session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingTrackAlbumArtwork(); });
    if (artwork.word1 != 0 || artwork.image.empty()) throw Failure(kNothingDone, "it did not deliver an image");
}

// The last ones do not show that the service answers sensibly: any text is a name, events report the position and
// detections, and a track without artwork counts as reported.
constexpr int kOfNoWeight = 6;
constexpr Question kAll[] = {
    kTrack,
    kIndex,
    About<&PlayerState::status, &Commands::PlayStatus>("the state"),
    About<&PlayerState::shuffle, &Commands::Shuffle>("shuffle"),
    About<&PlayerState::repeat, &Commands::Repeat>("repeat"),
    About<&PlayerState::queueSize, &Commands::PlayingCount>("the queue"),
    About<&PlayerState::deviceCount, &Commands::DeviceCount>("the devices"),
    About<&PlayerState::deviceName, &Commands::IpodName>("the device name"),
    About<&PlayerState::foregroundApp, &Commands::ForegroundApp>("the app"),
    About<&PlayerState::carPlay, &Commands::CarPlayStatus>("CarPlay"),
    About<&PlayerState::carLife, &Commands::CarLifeStatus>("CarLife"),
    About<&PlayerState::position, &Commands::Position>("the position"),
    {"the artwork", IsArtworkReported, AskForArtwork},
};

// The state has no reason for what is missing; a second request has one.
std::string Reason(Session& session, const Question& question)
{
    try
    {
        question.askAgain(session);
    }
    catch (const Failure& failure)
    {
        return failure.what();
    }
    return "it does now; try again";
}

bool ReportedNothing(const PlayerState& state)
{
    return std::none_of(std::begin(kAll), std::prev(std::end(kAll), kOfNoWeight),
                        [&state](const Question& question) { return question.isReported(state); });
}

// Without a device there is nothing to report.
bool HasDevice(const PlayerState& state)
{
    return state.deviceCount != 0;
}
}  // namespace

std::string NotReported(Session& session, const PlayerState& state)
{
    std::vector<const Question*> open;
    std::string names;
    for (const Question& question : kAll)
    {
        if (question.isReported(state)) continue;
        names += (open.empty() ? "" : ", ") + std::string(question.what);
        open.push_back(&question);
    }
    if (open.empty() || !HasDevice(state)) return {};
    if (ReportedNothing(state)) open.front()->askAgain(session);
    return "the service did not report " + names + ": " + Reason(session, *open.front());
}

void RequireTrackReported(Session& session, const PlayerState& state)
{
    for (const Question* question : {&kTrack, &kIndex})
    {
        if (question->isReported(state) || !HasDevice(state)) continue;
        question->askAgain(session);
        throw Failure(kNothingDone,
                      std::string("the service did not report ") + question->what + ", but does now; try again");
    }
}
}  // namespace ctl
