/// @file
/// Validated access to JSON values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace ipodsim
{
/// A value is not what was expected: "steps[3].value: expected ..., got ...".
class ValidationError : public std::runtime_error
{
public:
    ValidationError(const std::string& path, const std::string& wrong)
        : std::runtime_error(path.empty() ? wrong : path + ": " + wrong)
    {
    }
};

/// "steps" and "steps.member"; @p parent is empty for members of the root.
std::string MemberPath(const std::string& parent, const std::string& name);
/// "steps[3]".
std::string ElementPath(const std::string& parent, std::size_t index);

/// Words, and the numbers that travel for them.
using Words = std::map<std::string, std::uint32_t>;

/// A value and the path that leads to it. Every member throws ValidationError if the value is not what is expected.
class JsonValue
{
public:
    explicit JsonValue(const nlohmann::json& value, std::string path = {}) : m_json(value), m_path(std::move(path)) {}

    const nlohmann::json& Json() const { return m_json; }

    /// Checks that it is an object without other members than these.
    void RequireMembers(std::initializer_list<const char*> names) const;
    bool Has(const char* name) const { return m_json.is_object() && m_json.contains(name); }
    /// @param what  what is expected if it is missing
    JsonValue Member(const char* name, const char* what) const;

    std::vector<JsonValue> Elements(const char* what) const;

    std::string Text(const char* what) const;
    bool Switch() const;
    double Seconds() const;
    std::uint64_t Number(std::uint64_t least, std::uint64_t most) const;
    std::uint32_t Word(const Words& words) const;

    /// Throws: @p expected, and the value.
    [[noreturn]] void Refuse(const std::string& expected) const;

private:
    const nlohmann::json& m_json;
    std::string m_path;
};
}  // namespace ipodsim
