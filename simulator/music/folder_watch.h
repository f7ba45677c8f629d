/// @file
/// Detects changes below a folder.
#pragma once

#include <glib.h>
#include <sys/types.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "music/folder_scan.h"

namespace ipodsim
{
/// Watches folders with inotify on a given main context. A burst of changes is reported once: when changes pause, or
/// after five seconds if they do not. If the root disappears (a USB drive was removed), waits for its return.
class FolderWatch
{
public:
    /// @param changed  called after each burst of changes
    FolderWatch(const std::string& root, GMainContext* context, Warn warn, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches another folder, without its subfolders. Thread-safe; has no effect on a folder that is already watched.
    void Add(const std::string& folder);

private:
    // Device and inode of a folder; empty if it does not exist.
    using Identity = std::optional<std::pair<dev_t, ino_t>>;

    static Identity IdentityOf(const std::string& folder);
    static gboolean OnReadable(gint descriptor, GIOCondition, gpointer self);
    static gboolean OnPoll(gpointer data);
    void FollowRoot();
    static gboolean OnQuiet(gpointer data);
    void WaitForQuiet();
    void StopWaiting();

    std::string m_root;
    GMainContext* m_context;
    Warn m_warn;
    std::function<void()> m_changed;
    int m_descriptor;
    GSource* m_readable = nullptr;
    GSource* m_poll = nullptr;
    GSource* m_quiet = nullptr;
    Identity m_watched;        // identity of the root when its watch was added
    gint64 m_firstChange = 0;  // start of the burst, in microseconds
    std::atomic<bool> m_full{false};
};
}  // namespace ipodsim
