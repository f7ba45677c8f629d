#include "internal/shared_bulk.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qbx
{
namespace
{
// memchr, because C libraries for 32-bit ARM have a fast memchr but no fast strnlen.
std::size_t LengthOf(const PlayListSongNameStr& entry)
{
    const void* const end = std::memchr(entry.name, '\0', sizeof(entry.name));
    return end == nullptr ? sizeof(entry.name) : static_cast<std::size_t>(static_cast<const char*>(end) - entry.name);
}

void CheckRoom(const QBXByteVector& vector, const Mapping& mapping)
{
    const char* const begin = reinterpret_cast<const char*>(vector.data());
    if (vector.capacity() == 0) return;
    if (begin >= mapping.begin && begin < mapping.end &&
        vector.capacity() <= static_cast<std::size_t>(mapping.end - begin))
        return;
    throw boost::interprocess::interprocess_exception("the write buffer points outside its segment");
}

// Appends as many bytes as the present capacity holds.
std::size_t FillCapacity(QBXByteVector& vector, const unsigned char* bytes, std::size_t count)
{
    const std::size_t taken = std::min(count, vector.capacity() - vector.size());
    vector.insert(vector.end(), bytes, bytes + taken);
    return taken;
}
}  // namespace

Mapping BoundsOf(const void* vector, const Mapping& mapping)
{
    const bool inside = vector >= mapping.begin && vector < mapping.end;
    if (inside) return mapping;
    // The end of the address space, which no object occupies. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return {nullptr, reinterpret_cast<const char*>(UINTPTR_MAX)};
}

// Flattened because GCC otherwise constructs each string through a call, a tenth of the cost of a name.
[[gnu::flatten]] void CopyNames(const Snapshot<PlayListSongNameStr>& names, std::vector<std::string>& list)
{
    std::vector<std::string>().swap(list);
    for (std::size_t i = 0; i < names.count; ++i) list.emplace_back(names.begin[i].name, LengthOf(names.begin[i]));
}

std::vector<unsigned char> CopyBytes(const Snapshot<unsigned char>& bytes)
{
    return {bytes.begin, bytes.begin + bytes.count};
}

void Replace(QBXByteVector* shared, const Mapping& mapping, const std::vector<unsigned char>& data)
{
    if (shared == nullptr) throw boost::interprocess::interprocess_exception("the write buffer is not attached");
    QBXByteVector& vector = *shared;
    vector.clear();
    CheckRoom(vector, mapping);
    for (std::size_t done = 0; done < data.size();)
    {
        done += FillCapacity(vector, data.data() + done, data.size() - done);
        if (done == data.size()) return;
        UnderSegmentLock([&] { vector.push_back(data[done]); });
        ++done;
    }
}
}  // namespace qbx
