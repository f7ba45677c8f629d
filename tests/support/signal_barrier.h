/// @file
/// Knowing that every signal sent so far has been delivered, also those that nobody reacts to.
#pragma once

#include "support/fake_service.h"

namespace test
{
/// Sends one more signal, which only the test listens for, on the service's connection, and runs the default main
/// context until it arrives: over the same session connection as the client's, hence after all others.
/// False when it did not arrive.
bool PassBarrier(FakeService& service);
}  // namespace test
