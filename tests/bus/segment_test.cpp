// The two shared-memory segments: created, found, rejected.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "bus/bus_test.h"
#include "support/shared_vectors.h"

namespace test
{
namespace
{
namespace bip = boost::interprocess;

constexpr const char* kLists[] = {"VecPlayingListShareMemory",      "VecDBListShareMemory",
                                  "VecDBListPinyinShareMemory",     "VecUpdateListShareMemory",
                                  "VecUpdateListPinyinShareMemory", "VecDeviceListShareMemory"};
constexpr const char* kBuffers[] = {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory",
                                    "VecEapWriteBufferShareMemory", "VecEapReadBufferShareMemory"};

std::vector<QBXStringPageVector*> ListPointers()
{
    return {g_VecPlayingListShareMemory, g_VecDBListShareMemory,           g_VecDBListPinyinShareMemory,
            g_VecUpdateListShareMemory,  g_VecUpdateListPinyinShareMemory, g_VecDeviceListShareMemory};
}

std::vector<QBXByteVector*> BufferPointers()
{
    return {g_VecArtworkBufferShareMemory, g_VecArtworkChangeBufferShareMemory, g_VecEapWriteBufferShareMemory,
            g_VecEapReadBufferShareMemory};
}

class SegmentTest : public ClientTest
{
protected:
    struct stat StatusOf(const char* segment)
    {
        struct stat status
        {
        };
        const int file = shm_open(segment, O_RDONLY, 0);
        EXPECT_GE(file, 0) << segment;
        EXPECT_EQ(fstat(file, &status), 0);
        close(file);
        return status;
    }
};

TEST_F(SegmentTest, AreNotAttachedBeforeThePlayerIsBuilt)
{
    EXPECT_THAT(ListPointers(), testing::Each(testing::IsNull()));
    EXPECT_THAT(BufferPointers(), testing::Each(testing::IsNull()));
    EXPECT_EQ(segment_list_vector.get_segment_manager(), nullptr);
    EXPECT_EQ(segment_buffer_vector.get_segment_manager(), nullptr);
}

TEST_F(SegmentTest, AreCreatedWithSizeAndModeIfTheLibraryStartsFirst)
{
    umask(0077);

    QBX_GetIpodPlayer();

    EXPECT_EQ(StatusOf("ListVectorSharedMemory").st_size, 5242880);
    EXPECT_EQ(StatusOf("BufferVectorSharedMemory").st_size, 1048576);
    EXPECT_EQ(StatusOf("ListVectorSharedMemory").st_mode & 0777, 0644U);
    EXPECT_EQ(StatusOf("BufferVectorSharedMemory").st_mode & 0777, 0644U);
}

TEST_F(SegmentTest, ContainTenEmptyVectorsIfTheLibraryStartsFirst)
{
    QBX_GetIpodPlayer();

    QBXSharedSegment lists(bip::open_only, "ListVectorSharedMemory");
    QBXSharedSegment buffers(bip::open_only, "BufferVectorSharedMemory");
    EXPECT_EQ(lists.get_num_named_objects(), 6U);
    EXPECT_EQ(buffers.get_num_named_objects(), 4U);
    for (const char* const name : kLists)
    {
        const auto found = lists.find<QBXStringPageVector>(name);
        ASSERT_NE(found.first, nullptr) << name;
        EXPECT_EQ(found.second, 1U);
        EXPECT_TRUE(found.first->empty());
    }
    for (const char* const name : kBuffers)
    {
        const auto found = buffers.find<QBXByteVector>(name);
        ASSERT_NE(found.first, nullptr) << name;
        EXPECT_EQ(found.second, 1U);
        EXPECT_TRUE(found.first->empty());
    }
}

TEST_F(SegmentTest, AreFoundWithTheirContentsIfTheServiceStartsFirst)
{
    SharedVectors service;
    for (const char* const name : kLists) service.SetList(name, {name, "second"});
    for (const char* const name : kBuffers) service.SetBytes(name, {1, 2, static_cast<unsigned char>(name[6])});

    QBX_GetIpodPlayer();

    const auto lists = ListPointers();
    for (std::size_t i = 0; i < lists.size(); ++i)
    {
        ASSERT_EQ(lists[i]->size(), 2U);
        EXPECT_STREQ(lists[i]->at(0).name, kLists[i]);
    }
    const auto buffers = BufferPointers();
    for (std::size_t i = 0; i < buffers.size(); ++i) EXPECT_EQ(buffers[i]->size(), 3U);
}

TEST_F(SegmentTest, ProvideTheVectorForEachPointer)
{
    QBX_GetIpodPlayer();
    SharedVectors service;

    for (std::size_t i = 0; i < std::size(kLists); ++i) service.List(kLists[i]).resize(i + 1);
    for (std::size_t i = 0; i < std::size(kBuffers); ++i) service.Buffer(kBuffers[i]).resize(i + 1);

    const auto lists = ListPointers();
    for (std::size_t i = 0; i < lists.size(); ++i) EXPECT_EQ(lists[i]->size(), i + 1) << kLists[i];
    const auto buffers = BufferPointers();
    for (std::size_t i = 0; i < buffers.size(); ++i) EXPECT_EQ(buffers[i]->size(), i + 1) << kBuffers[i];
}

TEST_F(SegmentTest, KeepTheSizeChosenByTheirCreator)
{
    const QBXSharedSegment service(bip::create_only, "ListVectorSharedMemory", 0x600000);

    QBX_GetIpodPlayer();

    EXPECT_EQ(segment_list_vector.get_size(), service.get_size());
    EXPECT_EQ(StatusOf("ListVectorSharedMemory").st_size, 0x600000);
}

TEST_F(SegmentTest, AreAttachedOncePerProcess)
{
    const NoBus bus;
    QBX_GetIpodPlayer();
    const auto lists = ListPointers();
    const auto buffers = BufferPointers();
    ClearLog();

    QBX_GetIpodPlayer()->InitInstance();
    QBX_GetIpodPlayer()->ExitInstance();
    QBX_DestroyIpodPlayer();
    QBX_GetIpodPlayer()->InitInstance();

    EXPECT_EQ(ListPointers(), lists);
    EXPECT_EQ(BufferPointers(), buffers);
    EXPECT_EQ(CountLogLines("40 InitShareMemory: InitShareMemory()"), 3U);
}

TEST_F(SegmentTest, OutliveThePlayer)
{
    QBX_GetIpodPlayer();

    QBX_DestroyIpodPlayer();

    EXPECT_EQ(StatusOf("ListVectorSharedMemory").st_size, 5242880);
    EXPECT_EQ(StatusOf("BufferVectorSharedMemory").st_size, 1048576);
    EXPECT_NE(g_VecDBListShareMemory, nullptr);
}

TEST_F(SegmentTest, AFailureIsPermanentForTheProcess)
{
    std::ofstream("/dev/shm/BufferVectorSharedMemory", std::ios::binary) << std::string(8192, '\xff');
    EXPECT_THROW(QBX_GetIpodPlayer(), bip::interprocess_exception);
    bip::shared_memory_object::remove("BufferVectorSharedMemory");

    EXPECT_NO_THROW(QBX_GetIpodPlayer());

    EXPECT_THAT(ListPointers(), testing::Each(testing::NotNull()));
    EXPECT_THAT(BufferPointers(), testing::Each(testing::IsNull()));
    EXPECT_LT(shm_open("BufferVectorSharedMemory", O_RDONLY, 0), 0);
}

TEST_F(SegmentTest, ThrowBadAllocIfAVectorDoesNotFit)
{
    QBXSharedSegment service(bip::create_only, "BufferVectorSharedMemory", kBufferSegmentSize);
    for (std::size_t size = service.get_free_memory(); size >= 8; size /= 2)
        while (service.allocate(size, std::nothrow) != nullptr) continue;

    EXPECT_THROW(QBX_GetIpodPlayer(), bip::bad_alloc);

    EXPECT_EQ(g_VecArtworkBufferShareMemory, nullptr);
}

}  // namespace
}  // namespace test
