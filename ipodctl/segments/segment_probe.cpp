#include "segments/segment_probe.h"

#include <QBXIpodShareMemory.h>
#include <sys/stat.h>

#include <chrono>
#include <exception>
#include <thread>

namespace ctl
{
namespace
{
template <class Vector>
std::string Missing(QBXSharedSegment& segment, const std::vector<const char*>& names)
{
    for (const char* name : names)
        if (segment.find<Vector>(name).first == nullptr) return std::string("it has no vector ") + name;
    return {};
}

// The object may be longer: it is between the two steps in which a service grows its segment.
bool FitsItsObject(const QBXSharedSegment& segment, const char* name)
{
    const std::size_t size = segment.get_size();
    return size >= sizeof(QBXSharedSegment::segment_manager) && size <= LookAt(name).size;
}

// A process that dies with the lock leaves it held for all. So the lock is only tried here, and what may crash works on
// a copy; whoever waits in vain is ended from outside.
void WaitUntilUnlocked(const char* name)
{
    QBXSharedSegment segment(boost::interprocess::open_only, name);
    if (!FitsItsObject(segment, name)) return;
    const auto nothing = [] {};
    while (!segment.try_atomic_func(nothing)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

std::string LookInside(const char* name, const std::vector<const char*>& lists, const std::vector<const char*>& buffers)
{
    try
    {
        WaitUntilUnlocked(name);
        QBXSharedSegment segment(boost::interprocess::open_copy_on_write, name);
        if (!FitsItsObject(segment, name)) return "it was made for another word size, or is damaged";
        if (!segment.check_sanity()) return "its inside is damaged";
        const std::string missing = Missing<QBXStringPageVector>(segment, lists);
        return missing.empty() ? Missing<QBXByteVector>(segment, buffers) : missing;
    }
    catch (const std::exception& error)
    {
        return std::string("it cannot be opened: ") + error.what();
    }
}
}  // namespace

const char* WhyUnreadable(ChildOutcome::End end)
{
    switch (end)
    {
        case ChildOutcome::End::Hung:
            return "it does not answer: its lock is held, or it was never finished";
        case ChildOutcome::End::Crashed:
            return "its inside is damaged: looking at it ends a process";
        default:
            return "no process for the probe";
    }
}

SegmentObject LookAt(const std::string& segment)
{
    struct stat status;
    if (lstat(("/dev/shm/" + segment).c_str(), &status) != 0) return {};
    return {true,
            S_ISREG(status.st_mode),
            status.st_uid,
            status.st_mode & 07777,
            static_cast<std::size_t>(status.st_size),
            status.st_ino};
}

std::string Probe(const char* segment, const std::vector<const char*>& lists, const std::vector<const char*>& buffers)
{
    const ChildOutcome outcome = RunInChild([&] { return LookInside(segment, lists, buffers); });
    return outcome.end == ChildOutcome::End::Well ? outcome.text : WhyUnreadable(outcome.end);
}
}  // namespace ctl
