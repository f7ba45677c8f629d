// Phone calls and the battery of the simulated device.
#include <cstdint>
#include <sstream>

#include <ipodkit/types.h>

#include "output/text.h"
#include "verbs/sim.h"

namespace ctl
{
namespace
{
constexpr int kCallStates = 7;
constexpr double kLongest = 4000000;  // seconds

// What an option contributes to a dictionary, once it was given.
template <class Value>
struct Field
{
    const char* key;
    Value value{};
    CLI::Option* option = nullptr;
};

struct CallFields
{
    Field<std::string> number{"remote-id"};
    Field<std::string> name{"display-name"};
    Field<std::string> uuid{"call-uuid"};
    Field<std::string> book{"address-book-id"};
    Field<std::string> label{"label"};
    Field<std::uint32_t> status{"status"};
    Field<std::uint32_t> direction{"direction"};
    Field<std::uint32_t> service{"service"};
    Field<std::uint32_t> group{"conference-group"};
    Field<std::uint32_t> reason{"disconnect-reason"};
    Field<bool> conferenced{"is-conferenced"};
    Field<std::uint64_t> start{"start-timestamp"};
    std::string sequence;
};

void AddCallOptions(CLI::App& app, CallFields& call)
{
    call.number.option = app.add_option("--number", call.number.value, "Number or address of the other party");
    call.name.option = app.add_option("--name", call.name.value, "Its name");
    call.uuid.option = app.add_option("--uuid", call.uuid.value, "Identifier of the call");
    call.book.option = app.add_option("--book-id", call.book.value, "Entry of the address book");
    call.label.option = app.add_option("--label", call.label.value, "Kind of number: home, mobile, ...");
    for (const auto* text : {&call.number, &call.name, &call.uuid, &call.book, &call.label})
        text->option->check(Utf8());
    call.status.option =
        AsNumber(app.add_option("--status", call.status.value, "State of the call"), WordsOf<ipodkit::CallStatus>());
    call.direction.option =
        AsNumber(app.add_option("--direction", call.direction.value, "Direction"), WordsOf<ipodkit::CallDirection>());
    call.service.option =
        AsNumber(app.add_option("--service", call.service.value, "Kind of call"), WordsOf<ipodkit::CallService>());
    call.reason.option =
        AsNumber(app.add_option("--reason", call.reason.value, "Why the call ended"), WordsOf<ipodkit::CallEnd>());
    call.group.option = app.add_option("--group", call.group.value, "Conference group")->check(NumberUpTo(UINT32_MAX));
    call.conferenced.option =
        app.add_flag("--conferenced,!--not-conferenced", call.conferenced.value, "Part of a conference");
    call.start.option = app.add_option("--start", call.start.value, "Start, in seconds since 1970-01-01 UTC")
                            ->check(NumberUpTo(UINT64_MAX));
    app.add_option("--sequence", call.sequence,
                   "States with the seconds until the next one, such as ringing:3,active:10,held:2,disconnected")
        ->excludes(call.status.option);
}

Fields ToFields(const CallFields& call)
{
    Fields fields;
    for (const auto* text : {&call.number, &call.name, &call.uuid, &call.book, &call.label})
        if (text->option->count() != 0) fields.Add(text->key, g_variant_new_string(text->value.c_str()));
    for (const auto* number : {&call.status, &call.direction, &call.service, &call.group, &call.reason})
        if (number->option->count() != 0) fields.Add(number->key, g_variant_new_uint32(number->value));
    if (call.conferenced.option->count() != 0)
        fields.Add(call.conferenced.key, g_variant_new_boolean(call.conferenced.value ? TRUE : FALSE));
    if (call.start.option->count() != 0) fields.Add(call.start.key, g_variant_new_uint64(call.start.value));
    return fields;
}

struct Step
{
    std::uint32_t status = 0;
    double seconds = 0;
};

Step ToStep(const std::string& text)
{
    const std::size_t colon = text.find(':');
    const std::vector<std::string> states = WordsOf<ipodkit::CallStatus>();
    Step step;
    while (step.status < states.size() && states[step.status] != text.substr(0, colon)) ++step.status;
    if (step.status == states.size())
        throw Failure(kUsage, "--sequence: expected one of " + Listed(states) + ", got '" +
                                  Printable(text.substr(0, colon)) + "'");
    if (colon == std::string::npos) return step;
    char* end = nullptr;
    step.seconds = g_ascii_strtod(text.c_str() + colon + 1, &end);
    if (*end != '\0' || end == text.c_str() + colon + 1 || !(step.seconds >= 0 && step.seconds < kLongest))
        throw Failure(kUsage, "--sequence: expected seconds after the colon in '" + Printable(text) + "'");
    return step;
}

std::vector<Step> ToSteps(const std::string& sequence)
{
    std::vector<Step> steps;
    std::istringstream texts(sequence);
    for (std::string text; std::getline(texts, text, ',');) steps.push_back(ToStep(text));
    return steps;
}

GVariant* ToVariant(const std::vector<Step>& steps)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(ud)"));
    for (const Step& step : steps) g_variant_builder_add(&builder, "(ud)", step.status, step.seconds);
    return g_variant_builder_end(&builder);
}

Run BuildCall(CLI::App& app)
{
    const auto call = Argument<CallFields>();
    AddCallOptions(app, *call);
    return [call](Context& context)
    {
        const std::vector<Step> steps = ToSteps(call->sequence);
        Fields fields = ToFields(*call);
        if (fields.Empty() && steps.empty())
            throw Failure(kUsage, "the event is empty", "give --status or another field");
        if (steps.empty())
            AskSimulator(context.session, "PhoneCall", g_variant_new("(@a{sv})", fields.Take()));
        else
            AskSimulator(context.session, "CallSequence",
                         g_variant_new("(@a{sv}@a(ud))", fields.Take(), ToVariant(steps)));
        return Asked("call");
    };
}

struct BatteryFields
{
    Field<std::uint32_t> level{"level"};
    Field<std::uint32_t> status{"charging-status"};
};

// Nothing at all would be no event, and of several states only one is true.
void RequireOne(const CLI::Option* level, const CLI::Option* status)
{
    if (level->count() + status->count() == 0)
        throw Failure(kUsage, "the event is empty", "give --level or a charging state");
    if (status->count() > 1)
        throw Failure(kUsage, "only one of --disabled, --charging, --charged and --discharging can be given");
}

Run BuildBattery(CLI::App& app)
{
    const auto battery = Argument<BatteryFields>();
    battery->level.option = app.add_option("--level", battery->level.value, "Percent; values above 100 are passed on")
                                ->check(NumberUpTo(UINT32_MAX));
    battery->status.option = app.add_flag("--disabled{0},--charging{1},--charged{2},--discharging{3}",
                                          battery->status.value, "Charging state")
                                 ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    return [battery](Context& context)
    {
        RequireOne(battery->level.option, battery->status.option);
        Fields fields;
        for (const auto* field : {&battery->level, &battery->status})
            if (field->option->count() != 0) fields.Add(field->key, g_variant_new_uint32(field->value));
        AskSimulator(context.session, "Battery", g_variant_new("(@a{sv})", fields.Take()));
        return Asked("battery");
    };
}
}  // namespace

std::vector<Verb> SimCallVerbs()
{
    return {{"call", "Report a phone call, once or as a sequence of states",
             "ipodctl sim call --status ringing --direction incoming --name \"Li Lei\" --number 123\n"
             "ipodctl sim call --sequence ringing:3,active:10,held:2,active:5,disconnected --name \"Li Lei\"",
             BuildCall},
            {"battery", "Report the state of the battery", "ipodctl sim battery --level 80 --charging", BuildBattery}};
}
}  // namespace ctl
