// ipodkit.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/pager.h>
#include <ipodkit/session.h>

#include <cstdlib>

#include "peer.h"

namespace
{
using namespace peers;
using namespace ipodkit;

class KitPeer : public Peer
{
public:
    KitPeer()
    {
        while (m_session->Connection().phase != Phase::Ready) g_main_context_iteration(nullptr, TRUE);
    }

    bool Pause() override { return m_commands.Pause().Wait().has_value(); }

    void RequestEvent() override
    {
        if (!m_commands.Seek(std::chrono::seconds(0)).Wait()) std::exit(1);
    }

    void AwaitEvent() override
    {
        for (const int before = m_events; m_events == before;) g_main_context_iteration(nullptr, TRUE);
    }

    std::size_t Names() override
    {
        m_list.Refresh();
        return Finish(m_list.At(0))->names.size();
    }

    std::size_t Image() override { return Finish(m_commands.Artwork()).picture->bytes.size(); }

private:
    template <class T>
    static T Finish(Request<T> request)
    {
        std::optional<Result<T>> result;
        std::move(request).Start([&result](Result<T> done) { result = std::move(done); });
        while (!result) g_main_context_iteration(nullptr, TRUE);
        if (!*result) std::exit(1);
        return std::move(**result);
    }

    static PagerOptions Whole()
    {
        PagerOptions options;
        options.pageSize = 1000;
        return options;
    }

    const std::unique_ptr<Session> m_session = *Session::Open();
    const Commands m_commands = m_session->Commands();
    Pager m_list{*m_session, ListKind::Playing, Whole()};
    int m_events = 0;
    const Subscription m_listening = m_session->OnEvent("peer", [this](const Event&) { ++m_events; });
};
}  // namespace

int main(int argc, char** argv)
{
    QBX_LogInit("ERROR:/dev/null");
    return RunPeer(argc, argv, [] { return std::make_unique<KitPeer>(); });
}
