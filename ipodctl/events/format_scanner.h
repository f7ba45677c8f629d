/// @file
/// Reads the text of a template piece by piece, and says where it is wrong.
#pragma once

#include <string>
#include <string_view>

namespace ctl
{
class FormatScanner
{
public:
    explicit FormatScanner(const std::string& text) : m_text(text) {}

    bool AtEnd() const { return m_at >= m_text.size(); }

    /// Literal text up to the next "{{" or "{%", with its escapes replaced.
    std::string TakeLiteral();

    /// Whether the text goes on with @p mark; takes it if so. Blanks before it do not count inside of braces.
    bool Take(std::string_view mark);
    bool TakeAfterBlanks(std::string_view mark);

    /// The same for a whole word.
    bool TakeWord(std::string_view word);

    /// A name, digits, or a quoted text after blanks; empty when there is none.
    std::string TakeName();
    std::string TakeNumber();
    bool TakeQuoted(std::string& text);

    /// Where it is, for going back there and for messages.
    std::size_t Place() const { return m_at; }
    void Return(std::size_t place) { m_at = place; }

    /// @throws Failure  kUsage: "column 7: expected …, found …"
    [[noreturn]] void Expected(const std::string& what) const { ExpectedAt(m_at, what); }
    [[noreturn]] void ExpectedAt(std::size_t place, const std::string& what) const;

private:
    void SkipBlanks();
    std::string_view Rest() const { return std::string_view(m_text).substr(m_at); }

    const std::string m_text;
    std::size_t m_at = 0;
};
}  // namespace ctl
