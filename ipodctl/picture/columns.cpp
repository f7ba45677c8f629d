#include "picture/columns.h"

#include <algorithm>
#include <sstream>

#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kGapOfParts = 3;
constexpr std::size_t kGapOfDrawing = 2;
}  // namespace

std::string Fitting(const Lines& parts, int width)
{
    std::string line;
    int used = 0;
    for (const std::string& part : parts)
    {
        const int gap = line.empty() ? 0 : kGapOfParts;
        if (part.empty()) continue;
        if (!line.empty() && used + gap + Width(part) > width) break;
        line += std::string(static_cast<std::size_t>(gap), ' ') + part;
        used += gap + Width(part);
    }
    return line;
}

Lines Beside(const Drawing& drawing, const Lines& lines)
{
    if (drawing.lines.empty()) return lines;
    const std::string empty(static_cast<std::size_t>(drawing.width), ' ');
    Lines both;
    for (std::size_t i = 0; i < std::max(drawing.lines.size(), lines.size()); ++i)
    {
        const std::string& left = i < drawing.lines.size() ? drawing.lines[i] : empty;
        both.push_back(i < lines.size() ? left + std::string(kGapOfDrawing, ' ') + lines[i] : left);
    }
    return both;
}

std::string Joined(const Lines& lines)
{
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

Lines Split(const std::string& text)
{
    std::istringstream in(text);
    Lines lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
}  // namespace ctl
