#include "session/library_log.h"

#include <QBXLog.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

namespace ctl
{
namespace
{
constexpr std::string_view kFailed = ": Failed to call dbus method. Reason: ";

bool LogInto(int memory, bool verbose)
{
    const std::string config = std::string(verbose ? "DEBUG" : "ERROR") + ":/proc/self/fd/" + std::to_string(memory);
    return memory >= 0 && QBX_LogInit(config.c_str()) == 1;
}

std::string ReasonIn(const std::string& log)
{
    const std::size_t found = log.find(kFailed);
    if (found == std::string::npos) return {};
    const std::size_t begin = found + kFailed.size();
    const std::size_t end = log.find(".\n", begin);
    return log.substr(begin, end == std::string::npos ? end : end - begin);
}
}  // namespace

LibraryLog::LibraryLog(bool verbose)
    : m_memory(memfd_create("ipodctl-log", MFD_CLOEXEC)), m_verbose(verbose), m_readable(LogInto(m_memory, verbose))
{
    // Without a category every log site would write a warning to standard output.
    if (!m_readable) QBX_LogInit(verbose ? "DEBUG" : "ERROR:/dev/null");
}

LibraryLog::~LibraryLog()
{
    TakeFailure();
    QBX_LogExit();
    if (m_memory >= 0) close(m_memory);
}

std::string LibraryLog::TakeFailure()
{
    const std::string log = TakeText();
    if (m_verbose) std::fwrite(log.data(), 1, log.size(), stderr);
    return ReasonIn(log);
}

// The log appends, so it can be emptied behind its back.
std::string LibraryLog::TakeText()
{
    std::string text;
    char block[4096];
    for (ssize_t got = 1; m_readable && got > 0;)
    {
        got = pread(m_memory, block, sizeof(block), static_cast<off_t>(text.size()));
        if (got > 0) text.append(block, static_cast<std::size_t>(got));
    }
    if (!text.empty() && ftruncate(m_memory, 0) != 0) m_readable = false;
    return text;
}
}  // namespace ctl
