/// @file
/// Logging of the head unit. Log sites write through zlog() with this category, and print one warning line
/// instead while it is null.
#pragma once

#include <zlog.h>

#ifdef __cplusplus
extern "C"
{
#endif

    /// Category of the unit's applications. Null until logging is set up.
    extern zlog_category_t* liblog_category;

    /// Sets logging up and returns 1. May be called again, but not while another thread logs. Returns 0 for a
    /// configuration that cannot be used: logging stays as it was, but where the real zlog is installed it ends.
    ///
    /// @param config  where the real zlog is installed: path of its configuration file, category "ipod" is used.
    ///                Otherwise "LEVEL" or "LEVEL:FILE": lines of that level and above go to FILE, or to standard
    ///                error; LEVEL is DEBUG, INFO, WARN or ERROR.
    int QBX_LogInit(const char* config);

    /// Ends logging: the category is null again. Not while another thread logs.
    void QBX_LogExit(void);

#ifdef __cplusplus
}
#endif
