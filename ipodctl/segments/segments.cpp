#include "segments/segments.h"

#include <QBXIpodShareMemory.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <fstream>
#include <sstream>
#include <thread>

#include "output/failure.h"
#include "output/output.h"

namespace ctl
{
const std::vector<SegmentPlan>& SegmentPlans()
{
    static const std::vector<SegmentPlan> plans = {
        {"lists",
         kListSegmentName,
         kListSegmentSize,
         {"VecPlayingListShareMemory", "VecDBListShareMemory", "VecDBListPinyinShareMemory", "VecUpdateListShareMemory",
          "VecUpdateListPinyinShareMemory", "VecDeviceListShareMemory"},
         {}},
        {"buffers",
         kBufferSegmentName,
         kBufferSegmentSize,
         {},
         {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory", "VecEapWriteBufferShareMemory",
          "VecEapReadBufferShareMemory"}}};
    return plans;
}

namespace
{
struct Mapping
{
    ino_t inode = 0;
    std::string path;
};

Mapping MappingIn(const std::string& line)
{
    std::istringstream words(line);
    std::string ignored;
    Mapping mapping;
    words >> ignored >> ignored >> ignored >> ignored >> mapping.inode >> std::ws;
    std::getline(words, mapping.path);
    return mapping;
}

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Compares only the file name: the process may see /dev/shm under another path.
bool IsOf(const Mapping& mapping, const std::string& segment)
{
    return EndsWith(mapping.path, "/" + segment) || EndsWith(mapping.path, "/" + segment + " (deleted)");
}
}  // namespace

SegmentUse UseIn(std::istream& maps, const std::string& segment, ino_t now)
{
    SegmentUse use = SegmentUse::Unknown;
    for (std::string line; std::getline(maps, line);)
    {
        const Mapping mapping = MappingIn(line);
        if (!IsOf(mapping, segment)) continue;
        if (mapping.inode == now) return SegmentUse::Same;
        use = SegmentUse::Other;
    }
    return use;
}

SegmentUse UseBy(pid_t process, const std::string& segment, ino_t now)
{
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    return UseIn(maps, segment, now);
}

namespace
{
template <class Vector>
std::string Missing(QBXSharedSegment& segment, const std::vector<const char*>& names)
{
    for (const char* name : names)
        if (segment.find<Vector>(name).first == nullptr) return std::string("it has no vector ") + name;
    return {};
}

// A service grows a segment in two steps; between them, the object is larger than the segment.
bool FitsItsObject(const QBXSharedSegment& segment, const char* name)
{
    const std::size_t size = segment.get_size();
    return size >= sizeof(QBXSharedSegment::segment_manager) && size <= Inspect(name).size;
}

// A process that dies while it holds the lock leaves it locked forever. So this function only tries the lock, and
// RunInChild() kills the child if that takes too long. Code that may crash uses a copy-on-write mapping.
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
        if (!segment.check_sanity()) return "it is damaged";
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
            return "it is damaged: reading it crashes a process";
        default:
            return "cannot start a process to check it";
    }
}

SegmentObject Inspect(const std::string& segment)
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

