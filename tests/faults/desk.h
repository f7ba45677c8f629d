/// @file
/// An application beside a service that the case controls.
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

/// What this process has allocated and not released.
std::size_t BytesInUse();

/// Counts the progress events, and those that came out of turn: positions count up from 0.
class Counter : public IQBXIpodPlayerListener
{
public:
    void OnPlayProgressChange(int pos, int duration) override;

    int received = 0;
    int outOfTurn = 0;
};

/// The player, initialised; an expectation when that fails.
IQBXIpodPlayer& Connected();

/// The liveness call: the service at the other end must answer it with 77.
void ExpectAlive(IQBXIpodPlayer& player);

/// Which bus a desk stands on.
enum class Bus
{
    Private,        ///< one of its own, which takes messages of up to 32 MiB
    OfEnvironment,  ///< the one that the environment points to
};

/// A bus, a service on it, and the player with a listener.
class Desk
{
public:
    explicit Desk(Bus kind = Bus::Private);

    /// Sends a signal and runs the main loop until the client has had it. Takes a floating reference.
    void Deliver(const std::string& signal, GVariant* body);

    /// Deliver() with a body in text form.
    void DeliverText(const std::string& signal, const std::string& body);

    /// The events so far, in one line; forgets them.
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
