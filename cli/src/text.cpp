#include "cli/text.h"

#include <glib.h>

namespace cli
{
Character First(std::string_view text)
{
    const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (code == static_cast<gunichar>(-1) || code == static_cast<gunichar>(-2) || code == 0) return {0, 1, false};
    return {code, static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)), true};
}

bool IsUnsafe(std::uint32_t codePoint)
{
    const bool control = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
    const bool separator = codePoint == 0x2028 || codePoint == 0x2029;
    const bool direction = (codePoint >= 0x202A && codePoint <= 0x202E) || (codePoint >= 0x2066 && codePoint <= 0x2069);
    return control || separator || direction || codePoint == 0x200E || codePoint == 0x200F || codePoint == 0x061C;
}

std::string Printable(std::string_view text)
{
    constexpr std::string_view kReplacement = "\uFFFD";
    std::string shown;
    while (!text.empty())
    {
        const Character next = First(text);
        shown += next.valid && !IsUnsafe(next.codePoint) ? text.substr(0, next.bytes) : kReplacement;
        text.remove_prefix(next.bytes);
    }
    return shown;
}

std::string PrintableWithHint(const std::string& message)
{
    const std::size_t hint = message.find("\nhint: ");
    if (hint == std::string::npos) return Printable(message);
    return Printable(message.substr(0, hint)) + "\n" + Printable(message.substr(hint + 1));
}
}  // namespace cli
