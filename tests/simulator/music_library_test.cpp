#include "music/music_library.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>
#include <taglib/xiphcomment.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "music/index_cache.h"
#include "music/indexer.h"
#include "music/picture.h"
#include "music/tag_reader.h"
#include "temporary_folder.h"

namespace fs = std::filesystem;

using ipodsim::Library;
using ipodsim::ReadTrack;
using ipodsim::Track;

namespace
{
// Created by the build with ipod-make-samples.
const fs::path& Samples()
{
    static const fs::path folder = fs::path(IPOD_SAMPLES) / "Desk iPod";
    return folder;
}

// Drops superuser privileges, which bypass file permissions, during its lifetime.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        constexpr uid_t kNobody = 65534;
        if (m_before == 0 && seteuid(kNobody) != 0) throw std::runtime_error("cannot become an ordinary user");
    }
    ~OrdinaryUser()
    {
        if (seteuid(m_before) != 0) std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    uid_t m_before = geteuid();
};

class MusicFolder : public testing::Test
{
protected:
    void Write(const fs::path& name, const std::string& text) const { folder.Write(name, text); }
    fs::path CopySample(const fs::path& name) const { return folder.CopySample(name); }

    Library Read() { return Read(folder.path); }

    Library Read(const fs::path& path)
    {
        const std::string root = ipodsim::CheckedFolder(path.string());
        const ipodsim::Warn warn = [this](const std::string& line) { warnings.push_back(line); };
        ipodsim::IndexCache nothing({}, warn);
        return Index(ScanFolder(root, ipodsim::Depth::Everything, root, warn), nothing, {warn, {}, nullptr});
    }

    TemporaryFolder folder;
    std::vector<std::string> warnings;
};

const std::string kSmallPng("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x05\0\0\0\x07", 24);

void PutBytes(const fs::path& name, std::streamoff at, const std::string& bytes)
{
    std::fstream file(name, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(at);
    file << bytes;
}

// Replaces the track's artwork.
void PutPicture(const fs::path& ogg, const std::string& bytes)
{
    TagLib::FileRef file(ogg.c_str());
    auto* const comment = dynamic_cast<TagLib::Ogg::XiphComment*>(file.tag());
    comment->removeAllPictures();
    auto* const picture = new TagLib::FLAC::Picture;  // owned by the comment
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setData({bytes.data(), static_cast<unsigned>(bytes.size())});
    comment->addPicture(picture);
    if (!file.save()) throw std::runtime_error("cannot save the track");
}

void ExpectPngOf300Pixels(const Track& track)
{
    const ipodsim::Picture picture = ipodsim::PictureOf(track);
    EXPECT_TRUE(track.hasPicture);
    EXPECT_GT(picture.bytes.size(), 1000U);
    EXPECT_EQ(picture.width, 300U);
    EXPECT_EQ(picture.height, 300U);
}
}  // namespace

TEST(TagReader, ReadsFlacOggVorbisAndMp3)
{
    const struct
    {
        const char* file;
        const char* title;
        const char* artist;
        const char* album;
        const char* genre;
        int number;
        int lengthMs;
    } rows[] = {
        {"江南小雨/2 山间清晨.flac", "山间清晨", "曾雨桐", "江南小雨", "Folk", 2, 9000},
        {"Lanterns/1 Blue Lantern.ogg", "Blue Lantern", "Nadia Brandt", "Lanterns", "Jazz", 1, 16000},
        {"长夜里的音乐/1 长夜里的音乐.mp3", "长夜里的音乐", "单晓岚", "长夜里的音乐", "Pop", 1, 10000},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.file);
        const auto track = ReadTrack((Samples() / row.file).string());

        ASSERT_TRUE(track);
        EXPECT_EQ(track->title, row.title);
        EXPECT_EQ(track->artist, row.artist);
        EXPECT_EQ(track->album, row.album);
        EXPECT_EQ(track->genre, row.genre);
        EXPECT_EQ(track->number, row.number);
        EXPECT_NEAR(track->lengthMs, row.lengthMs, 100) << "MP3 pads the last frame";
        ExpectPngOf300Pixels(*track);
    }
}

TEST(TagReader, RejectsAMissingFile)
{
    EXPECT_FALSE(ReadTrack("/nonexistent/a.mp3"));
    EXPECT_TRUE(ipodsim::ReadEmbeddedPicture("/nonexistent/a.mp3").empty());
}

TEST(Picture, IsEmptyIfTheFileWasDeleted)
{
    Track track;
    track.file = "/nonexistent/a.flac";
    track.hasPicture = true;

    EXPECT_TRUE(ipodsim::PictureOf(track).bytes.empty());
}

