/// @file
/// What a verb of the command line is. The tables of all verbs are listed in verbs.h.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "session/session.h"

namespace ctl
{
/// Does the work of a verb. Verbs that go on for a while write their lines themselves and return an answer
/// without JSON.
using Run = std::function<Answer(Context&)>;

struct Verb
{
    const char* name;
    const char* summary;
    const char* examples;            ///< shown under the verb's --help, one per line
    Run (*build)(CLI::App& app);     ///< adds the verb's arguments; the result reads them when it runs
    const char* group = "Commands";  ///< title of the help's section that lists it
};

/// Accepts integers of at least @p least.
CLI::Validator WholeNumber(int least);

/// Accepts integers between @p least and @p most.
CLI::Validator NumberUpTo(std::uint64_t most, std::uint64_t least = 0);

/// Accepts every text that is not empty.
CLI::Validator Something();

/// Accepts one of a few words.
CLI::Validator OneOf(const std::vector<std::string>& words);

/// "a, b, c", for the help of an argument.
std::string Listed(const std::vector<std::string>& words);

/// Accepts times between a millisecond and @p most seconds.
CLI::Validator Seconds(double most = 4000000);

/// A place for an argument of the command line that lives as long as those who hold it.
template <class T>
std::shared_ptr<T> Argument(T value = T())
{
    return std::make_shared<T>(std::move(value));
}
}  // namespace ctl
