#include "faults/crash.h"

#include <csignal>

namespace ipodsim
{
namespace
{
// Nothing is cleaned up, as with a process that the kernel ends.
void Die()
{
    std::raise(SIGKILL);
}
}  // namespace

void CrashNow(Segments& segments, const Fault& fault)
{
    if (fault.kind != FaultKind::CrashLocked) return Die();
    if (fault.parameter == "lists") return segments.WithLock(Segments::Lock::Lists, Die);
    if (fault.parameter == "buffers") return segments.WithLock(Segments::Lock::Buffers, Die);
    segments.WithLock(Segments::Lock::Lists, [&] { segments.WithLock(Segments::Lock::Buffers, Die); });
}
}  // namespace ipodsim
