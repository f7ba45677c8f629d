/// @file
/// Isolates the tests from the segments of this machine, whose names are the same for every process.
#pragma once

namespace test
{
/// Gives the process a private /dev/shm. Where that is not allowed, runs one test process at a time, fails if segments
/// of another program exist, and removes those of the test. `with-private-shm` does the same for scripts. A killed test
/// leaves its segments, and the boot ID in the lock file: the next test removes them.
///
/// Construct it before the first thread starts. Exits the process with a message on failure.
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
