#include "screen/watch.h"

#include "output/moment.h"
#include "picture/columns.h"
#include "session/loop.h"
#include "session/service_news.h"
#include "session/suspend_signal.h"

namespace ctl
{
namespace
{
constexpr double kSecond = 1;

/// The other screen of a terminal, without a cursor; the usual one comes back at the end.
class OtherScreen
{
public:
    explicit OtherScreen(Output& out) : m_out(out) { Enter(); }
    ~OtherScreen()
    {
        try
        {
            Leave();
        }
        catch (...)
        {
            // Nobody is there to see it.
        }
    }
    OtherScreen(const OtherScreen&) = delete;
    OtherScreen& operator=(const OtherScreen&) = delete;

    void Enter() { m_out.Text("\033[?1049h\033[?25l"); }
    void Leave() { m_out.Text("\033[?25h\033[?1049l"); }

    void Show(const std::string& text)
    {
        std::string screen = "\033[H";
        for (const std::string& line : Split(text)) screen += line + "\033[K\r\n";
        m_out.Text(screen + "\033[J");
    }

private:
    Output& m_out;
};

class Watcher
{
public:
    explicit Watcher(Context& context) : m_session(context.session.Ready())
    {
        m_states = m_session.OnState(
            "ipodctl", [this](const ipodkit::StatePtr&, ipodkit::Fields) { m_loop.Finish(); }, Telling());
        m_connections = m_session.OnConnection(
            "ipodctl", [this](const ipodkit::Connection& connection) { m_loop.Guard([&] { Judge(connection); }); });
        m_loop.EndWithOutput();
    }

    /// Has @p suspend called when Ctrl-Z was pressed, and goes on afterwards.
    void OnSuspend(const SuspendSignal& signal, const std::function<void()>& suspend)
    {
        m_loop.WhenReadable(signal.Descriptor(),
                            [this, suspend]
                            {
                                suspend();
                                m_loop.Finish();
                            });
    }

    /// Waits for a change, or for as long as a second of playback takes. False when it was interrupted.
    bool Next(double seconds) { return m_loop.Run(seconds) != Ending::Interrupted; }
    bool HasService() const { return m_session.Connection().phase == ipodkit::Phase::Ready; }

private:
    // The position goes on by itself.
    static ipodkit::Fields Telling()
    {
        ipodkit::Fields fields;
        for (std::uint32_t bit = 0; bit < 22; ++bit)
            if (static_cast<ipodkit::Field>(1U << bit) != ipodkit::Field::Position)
                fields = fields | static_cast<ipodkit::Field>(1U << bit);
        return fields;
    }

    void Judge(const ipodkit::Connection& connection)
    {
        if (connection.error && connection.error->kind == ipodkit::ErrorKind::NoBus) throw ToFailure(*connection.error);
        m_loop.Finish();
    }

    ipodkit::Session& m_session;
    Loop m_loop;
    ipodkit::Subscription m_states;
    ipodkit::Subscription m_connections;
};

void WatchOnTerminal(Context& context, int near, const std::function<Answer(const Status&)>& show)
{
    const SuspendSignal suspend;
    Watcher watcher(context);
    OtherScreen screen(context.out);
    watcher.OnSuspend(suspend,
                      [&]
                      {
                          screen.Leave();
                          suspend.Obey();
                          screen.Enter();
                      });
    do
    {
        context.out.Measure();
        screen.Show(watcher.HasService() ? show(ReadStatus(context.session, near)).text
                                         : "the iPod service left the bus; waiting for it");
    } while (watcher.Next(kSecond));
}

// Answers of several lines each: the time they begin with and a blank line set them apart.
void WatchInLines(Context& context, int near, const std::function<Answer(const Status&)>& show)
{
    Watcher watcher(context);
    bool told = true;
    std::string gap;
    while (watcher.Next(0))
    {
        const bool there = watcher.HasService();
        if (there != told)
            TellOfService(context.out, context.out.json(), there ? "ready" : "lost",
                          there ? kServiceIsThere : kServiceLeft);
        told = there;
        if (!there) continue;
        const Answer answer = show(ReadStatus(context.session, near));
        context.out.Line(answer.json, gap + Moment::Now().clock + "\n" + answer.text);
        gap = "\n";
    }
}
}  // namespace

void Watch(Context& context, int near, const std::function<Answer(const Status&)>& show)
{
    try
    {
        const bool lines = context.out.json() || !context.out.terminal() || context.out.dumb();
        lines ? WatchInLines(context, near, show) : WatchOnTerminal(context, near, show);
    }
    catch (const Interrupted&)
    {
        // That is how watching ends, also while the service is being asked.
    }
}
}  // namespace ctl
