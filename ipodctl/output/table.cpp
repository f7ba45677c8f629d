#include "output/table.h"

#include <algorithm>
#include <numeric>

#include "output/text.h"

namespace ctl
{
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

// Narrows the widest column until the line fits, or until nothing sensible would be left of it.
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

std::string RowText(const Row& row, const std::vector<int>& widths)
{
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
        line += Pad(Cut(row[i], widths[i]), widths[i]) + std::string(kGap, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}
}  // namespace

std::string Table(const std::vector<Row>& rows, int width)
{
    std::vector<int> widths = Widths(rows);
    Fit(widths, width);
    std::string text;
    for (const Row& row : rows) text += (text.empty() ? "" : "\n") + RowText(row, widths);
    return text;
}

std::string Unaligned(const std::vector<Row>& rows)
{
    std::string text;
    for (const Row& row : rows) text += (text.empty() ? "" : "\n") + RowText(row, Widths({row}));
    return text;
}
}  // namespace ctl
