// The library on segments left behind by a service built with Boost 1.56: it reads and grows them and leaves them
// consistent. An image of the other word size, or one whose names this build cannot find, causes an exception.
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "shm_objects.h"

namespace
{
namespace bip = boost::interprocess;
using Bytes = std::vector<unsigned char>;
using Names = std::vector<std::string>;

constexpr bool k32Bit = sizeof(void*) == 4;
const std::string kThisWordSize = k32Bit ? "armhf" : "x86_64";
const std::string kOtherWordSize = k32Bit ? "x86_64" : "armhf";
const std::string kOtherIndex = kThisWordSize + "-boost1.88";
constexpr unsigned kPatienceSeconds = 20;

void PutImage(const std::string& kind, const std::string& wordSize, const std::string& object)
{
    test::WriteFile("/dev/shm/" + object, test::ReadFile(IMAGE_DIR "/" + kind + "-" + wordSize + ".img"));
}

void PutImages(const std::string& listWordSize, const std::string& bufferWordSize)
{
    PutImage("list", listWordSize, kListSegmentName);
    PutImage("buffer", bufferWordSize, kBufferSegmentName);
}

Names ExpectedNames(const std::string& label, int count)
{
    Names names = {"", std::string(255, 'x')};
    char number[16];
    for (int i = 2; i < count; ++i)
    {
        std::snprintf(number, sizeof(number), " %04d ", i);
        names.push_back(label + number + "\u5468\u6770\u4F26");
    }
    return names;
}

Bytes ExpectedBytes(std::size_t count, unsigned seed)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(31 * i + seed);
    return bytes;
}

Names NamesOf(const QBXStringPageVector& vector)
{
    Names names;
    for (const PlayListSongNameStr& entry : vector)
        names.emplace_back(entry.name, strnlen(entry.name, sizeof(entry.name)));
    return names;
}

Bytes BytesOf(const QBXByteVector& vector)
{
    return Bytes(vector.begin(), vector.end());
}

constexpr const char* kListVectors[] = {"VecPlayingListShareMemory",      "VecDBListShareMemory",
                                        "VecDBListPinyinShareMemory",     "VecUpdateListShareMemory",
                                        "VecUpdateListPinyinShareMemory", "VecDeviceListShareMemory"};
constexpr const char* kBufferVectors[] = {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory",
                                          "VecEapWriteBufferShareMemory", "VecEapReadBufferShareMemory"};

// A segment created by a service that starts first, with that many of its vectors.
template <class Vector, std::size_t Count>
QBXSharedSegment MakeAsAService(const char* object, std::size_t size, const char* const (&names)[Count],
                                std::size_t count = Count)
{
    bip::permissions mode;
    mode.set_permissions(0644);
    QBXSharedSegment segment(bip::open_or_create, object, size, nullptr, mode);
    const typename Vector::allocator_type allocator(segment.get_segment_manager());
    for (std::size_t i = 0; i < count; ++i) segment.find_or_construct<Vector>(names[i])(allocator);
    return segment;
}

// The padding of an object header contains stack garbage, even in segments that Boost creates.
template <std::size_t Count>
std::vector<char> BytesOfSegment(const std::string& object, const char* const (&names)[Count])
{
    constexpr std::ptrdiff_t padding = k32Bit ? 0 : 4;
    QBXSharedSegment segment(bip::open_only, object.c_str());
    std::vector<char> bytes = test::ReadFile("/dev/shm/" + object);
    for (const char* const name : names)
    {
        const char* const vector = segment.find<char>(name).first;
        const std::ptrdiff_t place = vector - static_cast<const char*>(segment.get_address());
        std::fill_n(bytes.begin() + place - padding, padding, '\0');
    }
    return bytes;
}

// Without a connection GLib warns about each call, but the readers still copy the vectors.
void DropMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

class SegmentsOfTheService : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        g_log_set_default_handler(DropMessage, nullptr);
        PutImages(kThisWordSize, kThisWordSize);
        player = QBX_GetIpodPlayer();
    }

    static IQBXIpodPlayer* player;
};

IQBXIpodPlayer* SegmentsOfTheService::player = nullptr;

// The contents of the buffer segment as a second process reads them.
class BuffersAsOthersSeeThem
{
public:
    BuffersAsOthersSeeThem() : m_segment(bip::open_only, kBufferSegmentName) {}

    Bytes operator[](const char* name) { return BytesOf(*m_segment.find<QBXByteVector>(name).first); }
    bool sane() { return m_segment.check_sanity(); }

private:
    QBXSharedSegment m_segment;
};

void ExpectTheOtherBuffersUntouched(BuffersAsOthersSeeThem& buffers)
{
    EXPECT_EQ(ExpectedBytes(70000, 1), buffers["VecArtworkBufferShareMemory"]);
    EXPECT_EQ(ExpectedBytes(50001, 2), buffers["VecArtworkChangeBufferShareMemory"]);
    EXPECT_EQ(ExpectedBytes(513, 4), buffers["VecEapReadBufferShareMemory"]);
}

