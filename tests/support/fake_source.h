/// @file
/// Takes the place of the audio-source manager: the test program defines QBXSource's operations itself.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace test
{
/// What the manager answers, and what it was asked. One per process, without a lock.
struct FakeSource
{
    int requestResult = 1;           ///< what Request() returns
    std::set<int> active;            ///< sources for which IsActived() is true
    std::function<void()> released;  ///< runs in Release(), if there is one
    std::vector<std::string> calls;  ///< "Request(10, 0)", in order
};

FakeSource& Sources();
}  // namespace test
