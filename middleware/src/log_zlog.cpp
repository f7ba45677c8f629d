// Logging set-up on a system that has zlog.
#include <QBXLog.h>

zlog_category_t* liblog_category = nullptr;

int QBX_LogInit(const char* config)
{
    QBX_LogExit();
    if (zlog_init(config) != 0) return 0;
    liblog_category = zlog_get_category("ipod");
    return liblog_category == nullptr ? 0 : 1;
}

void QBX_LogExit(void)
{
    if (liblog_category == nullptr) return;
    liblog_category = nullptr;
    zlog_fini();
}
