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
struct LoopUnref
{
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
};

gboolean Quit(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
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
    const std::unique_ptr<GMainLoop, LoopUnref> loop(g_main_loop_new(nullptr, FALSE));
    g_unix_signal_add(SIGINT, Quit, loop.get());
    g_unix_signal_add(SIGTERM, Quit, loop.get());
    std::atomic<bool> busLost{false};
    options.busLost = [&]
    {
        busLost = true;
        g_main_loop_quit(loop.get());
    };
    if (verbose) options.logRequest = [](const std::string& line) { WriteLine(stderr, line); };
    const ipodsim::Simulator simulator(std::move(options));
    WriteLine(stdout, "ready: " + simulator.Summary() + " on " + ipodsim::kServiceName);
    g_main_loop_run(loop.get());
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
