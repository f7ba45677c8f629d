// Stands for the unit's zlog, a library of its own.
#include <zlog.h>

void zlog(zlog_category_t*, const char*, size_t, const char*, size_t, long, int, const char*, ...) {}
