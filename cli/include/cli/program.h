/// @file
/// Argument parsing, error output, and exit codes, shared by all programs.
#pragma once

#include <cli/usage.h>

#include <functional>
#include <string>

namespace cli
{
/// Adds the name and the options of a program to an empty parser.
using CommandLine = std::function<void(CLI::App&)>;

/// Sets the name, the description, the layout of the help, and the options for help and version.
void Prepare(CLI::App& app, const char* name, const char* summary);

/// Parses the arguments of a program without commands and runs it. Reports invalid arguments, and exceptions that are
/// derived from std::exception.
/// @return  what @p run returns; 0 after help or version; 1 if standard output cannot be written, or @p run throws;
///          2 if the arguments are invalid
int RunProgram(int argc, char** argv, const CommandLine& commandLine, const std::function<int()>& run,
               const Nearest& nearest = {});

/// Prints "PROGRAM: message" on standard error, and a hint if the message has one on a second line.
void PrintError(const std::string& program, const std::string& message);

/// Flushes standard output. Returns the exit code: 0, or 1 after an error message if it cannot be written.
int FlushOutput(const std::string& program);
}  // namespace cli
