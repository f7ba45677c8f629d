// What the library throws crosses its border: an application catches it by the type that the header promises.
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// Takes the name of a segment with something that is no shared memory.
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
    if (!name.taken()) GTEST_SKIP() << "somebody uses the segments of this machine";
    EXPECT_THROW(QBX_GetIpodPlayer(), boost::interprocess::interprocess_exception);
}
}  // namespace
