/// @file
/// The verbs of the command line: their definition, the validators of their arguments, and the table of each subject.
#pragma once

#include <cli/validators.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "events/follow.h"
#include "session/session.h"

namespace ctl
{
/// Runs a verb. Long-running verbs write their own output and return an answer without JSON.
using Run = std::function<Answer(Context&)>;

struct Verb
{
    const char* name;
    const char* summary;
    const char* examples;            ///< shown under the verb's --help, one per line
    Run (*build)(CLI::App& app);     ///< adds the verb's arguments; the returned function reads them when it runs
    const char* group = "Commands";  ///< title of its section in the help
};

/// Accepts decimal integers from @p least to kLargestIndex. For transform(), like cli::NumberUpTo().
CLI::Validator WholeNumber(int least);

/// Accepts one of @p words.
CLI::Validator OneOf(const std::vector<std::string>& words);

/// Accepts a number of seconds between 0.001 and @p most.
CLI::Validator Seconds(double most = 4000000);

/// Allocates shared storage for a command-line argument: the parser writes it, the verb reads it.
template <class T>
std::shared_ptr<T> Argument(T value = T())
{
    return std::make_shared<T>(std::move(value));
}

/// Adds --count and --timeout.
/// @param goal  the options that define the goal, named in the help of --timeout
void AddLimits(CLI::App& app, Limits& limits, const std::string& goal);

/// Adds @p verbs to @p app as subcommands.
/// @return  a function that runs the verb selected during parsing
Run AddVerbs(CLI::App& app, const std::vector<Verb>& verbs);

/// Returns the program's arguments as CLI11 expects them: without the program name, in reverse order.
/// @throws Failure  kUsage if @p app has no such command
std::vector<std::string> ToParse(int argc, char** argv, const CLI::App& app);

/// @name One table per subject
/// @{
std::vector<Verb> StatusVerbs();        ///< status, info, art
std::vector<Verb> TransportVerbs();     ///< play, pause, toggle, stop, next, previous, seek, ff, rw
std::vector<Verb> ModeVerbs();          ///< shuffle, repeat
std::vector<Verb> ListVerbs();          ///< ls, search, update-list
std::vector<Verb> BrowseVerbs();        ///< cd
std::vector<Verb> BrowserVerbs();       ///< browse
std::vector<Verb> QueueVerbs();         ///< queue
std::vector<Verb> DeviceVerbs();        ///< devices, carplay, carlife, button, hub
std::vector<Verb> EventVerbs();         ///< events
std::vector<Verb> EapVerbs();           ///< eap
std::vector<Verb> SimVerbs();           ///< sim
std::vector<Verb> SharedMemoryVerbs();  ///< shm
std::vector<Verb> BenchVerbs();         ///< bench
std::vector<Verb> DoctorVerbs();        ///< doctor
std::vector<Verb> LayoutVerbs();        ///< fingerprint
std::vector<Verb> HelpVerbs();          ///< help
Verb SimCallsVerb();                    ///< calls, below sim
/// @}

/// Options that all commands accept.
struct Options
{
    bool json = false;
    ColorUse colors = ColorUse::Auto;
    Settings settings;
};

/// Adds the options and commands of ipodctl to an empty parser.
/// @param options  filled during parsing; must outlive @p app
/// @param arguments  what will be parsed: for a quick start, only the command that they choose has arguments; all
///                   commands have them if it is "help" or none is chosen
/// @return  a function that runs the parsed command
Run BuildProgram(CLI::App& app, Options& options, const std::vector<std::string>& arguments = {});
}  // namespace ctl
