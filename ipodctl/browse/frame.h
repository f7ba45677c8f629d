/// @file
/// Renders the model to lines of styled text, independent of the terminal.
#pragma once

#include <string>
#include <vector>

#include "browse/model.h"

namespace ctl::browse
{
enum class Style
{
    Plain,
    Title,
    Selected,
    Dim,
    Strong,
    Playing,
    Warning,
};

/// Printable text that starts at a column.
struct Span
{
    int column;
    std::string text;
    Style style;

    bool operator==(const Span& other) const
    {
        return column == other.column && style == other.style && text == other.text;
    }
};

using Line = std::vector<Span>;

/// One line per screen row, none wider than the screen.
using Frame = std::vector<Line>;

/// Returns how many of @p rows screen rows the list gets.
int ListRows(int rows);

/// Renders the screen at time @p now. Any size works; a small screen omits the least important lines.
Frame Draw(const Model& model, int rows, int columns, Time now);

/// Returns @p name in a form that has the same width on every terminal: printable, without emoji joiners and modifiers.
std::string CellText(std::string_view name);
}  // namespace ctl::browse
