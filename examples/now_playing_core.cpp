// The same as now_playing.cpp, but with the core alone: it must be started after the service, does not notice when the
// service exits, and blocks while the service hangs.
#include <IQBXIpodPlayer.h>
#include <QBXLog.h>
#include <glib.h>

#include <cstdio>

namespace
{
class Screen : public IQBXIpodPlayerListener
{
public:
    explicit Screen(IQBXIpodPlayer& player)
        : m_track(player.GetCurrentMediaInfo()), m_playing(player.GetPlayStatus() == IPOD_PLAY_STATUS_PLAYING)
    {
        Show();
    }

    void OnIpodPlayingTrackChange(int, QBXiPodTrackInfo track) override
    {
        m_track = track;
        Show();
    }

    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override
    {
        m_playing = status == IPOD_PLAY_STATUS_PLAYING;
        Show();
    }

private:
    void Show() const
    {
        std::printf("%s %s - %s\n", m_playing ? ">" : "=", m_track.text2.c_str(), m_track.text1.c_str());
        std::fflush(stdout);
    }

    QBXiPodTrackInfo m_track;
    bool m_playing;
};
}  // namespace

int main()
{
    // Without a log the library prints a warning in place of each record. QBX_LOG in the environment sets one up, too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    if (!player->InitInstance())
    {
        std::fprintf(stderr, "the iPod service is not running\n");
        return 1;
    }
    Screen screen(*player);
    player->AddListener(&screen);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
