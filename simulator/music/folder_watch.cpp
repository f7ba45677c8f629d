#include "music/folder_watch.h"

#include <glib-unix.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace ipodsim
{
namespace
{
constexpr guint kQuietMs = 400;
constexpr guint kPollSeconds = 1;
constexpr gint64 kLongestBurst = 5000000;  // microseconds

// Read accesses are excluded, or indexing itself would count as a change.
constexpr std::uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                                   IN_DELETE_SELF | IN_MOVE_SELF | IN_ATTRIB | IN_ONLYDIR;

void Destroy(GSource*& source)
{
    if (source == nullptr) return;
    g_source_destroy(source);
    g_source_unref(source);
    source = nullptr;
}
}  // namespace

FolderWatch::FolderWatch(const std::string& root, GMainContext* context, Warn warn, std::function<void()> changed)
    : m_root(root),
      m_context(context),
      m_warn(std::move(warn)),
      m_changed(std::move(changed)),
      m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (m_descriptor < 0)
    {
        m_warn("cannot watch " + root + " for changes: " + std::generic_category().message(errno));
        return;
    }
    m_readable = g_unix_fd_source_new(m_descriptor, G_IO_IN);
    g_source_set_callback(m_readable, reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(OnReadable)), this,
                          nullptr);
    g_source_attach(m_readable, m_context);
    m_poll = g_timeout_source_new_seconds(kPollSeconds);
    g_source_set_callback(m_poll, OnPoll, this, nullptr);
    g_source_attach(m_poll, m_context);
    FollowRoot();
}

FolderWatch::~FolderWatch()
{
    StopWaiting();
    Destroy(m_poll);
    Destroy(m_readable);
    if (m_descriptor >= 0) close(m_descriptor);
}

void FolderWatch::Add(const std::string& folder)
{
    const bool full =
        m_descriptor >= 0 && inotify_add_watch(m_descriptor, folder.c_str(), kChanges) < 0 && errno == ENOSPC;
    if (full && !m_full.exchange(true))
        m_warn("cannot watch " + folder + " and other folders for changes: inotify watch limit reached");
}

FolderWatch::Identity FolderWatch::IdentityOf(const std::string& folder)
{
    struct stat status
    {
    };
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return {};
    return std::pair(status.st_dev, status.st_ino);
}

void FolderWatch::FollowRoot()
{
    const Identity now = IdentityOf(m_root);
    if (m_watched && !now) m_warn("the music folder " + m_root + " disappeared; waiting for its return");
    m_watched = now;
    if (now) Add(m_root);
}

// Polls, because inotify does not report that the folder was created or that a medium was mounted in its place.
gboolean FolderWatch::OnPoll(gpointer data)
{
    FolderWatch& self = *static_cast<FolderWatch*>(data);
    if (IdentityOf(self.m_root) == self.m_watched) return G_SOURCE_CONTINUE;
    self.FollowRoot();
    self.WaitForQuiet();
    return G_SOURCE_CONTINUE;
}

gboolean FolderWatch::OnReadable(gint descriptor, GIOCondition, gpointer self)
{
    alignas(inotify_event) std::array<char, 16384> events;
    while (read(descriptor, events.data(), events.size()) > 0)
    {
    }
    static_cast<FolderWatch*>(self)->WaitForQuiet();
    return G_SOURCE_CONTINUE;
}

void FolderWatch::WaitForQuiet()
{
    const gint64 now = g_get_monotonic_time();
    if (m_quiet == nullptr) m_firstChange = now;
    if (m_quiet != nullptr && now - m_firstChange > kLongestBurst) return;
    StopWaiting();
    m_quiet = g_timeout_source_new(kQuietMs);
    g_source_set_callback(m_quiet, OnQuiet, this, nullptr);
    g_source_attach(m_quiet, m_context);
}

void FolderWatch::StopWaiting()
{
    Destroy(m_quiet);
}

gboolean FolderWatch::OnQuiet(gpointer data)
{
    FolderWatch& self = *static_cast<FolderWatch*>(data);
    self.StopWaiting();
    // A folder that was removed and recreated may have the same identity, but it has lost its watch.
    self.FollowRoot();
    self.m_changed();
    return G_SOURCE_REMOVE;
}
}  // namespace ipodsim
