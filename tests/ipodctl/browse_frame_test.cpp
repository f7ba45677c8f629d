#include <gtest/gtest.h>

#include <random>

#include "browse_screen.h"

using namespace ctl::browse;

namespace
{
constexpr int kSeconds = 1000;

Model PlayingModel()
{
    Model model;
    model.SetHeight(5);
    auto state = std::make_shared<ipodkit::PlayerState>();
    state->phase = ipodkit::Phase::Ready;
    model.device = "Li Lei's iPod";
    state->status = ipodkit::PlayStatus::Playing;
    state->track = ipodkit::Track{"秋林序", "周明轩", "", "", std::chrono::seconds(299), 1, 10, 0};
    state->position = ipodkit::Position{std::chrono::seconds(60), std::chrono::seconds(299), kNow, true};
    model.state = state;
    model.connection.phase = ipodkit::Phase::Ready;
    return model;
}

std::vector<std::string> Screen(const Model& model, int rows, int columns, Time now = kNow)
{
    std::vector<std::string> lines;
    for (const Line& line : Draw(model, rows, columns, now)) lines.push_back(Rendered(line));
    return lines;
}

void ExpectWithin(const Frame& frame, int rows, int columns)
{
    ASSERT_LE(static_cast<int>(frame.size()), rows);
    for (const Line& line : frame)
        for (const Span& span : line)
        {
            EXPECT_GE(span.column, 0);
            EXPECT_LE(span.column + ctl::Width(span.text), columns) << rows << "x" << columns << ": " << span.text;
            EXPECT_EQ(ctl::Printable(span.text), span.text);
        }
}

// Mixes all kinds of bytes: letters, wide and combining characters, emoji, control characters, broken UTF-8.
std::string RandomName(std::mt19937& random)
{
    static const std::vector<std::string> pieces = {
        "a",    "Z",      " ", "周",      "杰", "\u0301", "\u05D0", "\u0639", "\u202E",   "\u200D", "👩",
        "🏽", "\uFE0F", "🇩", "\033[2J", "\n", "\t",     "\x7F",   "\xFF",   "\xE5\x91", "\u2028", "…"};
    std::string name;
    const std::size_t length = random() % 60;
    for (std::size_t i = 0; i < length; ++i) name += pieces[random() % pieces.size()];
    return name;
}

Model RandomModel(std::mt19937& random)
{
    Model model = PlayingModel();
    std::vector<std::string> names(random() % 40);
    for (std::string& name : names) name = RandomName(random);
    if (random() % 2 == 0) model.Enter(RandomName(random), 0);
    Fill(model, names, random() % 2 == 0);
    static const std::vector<std::string> typed = {"", "z", "/", "/a", "/zj", "?", "a"};
    Type(model, typed[random() % typed.size()]);
    if (random() % 4 == 0) model.ShowMessage(RandomName(random), kNow);
    if (random() % 4 == 0) model.connection.phase = ipodkit::Phase::Lost;
    Press(model, random() % 2 == 0 ? Key::End : Key::Down);
    return model;
}
}  // namespace

TEST(BrowseFrame, ShowsPathListTrackAndKeys)
{
    Model model = PlayingModel();
    Fill(model, {"Playlists", "Artists"}, true);
    model.Enter("Artists", 1);
    Fill(model, {"Ada", "周明轩"}, true);
    EXPECT_EQ(Screen(model, 8, 60),
              (std::vector<std::string>{" Li Lei's iPod › Artists                                1/2", "  Ada/",
                                        "  周明轩/   zhou ming xuan", "", "", "",
                                        " ▶ 秋林序 - 周明轩         ━━━━──────────────── 1:00 / 4:59",
                                        " ^C quit   ? help   Enter open   ← back   / search"}));
}

