/// @file
/// Checks of arguments, with the messages that all programs share.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

namespace CLI
{
class Validator;
}

namespace cli
{
/// Parses decimal digits that fill the whole text.
template <class Number>
std::optional<Number> Parsed(const std::string& text)
{
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && read == end ? std::optional<Number>(number) : std::nullopt;
}

/// Returns "expected WHAT between LEAST and MOST, got 'TEXT'".
std::string NotBetween(const char* what, const std::string& least, const std::string& most, const std::string& text);

/// Accepts decimal integers between @p least and @p most. For transform(): removes leading zeros, because the parser
/// would read "010" as an octal number.
CLI::Validator NumberUpTo(std::uint64_t most, std::uint64_t least = 0);

/// Accepts any non-empty text.
CLI::Validator NonEmpty();
}  // namespace cli
