#include "music/tag_reader.h"

#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/modproperties.h>
#include <taglib/mp4file.h>
#include <taglib/mpcfile.h>
#include <taglib/mpegfile.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <taglib/trueaudiofile.h>
#include <taglib/wavfile.h>
#include <taglib/wavpackfile.h>
#include <taglib/xiphcomment.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <utility>

#include "music/picture.h"
#include "music/text.h"

namespace ipodsim
{
namespace
{
// TagLib scans the whole file for the first frame, which takes minutes for gigabytes without one. This stream ends
// early instead. It opens the file read-only: closing a writable file would be reported as a change of its folder.
class BoundedStream : public TagLib::FileStream
{
public:
    // @param cancelled  setting it to true ends the stream; may be null
    BoundedStream(const char* file, const std::atomic<bool>* cancelled) : FileStream(file, true), m_cancelled(cancelled)
    {
    }

    TagLib::ByteVector readBlock(unsigned long length) override
    {
        const TagLib::ByteVector block = FileStream::readBlock(Ended() ? 0 : std::min(length, m_left));
        m_left -= block.size();
        return block;
    }
    // A backward search continues to the start of the file even after reads fail.
    void seek(long offset, Position from) override
    {
        if (!Ended()) FileStream::seek(offset, from);
    }

private:
    bool Ended() const { return m_left == 0 || (m_cancelled != nullptr && *m_cancelled); }

    unsigned long m_left = 32UL << 20U;  // tags and their images are smaller
    const std::atomic<bool>* m_cancelled;
};

Bytes ToBytes(const TagLib::ByteVector& bytes)
{
    return {bytes.begin(), bytes.end()};
}

Bytes PictureIn(const TagLib::List<TagLib::FLAC::Picture*>& pictures)
{
    for (const auto* picture : pictures)
        if (picture->type() == TagLib::FLAC::Picture::FrontCover) return ToBytes(picture->data());
    return pictures.isEmpty() ? Bytes{} : ToBytes(pictures.front()->data());
}

Bytes PictureIn(const TagLib::ID3v2::Tag* tag)
{
    using Frame = TagLib::ID3v2::AttachedPictureFrame;
    Bytes first;
    if (tag == nullptr) return first;
    for (const auto* frame : tag->frameList("APIC"))
    {
        const auto* picture = dynamic_cast<const Frame*>(frame);
        if (picture == nullptr) continue;
        if (picture->type() == Frame::FrontCover) return ToBytes(picture->picture());
        if (first.empty()) first = ToBytes(picture->picture());
    }
    return first;
}

Bytes PictureIn(const TagLib::MP4::Tag* tag)
{
    if (tag == nullptr || !tag->contains("covr")) return {};
    const TagLib::MP4::CoverArtList covers = tag->item("covr").toCoverArtList();
    return covers.isEmpty() ? Bytes{} : ToBytes(covers.front().data());
}

Bytes PictureIn(const TagLib::ASF::Tag* tag)
{
    if (tag == nullptr || !tag->contains("WM/Picture")) return {};
    const TagLib::ASF::AttributeList pictures = tag->attribute("WM/Picture");
    for (const TagLib::ASF::Attribute& attribute : pictures)
        if (attribute.toPicture().type() == TagLib::ASF::Picture::FrontCover)
            return ToBytes(attribute.toPicture().picture());
    return ToBytes(pictures.front().toPicture().picture());
}

// The item contains a file name, a NUL, and the image.
Bytes PictureIn(const TagLib::APE::Tag* tag)
{
    if (tag == nullptr) return {};
    for (const char* key : {"COVER ART (FRONT)", "COVER ART (BACK)"})
    {
        if (!tag->itemListMap().contains(key)) continue;
        const TagLib::ByteVector item = tag->itemListMap()[key].binaryData();
        const int name = item.find('\0');
        if (name >= 0) return ToBytes(item.mid(static_cast<unsigned>(name) + 1));
    }
    return {};
}

const TagLib::ID3v2::Tag* Id3Of(TagLib::File& file)
{
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) return mpeg->ID3v2Tag();
    if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file)) return flac->ID3v2Tag();
    if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(&file)) return wav->ID3v2Tag();
    if (auto* tta = dynamic_cast<TagLib::TrueAudio::File*>(&file)) return tta->ID3v2Tag();
    return dynamic_cast<TagLib::ID3v2::Tag*>(file.tag());
}

const TagLib::APE::Tag* ApeOf(TagLib::File& file)
{
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) return mpeg->APETag();
    if (auto* wavPack = dynamic_cast<TagLib::WavPack::File*>(&file)) return wavPack->APETag();
    if (auto* ape = dynamic_cast<TagLib::APE::File*>(&file)) return ape->APETag();
    if (auto* musepack = dynamic_cast<TagLib::MPC::File*>(&file)) return musepack->APETag();
    return nullptr;
}

