// Logging set-up on a system that has zlog.
#include <QBXLog.h>

zlog_category_t* liblog_category = nullptr;

int QBX_LogInit(const char* config)
{
    QBX_LogExit();
    if (zlog_init(config) != 0) return 0;
    liblog_category = zlog_get_category("ipod");
    if (liblog_category != nullptr) return 1;
    // zlog_init() refuses to be called twice.
    zlog_fini();
    return 0;
}

void QBX_LogExit(void)
{
    if (liblog_category == nullptr) return;
    liblog_category = nullptr;
    zlog_fini();
}
