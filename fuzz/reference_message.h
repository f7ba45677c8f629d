/// @file
/// A second reader of serialised messages, written from the wire format and not from the library's code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace fuzz
{
/// What kind of value a known field has.
enum class Kind
{
    Text,
    Number,
    Enumeration,
};

struct Field
{
    Kind kind;
    int largest = 0;  ///< of an enumeration that starts at 0
};

using Fields = std::map<std::uint32_t, Field>;

/// The values of known fields by number; those of another wire type, or outside their enumeration, are not there.
struct Message
{
    std::map<std::uint32_t, std::string> texts;
    std::map<std::uint32_t, std::uint64_t> numbers;
};

/// Nothing when the bytes are no message.
std::optional<Message> ReadMessage(const std::uint8_t* data, std::size_t size, const Fields& fields);
}  // namespace fuzz