namespace
{
namespace bip = boost::interprocess;

constexpr std::size_t kEntrySize = sizeof(PlayListSongNameStr);
constexpr char kDamaged[] = "its elements are outside the segment";

struct Range
{
    const char* begin;
    std::size_t size;
};

// Returns whether the range lies within the segment.
bool Holds(const QBXSharedSegment& segment, const Range& range)
{
    const char* const begin = static_cast<const char*>(segment.get_address());
    const char* const end = begin + segment.get_size();
    return range.size == 0 ||
           (range.begin >= begin && range.begin < end && range.size <= static_cast<std::size_t>(end - range.begin));
}

template <class Vector>
Json Described(QBXSharedSegment& segment, const char* name)
{
    const Vector* const vector = segment.find<Vector>(name).first;
    Json json{{"name", name}, {"elements", 0}, {"capacity", 0}, {"problem", vector == nullptr ? "missing" : ""}};
    if (vector == nullptr) return json;
    json["elements"] = vector->size();
    json["capacity"] = vector->capacity();
    const std::size_t most = segment.get_size() / sizeof(typename Vector::value_type);
    const Range range{reinterpret_cast<const char*>(vector->data()),
                      std::min(vector->capacity(), most + 1) * sizeof(typename Vector::value_type)};
    if (vector->size() > vector->capacity() || !Holds(segment, range)) json["problem"] = kDamaged;
    return json;
}

std::string DescribeAll(const SegmentPlan& plan)
{
    try
    {
        QBXSharedSegment segment(bip::open_copy_on_write, plan.name);
        if (!segment.check_sanity()) return Dump({{"problem", "it is damaged"}});
        Json json{{"problem", ""}, {"free", segment.get_free_memory()}, {"objects", segment.get_num_named_objects()}};
        json["vectors"] = Json::array();
        for (const char* name : plan.lists) json["vectors"].push_back(Described<QBXStringPageVector>(segment, name));
        for (const char* name : plan.buffers) json["vectors"].push_back(Described<QBXByteVector>(segment, name));
        return Dump(json);
    }
    catch (const std::exception& error)
    {
        return Dump({{"problem", std::string("it cannot be opened: ") + error.what()}});
    }
}

// Returns 'B' followed by the bytes of the vector, or 'E' followed by an error message.
template <class Vector>
std::string Copied(QBXSharedSegment& segment, const std::string& name)
{
    const Vector* const vector = segment.find<Vector>(name.c_str()).first;
    if (vector == nullptr) return "Ethe segment has no vector " + name;
    const std::size_t most = segment.get_size() / sizeof(typename Vector::value_type);
    const Range range{reinterpret_cast<const char*>(vector->data()),
                      std::min(vector->size(), most + 1) * sizeof(typename Vector::value_type)};
    if (!Holds(segment, range)) return "E" + name + ": " + kDamaged;
    return "B" + std::string(range.begin, range.size);
}

bool IsIn(const std::vector<const char*>& names, const std::string& name)
{
    return std::any_of(names.begin(), names.end(), [&](const char* each) { return name == each; });
}

std::string CopyVector(const SegmentPlan& plan, const std::string& name)
{
    try
    {
        QBXSharedSegment segment(bip::open_copy_on_write, plan.name);
        return IsIn(plan.lists, name) ? Copied<QBXStringPageVector>(segment, name)
                                      : Copied<QBXByteVector>(segment, name);
    }
    catch (const std::exception& error)
    {
        return std::string("Ethe segment cannot be opened: ") + error.what();
    }
}
}  // namespace

SegmentContents ReadContents(const SegmentPlan& plan)
{
    const ChildOutcome outcome = RunInChild([&] { return DescribeAll(plan); });
    SegmentContents contents;
    if (outcome.end != ChildOutcome::End::Well) contents.problem = WhyUnreadable(outcome.end);
    const Json json = Json::parse(outcome.text, nullptr, false);
    if (!contents.problem.empty() || !json.is_object()) return contents;
    contents.problem = json["problem"];
    if (!contents.problem.empty()) return contents;
    contents.free = json["free"];
    contents.objects = json["objects"];
    for (const Json& each : json["vectors"])
        contents.vectors.push_back(
            {each["name"], IsIn(plan.lists, each["name"]), each["elements"], each["capacity"], each["problem"]});
    return contents;
}

std::string ReadVector(const SegmentPlan& plan, const std::string& name)
{
    const ChildOutcome outcome = RunInChild([&] { return CopyVector(plan, name); });
    if (outcome.end != ChildOutcome::End::Well)
        throw Failure(kNoSegments, std::string("segment ") + plan.name + ": " + WhyUnreadable(outcome.end));
    if (outcome.text.empty() || outcome.text[0] != 'B')
        throw Failure(kNoSegments, outcome.text.empty() ? "the vector cannot be read" : outcome.text.substr(1));
    return outcome.text.substr(1);
}

std::vector<std::string> NamesIn(const std::string& bytes)
{
    std::vector<std::string> names;
    for (std::size_t at = 0; at + kEntrySize <= bytes.size(); at += kEntrySize)
        names.emplace_back(bytes.data() + at, strnlen(bytes.data() + at, kEntrySize));
    return names;
}
}  // namespace ctl
