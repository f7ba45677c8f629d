#include <ipodkit/segments.h>
#include <sys/stat.h>

#include <chrono>
#include <exception>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "memory/child_process.h"
#include "memory/elements.h"

namespace ipodkit
{
namespace
{
namespace bip = boost::interprocess;

constexpr char kOutside[] = "its elements are outside the segment";

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

const char* WhyAbsent(const SegmentObject& object)
{
    if (!object.exists) return "it does not exist";
    return object.isMemory ? nullptr : "it exists and is not shared memory";
}

// A private mapping keeps the state in which its lock was found, so each attempt maps the segment again. The lock of a
// process that died is held forever: RunInChild() kills the child.
template <class Use>
std::string UseUnlocked(const char* name, const Use& use)
{
    for (;; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
    {
        QBXSharedSegment segment(bip::open_copy_on_write, name);
        if (!FitsItsFile(segment, name))
            throw std::runtime_error("it was created with a different word size, or is damaged");
        const auto nothing = [] {};
        if (segment.try_atomic_func(nothing)) return use(segment);
    }
}

// The child's text begins with 'B', or with 'E' if the rest is a problem.
template <class Use>
std::string InChild(const char* name, const Use& use)
{
    try
    {
        return "B" + UseUnlocked(name, use);
    }
    catch (const bip::interprocess_exception& error)
    {
        return std::string("Eit cannot be opened: ") + error.what();
    }
    catch (const std::exception& error)
    {
        return std::string("E") + error.what();
    }
}

/// Returns the text that @p use, called with the segment in a child process, returns, or the problem that it throws.
template <class Use>
tl::expected<std::string, std::string> Read(const std::string& segment, const Use& use)
{
    if (const char* const absent = WhyAbsent(InspectSegment(segment))) return tl::make_unexpected(absent);
    const ChildOutcome outcome = RunInChild([&] { return InChild(segment.c_str(), use); });
    if (outcome.end != ChildOutcome::End::Well) return tl::make_unexpected(WhyUnreadable(outcome.end));
    if (outcome.text[0] != 'B') return tl::make_unexpected(outcome.text.substr(1));
    return outcome.text.substr(1);
}

// One line per vector: whether it exists, elements, capacity, problem.
template <class Vector>
std::string Described(QBXSharedSegment& segment, const char* name)
{
    const Vector* const vector = segment.find<Vector>(name).first;
    if (vector == nullptr) return "0 0 0 missing\n";
    const Elements<typename Vector::value_type> room{vector->data(), vector->capacity()};
    const bool sound = vector->size() <= room.count && (room.count == 0 || LieIn(segment, room));
    return "1 " + std::to_string(vector->size()) + ' ' + std::to_string(room.count) + ' ' + (sound ? "" : kOutside) +
           '\n';
}

std::string DescribeAll(QBXSharedSegment& segment, const std::string& name)
{
    if (!segment.check_sanity()) throw std::runtime_error("it is damaged");
    std::string text =
        std::to_string(segment.get_free_memory()) + ' ' + std::to_string(segment.get_num_named_objects()) + '\n';
    for (const VectorName& vector : kVectorNames)
        if (name == vector.segment)
            text += name == kListSegmentName ? Described<QBXStringPageVector>(segment, vector.name)
                                             : Described<QBXByteVector>(segment, vector.name);
    return text;
}

// Parses what DescribeAll() returned.
SegmentContents ContentsIn(const std::string& text, const std::string& segment)
{
    std::istringstream lines(text);
    SegmentContents contents;
    lines >> contents.free >> contents.objects;
    for (const VectorName& each : kVectorNames)
    {
        if (segment != each.segment) continue;
        VectorContents vector{each.name};
        lines >> vector.exists >> vector.elements >> vector.capacity;
        lines.ignore();
        std::getline(lines, vector.problem);
        contents.vectors.push_back(vector);
    }
    return contents;
}

template <class Vector>
Result<std::string> ReadElements(const char* segment, const std::string& name)
{
    const auto copied = [&](QBXSharedSegment& mapped)
    {
        const Vector* const vector = mapped.find<Vector>(name.c_str()).first;
        if (vector == nullptr) throw std::runtime_error("it has no vector " + name);
        const auto elements = ElementsOf(mapped, *vector);
        if (!elements) throw std::runtime_error(name + ": " + kOutside);
        return std::string(reinterpret_cast<const char*>(elements->begin),
                           elements->count * sizeof(typename Vector::value_type));
    };
    return Read(segment, copied)
        .map_error(
            [segment](const std::string& problem) {
                return Error{ErrorKind::NoSharedMemory, std::string("segment ") + segment + ": " + problem};
            });
}
}  // namespace

bool FitsItsFile(const QBXSharedSegment& segment, const char* name)
{
    const std::size_t size = segment.get_size();
    return size >= sizeof(QBXSharedSegment::segment_manager) && size <= InspectSegment(name).size;
}

SegmentObject InspectSegment(const std::string& segment)
{
    struct stat status
    {
    };
    if (lstat(("/dev/shm/" + segment).c_str(), &status) != 0) return {};
    return {true,
            S_ISREG(status.st_mode),
            status.st_uid,
            status.st_mode & 07777,
            static_cast<std::size_t>(status.st_size),
            status.st_ino};
}

SegmentUse UseOfSegment(const std::string& segment, pid_t process)
{
    const ino_t now = InspectSegment(segment).inode;
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
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

SegmentContents ReadSegment(const std::string& segment)
{
    const auto text = Read(segment, [&](QBXSharedSegment& mapped) { return DescribeAll(mapped, segment); });
    if (text) return ContentsIn(*text, segment);
    SegmentContents contents;
    contents.problem = text.error();
    return contents;
}

Result<std::vector<std::string>> ReadNames(const std::string& vector)
{
    return ReadElements<QBXStringPageVector>(kListSegmentName, vector)
        .map(
            [](const std::string& bytes)
            {
                constexpr std::size_t size = sizeof(PlayListSongNameStr);
                return CopyNames({reinterpret_cast<const PlayListSongNameStr*>(bytes.data()), bytes.size() / size});
            });
}

Result<std::vector<unsigned char>> ReadBytes(const std::string& vector)
{
    return ReadElements<QBXByteVector>(kBufferSegmentName, vector)
        .map([](const std::string& bytes) { return std::vector<unsigned char>(bytes.begin(), bytes.end()); });
}
}  // namespace ipodkit
