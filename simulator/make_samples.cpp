// ipod-make-samples: a folder of short, tagged audio files with covers.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "command_line.h"
#include "samples/samples.h"

int main(int argc, char** argv)
{
    CLI::App app("Write short sample files with tags and covers: FLAC, Ogg Vorbis, and MP3", "ipod-make-samples");
    std::string folder;
    app.set_version_flag("--version", "ipod-make-samples " IPOD_VERSION);
    app.add_option("folder", folder, "Output folder; created if missing")
        ->required()
        ->check([](const std::string& name) { return name.empty() ? "expected a non-empty name" : ""; });
    int count = 0;
    app.add_option("--count", count, "Write this many one-second files instead, for benchmarks")
        ->check(CLI::Range(1, 1000000));
    app.footer(
        "Examples:\n  ipod-make-samples /tmp/music && ipod-simulator /tmp/music\n"
        "  ipod-make-samples --count 50000 /tmp/many");
    try
    {
        app.parse(argc, argv);
        std::printf("%d files in %s\n",
                    count > 0 ? ipodsim::MakeManySamples(folder, count) : ipodsim::MakeSamples(folder), folder.c_str());
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        return ipodsim::ReportParsing(app, error);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ipod-make-samples: %s\n", ipodsim::Printable(error.what()).c_str());
        return 1;
    }
}
