/// @file
/// What was read of the files of a music folder, kept from one run to the next.
#pragma once

#include <string>
#include <unordered_map>

#include "music/folder_scan.h"
#include "music/track.h"

namespace ipodsim
{
/// A file is known by its path and its mark: one that changed is read again. A cache that is damaged, cut off or of
/// another version counts as empty. Only one thread may use it.
class IndexCache
{
public:
    /// @param file  where it is kept; empty: nowhere
    IndexCache(std::string file, Warn warn);

    /// What was read of the file: a track, or nothing for one that is not audio. Null when it is not known. It stays
    /// where it is as long as the cache lives.
    const TrackPtr* Find(const ScannedFile& file);
    /// @param track  null for a file that is not audio
    const TrackPtr* Put(const ScannedFile& file, TrackPtr track);

    enum class Unused
    {
        Keep,
        Forget,
    };
    /// Replaces the file in one step, when there is something new.
    /// @param unused  what becomes of files that nobody has looked for
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
    std::string Serialise(Unused unused) const;

    std::string m_file;
    Warn m_warn;
    std::unordered_map<std::string, Known> m_known;
    bool m_changed = false;
};

/// The file below @p cacheFolder in which what is read of @p musicFolder is kept.
std::string CacheFileFor(const std::string& cacheFolder, const std::string& musicFolder);
}  // namespace ipodsim
