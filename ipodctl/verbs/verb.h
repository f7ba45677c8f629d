/// @file
/// Defines the verbs of the command line and their argument validators. verbs.h declares the verb tables.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "session/session.h"

namespace ctl
{
/// Runs a verb. Long-running verbs write their own output and return an answer without JSON.
using Run = std::function<Answer(Context&)>;

struct Verb
{
    const char* name;
    const char* summary;
    const char* examples;            ///< shown under the verb's --help, one per line
    Run (*build)(CLI::App& app);     ///< adds the verb's arguments; the returned function reads them when it runs
    const char* group = "Commands";  ///< title of its section in the help
};

/// Accepts integers of at least @p least.
CLI::Validator WholeNumber(int least);

/// Accepts integers between @p least and @p most.
CLI::Validator NumberUpTo(std::uint64_t most, std::uint64_t least = 0);

/// Accepts any non-empty text.
CLI::Validator NonEmpty();

/// Accepts one of @p words.
CLI::Validator OneOf(const std::vector<std::string>& words);

/// Joins words for help texts and messages: "a, b, c".
std::string Listed(const std::vector<std::string>& words);

/// Accepts a number of seconds between 0.001 and @p most.
CLI::Validator Seconds(double most = 4000000);

/// Allocates shared storage for a command-line argument: the parser writes it, the verb reads it.
template <class T>
std::shared_ptr<T> Argument(T value = T())
{
    return std::make_shared<T>(std::move(value));
}
}  // namespace ctl
