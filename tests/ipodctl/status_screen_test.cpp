#include "screen/status_screen.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "output/text.h"
#include "picture/picture.h"

namespace ctl
{
namespace
{
/// Makes standard output a terminal of the given size for its lifetime.
class OnTerminal
{
public:
    OnTerminal(unsigned short columns, unsigned short rows) : m_before(dup(STDOUT_FILENO))
    {
        winsize size{rows, columns, 0, 0};
        EXPECT_EQ(openpty(&m_main, &m_terminal, nullptr, nullptr, &size), 0);
        std::fflush(stdout);
        dup2(m_terminal, STDOUT_FILENO);
        setenv("NO_COLOR", "1", 1);
        setenv("LC_ALL", "C", 1);
    }
    ~OnTerminal()
    {
        dup2(m_before, STDOUT_FILENO);
        for (const int file : {m_before, m_main, m_terminal}) close(file);
        unsetenv("NO_COLOR");
        unsetenv("LC_ALL");
    }
    OnTerminal(const OnTerminal&) = delete;
    OnTerminal& operator=(const OnTerminal&) = delete;

private:
    int m_before;
    int m_main = -1;
    int m_terminal = -1;
};

Status Playing()
{
    auto state = std::make_shared<ipodkit::PlayerState>();
    state->track = ipodkit::Track{"A title that is much longer than any terminal of twenty columns 周明轩 🎵",
                                  "Artist",
                                  "Album",
                                  "Genre",
                                  std::chrono::milliseconds(269000),
                                  3,
                                  11,
                                  1};
    state->trackIndex = 4;
    state->queueSize = 12;
    state->status = ipodkit::PlayStatus::Playing;
    state->shuffle = static_cast<ipodkit::Shuffle>(0);
    state->repeat = static_cast<ipodkit::Repeat>(9);
    state->deviceCount = 1;
    state->deviceName = "Phone\033[2J";
    state->battery = ipodkit::Battery{80, {}};
    ipodkit::PhoneCall call;
    call.name = "Anna";
    call.status = ipodkit::CallStatus::Ringing;
    state->calls["1"] = call;
    Status status;
    status.state = state;
    status.position = 61000;
    status.length = 269000;
    status.firstNear = 2;
    status.near = {"two", "three", "A title", "five", "عربي طويل جدا جدا جدا جدا"};
    return status;
}

Lines Shown(const Status& status, unsigned short columns, unsigned short rows)
{
    const OnTerminal terminal(columns, rows);
    return Split(StatusText(status, Output(false), Art::OnTerminal));
}

bool Has(const Lines& lines, const std::string& text)
{
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

TEST(StatusScreen, FitsIntoTerminalsOfAllSizes)
{
    for (unsigned short columns = 2; columns < 130; columns = static_cast<unsigned short>(columns + 7))
        for (unsigned short rows = 2; rows < 30; ++rows)
        {
            const Lines lines = Shown(Playing(), columns, rows);
            EXPECT_LT(lines.size(), rows);
            for (const std::string& line : lines) EXPECT_LE(Width(line), columns) << line;
        }
}

TEST(StatusScreen, KeepsTheEssentialsInASmallTerminal)
{
    EXPECT_EQ(Shown(Playing(), 20, 5),
              (Lines{"A title that is muc…", "Artist - Album", "[=>    ] 1:01 / 4:29", "playing"}))
        << Joined(Shown(Playing(), 20, 5));
}

TEST(StatusScreen, ShowsQueueDeviceBatteryAndCallWhereThereIsRoom)
{
    const Lines lines = Shown(Playing(), 100, 24);
    EXPECT_TRUE(Has(lines, "playing   shuffle off   repeat unknown:9   queue 5 of 12   1 device"));
    EXPECT_TRUE(Has(lines, "Phone\uFFFD[2J   battery 80 %   call Anna ringing"));
    EXPECT_TRUE(Has(lines, "> 4  A title"));
    EXPECT_TRUE(Has(lines, "  3  three"));
}

TEST(StatusScreen, ShowsTheTimesAloneWhereABarHasNoRoom)
{
    EXPECT_EQ(Shown(Playing(), 12, 4), (Lines{"A title tha…", "1:01 / 4:29", "playing"}))
        << Joined(Shown(Playing(), 12, 4));
}

TEST(StatusScreen, ShowsCallsWithoutAnIdentifierOrAName)
{
    Status status = Playing();
    auto state = std::make_shared<ipodkit::PlayerState>(*status.state);
    state->calls.clear();
    ipodkit::PhoneCall call;
    call.remote = "123";
    call.status = ipodkit::CallStatus::Ringing;
    state->calls[""] = call;
    call.id = "";
    call.name = "";
    call.remote = "";
    state->calls["x"] = call;
    status.state = state;
    EXPECT_TRUE(Has(Shown(status, 100, 24), "battery 80 %   call 123 ringing   call unknown ringing"));
    EXPECT_EQ(StatusJson(status)["calls"].dump(), R"([{"status":"ringing","remote":"123"},)"
                                                  R"({"status":"ringing","name":"","remote":""}])");
}

TEST(StatusScreen, DistinguishesARefusedQueueFromAnEmptyOneInJson)
{
    Status status = Playing();
    EXPECT_EQ(StatusJson(status)["queue"].size(), 5U);
    status.near.clear();
    EXPECT_TRUE(StatusJson(status)["queue"].is_array());
    status.nearRefusal = "the service refused";
    EXPECT_TRUE(StatusJson(status)["queue"].is_null());
}

TEST(StatusScreen, ReportsUnknownFields)
{
    Status status;
    status.state = std::make_shared<ipodkit::PlayerState>();
    EXPECT_EQ(Shown(status, 80, 24),
              Lines{"unknown   shuffle unknown   repeat unknown   queue unknown   devices unknown"});
}

TEST(StatusJson, NamesTheMembersThatTheDaemonRemembered)
{
    ipodkit::PlayerState state;
    state.battery = ipodkit::Battery{};
    state.remembered = ipodkit::Field::Battery | ipodkit::Field::Location;
    Status status;
    status.state = std::make_shared<ipodkit::PlayerState>(state);
    EXPECT_EQ(StatusJson(status)["remembered"], Json({"battery"}));
    state.remembered = ipodkit::Field::Calls;
    status.state = std::make_shared<ipodkit::PlayerState>(state);
    EXPECT_EQ(StatusJson(status)["remembered"], Json({"calls"}));
}
}  // namespace
}  // namespace ctl
