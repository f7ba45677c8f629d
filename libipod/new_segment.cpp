// Creates a new segment in an unnamed file, which disappears with the process, and links it to its name when it is
// complete. Except for padding, it is byte for byte what Boost creates directly under the name.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <string>

#include "internal/segments.h"

namespace qbx
{
namespace
{
namespace bip = boost::interprocess;

// Where C libraries on Linux store the objects of shm_open().
constexpr char kObjects[] = "/dev/shm";
constexpr std::uint32_t kInitialized = 2;
// The segment's state precedes its manager.
constexpr std::size_t kManagerOffset = QBXSegmentAlgorithm::Alignment;

class NamelessObject
{
public:
    explicit NamelessObject(std::size_t size) : m_fd(open(kObjects, O_TMPFILE | O_RDWR | O_CLOEXEC, 0600)), m_size(size)
    {
        if (m_fd < 0 || fchmod(m_fd, 0644) != 0 || ftruncate(m_fd, static_cast<off_t>(size)) != 0) return;
        m_memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, 0);
    }
    ~NamelessObject()
    {
        if (m_memory != MAP_FAILED) munmap(m_memory, m_size);
        if (m_fd >= 0) close(m_fd);
    }
    NamelessObject(const NamelessObject&) = delete;
    NamelessObject& operator=(const NamelessObject&) = delete;

    char* memory() const { return m_memory == MAP_FAILED ? nullptr : static_cast<char*>(m_memory); }

    bool GiveName(const char* name) const
    {
        const std::string file = "/proc/self/fd/" + std::to_string(m_fd);
        const std::string object = std::string(kObjects) + "/" + name;
        return linkat(AT_FDCWD, file.c_str(), AT_FDCWD, object.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

private:
    const int m_fd;
    const std::size_t m_size;
    void* m_memory = MAP_FAILED;
};
}  // namespace

bool PublishNewSegment(const char* name, std::size_t size, const Furnish& furnish)
try
{
    if (size < kManagerOffset + QBXSegmentManager::get_min_size()) return false;
    const NamelessObject object(size);
    char* const memory = object.memory();
    if (memory == nullptr) return false;
    furnish(*::new (memory + kManagerOffset) QBXSegmentManager(size - kManagerOffset));
    std::memcpy(memory, &kInitialized, sizeof(kInitialized));
    return object.GiveName(name);
}
catch (const bip::interprocess_exception&)
{
    // Too small. Creating it under its name fails in the same way, and throws the exception to the caller.
    return false;
}
}  // namespace qbx