// tests/kit examines the headers of all types.
TEST(Picture, NeedsASizeUnlessItIsAJpeg)
{
    const auto isPicture = [](const std::string& text) { return ipodsim::IsPicture({text.begin(), text.end()}); };
    const std::string noise(40, 'x');

    EXPECT_TRUE(isPicture(kSmallPng));
    EXPECT_TRUE(isPicture("\xFF\xD8\xFF\xE0" + noise));
    EXPECT_TRUE(isPicture(std::string("GIF89a\5\0\6\0", 10)));
    for (const std::string& rubbish : {kSmallPng.substr(0, 8), kSmallPng.substr(0, 8) + noise, std::string("\xFF\xD8"),
                                       "GIF89a" + std::string(10, '\0'), "BM" + noise, "II*" + noise, std::string()})
        EXPECT_FALSE(isPicture(rubbish)) << testing::PrintToString(rubbish);
}

TEST_F(MusicFolder, ReadsAllSamplesInOrder)
{
    const Library library = Read(Samples());

    EXPECT_EQ(library.tracks.size(), 12U);
    EXPECT_EQ(library.tracks.front()->artist, "Harbour Quartet");
    EXPECT_EQ(library.tracks.front()->number, 1);
    ASSERT_EQ(library.playlists.size(), 6U);
    EXPECT_EQ(library.playlists.front().name, "All songs");
    EXPECT_EQ(library.playlists.front().tracks.size(), 12U);
    EXPECT_TRUE(warnings.empty());
}

TEST_F(MusicFolder, FailsIfMissingOrNotAFolder)
{
    Write("file", "text");

    EXPECT_THROW(ipodsim::CheckedFolder((folder.path / "missing").string()), std::runtime_error);
    EXPECT_THROW(ipodsim::CheckedFolder((folder.path / "file").string()), std::runtime_error);
}

TEST_F(MusicFolder, HasNoTracksIfEmpty)
{
    const Library library = Read();

    EXPECT_TRUE(library.tracks.empty());
    EXPECT_TRUE(warnings.empty());
}

TEST_F(MusicFolder, SkipsEachNonAudioFileWithOneWarning)
{
    const std::string text(5000, 't');
    std::size_t count = 0;
    CopySample("good.ogg");
    for (const char* extension : {"txt", "mp3", "flac", "ogg", "opus", "wav", "aiff", "m4a", "wma", "wv", "ape", "mpc",
                                  "tta", "mod", "s3m", "it", "xm"})
        for (const std::string& contents : {std::string(), std::string("no music"), text})
            Write(std::to_string(count++) + "." + extension, contents);

    const Library library = Read();

    EXPECT_EQ(library.tracks.size(), 1U);
    for (const auto& track : library.tracks) EXPECT_EQ(track->title, "Rain on Copper");
    ASSERT_EQ(warnings.size(), count);
    EXPECT_EQ(warnings[0], "skipped " + (folder.path / "0.txt").string() + ": not a supported audio file");
}

TEST_F(MusicFolder, ListsAudioOfUnknownLength)
{
    // Clears the sample count, the last 36 bits before the checksum, as if the file had been written to a pipe.
    PutBytes(folder.CopySample("pipe.flac", "Tide Tables/2 Slack Tide.flac"), 22, std::string(4, '\0'));
    // Four channels, no samples, no length.
    Write("tracker.mod", "tracker" + std::string(1080 - 7, '\0') + "M.K." + std::string(1024, '\0'));

    const Library library = Read();

    EXPECT_EQ(warnings, std::vector<std::string>{});
    ASSERT_EQ(library.tracks.size(), 2U);
    EXPECT_EQ(library.tracks[0]->title, "Slack Tide");
    EXPECT_EQ(library.tracks[0]->lengthMs, 0);
    EXPECT_EQ(library.tracks[1]->title, "tracker");
    EXPECT_EQ(library.tracks[1]->lengthMs, 0);
}

TEST_F(MusicFolder, SkipsATruncatedFile)
{
    fs::resize_file(CopySample("cut.ogg"), 40);

    EXPECT_TRUE(Read().tracks.empty());
    EXPECT_EQ(warnings.size(), 1U);
}

