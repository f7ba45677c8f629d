#include "samples/samples.h"

#include <sndfile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tag.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/vorbisfile.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "music/cover.h"
#include "samples/melody.h"

namespace ipodsim
{
namespace
{
namespace fs = std::filesystem;

struct Format
{
    const char* extension;
    int code;
};

constexpr Format kFlac{".flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16};
constexpr Format kVorbis{".ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS};
constexpr Format kMp3{".mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III};

struct Names
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
    unsigned track;
};

struct Sample
{
    const char* title;
    int seconds;
};

struct SampleAlbum
{
    const char* artist;
    const char* title;
    const char* genre;
    const Format& format;
    std::vector<Sample> samples;
};

// Artists and titles are fictitious.
const std::vector<SampleAlbum>& Albums()
{
    static const std::vector<SampleAlbum> albums = {
        {"曾雨桐", "江南小雨", "Folk", kFlac, {{"江南小雨", 12}, {"山间清晨", 9}, {"乌篷船", 15}}},
        {"单晓岚", "长夜里的音乐", "Pop", kMp3, {{"长夜里的音乐", 10}, {"单身的夜", 14}}},
        {"Nadia Brandt",
         "Lanterns",
         "Jazz",
         kVorbis,
         {{"Blue Lantern", 16}, {"Slow Ferry", 22}, {"Rain on Copper", 8}}},
        {"Harbour Quartet", "Tide Tables", "Classical", kFlac, {{"Low Water", 18}, {"Slack Tide", 11}}},
        {"Élodie Rouvière", "Été à vélo", "Electronic", kMp3, {{"Été à vélo", 13}, {"Ligne 6", 25}}},
    };
    return albums;
}

void WriteAudio(const fs::path& file, const Format& format, const std::vector<float>& samples)
{
    SF_INFO info{};
    info.samplerate = kSampleRate;
    info.channels = 1;
    info.format = format.code;
    const std::unique_ptr<SNDFILE, decltype(&sf_close)> out(sf_open(file.c_str(), SFM_WRITE, &info), &sf_close);
    const auto count = static_cast<sf_count_t>(samples.size());
    if (out == nullptr || sf_write_float(out.get(), samples.data(), count) != count)
        throw std::runtime_error("cannot write " + file.string() + ": " + sf_strerror(out.get()));
}

TagLib::ByteVector ToByteVector(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size())};
}

// Owned by the list that it is added to.
TagLib::FLAC::Picture* FlacPicture(const Picture& cover)
{
    auto* const picture = new TagLib::FLAC::Picture;
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setMimeType("image/png");
    picture->setWidth(static_cast<int>(cover.width));
    picture->setHeight(static_cast<int>(cover.height));
    picture->setData(ToByteVector(cover.bytes));
    return picture;
}

// Owned by the tag that it is added to.
TagLib::ID3v2::AttachedPictureFrame* Id3Picture(const Picture& cover)
{
    auto* const frame = new TagLib::ID3v2::AttachedPictureFrame;
    frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
    frame->setMimeType("image/png");
    frame->setPicture(ToByteVector(cover.bytes));
    return frame;
}

void AddPicture(TagLib::File* file, const Picture& cover)
{
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(file)) mpeg->ID3v2Tag(true)->addFrame(Id3Picture(cover));
    if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(file)) flac->addPicture(FlacPicture(cover));
    if (auto* vorbis = dynamic_cast<TagLib::Ogg::Vorbis::File*>(file)) vorbis->tag()->addPicture(FlacPicture(cover));
}

// @param cover  null for none
bool WriteTags(TagLib::FileRef& file, const Names& names, const Picture* cover)
{
    const auto text = [](const std::string& utf8) { return TagLib::String(utf8, TagLib::String::UTF8); };
    if (file.isNull()) return false;
    TagLib::Tag& tag = *file.tag();
    tag.setTitle(text(names.title));
    tag.setArtist(text(names.artist));
    tag.setAlbum(text(names.album));
    tag.setGenre(text(names.genre));
    tag.setTrack(names.track);
    if (cover != nullptr) AddPicture(file.file(), *cover);
    return file.save();
}