TEST(BrowseFrame, FitsATerminalOfTwentyByFive)
{
    Model model = PlayingModel();
    model.SetHeight(ListRows(5));
    Fill(model, {"A name that is rather long", "周明轩", "Zelie"});
    EXPECT_EQ(Screen(model, 5, 20), (std::vector<std::string>{" Li Lei's iPod  1/3", "  A name that is r…┃", "  周明轩",
                                                              " ▶ 秋林序 - …  1:00", " ^C quit   ? help"}));
}

TEST(BrowseFrame, OmitsTheLeastImportantLinesOnFewRows)
{
    Model model = PlayingModel();
    Fill(model, {"Ada"});
    EXPECT_EQ(Screen(model, 3, 20), (std::vector<std::string>{"  Ada", " ▶ 秋林序 - …  1:00", " ^C quit   ? help"}));
    EXPECT_EQ(Screen(model, 2, 20), (std::vector<std::string>{"  Ada", " ^C quit   ? help"}));
    EXPECT_EQ(Screen(model, 1, 20), (std::vector<std::string>{"  Ada"}));
}

TEST(BrowseFrame, StaysWithinAnyTerminalForAnyNames)
{
    std::mt19937 random(7);
    for (int i = 0; i < 250; ++i)
    {
        Model model = RandomModel(random);
        const int rows = 1 + static_cast<int>(random() % 30);
        const int columns = 1 + static_cast<int>(random() % 100);
        model.SetHeight(ListRows(rows));
        const Frame frame = Draw(model, rows, columns, kNow);
        ExpectWithin(frame, rows, columns);
        if (HasFailure()) FAIL() << "in screen " << i;
    }
}

TEST(BrowseFrame, MarksTheSelectedRow)
{
    Model model = PlayingModel();
    Fill(model, {"Ada", "Zelie"});
    Press(model, Key::Down);
    const Frame frame = Draw(model, 8, 40, kNow);
    EXPECT_EQ(frame[1].front().style, Style::Plain);
    EXPECT_EQ(frame[2].front().style, Style::Selected);
    EXPECT_EQ(ctl::Width(frame[2].front().text), 39);
}

TEST(BrowseFrame, MarksTheSongThatPlays)
{
    Model model = PlayingModel();
    Fill(model, {"Ada", "秋林序", "秋林序"});
    EXPECT_EQ(Screen(model, 8, 40)[2].substr(0, 4), "▶ ");
    EXPECT_EQ(Screen(model, 8, 40)[3].substr(0, 4), "▶ ");
    auto state = std::make_shared<ipodkit::PlayerState>(*model.state);
    state->trackIndex = 2;
    model.state = state;
    EXPECT_EQ(Screen(model, 8, 40)[2].substr(0, 2), "  ");
    EXPECT_EQ(Screen(model, 8, 40)[3].substr(0, 4), "▶ ");
    EXPECT_EQ(Draw(model, 8, 40, kNow)[3].front().style, Style::Playing);
    Fill(model, {"Ada", "秋林序", "秋林序"}, true);
    EXPECT_EQ(Screen(model, 8, 40)[3].substr(0, 2), "  ");
}

TEST(BrowseFrame, AdvancesThePositionBetweenEvents)
{
    Model model = PlayingModel();
    Fill(model, {"Ada"});
    EXPECT_NE(Screen(model, 8, 60, kNow + std::chrono::seconds(5))[6].find("1:05 / 4:59"), std::string::npos);
    EXPECT_NE(Screen(model, 8, 60, kNow + std::chrono::seconds(500))[6].find("4:59 / 4:59"), std::string::npos);
}

TEST(BrowseFrame, ReportsALostService)
{
    Model model = PlayingModel();
    Fill(model, {"Ada"});
    model.connection.phase = ipodkit::Phase::Lost;
    const auto lines = Screen(model, 8, 60);
    EXPECT_EQ(lines[1], "  Ada");
    EXPECT_EQ(lines[6], " service lost; waiting for it to return");
}

