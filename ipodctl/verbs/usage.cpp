#include "verbs/usage.h"

#include <cli/help.h>
#include <cli/usage.h>
#include <ipodnames/nearest.h>

namespace ctl
{
namespace
{
Failure ToFailure(const cli::UsageError& error)
{
    return {kUsage, error.message, error.hint};
}
}  // namespace

Failure UnknownWord(const char* what, const std::string& word, const std::vector<std::string>& words,
                    const std::string& otherwise)
{
    return ToFailure(cli::UnknownWord(what, word, words, otherwise, ipodnames::Nearest));
}

const CLI::App& CommandIn(const CLI::App& app, const std::string& name)
{
    const CLI::App* const command = cli::FindCommand(app, name);
    const std::vector<std::string> names = cli::CommandNames(app);
    if (names.empty()) throw Failure(kUsage, cli::Unexpected(name), "try 'ipodctl --help'");
    if (command == nullptr) throw UnknownWord("command", name, names, "try '" + cli::PathOf(app) + " --help'");
    return *command;
}

Failure UsageFailure(const CLI::App& app, const CLI::ParseError& error)
{
    return ToFailure(cli::Explain(app, error, ipodnames::Nearest));
}
}  // namespace ctl