void MakeAlbum(const fs::path& folder, const SampleAlbum& album, unsigned number)
{
    const Picture cover = DrawCover(number);
    MakeFolder(folder);
    for (std::size_t i = 0; i < album.samples.size(); ++i)
    {
        const Sample& sample = album.samples[i];
        const std::string name = std::to_string(i + 1) + " " + sample.title + album.format.extension;
        WriteAudio(folder / name, album.format, Melody(number * 100 + static_cast<unsigned>(i), sample.seconds));
        TagLib::FileRef file((folder / name).c_str());
        if (!WriteTags(file, {sample.title, album.artist, album.title, album.genre, static_cast<unsigned>(i) + 1},
                       &cover))
            throw std::runtime_error("cannot write the tags of " + (folder / name).string());
    }
}

constexpr int kSongsPerAlbum = 20;
constexpr int kAlbumsPerArtist = 5;
constexpr int kCoverEvery = 10;

std::string Word(unsigned number)
{
    static constexpr std::array<const char*, 16> kWords = {"River", "Lantern", "夜曲",   "Harbour", "Stone", "雨后",
                                                           "Amber", "Field",   "春江",   "Signal",  "Quiet", "长夜",
                                                           "North", "Velvet",  "Winter", "Copper"};
    return kWords[number % kWords.size()];
}

Names NamesOf(int index)
{
    static constexpr std::array<const char*, 6> kGenres = {"Pop", "Folk", "Jazz", "Rock", "Classical", "Electronic"};
    const auto number = static_cast<unsigned>(index);
    const unsigned album = number / kSongsPerAlbum;
    const unsigned artist = album / kAlbumsPerArtist;
    return {Word(number * 7 + album) + " " + Word(number * 3 + 5) + " " + std::to_string(number),
            Word(artist * 5 + 1) + " " + std::to_string(artist), Word(album * 3 + 2) + " " + std::to_string(album),
            kGenres[artist % kGenres.size()], number % kSongsPerAlbum + 1};
}

// Encodes one second of music and returns the bytes of the file.
TagLib::ByteVector Encoded(const fs::path& folder, const Format& format)
{
    const fs::path file = folder / ".piece";
    WriteAudio(file, format, Melody(1, 1));
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    fs::remove(file);
    return {bytes.data(), static_cast<unsigned>(bytes.size())};
}

// Tags are written in memory: every file holds the same piece.
void WriteTagged(const fs::path& file, const TagLib::ByteVector& piece, const Names& names, const Picture* cover)
{
    TagLib::ByteVectorStream stream(piece);
    TagLib::FileRef reference(&stream, false);
    std::ofstream out(file, std::ios::binary);
    if (WriteTags(reference, names, cover)) out.write(stream.data()->data(), stream.length());
    if (!out.flush() || stream.length() == 0) throw std::runtime_error("cannot write " + file.string());
}
}  // namespace

void MakeFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw std::runtime_error("cannot create " + folder.string() + ": " + error.message());
}

int MakeSamples(const std::string& folder)
{
    MakeFolder(folder);
    std::size_t count = 0;
    unsigned number = 0;
    for (const SampleAlbum& album : Albums())
    {
        MakeAlbum(fs::path(folder) / "Desk iPod" / album.title, album, number++);
        count += album.samples.size();
    }
    return static_cast<int>(count);
}

int MakeManySamples(const std::string& folder, int count)
{
    MakeFolder(folder);
    const fs::path root = fs::path(folder) / "Large iPod";
    MakeFolder(root);
    const TagLib::ByteVector mp3 = Encoded(root, kMp3);
    const TagLib::ByteVector flac = Encoded(root, kFlac);
    const Picture cover = DrawCover(1);
    for (int i = 0; i < count; ++i)
    {
        const Names names = NamesOf(i);
        const fs::path album = root / names.artist / names.album;
        if (i % kSongsPerAlbum == 0) MakeFolder(album);
        const bool isFlac = i % 4 == 3;
        const bool covered = !isFlac && i / kSongsPerAlbum % kCoverEvery == 0;
        const std::string name = std::to_string(names.track) + " " + names.title + (isFlac ? kFlac : kMp3).extension;
        WriteTagged(album / name, isFlac ? flac : mp3, names, covered ? &cover : nullptr);
    }
    return count;
}
}  // namespace ipodsim
