/// @file
/// The selected row and the scroll position of a list.
#pragma once

namespace ctl::browse
{
struct ListCursor
{
    int at = 0;   ///< the selected row
    int top = 0;  ///< the first visible row
};

/// Selects row @p to, clamped to the list of @p count rows, and scrolls just enough to show it among @p height rows.
ListCursor Moved(ListCursor cursor, int to, int count, int height);

/// Like Moved(), but centers the row if it was not visible, to show its surroundings.
ListCursor Jumped(ListCursor cursor, int to, int count, int height);
}  // namespace ctl::browse
