#include "screen/status_screen.h"

#include <algorithm>
#include <cstdint>

#include "output/output.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/player.h"
#include "session/loop.h"

namespace ctl
{
namespace
{
constexpr int kReadableWidth = 80;
constexpr int kLeastForText = 36;
constexpr int kLeastForBar = 4;
constexpr int kLeastForArt = 8;
constexpr int kMostForArt = 12;

struct Line
{
    int importance;  ///< lines with the largest value are dropped first
    std::string text;
};

template <class E>
std::string NameOr(const ipodkit::Known<E>& value)
{
    return value ? ToString(*value) : "unknown";
}

std::string QueueText(const ipodkit::PlayerState& state)
{
    if (!state.queueSize) return "queue unknown";
    const int amount = *state.queueSize;
    const int index = state.trackIndex.value_or(-1);
    if (index < 0) return "queue " + Count(amount, "entry", "entries");
    return "queue " + std::to_string(std::int64_t{index} + 1) + " of " + std::to_string(amount);
}

std::string DevicesText(const ipodkit::PlayerState& state)
{
    return state.deviceCount ? Count(*state.deviceCount, "device", "devices") : "devices unknown";
}

// Omits the bar if the terminal is too narrow for it.
std::string ProgressLine(const Status& status, const Output& out, int width)
{
    const std::string times = Clock(status.position) + " / " + Clock(status.length);
    const int room = std::min(width, kReadableWidth) - Width(times) - 1;
    if (room < kLeastForBar) return Cut(times, width);
    return out.Paint(Color::Cyan, ProgressBar(status.position, status.length, room, out.utf8())) + " " + times;
}

std::string ModesLine(const ipodkit::PlayerState& state, const Output& out, int width)
{
    const std::string word = NameOr(state.status);
    const std::string line = Cut(Fitting({word, "shuffle " + NameOr(state.shuffle), "repeat " + NameOr(state.repeat),
                                          QueueText(state), DevicesText(state)},
                                         width),
                                 width);
    return out.Paint(Color::Green, line.substr(0, word.size())) + line.substr(std::min(word.size(), line.size()));
}

std::string BatteryText(const ipodkit::Battery& battery)
{
    std::string text;
    if (battery.percent) text += " " + std::to_string(*battery.percent) + " %";
    if (battery.charging) text += " " + ToString(*battery.charging);
    return text.empty() ? "" : "battery" + text;
}

std::string CallText(const ipodkit::PhoneCall& call)
{
    std::string who = call.name.value_or("");
    if (who.empty()) who = call.remote.value_or("");
    return "call " + (who.empty() ? "unknown" : Printable(who)) + (call.status ? " " + ToString(*call.status) : "");
}

Lines DeviceParts(const ipodkit::PlayerState& state)
{
    Lines parts;
    if (state.deviceCount.value_or(0) > 0) parts.push_back(Printable(state.deviceName.value_or("")));
    parts.push_back(BatteryText(state.battery.value_or({})));
    for (const auto& [uuid, call] : state.calls) parts.push_back(CallText(call));
    if (state.carPlay && state.carPlay->status == ipodkit::DeviceStatus::Detected) parts.emplace_back("CarPlay");
    if (state.carLife == ipodkit::DeviceStatus::Detected) parts.emplace_back("CarLife");
    if (state.foregroundApp) parts.push_back(Printable(*state.foregroundApp));
    return parts;
}

void AddTrack(std::vector<Line>& lines, const Status& status, const Output& out, int width)
{
    const ipodkit::Track& track = *status.state->track;
    const std::string artist = Printable(track.artist);
    const std::string album = Printable(track.album);
    const std::string title = track.title.empty() ? "(no title)" : Printable(track.title);
    const std::string below = artist + (artist.empty() || album.empty() ? "" : " - ") + album;
    lines.push_back({0, out.Paint(Color::Bold, Cut(title, width))});
    if (!below.empty()) lines.push_back({3, Cut(below, width)});
    lines.push_back({2, ProgressLine(status, out, width)});
}

void AddQueue(std::vector<Line>& lines, const Status& status, const Output& out, int width)
{
    const int digits = Width(std::to_string(status.firstNear + static_cast<int>(status.near.size())));
    for (std::size_t i = 0; i < status.near.size(); ++i)
    {
        const int index = status.firstNear + static_cast<int>(i);
        const bool playing = status.state->trackIndex == index;
        const std::string entry = PadLeft(std::to_string(index), digits) + "  " + Printable(status.near[i]);
        const std::string line = Cut((playing ? "> " : "  ") + entry, width);
        lines.push_back({playing ? 5 : 6, out.Paint(playing ? Color::Bold : Color::Dim, line)});
    }
}

std::vector<Line> AllLines(const Status& status, const Output& out, int width)
{
    std::vector<Line> lines;
    if (HasTrack(status)) AddTrack(lines, status, out, width);
    lines.push_back({1, ModesLine(*status.state, out, width)});
    const std::string device = Fitting(DeviceParts(*status.state), width);
    if (!device.empty()) lines.push_back({4, Cut(device, width)});
    AddQueue(lines, status, out, width);
    return lines;
}

// Drops the least important lines until the rest fits; among equals, the last one goes first.
Lines FittingRows(std::vector<Line> lines, int rows)
{
    while (static_cast<int>(lines.size()) > std::max(1, rows))
    {
        const auto least = std::max_element(lines.rbegin(), lines.rend(),
                                            [](const Line& a, const Line& b) { return a.importance < b.importance; });
        lines.erase(std::next(least).base());
    }
    Lines texts;
    for (Line& line : lines) texts.push_back(std::move(line.text));
    return texts;
}

bool WantsArt(const Output& out, Art art)
{
    return art == Art::Always || (art == Art::OnTerminal && out.terminal() && !out.dumb() && !out.json());
}

// Draws the artwork to the left of the text, which keeps at least kLeastForText columns.
Drawing DrawArt(const Status& status, const Output& out, Art art, int rows)
{
    const ipodkit::PicturePtr picture = status.state->Artwork();
    const int height = std::min(rows, kMostForArt);
    const int width = std::min(out.width(), kReadableWidth) - kLeastForText;
    if (picture == nullptr || !WantsArt(out, art) || height < kLeastForArt || width < kLeastForArt) return {};
    const Palette palette = out.color() ? PaletteOfTerminal() : Palette::None;
    return Draw(*picture, std::min(width, 2 * kMostForArt), height, palette, out.terminal() && !out.utf8());
}

int WidthBeside(const Drawing& drawing, const Output& out)
{
    return drawing.lines.empty() ? out.width() : out.width() - drawing.width - 2;
}
}  // namespace

std::string StatusText(const Status& status, const Output& out, Art art)
{
    const int rows = out.height() - 1;
    const Drawing drawing = DrawArt(status, out, art, rows);
    const Lines lines = FittingRows(AllLines(status, out, WidthBeside(drawing, out)), rows);
    return Joined(Beside(drawing, lines));
}

std::string InfoText(const Status& status, const Output& out, Art art)
{
    const Drawing drawing = DrawArt(status, out, art, out.height() - 1);
    const ipodkit::Track& track = *status.state->track;
    const ipodkit::PicturePtr picture = status.state->Artwork();
    const std::string about =
        picture == nullptr ? std::string(track.HasArtwork() ? "yes" : "no") : PictureLine(*picture);
    const std::string table = Table({{"title", Printable(track.title)},
                                     {"artist", Printable(track.artist)},
                                     {"album", Printable(track.album)},
                                     {"genre", Printable(track.genre)},
                                     {"length", Clock(track.duration)},
                                     {"number", track.number > 0 ? std::to_string(track.number) : "unknown"},
                                     {"queue", std::to_string(std::int64_t{status.state->trackIndex.value_or(-1)} + 1) +
                                                   " of " + std::to_string(status.state->queueSize.value_or(0))},
                                     {"picture", about}},
                                    WidthBeside(drawing, out));
    return Joined(Beside(drawing, Split(table)));
}

namespace
{
constexpr double kSecond = 1;

/// Switches to the terminal's alternate screen and hides the cursor. The destructor restores both.
class AlternateScreen
{
public:
    explicit AlternateScreen(Output& out) : m_out(out) { Enter(); }
    ~AlternateScreen()
    {
        try
        {
            Leave();
        }
        catch (...)
        {
            // The output is unusable, and a destructor cannot report that.
        }
    }
    AlternateScreen(const AlternateScreen&) = delete;
    AlternateScreen& operator=(const AlternateScreen&) = delete;

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
            "ipodctl", [this](const ipodkit::StatePtr&, ipodkit::Fields) { m_loop.Finish(); },
            ipodkit::Fields::All().Without(ipodkit::Field::Position));  // the screen extrapolates it
        m_connections = m_session.OnConnection("ipodctl", [this](const ipodkit::Connection& connection)
                                               { m_loop.Guard([&] { ConnectionChanged(connection); }); });
        m_loop.EndWithOutput();
    }

