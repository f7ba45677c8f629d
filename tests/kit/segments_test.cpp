// Inspecting the segments from outside, and running work that may crash in a child process.
#include <fcntl.h>
#include <ipodkit/segments.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "kit_test.h"
#include "memory/child_process.h"

namespace test
{
namespace
{
class SegmentsTest : public testing::Test
{
protected:
    SegmentsTest()
    {
        for (const VectorName& vector : kVectorNames)
            if (vector.segment == std::string(kListSegmentName))
                shared.List(vector.name);
            else
                shared.Buffer(vector.name);
    }

    SharedVectors shared;
};

TEST_F(SegmentsTest, TheContentsAreRead)
{
    shared.SetList("VecDBListShareMemory", {"one", "two"});
    shared.SetBytes("VecEapReadBufferShareMemory", {1, 2, 0});

    const SegmentContents lists = ReadSegment(kListSegmentName);
    const SegmentContents buffers = ReadSegment(kBufferSegmentName);

    EXPECT_EQ(lists.problem, "");
    EXPECT_EQ(lists.free, shared.Lists().get_free_memory());
    EXPECT_EQ(lists.objects, 6u);
    ASSERT_EQ(lists.vectors.size(), 6u);
    EXPECT_EQ(lists.vectors[1].name, "VecDBListShareMemory");
    EXPECT_EQ(lists.vectors[1].elements, 2u);
    EXPECT_GE(lists.vectors[1].capacity, 2u);
    EXPECT_EQ(buffers.vectors.size(), 4u);
    EXPECT_THAT(ReadNames("VecDBListShareMemory").value(), ElementsAre("one", "two"));
    EXPECT_THAT(ReadBytes("VecEapReadBufferShareMemory").value(), ElementsAre(1, 2, 0));
    EXPECT_THAT(ReadNames("VecUpdateListShareMemory").value(), IsEmpty());
}

TEST_F(SegmentsTest, ADamagedOrMissingVectorIsAProblem)
{
    shared.SetList("VecDBListShareMemory", {"one"});
    ForgeSize(&shared.List("VecDBListShareMemory"), 1u << 30);
    shared.Lists().destroy<QBXStringPageVector>("VecDeviceListShareMemory");

    const SegmentContents lists = ReadSegment(kListSegmentName);

    ASSERT_EQ(lists.vectors.size(), 6u);
    EXPECT_EQ(lists.vectors[0].problem, "");
    EXPECT_EQ(lists.vectors[1].problem, "its elements are outside the segment");
    EXPECT_TRUE(lists.vectors[1].exists);
    EXPECT_FALSE(lists.vectors[5].exists);
    EXPECT_THAT(ReadNames("VecDBListShareMemory").error().reason, HasSubstr("its elements are outside the segment"));
    EXPECT_THAT(ReadNames("VecDeviceListShareMemory").error().reason, HasSubstr("it has no vector"));
    EXPECT_EQ(KindOf(ReadBytes("VecNothing")), ErrorKind::NoSharedMemory);
}

TEST_F(SegmentsTest, ALockThatIsHeldForAMomentIsWaitedFor)
{
    pid_t child = -1;
    const auto readWhileLocked = [&child]
    {
        child = fork();
        if (child == 0) _exit(ReadSegment(kListSegmentName).problem.empty() ? 0 : 1);
        usleep(50000);
    };
    shared.Lists().atomic_func(readWhileLocked);

    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(Segments, AreAProblemIfTheyDoNotExist)
{
    EXPECT_FALSE(InspectSegment(kListSegmentName).exists);
    EXPECT_THAT(ReadSegment(kListSegmentName).problem, HasSubstr("it does not exist"));
    EXPECT_EQ(KindOf(ReadBytes("VecEapReadBufferShareMemory")), ErrorKind::NoSharedMemory);
}

// A page of /dev/shm, mapped by this process until the object is destroyed.
class MappedPage
{
public:
    explicit MappedPage(const char* name)
    {
        const int fd = shm_open(name, O_RDWR | O_CREAT, 0600);
        EXPECT_EQ(ftruncate(fd, kSize), 0);
        m_page = mmap(nullptr, kSize, PROT_READ, MAP_SHARED, fd, 0);
        close(fd);
    }
    ~MappedPage() { munmap(m_page, kSize); }
    MappedPage(const MappedPage&) = delete;
    MappedPage& operator=(const MappedPage&) = delete;

private:
    static constexpr std::size_t kSize = 4096;
    void* m_page;
};

TEST(UseOfSegment, RefersToTheCurrentOrARemovedFile)
{
    const MappedPage first("Buffers");
    EXPECT_EQ(UseOfSegment("Buffers", getpid()), SegmentUse::Same);
    shm_unlink("Buffers");
    EXPECT_EQ(UseOfSegment("Buffers", getpid()), SegmentUse::Other);
    const MappedPage second("Buffers");
    EXPECT_EQ(UseOfSegment("Buffers", getpid()), SegmentUse::Same);
    shm_unlink("Buffers");
}

TEST(UseOfSegment, IsUnknownWhereNothingIsMapped)
{
    const MappedPage other("OtherBuffers");
    EXPECT_EQ(UseOfSegment("Buffers", getpid()), SegmentUse::Unknown);
    EXPECT_EQ(UseOfSegment("OtherBuffers", -1), SegmentUse::Unknown);
    shm_unlink("OtherBuffers");
}

TEST(RunInChild, PassesOnTheResult)
{
    const std::string much(1 << 21, 'x');
    const ChildOutcome outcome = RunInChild([&] { return much; });
    EXPECT_EQ(outcome.end, ChildOutcome::End::Well);
    EXPECT_EQ(outcome.text, much);
}

TEST(RunInChild, SurvivesACrash)
{
    EXPECT_EQ(RunInChild([]() -> std::string { std::abort(); }).end, ChildOutcome::End::Crashed);
}

// A runtime that catches the crash exits this way.
TEST(RunInChild, TreatsABadStatusAsACrash)
{
    EXPECT_EQ(RunInChild([]() -> std::string { _exit(1); }).end, ChildOutcome::End::Crashed);
}

TEST(RunInChild, EndsAHang)
{
    const auto hang = []() -> std::string
    {
        for (;;) pause();
    };
    EXPECT_EQ(RunInChild(hang).end, ChildOutcome::End::Hung);
}
}  // namespace
}  // namespace test
