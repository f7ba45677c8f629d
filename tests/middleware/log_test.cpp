// Logging setup by level and target, and the records: the same with zlog and with its stand-in.
#include <QBXLog.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr int kInfo = 40;
constexpr int kError = 100;
constexpr char kFile[] = "libipod/Unit";

class LogSetUp : public testing::Test
{
protected:
    LogSetUp() { close(mkstemp(m_path)); }
    ~LogSetUp() override
    {
        QBX_LogExit();
        unlink(m_path);
    }

    std::string Config(const std::string& level) const { return level + ":" + m_path; }
    std::string Written() const { return (std::ostringstream() << std::ifstream(m_path).rdbuf()).str(); }

private:
    char m_path[32] = "/tmp/log-set-up-XXXXXX";
};

template <class... Args>
void Log(int level, const char* format, Args... args)
{
    zlog(liblog_category, kFile, std::strlen(kFile), "Pause", 5, 42, level, format, args...);
}
}  // namespace

TEST_F(LogSetUp, WritesTimeLevelPlaceAndText)
{
    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));

    Log(kInfo, "%s(%d)", "Pause", 7);
    Log(kError, "no %s", "reply");

    const std::string time = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )";
    const std::regex expected(time + R"(INFO  libipod/Unit Pause:42 Pause\(7\)\n)" + time +
                              R"(ERROR libipod/Unit Pause:42 no reply\n)");
    EXPECT_TRUE(std::regex_match(Written(), expected)) << Written();
}

TEST_F(LogSetUp, DropsRecordsBelowItsLevel)
{
    ASSERT_EQ(1, QBX_LogInit(Config("ERROR").c_str()));

    Log(kInfo, "%s", "not of interest");

    EXPECT_EQ("", Written());
}

TEST_F(LogSetUp, WritesRecordsOfAnyLength)
{
    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));

    for (const std::size_t size : {255, 256, 257, 70000})
    {
        const std::string text = std::string(size - 1, 'x') + 'y';
        Log(kInfo, "%s", text.c_str());
        const std::string written = Written();
        EXPECT_EQ(' ' + text + '\n', written.substr(written.size() - size - 2));
    }
}

TEST_F(LogSetUp, DoesNotMixLinesOfThreads)
{
    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));

    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [i]
            {
                for (int n = 0; n < 500; ++n) Log(kInfo, "thread %d line %d end", i, n);
            });
    for (std::thread& thread : threads) thread.join();

    const std::regex whole(R"(.{23} INFO  libipod/Unit Pause:42 thread \d line \d+ end)");
    std::istringstream lines(Written());
    int found = 0;
    for (std::string line; std::getline(lines, line);) found += std::regex_match(line, whole);
    EXPECT_EQ(2000, found);
}

TEST_F(LogSetUp, WritesToStandardErrorByDefault)
{
    testing::internal::CaptureStderr();
    ASSERT_EQ(1, QBX_LogInit("WARN"));

    Log(kInfo, "%s", "not of interest");
    Log(kError, "%s", "to the screen");

    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(std::regex_match(written, std::regex(R"(.{23} ERROR libipod/Unit Pause:42 to the screen\n)")))
        << written;
}

TEST_F(LogSetUp, ReplacesLevelAndFileWhenCalledAgain)
{
    ASSERT_EQ(1, QBX_LogInit("ERROR:/dev/null"));

    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));
    Log(kInfo, "%s", "from now on");

    EXPECT_NE(std::string::npos, Written().find("from now on"));
}

TEST_F(LogSetUp, KeepsItsSettingsAfterAnInvalidLevelOrFile)
{
    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));
    zlog_category_t* const before = liblog_category;

    for (const char* config : {"LOUD", "INFO:/no/such/folder/file", "INFO:", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(0, QBX_LogInit(config)) << (config == nullptr ? "null" : config);

    EXPECT_EQ(before, liblog_category);
    Log(kInfo, "%s", "still here");
    EXPECT_NE(std::string::npos, Written().find("still here"));
}

TEST_F(LogSetUp, HasNoCategoryBeforeAndAfter)
{
    EXPECT_EQ(nullptr, liblog_category);
    ASSERT_EQ(1, QBX_LogInit(Config("INFO").c_str()));
    EXPECT_NE(nullptr, liblog_category);

    QBX_LogExit();

    EXPECT_EQ(nullptr, liblog_category);
}
