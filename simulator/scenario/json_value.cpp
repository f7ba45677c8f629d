#include "scenario/json_value.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ipodsim
{
namespace
{
std::string Listed(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

// Long values cut: the message is one line.
std::string Shown(const nlohmann::json& value)
{
    if (value.is_object()) return "an object";
    if (value.is_array()) return "an array";
    std::string text = value.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return text;
}
}  // namespace

void JsonValue::Refuse(const std::string& expected) const
{
    throw Misfit(m_path, "expected " + expected + ", not " + Shown(m_json));
}

void JsonValue::RequireMembers(std::initializer_list<const char*> names) const
{
    const std::vector<std::string> known(names.begin(), names.end());
    if (!m_json.is_object()) Refuse(known.empty() ? "an object" : "an object with " + Listed(known));
    for (const auto& [name, value] : m_json.items())
    {
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        std::vector<std::string> path = m_path;
        path.push_back(name);
        throw Misfit(path, known.empty() ? "expected no member here, not \"" + name + "\""
                                         : "expected one of " + Listed(known) + ", not \"" + name + "\"");
    }
}

JsonValue JsonValue::Member(const char* name, const char* what) const
{
    if (!Has(name)) throw Misfit(m_path, std::string("expected a member \"") + name + "\", " + what);
    std::vector<std::string> path = m_path;
    path.emplace_back(name);
    return JsonValue(m_json[name], path);
}

std::vector<JsonValue> JsonValue::Elements(const char* what) const
{
    if (!m_json.is_array()) Refuse(std::string("an array of ") + what);
    std::vector<JsonValue> elements;
    for (std::size_t i = 0; i < m_json.size(); ++i)
    {
        std::vector<std::string> path = m_path;
        path.push_back(std::to_string(i));
        elements.emplace_back(m_json[i], path);
    }
    return elements;
}

std::string JsonValue::Text(const char* what) const
{
    if (!m_json.is_string()) Refuse(what);
    auto text = m_json.get<std::string>();
    if (text.find('\0') != std::string::npos) Refuse(std::string(what) + " without NUL");
    return text;
}

bool JsonValue::Switch() const
{
    if (!m_json.is_boolean()) Refuse("true or false");
    return m_json.get<bool>();
}

double JsonValue::Seconds() const
{
    constexpr double kWeek = 7 * 24 * 3600.0;
    const bool fits = m_json.is_number() && m_json.get<double>() >= 0 && m_json.get<double>() <= kWeek;
    if (!fits) Refuse("a number of seconds, from 0 to 604800");
    return m_json.get<double>();
}

std::uint64_t JsonValue::Number(std::uint64_t least, std::uint64_t most) const
{
    const bool fits =
        m_json.is_number_unsigned() && m_json.get<std::uint64_t>() >= least && m_json.get<std::uint64_t>() <= most;
    if (!fits) Refuse("a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return m_json.get<std::uint64_t>();
}

std::uint32_t JsonValue::Word(const Words& words) const
{
    const auto found = m_json.is_string() ? words.find(m_json.get<std::string>()) : words.end();
    if (found != words.end()) return found->second;
    std::vector<std::string> names;
    for (const auto& [name, number] : words) names.push_back(name);
    Refuse("one of " + Listed(names));
}
}  // namespace ipodsim
