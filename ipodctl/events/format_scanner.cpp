#include "events/format_scanner.h"

#include <glib.h>

#include <algorithm>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr std::string_view kBlanks = " \t\n";

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::size_t NameLength(std::string_view text)
{
    if (text.empty() || !IsLetter(text[0])) return 0;
    const auto* const end =
        std::find_if_not(text.begin(), text.end(), [](char c) { return IsLetter(c) || IsDigit(c); });
    return static_cast<std::size_t>(end - text.begin());
}

// Other characters after a backslash stay as they are, and so does the backslash.
std::string Unescaped(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        const char meant = next == 'n' ? '\n' : next == 't' ? '\t' : next == '\\' ? '\\' : '\0';
        plain += meant != '\0' ? meant : text[i];
        if (meant != '\0') ++i;
    }
    return plain;
}

// What a message shows of the text that is wrong.
std::string Start(std::string_view text)
{
    constexpr int kShown = 12;
    return text.empty() ? "the end" : "'" + Cut(Printable(text), kShown) + "'";
}
}  // namespace

std::string FormatScanner::TakeLiteral()
{
    const std::size_t end = std::min({m_text.find("{{", m_at), m_text.find("{%", m_at), m_text.size()});
    const std::string_view literal = Rest().substr(0, end - m_at);
    m_at = end;
    return Unescaped(literal);
}

void FormatScanner::SkipBlanks()
{
    m_at = std::min(m_text.find_first_not_of(kBlanks, m_at), m_text.size());
}

bool FormatScanner::Take(std::string_view mark)
{
    if (Rest().substr(0, mark.size()) != mark) return false;
    m_at += mark.size();
    return true;
}

bool FormatScanner::TakeAfterBlanks(std::string_view mark)
{
    SkipBlanks();
    return Take(mark);
}

bool FormatScanner::TakeWord(std::string_view word)
{
    SkipBlanks();
    if (Rest().substr(0, NameLength(Rest())) != word) return false;
    m_at += word.size();
    return true;
}

std::string FormatScanner::TakeName()
{
    SkipBlanks();
    std::string name(Rest().substr(0, NameLength(Rest())));
    m_at += name.size();
    return name;
}

std::string FormatScanner::TakeNumber()
{
    SkipBlanks();
    const std::string_view rest = Rest();
    const auto* const end = std::find_if_not(rest.begin(), rest.end(), IsDigit);
    std::string number(rest.begin(), end);
    m_at += number.size();
    return number;
}

bool FormatScanner::TakeQuoted(std::string& text)
{
    SkipBlanks();
    const char quote = AtEnd() ? '\0' : m_text[m_at];
    if (quote != '"' && quote != '\'') return false;
    const std::size_t end = m_text.find(quote, m_at + 1);
    if (end == std::string::npos) Expected(std::string("a text that ends with ") + quote);
    text = Unescaped(std::string_view(m_text).substr(m_at + 1, end - m_at - 1));
    m_at = end + 1;
    return true;
}

void FormatScanner::ExpectedAt(std::size_t place, const std::string& what) const
{
    const std::size_t at = std::min(m_text.find_first_not_of(kBlanks, place), m_text.size());
    const std::string before = Printable(std::string_view(m_text).substr(0, at));
    const auto column = g_utf8_strlen(before.c_str(), -1) + 1;
    throw Failure(kUsage, "format, column " + std::to_string(column) + ": expected " + what + ", found " +
                              Start(std::string_view(m_text).substr(at)));
}
}  // namespace ctl
