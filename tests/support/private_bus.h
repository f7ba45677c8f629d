/// @file
/// Session buses for one test process.
#pragma once

#include <gio/gio.h>

namespace test
{
/// A session bus of the test's own; the environment points to it.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Ends the bus daemon. The process outlives it.
    void Stop();

private:
    GTestDBus* m_daemon;
    bool m_running = true;
};

/// A session bus that is not there: from now on the environment points to an address where nobody listens.
class NoBus
{
public:
    NoBus();
};
}  // namespace test
