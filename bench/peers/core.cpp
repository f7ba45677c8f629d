// This library's core.
#include <IQBXIpodPlayer.h>
#include <QBXLog.h>
#include <glib.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "peer.h"

namespace
{
using namespace peers;

class CorePeer : public Peer, IQBXIpodPlayerListener
{
public:
    CorePeer()
    {
        if (!m_player->InitInstance()) std::exit(1);
        m_player->AddListener(this);
    }
    ~CorePeer() override { m_player->RemoveListener(this); }

    bool Pause() override { return m_player->Pause(); }

    void RequestEvent() override { m_player->Seek(0); }

    void AwaitEvent() override
    {
        for (const int before = m_events; m_events == before;) g_main_context_iteration(nullptr, TRUE);
    }

    std::size_t Names() override
    {
        std::vector<std::string> names;
        m_player->GetPlayingListItems(0, 999, names);
        return names.size();
    }

    std::size_t Image() override { return m_player->GetPlayingTrackAlbumArtwork().image.size(); }

private:
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++m_events; }

    IQBXIpodPlayer* const m_player = QBX_GetIpodPlayer();
    int m_events = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    QBX_LogInit("ERROR:/dev/null");
    return RunPeer(argc, argv, [] { return std::make_unique<CorePeer>(); });
}
