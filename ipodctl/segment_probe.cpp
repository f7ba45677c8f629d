#include "segment_probe.h"

#include <QBXIpodShareMemory.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>

namespace ctl
{
namespace
{
constexpr int kPatience = 3000;  // milliseconds

template <class Vector>
std::string Missing(QBXSharedSegment& segment, const std::vector<const char*>& names)
{
    for (const char* name : names)
        if (segment.find<Vector>(name).first == nullptr) return std::string("it has no vector ") + name;
    return {};
}

std::string LookInside(const char* name, const std::vector<const char*>& lists, const std::vector<const char*>& buffers)
{
    try
    {
        QBXSharedSegment segment(boost::interprocess::open_only, name);
        if (segment.get_size() != LookAt(name).size) return "it was made for another word size, or is damaged";
        if (!segment.check_sanity()) return "its inside is damaged";
        const std::string missing = Missing<QBXStringPageVector>(segment, lists);
        return missing.empty() ? Missing<QBXByteVector>(segment, buffers) : missing;
    }
    catch (const std::exception& error)
    {
        return std::string("it cannot be opened: ") + error.what();
    }
}

// What the child wrote until it ended, or nothing after @p hung was set.
std::string ReadFindings(int input, bool& hung)
{
    std::string text;
    char block[256];
    for (pollfd ready{input, POLLIN, 0};;)
    {
        hung = poll(&ready, 1, kPatience) <= 0;
        const ssize_t count = hung ? 0 : read(input, block, sizeof(block));
        if (count <= 0) return text;
        text.append(block, static_cast<std::size_t>(count));
    }
}

std::string Judge(pid_t child, const std::string& findings, bool hung)
{
    if (hung) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (hung) return "it does not answer: its lock is held, or it was never finished";
    if (WIFSIGNALED(status)) return "its inside is damaged: looking at it ends a process";
    return findings;
}
}  // namespace

SegmentObject LookAt(const std::string& segment)
{
    struct stat status;
    if (lstat(("/dev/shm/" + segment).c_str(), &status) != 0) return {};
    return {true, S_ISREG(status.st_mode), status.st_uid, status.st_mode & 07777,
            static_cast<std::size_t>(status.st_size)};
}

std::string Probe(const char* segment, const std::vector<const char*>& lists, const std::vector<const char*>& buffers)
{
    int ends[2];
    if (pipe(ends) != 0) return "no pipe for the probe";
    const pid_t child = fork();
    if (child == 0)
    {
        const std::string findings = LookInside(segment, lists, buffers);
        const ssize_t written = write(ends[1], findings.data(), findings.size());
        _exit(written < 0 ? 1 : 0);
    }
    close(ends[1]);
    bool hung = false;
    const std::string findings = ReadFindings(ends[0], hung);
    close(ends[0]);
    return child < 0 ? "no process for the probe" : Judge(child, findings, hung);
}
}  // namespace ctl
