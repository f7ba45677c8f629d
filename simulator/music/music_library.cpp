#include "music/music_library.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <tuple>
#include <unordered_set>

namespace ipodsim
{
namespace
{
bool Before(const TrackPtr& a, const TrackPtr& b)
{
    return std::tie(a->artist, a->album, a->number, a->title) < std::tie(b->artist, b->album, b->number, b->title);
}

[[noreturn]] void Refuse(const std::string& folder, const std::string& why)
{
    throw std::runtime_error("music folder " + folder + ": " + why);
}

std::string Counted(std::size_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}
}  // namespace

std::string CheckedFolder(const std::string& folder)
{
    struct stat status
    {
    };
    if (stat(folder.c_str(), &status) != 0) Refuse(folder, std::generic_category().message(errno));
    if (!S_ISDIR(status.st_mode)) Refuse(folder, "not a folder");
    if (faccessat(AT_FDCWD, folder.c_str(), R_OK | X_OK, AT_EACCESS) != 0)
        Refuse(folder, std::generic_category().message(errno));
    return std::filesystem::canonical(folder).string();
}

void Finish(Library& library)
{
    std::stable_sort(library.tracks.begin(), library.tracks.end(), Before);
    library.playlists.insert(library.playlists.begin(), Playlist{"All songs", library.tracks});
}

std::string Summarize(const Library& library)
{
    std::unordered_set<std::string_view> artists;
    std::unordered_set<std::string_view> albums;
    for (const TrackPtr& track : library.tracks)
    {
        artists.insert(track->artist);
        albums.insert(track->album);
    }
    return Counted(library.tracks.size(), "song") + ", " + Counted(artists.size(), "artist") + ", " +
           Counted(albums.size(), "album");
}
}  // namespace ipodsim
