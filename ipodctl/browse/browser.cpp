#include "browse/browser.h"

#include <glib-unix.h>
#include <unistd.h>

#include <csignal>

#include "output/failure.h"
#include "output/text.h"

namespace ctl::browse
{
namespace
{
constexpr unsigned kTickMilliseconds = 250;
constexpr char kNotPlayed[] = "the service did not start playback";

Time Now()
{
    return std::chrono::steady_clock::now();
}
}  // namespace

Browser::Browser(ipodkit::Session& session, Screen& screen, const SuspendSignal& suspend)
    : m_session(session),
      m_screen(screen),
      m_suspend(suspend),
      m_self(std::make_shared<Browser*>(this)),
      m_audio(session, 0),
      m_walker(
          session, m_model, [this] { Changed(); }, [this](int entry) { Play(entry); }),
      m_connection(session.OnConnection("browse", [this](const ipodkit::Connection& now) { ConnectionChanged(now); })),
      m_state(session.OnState("browse",
                              [this](const ipodkit::StatePtr& state, ipodkit::Fields)
                              {
                                  m_model.state = state;
                                  Changed();
                              }))
{
    AddSources();
}

// Resetting m_self first drops the answers that arrive during destruction.
Browser::~Browser()
{
    m_self.reset();
    m_connection.Reset();
    m_state.Reset();
    m_walker.Stop();
    for (const unsigned source : m_sources) g_source_remove(source);
    if (m_painting != 0) g_source_remove(m_painting);
}

template <void (Browser::*step)()>
gboolean Browser::OnSource(gpointer browser)
{
    auto& self = *static_cast<Browser*>(browser);
    self.m_loop.Guard([&self] { (self.*step)(); });
    return G_SOURCE_CONTINUE;
}

template <void (Browser::*step)()>
gboolean Browser::OnInput(gint, GIOCondition, gpointer browser)
{
    return OnSource<step>(browser);
}

void Browser::AddSources()
{
    m_loop.WhenReadable(STDIN_FILENO, [this] { ReadKeys(); });
    m_loop.WhenReadable(m_suspend.Descriptor(), [this] { Suspend(); });
    m_sources.push_back(g_unix_signal_add(SIGWINCH, &OnSource<&Browser::Resize>, this));
    constexpr auto kGone = static_cast<GIOCondition>(G_IO_HUP | G_IO_ERR);
    m_sources.push_back(g_unix_fd_add(STDIN_FILENO, kGone, &OnInput<&Browser::Quit>, this));
    m_sources.push_back(g_timeout_add(kTickMilliseconds, &OnSource<&Browser::Tick>, this));
}

void Browser::Run()
{
    Resize();
    m_loop.Run(0);
}

void Browser::Quit()
{
    m_loop.Finish();
}

void Browser::Resize()
{
    m_screen.Resize();
    m_model.SetHeight(ListRows(m_screen.Rows()));
    m_shown.clear();
    Paint();
}

// The next paint switches back to the alternate screen.
void Browser::Suspend()
{
    m_screen.Release();
    m_suspend.Suspend();
    Resize();
}

// The playback position is extrapolated, so the screen changes without an event.
void Browser::Tick()
{
    m_model.Tick(Now());
    Changed();
}

void Browser::ReadKeys()
{
    while (const std::optional<KeyPress> press = m_screen.Read()) m_keys.push_back(*press);
    Changed();
}

// Keys typed ahead wait until the list they refer to is shown.
void Browser::ProcessKeys()
{
    while (!m_keys.empty() && !m_walker.IsMoving() && !(m_walker.IsReading() && m_model.NeedsIndex(m_keys.front())))
    {
        const KeyPress press = m_keys.front();
        m_keys.pop_front();
        Perform(m_model.Press(press, Now()));
    }
}

void Browser::Perform(const Action& action)
{
    switch (action.kind)
    {
        case Action::Kind::Open:
            return m_walker.Open(action.entry);
        case Action::Kind::Back:
            return m_walker.Back();
        case Action::Kind::Reload:
            m_screen.RedrawAll();
            m_shown.clear();
            return m_walker.Reload();
        case Action::Kind::TogglePause:
            return TogglePause();
        case Action::Kind::Next:
            return m_session.Commands().Next().Start(ReportFailure("the service did not skip to the next track"));
        case Action::Kind::Previous:
            return m_session.Commands().Previous().Start(
                ReportFailure("the service did not return to the previous track"));
        default:
            return;
    }
}

void Browser::ShowMessage(const std::string& message)
{
    m_model.ShowMessage(message, Now());
    Changed();
}

// Success needs no message: the state shows it.
Browser::Done Browser::ReportFailure(const Refusal& refusal)
{
    BeginWaiting();
    return [weak = std::weak_ptr<Browser*>(m_self), refusal](const ipodkit::Result<void>& done)
    {
        const auto self = weak.lock();
        if (self == nullptr) return;
        (*self)->EndWaiting();
        if (!done && !IsServiceLost(done.error())) (*self)->ShowMessage(ToFailure(done.error(), refusal).what());
    };
}

void Browser::BeginWaiting()
{
    if (m_unanswered++ == 0) m_waitingSince = Now();
}

void Browser::EndWaiting()
{
    if (--m_unanswered == 0) m_waitingSince.reset();
}

// As in any application of the head unit, playback requires the audio source.
bool Browser::AcquireAudioSource()
{
    const ipodkit::Result<void> granted = m_audio.Request();
    if (!granted) ShowMessage(granted.error().reason);
    if (m_audio.State() == ipodkit::AudioState::Granted) m_audio.Activated(0);
    return granted.has_value();
}

void Browser::TogglePause()
{
    if (m_model.state->status == ipodkit::PlayStatus::Playing)
        m_session.Commands().Pause().Start(ReportFailure("the service did not pause"));
    else if (AcquireAudioSource())
        m_audio.Play().Start(ReportFailure(kNotPlayed));
}

void Browser::Play(int entry)
{
    if (AcquireAudioSource()) m_session.Commands().PlayDatabaseEntry(entry).Start(ReportFailure(kNotPlayed));
}

// A lost bus connection cannot be restored.
void Browser::ConnectionChanged(const ipodkit::Connection& connection)
{
    const ipodkit::Phase before = m_model.connection.phase;
    m_model.connection = connection;
    if (connection.error && connection.error->kind == ipodkit::ErrorKind::NoBus)
        m_loop.Guard([] { throw Failure(kServiceLost, "the session bus closed the connection"); });
    if (connection.phase == ipodkit::Phase::Lost)
    {
        m_keys.clear();
        m_walker.Stop();
    }
    if (connection.phase == ipodkit::Phase::Ready && before != ipodkit::Phase::Ready) m_walker.Restart();
    Changed();
}

// An idle source merges many changes into one paint.
void Browser::Changed()
{
    if (m_painting == 0) m_painting = g_idle_add_full(G_PRIORITY_HIGH_IDLE, &OnPaint, this, nullptr);
}

gboolean Browser::OnPaint(gpointer browser)
{
    auto& self = *static_cast<Browser*>(browser);
    self.m_painting = 0;
    self.m_loop.Guard(
        [&self]
        {
            self.ProcessKeys();
            self.Paint();
        });
    return G_SOURCE_REMOVE;
}

void Browser::Paint()
{
    m_model.waitingSince = m_walker.WaitingSince() ? m_walker.WaitingSince() : m_waitingSince;
    Frame frame = Draw(m_model, m_screen.Rows(), m_screen.Columns(), Now());
    if (frame == m_shown) return;
    m_screen.Paint(frame);
    m_shown = std::move(frame);
}
}  // namespace ctl::browse
