#include "events/follow.h"

#include <ipodkit/player_state.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "events/command_queue.h"
#include "events/events.h"
#include "events/format.h"
#include "output/output.h"
#include "output/text.h"
#include "session/loop.h"

namespace ctl
{
namespace
{
using ipodkit::Phase;

class Presentation
{
public:
    virtual ~Presentation() = default;

    // Called with the current player state whenever the service becomes ready.
    virtual void Begin(const ipodkit::PlayerState&) {}

    // Processes one event. One that is not wanted only updates the player fields.
    virtual void Take(const Event& event, bool wanted) = 0;

    // Returns whether all events passed to Take() have been processed.
    virtual bool IsDone() const { return true; }

    // Discards work that has not been started.
    virtual void Drop() {}

    // Discards pending work and ends running work with the signal that interrupted ipodctl.
    virtual void Stop(int) {}
};

bool IsProgress(const Event& event)
{
    return std::strcmp(event.name, "progress") == 0;
}

// Prints each event in the default format. On a terminal, progress events update a bar in place.
class DefaultPresentation : public Presentation
{
public:
    explicit DefaultPresentation(Output& out) : m_out(out) {}

    void Take(const Event& event, bool wanted) override
    {
        if (!wanted) return;
        if (!m_out.json() && m_out.terminal() && !m_out.dumb() && IsProgress(event)) return ShowBar(event);
        const Answer answer = ToAnswer(event);
        m_out.Line(answer.json, Painted(Cut(answer.text, m_out.width()), event.name));
    }

private:
    // Dims the time and colors the name, unless the line is cut before them.
    std::string Painted(const std::string& line, const std::string& name) const
    {
        const std::size_t at = line.find("  " + name);
        if (at == std::string::npos) return line;
        const std::size_t begin = at + 2;
        return m_out.Paint(Color::Dim, line.substr(0, at)) + "  " + m_out.Paint(Color::Cyan, name) +
               line.substr(begin + name.size());
    }

    // Cuts the line to the terminal width: a wrapped line would leave remnants above.
    void ShowBar(const Event& event)
    {
        m_out.Measure();
        const int room = m_out.width() - Width(event.text) - 1;
        const std::string bar = ProgressBar(event.fields["position_ms"], event.fields["length_ms"], room, m_out.utf8());
        m_out.Transient(Cut(bar + " " + event.text, m_out.width()));
    }

    Output& m_out;
};

// Formats each event with a template.
class Formatted : public Presentation
{
public:
    Formatted(Output& out, const std::string& format) : m_out(out), m_format(Format::Parse(format, EventFieldNames()))
    {
    }

    void Begin(const ipodkit::PlayerState& state) override { m_fields.Reset(state); }

    void Take(const Event& event, bool wanted) override
    {
        const Json fields = m_fields.With(event);
        if (wanted) m_out.Text(m_format.Render(fields) + "\n");
    }

private:
    Output& m_out;
    Format m_format;
    EventFields m_fields;
};

// Runs a shell command for each event, one at a time, with the fields in its environment and the event as JSON on its
// standard input. Finishes the loop when the last queued command has exited.
class Commanded : public Presentation
{
public:
    Commanded(Loop& loop, const std::string& command)
        : m_queue(
              command, [&loop] { loop.Finish(); },
              [](const std::string& what) { std::fprintf(stderr, "ipodctl: %s\n", Printable(what).c_str()); })
    {
    }

    void Begin(const ipodkit::PlayerState& state) override { m_fields.Reset(state); }
    bool IsDone() const override { return m_queue.IsIdle(); }
    void Drop() override { m_queue.Drop(); }
    void Stop(int signal) override { m_queue.Stop(signal); }

    void Take(const Event& event, bool wanted) override
    {
        const Json fields = m_fields.With(event);
        if (wanted) m_queue.Add({fields, Dump(ToAnswer(event).json) + "\n"});
    }

private:
    CommandQueue m_queue;
    EventFields m_fields;
};

std::unique_ptr<Presentation> PresentationFor(const Following& following, Output& out, Loop& loop)
{
    if (!following.command.empty()) return std::make_unique<Commanded>(loop, following.command);
    if (following.format.empty()) return std::make_unique<DefaultPresentation>(out);
    return std::make_unique<Formatted>(out, following.format);
}

// With --wait, a missing service is not an error.
ipodkit::Session& KitFor(Session& session, bool wait)
{
    try
    {
        return session.Ready();
    }
    catch (const Failure& failure)
    {
        if (!wait || failure.code() != kNoService) throw;
    }
    return session.KitWithoutService();
}

class Follower
{
public:
    Follower(Context& context, const Following& following)
        : m_context(context),
          m_following(following),
          // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the analyzer does not follow std::unique_ptr
          m_presentation(PresentationFor(following, context.out, m_loop))
    {
        m_loop.EndWithOutput();
    }

