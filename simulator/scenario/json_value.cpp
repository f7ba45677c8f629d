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

std::string MemberPath(const std::string& parent, const std::string& name)
{
    return parent.empty() ? name : parent + "." + name;
}

std::string ElementPath(const std::string& parent, std::size_t index)
{
    return parent + "[" + std::to_string(index) + "]";
}

void JsonValue::Refuse(const std::string& expected) const
{
    throw ValidationError(m_path, "expected " + expected + ", got " + Shown(m_json));
}

void JsonValue::RequireMembers(std::initializer_list<const char*> names) const
{
    const std::vector<std::string> known(names.begin(), names.end());
    if (!m_json.is_object()) Refuse(known.empty() ? "an object" : "an object with " + Listed(known));
    for (const auto& [name, value] : m_json.items())
    {
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        throw ValidationError(
            MemberPath(m_path, name),
            "unknown member" + (known.empty() ? ", expected none" : ", expected one of " + Listed(known)));
    }
}

JsonValue JsonValue::Member(const char* name, const char* what) const
{
    const std::string path = MemberPath(m_path, name);
    if (!Has(name)) throw ValidationError(path, std::string("expected ") + what + ", got nothing");
    return JsonValue(m_json[name], path);
}

std::vector<JsonValue> JsonValue::Elements(const char* what) const
{
    if (!m_json.is_array()) Refuse(std::string("an array of ") + what);
    std::vector<JsonValue> elements;
    elements.reserve(m_json.size());
    for (std::size_t i = 0; i < m_json.size(); ++i) elements.emplace_back(m_json[i], ElementPath(m_path, i));
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
    if (!fits) Refuse("a number of seconds between 0 and 604800");
    return m_json.get<double>();
}

std::uint64_t JsonValue::Number(std::uint64_t least, std::uint64_t most) const
{
    const bool fits =
        m_json.is_number_unsigned() && m_json.get<std::uint64_t>() >= least && m_json.get<std::uint64_t>() <= most;
    if (!fits) Refuse("an integer between " + std::to_string(least) + " and " + std::to_string(most));
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
