// Tags in formats that the samples do not cover: tiny files, tagged with TagLib.
#include <gtest/gtest.h>
#include <taglib/aifffile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/trueaudiofile.h>
#include <taglib/wavpackfile.h>

#include <string>

#include "music/picture.h"
#include "music/tag_reader.h"
#include "temporary_folder.h"

namespace fs = std::filesystem;

namespace
{
const std::string kFront("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x05\0\0\0\x07", 24);
const std::string kBack("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x09\0\0\0\x09", 24);

const std::string kAiff(
    "FORM\0\0\0.AIFFCOMM\0\0\0\x12\0\1\0\0\0\0\0\x10\x40\x0E\xAC\x44\0\0\0\0\0\0SSND\0\0\0\x08\0\0\0\0\0\0\0\0", 54);
const std::string kTta("TTA1\1\0\1\0\x10\0\x44\xAC\0\0\x44\xAC\0\0\0\0\0\0", 22);
// One block of one second: mono, 16 bits, 44,100 Hz.
const std::string kWavPack("wvpk\x18\0\0\0\x10\4\0\0\x44\xAC\0\0\0\0\0\0\x44\xAC\0\0\5\x18\xBC\4\0\0\0\0", 32);
// A header with the file and stream properties.
const std::string kAsf = std::string(
                             "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"
                             "\xF0\0\0\0\0\0\0\0\2\0\0\0\1\2",
                             30) +
                         std::string(
                             "\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65"
                             "\x68\0\0\0\0\0\0\0",
                             24) +
                         std::string(80, '\0') +
                         std::string(
                             "\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65"
                             "\x6A\0\0\0\0\0\0\0",
                             24) +
                         std::string(54, '\0') + std::string("\x61\1\1\0\x44\xAC\0\0\x80\x3E\0\0\xE7\2\x10\0", 16) +
                         std::string(12, '\0');

TagLib::ByteVector ToVector(const std::string& bytes)
{
    return {bytes.data(), static_cast<unsigned>(bytes.size())};
}

void AddPictures(TagLib::ID3v2::Tag& tag)
{
    using Frame = TagLib::ID3v2::AttachedPictureFrame;
    for (const auto& [type, bytes] : {std::pair(Frame::BackCover, kBack), std::pair(Frame::FrontCover, kFront)})
    {
        auto* const frame = new Frame;  // owned by the tag
        frame->setType(type);
        frame->setPicture(ToVector(bytes));
        tag.addFrame(frame);
    }
}

// The description, a NUL, and the image.
void AddPictures(TagLib::APE::Tag& tag)
{
    tag.setData("Cover Art (Back)", ToVector(std::string("back.png\0", 9) + kBack));
    tag.setData("Cover Art (Front)", ToVector(std::string("front.png\0", 10) + kFront));
}

void AddPictures(TagLib::ASF::Tag& tag)
{
    for (const auto& [type, bytes] :
         {std::pair(TagLib::ASF::Picture::BackCover, kBack), std::pair(TagLib::ASF::Picture::FrontCover, kFront)})
    {
        TagLib::ASF::Picture picture;
        picture.setType(type);
        picture.setPicture(ToVector(bytes));
        tag.addAttribute("WM/Picture", picture);
    }
}

class Tags : public testing::Test
{
protected:
    fs::path Write(const char* name, const std::string& bytes) const
    {
        folder.Write(name, bytes);
        return folder.path / name;
    }

    TemporaryFolder folder;
};

// Adds a back and a front cover to a file's tag, and reads the front cover back.
template <class File, class TagOf>
void ExpectFrontCover(const fs::path& path, TagOf tagOf)
{
    {
        File file(path.c_str());
        AddPictures(*tagOf(file));
        ASSERT_TRUE(file.save());
    }
    const auto track = ipodsim::ReadTrack(path.string());
    ASSERT_TRUE(track);
    EXPECT_TRUE(track->hasPicture);
    EXPECT_EQ(ipodsim::PictureOf(*track).bytes, ipodsim::Bytes(kFront.begin(), kFront.end()));
}
}  // namespace

TEST_F(Tags, ProvideArtworkInAiff)
{
    ExpectFrontCover<TagLib::RIFF::AIFF::File>(Write("a.aiff", kAiff), [](auto& file) { return file.tag(); });
}

TEST_F(Tags, ProvideArtworkInTrueAudio)
{
    ExpectFrontCover<TagLib::TrueAudio::File>(Write("a.tta", kTta), [](auto& file) { return file.ID3v2Tag(true); });
}

TEST_F(Tags, ProvideArtworkInWavPack)
{
    ExpectFrontCover<TagLib::WavPack::File>(Write("a.wv", kWavPack), [](auto& file) { return file.APETag(true); });
}

TEST_F(Tags, ProvideArtworkInWindowsMedia)
{
    ExpectFrontCover<TagLib::ASF::File>(Write("a.wma", kAsf), [](auto& file) { return file.tag(); });
}

TEST_F(Tags, ProvideArtworkInApeTagsOfMp3)
{
    const fs::path path = folder.CopySample("ape.mp3", "长夜里的音乐/1 长夜里的音乐.mp3");
    TagLib::MPEG::File(path.c_str()).strip();

    ExpectFrontCover<TagLib::MPEG::File>(path, [](auto& file) { return file.APETag(true); });
}

TEST_F(Tags, JoinDistinctValuesWithCommas)
{
    for (const fs::path& path :
         {folder.CopySample("a.ogg"), folder.CopySample("a.mp3", "长夜里的音乐/1 长夜里的音乐.mp3"),
          folder.CopySample("a.flac", "Tide Tables/2 Slack Tide.flac"), Write("a.wv", kWavPack)})
    {
        SCOPED_TRACE(path);
        {
            TagLib::FileRef file(path.c_str());
            TagLib::PropertyMap properties;
            for (const char* name : {"TITLE", "ARTIST", "ALBUM", "GENRE"})
                properties[name] = TagLib::StringList("Rock").append("Pop").append("Rock");
            file.file()->setProperties(properties);
            ASSERT_TRUE(file.save());
        }
        const auto track = ipodsim::ReadTrack(path.string());

        ASSERT_TRUE(track);
        EXPECT_EQ(track->title, "Rock, Pop");
        EXPECT_EQ(track->artist, "Rock, Pop");
        EXPECT_EQ(track->album, "Rock, Pop");
        EXPECT_EQ(track->genre, "Rock, Pop");
    }
}

TEST_F(Tags, FallBackToTheFirstVersion)
{
    const fs::path path = folder.CopySample("a.mp3", "长夜里的音乐/1 长夜里的音乐.mp3");
    {
        TagLib::MPEG::File file(path.c_str());
        file.strip();
        file.ID3v2Tag(true)->setTitle("Title");
        file.ID3v1Tag(true)->setAlbum("Album");
        file.ID3v1Tag(true)->setArtist("Artist");
        file.ID3v1Tag(true)->setGenre("Jazz");
        ASSERT_TRUE(file.save(TagLib::MPEG::File::AllTags, TagLib::File::StripNone, TagLib::ID3v2::v4,
                              TagLib::File::DoNotDuplicate));
    }
    const auto track = ipodsim::ReadTrack(path.string());

    ASSERT_TRUE(track);
    EXPECT_EQ(track->title, "Title");
    EXPECT_EQ(track->artist, "Artist");
    EXPECT_EQ(track->album, "Album");
    EXPECT_EQ(track->genre, "Jazz");
}
