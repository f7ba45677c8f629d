#include "desk.h"

#include <malloc.h>

#include "support/signal_barrier.h"
#include "support/text.h"

namespace faults
{
double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::size_t BytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void Counter::OnPlayProgressChange(int pos, int)
{
    if (pos != received) ++outOfTurn;
    ++received;
}

IQBXIpodPlayer& Connected()
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    Expect(player->InitInstance(), "InitInstance() finds the service");
    return *player;
}

void ExpectAlive(IQBXIpodPlayer& player)
{
    const int answer = player.GetPlayStatus();
    Expect(answer == 77, "the liveness call is answered with 77, not " + std::to_string(answer));
    if (answer == 77) Say("alive");
}

void AnswerLiveness(test::FakeService& service)
{
    service.Answer("GetPlayStatus", "(77,)");
}

Desk::Desk(Bus kind) : bus(kind == Bus::Private ? std::make_unique<test::PrivateBus>() : nullptr), player(Connected())
{
    AnswerLiveness(service);
    player.AddListener(&listener);
}

void Desk::Deliver(const std::string& signal, GVariant* body)
{
    service.EmitBody(signal, body);
    Expect(test::PassBarrier(service), "signals pass");
}

std::string Desk::TakeEvents()
{
    const std::string events = test::Join(journal, "; ");
    journal.clear();
    return events;
}
}  // namespace faults
