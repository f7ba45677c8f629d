#include <IQBXIpodPlayer.h>
#include <ipodkit/accessory.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "kit/kit_test.h"
#include "kit/ticker.h"

namespace test
{
namespace
{
class AccessoryTest : public ReadyTest
{
protected:
    AccessoryTest()
    {
        service.On("EapWrite",
                   [this](GVariant* arguments)
                   {
                       guint16 number = 0;
                       g_variant_get(arguments, "(q)", &number);
                       const Bytes bytes = shared.Bytes("VecEapWriteBufferShareMemory");
                       const std::lock_guard<std::mutex> lock(mutex);
                       written[number].insert(written[number].end(), bytes.begin(), bytes.end());
                       largest = std::max(largest, bytes.size());
                       return Reply::With(accepting ? "(true,)" : "(false,)");
                   });
    }

    // Its thread uses the members.
    ~AccessoryTest() override { service.Vanish(); }

    AccessorySessionPtr OpenSession(AccessoryPort& port, int number)
    {
        AccessorySessionPtr opened;
        const Subscription watching = port.OnOpened("test", [&](const AccessorySessionPtr& peer) { opened = peer; });
        service.Emit("OnIpodStartEapSession", "(3, " + std::to_string(number) + ")");
        EXPECT_TRUE(RunLoopUntil([&] { return opened != nullptr; }));
        return opened;
    }

    void Receive(int lowByte, const Bytes& bytes)
    {
        shared.SetBytes("VecEapReadBufferShareMemory", bytes);
        service.Emit("OnIpodReceiveEapData", "(" + std::to_string(lowByte) + ",)");
        Settle(service);
    }

    // The notifications of a session, in order.
    Subscription Record(const AccessorySessionPtr& peer, std::vector<std::string>& received)
    {
        return peer->OnData(
            "record", [&received](const Result<Bytes>& data)
            { received.push_back(data ? std::string(data->begin(), data->end()) : Name(data.error().kind)); });
    }

    std::mutex mutex;
    std::map<int, Bytes> written;
    std::size_t largest = 0;
    std::atomic<bool> accepting{true};
};

TEST_F(AccessoryTest, SessionsCloseWithTheirDevice)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 300);
    service.Answer("GetDeviceAmount", "(0,)");

    Emit("OnIpodDeviceStatusChange", "(1, false)");

    EXPECT_THAT(session->State()->accessorySessions, IsEmpty());
    EXPECT_THAT(port.Sessions(), IsEmpty());
    EXPECT_FALSE(peer->IsOpen());
}

TEST_F(AccessoryTest, APortCreatedWithoutAServiceHasNoSessions)
{
    Emit("OnIpodStartEapSession", "(3, 300)");
    std::optional<std::size_t> listed;
    const Subscription watching = session->OnConnection("lost",
                                                        [&](const Connection& connection)
                                                        {
                                                            if (connection.phase != Phase::Lost) return;
                                                            const AccessoryPort port(*session);
                                                            listed = port.Sessions().size();
                                                        });
    RunLoopFor(5ms);

    service.Vanish();

    ASSERT_TRUE(RunLoopUntil([&] { return listed.has_value(); }));
    EXPECT_EQ(*listed, 0U);
}

TEST_F(AccessoryTest, ASessionIsOpenUntilTheServiceClosesIt)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 300);
    bool closed = false;
    const Subscription watching = peer->OnClosed("test", [&closed] { closed = true; });
    EXPECT_EQ(peer->Number(), 300);
    EXPECT_EQ(peer->Protocol(), 3);
    EXPECT_TRUE(peer->IsOpen());

    service.Emit("OnIpodStopEapSession", "(300,)");

    EXPECT_TRUE(RunLoopUntil([&] { return closed; }));
    EXPECT_FALSE(peer->IsOpen());
    EXPECT_FALSE(peer->HasRoomFor(1));
    EXPECT_EQ(KindOf(Completed(peer->Write({1}))), ErrorKind::Cancelled);
    EXPECT_THAT(port.Sessions(), IsEmpty());
}

TEST_F(AccessoryTest, BytesReachASessionWhoseOpeningWasMissed)
{
    AccessoryPort port(*session);

    EXPECT_TRUE(Completed(port.WriteTo(77, {1, 2, 3})));
    EXPECT_TRUE(Completed(port.WriteTo(77, {4})));

    EXPECT_THAT(written[77], ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(port.Sessions(), IsEmpty());
}

TEST_F(AccessoryTest, BytesByNumberAreQueuedWithThoseOfTheSession)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 300);
    std::move(peer->Write({1, 2})).Start([](const Result<void>&) {});

    EXPECT_TRUE(Completed(port.WriteTo(300, {3})));

    EXPECT_THAT(written[300], ElementsAre(1, 2, 3));
}

