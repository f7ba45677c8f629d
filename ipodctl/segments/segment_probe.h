/// @file
/// Looks at a shared-memory segment without creating or changing it.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "segments/child_process.h"

namespace ctl
{
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
}  // namespace ctl
