#include "music/folder_scan.h"

#include <gtest/gtest.h>

#include "music/folder_watch.h"
#include "temporary_folder.h"

namespace fs = std::filesystem;

using ipodsim::Depth;
using ipodsim::DeviceFoldersOf;

namespace
{
std::vector<std::string> NamesOf(const TemporaryFolder& folder, bool oneDevice = false)
{
    std::vector<std::string> names;
    for (const auto& device : DeviceFoldersOf(folder.path.string(), "Own", oneDevice)) names.push_back(device.name);
    return names;
}

using Names = std::vector<std::string>;

// Runs the main context until the condition holds or the time is up.
template <class Condition>
bool Within(int milliseconds, Condition holds)
{
    const gint64 end = g_get_monotonic_time() + gint64{milliseconds} * 1000;
    while (!holds() && g_get_monotonic_time() < end)
    {
        g_main_context_iteration(nullptr, FALSE);
        g_usleep(1000);
    }
    return holds();
}
}  // namespace

TEST(DeviceFolders, AreTheSubfoldersSortedByName)
{
    TemporaryFolder folder;
    fs::create_directories(folder.path / "Phone/Album");
    fs::create_directories(folder.path / "Car");
    fs::create_directories(folder.path / ".trash");

    EXPECT_EQ(NamesOf(folder), (Names{"Car", "Phone"}));
}

TEST(DeviceFolders, StartWithTheRootIfItHasFiles)
{
    TemporaryFolder folder;
    fs::create_directories(folder.path / "Phone");
    folder.Write("cover.jpg", "");
    folder.Write("notes.txt", "");
    EXPECT_EQ(NamesOf(folder), (Names{"Phone"}));

    folder.Write("song.MP3", "");

    EXPECT_EQ(NamesOf(folder), (Names{"Own", "Phone"}));
    EXPECT_EQ(DeviceFoldersOf(folder.path.string(), "Own", false)[0].depth, Depth::TopOnly);
}

TEST(DeviceFolders, IncludeTheRootIfItIsEmpty)
{
    TemporaryFolder folder;

    EXPECT_EQ(NamesOf(folder), (Names{"Own"}));
}

TEST(DeviceFolders, AreOneWithOneDevice)
{
    TemporaryFolder folder;
    fs::create_directories(folder.path / "Phone");

    EXPECT_EQ(NamesOf(folder, true), (Names{"Own"}));
}

TEST(DeviceFolders, FollowLinksButNotBackToTheRoot)
{
    TemporaryFolder folder;
    TemporaryFolder elsewhere;
    fs::create_directory_symlink(elsewhere.path, folder.path / "Linked");
    fs::create_directory_symlink(folder.path, folder.path / "Loop");

    EXPECT_EQ(NamesOf(folder), (Names{"Linked"}));
}

TEST(DeviceFolders, HaveValidTruncatedNames)
{
    TemporaryFolder folder;
    fs::create_directories(folder.path / "\xFF broken");

    EXPECT_EQ(NamesOf(folder), (Names{"\uFFFD broken"}));
}

TEST(DeviceFolders, AreEmptyIfTheRootIsMissing)
{
    EXPECT_TRUE(DeviceFoldersOf("/nonexistent", "Own", false).empty());
}

TEST(FolderWatch, ReportsABurstOfChangesOnce)
{
    TemporaryFolder folder;
    int changes = 0;
    ipodsim::FolderWatch watch(
        folder.path.string(), nullptr, [](const std::string&) {}, [&] { ++changes; });

    for (int i = 0; i < 20; ++i) folder.Write("Phone/" + std::to_string(i), "text");

    EXPECT_TRUE(Within(3000, [&] { return changes > 0; }));
    EXPECT_FALSE(Within(1000, [&] { return changes > 1; }));
}

TEST(FolderWatch, DetectsChangesInFoldersAddedLater)
{
    TemporaryFolder folder;
    int changes = 0;
    ipodsim::FolderWatch watch(
        folder.path.string(), nullptr, [](const std::string&) {}, [&] { ++changes; });
    fs::create_directories(folder.path / "Phone/Album");
    ASSERT_TRUE(Within(3000, [&] { return changes == 1; }));
    watch.Add((folder.path / "Phone/Album").string());

    folder.Write("Phone/Album/one", "text");

    EXPECT_TRUE(Within(3000, [&] { return changes == 2; }));
}

TEST(FolderWatch, DetectsChangesAfterTheRootReturns)
{
    TemporaryFolder folder;
    int changes = 0;
    std::vector<std::string> warnings;
    ipodsim::FolderWatch watch(
        folder.path.string(), nullptr, [&](const std::string& line) { warnings.push_back(line); }, [&] { ++changes; });

    fs::remove_all(folder.path);
    ASSERT_TRUE(Within(3000, [&] { return changes == 1; }));
    EXPECT_EQ(warnings, (Names{"the music folder " + folder.path.string() + " disappeared; waiting for its return"}));
    fs::create_directory(folder.path);
    ASSERT_TRUE(Within(3000, [&] { return changes == 2; }));
    folder.Write("one", "text");

    EXPECT_TRUE(Within(3000, [&] { return changes == 3; }));
    EXPECT_EQ(warnings.size(), 1U);
}

TEST(FolderWatch, DetectsThatTheRootWasReplaced)
{
    TemporaryFolder parent;
    TemporaryFolder elsewhere;
    const fs::path root = parent.path / "stick" / "music";
    fs::create_directories(root);
    elsewhere.Write("music/one", "text");
    int changes = 0;
    ipodsim::FolderWatch watch(
        root.string(), nullptr, [](const std::string&) {}, [&] { ++changes; });

    fs::rename(parent.path / "stick", parent.path / "before");
    fs::rename(elsewhere.path, parent.path / "stick");

    EXPECT_TRUE(Within(3000, [&] { return changes == 1; })) << "no watched folder has changed";
    fs::create_directory(elsewhere.path);
}
