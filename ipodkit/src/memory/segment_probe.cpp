#include "memory/segment_probe.h"

#include <QBXIpodShareMemory.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace ipodkit
{
namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;

constexpr auto kCreatorTimeLimit = std::chrono::seconds(5);
constexpr std::uint32_t kInitialized = 2;

std::string FileOf(const char* segment)
{
    return std::string("/dev/shm/") + segment;
}

std::string Removal(const char* segment)
{
    return "stop the service and all its applications, remove " + FileOf(segment) + " and start the service again";
}

Error Failure(const char* segment, const std::string& wrong, const std::string& remedy)
{
    return {ErrorKind::NoSharedMemory, std::string("segment ") + segment + ": " + wrong + "; " + remedy};
}

Error CannotOpen(const char* segment, int reason)
{
    struct stat status
    {
    };
    if (reason != EACCES || stat(FileOf(segment).c_str(), &status) != 0)
        return Failure(segment, std::strerror(reason), Removal(segment));
    return Failure(segment,
                   "it belongs to user " + std::to_string(status.st_uid) + " and this process is user " +
                       std::to_string(geteuid()),
                   "run the service and its applications as one user, or " + Removal(segment));
}

class File
{
public:
    explicit File(int fd) : m_fd(fd) {}
    ~File() { close(m_fd); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    struct stat Status() const
    {
        struct stat status
        {
        };
        fstat(m_fd, &status);
        return status;
    }

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
std::optional<Error> Map(const char* segment, const File& file)
{
    QBXSharedSegment mapped(bip::open_only, segment);
    const std::size_t size = mapped.get_size();
    if (size < sizeof(QBXSharedSegment::segment_manager) || size > static_cast<std::size_t>(file.Status().st_size))
        return Failure(segment, "it was made for another word size or is damaged", Removal(segment));
    mapped.find<QBXByteVector>("");
    return std::nullopt;
}

std::optional<Error> Probe(const char* segment)
{
    const int fd = shm_open(segment, O_RDWR | O_NONBLOCK, 0);
    if (fd < 0) return errno == ENOENT ? std::nullopt : std::make_optional(CannotOpen(segment, errno));
    const File file(fd);
    if (!S_ISREG(file.Status().st_mode))
        return Failure(segment, "it exists and is not shared memory", Removal(segment));
    if (!BecomesReady(file)) return Failure(segment, "its creator never finished it", Removal(segment));
    try
    {
        return Map(segment, file);
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

Error AttachFailure(const std::string& what)
{
    return {ErrorKind::NoSharedMemory, what + "; fix this and restart the application: the core attaches once only"};
}
}  // namespace ipodkit
