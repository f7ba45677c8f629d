/// @file
/// Tables of the fields of each value, for code that prints, stores, or exports values.
///
///     ForEachRow<TrackChanged>([&](const auto& row) { show(row.name, std::invoke(row.get, event), row.meaning); });
///
/// A struct has one row per field, declared right after it. JSON, its schema, Python attributes, and reference tables
/// are derived from the rows, so adding a field means adding its row.
#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// One field of a struct. @c get is a pointer to a member, or a function of the struct.
template <class Get>
struct Row
{
    const char* name;  ///< in lower case, with underscores; empty for a struct whose fields are merged into this one's
    Get get;           ///< for std::invoke
    const char* unit;  ///< "us", "ms", "s", "px", "bytes", "%", "hex" for raw bytes; empty for texts and counts
    const char* meaning;  ///< one sentence without a full stop
};
template <class Get>
Row(const char*, Get, const char*, const char*) -> Row<Get>;

/// Specialized for each struct that has rows: `type`, its name as a type; `name`, its name in data; the tuple `all`;
/// and `complete` if the rows cover the whole value.
template <class T>
struct Rows;

template <class T, class = void>
inline constexpr bool kHasRows = false;
template <class T>
inline constexpr bool kHasRows<T, std::void_t<decltype(Rows<T>::all)>> = true;

template <class T, class Use>
constexpr void ForEachRow(const Use& use)
{
    std::apply([&use](const auto&... row) { (use(row), ...); }, Rows<T>::all);
}

/// The type of the field that a row describes.
template <class T, class Row>
using FieldType = std::decay_t<std::invoke_result_t<decltype(Row::get), const T&>>;

/// The field's name in JSON: durations end in "_ms", raw bytes are called "hex".
template <class Row>
std::string JsonName(const Row& row)
{
    std::string unit = row.unit;
    if (unit == "hex") return unit;
    return unit == "ms" ? std::string(row.name) + "_ms" : row.name;
}

/// Values whose rows are complete are equal when all their fields are.
template <class T, class = std::enable_if_t<Rows<T>::complete>>
bool operator==(const T& one, const T& other)
{
    bool equal = true;
    ForEachRow<T>([&](const auto& row) { equal = equal && std::invoke(row.get, one) == std::invoke(row.get, other); });
    return equal;
}

template <class T, class = std::enable_if_t<Rows<T>::complete>>
bool operator!=(const T& one, const T& other)
{
    return !(one == other);
}

/// Specialized for each enumeration whose values have names: `type`, and the array `names`, from value 0.
template <class E>
struct EnumNames;

/// Whether EnumNames<E> exists.
template <class E, class = void>
inline constexpr bool kHasNames = false;
template <class E>
inline constexpr bool kHasNames<E, std::void_t<decltype(EnumNames<E>::names)>> = true;

/// Whether T is a std::optional: a field that may be absent.
template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

namespace detail
{
std::string NameOrNumber(const char* const* names, std::size_t count, int value);
}

/// "fast-forward" for PlayStatus::FastForward; "unknown:7" for a number that the enumeration does not name.
template <class E, class = std::enable_if_t<kHasNames<E>>>
std::string ToString(E value)
{
    return detail::NameOrNumber(EnumNames<E>::names, std::size(EnumNames<E>::names), static_cast<int>(value));
}

/// Returns the enumerator with that name; nothing if there is none.
template <class E, class = std::enable_if_t<kHasNames<E>>>
std::optional<E> FromName(std::string_view name)
{
    for (std::size_t i = 0; i < std::size(EnumNames<E>::names); ++i)
        if (name == EnumNames<E>::names[i]) return static_cast<E>(i);
    return std::nullopt;
}
}  // namespace ipodkit

#pragma GCC visibility pop
