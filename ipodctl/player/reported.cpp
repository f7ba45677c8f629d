#include "player/told.h"

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
    bool (*isAnswered)(const PlayerState& state);
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

// What events tell by themselves, also when nothing is answered, stands last: ToldNothing() leaves it out.
constexpr Question kAll[] = {
    kTrack,
    kIndex,
    About<&PlayerState::status, &Commands::PlayStatus>("the state"),
    About<&PlayerState::shuffle, &Commands::Shuffle>("shuffle"),
    About<&PlayerState::repeat, &Commands::Repeat>("repeat"),
    About<&PlayerState::queueSize, &Commands::PlayingCount>("the queue"),
    About<&PlayerState::deviceCount, &Commands::DeviceCount>("the devices"),
    About<&PlayerState::position, &Commands::Position>("the position"),
};

// The state says that there is no answer, but not why: asking again does.
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

bool ToldNothing(const PlayerState& state)
{
    return std::none_of(std::begin(kAll), std::prev(std::end(kAll)),
                        [&state](const Question& question) { return question.isAnswered(state); });
}

// Who has no device has nothing to tell.
bool HasDevice(const PlayerState& state)
{
    return state.deviceCount != 0;
}
}  // namespace

std::string NotTold(Session& session, const PlayerState& state)
{
    std::vector<const Question*> open;
    std::string names;
    for (const Question& question : kAll)
    {
        if (question.isAnswered(state)) continue;
        names += (open.empty() ? "" : ", ") + std::string(question.what);
        open.push_back(&question);
    }
    if (open.empty() || !HasDevice(state)) return {};
    if (ToldNothing(state)) open.front()->askAgain(session);
    return "the service did not tell " + names + ": " + Reason(session, *open.front());
}

void RequireTrackTold(Session& session, const PlayerState& state)
{
    for (const Question* question : {&kTrack, &kIndex})
    {
        if (question->isAnswered(state) || !HasDevice(state)) continue;
        question->askAgain(session);
        throw Failure(kNothingDone,
                      std::string("the service did not tell ") + question->what + ", but does now; try again");
    }
}
}  // namespace ctl
