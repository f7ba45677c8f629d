#include "segments/segment_probe.h"

#include <QBXIpodShareMemory.h>
#include <sys/stat.h>

#include <exception>

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
