#include "command_line.h"

#include <cli/help.h>
#include <glib.h>
#include <ipodnames/nearest.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "actions/action.h"
#include "faults/faults.h"
#include "faults/nearest.h"
#include "playback/clock.h"
#include "printable.h"

namespace ipodsim
{
namespace
{
constexpr int kWidth = 80;

// Each check returns the expectation, or an empty string if the value is valid.
std::string CheckSpeed(const std::string& text)
{
    char* end = nullptr;
    const double speed = g_ascii_strtod(text.c_str(), &end);
    const bool whole = !text.empty() && end == text.c_str() + text.size();
    const bool fits = whole && speed >= kSlowest && speed <= kFastest;
    return fits ? "" : "expected a number between 0.001 and 10000, got '" + text + "'";
}

template <unsigned Least, unsigned Most>
std::string CheckInteger(const std::string& text)
{
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    if (whole && number >= Least && number <= Most) return {};
    return "expected an integer between " + std::to_string(Least) + " and " + std::to_string(Most) + ", got '" + text +
           "'";
}

std::string CheckNotEmpty(const std::string& name)
{
    return name.empty() ? "expected a non-empty name" : "";
}

std::string CheckDeviceName(const std::string& name)
{
    const bool valid = g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) != FALSE;
    return valid ? CheckNotEmpty(name) : "expected UTF-8 text, got '" + name + "'";
}

std::string CheckFault(const std::string& fault)
{
    try
    {
        ParseFault(fault);
        return {};
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
}

void PrintSchema()
{
    std::fputs(ScenarioSchema().c_str(), stdout);
    throw CLI::Success();
}

void Prepare(CLI::App& app, const char* name, const char* summary)
{
    app.name(name);
    app.description(summary);
    app.formatter(std::make_shared<cli::HelpFormatter>(kWidth));
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", std::string(name) + " " IPOD_VERSION, "Print the version and exit");
}

void AddMusicOptions(CLI::App& app, Arguments& arguments)
{
    Options& options = arguments.options;
    app.add_option("folder", options.musicFolder,
                   "Music folder; each subfolder is a device. Without it, one device has a small built-in library")
        ->check(CheckNotEmpty);
    app.add_flag("--one-device", options.oneDevice, "Put everything below the folder on one device");
    app.add_option("--name", options.deviceName, "Name, in UTF-8, of the device with the files directly in the folder")
        ->type_name("NAME")
        ->check(CheckDeviceName)
        ->capture_default_str();
    app.add_flag("--no-cache", arguments.noCache, "Scan every file and store no index");
}

std::string SimulatorFooter()
{
    // The section begins with an empty line, as does the footer.
    return cli::HelpSection("Faults", FaultRows(), kWidth).substr(1) +
           "\n"
           "Examples:\n"
           "  ipod-simulator ~/Devices\n"
           "  ipod-simulator --one-device ~/Music\n"
           "  ipod-simulator --speed 10 --scenario drive.json\n"
           "  ipod-simulator --fault delay=500@GetPlayStatus/3 --fault no-reply@Next\n"
           "\n"
           "To trigger events in a running simulator, use ipodctl sim.";
}
// The first word that the program does not accept, options first; empty if there is none.
std::string Unexpected(const CLI::App& app)
{
    const std::vector<std::string> words = app.remaining();
    const auto option = std::find_if(words.begin(), words.end(),
                                     [](const std::string& word) { return word.size() > 1 && word.front() == '-'; });
    return option != words.end() ? *option : words.empty() ? "" : words.front();
}

std::string SimilarOption(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    const std::string word = Unexpected(app);
    return word.rfind("--", 0) == 0 ? ipodnames::Nearest(word.substr(0, word.find('=')), names) : "";
}

// CLI11 gives the name of the option only in its message, before a colon or a blank.
std::string Explained(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string message = error.what();
    const std::string word = Unexpected(app);
    if (!word.empty()) return (word.front() == '-' ? "unknown option '" : "unexpected argument '") + word + "'";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        return "missing argument: " + message.substr(0, message.find(' '));
    const bool mismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
    return mismatch ? message.substr(0, message.find(':')) + ": missing value" : message;
}

int PrintRequested(const CLI::App& app, const CLI::ParseError& error)
{
    app.exit(error);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return 0;
    std::fprintf(stderr, "%s: cannot write to standard output: %s\n", app.get_name().c_str(), g_strerror(errno));
    return 1;
}
}  // namespace

std::vector<cli::HelpRow> FaultRows()
{
    std::vector<cli::HelpRow> rows;
    for (const auto& [name, meaning] : FaultHelp()) rows.push_back({name, meaning});
    return rows;
}

void AddOptions(CLI::App& app, Arguments& arguments)
{
    Options& options = arguments.options;
    Prepare(app, "ipod-simulator", "Simulates the iPod service on the session bus.");
    AddMusicOptions(app, arguments);
    app.add_option(
           "--speed", options.speed,
           "Speed of the clock, between 0.001 and 10000; at 10, tracks and scenarios take a tenth of their time")
        ->type_name("FACTOR")
        ->check(CheckSpeed)
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Seed for shuffling; the same seed gives the same order")
        ->type_name("N")
        ->check(CheckInteger<0, std::numeric_limits<unsigned>::max()>)
        ->capture_default_str();
    app.add_option("--scenario", arguments.scenarioFile,
                   "Run the timed actions in a JSON file once everything is ready")
        ->type_name("FILE")
        ->check(CheckNotEmpty);
    app.add_option("--fault", arguments.faults,
                   "Inject a fault: KIND[=PARAMETER][@MEMBER][/COUNT]. MEMBER is a method or signal, by default every "
                   "one that the kind fits; COUNT is how often, by default always. May be repeated")
        ->type_name("FAULT")
        ->check(CheckFault)
        ->allow_extra_args(false);
    app.add_flag_callback("--print-schema", PrintSchema,
                          "Print the JSON schema of scenarios, which describes all actions, and exit");
    app.add_flag("--verbose", arguments.verbose, "Log each request and its reply to standard error");
    app.footer(SimulatorFooter());
}

void AddOptions(CLI::App& app, SampleArguments& arguments)
{
    Prepare(app, "ipod-make-samples",
            "Writes a few short melodies with tags and covers, as FLAC, Ogg Vorbis, and MP3.");
    app.add_option("folder", arguments.folder, "Output folder; created if missing")->required()->check(CheckNotEmpty);
    app.add_option("--count", arguments.count,
                   "Write this many one-second files instead, for benchmarks; at most 1000000")
        ->type_name("N")
        ->check(CheckInteger<1, 1000000>);
    app.footer(
        "Examples:\n"
        "  ipod-make-samples /tmp/music && ipod-simulator /tmp/music\n"
        "  ipod-make-samples --count 50000 /tmp/many");
}

int ReportParsing(const CLI::App& app, const CLI::ParseError& error)
{
    constexpr int kUsage = 2;
    if (error.get_exit_code() == 0) return PrintRequested(app, error);
    const std::string similar = SimilarOption(app);
    const std::string hint =
        similar.empty() ? "try '" + app.get_name() + " --help'" : "did you mean '" + similar + "'?";
    std::fprintf(stderr, "%s: %s\nhint: %s\n", app.get_name().c_str(), Printable(Explained(app, error)).c_str(),
                 hint.c_str());
    return kUsage;
}
}  // namespace ipodsim
