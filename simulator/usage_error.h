/// @file
/// How the programs end when they cannot make sense of their command line.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>

#include "printable.h"

namespace ipodsim
{
/// Tells it in one line and returns the exit code. Help and version are "errors" with code 0 to the parser.
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
