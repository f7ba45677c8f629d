// ipod-simulator: the simulated iPod service on the session bus, and the command that tells it what shall happen.
#include <glib-unix.h>
#include <ipodsim.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "tell.h"

namespace
{
gboolean End(gpointer ended)
{
    *static_cast<std::atomic<bool>*>(ended) = true;
    g_main_context_wakeup(nullptr);
    return G_SOURCE_CONTINUE;
}

void WriteLine(std::FILE* out, const std::string& line)
{
    std::fprintf(out, "%s\n", line.c_str());
    std::fflush(out);
}

// Until the user ends it or the bus goes away, which is a failure.
void Serve(ipodsim::Options options, bool verbose)
{
    // Flags rather than a loop, which would forget that it was told to quit before it ran.
    std::atomic<bool> ended{false};
    std::atomic<bool> busLost{false};
    g_unix_signal_add(SIGINT, End, &ended);
    g_unix_signal_add(SIGTERM, End, &ended);
    options.busLost = [&]
    {
        busLost = true;
        End(&ended);
    };
    if (verbose) options.logRequest = [](const std::string& line) { WriteLine(stderr, line); };
    const ipodsim::Simulator simulator(std::move(options));
    WriteLine(stdout, "ready: " + simulator.Summary() + " on " + ipodsim::kServiceName);
    while (!ended) g_main_context_iteration(nullptr, TRUE);
    if (busLost) throw std::runtime_error("the session bus went away");
}
}  // namespace

int main(int argc, char** argv)
{
    CLI::App app("Simulated iPod service on the session bus", "ipod-simulator");
    ipodsim::Options options;
    bool verbose = false;
    app.set_version_flag("--version", "ipod-simulator " IPOD_VERSION);
    app.add_option("folder", options.musicFolder, "Folder with music; without it a small built-in library is used");
    app.add_option("--name", options.deviceName, "Name of the device")->capture_default_str();
    app.add_option("--speed", options.speed, "Factor of the clock, above 0")->capture_default_str();
    app.add_option("--seed", options.seed, "Seed of shuffled orders")->capture_default_str();
    app.add_flag("--verbose", verbose, "Write a line for each request");
    app.footer(
        "Examples:\n"
        "  ipod-simulator ~/Music\n"
        "  ipod-simulator --speed 10 --verbose\n"
        "  ipod-simulator tell call --status ringing --name \"Li Lei\" --number 123");
    ipodsim::AddTell(app);
    try
    {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) Serve(std::move(options), verbose);
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ipod-simulator: %s\n", error.what());
        return 1;
    }
}
