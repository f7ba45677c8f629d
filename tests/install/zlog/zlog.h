/* The part of zlog's interface that the library and applications use. */
#ifndef ZLOG_H
#define ZLOG_H

#include <stddef.h>

#ifdef __cplusplus
extern "C"
{
#endif

    typedef struct zlog_category_s zlog_category_t;

    int zlog_init(const char* config);
    int zlog_reload(const char* config);
    void zlog_fini(void);
    zlog_category_t* zlog_get_category(const char* name);
    void zlog(zlog_category_t* category, const char* file, size_t filelen, const char* func, size_t funclen, long line,
              int level, const char* format, ...) __attribute__((format(printf, 8, 9)));

#ifdef __cplusplus
}
#endif

#endif
