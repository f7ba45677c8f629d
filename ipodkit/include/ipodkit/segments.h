/// @file
/// Inspects the two shared-memory segments without a session, even if they are damaged, for diagnosis.
///
/// ReadSegment(), ReadNames(), and ReadBytes() open a segment in a forked child process and wait for its lock: a hang
/// or a crash affects only the child. They block for at most 3 seconds plus the time of reading. Call them before the
/// process starts other threads. The segments are not modified.
#pragma once

#include <ipodkit/error.h>
#include <ipodkit/vector_names.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The file in /dev/shm that has a segment's name.
struct SegmentObject
{
    bool exists = false;
    bool isMemory = false;  ///< a regular file, not a FIFO, directory, or similar
    uid_t owner = 0;
    mode_t mode = 0;
    std::size_t size = 0;  ///< bytes
    ino_t inode = 0;
};

/// Returns the file of a segment. Any thread.
/// @param segment  kListSegmentName or kBufferSegmentName
SegmentObject InspectSegment(const std::string& segment);

/// How a process uses a segment.
enum class SegmentUse
{
    Unknown,  ///< no mapping, or the mappings are not readable
    Same,     ///< maps the file that has the name now
    Other,    ///< maps only files that have lost the name
};

/// Returns whether a process has mapped the current file of a segment. Reads /proc. Any thread.
SegmentUse UseOfSegment(const std::string& segment, pid_t process);

/// A vector in a segment.
struct VectorContents
{
    std::string name;
    bool exists = false;
    std::size_t elements = 0;
    std::size_t capacity = 0;  ///< in elements
    std::string problem{};     ///< "missing", or what is damaged; empty if the vector is readable
};

/// The contents of a segment.
struct SegmentContents
{
    std::string problem;                  ///< empty if the segment is readable
    std::size_t free = 0;                 ///< bytes
    std::size_t objects = 0;              ///< named objects of any type
    std::vector<VectorContents> vectors;  ///< those of kVectorNames; empty if the segment is not readable
};

/// Checks the integrity of a segment, and looks up its vectors.
SegmentContents ReadSegment(const std::string& segment);

/// Returns the elements of a vector of kVectorNames, which must hold names or bytes, respectively. Fails with
/// ErrorKind::NoSharedMemory if they cannot be read.
Result<std::vector<std::string>> ReadNames(const std::string& vector);
Result<std::vector<unsigned char>> ReadBytes(const std::string& vector);
}  // namespace ipodkit

#pragma GCC visibility pop
