/// @file
/// Logging of the head unit. Log sites write through zlog() with this category, and print one warning line
/// instead while it is null.
#pragma once

#include <zlog.h>

#ifdef __cplusplus
extern "C"
{
#endif

    /// Category of the head unit's applications. Null until logging is set up.
    extern zlog_category_t* liblog_category;

    /// Sets logging up and returns 1. Returns 0 and changes nothing if the configuration cannot be used, or if the
    /// application has initialized zlog itself; such an application sets `liblog_category` to one of its categories.
    /// May be called again, but not while another thread logs.
    ///
    /// @param config  "LEVEL": records of that level and above go to standard error; LEVEL is DEBUG, INFO, NOTICE,
    ///                WARN, ERROR, or FATAL. "LEVEL:FILE": they are appended to FILE; where zlog is installed, the
    ///                name may not contain a quote, percent sign, comma, semicolon, or number sign. Any other text is
    ///                the path of a zlog configuration, of which category "ipod" is used; it fails where zlog is not
    ///                installed.
    ///
    /// The environment variable QBX_LOG, with the same text, sets logging up before main().
    int QBX_LogInit(const char* config);

    /// Ends logging: the category is null again. Ends zlog if QBX_LogInit() initialized it. May not be called while
    /// another thread logs.
    void QBX_LogExit(void);

#ifdef __cplusplus
}
#endif
