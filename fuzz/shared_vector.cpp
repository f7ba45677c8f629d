// Fuzzes header and entries of shared vectors, with all readers.
#include <algorithm>
#include <cstring>

#include "harness.h"
#include "internal/shared_bulk.h"

namespace
{
using fuzz::Require;

constexpr std::size_t kRoom = 16384;
constexpr std::size_t kHeader = 4 * sizeof(std::size_t);  // allocator, pointer, size, capacity
static_assert(sizeof(QBXStringPageVector) == kHeader && sizeof(QBXByteVector) == kHeader, "layout of the vectors");

// A segment with a vector in its middle: entries may be before and after it.
alignas(64) char segment[kRoom];
char* const vectorPlace = segment + kRoom / 2;
const qbx::Mapping mapping{segment, segment + kRoom};

// The elements that the header describes, if all are inside; written from the layout.
bool Inside(const std::size_t (&header)[3], std::size_t element, const char*& begin)
{
    const auto place = reinterpret_cast<std::uintptr_t>(vectorPlace + sizeof(std::size_t));
    const std::uintptr_t target = header[0] == 1 ? 0 : place + header[0];
    const auto first = reinterpret_cast<std::uintptr_t>(segment);
    if (target < first || target >= first + kRoom) return false;
    begin = segment + (target - first);
    return header[1] <= (first + kRoom - target) / element;
}

void CheckNames(const std::size_t (&header)[3])
{
    std::vector<std::string> names = {"before"};
    const auto* const vector = reinterpret_cast<const QBXStringPageVector*>(vectorPlace);
    qbx::CopyNames(qbx::TakeSnapshot(vector, mapping), names);
    const char* begin = nullptr;
    const bool inside = Inside(header, 256, begin);
    Require(names.size() == (inside ? header[1] : 0), "number of names");
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const char* const name = begin + 256 * i;
        Require(names[i] == std::string(name, std::find(name, name + 256, '\0')), "a name");
    }
}

void CheckBytes(const std::size_t (&header)[3])
{
    const auto* const vector = reinterpret_cast<const QBXByteVector*>(vectorPlace);
    const std::vector<unsigned char> bytes = qbx::CopyBytes(qbx::TakeSnapshot(vector, mapping));
    const char* begin = nullptr;
    const bool inside = Inside(header, 1, begin);
    Require(bytes.size() == (inside ? header[1] : 0), "number of bytes");
    const auto* const first = reinterpret_cast<const unsigned char*>(begin);
    Require(std::equal(bytes.begin(), bytes.end(), first), "the bytes");
}

// Half of the headers point near the segment; otherwise almost every input would be trivially invalid.
void ReadHeader(const std::uint8_t* data, std::size_t (&header)[3])
{
    std::memcpy(header, data + 1, sizeof(header));
    if (data[0] % 2 == 1) return;
    header[0] = header[0] % (kRoom + 64) - kRoom / 2;
    header[1] %= data[0] % 4 == 0 ? 40 : kRoom + 64;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::size_t header[3];
    if (size < 1 + sizeof(header)) return 0;
    ReadHeader(data, header);
    std::memset(segment, 0, sizeof(segment));
    const std::size_t entries = std::min(size - 1 - sizeof(header), kRoom);
    std::memcpy(segment, data + 1 + sizeof(header), entries);
    std::memcpy(vectorPlace + sizeof(std::size_t), header, sizeof(header));
    CheckNames(header);
    CheckBytes(header);
    return 0;
}
