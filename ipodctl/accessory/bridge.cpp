#include "accessory/bridge.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <glib.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "accessory/pumps.h"
#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr std::size_t kLongestText = 255;

void CheckUtf8(const std::string& text, const char* what)
{
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        throw Failure(kUsage, std::string(what) + ": expected UTF-8 text, got '" + Printable(text) + "'");
}

void CheckText(const std::string& text, const char* what)
{
    CheckUtf8(text, what);
    if (text.size() > kLongestText)
        throw Failure(kUsage, std::string(what) + " is longer than " + std::to_string(kLongestText) + " bytes");
}
}  // namespace

// Locks the shared memory itself: every process that shares the buffer sees the lock, and the kernel releases it when
// its owner exits. If the segment cannot be opened, the code that uses it reports the error.
SenderLock::SenderLock(Session& session)
    : m_file((session.Ready(), shm_open("/BufferVectorSharedMemory", O_RDONLY | O_CLOEXEC, 0)))
{
    if (m_file < 0 || flock(m_file, LOCK_EX | LOCK_NB) == 0) return;
    close(m_file);
    throw Failure(kNoSegments, "cannot send: another ipodctl is using the accessory buffers",
                  "wait until its 'eap bridge', 'eap echo', or 'eap write' ends");
}

SenderLock::~SenderLock()
{
    if (m_file >= 0) close(m_file);
}

void Announce(Session& session, const ipodkit::AccessoryInfo& info)
{
    CheckText(info.protocols, "the list of protocols");
    CheckText(info.bundleId, "the bundle identifier");
    session.Ask(session.Commands().AnnounceAccessory(info));
}

void LaunchApp(Session& session, const std::string& bundle)
{
    CheckUtf8(bundle, "the bundle identifier");
    session.Ask(session.Commands().LaunchApp(bundle),
                {"the service did not launch '" + Printable(bundle) + "'",
                 "announce its protocols first with 'ipodctl eap init PROTOCOLS BUNDLE'"});
}

ipodkit::AccessorySessionPtr OpenAccessory(Session& session, Loop& loop, ipodkit::AccessoryPort& port,
                                           const AccessoryRequest& request)
{
    ipodkit::AccessorySessionPtr opened;
    const ipodkit::Subscription opening = port.OnOpened("ipodctl",
                                                        [&](const ipodkit::AccessorySessionPtr& peer)
                                                        {
                                                            if (opened == nullptr) opened = peer;
                                                            loop.Finish();
                                                        });
    if (request.launch)
    {
        Announce(session, request.info);
        LaunchApp(session, request.info.bundleId);
    }
    const Ending ending = loop.Run(request.seconds);
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (opened == nullptr)
        throw Failure(kServiceLost, "no accessory session was opened in time", "wait longer with --timeout");
    return opened;
}

namespace
{
[[noreturn]] void Refuse(const std::string& path, const std::string& why)
{
    throw Failure(kUsage, "cannot create the socket '" + Printable(path) + "': " + why);
}

sockaddr_un AddressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path))
        Refuse(path, "expected a path of 1 to " + std::to_string(sizeof(address.sun_path) - 1) + " bytes");
    path.copy(address.sun_path, path.size());
    return address;
}

const sockaddr* Generic(const sockaddr_un& address)
{
    return reinterpret_cast<const sockaddr*>(&address);
}

// Returns whether nobody listens on the socket, because its process was killed.
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
    if (!S_ISSOCK(status.st_mode)) Refuse(path, "it exists and is not a socket");
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

namespace
{
// The device has no flow control. With this many bytes queued, the reader has stopped reading for good.
constexpr std::size_t kMostWaiting = std::size_t{16} << 20;

/// Callbacks record events and quit the main loop; Run() evaluates them before it starts the loop again.
class Bridge
{
public:
    Bridge(Context& context, const BridgeRequest& request, Loop& loop, const ipodkit::AccessorySessionPtr& peer);
    ~Bridge() { DropClient(); }
    Bridge(const Bridge&) = delete;
    Bridge& operator=(const Bridge&) = delete;

    void Run();

private:
    void Receive(const ipodkit::Result<ipodkit::Bytes>& data);
    void ServeStandardStreams();
    void Connected(int client);
    void DropClient();
    void OutputEnded(int error);
    void Note(bool& happened)
    {
        happened = true;
        m_loop.Finish();
    }
    void Fail(const ipodkit::Error& error)
    {
        m_loop.Guard([&] { throw m_context.session.FailureFor(error); });
    }
    bool IsOver(Ending ending);

