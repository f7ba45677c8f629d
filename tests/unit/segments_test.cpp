// Attaching a segment, with any kind of object under its name. Each attempt ends within a bounded time, attached or
// with an exception.
#include "internal/segments.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <random>
#include <thread>

#include "shm_objects.h"

namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t kSegmentSize = 65536;
constexpr std::uint32_t kBeingMade = 1;
constexpr std::uint32_t kReady = 2;
constexpr milliseconds kAtOnce{1000};
constexpr milliseconds kCreatorIsGiven{5000};
constexpr milliseconds kRefusedAtTheLatest{8000};

void LeaveEmpty(QBXSegmentManager&) {}

class AttachSegment : public testing::Test
{
protected:
    QBXSharedSegment Attach(std::size_t size = kSegmentSize, const qbx::Furnish& furnish = LeaveEmpty)
    {
        return qbx::AttachSegment(m_name.c_str(), size, furnish);
    }

    // The exception message of the attempt, and its duration.
    std::string Refusal()
    {
        const auto start = Clock::now();
        std::string message = "attached";
        try
        {
            Attach();
        }
        catch (const bip::interprocess_exception& e)
        {
            message = e.what();
        }
        m_took = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        return message;
    }

    void ExpectRefusalAtOnce()
    {
        EXPECT_NE("attached", Refusal());
        EXPECT_LT(m_took, kAtOnce);
    }

    void ExpectRefusalAfterTheWait()
    {
        const std::clock_t before = std::clock();
        EXPECT_EQ("segment " + std::string(m_name.c_str()) + ": its creator never finished it", Refusal());
        EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC) << "of processor time";
        EXPECT_GE(m_took, kCreatorIsGiven);
        EXPECT_LT(m_took, kRefusedAtTheLatest);
    }

    // The bytes of a valid segment that contains one named number.
    std::vector<char> SoundImage()
    {
        {
            QBXSharedSegment segment = Attach();
            *segment.find_or_construct<int>("number")(0) = 42;
        }
        std::vector<char> image = test::ReadFile(m_name.path());
        std::remove(m_name.path().c_str());
        return image;
    }

    void Put(const std::vector<char>& bytes) { test::WriteFile(m_name.path(), bytes); }

    mode_t Mode() const
    {
        struct stat status
        {
        };
        stat(m_name.path().c_str(), &status);
        return status.st_mode & 07777;
    }

    // Whether CheckNames() rejects a segment that contains this text, but not under the name of the vector.
    bool RefusesAsALayout(const std::string& text)
    {
        static constexpr char kVector[] = "vector\0before";
        QBXSharedSegment segment = Attach();
        std::copy(text.begin(), text.end(), segment.construct<char>("other")[64]('.'));
        try
        {
            qbx::CheckNames(segment, m_name.c_str(), {kVector});
            return false;
        }
        catch (const bip::interprocess_exception&)
        {
            return true;
        }
    }

    test::ObjectName m_name;
    milliseconds m_took{};
};

class PublishNewSegment : public AttachSegment
{
protected:
    const std::size_t kSmallest = QBXSegmentAlgorithm::Alignment + QBXSegmentManager::get_min_size();

    bool Publish(std::size_t size, const qbx::Furnish& furnish = LeaveEmpty)
    {
        return qbx::PublishNewSegment(m_name.c_str(), size, furnish);
    }

    bool IsThere() const { return access(m_name.path().c_str(), F_OK) == 0; }
};

std::vector<char> Garbage()
{
    std::mt19937 random(7);
    std::vector<char> bytes(kSegmentSize);
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

using Image = std::vector<char>;

// An object that is not a valid segment, made from the image of a valid one.
struct Object
{
    const char* name;
    Image (*image)(Image sound);
};

std::ostream& operator<<(std::ostream& out, const Object& object)
{
    return out << object.name;
}

std::string NameOf(const testing::TestParamInfo<Object>& row)
{
    return row.param.name;
}

Image WithState(Image image, std::uint32_t state)
{
    std::memcpy(image.data(), &state, sizeof(state));
    return image;
}

const Object kUnfinished[] = {
    {"Empty", [](Image) { return Image(); }},
    {"OfThreeBytes",
     [](Image) {
         return Image{1, 2, 3};
     }},
    {"OfZeros", [](Image) { return Image(kSegmentSize); }},
    {"WithTheStateOfAnUnfinishedSegment", [](Image sound) { return WithState(sound, kBeingMade); }},
};
const Object kInvalid[] = {
    {"OfGarbage", [](Image) { return Garbage(); }},
    {"OfGarbageWithTheStateOfASegment", [](Image) { return WithState(Garbage(), kReady); }},
    {"OfZerosWithTheStateOfASegment", [](Image) { return WithState(Image(kSegmentSize), kReady); }},
    {"OfOnes", [](Image) { return Image(kSegmentSize, '\xff'); }},
    {"ThatIsHalfASegment", [](Image sound) { return Image(sound.begin(), sound.begin() + kSegmentSize / 2); }},
};

class UnfinishedObject : public AttachSegment, public testing::WithParamInterface<Object>
{
};

class InvalidObject : public AttachSegment, public testing::WithParamInterface<Object>
{
};

// Mounts a file system of that size on /dev/shm, for this process only; false where that is not allowed.
bool MountDevice(const std::string& size)
{
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/dev/shm", "tmpfs", 0, ("size=" + size).c_str()) == 0;
}
}  // namespace

