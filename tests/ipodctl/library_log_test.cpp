#include "session/library_log.h"

#include <QBXLog.h>
#include <gtest/gtest.h>

#include <cstring>

using ctl::LibraryLog;

namespace
{
constexpr int kInfo = 40;
constexpr int kError = 100;

void Log(int level, const char* text)
{
    zlog(liblog_category, "f", 1, "g", 1, 1, level, "%s", text);
}
}  // namespace

TEST(LibraryLog, FindsTheReasonOfAFailedCall)
{
    LibraryLog log(false);
    ASSERT_TRUE(log.readable());
    Log(kError, "com_zarn_linux_ipod_call_next_sync: Failed to call dbus method. Reason: It broke. Twice.");
    EXPECT_EQ(log.TakeFailure(), "It broke. Twice");
}

TEST(LibraryLog, ForgetsAFailureOnceItIsTaken)
{
    LibraryLog log(false);
    Log(kError, "x: Failed to call dbus method. Reason: first.");
    log.TakeFailure();
    EXPECT_EQ(log.TakeFailure(), "");
    Log(kError, "x: Failed to call dbus method. Reason: second.");
    EXPECT_EQ(log.TakeFailure(), "second");
}

TEST(LibraryLog, TakesOtherLinesForNoFailure)
{
    LibraryLog log(false);
    Log(kInfo, "OnIpodPlayingTrackChange() - 1, Failed");
    Log(kError, "Play() - Request source SID_IPOD_0 failed!");
    EXPECT_EQ(log.TakeFailure(), "");
}

TEST(LibraryLog, PassesEverythingOnWhenItIsVerbose)
{
    testing::internal::CaptureStderr();
    LibraryLog log(true);
    Log(kInfo, "one line");
    log.TakeFailure();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("INFO  f g:1 one line\n"), std::string::npos);
}

TEST(LibraryLog, EndsLoggingWhenItGoes)
{
    {
        const LibraryLog log(false);
        EXPECT_NE(liblog_category, nullptr);
    }
    EXPECT_EQ(liblog_category, nullptr);
}
