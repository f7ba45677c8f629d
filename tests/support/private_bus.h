/// @file
/// Session buses for one test process.
#pragma once

#include <gio/gio.h>

namespace test
{
/// A private session bus; the environment points to it.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Stops the bus daemon without ending the process.
    void Stop();

private:
    GTestDBus* m_daemon;
    bool m_running = true;
};

/// A missing session bus: makes the environment point to an address without a listener.
class NoBus
{
public:
    NoBus();
};
}  // namespace test
