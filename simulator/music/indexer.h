/// @file
/// From the files of a folder to a library: tags, lengths, pictures, playlists.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>

#include "music/folder_scan.h"
#include "music/index_cache.h"
#include "music/track.h"

namespace ipodsim
{
struct Indexing
{
    Warn warn;
    /// Called now and then, from any thread but never twice at once: files done, files in all. May be empty.
    std::function<void(std::size_t, std::size_t)> progress;
    /// Ends the work early when it becomes true; the result is of no use then, but what was read is in the cache. May
    /// be null.
    const std::atomic<bool>* cancelled = nullptr;
};

/// Reads what the cache does not know, on as many threads as there are processors, and puts it there. Files that are
/// not audio, or have gone, are skipped with a warning each.
Library Index(const FolderScan& scan, IndexCache& cache, const Indexing& how);
}  // namespace ipodsim
