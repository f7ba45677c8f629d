/// @file
/// Generates the reference of a program from its command line.
#pragma once

#include <cli/help.h>
#include <cli/program.h>

#include <map>
#include <string>
#include <vector>

namespace cli
{
/// Rows by the placeholder that they replace, such as "@exit-codes".
using Tables = std::map<std::string, std::vector<HelpRow>>;

/// Writes the reference to standard output: a Markdown page in which the lines "@options", "@commands", and those of
/// @p tables are replaced. Returns the exit code. A section "#### COMMAND" of the page has notes that are appended
/// to the help of that command.
///
/// @param form  "markdown", or "man" for a manual page
/// @param page  the file of the page
int MakeReference(const CommandLine& commandLine, const Tables& tables, const std::string& form, const char* page);
}  // namespace cli
