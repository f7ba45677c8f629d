#include "follow.h"

#include <algorithm>
#include <cstring>

#include "loop.h"
#include "registered.h"
#include "text.h"

namespace ctl
{
namespace
{
constexpr int kWidestBar = 42;
constexpr int kTimesWidth = 20;

bool IsProgress(const Event& event)
{
    return std::strcmp(event.name, "progress") == 0;
}

// On a terminal, progress is a bar that stays in its line.
void Show(Session& session, Output& out, const Event& event)
{
    session.FlushLog();
    const Answer answer = ToAnswer(event);
    if (out.json() || !out.terminal() || !IsProgress(event))
        return out.Line(answer.json, Cut(answer.text, out.width()));
    const int width = std::clamp(out.width() - kTimesWidth, 4, kWidestBar);
    out.Transient(Bar(event.fields["position_ms"], event.fields["length_ms"], width) + " " + event.text);
}
}  // namespace

void AddLimits(CLI::App& app, Limits& limits)
{
    app.add_option("--count", limits.count, "End after so many events")->check(WholeNumber(1));
    app.add_option("--timeout", limits.seconds, "End after so many seconds; exit code 1 if --count was not reached")
        ->check(CLI::PositiveNumber);
}

Answer Follow(Context& context, const Limits& limits, const std::function<bool(const Event&)>& wanted)
{
    IQBXIpodPlayer& player = context.session.Player();
    Loop loop(context.session);
    int seen = 0;
    EventListener listener(
        [&](const Event& event)
        {
            if (!wanted(event) || (limits.count > 0 && seen >= limits.count)) return;
            loop.Guard([&] { Show(context.session, context.out, event); });
            if (++seen == limits.count) loop.Finish();
        });
    const Registered registered(player, listener);
    const Ending ending = loop.Run(limits.seconds);
    context.out.Finish();
    if (ending == Ending::TimedOut && limits.count > 0)
        throw Failure(kNothingDone, "only " + std::to_string(seen) + " of " + std::to_string(limits.count) +
                                        " events came within the time; see --timeout");
    return {};
}
}  // namespace ctl
