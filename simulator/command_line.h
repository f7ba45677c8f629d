/// @file
/// Command-line handling shared by the programs: value checks for CLI11, and error reporting.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "printable.h"

namespace ipodsim
{
/// @name Checks
/// Each returns the expectation, or an empty string if the value is valid.
/// @{
std::string CheckSpeed(const std::string& text);
std::string CheckSeed(const std::string& text);
std::string CheckNotEmpty(const std::string& name);
std::string CheckDeviceName(const std::string& name);
std::string CheckFault(const std::string& fault);
/// @}

/// Reports an invalid command line with a hint and returns the exit code. CLI11 treats help and version as "errors"
/// with code 0.
inline int ReportParsing(const CLI::App& app, const CLI::ParseError& error)
{
    constexpr int kUsage = 2;
    if (error.get_exit_code() == 0) return app.exit(error);
    const std::string& name = app.get_name();
    const std::string wrong = Printable(error.what());
    std::fprintf(stderr, "%s: %s\nhint: try '%s --help'\n", name.c_str(), wrong.c_str(), name.c_str());
    return kUsage;
}
}  // namespace ipodsim
