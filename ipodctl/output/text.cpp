#include "output/text.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>

namespace ctl
{
namespace
{
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr int kMaxDigits = 9;

// One character of a text that may be broken; bytes is at least 1.
struct Character
{
    gunichar codePoint;
    std::size_t bytes;
    bool valid;
};

Character First(std::string_view text)
{
    const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (code == static_cast<gunichar>(-1) || code == static_cast<gunichar>(-2) || code == 0) return {0, 1, false};
    return {code, static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)), true};
}

int WidthOf(gunichar code)
{
    if (g_unichar_iszerowidth(code)) return 0;
    return g_unichar_iswide(code) ? 2 : 1;
}

bool IsDigits(std::string_view text)
{
    return !text.empty() && text.size() <= kMaxDigits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Minutes and seconds behind a colon have two digits and are below 60.
std::optional<long> SecondsIn(std::string_view text)
{
    long total = 0;
    for (bool first = true;; first = false)
    {
        const std::size_t colon = text.find(':');
        const std::string_view part = text.substr(0, colon);
        const std::optional<int> number = ParseIndex(part);
        if (!number || (!first && (part.size() != 2 || *number >= 60))) return std::nullopt;
        total = total * 60 + *number;
        if (colon == std::string_view::npos) return total;
        text.remove_prefix(colon + 1);
    }
}

bool HasTooManyParts(std::string_view text)
{
    return std::count(text.begin(), text.end(), ':') > 2;
}
}  // namespace

bool IsUnsafe(std::uint32_t codePoint)
{
    const bool control = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
    const bool separator = codePoint == 0x2028 || codePoint == 0x2029;
    const bool direction = (codePoint >= 0x202A && codePoint <= 0x202E) || (codePoint >= 0x2066 && codePoint <= 0x2069);
    return control || separator || direction || codePoint == 0x200E || codePoint == 0x200F || codePoint == 0x061C;
}

std::string Printable(std::string_view text)
{
    std::string shown;
    while (!text.empty())
    {
        const Character next = First(text);
        shown += next.valid && !IsUnsafe(next.codePoint) ? text.substr(0, next.bytes) : kReplacement;
        text.remove_prefix(next.bytes);
    }
    return shown;
}

std::string Folded(std::string_view text)
{
    gchar* const folded = g_utf8_casefold(Printable(text).c_str(), -1);
    std::string result = folded;
    g_free(folded);
    return result;
}

int Width(std::string_view text)
{
    int width = 0;
    while (!text.empty())
    {
        const Character next = First(text);
        width += WidthOf(next.codePoint);
        text.remove_prefix(next.bytes);
    }
    return width;
}

std::string Cut(std::string_view text, int width)
{
    if (Width(text) <= width) return std::string(text);
    std::string kept;
    int used = 1;
    while (!text.empty())
    {
        const Character next = First(text);
        used += WidthOf(next.codePoint);
        if (used > width) break;
        kept += text.substr(0, next.bytes);
        text.remove_prefix(next.bytes);
    }
    return width > 0 ? kept.append(kEllipsis) : std::string();
}

std::string Pad(std::string_view text, int width)
{
    return std::string(text) + std::string(static_cast<std::size_t>(std::max(0, width - Width(text))), ' ');
}

std::string PadLeft(std::string_view text, int width)
{
    return std::string(static_cast<std::size_t>(std::max(0, width - Width(text))), ' ') + std::string(text);
}

std::string Clock(int milliseconds)
{
    const int seconds = std::max(0, milliseconds) / 1000;
    char text[32];
    if (seconds >= 3600)
        g_snprintf(text, sizeof(text), "%d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
    else
        g_snprintf(text, sizeof(text), "%d:%02d", seconds / 60, seconds % 60);
    return text;
}

std::string Bar(int position, int length, int width)
{
    const auto room = static_cast<std::size_t>(std::max(1, width - 2));
    if (length <= 0) return "[" + std::string(room, '-') + "]";
    const auto at = static_cast<std::size_t>(std::clamp(position, 0, length)) * (room - 1);
    const std::size_t done = at / static_cast<std::size_t>(length);
    return "[" + std::string(done, '=') + ">" + std::string(room - 1 - done, ' ') + "]";
}

std::string Count(int number, const char* one, const char* many)
{
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

std::optional<int> ParseIndex(std::string_view text)
{
    if (!IsDigits(text)) return std::nullopt;
    return std::atoi(std::string(text).c_str());
}

std::optional<SeekTarget> ParseSeek(std::string_view text)
{
    const bool relative = !text.empty() && (text[0] == '+' || text[0] == '-');
    const bool back = relative && text[0] == '-';
    if (relative) text.remove_prefix(1);
    if (HasTooManyParts(text)) return std::nullopt;
    const std::optional<long> seconds = SecondsIn(text);
    if (!seconds || *seconds > G_MAXINT / 1000) return std::nullopt;
    return SeekTarget{relative, static_cast<int>(back ? -*seconds : *seconds)};
}
}  // namespace ctl
