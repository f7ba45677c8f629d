#include "accessory/pumps.h"

#include <glib-unix.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

namespace ctl
{
namespace
{
constexpr std::size_t kBlock = std::size_t{16} * 1024;
// Returns how many bytes one request can send now: kBlock, or fewer while other data fills the shared memory.
std::size_t SizeToRead()
{
    return std::clamp<std::size_t>(ipodkit::RoomForAccessoryBytes(), 1, kBlock);
}

constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
constexpr auto kWritable = static_cast<GIOCondition>(G_IO_OUT | G_IO_HUP | G_IO_ERR);
}  // namespace

InputPump::InputPump(int file, ipodkit::AccessorySessionPtr peer, std::function<void()> ended, Failed failed)
    : m_file(file), m_peer(std::move(peer)), m_ended(std::move(ended)), m_failed(std::move(failed))
{
    m_drained = m_peer->OnDrained("ipodctl",
                                  [this]
                                  {
                                      if (!m_held.empty() && Pass(std::exchange(m_held, {}))) Watch();
                                  });
    Watch();
}

InputPump::~InputPump()
{
    if (m_watch != 0) g_source_remove(m_watch);
}

void InputPump::Watch()
{
    if (m_watch == 0) m_watch = g_unix_fd_add(m_file, kReadable, &InputPump::OnReadable, this);
}

gboolean InputPump::OnReadable(gint, GIOCondition, gpointer data)
{
    auto& pump = *static_cast<InputPump*>(data);
    if (pump.Read()) return G_SOURCE_CONTINUE;
    pump.m_watch = 0;
    return G_SOURCE_REMOVE;
}

// Returns false to stop watching the file: at its end, or until the session drains.
bool InputPump::Read()
{
    ipodkit::Bytes bytes(SizeToRead());
    const ssize_t got = read(m_file, bytes.data(), bytes.size());
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) return true;
    if (got <= 0)
    {
        m_watch = 0;
        m_ended();
        return false;
    }
    bytes.resize(static_cast<std::size_t>(got));
    return Pass(std::move(bytes));
}

bool InputPump::Pass(ipodkit::Bytes bytes)
{
    const auto sent = [failed = m_failed](const ipodkit::Result<void>& result)
    {
        if (!result && result.error().kind != ipodkit::ErrorKind::Cancelled) failed(result.error());
    };
    if (!m_peer->HasRoomFor(bytes.size()))
    {
        m_held = std::move(bytes);
        return false;
    }
    m_peer->Write(std::move(bytes)).Start(sent);
    return true;
}

void OutputPump::Use(int file)
{
    if (m_watch != 0) g_source_remove(m_watch);
    m_watch = 0;
    m_file = file;
    Watch();
}

// Erases the written prefix only once it exceeds half of the string, which amortizes moves to at most one per byte.
void OutputPump::Add(const ipodkit::Bytes& bytes)
{
    if (m_written > m_bytes.size() / 2) m_bytes.erase(0, std::exchange(m_written, 0));
    m_bytes.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    Watch();
}

void OutputPump::Watch()
{
    if (m_watch == 0 && m_file >= 0 && Waiting() > 0)
        m_watch = g_unix_fd_add(m_file, kWritable, &OutputPump::OnWritable, this);
}

gboolean OutputPump::OnWritable(gint, GIOCondition, gpointer data)
{
    auto& pump = *static_cast<OutputPump*>(data);
    if (pump.Write()) return G_SOURCE_CONTINUE;
    pump.m_watch = 0;
    return G_SOURCE_REMOVE;
}

// Writes at most PIPE_BUF bytes, which a writable file accepts without blocking. Returns false to stop watching it.
bool OutputPump::Write()
{
    const std::size_t size = std::min<std::size_t>(Waiting(), PIPE_BUF);
    const ssize_t written = write(m_file, m_bytes.data() + m_written, size);
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) return true;
    if (written < 0)
    {
        m_watch = 0;
        m_closed(errno);
        return false;
    }
    m_written += static_cast<std::size_t>(written);
    if (Waiting() > 0) return true;
    m_bytes.clear();
    m_written = 0;
    m_watch = 0;
    onEmpty();
    return false;
}
}  // namespace ctl
