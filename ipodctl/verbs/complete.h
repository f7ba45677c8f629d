/// @file
/// Completion of a command line in a shell.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
/// A word that may follow, with what it means. Without a word, the shell completes by itself: "files", "files json" (of
/// this extension), or "commands".
struct Candidate
{
    std::string word;
    std::string description;
};

/// Returns what may stand at the end of a command line.
/// @param app  the whole command line
/// @param words  those behind the program's name; the last one, which may be empty, is being completed. Of it only
/// matters whether it is an option
/// @param ask  returns the answer of a command; what it throws means that there are no candidates
std::vector<Candidate> Candidates(const CLI::App& app, const std::vector<std::string>& words,
                                  const std::function<Json(std::vector<std::string>)>& ask);

/// One line per candidate: the word and, behind a tab, the description if there is one.
std::string ToText(const std::vector<Candidate>& candidates);
}  // namespace ctl
