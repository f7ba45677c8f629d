/// @file
/// Learns that something below a folder changed.
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
/// Watches folders by inotify, on the main context that it is given. Many changes at once are told
/// once, when nothing has changed for a moment, or after a while when it never rests. A root that goes away, as that of
/// a medium that is taken out, is waited for.
class FolderWatch
{
public:
    /// @param changed  called after each burst of changes
    FolderWatch(const std::string& root, GMainContext* context, Warn warn, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches another folder too, what lies in it but not below that. Any thread may call it, and again for a folder
    /// that is watched already.
    void Add(const std::string& folder);

private:
    // Which folder stands under a name; none when there is none.
    using Identity = std::optional<std::pair<dev_t, ino_t>>;

    static Identity IdentityOf(const std::string& folder);
    static gboolean OnReadable(gint descriptor, GIOCondition, gpointer self);
    static gboolean OnLook(gpointer data);
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
    GSource* m_look = nullptr;
    GSource* m_quiet = nullptr;
    Identity m_watched;        // what the root was when it was watched last
    gint64 m_firstChange = 0;  // of the burst, microseconds
    std::atomic<bool> m_full{false};
};
}  // namespace ipodsim
