#include "accessory/socket_server.h"

#include <glib-unix.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
[[noreturn]] void Refuse(const std::string& path, const char* why)
{
    throw Failure(kUsage, "cannot make the socket '" + Printable(path) + "': " + why);
}

sockaddr_un AddressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) Refuse(path, "its path is empty or too long");
    path.copy(address.sun_path, path.size());
    return address;
}

const sockaddr* Generic(const sockaddr_un& address)
{
    return reinterpret_cast<const sockaddr*>(&address);
}

// Left behind by a process that was killed.
bool IsStale(const sockaddr_un& address)
{
    const int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool refused = connect(probe, Generic(address), sizeof(address)) != 0 && errno == ECONNREFUSED;
    close(probe);
    return refused;
}

void RemoveStale(const std::string& path, const sockaddr_un& address)
{
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) return;
    if (!S_ISSOCK(status.st_mode)) Refuse(path, "it is there already and is no socket");
    if (IsStale(address)) unlink(path.c_str());
}

bool Bind(int file, const sockaddr_un& address)
{
    const mode_t usual = umask(0177);
    const bool bound = bind(file, Generic(address), sizeof(address)) == 0;
    umask(usual);
    return bound;
}
}  // namespace

SocketServer::SocketServer(const std::string& path, std::function<void(int client)> connected)
    : m_path(path), m_connected(std::move(connected))
{
    const sockaddr_un address = AddressOf(path);
    RemoveStale(path, address);
    m_file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_file < 0 || !Bind(m_file, address) || listen(m_file, 4) != 0)
    {
        const int reason = errno;
        if (m_file >= 0) close(m_file);
        Refuse(path, std::strerror(reason));
    }
    AcceptNext();
}

SocketServer::~SocketServer()
{
    if (m_watch != 0) g_source_remove(m_watch);
    close(m_file);
    unlink(m_path.c_str());
}

void SocketServer::AcceptNext()
{
    if (m_watch == 0) m_watch = g_unix_fd_add(m_file, G_IO_IN, &SocketServer::OnClient, this);
}

gboolean SocketServer::OnClient(gint file, GIOCondition, gpointer data)
{
    auto& server = *static_cast<SocketServer*>(data);
    const int client = accept4(file, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0) return G_SOURCE_CONTINUE;
    server.m_watch = 0;
    server.m_connected(client);
    return G_SOURCE_REMOVE;
}
}  // namespace ctl
