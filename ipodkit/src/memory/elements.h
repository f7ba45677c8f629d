/// @file
/// The elements of a vector that another process writes, which may be broken.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace ipodkit
{
template <class T>
struct Elements
{
    const T* begin;
    std::size_t count;
};

/// Returns whether all the elements are inside the segment.
template <class T>
bool LieIn(const QBXSharedSegment& segment, const Elements<T>& elements)
{
    const char* const begin = static_cast<const char*>(segment.get_address());
    const char* const end = begin + segment.get_size();
    const char* const first = reinterpret_cast<const char*>(elements.begin);
    return first >= begin && first < end && elements.count <= static_cast<std::size_t>(end - first) / sizeof(T);
}

/// Returns the elements of a vector, or nothing if they are not inside the segment. Pointer and size are fetched once,
/// so that what was checked is what is read. An empty vector has no memory.
template <class Vector>
std::optional<Elements<typename Vector::value_type>> ElementsOf(const QBXSharedSegment& segment, const Vector& vector)
{
    const auto* const volatile begin = vector.data();
    const volatile std::size_t count = vector.size();
    const Elements<typename Vector::value_type> elements{begin, count};
    return elements.count == 0 || LieIn(segment, elements) ? std::make_optional(elements) : std::nullopt;
}

inline std::vector<std::string> CopyNames(const Elements<PlayListSongNameStr>& records)
{
    std::vector<std::string> names;
    names.reserve(records.count);
    for (std::size_t i = 0; i < records.count; ++i)
    {
        const char* const name = records.begin[i].name;
        names.emplace_back(name, strnlen(name, sizeof(PlayListSongNameStr)));
    }
    return names;
}

/// Returns whether the size in a segment's header is plausible and does not exceed its file. The file is larger while
/// a service grows the segment, which takes two steps.
bool FitsItsFile(const QBXSharedSegment& segment, const char* name);
}  // namespace ipodkit
