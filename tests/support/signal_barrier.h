/// @file
/// Waits until every signal sent so far has been delivered, even those without a handler.
#pragma once

#include "support/fake_service.h"

namespace test
{
/// Sends one more signal on the service's connection, which only the test receives, and runs the default main context
/// until it arrives. It travels over the client's session connection, so it arrives after all others. Returns false if
/// it did not arrive.
bool PassBarrier(FakeService& service);
}  // namespace test
