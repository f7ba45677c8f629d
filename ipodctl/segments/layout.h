/// @file
/// Describes the layout of the shared segments in one build: a list of facts and their fingerprint.
///
/// The library and the service are built separately and must agree on the layout. This header depends only on
/// Boost.Interprocess and uses only C++11 and the API of Boost 1.56, so the service's team can compile it with the
/// service's toolchain; docs/porting.md shows the program. Offsets are measured in a temporary segment.
#pragma once

#include <sys/statvfs.h>
#include <unistd.h>

#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/interprocess/sync/interprocess_mutex.hpp>
#include <boost/version.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <typeinfo>
#include <vector>

namespace layout
{
/// One line of the description.
struct Fact
{
    std::string name;
    std::string value;
};

using Facts = std::vector<Fact>;

/// The names of a vector and of the segment that holds it.
struct VectorName
{
    const char* name;
    const char* segment;
};

/// Offsets in bytes, kNowhere if not found, and the size of a block.
struct Places
{
    std::size_t manager;    ///< segment manager, within the object
    std::size_t ownSize;    ///< size field (bytes from the manager to the end), within the manager
    std::size_t name;       ///< name of a vector, from the start of the vector
    std::size_t allocator;  ///< pointer to the manager, within a vector
    std::size_t entries;    ///< pointer to the entries, within a vector
    std::size_t size;       ///< number of entries, within a vector
    std::size_t capacity;   ///< capacity in entries, within a vector
    std::size_t block;      ///< bytes that a 100-byte allocation occupies
};

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

inline std::size_t WordAt(const void* address)
{
    std::size_t word;
    std::memcpy(&word, address, sizeof(word));
    return word;
}

/// Returns the offset of the first aligned word equal to @p value in the @p size bytes at @p begin, or kNowhere.
inline std::size_t PlaceOf(std::size_t value, const void* begin, std::size_t size)
{
    for (std::size_t at = 0; at + sizeof(value) <= size; at += sizeof(value))
        if (WordAt(static_cast<const char*>(begin) + at) == value) return at;
    return kNowhere;
}

/// Like PlaceOf(), but finds a pointer inside a segment, which stores the distance from itself to @p target.
inline std::size_t PlaceOfPointer(const void* target, const void* begin, std::size_t size)
{
    for (std::size_t at = 0; at + sizeof(std::size_t) <= size; at += sizeof(std::size_t))
    {
        const char* const here = static_cast<const char*>(begin) + at;
        if (here + static_cast<std::ptrdiff_t>(WordAt(here)) == target) return at;
    }
    return kNowhere;
}

/// Creates a segment and removes its name at once, so that no other process can open it.
/// @throws boost::interprocess::interprocess_exception  if it cannot be created
template <class Segment>
Segment MakeSpecimen()
{
    constexpr std::size_t size = 65536;
    struct statvfs device;
    if (statvfs("/dev/shm", &device) == 0 && device.f_blocks > 0 && device.f_bavail * device.f_frsize < size)
        throw boost::interprocess::interprocess_exception("no space in /dev/shm");
    const std::string name = "layout-of-segments-" + std::to_string(getpid());
    boost::interprocess::shared_memory_object::remove(name.c_str());
    Segment segment(boost::interprocess::create_only, name.c_str(), size);
    boost::interprocess::shared_memory_object::remove(name.c_str());
    return segment;
}

template <class Segment>
std::size_t BlockSize(Segment& segment)
{
    constexpr std::size_t asked = 100;
    const char* const first = static_cast<const char*>(segment.allocate(asked));
    const char* const second = static_cast<const char*>(segment.allocate(asked));
    return static_cast<std::size_t>(first < second ? second - first : first - second);
}

/// Measures the offsets in a temporary segment that holds one vector.
/// @throws boost::interprocess::interprocess_exception  if the segment cannot be created
template <class Segment, class Names>
Places Measure()
{
    auto segment = MakeSpecimen<Segment>();
    const typename Names::allocator_type allocator(segment.get_segment_manager());
    auto* const vector = segment.template construct<Names>("VecPlayingListShareMemory")(allocator);
    vector->reserve(40);
    vector->resize(7);
    const auto* const manager = segment.get_segment_manager();
    const std::size_t page = boost::interprocess::mapped_region::get_page_size();
    Places places;
    places.manager = reinterpret_cast<std::uintptr_t>(manager) % page;
    places.ownSize = PlaceOf(manager->get_size(), manager, sizeof(*manager));
    places.name = static_cast<std::size_t>(Segment::get_instance_name(vector) - reinterpret_cast<const char*>(vector));
    places.allocator = PlaceOfPointer(manager, vector, sizeof(*vector));
    places.entries = PlaceOfPointer(&*vector->begin(), vector, sizeof(*vector));
    places.size = PlaceOf(vector->size(), vector, sizeof(*vector));
    places.capacity = PlaceOf(vector->capacity(), vector, sizeof(*vector));
    places.block = BlockSize(segment);
    return places;
}

inline std::string At(std::size_t place)
{
    return place == kNowhere ? "nowhere" : "at " + std::to_string(place);
}

inline std::string Bytes(std::size_t size)
{
    return std::to_string(size) + " bytes";
}

inline std::string ByteOrder()
{
    const std::uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1 ? "little end first" : "big end first";
}

template <class Names, class Bytewise>
void AddSizes(Facts& facts)
{
    facts.push_back({"word", std::to_string(8 * sizeof(void*)) + " bits, " + ByteOrder()});
    facts.push_back({"entry of a list", Bytes(sizeof(typename Names::value_type))});
    facts.push_back({"entry of a buffer", Bytes(sizeof(typename Bytewise::value_type))});
    facts.push_back({"vector of a list", Bytes(sizeof(Names)) + ", aligned to " + std::to_string(alignof(Names))});
    facts.push_back(
        {"vector of a buffer", Bytes(sizeof(Bytewise)) + ", aligned to " + std::to_string(alignof(Bytewise))});
    facts.push_back({"lock", Bytes(sizeof(boost::interprocess::interprocess_mutex))});
}

template <class Segment>
void AddPlaces(Facts& facts, const Places& places)
{
    facts.push_back({"manager", Bytes(sizeof(typename Segment::segment_manager)) + " " + At(places.manager) +
                                    " of the object, own size " + At(places.ownSize)});
    facts.push_back({"inside a vector", "allocator " + At(places.allocator) + ", entries " + At(places.entries) +
                                            ", size " + At(places.size) + ", capacity " + At(places.capacity)});
    facts.push_back({"name of a vector", At(places.name) + " from the vector"});
    facts.push_back({"100 bytes take", Bytes(places.block)});
    facts.push_back({"type of a segment", typeid(Segment).name()});
}

/// Describes a pair of vector types and the segment type that holds them.
///
/// @param names       vectors that the library and the service look up: a range of VectorName or of a similar type
/// @param listSize    size of a new list segment, in bytes
/// @param bufferSize  size of a new buffer segment, in bytes
/// @throws boost::interprocess::interprocess_exception  if the temporary segment cannot be created
template <class Segment, class Names, class Bytewise, class VectorNames>
Facts Describe(const VectorNames& names, std::size_t listSize, std::size_t bufferSize)
{
    Facts facts;
    AddSizes<Names, Bytewise>(facts);
    AddPlaces<Segment>(facts, Measure<Segment, Names>());
    facts.push_back({"segment of the lists", Bytes(listSize)});
    facts.push_back({"segment of the buffers", Bytes(bufferSize)});
    for (const auto& vector : names) facts.push_back({vector.name, std::string("in ") + vector.segment});
    return facts;
}

/// Returns the facts that may differ between two compatible builds.
inline Facts Tools()
{
    const std::string boost = std::to_string(BOOST_VERSION / 100000) + "." +
                              std::to_string(BOOST_VERSION / 100 % 1000) + "." + std::to_string(BOOST_VERSION % 100);
    return {{"Boost", boost}, {"compiler", __VERSION__}};
}

/// Returns the 64-bit FNV-1a hash of the lines "NAME: VALUE\n", as 16 hexadecimal digits.
inline std::string Fingerprint(const Facts& facts)
{
    std::string text;
    for (const Fact& fact : facts) text += fact.name + ": " + fact.value + "\n";
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    char word[17];
    std::snprintf(word, sizeof(word), "%08x%08x", static_cast<unsigned>(hash >> 32), static_cast<unsigned>(hash));
    return word;
}

/// Returns the whole description, one fact per line, with the fingerprint last.
inline std::string Text(const Facts& facts)
{
    std::string text;
    for (const Fact& fact : Tools()) text += fact.name + ": " + fact.value + " (may differ)\n";
    for (const Fact& fact : facts) text += fact.name + ": " + fact.value + "\n";
    return text + "fingerprint: " + Fingerprint(facts);
}
}  // namespace layout
