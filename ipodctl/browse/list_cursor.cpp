#include "browse/list_cursor.h"

#include <algorithm>

namespace ctl::browse
{
ListCursor Moved(ListCursor cursor, int to, int count, int height)
{
    const int rows = std::max(1, height);
    const int at = std::clamp(to, 0, std::max(0, count - 1));
    const int highest = std::max(0, count - rows);
    return {at, std::clamp(std::clamp(cursor.top, at - rows + 1, at), 0, highest)};
}

ListCursor Jumped(ListCursor cursor, int to, int count, int height)
{
    const bool shown = to >= cursor.top && to < cursor.top + height;
    return Moved({to, shown ? cursor.top : to - height / 2}, to, count, height);
}
}  // namespace ctl::browse
