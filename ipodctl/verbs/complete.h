/// @file
/// Shell completion of the ipodctl command line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace CLI
{
class App;
}

namespace ctl
{
/// A completion candidate and its description. If the word is empty, the description selects a completion of the shell
/// itself: "files", "files json" (files with this extension), or "commands".
struct Candidate
{
    std::string word;
    std::string description;
};

/// Returns the candidates for the last word of a command line.
/// @param app  the complete command line definition
/// @param words  the words after the program name. The last one is being completed and may be empty; unless it is an
/// option, its text is ignored, because the shell filters by prefix
/// @param ask  runs a command and returns its answer. If it throws, the command contributes no candidates
std::vector<Candidate> Candidates(const CLI::App& app, const std::vector<std::string>& words,
                                  const std::function<Json(std::vector<std::string>)>& ask);

/// Formats one candidate per line: the word, then a tab and the description unless it is empty.
std::string ToText(const std::vector<Candidate>& candidates);
}  // namespace ctl
