#include "scenario/json_place.h"

#include <nlohmann/json.hpp>

namespace ipodsim
{
namespace
{
// Walks over valid JSON without looking at what values mean.
class Walker
{
public:
    explicit Walker(std::string_view json) : m_json(json) { SkipBlanks(); }

    std::size_t At() const { return m_at; }

    // Goes to a member or element of the value that it stands at; false, and nowhere in particular, when it is missing.
    bool Enter(const std::string& step)
    {
        return Peek() == '{' ? EnterMember(step) : Peek() == '[' && EnterElement(step);
    }

private:
    char Peek() const { return m_at < m_json.size() ? m_json[m_at] : '\0'; }

    void SkipBlanks()
    {
        while (Peek() != '\0' && std::string_view(" \t\r\n,:").find(Peek()) != std::string_view::npos) ++m_at;
    }

    std::string_view SkipText()
    {
        const std::size_t begin = m_at++;
        for (; Peek() != '"' && Peek() != '\0'; ++m_at)
            if (Peek() == '\\') ++m_at;
        ++m_at;
        return m_json.substr(begin, m_at - begin);
    }

    void SkipPlain()
    {
        while (Peek() != '\0' && std::string_view(" \t\r\n,]}").find(Peek()) == std::string_view::npos) ++m_at;
    }

    void SkipValue()
    {
        int depth = 0;
        do
        {
            const char c = Peek();
            if (c == '"')
                SkipText();
            else if (c == '{' || c == '[')
                ++depth, ++m_at;
            else if (c == '}' || c == ']')
                --depth, ++m_at;
            else
                SkipPlain();
            SkipBlanks();
        } while (depth > 0 && Peek() != '\0');
    }

    bool EnterMember(const std::string& name)
    {
        ++m_at;
        for (SkipBlanks(); Peek() == '"'; SkipValue())
        {
            const std::string key = nlohmann::json::parse(SkipText()).get<std::string>();
            SkipBlanks();
            if (key == name) return true;
        }
        return false;
    }

    bool EnterElement(const std::string& index)
    {
        ++m_at;
        SkipBlanks();
        for (unsigned long left = std::stoul(index); left > 0 && Peek() != ']'; --left) SkipValue();
        return Peek() != ']';
    }

    std::string_view m_json;
    std::size_t m_at = 0;
};
}  // namespace

Place PlaceAt(std::string_view text, std::size_t byte)
{
    Place place;
    for (const char c : text.substr(0, byte))
    {
        place.column = c == '\n' ? 1 : place.column + 1;
        place.line += c == '\n' ? 1 : 0;
    }
    return place;
}

Place PlaceOf(std::string_view json, const std::vector<std::string>& path)
{
    Walker walker(json);
    std::size_t at = walker.At();
    for (const std::string& step : path)
    {
        if (!walker.Enter(step)) break;
        at = walker.At();
    }
    return PlaceAt(json, at);
}
}  // namespace ipodsim
