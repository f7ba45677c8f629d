/// @file
/// Stand-in for the log sink on systems without zlog: the part of its interface that log sites use. If a later
/// directory of the search path contains a zlog.h, that one is used. Copies of this file may follow each other in the
/// path: only the last one declares anything, so there is no include guard.
#if defined(__GNUC__)
// #include_next causes a warning outside of system headers.
#pragma GCC system_header
#endif

#if defined(__has_include_next)
#if __has_include_next(<zlog.h>)
#include_next <zlog.h>
#define IPOD_ZLOG_IS_NOT_HERE
#endif
#endif

#if !defined(IPOD_ZLOG_IS_NOT_HERE) && !defined(IPOD_ZLOG_STANDIN)
#define IPOD_ZLOG_STANDIN

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

#endif
