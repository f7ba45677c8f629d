// ipod-make-samples: a folder of short, tagged audio files with covers.
#include <cli/program.h>
#include <ipodnames/nearest.h>

#include <cstdio>

#include "command_line.h"
#include "samples/samples.h"

int main(int argc, char** argv)
{
    ipodsim::SampleArguments arguments;
    const auto write = [&arguments]
    {
        const auto& [folder, count] = arguments;
        const int made = count > 0 ? ipodsim::MakeManySamples(folder, count) : ipodsim::MakeSamples(folder);
        std::printf("%d files in %s\n", made, folder.c_str());
        return cli::FlushOutput("ipod-make-samples");
    };
    return cli::RunProgram(argc, argv, CommandLineOf(arguments), write, ipodnames::Nearest);
}
