/// @file
/// An application and a service that the case controls.
#pragma once

#include <IQBXIpodPlayer.h>

#include <chrono>
#include <memory>

#include "case.h"
#include "support/fake_service.h"
#include "support/private_bus.h"
#include "support/recording_listener.h"
#include "support/run_loop.h"

namespace faults
{
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start);

/// The bytes that this process currently has allocated.
std::size_t BytesInUse();

/// Counts progress events, and those out of order: positions count up from 0.
class Counter : public IQBXIpodPlayerListener
{
public:
    void OnPlayProgressChange(int pos, int duration) override;

    int received = 0;
    int outOfTurn = 0;
};

/// The initialized player; an expectation fails if that is not possible.
IQBXIpodPlayer& Connected();

/// The liveness call, which the service must answer with 77.
void ExpectAlive(IQBXIpodPlayer& player);

/// The bus that a desk uses.
enum class Bus
{
    Private,        ///< a private one that accepts messages of up to 32 MiB
    OfEnvironment,  ///< the one in the environment
};

/// A bus, a service on it, and the player with a listener.
class Desk
{
public:
    explicit Desk(Bus kind = Bus::Private);

    /// Sends a signal and runs the main loop until the client has received it. Consumes a floating reference.
    void Deliver(const std::string& signal, GVariant* body);

    /// Returns the events so far in one line, and clears them.
    std::string TakeEvents();

    void ExpectAlive() { faults::ExpectAlive(player); }

    const std::unique_ptr<test::PrivateBus> bus;
    test::FakeService service;
    test::Journal journal;
    test::RecordingListener listener{journal, "app"};
    IQBXIpodPlayer& player;
};

/// Makes the service answer the liveness call.
void AnswerLiveness(test::FakeService& service);
}  // namespace faults
