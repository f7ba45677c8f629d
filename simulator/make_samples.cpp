// ipod-make-samples: a folder of short, tagged audio files with covers.
#include <cli/usage.h>
#include <ipodnames/nearest.h>

#include <cstdio>

#include "command_line.h"
#include "samples/samples.h"

int main(int argc, char** argv)
{
    CLI::App app;
    ipodsim::SampleArguments arguments;
    ipodsim::AddOptions(app, arguments);
    try
    {
        app.parse(argc, argv);
        const auto& [folder, count] = arguments;
        const int made = count > 0 ? ipodsim::MakeManySamples(folder, count) : ipodsim::MakeSamples(folder);
        std::printf("%d files in %s\n", made, folder.c_str());
        return cli::FlushOutput("ipod-make-samples");
    }
    catch (const CLI::ParseError& error)
    {
        return cli::Report(app, error, ipodnames::Nearest);
    }
    catch (const std::exception& error)
    {
        cli::PrintError("ipod-make-samples", error.what());
        return 1;
    }
}
