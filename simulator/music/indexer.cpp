#include "music/indexer.h"

#include <fcntl.h>
#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "music/music_library.h"
#include "music/picture.h"
#include "music/playlist_file.h"
#include "music/tag_reader.h"
#include "music/text.h"

namespace ipodsim
{
namespace
{
constexpr unsigned kMostThreads = 8;
constexpr std::size_t kFilesPerStep = 64;

// Only non-ASCII text needs a reading.
std::string ReadAhead(const std::string& name, ipodnames::Subject subject)
{
    return g_str_is_ascii(name.c_str()) != FALSE ? std::string() : Pinyin(name, subject);
}

TrackPtr ReadWithReadings(const std::string& file, const std::atomic<bool>* cancelled)
{
    auto track = ReadTrack(file, cancelled);
    if (!track) return nullptr;
    track->readings = {
        ReadAhead(track->title, ipodnames::Subject::Title), ReadAhead(track->artist, ipodnames::Subject::Person),
        ReadAhead(track->album, ipodnames::Subject::Title), ReadAhead(track->genre, ipodnames::Subject::Title)};
    return std::make_shared<const Track>(std::move(*track));
}

// Reads the files that the cache does not know, in parallel.
class Readers
{
public:
    Readers(std::vector<const ScannedFile*> files, std::size_t known, const Indexing& how)
        : tracks(files.size()), m_files(std::move(files)), m_known(known), m_how(how)
    {
    }

    void Run()
    {
        const std::size_t steps = (m_files.size() + kFilesPerStep - 1) / kFilesPerStep;
        const std::size_t most = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
        std::vector<std::thread> threads;
        for (std::size_t i = 1; i < std::min(steps, most); ++i) threads.emplace_back([this] { Work(); });
        Work();
        for (std::thread& thread : threads) thread.join();
    }

    std::vector<TrackPtr> tracks;  // in file order

private:
    bool Cancelled() const { return m_how.cancelled != nullptr && *m_how.cancelled; }

    void Work()
    {
        for (std::size_t begin = m_next.fetch_add(kFilesPerStep); begin < m_files.size() && !Cancelled();
             begin = m_next.fetch_add(kFilesPerStep))
        {
            const std::size_t end = std::min(begin + kFilesPerStep, m_files.size());
            for (std::size_t i = begin; i < end && !Cancelled(); ++i)
                tracks[i] = ReadWithReadings(m_files[i]->path, m_how.cancelled);
            Count(end - begin);
        }
    }

    void Count(std::size_t files)
    {
        const std::lock_guard<std::mutex> lock(m_counting);
        m_done += files;
        if (m_how.progress) m_how.progress(m_known + m_done, m_known + m_files.size());
    }

    std::vector<const ScannedFile*> m_files;
    std::size_t m_known;
    const Indexing& m_how;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_counting;
    std::size_t m_done = 0;
};

bool MayRead(const std::string& file)
{
    return faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) == 0;
}

std::string WhyNot(const std::string& file)
{
    return MayRead(file) ? "not a supported audio file" : std::generic_category().message(errno);
}

// The cache entry of each file, after unknown files have been read.
using Found = std::vector<const TrackPtr*>;

Found ReadUnknown(const FolderScan& scan, IndexCache& cache, const Indexing& how)
{
    Found found;
    std::vector<const ScannedFile*> unknown;
    for (const ScannedFile& file : scan.files)
    {
        found.push_back(cache.Find(file));
        if (found.back() == nullptr) unknown.push_back(&file);
    }
    Readers readers(unknown, scan.files.size() - unknown.size(), how);
    readers.Run();
    const bool cancelled = how.cancelled != nullptr && *how.cancelled;
    std::size_t at = 0;
    for (const TrackPtr*& track : found)
    {
        if (track != nullptr) continue;
        const ScannedFile& file = *unknown[at];
        TrackPtr read = std::move(readers.tracks[at++]);
        // A file that cannot be opened now may be readable later with the same stamp.
        if (read != nullptr || (!cancelled && MayRead(file.path))) track = cache.Put(file, std::move(read));
    }
    return found;
}

class Assembly
{
public:
    Assembly(const FolderScan& scan, const Indexing& how) : m_scan(scan), m_how(how), m_lists(scan.folders.size()) {}

    void Add(const ScannedFile& file, const TrackPtr& read)
    {
        if (read->pictureTooLarge) m_how.warn("skipped the artwork of " + file.path + ": " + TooLarge());
        const std::string& cover = m_scan.folders[file.folder].picture;
        const TrackPtr track = read->hasPicture || cover.empty() ? read : WithCover(*read, cover);
        m_library.tracks.push_back(track);
        m_lists[file.folder].push_back(track);
        if (!m_scan.playlists.empty()) m_byPath.emplace(file.path, track);
    }

    void Skip(const ScannedFile& file) const { m_how.warn("skipped " + file.path + ": " + WhyNot(file.path)); }

    void AddPlaylist(const std::string& path)
    {
        const PlaylistFile file = ReadPlaylist(path);
        Playlist playlist{file.name, {}};
        for (const std::string& entry : file.files)
            if (const auto found = m_byPath.find(entry); found != m_byPath.end())
                playlist.tracks.push_back(found->second);
        const std::size_t missing = file.files.size() - playlist.tracks.size();
        if (missing != 0)
            m_how.warn(path + ": " + std::to_string(missing) + " of " + std::to_string(file.files.size()) +
                       " entries are not in the library");
        if (!playlist.tracks.empty()) m_playlists.push_back(std::move(playlist));
    }

    Library Take()
    {
        m_library.playlists = std::move(m_playlists);
        for (std::size_t i = 0; i < m_lists.size(); ++i)
            if (!m_lists[i].empty()) m_library.playlists.push_back({m_scan.folders[i].name, std::move(m_lists[i])});
        Finish(m_library);
        return std::move(m_library);
    }

private:
    static TrackPtr WithCover(Track track, const std::string& cover)
    {
        track.folderPicture = cover;
        track.hasPicture = true;
        return std::make_shared<const Track>(std::move(track));
    }

    const FolderScan& m_scan;
    const Indexing& m_how;
    Library m_library;
    std::vector<TrackList> m_lists;  // by folder
    std::vector<Playlist> m_playlists;
    std::unordered_map<std::string, TrackPtr> m_byPath;
};
}  // namespace

Library Index(const FolderScan& scan, IndexCache& cache, const Indexing& how)
{
    const Found found = ReadUnknown(scan, cache, how);
    Assembly assembly(scan, how);
    if (how.cancelled != nullptr && *how.cancelled) return assembly.Take();
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        if (found[i] != nullptr && *found[i] != nullptr)
            assembly.Add(scan.files[i], *found[i]);
        else
            assembly.Skip(scan.files[i]);
    }
    for (const ScannedFile& playlist : scan.playlists) assembly.AddPlaylist(playlist.path);
    return assembly.Take();
}
}  // namespace ipodsim