// Runs in a child process, because a process attaches only once. Exits with 0 and prints the message if the attempt
// throws.
[[noreturn]] void Attach()
{
    alarm(kPatienceSeconds);
    try
    {
        QBX_GetIpodPlayer();
    }
    catch (const bip::interprocess_exception& e)
    {
        std::fprintf(stderr, "refused: %s", e.what());
        _exit(0);
    }
    _exit(1);
}

[[noreturn]] void AttachForeignImages(const std::string& listWordSize, const std::string& bufferWordSize)
{
    PutImages(listWordSize, bufferWordSize);
    Attach();
}

// A list segment whose index this build cannot read, with the name of a vector beyond its first pages.
[[noreturn]] void AttachWithADistantName()
{
    constexpr std::ptrdiff_t distance = 0x10000;
    PutImage("buffer", kThisWordSize, kBufferSegmentName);
    bip::shared_memory_object::remove(kListSegmentName);
    auto segment = MakeAsAService<QBXStringPageVector>(kListSegmentName, kListSegmentSize, kListVectors, 0);
    auto* const space = segment.construct<char>("of another index")[2 * distance]('\0');
    std::strcpy(space + distance, kListVectors[0]);
    Attach();
}

// Word sizes of both segments, and the segment that is refused.
class ForeignImagesDeathTest : public testing::TestWithParam<std::array<std::string, 3>>
{
};

// The library locks the index to search it. The C library links a locked robust mutex into a per-thread list, and
// clears the link on unlock only on 64-bit machines. The link of an unlocked mutex is never read.
std::vector<char> WithoutLinkOfIndexLock(std::vector<char> image)
{
    constexpr std::ptrdiff_t kLink = 0x50;
    if (k32Bit) std::fill_n(image.begin() + kLink, sizeof(void*), '\0');
    return image;
}
}  // namespace

TEST_P(ForeignImagesDeathTest, ThrowAndNameTheSegment)
{
    const auto& [lists, buffers, refused] = GetParam();
    EXPECT_EXIT(AttachForeignImages(lists, buffers), testing::ExitedWithCode(0),
                "refused: segment " + refused + ": its layout differs from that of this build");
}

INSTANTIATE_TEST_SUITE_P(All, ForeignImagesDeathTest,
                         testing::Values(std::array{kOtherWordSize, kOtherWordSize, std::string(kListSegmentName)},
                                         std::array{kThisWordSize, kOtherWordSize, std::string(kBufferSegmentName)},
                                         std::array{kOtherIndex, kOtherIndex, std::string(kListSegmentName)},
                                         std::array{kThisWordSize, kOtherIndex, std::string(kBufferSegmentName)}));

TEST(ForeignLayoutDeathTest, FindsAVectorFarFromTheStartOfTheSegment)
{
    EXPECT_EXIT(AttachWithADistantName(), testing::ExitedWithCode(0),
                "refused: segment ListVectorSharedMemory: its layout differs from that of this build");
}

TEST(ForeignLayoutDeathTest, LeavesTheSegmentUnchanged)
{
    EXPECT_EXIT(AttachForeignImages(kOtherIndex, kOtherIndex), testing::ExitedWithCode(0), "refused");
    EXPECT_EQ(WithoutLinkOfIndexLock(test::ReadFile(IMAGE_DIR "/list-" + kOtherIndex + ".img")),
              WithoutLinkOfIndexLock(test::ReadFile(std::string("/dev/shm/") + kListSegmentName)));
}

TEST(NewSegments, AreIdenticalToThoseOfAService)
{
    QBX_GetIpodPlayer();

    const boost::interprocess::remove_shared_memory_on_destroy lists("lists");
    const boost::interprocess::remove_shared_memory_on_destroy buffers("buffers");
    MakeAsAService<QBXStringPageVector>("lists", kListSegmentSize, kListVectors);
    MakeAsAService<QBXByteVector>("buffers", kBufferSegmentSize, kBufferVectors);
    EXPECT_EQ(BytesOfSegment("lists", kListVectors), BytesOfSegment(kListSegmentName, kListVectors));
    EXPECT_EQ(BytesOfSegment("buffers", kBufferVectors), BytesOfSegment(kBufferSegmentName, kBufferVectors));
}

TEST(AnIncompleteSegment, IsCompleted)
{
    MakeAsAService<QBXStringPageVector>(kListSegmentName, kListSegmentSize, kListVectors, 3);

    QBX_GetIpodPlayer();

    EXPECT_EQ(6u, segment_list_vector.get_num_named_objects());
    EXPECT_EQ(4u, segment_buffer_vector.get_num_named_objects());
}

TEST(ASegmentWithForeignObjects, IsCompleted)
{
    MakeAsAService<QBXStringPageVector>(kListSegmentName, kListSegmentSize, kListVectors, 0)
        .construct<int>("VecDeviceListShareMemoryOfOthers")(42);

    QBX_GetIpodPlayer();

    EXPECT_EQ(7u, segment_list_vector.get_num_named_objects());
    EXPECT_EQ(42, *segment_list_vector.find<int>("VecDeviceListShareMemoryOfOthers").first);
}