TEST_F(AccessoryTest, BytesForASessionThatTheServiceLacksAreRefused)
{
    accepting = false;
    AccessoryPort port(*session);

    EXPECT_EQ(KindOf(Completed(port.WriteTo(77, {1}))), ErrorKind::Refused);
}

TEST_F(AccessoryTest, AWriteDoesNotWaitForOneOfAHungServiceThatWasReplaced)
{
    service.Hold("EapWrite");
    AccessoryPort port(*session);
    std::optional<Result<void>> hung;
    port.WriteTo(77, {1}).Start([&hung](const Result<void>& done) { hung = done; });
    RunLoopFor(5ms);
    FakeService next(FakeService::Takeover::Yes);
    AnswerState(next);
    next.Answer("EapWrite", "(true,)");
    Ready(2);

    EXPECT_TRUE(Completed(port.WriteTo(77, {2}).Within(1s)));
    ASSERT_TRUE(hung);
    EXPECT_EQ(KindOf(*hung), ErrorKind::ServiceLost);
}

TEST_F(AccessoryTest, AWriteByNumberEndsWithItsPort)
{
    service.Hold("EapWrite");
    auto port = std::make_unique<AccessoryPort>(*session);
    const Pending result(port->WriteTo(77, {1}));
    RunLoopFor(5ms);

    port.reset();

    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
}

TEST_F(AccessoryTest, ReceivedBytesReachTheMatchingSession)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr one = OpenSession(port, 300);
    const AccessorySessionPtr other = OpenSession(port, 301);
    std::vector<std::string> toOne;
    std::vector<std::string> toOther;
    const Subscription first = Record(one, toOne);
    const Subscription second = Record(other, toOther);

    Receive(300 & 0xFF, {'h', 'i'});
    Receive(99, {'n', 'o'});

    EXPECT_THAT(toOne, ElementsAre("hi"));
    EXPECT_THAT(toOther, IsEmpty());
    EXPECT_EQ(CountLogLines("80 LogWarning: received bytes for accessory session 99, which is not open"), 1U);
}

TEST_F(AccessoryTest, AmbiguousBytesAreAnErrorForBothSessions)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr one = OpenSession(port, 44);
    const AccessorySessionPtr other = OpenSession(port, 300);
    std::vector<std::string> toOne;
    std::vector<std::string> toOther;
    const Subscription first = Record(one, toOne);
    const Subscription second = Record(other, toOther);

    Receive(44, {'h', 'i'});

    EXPECT_THAT(toOne, ElementsAre("Ambiguous"));
    EXPECT_THAT(toOther, ElementsAre("Ambiguous"));
}

TEST_F(AccessoryTest, LargeWritesOfTwoSessionsArriveCompletelyAndInOrder)
{
    AccessoryOptions small;
    small.chunk = 1000;
    AccessoryPort port(*session, small);
    const AccessorySessionPtr one = OpenSession(port, 1);
    const AccessorySessionPtr other = OpenSession(port, 2);
    Bytes bytes(12345);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 7);
    int done = 0;
    const auto count = [&done](const Result<void>& result) { done += result ? 1 : 100; };

    one->Write(bytes).Start(count);
    other->Write(bytes).Start(count);
    one->Write({1, 2}).Start(count);

    EXPECT_TRUE(RunLoopUntil([&] { return done == 3; }));
    EXPECT_EQ(written[2], bytes);
    bytes.insert(bytes.end(), {1, 2});
    EXPECT_EQ(written[1], bytes);
    EXPECT_EQ(largest, 1000U);
    EXPECT_EQ(one->Waiting(), 0U);
}

TEST_F(AccessoryTest, AcceptsDataUpToTheHighWaterMarkAndReportsDraining)
{
    AccessoryOptions small;
    small.highWater = 1000;
    AccessoryPort port(*session, small);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    bool drained = false;
    const Subscription watching = peer->OnDrained("test", [&drained] { drained = true; });
    const auto ignore = [](const Result<void>&) {};

    EXPECT_TRUE(peer->HasRoomFor(5000));
    peer->Write(Bytes(5000)).Start(ignore);
    EXPECT_FALSE(peer->HasRoomFor(1));
    EXPECT_EQ(KindOf(Completed(peer->Write(Bytes(1)))), ErrorKind::Busy);
    EXPECT_TRUE(RunLoopUntil([&] { return drained; }));

    peer->Write(Bytes(900)).Start(ignore);
    EXPECT_TRUE(peer->HasRoomFor(100));
    peer->Write(Bytes(100)).Start(ignore);
    EXPECT_FALSE(peer->HasRoomFor(1));
}

