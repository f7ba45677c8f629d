#include <QBXMutex.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(QbxMutex, CanBeLockedAgainByItsOwner)
{
    QBXCriticalSection section;

    section.Lock();
    section.Lock();
    section.Unlock();
    section.Unlock();
}

TEST(QbxMutex, ExcludesOtherThreadsUntilTheLastUnlock)
{
    QBXMutex mutex;
    std::atomic<bool> entered{false};
    mutex.Lock();
    mutex.Lock();

    std::thread other(
        [&]
        {
            mutex.Lock();
            entered = true;
            mutex.Unlock();
        });
    mutex.Unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    mutex.Unlock();

    other.join();
    EXPECT_TRUE(entered);
}
