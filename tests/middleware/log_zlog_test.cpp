// QBX_LogInit() with zlog configurations, and in an application that uses zlog itself.
#include <QBXLog.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace
{
namespace fs = std::filesystem;

class LogOfZlog : public testing::Test
{
protected:
    LogOfZlog() { fs::create_directory(m_folder); }
    ~LogOfZlog() override
    {
        QBX_LogExit();
        zlog_fini();
        fs::remove_all(m_folder);
    }

    std::string Path(const std::string& name) const { return m_folder / name; }
    std::string Written(const std::string& name) const
    {
        return (std::ostringstream() << std::ifstream(Path(name)).rdbuf()).str();
    }

    // Writes a configuration file and returns its path.
    std::string Configuration(const std::string& rules) const
    {
        std::ofstream(Path("zlog.conf")) << "[formats]\nbare = \"%c %V %m%n\"\n[rules]\n" << rules << '\n';
        return Path("zlog.conf");
    }

    std::string RuleInto(const std::string& name) const { return "*.DEBUG \"" + Path(name) + "\"; bare"; }

private:
    const fs::path m_folder = fs::temp_directory_path() / ("log-of-zlog-" + std::to_string(getpid()));
};

// The lines of the guide's indented block that contains a rules section.
std::string ConfigurationOfTheGuide()
{
    std::ifstream guide(LOGGING_GUIDE);
    std::string block;
    for (std::string line; std::getline(guide, line);)
    {
        if (line.rfind("    ", 0) == 0)
            block += line.substr(4) + '\n';
        else if (block.find("[rules]") != std::string::npos)
            return block;
        else
            block.clear();
    }
    return {};
}
}  // namespace

TEST_F(LogOfZlog, UsesTheCategoryOfAConfigurationFile)
{
    ASSERT_EQ(1, QBX_LogInit(Configuration(RuleInto("log")).c_str()));

    zlog_info(liblog_category, "%s %d", "record", 1);

    EXPECT_EQ("ipod INFO record 1\n", Written("log"));
}

TEST_F(LogOfZlog, KeepsItsConfigurationIfTheNextOneIsUnusable)
{
    ASSERT_EQ(1, QBX_LogInit(Configuration(RuleInto("log")).c_str()));

    EXPECT_EQ(0, QBX_LogInit(Path("missing").c_str()));
    EXPECT_EQ(0, QBX_LogInit(Configuration("no rule").c_str()));
    zlog_info(liblog_category, "%s", "still here");

    EXPECT_EQ("ipod INFO still here\n", Written("log"));
}

TEST_F(LogOfZlog, RejectsFileNamesWithSpecialCharacters)
{
    for (const char* name : {"a\"b", "%d", "a,b", "a;b", "a#b"})
        EXPECT_EQ(0, QBX_LogInit(("INFO:" + Path(name)).c_str())) << name;
    EXPECT_EQ(nullptr, liblog_category);
}

TEST_F(LogOfZlog, DoesNotTouchTheLoggingOfAnApplication)
{
    ASSERT_EQ(0, zlog_init(Configuration(RuleInto("log")).c_str()));
    zlog_category_t* const own = zlog_get_category("own");

    EXPECT_EQ(0, QBX_LogInit("INFO"));
    QBX_LogExit();
    zlog_info(own, "%s", "mine");

    EXPECT_EQ("own INFO mine\n", Written("log"));
}

TEST_F(LogOfZlog, UsesACategoryThatTheApplicationSets)
{
    ASSERT_EQ(0, zlog_init(Configuration(RuleInto("log")).c_str()));
    zlog_category_t* const category = zlog_get_category("ipod");
    liblog_category = category;

    EXPECT_EQ(0, QBX_LogInit("INFO"));
    EXPECT_EQ(category, liblog_category);
    zlog_info(liblog_category, "%s", "of the library");
    QBX_LogExit();

    EXPECT_EQ(nullptr, liblog_category);
    zlog_info(category, "%s", "of the application");
    EXPECT_EQ("ipod INFO of the library\nipod INFO of the application\n", Written("log"));
}

TEST_F(LogOfZlog, WritesTheRecordOfTheGuideWithItsConfiguration)
{
    const std::string path = Path("zlog.conf");
    std::ofstream(path) << std::regex_replace(ConfigurationOfTheGuide(), std::regex("/var/log/ipod.log"), Path("log"));
    ASSERT_EQ(1, QBX_LogInit(path.c_str()));

    const std::string file = "libipod/QBXIpod_MediaPlayer_Client";
    zlog(liblog_category, file.c_str(), file.size(), "InitShareMemory", 15, 56, ZLOG_LEVEL_INFO, "%s()",
         "InitShareMemory");

    const std::regex expected(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )"
                              R"(INFO  libipod/QBXIpod_MediaPlayer_Client InitShareMemory:56 InitShareMemory\(\)\n)");
    EXPECT_TRUE(std::regex_match(Written("log"), expected)) << Written("log");
}
