#include "internal/segments.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>

namespace qbx
{
Mapping listMapping;
Mapping bufferMapping;

namespace
{
namespace bip = boost::interprocess;
using Clock = std::chrono::steady_clock;

constexpr auto kCreatorTimeLimit = std::chrono::seconds(5);
constexpr std::uint64_t kSpaceToCreate = 16384;
constexpr std::uint32_t kInitializing = 1;
constexpr auto kPollInterval = std::chrono::milliseconds(1);
constexpr char kOtherLayout[] = "its layout differs from that of this build";

[[noreturn]] void Refuse(const char* name, const char* why)
{
    throw bip::interprocess_exception((std::string("segment ") + name + ": " + why).c_str());
}

class SharedObject
{
public:
    explicit SharedObject(const char* name) : m_fd(shm_open(name, O_RDONLY | O_NONBLOCK, 0)) {}
    ~SharedObject()
    {
        if (m_fd >= 0) close(m_fd);
    }
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    bool exists() const { return m_fd >= 0; }

    off_t size() const { return Status().st_size; }

    bool IsMemory() const { return S_ISREG(Status().st_mode); }

    // The first word counts the stages of its creation.
    bool IsBeingMade() const
    {
        std::uint32_t state = 0;
        return pread(m_fd, &state, sizeof(state), 0) != ssize_t{sizeof(state)} || state <= kInitializing;
    }

    // Read instead of mapped, so that untouched pages stay unallocated.
    std::string Contents(std::size_t count) const
    {
        std::string bytes(count, '\0');
        const ssize_t read = pread(m_fd, bytes.data(), count, 0);
        bytes.resize(read < 0 ? 0 : static_cast<std::size_t>(read));
        return bytes;
    }

private:
    struct stat Status() const
    {
        struct stat status
        {
        };
        fstat(m_fd, &status);
        return status;
    }

    int m_fd;
};

// Boost waits forever for an object that another process is creating.
void WaitForCreator(const char* name)
{
    const SharedObject object(name);
    if (!object.exists()) return;
    if (!object.IsMemory()) Refuse(name, "it exists and is not shared memory");
    for (const auto giveUp = Clock::now() + kCreatorTimeLimit; object.IsBeingMade();)
    {
        if (Clock::now() > giveUp) Refuse(name, "its creator never finished it");
        std::this_thread::sleep_for(kPollInterval);
    }
}

// The pages of a new segment are allocated on first access; if none is free, the access raises SIGBUS. The header and
// an index of empty vectors need two pages.
void CheckSpaceToCreate(const char* name)
{
    struct statvfs device;
    const bool known = statvfs("/dev/shm", &device) == 0 && device.f_blocks > 0;
    if (!known) return;
    if (std::uint64_t{device.f_bavail} * device.f_frsize < kSpaceToCreate) Refuse(name, "no space left in /dev/shm");
}

void CreateIfAbsent(const char* name, std::size_t size, const Furnish& furnish)
{
    if (SharedObject(name).exists()) return;
    CheckSpaceToCreate(name);
    PublishNewSegment(name, size, furnish);
}

// The layout determines where a segment stores its own size, so a different word size is detected here. The object may
// be longer: a service grows the object before the segment.
void CheckLayout(const QBXSharedSegment& segment, const char* name)
{
    const SharedObject object(name);
    const std::size_t size = segment.get_size();
    if (size < sizeof(QBXSegmentManager) || size > static_cast<std::size_t>(object.size())) Refuse(name, kOtherLayout);
}
}  // namespace

QBXSharedSegment AttachSegment(const char* name, std::size_t size, const Furnish& furnish)
{
    CreateIfAbsent(name, size, furnish);
    WaitForCreator(name);
    bip::permissions mode;
    mode.set_permissions(0644);
    QBXSharedSegment segment(bip::open_or_create, name, size, nullptr, mode);
    CheckLayout(segment, name);
    return segment;
}

void CheckNames(QBXSharedSegment& segment, const char* name, const std::vector<const char*>& vectors)
{
    auto check = [&]
    {
        const auto isFound = [&](const char* vector) { return segment.find<char>(vector).first != nullptr; };
        if (segment.get_num_named_objects() == 0 || std::any_of(vectors.begin(), vectors.end(), isFound)) return;
        const std::string contents = SharedObject(name).Contents(segment.get_size());
        const auto isWritten = [&](const char* vector)
        { return contents.find(vector, 0, std::strlen(vector) + 1) != std::string::npos; };
        if (std::any_of(vectors.begin(), vectors.end(), isWritten)) Refuse(name, kOtherLayout);
    };
    UnderSegmentLock([&] { segment.atomic_func(check); });
}

Mapping MappingOf(const QBXSharedSegment& segment)
{
    const char* const begin = static_cast<const char*>(segment.get_address());
    return {begin, begin + segment.get_size()};
}
}  // namespace qbx