TEST_F(AttachSegment, CreatesAnAbsentOneWithItsSizeReadableByAll)
{
    const mode_t before = umask(077);

    const QBXSharedSegment segment = Attach(kBufferSegmentSize);

    umask(before);
    EXPECT_EQ(kBufferSegmentSize, test::ReadFile(m_name.path()).size());
    EXPECT_EQ(0644U, Mode());
    EXPECT_LE(segment.get_size(), kBufferSegmentSize);
}

TEST_F(AttachSegment, FindsTheContentsOfAnExistingOne)
{
    QBXSharedSegment first = Attach();
    *first.find_or_construct<int>("number")(0) = 42;

    QBXSharedSegment second = Attach();

    ASSERT_NE(nullptr, second.find<int>("number").first);
    EXPECT_EQ(42, *second.find<int>("number").first);
}

TEST_F(AttachSegment, KeepsTheSizeChosenByTheCreator)
{
    const QBXSharedSegment larger = Attach(2 * kSegmentSize);

    const QBXSharedSegment opened = Attach(kSegmentSize);

    EXPECT_EQ(larger.get_size(), opened.get_size());
    EXPECT_EQ(2 * kSegmentSize, test::ReadFile(m_name.path()).size());
}

TEST_F(AttachSegment, AttachesAValidOneStoredAsAFile)
{
    Put(SoundImage());

    QBXSharedSegment segment = Attach();

    ASSERT_NE(nullptr, segment.find<int>("number").first);
    EXPECT_EQ(42, *segment.find<int>("number").first);
    EXPECT_TRUE(segment.check_sanity());
}

TEST_F(AttachSegment, NamesANewOneAfterItIsComplete)
{
    bool named = true;

    QBXSharedSegment segment = Attach(kSegmentSize,
                                      [&](QBXSegmentManager& manager)
                                      {
                                          named = access(m_name.path().c_str(), F_OK) == 0;
                                          manager.construct<int>("number")(42);
                                      });

    EXPECT_FALSE(named);
    ASSERT_NE(nullptr, segment.find<int>("number").first);
    EXPECT_EQ(42, *segment.find<int>("number").first);
}

TEST_F(AttachSegment, KeepsItsDescriptorFromProgramsThatAreStarted)
{
    int descriptors = 0;
    Attach(kSegmentSize,
           [&](QBXSegmentManager&)
           {
               for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
               {
                   std::error_code gone;
                   const std::string object = std::filesystem::read_symlink(entry, gone);
                   if (object.rfind("/dev/shm/", 0) != 0) continue;
                   ++descriptors;
                   EXPECT_EQ(FD_CLOEXEC, fcntl(std::stoi(entry.path().filename()), F_GETFD)) << object;
               }
           });
    EXPECT_EQ(1, descriptors);
}

