// Follows the events of the service.
#include <algorithm>

#include "output/text.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
struct Choice
{
    Following following;
    std::vector<std::string> names;
    bool noProgress = false;

    bool Wants(const Event& event) const
    {
        if (!names.empty()) return std::find(names.begin(), names.end(), event.name) != names.end();
        return !noProgress || event.name != std::string("progress");
    }
};

void AddPresentation(CLI::App& app, Following& following)
{
    auto* const format = app.add_option("--format", following.format,
                                        "Format each event with a template such as '{{title}} {{duration(length)}}'; "
                                        "ipodctl(1) lists its fields and functions")
                             ->type_name("TEMPLATE")
                             ->check(cli::NonEmpty());
    app.add_option("--exec", following.command,
                   "Run this shell command for each event instead: its environment contains the fields "
                   "(IPOD_EVENT, IPOD_TITLE, ...), its standard input is the event as JSON")
        ->type_name("COMMAND")
        ->check(cli::NonEmpty())
        ->excludes(format);
}

Run BuildEvents(CLI::App& app)
{
    const auto choice = Argument<Choice>();
    app.add_option("event", choice->names, "Print only these events (default: all): " + Joined(EventNames(), ", "))
        ->check(OneOf(EventNames()));
    AddLimits(app, choice->following.limits, "--count or --until");
    app.add_option("--until", choice->following.limits.until, "End after the first event of this name")
        ->type_name("EVENT")
        ->check(OneOf(EventNames()));
    app.add_flag("--no-progress", choice->noProgress, "Ignore progress events, also in --count");
    app.add_flag("--wait", choice->following.wait, "Wait for the service if it is not running yet");
    AddPresentation(app, choice->following);
    return [choice](Context& context)
    {
        if (context.out.json() && !choice->following.format.empty())
            throw Failure(kUsage, "--json cannot be used with --format");
        Following following = choice->following;
        following.wanted = [choice](const Event& event) { return choice->Wants(event); };
        return Follow(context, following);
    };
}
}  // namespace

std::vector<Verb> EventVerbs()
{
    return {{"events", "Print events as they occur, until Ctrl-C",
             "ipodctl events\n"
             "ipodctl events track play-status --json\n"
             "ipodctl events --no-progress --timeout 60\n"
             "ipodctl events --until phone-call --exec 'notify-send \"$IPOD_CALLER\" \"$IPOD_CALL\"'\n"
             "ipodctl events track --format '{{ artist | default: \"?\" }} - {{ title }} {{ duration(length) }}'",
             BuildEvents}};
}
}  // namespace ctl
