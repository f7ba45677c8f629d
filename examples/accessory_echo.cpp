// Announces a protocol and echoes everything that the companion app on the device sends.
//
// The simulator echoes, too, so bytes that come back are dropped: they would otherwise circulate forever.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/accessory.h>

#include <cstdio>
#include <map>
#include <memory>
#include <utility>

using namespace ipodkit;

namespace
{
class Echo
{
public:
    explicit Echo(Session& session) : m_port(session)
    {
        m_opened = m_port.OnOpened("echo", [this](const AccessorySessionPtr& peer) { Serve(peer); });
        for (const AccessorySessionPtr& peer : m_port.Sessions()) Serve(peer);
    }

private:
    void Serve(const AccessorySessionPtr& peer)
    {
        std::printf("session %u opened\n", peer->Number());
        std::fflush(stdout);
        // A callback that holds its own session would keep it alive.
        const auto echo = [this, weak = std::weak_ptr(peer)](const Result<Bytes>& data)
        { data ? Return(weak.lock(), *data) : Report(data.error()); };
        m_served[peer->Number()] = peer->OnData("echo", echo);
    }

    void Return(const AccessorySessionPtr& peer, const Bytes& data)
    {
        if (peer == nullptr) return;
        Bytes& returned = m_returned[peer->Number()];
        if (data == std::exchange(returned, {})) return;
        returned = data;
        const auto done = [](const Result<void>& result)
        {
            if (!result) Report(result.error());
        };
        peer->Write(data).Start(done);
    }

    static void Report(const Error& error) { std::fprintf(stderr, "%s\n", error.Text().c_str()); }

    AccessoryPort m_port;
    Subscription m_opened;
    std::map<std::uint16_t, Bytes> m_returned;
    std::map<std::uint16_t, Subscription> m_served;
};
}  // namespace

int main()
{
    // Without a log the library prints a warning in place of each record. QBX_LOG in the environment sets one up, too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session)
    {
        std::fprintf(stderr, "%s\n", session.error().Text().c_str());
        return 1;
    }
    const Echo echo(**session);
    const auto announce = [&session](const Connection& connection)
    {
        if (connection.phase == Phase::Ready)
            (*session)
                ->Commands()
                .AnnounceAccessory({"com.example.echo", "com.example.app"})
                .Start([](Result<void>) {});
    };
    const auto announced = (*session)->OnConnection("announce", announce);
    // A running service is found before this fires.
    const auto reportWaiting = [](gpointer opened) -> gboolean
    {
        if (static_cast<const Session*>(opened)->Connection().phase != Phase::Ready)
            std::fprintf(stderr, "waiting for the iPod service\n");
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(1000, reportWaiting, session->get());
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
