#include "music/text.h"

#include <glib.h>

#include <memory>

namespace ipodsim
{
namespace
{
bool ContinuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::string Trim(const std::string& text)
{
    constexpr char kBlanks[] = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Tags may contain any bytes; invalid UTF-8 becomes the replacement character.
std::string MakeValid(const std::string& text)
{
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
    return valid.get();
}
}  // namespace

std::string CutUtf8(std::string_view text, std::size_t maxBytes)
{
    if (text.size() <= maxBytes) return std::string(text);
    std::size_t end = maxBytes;
    while (end > 0 && ContinuesCharacter(text[end])) --end;
    return std::string(text.substr(0, end));
}

std::string CleanName(const std::string& text, const std::string& fallback)
{
    const std::string trimmed = Trim(text.substr(0, text.find('\0')));
    return CutUtf8(MakeValid(trimmed.empty() ? fallback : trimmed));
}

std::string ToLowerAscii(std::string text)
{
    for (char& c : text) c = g_ascii_tolower(c);
    return text;
}

std::uint64_t Fingerprint(std::string_view text)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

std::string Pinyin(const std::string& text, ipodnames::Subject subject)
{
    if (g_str_is_ascii(text.c_str()) != FALSE) return ToLowerAscii(text);
    std::string reading = ipodnames::Reading(text, subject);
    return reading.empty() ? text : reading;
}
}  // namespace ipodsim
