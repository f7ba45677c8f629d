/// @file
/// The fixtures of this folder.
#pragma once

#include <IQBXIpodPlayer.h>
#include <gmock/gmock.h>

#include "support/fake_service.h"
#include "support/log_capture.h"
#include "support/private_bus.h"
#include "support/recording_listener.h"
#include "support/run_loop.h"
#include "support/text.h"

namespace test
{
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// Has a listener to add to the player. Checks at the end that every log record has the required file name and lengths.
class ClientTest : public testing::Test
{
protected:
    void TearDown() override;

    Journal journal;
    RecordingListener app{journal, "app"};
};

/// A bus with a service on it.
class ServiceTest : public ClientTest
{
protected:
    /// The player, connected to the service; the log is empty afterwards.
    IQBXIpodPlayer& Connected();

    /// Sends a signal and runs the main loop until the client has received it.
    void Deliver(const std::string& signal, const std::string& body);

    /// The same with a body that may violate the contract. Consumes a floating reference.
    void DeliverBody(const std::string& signal, GVariant* body);

    PrivateBus bus;
    FakeService service;
};

/// A bus without the service.
class NoServiceTest : public ClientTest
{
protected:
    /// The player after an InitInstance() that found no service; the log is empty afterwards.
    IQBXIpodPlayer& Unconnected();

    PrivateBus bus;
};
}  // namespace test
