#include "wire/segments.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include "music/text.h"

namespace ipodsim
{
namespace
{
namespace bip = boost::interprocess;

// Whether the segment's creation has begun but not finished: its first word is 0 or 1 until then.
bool IsHalfCreated(const char* name)
{
    const int object = shm_open(name, O_RDONLY | O_NONBLOCK, 0);
    if (object < 0) return false;
    std::uint32_t state = 0;
    const bool finished = pread(object, &state, sizeof(state), 0) == ssize_t{sizeof(state)} && state > 1;
    close(object);
    return !finished;
}

// Retry for a while: a creator or lock holder that is alive finishes soon, a dead one never does.
constexpr int kTries = 3000;
constexpr auto kBetween = std::chrono::milliseconds(1);

// Boost would wait forever for a dead creator.
void WaitUntilCreated(const char* name)
{
    for (int tries = 0; IsHalfCreated(name); ++tries)
    {
        if (tries == kTries) throw std::runtime_error("its creator never finished it");
        std::this_thread::sleep_for(kBetween);
    }
}

// A segment's header stores its length, which may be less than that of the shared-memory object. In an all-zero segment
// Boost would dereference null pointers.
void CheckLength(const QBXSharedSegment& segment, const char* name)
{
    struct stat status
    {
    };
    const std::string file = std::string("/dev/shm/") + name;
    const std::size_t size = segment.get_size();
    const bool fits = stat(file.c_str(), &status) == 0 && size <= static_cast<std::size_t>(status.st_size);
    if (!fits || size < sizeof(QBXSharedSegment::segment_manager))
        throw std::runtime_error("it is damaged or was created with a different word size");
}

// Boost would wait ten seconds for a lock in the segment and give no useful reason.
void WaitUntilUnlocked(QBXSharedSegment& segment)
{
    const auto nothing = [] {};
    for (int tries = 0; !segment.try_atomic_func(nothing); ++tries)
    {
        if (tries == kTries) throw std::runtime_error("it is locked by a process that died");
        std::this_thread::sleep_for(kBetween);
    }
}

// The error is not caused by a segment: removing one would not help.
class SystemError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

bool IsSystemError(int error)
{
    return error == EROFS || error == ENOSPC || error == ENOMEM || error == EMFILE || error == ENFILE;
}

[[noreturn]] void ThrowNoRoom(std::uint64_t bytes)
{
    throw SystemError("no space for its " + std::to_string(bytes) +
                      " bytes\nhint: free space in /dev/shm and start again");
}

// Writing to a page that cannot be allocated raises SIGBUS, and Boost writes when it creates.
void RequireRoom(const char* name, std::uint64_t size)
{
    struct stat status
    {
    };
    struct statvfs room
    {
    };
    if (stat((std::string("/dev/shm/") + name).c_str(), &status) == 0 || statvfs("/dev/shm", &room) != 0) return;
    const bool limited = room.f_blocks != 0;
    if (limited && std::uint64_t{room.f_bavail} * room.f_frsize < size) ThrowNoRoom(size);
}

// Allocates the missing pages of a segment without changing its length.
void ReservePages(const char* name)
{
    const int object = shm_open(name, O_RDWR, 0);
    if (object < 0) return;
    struct stat status
    {
    };
    const bool known = fstat(object, &status) == 0;
    const bool full =
        known && fallocate(object, FALLOC_FL_KEEP_SIZE, 0, status.st_size) != 0 && (errno == ENOSPC || errno == ENOMEM);
    close(object);
    if (full) ThrowNoRoom(static_cast<std::uint64_t>(status.st_size));
}

[[noreturn]] void Fail(const char* name, const std::string& wrong)
{
    throw std::runtime_error(std::string("shared memory ") + name + ": " + wrong +
                             "\nhint: stop all applications that use the service, remove /dev/shm/" + name +
                             ", and start again");
}

// Boost's own messages say almost nothing about malformed segments.
[[noreturn]] void FailInBoost(const char* name, const bip::interprocess_exception& error)
{
    const int number = error.get_native_error();
    if (IsSystemError(number)) throw std::runtime_error(std::string("shared memory ") + name + ": " + error.what());
    Fail(name, number != 0 ? error.what() : std::string("it is damaged (") + error.what() + ")");
}

QBXSharedSegment Open(const char* name, std::size_t size)
{
    WaitUntilCreated(name);
    RequireRoom(name, size);
    bip::permissions mode;
    mode.set_permissions(0644);
    QBXSharedSegment segment(bip::open_or_create, name, size, nullptr, mode);
    CheckLength(segment, name);
    ReservePages(name);
    WaitUntilUnlocked(segment);
    return segment;
}

QBXSharedSegment Attach(const char* name, std::size_t size)
{
    try
    {
        return Open(name, size);
    }
    catch (const bip::interprocess_exception& error)
    {
        FailInBoost(name, error);
    }
    catch (const SystemError& error)
    {
        throw std::runtime_error(std::string("shared memory ") + name + ": " + error.what());
    }
    catch (const std::exception& error)
    {
        Fail(name, error.what());
    }
}

template <class Vector>
Vector* Find(QBXSharedSegment& segment, const char* name)
{
    try
    {
        return segment.find_or_construct<Vector>(name)(typename Vector::allocator_type(segment.get_segment_manager()));
    }
    catch (const std::exception& error)
    {
        const bool ofBytes = std::is_same<Vector, QBXByteVector>::value;
        Fail(ofBytes ? kBufferSegmentName : kListSegmentName, std::string("vector ") + name + ": " + error.what());
    }
}

// The old page is freed first: old and new might not fit together.
template <class Vector>
void Empty(Vector& vector)
{
    vector.clear();
    vector.shrink_to_fit();
}

PlayListSongNameStr ToSlot(const std::string& name)
{
    PlayListSongNameStr slot{};
    const std::string text = CutUtf8(name, sizeof(slot.name) - 1);
    std::memcpy(slot.name, text.data(), text.size());
    return slot;
}

// Throws Boost's exceptions.
template <class Vector, class Values>
void Replace(Vector& vector, const Values& values)
{
    Empty(vector);
    vector.reserve(values.size());
    vector.insert(vector.end(), values.data(), values.data() + values.size());
}

// Any Boost exception means that the page cannot be delivered; it must not propagate through GLib.
template <class Vector, class Work>
bool Filled(Vector& vector, Work work)
{
    try
    {
        work();
        return true;
    }
    catch (const std::exception&)
    {
        vector.clear();
        return false;
    }
}
}  // namespace

Segments::Segments()
    : m_lists(Attach(kListSegmentName, kListSegmentSize)), m_buffers(Attach(kBufferSegmentName, kBufferSegmentSize))
{
    playingList = Find<QBXStringPageVector>(m_lists, "VecPlayingListShareMemory");
    dbList = Find<QBXStringPageVector>(m_lists, "VecDBListShareMemory");
    dbListPinyin = Find<QBXStringPageVector>(m_lists, "VecDBListPinyinShareMemory");
    updateList = Find<QBXStringPageVector>(m_lists, "VecUpdateListShareMemory");
    updateListPinyin = Find<QBXStringPageVector>(m_lists, "VecUpdateListPinyinShareMemory");
    deviceList = Find<QBXStringPageVector>(m_lists, "VecDeviceListShareMemory");
    artwork = Find<QBXByteVector>(m_buffers, "VecArtworkBufferShareMemory");
    artworkChange = Find<QBXByteVector>(m_buffers, "VecArtworkChangeBufferShareMemory");
    eapWrite = Find<QBXByteVector>(m_buffers, "VecEapWriteBufferShareMemory");
    eapRead = Find<QBXByteVector>(m_buffers, "VecEapReadBufferShareMemory");
}

Segments::~Segments()
{
    if (m_claim >= 0) close(m_claim);
}

// An open-file-description lock: it lasts until the process ends, even if other code in the process opens and closes
// the segment.
bool Segments::Claim()
{
    m_claim = shm_open(kBufferSegmentName, O_RDWR | O_CLOEXEC, 0);
    struct flock whole
    {
    };
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return m_claim < 0 || fcntl(m_claim, F_OFD_SETLK, &whole) == 0 || (errno != EAGAIN && errno != EACCES);
}

void Segments::WithLock(Lock lock, std::function<void()> work)
{
    (lock == Lock::Lists ? m_lists : m_buffers).atomic_func(work);
}

Bytes Segments::TakeEapWrite() const
{
    const std::size_t count = eapWrite->size();
    if (count == 0) return {};
    const unsigned char* const begin = eapWrite->data();
    if (!m_buffers.belongs_to_segment(begin) || count > m_buffers.get_size() ||
        !m_buffers.belongs_to_segment(begin + count - 1))
        throw std::runtime_error("the accessory write buffer points outside its segment");
    return {begin, begin + count};
}

bool Segments::FillArtwork(QBXByteVector& vector, const Bytes& bytes) const
{
    const auto fill = [&]
    {
        try
        {
            Replace(vector, bytes);
        }
        catch (const bip::bad_alloc&)
        {
            Empty(&vector == artwork ? *artworkChange : *artwork);
            Replace(vector, bytes);
        }
    };
    return Filled(vector, fill);
}

bool Fill(QBXStringPageVector& vector, const std::vector<std::string>& names)
{
    std::vector<PlayListSongNameStr> slots;
    slots.reserve(names.size());
    for (const std::string& name : names) slots.push_back(ToSlot(name));
    return Filled(vector, [&] { Replace(vector, slots); });
}

bool Fill(QBXByteVector& vector, const Bytes& bytes)
{
    return Filled(vector, [&] { Replace(vector, bytes); });
}
}  // namespace ipodsim
