/// @file
/// Where one stands in a list of which a part is shown.
#pragma once

namespace ctl::browse
{
struct ListCursor
{
    int at = 0;   ///< the selected row
    int top = 0;  ///< the first row that is shown
};

/// The cursor at a row, or at the nearest there is; scrolled as little as it takes to show it among @p height rows.
ListCursor Moved(ListCursor cursor, int to, int count, int height);

/// The same, but with the row in the middle when it was not shown: so that one sees what surrounds it.
ListCursor Jumped(ListCursor cursor, int to, int count, int height);
}  // namespace ctl::browse
