#include "player/track.h"

#include "output/text.h"
#include "picture/picture.h"

namespace ctl
{
std::string TrackLine(const ipodkit::Track& track)
{
    const std::string title = track.title.empty() ? "(no title)" : Printable(track.title);
    return track.artist.empty() ? title : title + " - " + Printable(track.artist);
}

bool IsEmpty(const ipodkit::Track& track)
{
    return track.title.empty() && track.artist.empty() && track.album.empty() && track.duration.count() == 0;
}

std::string PictureLine(const ipodkit::Picture& picture)
{
    const bool sized = IsSize(picture.width, picture.height);
    return std::string(MediaType(picture.type)) + ", " +
           Count(static_cast<int>(picture.bytes.size()), "byte", "bytes") +
           (sized ? ", " + std::to_string(picture.width) + " x " + std::to_string(picture.height) : "") +
           (IsWhole(picture.type, picture.bytes) ? "" : ", incomplete");
}

std::string ArtworkLine(const ipodkit::ArtworkChanged& artwork)
{
    if (artwork.picture == nullptr) return "none";
    ipodkit::Picture picture = *artwork.picture;
    picture.width = artwork.width;
    picture.height = artwork.height;
    return PictureLine(picture);
}
}  // namespace ctl
