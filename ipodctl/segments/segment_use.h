/// @file
/// Which object a process that uses a segment has mapped. Who attached before the name was taken away, or given to
/// another object, still uses the old one.
#pragma once

#include <sys/types.h>

#include <istream>
#include <string>

namespace ctl
{
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
}  // namespace ctl
