/// @file
/// Inspects the two shared segments without a session, even if they are damaged.
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
    std::vector<const char*> lists;    ///< vectors that hold names
    std::vector<const char*> buffers;  ///< vectors that hold bytes
};

const std::vector<SegmentPlan>& SegmentPlans();

enum class SegmentUse
{
    Unknown,  ///< no mapping, or the mappings are not readable
    Same,     ///< maps the object that has the name now
    Other,    ///< maps only objects that have lost the name
};

/// Returns whether a process has mapped the current object of a segment.
/// @param now  inode of the object that has the segment's name; 0 if there is none
SegmentUse UseBy(pid_t process, const std::string& segment, ino_t now);

/// Like UseBy(), but parses the text of /proc/PID/maps.
SegmentUse UseIn(std::istream& maps, const std::string& segment, ino_t now);

/// The file in /dev/shm that has a segment's name.
struct SegmentObject
{
    bool exists = false;
    bool isMemory = false;  ///< a regular file, not a FIFO, directory, or similar
    uid_t owner = 0;
    mode_t mode = 0;
    std::size_t size = 0;
    ino_t inode = 0;
};

SegmentObject Inspect(const std::string& segment);

/// Returns why a segment is unreadable, given how the child process that inspected it ended.
const char* WhyUnreadable(ChildOutcome::End end);

/// Opens the segment in a child process, waits for its lock, checks its integrity, and looks up the vectors. A hang or
/// crash affects only the child. Blocks for a few seconds at most. Call before the process starts other threads.
///
/// @return  the problem; empty if the segment is ok
std::string Probe(const char* segment, const std::vector<const char*>& lists, const std::vector<const char*>& buffers);

struct VectorContents
{
    std::string name;
    bool isNames;  ///< holds names; otherwise bytes
    std::size_t elements;
    std::size_t capacity;  ///< in elements
    std::string problem;   ///< empty if the vector is readable
};

struct SegmentContents
{
    std::string problem;      ///< empty if the segment is readable
    std::size_t free = 0;     ///< bytes
    std::size_t objects = 0;  ///< named objects of any type
    std::vector<VectorContents> vectors;
};

SegmentContents ReadContents(const SegmentPlan& plan);

/// Returns the bytes of all elements of a vector.
/// @throws Failure  kNoSegments, if they cannot be read
std::string ReadVector(const SegmentPlan& plan, const std::string& name);

/// Splits the bytes of a vector of names into names.
std::vector<std::string> NamesIn(const std::string& bytes);
}  // namespace ctl
