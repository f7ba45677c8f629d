#include "memory/shared_vectors.h"

#include <algorithm>
#include <cstring>

#include "memory/segment_probe.h"

namespace ipodkit
{
namespace
{
template <class Element>
struct Snapshot
{
    const Element* begin;
    std::size_t count;
};

template <class Element>
bool LiesIn(const QBXSharedSegment& segment, const Snapshot<Element>& elements)
{
    const char* const begin = static_cast<const char*>(segment.get_address());
    const char* const end = begin + segment.get_size();
    const char* const first = reinterpret_cast<const char*>(elements.begin);
    return first >= begin && first < end &&
           elements.count <= static_cast<std::size_t>(end - first) / sizeof(*elements.begin);
}

// Pointer and size are loaded once, so that the checked values are those used. An empty vector has no memory.
template <class Vector>
std::optional<Snapshot<typename Vector::value_type>> Take(const QBXSharedSegment& segment, const Vector* vector)
{
    if (vector == nullptr) return std::nullopt;
    const auto* const volatile begin = vector->data();
    const volatile std::size_t count = vector->size();
    const Snapshot<typename Vector::value_type> elements{begin, count};
    if (elements.count == 0) return elements;
    return LiesIn(segment, elements) ? std::make_optional(elements) : std::nullopt;
}

bool HasSoundRoom(const QBXByteVector& vector)
{
    return vector.capacity() == 0 ||
           LiesIn(segment_buffer_vector, Snapshot<unsigned char>{vector.data(), vector.capacity()});
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
    return tl::unexpected<Error>(Error{ErrorKind::NoSharedMemory, reason});
}
}  // namespace

std::optional<std::vector<std::string>> NamesIn(const QBXStringPageVector* vector)
{
    const auto records = Take(segment_list_vector, vector);
    if (!records) return std::nullopt;
    std::vector<std::string> names;
    names.reserve(records->count);
    for (std::size_t i = 0; i < records->count; ++i)
    {
        const char* const name = records->begin[i].name;
        names.emplace_back(name, strnlen(name, sizeof(PlayListSongNameStr)));
    }
    return names;
}

std::optional<std::vector<unsigned char>> BytesIn(const QBXByteVector* vector)
{
    const auto bytes = Take(segment_buffer_vector, vector);
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
        return tl::unexpected<Error>(SegmentFailure(kBufferSegmentName, thrown));
    }
}
}  // namespace ipodkit
