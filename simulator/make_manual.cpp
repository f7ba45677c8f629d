// Generates the manual page of a program: make-manual ipod-simulator|ipod-make-samples PAGE >OUTPUT
#include <cli/reference.h>

#include "command_line.h"

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    ipodsim::Arguments arguments;
    ipodsim::SampleArguments samples;
    const bool simulator = argv[1] == std::string("ipod-simulator");
    return cli::MakeReference(simulator ? CommandLineOf(arguments) : CommandLineOf(samples),
                              {{"@faults", ipodsim::FaultRows()}}, "man", argv[2]);
}
