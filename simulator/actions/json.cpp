#include "actions/json.h"

#include <cstdint>
#include <utility>

namespace ipodsim
{
namespace
{
// Long values are truncated so that the message fits on one line.
std::string Shown(const Json& value)
{
    if (value.is_object()) return "an object";
    if (value.is_array()) return "an array";
    std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return text;
}

// Removes the exception ID from "[json.exception...] parse error at line 2, column 5: reason".
std::string WithoutExceptionId(const std::string& message)
{
    const std::size_t line = message.find("line ");
    std::string text = line == std::string::npos ? message : message.substr(line);
    if (text.find("expected") == std::string::npos) text += "; expected valid JSON in UTF-8";
    return text;
}

// Builds the document and tracks the path of the next value, to report repeated members: the library's own parser
// silently keeps the last one.
class Builder : public nlohmann::json_sax<Json>
{
public:
    bool null() override { return Put(nullptr) != nullptr; }
    bool boolean(bool value) override { return Put(value) != nullptr; }
    bool number_integer(std::int64_t value) override { return Put(value) != nullptr; }
    bool number_unsigned(std::uint64_t value) override { return Put(value) != nullptr; }
    bool number_float(double value, const std::string&) override { return Put(value) != nullptr; }
    bool string(std::string& value) override { return Put(std::move(value)) != nullptr; }
    bool binary(Json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return Enter(Json::object()); }
    bool start_array(std::size_t) override { return Enter(Json::array()); }
    bool end_object() override { return Leave(); }
    bool end_array() override { return Leave(); }

    bool key(std::string& name) override
    {
        Level& level = m_levels.back();
        level.member = std::move(name);
        if (level.container->contains(level.member)) Throw("expected this member once, got it twice");
        return true;
    }

    bool parse_error(std::size_t, const std::string& token, const nlohmann::detail::exception& error) override
    {
        constexpr int kNumberTooLarge = 406;
        if (error.id == kNumberTooLarge) Throw("expected a number within range, got " + token);
        throw InvalidInput(WithoutExceptionId(error.what()));
    }

    Json document;

private:
    struct Level
    {
        Json* container;
        std::string member;  // the object member begun last
    };

    Json* Put(Json value)
    {
        if (m_levels.empty()) return &(document = std::move(value));
        Json& container = *m_levels.back().container;
        if (container.is_object()) return &(container[m_levels.back().member] = std::move(value));
        container.push_back(std::move(value));
        return &container.back();
    }
    bool Enter(Json container)
    {
        m_levels.push_back({Put(std::move(container)), {}});
        return true;
    }
    bool Leave()
    {
        m_levels.pop_back();
        return true;
    }
    [[noreturn]] void Throw(const std::string& wrong) const
    {
        std::vector<JsonPath> path(1);
        path.reserve(m_levels.size() + 1);  // each element points to its predecessor
        for (const Level& level : m_levels)
        {
            // A container is already in its array when it begins.
            const std::size_t begun = &level == &m_levels.back() ? 0 : 1;
            path.push_back(level.container->is_array() ? path.back().Element(level.container->size() - begun)
                                                       : path.back().Member(level.member));
        }
        throw InvalidInput(path.back(), wrong);
    }

    std::vector<Level> m_levels;
};
}  // namespace

std::string JsonPath::Text() const
{
    if (parent == nullptr) return {};
    const std::string before = parent->Text();
    if (member.data() == nullptr) return before + "[" + std::to_string(index) + "]";
    return before + (before.empty() ? "" : ".") + std::string(member);
}

InvalidInput::InvalidInput(const JsonPath& path, const std::string& wrong)
    : std::runtime_error(path.parent == nullptr ? wrong : path.Text() + ": " + wrong)
{
}

void Reject(const JsonPath& path, const std::string& expected, const Json& value)
{
    throw InvalidInput(path, "expected " + expected + ", got " + Shown(value));
}

Json ParseJson(const std::string& text)
{
    if (text.size() > kMostJson) throw InvalidInput("expected a scenario of at most 8 MiB");
    Builder builder;
    Json::sax_parse(text, &builder);
    return std::move(builder.document);
}
}  // namespace ipodsim