TEST_F(MusicFolder, SkipsFilesThatCannotBeOpened)
{
    CopySample("good.ogg");
    fs::create_symlink("gone.ogg", folder.path / "dangling.ogg");
    ASSERT_EQ(mkfifo((folder.path / "pipe.ogg").c_str(), 0644), 0);

    const Library library = Read();

    EXPECT_EQ(library.tracks.size(), 1U);
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_NE(warnings[0].find("dangling.ogg: No such file or directory"), std::string::npos);
    EXPECT_NE(warnings[1].find("pipe.ogg: not a regular file"), std::string::npos);
}

TEST_F(MusicFolder, SkipsFilesAndFoldersWithoutPermission)
{
    fs::permissions(folder.path, fs::perms{0755});
    fs::permissions(CopySample("secret.ogg"), fs::perms::none);
    CopySample("open/good.ogg");
    CopySample("closed/good.ogg");
    fs::permissions(folder.path / "closed", fs::perms::none);

    Library library;
    {
        const OrdinaryUser user;
        library = Read();
    }
    fs::permissions(folder.path / "closed", fs::perms::owner_all);

    EXPECT_EQ(library.tracks.size(), 1U);
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_NE(warnings[0].find("closed: Permission denied"), std::string::npos) << warnings[0];
    EXPECT_NE(warnings[1].find("secret.ogg: Permission denied"), std::string::npos) << warnings[1];
}

TEST_F(MusicFolder, FailsWithoutPermission)
{
    fs::permissions(folder.path, fs::perms::none);

    {
        const OrdinaryUser user;
        EXPECT_THROW(Read(), std::runtime_error);
    }
    fs::permissions(folder.path, fs::perms::owner_all);
}

TEST_F(MusicFolder, FollowsALoopOfLinksOnce)
{
    CopySample("album/one.ogg");
    fs::create_directory_symlink(folder.path, folder.path / "album/loop");
    fs::create_directory_symlink(folder.path / "album", folder.path / "again");

    const Library library = Read();

    EXPECT_EQ(library.tracks.size(), 1U);
    EXPECT_TRUE(warnings.empty());
}

TEST_F(MusicFolder, SkipsVirtualFileSystems)
{
    CopySample("one.ogg");
    fs::create_directory_symlink("/proc", folder.path / "proc");

    EXPECT_EQ(Read().tracks.size(), 1U);

    EXPECT_EQ(warnings,
              (std::vector<std::string>{"skipped " + (folder.path / "proc").string() + ": a virtual file system"}));
}

TEST_F(MusicFolder, TurnsASubfolderIntoAPlaylist)
{
    CopySample("Evening/one.ogg");

    const Library library = Read();

    ASSERT_EQ(library.playlists.size(), 2U);
    EXPECT_EQ(library.playlists[1].name, "Evening");
}

TEST_F(MusicFolder, IgnoresHiddenFilesAndFolders)
{
    CopySample(".hidden.ogg");
    CopySample(".trash/one.ogg");

    EXPECT_TRUE(Read().tracks.empty());
    EXPECT_TRUE(warnings.empty());
}

TEST_F(MusicFolder, UsesTheFolderImageForTracksWithoutArtwork)
{
    TagLib::FileRef bare(CopySample("bare.ogg").c_str());
    dynamic_cast<TagLib::Ogg::XiphComment*>(bare.tag())->removeAllPictures();
    ASSERT_TRUE(bare.save());
    Write("folder.jpg", "no picture");
    Write("Front.PNG", kSmallPng);

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 1U);
    EXPECT_TRUE(library.tracks[0]->hasPicture);
    const ipodsim::Picture picture = ipodsim::PictureOf(*library.tracks[0]);
    EXPECT_EQ(picture.bytes, ipodsim::Bytes(kSmallPng.begin(), kSmallPng.end()));
    EXPECT_EQ(picture.width, 5U);
    EXPECT_EQ(picture.height, 7U);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("folder.jpg: not a valid image"), std::string::npos);
}

TEST_F(MusicFolder, PrefersATracksOwnArtworkToTheFolderImage)
{
    CopySample("one.ogg");
    Write("cover.jpg", "\xFF\xD8\xFF\xE0 picture");

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 1U);
    EXPECT_EQ(ipodsim::PictureOf(*library.tracks[0]).width, 300U);
}

TEST_F(MusicFolder, IgnoresInvalidEmbeddedArtwork)
{
    PutPicture(CopySample("bare.ogg"), "no picture at all");

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 1U);
    EXPECT_FALSE(library.tracks[0]->hasPicture);
}