    /// Calls @p suspend on Ctrl-Z and ends the current Next() when it returns.
    void OnSuspend(const SuspendSignal& signal, const std::function<void()>& suspend)
    {
        m_loop.WhenReadable(signal.Descriptor(),
                            [this, suspend]
                            {
                                suspend();
                                m_loop.Finish();
                            });
    }

    /// Waits for a change for at most @p seconds, or without a limit if 0. Returns false if interrupted.
    bool Next(double seconds) { return m_loop.Run(seconds) != Ending::Interrupted; }
    bool HasService() const { return m_session.Connection().phase == ipodkit::Phase::Ready; }

private:
    void ConnectionChanged(const ipodkit::Connection& connection)
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
    AlternateScreen screen(context.out);
    watcher.OnSuspend(suspend,
                      [&]
                      {
                          screen.Leave();
                          suspend.Suspend();
                          screen.Enter();
                      });
    do
    {
        context.out.Measure();
        screen.Show(watcher.HasService() ? show(ReadStatus(context.session, near)).text : kServiceLeft);
    } while (watcher.Next(kSecond));
}

// Prints each multi-line answer under the time of day, separated by a blank line.
void WatchInLines(Context& context, int near, const std::function<Answer(const Status&)>& show)
{
    Watcher watcher(context);
    bool reported = true;
    std::string gap;
    while (watcher.Next(0))
    {
        const bool there = watcher.HasService();
        if (there != reported)
            ReportService(context.out, context.out.json(), there ? "ready" : "lost",
                          there ? kServiceIsThere : kServiceLeft);
        reported = there;
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
        // Ctrl-C is the normal end, even while a request is pending.
    }
}
}  // namespace ctl
