/// @file
/// Runs the application's main loop for as long as a test needs it.
#pragma once

#include <chrono>
#include <functional>

namespace test
{
/// Runs the default main context until @p condition holds. Returns false if it did not within @p limit.
bool RunLoopUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = std::chrono::seconds(20));

/// Runs the default main context for that long, to check that something does not happen.
void RunLoopFor(std::chrono::milliseconds duration);
}  // namespace test
