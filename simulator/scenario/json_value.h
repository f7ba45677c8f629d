/// @file
/// Values of a JSON text, read with an eye on what was expected.
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
/// A value is not what was expected there. Its text says what was.
class Misfit : public std::runtime_error
{
public:
    Misfit(std::vector<std::string> path, const std::string& expected)
        : std::runtime_error(expected), m_path(std::move(path))
    {
    }
    const std::vector<std::string>& path() const { return m_path; }

private:
    std::vector<std::string> m_path;
};

/// Words, and the numbers that travel for them.
using Words = std::map<std::string, std::uint32_t>;

/// A value and the path that leads to it. Everything throws Misfit when the value is another one.
class JsonValue
{
public:
    explicit JsonValue(const nlohmann::json& value, std::vector<std::string> path = {})
        : m_json(value), m_path(std::move(path))
    {
    }

    const nlohmann::json& Json() const { return m_json; }

    /// Checks that it is an object that has no other members than these.
    void RequireMembers(std::initializer_list<const char*> names) const;
    bool Has(const char* name) const { return m_json.is_object() && m_json.contains(name); }
    /// @p what says what it should be when it is missing
    JsonValue Member(const char* name, const char* what) const;

    std::vector<JsonValue> Elements(const char* what) const;

    std::string Text(const char* what) const;
    bool Switch() const;
    double Seconds() const;
    std::uint64_t Number(std::uint64_t least, std::uint64_t most) const;
    std::uint32_t Word(const Words& words) const;

    /// Gives up: @p expected and what stands there instead.
    [[noreturn]] void Refuse(const std::string& expected) const;

private:
    const nlohmann::json& m_json;
    std::vector<std::string> m_path;
};
}  // namespace ipodsim
