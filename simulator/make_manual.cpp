// Generates the manual page of a program: make-manual ipod-simulator|ipod-make-samples PAGE >OUTPUT
#include <cli/reference.h>

#include "command_line.h"

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    CLI::App app;
    ipodsim::Arguments arguments;
    ipodsim::SampleArguments samples;
    if (argv[1] == std::string("ipod-simulator"))
        ipodsim::AddOptions(app, arguments);
    else
        ipodsim::AddOptions(app, samples);
    return cli::MakeReference(app, {{"@faults", ipodsim::FaultRows()}}, "man", argv[2]);
}
