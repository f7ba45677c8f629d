/// @file
/// Stand-in for the log sink where the system has no zlog: the part of its interface that log sites use.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C"
{
#endif

    typedef struct zlog_category_s zlog_category_t;

    /// Writes one record. The lengths count bytes without the terminator. Any thread may call it.
    void zlog(zlog_category_t* target, const char* file, size_t filelen, const char* func, size_t funclen, long line,
              int level, const char* format, ...) __attribute__((format(printf, 8, 9)));

#ifdef __cplusplus
}
#endif
