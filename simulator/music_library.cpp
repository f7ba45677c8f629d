#include "music_library.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <system_error>
#include <tuple>
#include <utility>

#include "tag_reader.h"
#include "text.h"

namespace ipodsim
{
namespace
{
namespace fs = std::filesystem;

bool MayRead(const fs::path& path, int rights)
{
    return faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
}

class FolderReader
{
public:
    explicit FolderReader(const Warn& warn) : m_warn(warn) {}

    void Read(const fs::path& folder)
    {
        struct stat status
        {
        };
        if (stat(folder.c_str(), &status) == 0) Read(folder, status);
    }

    Library Take() { return std::move(m_library); }

private:
    void Read(const fs::path& folder, const struct stat& status)
    {
        if (!m_seen.emplace(status.st_dev, status.st_ino).second) return;
        Playlist playlist{CleanName(folder.filename().string(), "Music"), {}};
        for (const fs::path& path : Entries(folder)) ReadEntry(path, playlist);
        if (!playlist.tracks.empty()) m_library.playlists.push_back(std::move(playlist));
    }

    std::vector<fs::path> Entries(const fs::path& folder) const
    {
        std::vector<fs::path> entries;
        std::error_code error;
        for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
            entries.push_back(at->path());
        if (error) m_warn("skipped " + folder.string() + ": " + error.message());
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    void ReadEntry(const fs::path& path, Playlist& playlist)
    {
        struct stat status
        {
        };
        if (stat(path.c_str(), &status) != 0) return Skip(path, std::generic_category().message(errno));
        if (S_ISDIR(status.st_mode)) return Read(path, status);
        if (!S_ISREG(status.st_mode)) return Skip(path, "no regular file");
        if (!MayRead(path, R_OK)) return Skip(path, std::generic_category().message(errno));
        ReadFile(path, playlist);
    }

    void ReadFile(const fs::path& path, Playlist& playlist)
    {
        auto track = ReadTrack(path.string());
        if (!track) return Skip(path, "no audio file");
        m_library.tracks.push_back(std::make_shared<const Track>(std::move(*track)));
        playlist.tracks.push_back(m_library.tracks.back());
    }

    void Skip(const fs::path& path, const std::string& why) const { m_warn("skipped " + path.string() + ": " + why); }

    const Warn& m_warn;
    Library m_library;
    std::set<std::pair<dev_t, ino_t>> m_seen;  // breaks loops of links
};

void CheckFolder(const std::string& folder)
{
    struct stat status
    {
    };
    if (stat(folder.c_str(), &status) != 0)
        throw std::runtime_error("music folder " + folder + ": " + std::generic_category().message(errno));
    if (!S_ISDIR(status.st_mode)) throw std::runtime_error("music folder " + folder + ": it is no folder");
    if (!MayRead(folder, R_OK | X_OK))
        throw std::runtime_error("music folder " + folder + ": " + std::generic_category().message(errno));
}

bool Before(const TrackPtr& a, const TrackPtr& b)
{
    return std::tie(a->artist, a->album, a->number, a->title) < std::tie(b->artist, b->album, b->number, b->title);
}
}  // namespace

void Finish(Library& library)
{
    std::stable_sort(library.tracks.begin(), library.tracks.end(), Before);
    library.playlists.insert(library.playlists.begin(), Playlist{"All songs", library.tracks});
}

Library ReadFolder(const std::string& folder, const Warn& warn)
{
    CheckFolder(folder);
    FolderReader reader(warn);
    reader.Read(fs::canonical(folder));
    Library library = reader.Take();
    Finish(library);
    return library;
}
}  // namespace ipodsim
