#include "output/moment.h"

#include <glib.h>

namespace ctl
{
namespace
{
std::string Written(GDateTime* time, const char* format)
{
    gchar* const text = g_date_time_format(time, format);
    std::string result = text;
    g_free(text);
    return result;
}
}  // namespace

Moment Moment::Now()
{
    GDateTime* const now = g_date_time_new_now_local();
    char fraction[8];
    g_snprintf(fraction, sizeof(fraction), ".%03d", g_date_time_get_microsecond(now) / 1000);
    Moment moment{Written(now, "%FT%T") + fraction + Written(now, "%:z"), Written(now, "%T") + fraction};
    g_date_time_unref(now);
    return moment;
}
}  // namespace ctl