TEST_F(AttachSegment, LeavesNothingBehindIfKilledDuringCreation)
{
    const pid_t child = fork();
    if (child == 0)
    {
        Attach(kSegmentSize, [](QBXSegmentManager&) { raise(SIGKILL); });
        _exit(EXIT_SUCCESS);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child was not killed during creation";

    EXPECT_NE(0, access(m_name.path().c_str(), F_OK));
}

TEST_F(AttachSegment, AttachesOneCreatedConcurrently)
{
    QBXSharedSegment segment = Attach(kSegmentSize,
                                      [&](QBXSegmentManager& manager)
                                      {
                                          manager.construct<int>("number")(1);
                                          QBXSharedSegment other(bip::create_only, m_name.c_str(), 2 * kSegmentSize);
                                          other.construct<int>("number")(2);
                                      });

    ASSERT_NE(nullptr, segment.find<int>("number").first);
    EXPECT_EQ(2, *segment.find<int>("number").first);
    EXPECT_EQ(2 * kSegmentSize, test::ReadFile(m_name.path()).size());
}

TEST_F(AttachSegment, GivesUpOneThatAFasterCreatorNeverFinishes)
{
    EXPECT_THROW(Attach(kSegmentSize, [this](QBXSegmentManager&) { Put({}); }), bip::interprocess_exception);
}

TEST_F(AttachSegment, SharesOneInACreationRace)
{
    for (int round = 0; round < 200; ++round)
    {
        std::atomic<int> ready{0};
        const auto meet = [&]
        {
            for (++ready; ready < 2;) std::this_thread::yield();
        };
        std::thread other(
            [&]
            {
                meet();
                QBXSharedSegment segment(bip::open_or_create, m_name.c_str(), kSegmentSize);
                ++*segment.find_or_construct<std::atomic<int>>("number")(0);
            });
        meet();
        QBXSharedSegment segment = Attach();
        ++*segment.find_or_construct<std::atomic<int>>("number")(0);
        other.join();

        ASSERT_EQ(2, *segment.find<std::atomic<int>>("number").first) << "in pass " << round;
        bip::shared_memory_object::remove(m_name.c_str());
    }
}

TEST_F(AttachSegment, CreatesOneThatIsTooSmallForItsContents)
{
    umask(077);

    QBXSharedSegment segment =
        Attach(kSegmentSize, [](QBXSegmentManager& manager) { manager.construct<char>("large")[kSegmentSize]('x'); });

    EXPECT_EQ(0U, segment.get_num_named_objects());
    EXPECT_EQ(kSegmentSize, test::ReadFile(m_name.path()).size());
    EXPECT_EQ(0644U, Mode());
}

// As between the two steps of growing a segment.
TEST_F(AttachSegment, AttachesAnObjectLongerThanItsSegment)
{
    std::vector<char> image = SoundImage();
    image.resize(image.size() + kSegmentSize);
    Put(image);

    QBXSharedSegment segment = Attach();

    ASSERT_NE(nullptr, segment.find<int>("number").first);
    EXPECT_EQ(42, *segment.find<int>("number").first);
    EXPECT_TRUE(segment.check_sanity());
}

TEST_F(AttachSegment, WaitsForACreatorThatIsStillWorking)
{
    const Image unfinished = WithState(SoundImage(), kBeingMade);
    Put({});
    const auto start = Clock::now();
    std::thread creator(
        [&]
        {
            std::this_thread::sleep_for(milliseconds(150));
            Put(unfinished);
            std::this_thread::sleep_for(milliseconds(150));
            const int fd = open(m_name.path().c_str(), O_WRONLY | O_CLOEXEC);
            EXPECT_EQ(ssize_t{sizeof(kReady)}, pwrite(fd, &kReady, sizeof(kReady), 0));
            close(fd);
        });

    QBXSharedSegment segment = Attach();

    EXPECT_GE(Clock::now() - start, milliseconds(250));
    creator.join();
    EXPECT_NE(nullptr, segment.find<int>("number").first);
}

TEST_P(UnfinishedObject, IsGivenUpAfterFiveSeconds)
{
    Put(GetParam().image(SoundImage()));

    ExpectRefusalAfterTheWait();
}

INSTANTIATE_TEST_SUITE_P(All, UnfinishedObject, testing::ValuesIn(kUnfinished), NameOf);

TEST_P(InvalidObject, IsRejectedAtOnce)
{
    Put(GetParam().image(SoundImage()));

    ExpectRefusalAtOnce();
}

INSTANTIATE_TEST_SUITE_P(All, InvalidObject, testing::ValuesIn(kInvalid), NameOf);

TEST_F(AttachSegment, MapsANewOneOnce)
{
    const QBXSharedSegment segment = Attach();

    const std::vector<char> maps = test::ReadFile("/proc/self/maps");
    const std::string text(maps.begin(), maps.end());
    const std::size_t first = text.find("/dev/shm/");
    EXPECT_NE(std::string::npos, first);
    EXPECT_EQ(std::string::npos, text.find("/dev/shm/", first + 1)) << text;
}

// The object's descriptor is 0 there.
TEST_F(AttachSegment, GivesUpInAProcessWithoutStandardInput)
{
    Put({});
    close(STDIN_FILENO);

    ExpectRefusalAfterTheWait();

    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD));
}

TEST_F(AttachSegment, CreatesOneInAProcessWithoutStandardInput)
{
    bool named = true;
    close(STDIN_FILENO);

    Attach(kSegmentSize, [&](QBXSegmentManager&) { named = access(m_name.path().c_str(), F_OK) == 0; });

    EXPECT_FALSE(named);
    EXPECT_EQ(0, access(m_name.path().c_str(), F_OK));
    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD));
}

TEST_F(AttachSegment, RejectsAnObjectThatIsTooSmall)
{
    for (std::size_t size = 4; size <= 256; size += 4)
    {
        Put(WithState(Image(size), kReady));

        ExpectRefusalAtOnce();
    }
}

TEST_F(AttachSegment, RejectsAFifo)
{
    ASSERT_EQ(0, mkfifo(m_name.path().c_str(), 0644));

    ExpectRefusalAtOnce();
}

