#include "printable.h"

#include <glib.h>

#include <memory>

namespace ipodsim
{
namespace
{
bool IsBidiControl(gunichar c)
{
    return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x200E || c == 0x200F || c == 0x061C;
}
}  // namespace

std::string Printable(const std::string& text)
{
    constexpr char kReplacement[] = "\uFFFD";
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
    std::string printable;
    for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at))
    {
        const gunichar c = g_utf8_get_char(at);
        if (g_unichar_iscntrl(c) != FALSE || IsBidiControl(c))
            printable += kReplacement;
        else
            printable.append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
    }
    return printable;
}

std::string PrintableWithHint(const std::string& message)
{
    const std::size_t hint = message.find("\nhint: ");
    if (hint == std::string::npos) return Printable(message);
    return Printable(message.substr(0, hint)) + "\n" + Printable(message.substr(hint + 1));
}
}  // namespace ipodsim
