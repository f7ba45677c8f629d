/// @file
/// Learns that something below a folder changed.
#pragma once

#include <glib.h>

#include <atomic>
#include <functional>
#include <string>

#include "music/folder_scan.h"

namespace ipodsim
{
/// Watches folders by inotify, on the main context that it is given. Many changes at once are told
/// once, when nothing has changed for a moment, or after a while when it never rests.
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
    static gboolean OnReadable(gint descriptor, GIOCondition, gpointer self);
    static gboolean OnQuiet(gpointer data);
    void WaitForQuiet();
    void StopWaiting();

    GMainContext* m_context;
    Warn m_warn;
    std::function<void()> m_changed;
    int m_descriptor;
    GSource* m_readable = nullptr;
    GSource* m_quiet = nullptr;
    gint64 m_firstChange = 0;  // of the burst, microseconds
    std::atomic<bool> m_full{false};
};
}  // namespace ipodsim