TEST_F(AccessoryTest, ARefusalFailsAllAcceptedWrites)
{
    accepting = false;
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    std::vector<ErrorKind> kinds;
    const auto record = [&kinds](const Result<void>& result) { kinds.push_back(KindOf(result)); };

    peer->Write({1}).Start(record);
    peer->Write({2}).Start(record);

    EXPECT_TRUE(RunLoopUntil([&] { return kinds.size() == 2; }));
    EXPECT_THAT(kinds, testing::Each(ErrorKind::Refused));
    EXPECT_EQ(written[1], Bytes{1});
    accepting = true;
    bool again = false;
    peer->Write({3}).Start([&again](const Result<void>& result) { again = result.has_value(); });
    EXPECT_TRUE(RunLoopUntil([&] { return again; }));
}

TEST_F(AccessoryTest, ReportsDrainingAfterAFailure)
{
    accepting = false;
    AccessoryOptions small;
    small.highWater = 1000;
    AccessoryPort port(*session, small);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    std::vector<std::string> received;
    const auto failed = [&received](const Result<void>& result) { received.push_back(Name(KindOf(result))); };
    const Subscription watching = peer->OnDrained("test", [&received] { received.push_back("drained"); });

    peer->Write(Bytes(5000)).Start(failed);

    EXPECT_TRUE(RunLoopUntil([&] { return received.size() == 2; }));
    EXPECT_THAT(received, ElementsAre("Refused", "drained"));
}

TEST_F(AccessoryTest, AClosedSessionDoesNotReportDraining)
{
    service.Hold("EapWrite");
    AccessoryOptions small;
    small.highWater = 1000;
    AccessoryPort port(*session, small);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    bool closed = false;
    bool drained = false;
    const Subscription closing = peer->OnClosed("test", [&closed] { closed = true; });
    const Subscription watching = peer->OnDrained("test", [&drained] { drained = true; });
    peer->Write(Bytes(5000)).Start([](const Result<void>&) {});

    service.Emit("OnIpodStopEapSession", "(1,)");

    EXPECT_TRUE(RunLoopUntil([&] { return closed; }));
    EXPECT_FALSE(drained);
}

TEST_F(AccessoryTest, AChunkThatWouldExhaustTheSegmentIsRejectedInAdvance)
{
    for (const std::size_t size : {std::size_t{600} << 10, std::size_t{2} << 20})
    {
        AccessoryOptions large;
        large.chunk = size;
        AccessoryPort port(*session, large);
        const AccessorySessionPtr peer = OpenSession(port, 1);
        const std::size_t free = shared.Buffers().get_free_memory();
        const std::size_t room = RoomForAccessoryBytes();

        const Error error = Completed(peer->Write(Bytes(size))).error();

        EXPECT_EQ(error.kind, ErrorKind::NoSharedMemory);
        EXPECT_EQ(error.reason, "the write buffer has no room for " + std::to_string(size) +
                                    " bytes at once; at most " + std::to_string(room) + " fit");
        EXPECT_EQ(shared.Buffers().get_free_memory(), free);
        EXPECT_THAT(written, IsEmpty());
    }
}

TEST_F(AccessoryTest, TheLargestChunkLeavesSpaceForAReplyAndTheNextChunk)
{
    constexpr std::size_t kBookkeeping = 64;
    const std::size_t size = RoomForAccessoryBytes() - kBookkeeping;
    AccessoryOptions large;
    large.chunk = size;
    large.highWater = 3 * size;
    AccessoryPort port(*session, large);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    int done = 0;
    const auto count = [&done](const Result<void>& result) { done += result ? 1 : 100; };

    EXPECT_GT(size, 300'000U);
    for (const std::size_t each : {size / 2, size, size}) peer->Write(Bytes(each)).Start(count);

    EXPECT_TRUE(RunLoopUntil([&] { return done == 3; }));
    EXPECT_EQ(largest, size);
    shared.SetBytes("VecEapReadBufferShareMemory", Bytes(size));
}

// The service shares the segment, so its free memory must not depend on who fills the buffer.
TEST_F(AccessoryTest, TheBufferGrowsAsIfBytesWereAppendedOneByOne)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    const boost::interprocess::remove_shared_memory_on_destroy removed("Reference");
    QBXSharedSegment reference(boost::interprocess::create_only, "Reference", kBufferSegmentSize);
    QBXByteVector* appended = nullptr;
    for (const char* name : {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory",
                             "VecEapReadBufferShareMemory", "VecEapWriteBufferShareMemory"})
        appended = reference.construct<QBXByteVector>(name)(reference.get_segment_manager());
    const std::size_t used = reference.get_free_memory() - shared.Buffers().get_free_memory();

    for (const std::size_t size : {1U, 100U, 5000U, 5001U, 16000U, 300U})
    {
        appended->clear();
        for (std::size_t i = 0; i < size; ++i) appended->push_back('x');
        bool done = false;
        peer->Write(Bytes(size)).Start([&done](const Result<void>& result) { done = result.has_value(); });
        EXPECT_TRUE(RunLoopUntil([&] { return done; }));

        EXPECT_EQ(shared.Buffer("VecEapWriteBufferShareMemory").capacity(), appended->capacity()) << size;
        EXPECT_EQ(reference.get_free_memory() - shared.Buffers().get_free_memory(), used) << size;
    }
}

