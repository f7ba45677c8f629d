/// @file
/// The command lines of the programs: checks of values, as CLI11 wants them, and errors.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "printable.h"

namespace ipodsim
{
/// @name Checks
/// Each returns what was expected; nothing for a valid value.
/// @{
std::string CheckSpeed(const std::string& text);
std::string CheckSeed(const std::string& text);
std::string CheckNotEmpty(const std::string& name);
std::string CheckDeviceName(const std::string& name);
std::string CheckFault(const std::string& fault);
/// @}

/// Reports a command line that is not valid, in one line, and returns the exit code. Help and version are "errors" with
/// code 0 to the parser.
inline int ReportParsing(const CLI::App& app, const CLI::ParseError& error)
{
    constexpr int kUsage = 2;
    if (error.get_exit_code() == 0) return app.exit(error);
    const std::string& name = app.get_name();
    std::fprintf(stderr, "%s: %s; %s --help shows the usage\n", name.c_str(), Printable(error.what()).c_str(),
                 name.c_str());
    return kUsage;
}
}  // namespace ipodsim
