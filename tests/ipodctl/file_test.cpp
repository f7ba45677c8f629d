#include "output/output.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "output/failure.h"

using namespace ctl;

namespace
{
class Files : public testing::Test
{
protected:
    Files()
    {
        char name[] = "/tmp/ipodctl_test_XXXXXX";
        m_folder = mkdtemp(name);
    }
    ~Files() override { std::filesystem::remove_all(m_folder); }

    std::string m_folder;
};

template <class Action>
ExitCode CodeOf(const Action& action)
{
    try
    {
        action();
    }
    catch (const Failure& failure)
    {
        return failure.code();
    }
    return kDone;
}
}  // namespace

TEST_F(Files, GetAnExtensionIfTheyHaveNone)
{
    EXPECT_EQ(FileIn("cover", "artwork", ".png"), "cover.png");
    EXPECT_EQ(FileIn("cover.jpg", "artwork", ".png"), "cover.jpg");
    EXPECT_EQ(FileIn("/tmp/a.b/cover", "artwork", ".png"), "/tmp/a.b/cover.png");
}

TEST_F(Files, KeepTheNameOfADevice)
{
    EXPECT_EQ(FileIn("/dev/null", "artwork", ".png"), "/dev/null");
    WriteFile(m_folder + "/cover", {1});
    EXPECT_EQ(FileIn(m_folder + "/cover", "artwork", ".png"), m_folder + "/cover.png");
}

TEST_F(Files, GetANameInAFolder)
{
    EXPECT_EQ(FileIn(m_folder, "artwork", ".png"), m_folder + "/artwork.png");
    EXPECT_EQ(FileIn("to/come/", "artwork", ".png"), "to/come/artwork.png");
}

TEST_F(Files, AreReadAsTheyWereWritten)
{
    std::vector<unsigned char> bytes(10000);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 7);
    WriteFile(m_folder + "/a", bytes);
    EXPECT_EQ(ReadFile(m_folder + "/a"), bytes);
    WriteFile(m_folder + "/a", {});
    EXPECT_TRUE(ReadFile(m_folder + "/a").empty());
}

TEST_F(Files, AreReadUpToALength)
{
    WriteFile(m_folder + "/a", std::vector<unsigned char>(10000));
    EXPECT_EQ(ReadFile(m_folder + "/a", 10000).size(), 10000U);
    EXPECT_THROW(ReadFile(m_folder + "/a", 9999), Failure);
}

TEST_F(Files, AreReportedWithTheReasonIfUnusable)
{
    EXPECT_THROW(ReadFile(m_folder + "/none"), Failure);
    EXPECT_THROW(ReadFile(m_folder), Failure);
    EXPECT_THROW(WriteFile(m_folder, {1}), Failure);
    EXPECT_EQ(CodeOf([] { WriteFile("/dev/full", {1}); }), kNoOutput);
    EXPECT_EQ(CodeOf([] { WriteFile("/nonexistent/file", {1}); }), kUsage);
}
