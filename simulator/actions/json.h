/// @file
/// JSON texts, and the errors of values that are not what was expected.
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

/// The largest text that is parsed, in bytes, whether it comes from a file or over the bus.
constexpr std::size_t kMostJson = std::size_t{8} << 20U;

/// The place of a value in its document. It points to that of its parent, which outlives it.
struct JsonPath
{
    const JsonPath* parent = nullptr;  ///< null: the document itself
    std::string_view member;           ///< of an object; empty: an element of an array
    std::size_t index = 0;

    JsonPath Member(std::string_view name) const { return {this, name, 0}; }
    JsonPath Element(std::size_t at) const { return {this, {}, at}; }
    /// For example "steps[3].value"; empty for the document itself.
    std::string Text() const;
};

/// A text or a value is not what was expected: "steps[3].value: expected ..., got ...".
class InvalidInput : public std::runtime_error
{
public:
    explicit InvalidInput(const std::string& wrong) : std::runtime_error(wrong) {}
    InvalidInput(const JsonPath& path, const std::string& wrong);
};

/// Throws InvalidInput: what was expected, and the value.
[[noreturn]] void Reject(const JsonPath& path, const std::string& expected, const Json& value);

/// Parses a text, in time that grows with its length.
/// @throws InvalidInput  it is larger than kMostJson or not JSON ("line 3, column 14: ..."), a member occurs twice in
/// an
///                       object, or a number cannot be stored
Json ParseJson(const std::string& text);
}  // namespace ipodsim
