#include "ledger.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <stdexcept>

namespace soak
{
namespace
{
constexpr const char* kRoleNames[] = {"first application", "second application", "service"};
constexpr const char* kColumnNames[] = {"calls", "failed",  "good",  "wrong",   "incarnation", "events",
                                        "lost",  "doubled", "moved", "changed", "heap"};
static_assert(std::size(kRoleNames) == kRoles && std::size(kColumnNames) == kColumns, "each has a name");

template <std::size_t Count>
std::string Quoted(const char* const (&names)[Count])
{
    std::string list;
    for (const char* const name : names) list += std::string(list.empty() ? "\"" : ", \"") + name + "\"";
    return "[" + list + "]";
}
}  // namespace

Ledger& OpenLedger(const std::string& path)
{
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0 || status.st_size != sizeof(Ledger))
        throw std::runtime_error("no ledger: " + path);
    void* const memory = mmap(nullptr, sizeof(Ledger), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED) throw std::runtime_error("cannot map " + path);
    return *static_cast<Ledger*>(memory);
}

std::string LedgerLayout()
{
    return "{\"size\": " + std::to_string(sizeof(Ledger)) + ", \"roles\": " + Quoted(kRoleNames) +
           ", \"columns\": " + Quoted(kColumnNames) + "}";
}
}  // namespace soak
