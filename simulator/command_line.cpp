#include "command_line.h"

#include <cli/program.h>
#include <cli/validators.h>
#include <glib.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <limits>
#include <stdexcept>

#include "actions/action.h"
#include "faults/faults.h"
#include "faults/nearest.h"
#include "playback/clock.h"

namespace ipodsim
{
namespace
{
// Each check returns the expectation, or an empty string if the value is valid.
std::string CheckSpeed(const std::string& text)
{
    const std::optional<double> speed = cli::Parsed<double>(text);
    const bool fits = speed && *speed >= kSlowest && *speed <= kFastest;
    return fits ? "" : cli::NotBetween("a number", "0.001", "10000", text);
}

std::string CheckDeviceName(const std::string& name)
{
    const bool valid = g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) != FALSE;
    return valid ? "" : "expected UTF-8 text, got '" + name + "'";
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

void AddMusicOptions(CLI::App& app, Arguments& arguments)
{
    Options& options = arguments.options;
    app.add_option("folder", options.musicFolder,
                   "Music folder; each subfolder is a device. Without it, one device has a small built-in library")
        ->check(cli::NonEmpty());
    app.add_flag("--one-device", options.oneDevice, "Put everything below the folder on one device");
    app.add_option("--name", options.deviceName, "Name, in UTF-8, of the device with the files directly in the folder")
        ->type_name("NAME")
        ->check(cli::NonEmpty())
        ->check(CheckDeviceName)
        ->capture_default_str();
    app.add_flag("--no-cache", arguments.noCache, "Scan every file and store no index");
}

std::string SimulatorFooter()
{
    // The section begins with an empty line, as does the footer.
    return cli::HelpSection("Faults", FaultRows()).substr(1) +
           "\n"
           "Examples:\n"
           "  ipod-simulator ~/Devices\n"
           "  ipod-simulator --one-device ~/Music\n"
           "  ipod-simulator --speed 10 --scenario drive.json\n"
           "  ipod-simulator --fault delay=500@GetPlayStatus/3 --fault no-reply@Next\n"
           "\n"
           "To trigger events in a running simulator, use ipodctl sim.";
}
void AddOptions(CLI::App& app, Arguments& arguments)
{
    Options& options = arguments.options;
    cli::Prepare(app, "ipod-simulator", "Simulates the iPod service on the session bus.");
    AddMusicOptions(app, arguments);
    app.add_option(
           "--speed", options.speed,
           "Speed of the clock, between 0.001 and 10000; at 10, tracks and scenarios take a tenth of their time")
        ->type_name("FACTOR")
        ->check(CheckSpeed)
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Seed for shuffling; the same seed gives the same order")
        ->type_name("N")
        ->transform(cli::NumberUpTo(std::numeric_limits<unsigned>::max()))
        ->capture_default_str();
    app.add_option("--scenario", arguments.scenarioFile,
                   "Run the timed actions in a JSON file once everything is ready")
        ->type_name("FILE")
        ->check(cli::NonEmpty());
    app.add_option(
           "--fault", arguments.faults,
           "Inject a fault: KIND[=PARAMETER][@MEMBER][/COUNT]. MEMBER is a method or signal, by default every "
           "one that the kind fits; COUNT limits how many times it applies, by default without limit. May be repeated")
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
    cli::Prepare(app, "ipod-make-samples",
                 "Writes a few short melodies with tags and covers, as FLAC, Ogg Vorbis, and MP3.");
    app.add_option("folder", arguments.folder, "Output folder; created if missing")->required()->check(cli::NonEmpty());
    app.add_option("--count", arguments.count,
                   "Write this many one-second files instead, for benchmarks; at most 1000000")
        ->type_name("N")
        ->transform(cli::NumberUpTo(1000000, 1));
    app.footer(
        "Examples:\n"
        "  ipod-make-samples /tmp/music && ipod-simulator /tmp/music\n"
        "  ipod-make-samples --count 50000 /tmp/many");
}
}  // namespace

std::vector<cli::HelpRow> FaultRows()
{
    std::vector<cli::HelpRow> rows;
    for (const auto& [name, meaning] : FaultHelp()) rows.push_back({name, meaning});
    return rows;
}

cli::CommandLine CommandLineOf(Arguments& arguments)
{
    return [&arguments](CLI::App& app) { AddOptions(app, arguments); };
}

cli::CommandLine CommandLineOf(SampleArguments& arguments)
{
    return [&arguments](CLI::App& app) { AddOptions(app, arguments); };
}
}  // namespace ipodsim
