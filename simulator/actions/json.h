/// @file
/// JSON parsing, and the errors that report unexpected values.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ipodsim
{
using Json = nlohmann::json;

/// The largest text that is parsed, in bytes, from a file or from the bus.
constexpr std::size_t kMostJson = std::size_t{8} << 20U;

/// The path of a value in its document. The parent's path must outlive it.
struct JsonPath
{
    const JsonPath* parent = nullptr;  ///< null for the document itself
    std::string_view member;           ///< name within an object; empty for an array element
    std::size_t index = 0;

    JsonPath Member(std::string_view name) const { return {this, name, 0}; }
    JsonPath Element(std::size_t at) const { return {this, {}, at}; }
    /// For example "steps[3].value"; empty for the document itself.
    std::string Text() const;
};

/// A text or a value is invalid: "steps[3].value: expected ..., got ...".
class InvalidInput : public std::runtime_error
{
public:
    explicit InvalidInput(const std::string& wrong) : std::runtime_error(wrong) {}
    InvalidInput(const JsonPath& path, const std::string& wrong);
};

/// Throws InvalidInput with the expectation and the value.
[[noreturn]] void Reject(const JsonPath& path, const std::string& expected, const Json& value);

/// Parses a text in linear time.
/// @throws InvalidInput  the text exceeds kMostJson or is not JSON ("line 3, column 14: ..."), an object repeats a
///                       member, or a number is out of range
Json ParseJson(const std::string& text);
}  // namespace ipodsim
