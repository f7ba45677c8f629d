#include "music/index_cache.h"

#include <gtest/gtest.h>

#include <fstream>

#include "music/indexer.h"
#include "temporary_folder.h"

namespace fs = std::filesystem;

using ipodsim::Depth;
using ipodsim::IndexCache;
using ipodsim::Library;

namespace
{
// Music that is read through a cache.
class CachedMusic : public testing::Test
{
protected:
    CachedMusic() { folder.CopySample("music/one.ogg"); }

    Library Read()
    {
        warnings.clear();
        const auto warn = [this](const std::string& line) { warnings.push_back(line); };
        const std::string root = (folder.path / "music").string();
        IndexCache cache(CacheFile().string(), warn);
        Library library = Index(ScanFolder(root, Depth::Everything, root, warn), cache, {warn, {}, nullptr});
        cache.Save(IndexCache::Unused::Forget);
        return library;
    }

    fs::path CacheFile() const { return folder.path / "cache/of/it.index"; }

    // Overwrites the file with garbage but keeps its stamp.
    void SpoilUnseen(const fs::path& name) const
    {
        const fs::path file = folder.path / name;
        const auto modified = fs::last_write_time(file);
        const auto size = fs::file_size(file);
        std::ofstream(file) << "no audio";
        fs::resize_file(file, size);
        fs::last_write_time(file, modified);
    }

    void Append(const std::string& text) const { std::ofstream(CacheFile(), std::ios::app) << text; }

    TemporaryFolder folder;
    std::vector<std::string> warnings;
};
}  // namespace

TEST_F(CachedMusic, IsNotReadAgain)
{
    const Library first = Read();
    SpoilUnseen("music/one.ogg");

    const Library second = Read();

    ASSERT_EQ(second.tracks.size(), 1U);
    EXPECT_EQ(second.tracks[0]->title, first.tracks[0]->title);
    EXPECT_EQ(second.tracks[0]->lengthMs, first.tracks[0]->lengthMs);
    EXPECT_EQ(second.tracks[0]->number, first.tracks[0]->number);
    EXPECT_EQ(second.tracks[0]->file, first.tracks[0]->file);
    EXPECT_TRUE(second.tracks[0]->hasPicture);
    EXPECT_TRUE(warnings.empty());
}

TEST_F(CachedMusic, IsReadAgainIfItsTimeChanged)
{
    Read();
    SpoilUnseen("music/one.ogg");
    fs::last_write_time(folder.path / "music/one.ogg", fs::file_time_type::clock::now());

    EXPECT_TRUE(Read().tracks.empty());
    EXPECT_EQ(warnings.size(), 1U);
}

TEST_F(CachedMusic, RemembersNonAudioFiles)
{
    folder.Write("music/fake.mp3", "no music");
    Read();

    EXPECT_EQ(Read().tracks.size(), 1U);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("fake.mp3: not a supported audio file"), std::string::npos);
}

TEST_F(CachedMusic, KeepsReadingsOfChineseNames)
{
    folder.CopySample("music/two.flac", "江南小雨/2 山间清晨.flac");
    Read();

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 2U);
    EXPECT_EQ(library.tracks[1]->readings.artist, "zeng yu tong");
}

TEST_F(CachedMusic, ForgetsDeletedFiles)
{
    folder.CopySample("music/two.ogg");
    Read();
    const auto withBoth = fs::file_size(CacheFile());
    fs::remove(folder.path / "music/two.ogg");
    folder.CopySample("music/3.ogg");
    Read();
    fs::remove(folder.path / "music/3.ogg");
    fs::last_write_time(folder.path / "music/one.ogg", fs::file_time_type::clock::now());
    Read();

    EXPECT_LT(fs::file_size(CacheFile()), withBoth);
}

TEST_F(CachedMusic, IsReadAgainIfTheCacheIsDamaged)
{
    Read();
    const auto size = fs::file_size(CacheFile());
    for (const std::uintmax_t cut : {size - 1, size / 2, std::uintmax_t{30}, std::uintmax_t{3}, std::uintmax_t{0}})
    {
        SCOPED_TRACE(cut);
        Read();
        fs::resize_file(CacheFile(), cut);

        EXPECT_EQ(Read().tracks.size(), 1U);
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_NE(warnings[0].find("is damaged or from another version"), std::string::npos);
        EXPECT_EQ(fs::file_size(CacheFile()), size) << "the cache is rewritten";
    }
}

TEST_F(CachedMusic, IsReadAgainIfAByteOfTheCacheChanged)
{
    Read();
    std::fstream file(CacheFile(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(60);
    file.put('\x7F');
    file.close();

    EXPECT_EQ(Read().tracks.size(), 1U);
    EXPECT_EQ(warnings.size(), 1U);
}

TEST_F(CachedMusic, IsReadIfTheCacheIsNotWritable)
{
    folder.Write("cache", "in the way");

    EXPECT_EQ(Read().tracks.size(), 1U);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("cannot store the index"), std::string::npos);
}

TEST(IndexCacheFile, DiffersFromFolderToFolder)
{
    EXPECT_EQ(ipodsim::CacheFileFor("/c", "/music"), ipodsim::CacheFileFor("/c", "/music"));
    EXPECT_NE(ipodsim::CacheFileFor("/c", "/music"), ipodsim::CacheFileFor("/c", "/musik"));
}

TEST_F(CachedMusic, SkipsAFileThatVanishesAfterTheScan)
{
    const auto warn = [this](const std::string& line) { warnings.push_back(line); };
    const std::string root = (folder.path / "music").string();
    const auto scan = ScanFolder(root, Depth::Everything, root, warn);
    fs::remove(folder.path / "music/one.ogg");
    IndexCache cache({}, warn);

    EXPECT_TRUE(Index(scan, cache, {warn, {}, nullptr}).tracks.empty());
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("one.ogg: No such file or directory"), std::string::npos);
}

TEST_F(CachedMusic, ReportsProgress)
{
    for (int i = 0; i < 200; ++i) folder.CopySample("music/" + std::to_string(i) + ".ogg");
    const auto warn = [](const std::string&) {};
    const std::string root = (folder.path / "music").string();
    IndexCache cache({}, warn);
    std::size_t last = 0;
    bool rises = true;

    Index(ScanFolder(root, Depth::Everything, root, warn), cache,
          {warn,
           [&](std::size_t done, std::size_t all)
           {
               rises = rises && done > last && all == 201;
               last = done;
           },
           nullptr});

    EXPECT_TRUE(rises);
    EXPECT_EQ(last, 201U);
}
