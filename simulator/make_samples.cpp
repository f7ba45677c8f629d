// ipod-make-samples: a folder of short, tagged audio files with covers.
#include <cstdio>

#include "command_line.h"
#include "printable.h"
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
