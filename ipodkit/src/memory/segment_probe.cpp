#include "memory/segment_probe.h"

#include <fcntl.h>
#include <ipodkit/segments.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "memory/elements.h"

namespace ipodkit
{
namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;

constexpr auto kCreatorTimeLimit = std::chrono::seconds(5);
constexpr std::uint32_t kInitialized = 2;

std::string Removal(const std::string& segment)
{
    return "stop the service and all its applications, remove /dev/shm/" + segment + " and start the service again";
}

Error Failure(const char* segment, const std::string& wrong, const std::string& remedy)
{
    return {ErrorKind::NoSharedMemory, std::string("segment ") + segment + ": " + wrong + "; " + remedy};
}

Error CannotOpen(const char* segment, int reason)
{
    const SegmentObject object = InspectSegment(segment);
    if (reason != EACCES || !object.exists) return Failure(segment, std::strerror(reason), Removal(segment));
    return Failure(
        segment,
        "it belongs to user " + std::to_string(object.owner) + " and this process is user " + std::to_string(geteuid()),
        "run the service and its applications as one user, or " + Removal(segment));
}

class File
{
public:
    explicit File(int fd) : m_fd(fd) {}
    ~File() { close(m_fd); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // The first word of a segment counts the steps of its creation.
    bool Ready() const
    {
        std::uint32_t state = 0;
        return pread(m_fd, &state, sizeof(state), 0) == ssize_t{sizeof(state)} && state == kInitialized;
    }

private:
    int m_fd;
};

bool BecomesReady(const File& file)
{
    for (const auto giveUp = Clock::now() + kCreatorTimeLimit; !file.Ready();)
    {
        if (Clock::now() > giveUp) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// Acquires the lock inside the segment, which fails if a dead process holds it.
std::optional<Error> Map(const char* segment)
{
    QBXSharedSegment mapped(bip::open_only, segment);
    if (!FitsItsFile(mapped, segment))
        return Failure(segment, "it was created with a different word size, or is damaged", Removal(segment));
    mapped.find<QBXByteVector>("");
    return std::nullopt;
}

std::optional<Error> Probe(const char* segment)
{
    const int fd = shm_open(segment, O_RDWR | O_NONBLOCK, 0);
    if (fd < 0) return errno == ENOENT ? std::nullopt : std::make_optional(CannotOpen(segment, errno));
    const File file(fd);
    if (!InspectSegment(segment).isMemory)
        return Failure(segment, "it exists and is not shared memory", Removal(segment));
    if (!BecomesReady(file)) return Failure(segment, "its creator never finished it", Removal(segment));
    try
    {
        return Map(segment);
    }
    catch (const std::exception& thrown)
    {
        return SegmentFailure(segment, thrown);
    }
}
}  // namespace

std::optional<Error> ProbeSegments()
{
    std::optional<Error> error = Probe(kListSegmentName);
    return error ? error : Probe(kBufferSegmentName);
}

Error SegmentFailure(const char* segment, const std::exception& thrown)
{
    const auto* const known = dynamic_cast<const bip::interprocess_exception*>(&thrown);
    const bool locked = known != nullptr && known->get_error_code() == bip::timeout_when_locking_error;
    return Failure(segment, locked ? "it is locked by a process that died" : thrown.what(), Removal(segment));
}
}  // namespace ipodkit
