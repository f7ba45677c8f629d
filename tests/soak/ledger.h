/// @file
/// What the processes of a run count. The counters lie in a file that all of them map, and so outlive a killed one.
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

/// One column of numbers for each role; LedgerLayout() names them in this order.
enum Column : std::size_t
{
    kCalls,        ///< commands called, or calls served
    kFailed,       ///< calls that ended in the documented failure
    kGood,         ///< calls answered as they should be
    kWrong,        ///< answers and events that the contract does not allow
    kIncarnation,  ///< of the service that answered last
    kEvents,       ///< numbered events sent, or received
    kLost,
    kDoubled,
    kMoved,    ///< bytes of pages, pictures and accessory payloads that were compared
    kChanged,  ///< of these, bytes that were not what they should be
    kHeap,     ///< bytes that an application has allocated now
    kColumns,
};

using Counter = std::atomic<std::uint64_t>;
static_assert(Counter::is_always_lock_free, "counters are shared between processes");

constexpr std::size_t kMostIncarnations = 65536;

struct Ledger
{
    Counter ended;  ///< the run is over: applications come to their end
    Counter columns[kRoles][kColumns];
    Counter sent[kMostIncarnations];  ///< numbered events that have left each incarnation of the service

    void Add(Role role, Column column, std::uint64_t count = 1) { columns[role][column] += count; }
};

/// Maps the file, which must have the size of a ledger.
Ledger& OpenLedger(const std::string& path);

/// The names of roles and columns, and the size of the file, as JSON for whoever reads it.
std::string LedgerLayout();
}  // namespace soak
