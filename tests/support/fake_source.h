/// @file
/// Replaces the audio-source manager: the test program defines QBXSource's operations itself.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace test
{
/// The manager's replies and recorded calls. One per process, without a lock.
struct FakeSource
{
    int requestResult = 1;           ///< what Request() returns
    std::set<int> active;            ///< sources for which IsActived() is true
    std::function<void()> released;  ///< runs in Release(), if there is one
    std::vector<std::string> calls;  ///< "Request(10, 0)", in order
};

FakeSource& Sources();
}  // namespace test
