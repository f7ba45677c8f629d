#include "memory/shared_vectors.h"

#include <algorithm>

#include "memory/elements.h"
#include "memory/segment_probe.h"

namespace ipodkit
{
namespace
{
bool HasSoundRoom(const QBXByteVector& vector)
{
    return vector.capacity() == 0 ||
           LieIn(segment_buffer_vector, Elements<unsigned char>{vector.data(), vector.capacity()});
}

// Grows as if the bytes were appended one by one, like the core: the service shares the segment, and its free space
// must not depend on who fills the buffer.
void Append(QBXByteVector& vector, const unsigned char* bytes, std::size_t count)
{
    for (std::size_t done = 0;; ++done)
    {
        const std::size_t fitting = std::min(count - done, vector.capacity() - vector.size());
        vector.insert(vector.end(), bytes + done, bytes + done + fitting);
        done += fitting;
        if (done == count) return;
        vector.push_back(bytes[done]);
    }
}

tl::unexpected<Error> NoSharedMemory(const std::string& reason)
{
    return tl::unexpected(Error{ErrorKind::NoSharedMemory, reason});
}
}  // namespace

std::optional<std::vector<std::string>> NamesIn(const QBXStringPageVector* vector)
{
    if (vector == nullptr) return std::nullopt;
    const auto records = ElementsOf(segment_list_vector, *vector);
    return records ? std::make_optional(CopyNames(*records)) : std::nullopt;
}

std::optional<std::vector<unsigned char>> BytesIn(const QBXByteVector* vector)
{
    if (vector == nullptr) return std::nullopt;
    const auto bytes = ElementsOf(segment_buffer_vector, *vector);
    if (!bytes) return std::nullopt;
    return std::vector<unsigned char>(bytes->begin, bytes->begin + bytes->count);
}

// A growing vector needs its old and its new storage at once, the new one up to twice as large, and never releases
// memory.
std::size_t RoomToWrite(const QBXByteVector* vector)
{
    constexpr std::size_t kOldAndNew = 3;
    if (vector == nullptr || !HasSoundRoom(*vector)) return 0;
    const std::size_t size = segment_buffer_vector.get_size();
    const std::size_t unused = std::min(segment_buffer_vector.get_free_memory(), size - vector->capacity());
    return std::max(vector->capacity(), (vector->capacity() + unused) / kOldAndNew);
}

bool HasCapacity(const QBXByteVector* vector, std::size_t count)
{
    return vector != nullptr && vector->capacity() >= count;
}

Result<void> WriteBytes(QBXByteVector* vector, const unsigned char* bytes, std::size_t count)
{
    if (vector == nullptr) return NoSharedMemory("the write buffer is not attached");
    if (!HasSoundRoom(*vector)) return NoSharedMemory("the write buffer points outside its segment");
    try
    {
        vector->clear();
        Append(*vector, bytes, count);
        return {};
    }
    catch (const boost::interprocess::bad_alloc&)
    {
        return NoSharedMemory("segment " + std::string(kBufferSegmentName) + " has no room for " +
                              std::to_string(count) + " bytes at once");
    }
    catch (const std::exception& thrown)
    {
        return tl::unexpected(SegmentFailure(kBufferSegmentName, thrown));
    }
}
}  // namespace ipodkit
