// ipod-simulator: the simulated iPod service on the session bus.
#include <glib-unix.h>
#include <ipodsim.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "actions/scenario.h"
#include "command_line.h"
#include "printable.h"
#include "progress_bar.h"

namespace
{
struct Arguments
{
    ipodsim::Options options;
    bool noCache = false;
    bool verbose = false;
    std::string scenarioFile;
    std::vector<std::string> faults;
};

// Set from outside the main loop.
struct StopFlags
{
    std::atomic<bool> end{false};
    std::atomic<bool> busLost{false};
};

gboolean End(gpointer stop)
{
    static_cast<StopFlags*>(stop)->end = true;
    g_main_context_wakeup(nullptr);
    return G_SOURCE_CONTINUE;
}

// Write errors are ignored: a closed standard output must not end the simulator.
void Print(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string ReadWhole(const std::string& name)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"), &std::fclose);
    std::string text(ipodsim::kMostJson + 1, '\0');
    text.resize(file == nullptr ? 0 : std::fread(text.data(), 1, text.size(), file.get()));
    if (file == nullptr || std::ferror(file.get()) != 0)
        throw std::runtime_error(name + ": " + std::generic_category().message(errno));
    return text;
}

std::string ReadScenario(const std::string& name)
{
    std::string text = ReadWhole(name);
    try
    {
        ipodsim::ParseScenario(text);
    }
    catch (const std::runtime_error& error)
    {
        throw std::runtime_error(name + ": " + error.what());
    }
    return text;
}

// A relative XDG_CACHE_HOME is invalid and ignored.
std::string CacheFolder()
{
    const std::string folder = g_get_user_cache_dir();
    const bool valid = g_path_is_absolute(folder.c_str()) != FALSE;
    return (valid ? folder : std::string(g_get_home_dir()) + "/.cache") + "/ipod-simulator";
}

void SetCallbacks(ipodsim::Options& options, ipodsim::ProgressBar& bar, StopFlags& stop, bool verbose)
{
    options.warn = [&bar](const std::string& line) { bar.WriteLine("warning: " + ipodsim::PrintableWithHint(line)); };
    options.progress = [&bar](std::size_t done, std::size_t all) { bar.Show(done, all); };
    options.scenarioEnded = [](const std::string& title) { Print("scenario ended: " + ipodsim::Printable(title)); };
    options.busLost = [&stop]
    {
        stop.busLost = true;
        End(&stop);
    };
    if (verbose) options.logRequest = [&bar](const std::string& line) { bar.WriteLine(ipodsim::Printable(line)); };
}

// Polls, because scanning ends on another thread.
bool WaitUntilIndexed(const ipodsim::Simulator& simulator, const StopFlags& stop)
{
    constexpr guint kPollMs = 20;
    const guint timer = g_timeout_add(
        kPollMs, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!stop.end && !simulator.Indexed()) g_main_context_iteration(nullptr, TRUE);
    g_source_remove(timer);
    return !stop.end;
}

void Run(ipodsim::Simulator& simulator, const Arguments& arguments, const std::string& scenario, const StopFlags& stop,
         ipodsim::ProgressBar& bar)
{
    for (const std::string& fault : arguments.faults) simulator.Do("fault", fault);
    if (!WaitUntilIndexed(simulator, stop)) return;
    bar.Clear();
    Print("ready: " + simulator.Summary() + " on " + ipodsim::kServiceName);
    if (!scenario.empty()) simulator.RunScenario(scenario);
    while (!stop.end) g_main_context_iteration(nullptr, TRUE);
}

// Runs until the user stops it or the bus disconnects, which is a failure.
void Serve(Arguments arguments)
{
    StopFlags stop;
    g_unix_signal_add(SIGINT, End, &stop);
    g_unix_signal_add(SIGTERM, End, &stop);
    g_unix_signal_add(SIGHUP, End, &stop);
    std::signal(SIGPIPE, SIG_IGN);
    ipodsim::ProgressBar bar;
    SetCallbacks(arguments.options, bar, stop, arguments.verbose);
    arguments.options.mayCrash = true;
    arguments.options.waitForIndex = false;
    if (!arguments.noCache) arguments.options.cacheFolder = CacheFolder();
    const std::string scenario = arguments.scenarioFile.empty() ? "" : ReadScenario(arguments.scenarioFile);
    ipodsim::Simulator simulator(arguments.options);
    Run(simulator, arguments, scenario, stop, bar);
    if (stop.busLost) throw std::runtime_error("lost the connection to the session bus");
}

void AddOptions(CLI::App& app, Arguments& arguments)
{
    ipodsim::Options& options = arguments.options;
    app.set_version_flag("--version", "ipod-simulator " IPOD_VERSION);
    app.add_option("folder", options.musicFolder,
                   "Music folder; each subfolder is a device. Without it, one device with a small built-in library")
        ->check(ipodsim::CheckNotEmpty);
    app.add_flag("--one-device", options.oneDevice, "Put everything below the folder on one device");
    app.add_option("--name", options.deviceName, "Name of the device with the files directly in the folder")
        ->check(ipodsim::CheckDeviceName)
        ->capture_default_str();
    app.add_flag("--no-cache", arguments.noCache, "Scan every file and store no index");
    app.add_option("--speed", options.speed, "Speed of the clock, between 0.001 and 10000")
        ->check(ipodsim::CheckSpeed)
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Seed for shuffling")->check(ipodsim::CheckSeed)->capture_default_str();
    app.add_option("--scenario", arguments.scenarioFile, "Run the timed actions in a JSON file")
        ->check(ipodsim::CheckNotEmpty);
    app.add_option("--fault", arguments.faults, "Inject a fault: KIND[=PARAMETER][@MEMBER][/COUNT]; may be repeated")
        ->check(ipodsim::CheckFault)
        ->allow_extra_args(false);
    app.add_flag_callback(
        "--print-schema",
        []
        {
            std::fputs(ipodsim::ScenarioSchema().c_str(), stdout);
            throw CLI::Success();
        },
        "Print the JSON schema of scenarios and exit");
    app.add_flag("--verbose", arguments.verbose, "Log each request and its reply");
    app.footer(
        "Examples:\n"
        "  ipod-simulator ~/Devices\n"
        "  ipod-simulator --one-device ~/Music\n"
        "  ipod-simulator --speed 10 --scenario drive.json\n"
        "  ipod-simulator --fault delay=500@GetPlayStatus/3 --fault no-reply@Next\n"
        "\n"
        "To trigger events in a running simulator, use ipodctl sim.");
}
}  // namespace

int main(int argc, char** argv)
{
    CLI::App app("Simulated iPod service on the session bus", "ipod-simulator");
    Arguments arguments;
    AddOptions(app, arguments);
    try
    {
        app.parse(argc, argv);
        Serve(std::move(arguments));
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        return ipodsim::ReportParsing(app, error);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ipod-simulator: %s\n", ipodsim::PrintableWithHint(error.what()).c_str());
        return 1;
    }
}