TEST_F(MusicFolder, SkipsArtworkThatNeverFitsIntoSharedMemory)
{
    const std::string large = kSmallPng + std::string(std::size_t{2} << 20U, 'x');
    PutPicture(CopySample("a/large.ogg"), large);
    PutPicture(CopySample("b/large.ogg"), large);
    Write("b/cover.png", kSmallPng);
    Write("c/cover.png", large);

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 2U);
    EXPECT_FALSE(library.tracks[0]->hasPicture);
    EXPECT_EQ(ipodsim::PictureOf(*library.tracks[1]).bytes.size(), kSmallPng.size()) << "the folder's image";
    ASSERT_EQ(warnings.size(), 3U);
    EXPECT_EQ(warnings[0], "skipped " + (folder.path / "c/cover.png").string() + ": larger than 1044480 bytes");
    EXPECT_EQ(warnings[1],
              "skipped the artwork of " + (folder.path / "a/large.ogg").string() + ": larger than 1044480 bytes");
}

TEST_F(MusicFolder, TruncatesNamesAtACharacterBoundary)
{
    std::string longTitle = "a";
    while (longTitle.size() < 300) longTitle += "\u4E2D";
    TagLib::FileRef file(CopySample("one.ogg").c_str());
    file.tag()->setTitle(TagLib::String(longTitle, TagLib::String::UTF8));
    file.tag()->setArtist(TagLib::String("\u0641\u064A\u0631\u0648\u0632", TagLib::String::UTF8));
    file.tag()->setAlbum(TagLib::String("\U0001F3B8\U0001F468\u200D\U0001F469", TagLib::String::UTF8));
    ASSERT_TRUE(file.save());

    const Library library = Read();

    ASSERT_EQ(library.tracks.size(), 1U);
    EXPECT_EQ(library.tracks[0]->title, longTitle.substr(0, 253));
    EXPECT_EQ(library.tracks[0]->artist, "\u0641\u064A\u0631\u0648\u0632");
    EXPECT_EQ(library.tracks[0]->album, "\U0001F3B8\U0001F468\u200D\U0001F469");
}

TEST_F(MusicFolder, FallsBackToTheAlbumArtist)
{
    TagLib::FileRef file(CopySample("one.ogg").c_str());
    TagLib::PropertyMap properties = file.file()->properties();
    properties.erase("ARTIST");
    properties["ALBUMARTIST"] = TagLib::StringList("Someone");
    file.file()->setProperties(properties);
    ASSERT_TRUE(file.save());

    EXPECT_EQ(Read().tracks.at(0)->artist, "Someone");
}

TEST_F(MusicFolder, IsNotModifiedByReading)
{
    const fs::path file = CopySample("one.ogg");
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, file.parent_path().c_str(), IN_CLOSE_WRITE), 0);

    EXPECT_TRUE(ReadTrack(file.string()));
    EXPECT_FALSE(ipodsim::ReadEmbeddedPicture(file.string()).empty());

    char event[4096];
    EXPECT_EQ(read(watch, event, sizeof(event)), -1) << "a file was opened for writing";
    close(watch);
}

TEST_F(MusicFolder, KeepsTheOrderOfPlaylists)
{
    CopySample("a/one.ogg");
    CopySample("b/two.ogg");
    Write("lists/evening.m3u8", "\xEF\xBB\xBF#EXTM3U\r\n#PLAYLIST:Evening drive\r\n#EXTINF:8,Rain\r\n../b/two.ogg\r\n" +
                                    (folder.path / "a/one.ogg").string() +
                                    "\nhttp://example.org/stream\nmissing.ogg\n");

    const Library library = Read();

    ASSERT_EQ(library.playlists.size(), 4U);
    EXPECT_EQ(library.playlists[1].name, "Evening drive");
    ASSERT_EQ(library.playlists[1].tracks.size(), 2U);
    EXPECT_EQ(library.playlists[1].tracks[0]->file, (folder.path / "b/two.ogg").string());
    EXPECT_EQ(library.playlists[1].tracks[1]->file, (folder.path / "a/one.ogg").string());
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("evening.m3u8: 1 of 3 entries are not in the library"), std::string::npos);
}

TEST_F(MusicFolder, ReadsPlaylistsFromOtherSystems)
{
    CopySample("Stra\u00DFe/one.ogg");
    Write("old.m3u",
          "Stra\xDF"
          "e\\one.ogg\r\n");
    Write("uri.m3u", "file://" + (folder.path / "Stra%C3%9Fe/one.ogg").string() + "\n");

    const Library library = Read();

    ASSERT_EQ(library.playlists.size(), 4U);
    EXPECT_EQ(library.playlists[1].name, "old");
    EXPECT_EQ(library.playlists[2].name, "uri");
    EXPECT_TRUE(warnings.empty());
}
