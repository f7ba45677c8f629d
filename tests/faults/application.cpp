// Faults in the application itself.
#include <QBXIpodShareMemory.h>
#include <sys/wait.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "desk.h"
#include "helper_process.h"
#include "support/signal_barrier.h"
#include "support/text.h"

namespace faults
{
namespace
{
// Runs an action at its first event, and counts events.
class Doing : public Counter
{
public:
    explicit Doing(std::function<void()> action) : m_action(std::move(action)) {}

    void OnPlayProgressChange(int pos, int duration) override
    {
        Counter::OnPlayProgressChange(pos, duration);
        if (received == 1) m_action();
    }

private:
    std::function<void()> m_action;
};

// Sends two events; @p listeners may be removed or added meanwhile.
void TwoEvents(Desk& desk)
{
    desk.DeliverText("OnPlayProgressChange", "(0, 2)");
    desk.DeliverText("OnPlayProgressChange", "(1, 2)");
}

void ExpectCounts(const std::vector<int>& actual, const std::vector<int>& expected)
{
    Expect(actual == expected, "each listener gets what it should");
}

void RemovesItself(const Arguments&)
{
    Desk desk;
    Counter others[2];
    Doing* self = nullptr;
    Doing doing([&] { desk.player.RemoveListener(self); });
    self = &doing;
    for (IQBXIpodPlayerListener* listener :
         {static_cast<IQBXIpodPlayerListener*>(&others[0]), static_cast<IQBXIpodPlayerListener*>(&doing),
          static_cast<IQBXIpodPlayerListener*>(&others[1])})
        desk.player.AddListener(listener);
    TwoEvents(desk);
    ExpectCounts({others[0].received, doing.received, others[1].received}, {2, 1, 2});
    desk.ExpectAlive();
}

// The others come before and after it in address order.
void RemovesAnother(const Arguments&)
{
    Desk desk;
    struct
    {
        Counter before;
        Doing doing{[] {}};
        Counter behind;
    } row;
    row.doing = Doing(
        [&]
        {
            desk.player.RemoveListener(&row.before);
            desk.player.RemoveListener(&row.behind);
        });
    desk.player.AddListener(&row.before);
    desk.player.AddListener(&row.doing);
    desk.player.AddListener(&row.behind);
    TwoEvents(desk);
    ExpectCounts({row.before.received, row.doing.received, row.behind.received}, {1, 2, 0});
    desk.ExpectAlive();
}

// A listener later in the order receives the current event, an earlier one does not.
void AddsAnother(const Arguments&)
{
    Desk desk;
    struct
    {
        Counter before;
        Doing doing{[] {}};
        Counter behind;
    } row;
    row.doing = Doing(
        [&]
        {
            desk.player.AddListener(&row.before);
            desk.player.AddListener(&row.behind);
        });
    desk.player.AddListener(&row.doing);
    TwoEvents(desk);
    ExpectCounts({row.before.received, row.doing.received, row.behind.received}, {1, 2, 2});
    desk.ExpectAlive();
}

class Thrower : public IQBXIpodPlayerListener
{
public:
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { throw std::runtime_error("listener"); }
};

// The exception propagates and the lock is released: another thread can acquire it.
void ThrowsThroughTheOperation(const Arguments&)
{
    Desk desk;
    Thrower thrower;
    desk.player.AddListener(&thrower);
    bool passed = false;
    try
    {
        desk.player.OnPlayStatusChanged(IPOD_PLAY_STATUS_PLAYING);
    }
    catch (const std::runtime_error&)
    {
        passed = true;
    }
    Expect(passed, "the exception passes");
    std::thread other([&] { desk.player.LockListener(), desk.player.UnlockListener(); });
    other.join();
    desk.player.RemoveListener(&thrower);
    desk.ExpectAlive();
}

// An exception from a callback propagates through GLib's frames to the code that runs the loop.
void ThrowsOutOfTheLoop(const Arguments&)
{
    Desk desk;
    Thrower thrower;
    desk.player.AddListener(&thrower);
    desk.service.Emit("OnPlayStatusChanged", "(1,)");
    bool passed = false;
    try
    {
        test::RunLoopFor(std::chrono::milliseconds(500));
    }
    catch (const std::runtime_error&)
    {
        passed = true;
    }
    Expect(passed, "the exception reaches whoever runs the loop");
    std::thread other([&] { desk.player.LockListener(), desk.player.UnlockListener(); });
    other.join();
    desk.player.RemoveListener(&thrower);
    desk.ExpectAlive();
}

// Events are queued meanwhile and arrive afterwards.
void Blocks(const Arguments&)
{
    Desk desk;
    Doing doing([] { std::this_thread::sleep_for(std::chrono::milliseconds(300)); });
    desk.player.AddListener(&doing);
    for (int i = 0; i < 100; ++i) desk.service.EmitBody("OnPlayProgressChange", g_variant_new("(ii)", i, 100));
    Expect(test::PassBarrier(desk.service), "signals pass");
    Expect(doing.received == 100 && doing.outOfTurn == 0, "each event arrives once and in order");
    desk.ExpectAlive();
}

void CallsACommand(const Arguments&)
{
    Desk desk;
    int answer = 0;
    Doing doing([&] { answer = desk.player.GetPlayStatus(); });
    desk.player.AddListener(&doing);
    TwoEvents(desk);
    Expect(answer == 77 && doing.received == 2, "the command is answered inside the callback");
    desk.ExpectAlive();
}

void DestroyedWithEventsInFlight(const Arguments&)
{
    Desk desk;
    Counter counter;
    desk.player.AddListener(&counter);
    for (int i = 0; i < 1000; ++i) desk.service.EmitBody("OnPlayProgressChange", g_variant_new("(ii)", i, 1000));
    QBX_DestroyIpodPlayer();
    Expect(test::PassBarrier(desk.service), "signals pass");
    Expect(counter.received == 0, "events for the destroyed player are dropped");
    ExpectAlive(Connected());
}

void DestroyedAndBuiltAgain(const Arguments& arguments)
{
    const test::PrivateBus bus;
    test::FakeService service;
    AnswerLiveness(service);
    for (int i = std::stoi(arguments.at(0)); i > 0; --i)
    {
        Counter counter;
        Connected().AddListener(&counter);
        service.Emit("OnPlayProgressChange", "(0, 1)");
        Expect(test::PassBarrier(service) && counter.received == 1, "the event arrives once");
        QBX_DestroyIpodPlayer();
    }
    ExpectAlive(Connected());
}

void CommandsBeforeInitInstance(const Arguments&)
{
    const test::PrivateBus bus;
    test::FakeService service;
    AnswerLiveness(service);
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    std::vector<std::string> list;
    Expect(player->GetShuffleMode() == 255, "failure value of GetShuffleMode");
    Expect(!player->Next(), "failure value of Next");
    Expect(player->GetPlayingListItems(0, 9, list) == 0, "failure value of GetPlayingListItems");
    ExpectText("details", player->GetCurrentMediaInfo().text1, "");
    ExpectAlive(Connected());
}

// Each thread requests its own number, so that swapped replies are detected.
void CommandsFromFourThreads(const Arguments& arguments)
{
    Desk desk;
    const int calls = std::stoi(arguments.at(0));
    desk.service.Answer("GetShuffleMode", "(1,)");
    desk.service.Answer("GetRepeatMode", "(2,)");
    desk.service.Answer("GetPlayingTrackIdx", "(3,)");
    std::atomic<int> wrong{0};
    auto ask = [&](int (IQBXIpodPlayer::*command)(), int expected)
    {
        for (int i = 0; i < calls; ++i)
            if ((desk.player.*command)() != expected) ++wrong;
    };
    const auto start = Clock::now();
    std::thread threads[] = {
        std::thread(ask, &IQBXIpodPlayer::GetShuffleMode, 1), std::thread(ask, &IQBXIpodPlayer::GetRepeatMode, 2),
        std::thread(ask, &IQBXIpodPlayer::GetPlayingTrackIdx, 3), std::thread(ask, &IQBXIpodPlayer::GetPlayStatus, 77)};
    for (std::thread& thread : threads) thread.join();
    Figure("calls_per_second", 4 * calls / SecondsSince(start));
    Expect(wrong == 0, "every thread gets its own answers");
    desk.ExpectAlive();
}

void TwoApplications(const Arguments& arguments)
{
    const int events = std::stoi(arguments.at(0));
    Desk desk;
    HelperProcess second(HelperProcess::Own({"second-application", arguments.at(0)}));
    second.WaitFor("ready");
    Counter counter;
    desk.player.AddListener(&counter);
    for (int i = 0; i < events; ++i) desk.service.EmitBody("OnPlayProgressChange", g_variant_new("(ii)", i, events));
    Expect(test::PassBarrier(desk.service), "signals pass");
    second.WaitFor("counted " + std::to_string(events));
    second.WaitFor("alive");
    Expect(counter.received == events && counter.outOfTurn == 0, "the first application gets each event once");
    desk.ExpectAlive();
}

bool Fits(IQBXIpodPlayer& player, std::size_t size)
{
    std::vector<unsigned char> payload(size, 0x5a);
    try
    {
        return player.EapWrite(1, payload) == 1;
    }
    catch (const boost::interprocess::bad_alloc&)
    {
        return false;
    }
}

void LargestPayload(const Arguments&)
{
    Desk desk;
    desk.service.Answer("EapWrite", "(true,)");
    std::size_t largest = 0;
    for (std::size_t tooLarge = kBufferSegmentSize + 1; tooLarge - largest > 1;)
    {
        const std::size_t middle = largest + (tooLarge - largest) / 2;
        (Fits(desk.player, middle) ? largest : tooLarge) = middle;
    }
    Figure("largest_payload", static_cast<double>(largest));
    Expect(largest > kBufferSegmentSize / 4, "a good part of the segment");
    const std::size_t calls = desk.service.Calls().size();
    Expect(Fits(desk.player, largest), "the largest payload is sent");
    Expect(!Fits(desk.player, largest + 1), "one byte more throws");
    Expect(desk.service.Calls().size() == calls + 1, "and makes no call");
    desk.ExpectAlive();
}

void Unloaded(const Arguments& arguments)
{
    const test::PrivateBus bus;
    test::FakeService service;
    AnswerLiveness(service);
    HelperProcess application({arguments.at(0), arguments.at(1)});
    application.WaitFor("closed");
    service.Emit("OnPlayStatusChanged", "(2,)");
    application.WaitFor("event 2");
    application.WaitFor("alive");
    Expect(application.Wait() == 0, "the application ends well");
    Say("alive");
}
// Its child process hangs instead.
void DoctorBesideAHeldLock(const Arguments& arguments)
{
    const test::PrivateBus bus;
    const test::FakeService service;
    HelperProcess holder(HelperProcess::Own({"hold-the-names"}));
    holder.WaitFor("holds");
    holder.Kill();
    const auto start = Clock::now();
    HelperProcess doctor({arguments.at(0), "doctor"});
    for (std::string line = doctor.ReadLine(); !line.empty(); line = doctor.ReadLine()) Say(line);
    Expect(WEXITSTATUS(doctor.Wait()) == 5, "the exit code of shared memory");
    Figure("seconds", SecondsSince(start));
    Expect(SecondsSince(start) < 8, "the doctor does not hang");
}
}  // namespace

std::vector<Case> ApplicationCases()
{
    return {{"removes-itself", RemovesItself},
            {"removes-another", RemovesAnother},
            {"adds-another", AddsAnother},
            {"throws-through-the-operation", ThrowsThroughTheOperation},
            {"throws-out-of-the-loop", ThrowsOutOfTheLoop},
            {"blocks", Blocks},
            {"calls-a-command", CallsACommand},
            {"destroyed-with-events-in-flight", DestroyedWithEventsInFlight},
            {"destroyed-and-built-again", DestroyedAndBuiltAgain},
            {"commands-before-init-instance", CommandsBeforeInitInstance},
            {"commands-from-four-threads", CommandsFromFourThreads},
            {"two-applications", TwoApplications},
            {"largest-payload", LargestPayload},
            {"unloaded", Unloaded},
            {"doctor-beside-a-held-lock", DoctorBesideAHeldLock}};
}
}  // namespace faults
