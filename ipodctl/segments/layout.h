/// @file
/// The layout of the shared segments as a build finds it: a list of facts, and one word for all of them.
///
/// Library and service are built apart and must agree in it. The header needs Boost.Interprocess alone and keeps to
/// C++11 and to names that Boost 1.56 has, so that the service's team can compile it with what the service is built
/// with: docs/porting.md shows the program. What can be measured is measured, in a segment that is made for it.
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

/// A named vector: its own name, and that of its segment.
struct VectorName
{
    const char* name;
    const char* segment;
};

/// The ten names of the contract.
inline std::vector<VectorName> ContractNames()
{
    const char* const lists = "ListVectorSharedMemory";
    const char* const buffers = "BufferVectorSharedMemory";
    return {{"VecPlayingListShareMemory", lists},      {"VecDBListShareMemory", lists},
            {"VecDBListPinyinShareMemory", lists},     {"VecUpdateListShareMemory", lists},
            {"VecUpdateListPinyinShareMemory", lists}, {"VecDeviceListShareMemory", lists},
            {"VecArtworkBufferShareMemory", buffers},  {"VecArtworkChangeBufferShareMemory", buffers},
            {"VecEapWriteBufferShareMemory", buffers}, {"VecEapReadBufferShareMemory", buffers}};
}

/// Where things lie, in bytes. A place that was not found is kNowhere.
struct Places
{
    std::size_t manager;    ///< of the segment's manager, within the object
    std::size_t ownSize;    ///< of the number of bytes from the manager to the end, within the manager
    std::size_t name;       ///< of a vector's name, behind the vector
    std::size_t allocator;  ///< of the pointer to the manager, within a vector
    std::size_t entries;    ///< of the pointer to the entries
    std::size_t size;       ///< of the number of entries
    std::size_t capacity;   ///< of the number of entries that there is room for
    std::size_t block;      ///< what 100 bytes take of a segment
};

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

inline std::size_t WordAt(const void* address)
{
    std::size_t word;
    std::memcpy(&word, address, sizeof(word));
    return word;
}

/// The first place in @p size bytes from @p begin on where a word of that value stands.
inline std::size_t PlaceOf(std::size_t value, const void* begin, std::size_t size)
{
    for (std::size_t at = 0; at + sizeof(value) <= size; at += sizeof(value))
        if (WordAt(static_cast<const char*>(begin) + at) == value) return at;
    return kNowhere;
}

/// The same for a pointer inside a segment, which holds the distance from itself.
inline std::size_t PlaceOfPointer(const void* target, const void* begin, std::size_t size)
{
    for (std::size_t at = 0; at + sizeof(std::size_t) <= size; at += sizeof(std::size_t))
    {
        const char* const here = static_cast<const char*>(begin) + at;
        if (here + static_cast<std::ptrdiff_t>(WordAt(here)) == target) return at;
    }
    return kNowhere;
}

/// A segment of the given type that nobody else can find: its name is gone as soon as it is mapped.
/// @throws boost::interprocess::interprocess_exception  when there can be none
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

/// Looks where a segment and a vector in it keep what is known of them.
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

/// Describes a pair of vector types and the segment that holds them.
///
/// @param names      the vectors that both sides look for
/// @param listSize   size of a new segment of the lists, @p bufferSize of one of the buffers
/// @throws boost::interprocess::interprocess_exception  when no segment can be made to measure
template <class Segment, class Names, class Bytewise>
Facts Describe(const std::vector<VectorName>& names = ContractNames(), std::size_t listSize = 0x500000,
               std::size_t bufferSize = 0x100000)
{
    Facts facts;
    AddSizes<Names, Bytewise>(facts);
    AddPlaces<Segment>(facts, Measure<Segment, Names>());
    facts.push_back({"segment of the lists", Bytes(listSize)});
    facts.push_back({"segment of the buffers", Bytes(bufferSize)});
    for (const VectorName& vector : names) facts.push_back({vector.name, std::string("in ") + vector.segment});
    return facts;
}

/// What may differ between two builds that agree.
inline Facts Tools()
{
    const std::string boost = std::to_string(BOOST_VERSION / 100000) + "." +
                              std::to_string(BOOST_VERSION / 100 % 1000) + "." + std::to_string(BOOST_VERSION % 100);
    return {{"Boost", boost}, {"compiler", __VERSION__}};
}

/// One word for all facts: 64 bits of FNV-1a over the lines "NAME: VALUE\n", as 16 hexadecimal digits.
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

/// The whole description, one fact a line, the fingerprint last.
inline std::string Text(const Facts& facts)
{
    std::string text;
    for (const Fact& fact : Tools()) text += fact.name + ": " + fact.value + " (may differ)\n";
    for (const Fact& fact : facts) text += fact.name + ": " + fact.value + "\n";
    return text + "fingerprint: " + Fingerprint(facts);
}
}  // namespace layout
