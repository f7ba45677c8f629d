// The two shared-memory segments: created, found, rejected.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <thread>

#include "bus/bus_test.h"
#include "support/shared_vectors.h"

namespace test
{
namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;

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

    void PutObject(const char* segment, const std::string& contents)
    {
        std::ofstream(std::string("/dev/shm/") + segment, std::ios::binary) << contents;
    }

    // A segment as the service creates it, complete.
    std::string Image(std::size_t size)
    {
        constexpr char name[] = "ImageOfASegment";
        {
            const QBXSharedSegment segment(bip::create_only, name, size);
        }
        std::ifstream file(std::string("/dev/shm/") + name, std::ios::binary);
        std::string image((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        bip::shared_memory_object::remove(name);
        return image;
    }

    // Building the player throws within the time limit.
    template <class Exception = bip::interprocess_exception>
    void ExpectRefusalWithin(std::chrono::seconds limit)
    {
        const auto start = Clock::now();
        EXPECT_THROW(QBX_GetIpodPlayer(), Exception);
        EXPECT_LT(Clock::now() - start, limit);
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
    PutObject("BufferVectorSharedMemory", std::string(8192, '\xff'));
    ExpectRefusalWithin(std::chrono::seconds(8));
    bip::shared_memory_object::remove("BufferVectorSharedMemory");

    EXPECT_NO_THROW(QBX_GetIpodPlayer());

    EXPECT_THAT(ListPointers(), testing::Each(testing::NotNull()));
    EXPECT_THAT(BufferPointers(), testing::Each(testing::IsNull()));
    EXPECT_LT(shm_open("BufferVectorSharedMemory", O_RDONLY, 0), 0);
}

TEST_F(SegmentTest, AreRejectedIfFilledWithOnes)
{
    PutObject("ListVectorSharedMemory", std::string(65536, '\xff'));
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfTheyContainText)
{
    PutObject("ListVectorSharedMemory", "this is not a segment");
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfOnlyTheStateIsValid)
{
    PutObject("ListVectorSharedMemory", "\x02" + std::string(4095, '\0'));
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfOnlyStateAndSizeAreValid)
{
    PutObject("ListVectorSharedMemory", "\x02" + std::string(kListSegmentSize - 1, '\0'));
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfTruncated)
{
    PutObject("ListVectorSharedMemory", Image(kListSegmentSize).substr(0, 65536));
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfTheNameIsADirectory)
{
    ASSERT_EQ(mkdir("/dev/shm/ListVectorSharedMemory", 0755), 0);
    ExpectRefusalWithin(std::chrono::seconds(8));
    rmdir("/dev/shm/ListVectorSharedMemory");
}

TEST_F(SegmentTest, AreRejectedIfTheyNeverGetASize)
{
    PutObject("BufferVectorSharedMemory", "");
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreRejectedIfNeverFinished)
{
    std::string image = Image(kListSegmentSize);
    image[0] = 1;
    PutObject("ListVectorSharedMemory", image);
    ExpectRefusalWithin(std::chrono::seconds(8));
}

TEST_F(SegmentTest, AreAwaitedWhileBeingCreated)
{
    std::string image = Image(kListSegmentSize);
    PutObject("ListVectorSharedMemory", "");
    std::thread creator(
        [this, image]() mutable
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            const char finished = image[0];
            image[0] = 1;
            PutObject("ListVectorSharedMemory", image);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            const int file = shm_open("ListVectorSharedMemory", O_RDWR, 0);
            EXPECT_EQ(pwrite(file, &finished, 1, 0), 1);
            close(file);
        });

    EXPECT_NO_THROW(QBX_GetIpodPlayer());

    creator.join();
    EXPECT_THAT(ListPointers(), testing::Each(testing::NotNull()));
}

TEST_F(SegmentTest, ThrowBadAllocIfAVectorDoesNotFit)
{
    QBXSharedSegment service(bip::create_only, "BufferVectorSharedMemory", kBufferSegmentSize);
    for (std::size_t size = service.get_free_memory(); size >= 8; size /= 2)
        while (service.allocate(size, std::nothrow) != nullptr) continue;

    ExpectRefusalWithin<bip::bad_alloc>(std::chrono::seconds(1));

    EXPECT_EQ(g_VecArtworkBufferShareMemory, nullptr);
}

TEST_F(SegmentTest, ThrowIfLockedByADeadProcess)
{
    SharedVectors service;
    const pid_t child = fork();
    if (child == 0)
    {
        const auto die = [] { _exit(0); };
        service.Buffers().atomic_func(die);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);

    ExpectRefusalWithin<bip::lock_exception>(std::chrono::seconds(15));
}
}  // namespace
}  // namespace test
