// Exceptions cross the library boundary: applications catch them by the documented type.
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// Occupies the name of a segment with an object that is not shared memory.
class TakenName
{
public:
    TakenName() : m_taken(mkdir(kPath, 0700) == 0) {}
    ~TakenName()
    {
        if (m_taken) rmdir(kPath);
    }
    TakenName(const TakenName&) = delete;
    TakenName& operator=(const TakenName&) = delete;

    bool taken() const { return m_taken; }

private:
    static constexpr char kPath[] = "/dev/shm/ListVectorSharedMemory";
    bool m_taken;
};

TEST(Exceptions, OfTheFirstAccessAreCaughtByTheirPublishedType)
{
    const TakenName name;
    if (!name.taken()) GTEST_SKIP() << "the segments of this machine are in use";
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);
}
}  // namespace