TEST_F(AttachSegment, RejectsADirectory)
{
    ASSERT_EQ(0, mkdir(m_name.path().c_str(), 0755));

    ExpectRefusalAtOnce();
}

TEST_F(AttachSegment, RejectsALinkEvenIfItDangles)
{
    const test::ObjectName target;
    ASSERT_EQ(0, symlink(target.path().c_str(), m_name.path().c_str()));
    ExpectRefusalAtOnce();

    test::WriteFile(target.path(), std::vector<char>(kSegmentSize, 'x'));
    ExpectRefusalAtOnce();
}

TEST_F(AttachSegment, RejectsAReadOnlyObject)
{
    if (seteuid(65534) != 0) GTEST_SKIP() << "only root can switch users";
    ASSERT_EQ(0, seteuid(0));
    Put(SoundImage());
    chmod(m_name.path().c_str(), 0644);
    ASSERT_EQ(0, seteuid(65534));

    ExpectRefusalAtOnce();

    ASSERT_EQ(0, seteuid(0));
}

TEST_F(AttachSegment, ThrowsIfTheSegmentIsTooSmallForItsBookkeeping)
{
    EXPECT_THROW(Attach(16), bip::interprocess_exception);
}

TEST_F(AttachSegment, SpansExactlyTheMemoryOfTheObject)
{
    const QBXSharedSegment segment = Attach();

    const qbx::Mapping mapping = qbx::MappingOf(segment);

    EXPECT_EQ(segment.get_address(), mapping.begin);
    EXPECT_EQ(kSegmentSize, static_cast<std::size_t>(mapping.end - mapping.begin));
    EXPECT_EQ(0, reinterpret_cast<std::uintptr_t>(mapping.begin) % bip::mapped_region::get_page_size());
}

TEST_F(AttachSegment, CreatesOneOnADeviceWithSpaceForItsHeader)
{
    if (!MountDevice("16k")) GTEST_SKIP() << "no mount namespace available";

    EXPECT_EQ("attached", Refusal());
}

TEST_F(AttachSegment, DoesNotCreateOneOnADeviceWithLessSpace)
{
    for (const char* const size : {"12k", "4k"})
    {
        if (!MountDevice(size)) GTEST_SKIP() << "no mount namespace available";

        EXPECT_EQ("segment " + std::string(m_name.c_str()) + ": no space left in /dev/shm", Refusal()) << size;
        EXPECT_NE(0, access(m_name.path().c_str(), F_OK));
    }
}

TEST_F(AttachSegment, CreatesOneOnADeviceWithoutALimit)
{
    if (!MountDevice("0")) GTEST_SKIP() << "no mount namespace available";

    EXPECT_EQ("attached", Refusal());
}

TEST_F(AttachSegment, FindsOneOnAFullDevice)
{
    if (!MountDevice("16k")) GTEST_SKIP() << "no mount namespace available";
    Attach();
    test::WriteFile("/dev/shm/rest", std::vector<char>(8192));

    EXPECT_EQ("attached", Refusal());
}

TEST_F(AttachSegment, RejectsTheNameOfAVectorThatItsIndexDoesNotHaveWhateverFollows)
{
    EXPECT_TRUE(RefusesAsALayout(std::string("vector\0after", 12)));
}

TEST_F(AttachSegment, AcceptsATextThatOnlyBeginsLikeTheNameOfAVector)
{
    EXPECT_FALSE(RefusesAsALayout("vectors"));
}

TEST_F(PublishNewSegment, SucceedsFromTheSmallestSizeOn)
{
    EXPECT_FALSE(Publish(16));
    EXPECT_FALSE(Publish(kSmallest - 1));
    EXPECT_FALSE(IsThere());

    EXPECT_TRUE(Publish(kSmallest));
    EXPECT_EQ(kSmallest, test::ReadFile(m_name.path()).size());
}

TEST_F(PublishNewSegment, FailsWhenTheNameExists)
{
    Put({1, 2, 3});

    EXPECT_FALSE(Publish(kSegmentSize));

    EXPECT_EQ(3U, test::ReadFile(m_name.path()).size());
}

TEST_F(PublishNewSegment, FailsWhenItsContentsDoNotFit)
{
    EXPECT_FALSE(
        Publish(kSegmentSize, [](QBXSegmentManager& manager) { manager.construct<char>("large")[kSegmentSize]('x'); }));

    EXPECT_FALSE(IsThere());
}

TEST_F(PublishNewSegment, FailsWhenTheProcessMayNotMakeFilesOfThatSize)
{
    const rlimit limit{kSegmentSize - 1, kSegmentSize - 1};
    std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));

    EXPECT_FALSE(Publish(kSegmentSize));

    EXPECT_FALSE(IsThere());
}
