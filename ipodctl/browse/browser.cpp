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
      m_loop(g_main_loop_new(nullptr, FALSE)),
      m_self(std::make_shared<Browser*>(this)),
      m_audio(session, 0),
      m_walker(
          session, m_model, [this] { Changed(); }, [this](int entry) { Play(entry); }),
      m_connection(session.OnConnection("browse", [this](const ipodkit::Connection& now) { ConnectionIs(now); })),
      m_state(session.OnState("browse",
                              [this](const ipodkit::StatePtr& state, ipodkit::Fields)
                              {
                                  m_model.state = state;
                                  Changed();
                              }))
{
    AddSources();
}

// What still arrives meanwhile finds nobody.
Browser::~Browser()
{
    m_self.reset();
    m_connection.Reset();
    m_state.Reset();
    m_walker.Stop();
    for (const unsigned source : m_sources) g_source_remove(source);
    if (m_painting != 0) g_source_remove(m_painting);
    g_main_loop_unref(m_loop);
}

// No exception may pass through the layers in between.
void Browser::Guard(const std::function<void()>& function)
{
    try
    {
        if (m_thrown == nullptr) function();
    }
    catch (...)
    {
        m_thrown = std::current_exception();
        Quit();
    }
}

template <void (Browser::*step)()>
gboolean Browser::OnSource(gpointer browser)
{
    auto& self = *static_cast<Browser*>(browser);
    self.Guard([&self] { (self.*step)(); });
    return G_SOURCE_CONTINUE;
}

template <void (Browser::*step)()>
gboolean Browser::OnInput(gint, GIOCondition, gpointer browser)
{
    return OnSource<step>(browser);
}

void Browser::AddSources()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        m_sources.push_back(g_unix_signal_add(signal, &OnSource<&Browser::Quit>, this));
    m_sources.push_back(g_unix_signal_add(SIGWINCH, &OnSource<&Browser::Resize>, this));
    m_sources.push_back(g_unix_fd_add(STDIN_FILENO, G_IO_IN, &OnInput<&Browser::ReadKeys>, this));
    constexpr auto kGone = static_cast<GIOCondition>(G_IO_HUP | G_IO_ERR);
    m_sources.push_back(g_unix_fd_add(STDIN_FILENO, kGone, &OnInput<&Browser::Quit>, this));
    m_sources.push_back(g_unix_fd_add(m_suspend.Descriptor(), G_IO_IN, &OnInput<&Browser::Suspend>, this));
    m_sources.push_back(g_timeout_add(kTickMilliseconds, &OnSource<&Browser::Tick>, this));
}

void Browser::Run()
{
    Resize();
    g_main_loop_run(m_loop);
    if (m_thrown != nullptr) std::rethrow_exception(m_thrown);
}

void Browser::Quit()
{
    g_main_loop_quit(m_loop);
}

void Browser::Resize()
{
    m_screen.Resize();
    m_model.SetHeight(ListRows(m_screen.Rows()));
    m_shown.clear();
    Paint();
}

// Painting takes the terminal again.
void Browser::Suspend()
{
    m_screen.GiveBack();
    m_suspend.Obey();
    Resize();
}

// The position of what plays moves on by itself.
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

// What is typed faster than the service answers waits for what it is meant for.
void Browser::FollowKeys()
{
    while (!m_keys.empty() && !m_walker.IsMoving() && !(m_walker.IsReading() && m_model.NeedsIndex(m_keys.front())))
    {
        const KeyPress press = m_keys.front();
        m_keys.pop_front();
        Fulfil(m_model.Press(press, Now()));
    }
}

void Browser::Fulfil(const Wish& wish)
{
    switch (wish.what)
    {
        case Wish::What::Open:
            return m_walker.Open(wish.entry);
        case Wish::What::Back:
            return m_walker.Back();
        case Wish::What::Reload:
            m_screen.Forget();
            m_shown.clear();
            return m_walker.Reload();
        case Wish::What::TogglePause:
            return TogglePause();
        case Wish::What::Next:
            return m_session.Commands().Next().Start(Report("the service did not move on"));
        case Wish::What::Previous:
            return m_session.Commands().Previous().Start(Report("the service did not move back"));
        default:
            return;
    }
}

void Browser::Say(const std::string& message)
{
    m_model.Say(message, Now());
    Changed();
}

// An answer that worked shows by itself.
Browser::Done Browser::Report(const char* refusal)
{
    BeginWaiting();
    return [weak = std::weak_ptr<Browser*>(m_self), refusal](const ipodkit::Result<void>& done)
    {
        const auto self = weak.lock();
        if (self == nullptr) return;
        (*self)->EndWaiting();
        if (!done && !IsOfNoService(done.error())) (*self)->Say(ToFailure(done.error(), refusal).what());
    };
}

void Browser::BeginWaiting()
{
    if (m_unanswered++ == 0) m_askedAt = Now();
}

void Browser::EndWaiting()
{
    if (--m_unanswered == 0) m_askedAt.reset();
}

// Like an application of the unit: no sound without the source.
bool Browser::TakeAudioSource()
{
    const ipodkit::Result<void> granted = m_audio.Request();
    if (!granted) Say(granted.error().reason);
    if (m_audio.State() == ipodkit::AudioState::Granted) m_audio.Activated(0);
    return granted.has_value();
}

void Browser::TogglePause()
{
    if (m_model.state->status == ipodkit::PlayStatus::Playing)
        m_session.Commands().Pause().Start(Report("the service did not pause"));
    else if (TakeAudioSource())
        m_audio.Play().Start(Report(kNotPlayed));
}

void Browser::Play(int entry)
{
    if (TakeAudioSource()) m_session.Commands().PlayDatabaseEntry(entry).Start(Report(kNotPlayed));
}

// Without the bus nothing will ever come back.
void Browser::ConnectionIs(const ipodkit::Connection& connection)
{
    const ipodkit::Phase before = m_model.connection.phase;
    m_model.connection = connection;
    if (connection.error && connection.error->kind == ipodkit::ErrorKind::NoBus)
        Guard([] { throw Failure(kServiceLost, "the session bus closed the connection"); });
    if (connection.phase == ipodkit::Phase::Lost)
    {
        m_keys.clear();
        m_walker.Stop();
    }
    if (connection.phase == ipodkit::Phase::Ready && before != ipodkit::Phase::Ready) m_walker.Restart();
    Changed();
}

// Many changes at once are painted once.
void Browser::Changed()
{
    if (m_painting == 0) m_painting = g_idle_add_full(G_PRIORITY_HIGH_IDLE, &OnPaint, this, nullptr);
}

gboolean Browser::OnPaint(gpointer browser)
{
    auto& self = *static_cast<Browser*>(browser);
    self.m_painting = 0;
    self.Guard(
        [&self]
        {
            self.FollowKeys();
            self.Paint();
        });
    return G_SOURCE_REMOVE;
}

void Browser::Paint()
{
    m_model.waitingSince = m_walker.AskedAt() ? m_walker.AskedAt() : m_askedAt;
    Frame frame = Draw(m_model, m_screen.Rows(), m_screen.Columns(), Now());
    if (frame == m_shown) return;
    m_screen.Paint(frame);
    m_shown = std::move(frame);
}
}  // namespace ctl::browse
