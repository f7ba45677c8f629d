// Faults in the application itself.
#include <sys/wait.h>

#include <atomic>
#include <thread>

#include "desk.h"
#include "helper_process.h"
#include "support/signal_barrier.h"

namespace faults
{
namespace
{
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

// The child process hangs instead.
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
    return {{"destroyed-with-events-in-flight", DestroyedWithEventsInFlight},
            {"commands-from-four-threads", CommandsFromFourThreads},
            {"two-applications", TwoApplications},
            {"unloaded", Unloaded},
            {"doctor-beside-a-held-lock", DoctorBesideAHeldLock}};
}
}  // namespace faults
