/// @file
/// Keeps the tests away from the segments of this machine: their names are the same for every process.
#pragma once

namespace test
{
/// Gives the process a /dev/shm of its own. Where that is not allowed, runs one test process at a time, fails beside
/// segments that another program made, and removes those of the test. `with-private-shm` does the same for scripts. A
/// test that is killed leaves its segments, and the boot's ID in the lock: the next one removes them.
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
    int m_lock = -1;
};
}  // namespace test
