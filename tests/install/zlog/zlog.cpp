// Stands for zlog where it lies in a prefix of its own. Its one category swallows every record.
#include "zlog.h"

#include <unistd.h>

struct zlog_category_s
{
};

namespace
{
zlog_category_t category;
}

int zlog_init(const char* config)
{
    return config == nullptr || access(config, R_OK) == 0 ? 0 : -1;
}

int zlog_reload(const char* config)
{
    return zlog_init(config);
}

void zlog_fini(void) {}

zlog_category_t* zlog_get_category(const char*)
{
    return &category;
}

void zlog(zlog_category_t*, const char*, size_t, const char*, size_t, long, int, const char*, ...) {}
