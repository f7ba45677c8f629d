/// @file
/// The two shared segments, inspected without a session, whatever state they are in.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

#include "segments/child_process.h"

namespace ctl
{
struct SegmentPlan
{
    const char* what;  ///< "lists" or "buffers"
    const char* name;
    std::size_t size;
    std::vector<const char*> lists;    ///< names of vectors of names
    std::vector<const char*> buffers;  ///< names of vectors of bytes
};

const std::vector<SegmentPlan>& SegmentPlans();

enum class SegmentUse
{
    Unknown,  ///< it has mapped none, or does not let itself be looked at
    Same,     ///< what stands under the name now
    Other,    ///< what stands there no more
};

/// @param now  the inode of what stands under the segment's name; 0 for nothing
SegmentUse UseBy(pid_t process, const std::string& segment, ino_t now);

/// The same, out of the text of /proc/PID/maps.
SegmentUse UseIn(std::istream& maps, const std::string& segment, ino_t now);

/// What stands under a segment's name, seen from outside.
struct SegmentObject
{
    bool exists = false;
    bool isMemory = false;  ///< and no FIFO, directory or other thing
    uid_t owner = 0;
    mode_t mode = 0;
    std::size_t size = 0;
    ino_t inode = 0;
};

SegmentObject LookAt(const std::string& segment);

/// What it says of a segment that a child process that looked inside came to such an end.
const char* WhyUnreadable(ChildOutcome::End end);

/// Opens the segment in a child process, takes its lock, checks its inside and looks for the vectors: a hang or a crash
/// stays there. Call before the process has other threads.
///
/// @return  empty when all is well, otherwise what is wrong; within a few seconds
std::string Probe(const char* segment, const std::vector<const char*>& lists, const std::vector<const char*>& buffers);

struct VectorContents
{
    std::string name;
    bool isNames;  ///< of names, otherwise of bytes
    std::size_t elements;
    std::size_t capacity;  ///< elements
    std::string problem;   ///< empty when it can be read
};

struct SegmentContents
{
    std::string problem;      ///< empty when the segment can be read
    std::size_t free = 0;     ///< bytes
    std::size_t objects = 0;  ///< named ones, whatever they are
    std::vector<VectorContents> vectors;
};

SegmentContents ReadContents(const SegmentPlan& plan);

/// The bytes of all elements of a vector.
/// @throws Failure  kNoSegments, when they cannot be read
std::string ReadVector(const SegmentPlan& plan, const std::string& name);

/// The names in the bytes of a vector of names.
std::vector<std::string> NamesIn(const std::string& bytes);
}  // namespace ctl
