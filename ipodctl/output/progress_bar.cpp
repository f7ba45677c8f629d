#include "output/progress_bar.h"

#include <algorithm>
#include <cstdint>

#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kNarrowest = 4;
constexpr int kWidest = 42;

std::string Repeated(const char* symbol, int times)
{
    std::string text;
    for (int i = 0; i < times; ++i) text += symbol;
    return text;
}

// In half columns, because the line has a symbol for half of one.
std::string Line(int position, int length, int width)
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
    const int fitting = std::clamp(width, kNarrowest, kWidest);
    return utf8 ? Line(position, length, fitting) : Bar(position, length, fitting);
}
}  // namespace ctl
