#include "internal/log.h"

#include <unistd.h>

#include <cstdio>

namespace qbx
{
void WarnLogNotReady(const LogSite& site)
{
    std::printf("[%d][file:%s][func:%s][line:%d]Warn:Log system not init.\n", static_cast<int>(getpid()), kLogFile,
                site.function, static_cast<int>(site.line));
}
}  // namespace qbx