    Context& m_context;
    const BridgeRequest& m_request;
    Loop& m_loop;
    const ipodkit::AccessorySessionPtr m_peer;
    OutputPump m_output;
    std::optional<InputPump> m_input;
    std::optional<SocketServer> m_server;
    std::vector<ipodkit::Subscription> m_subscriptions;
    int m_client = -1;
    bool m_inputEnded = false;
    bool m_outputClosed = false;
    bool m_sessionClosed = false;
};

Bridge::Bridge(Context& context, const BridgeRequest& request, Loop& loop, const ipodkit::AccessorySessionPtr& peer)
    : m_context(context),
      m_request(request),
      m_loop(loop),
      m_peer(peer),
      m_output([this](int error) { OutputEnded(error); })
{
    m_subscriptions.push_back(
        m_peer->OnData("ipodctl", [this](const ipodkit::Result<ipodkit::Bytes>& data) { Receive(data); }));
    m_subscriptions.push_back(m_peer->OnClosed("ipodctl", [this] { Note(m_sessionClosed); }));
    m_output.onEmpty = [this] { m_loop.Finish(); };
    if (m_request.socket.empty())
        ServeStandardStreams();
    else
        m_server.emplace(m_request.socket, [this](int client) { Connected(client); });
}

void Bridge::ServeStandardStreams()
{
    m_output.Use(STDOUT_FILENO);
    m_input.emplace(
        STDIN_FILENO, m_peer, [this] { Note(m_inputEnded); }, [this](const ipodkit::Error& error) { Fail(error); });
}

void Bridge::Connected(int client)
{
    m_client = client;
    m_inputEnded = m_outputClosed = false;
    m_output.Use(client);
    m_input.emplace(
        client, m_peer, [this] { Note(m_inputEnded); }, [this](const ipodkit::Error& error) { Fail(error); });
}

void Bridge::DropClient()
{
    m_input.reset();
    m_output.Use(-1);
    if (m_client >= 0) close(m_client);
    m_client = -1;
}

// A socket client may disconnect with any error. On standard output, only EPIPE is a normal end.
void Bridge::OutputEnded(int error)
{
    if (!m_server && error != EPIPE) return m_loop.Guard([error] { RefuseOutput(error); });
    Note(m_outputClosed);
}

void Bridge::Receive(const ipodkit::Result<ipodkit::Bytes>& data)
{
    if (!data) return Fail(data.error());
    m_output.Add(*data);
    if (m_output.Waiting() > kMostWaiting)
        return m_loop.Guard([] { throw Failure(kNothingDone, "the receiver has stopped reading"); });
    m_loop.Finish();
}

// After the end of the input, the bridge still forwards received bytes until the session is quiet for `linger` seconds.
bool Bridge::IsOver(Ending ending)
{
    if (ending == Ending::Interrupted) return true;
    if (m_sessionClosed) return m_output.Waiting() == 0 || m_outputClosed || (m_server && m_client < 0);
    const bool quiet = ending == Ending::TimedOut && m_peer->Waiting() == 0 && m_output.Waiting() == 0;
    if (!m_server) return m_outputClosed || (m_inputEnded && quiet);
    if (m_client >= 0 && (m_outputClosed || (m_inputEnded && quiet)))
    {
        DropClient();
        m_server->AcceptNext();
    }
    return false;
}

void Bridge::Run()
{
    Ending ending = Ending::Finished;
    do
    {
        ending = m_loop.Run(m_inputEnded ? m_request.linger : 0);
    } while (!IsOver(ending));
    if (!m_sessionClosed || m_context.session.Kit().Connection().phase != ipodkit::Phase::Lost) return;
    throw Failure(kServiceLost, "the iPod service left the bus, which ended the session");
}
}  // namespace

Answer RunBridge(Context& context, const BridgeRequest& request)
{
    Session& session = context.session;
    const SenderLock lock(session);
    Loop loop;
    ipodkit::AccessoryPort port(session.Ready());
    const ipodkit::AccessorySessionPtr peer = OpenAccessory(session, loop, port, request.accessory);
    Bridge(context, request, loop, peer).Run();
    return {};
}
}  // namespace ctl
