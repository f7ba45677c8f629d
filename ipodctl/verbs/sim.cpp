// The simulator: what shall happen on it, and what it was asked.
#include "verbs/sim.h"

#include <algorithm>

#include "output/text.h"
#include "verbs/command_line.h"
#include "verbs/verbs.h"

namespace ctl
{
CLI::Validator OneOf(std::vector<std::string> words)
{
    std::string listed;
    for (const std::string& word : words) listed += (listed.empty() ? "" : ", ") + word;
    const auto replace = [words = std::move(words), listed](std::string& given)
    {
        const auto found = std::find(words.begin(), words.end(), given);
        if (found == words.end()) return "expected one of " + listed + ", not '" + given + "'";
        given = std::to_string(found - words.begin());
        return std::string();
    };
    return CLI::Validator(replace, listed);
}

CLI::Validator Utf8()
{
    const auto check = [](const std::string& text)
    {
        const bool valid = g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
        return valid ? std::string() : "'" + Printable(text) + "' is no text in UTF-8";
    };
    return {check, ""};
}

std::vector<std::string> WordsOf(std::string (*name)(int), int count)
{
    std::vector<std::string> words;
    words.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number) words.push_back(name(number));
    return words;
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
    return {{"sim", "Let something happen on the simulator, or see what it was asked",
             "ipodctl sim call --sequence ringing:3,active:10,disconnected --name \"Li Lei\"\n"
             "ipodctl sim battery --level 80 --charging\n"
             "ipodctl sim fault delay=500@GetPlayStatus/3\n"
             "ipodctl sim calls",
             BuildSim}};
}
}  // namespace ctl
