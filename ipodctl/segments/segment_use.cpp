#include "segments/segment_use.h"

#include <fstream>
#include <sstream>

namespace ctl
{
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

// Only the last part: the process may see the file system from another place.
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
}  // namespace ctl
