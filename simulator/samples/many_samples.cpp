#include <sndfile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/xiphcomment.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "music/cover.h"
#include "samples/melody.h"
#include "samples/samples.h"

namespace ipodsim
{
namespace
{
namespace fs = std::filesystem;

constexpr int kSongsPerAlbum = 20;
constexpr int kAlbumsPerArtist = 5;
constexpr int kCoverEvery = 10;

void Write(const fs::path& file, const std::string& bytes)
{
    std::ofstream out(file, std::ios::binary);
    out << bytes;
    if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

// Encodes one second of music as a file and returns its bytes.
std::string Encoded(const fs::path& folder, int format)
{
    const fs::path file = folder / ".piece";
    const std::vector<float> samples = Melody(1, 1);
    SF_INFO info{};
    info.samplerate = kSampleRate;
    info.channels = 1;
    info.format = format;
    SNDFILE* const out = sf_open(file.c_str(), SFM_WRITE, &info);
    if (out == nullptr) throw std::runtime_error("cannot write " + file.string() + ": " + sf_strerror(nullptr));
    sf_write_float(out, samples.data(), static_cast<sf_count_t>(samples.size()));
    sf_close(out);
    std::ifstream in(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    fs::remove(file);
    return bytes;
}

struct Names
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
    unsigned track;
};

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

void SetNames(TagLib::Tag& tag, const Names& names)
{
    const auto text = [](const std::string& utf8) { return TagLib::String(utf8, TagLib::String::UTF8); };
    tag.setTitle(text(names.title));
    tag.setArtist(text(names.artist));
    tag.setAlbum(text(names.album));
    tag.setGenre(text(names.genre));
    tag.setTrack(names.track);
}

std::string ToString(const TagLib::ByteVector& bytes)
{
    return {bytes.data(), bytes.size()};
}

class Maker
{
public:
    explicit Maker(const fs::path& folder)
        : m_mp3(Encoded(folder, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III)),
          m_flac(Encoded(folder, SF_FORMAT_FLAC | SF_FORMAT_PCM_16))
    {
    }

    std::string Mp3(const Names& names, const Picture* cover) const
    {
        TagLib::ID3v2::Tag tag;
        SetNames(tag, names);
        if (cover != nullptr)
        {
            auto* const frame = new TagLib::ID3v2::AttachedPictureFrame;  // owned by the tag
            frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
            frame->setMimeType("image/png");
            frame->setPicture(
                {reinterpret_cast<const char*>(cover->bytes.data()), static_cast<unsigned>(cover->bytes.size())});
            tag.addFrame(frame);
        }
        return ToString(tag.render()) + m_mp3;
    }

    // The stream info, the comment as the last metadata block, and the frames.
    std::string Flac(const Names& names) const
    {
        constexpr std::size_t kDescriptionEnds = 4 + 4 + 34;
        TagLib::Ogg::XiphComment comment;
        SetNames(comment, names);
        const std::string block = ToString(comment.render(false));
        const auto byte = [&](unsigned shift) { return static_cast<char>(block.size() >> shift & 0xFFU); };
        std::string description = m_flac.substr(0, kDescriptionEnds);
        description[4] = 0;
        return description + std::string{'\x84', byte(16), byte(8), byte(0)} + block + m_flac.substr(FramesBegin());
    }

private:
    std::size_t FramesBegin() const
    {
        std::size_t at = 4;
        for (bool last = false; !last && at + 4 <= m_flac.size();)
        {
            const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(m_flac[at + i]); };
            last = (byte(0) & 0x80U) != 0;
            at += 4 + (std::size_t{byte(1)} << 16U | std::size_t{byte(2)} << 8U | std::size_t{byte(3)});
        }
        return at;
    }

    std::string m_mp3;
    std::string m_flac;
};
}  // namespace

int MakeManySamples(const std::string& folder, int count)
{
    MakeFolder(folder);
    const fs::path root = fs::path(folder) / "Large iPod";
    MakeFolder(root);
    const Maker maker(root);
    const Picture cover = DrawCover(1);
    for (int i = 0; i < count; ++i)
    {
        const Names names = NamesOf(i);
        const fs::path album = root / names.artist / names.album;
        if (i % kSongsPerAlbum == 0) MakeFolder(album);
        const bool flac = i % 4 == 3;
        const bool covered = i / kSongsPerAlbum % kCoverEvery == 0;
        const std::string name = std::to_string(names.track) + " " + names.title;
        Write(album / (name + (flac ? ".flac" : ".mp3")),
              flac ? maker.Flac(names) : maker.Mp3(names, covered ? &cover : nullptr));
    }
    return count;
}
}  // namespace ipodsim
