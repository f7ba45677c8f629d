#include "playing.h"

#include <algorithm>

#include "failure.h"
#include "names.h"
#include "track.h"

namespace ctl
{
Playing ReadPlaying(Session& session)
{
    Playing playing{};
    playing.state = session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayStatus(); });
    playing.index = session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingTrackIdx(); });
    playing.amount = session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingListItemsAmount(); });
    session.Ask([&](IQBXIpodPlayer& player) { player.GetPlayPosition(playing.position, playing.length); });
    playing.track = session.Ask([](IQBXIpodPlayer& player) { return player.GetCurrentMediaInfo(); });
    return playing;
}

Json PlayingJson(const Playing& playing)
{
    return {{"state", PlayStatusName(playing.state)},
            {"position_ms", playing.position},
            {"length_ms", playing.length},
            {"index", playing.index},
            {"count", std::max(0, playing.amount)},
            {"track", IsEmpty(playing.track) ? Json() : TrackJson(playing.track)}};
}

std::string PlayingLine(const Playing& playing)
{
    const std::string state = PlayStatusName(playing.state);
    return IsEmpty(playing.track) ? state : state + ": " + TrackLine(playing.track);
}

Answer NowPlaying(Session& session, const char* verb)
{
    const Playing playing = ReadPlaying(session);
    Json json{{"verb", verb}};
    json.update(PlayingJson(playing));
    return {json, PlayingLine(playing)};
}

Playing RequireTrack(Session& session)
{
    Playing playing = ReadPlaying(session);
    if (playing.index < 0 || IsEmpty(playing.track))
        throw Failure(kNothingDone, "nothing is loaded; start with ipodctl play INDEX");
    return playing;
}
}  // namespace ctl
