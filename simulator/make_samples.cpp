// ipod-make-samples: a folder of short, tagged audio files with covers.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "samples.h"

int main(int argc, char** argv)
{
    CLI::App app("Writes short sample files with tags and covers: FLAC, Ogg Vorbis and MP3", "ipod-make-samples");
    std::string folder;
    app.set_version_flag("--version", "ipod-make-samples " IPOD_VERSION);
    app.add_option("folder", folder, "Folder to write to; it is made when it is missing")->required();
    app.footer("Example:\n  ipod-make-samples /tmp/music && ipod-simulator /tmp/music");
    CLI11_PARSE(app, argc, argv);
    try
    {
        std::printf("%d files in %s\n", ipodsim::MakeSamples(folder), folder.c_str());
        return 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ipod-make-samples: %s\n", error.what());
        return 1;
    }
}
