/// @file
/// The counters of a run's processes. They are in a file that all processes map, and so survive a killed process.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace soak
{
enum Role : std::size_t
{
    kFirstApplication,
    kSecondApplication,
    kService,
    kRoles,
};

/// One column of counters per role; LedgerLayout() lists them in this order.
enum Column : std::size_t
{
    kCalls,        ///< commands called, or calls served
    kFailed,       ///< calls that failed as documented
    kGood,         ///< calls answered correctly
    kWrong,        ///< replies and events that violate the contract
    kIncarnation,  ///< incarnation of the service that replied last
    kEvents,       ///< numbered events sent, or received
    kLost,
    kDoubled,
    kMoved,    ///< compared bytes of pages, images, and accessory payloads
    kChanged,  ///< compared bytes that were wrong
    kHeap,     ///< bytes that an application currently has allocated
    kColumns,
};

using Counter = std::atomic<std::uint64_t>;
static_assert(Counter::is_always_lock_free, "counters are shared between processes");

constexpr std::size_t kMostIncarnations = 65536;

struct Ledger
{
    Counter ended;  ///< the run is over; applications exit
    Counter columns[kRoles][kColumns];
    Counter sent[kMostIncarnations];  ///< numbered events sent by each incarnation of the service

    void Add(Role role, Column column, std::uint64_t count = 1) { columns[role][column] += count; }
};

/// Maps the file, which must have the size of a ledger.
Ledger& OpenLedger(const std::string& path);

/// Returns the names of roles and columns and the size of the file as JSON, for readers of the file.
std::string LedgerLayout();
}  // namespace soak
