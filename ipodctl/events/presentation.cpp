#include "events/presentation.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "events/command_queue.h"
#include "events/event_fields.h"
#include "events/format.h"
#include "output/progress_bar.h"
#include "output/text.h"

namespace ctl
{
namespace
{
bool IsProgress(const Event& event)
{
    return std::strcmp(event.name, "progress") == 0;
}

class Usual : public Presentation
{
public:
    explicit Usual(Output& out) : m_out(out) {}

    void Take(const Event& event, bool wanted) override
    {
        if (!wanted) return;
        if (!m_out.json() && m_out.terminal() && !m_out.dumb() && IsProgress(event)) return ShowBar(event);
        const Answer answer = ToAnswer(event);
        m_out.Line(answer.json, Cut(answer.text, m_out.width()));
    }

private:
    // What is wider than the terminal would stay in the lines above.
    void ShowBar(const Event& event)
    {
        m_out.Measure();
        const int room = m_out.width() - Width(event.text) - 1;
        const std::string bar = ProgressBar(event.fields["position_ms"], event.fields["length_ms"], room, m_out.utf8());
        m_out.Transient(Cut(bar + " " + event.text, m_out.width()));
    }

    Output& m_out;
};

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
}  // namespace

std::unique_ptr<Presentation> UsualLines(Output& out)
{
    return std::make_unique<Usual>(out);
}

std::unique_ptr<Presentation> FormattedLines(Output& out, const std::string& format)
{
    return std::make_unique<Formatted>(out, format);
}

std::unique_ptr<Presentation> CommandRuns(Loop& loop, const std::string& command)
{
    return std::make_unique<Commanded>(loop, command);
}
}  // namespace ctl
