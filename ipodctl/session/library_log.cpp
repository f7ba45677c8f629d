#include "session/library_log.h"

#include <QBXLog.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace ctl
{
namespace
{
constexpr std::string_view kFailed = ": Failed to call dbus method. Reason: ";

// "LEVEL" or "LEVEL:FILE"; empty when nothing is to be shown.
std::string WantedLog(bool verbose)
{
    const char* const environment = std::getenv("QBX_LOG");
    if (verbose) return "DEBUG";
    return environment == nullptr || liblog_category == nullptr ? "" : environment;
}

bool LogInto(int memory, const std::string& wanted)
{
    const std::string level = wanted.empty() ? "ERROR" : wanted.substr(0, wanted.find(':'));
    const std::string config = level + ":/proc/self/fd/" + std::to_string(memory);
    return memory >= 0 && level != "FATAL" && QBX_LogInit(config.c_str()) == 1;
}

std::unique_ptr<FILE, int (*)(FILE*)> OpenTarget(const std::string& wanted)
{
    constexpr auto leaveOpen = [](FILE*) { return 0; };
    const std::size_t colon = wanted.find(':');
    if (colon != std::string::npos) return {std::fopen(wanted.c_str() + colon + 1, "ae"), std::fclose};
    return {wanted.empty() ? nullptr : stderr, leaveOpen};
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

void LogCall(const std::string& call, std::chrono::microseconds taken, const char* reason)
{
    constexpr int kDebug = 20;
    if (liblog_category == nullptr) return;
    zlog(liblog_category, "ipodctl", std::strlen("ipodctl"), __func__, std::strlen(__func__), __LINE__, kDebug,
         "%s() %s %.1f ms%s%s", call.c_str(), reason == nullptr ? "took" : "failed after",
         static_cast<double>(taken.count()) / 1000, reason == nullptr ? "" : ": ", reason == nullptr ? "" : reason);
}

LibraryLog::LibraryLog(bool verbose)
    : m_memory(memfd_create("ipodctl-log", MFD_CLOEXEC)),
      m_readable(LogInto(m_memory, WantedLog(verbose))),
      m_passedTo(OpenTarget(m_readable ? WantedLog(verbose) : ""))
{
    // Without a category every log site would write a warning instead.
    if (!m_readable && liblog_category == nullptr) QBX_LogInit(verbose ? "DEBUG" : "ERROR:/dev/null");
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
    if (m_passedTo == nullptr) return ReasonIn(log);
    std::fwrite(log.data(), 1, log.size(), m_passedTo.get());
    std::fflush(m_passedTo.get());
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
