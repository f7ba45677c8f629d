/// @file
/// Learns that something below a folder changed.
#pragma once

#include <glib.h>

#include <functional>
#include <string>

#include "folder_scan.h"

namespace ipodsim
{
/// Watches a folder and all below it, by inotify, on the main context that it is given. Many changes at once are told
/// once, when nothing has changed for a moment, or after a while when it never rests.
class FolderWatch
{
public:
    /// @param changed  called after each burst of changes
    FolderWatch(std::string root, GMainContext* context, Warn warn, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches what has come below the root since. Does not follow links.
    void Refresh();

private:
    static gboolean OnReadable(gint descriptor, GIOCondition, gpointer self);
    static gboolean OnQuiet(gpointer self);
    bool Add(const std::string& folder);
    void WaitForQuiet();
    void StopWaiting();

    std::string m_root;
    GMainContext* m_context;
    Warn m_warn;
    std::function<void()> m_changed;
    int m_descriptor;
    GSource* m_readable = nullptr;
    GSource* m_quiet = nullptr;
    gint64 m_firstChange = 0;  // of the burst, microseconds
    bool m_full = false;
};
}  // namespace ipodsim