// The names of the destroyed objects remain in the free memory.
TEST(ASegmentWhoseVectorsWereDestroyed, IsCompleted)
{
    QBXSharedSegment lists = MakeAsAService<QBXStringPageVector>(kListSegmentName, kListSegmentSize, kListVectors);
    for (const char* const name : kListVectors) lists.destroy<QBXStringPageVector>(name);

    QBX_GetIpodPlayer();

    EXPECT_EQ(6u, lists.get_num_named_objects());
}

TEST_F(SegmentsOfTheService, AreConsistentAfterAttaching)
{
    EXPECT_TRUE(segment_list_vector.check_sanity());
    EXPECT_TRUE(segment_buffer_vector.check_sanity());
    EXPECT_EQ(6u, segment_list_vector.get_num_named_objects());
    EXPECT_EQ(4u, segment_buffer_vector.get_num_named_objects());
}

TEST_F(SegmentsOfTheService, ExposeTheirNamesThroughTheExportedPointers)
{
    EXPECT_EQ(ExpectedNames("playing", 40), NamesOf(*g_VecPlayingListShareMemory));
    EXPECT_EQ(ExpectedNames("db", 300), NamesOf(*g_VecDBListShareMemory));
    EXPECT_EQ(ExpectedNames("dbpinyin", 300), NamesOf(*g_VecDBListPinyinShareMemory));
    EXPECT_EQ(ExpectedNames("update", 7), NamesOf(*g_VecUpdateListShareMemory));
    EXPECT_EQ(ExpectedNames("updatepinyin", 7), NamesOf(*g_VecUpdateListPinyinShareMemory));
    EXPECT_EQ(ExpectedNames("device", 3), NamesOf(*g_VecDeviceListShareMemory));
}

TEST_F(SegmentsOfTheService, ExposeTheirBytesThroughTheExportedPointers)
{
    EXPECT_EQ(ExpectedBytes(70000, 1), BytesOf(*g_VecArtworkBufferShareMemory));
    EXPECT_EQ(ExpectedBytes(50001, 2), BytesOf(*g_VecArtworkChangeBufferShareMemory));
    EXPECT_EQ(ExpectedBytes(0, 3), BytesOf(*g_VecEapWriteBufferShareMemory));
    EXPECT_EQ(ExpectedBytes(513, 4), BytesOf(*g_VecEapReadBufferShareMemory));
}

TEST_F(SegmentsOfTheService, AreReadCompletelyByTheListCommands)
{
    Names list = {"left over"};
    int folder = 7;
    int root = 8;

    player->GetPlayingListItems(0, 1, list);
    EXPECT_EQ(ExpectedNames("playing", 40), list);
    player->GetCurDBListItems(0, 1, list, folder, root);
    EXPECT_EQ(ExpectedNames("db", 300), list);
    player->GetCurDBListItemsPinyin(0, 1, list, folder, root);
    EXPECT_EQ(ExpectedNames("dbpinyin", 300), list);
    player->GetUpdateListItems(0, 1, list);
    EXPECT_EQ(ExpectedNames("update", 7), list);
    player->GetUpdateListItemsPinyin(0, 1, list);
    EXPECT_EQ(ExpectedNames("updatepinyin", 7), list);
    player->GetDeviceList(list);
    EXPECT_EQ(ExpectedNames("device", 3), list);
    EXPECT_EQ(7, folder);
    EXPECT_EQ(8, root);
}

TEST_F(SegmentsOfTheService, AreReadCompletelyByTheArtworkCommand)
{
    EXPECT_EQ(ExpectedBytes(70000, 1), player->GetPlayingTrackAlbumArtwork().image);
}

TEST_F(SegmentsOfTheService, StayConsistentWhileTheWriteBufferGrows)
{
    for (const std::size_t size : {1u, 100u, 513u, 4096u, 70000u, 200000u, 0u, 7u})
    {
        SCOPED_TRACE(size);
        Bytes data = ExpectedBytes(size, 9);

        player->EapWrite(1, data);

        EXPECT_TRUE(segment_buffer_vector.check_sanity());
        EXPECT_EQ(ExpectedBytes(size, 9), BytesOf(*g_VecEapWriteBufferShareMemory));
    }
}

TEST_F(SegmentsOfTheService, ShowAnotherProcessWhatWasWritten)
{
    Bytes data = ExpectedBytes(100000, 5);
    player->EapWrite(1, data);

    BuffersAsOthersSeeThem buffers;

    EXPECT_TRUE(buffers.sane());
    EXPECT_EQ(data, buffers["VecEapWriteBufferShareMemory"]);
    ExpectTheOtherBuffersUntouched(buffers);
}

TEST_F(SegmentsOfTheService, AreUnchangedAfterAWriteThatDidNotFit)
{
    Bytes tooMuch = ExpectedBytes(kBufferSegmentSize, 5);

    EXPECT_THROW(player->EapWrite(1, tooMuch), bip::bad_alloc);

    BuffersAsOthersSeeThem buffers;
    EXPECT_TRUE(buffers.sane());
    ExpectTheOtherBuffersUntouched(buffers);
    Bytes small = {1, 2, 3};
    player->EapWrite(1, small);
    EXPECT_EQ(small, buffers["VecEapWriteBufferShareMemory"]);
}
