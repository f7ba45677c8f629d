/// @file
/// The screen as lines of text, whatever the terminal is. Pure.
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

/// Printable text from a column on.
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

/// One line for each row of the screen, none wider than it.
using Frame = std::vector<Line>;

/// Rows that remain for the list on a screen of so many.
int ListRows(int rows);

/// The screen at a moment. Any size is fine; on a small one the least important is left out.
Frame Draw(const Model& model, int rows, int columns, Time now);

/// A name as every terminal shows it in the same width: printable, and without what joins or recolours emoji.
std::string CellText(std::string_view name);
}  // namespace ctl::browse
