/// @file
/// The part of zlog's interface that this project and applications use.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C"
{
#endif

    typedef struct zlog_category_s zlog_category_t;

    /// Reads the configuration file at @p config. Returns 0, or -1 if the file cannot be read or is invalid, or if zlog
    /// is already initialized.
    int zlog_init(const char* config);

    /// Replaces the configuration; categories stay valid. Returns 0, or -1 and keeps the configuration.
    int zlog_reload(const char* config);

    /// Ends logging. Every category is invalid afterwards.
    void zlog_fini(void);

    /// Returns the category @p name, or null before zlog_init().
    zlog_category_t* zlog_get_category(const char* name);

    /// Writes one record through every matching rule. The lengths count bytes without the terminator.
    void zlog(zlog_category_t* category, const char* file, size_t filelen, const char* func, size_t funclen, long line,
              int level, const char* format, ...) __attribute__((format(printf, 8, 9)));

#ifdef __cplusplus
}
#endif

enum
{
    ZLOG_LEVEL_DEBUG = 20,
    ZLOG_LEVEL_INFO = 40,
    ZLOG_LEVEL_NOTICE = 60,
    ZLOG_LEVEL_WARN = 80,
    ZLOG_LEVEL_ERROR = 100,
    ZLOG_LEVEL_FATAL = 120
};

// Named variadic arguments are not standard C or C++: with -pedantic, compilers accept them only in system headers.
#define ZLOG_AT_LEVEL(category, level, format, args...) \
    zlog(category, __FILE__, sizeof(__FILE__) - 1, __func__, sizeof(__func__) - 1, __LINE__, level, format, ##args)
#define zlog_info(category, format, args...) ZLOG_AT_LEVEL(category, ZLOG_LEVEL_INFO, format, ##args)
#define zlog_error(category, format, args...) ZLOG_AT_LEVEL(category, ZLOG_LEVEL_ERROR, format, ##args)
