// Logging setup on systems with zlog.
#include <QBXLog.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "log_config.h"

zlog_category_t* liblog_category = nullptr;

namespace
{
// Whether zlog was initialized here. If the application did it, the application must also shut it down.
bool initialized = false;

// These characters are special to zlog in the file name of a rule.
constexpr char kNotInRules[] = "\"%,;#\n";

// zlog_init() refuses to be called twice; zlog_reload() keeps the old configuration if the new one is unusable.
bool Configure(const char* path)
{
    return (initialized ? zlog_reload(path) : zlog_init(path)) == 0;
}

// The same record format as the stand-in. Files are not rotated, so no lock file is needed.
std::string ConfigurationFor(const LogConfig& config)
{
    return "[global]\n"
           "rotate lock file = /dev/null\n"
           "[formats]\n"
           "line = \"%d(%F %T).%ms %-5V %F %U:%L %m%n\"\n"
           "[rules]\n"
           "ipod." +
           std::string(config.level.name) + (config.file ? " \"" + *config.file + "\"" : " >stderr") + "; line\n";
}

// Before version 1.2.16, zlog reads configurations only from files.
bool ConfigureFromMemory(const std::string& configuration)
{
    const int memory = memfd_create("zlog.conf", MFD_CLOEXEC);
    if (memory < 0) return false;
    const std::string path = "/proc/self/fd/" + std::to_string(memory);
    const bool whole = write(memory, configuration.data(), configuration.size()) == ssize_t(configuration.size());
    const bool configured = whole && Configure(path.c_str());
    close(memory);
    return configured;
}

// zlog does not report reliably whether it can write to the file.
bool CanOpen(const LogConfig& config)
{
    const int out = config.Open();
    if (out > STDERR_FILENO) close(out);
    return out >= 0;
}

bool Configure(const LogConfig& config)
{
    if (config.file && config.file->find_first_of(kNotInRules) != std::string::npos) return false;
    return CanOpen(config) && ConfigureFromMemory(ConfigurationFor(config));
}
}  // namespace

int QBX_LogInit(const char* config)
{
    errno = EINVAL;
    // zlog's own defaults would write to standard output.
    if (config == nullptr || *config == '\0') return 0;
    const std::optional<LogConfig> parsed = ParseLogConfig(config);
    if (!(parsed ? Configure(*parsed) : Configure(config))) return 0;
    initialized = true;
    liblog_category = zlog_get_category("ipod");
    if (liblog_category != nullptr) return 1;
    QBX_LogExit();
    return 0;
}

void QBX_LogExit(void)
{
    liblog_category = nullptr;
    if (initialized) zlog_fini();
    initialized = false;
}
