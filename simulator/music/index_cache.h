/// @file
/// An index of a music folder's files that persists across runs.
#pragma once

#include <string>
#include <unordered_map>

#include "music/folder_scan.h"
#include "music/track.h"

namespace ipodsim
{
/// Files are identified by path and stamp, so changed files are read again. A cache that is damaged, truncated, or from
/// another version counts as empty. Not thread-safe.
class IndexCache
{
public:
    /// @param file  path of the cache; empty for none
    IndexCache(std::string file, Warn warn);

    /// Returns the file's entry, whose track is null if the file is not audio; null if the file is unknown. The pointer
    /// is valid as long as the cache exists.
    const TrackPtr* Find(const ScannedFile& file);
    /// @param track  null for a file that is not audio
    const TrackPtr* Put(const ScannedFile& file, TrackPtr track);

    enum class Unused
    {
        Keep,
        Forget,
    };
    /// Atomically replaces the cache file if anything changed.
    /// @param unused  whether to keep entries that were never looked up
    void Save(Unused unused);

private:
    struct Known
    {
        FileMark mark;
        TrackPtr track;
        bool used = false;
    };

    void Load();
    void Parse(const std::string& bytes);
    std::string Serialize(Unused unused) const;

    std::string m_file;
    Warn m_warn;
    std::unordered_map<std::string, Known> m_known;
    bool m_changed = false;
};

/// Path below @p cacheFolder of the index of @p musicFolder.
std::string CacheFileFor(const std::string& cacheFolder, const std::string& musicFolder);
}  // namespace ipodsim
