#include "accessory/bridge.h"

#include <unistd.h>

#include <cerrno>
#include <optional>

#include "accessory/pumps.h"
#include "accessory/socket_server.h"
#include "output/text.h"

namespace ctl
{
namespace
{
// The device cannot be told to wait: beyond this somebody has stopped reading for good.
constexpr std::size_t kMostWaiting = std::size_t{16} << 20;

/// Callbacks write down what happened and end a round of the loop; what follows from it happens between the rounds.
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
        m_loop.Guard([&] { throw ToFailure(error); });
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

// A client may leave in any way; standard output only as it always may.
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
        return m_loop.Guard([] { throw Failure(kNothingDone, "nobody reads what the device sends"); });
    m_loop.Finish();
}

// A client that has ended its input still gets what comes until it is quiet for a while.
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
    throw Failure(kServiceLost, "the iPod service left the bus, and the session with it");
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
