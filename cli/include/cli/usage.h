/// @file
/// Explains invalid command lines in the same words everywhere.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class ParseError;
}  // namespace CLI

namespace cli
{
/// Finds the word that was probably meant; returns an empty string if none is similar.
using Nearest = std::function<std::string(const std::string& word, const std::vector<std::string>& words)>;

struct UsageError
{
    std::string message;
    std::string hint;
};

/// Returns "did you mean 'WORD'?" with the most similar of @p words, or @p otherwise if none is similar.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise,
                       const Nearest& nearest);

/// Returns "unknown WHAT 'word'" with the hint of DidYouMean().
UsageError UnknownWord(const std::string& what, const std::string& word, const std::vector<std::string>& words,
                       const std::string& otherwise, const Nearest& nearest);

/// Returns "unknown option" or "unexpected argument" with the word.
std::string Unexpected(const std::string& word);

/// Returns the names of the subcommands of @p app.
std::vector<std::string> CommandNames(const CLI::App& app);

/// Returns whether @p error is a request for help or the version.
bool AsksForHelp(const CLI::App& app, const CLI::ParseError& error);

/// Explains why the arguments are invalid. The hint suggests a similar option or command if @p nearest finds one;
/// otherwise it names the relevant --help.
UsageError Explain(const CLI::App& app, const CLI::ParseError& error, const Nearest& nearest = {});
}  // namespace cli
