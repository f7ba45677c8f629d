/// @file
/// Ctrl-Z in a program with threads: the terminal must be given back first, by the thread that uses it.
#pragma once

namespace ctl
{
/// From construction to destruction, the request to suspend arrives on a descriptor instead of suspending. To be
/// constructed before any other thread is, because they inherit that.
class SuspendSignal
{
public:
    SuspendSignal();
    ~SuspendSignal();
    SuspendSignal(const SuspendSignal&) = delete;
    SuspendSignal& operator=(const SuspendSignal&) = delete;

    /// Readable when it was requested.
    int Descriptor() const { return m_descriptor; }

    /// Suspends the program, as requested; returns when it goes on.
    void Obey() const;

private:
    int m_descriptor;
};
}  // namespace ctl
