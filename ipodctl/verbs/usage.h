/// @file
/// Converts parser errors to ipodctl's own messages.
#pragma once

#include <string>
#include <vector>

#include "output/failure.h"

namespace CLI
{
class App;
class ParseError;
}  // namespace CLI

namespace ctl
{
/// Returns the usage error, with a hint that names the relevant --help.
Failure UsageFailure(const CLI::App& app, const CLI::ParseError& error);

/// Returns the command with this name inside @p app.
/// @throws Failure  kUsage if @p app has no such command
const CLI::App& CommandIn(const CLI::App& app, const std::string& name);

/// Returns "unknown WHAT 'word'". The hint suggests the most similar of @p words, or is @p otherwise if none is
/// similar.
Failure UnknownWord(const char* what, const std::string& word, const std::vector<std::string>& words,
                    const std::string& otherwise);
}  // namespace ctl
