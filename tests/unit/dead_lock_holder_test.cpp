// A process that dies inside a segment leaves its locks held. Other processes must get an exception, not a hang.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <functional>

#include "internal/segments.h"
#include "internal/shared_bulk.h"
#include "shm_objects.h"

namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kSize = 65536;
constexpr auto kLimit = std::chrono::seconds(10);
constexpr auto kAtTheLatest = std::chrono::seconds(15);

[[noreturn]] void DieQuietly(int)
{
    _exit(0);
}

class LockOfADeadProcess : public testing::Test
{
protected:
    // The child maps the segment at the same address.
    void InAChild(const std::function<void()>& die)
    {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
        {
            std::signal(SIGSEGV, DieQuietly);
            die();
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child did not die at the expected point";
    }

    // Everything after the first page becomes read-only, so the allocation faults while it holds the lock.
    void DieWhileAllocating()
    {
        auto* const begin = const_cast<char*>(qbx::MappingOf(m_segment).begin);
        const auto page = bip::mapped_region::get_page_size();
        auto* const firstPage = reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(begin) / page * page);
        mprotect(firstPage + page, kSize - page, PROT_READ);
        m_segment.allocate(kSize / 2);
    }

    void ExpectExceptionInTime(const std::function<void()>& action)
    {
        const auto start = Clock::now();
        EXPECT_THROW(action(), bip::lock_exception);
        EXPECT_GE(Clock::now() - start, kLimit - std::chrono::milliseconds(100));
        EXPECT_LT(Clock::now() - start, kAtTheLatest);
    }

    test::ObjectName m_name;
    QBXSharedSegment m_segment = qbx::AttachSegment(m_name.c_str(), kSize, [](QBXSegmentManager&) {});
};
}  // namespace

TEST_F(LockOfADeadProcess, MakesTheLookupOfVectorsThrow)
{
    auto die = [] { _exit(0); };
    InAChild([&] { m_segment.atomic_func(die); });

    ExpectExceptionInTime([this] { qbx::CheckNames(m_segment, m_name.c_str(), {"number"}); });
}

TEST_F(LockOfADeadProcess, EndsTheGrowthOfTheWriteBufferInAnException)
{
    const QBXByteVector::allocator_type allocator(m_segment.get_segment_manager());
    auto* const vector = m_segment.construct<QBXByteVector>("Vec")(allocator);
    InAChild([this] { DieWhileAllocating(); });

    ExpectExceptionInTime([&] { qbx::Replace(vector, qbx::MappingOf(m_segment), {1, 2, 3}); });
}
