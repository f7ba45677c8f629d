/// @file
/// Reports invalid command lines, and whatever else ends a program, in the same words everywhere.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

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
UsageError UnexpectedWord(const std::string& word, const std::string& hint);

/// Returns the names of the subcommands of @p app.
std::vector<std::string> CommandNames(const CLI::App& app);

/// Sets the name, the description, the layout of the help, and the options for help and version.
void Prepare(CLI::App& app, const char* name, const char* summary);

/// Returns whether @p error is a request for help or the version.
bool AsksForHelp(const CLI::App& app, const CLI::ParseError& error);

/// Explains why the arguments are invalid. The hint suggests a similar option or command if @p nearest finds one;
/// otherwise it names the relevant --help.
UsageError Explain(const CLI::App& app, const CLI::ParseError& error, const Nearest& nearest = {});

/// Prints "PROGRAM: message" on standard error, and a hint if the message has one on a second line.
void PrintError(const std::string& program, const std::string& message);

/// Flushes standard output. Returns the exit code: 0, or 1 after an error message if it cannot be written.
int FlushOutput(const std::string& program);

/// Ends a program without commands whose command line was not parsed: prints what was requested, or an error with a
/// hint. Returns the exit code: 0, 1 if standard output cannot be written, or 2 for invalid arguments.
int Report(const CLI::App& app, const CLI::ParseError& error, const Nearest& nearest = {});
}  // namespace cli