TEST(BrowseFrame, ShowsTheQueryAndItsResult)
{
    Model model = PlayingModel();
    Fill(model, {"Ada", "周明轩"});
    Type(model, "zmy");
    EXPECT_EQ(Screen(model, 8, 60).back(), " jump: zmy  no match");
    Press(model, Key::Escape);
    Type(model, "/zmx");
    EXPECT_EQ(Screen(model, 8, 60).back(), " /zmx▏  1 match");
    EXPECT_EQ(Screen(model, 8, 60)[1], "  周明轩   zhou ming xuan");
}

TEST(BrowseFrame, ShowsHowManyNamesAreLoaded)
{
    Model model = PlayingModel();
    model.SetCount(1000);
    PutPage(model, 0, std::vector<std::string>(250, "x"));
    const auto lines = Screen(model, 8, 60);
    EXPECT_NE(lines[0].find("1/1000  25 %"), std::string::npos);
    Type(model, "x");
    EXPECT_EQ(Screen(model, 8, 60).back(), " jump: x  loading names");
}

TEST(BrowseFrame, ShowsADotForANameNotLoadedYet)
{
    Model model = PlayingModel();
    model.SetCount(2);
    EXPECT_EQ(Screen(model, 8, 60)[2], "  ·");
}

TEST(BrowseFrame, MarksAnEmptyLevel)
{
    Model model = PlayingModel();
    EXPECT_EQ(Screen(model, 8, 60)[1], "");
    model.SetCount(0);
    EXPECT_EQ(Screen(model, 8, 60)[1], " (empty)");
}

TEST(BrowseFrame, ReportsAnUnreadableLevel)
{
    Model model = PlayingModel();
    model.SetUnreadable();
    EXPECT_EQ(Screen(model, 8, 60)[1], " (cannot be read)");
    EXPECT_EQ(Screen(model, 8, 60)[0].find("0/0"), std::string::npos);
    EXPECT_EQ(Screen(model, 8, 60).back(), " the list is incomplete; press Ctrl-L to retry");
    model.SetCount(2);
    EXPECT_NE(Screen(model, 8, 60).back().find("help"), std::string::npos);
    model.SetUnreadable();
    EXPECT_EQ(Screen(model, 8, 60)[0].find('%'), std::string::npos);
    EXPECT_EQ(Screen(model, 8, 60).back(), " the list is incomplete; press Ctrl-L to retry");
}

TEST(BrowseFrame, ReportsWaitingAfterASecond)
{
    Model model = PlayingModel();
    model.waitingSince = kNow;
    EXPECT_EQ(Screen(model, 8, 60, kNow + std::chrono::milliseconds(500)).back().find("waiting"), std::string::npos);
    const Time later = kNow + std::chrono::seconds(2);
    EXPECT_EQ(Screen(model, 8, 60, later).back(), " waiting for the service…");
    Type(model, "x");
    EXPECT_EQ(Screen(model, 8, 60, later).back(), " jump: x  waiting for the service…");
    model.connection.phase = ipodkit::Phase::Lost;
    EXPECT_EQ(Screen(model, 8, 60, later).back(), " jump: x  loading names");
}

TEST(BrowseFrame, ListsItsKeys)
{
    Model model = PlayingModel();
    Type(model, "?");
    EXPECT_EQ(Screen(model, 24, 80)[5],
              " /                            show matching names only; Enter opens, Esc cancels");
    model.SetHeight(ListRows(5));
    Press(model, Key::Down);
    EXPECT_EQ(Screen(model, 5, 20)[1], " Enter, Right  open…");
}

TEST(CellText, HasOneWidthOnEveryTerminal)
{
    EXPECT_EQ(CellText("👩\u200D🚀"), "👩🚀");
    EXPECT_EQ(CellText("❤\uFE0F"), "❤");
    EXPECT_EQ(CellText("👋🏽"), "👋");
    EXPECT_EQ(CellText("a\033[2J\u202Eb"), "a\uFFFD[2J\uFFFDb");
}
