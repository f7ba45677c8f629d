/// @file
/// The processes of a run: two applications on the public interface, and the service that is made to fail.
#pragma once

#include "ledger.h"

namespace soak
{
/// Works until the ledger says that the run has ended: commands, pages, pictures, accessory payloads, events.
void RunApplication(Ledger& ledger, Role role);

/// Serves until standard input ends. Each line there is a fault, "KIND COUNT":
///
///   * errors: so many calls are answered with an error;
///   * silence: so many calls are never answered;
///   * nonsense: so many calls are answered with another type, and so many hostile signals are sent;
///   * flood: so many numbered events at once;
///   * scribble: a list's header is overwritten so many times.
void RunService(Ledger& ledger, std::uint64_t incarnation);
}  // namespace soak
