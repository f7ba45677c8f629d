// Log sites while logging is not set up.
#include "internal/log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace
{
class LogNotSetUp : public testing::Test
{
protected:
    void SetUp() override
    {
        m_before = liblog_category;
        liblog_category = nullptr;
    }
    void TearDown() override { liblog_category = m_before; }

private:
    zlog_category_t* m_before = nullptr;
};

std::string WarningFor(const char* function, int line)
{
    return "[" + std::to_string(getpid()) + "][file:libipod/QBXIpod_MediaPlayer_Client][func:" + function +
           "][line:" + std::to_string(line) + "]Warn:Log system not init.\n";
}
}  // namespace

TEST_F(LogNotSetUp, PrintsTheWarningLineInsteadOfTheRecord)
{
    testing::internal::CaptureStdout();

    LOG_INFO("the message is dropped: %d", 7);
    const int line = __LINE__ - 1;

    std::fflush(stdout);
    EXPECT_EQ(WarningFor(__func__, line), testing::internal::GetCapturedStdout());
}

TEST_F(LogNotSetUp, NamesTheOperationThatAHelperLogsFor)
{
    testing::internal::CaptureStdout();

    LOG_AT((qbx::LogSite{"GetShuffleMode", 14, 321}), qbx::kError, "dropped");

    std::fflush(stdout);
    EXPECT_EQ(WarningFor("GetShuffleMode", 321), testing::internal::GetCapturedStdout());
}

TEST(LogLevels, MatchTheLogSink)
{
    EXPECT_EQ(20, qbx::kDebug);
    EXPECT_EQ(40, qbx::kInfo);
    EXPECT_EQ(80, qbx::kWarn);
    EXPECT_EQ(100, qbx::kError);
    EXPECT_EQ(34u, qbx::kLogFileLength);
}
