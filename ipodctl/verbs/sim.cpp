// The simulator: what shall happen on it, and what it was asked.
#include "verbs/sim.h"

#include <algorithm>

#include "output/text.h"
#include "verbs/command_line.h"
#include "verbs/verbs.h"

namespace ctl
{
CLI::Option* AsNumber(CLI::Option* option, const std::vector<std::string>& words)
{
    const auto replace = [words](std::string& given)
    {
        const std::string wrong = OneOf(words)(given);
        if (!wrong.empty()) return wrong;
        given = std::to_string(std::find(words.begin(), words.end(), given) - words.begin());
        return std::string();
    };
    return option->transform(CLI::Validator(replace, "WORD"))
        ->description(option->get_description() + ": " + Listed(words));
}

CLI::Validator Utf8()
{
    const auto check = [](const std::string& text)
    {
        const bool valid = g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
        return valid ? std::string() : "'" + Printable(text) + "' is not valid UTF-8";
    };
    return {check, ""};
}

Answer Asked(const std::string& event)
{
    return {{{"verb", "sim " + event}}, ""};
}

namespace
{
Run BuildSim(CLI::App& app)
{
    std::vector<Verb> all;
    for (const auto verbs : {SimCallVerbs, SimDeviceVerbs, SimEapVerbs, SimTestVerbs})
        for (const Verb& verb : verbs()) all.push_back(verb);
    return AddVerbs(app, all);
}
}  // namespace

std::vector<Verb> SimVerbs()
{
    return {{"sim", "Trigger events on the simulator, inject faults, list calls",
             "ipodctl sim call --sequence ringing:3,active:10,disconnected --name \"Li Lei\"\n"
             "ipodctl sim battery --level 80 --charging\n"
             "ipodctl sim fault delay=500@GetPlayStatus/3\n"
             "ipodctl sim calls",
             BuildSim}};
}
}  // namespace ctl
