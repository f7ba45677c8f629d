#include "output/text.h"

#include <cli/usage.h>
#include <glib.h>
#include <ipodnames/nearest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <sstream>

namespace ctl
{
namespace
{
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

int WidthOf(gunichar code)
{
    if (g_unichar_iszerowidth(code)) return 0;
    return g_unichar_iswide(code) ? 2 : 1;
}

bool IsDigits(std::string_view text)
{
    return !text.empty() && text.size() <= kMostDigits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Requires two digits and a value below 60 after each colon.
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
        const cli::Character next = cli::First(text);
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
        const cli::Character next = cli::First(text);
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

namespace
{
constexpr int kGap = 2;
constexpr int kNarrowestColumn = 8;

using Row = std::vector<std::string>;

std::vector<int> Widths(const std::vector<Row>& rows)
{
    std::vector<int> widths;
    for (const Row& row : rows)
    {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
    }
    return widths;
}

// Narrows the widest column until the line fits or that column reaches its minimum width.
void Fit(std::vector<int>& widths, int width)
{
    if (widths.empty()) return;
    for (;;)
    {
        const int total = std::accumulate(widths.begin(), widths.end(), static_cast<int>(widths.size() - 1) * kGap);
        int& widest = *std::max_element(widths.begin(), widths.end());
        if (total <= width || widest <= kNarrowestColumn) return;
        --widest;
    }
}

Row Cells(const Row& row, const std::vector<int>& widths)
{
    Row cells;
    for (std::size_t i = 0; i < row.size(); ++i) cells.push_back(Pad(Cut(row[i], widths[i]), widths[i]));
    while (!cells.empty() && cells.back().find_last_not_of(' ') == std::string::npos) cells.pop_back();
    if (!cells.empty()) cells.back().erase(cells.back().find_last_not_of(' ') + 1);
    return cells;
}

std::string RowText(const Row& cells)
{
    std::string line;
    for (const std::string& cell : cells) line += (line.empty() ? "" : std::string(kGap, ' ')) + cell;
    return line;
}
}  // namespace

std::string Table(const std::vector<Row>& rows, int width, const PaintRow& paint)
{
    std::vector<int> widths = Widths(rows);
    Fit(widths, width);
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        Row cells = Cells(rows[i], widths);
        if (paint) paint(i, cells);
        text += (i == 0 ? "" : "\n") + RowText(cells);
    }
    return text;
}

std::string Unaligned(const std::vector<Row>& rows)
{
    std::string text;
    for (const Row& row : rows) text += (text.empty() ? "" : "\n") + RowText(Cells(row, Widths({row})));
    return text;
}

namespace
{
constexpr int kNarrowestBar = 4;
constexpr int kWidestBar = 42;

std::string Repeated(const char* symbol, int times)
{
    std::string text;
    for (int i = 0; i < times; ++i) text += symbol;
    return text;
}

// Counts in half columns, because "╸" fills half of one.
std::string LineBar(int position, int length, int width)
{
    if (length <= 0) return Repeated("─", width);
    const auto halves = static_cast<int>(std::int64_t{std::clamp(position, 0, length)} * 2 * width / length);
    const int full = halves / 2;
    const int half = halves % 2;
    return Repeated("━", full) + Repeated("╸", half) + Repeated("─", width - full - half);
}
}  // namespace

std::string ProgressBar(int position, int length, int width, bool utf8)
{
    const int fitting = std::clamp(width, kNarrowestBar, kWidestBar);
    return utf8 ? LineBar(position, length, fitting) : Bar(position, length, fitting);
}

namespace
{
constexpr std::size_t kPerLine = 16;
constexpr std::size_t kHalf = kPerLine / 2;

std::string Digits(std::string_view bytes)
{
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < kPerLine; ++i)
    {
        const bool there = i < bytes.size();
        if (there) std::snprintf(digits, sizeof(digits), " %02x", static_cast<unsigned char>(bytes[i]));
        text += (i == kHalf ? " " : "") + std::string(there ? digits : "   ");
    }
    return text;
}

std::string Characters(std::string_view bytes)
{
    std::string text(bytes);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '.');
    return text;
}
}  // namespace

std::string Hex(std::string_view bytes)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes)
    {
        text += kDigits[static_cast<unsigned char>(byte) >> 4];
        text += kDigits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

std::string Hexdump(std::string_view bytes)
{
    std::string text;
    char place[24];
    for (std::size_t at = 0; at < bytes.size(); at += kPerLine)
    {
        const std::string_view part = bytes.substr(at, kPerLine);
        std::snprintf(place, sizeof(place), "%08zx", at);
        text += (at == 0 ? "" : "\n") + std::string(place) + " " + Digits(part) + "  |" + Characters(part) + "|";
    }
    return text;
}

std::string Fitting(const Lines& parts, int width)
{
    constexpr int kFieldGap = 3;
    std::string line;
    int used = 0;
    for (const std::string& part : parts)
    {
        const int gap = line.empty() ? 0 : kFieldGap;
        if (part.empty()) continue;
        if (!line.empty() && used + gap + Width(part) > width) break;
        line += std::string(static_cast<std::size_t>(gap), ' ') + part;
        used += gap + Width(part);
    }
    return line;
}

std::string ModeText(mode_t mode)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%04o", static_cast<unsigned>(mode));
    return text;
}

std::string Joined(const std::vector<std::string>& parts, const char* separator)
{
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) text += (i == 0 ? "" : separator) + parts[i];
    return text;
}

Lines Split(const std::string& text)
{
    std::istringstream in(text);
    Lines lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& words, const std::string& otherwise)
{
    return cli::DidYouMean(word, words, otherwise, ipodnames::Nearest);
}
}  // namespace ctl