// Everything after the first page becomes read-only in the child, so the allocation faults while it holds the lock.
void DieWhileAllocatingIn(QBXSharedSegment& segment)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        std::signal(SIGSEGV, [](int) { _exit(0); });
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        const auto begin = reinterpret_cast<std::uintptr_t>(segment.get_address()) / page * page;
        mprotect(reinterpret_cast<void*>(begin + page), segment.get_size() - page, PROT_READ);
        segment.allocate(segment.get_size() / 2);
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child did not die at the expected point";
}

// Waiting for the lock times out after ten seconds.
TEST_F(AccessoryTest, ALockOfADeadProcessFailsTheWriteAndDoesNotBlockTheLoop)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    DieWhileAllocatingIn(shared.Buffers());
    const Ticker ticker;

    const Pending result(peer->Write(Bytes(5000)));

    EXPECT_EQ(KindOf(result.Get()), ErrorKind::NoSharedMemory);
    EXPECT_LE(ticker.Longest(), 1s);
    EXPECT_THAT(result.Get().error().reason, HasSubstr("locked by a process that died"));
}

TEST_F(AccessoryTest, TheSessionMayBeDestroyedWhileTheBufferGrows)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    std::vector<ErrorKind> kinds;

    peer->Write(Bytes(16000)).Start([&kinds](const Result<void>& done) { kinds.push_back(KindOf(done)); });
    session.reset();

    RunLoopFor(100ms);
    EXPECT_THAT(kinds, ElementsAre(ErrorKind::Cancelled));
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(AccessoryTest, TheCoreAcceptsTheLargestWriteAndLeavesSpaceForAReply)
{
    ASSERT_TRUE(QBX_GetIpodPlayer()->InitInstance());
    Bytes most(RoomForAccessoryBytes());

    EXPECT_EQ(QBX_GetIpodPlayer()->EapWrite(1, most), 1);

    shared.SetBytes("VecEapReadBufferShareMemory", most);
}

TEST_F(AccessoryTest, SessionsEndWithTheService)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    service.Hold("EapWrite");
    const Pending result(peer->Write({1}));

    service.Vanish();

    ASSERT_TRUE(RunLoopUntil([&] { return result.Done() && !peer->IsOpen(); }));
    EXPECT_THAT(KindOf(result.Get()), testing::AnyOf(ErrorKind::Cancelled, ErrorKind::ServiceLost));
}

TEST_F(AccessoryTest, AccessorySessionsEndWithTheirSession)
{
    AccessoryPort port(*session);
    const AccessorySessionPtr peer = OpenSession(port, 1);
    service.Hold("EapWrite");
    std::vector<std::string> received;
    const Subscription closing = peer->OnClosed("test", [&received] { received.push_back("closed"); });
    peer->Write({1}).Start([&received](const Result<void>& done) { received.push_back(Name(KindOf(done))); });

    session.reset();

    EXPECT_THAT(received, ElementsAre("Cancelled", "closed"));
    EXPECT_FALSE(peer->IsOpen());
    EXPECT_FALSE(peer->HasRoomFor(1));
    EXPECT_EQ(KindOf(Completed(peer->Write({2}))), ErrorKind::Cancelled);
    EXPECT_THAT(port.Sessions(), IsEmpty());
}

TEST_F(AccessoryTest, APortCreatedLaterKnowsTheOpenSessions)
{
    Emit("OnIpodStartEapSession", "(3, 300)");

    const AccessoryPort port(*session);

    ASSERT_EQ(port.Sessions().size(), 1U);
    EXPECT_EQ(port.Sessions().front()->Number(), 300);
}

TEST_F(AccessoryTest, ACallbackMayDestroyThePort)
{
    auto port = std::make_unique<AccessoryPort>(*session);
    const Subscription watching = port->OnOpened("end", [&](const AccessorySessionPtr&) { port.reset(); });

    Emit("OnIpodStartEapSession", "(3, 300)");

    EXPECT_EQ(port, nullptr);
}
}  // namespace
}  // namespace test
