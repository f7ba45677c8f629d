/// @file
/// The command lines of ipod-simulator and ipod-make-samples.
#pragma once

#include <cli/help.h>
#include <cli/program.h>
#include <ipodsim.h>

#include <string>
#include <vector>

namespace ipodsim
{
struct Arguments
{
    Options options;
    bool noCache = false;
    bool verbose = false;
    std::string scenarioFile;
    std::vector<std::string> faults;
};

struct SampleArguments
{
    std::string folder;
    int count = 0;
};

/// The command line of a program, which fills @p arguments.
cli::CommandLine CommandLineOf(Arguments& arguments);
cli::CommandLine CommandLineOf(SampleArguments& arguments);

/// The kinds of faults, for the help and the manual page.
std::vector<cli::HelpRow> FaultRows();
}  // namespace ipodsim
