#include <cli/text.h>
#include <cli/validators.h>

#include <CLI/CLI.hpp>

namespace cli
{
std::string NotBetween(const char* what, const std::string& least, const std::string& most, const std::string& text)
{
    return std::string("expected ") + what + " between " + least + " and " + most + ", got '" + Printable(text) + "'";
}

CLI::Validator NumberUpTo(std::uint64_t most, std::uint64_t least)
{
    const auto check = [most, least](std::string& text)
    {
        const std::optional<std::uint64_t> number = Parsed<std::uint64_t>(text);
        const bool fits = number && *number >= least && *number <= most;
        if (fits) text = std::to_string(*number);
        return fits ? "" : NotBetween("an integer", std::to_string(least), std::to_string(most), text);
    };
    return {check, "N"};
}

CLI::Validator NonEmpty()
{
    return {[](const std::string& text) { return text.empty() ? "must not be empty" : ""; }, ""};
}
}  // namespace cli