Bytes PictureIn(TagLib::File& file)
{
    auto* const flac = dynamic_cast<TagLib::FLAC::File*>(&file);
    auto* const xiph = dynamic_cast<TagLib::Ogg::XiphComment*>(file.tag());
    if (flac != nullptr && !flac->pictureList().isEmpty()) return PictureIn(flac->pictureList());
    if (xiph != nullptr && !xiph->pictureList().isEmpty()) return PictureIn(xiph->pictureList());
    for (Bytes picture :
         {PictureIn(Id3Of(file)), PictureIn(ApeOf(file)), PictureIn(dynamic_cast<TagLib::MP4::Tag*>(file.tag())),
          PictureIn(dynamic_cast<TagLib::ASF::Tag*>(file.tag()))})
        if (!picture.empty()) return picture;
    return {};
}

// The distinct values of a property, separated by commas; @p otherwise if there are none.
TagLib::String Joined(const TagLib::PropertyMap& properties, const char* name, const TagLib::String& otherwise)
{
    TagLib::StringList values;
    for (const TagLib::String& value : properties[name])
        if (!value.isEmpty() && !values.contains(value)) values.append(value);
    return values.isEmpty() ? otherwise : values.toString(", ");
}

// A track without an artist has that of its album.
TagLib::String ArtistOf(const TagLib::PropertyMap& properties, const TagLib::Tag& tag)
{
    return Joined(properties, "ARTIST", tag.artist().isEmpty() ? Joined(properties, "ALBUMARTIST", {}) : tag.artist());
}

std::string Text(const TagLib::String& text, const std::string& fallback)
{
    return CleanName(text.to8Bit(true), fallback);
}

struct OpenFile
{
    OpenFile(const std::string& file, bool withLength, const std::atomic<bool>* cancelled)
        : stream(file.c_str(), cancelled), tags(&stream, withLength)
    {
    }

    BoundedStream stream;
    TagLib::FileRef tags;
};

// TagLib accepts any file with the right extension as a 15-instrument module, or as old Musepack, which have no
// signature.
bool IsGuess(const TagLib::AudioProperties* properties)
{
    const auto* module = dynamic_cast<const TagLib::Mod::Properties*>(properties);
    const auto* musepack = dynamic_cast<const TagLib::MPC::Properties*>(properties);
    return (module != nullptr && module->instrumentCount() == 15) ||
           (musepack != nullptr && musepack->mpcVersion() != 7 && musepack->mpcVersion() != 8);
}

// The length is not a criterion: files written to a pipe lack it, and tracker modules have none.
bool IsAudio(const TagLib::AudioProperties* properties)
{
    return properties != nullptr && properties->channels() > 0 && !IsGuess(properties);
}

Track ToTrack(const TagLib::FileRef& reference, const std::string& file)
{
    const TagLib::Tag& tag = *reference.tag();
    const TagLib::PropertyMap properties = reference.file()->properties();
    Track track;
    track.title = Text(Joined(properties, "TITLE", tag.title()), std::filesystem::path(file).stem().string());
    track.artist = Text(ArtistOf(properties, tag), "Unknown artist");
    track.album = Text(Joined(properties, "ALBUM", tag.album()), "Unknown album");
    track.genre = Text(Joined(properties, "GENRE", tag.genre()), "Unknown genre");
    track.number = static_cast<int>(tag.track());
    track.lengthMs = std::max(0, reference.audioProperties()->lengthInMilliseconds());
    const Bytes picture = PictureIn(*reference.file());
    track.pictureTooLarge = picture.size() > kLargestPicture;
    track.hasPicture = IsPicture(picture) && !track.pictureTooLarge;
    track.file = file;
    return track;
}
}  // namespace

std::optional<Track> ReadTrack(const std::string& file, const std::atomic<bool>* cancelled)
{
    const OpenFile open(file, true, cancelled);
    const TagLib::FileRef& reference = open.tags;
    if (reference.isNull() || reference.tag() == nullptr || !IsAudio(reference.audioProperties())) return {};
    Track track = ToTrack(reference, file);
    const bool complete = cancelled == nullptr || !*cancelled;
    return complete ? std::optional<Track>(std::move(track)) : std::nullopt;
}

Bytes ReadEmbeddedPicture(const std::string& file)
{
    const OpenFile open(file, false, nullptr);
    return open.tags.isNull() ? Bytes{} : PictureIn(*open.tags.file());
}
}  // namespace ipodsim
