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

std::string PictureLine(const std::vector<unsigned char>& picture, std::uint32_t width, std::uint32_t height)
{
    const bool sized = IsSize(width, height);
    return std::string(Sniff(picture).mime) + ", " + Count(static_cast<int>(picture.size()), "byte", "bytes") +
           (sized ? ", " + std::to_string(width) + " x " + std::to_string(height) : "") +
           (IsWhole(picture) ? "" : ", incomplete");
}

std::string ArtworkLine(const QBXTrackArtwork& artwork)
{
    return PictureLine(artwork.image, artwork.word3, artwork.word4);
}

Json ArtworkJson(const QBXTrackArtwork& artwork)
{
    return {{"type", artwork.image.empty() ? "none" : Sniff(artwork.image).mime},
            {"bytes", artwork.image.size()},
            {"reported_bytes", artwork.word2},
            {"width", artwork.word3},
            {"height", artwork.word4}};
}
}  // namespace ctl
