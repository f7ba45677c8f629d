/// @file
/// Keeps the tests away from the segments of this machine: their names are the same for every process.
#pragma once

namespace test
{
/// Gives the process a /dev/shm of its own. Where that is not allowed, lets one test process run at a time,
/// refuses to run beside segments that somebody else made, and removes those that the test made.
///
/// Construct before the first thread starts. Exits the process with a message when it has to refuse.
class PrivateSharedMemory
{
public:
    PrivateSharedMemory();
    ~PrivateSharedMemory();
    PrivateSharedMemory(const PrivateSharedMemory&) = delete;
    PrivateSharedMemory& operator=(const PrivateSharedMemory&) = delete;

private:
    bool m_ownMount;
};
}  // namespace test
