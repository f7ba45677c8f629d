/// @file
/// The command lines of ipod-simulator and ipod-make-samples.
#pragma once

#include <cli/help.h>
#include <ipodsim.h>

#include <CLI/CLI.hpp>
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

/// Adds a program's options to an empty parser. @p arguments must outlive it.
void AddOptions(CLI::App& app, Arguments& arguments);
void AddOptions(CLI::App& app, SampleArguments& arguments);

/// The kinds of faults, for the help and the manual page.
std::vector<cli::HelpRow> FaultRows();
}  // namespace ipodsim