    Answer Run();

private:
    void Take(const Event& event);
    bool IsEnough(const Event& event) const;
    bool HasGoal() const { return m_following.limits.count > 0 || !m_following.limits.until.empty(); }
    void ConnectionChanged(const ipodkit::Connection& connection);
    void Report(const char* state, const std::string& what);
    void Begin();
    Ending AwaitEvents();
    void AwaitCommands(Ending ending);

    Context& m_context;
    const Following& m_following;
    Loop m_loop;
    std::unique_ptr<Presentation> m_presentation;
    int m_seen = 0;
    bool m_enough = false;
    Phase m_reported = Phase::Ready;
    std::string m_trouble;
};

bool Follower::IsEnough(const Event& event) const
{
    return m_seen == m_following.limits.count || event.name == m_following.limits.until;
}

void Follower::Take(const Event& event)
{
    const bool wanted = !m_enough && m_following.wanted(event);
    const bool last = !m_enough && event.name == m_following.limits.until;
    m_presentation->Take(event, wanted || last);
    if (!wanted && !last) return;
    ++m_seen;
    m_enough = IsEnough(event);
    if (m_enough) m_loop.Finish();
}

void Follower::Report(const char* state, const std::string& what)
{
    const bool lines = m_context.out.json() && m_following.command.empty() && m_following.format.empty();
    ReportService(m_context.out, lines, state, what);
}

void Follower::Begin()
{
    if (m_reported != Phase::Ready) Report("ready", kServiceIsThere);
    m_reported = Phase::Ready;
    m_presentation->Begin(*m_context.session.Kit().State());
}

// Reports each change of the connection once; the initial connection is silent.
void Follower::ConnectionChanged(const ipodkit::Connection& connection)
{
    if (connection.error && connection.error->kind == ipodkit::ErrorKind::NoBus) throw ToFailure(*connection.error);
    if (connection.phase == Phase::Ready) return Begin();
    const bool news = connection.phase != m_reported && connection.phase != Phase::Connecting;
    if (connection.error && connection.error->reason != m_trouble) Report("trouble", connection.error->reason);
    m_trouble = connection.error ? connection.error->reason : "";
    if (news && connection.phase == Phase::Lost) Report("lost", kServiceLeft);
    if (news && connection.phase == Phase::Absent) Report("absent", "no iPod service yet; waiting for it");
    if (news) m_reported = connection.phase;
}

// Subscribes to events for the duration of the call only.
Ending Follower::AwaitEvents()
{
    ipodkit::Session& session = KitFor(m_context.session, m_following.wait);
    const auto listening = session.OnEvent(
        "ipodctl", [this](const ipodkit::Event& event) { m_loop.Guard([&] { Take(ToEvent(event)); }); });
    const auto watching = session.OnConnection("ipodctl", [this](const ipodkit::Connection& connection)
                                               { m_loop.Guard([&] { ConnectionChanged(connection); }); });
    const Limits& limits = m_following.limits;
    const gint64 end = g_get_monotonic_time() + static_cast<gint64>(limits.seconds * G_USEC_PER_SEC);
    Ending ending = Ending::Finished;
    do
    {
        const double left = static_cast<double>(end - g_get_monotonic_time()) / G_USEC_PER_SEC;
        ending = m_loop.Run(limits.seconds > 0 ? std::max(left, 0.001) : 0);
    } while (ending == Ending::Finished && !m_enough);
    return ending;
}

// Waits for the queued commands. The time limit applies to events: when it expires, pending commands are dropped, but a
// running one may finish.
void Follower::AwaitCommands(Ending ending)
{
    while (!m_presentation->IsDone())
    {
        if (ending == Ending::TimedOut) m_presentation->Drop();
        if (ending == Ending::Interrupted) m_presentation->Stop(m_loop.Signal());
        ending = m_loop.Run(0);
    }
}

Answer Follower::Run()
{
    const Ending ending = AwaitEvents();
    m_context.out.Finish();
    AwaitCommands(ending);
    if (ending != Ending::TimedOut || !HasGoal()) return {};
    const Limits& limits = m_following.limits;
    throw Failure(kNothingDone,
                  (limits.until.empty()
                       ? "only " + std::to_string(m_seen) + " of " + std::to_string(limits.count) + " events occurred"
                       : "no event '" + limits.until + "' occurred") +
                      " in time",
                  "wait longer with --timeout");
}
}  // namespace

Answer Follow(Context& context, const Following& following)
{
    return Follower(context, following).Run();
}
}  // namespace ctl
