// The peer processes: a service, a second application, lock holders, and writers into segments.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <iostream>
#include <random>

#include "desk.h"
#include "support/shared_vectors.h"

namespace faults
{
namespace
{
namespace bip = boost::interprocess;

// "emit N": N progress events, numbered from 0.
void Emit(test::FakeService& service, int count)
{
    for (int i = 0; i < count; ++i) service.EmitBody("OnPlayProgressChange", g_variant_new("(ii)", i, count));
}

// Executes commands until end of input. GetDeviceAmount is never answered; "held" reports its arrival.
void Serve(const Arguments&)
{
    test::FakeService service;
    AnswerLiveness(service);
    service.React("GetDeviceAmount", [](GDBusMethodInvocation*) { Say("held"); });
    Say("ready");
    std::string word;
    for (int count = 0; std::cin >> word >> count;) Emit(service, count);
}

// To be started by the bus: fails the first time, serves later.
void ServeAtTheSecondTry(const Arguments& arguments)
{
    const std::string& mark = arguments.at(0);
    const bool first = access(mark.c_str(), F_OK) != 0;
    if (first)
    {
        std::fclose(std::fopen(mark.c_str(), "w"));
        std::_Exit(3);
    }
    alarm(8);
    const test::FakeService service;
    test::RunLoopFor(std::chrono::seconds(8));
}

// A separate application: counts events up to @p COUNT.
void SecondApplication(const Arguments& arguments)
{
    const int expected = std::stoi(arguments.at(0));
    Counter counter;
    IQBXIpodPlayer& player = Connected();
    player.AddListener(&counter);
    Say("ready");
    test::RunLoopUntil([&] { return counter.received >= expected; }, std::chrono::seconds(20));
    test::RunLoopFor(std::chrono::milliseconds(100));
    Say("counted " + std::to_string(counter.received));
    ExpectAlive(player);
}

// Holds the lock of the names until it is killed.
void HoldTheNames(const Arguments&)
{
    test::SharedVectors vectors;
    auto stay = []
    {
        Say("holds");
        pause();
    };
    vectors.Lists().atomic_func(stay);
}

// Everything after the first page becomes read-only, so the allocation faults while it holds the memory lock.
void DieWhileAllocating(const Arguments&)
{
    test::SharedVectors vectors;
    vectors.Buffer("VecEapWriteBufferShareMemory");
    QBXSharedSegment& segment = vectors.Buffers();
    const auto page = bip::mapped_region::get_page_size();
    auto* const begin = static_cast<char*>(segment.get_address());
    auto* const firstPage = reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(begin) / page * page);
    mprotect(firstPage + page, segment.get_size() / page * page, PROT_READ);
    segment.allocate(segment.get_free_memory() / 2);
    Expect(false, "the allocation faults");
}

static_assert(sizeof(QBXStringPageVector) == 4 * sizeof(std::size_t), "allocator, pointer, size, capacity");

// Rewrites pointer, size, and capacity of a vector continuously until it is killed.
void Scribble(const Arguments&)
{
    test::SharedVectors vectors;
    volatile std::size_t* const header =
        reinterpret_cast<volatile std::size_t*>(&vectors.List("VecPlayingListShareMemory")) + 1;
    std::mt19937_64 random(5);
    Say("scribbles");
    for (;;)
    {
        const auto number = static_cast<std::size_t>(random());
        header[0] = number % 3 == 0 ? number : number % (2 * kListSegmentSize);
        header[1] = number % 5 == 0 ? number : number % 30000;
        header[2] = number >> 7;
    }
}
}  // namespace

std::vector<Case> Helpers()
{
    return {{"serve", Serve},
            {"serve-at-the-second-try", ServeAtTheSecondTry},
            {"second-application", SecondApplication},
            {"hold-the-names", HoldTheNames},
            {"die-while-allocating", DieWhileAllocating},
            {"scribble", Scribble}};
}
}  // namespace faults
