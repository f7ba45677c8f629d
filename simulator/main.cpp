// ipod-simulator: the simulated iPod service on the session bus.
#include <cli/program.h>
#include <cli/text.h>
#include <glib-unix.h>
#include <ipodnames/nearest.h>
#include <ipodsim.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "actions/scenario.h"
#include "command_line.h"
#include "progress_bar.h"

namespace
{
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
    options.warn = [&bar](const std::string& line) { bar.WriteLine("warning: " + cli::PrintableWithHint(line)); };
    options.progress = [&bar](std::size_t done, std::size_t all) { bar.Show(done, all); };
    options.scenarioEnded = [](const std::string& title)
    { Print("scenario ended" + (title.empty() ? "" : ": " + cli::Printable(title))); };
    options.busLost = [&stop]
    {
        stop.busLost = true;
        End(&stop);
    };
    if (verbose) options.logRequest = [&bar](const std::string& line) { bar.WriteLine(cli::Printable(line)); };
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

void Run(ipodsim::Simulator& simulator, const ipodsim::Arguments& arguments, const std::string& scenario,
         const StopFlags& stop, ipodsim::ProgressBar& bar)
{
    for (const std::string& fault : arguments.faults) simulator.Do("fault", fault);
    if (!WaitUntilIndexed(simulator, stop)) return;
    bar.Clear();
    Print("ready: " + simulator.Summary() + " on " + ipodsim::kServiceName);
    if (!scenario.empty()) simulator.RunScenario(scenario);
    while (!stop.end) g_main_context_iteration(nullptr, TRUE);
}

// Runs until the user stops it or the bus disconnects, which is a failure.
void Serve(ipodsim::Arguments arguments)
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

}  // namespace

int main(int argc, char** argv)
{
    ipodsim::Arguments arguments;
    const auto serve = [&arguments]
    {
        Serve(std::move(arguments));
        return 0;
    };
    return cli::RunProgram(argc, argv, CommandLineOf(arguments), serve, ipodnames::Nearest);
}
