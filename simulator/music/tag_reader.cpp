#include "music/tag_reader.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/modproperties.h>
#include <taglib/mp4file.h>
#include <taglib/mpcproperties.h>
#include <taglib/mpegfile.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

#include <algorithm>
#include <filesystem>

#include "music/picture.h"
#include "music/text.h"

namespace ipodsim
{
namespace
{
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

Bytes PictureIn(TagLib::FLAC::File& flac)
{
    Bytes picture = PictureIn(flac.pictureList());
    return picture.empty() ? PictureIn(flac.ID3v2Tag()) : picture;
}

Bytes PictureIn(TagLib::File& file)
{
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) return PictureIn(mpeg->ID3v2Tag());
    if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file)) return PictureIn(*flac);
    if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(&file)) return PictureIn(mp4->tag());
    if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(&file)) return PictureIn(wav->ID3v2Tag());
    if (auto* ogg = dynamic_cast<TagLib::Ogg::XiphComment*>(file.tag())) return PictureIn(ogg->pictureList());
    return {};
}

std::string Text(const TagLib::String& text, const std::string& fallback)
{
    return CleanName(text.to8Bit(true), fallback);
}

// A track that names only the artist of its album is by that one.
TagLib::String ArtistOf(TagLib::File* file)
{
    const TagLib::PropertyMap properties = file->properties();
    const TagLib::StringList& artists = properties["ARTIST"];
    return (artists.isEmpty() ? properties["ALBUMARTIST"] : artists).toString(", ");
}

// Opened for reading only: closing a file that could have been written counts as a change of its folder.
struct OpenFile
{
    OpenFile(const std::string& file, bool withLength) : stream(file.c_str(), true), tags(&stream, withLength) {}

    TagLib::FileStream stream;
    TagLib::FileRef tags;
};

// Without a signature TagLib takes any file of the right name for a module of 15 instruments, or for old Musepack.
bool IsGuess(const TagLib::AudioProperties* properties)
{
    const auto* module = dynamic_cast<const TagLib::Mod::Properties*>(properties);
    const auto* musepack = dynamic_cast<const TagLib::MPC::Properties*>(properties);
    return (module != nullptr && module->instrumentCount() == 15) ||
           (musepack != nullptr && musepack->mpcVersion() != 7 && musepack->mpcVersion() != 8);
}

// The length says nothing: it is missing in what was written to a pipe, and tracker modules have none.
bool IsAudio(const TagLib::AudioProperties* properties)
{
    return properties != nullptr && properties->channels() > 0 && !IsGuess(properties);
}

Track ToTrack(const TagLib::FileRef& reference, const std::string& file)
{
    const TagLib::Tag& tag = *reference.tag();
    Track track;
    track.title = Text(tag.title(), std::filesystem::path(file).stem().string());
    track.artist = Text(ArtistOf(reference.file()), "Unknown artist");
    track.album = Text(tag.album(), "Unknown album");
    track.genre = Text(tag.genre(), "Unknown genre");
    track.number = static_cast<int>(tag.track());
    track.lengthMs = std::max(0, reference.audioProperties()->lengthInMilliseconds());
    const Bytes picture = PictureIn(*reference.file());
    track.pictureTooLarge = picture.size() > kLargestPicture;
    track.hasPicture = IsPicture(picture) && !track.pictureTooLarge;
    track.file = file;
    return track;
}
}  // namespace

std::optional<Track> ReadTrack(const std::string& file)
{
    const OpenFile open(file, true);
    const TagLib::FileRef& reference = open.tags;
    if (reference.isNull() || reference.tag() == nullptr || !IsAudio(reference.audioProperties())) return {};
    return ToTrack(reference, file);
}

Bytes ReadEmbeddedPicture(const std::string& file)
{
    const OpenFile open(file, false);
    return open.tags.isNull() ? Bytes{} : PictureIn(*open.tags.file());
}
}  // namespace ipodsim
