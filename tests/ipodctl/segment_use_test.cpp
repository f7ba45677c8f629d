#include "segments/segments.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ctl
{
namespace
{
constexpr char kMaps[] =
    "55d0a0000000-55d0a0001000 r--p 00000000 fe:00 77         /usr/bin/service\n"
    "7f0000000000-7f0000500000 rw-s 00000000 00:19 12         /dev/shm/Lists (deleted)\n"
    "7f0000500000-7f0000600000 rw-s 00000000 00:19 13         /mnt/shm/Buffers\n"
    "7f0000600000-7f0000700000 rw-p 00000000 00:00 0 \n"
    "7f0000700000-7f0000800000 rw-s 00000000 00:19 14         /dev/shm/OtherBuffers\n";

SegmentUse Use(const std::string& segment, ino_t now)
{
    std::istringstream maps(kMaps);
    return UseIn(maps, segment, now);
}

TEST(SegmentUse, RefersToTheCurrentOrARemovedObject)
{
    EXPECT_EQ(Use("Buffers", 13), SegmentUse::Same);
    EXPECT_EQ(Use("Buffers", 20), SegmentUse::Other);
    EXPECT_EQ(Use("Lists", 20), SegmentUse::Other);
    EXPECT_EQ(Use("Lists", 0), SegmentUse::Other);
}

TEST(SegmentUse, IsUnknownWhereNothingIsMapped)
{
    EXPECT_EQ(Use("Nothing", 13), SegmentUse::Unknown);
    EXPECT_EQ(UseBy(-1, "Lists", 12), SegmentUse::Unknown);
}
}  // namespace
}  // namespace ctl
