/// @file
/// Builds a library from the files of a folder: tags, lengths, images, playlists.
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
    /// Called periodically with the number of files done and the total; from any thread, but never concurrently. May be
    /// empty.
    std::function<void(std::size_t, std::size_t)> progress;
    /// Setting it to true aborts the work: the result is then meaningless, but the cache keeps what was read. May be
    /// null.
    const std::atomic<bool>* cancelled = nullptr;
};

/// Reads the files that the cache does not know, on one thread per processor, and adds them to the cache. Files that
/// are not audio or have disappeared are skipped with a warning each.
Library Index(const FolderScan& scan, IndexCache& cache, const Indexing& how);
}  // namespace ipodsim
