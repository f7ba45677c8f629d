#include "browse/frame.h"

#include <glib.h>

#include <algorithm>

#include "output/text.h"

namespace ctl::browse
{
namespace
{
constexpr std::string_view kArrow = " \xE2\x80\xBA ";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr int kMinColumnsForBar = 50;
constexpr int kMinColumnsForDuration = 30;
constexpr int kMinColumnsForTable = 70;
constexpr int kHelpColumn = 30;
constexpr char kWaiting[] = "waiting for the service\xE2\x80\xA6";

// Most answers arrive sooner; showing the text at once would make it flicker.
constexpr std::chrono::seconds kWaitingDelay{1};

struct HelpEntry
{
    const char* keys;
    const char* text;
};

constexpr HelpEntry kHelp[] = {
    {"Up Down PgUp PgDn Home End", "move"},
    {"Enter, Right", "open a folder, or play from this song"},
    {"Left, Backspace, Esc", "go back"},
    {"a-z 0-9", "jump to a name (also by pinyin or initials: zmx)"},
    {"/", "show matching names only; Enter opens, Esc cancels"},
    {"Space", "pause, resume"},
    {"< >", "previous track, next track"},
    {"Ctrl-L", "reload"},
    {"Ctrl-Z, Ctrl-C", "suspend, quit"},
};
static_assert(std::size(kHelp) == Model::kHelpLines);

struct Hint
{
    const char* key;
    const char* text;
};

// Most important first: the last ones are dropped on a narrow screen.
constexpr Hint kHints[] = {{"^C", "quit"},  {"?", "help"},         {"Enter", "open"}, {"\xE2\x86\x90", "back"},
                           {"/", "search"}, {"a-z", "jump (zmx)"}, {"Space", "pause"}};

bool IsJoiner(gunichar code)
{
    return code == 0x200D || (code >= 0xFE00 && code <= 0xFE0F) || (code >= 0x1F3FB && code <= 0x1F3FF) ||
           (code >= 0xE0020 && code <= 0xE007F);
}

bool IsLatin(gunichar code)
{
    const GUnicodeScript script = g_unichar_get_script(code);
    return script == G_UNICODE_SCRIPT_LATIN || script == G_UNICODE_SCRIPT_COMMON ||
           script == G_UNICODE_SCRIPT_INHERITED;
}

std::string PathText(const Model& model)
{
    std::string path = model.device.empty() ? "iPod" : CellText(model.device);
    for (std::size_t depth = 1; depth < model.Levels().size(); ++depth)
        path += std::string(kArrow) + CellText(model.Levels()[depth].title);
    return path;
}

// Keeps the end of the path, which identifies the level.
std::string CutFront(std::string_view text, int width)
{
    if (Width(text) <= width) return std::string(text);
    while (!text.empty() && Width(text) > width - 1)
        text.remove_prefix(static_cast<std::size_t>(g_utf8_next_char(text.data()) - text.data()));
    return std::string(kEllipsis) + std::string(text);
}

std::string PositionText(const Model& model)
{
    const int rows = model.Rows();
    const LevelNames& names = model.Current().names;
    if (!model.Current().counted) return model.Current().unreadable ? "?" : "\xE2\x80\xA6";
    const std::string more = model.Searching() && static_cast<std::size_t>(rows) >= Model::kMaxMatches ? "+" : "";
    std::string place = std::to_string(rows == 0 ? 0 : model.Cursor().at + 1) + "/" + std::to_string(rows) + more;
    if (names.Complete() || names.Count() == 0 || model.Current().unreadable) return place;
    return place + "  " + std::to_string(static_cast<long long>(names.Loaded()) * 100 / names.Count()) + " %";
}

const char* Symbol(const ipodkit::Known<ipodkit::PlayStatus>& status)
{
    switch (status.value_or(ipodkit::PlayStatus::Stopped))
    {
        case ipodkit::PlayStatus::Playing:
            return "\xE2\x96\xB6";
        case ipodkit::PlayStatus::Paused:
            return "\xE2\x80\x96";
        case ipodkit::PlayStatus::FastForward:
            return "\xC2\xBB";
        case ipodkit::PlayStatus::FastBackward:
            return "\xC2\xAB";
        default:
            return "\xE2\x96\xA0";
    }
}

bool HasTrack(const ipodkit::PlayerState& state)
{
    return state.track && !(state.track->title.empty() && state.track->artist.empty());
}

std::string TrackText(const ipodkit::PlayerState& state)
{
    if (!HasTrack(state)) return "not playing";
    const std::string title = state.track->title.empty() ? "(no title)" : CellText(state.track->title);
    return state.track->artist.empty() ? title : title + " - " + CellText(state.track->artist);
}

std::string WarningText(const ipodkit::Connection& connection)
{
    const bool lost = connection.phase == ipodkit::Phase::Lost;
    const std::string text = lost ? "service lost; waiting for it to return" : "connecting to the service";
    return connection.error ? text + ": " + connection.error->reason : text;
}

// A thick line up to the position, a thin one for the rest.
Line ProgressSpans(int column, int width, long long position, long long duration)
{
    const int done = duration > 0 ? static_cast<int>(std::clamp(position, 0LL, duration) * width / duration) : 0;
    std::string thick;
    std::string thin;
    for (int i = 0; i < done; ++i) thick += "\xE2\x94\x81";
    for (int i = done; i < width; ++i) thin += "\xE2\x94\x80";
    return {{column, thick, Style::Playing}, {column + done, thin, Style::Dim}};
}

// Adds position and progress bar, right-aligned; returns their first column.
int AddPosition(Line& line, const ipodkit::PlayerState& state, int columns, Time now)
{
    if (!state.position || !HasTrack(state)) return columns;
    const long long position = state.position->At(now).count();
    const long long duration = state.position->duration.count();
    std::string times = Clock(static_cast<int>(position));
    if (columns >= kMinColumnsForDuration && duration > 0) times += " / " + Clock(static_cast<int>(duration));
    const int column = columns - Width(times) - 1;
    line.push_back({column, times, Style::Plain});
    if (columns < kMinColumnsForBar) return column;
    const int width = std::clamp(columns / 3, 10, 40);
    for (Span& span : ProgressSpans(column - width - 1, width, position, duration)) line.push_back(std::move(span));
    return column - width - 1;
}

std::string PromptText(const Model& model)
{
    if (model.Searching()) return "/" + CellText(model.Searching()->query) + "\xE2\x96\x8F";
    return "jump: " + CellText(model.Jumping()->query);
}

bool IsWaiting(const Model& model, Time now)
{
    return model.waitingSince && now - *model.waitingSince >= kWaitingDelay &&
           model.connection.phase == ipodkit::Phase::Ready;
}

std::string ResultText(const Model& model, Time now)
{
    const Level& level = model.Current();
    if (model.Searching() && model.Searching()->query.empty()) return "type part of a name; Esc cancels";
    if (!level.index && IsWaiting(model, now)) return kWaiting;
    if (!level.index) return "loading names";
    const bool matches = model.Searching() ? !model.Searching()->found.empty() : model.Jumping()->matches;
    if (!matches) return "no match";
    return model.Searching() ? Count(model.Rows(), "match", "matches") : "";
}

Line PromptLine(const Model& model, int columns, Time now)
{
    const std::string prompt = CutFront(PromptText(model), columns - 1);
    const int column = Width(prompt) + 3;
    Line line{{1, prompt, Style::Strong}};
    line.push_back({column, ResultText(model, now), Style::Dim});
    return line;
}

Line HintLine(int columns)
{
    Line line;
    int column = 1;
    for (const Hint& hint : kHints)
    {
        const int width = Width(hint.key) + 1 + Width(hint.text);
        if (column + width > columns) break;
        line.push_back({column, hint.key, Style::Strong});
        line.push_back({column + Width(hint.key) + 1, hint.text, Style::Dim});
        column += width + 3;
    }
    return line;
}

// Returns whether a name contains non-Latin letters, so that a reading helps to type it.
bool IsForeign(std::string_view name)
{
    const std::string printable = Printable(name);
    for (const char* at = printable.c_str(); *at != '\0'; at = g_utf8_next_char(at))
        if (!IsLatin(g_utf8_get_char(at))) return true;
    return false;
}

// The path of the current level and the position in the list.
Line TitleLine(const Model& model, int columns)
{
    const std::string place = PositionText(model);
    const int room = columns - Width(place) - 3;
    if (room < 1) return {{0, Pad(CutFront(PathText(model), columns), columns), Style::Title}};
    return {{0, " " + Pad(CutFront(PathText(model), room), room + 1) + place + " ", Style::Title}};
}

// Explains an empty list.
Line EmptyLine(const Model& model)
{
    const Level& level = model.Current();
    if (!level.counted) return {{1, level.unreadable ? "(cannot be read)" : "", Style::Dim}};
    return {{1, level.names.Count() == 0 ? "(empty)" : "", Style::Dim}};
}

Frame HelpLines(int first, int height, int columns)
{
    Frame lines(static_cast<std::size_t>(height));
    const int top = std::clamp(first, 0, std::max(0, Model::kHelpLines - height));
    for (int row = 0; row < height && top + row < Model::kHelpLines; ++row)
    {
        const HelpEntry& entry = kHelp[top + row];
        const int column = columns >= kMinColumnsForTable ? kHelpColumn : Width(entry.keys) + 3;
        lines[static_cast<std::size_t>(row)] = {{1, entry.keys, Style::Strong}, {column, entry.text, Style::Plain}};
    }
    return lines;
}

// The current track, or the state of the connection if it is not ready.
Line PlayingLine(const Model& model, int columns, Time now)
{
    if (model.connection.phase != ipodkit::Phase::Ready)
        return {{1, Printable(WarningText(model.connection)), Style::Warning}};
    Line line;
    const int end = AddPosition(line, *model.state, columns, now);
    line.push_back({1, Symbol(model.state->status), Style::Playing});
    line.push_back({3, Cut(TrackText(*model.state), end - 4), Style::Plain});
    return line;
}

// A message, the prompt, a warning about the list, or the key hints, in this order of priority.
Line FootLine(const Model& model, int columns, Time now)
{
    if (!model.Message().empty()) return {{1, Printable(model.Message()), Style::Warning}};
    if (model.Searching() || model.Jumping()) return PromptLine(model, columns, now);
    if (IsWaiting(model, now)) return {{1, kWaiting, Style::Dim}};
    if (model.Current().unreadable) return {{1, "the list is incomplete; press Ctrl-L to retry", Style::Warning}};
    return HintLine(columns);
}

constexpr int kMargin = 2;
constexpr int kReadingGap = 3;
constexpr int kMinColumnsForReading = 40;

struct ListArea
{
    const Model& model;
    int columns;        // without the scroll bar
    int readingColumn;  // 0 if the screen is too narrow
};

std::string NameOf(const Model& model, int entry)
{
    const std::string* const name = model.Current().names.At(entry);
    if (name == nullptr) return "\xC2\xB7";
    return CellText(*name) + (model.Current().folders ? "/" : "");
}

std::string ReadingOf(const Model& model, int entry)
{
    const std::string* const name = model.Current().names.At(entry);
    if (name == nullptr || !model.Current().index || !IsForeign(*name)) return {};
    return model.Current().index->Reading(entry);
}

int WidestName(const Model& model)
{
    int widest = 0;
    const int top = model.Cursor().top;
    for (int row = top; row < std::min(top + model.Height(), model.Rows()); ++row)
        widest = std::max(widest, Width(NameOf(model, model.EntryAt(row))));
    return widest;
}

ListArea ListAreaFor(const Model& model, int columns)
{
    const int text = columns - 1;
    const int beside = kMargin + std::min(WidestName(model), text * 3 / 5) + kReadingGap;
    return {model, text, columns >= kMinColumnsForReading ? beside : 0};
}

// The playing list may be another level. Without the same name at the playing index, any song of that name may play.
bool IsPlaying(const Model& model, int entry)
{
    const LevelNames& names = model.Current().names;
    const std::string* const name = names.At(entry);
    if (name == nullptr || model.Current().folders || !HasTrack(*model.state)) return false;
    const std::string& title = model.state->track->title;
    const int index = model.state->trackIndex.value_or(-1);
    const std::string* const expected = names.At(index);
    return *name == title && (index == entry || expected == nullptr || *expected != title);
}

Line EntryLine(const ListArea& area, int entry, bool selected)
{
    const bool playing = IsPlaying(area.model, entry);
    const std::string name = NameOf(area.model, entry);
    const std::string reading = area.readingColumn > 0 ? ReadingOf(area.model, entry) : std::string();
    const int room = (reading.empty() ? area.columns : area.readingColumn - 1) - kMargin;
    const std::string mark = playing ? "\xE2\x96\xB6 " : std::string(kMargin, ' ');
    const std::string text = Pad(mark + Cut(name, room), area.columns);
    const Style style = playing ? Style::Playing : Style::Plain;
    return {
        {0, text, selected ? Style::Selected : style},
        {area.readingColumn, Cut(reading, area.columns - area.readingColumn), selected ? Style::Selected : Style::Dim}};
}

void AddScrollBar(Frame& list, const Model& model, int columns)
{
    const int height = static_cast<int>(list.size());
    const int count = model.Rows();
    if (count <= height || columns < 3) return;
    const int size = std::max(1, static_cast<int>(static_cast<long long>(height) * height / count));
    const int room = std::max(1, count - height);
    const int first = static_cast<int>(static_cast<long long>(model.Cursor().top) * (height - size) / room);
    for (int row = first; row < std::min(height, first + size); ++row)
        list[static_cast<std::size_t>(row)].push_back({columns - 1, "\xE2\x94\x83", Style::Dim});
}

Frame ListLines(const Model& model, int height, int columns)
{
    Frame lines(static_cast<std::size_t>(height));
    const ListArea area = ListAreaFor(model, columns);
    const ListCursor& cursor = model.Cursor();
    for (int row = 0; row < height; ++row)
    {
        const int entry = model.EntryAt(cursor.top + row);
        if (entry >= 0) lines[static_cast<std::size_t>(row)] = EntryLine(area, entry, cursor.top + row == cursor.at);
    }
    if (model.Rows() == 0) lines.front() = EmptyLine(model);
    AddScrollBar(lines, model, columns);
    return lines;
}

// Cuts spans at the right edge and drops those outside.
Line Clipped(const Line& line, int columns)
{
    Line clipped;
    for (const Span& span : line)
        if (span.column >= 0 && span.column < columns && !span.text.empty())
            clipped.push_back({span.column, Cut(span.text, columns - span.column), span.style});
    return clipped;
}
}  // namespace

std::string CellText(std::string_view name)
{
    const std::string printable = Printable(name);
    std::string text;
    for (const char* at = printable.c_str(); *at != '\0'; at = g_utf8_next_char(at))
        if (!IsJoiner(g_utf8_get_char(at))) text.append(at, static_cast<const char*>(g_utf8_next_char(at)));
    return text;
}

int ListRows(int rows)
{
    return rows >= 4 ? rows - 3 : 1;
}

Frame Draw(const Model& model, int rows, int columns, Time now)
{
    const int height = ListRows(rows);
    Frame frame = model.Help() ? HelpLines(*model.Help(), height, columns) : ListLines(model, height, columns);
    if (rows >= 4) frame.insert(frame.begin(), TitleLine(model, columns));
    if (rows >= 3) frame.push_back(PlayingLine(model, columns, now));
    if (rows >= 2) frame.push_back(FootLine(model, columns, now));
    for (Line& line : frame) line = Clipped(line, columns);
    return frame;
}
}  // namespace ctl::browse
