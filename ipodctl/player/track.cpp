#include "player/track.h"

#include "output/text.h"
#include "picture/picture.h"

namespace ctl
{
std::string TrackLine(const QBXiPodTrackInfo& track)
{
    const std::string title = track.text1.empty() ? "(no title)" : Printable(track.text1);
    return track.text2.empty() ? title : title + " - " + Printable(track.text2);
}

Json TrackJson(const QBXiPodTrackInfo& track)
{
    return {{"title", track.text1},        {"artist", track.text2},       {"album", track.text3},
            {"genre", track.text4},        {"length_ms", track.value1},   {"number", track.value2},
            {"queue_count", track.value3}, {"picture", track.value4 == 1}};
}

bool IsEmpty(const QBXiPodTrackInfo& track)
{
    return track.text1.empty() && track.text2.empty() && track.text3.empty() && track.value1 == 0;
}

std::string PictureLine(const ipodkit::Picture& picture)
{
    const bool sized = IsSize(picture.width, picture.height);
    return std::string(MediaType(picture.type)) + ", " +
           Count(static_cast<int>(picture.bytes.size()), "byte", "bytes") +
           (sized ? ", " + std::to_string(picture.width) + " x " + std::to_string(picture.height) : "") +
           (IsWhole(picture.type, picture.bytes) ? "" : ", incomplete");
}

std::string ArtworkLine(const QBXTrackArtwork& artwork)
{
    ipodkit::Picture picture = ipodkit::Examine(artwork.image);
    picture.width = artwork.word3;
    picture.height = artwork.word4;
    return PictureLine(picture);
}

Json ArtworkJson(const QBXTrackArtwork& artwork)
{
    return {{"type", artwork.image.empty() ? "none" : MediaType(ipodkit::Examine(artwork.image).type)},
            {"bytes", artwork.image.size()},
            {"reported_bytes", artwork.word2},
            {"width", artwork.word3},
            {"height", artwork.word4}};
}
}  // namespace ctl
