/// @file
/// Command lines that the parser rejects, in ipodctl's own words.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "output/failure.h"

namespace ctl
{
/// Whether the "error" asks for help or the version.
bool AsksForHelp(const CLI::App& app, const CLI::ParseError& error);

/// What is wrong with a command line, with the command whose help explains it.
Failure UsageFailure(const CLI::App& app, const CLI::ParseError& error);

/// "unknown WHAT 'word'", with the most similar of @p words as a hint; @p otherwise where none is similar.
Failure UnknownWord(const char* what, const std::string& word, const std::vector<std::string>& words,
                    const std::string& otherwise);
}  // namespace ctl
