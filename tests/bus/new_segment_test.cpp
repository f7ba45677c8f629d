// A new segment is complete when it gets its name. This program replaces the C library's linkat().
#include <IQBXIpodPlayer.h>
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace
{
// The contents of each object when it was named, by path.
std::map<std::string, std::string> held;
}  // namespace

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): those of the C library are reserved
extern "C" int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    std::ifstream file(from, std::ios::binary);
    held[to] = std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    return reinterpret_cast<decltype(&linkat)>(dlsym(RTLD_NEXT, "linkat"))(fromFolder, from, toFolder, to, flags);
}

namespace
{
TEST(NewSegment, IsReadyAndHoldsItsVectorsWhenItGetsItsName)
{
    constexpr char kReady = 2;

    QBX_GetIpodPlayer();

    for (const auto& [name, contents] : held) EXPECT_EQ(contents.front(), kReady) << name;
    for (const char* const name :
         {"VecPlayingListShareMemory", "VecDBListShareMemory", "VecDBListPinyinShareMemory", "VecUpdateListShareMemory",
          "VecUpdateListPinyinShareMemory", "VecDeviceListShareMemory"})
        EXPECT_NE(held["/dev/shm/ListVectorSharedMemory"].find(name), std::string::npos) << name;
    for (const char* const name : {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory",
                                   "VecEapWriteBufferShareMemory", "VecEapReadBufferShareMemory"})
        EXPECT_NE(held["/dev/shm/BufferVectorSharedMemory"].find(name), std::string::npos) << name;
}
}  // namespace
