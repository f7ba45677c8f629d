#include "scenario/json_text.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <vector>

#include "scenario/json_value.h"

namespace ipodsim
{
namespace
{
using Json = nlohmann::json;

// "[json.exception...] parse error at line 2, column 5: what is wrong" without what people need not know.
std::string ForPeople(const std::string& message)
{
    const std::size_t line = message.find("line ");
    std::string text = line == std::string::npos ? message : message.substr(line);
    if (text.find("expected") == std::string::npos) text += "; expected valid JSON in UTF-8";
    return text;
}

// Follows the parser and knows the path of the value that comes next.
class Checker : public nlohmann::json_sax<Json>
{
public:
    bool null() override { return Value(); }
    bool boolean(bool) override { return Value(); }
    bool number_integer(std::int64_t) override { return Value(); }
    bool number_unsigned(std::uint64_t) override { return Value(); }
    bool number_float(double, const std::string&) override { return Value(); }
    bool string(std::string&) override { return Value(); }
    bool binary(Json::binary_t&) override { return Value(); }
    bool start_object(std::size_t) override { return Enter(false); }
    bool start_array(std::size_t) override { return Enter(true); }
    bool end_object() override { return Leave(); }
    bool end_array() override { return Leave(); }

    bool key(std::string& name) override
    {
        Level& level = m_levels.back();
        level.member = name;
        if (!level.members.insert(name).second)
            throw ValidationError(Path(), "expected one member of this name, got a second one");
        return true;
    }

    bool parse_error(std::size_t, const std::string& token, const nlohmann::detail::exception& error) override
    {
        constexpr int kNumberTooLarge = 406;
        if (error.id == kNumberTooLarge)
            throw ValidationError(Path(), "expected a number that can be stored, got " + token);
        throw std::runtime_error(ForPeople(error.what()));
    }

private:
    struct Level
    {
        bool array = false;
        std::size_t index = 0;
        std::string member;
        std::set<std::string> members;
    };

    bool Value()
    {
        if (!m_levels.empty()) ++m_levels.back().index;
        return true;
    }
    bool Enter(bool array)
    {
        m_levels.push_back({array, 0, {}, {}});
        return true;
    }
    bool Leave()
    {
        m_levels.pop_back();
        return Value();
    }
    std::string Path() const
    {
        std::string path;
        for (const Level& level : m_levels)
            path = level.array ? ElementPath(path, level.index) : MemberPath(path, level.member);
        return path;
    }

    std::vector<Level> m_levels;
};
}  // namespace

Json ParseJson(const std::string& text)
{
    Checker checker;
    Json::sax_parse(text, &checker);
    return Json::parse(text);
}
}  // namespace ipodsim
