#include "player/playing.h"

#include <algorithm>

#include "output/failure.h"
#include "output/fields_json.h"
#include "player/reported.h"
#include "player/track.h"

namespace ctl
{
Playing ReadPlaying(Session& session)
{
    const ipodkit::Commands commands = session.Commands();
    const ipodkit::PlayPosition at = session.Ask(commands.Position());
    return {session.Ask(commands.PlayStatus()), at, session.Ask(commands.PlayingIndex()),
            session.Ask(commands.PlayingCount()), session.Ask(commands.CurrentTrack())};
}

Playing PlayingIn(const ipodkit::PlayerState& state)
{
    const ipodkit::Position at = state.position.value_or({});
    return {state.status.value_or({}),
            {at.Now(), at.duration},
            state.trackIndex.value_or(-1),
            state.queueSize.value_or(0),
            state.track.value_or({})};
}

Json PlayingJson(const Playing& playing)
{
    return {
        {"state", ToString(playing.state)},         {"position_ms", ToJson(playing.at.position)},
        {"length_ms", ToJson(playing.at.duration)}, {"index", playing.index},
        {"count", std::max(0, playing.amount)},     {"track", IsEmpty(playing.track) ? Json() : ToJson(playing.track)}};
}

std::string PlayingLine(const Playing& playing)
{
    const std::string state = ToString(playing.state);
    return IsEmpty(playing.track) ? state : state + ": " + TrackLine(playing.track);
}

Answer ToAnswer(const Playing& playing, const char* verb)
{
    Json json{{"verb", verb}};
    json.update(PlayingJson(playing));
    return {json, PlayingLine(playing)};
}

void AskOfTrack(Session& session, ipodkit::Request<void> request, const char* refusal)
{
    ipodkit::Result<void> done = std::move(request).Wait();
    const bool refused = !done && done.error().kind == ipodkit::ErrorKind::Refused && done.error().name.empty();
    if (refused) RequireTrack(*session.Ready().State());
    session.Taken(std::move(done), refusal);
}

void RefuseNothingLoaded()
{
    throw Failure(kNothingDone, "nothing is loaded; start with ipodctl play INDEX");
}

Playing RequireTrack(const ipodkit::PlayerState& state)
{
    RequireTrackReported(state);
    Playing playing = PlayingIn(state);
    if (playing.index < 0 || IsEmpty(playing.track)) RefuseNothingLoaded();
    return playing;
}
}  // namespace ctl
