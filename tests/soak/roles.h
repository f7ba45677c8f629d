/// @file
/// The processes of a run: two applications that use the public interface, and the service that is made to fail.
#pragma once

#include "ledger.h"

namespace soak
{
/// Runs until the ledger marks the end: commands, pages, artwork, accessory payloads, events.
void RunApplication(Ledger& ledger, Role role);

/// Serves until end of file on standard input. Each input line is a fault, "KIND COUNT":
///
///   * errors: that many calls get an error reply;
///   * silence: that many calls are never answered;
///   * nonsense: that many calls get a reply of another type, and that many malformed signals are sent;
///   * flood: that many numbered events are sent at once;
///   * scribble: a list's header is overwritten that many times.
void RunService(Ledger& ledger, std::uint64_t incarnation);
}  // namespace soak
